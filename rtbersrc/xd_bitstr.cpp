/* BIT STRING into heap memory (or in place) and into a caller's array. */
#include <string.h>

#include "xd_common.h"

using namespace qn::xd;

namespace {

/* Joins bit string segments: each brings its own unused-bits octet, and only the last one may
 * leave bits unused, or the joined string would have holes. */
struct BitCopy {
  SegmentCopy octets;
  ASN1UINT unused;
};

int copyBitSegment(void* state, const ASN1OCTET* segment, ASN1UINT numocts) {
  BitCopy* s = static_cast<BitCopy*>(state);
  if (numocts == 0) return ASN_E_INVLEN;
  if (s->unused != 0 || segment[0] > 7) return ASN_E_BADVALUE;
  if (numocts == 1 && segment[0] != 0) return ASN_E_INVLEN;
  s->unused = segment[0];
  return copySegment(&s->octets, segment + 1, numocts - 1);
}

int bitCount(ASN1UINT numocts, ASN1UINT unused, ASN1UINT capacity, ASN1UINT* numbits_p) {
  ASN1UINT64 bits = (ASN1UINT64)numocts * 8;
  if (bits > 0) bits -= unused;
  if (bits > capacity) return ASN_E_STROVFLW;
  *numbits_p = (ASN1UINT)bits;
  return 0;
}

int decodeConstructed(ASN1CTXT* pctxt, ASN1OCTET* object_p, ASN1UINT* numbits_p, int length) {
  const ASN1UINT capacity = *numbits_p;
  BitCopy state = {{object_p, capacity / 8 + (capacity % 8 != 0), 0}, 0};
  int stat = walkSegments(pctxt, ASN_ID_BITSTR, length, copyBitSegment, &state);
  if (stat < 0) return LOG_RTERR(pctxt, stat);
  stat = bitCount(state.octets.used, state.unused, capacity, numbits_p);
  if (stat < 0) return LOG_RTERR(pctxt, stat);
  return 0;
}

/* A single octet is an empty string and must say so with an unused count of 0; no octet at
 * all is deliberately accepted as empty too. */
int checkEmptyPrimitive(const ASN1OCTET* contents, int length) {
  return (length == 1 && contents[0] != 0) ? ASN_E_INVLEN : 0;
}

int decodePrimitive(ASN1CTXT* pctxt, ASN1OCTET* object_p, ASN1UINT* numbits_p, int length) {
  int stat = checkContents(pctxt, length);
  if (stat < 0) return LOG_RTERR(pctxt, stat);
  const ASN1OCTET* p = pctxt->buffer.data + pctxt->buffer.byteIndex;
  if (length < 2) {
    stat = checkEmptyPrimitive(p, length);
    if (stat < 0) return LOG_RTERR(pctxt, stat);
    *numbits_p = 0;
  } else {
    if (p[0] > 7) return LOG_RTERR(pctxt, ASN_E_BADVALUE);
    stat = bitCount((ASN1UINT)length - 1, p[0], *numbits_p, numbits_p);
    if (stat < 0) return LOG_RTERR(pctxt, stat);
    memcpy(object_p, p + 1, (size_t)length - 1);
  }
  pctxt->buffer.byteIndex += (ASN1UINT)length;
  return 0;
}

/* The capacity of size - 1 octets in bits must fit the 32-bit count. */
constexpr ASN1UINT kMaxDataOctets = 0xFFFFFFFFu / 8;

/* With fast copy the bits stay in the message: nothing to join, nothing to allocate. */
int decodeInPlace(ASN1CTXT* pctxt, const ASN1OCTET** object_p2, ASN1UINT* numbits_p,
                  int length) {
  const ASN1UINT numocts = (ASN1UINT)length - 1;
  if (numocts > kMaxDataOctets) return LOG_RTERR(pctxt, ASN_E_TOOBIG);
  const ASN1OCTET* p = pctxt->buffer.data + pctxt->buffer.byteIndex;
  if (p[0] > 7) return LOG_RTERR(pctxt, ASN_E_BADVALUE);
  *numbits_p = numocts * 8 - p[0];
  *object_p2 = p + 1;
  pctxt->buffer.byteIndex += (ASN1UINT)length;
  return 0;
}

int decodeIntoHeap(ASN1CTXT* pctxt, const ASN1OCTET** object_p2, ASN1UINT* numbits_p,
                   int length, ASN1UINT size) {
  const ASN1UINT numocts = size - 1;
  if (numocts > kMaxDataOctets) return LOG_RTERR(pctxt, ASN_E_TOOBIG);
  ASN1OCTET* mem = nullptr;
  ASN1OCTET none;
  if (numocts) {
    mem = static_cast<ASN1OCTET*>(allocValue(pctxt, numocts));
    if (!mem) return LOG_RTERR(pctxt, ASN_E_NOMEM);
  }
  *numbits_p = numocts * 8;
  int stat = xd_bitstr_s(pctxt, mem ? mem : &none, numbits_p, ASN1IMPL, length);
  if (stat < 0 || *numbits_p == 0) {
    if (mem) rtMemHeapFreePtr(&pctxt->memHeap, mem);
    mem = nullptr;
  }
  if (stat < 0) return LOG_RTERR(pctxt, stat);
  *object_p2 = mem;
  return 0;
}

}  // namespace

QN_BEGIN_C

int xd_bitstr_s(ASN1CTXT* pctxt, ASN1OCTET* object_p, ASN1UINT* numbits_p, int tagging,
                int length) {
  if (tagging) {
    int stat = xd_match1(pctxt, ASN_ID_BITSTR, &length);
    if (stat < 0) return LOG_RTERR(pctxt, stat);
  }
  if (constructedString(pctxt, length))
    return decodeConstructed(pctxt, object_p, numbits_p, length);
  return decodePrimitive(pctxt, object_p, numbits_p, length);
}

int xd_bitstr(ASN1CTXT* pctxt, const ASN1OCTET** object_p2, ASN1UINT* numbits_p, int tagging,
              int length) {
  if (tagging) {
    int stat = xd_match1(pctxt, ASN_ID_BITSTR, &length);
    if (stat < 0) return LOG_RTERR(pctxt, stat);
  }
  const bool constructed = constructedString(pctxt, length);
  int size = length;
  if (constructed) {
    int span = length;
    int stat = xd_consStrIndefLenAndSize(pctxt, ASN_ID_BITSTR, &span, &size);
    if (stat < 0) return LOG_RTERR(pctxt, stat);
  } else {
    int stat = checkContents(pctxt, length);
    if (stat < 0) return LOG_RTERR(pctxt, stat);
    if (size < 2) {
      stat = checkEmptyPrimitive(pctxt->buffer.data + pctxt->buffer.byteIndex, size);
      if (stat < 0) return LOG_RTERR(pctxt, stat);
      pctxt->buffer.byteIndex += (ASN1UINT)size;
      *object_p2 = nullptr;
      *numbits_p = 0;
      return 0;
    }
    if (pctxt->flags & ASN1FASTCOPY) return decodeInPlace(pctxt, object_p2, numbits_p, length);
  }
  return decodeIntoHeap(pctxt, object_p2, numbits_p, length, (ASN1UINT)size);
}

QN_END_C
