/* OCTET STRING in the canonical form, written to a stream. */
#include "berStrmCommon.h"

using namespace qn::bstrm;

QN_BEGIN_C

int cerEncStrmOctStr(ASN1CTXT* pctxt, const ASN1OCTET* pvalue, ASN1UINT numocts, int tagging) {
  if (numocts <= kCerSegment || !pvalue) return berEncStrmOctStr(pctxt, pvalue, numocts, tagging);
  if (numocts > kMaxContents) return LOG_RTERR(pctxt, ASN_E_NOMEM);
  int len = writeSegmented(pctxt, tagging, ASN_ID_OCTSTR, numocts, kCerSegment,
                           writeOctetSegment, pvalue);
  if (len < 0) return LOG_RTERR(pctxt, len);
  return len;
}

QN_END_C
