// The bit string class: numbered bits over the object's own, a caller's value or a caller's
// array, growing from the context's heap where the string is unbounded.

#include <quillon/asn1CBitStr.h>

#include <limits.h>
#include <string.h>

#include "rtErrLog.h"

namespace {

const ASN1UINT kUnbounded = 0xFFFFFFFFu;
// Growth adds a fixed step beyond the need: strings grow bit by bit, and a step keeps that from
// reallocating on every byte without doubling large strings.
const int kGrowthStep = 1024;

enum class BitOp { Set, Clear, Invert };
enum class Combine { And, Or, Xor, AndNot };

int bytesFor(ASN1UINT numbits) {
  return numbits == 0 ? 0 : static_cast<int>((numbits - 1) / 8 + 1);
}

ASN1OCTET maskOf(ASN1UINT bitIndex) { return static_cast<ASN1OCTET>(0x80u >> (bitIndex % 8)); }

// Significant bits of a byte: up to and including its last set bit (0x80: 1, 0x01: 8).
int octetBitLen(ASN1OCTET byte) { return byte == 0 ? 0 : 8 - __builtin_ctz(byte); }

// The bits of the last byte that an array of numbits bits actually holds.
ASN1OCTET lastByteMask(ASN1UINT numbits) {
  return numbits % 8 == 0 ? 0xFF : static_cast<ASN1OCTET>(0xFF << (8 - numbits % 8));
}

void applyToByte(ASN1OCTET& byte, ASN1OCTET mask, BitOp op) {
  switch (op) {
    case BitOp::Set:
      byte = static_cast<ASN1OCTET>(byte | mask);
      break;
    case BitOp::Clear:
      byte = static_cast<ASN1OCTET>(byte & ~mask);
      break;
    case BitOp::Invert:
      byte = static_cast<ASN1OCTET>(byte ^ mask);
      break;
  }
}

// Applies op to bits from .. to - 1 (from < to), a byte at a time.
void applyToRange(ASN1OCTET* data, ASN1UINT from, ASN1UINT to, BitOp op) {
  const ASN1UINT firstByte = from / 8;
  const ASN1UINT lastByte = (to - 1) / 8;
  for (ASN1UINT i = firstByte; i <= lastByte; ++i) {
    unsigned mask = 0xFF;
    if (i == firstByte) mask &= 0xFFu >> (from % 8);
    if (i == lastByte) mask &= 0xFFu << (7 - (to - 1) % 8);
    applyToByte(data[i], static_cast<ASN1OCTET>(mask), op);
  }
}

ASN1OCTET combineByte(ASN1OCTET mine, ASN1OCTET theirs, Combine op) {
  switch (op) {
    case Combine::And:
      return static_cast<ASN1OCTET>(mine & theirs);
    case Combine::Or:
      return static_cast<ASN1OCTET>(mine | theirs);
    case Combine::Xor:
      return static_cast<ASN1OCTET>(mine ^ theirs);
    case Combine::AndNot:
      return static_cast<ASN1OCTET>(mine & ~theirs);
  }
  return mine;
}

// The record's data pointer as a writable one: the object changes the bytes of the values it
// is given, which the record declares const for the decoders' sake.
ASN1OCTET** unitsOf(ASN1TDynBitStr& bitStr) { return const_cast<ASN1OCTET**>(&bitStr.data); }

int clampedBytes(unsigned long long bytes) {
  return bytes > INT_MAX ? INT_MAX : static_cast<int>(bytes);
}

}  // namespace

// ---- Construction -------------------------------------------------------------------------

ASN1CBitStr::ASN1CBitStr() : ASN1CType() {
  useInternalValue();
  mMaxNumBits = 0;
}

ASN1CBitStr::ASN1CBitStr(ASN1MessageBufferIF& msgBuf) : ASN1CType(msgBuf) { useInternalValue(); }

ASN1CBitStr::ASN1CBitStr(ASN1Context& ctxt) : ASN1CType(ctxt) { useInternalValue(); }

