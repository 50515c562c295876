// Single-bit access to plain byte arrays.

#include <quillon/rtBitOps.h>

namespace {

bool isInRange(int numbits, int bitIndex) { return bitIndex >= 0 && bitIndex < numbits; }

ASN1OCTET maskOf(int bitIndex) { return static_cast<ASN1OCTET>(0x80u >> (bitIndex % 8)); }

int previousBit(ASN1OCTET byte, ASN1OCTET mask) { return (byte & mask) != 0; }

}  // namespace

QN_BEGIN_C

int rtSetBit(ASN1OCTET* pBits, int numbits, int bitIndex) {
  if (!isInRange(numbits, bitIndex)) return ASN_E_OUTOFBND;
  if (pBits == nullptr) return ASN_E_INVPARAM;
  ASN1OCTET& byte = pBits[bitIndex / 8];
  const ASN1OCTET mask = maskOf(bitIndex);
  const int previous = previousBit(byte, mask);
  byte = static_cast<ASN1OCTET>(byte | mask);
  return previous;
}

int rtClearBit(ASN1OCTET* pBits, int numbits, int bitIndex) {
  if (!isInRange(numbits, bitIndex)) return ASN_E_OUTOFBND;
  if (pBits == nullptr) return ASN_E_INVPARAM;
  ASN1OCTET& byte = pBits[bitIndex / 8];
  const ASN1OCTET mask = maskOf(bitIndex);
  const int previous = previousBit(byte, mask);
  byte = static_cast<ASN1OCTET>(byte & ~mask);
  return previous;
}

int rtTestBit(const ASN1OCTET* pBits, int numbits, int bitIndex) {
  if (!isInRange(numbits, bitIndex) || pBits == nullptr) return 0;
  return previousBit(pBits[bitIndex / 8], maskOf(bitIndex));
}

QN_END_C
