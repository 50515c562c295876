/* Signed INTEGER and ENUMERATED into targets of 8 to 64 bits. */
#include "xd_common.h"

using namespace qn::xd;

namespace {

/* Contents of at most width octets, sign-extended from the first; the value then fits the
 * target of that width, so callers narrow it without a range check. */
int decodeSigned(ASN1CTXT* pctxt, ASN1INT64* value_p, ASN1UINT width, ASN1OCTET identifier,
                 int tagging, int length) {
  if (tagging) {
    int stat = matchPrimitiveHeader(pctxt, identifier, &length);
    if (stat < 0) return LOG_RTERR(pctxt, stat);
  }
  if (length > 0 && (ASN1UINT)length > width) return LOG_RTERR(pctxt, ASN_E_TOOBIG);
  if (length <= 0) return LOG_RTERR(pctxt, ASN_E_INVLEN);
  int stat = checkContents(pctxt, length);
  if (stat < 0) return LOG_RTERR(pctxt, stat);

  const ASN1OCTET* p = pctxt->buffer.data + pctxt->buffer.byteIndex;
  ASN1UINT64 value = (ASN1UINT64)(ASN1INT64)(ASN1INT8)p[0];
  for (int i = 1; i < length; ++i) value = (value << 8) | p[i];
  pctxt->buffer.byteIndex += (ASN1UINT)length;
  *value_p = (ASN1INT64)value;
  return 0;
}

template <typename T>
int decodeSignedInto(ASN1CTXT* pctxt, T* object_p, ASN1OCTET identifier, int tagging,
                     int length) {
  ASN1INT64 value = 0;
  int stat = decodeSigned(pctxt, &value, sizeof(T), identifier, tagging, length);
  if (stat < 0) return stat;
  *object_p = (T)value;
  return 0;
}

constexpr ASN1OCTET kInteger = ASN_ID_INT;
constexpr ASN1OCTET kEnumerated = ASN_ID_ENUM;

}  // namespace

QN_BEGIN_C

int xd_integer(ASN1CTXT* pctxt, ASN1INT* object_p, int tagging, int length) {
  return decodeSignedInto(pctxt, object_p, kInteger, tagging, length);
}

int xd_int8(ASN1CTXT* pctxt, ASN1INT8* object_p, int tagging, int length) {
  return decodeSignedInto(pctxt, object_p, kInteger, tagging, length);
}

int xd_int16(ASN1CTXT* pctxt, ASN1SINT* object_p, int tagging, int length) {
  return decodeSignedInto(pctxt, object_p, kInteger, tagging, length);
}

int xd_int64(ASN1CTXT* pctxt, ASN1INT64* object_p, int tagging, int length) {
  return decodeSignedInto(pctxt, object_p, kInteger, tagging, length);
}

int xd_enum(ASN1CTXT* pctxt, ASN1ENUM* object_p, int tagging, int length) {
  return decodeSignedInto(pctxt, object_p, kEnumerated, tagging, length);
}

QN_END_C