ASN1CBitStr::ASN1CBitStr(ASN1MessageBufferIF& msgBuf, ASN1UINT nbits) : ASN1CType(msgBuf) {
  useInternalValue();
  allocateBits(nbits);
}

ASN1CBitStr::ASN1CBitStr(ASN1Context& ctxt, ASN1UINT nbits) : ASN1CType(ctxt) {
  useInternalValue();
  allocateBits(nbits);
}

ASN1CBitStr::ASN1CBitStr(ASN1TDynBitStr& bitStr) : ASN1CType() { useValue(bitStr); }

ASN1CBitStr::ASN1CBitStr(ASN1MessageBufferIF& msgBuf, ASN1TDynBitStr& bitStr) : ASN1CType(msgBuf) {
  useValue(bitStr);
}

ASN1CBitStr::ASN1CBitStr(ASN1Context& ctxt, ASN1TDynBitStr& bitStr) : ASN1CType(ctxt) {
  useValue(bitStr);
}

ASN1CBitStr::ASN1CBitStr(ASN1OCTET* pBits, ASN1UINT& numbits, ASN1UINT maxNumBits) : ASN1CType() {
  useArray(pBits, numbits, maxNumBits);
}

ASN1CBitStr::ASN1CBitStr(ASN1MessageBufferIF& msgBuf, ASN1OCTET* pBits, ASN1UINT& numbits,
                         ASN1UINT maxNumBits)
    : ASN1CType(msgBuf) {
  useArray(pBits, numbits, maxNumBits);
}

ASN1CBitStr::ASN1CBitStr(ASN1Context& ctxt, ASN1OCTET* pBits, ASN1UINT& numbits,
                         ASN1UINT maxNumBits)
    : ASN1CType(ctxt) {
  useArray(pBits, numbits, maxNumBits);
}

ASN1CBitStr::ASN1CBitStr(const ASN1CBitStr& bitStr) : ASN1CType(bitStr) { copyFrom(bitStr, false); }

ASN1CBitStr::ASN1CBitStr(const ASN1CBitStr& bitStr, ASN1BOOL extendable) : ASN1CType(bitStr) {
  copyFrom(bitStr, extendable != 0);
}

ASN1CBitStr::~ASN1CBitStr() { releaseMemory(); }

void ASN1CBitStr::useInternalValue() {
  mMemBitStr = ASN1TDynBitStr();
  mpUnits = unitsOf(mMemBitStr);
  mpNumBits = &mMemBitStr.numbits;
  mMaxNumBits = kUnbounded;
  mUnitsUsed = 0;
  mUnitsAllocated = 0;
  mDynAlloc = 0;
}

void ASN1CBitStr::useValue(ASN1TDynBitStr& bitStr) {
  mMemBitStr = ASN1TDynBitStr();
  mpUnits = unitsOf(bitStr);
  mpNumBits = &bitStr.numbits;
  mMaxNumBits = kUnbounded;
  // The value's array is taken to be exactly as long as its bits.
  mUnitsUsed = bitStr.data == nullptr ? 0 : bytesFor(bitStr.numbits);
  mUnitsAllocated = mUnitsUsed;
  mDynAlloc = 0;
}

void ASN1CBitStr::useArray(ASN1OCTET* pBits, ASN1UINT& numbits, ASN1UINT maxNumBits) {
  mMemBitStr = ASN1TDynBitStr(0, pBits);
  mpUnits = unitsOf(mMemBitStr);
  mpNumBits = &numbits;
  mMaxNumBits = maxNumBits;
  mDynAlloc = 0;
  if (numbits > maxNumBits) numbits = maxNumBits;
  mUnitsUsed = pBits == nullptr ? 0 : bytesFor(numbits);
  // An unbounded caller's array says nothing of its size beyond the bits it holds.
  mUnitsAllocated = pBits == nullptr           ? 0
                    : maxNumBits == kUnbounded ? mUnitsUsed
                                               : bytesFor(maxNumBits);
  if (mUnitsUsed > 0) pBits[mUnitsUsed - 1] &= lastByteMask(numbits);
  if (mUnitsAllocated > mUnitsUsed) memset(pBits + mUnitsUsed, 0, mUnitsAllocated - mUnitsUsed);
}

