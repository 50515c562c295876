/* INTEGER values that fit a machine word, as decimal text. */
#include <quillon/rtValueText.h>

#include "xerEncCommon.h"

using namespace qn::xer;

namespace {

/* Digits of the widest 64-bit value, its sign and the NUL. */
constexpr size_t kNumberText = 24;

template <typename T, typename ToText>
int writeNumber(ASN1CTXT* pctxt, T value, const char* elemName, ToText toText) {
  char text[kNumberText];
  const int len = toText(pctxt, value, text, sizeof text);
  if (len < 0) return len;
  return writeElement(pctxt, nameOr(elemName, "INTEGER"), nullptr,
                      [&](TextStage& s) { s.put(text, static_cast<size_t>(len)); });
}

}  // namespace

QN_BEGIN_C

int xerEncInt(ASN1CTXT* pctxt, ASN1INT value, const char* elemName) {
  return XER_TRACE(pctxt, writeNumber(pctxt, value, elemName, rtIntToString));
}

int xerEncUInt(ASN1CTXT* pctxt, ASN1UINT value, const char* elemName) {
  return XER_TRACE(pctxt, writeNumber(pctxt, value, elemName, rtUIntToString));
}

int xerEncInt64(ASN1CTXT* pctxt, ASN1INT64 value, const char* elemName) {
  return XER_TRACE(pctxt, writeNumber(pctxt, value, elemName, rtInt64ToString));
}

int xerEncUInt64(ASN1CTXT* pctxt, ASN1UINT64 value, const char* elemName) {
  return XER_TRACE(pctxt, writeNumber(pctxt, value, elemName, rtUInt64ToString));
}

QN_END_C
