/*
 * A BIT STRING value as a set of numbered bits that can grow. Bit 0 is the most significant bit
 * of the first byte (bit n: byte n / 8, mask 0x80 >> n % 8), the order of the encoding.
 *
 * Storage is the object's own value, a caller's ASN1TDynBitStr (whose data pointer and bit count
 * are changed in place), or a caller's array with a bit-count variable and a maximum. A string
 * with a maximum cannot grow beyond its array; an unbounded one (maximum all ones) grows from
 * the context's heap in steps of 1024 bytes beyond the need. When it grows out of a caller's
 * array the bits are copied into memory of the object's own and the caller's array is left
 * alone; memory of the object's own is returned to the heap by its destructor, so a caller's
 * value that was given such memory must not be used after the object is gone.
 *
 * Ranges of bits are half-open: (from, to) covers from .. to - 1.
 *
 * Statuses, recorded in the context's error record: -29 for a bit beyond the maximum, -5 for
 * growth of a string with a maximum, -30 for a null array or a range with from > to, -17 for
 * an output buffer too small, -12 when the heap is exhausted.
 */
#ifndef QUILLON_ASN1CBITSTR_H
#define QUILLON_ASN1CBITSTR_H

#include "asn1CppTypes.h"

class QN_API ASN1CBitStr : public ASN1CType {
 protected:
  ASN1TDynBitStr mMemBitStr;
  ASN1OCTET** mpUnits;
  ASN1UINT mMaxNumBits;
  ASN1UINT* mpNumBits;
  ASN1INT mUnitsUsed;
  ASN1INT mUnitsAllocated;
  ASN1BOOL mDynAlloc;

 public:
  /* An empty string of maximum 0, to be pointed at storage with init(). */
  ASN1CBitStr();
  /* An empty, unbounded string. */
  explicit ASN1CBitStr(ASN1MessageBufferIF& msgBuf);
  explicit ASN1CBitStr(ASN1Context& ctxt);
  /* A zeroed array of room for nbits bits and maximum nbits; 0: no array yet, unbounded. */
  ASN1CBitStr(ASN1MessageBufferIF& msgBuf, ASN1UINT nbits);
  ASN1CBitStr(ASN1Context& ctxt, ASN1UINT nbits);
  /* The caller's value, unbounded. */
  explicit ASN1CBitStr(ASN1TDynBitStr& bitStr);
  ASN1CBitStr(ASN1MessageBufferIF& msgBuf, ASN1TDynBitStr& bitStr);
  ASN1CBitStr(ASN1Context& ctxt, ASN1TDynBitStr& bitStr);
  /* The caller's array of room for maxNumBits bits and its bit-count variable (cut to the
   * maximum). Bits past the count are cleared, up to the end of the array. */
  ASN1CBitStr(ASN1OCTET* pBits, ASN1UINT& numbits, ASN1UINT maxNumBits);
  ASN1CBitStr(ASN1MessageBufferIF& msgBuf, ASN1OCTET* pBits, ASN1UINT& numbits,
              ASN1UINT maxNumBits);
  ASN1CBitStr(ASN1Context& ctxt, ASN1OCTET* pBits, ASN1UINT& numbits, ASN1UINT maxNumBits);
  /* A copy in memory of its own, sharing the source's context, with the source's maximum. */
  ASN1CBitStr(const ASN1CBitStr& bitStr);
  /* The same; with extendable set the copy is unbounded. */
  ASN1CBitStr(const ASN1CBitStr& bitStr, ASN1BOOL extendable);
  ASN1CBitStr& operator=(const ASN1CBitStr&) = delete;
  virtual ~ASN1CBitStr();

  /* Points the object at a caller's array and bit-count variable. Deliberately the byte
   * figures become count x 8 (used) and maxNumBits x 8 (room), eight times what the
   * constructor takes: the array must hold maxNumBits x 8 bytes. The array is not changed. */
  void init(ASN1OCTET* pBits, ASN1UINT& numbits, ASN1UINT maxNumBits);
  /* Points the object at a caller's value, unbounded. */
  void init(ASN1TDynBitStr& bitStr);

