/*
 * Private to the BER decoder: the inline pieces every xd_ source shares.
 *
 * The readers here are quiet: they return a status and record nothing, because look-ahead
 * (xd_chkend, xd_match's search, counting) must be able to fail without leaving an error in the
 * context's record, whose first status wins. The public functions record what they return.
 * They work on a local position and commit it only on success, so a failure leaves the buffer
 * as it was. Every read is bounded by an explicit end; the hot cases (one-octet identifier,
 * short-form length) are straight-line code.
 */
#ifndef QUILLON_XD_COMMON_H
#define QUILLON_XD_COMMON_H

#include <quillon/asn1berdec.h>
#include <quillon/rtContext.h>
#include <quillon/rtMemHeap.h>

#include "rtErrLog.h"

namespace qn::xd {

/* Constructed string segments nest at most this deep, the same bound as the runtime's
 * pointer stack, so hostile nesting cannot exhaust the call stack. */
constexpr int kMaxSegmentDepth = 32;

/* Reads a length whose first octet is at *idx_p, reading nothing at or past end. */
inline int readLength(const ASN1OCTET* data, ASN1UINT end, ASN1UINT* idx_p, int* len_p) {
  ASN1UINT idx = *idx_p;
  if (idx >= end) return ASN_E_ENDOFBUF;
  ASN1UINT value = data[idx++];
  if (value >= 0x80) {
    if (value == 0x80) {
      *idx_p = idx;
      *len_p = ASN_K_INDEFLEN;
      return 0;
    }
    ASN1UINT count = value & 0x7F;
    if (count > 4) return ASN_E_INVLEN;
    value = 0;
    while (count-- > 0) {
      if (idx >= end) return ASN_E_ENDOFBUF;
      value = (value << 8) | data[idx++];
    }
    if (value > 0x7FFFFFFFu) return ASN_E_INVLEN;
  }
  if (value > end - idx) return ASN_E_INVLEN;
  *idx_p = idx;
  *len_p = (int)value;
  return 0;
}

/* Tag of a one-octet identifier; also how a mismatching octet is reported. */
inline ASN1TagType tagOfOctet(ASN1OCTET octet) {
  return ((ASN1TagType)(octet & 0xE0) << 24) | (octet & 0x1Fu);
}

inline int readTag(const ASN1OCTET* data, ASN1UINT end, ASN1UINT* idx_p, ASN1TagType* tag_p) {
  ASN1UINT idx = *idx_p;
  if (idx >= end) return ASN_E_ENDOFBUF;
  ASN1OCTET first = data[idx++];
  ASN1TagType tag = tagOfOctet(first);
  if ((first & 0x1F) == 0x1F) {
    ASN1UINT number = 0;
    ASN1OCTET octet;
    do {
      if (idx >= end) return ASN_E_ENDOFBUF;
      if (number > (TM_IDCODE_MASK >> 7)) return ASN_E_BADTAG;
      octet = data[idx++];
      number = (number << 7) | (octet & 0x7Fu);
    } while (octet & 0x80);
    tag = (tag & ~TM_IDCODE_MASK) | number;
  }
  *idx_p = idx;
  *tag_p = tag;
  return 0;
}

/* One identifier and one length; an indefinite length is only legal on a constructed tag. */
inline int readHeaderAt(const ASN1OCTET* data, ASN1UINT end, ASN1UINT* idx_p,
                        ASN1TagType* tag_p, int* len_p) {
  ASN1UINT idx = *idx_p;
  ASN1TagType tag;
  int stat = readTag(data, end, &idx, &tag);
  if (stat < 0) return stat;
  int len;
  stat = readLength(data, end, &idx, &len);
  if (stat < 0) return stat;
  if (len == ASN_K_INDEFLEN && !(tag & TM_CONS)) return ASN_E_INVLEN;
  *idx_p = idx;
  *tag_p = tag;
  *len_p = len;
  return 0;
}

/* A stream that has seen its last end-of-contents octets has nothing more to give. */
inline bool streamEnded(const ASN1CTXT* pctxt) {
  const ASN1USINT both = ASN1INDEFLEN | ASN1LASTEOC;
  return (pctxt->flags & both) == both;
}

inline int readHeader(const ASN1CTXT* pctxt, ASN1UINT* idx_p, ASN1TagType* tag_p,
                      int* len_p) {
  if (streamEnded(pctxt)) return ASN_E_ENDOFBUF;
  return readHeaderAt(pctxt->buffer.data, pctxt->buffer.size, idx_p, tag_p, len_p);
}

inline void setConstructedFlag(ASN1CTXT* pctxt, bool constructed) {
  if (constructed)
    pctxt->flags |= ASN1CONSTAG;
  else
    pctxt->flags &= (ASN1USINT)~ASN1CONSTAG;
}

/* From inside an indefinite-length value to just behind its end-of-contents octets. Every
 * header read consumes at least two octets, so the walk ends on any input. */
inline int skipToEOC(const ASN1OCTET* data, ASN1UINT end, ASN1UINT* idx_p) {
  ASN1UINT idx = *idx_p;
  for (ASN1UINT depth = 1; depth > 0;) {
    ASN1TagType tag;
    int len;
    int stat = readHeaderAt(data, end, &idx, &tag, &len);
    if (stat < 0) return stat;
    if (len == ASN_K_INDEFLEN)
      ++depth;
    else if (tag == 0 && len == 0)
      --depth;
    else
      idx += (ASN1UINT)len;
  }
  *idx_p = idx;
  return 0;
}

/* Past one complete element of either length form. */
inline int skipElement(const ASN1OCTET* data, ASN1UINT end, ASN1UINT* idx_p) {
  ASN1UINT idx = *idx_p;
  ASN1TagType tag;
  int len;
  int stat = readHeaderAt(data, end, &idx, &tag, &len);
  if (stat < 0) return stat;
  if (len == ASN_K_INDEFLEN) {
    stat = skipToEOC(data, end, &idx);
    if (stat < 0) return stat;
  } else {
    idx += (ASN1UINT)len;
  }
  *idx_p = idx;
  return 0;
}

/* Whether contents of length octets (the caller's, with implicit tagging) lie inside the
 * data: -5 for a negative or indefinite length on a primitive value, -2 when they run past. */
inline int checkContents(const ASN1CTXT* pctxt, int length) {
  if (length < 0) return ASN_E_INVLEN;
  const ASN1BUFFER& buf = pctxt->buffer;
  if (buf.byteIndex > buf.size || (ASN1UINT)length > buf.size - buf.byteIndex)
    return ASN_E_ENDOFBUF;
  return 0;
}

/* Adds the expected and the parsed tag of a -3 error, in that order. */
inline void addTagParms(ASN1CTXT* pctxt, ASN1TagType expected, ASN1TagType parsed) {
  rtErrAddTagParm(&pctxt->errInfo, expected);
  rtErrAddTagParm(&pctxt->errInfo, parsed);
}

/* The header of a primitive universal value whose identifier must be exactly the one octet
 * given (records its failures itself). */
int matchPrimitiveHeaderSlow(ASN1CTXT* pctxt, ASN1OCTET octet, int* len_p);

inline int matchPrimitiveHeader(ASN1CTXT* pctxt, ASN1OCTET octet, int* len_p) {
  ASN1BUFFER& buf = pctxt->buffer;
  ASN1UINT idx = buf.byteIndex;
  if (idx < buf.size && buf.size - idx >= 2 && buf.data[idx] == octet &&
      buf.data[idx + 1] < 0x80 && buf.data[idx + 1] <= buf.size - idx - 2 &&
      !streamEnded(pctxt)) {
    *len_p = buf.data[idx + 1];
    buf.byteIndex = idx + 2;
    pctxt->flags &= (ASN1USINT)~ASN1CONSTAG;
    return 0;
  }
  return matchPrimitiveHeaderSlow(pctxt, octet, len_p);
}

inline bool constructedString(const ASN1CTXT* pctxt, int length) {
  return length == ASN_K_INDEFLEN || (pctxt->flags & ASN1CONSTAG);
}

/* Heap memory of the context for decoded values. */
inline void* allocValue(ASN1CTXT* pctxt, size_t nbytes) {
  return rtMemHeapAlloc(&pctxt->memHeap, nbytes);
}

/* Receives the contents of each primitive segment of a constructed string, in order. */
typedef int (*SegmentSink)(void* state, const ASN1OCTET* segment, ASN1UINT numocts);

/* Walks the segments (universal tag segTag, nested constructed ones followed) of the
 * constructed string whose contents of length octets (ASN_K_INDEFLEN: up to end-of-contents)
 * start at the position, handing each primitive segment to sink; the position ends behind
 * the string. Records its failures. */
int walkSegments(ASN1CTXT* pctxt, ASN1TagType segTag, int length, SegmentSink sink,
                 void* state);

/* Sink state that appends segments to an array of capacity octets; -17 once it is full. */
struct SegmentCopy {
  ASN1OCTET* dest;
  ASN1UINT capacity;
  ASN1UINT used;
};
int copySegment(void* state, const ASN1OCTET* segment, ASN1UINT numocts);

/* The contents octets of an OCTET STRING-like value, primitive or constructed. A primitive
 * one is handed back in place when borrow is set; otherwise, and always for a constructed one,
 * it is copied to the heap with pad zero octets behind. Zero octets and no pad give null.
 * *copied_p tells whether the result is heap memory. Records its failures. */
int stringContents(ASN1CTXT* pctxt, int length, bool borrow, ASN1UINT pad,
                   const ASN1OCTET** data_p, ASN1UINT* numocts_p, bool* copied_p);

}  // namespace qn::xd

#endif
