/* The stream record: setting it up, releasing it, and the unbuffered operations on its device. */
#include "rtStreamImpl.h"

using namespace qn::strm;

namespace {

bool contextReady(const ASN1CTXT* pctxt) { return pctxt && pctxt->key == ASN1_CTXT_KEY; }

/* A device left open by a failed close (its flush failed) is closed all the same when the
 * stream goes away; the device record is gone afterwards. */
void closeDevice(OSRTSTREAM* s) {
  if (s->device && s->close) s->close(s->device);
  s->device = nullptr;
  s->flags = 0;
}

void releaseReadBuffer(ASN1CTXT* pctxt, OSRTSTREAM* s) {
  ASN1BUFFER& b = pctxt->buffer;
  if (!ownsBuffer(s) || !b.dynamic || !b.data) return;
  rtMemHeapFreePtr(&pctxt->msgMemHeap, b.data);
  b.data = nullptr;
  b.size = 0;
  b.byteIndex = 0;
  b.dynamic = 0;
}

}  // namespace

namespace qn::strm {

int checkDirection(ASN1CTXT* pctxt, ASN1USINT flags) {
  if (!(flags & kDirections)) return LOG_RTERR(pctxt, ASN_E_INVPARAM);
  return 0;
}

int attachDevice(ASN1CTXT* pctxt, ASN1UINT kind, void* device, const DeviceProcs& procs,
                 ASN1USINT flags) {
  if (!pctxt->pStream) {
    int stat = rtStreamInit(pctxt);
    if (stat < 0) return stat;
  }
  OSRTSTREAM* s = pctxt->pStream;
  if (s->flags & kDirections) rtStreamClose(pctxt);
  closeDevice(s);
  s->read = procs.read;
  s->write = procs.write;
  s->flush = procs.flush;
  s->close = procs.close;
  s->skip = procs.skip;
  s->device = device;
  s->id = kind;
  /* An output stream goes one way only: input wins only when output is not asked for. */
  ASN1USINT direction = (flags & OSRTSTRMF_OUTPUT) ? OSRTSTRMF_OUTPUT : OSRTSTRMF_INPUT;
  s->flags = (ASN1USINT)(direction | (ownsBuffer(s) ? OSRTSTRMF_BUFFERED : 0));
  s->ioBytes = 0;
  s->bytesRead = 0;
  s->markedBytesRead = 0;
  emptyReadBuffer(pctxt);
  return 0;
}

}  // namespace qn::strm

QN_BEGIN_C

int rtStreamInit(ASN1CTXT* pctxt) {
  if (!contextReady(pctxt)) return ASN_E_NOTINIT;
  if (pctxt->pStream) rtStreamRelease(pctxt);
  OSRTSTREAM* s = static_cast<OSRTSTREAM*>(allocSaved(pctxt, sizeof(OSRTSTREAM)));
  if (!s) return LOG_RTERR(pctxt, ASN_E_NOMEM);
  pctxt->pStream = s;
  return 0;
}

int rtStreamRelease(ASN1CTXT* pctxt) {
  if (!pctxt || !pctxt->pStream) return 0;
  OSRTSTREAM* s = pctxt->pStream;
  int stat = 0;
  if (s->flags & kDirections) stat = rtStreamClose(pctxt);
  closeDevice(s);
  releaseReadBuffer(pctxt, s);
  freeSaved(pctxt, s);
  pctxt->pStream = nullptr;
  return stat;
}

long rtStreamRead(ASN1CTXT* pctxt, ASN1OCTET* pbuffer, size_t count) {
  if (!pctxt) return ASN_E_INVPARAM;
  OSRTSTREAM* s = pctxt->pStream;
  if (!s || !s->read || !isInput(s)) return LOG_RTERR(pctxt, ASN_E_NOTINIT);
  long n = s->read(s->device, pbuffer, count);
  if (n < 0) return LOG_RTERR(pctxt, (int)n);
  s->ioBytes += (ASN1UINT)n;
  return n;
}

int rtStreamWrite(ASN1CTXT* pctxt, const ASN1OCTET* data, size_t count) {
  if (!pctxt) return ASN_E_INVPARAM;
  OSRTSTREAM* s = pctxt->pStream;
  if (!s || !s->write || !isOutput(s)) return LOG_RTERR(pctxt, ASN_E_NOTINIT);
  long stat = s->write(s->device, data, count);
  if (stat < 0) return LOG_RTERR(pctxt, (int)stat);
  s->ioBytes += (ASN1UINT)count;
  return 0;
}

int rtStreamSkip(ASN1CTXT* pctxt, size_t count) {
  if (!pctxt) return ASN_E_INVPARAM;
  OSRTSTREAM* s = pctxt->pStream;
  if (!s) return LOG_RTERR(pctxt, ASN_E_NOTINIT);
  if (!isInput(s)) return LOG_RTERR(pctxt, ASN_E_INVPARAM);
  if (!s->skip) return LOG_RTERR(pctxt, ASN_E_NOTINIT);
  int stat = s->skip(s->device, count);
  if (stat < 0) return LOG_RTERR(pctxt, stat);
  s->ioBytes += (ASN1UINT)stat;
  return stat;
}

int rtStreamFlush(ASN1CTXT* pctxt) {
  if (!pctxt) return ASN_E_INVPARAM;
  OSRTSTREAM* s = pctxt->pStream;
  if (!s) return LOG_RTERR(pctxt, ASN_E_NOTINIT);
  if (!isOutput(s)) return LOG_RTERR(pctxt, ASN_E_INVPARAM);
  int stat = writeStaged(pctxt);
  if (stat < 0) return stat;
  if (!s->flush) return 0;
  stat = s->flush(s->device);
  if (stat < 0) return LOG_RTERR(pctxt, stat);
  return stat;
}

int rtStreamClose(ASN1CTXT* pctxt) {
  if (!pctxt) return ASN_E_INVPARAM;
  OSRTSTREAM* s = pctxt->pStream;
  if (!s || !s->close) return LOG_RTERR(pctxt, ASN_E_NOTINIT);
  if (isOutput(s)) {
    int stat = rtStreamFlush(pctxt);
    if (stat < 0) return stat;
  }
  if (!(s->flags & kDirections)) return LOG_RTERR(pctxt, ASN_E_NOTINIT);
  s->flags = 0;
  int stat = s->close(s->device);
  s->device = nullptr;
  if (stat < 0) return LOG_RTERR(pctxt, stat);
  return 0;
}

long rtStreamGetIOBytes(ASN1CTXT* pctxt) {
  if (!pctxt) return ASN_E_INVPARAM;
  if (!pctxt->pStream) return LOG_RTERR(pctxt, ASN_E_NOTINIT);
  return (long)pctxt->pStream->ioBytes;
}

QN_END_C
