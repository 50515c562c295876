/*
 * Integers of any length, converted between text, two's complement octets and a sign with a
 * magnitude. INTEGER values too wide for 64 bits (certificate serial numbers, key parameters)
 * are held as text in the value types; these functions translate.
 *
 * Text forms: decimal, or "0x", "0b", "0o" followed by hex (either case), binary or octal
 * digits, each after an optional '-'.
 */
#ifndef QUILLON_RTBIGINT_H
#define QUILLON_RTBIGINT_H

#include "asn1type.h"

QN_BEGIN_C

/* Magnitude without leading zero octets, most significant first (zero has numocts 0); sign
 * -1, 0 or +1. mag holds allocated octets; with dynamic set it came from the context's heap
 * and rtBigIntFree returns it. A caller may lend a buffer of its own after rtBigIntInit (mag,
 * allocated, dynamic 0): values stay in it while it has room (decimal text asks for up to two
 * octets more than the value needs), larger ones move to the heap. */
typedef struct ASN1BigInt {
  ASN1UINT numocts;
  ASN1OCTET* mag;
  int sign;
  ASN1UINT allocated;
  ASN1BOOL dynamic;
} ASN1BigInt;

/* Zero, with no buffer. */
QN_API void rtBigIntInit(ASN1BigInt* pInt);
/* Reads value in radix 2, 8, 10 or 16; radix 0 takes it from the prefix ("0x", "0b", "0o"
 * after the optional '-'), decimal without one. With an explicit radix the matching prefix
 * may be present. 0, or -18 for a null, empty or malformed text, -30 for another radix, -12
 * when memory runs out. */
QN_API int rtBigIntSetStr(ASN1CTXT* pctxt, ASN1BigInt* pInt, const char* value, int radix);
/* Reads the contents octets of an INTEGER (two's complement, most significant first; no
 * octets is zero). 0, -18 for null data with octets, -12 when memory runs out. */
QN_API int rtBigIntSetOctets(ASN1CTXT* pctxt, ASN1BigInt* pInt, const ASN1OCTET* data,
                             ASN1UINT numocts);
/* Writes the minimal two's complement form right-aligned in buf (it ends at buf + bufsize)
 * and returns its length; -1 when bufsize is too small (numocts + 1 always suffices). */
QN_API int rtBigIntGetOctets(ASN1CTXT* pctxt, const ASN1BigInt* pInt, ASN1OCTET* buf,
                             ASN1UINT bufsize);
/* Characters of rtBigIntToString's text in radix 2, 8, 10 or 16, sign and prefix included,
 * terminator excluded: exact for 2, 8 and 16; for 10 it may exceed the text by one, as it is
 * taken from the bit length. -30 for another radix. */
QN_API int rtBigIntDigitsNum(const ASN1BigInt* pInt, int radix);
/* The value as zero-terminated text in str: radix 10 plain decimal; 16 "0x" and two
 * lower-case digits per magnitude octet ("0x00" for zero); 2 "0b" and 8 "0o" without
 * leading zeros; negatives with a leading '-'. 0, -1 when strSize is too small, -30 for
 * another radix, -12 when memory for the decimal conversion runs out. */
QN_API int rtBigIntToString(ASN1CTXT* pctxt, const ASN1BigInt* pInt, int radix, char* str,
                            ASN1UINT strSize);
/* Returns heap memory and leaves the value zero, with no buffer. */
QN_API void rtBigIntFree(ASN1CTXT* pctxt, ASN1BigInt* pInt);

QN_END_C

#endif
