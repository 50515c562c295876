/* Character strings read from a stream: 8-bit texts, BMP and universal strings. */
#include "berStrmCommon.h"

using namespace qn::bstrm;

QN_BEGIN_C

int berDecStrmCharStr(ASN1CTXT* pctxt, const char** object_p, int tagging, ASN1TagType tag,
                      int length) {
  auto decode = [&](int t, int len) { return xd_charstr(pctxt, object_p, t, tag, len); };
  return traced(pctxt, decodeElement(pctxt, tagging, length, tag, decode));
}

int berDecStrmBMPStr(ASN1CTXT* pctxt, Asn116BitCharString* object_p, int tagging, int length) {
  const ASN1TagType tag = ASN_ID_BMPString;
  auto decode = [&](int t, int len) { return xd_16BitCharStr(pctxt, object_p, t, tag, len); };
  return traced(pctxt, decodeElement(pctxt, tagging, length, tag, decode));
}

int berDecStrmUnivStr(ASN1CTXT* pctxt, Asn132BitCharString* object_p, int tagging,
                      int length) {
  const ASN1TagType tag = ASN_ID_UniversalString;
  auto decode = [&](int t, int len) { return xd_32BitCharStr(pctxt, object_p, t, tag, len); };
  return traced(pctxt, decodeElement(pctxt, tagging, length, tag, decode));
}

QN_END_C
