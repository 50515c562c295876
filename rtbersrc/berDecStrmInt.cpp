/* INTEGER of every width and signedness, and ENUMERATED, read from a stream. */
#include "berStrmCommon.h"

using namespace qn::bstrm;

QN_BEGIN_C

int berDecStrmInt(ASN1CTXT* pctxt, ASN1INT* object_p, int tagging, int length) {
  return decodeValue(pctxt, object_p, tagging, length, ASN_ID_INT, xd_integer);
}

int berDecStrmInt8(ASN1CTXT* pctxt, ASN1INT8* object_p, int tagging, int length) {
  return decodeValue(pctxt, object_p, tagging, length, ASN_ID_INT, xd_int8);
}

int berDecStrmInt16(ASN1CTXT* pctxt, ASN1SINT* object_p, int tagging, int length) {
  return decodeValue(pctxt, object_p, tagging, length, ASN_ID_INT, xd_int16);
}

int berDecStrmInt64(ASN1CTXT* pctxt, ASN1INT64* object_p, int tagging, int length) {
  return decodeValue(pctxt, object_p, tagging, length, ASN_ID_INT, xd_int64);
}

int berDecStrmUInt(ASN1CTXT* pctxt, ASN1UINT* object_p, int tagging, int length) {
  return decodeValue(pctxt, object_p, tagging, length, ASN_ID_INT, xd_unsigned);
}

int berDecStrmUInt8(ASN1CTXT* pctxt, ASN1UINT8* object_p, int tagging, int length) {
  return decodeValue(pctxt, object_p, tagging, length, ASN_ID_INT, xd_uint8);
}

int berDecStrmUInt16(ASN1CTXT* pctxt, ASN1USINT* object_p, int tagging, int length) {
  return decodeValue(pctxt, object_p, tagging, length, ASN_ID_INT, xd_uint16);
}

int berDecStrmUInt64(ASN1CTXT* pctxt, ASN1UINT64* object_p, int tagging, int length) {
  return decodeValue(pctxt, object_p, tagging, length, ASN_ID_INT, xd_uint64);
}

int berDecStrmEnum(ASN1CTXT* pctxt, ASN1ENUM* object_p, int tagging, int length) {
  return decodeValue(pctxt, object_p, tagging, length, ASN_ID_ENUM, xd_enum);
}

QN_END_C
