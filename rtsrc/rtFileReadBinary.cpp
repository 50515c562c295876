/* Reading a whole file into the context's heap, for decoding messages kept in files. */
#include <limits.h>
#include <stdio.h>

#include <quillon/rtMemHeap.h>
#include <quillon/rtUtil.h>

#include "rtErrLog.h"

namespace {

/* The file's size, or -1 when it cannot be told or does not fit the int lengths the decoder
 * takes. Leaves the file positioned at its start. */
long fileSize(FILE* fp) {
  if (fseek(fp, 0, SEEK_END) != 0) return -1;
  long size = ftell(fp);
  if (fseek(fp, 0, SEEK_SET) != 0) return -1;
  return size <= INT_MAX ? size : -1;
}

int readOpenFile(ASN1CTXT* pctxt, FILE* fp, ASN1OCTET** ppMsgBuf, int* pLength) {
  long size = fileSize(fp);
  if (size < 0) return LOG_RTERR(pctxt, ASN_E_FILEREAD);
  /* An empty file still gets a block of its own, so the result is never a null pointer. */
  auto* data = static_cast<ASN1OCTET*>(rtMemHeapAlloc(&pctxt->memHeap, size ? size : 1));
  if (!data) return LOG_RTERR(pctxt, ASN_E_NOMEM);
  if (fread(data, 1, (size_t)size, fp) != (size_t)size) {
    rtMemHeapFreePtr(&pctxt->memHeap, data);
    return LOG_RTERR(pctxt, ASN_E_FILEREAD);
  }
  *ppMsgBuf = data;
  *pLength = (int)size;
  return 0;
}

}  // namespace

int rtFileReadBinary(ASN1CTXT* pctxt, const char* filePath, ASN1OCTET** ppMsgBuf,
                     int* pLength) {
  if (!pctxt) return ASN_E_INVPARAM;
  if (!filePath || !ppMsgBuf || !pLength) return LOG_RTERR(pctxt, ASN_E_INVPARAM);
  FILE* fp = fopen(filePath, "rb");
  if (!fp) return LOG_RTERR(pctxt, ASN_E_FILNOTFOU);
  int stat = readOpenFile(pctxt, fp, ppMsgBuf, pLength);
  fclose(fp);
  return stat;
}
