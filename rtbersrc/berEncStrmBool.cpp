/* BOOLEAN written to a stream. */
#include "berStrmCommon.h"

using namespace qn::bstrm;

QN_BEGIN_C

int berEncStrmBool(ASN1CTXT* pctxt, ASN1BOOL value, int tagging) {
  return encodePrimitive(pctxt, tagging, [&](int t) { return xe_boolean(pctxt, &value, t); });
}

QN_END_C
