/* The buffering layer: read-ahead with mark and reset, and staged output, in the context's
 * message buffer. */
#include <string.h>

#include "rtStreamImpl.h"

using namespace qn::strm;

namespace {

/* One read and one staging request are bounded so that every count fits the int statuses and
 * the 32-bit buffer fields on both builds. */
constexpr size_t kMaxRequest = 0x7FFFFFFF;

/* The context's stream when it goes in the direction given; null with the status recorded
 * otherwise. */
OSRTSTREAM* streamGoing(ASN1CTXT* pctxt, ASN1USINT direction, int* stat_p) {
  OSRTSTREAM* s = pctxt->pStream;
  if (!s) {
    *stat_p = LOG_RTERR(pctxt, ASN_E_NOTINIT);
  } else if (!(s->flags & direction)) {
    *stat_p = LOG_RTERR(pctxt, ASN_E_INVPARAM);
    s = nullptr;
  }
  return s;
}

OSRTSTREAM* inputStream(ASN1CTXT* pctxt, int* stat_p) {
  return streamGoing(pctxt, OSRTSTRMF_INPUT, stat_p);
}

int setupBuffer(ASN1CTXT* pctxt, OSRTSTREAM* s) {
  int stat = rtInitContextBuffer(pctxt, nullptr, OSRTSTRM_K_BUFSIZE);
  if (stat < 0) return LOG_RTERR(pctxt, stat);
  rtMemHeapMarkSaved(&pctxt->msgMemHeap, pctxt->buffer.data, 1);
  s->bufsize = OSRTSTRM_K_BUFSIZE;
  s->flags |= OSRTSTRMF_BUFFERED;
  emptyReadBuffer(pctxt);
  return 0;
}

/* Decoding needs look-ahead, so an input stream set up without buffering gets it on first
 * use. */
int ensureReadBuffer(ASN1CTXT* pctxt, OSRTSTREAM* s) {
  if (ownsBuffer(s)) return 0;
  return setupBuffer(pctxt, s);
}

bool marked(const OSRTSTREAM* s) { return (s->flags & OSRTSTRMF_MARKED) != 0; }

void dropMark(OSRTSTREAM* s) {
  s->flags &= (ASN1USINT)~OSRTSTRMF_MARKED;
  s->readAheadLimit = 0;
}

ASN1UINT sinceMark(const OSRTSTREAM* s) { return s->bytesRead - s->markedBytesRead; }

/* Reading count more bytes keeps the stream within its mark's read-ahead limit. */
bool withinMark(const OSRTSTREAM* s, size_t count) {
  return marked(s) && sinceMark(s) <= s->readAheadLimit &&
         count <= (size_t)(s->readAheadLimit - sinceMark(s));
}

/* Where the buffer must keep its bytes from: the mark, or the next unread byte. */
ASN1UINT keepFrom(const ASN1CTXT* pctxt, const OSRTSTREAM* s) {
  return marked(s) ? pctxt->buffer.byteIndex - sinceMark(s) : pctxt->buffer.byteIndex;
}

void consume(ASN1CTXT* pctxt, OSRTSTREAM* s, ASN1UINT n) {
  pctxt->buffer.byteIndex += n;
  s->bytesRead += n;
}

/* Moves the kept bytes to the front of a buffer of capacity bytes (a new one when it differs
 * from the present one). */
int rebase(ASN1CTXT* pctxt, OSRTSTREAM* s, ASN1UINT capacity) {
  ASN1BUFFER& b = pctxt->buffer;
  const ASN1UINT from = keepFrom(pctxt, s);
  const ASN1UINT kept = b.size - from;
  ASN1OCTET* dest = b.data;
  if (capacity != s->bufsize) {
    dest = static_cast<ASN1OCTET*>(rtMemHeapAlloc(&pctxt->msgMemHeap, capacity));
    if (!dest) return LOG_RTERR(pctxt, ASN_E_NOMEM);
    rtMemHeapMarkSaved(&pctxt->msgMemHeap, dest, 1);
  }
  if (kept) memmove(dest, b.data + from, kept);
  if (dest != b.data) {
    rtMemHeapFreePtr(&pctxt->msgMemHeap, b.data);
    b.data = dest;
    s->bufsize = capacity;
  }
  b.byteIndex -= from;
  b.size = kept;
  return 0;
}

/* Room for count unread bytes behind what must be kept; the buffer at least doubles when it
 * grows, so a long look-ahead does not move it again and again. */
int makeRoom(ASN1CTXT* pctxt, OSRTSTREAM* s, ASN1UINT count) {
  ASN1BUFFER& b = pctxt->buffer;
  const ASN1UINT from = keepFrom(pctxt, s);
  const ASN1UINT unread = b.size - b.byteIndex;
  if (s->bufsize - b.size >= count - unread) return 0;
  const ASN1UINT64 needed = (ASN1UINT64)(b.byteIndex - from) + count;
  if (needed <= s->bufsize) return rebase(pctxt, s, s->bufsize);
  if (needed > kMaxRequest) return LOG_RTERR(pctxt, ASN_E_NOMEM);
  ASN1UINT64 capacity = (ASN1UINT64)s->bufsize * 2;
  if (capacity < needed) capacity = needed;
  if (capacity > kMaxRequest) capacity = needed;
  return rebase(pctxt, s, (ASN1UINT)capacity);
}

long fillBuffer(ASN1CTXT* pctxt, OSRTSTREAM* s, ASN1UINT count) {
  ASN1BUFFER& b = pctxt->buffer;
  while (b.size - b.byteIndex < count) {
    long n = rtStreamRead(pctxt, b.data + b.size, s->bufsize - b.size);
    if (n < 0) return n;
    if (n == 0) break;
    b.size += (ASN1UINT)n;
  }
  return (long)(b.size - b.byteIndex);
}

long preRead(ASN1CTXT* pctxt, OSRTSTREAM* s, ASN1UINT count) {
  ASN1BUFFER& b = pctxt->buffer;
  if (b.size - b.byteIndex >= count) return (long)(b.size - b.byteIndex);
  /* A mark already passed cannot be returned to: the bytes it pins are no longer needed. */
  if (marked(s) && sinceMark(s) > s->readAheadLimit) dropMark(s);
  int stat = makeRoom(pctxt, s, count);
  if (stat < 0) return stat;
  return fillBuffer(pctxt, s, count);
}

ASN1UINT takeBuffered(ASN1CTXT* pctxt, OSRTSTREAM* s, ASN1OCTET* dest, size_t count) {
  ASN1BUFFER& b = pctxt->buffer;
  ASN1UINT n = b.size - b.byteIndex;
  if (count < n) n = (ASN1UINT)count;
  if (n == 1)
    *dest = b.data[b.byteIndex];
  else if (n)
    memcpy(dest, b.data + b.byteIndex, n);
  consume(pctxt, s, n);
  return n;
}

/* The part of a read that the buffer could not serve: small remainders refill the buffer (one
 * device call for many small reads), large ones go straight to the caller's memory. */
long readRest(ASN1CTXT* pctxt, OSRTSTREAM* s, ASN1OCTET* dest, size_t count) {
  size_t done = 0;
  while (done < count) {
    const size_t rest = count - done;
    if (rest < s->bufsize) {
      long avail = preRead(pctxt, s, (ASN1UINT)rest);
      if (avail < 0) return avail;
      if (avail == 0) return ASN_E_ENDOFBUF;
      done += takeBuffered(pctxt, s, dest + done, rest);
    } else {
      long n = rtStreamRead(pctxt, dest + done, rest);
      if (n < 0) return n;
      if (n == 0) return ASN_E_ENDOFBUF;
      done += (size_t)n;
      s->bytesRead += (ASN1UINT)n;
    }
  }
  return (long)count;
}

OSRTSTREAM* outputStream(ASN1CTXT* pctxt, int* stat_p) {
  return streamGoing(pctxt, OSRTSTRMF_OUTPUT, stat_p);
}

void stage(ASN1CTXT* pctxt, const ASN1OCTET* data, size_t count) {
  ASN1BUFFER& b = pctxt->buffer;
  if (count == 1)
    b.data[b.byteIndex] = *data;
  else
    memcpy(b.data + b.byteIndex, data, count);
  b.byteIndex += (ASN1UINT)count;
}

}  // namespace

