/* REAL written to a stream. */
#include "berStrmCommon.h"

using namespace qn::bstrm;

QN_BEGIN_C

int berEncStrmReal(ASN1CTXT* pctxt, ASN1REAL value, int tagging) {
  return encodePrimitive(pctxt, tagging, [&](int t) { return xe_real(pctxt, &value, t); });
}

QN_END_C
