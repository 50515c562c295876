/* INTEGER values of any length, kept as decimal text. */
#include "xerDecCommon.h"

using namespace qn::xerdec;

namespace {

/* The writer drops every leading zero, zero itself included, so the digits are normalised
 * the same way here and an empty magnitude stands for "0". */
int decodeBigInt(ASN1CTXT* pctxt, const char** ppvalue) {
  Text t = skipLeadingSpace(inputText(pctxt));
  const bool negative = !t.empty() && *t.begin == '-';
  if (negative) ++t.begin;
  for (const char* p = t.begin; p < t.end; ++p) {
    if (!isDigit(*p)) return ASN_E_INVCHAR;
  }
  while (!t.empty() && *t.begin == '0') ++t.begin;
  const bool zero = t.empty();
  const size_t sign = negative && !zero ? 1 : 0;
  const size_t digits = zero ? 1 : t.size();
  char* text = allocArray<char>(pctxt, sign + digits + 1);
  if (!text) return ASN_E_NOMEM;
  if (sign) text[0] = '-';
  memcpy(text + sign, zero ? "0" : t.begin, digits);
  text[sign + digits] = 0;
  *ppvalue = text;
  return 0;
}

}  // namespace

QN_BEGIN_C

int xerDecBigInt(ASN1CTXT* pctxt, const char** ppvalue) {
  return XERDEC_TRACE(pctxt, decodeBigInt(pctxt, ppvalue));
}

QN_END_C
