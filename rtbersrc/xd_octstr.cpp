/* OCTET STRING into heap memory (or in place) and into a caller's array. */
#include "xd_common.h"

using namespace qn::xd;

QN_BEGIN_C

int xd_octstr(ASN1CTXT* pctxt, const ASN1OCTET** object_p2, ASN1UINT* numocts_p, int tagging,
              int length) {
  if (tagging) {
    int stat = xd_match1(pctxt, ASN_ID_OCTSTR, &length);
    if (stat < 0) return LOG_RTERR(pctxt, stat);
  }
  const bool borrow = (pctxt->flags & ASN1FASTCOPY) != 0;
  bool copied;
  int stat = stringContents(pctxt, length, borrow, 0, object_p2, numocts_p, &copied);
  if (stat < 0) return LOG_RTERR(pctxt, stat);
  return 0;
}

int xd_octstr_s(ASN1CTXT* pctxt, ASN1OCTET* object_p, ASN1UINT* numocts_p, int tagging,
                int length) {
  if (tagging) {
    int stat = xd_match1(pctxt, ASN_ID_OCTSTR, &length);
    if (stat < 0) return LOG_RTERR(pctxt, stat);
  }
  SegmentCopy state = {object_p, *numocts_p, 0};
  if (constructedString(pctxt, length)) {
    int stat = walkSegments(pctxt, ASN_ID_OCTSTR, length, copySegment, &state);
    if (stat < 0) return LOG_RTERR(pctxt, stat);
  } else {
    int stat = checkContents(pctxt, length);
    if (stat < 0) return LOG_RTERR(pctxt, stat);
    stat = copySegment(&state, pctxt->buffer.data + pctxt->buffer.byteIndex, (ASN1UINT)length);
    if (stat < 0) return LOG_RTERR(pctxt, stat);
    pctxt->buffer.byteIndex += (ASN1UINT)length;
  }
  *numocts_p = state.used;
  return 0;
}

QN_END_C