  /* Sets a bit (growing the string where it may) and raises the bit count past it. */
  int set(ASN1UINT bitIndex);
  int set(ASN1UINT fromIndex, ASN1UINT toIndex);
  /* 0 for bits beyond the maximum or the bytes in use. */
  ASN1BOOL get(ASN1UINT bitIndex);
  /* Copies bits from .. to - 1 into pBuf from its bit 0 (the rest of its last byte cleared);
   * pBuf needs (to - from + 7) / 8 bytes of its bufSize. Bits beyond the string read as 0. */
  int get(ASN1UINT fromIndex, ASN1UINT toIndex, ASN1OCTET* pBuf, int bufSize);
  /* Clears every bit; the bit count becomes 0. */
  void clear();
  /* Clear bits; trailing zero bits then no longer count. */
  int clear(ASN1UINT bitIndex);
  int clear(ASN1UINT fromIndex, ASN1UINT toIndex);
  /* Flip bits, growing where a bit becomes set; trailing zero bits then no longer count. */
  int invert(ASN1UINT bitIndex);
  int invert(ASN1UINT fromIndex, ASN1UINT toIndex);

  /* Bytes in use. */
  int size() const;
  /* Bits up to and including the last set bit (trailing zero bits do not count). */
  ASN1UINT length() const;
  /* Unused bits in the last byte in use, as a BIT STRING encoding counts them. */
  int unusedBitsInLastUnit() const;
  /* Number of set bits. */
  int cardinality() const;
  /* Drops trailing zero bytes and sets the bit count to length(). */
  void recalculateUnitsUsed();
  /* Copies the bytes in use into pBuf and clears the rest of its bufSize bytes. */
  int getBytes(ASN1OCTET* pBuf, int bufSize);

  /* Combine with another string of numbits bits (its last byte's unused bits ignored), bit by
   * bit: this = this & other, | other, ^ other, & ~other. Bits beyond the other's length count
   * as 0, so doAnd clears them. The string grows for doOr and doXor as for set. */
  int doAnd(const ASN1OCTET* pBits, ASN1UINT numbits);
  int doOr(const ASN1OCTET* pBits, ASN1UINT numbits);
  int doXor(const ASN1OCTET* pBits, ASN1UINT numbits);
  int doAndNot(const ASN1OCTET* pBits, ASN1UINT numbits);

  /* Moves every bit n places towards bit 0 (the first n bits are dropped). */
  int shiftLeft(ASN1UINT n);
  /* Moves every bit n places away from bit 0, growing the string (-29 when the last set bit
   * would go beyond the maximum, -5 when a string with a maximum has no room). */
  int shiftRight(ASN1UINT n);

  /* The value as it stands: the array and length() bits, not copied. The pointer form points
   * at a record inside this object, valid until the next change. */
  operator ASN1TDynBitStr();
  operator ASN1TDynBitStr*();

 protected:
  /* Makes room for numbytes bytes in use (see above); 0, -5 or -12. */
  int checkCapacity(int numbytes);

 private:
  void useInternalValue();
  void useValue(ASN1TDynBitStr& bitStr);
  void useArray(ASN1OCTET* pBits, ASN1UINT& numbits, ASN1UINT maxNumBits);
  void allocateBits(ASN1UINT nbits);
  void copyFrom(const ASN1CBitStr& source, bool extendable);
  void releaseMemory();
  int checkBit(ASN1UINT bitIndex);
  int checkRange(ASN1UINT fromIndex, ASN1UINT toIndex);
  void raiseNumBits(ASN1UINT numbits);
  int combine(const ASN1OCTET* pBits, ASN1UINT numbits, int opCode, bool grow);
};

#endif
