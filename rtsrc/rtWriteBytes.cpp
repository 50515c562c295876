/* The context's forward byte writer: the XML encoder appends every piece of its text here. */
#include <string.h>

#include <quillon/rtContext.h>
#include <quillon/rtMemHeap.h>
#include <quillon/rtStream.h>

#include "rtErrLog.h"

namespace {

/* Lengths travel as int, so a buffer stays below 2 GiB. */
constexpr ASN1UINT kMaxBufferSize = 0x7FFFFFFFu;

/* The first buffer of a context that was given none. */
constexpr ASN1UINT kFirstSize = 4096;

/* Doubling keeps a document written in many small pieces at a constant cost per byte. */
ASN1UINT grownSize(ASN1UINT size, ASN1UINT needed) {
  ASN1UINT64 target = size ? (ASN1UINT64)size * 2 : kFirstSize;
  if (target < needed) target = needed;
  if (target > kMaxBufferSize) target = kMaxBufferSize;
  return (ASN1UINT)target;
}

/* A context without any buffer has nothing of the caller's to protect, so it is treated as
 * dynamic; only a caller's own buffer overflows. */
int growBuffer(ASN1CTXT* pctxt, size_t nocts) {
  ASN1BUFFER& b = pctxt->buffer;
  if (!b.dynamic && b.data) return LOG_RTERR(pctxt, ASN_E_BUFOVFLW);
  if (b.byteIndex > b.size) return LOG_RTERR(pctxt, ASN_E_INVPARAM);
  if (nocts > kMaxBufferSize - b.byteIndex) return LOG_RTERR(pctxt, ASN_E_NOMEM);
  const ASN1UINT size = grownSize(b.size, b.byteIndex + (ASN1UINT)nocts);
  void* grown = rtMemHeapRealloc(&pctxt->msgMemHeap, b.data, size);
  if (!grown) return LOG_RTERR(pctxt, ASN_E_NOMEM);
  b.data = static_cast<ASN1OCTET*>(grown);
  b.size = size;
  b.dynamic = 1;
  return 0;
}

}  // namespace

QN_BEGIN_C

int rtWriteBytes(ASN1CTXT* pctxt, const ASN1OCTET* data, size_t nocts) {
  if (!pctxt) return ASN_E_INVPARAM;
  if (pctxt->pStream) return rtStreamBufWrite(pctxt, data, nocts);
  if (nocts == 0) return 0;
  if (!data) return LOG_RTERR(pctxt, ASN_E_INVPARAM);
  ASN1BUFFER& b = pctxt->buffer;
  if (b.byteIndex > b.size || nocts > b.size - b.byteIndex) {
    int stat = growBuffer(pctxt, nocts);
    if (stat < 0) return stat;
  }
  if (nocts == 1)
    b.data[b.byteIndex] = *data;
  else
    memcpy(b.data + b.byteIndex, data, nocts);
  b.byteIndex += (ASN1UINT)nocts;
  return 0;
}

QN_END_C
