/* INTEGER of every width and signedness, and ENUMERATED, written to a stream. */
#include "berStrmCommon.h"

using namespace qn::bstrm;

QN_BEGIN_C

int berEncStrmInt(ASN1CTXT* pctxt, ASN1INT value, int tagging) {
  return encodePrimitive(pctxt, tagging, [&](int t) { return xe_integer(pctxt, &value, t); });
}

int berEncStrmInt8(ASN1CTXT* pctxt, ASN1INT8 value, int tagging) {
  return encodePrimitive(pctxt, tagging, [&](int t) { return xe_int8(pctxt, &value, t); });
}

int berEncStrmInt16(ASN1CTXT* pctxt, ASN1SINT value, int tagging) {
  return encodePrimitive(pctxt, tagging, [&](int t) { return xe_int16(pctxt, &value, t); });
}

int berEncStrmInt64(ASN1CTXT* pctxt, ASN1INT64 value, int tagging) {
  return encodePrimitive(pctxt, tagging, [&](int t) { return xe_int64(pctxt, &value, t); });
}

int berEncStrmUInt(ASN1CTXT* pctxt, ASN1UINT value, int tagging) {
  return encodePrimitive(pctxt, tagging, [&](int t) { return xe_unsigned(pctxt, &value, t); });
}

int berEncStrmUInt8(ASN1CTXT* pctxt, ASN1UINT8 value, int tagging) {
  return encodePrimitive(pctxt, tagging, [&](int t) { return xe_uint8(pctxt, &value, t); });
}

int berEncStrmUInt16(ASN1CTXT* pctxt, ASN1USINT value, int tagging) {
  return encodePrimitive(pctxt, tagging, [&](int t) { return xe_uint16(pctxt, &value, t); });
}

int berEncStrmUInt64(ASN1CTXT* pctxt, ASN1UINT64 value, int tagging) {
  return encodePrimitive(pctxt, tagging, [&](int t) { return xe_uint64(pctxt, &value, t); });
}

int berEncStrmEnum(ASN1CTXT* pctxt, ASN1ENUM value, int tagging) {
  return encodePrimitive(pctxt, tagging, [&](int t) { return xe_enum(pctxt, &value, t); });
}

QN_END_C
