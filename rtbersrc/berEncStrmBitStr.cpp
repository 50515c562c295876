/* BIT STRING written to a stream. */
#include "berStrmCommon.h"

using namespace qn::bstrm;

namespace {

ASN1UINT dataOctets(ASN1UINT numbits) { return numbits / 8 + (numbits % 8 != 0); }

/* A long string: header and unused-bits octet, then the octets from the value, never copied. */
int encodeLongBits(ASN1CTXT* pctxt, const ASN1OCTET* pvalue, ASN1UINT numbits, int tagging) {
  const ASN1UINT octets = dataOctets(numbits);
  int header = writeHeader(pctxt, tagging, ASN_ID_BITSTR, (int)octets + 1);
  if (header < 0) return header;
  const ASN1OCTET unused = unusedBits(numbits);
  int stat = writeOctets(pctxt, &unused, 1);
  if (stat < 0) return stat;
  stat = writeOctets(pctxt, pvalue, octets);
  if (stat < 0) return stat;
  return header + 1 + (int)octets;
}

int encodeBits(ASN1CTXT* pctxt, const ASN1OCTET* pvalue, ASN1UINT numbits, int tagging) {
  if (dataOctets(numbits) < kLocalEncodeSize - 16) {
    return encodePrimitive(pctxt, tagging,
                           [&](int t) { return xe_bitstr(pctxt, pvalue, numbits, t); });
  }
  if (dataOctets(numbits) > kMaxContents) return LOG_RTERR(pctxt, ASN_E_NOMEM);
  return encodeLongBits(pctxt, pvalue, numbits, tagging);
}

}  // namespace

QN_BEGIN_C

int berEncStrmBitStr(ASN1CTXT* pctxt, const ASN1OCTET* pvalue, ASN1UINT numbits, int tagging) {
  /* As in the buffer encoder: bits without data leave the component out, header and all. */
  if (numbits != 0 && !pvalue) return 0;
  int len = encodeBits(pctxt, pvalue, numbits, tagging);
  if (len < 0) return LOG_RTERR(pctxt, len);
  return len;
}

QN_END_C
