/* What every stream decoder shares: reading headers ahead in the stream's read buffer, and
 * putting the next element where a buffer decoder can read it. */
#include <quillon/rtStream.h>

#include "berStrmCommon.h"
#include "xd_common.h"

namespace {

/* The longest header: an identifier of 29 bits (6 octets) and a length of 4 octets (5). */
constexpr ASN1UINT kMaxHeader = 11;

/* Large elements are read into heap memory that grows as their octets arrive, so a length
 * claimed by hostile input costs memory only once the octets are really there. */
constexpr ASN1UINT kFirstChunk = 1u << 20;
constexpr ASN1UINT kFirstChunkUnknown = 4096;
constexpr ASN1UINT kMaxElement = 0x7FFFFFFFu;

/* Heap memory holding a large element as it is read. */
struct Area {
  ASN1OCTET* data;
  ASN1UINT used;
  ASN1UINT capacity;
  ASN1UINT target; /* the element's size when known, else 0 */
};

int growArea(ASN1CTXT* pctxt, Area* a) {
  const ASN1UINT first = a->target ? kFirstChunk : kFirstChunkUnknown;
  ASN1UINT64 capacity = a->capacity ? (ASN1UINT64)a->capacity * 2 : first;
  if (a->target && capacity > a->target) capacity = a->target;
  if (capacity > kMaxElement) capacity = kMaxElement;
  if (capacity <= a->used) return LOG_RTERR(pctxt, ASN_E_NOMEM);
  void* grown = rtMemHeapRealloc(&pctxt->memHeap, a->data, (size_t)capacity);
  if (!grown) return LOG_RTERR(pctxt, ASN_E_NOMEM);
  a->data = static_cast<ASN1OCTET*>(grown);
  a->capacity = (ASN1UINT)capacity;
  return 0;
}

/* Moves n octets of the stream to the end of the area, or past them with no area. */
int transfer(ASN1CTXT* pctxt, Area* a, ASN1UINT n) {
  if (!a) {
    int stat = rtStreamBufSkip(pctxt, n);
    return stat < 0 ? LOG_RTERR(pctxt, stat) : 0;
  }
  while (n > 0) {
    if (a->used == a->capacity) {
      int stat = growArea(pctxt, a);
      if (stat < 0) return stat;
    }
    const ASN1UINT chunk = a->capacity - a->used < n ? a->capacity - a->used : n;
    long got = rtStreamBufRead(pctxt, a->data + a->used, chunk);
    if (got < 0) return LOG_RTERR(pctxt, (int)got);
    a->used += chunk;
    n -= chunk;
  }
  return 0;
}

/* Headers and contents up to and including the end-of-contents octets that close a value of
 * indefinite length, whose header has been taken. Each header read takes at least two octets,
 * so the walk ends with the stream on any input. */
int transferToEOC(ASN1CTXT* pctxt, Area* a) {
  for (ASN1UINT depth = 1; depth > 0;) {
    qn::bstrm::Header h = {0, 0, 0};
    int stat = qn::bstrm::peekHeader(pctxt, &h);
    if (stat < 0) return LOG_RTERR(pctxt, stat);
    stat = transfer(pctxt, a, h.octets);
    if (stat < 0) return stat;
    if (h.len == ASN_K_INDEFLEN)
      ++depth;
    else if (h.tag == 0 && h.len == 0)
      --depth;
    else
      stat = transfer(pctxt, a, (ASN1UINT)h.len);
    if (stat < 0) return stat;
  }
  return 0;
}

int inReadBuffer(ASN1CTXT* pctxt, ASN1UINT extent, qn::bstrm::Element* e) {
  qn::bstrm::windowInReadBuffer(pctxt, extent, e);
  return 0;
}

/* Where an element of indefinite length ends when it lies whole in the read buffer (after
 * filling it): with its header (whole) or from its contents on, up to and including its
 * end-of-contents octets. False when it does not fit, or when its structure is bad, which is
 * then left to the reading from the stream to meet and report. */
bool indefiniteExtent(ASN1CTXT* pctxt, bool whole, ASN1UINT* extent_p) {
  long avail = qn::bstrm::ensureBuffered(pctxt, pctxt->pStream->bufsize);
  if (avail < 0) return false;
  const ASN1OCTET* p = pctxt->buffer.data + pctxt->buffer.byteIndex;
  ASN1UINT idx = 0;
  int stat = whole ? qn::xd::skipElement(p, (ASN1UINT)avail, &idx)
                   : qn::xd::skipToEOC(p, (ASN1UINT)avail, &idx);
  if (stat < 0) return false;
  *extent_p = idx;
  return true;
}

/* headerOctets of the element's header are still unread when given; indefinite elements are
 * read up to their closing end-of-contents octets. */
int onHeap(ASN1CTXT* pctxt, ASN1UINT headerOctets, int length, bool borrow,
           qn::bstrm::Element* e) {
  const bool indefinite = length == ASN_K_INDEFLEN;
  Area a = {nullptr, 0, 0, indefinite ? 0 : headerOctets + (ASN1UINT)length};
  int stat = transfer(pctxt, &a, headerOctets);
  if (stat == 0)
    stat = indefinite ? transferToEOC(pctxt, &a) : transfer(pctxt, &a, (ASN1UINT)length);
  if (stat < 0) {
    rtMemHeapFreePtr(&pctxt->memHeap, a.data);
    return stat;
  }
  e->saved = pctxt->buffer;
  qn::bstrm::saveWindowFlags(pctxt, e);
  if (borrow) pctxt->flags |= ASN1FASTCOPY;
  e->area = a.data;
  e->extent = a.used;
  ASN1BUFFER& b = pctxt->buffer;
  b.data = a.data;
  b.byteIndex = 0;
  b.size = a.used;
  b.dynamic = 0;
  return 0;
}

/* A large primitive element: its header (in the read buffer) is taken off, so that its
 * contents start the heap copy and a value made of them starts a heap element of its own.
 * The decoder then reads the contents implicitly, the header being checked already. */
int contentsOnHeap(ASN1CTXT* pctxt, const qn::bstrm::Header& h, bool borrow,
                   qn::bstrm::Element* e) {
  qn::bstrm::consumeBuffered(pctxt, h.octets);
  qn::xd::setConstructedFlag(pctxt, false);
  e->tagging = ASN1IMPL;
  e->length = h.len;
  return onHeap(pctxt, 0, h.len, borrow, e);
}

}  // namespace

