/* The encoder's reverse buffer: attaching, growing at the front, copying octets in. */
#include <string.h>

#include <quillon/rtContext.h>
#include <quillon/rtMemHeap.h>

#include "xe_common.h"

namespace {

const ASN1UINT kMinGrowth = 16384;

/* Every length an encoder returns is an int, so the buffer stays below 2 GiB. */
const ASN1UINT kMaxBufferSize = 0x7FFFFFFFu;

/* Growth adds what is needed, but never less than one step, so that a run of small writes
 * does not move the encoding every time. */
ASN1UINT growthFor(ASN1UINT needed) {
  return needed > kMinGrowth ? needed : kMinGrowth;
}

}  // namespace

int xe_setp(ASN1CTXT* pctxt, ASN1OCTET* buf_p, int bufsiz) {
  int stat = rtInitContextBuffer(pctxt, buf_p, bufsiz);
  ASN1BUFFER& b = pctxt->buffer;
  if (stat < 0 || b.data == nullptr) {
    /* No buffer: the first write reports it. Only a dynamic buffer that memory refused is
     * retried then, by growth from nothing. */
    b.data = nullptr;
    b.size = 0;
    b.dynamic = (buf_p == nullptr && stat == ASN_E_NOMEM) ? 1 : 0;
  }
  /* The last octet stays unused; an encoding thus always ends before data + size - 1. */
  b.byteIndex = b.size > 0 ? b.size - 1 : 0;
  return 0;
}

ASN1OCTET* xe_getp(ASN1CTXT* pctxt) {
  return pctxt->buffer.data + pctxt->buffer.byteIndex;
}

void xe_free(ASN1CTXT* pctxt) {
  ASN1BUFFER& b = pctxt->buffer;
  if (!b.dynamic || b.data == nullptr) return;
  rtMemHeapFreePtr(&pctxt->msgMemHeap, b.data);
  b.data = nullptr;
  b.dynamic = 0;
  /* A later write must find no room rather than a stale size over a freed block. */
  b.size = 0;
  b.byteIndex = 0;
}

int xe_expandBuffer(ASN1CTXT* pctxt, ASN1UINT length) {
  ASN1BUFFER& b = pctxt->buffer;
  if (!b.dynamic) return LOG_RTERR(pctxt, ASN_E_BUFOVFLW);
  ASN1UINT extra = growthFor(length);
  if (extra > kMaxBufferSize - b.size) return LOG_RTERR(pctxt, ASN_E_NOMEM);
  ASN1UINT newSize = b.size + extra;
  /* The buffer belongs to the message heap, which attached it and releases it with the
   * context. */
  ASN1OCTET* grown = (ASN1OCTET*)rtMemHeapAlloc(&pctxt->msgMemHeap, newSize);
  if (grown == nullptr) return LOG_RTERR(pctxt, ASN_E_NOMEM);
  if (b.data != nullptr) {
    ASN1UINT kept = b.size - b.byteIndex;
    memcpy(grown + newSize - kept, b.data + b.byteIndex, kept);
    rtMemHeapFreePtr(&pctxt->msgMemHeap, b.data);
  }
  b.data = grown;
  b.byteIndex += extra;
  b.size = newSize;
  return 0;
}

int xe_memcpy(ASN1CTXT* pctxt, const ASN1OCTET* object_p, ASN1UINT length) {
  if (object_p == nullptr) return LOG_RTERR(pctxt, ASN_E_BADVALUE);
  int stat = xeReserve(pctxt, length);
  if (stat < 0) return stat;
  ASN1OCTET* dest = xeClaim(pctxt, length);
  if (length == 1)
    *dest = *object_p;
  else
    memmove(dest, object_p, length); /* the source may be the caller's own earlier output */
  return (int)length;
}

void xe_getBufLocDescr(ASN1CTXT* pctxt, ASN1INT length, Asn1BufLocDescr* pDescr) {
  pDescr->numocts = length;
  pDescr->offset = (ASN1INT)(pctxt->buffer.size - 1 - pctxt->buffer.byteIndex);
}
