/* OCTET STRING values from base64 text. */
#include <quillon/rtBase64.h>

#include "xerDecCommon.h"

using namespace qn::xerdec;

QN_BEGIN_C

int xerGetBase64StrDecodedLen(ASN1CTXT* pctxt) {
  const Text t = inputText(pctxt);
  return XERDEC_TRACE(pctxt, rtBase64DecodedLen(pctxt, t.begin, t.size()));
}

int xerDecBase64StrValue(ASN1CTXT* pctxt, ASN1OCTET* out, ASN1UINT* pnocts, int maxOctets) {
  const Text t = inputText(pctxt);
  const size_t room = maxOctets > 0 ? static_cast<size_t>(maxOctets) : 0;
  const int nocts = rtBase64Decode(pctxt, t.begin, t.size(), out, room);
  if (nocts < 0) return LOG_RTERR(pctxt, nocts);
  *pnocts = static_cast<ASN1UINT>(nocts);
  return 0;
}

int xerDecBase64Str(ASN1CTXT* pctxt, ASN1OCTET* pvalue, ASN1UINT* pnocts, ASN1INT bufsize) {
  return XERDEC_TRACE(pctxt, xerDecBase64StrValue(pctxt, pvalue, pnocts, bufsize));
}

int xerDecDynBase64Str(ASN1CTXT* pctxt, ASN1DynOctStr* pvalue) {
  const Text t = inputText(pctxt);
  const int nocts = rtBase64DecodeDyn(pctxt, t.begin, t.size(), pvalue);
  return nocts < 0 ? LOG_RTERR(pctxt, nocts) : 0;
}

QN_END_C
