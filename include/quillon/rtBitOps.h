/*
 * Single bits of a plain byte array holding numbits bits. Bit 0 is the most significant bit of
 * the first byte: bit n lives in byte n / 8 under the mask 0x80 >> (n % 8), the order of a BIT
 * STRING's contents. A bit outside 0..numbits-1 (a negative one included) is never touched.
 */
#ifndef QUILLON_RTBITOPS_H
#define QUILLON_RTBITOPS_H

#include "asn1type.h"

QN_BEGIN_C

/* Sets the bit; returns its previous value (1 when it was already set, else 0), or -29 when the
 * bit is out of range and -30 for a null array. */
QN_API int rtSetBit(ASN1OCTET* pBits, int numbits, int bitIndex);
/* Clears the bit; returns its previous value, -29 or -30 as rtSetBit. */
QN_API int rtClearBit(ASN1OCTET* pBits, int numbits, int bitIndex);
/* The bit's value, 1 or 0; 0 for a bit out of range or a null array. */
QN_API int rtTestBit(const ASN1OCTET* pBits, int numbits, int bitIndex);

QN_END_C

#endif
