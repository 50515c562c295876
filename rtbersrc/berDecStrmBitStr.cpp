/* BIT STRING read from a stream, into heap memory or a caller's array. */
#include "berStrmCommon.h"

using namespace qn::bstrm;

QN_BEGIN_C

int berDecStrmBitStr(ASN1CTXT* pctxt, ASN1OCTET* object_p, ASN1UINT* numbits_p, int tagging,
                     int length) {
  return traced(pctxt, decodeElement(pctxt, tagging, length, ASN_ID_BITSTR, [&]() {
                  return xd_bitstr_s(pctxt, object_p, numbits_p, tagging, length);
                }));
}

int berDecStrmDynBitStr(ASN1CTXT* pctxt, const ASN1OCTET** object_p2, ASN1UINT* numbits_p,
                        int tagging, int length) {
  return traced(pctxt,
                decodeBorrowing(pctxt, tagging, length, ASN_ID_BITSTR, object_p2, [&]() {
                  return xd_bitstr(pctxt, object_p2, numbits_p, tagging, length);
                }));
}

QN_END_C
