/* Signed INTEGER and ENUMERATED values of every width. */
#include "xe_common.h"

int xe_integer(ASN1CTXT* pctxt, const ASN1INT* object_p, int tagging) {
  if (object_p == nullptr) return LOG_RTERR(pctxt, ASN_E_BADVALUE);
  return xeEncodeInteger(pctxt, *object_p, tagging, ASN_ID_INT);
}

int xe_int8(ASN1CTXT* pctxt, const ASN1INT8* object_p, int tagging) {
  if (object_p == nullptr) return LOG_RTERR(pctxt, ASN_E_BADVALUE);
  return xeEncodeInteger(pctxt, (ASN1INT)*object_p, tagging, ASN_ID_INT);
}

int xe_int16(ASN1CTXT* pctxt, const ASN1SINT* object_p, int tagging) {
  if (object_p == nullptr) return LOG_RTERR(pctxt, ASN_E_BADVALUE);
  return xeEncodeInteger(pctxt, (ASN1INT)*object_p, tagging, ASN_ID_INT);
}

int xe_int64(ASN1CTXT* pctxt, const ASN1INT64* object_p, int tagging) {
  if (object_p == nullptr) return LOG_RTERR(pctxt, ASN_E_BADVALUE);
  return xeEncodeInteger(pctxt, *object_p, tagging, ASN_ID_INT);
}

int xe_enum(ASN1CTXT* pctxt, const ASN1ENUM* object_p, int tagging) {
  if (object_p == nullptr) return LOG_RTERR(pctxt, ASN_E_BADVALUE);
  return xeEncodeInteger(pctxt, *object_p, tagging, ASN_ID_ENUM);
}