void ASN1CBitStr::allocateBits(ASN1UINT nbits) {
  if (nbits == 0) return;
  mMaxNumBits = nbits;
  ASN1CTXT* pctxt = getCtxtPtr();
  const int numbytes = bytesFor(nbits);
  *mpUnits = static_cast<ASN1OCTET*>(rtMemHeapAllocZ(&pctxt->memHeap, numbytes));
  if (*mpUnits == nullptr) {
    LOG_RTERR(pctxt, ASN_E_NOMEM);
    return;
  }
  mUnitsAllocated = numbytes;
  mDynAlloc = 1;
}

void ASN1CBitStr::copyFrom(const ASN1CBitStr& source, bool extendable) {
  useInternalValue();
  mMaxNumBits = extendable ? kUnbounded : source.mMaxNumBits;
  const ASN1OCTET* sourceBits = *source.mpUnits;
  const int numbytes =
      source.mUnitsAllocated > source.mUnitsUsed ? source.mUnitsAllocated : source.mUnitsUsed;
  if (sourceBits == nullptr || numbytes == 0) return;
  ASN1CTXT* pctxt = getCtxtPtr();
  *mpUnits = static_cast<ASN1OCTET*>(rtMemHeapAllocZ(&pctxt->memHeap, numbytes));
  if (*mpUnits == nullptr) {
    LOG_RTERR(pctxt, ASN_E_NOMEM);
    return;
  }
  memcpy(*mpUnits, sourceBits, source.mUnitsUsed);
  mUnitsAllocated = numbytes;
  mUnitsUsed = source.mUnitsUsed;
  mDynAlloc = 1;
  *mpNumBits = *source.mpNumBits;
}

void ASN1CBitStr::releaseMemory() {
  if (mDynAlloc && *mpUnits != nullptr) rtMemHeapFreePtr(&getCtxtPtr()->memHeap, *mpUnits);
  mDynAlloc = 0;
}

void ASN1CBitStr::init(ASN1OCTET* pBits, ASN1UINT& numbits, ASN1UINT maxNumBits) {
  releaseMemory();
  mMemBitStr = ASN1TDynBitStr(0, pBits);
  mpUnits = unitsOf(mMemBitStr);
  mpNumBits = &numbits;
  mMaxNumBits = maxNumBits;
  mUnitsUsed = clampedBytes(numbits * 8ull);
  mUnitsAllocated = clampedBytes(maxNumBits * 8ull);
}

void ASN1CBitStr::init(ASN1TDynBitStr& bitStr) {
  releaseMemory();
  useValue(bitStr);
}

// ---- Growth -------------------------------------------------------------------------------

int ASN1CBitStr::checkCapacity(int numbytes) {
  if (numbytes <= mUnitsAllocated) {
    if (mUnitsUsed < numbytes) mUnitsUsed = numbytes;
    return 0;
  }
  ASN1CTXT* pctxt = getCtxtPtr();
  if (mMaxNumBits != kUnbounded) return LOG_RTERR(pctxt, ASN_E_INVLEN);
  const int newSize = numbytes + kGrowthStep;
  ASN1OCTET* data;
  if (mUnitsAllocated == 0 || *mpUnits == nullptr) {
    data = static_cast<ASN1OCTET*>(rtMemHeapAllocZ(&pctxt->memHeap, newSize));
  } else if (mDynAlloc) {
    data = static_cast<ASN1OCTET*>(rtMemHeapRealloc(&pctxt->memHeap, *mpUnits, newSize));
    if (data != nullptr) memset(data + mUnitsAllocated, 0, newSize - mUnitsAllocated);
  } else {
    data = static_cast<ASN1OCTET*>(rtMemHeapAllocZ(&pctxt->memHeap, newSize));
    if (data != nullptr) memcpy(data, *mpUnits, mUnitsUsed);
  }
  if (data == nullptr) return LOG_RTERR(pctxt, ASN_E_NOMEM);
  *mpUnits = data;
  mDynAlloc = 1;
  mUnitsAllocated = newSize;
  mUnitsUsed = numbytes;
  return 0;
}

