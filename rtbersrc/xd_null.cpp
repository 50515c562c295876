/* NULL. */
#include "xd_common.h"

using namespace qn::xd;

QN_BEGIN_C

int xd_null(ASN1CTXT* pctxt, int tagging, int length) {
  if (tagging) {
    int stat = matchPrimitiveHeader(pctxt, ASN_ID_NULL, &length);
    if (stat < 0) return LOG_RTERR(pctxt, stat);
  }
  if (length != 0) return LOG_RTERR(pctxt, ASN_E_INVLEN);
  return 0;
}

QN_END_C
