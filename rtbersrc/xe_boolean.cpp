/* BOOLEAN. */
#include "xe_common.h"

int xe_boolean(ASN1CTXT* pctxt, const ASN1BOOL* object_p, int tagging) {
  if (object_p == nullptr) return LOG_RTERR(pctxt, ASN_E_BADVALUE);
  /* DER admits only 0xFF for TRUE, whatever non-zero value the caller holds. */
  return xeFinishPrimitive(pctxt, xePutOctet(pctxt, *object_p ? 0xFF : 0x00), tagging,
                           ASN_ID_BOOL);
}
