/* INTEGER values held in unsigned variables of every width. */
#include "xe_common.h"

int xe_unsigned(ASN1CTXT* pctxt, const ASN1UINT* object_p, int tagging) {
  if (object_p == nullptr) return LOG_RTERR(pctxt, ASN_E_BADVALUE);
  return xeEncodeInteger(pctxt, *object_p, tagging, ASN_ID_INT);
}

int xe_uint8(ASN1CTXT* pctxt, const ASN1UINT8* object_p, int tagging) {
  if (object_p == nullptr) return LOG_RTERR(pctxt, ASN_E_BADVALUE);
  return xeEncodeInteger(pctxt, (ASN1UINT)*object_p, tagging, ASN_ID_INT);
}

int xe_uint16(ASN1CTXT* pctxt, const ASN1USINT* object_p, int tagging) {
  if (object_p == nullptr) return LOG_RTERR(pctxt, ASN_E_BADVALUE);
  return xeEncodeInteger(pctxt, (ASN1UINT)*object_p, tagging, ASN_ID_INT);
}

int xe_uint64(ASN1CTXT* pctxt, const ASN1UINT64* object_p, int tagging) {
  if (object_p == nullptr) return LOG_RTERR(pctxt, ASN_E_BADVALUE);
  return xeEncodeInteger(pctxt, *object_p, tagging, ASN_ID_INT);
}