// ---- Single bits and ranges ---------------------------------------------------------------

// The last index is refused even in an unbounded string: its bit count would not fit.
int ASN1CBitStr::checkBit(ASN1UINT bitIndex) {
  if (bitIndex > mMaxNumBits || bitIndex == kUnbounded) {
    return LOG_RTERR(getCtxtPtr(), ASN_E_OUTOFBND);
  }
  return 0;
}

// 0 for a range to work on, 1 for an empty one, or a status.
int ASN1CBitStr::checkRange(ASN1UINT fromIndex, ASN1UINT toIndex) {
  if (fromIndex > toIndex) return LOG_RTERR(getCtxtPtr(), ASN_E_INVPARAM);
  if (fromIndex == toIndex) return 1;
  return checkBit(toIndex - 1);
}

void ASN1CBitStr::raiseNumBits(ASN1UINT numbits) {
  if (*mpNumBits < numbits) *mpNumBits = numbits;
}

int ASN1CBitStr::set(ASN1UINT bitIndex) {
  int stat = checkBit(bitIndex);
  if (stat == 0) stat = checkCapacity(static_cast<int>(bitIndex / 8 + 1));
  if (stat < 0) return stat;
  (*mpUnits)[bitIndex / 8] |= maskOf(bitIndex);
  raiseNumBits(bitIndex + 1);
  return 0;
}

int ASN1CBitStr::set(ASN1UINT fromIndex, ASN1UINT toIndex) {
  int stat = checkRange(fromIndex, toIndex);
  if (stat == 0) stat = checkCapacity(static_cast<int>((toIndex - 1) / 8 + 1));
  if (stat != 0) return stat < 0 ? stat : 0;
  applyToRange(*mpUnits, fromIndex, toIndex, BitOp::Set);
  raiseNumBits(toIndex);
  return 0;
}

ASN1BOOL ASN1CBitStr::get(ASN1UINT bitIndex) {
  if (bitIndex > mMaxNumBits || bitIndex / 8 >= static_cast<ASN1UINT>(mUnitsUsed)) return 0;
  return ((*mpUnits)[bitIndex / 8] & maskOf(bitIndex)) != 0;
}

int ASN1CBitStr::get(ASN1UINT fromIndex, ASN1UINT toIndex, ASN1OCTET* pBuf, int bufSize) {
  if (fromIndex > toIndex) return LOG_RTERR(getCtxtPtr(), ASN_E_INVPARAM);
  const ASN1UINT numbits = toIndex - fromIndex;
  const int numbytes = bytesFor(numbits);
  if (numbytes == 0) return 0;
  if (pBuf == nullptr) return LOG_RTERR(getCtxtPtr(), ASN_E_INVPARAM);
  if (bufSize < numbytes) return LOG_RTERR(getCtxtPtr(), ASN_E_STROVFLW);
  memset(pBuf, 0, numbytes);
  for (ASN1UINT i = 0; i < numbits; ++i) {
    if (get(fromIndex + i)) pBuf[i / 8] |= maskOf(i);
  }
  return 0;
}

void ASN1CBitStr::clear() {
  if (*mpUnits != nullptr && mUnitsUsed > 0) memset(*mpUnits, 0, mUnitsUsed);
  mUnitsUsed = 0;
  *mpNumBits = 0;
}

int ASN1CBitStr::clear(ASN1UINT bitIndex) {
  const int stat = checkBit(bitIndex);
  if (stat < 0) return stat;
  if (bitIndex / 8 < static_cast<ASN1UINT>(mUnitsUsed)) {
    (*mpUnits)[bitIndex / 8] &= static_cast<ASN1OCTET>(~maskOf(bitIndex));
  }
  recalculateUnitsUsed();
  return 0;
}

