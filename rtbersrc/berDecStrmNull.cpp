/* NULL read from a stream. */
#include "berStrmCommon.h"

using namespace qn::bstrm;

QN_BEGIN_C

int berDecStrmNull(ASN1CTXT* pctxt, int tagging, int length) {
  auto decode = [&](int t, int len) { return xd_null(pctxt, t, len); };
  return traced(pctxt, decodeElement(pctxt, tagging, length, ASN_ID_NULL, decode));
}

QN_END_C