namespace qn::bstrm {

int readStreamLength(const ASN1OCTET* p, ASN1UINT end, ASN1UINT* idx_p, int* len_p) {
  ASN1UINT idx = *idx_p;
  if (idx >= end) return ASN_E_ENDOFBUF;
  ASN1UINT value = p[idx++];
  if (value == 0x80) {
    *len_p = ASN_K_INDEFLEN;
  } else if (value > 0x80) {
    ASN1UINT count = value & 0x7F;
    if (count > 4) return ASN_E_INVLEN;
    value = 0;
    while (count-- > 0) {
      if (idx >= end) return ASN_E_ENDOFBUF;
      value = (value << 8) | p[idx++];
    }
    if (value > 0x7FFFFFFFu) return ASN_E_INVLEN;
    *len_p = (int)value;
  } else {
    *len_p = (int)value;
  }
  *idx_p = idx;
  return 0;
}

int peekHeader(ASN1CTXT* pctxt, Header* h) {
  /* Most headers are a one-octet identifier and a short length already in the buffer. */
  const ASN1BUFFER& b = pctxt->buffer;
  if (ensureBuffered(pctxt, 2) >= 2) {
    const ASN1OCTET* p = b.data + b.byteIndex;
    if ((p[0] & 0x1F) != 0x1F && p[1] < 0x80) {
      h->tag = qn::xd::tagOfOctet(p[0]);
      h->len = p[1];
      h->octets = 2;
      return 0;
    }
  }
  long avail = ensureBuffered(pctxt, kMaxHeader);
  if (avail < 0) return (int)avail;
  const ASN1OCTET* p = pctxt->buffer.data + pctxt->buffer.byteIndex;
  ASN1UINT idx = 0;
  int stat = qn::xd::readTag(p, (ASN1UINT)avail, &idx, &h->tag);
  if (stat < 0) return stat;
  stat = readStreamLength(p, (ASN1UINT)avail, &idx, &h->len);
  if (stat < 0) return stat;
  if (h->len == ASN_K_INDEFLEN && !(h->tag & TM_CONS)) return ASN_E_INVLEN;
  h->octets = idx;
  return 0;
}

int openElement(ASN1CTXT* pctxt, int tagging, int length, ASN1TagType expected, bool borrow,
                Element* e) {
  e->tagging = tagging;
  e->length = length;
  ASN1UINT headerOctets = 0;
  if (tagging) {
    Header h = {0, 0, 0};
    int stat = peekHeader(pctxt, &h);
    if (stat < 0) return LOG_RTERR(pctxt, stat);
    if (expected != ASN_K_NOTAG && (h.tag & ~TM_CONS) != expected) {
      /* Reported as the buffer decoder reports it, before anything is read. */
      qn::xd::addTagParms(pctxt, expected, h.tag);
      return LOG_RTERR(pctxt, ASN_E_IDNOTFOU);
    }
    headerOctets = h.octets;
    length = h.len;
    if (!(h.tag & TM_CONS) && (ASN1UINT)length > pctxt->pStream->bufsize - headerOctets)
      return contentsOnHeap(pctxt, h, borrow, e);
  } else {
    long avail = ensureBuffered(pctxt, 0);
    if (avail < 0) return (int)avail;
    /* The decoder reports a bad length over no contents at all. */
    if (length < 0 && length != ASN_K_INDEFLEN) return inReadBuffer(pctxt, 0, e);
  }
  if (length != ASN_K_INDEFLEN && (ASN1UINT)length <= pctxt->pStream->bufsize - headerOctets) {
    const ASN1UINT extent = headerOctets + (ASN1UINT)length;
    long avail = ensureBuffered(pctxt, extent);
    if (avail < 0) return (int)avail;
    if ((ASN1UINT)avail < extent) return LOG_RTERR(pctxt, ASN_E_ENDOFBUF);
    return inReadBuffer(pctxt, extent, e);
  }
  ASN1UINT extent = 0;
  if (length == ASN_K_INDEFLEN && indefiniteExtent(pctxt, tagging != 0, &extent))
    return inReadBuffer(pctxt, extent, e);
  return onHeap(pctxt, headerOctets, length, borrow, e);
}

int skipElement(ASN1CTXT* pctxt) {
  Header h = {0, 0, 0};
  int stat = peekHeader(pctxt, &h);
  if (stat < 0) return LOG_RTERR(pctxt, stat);
  stat = transfer(pctxt, nullptr, h.octets);
  if (stat < 0) return stat;
  return h.len == ASN_K_INDEFLEN ? transferToEOC(pctxt, nullptr)
                                 : transfer(pctxt, nullptr, (ASN1UINT)h.len);
}

int closeHeapElement(ASN1CTXT* pctxt, Element* e, int stat, const void* kept) {
  restoreWindowFlags(pctxt, e);
  pctxt->buffer = e->saved;
  const ASN1OCTET* p = static_cast<const ASN1OCTET*>(kept);
  const bool inArea = p && p >= e->area && p < e->area + e->extent;
  if (!inArea) rtMemHeapFreePtr(&pctxt->memHeap, e->area);
  return stat;
}

}  // namespace qn::bstrm
