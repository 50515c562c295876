/* OCTET STRING written to a stream. */
#include "berStrmCommon.h"

using namespace qn::bstrm;

namespace {

/* Header and octets in one write when they fit the local buffer; otherwise the octets go to
 * the stream from the value, never copied. */
int encodeOctets(ASN1CTXT* pctxt, const ASN1OCTET* pvalue, ASN1UINT numocts, int tagging) {
  if (numocts > kMaxContents) return LOG_RTERR(pctxt, ASN_E_NOMEM);
  if (!pvalue || numocts < kLocalEncodeSize - 16) {
    return encodePrimitive(pctxt, tagging,
                           [&](int t) { return xe_octstr(pctxt, pvalue, numocts, t); });
  }
  int header = writeHeader(pctxt, tagging, ASN_ID_OCTSTR, (int)numocts);
  if (header < 0) return header;
  int stat = writeOctets(pctxt, pvalue, numocts);
  if (stat < 0) return stat;
  return header + (int)numocts;
}

}  // namespace

QN_BEGIN_C

int berEncStrmOctStr(ASN1CTXT* pctxt, const ASN1OCTET* pvalue, ASN1UINT numocts, int tagging) {
  int len = encodeOctets(pctxt, pvalue, numocts, tagging);
  if (len < 0) return LOG_RTERR(pctxt, len);
  return len;
}

QN_END_C