int ASN1CBitStr::clear(ASN1UINT fromIndex, ASN1UINT toIndex) {
  const int stat = checkRange(fromIndex, toIndex);
  if (stat != 0) return stat < 0 ? stat : 0;
  // Bytes not in use hold no set bits.
  const ASN1UINT usedBits = static_cast<ASN1UINT>(mUnitsUsed) * 8;
  const ASN1UINT end = toIndex < usedBits ? toIndex : usedBits;
  if (fromIndex < end) applyToRange(*mpUnits, fromIndex, end, BitOp::Clear);
  recalculateUnitsUsed();
  return 0;
}

int ASN1CBitStr::invert(ASN1UINT bitIndex) {
  int stat = checkBit(bitIndex);
  if (stat == 0) stat = checkCapacity(static_cast<int>(bitIndex / 8 + 1));
  if (stat < 0) return stat;
  (*mpUnits)[bitIndex / 8] ^= maskOf(bitIndex);
  recalculateUnitsUsed();
  return 0;
}

int ASN1CBitStr::invert(ASN1UINT fromIndex, ASN1UINT toIndex) {
  int stat = checkRange(fromIndex, toIndex);
  if (stat == 0) stat = checkCapacity(static_cast<int>((toIndex - 1) / 8 + 1));
  if (stat != 0) return stat < 0 ? stat : 0;
  applyToRange(*mpUnits, fromIndex, toIndex, BitOp::Invert);
  recalculateUnitsUsed();
  return 0;
}

// ---- Measures -----------------------------------------------------------------------------

int ASN1CBitStr::size() const { return mUnitsUsed; }

ASN1UINT ASN1CBitStr::length() const {
  if (mUnitsUsed <= 0) return 0;
  return 8u * static_cast<ASN1UINT>(mUnitsUsed - 1) + octetBitLen((*mpUnits)[mUnitsUsed - 1]);
}

int ASN1CBitStr::unusedBitsInLastUnit() const {
  if (mUnitsUsed <= 0) return 0;
  return 8 - octetBitLen((*mpUnits)[mUnitsUsed - 1]);
}

int ASN1CBitStr::cardinality() const {
  int count = 0;
  for (int i = 0; i < mUnitsUsed; ++i) count += __builtin_popcount((*mpUnits)[i]);
  return count;
}

void ASN1CBitStr::recalculateUnitsUsed() {
  while (mUnitsUsed > 0 && (*mpUnits)[mUnitsUsed - 1] == 0) --mUnitsUsed;
  *mpNumBits = length();
}

int ASN1CBitStr::getBytes(ASN1OCTET* pBuf, int bufSize) {
  if (bufSize < mUnitsUsed) return LOG_RTERR(getCtxtPtr(), ASN_E_STROVFLW);
  if (bufSize == 0) return 0;
  if (pBuf == nullptr) return LOG_RTERR(getCtxtPtr(), ASN_E_INVPARAM);
  if (mUnitsUsed > 0) memcpy(pBuf, *mpUnits, mUnitsUsed);
  memset(pBuf + mUnitsUsed, 0, bufSize - mUnitsUsed);
  return 0;
}

// ---- Combining ----------------------------------------------------------------------------

int ASN1CBitStr::combine(const ASN1OCTET* pBits, ASN1UINT numbits, int opCode, bool grow) {
  const Combine op = static_cast<Combine>(opCode);
  if (pBits == nullptr) return LOG_RTERR(getCtxtPtr(), ASN_E_INVPARAM);
  const int theirBytes = bytesFor(numbits);
  if (grow) {
    const int stat = checkCapacity(theirBytes);
    if (stat < 0) return stat;
  }
  ASN1OCTET* mine = *mpUnits;
  const int common = theirBytes < mUnitsUsed ? theirBytes : mUnitsUsed;
  for (int i = 0; i < common; ++i) {
    const ASN1OCTET theirs =
        i == theirBytes - 1 ? static_cast<ASN1OCTET>(pBits[i] & lastByteMask(numbits)) : pBits[i];
    mine[i] = combineByte(mine[i], theirs, op);
  }
  // Their bits beyond their length are 0, which only "and" turns into a change.
  if (op == Combine::And && mUnitsUsed > common) memset(mine + common, 0, mUnitsUsed - common);
  recalculateUnitsUsed();
  return 0;
}

