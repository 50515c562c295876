/* INTEGER values that fit a machine word, from decimal text. */
#include <limits>
#include <type_traits>

#include "xerDecCommon.h"

using namespace qn::xerdec;

namespace {

/* The decimal digits of t as a magnitude of at most limit; an empty text is 0. Every
 * character must be a digit (-34) and the value must stay within limit (-33). */
template <typename U>
int readMagnitude(Text t, U limit, U& magnitude) {
  U value = 0;
  for (const char* p = t.begin; p < t.end; ++p) {
    if (!isDigit(*p)) return ASN_E_INVCHAR;
    const U digit = static_cast<U>(*p - '0');
    if (value > (limit - digit) / 10) return ASN_E_TOOBIG;
    value = static_cast<U>(value * 10 + digit);
  }
  magnitude = value;
  return 0;
}

/* An optional "-" and digits; the negative range reaches one further than the positive, so
 * the most negative value of the type reads back as the writer wrote it. */
template <typename S>
int decodeSigned(ASN1CTXT* pctxt, S& value) {
  using U = std::make_unsigned_t<S>;
  Text t = skipLeadingSpace(inputText(pctxt));
  const bool negative = !t.empty() && *t.begin == '-';
  if (negative) ++t.begin;
  const U max = static_cast<U>(std::numeric_limits<S>::max());
  U magnitude = 0;
  int stat = readMagnitude<U>(t, negative ? static_cast<U>(max + 1) : max, magnitude);
  if (stat != 0) return stat;
  value = negative && magnitude > 0 ? static_cast<S>(-static_cast<S>(magnitude - 1) - 1)
                                    : static_cast<S>(magnitude);
  return 0;
}

template <typename U>
int decodeUnsigned(ASN1CTXT* pctxt, U& value) {
  const Text t = skipLeadingSpace(inputText(pctxt));
  return readMagnitude<U>(t, std::numeric_limits<U>::max(), value);
}

template <typename Narrow, typename Wide>
bool fitsIn(Wide wide) {
  if constexpr (std::is_signed_v<Wide>) {
    if (wide < static_cast<Wide>(std::numeric_limits<Narrow>::min())) return false;
  }
  return wide <= static_cast<Wide>(std::numeric_limits<Narrow>::max());
}

/* The narrow forms read the full word first and then check the range of their type. */
template <typename Wide, typename Narrow>
int decodeNarrow(ASN1CTXT* pctxt, Narrow* pvalue) {
  Wide wide = 0;
  int stat;
  if constexpr (std::is_signed_v<Wide>) {
    stat = decodeSigned(pctxt, wide);
  } else {
    stat = decodeUnsigned(pctxt, wide);
  }
  if (stat != 0) return stat;
  if (!fitsIn<Narrow>(wide)) return ASN_E_TOOBIG;
  *pvalue = static_cast<Narrow>(wide);
  return 0;
}

}  // namespace

QN_BEGIN_C

int xerDecInt(ASN1CTXT* pctxt, ASN1INT* pvalue) {
  *pvalue = 0;
  return XERDEC_TRACE(pctxt, decodeSigned(pctxt, *pvalue));
}

int xerDecInt8(ASN1CTXT* pctxt, ASN1INT8* pvalue) {
  return XERDEC_TRACE(pctxt, decodeNarrow<ASN1INT>(pctxt, pvalue));
}

int xerDecInt16(ASN1CTXT* pctxt, ASN1SINT* pvalue) {
  return XERDEC_TRACE(pctxt, decodeNarrow<ASN1INT>(pctxt, pvalue));
}

int xerDecInt64(ASN1CTXT* pctxt, ASN1INT64* pvalue) {
  *pvalue = 0;
  return XERDEC_TRACE(pctxt, decodeSigned(pctxt, *pvalue));
}

int xerDecUInt(ASN1CTXT* pctxt, ASN1UINT* pvalue) {
  *pvalue = 0;
  return XERDEC_TRACE(pctxt, decodeUnsigned(pctxt, *pvalue));
}

int xerDecUInt8(ASN1CTXT* pctxt, ASN1UINT8* pvalue) {
  return XERDEC_TRACE(pctxt, decodeNarrow<ASN1UINT>(pctxt, pvalue));
}

int xerDecUInt16(ASN1CTXT* pctxt, ASN1USINT* pvalue) {
  return XERDEC_TRACE(pctxt, decodeNarrow<ASN1UINT>(pctxt, pvalue));
}

int xerDecUInt64(ASN1CTXT* pctxt, ASN1UINT64* pvalue) {
  *pvalue = 0;
  return XERDEC_TRACE(pctxt, decodeUnsigned(pctxt, *pvalue));
}

QN_END_C
