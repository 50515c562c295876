/*
 * Private to the stream coders: how a value goes between the buffer coders and a stream.
 *
 * Encoding runs the buffer encoder (which writes backwards) into a small reverse buffer on the
 * stack in place of the context's buffer, then writes what it produced forward to the stream;
 * long strings write their header that way and their octets straight from the value.
 *
 * Decoding makes the next element available in memory and runs the buffer decoder over it with
 * the context's buffer pointing at it: in the stream's read buffer when it fits, so that a
 * failed decode leaves it unread, else in heap memory read from the stream.
 */
#ifndef QUILLON_BERSTRMCOMMON_H
#define QUILLON_BERSTRMCOMMON_H

#include <quillon/asn1berStream.h>
#include <quillon/asn1berdec.h>
#include <quillon/asn1berenc.h>
#include <quillon/rtMemHeap.h>
#include <quillon/rtStream.h>

#include "rtErrLog.h"

namespace qn::bstrm {

/* ---- Encoding --------------------------------------------------------------------------- */

/* Room for the longest primitive the bounded encoders produce: an identifier of 128 64-bit
 * arcs with its header, and one CER segment of 1000 octets with its header. */
constexpr ASN1UINT kLocalEncodeSize = 1536;

/* -32/-30 (recorded) unless the context has an output stream. */
int checkOutput(ASN1CTXT* pctxt);

/* Passes n octets to the stream (staged when it is buffered); 0 or a status. */
int writeOctets(ASN1CTXT* pctxt, const ASN1OCTET* data, ASN1UINT n);

/* A reverse buffer for one encoder run, in place of the context's buffer until finish(). */
class ReverseBuffer {
 public:
  ReverseBuffer(ASN1CTXT* pctxt, ASN1UINT room);
  ReverseBuffer(const ReverseBuffer&) = delete;
  ReverseBuffer& operator=(const ReverseBuffer&) = delete;
  /* Puts the context's buffer back and writes len octets of output (or returns len when it is
   * a status). */
  int finish(int len);

