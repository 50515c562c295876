/*
 * Private to the BER encoder: the inline pieces every xe_ source shares. Encoders count what
 * they will write, make room once, and store octets straight into the buffer, so the hot path
 * (tags, lengths, small integers) never calls the C library's copy.
 */
#ifndef QUILLON_XE_COMMON_H
#define QUILLON_XE_COMMON_H

#include <quillon/asn1berenc.h>

#include <type_traits>

#include "rtErrLog.h"

/* Makes room for n more octets in front of the encoding; 0 or a status. */
static inline int xeReserve(ASN1CTXT* pctxt, ASN1UINT n) {
  if (pctxt->buffer.byteIndex >= n) return 0;
  return xe_expandBuffer(pctxt, n);
}

/* Claims n octets already reserved and returns where they start. */
static inline ASN1OCTET* xeClaim(ASN1CTXT* pctxt, ASN1UINT n) {
  pctxt->buffer.byteIndex -= n;
  return pctxt->buffer.data + pctxt->buffer.byteIndex;
}

static inline int xePutOctet(ASN1CTXT* pctxt, ASN1OCTET octet) {
  int stat = xeReserve(pctxt, 1);
  if (stat < 0) return stat;
  *xeClaim(pctxt, 1) = octet;
  return 1;
}

/* Number of significant bits of an unsigned word (0 for 0). */
template <typename U>
static inline unsigned xeBitLength(U value) {
  static_assert(std::is_unsigned<U>::value && sizeof(U) <= 8, "unsigned word expected");
  if (value == 0) return 0;
  if (sizeof(U) <= sizeof(unsigned))
    return 8 * sizeof(unsigned) - (unsigned)__builtin_clz((unsigned)value);
  return 64 - (unsigned)__builtin_clzll((unsigned long long)value);
}

/* ---- Base-128 numbers (tag numbers, OID arcs) ------------------------------------------- */

template <typename U>
static inline unsigned xeBase128Count(U value) {
  unsigned bits = xeBitLength(value);
  return bits == 0 ? 1 : (bits + 6) / 7;
}

/* Stores value in n octets at p, the last group without the continuation bit. */
template <typename U>
static inline void xeStoreBase128(ASN1OCTET* p, unsigned n, U value) {
  p[n - 1] = (ASN1OCTET)(value & 0x7F);
  for (unsigned i = n - 1; i-- > 0;) {
    value >>= 7;
    p[i] = (ASN1OCTET)(0x80 | (value & 0x7F));
  }
}

template <typename U>
static inline int xePutBase128(ASN1CTXT* pctxt, U value) {
  unsigned n = xeBase128Count(value);
  int stat = xeReserve(pctxt, n);
  if (stat < 0) return stat;
  xeStoreBase128(xeClaim(pctxt, n), n, value);
  return (int)n;
}

/* ---- Integers of every width ------------------------------------------------------------ */

/* Octets of the minimal two's complement form. An unsigned value gets room for a zero sign
 * bit, which is what puts 0x00 in front of a value whose top bit is set. */
template <typename T>
static inline unsigned xeIntOctetCount(T value) {
  using U = typename std::make_unsigned<T>::type;
  U magnitudeBits = (std::is_signed<T>::value && value < 0) ? (U)~value : (U)value;
  return xeBitLength(magnitudeBits) / 8 + 1;
}

/* Stores the n low-order octets of value at p, most significant first; octets beyond the
 * value's width take its sign (an arithmetic shift of a signed type). */
template <typename T>
static inline void xeStoreIntOctets(ASN1OCTET* p, unsigned n, T value) {
  for (unsigned i = n; i-- > 0;) {
    p[i] = (ASN1OCTET)value;
    value = (T)(value >> 8);
  }
}

template <typename T>
static inline int xePutIntContents(ASN1CTXT* pctxt, T value) {
  unsigned n = xeIntOctetCount(value);
  int stat = xeReserve(pctxt, n);
  if (stat < 0) return stat;
  xeStoreIntOctets(xeClaim(pctxt, n), n, value);
  return (int)n;
}

/* The tail of every primitive encoder: contents of len octets are written (or len is a
 * status); put the universal tag and length in front when tagging asks for them. */
static inline int xeFinishPrimitive(ASN1CTXT* pctxt, int len, int tagging, ASN1TagType tag) {
  if (len < 0 || !tagging) return len;
  return xe_tag_len(pctxt, tag, len);
}

/* Integer encoders of every width and signedness share this; 8 and 16-bit values arrive
 * widened to 32 bits. */
template <typename T>
static inline int xeEncodeInteger(ASN1CTXT* pctxt, T value, int tagging, ASN1TagType tag) {
  return xeFinishPrimitive(pctxt, xePutIntContents(pctxt, value), tagging, tag);
}

#endif
