/* INTEGER into unsigned targets of 8 to 64 bits. */
#include "xd_common.h"

using namespace qn::xd;

namespace {

/* Width octets, or one more when the first is the 0x00 that keeps a high top bit positive.
 * There is deliberately no sign check and empty contents read as 0: values written by older
 * peers that way are accepted as their bit patterns. */
int decodeUnsigned(ASN1CTXT* pctxt, ASN1UINT64* value_p, ASN1UINT width, int tagging,
                   int length) {
  if (tagging) {
    int stat = matchPrimitiveHeader(pctxt, ASN_ID_INT, &length);
    if (stat < 0) return LOG_RTERR(pctxt, stat);
  }
  if (length > 0 && (ASN1UINT)length > width + 1) return LOG_RTERR(pctxt, ASN_E_TOOBIG);
  int stat = checkContents(pctxt, length);
  if (stat < 0) return LOG_RTERR(pctxt, stat);

  const ASN1OCTET* p = pctxt->buffer.data + pctxt->buffer.byteIndex;
  if ((ASN1UINT)length == width + 1 && p[0] != 0) return LOG_RTERR(pctxt, ASN_E_TOOBIG);
  ASN1UINT64 value = 0;
  for (int i = 0; i < length; ++i) value = (value << 8) | p[i];
  pctxt->buffer.byteIndex += (ASN1UINT)length;
  *value_p = value;
  return 0;
}

template <typename T>
int decodeUnsignedInto(ASN1CTXT* pctxt, T* object_p, int tagging, int length) {
  ASN1UINT64 value = 0;
  int stat = decodeUnsigned(pctxt, &value, sizeof(T), tagging, length);
  if (stat < 0) return stat;
  *object_p = (T)value;
  return 0;
}

}  // namespace

QN_BEGIN_C

int xd_unsigned(ASN1CTXT* pctxt, ASN1UINT* object_p, int tagging, int length) {
  return decodeUnsignedInto(pctxt, object_p, tagging, length);
}

int xd_uint8(ASN1CTXT* pctxt, ASN1UINT8* object_p, int tagging, int length) {
  return decodeUnsignedInto(pctxt, object_p, tagging, length);
}

int xd_uint16(ASN1CTXT* pctxt, ASN1USINT* object_p, int tagging, int length) {
  return decodeUnsignedInto(pctxt, object_p, tagging, length);
}

int xd_uint64(ASN1CTXT* pctxt, ASN1UINT64* object_p, int tagging, int length) {
  return decodeUnsignedInto(pctxt, object_p, tagging, length);
}

QN_END_C
