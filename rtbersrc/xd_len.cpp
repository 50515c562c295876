/* Length octets on their own. */
#include "xd_common.h"

using namespace qn::xd;

QN_BEGIN_C

int xd_len(ASN1CTXT* pctxt, int* len_p) {
  ASN1UINT idx = pctxt->buffer.byteIndex;
  int stat = readLength(pctxt->buffer.data, pctxt->buffer.size, &idx, len_p);
  if (stat < 0) return LOG_RTERR(pctxt, stat);
  pctxt->buffer.byteIndex = idx;
  return 0;
}

QN_END_C
