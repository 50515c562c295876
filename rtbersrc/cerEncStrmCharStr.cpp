/* Character strings in the canonical form, written to a stream: long ones are segmented as
 * OCTET STRINGs, the segments of BMP and universal strings holding whole characters. */
#include <string.h>

#include "berStrmCommon.h"

using namespace qn::bstrm;

namespace {

template <typename Str, WideEncoder<Str> Encode>
int writeWideSegment(ASN1CTXT* pctxt, const void* value, ASN1UINT offset, ASN1UINT n, bool) {
  const Str* str = static_cast<const Str*>(value);
  const ASN1UINT charSize = (ASN1UINT)sizeof(*str->data);
  int header = writeHeader(pctxt, ASN1EXPL, ASN_ID_OCTSTR, (int)n);
  if (header < 0) return header;
  int contents = writeWideChars(pctxt, str, offset / charSize, n / charSize, Encode);
  if (contents < 0) return contents;
  return header + contents;
}

/* kCerSegment is a whole number of 2 and of 4-octet characters, so no character is split. */
template <typename Str, WideEncoder<Str> Encode>
int encodeWide(ASN1CTXT* pctxt, const Str* pvalue, int tagging, ASN1TagType tag,
               int (*encodeShort)(ASN1CTXT*, const Str*, int)) {
  const ASN1UINT charSize = (ASN1UINT)sizeof(*pvalue->data);
  if (!pvalue || !pvalue->data || pvalue->nchars <= kCerSegment / charSize)
    return encodeShort(pctxt, pvalue, tagging);
  if (pvalue->nchars > kMaxContents / charSize) return LOG_RTERR(pctxt, ASN_E_NOMEM);
  int len = writeSegmented(pctxt, tagging, tag, pvalue->nchars * charSize, kCerSegment,
                           writeWideSegment<Str, Encode>, pvalue);
  if (len < 0) return LOG_RTERR(pctxt, len);
  return len;
}

}  // namespace

QN_BEGIN_C

int cerEncStrmCharStr(ASN1CTXT* pctxt, const char* pvalue, int tagging, ASN1TagType tag) {
  const size_t n = pvalue ? strlen(pvalue) : 0;
  if (n <= kCerSegment) return berEncStrmCharStr(pctxt, pvalue, tagging, tag);
  if (n > kMaxContents) return LOG_RTERR(pctxt, ASN_E_NOMEM);
  int len = writeSegmented(pctxt, tagging, tag, (ASN1UINT)n, kCerSegment, writeOctetSegment,
                           pvalue);
  if (len < 0) return LOG_RTERR(pctxt, len);
  return len;
}

int cerEncStrmBMPStr(ASN1CTXT* pctxt, const Asn116BitCharString* pvalue, int tagging) {
  return encodeWide<Asn116BitCharString, xe_16BitCharStr>(pctxt, pvalue, tagging,
                                                          ASN_ID_BMPString, berEncStrmBMPStr);
}

int cerEncStrmUnivStr(ASN1CTXT* pctxt, const Asn132BitCharString* pvalue, int tagging) {
  return encodeWide<Asn132BitCharString, xe_32BitCharStr>(
      pctxt, pvalue, tagging, ASN_ID_UniversalString, berEncStrmUnivStr);
}

QN_END_C