namespace qn::strm {

int writeStaged(ASN1CTXT* pctxt) {
  OSRTSTREAM* s = pctxt->pStream;
  ASN1BUFFER& b = pctxt->buffer;
  if (!ownsBuffer(s) || !isOutput(s) || b.byteIndex == 0) return 0;
  const ASN1UINT staged = b.byteIndex;
  b.byteIndex = 0;
  return rtStreamWrite(pctxt, b.data, staged);
}

void emptyReadBuffer(ASN1CTXT* pctxt) {
  OSRTSTREAM* s = pctxt->pStream;
  if (!ownsBuffer(s)) return;
  pctxt->buffer.byteIndex = 0;
  pctxt->buffer.size = 0;
  dropMark(s);
}

}  // namespace qn::strm

QN_BEGIN_C

int rtStreamBufInit(ASN1CTXT* pctxt) {
  int stat = rtStreamInit(pctxt);
  if (stat < 0) return stat;
  return setupBuffer(pctxt, pctxt->pStream);
}

int rtStreamBufMark(ASN1CTXT* pctxt, ASN1UINT readAheadLimit) {
  if (!pctxt) return ASN_E_INVPARAM;
  int stat = 0;
  OSRTSTREAM* s = inputStream(pctxt, &stat);
  if (!s) return stat;
  stat = ensureReadBuffer(pctxt, s);
  if (stat < 0) return stat;
  s->flags |= OSRTSTRMF_MARKED;
  s->readAheadLimit = readAheadLimit;
  s->markedBytesRead = s->bytesRead;
  return 0;
}

