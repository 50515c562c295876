/* Character strings read from a stream: 8-bit texts, BMP and universal strings. */
#include "berStrmCommon.h"

using namespace qn::bstrm;

QN_BEGIN_C

int berDecStrmCharStr(ASN1CTXT* pctxt, const char** object_p, int tagging, ASN1TagType tag,
                      int length) {
  return traced(pctxt, decodeElement(pctxt, tagging, length, tag, [&]() {
                  return xd_charstr(pctxt, object_p, tagging, tag, length);
                }));
}

int berDecStrmBMPStr(ASN1CTXT* pctxt, Asn116BitCharString* object_p, int tagging, int length) {
  return traced(pctxt, decodeElement(pctxt, tagging, length, ASN_ID_BMPString, [&]() {
                  return xd_16BitCharStr(pctxt, object_p, tagging, ASN_ID_BMPString, length);
                }));
}

int berDecStrmUnivStr(ASN1CTXT* pctxt, Asn132BitCharString* object_p, int tagging,
                      int length) {
  return traced(pctxt, decodeElement(pctxt, tagging, length, ASN_ID_UniversalString, [&]() {
                  return xd_32BitCharStr(pctxt, object_p, tagging, ASN_ID_UniversalString,
                                         length);
                }));
}

QN_END_C
