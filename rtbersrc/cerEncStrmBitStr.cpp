/* BIT STRING in the canonical form, written to a stream. */
#include "berStrmCommon.h"

using namespace qn::bstrm;

namespace {

struct Bits {
  const ASN1OCTET* data;
  ASN1UINT numbits;
};

/* Every segment brings its own unused-bits octet, so it carries one data octet less; only the
 * last may leave bits unused. */
constexpr ASN1UINT kDataPerSegment = kCerSegment - 1;

int writeBitSegment(ASN1CTXT* pctxt, const void* value, ASN1UINT offset, ASN1UINT n,
                    bool last) {
  const Bits* bits = static_cast<const Bits*>(value);
  int header = writeHeader(pctxt, ASN1EXPL, ASN_ID_BITSTR, (int)n + 1);
  if (header < 0) return header;
  const ASN1OCTET unused = last ? unusedBits(bits->numbits) : 0;
  int stat = writeOctets(pctxt, &unused, 1);
  if (stat < 0) return stat;
  stat = writeOctets(pctxt, bits->data + offset, n);
  if (stat < 0) return stat;
  return header + 1 + (int)n;
}

}  // namespace

QN_BEGIN_C

int cerEncStrmBitStr(ASN1CTXT* pctxt, const ASN1OCTET* pvalue, ASN1UINT numbits, int tagging) {
  const ASN1UINT octets = numbits / 8 + (numbits % 8 != 0);
  if (octets < kCerSegment || !pvalue) return berEncStrmBitStr(pctxt, pvalue, numbits, tagging);
  if (octets > kMaxContents) return LOG_RTERR(pctxt, ASN_E_NOMEM);
  const Bits bits = {pvalue, numbits};
  int len = writeSegmented(pctxt, tagging, ASN_ID_BITSTR, octets, kDataPerSegment,
                           writeBitSegment, &bits);
  if (len < 0) return LOG_RTERR(pctxt, len);
  return len;
}

QN_END_C
