/* OCTET STRING read from a stream, into heap memory or a caller's array. */
#include "berStrmCommon.h"

using namespace qn::bstrm;

QN_BEGIN_C

int berDecStrmOctStr(ASN1CTXT* pctxt, ASN1OCTET* object_p, ASN1UINT* numocts_p, int tagging,
                     int length) {
  auto decode = [&](int t, int len) { return xd_octstr_s(pctxt, object_p, numocts_p, t, len); };
  return traced(pctxt, decodeElement(pctxt, tagging, length, ASN_ID_OCTSTR, decode));
}

int berDecStrmDynOctStr(ASN1CTXT* pctxt, const ASN1OCTET** object_p2, ASN1UINT* numocts_p,
                        int tagging, int length) {
  auto decode = [&](int t, int len) { return xd_octstr(pctxt, object_p2, numocts_p, t, len); };
  return traced(pctxt, decodeBorrowing(pctxt, tagging, length, ASN_ID_OCTSTR, true, object_p2,
                                       decode));
}

QN_END_C
