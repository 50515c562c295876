/* BIT STRING. */
#include "xe_common.h"

namespace {

/* The data octets as stored, behind the count of unused bits in the last one. */
int putBitStringContents(ASN1CTXT* pctxt, const ASN1OCTET* data, ASN1UINT numbits) {
  if (numbits == 0) return xePutOctet(pctxt, 0);
  ASN1UINT octets = numbits / 8 + (numbits % 8 != 0);
  int len = xe_memcpy(pctxt, data, octets);
  if (len < 0) return len;
  int stat = xePutOctet(pctxt, (ASN1OCTET)((8 - numbits % 8) % 8));
  if (stat < 0) return stat;
  return len + 1;
}

}  // namespace

int xe_bitstr(ASN1CTXT* pctxt, const ASN1OCTET* object_p, ASN1UINT numbits, int tagging) {
  /* Bits without data leave the component out altogether, tag included; callers rely on it
   * for absent optional strings. */
  if (numbits != 0 && object_p == nullptr) return 0;
  return xeFinishPrimitive(pctxt, putBitStringContents(pctxt, object_p, numbits), tagging,
                           ASN_ID_BITSTR);
}
