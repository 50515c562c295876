/* INTEGER of any size, from its text, written to a stream. */
#include <string.h>

#include "berStrmCommon.h"

using namespace qn::bstrm;

QN_BEGIN_C

int berEncStrmBigInt(ASN1CTXT* pctxt, const char* pvalue, int tagging) {
  if (!pvalue) return LOG_RTERR(pctxt, ASN_E_BADVALUE);
  /* No text form takes fewer than two characters an octet (hex), so this bounds the
   * encoding; the header and a sign octet fit in the margin. */
  const size_t textLen = strlen(pvalue);
  if (textLen > 2 * (size_t)kMaxContents) return LOG_RTERR(pctxt, ASN_E_NOMEM);
  const ASN1UINT room = (ASN1UINT)(textLen / 2) + 16;
  return encodePrimitive(
      pctxt, tagging, [&](int t) { return xe_bigint(pctxt, pvalue, t); }, room);
}

QN_END_C
