/* BOOLEAN read from a stream. */
#include "berStrmCommon.h"

using namespace qn::bstrm;

QN_BEGIN_C

int berDecStrmBool(ASN1CTXT* pctxt, ASN1BOOL* object_p, int tagging, int length) {
  return decodeValue(pctxt, object_p, tagging, length, ASN_ID_BOOL, xd_boolean);
}

QN_END_C
