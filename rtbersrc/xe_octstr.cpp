/* OCTET STRING. */
#include "xe_common.h"

int xe_octstr(ASN1CTXT* pctxt, const ASN1OCTET* object_p, ASN1UINT numocts, int tagging) {
  int len = object_p == nullptr ? 0 : xe_memcpy(pctxt, object_p, numocts);
  return xeFinishPrimitive(pctxt, len, tagging, ASN_ID_OCTSTR);
}
