/* Identifiers, lengths, end-of-contents octets and whole encodings written to a stream. */
#include "berStrmCommon.h"

using namespace qn::bstrm;

QN_BEGIN_C

int berEncStrmTag(ASN1CTXT* pctxt, ASN1TagType tag) {
  return encodeVia(pctxt, kLocalEncodeSize, [&]() { return xe_tag(pctxt, tag); });
}

int berEncStrmLength(ASN1CTXT* pctxt, int length) {
  /* The buffer encoder writes nothing for a negative length: for a stream that would leave a
   * header without a length, so it is refused. */
  if (length < 0 && length != ASN_K_INDEFLEN) return LOG_RTERR(pctxt, ASN_E_INVPARAM);
  return writeHeader(pctxt, ASN1IMPL, 0, length);
}

int berEncStrmTagAndLen(ASN1CTXT* pctxt, ASN1TagType tag, int length) {
  if (length < 0 && length != ASN_K_INDEFLEN) return LOG_RTERR(pctxt, ASN_E_INVPARAM);
  return writeHeader(pctxt, ASN1EXPL, tag, length);
}

int berEncStrmTagAndIndefLen(ASN1CTXT* pctxt, ASN1TagType tag) {
  return writeHeader(pctxt, ASN1EXPL, tag | TM_CONS, ASN_K_INDEFLEN);
}

int berEncStrmEOC(ASN1CTXT* pctxt) {
  return writeHeader(pctxt, ASN1EXPL, ASN_ID_EOC, 0);
}

int berEncStrmOpenType(ASN1CTXT* pctxt, const ASN1OCTET* pvalue, ASN1UINT numocts) {
  int stat = checkOutput(pctxt);
  if (stat < 0) return stat;
  if (numocts == 0) return 0;
  if (!pvalue) return LOG_RTERR(pctxt, ASN_E_BADVALUE);
  if (numocts > kMaxContents) return LOG_RTERR(pctxt, ASN_E_NOMEM);
  stat = writeOctets(pctxt, pvalue, numocts);
  if (stat < 0) return LOG_RTERR(pctxt, stat);
  return (int)numocts;
}

QN_END_C
