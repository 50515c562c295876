/*
 * Private to the generated codecs: the small inline pieces every generated decoder and encoder
 * repeats, kept here so that the generated code reads as a list of runtime calls.
 *
 * Contents tracking: a generated decoder records where the contents of a constructed value
 * began and how long they are (ASN1CCB, length ASN_K_INDEFLEN for end-of-contents octets), asks
 * before each element whether the contents are over, and closes them at the end.
 */
#ifndef QUILLON_ASN1GENSUPPORT_H
#define QUILLON_ASN1GENSUPPORT_H

#include <stdint.h>

#include <quillon/asn1berdec.h>
#include <quillon/asn1type.h>

/* True when no element of the contents is left: for a definite length, when its octets have
 * been read or the data ends; for an indefinite one, at its end-of-contents octets (left
 * unread) or when fewer than two octets remain. */
inline bool xd_endOfContents(const ASN1CTXT* pctxt, const ASN1CCB* ccb) {
  const ASN1BUFFER& buf = pctxt->buffer;
  if (buf.byteIndex >= buf.size) return true;
  if (ccb->len == ASN_K_INDEFLEN) {
    return buf.size - buf.byteIndex < 2 ||
           (buf.data[buf.byteIndex] == 0 && buf.data[buf.byteIndex + 1] == 0);
  }
  return buf.data + buf.byteIndex - ccb->ptr >= ccb->len;
}

/* Ends the contents: consumes the end-of-contents octets of an indefinite length (-5 when
 * they are not there, -2 when the data ended first); for a definite length checks that the
 * elements read filled exactly that many octets (-5 when one ran past the end). Records
 * nothing: the generated caller records the status with its own location. */
inline int xd_closeContents(ASN1CTXT* pctxt, const ASN1CCB* ccb) {
  ASN1BUFFER& buf = pctxt->buffer;
  if (ccb->len == ASN_K_INDEFLEN) {
    if (buf.byteIndex >= buf.size || buf.size - buf.byteIndex < 2) return ASN_E_ENDOFBUF;
    if (buf.data[buf.byteIndex] != 0 || buf.data[buf.byteIndex + 1] != 0) return ASN_E_INVLEN;
    buf.byteIndex += 2;
    return 0;
  }
  return buf.data + buf.byteIndex - ccb->ptr == ccb->len ? 0 : ASN_E_INVLEN;
}

/* The next element's tag without reading it: class and number, the constructed bit clear (so
 * that both forms of a string compare equal). ASN_K_NOTAG when no complete identifier is left,
 * so that a comparison with any real tag fails. */
inline ASN1TagType xd_peekTag(const ASN1CTXT* pctxt) {
  const ASN1BUFFER& buf = pctxt->buffer;
  ASN1UINT idx = buf.byteIndex;
  if (idx >= buf.size) return ASN_K_NOTAG;
  ASN1OCTET first = buf.data[idx++];
  ASN1TagType cls = (ASN1TagType)(first & 0xC0) << 24;
  if ((first & 0x1F) != 0x1F) return cls | (first & 0x1Fu);
  ASN1UINT number = 0;
  ASN1OCTET octet;
  do {
    if (idx >= buf.size || number > (TM_IDCODE_MASK >> 7)) return ASN_K_NOTAG;
    octet = buf.data[idx++];
    number = (number << 7) | (octet & 0x7Fu);
  } while (octet & 0x80);
  return cls | number;
}

/* The bits of a named-bit string that DER writes: trailing zero bits are dropped, so a value
 * keeps its capacity in numbits while it encodes its shortest form. */
inline ASN1UINT rtNamedBitsLength(const ASN1OCTET* data, ASN1UINT numbits) {
  while (numbits > 0 && !(data[(numbits - 1) / 8] & (0x80u >> ((numbits - 1) % 8)))) numbits--;
  return numbits;
}

/* Decoders of the types that can contain themselves (CMP messages nest PKIMessages, an
 * attribute can hold a name holding attributes) count their depth in the last reserved slot
 * of the context, and a message nested deeper than this fails with -22 instead of exhausting
 * the stack. The count rises on entry and falls on every way out. */
const uintptr_t ASN_K_MAXNESTING = 64;

class ASN1DecodeNesting {
 public:
  explicit ASN1DecodeNesting(ASN1CTXT* pctxt)
      : mpSlot(&pctxt->reserved[ASN_K_CTXTRESERVED - 1]) {
    *mpSlot = reinterpret_cast<void*>(reinterpret_cast<uintptr_t>(*mpSlot) + 1);
  }
  ~ASN1DecodeNesting() {
    *mpSlot = reinterpret_cast<void*>(reinterpret_cast<uintptr_t>(*mpSlot) - 1);
  }
  ASN1DecodeNesting(const ASN1DecodeNesting&) = delete;
  ASN1DecodeNesting& operator=(const ASN1DecodeNesting&) = delete;

  bool tooDeep() const { return reinterpret_cast<uintptr_t>(*mpSlot) > ASN_K_MAXNESTING; }

 private:
  void** mpSlot;
};

/* Object sets find an identifier through buckets keyed by its arc count and last arc: the
 * identifiers of a set share their leading arcs, so a bucket holds one or two of them. Each
 * bucket lists its objects in table order, so the first match is the first in the table, as a
 * linear search would find it. ASN1_OBJSET_BUCKETS (a power of two) and the arrays are the set
 * class's; kNoObject ends a bucket. */
const ASN1USINT kNoObject = 0xFFFF;

inline unsigned objectSetBucket(const ASN1OBJID& id) {
  const ASN1UINT last = id.numids != 0 ? id.subid[id.numids - 1] : 0;
  return (last * 31u + id.numids) & (ASN1_OBJSET_BUCKETS - 1);
}

template <class Object>
void indexObjectSet(const Object* const* objects, ASN1UINT count, ASN1USINT* first,
                    ASN1USINT* next) {
  for (unsigned b = 0; b < ASN1_OBJSET_BUCKETS; ++b) first[b] = kNoObject;
  /* From the last object back, so that every bucket ends up in table order. */
  for (ASN1UINT i = count; i-- > 0;) {
    const unsigned b = objectSetBucket(objects[i]->id);
    next[i] = first[b];
    first[b] = (ASN1USINT)i;
  }
}

template <class Object>
const Object* findInObjectSet(const Object* const* objects, const ASN1USINT* first,
                              const ASN1USINT* next, const ASN1OBJID& key) {
  for (ASN1USINT i = first[objectSetBucket(key)]; i != kNoObject; i = next[i]) {
    if (objects[i]->id == key) return objects[i];
  }
  return 0;
}

#endif
