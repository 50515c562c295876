/* The codec context: initialisation, release, buffer sharing between contexts, flags, heaps. */
#include <stdlib.h>
#include <string.h>

#include <quillon/rtContext.h>
#include <quillon/rtList.h>
#include <quillon/rtMemHeap.h>
#include <quillon/rtStream.h>

#include "rtErrLog.h"

namespace {

/* 16384 bytes serve a typical certificate or signed message without growing. */
constexpr int kDefaultDynBufSize = 16384;

bool isInitialised(const ASN1CTXT* pctxt) { return pctxt && pctxt->key == ASN1_CTXT_KEY; }

void initRecord(ASN1CTXT* pctxt) {
  memset(pctxt, 0, sizeof(ASN1CTXT));
  pctxt->key = ASN1_CTXT_KEY;
  rtSListInitEx(pctxt, &pctxt->fieldList);
  rtSListInitEx(pctxt, &pctxt->evtHndlrList);
}

void releaseBuffer(ASN1CTXT* pctxt) {
  if (!pctxt->buffer.dynamic || !pctxt->buffer.data) return;
  if (pctxt->flags & ASN1SAVEBUF) rtMemHeapMarkSaved(&pctxt->msgMemHeap, pctxt->buffer.data, 1);
  else rtMemHeapFreePtr(&pctxt->msgMemHeap, pctxt->buffer.data);
  pctxt->buffer.data = nullptr;
}

void shareHeap(OSMemHeap** ppDest, OSMemHeap** ppSrc) {
  if (*ppSrc == *ppDest) return;
  rtMemHeapRelease(ppDest);
  *ppDest = *ppSrc;
  rtMemHeapAddRef(ppDest);
}

}  // namespace

int rtInitContext(ASN1CTXT* pctxt, void* pMemAllocCtx) {
  if (!pctxt) return ASN_E_INVPARAM;
  initRecord(pctxt);
  int stat = rtMemHeapCreate(&pctxt->memHeap, pMemAllocCtx);
  if (stat != 0) {
    pctxt->key = 0;
    return stat;
  }
  pctxt->msgMemHeap = pctxt->memHeap;
  rtMemHeapAddRef(&pctxt->msgMemHeap);
  pctxt->pMemAllocCtx = pMemAllocCtx;
  return 0;
}

int rtInitContextBuffer(ASN1CTXT* pctxt, ASN1OCTET* bufaddr, int bufsiz) {
  if (!isInitialised(pctxt)) return ASN_E_NOTINIT;
  if (bufsiz < 0) return LOG_RTERR(pctxt, ASN_E_INVPARAM);
  if (bufaddr) {
    pctxt->buffer.data = bufaddr;
    pctxt->buffer.size = static_cast<ASN1UINT>(bufsiz);
    pctxt->buffer.dynamic = 0;
  } else {
    ASN1UINT size = bufsiz == 0 ? kDefaultDynBufSize : static_cast<ASN1UINT>(bufsiz);
    ASN1OCTET* data = static_cast<ASN1OCTET*>(rtMemHeapAlloc(&pctxt->msgMemHeap, size));
    if (!data) return LOG_RTERR(pctxt, ASN_E_NOMEM);
    pctxt->buffer.data = data;
    pctxt->buffer.size = size;
    pctxt->buffer.dynamic = 1;
  }
  pctxt->buffer.byteIndex = 0;
  pctxt->buffer.bitOffset = 8;
  return 0;
}

int rtInitSubContext(ASN1CTXT* pctxt, ASN1CTXT* pParent) {
  if (!pctxt || !pParent) return ASN_E_INVPARAM;
  initRecord(pctxt);
  pctxt->pMemAllocCtx = pParent->pMemAllocCtx;
  pctxt->flags = pParent->flags;
  pctxt->buffer.state = pParent->buffer.state;
  pctxt->buffer.dynamic = 1;
  pctxt->buffer.byteIndex = 0;
  pctxt->buffer.bitOffset = 8;
  return 0;
}

ASN1CTXT* rtNewContext(void) {
  ASN1CTXT* pctxt = static_cast<ASN1CTXT*>(malloc(sizeof(ASN1CTXT)));
  if (!pctxt) return nullptr;
  if (rtInitContext(pctxt, nullptr) != 0) {
    free(pctxt);
    return nullptr;
  }
  pctxt->flags |= ASN1DYNCTXT;
  return pctxt;
}

void rtFreeContext(ASN1CTXT* pctxt) {
  if (!isInitialised(pctxt)) return;
  /* The stream first: its output still staged in the buffer is written before the buffer goes. */
  rtStreamRelease(pctxt);
  releaseBuffer(pctxt);
  rtSListFree(&pctxt->fieldList);
  rtSListFree(&pctxt->evtHndlrList);
  rtErrFreeParms(&pctxt->errInfo);
  rtMemHeapRelease(&pctxt->memHeap);
  rtMemHeapRelease(&pctxt->msgMemHeap);
  /* A heap still held elsewhere keeps living; this context lets go of it either way. */
  pctxt->memHeap = nullptr;
  pctxt->msgMemHeap = nullptr;
  pctxt->key = 0;
  if (pctxt->flags & ASN1DYNCTXT) free(pctxt);
}

void rtCopyContext(ASN1CTXT* pdest, ASN1CTXT* psrc) {
  if (!pdest || !psrc) return;
  pdest->buffer = psrc->buffer;
  pdest->flags = psrc->flags;
}

void rtXchgContext(ASN1CTXT* pctxt1, ASN1CTXT* pctxt2) {
  if (!pctxt1 || !pctxt2) return;
  ASN1BUFFER saved = pctxt1->buffer;
  pctxt1->buffer = pctxt2->buffer;
  pctxt2->buffer = saved;
  pctxt1->flags = pctxt2->flags;
}

void rtCtxtSetFlag(ASN1CTXT* pctxt, ASN1UINT mask) {
  if (pctxt) pctxt->flags = static_cast<ASN1USINT>(pctxt->flags | mask);
}

void rtCtxtClearFlag(ASN1CTXT* pctxt, ASN1UINT mask) {
  if (pctxt) pctxt->flags = static_cast<ASN1USINT>(pctxt->flags & ~mask);
}

void rtSetFastCopy(ASN1CTXT* pctxt) { rtCtxtSetFlag(pctxt, ASN1FASTCOPY); }

void rtSetCopyValues(ASN1CTXT* pctxt) { rtCtxtClearFlag(pctxt, ASN1FASTCOPY); }

void rtCtxtSetMemHeap(ASN1CTXT* pctxt, ASN1CTXT* pSrcCtxt) {
  if (!pctxt || !pSrcCtxt) return;
  shareHeap(&pctxt->memHeap, &pSrcCtxt->memHeap);
}

void rtCtxtSetMsgMemHeap(ASN1CTXT* pctxt, ASN1CTXT* pSrcCtxt) {
  if (!pctxt || !pSrcCtxt) return;
  shareHeap(&pctxt->msgMemHeap, &pSrcCtxt->msgMemHeap);
}
