/* What every stream encoder shares: the stream check, the reverse buffer that lets the buffer
 * encoders serve a forward stream, headers, and the segment loop of the CER strings. */
#include <quillon/rtStream.h>

#include "berStrmCommon.h"

namespace {

const ASN1OCTET kEndOfContents[2] = {0, 0};

}  // namespace

namespace qn::bstrm {

int checkOutput(ASN1CTXT* pctxt) {
  const OSRTSTREAM* s = pctxt->pStream;
  if (!s) return LOG_RTERR(pctxt, ASN_E_NOTINIT);
  if (!(s->flags & OSRTSTRMF_OUTPUT)) return LOG_RTERR(pctxt, ASN_E_INVPARAM);
  return 0;
}

int writeOctets(ASN1CTXT* pctxt, const ASN1OCTET* data, ASN1UINT n) {
  if (n == 0) return 0;
  return rtStreamBufWrite(pctxt, data, n);
}

ReverseBuffer::ReverseBuffer(ASN1CTXT* pctxt, ASN1UINT room)
    : pctxt_(pctxt), saved_(pctxt->buffer) {
  ASN1BUFFER& b = pctxt->buffer;
  if (room <= kLocalEncodeSize) {
    b.data = local_;
    b.size = kLocalEncodeSize;
    b.dynamic = 0;
  } else {
    /* Growable, so that a failed allocation shows as the encoder's own -12 when it writes. */
    b.data = static_cast<ASN1OCTET*>(rtMemHeapAlloc(&pctxt->msgMemHeap, room));
    b.size = b.data ? room : 0;
    b.dynamic = 1;
  }
  b.byteIndex = b.size;
}

int ReverseBuffer::finish(int len) {
  ASN1BUFFER& b = pctxt_->buffer;
  const ASN1OCTET* output = b.data + b.byteIndex;
  ASN1OCTET* heapData = b.dynamic ? b.data : nullptr;
  b = saved_;
  int stat = len < 0 ? len : writeOctets(pctxt_, output, (ASN1UINT)len);
  if (heapData) rtMemHeapFreePtr(&pctxt_->msgMemHeap, heapData);
  if (stat < 0) return stat;
  return len;
}

int writeHeader(ASN1CTXT* pctxt, int tagging, ASN1TagType tag, int length) {
  return encodeVia(pctxt, kLocalEncodeSize, [&]() {
    int n = xe_len(pctxt, length);
    if (n < 0 || !tagging) return n;
    int t = xe_tag(pctxt, tag);
    return t < 0 ? t : n + t;
  });
}

int writeOctetSegment(ASN1CTXT* pctxt, const void* value, ASN1UINT offset, ASN1UINT n, bool) {
  int header = writeHeader(pctxt, ASN1EXPL, ASN_ID_OCTSTR, (int)n);
  if (header < 0) return header;
  int stat = writeOctets(pctxt, static_cast<const ASN1OCTET*>(value) + offset, n);
  if (stat < 0) return stat;
  return header + (int)n;
}

int writeSegmented(ASN1CTXT* pctxt, int tagging, ASN1TagType consTag, ASN1UINT total,
                   ASN1UINT step, SegmentWriter writer, const void* value) {
  int count = writeHeader(pctxt, tagging, consTag | TM_CONS, ASN_K_INDEFLEN);
  if (count < 0) return count;
  for (ASN1UINT offset = 0; offset < total; offset += step) {
    const ASN1UINT n = total - offset < step ? total - offset : step;
    int stat = writer(pctxt, value, offset, n, offset + n == total);
    if (stat < 0) return stat;
    count += stat;
  }
  int stat = writeOctets(pctxt, kEndOfContents, sizeof kEndOfContents);
  if (stat < 0) return stat;
  return count + (int)sizeof kEndOfContents;
}

}  // namespace qn::bstrm