int rtStreamBufReset(ASN1CTXT* pctxt) {
  if (!pctxt) return ASN_E_INVPARAM;
  int stat = 0;
  OSRTSTREAM* s = inputStream(pctxt, &stat);
  if (!s) return stat;
  if (!marked(s)) return LOG_RTERR(pctxt, ASN_E_INVPARAM);
  if (sinceMark(s) > s->readAheadLimit) {
    dropMark(s);
    return LOG_RTERR(pctxt, ASN_E_INVPARAM);
  }
  pctxt->buffer.byteIndex -= sinceMark(s);
  s->bytesRead = s->markedBytesRead;
  return 0;
}

long rtStreamBufPreRead(ASN1CTXT* pctxt, size_t count) {
  if (!pctxt) return ASN_E_INVPARAM;
  int stat = 0;
  OSRTSTREAM* s = inputStream(pctxt, &stat);
  if (!s) return stat;
  if (count > kMaxRequest) return LOG_RTERR(pctxt, ASN_E_INVPARAM);
  stat = ensureReadBuffer(pctxt, s);
  if (stat < 0) return stat;
  return preRead(pctxt, s, (ASN1UINT)count);
}

long rtStreamBufRead(ASN1CTXT* pctxt, ASN1OCTET* pbuffer, size_t count) {
  if (!pctxt) return ASN_E_INVPARAM;
  int stat = 0;
  OSRTSTREAM* s = inputStream(pctxt, &stat);
  if (!s) return stat;
  if (count > kMaxRequest || (count && !pbuffer)) return LOG_RTERR(pctxt, ASN_E_INVPARAM);
  stat = ensureReadBuffer(pctxt, s);
  if (stat < 0) return stat;
  if (withinMark(s, count)) {
    long avail = preRead(pctxt, s, (ASN1UINT)count);
    if (avail < 0) return avail;
    if ((size_t)avail < count) return ASN_E_ENDOFBUF;
    takeBuffered(pctxt, s, pbuffer, count);
    return (long)count;
  }
  if (marked(s)) dropMark(s);
  ASN1UINT n = takeBuffered(pctxt, s, pbuffer, count);
  if (n == count) return (long)count;
  long stat2 = readRest(pctxt, s, pbuffer + n, count - n);
  return stat2 < 0 ? stat2 : (long)count;
}

int rtStreamBufSkip(ASN1CTXT* pctxt, size_t count) {
  if (!pctxt) return ASN_E_INVPARAM;
  int stat = 0;
  OSRTSTREAM* s = inputStream(pctxt, &stat);
  if (!s) return stat;
  if (count > kMaxRequest) return LOG_RTERR(pctxt, ASN_E_INVPARAM);
  stat = ensureReadBuffer(pctxt, s);
  if (stat < 0) return stat;
  if (withinMark(s, count)) {
    long avail = preRead(pctxt, s, (ASN1UINT)count);
    if (avail < 0) return (int)avail;
    if ((size_t)avail < count) return ASN_E_ENDOFBUF;
    consume(pctxt, s, (ASN1UINT)count);
    return 0;
  }
  if (marked(s)) dropMark(s);
  ASN1BUFFER& b = pctxt->buffer;
  ASN1UINT n = b.size - b.byteIndex;
  if (count < n) n = (ASN1UINT)count;
  consume(pctxt, s, n);
  if (n == count) return 0;
  stat = rtStreamSkip(pctxt, count - n);
  if (stat < 0) return stat;
  s->bytesRead += (ASN1UINT)(count - n);
  return 0;
}

int rtStreamBufWrite(ASN1CTXT* pctxt, const ASN1OCTET* data, size_t count) {
  if (!pctxt) return ASN_E_INVPARAM;
  int stat = 0;
  OSRTSTREAM* s = outputStream(pctxt, &stat);
  if (!s) return stat;
  if (count && !data) return LOG_RTERR(pctxt, ASN_E_INVPARAM);
  if (!ownsBuffer(s)) return rtStreamWrite(pctxt, data, count);
  if (count > s->bufsize - pctxt->buffer.byteIndex) {
    stat = writeStaged(pctxt);
    if (stat < 0) return stat;
  }
  if (count >= s->bufsize) return rtStreamWrite(pctxt, data, count);
  if (count) stage(pctxt, data, count);
  return 0;
}

int rtStreamBufFlush(ASN1CTXT* pctxt) { return rtStreamFlush(pctxt); }

int rtStreamBufClose(ASN1CTXT* pctxt) {
  int stat = rtStreamClose(pctxt);
  if (stat == 0) emptyReadBuffer(pctxt);
  return stat;
}

long rtStreamBufGetPos(ASN1CTXT* pctxt) {
  if (!pctxt) return ASN_E_INVPARAM;
  if (!pctxt->pStream) return LOG_RTERR(pctxt, ASN_E_NOTINIT);
  return (long)pctxt->pStream->bytesRead;
}

QN_END_C
