/* INTEGER of any size, as text, read from a stream. */
#include "berStrmCommon.h"

using namespace qn::bstrm;

QN_BEGIN_C

int berDecStrmBigInt(ASN1CTXT* pctxt, const char** object_p, int tagging, int length) {
  return decodeValue(pctxt, object_p, tagging, length, ASN_ID_INT, xd_bigint);
}

QN_END_C
