/* rtMemBuf: a growable byte buffer on the context's heap, grown in steps of segSize bytes. */
#include <string.h>

#include <quillon/rtMemHeap.h>

#include "rtErrLog.h"

namespace {

inline bool isWhiteSpace(ASN1OCTET c) {
  return c == ' ' || c == '\t' || c == '\n' || c == '\v' || c == '\f' || c == '\r';
}

/* The smallest multiple of segSize that holds needed bytes; without a step size, exactly. */
uint64_t grownSize(const ASN1MemBuf* pMemBuf, uint64_t needed) {
  uint64_t seg = pMemBuf->segsize;
  if (seg == 0) return needed;
  return seg * ((needed - 1) / seg + 1);
}

/* A buffer that grows out of a caller's storage starts over in heap memory without its old
 * contents: wrapped storage is there to be read, not extended. */
ASN1OCTET* growStorage(ASN1MemBuf* pMemBuf, ASN1UINT newSize) {
  OSMemHeap** ppHeap = &pMemBuf->pctxt->memHeap;
  if (pMemBuf->isDynamic && pMemBuf->buffer) {
    return static_cast<ASN1OCTET*>(rtMemHeapRealloc(ppHeap, pMemBuf->buffer, newSize));
  }
  return static_cast<ASN1OCTET*>(rtMemHeapAlloc(ppHeap, newSize));
}

}  // namespace

void rtMemBufInit(ASN1CTXT* pctxt, ASN1MemBuf* pMemBuf, ASN1UINT segsize) {
  if (!pMemBuf) return;
  memset(pMemBuf, 0, sizeof(ASN1MemBuf));
  pMemBuf->pctxt = pctxt;
  pMemBuf->segsize = segsize;
  pMemBuf->isDynamic = 1;
}

void rtMemBufInitBuffer(ASN1CTXT* pctxt, ASN1MemBuf* pMemBuf, ASN1OCTET* buf, ASN1UINT bufsize,
                        ASN1UINT segsize) {
  if (!pMemBuf) return;
  memset(pMemBuf, 0, sizeof(ASN1MemBuf));
  pMemBuf->pctxt = pctxt;
  pMemBuf->segsize = segsize;
  pMemBuf->buffer = buf;
  pMemBuf->bufsize = bufsize;
  pMemBuf->usedcnt = bufsize;
  pMemBuf->isDynamic = 0;
}

int rtMemBufPreAllocate(ASN1MemBuf* pMemBuf, ASN1UINT nbytes) {
  if (!pMemBuf) return ASN_E_INVPARAM;
  uint64_t needed = static_cast<uint64_t>(pMemBuf->usedcnt) + nbytes;
  if (nbytes == 0 || needed <= pMemBuf->bufsize) return 0;
  if (!pMemBuf->pctxt) return ASN_E_INVPARAM;
  uint64_t newSize = grownSize(pMemBuf, needed);
  if (newSize > UINT32_MAX) return LOG_RTERR(pMemBuf->pctxt, ASN_E_NOMEM);
  ASN1OCTET* storage = growStorage(pMemBuf, static_cast<ASN1UINT>(newSize));
  if (!storage) return LOG_RTERR(pMemBuf->pctxt, ASN_E_NOMEM);
  pMemBuf->buffer = storage;
  pMemBuf->bufsize = static_cast<ASN1UINT>(newSize);
  pMemBuf->isDynamic = 1;
  return 0;
}

int rtMemBufAppend(ASN1MemBuf* pMemBuf, const ASN1OCTET* pdata, ASN1UINT nbytes) {
  if (nbytes == 0) return 0;
  int stat = rtMemBufPreAllocate(pMemBuf, nbytes);
  if (stat != 0) return stat;
  if (!pdata) return 0;
  memcpy(pMemBuf->buffer + pMemBuf->usedcnt, pdata, nbytes);
  pMemBuf->usedcnt += nbytes;
  return 0;
}

int rtMemBufSet(ASN1MemBuf* pMemBuf, ASN1OCTET value, ASN1UINT nbytes) {
  if (nbytes == 0) return 0;
  int stat = rtMemBufPreAllocate(pMemBuf, nbytes);
  if (stat != 0) return stat;
  memset(pMemBuf->buffer + pMemBuf->usedcnt, value, nbytes);
  pMemBuf->usedcnt += nbytes;
  return 0;
}

ASN1OCTET* rtMemBufGetData(ASN1MemBuf* pMemBuf, int* length) {
  if (!pMemBuf) return nullptr;
  if (length) *length = rtMemBufGetDataLen(pMemBuf);
  return pMemBuf->buffer ? pMemBuf->buffer + pMemBuf->startidx : nullptr;
}

int rtMemBufGetDataLen(ASN1MemBuf* pMemBuf) {
  return pMemBuf ? static_cast<int>(pMemBuf->usedcnt - pMemBuf->startidx) : 0;
}

/* The range is checked against the data itself (offsets count from startOffset), so a cut on a
 * trimmed buffer cannot reach past its end. */
int rtMemBufCut(ASN1MemBuf* pMemBuf, ASN1UINT fromOffset, ASN1UINT nbytes) {
  if (!pMemBuf) return ASN_E_INVPARAM;
  uint64_t from = static_cast<uint64_t>(pMemBuf->startidx) + fromOffset;
  if (from + nbytes > pMemBuf->usedcnt) return ASN_E_INVPARAM;
  if (nbytes == 0) return 0;
  ASN1OCTET* at = pMemBuf->buffer + from;
  memmove(at, at + nbytes, static_cast<size_t>(pMemBuf->usedcnt - from - nbytes));
  pMemBuf->usedcnt -= nbytes;
  return 0;
}

int rtMemBufTrimW(ASN1MemBuf* pMemBuf) {
  if (!pMemBuf) return 0;
  const ASN1OCTET* data = pMemBuf->buffer;
  while (pMemBuf->startidx < pMemBuf->usedcnt && isWhiteSpace(data[pMemBuf->startidx])) {
    pMemBuf->startidx++;
  }
  while (pMemBuf->usedcnt > pMemBuf->startidx && isWhiteSpace(data[pMemBuf->usedcnt - 1])) {
    pMemBuf->usedcnt--;
  }
  return rtMemBufGetDataLen(pMemBuf);
}

void rtMemBufReset(ASN1MemBuf* pMemBuf) {
  if (!pMemBuf) return;
  pMemBuf->startidx = 0;
  pMemBuf->usedcnt = 0;
  pMemBuf->bitOffset = 0;
  pMemBuf->userState = 0;
}

void rtMemBufFree(ASN1MemBuf* pMemBuf) {
  if (!pMemBuf) return;
  if (pMemBuf->isDynamic && pMemBuf->buffer && pMemBuf->pctxt) {
    rtMemHeapFreePtr(&pMemBuf->pctxt->memHeap, pMemBuf->buffer);
  }
  pMemBuf->buffer = nullptr;
  pMemBuf->bufsize = 0;
  pMemBuf->startidx = 0;
  pMemBuf->usedcnt = 0;
}