 private:
  ASN1CTXT* pctxt_;
  ASN1BUFFER saved_;
  ASN1OCTET local_[kLocalEncodeSize];
};

/* Runs a buffer encoder over a reverse buffer of at least room octets and writes its output
 * to the stream. Returns the octets written or a status. */
template <typename Encode>
int encodeVia(ASN1CTXT* pctxt, ASN1UINT room, Encode encode) {
  int stat = checkOutput(pctxt);
  if (stat < 0) return stat;
  ReverseBuffer rb(pctxt, room);
  return rb.finish(encode());
}

/* An identifier (with ASN1EXPL) and a length; the octets written. */
int writeHeader(ASN1CTXT* pctxt, int tagging, ASN1TagType tag, int length);

/* A primitive coded by a buffer encoder taking a tagging argument: with ASN1EXPL as it is,
 * with ASN1IMPL its contents behind their length. */
template <typename Encode>
int encodePrimitive(ASN1CTXT* pctxt, int tagging, Encode encode,
                    ASN1UINT room = kLocalEncodeSize) {
  return encodeVia(pctxt, room, [&]() {
    if (tagging) return encode(ASN1EXPL);
    int len = encode(ASN1IMPL);
    if (len < 0) return len;
    int n = xe_len(pctxt, len);
    return n < 0 ? n : len + n;
  });
}

/* Writes one segment of a CER string: contents octets [offset, offset + n) of the value, with
 * its own header; last is set for the final segment. Returns the octets written. */
typedef int (*SegmentWriter)(ASN1CTXT* pctxt, const void* value, ASN1UINT offset, ASN1UINT n,
                             bool last);

/* CER puts at most this many contents octets in one primitive encoding or segment. */
constexpr ASN1UINT kCerSegment = 1000;

/* A segment of an octet string or 8-bit text (value: its octets) as a primitive OCTET STRING. */
int writeOctetSegment(ASN1CTXT* pctxt, const void* value, ASN1UINT offset, ASN1UINT n, bool);

/* The constructed CER form: consTag's identifier (with ASN1EXPL) and an indefinite length,
 * segments of step octets over total octets, end-of-contents. */
int writeSegmented(ASN1CTXT* pctxt, int tagging, ASN1TagType consTag, ASN1UINT total,
                   ASN1UINT step, SegmentWriter writer, const void* value);

/* The octet in front of a bit string's data: how many bits of its last octet are unused. */
inline ASN1OCTET unusedBits(ASN1UINT numbits) { return (ASN1OCTET)((8 - numbits % 8) % 8); }

/* Characters [first, first + n) of a BMP or universal string as contents octets, converted by
 * the buffer encoder (xe_16BitCharStr, xe_32BitCharStr) in pieces that fit the local buffer. */
template <typename Str>
using WideEncoder = int (*)(ASN1CTXT*, const Str*, int, ASN1TagType);

template <typename Str>
int writeWideChars(ASN1CTXT* pctxt, const Str* value, ASN1UINT first, ASN1UINT n,
                   WideEncoder<Str> encode) {
  const ASN1UINT perPiece = (kLocalEncodeSize - 16) / (ASN1UINT)sizeof(*value->data);
  int count = 0;
  for (ASN1UINT done = 0; done < n;) {
    const ASN1UINT piece = n - done < perPiece ? n - done : perPiece;
    const Str part = {piece, value->data + first + done};
    int stat = encodeVia(pctxt, kLocalEncodeSize,
                         [&]() { return encode(pctxt, &part, ASN1IMPL, 0); });
    if (stat < 0) return stat;
    count += stat;
    done += piece;
  }
  return count;
}

/* Contents longer than this cannot be counted in the int results. */
constexpr ASN1UINT kMaxContents = 0x7FFFFF00u;

/* ---- Decoding --------------------------------------------------------------------------- */

/* Tag and length at the read position, and how many octets they take. */
struct Header {
  ASN1TagType tag;
  int len;
  ASN1UINT octets;
};

/* Unread octets in the read buffer once count of them are there, fewer only at the end of
 * the stream; or a recorded status when the context has no input stream. The common case,
 * a buffered input stream already holding them, needs no call. */
inline long ensureBuffered(ASN1CTXT* pctxt, ASN1UINT count) {
  const ASN1BUFFER& b = pctxt->buffer;
  const ASN1USINT bufferedInput = OSRTSTRMF_BUFFERED | OSRTSTRMF_INPUT;
  if (pctxt->pStream && (pctxt->pStream->flags & bufferedInput) == bufferedInput &&
      b.size - b.byteIndex >= count)
    return (long)(b.size - b.byteIndex);
  return rtStreamBufPreRead(pctxt, count);
}

/* A length at *idx_p of the count octets at p, whose contents need not follow yet. */
int readStreamLength(const ASN1OCTET* p, ASN1UINT count, ASN1UINT* idx_p, int* len_p);

/* Reads the header at the read position without consuming it; a quiet status (-2 at the end
 * of the stream, -5, -21), or one already recorded when the stream itself fails. */
int peekHeader(ASN1CTXT* pctxt, Header* h);

/* Consumes n octets known to be in the read buffer. */
inline void consumeBuffered(ASN1CTXT* pctxt, ASN1UINT n) {
  pctxt->buffer.byteIndex += n;
  pctxt->pStream->bytesRead += n;
}

/* Reads past one complete element of either length form. Records its failures. */
int skipElement(ASN1CTXT* pctxt);

/* Adds the calling source's location to the trace of a failure and passes stat on; internal
 * to each source, so that the location is its own. */
static inline int traced(ASN1CTXT* pctxt, int stat) {
  return stat < 0 ? LOG_RTERR(pctxt, stat) : stat;
}

/* The element the buffer decoder is about to read, and what to restore afterwards (of the
 * buffer record, only the position for an element of the read buffer). */
struct Element {
  ASN1BUFFER saved;
  ASN1USINT savedFlags;
  ASN1OCTET* area; /* heap copy of a large element; null when decoded in the read buffer */
  ASN1UINT extent;
  /* The tagging and length the decoder is to read it with: the caller's, or implicit over
   * the contents alone when a large primitive element's header was taken off first. */
  int tagging;
  int length;
};

/* Decoders see an element as a complete buffer of known size, and copy what they keep. */
constexpr ASN1USINT kWindowFlags = ASN1INDEFLEN | ASN1LASTEOC | ASN1FASTCOPY;

inline void saveWindowFlags(ASN1CTXT* pctxt, Element* e) {
  e->savedFlags = pctxt->flags;
  pctxt->flags &= (ASN1USINT)~kWindowFlags;
}

inline void restoreWindowFlags(ASN1CTXT* pctxt, const Element* e) {
  pctxt->flags = (ASN1USINT)((pctxt->flags & ~kWindowFlags) | (e->savedFlags & kWindowFlags));
}

/* The element is the next extent octets of the read buffer, which the decoder reads in place.
 * Its header and lengths keep the decoder within them, and the end of the buffered octets
 * within memory, so only the position is kept: saving and restoring more of the buffer record
 * would make every value wait for the store of the position before it. */
inline void windowInReadBuffer(ASN1CTXT* pctxt, ASN1UINT extent, Element* e) {
  saveWindowFlags(pctxt, e);
  e->saved.byteIndex = pctxt->buffer.byteIndex;
  e->area = nullptr;
  e->extent = extent;
}

/* The common case in line: a definite element with a one-octet identifier of the expected
 * universal tag and a short length, or implicit contents, whole in the read buffer. False
 * leaves everything to openElement. */
inline bool openBufferedElement(ASN1CTXT* pctxt, int tagging, int length, ASN1TagType expected,
                                Element* e) {
  e->tagging = tagging;
  e->length = length;
  const OSRTSTREAM* s = pctxt->pStream;
  const ASN1USINT bufferedInput = OSRTSTRMF_BUFFERED | OSRTSTRMF_INPUT;
  if (!s || (s->flags & bufferedInput) != bufferedInput) return false;
  const ASN1BUFFER& b = pctxt->buffer;
  const ASN1UINT avail = b.size - b.byteIndex;
  ASN1UINT extent;
  if (tagging) {
    const ASN1OCTET* p = b.data + b.byteIndex;
    if (avail < 2 || (p[0] & 0x1F) == 0x1F || p[1] >= 0x80) return false;
    if (expected != ASN_K_NOTAG && (ASN1TagType)(p[0] & 0xDF) != expected) return false;
    extent = 2u + p[1];
  } else {
    if (length < 0) return false;
    extent = (ASN1UINT)length;
  }
  if (extent > avail) return false;
  windowInReadBuffer(pctxt, extent, e);
  return true;
}

/* Makes the next element available to a buffer decoder: with tagging its header and
 * contents, else the contents of length octets (the caller's header read). expected is the
 * universal tag the decoder will check (ASN_K_NOTAG: any): a mismatch is -3 with the buffer
 * decoder's parameters, nothing read. borrow lets the value point into a heap copy, where the
 * decoder gives the copy's first octet as the value's (so that it can be freed on its own), or
 * where the caller asked for fast copy. Records its failures. */
int openElement(ASN1CTXT* pctxt, int tagging, int length, ASN1TagType expected, bool borrow,
                Element* e);

/* Puts the stream's buffer back after a heap copy, freed unless kept points into it. */
int closeHeapElement(ASN1CTXT* pctxt, Element* e, int stat, const void* kept);

/* Puts the stream's buffer back and consumes the element, or on failure leaves an element of
 * the read buffer unread. Returns stat. */
inline int closeElement(ASN1CTXT* pctxt, Element* e, int stat, const void* kept) {
  if (e->area) return closeHeapElement(pctxt, e, stat, kept);
  restoreWindowFlags(pctxt, e);
  pctxt->buffer.byteIndex = e->saved.byteIndex;
  if (stat >= 0) consumeBuffered(pctxt, e->extent);
  return stat;
}

/* Opens the element in line when it can, else through openElement. */
inline int openAnyElement(ASN1CTXT* pctxt, int tagging, int length, ASN1TagType expected,
                          bool borrow, Element* e) {
  if (openBufferedElement(pctxt, tagging, length, expected, e)) return 0;
  return openElement(pctxt, tagging, length, expected, borrow, e);
}

/* Runs a buffer decoder over the next element: decode(tagging, length) gives its status. */
template <typename Decode>
int decodeElement(ASN1CTXT* pctxt, int tagging, int length, ASN1TagType expected,
                  Decode decode) {
  Element e;
  int stat = openAnyElement(pctxt, tagging, length, expected, false, &e);
  if (stat < 0) return stat;
  return closeElement(pctxt, &e, decode(e.tagging, e.length), nullptr);
}

/* A value decoded by a buffer decoder of the common shape (ctxt, value, tagging, length),
 * with the location of the calling source added to the trace of a failure. */
template <typename T>
static inline int decodeValue(ASN1CTXT* pctxt, T* object_p, int tagging, int length,
                              ASN1TagType tag, int (*decode)(ASN1CTXT*, T*, int, int)) {
  return traced(pctxt, decodeElement(pctxt, tagging, length, tag, [&](int t, int len) {
                  return decode(pctxt, object_p, t, len);
                }));
}

/* The same for a decoder whose result (*result_p2) may point into a heap copy of a large
 * element (see openElement), which then becomes the value's memory instead of being copied
 * once more. */
template <typename Decode>
int decodeBorrowing(ASN1CTXT* pctxt, int tagging, int length, ASN1TagType expected,
                    bool borrow, const ASN1OCTET* const* result_p2, Decode decode) {
  Element e;
  int stat = openAnyElement(pctxt, tagging, length, expected, borrow, &e);
  if (stat < 0) return stat;
  stat = decode(e.tagging, e.length);
  return closeElement(pctxt, &e, stat, stat < 0 ? nullptr : *result_p2);
}

}  // namespace qn::bstrm

#endif
