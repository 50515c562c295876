/* Character strings written to a stream: 8-bit texts, BMP and universal strings. */
#include <string.h>

#include "berStrmCommon.h"

using namespace qn::bstrm;

namespace {

/* Room the header takes beside contents in the local buffer. */
constexpr ASN1UINT kHeaderRoom = 16;

int encodeText(ASN1CTXT* pctxt, const char* pvalue, int tagging, ASN1TagType tag) {
  const size_t n = strlen(pvalue);
  if (n < kLocalEncodeSize - kHeaderRoom) {
    return encodePrimitive(pctxt, tagging,
                           [&](int t) { return xe_charstr(pctxt, pvalue, t, tag); });
  }
  if (n > kMaxContents) return LOG_RTERR(pctxt, ASN_E_NOMEM);
  int header = writeHeader(pctxt, tagging, tag, (int)n);
  if (header < 0) return header;
  int stat = writeOctets(pctxt, reinterpret_cast<const ASN1OCTET*>(pvalue), (ASN1UINT)n);
  if (stat < 0) return stat;
  return header + (int)n;
}

template <typename Str>
int encodeWide(ASN1CTXT* pctxt, const Str* pvalue, int tagging, ASN1TagType tag,
               WideEncoder<Str> encode) {
  if (!pvalue) return LOG_RTERR(pctxt, ASN_E_BADVALUE);
  const ASN1UINT charSize = (ASN1UINT)sizeof(*pvalue->data);
  if (pvalue->nchars > kMaxContents / charSize) return LOG_RTERR(pctxt, ASN_E_NOMEM);
  const ASN1UINT numocts = pvalue->nchars * charSize;
  if (numocts < kLocalEncodeSize - kHeaderRoom || !pvalue->data) {
    return encodePrimitive(pctxt, tagging,
                           [&](int t) { return encode(pctxt, pvalue, t, tag); });
  }
  int header = writeHeader(pctxt, tagging, tag, (int)numocts);
  if (header < 0) return header;
  int contents = writeWideChars(pctxt, pvalue, 0, pvalue->nchars, encode);
  if (contents < 0) return contents;
  return header + contents;
}

int finish(ASN1CTXT* pctxt, int len) { return len < 0 ? LOG_RTERR(pctxt, len) : len; }

}  // namespace

QN_BEGIN_C

int berEncStrmCharStr(ASN1CTXT* pctxt, const char* pvalue, int tagging, ASN1TagType tag) {
  if (!pvalue) return LOG_RTERR(pctxt, ASN_E_BADVALUE);
  return finish(pctxt, encodeText(pctxt, pvalue, tagging, tag));
}

int berEncStrmBMPStr(ASN1CTXT* pctxt, const Asn116BitCharString* pvalue, int tagging) {
  return finish(pctxt, encodeWide(pctxt, pvalue, tagging, ASN_ID_BMPString, xe_16BitCharStr));
}

int berEncStrmUnivStr(ASN1CTXT* pctxt, const Asn132BitCharString* pvalue, int tagging) {
  return finish(pctxt,
                encodeWide(pctxt, pvalue, tagging, ASN_ID_UniversalString, xe_32BitCharStr));
}

QN_END_C
