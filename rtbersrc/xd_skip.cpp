/* Skipping and counting elements without decoding them. */
#include "xd_common.h"

using namespace qn::xd;

QN_BEGIN_C

int xd_NextElement(ASN1CTXT* pctxt) {
  if (streamEnded(pctxt)) return LOG_RTERR(pctxt, ASN_E_ENDOFBUF);
  ASN1UINT idx = pctxt->buffer.byteIndex;
  int stat = skipElement(pctxt->buffer.data, pctxt->buffer.size, &idx);
  if (stat < 0) return LOG_RTERR(pctxt, stat);
  pctxt->buffer.byteIndex = idx;
  return 0;
}

int xd_MovePastEOC(ASN1CTXT* pctxt) {
  if (streamEnded(pctxt)) return LOG_RTERR(pctxt, ASN_E_ENDOFBUF);
  ASN1UINT idx = pctxt->buffer.byteIndex;
  int stat = skipToEOC(pctxt->buffer.data, pctxt->buffer.size, &idx);
  if (stat < 0) return LOG_RTERR(pctxt, stat);
  pctxt->buffer.byteIndex = idx;
  return 0;
}

int xd_count(ASN1CTXT* pctxt, int length, int* count_p) {
  if (length < 0 && length != ASN_K_INDEFLEN) return LOG_RTERR(pctxt, ASN_E_INVLEN);
  const ASN1BUFFER& buf = pctxt->buffer;
  const ASN1UINT start = buf.byteIndex;
  ASN1UINT idx = start;
  int count = 0;
  for (;;) {
    if (length == ASN_K_INDEFLEN) {
      if (idx >= buf.size || buf.size - idx < 2) break;
      if (buf.data[idx] == 0 && buf.data[idx + 1] == 0) break;
    } else if (idx - start >= (ASN1UINT)length || idx >= buf.size) {
      break;
    }
    int stat = skipElement(buf.data, buf.size, &idx);
    if (stat < 0) return LOG_RTERR(pctxt, stat);
    ++count;
  }
  *count_p = count;
  return 0;
}

QN_END_C
