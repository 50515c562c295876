/* NULL written to a stream. */
#include "berStrmCommon.h"

using namespace qn::bstrm;

QN_BEGIN_C

int berEncStrmNull(ASN1CTXT* pctxt, int tagging) {
  return encodePrimitive(pctxt, tagging, [&](int t) { return xe_null(pctxt, t); });
}

QN_END_C
