/* REAL read from a stream. */
#include "berStrmCommon.h"

using namespace qn::bstrm;

QN_BEGIN_C

int berDecStrmReal(ASN1CTXT* pctxt, ASN1REAL* object_p, int tagging, int length) {
  return decodeValue(pctxt, object_p, tagging, length, ASN_ID_REAL, xd_real);
}

QN_END_C
