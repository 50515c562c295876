/* REAL values as decimal text with an exponent, in the XER form and the XML Schema form. */
#include <stdio.h>

#include <quillon/rtReal.h>

#include "xerEncCommon.h"

using namespace qn::xer;

namespace {

/* Sign, 21 mantissa digits, point, "E", exponent sign, three digits and the NUL, with room. */
constexpr size_t kRealText = 48;

size_t copyText(char* text, const char* word) {
  const size_t n = strlen(word);
  memcpy(text, word, n + 1);
  return n;
}

/* Rewrites the "%1.20E" text of value in place: mantissa without the zeros at its end (one
 * digit kept after the point), "E", the exponent's sign ("+" only when keepPlus) and its
 * digits without leading zeros. Returns the length, 0 for a text without an exponent (NaN). */
size_t formatReal(double value, bool keepPlus, char* text) {
  snprintf(text, kRealText, "%1.20E", value);
  char* e = strchr(text, 'E');
  if (!e) return 0;
  size_t end = static_cast<size_t>(e - text);
  size_t point = end;
  for (size_t i = 0; i < end; ++i) {
    /* A locale with a decimal comma must not leak into the document. */
    if (text[i] == ',') text[i] = '.';
    if (text[i] == '.') point = i;
  }
  while (end > point + 2 && text[end - 1] == '0') --end;
  text[end++] = 'E';
  const char* exponent = e + 1;
  const char sign = *exponent;
  if (sign == '+' || sign == '-') ++exponent;
  if (sign == '-' || (sign == '+' && keepPlus)) text[end++] = sign;
  while (exponent[0] == '0' && exponent[1]) ++exponent;
  while (*exponent) text[end++] = *exponent++;
  text[end] = '\0';
  return end;
}

/* Zero of either sign and NaN are written as "0": the basic rules have no text for NaN, and
 * readers of our documents get a number they can parse. */
size_t xerRealText(double value, char* text) {
  if (value == 0.0) return copyText(text, "0");
  if (rtIsPlusInfinity(value)) return copyText(text, "<PLUS-INFINITY/>");
  if (rtIsMinusInfinity(value)) return copyText(text, "<MINUS-INFINITY/>");
  const size_t len = formatReal(value, true, text);
  if (len) return len;
  return copyText(text, "0");
}

size_t xmlRealText(double value, char* text) {
  if (rtIsMinusZero(value)) return copyText(text, "-0");
  if (value == 0.0) return copyText(text, "0");
  if (rtIsPlusInfinity(value)) return copyText(text, "INF");
  if (rtIsMinusInfinity(value)) return copyText(text, "-INF");
  if (rtIsNaN(value)) return copyText(text, "NaN");
  return formatReal(value, false, text);
}

int writeReal(ASN1CTXT* pctxt, const char* text, size_t len, const char* elemName) {
  return writeElement(pctxt, nameOr(elemName, "REAL"), nullptr,
                      [=](TextStage& s) { s.put(text, len); });
}

}  // namespace

QN_BEGIN_C

int xerEncReal(ASN1CTXT* pctxt, ASN1REAL value, const char* elemName) {
  char text[kRealText];
  const size_t len = xerRealText(value, text);
  return XER_TRACE(pctxt, writeReal(pctxt, text, len, elemName));
}

int xmlEncReal(ASN1CTXT* pctxt, ASN1REAL value, const char* elemName) {
  char text[kRealText];
  const size_t len = xmlRealText(value, text);
  return XER_TRACE(pctxt, writeReal(pctxt, text, len, elemName));
}

QN_END_C
