/* Saving and restoring the read position around look-ahead. */
#include "xd_common.h"

QN_BEGIN_C

void xu_SaveBufferState(ASN1CTXT* pctxt, ASN1BUFSAVE* pSavedInfo) {
  pSavedInfo->byteIndex = pctxt->buffer.byteIndex;
  pSavedInfo->flags = pctxt->flags;
}

void xu_RestoreBufferState(ASN1CTXT* pctxt, ASN1BUFSAVE* pSavedInfo) {
  pctxt->buffer.byteIndex = pSavedInfo->byteIndex;
  pctxt->flags = pSavedInfo->flags;
}

QN_END_C
