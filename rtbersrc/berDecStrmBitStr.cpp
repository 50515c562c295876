/* BIT STRING read from a stream, into heap memory or a caller's array. */
#include "berStrmCommon.h"

using namespace qn::bstrm;

QN_BEGIN_C

int berDecStrmBitStr(ASN1CTXT* pctxt, ASN1OCTET* object_p, ASN1UINT* numbits_p, int tagging,
                     int length) {
  auto decode = [&](int t, int len) { return xd_bitstr_s(pctxt, object_p, numbits_p, t, len); };
  return traced(pctxt, decodeElement(pctxt, tagging, length, ASN_ID_BITSTR, decode));
}

int berDecStrmDynBitStr(ASN1CTXT* pctxt, const ASN1OCTET** object_p2, ASN1UINT* numbits_p,
                        int tagging, int length) {
  /* The bits start behind the unused-bits octet, inside the heap copy: only a caller who asked
   * for fast copy (and so frees no value on its own) gets them there. */
  const bool borrow = (pctxt->flags & ASN1FASTCOPY) != 0;
  auto decode = [&](int t, int len) { return xd_bitstr(pctxt, object_p2, numbits_p, t, len); };
  return traced(pctxt, decodeBorrowing(pctxt, tagging, length, ASN_ID_BITSTR, borrow,
                                       object_p2, decode));
}

QN_END_C
