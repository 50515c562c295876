/* NULL. */
#include "xe_common.h"

int xe_null(ASN1CTXT* pctxt, int tagging) {
  return xeFinishPrimitive(pctxt, 0, tagging, ASN_ID_NULL);
}