int ASN1CBitStr::doAnd(const ASN1OCTET* pBits, ASN1UINT numbits) {
  if (numbits == 0) {
    clear();
    return 0;
  }
  if (pBits == *mpUnits) return 0;
  return combine(pBits, numbits, static_cast<int>(Combine::And), false);
}

int ASN1CBitStr::doOr(const ASN1OCTET* pBits, ASN1UINT numbits) {
  if (numbits == 0 || pBits == *mpUnits) return 0;
  return combine(pBits, numbits, static_cast<int>(Combine::Or), true);
}

// Growing could move the array under pBits when they are the same, so that case is settled
// first: a string exclusive-or itself is empty.
int ASN1CBitStr::doXor(const ASN1OCTET* pBits, ASN1UINT numbits) {
  if (numbits == 0) return 0;
  if (pBits == *mpUnits) {
    clear();
    return 0;
  }
  return combine(pBits, numbits, static_cast<int>(Combine::Xor), true);
}

int ASN1CBitStr::doAndNot(const ASN1OCTET* pBits, ASN1UINT numbits) {
  if (numbits == 0) return 0;
  if (pBits == *mpUnits) {
    clear();
    return 0;
  }
  return combine(pBits, numbits, static_cast<int>(Combine::AndNot), false);
}

// ---- Shifts -------------------------------------------------------------------------------

int ASN1CBitStr::shiftLeft(ASN1UINT n) {
  if (n == 0 || mUnitsUsed == 0) return 0;
  ASN1OCTET* data = *mpUnits;
  const unsigned long long used = static_cast<unsigned long long>(mUnitsUsed);
  const unsigned long long byteShift = n / 8;
  const unsigned bitShift = n % 8;
  // Ascending, each byte reads only bytes at or after itself, which are not written yet.
  for (unsigned long long i = 0; i < used; ++i) {
    const unsigned long long src = i + byteShift;
    unsigned v = src < used ? static_cast<unsigned>(data[src]) << bitShift : 0;
    if (bitShift != 0 && src + 1 < used) v |= data[src + 1] >> (8 - bitShift);
    data[i] = static_cast<ASN1OCTET>(v);
  }
  recalculateUnitsUsed();
  return 0;
}

int ASN1CBitStr::shiftRight(ASN1UINT n) {
  const ASN1UINT numbits = length();
  if (n == 0 || numbits == 0) return 0;
  const unsigned long long lastBit = static_cast<unsigned long long>(numbits) - 1 + n;
  if (lastBit > mMaxNumBits || lastBit >= kUnbounded) {
    return LOG_RTERR(getCtxtPtr(), ASN_E_OUTOFBND);
  }
  const long long oldUsed = mUnitsUsed;
  const int stat = checkCapacity(static_cast<int>(lastBit / 8 + 1));
  if (stat < 0) return stat;
  ASN1OCTET* data = *mpUnits;
  const long long byteShift = n / 8;
  const unsigned bitShift = n % 8;
  // Descending, each byte reads only bytes at or before itself, which are not written yet.
  for (long long i = mUnitsUsed - 1; i >= 0; --i) {
    const long long src = i - byteShift;
    unsigned v = src >= 0 && src < oldUsed ? data[src] >> bitShift : 0;
    if (bitShift != 0 && src >= 1 && src - 1 < oldUsed) {
      v |= static_cast<unsigned>(data[src - 1]) << (8 - bitShift);
    }
    data[i] = static_cast<ASN1OCTET>(v);
  }
  recalculateUnitsUsed();
  return 0;
}

// ---- The plain value ----------------------------------------------------------------------

ASN1CBitStr::operator ASN1TDynBitStr() { return ASN1TDynBitStr(length(), *mpUnits); }

ASN1CBitStr::operator ASN1TDynBitStr*() {
  mMemBitStr.data = *mpUnits;
  mMemBitStr.numbits = length();
  return &mMemBitStr;
}
