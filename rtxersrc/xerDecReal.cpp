/* REAL values: the X.693 texts and the XML Schema double. */
#include <charconv>

#include <quillon/rtReal.h>

#include "xerDecCommon.h"

using namespace qn::xerdec;

namespace {

const char* skipDigits(const char* p, const char* end) {
  while (p < end && isDigit(*p)) ++p;
  return p;
}

/* The end of the decimal number at p (digits with an optional point, at least one digit, an
 * optional exponent with an optional sign and at least one digit), or null when p holds none. */
const char* scanDecimal(const char* p, const char* end) {
  const char* intEnd = skipDigits(p, end);
  const char* mantissaEnd = intEnd;
  if (mantissaEnd < end && *mantissaEnd == '.') mantissaEnd = skipDigits(mantissaEnd + 1, end);
  if (intEnd == p && mantissaEnd - p < 2) return nullptr;
  if (mantissaEnd == end || (*mantissaEnd != 'E' && *mantissaEnd != 'e')) return mantissaEnd;
  const char* exp = mantissaEnd + 1;
  if (exp < end && (*exp == '+' || *exp == '-')) ++exp;
  const char* expEnd = skipDigits(exp, end);
  return expEnd == exp ? nullptr : expEnd;
}

/* A signed decimal number taking the whole of t but trailing white space. The conversion is
 * correctly rounded and independent of the locale, so the twenty digits the writers print
 * come back as the very double they were printed from. */
int readDecimal(Text t, bool plusAllowed, ASN1REAL& value) {
  const char* start = t.begin;
  const char* digits = start;
  if (!t.empty() && *start == '-') {
    digits = start + 1;
  } else if (!t.empty() && *start == '+' && plusAllowed) {
    start = digits = start + 1; /* from_chars takes no "+" */
  }
  const char* numberEnd = scanDecimal(digits, t.end);
  if (!numberEnd || !trimSpace(Text{numberEnd, t.end}).empty()) return ASN_E_INVREAL;
  double result = 0;
  const std::from_chars_result r = std::from_chars(start, numberEnd, result);
  if (r.ec != std::errc() || r.ptr != numberEnd) return ASN_E_INVREAL;
  value = result;
  return 0;
}

struct SpecialReal {
  const char* text;
  ASN1REAL (*value)();
};

/* The value of the special text that t is exactly, if it is one. */
template <size_t N>
bool readSpecial(Text t, const SpecialReal (&specials)[N], ASN1REAL& value) {
  for (const SpecialReal& special : specials) {
    if (equals(t, special.text)) {
      value = special.value();
      return true;
    }
  }
  return false;
}

const SpecialReal kXerSpecials[] = {{"PLUS-INFINITY", rtGetPlusInfinity},
                                    {"MINUS-INFINITY", rtGetMinusInfinity}};
const SpecialReal kXmlSpecials[] = {{"INF", rtGetPlusInfinity},
                                    {"+INF", rtGetPlusInfinity},
                                    {"-INF", rtGetMinusInfinity},
                                    {"NaN", rtGetNaN}};

/* The X.693 identifiers must be the whole rest of the text, as the writer leaves them. */
int decodeXerReal(ASN1CTXT* pctxt, ASN1REAL* pvalue) {
  const Text t = skipLeadingSpace(inputText(pctxt));
  if (readSpecial(t, kXerSpecials, *pvalue)) return 0;
  return readDecimal(t, false, *pvalue);
}

/* XML Schema collapses white space on both sides of a double. */
int decodeXmlReal(ASN1CTXT* pctxt, ASN1REAL* pvalue) {
  const Text t = skipLeadingSpace(inputText(pctxt));
  if (readSpecial(trimSpace(t), kXmlSpecials, *pvalue)) return 0;
  return readDecimal(t, true, *pvalue);
}

}  // namespace

QN_BEGIN_C

int xerDecReal(ASN1CTXT* pctxt, ASN1REAL* pvalue) {
  return XERDEC_TRACE(pctxt, decodeXerReal(pctxt, pvalue));
}

int xmlDecReal(ASN1CTXT* pctxt, ASN1REAL* pvalue) {
  return XERDEC_TRACE(pctxt, decodeXmlReal(pctxt, pvalue));
}

QN_END_C
