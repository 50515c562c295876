/* NULL read from a stream. */
#include "berStrmCommon.h"

using namespace qn::bstrm;

QN_BEGIN_C

int berDecStrmNull(ASN1CTXT* pctxt, int tagging, int length) {
  return traced(pctxt, decodeElement(pctxt, tagging, length, ASN_ID_NULL,
                                     [&]() { return xd_null(pctxt, tagging, length); }));
}

QN_END_C
