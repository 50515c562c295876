/* Integers of any length: text and two's complement octets to and from sign and magnitude. */
#include <quillon/rtBigInt.h>
#include <quillon/rtMemHeap.h>

#include <string.h>

#include "rtErrLog.h"

namespace {

/* Lengths are returned as int, so no magnitude may come near 2 GiB. */
const ASN1UINT64 kMaxOctets = 0x7FFFFFF0u;

const unsigned kNotADigit = 99;

unsigned digitValue(char c) {
  if (c >= '0' && c <= '9') return (unsigned)(c - '0');
  if (c >= 'a' && c <= 'f') return (unsigned)(c - 'a' + 10);
  if (c >= 'A' && c <= 'F') return (unsigned)(c - 'A' + 10);
  return kNotADigit;
}

bool isSupportedRadix(int radix) {
  return radix == 2 || radix == 8 || radix == 10 || radix == 16;
}

/* Bits per digit of a power-of-two radix. */
unsigned bitsPerDigit(int radix) { return radix == 16 ? 4 : radix == 8 ? 3 : 1; }

/* The radix a "0x", "0b" or "0o" prefix names, or 0. */
int radixOfPrefix(const char* text) {
  if (text[0] != '0') return 0;
  switch (text[1]) {
    case 'x': return 16;
    case 'b': return 2;
    case 'o': return 8;
    default: return 0;
  }
}

/* The letter of the prefix that names a power-of-two radix ("0x", "0b", "0o"). */
char prefixLetterOfRadix(int radix) {
  return radix == 16 ? 'x' : radix == 2 ? 'b' : 'o';
}

/* A text taken apart and checked before anything is allocated. */
struct NumberText {
  const char* digits;
  size_t ndigits;
  int radix;
  bool negative;
};

int parseNumberText(ASN1CTXT* pctxt, const char* value, int radix, NumberText* out) {
  if (value == nullptr) return LOG_RTERR(pctxt, ASN_E_BADVALUE);
  out->negative = (*value == '-');
  if (out->negative) ++value;
  int prefixed = radixOfPrefix(value);
  if (radix == 0) radix = prefixed ? prefixed : 10;
  if (!isSupportedRadix(radix)) return LOG_RTERR(pctxt, ASN_E_INVPARAM);
  if (prefixed != 0 && prefixed == radix) value += 2;
  out->digits = value;
  out->ndigits = strlen(value);
  out->radix = radix;
  if (out->ndigits == 0) return LOG_RTERR(pctxt, ASN_E_BADVALUE);
  for (size_t i = 0; i < out->ndigits; ++i) {
    if (digitValue(value[i]) >= (unsigned)radix) return LOG_RTERR(pctxt, ASN_E_BADVALUE);
  }
  return 0;
}

void releaseMagnitude(ASN1CTXT* pctxt, ASN1BigInt* pInt) {
  if (pInt->dynamic && pInt->mag != nullptr) rtMemHeapFreePtr(&pctxt->memHeap, pInt->mag);
  pInt->mag = nullptr;
  pInt->allocated = 0;
  pInt->dynamic = 0;
}

/* Room for octets magnitude octets, in the buffer the value has when it is large enough. */
int reserveMagnitude(ASN1CTXT* pctxt, ASN1BigInt* pInt, ASN1UINT64 octets) {
  if (octets > kMaxOctets) return LOG_RTERR(pctxt, ASN_E_NOMEM);
  if (pInt->mag != nullptr && pInt->allocated >= octets) return 0;
  ASN1OCTET* mag = (ASN1OCTET*)rtMemHeapAlloc(&pctxt->memHeap, (size_t)octets);
  if (mag == nullptr) return LOG_RTERR(pctxt, ASN_E_NOMEM);
  releaseMagnitude(pctxt, pInt);
  pInt->mag = mag;
  pInt->allocated = (ASN1UINT)octets;
  pInt->dynamic = 1;
  return 0;
}

/* Settles a magnitude of used octets that starts at from (within mag) into the normal form:
 * moved to the front, leading zeros dropped, zero without a sign. */
void settleMagnitude(ASN1BigInt* pInt, size_t from, size_t used, bool negative) {
  while (used > 0 && pInt->mag[from] == 0) {
    ++from;
    --used;
  }
  if (from > 0 && used > 0) memmove(pInt->mag, pInt->mag + from, used);
  pInt->numocts = (ASN1UINT)used;
  pInt->sign = used == 0 ? 0 : negative ? -1 : 1;
}

/* Each digit of a power-of-two radix lands on a fixed run of bits, so no arithmetic spans the
 * whole number. */
int setFromPowerOfTwoDigits(ASN1CTXT* pctxt, ASN1BigInt* pInt, const NumberText& text) {
  unsigned k = bitsPerDigit(text.radix);
  ASN1UINT64 octets = ((ASN1UINT64)text.ndigits * k + 7) / 8;
  int stat = reserveMagnitude(pctxt, pInt, octets);
  if (stat < 0) return stat;
  memset(pInt->mag, 0, octets);
  size_t bit = 0; /* counted from the least significant end */
  for (size_t i = text.ndigits; i-- > 0; bit += k) {
    unsigned shifted = digitValue(text.digits[i]) << (bit % 8);
    size_t at = octets - 1 - bit / 8;
    pInt->mag[at] |= (ASN1OCTET)shifted;
    if (shifted > 0xFF) pInt->mag[at - 1] |= (ASN1OCTET)(shifted >> 8);
  }
  settleMagnitude(pInt, 0, octets, text.negative);
  return 0;
}

/* mag[end - used .. end) = mag * multiplier + addend; returns the new count of octets. */
size_t multiplyAdd(ASN1OCTET* end, size_t used, ASN1UINT multiplier, ASN1UINT addend) {
  ASN1UINT64 carry = addend;
  for (size_t i = 1; i <= used; ++i) {
    ASN1UINT64 t = (ASN1UINT64)end[-(ptrdiff_t)i] * multiplier + carry;
    end[-(ptrdiff_t)i] = (ASN1OCTET)t;
    carry = t >> 8;
  }
  for (; carry != 0; carry >>= 8) end[-(ptrdiff_t)++used] = (ASN1OCTET)carry;
  return used;
}

/* Decimal digits are taken nine at a time, the most a 32-bit word holds, and the magnitude is
 * built at the end of its buffer, where it can grow towards the front. */
int setFromDecimalDigits(ASN1CTXT* pctxt, ASN1BigInt* pInt, const NumberText& text) {
  /* log2(10) / 8 < 10 / 24 octets a digit; the 2 covers rounding on short texts. */
  ASN1UINT64 octets = (ASN1UINT64)text.ndigits * 10 / 24 + 2;
  int stat = reserveMagnitude(pctxt, pInt, octets);
  if (stat < 0) return stat;
  ASN1OCTET* end = pInt->mag + octets;
  size_t used = 0;
  size_t chunk = text.ndigits % 9 == 0 ? 9 : text.ndigits % 9;
  for (const char* p = text.digits; *p != '\0'; p += chunk, chunk = 9) {
    ASN1UINT multiplier = 1, addend = 0;
    for (size_t i = 0; i < chunk; ++i) {
      multiplier *= 10;
      addend = addend * 10 + digitValue(p[i]);
    }
    used = multiplyAdd(end, used, multiplier, addend);
  }
  settleMagnitude(pInt, octets - used, used, text.negative);
  return 0;
}

ASN1UINT magnitudeBits(const ASN1BigInt* pInt) {
  if (pInt->numocts == 0) return 0;
  ASN1UINT top = pInt->mag[0], bits = 0;
  for (; top != 0; top >>= 1) ++bits;
  return (pInt->numocts - 1) * 8 + bits;
}

/* Octets of the minimal two's complement form. A negative value -m fits n octets while
 * m <= 2^(8n-1), so only a magnitude above 0x80 00.. needs a sign octet. */
ASN1UINT twosComplementLength(const ASN1BigInt* pInt) {
  ASN1UINT n = pInt->numocts;
  if (n == 0) return 1;
  if (pInt->sign > 0) return n + (pInt->mag[0] >= 0x80);
  if (pInt->mag[0] < 0x80) return n;
  if (pInt->mag[0] > 0x80) return n + 1;
  for (ASN1UINT i = 1; i < n; ++i) {
    if (pInt->mag[i] != 0) return n + 1;
  }
  return n;
}

/* out[0..n) = the two's complement of mag[0..n), i.e. ~mag + 1. */
void negateOctets(ASN1OCTET* out, const ASN1OCTET* mag, size_t n) {
  unsigned carry = 1;
  for (size_t i = n; i-- > 0;) {
    unsigned t = (ASN1OCTET)~mag[i] + carry;
    out[i] = (ASN1OCTET)t;
    carry = t >> 8;
  }
}

/* Number of digits in a power-of-two radix: two per octet in hex, so that the text reads
 * octet by octet as serial numbers are shown; no leading zeros otherwise. */
size_t powerOfTwoDigitCount(const ASN1BigInt* pInt, int radix) {
  if (radix == 16) return pInt->numocts == 0 ? 2 : 2 * (size_t)pInt->numocts;
  unsigned k = bitsPerDigit(radix);
  size_t bits = magnitudeBits(pInt);
  return bits == 0 ? 1 : (bits + k - 1) / k;
}

/* Digit j (0 the least significant) of a power-of-two radix with k bits a digit. */
unsigned digitAt(const ASN1BigInt* pInt, size_t j, unsigned k) {
  size_t bit = j * k, octet = bit / 8;
  unsigned shift = bit % 8;
  const ASN1OCTET* mag = pInt->mag;
  size_t n = pInt->numocts;
  unsigned v = octet < n ? mag[n - 1 - octet] >> shift : 0;
  if (shift + k > 8 && octet + 1 < n) v |= (unsigned)mag[n - 2 - octet] << (8 - shift);
  return v & ((1u << k) - 1);
}

const char kDigitChars[] = "0123456789abcdef";

int writePowerOfTwo(ASN1CTXT* pctxt, const ASN1BigInt* pInt, int radix, char* str,
                    ASN1UINT strSize) {
  size_t ndigits = powerOfTwoDigitCount(pInt, radix);
  size_t lead = (pInt->sign < 0) + 2;
  if (lead + ndigits >= strSize) return LOG_RTERR(pctxt, ASN_E_BUFOVFLW);
  char* p = str;
  if (pInt->sign < 0) *p++ = '-';
  *p++ = '0';
  *p++ = prefixLetterOfRadix(radix);
  unsigned k = bitsPerDigit(radix);
  for (size_t j = ndigits; j-- > 0;) *p++ = kDigitChars[digitAt(pInt, j, k)];
  *p = '\0';
  return 0;
}

/* work[from..n) /= divisor; returns the remainder. */
ASN1UINT divideInPlace(ASN1OCTET* work, size_t from, size_t n, ASN1UINT divisor) {
  ASN1UINT64 rem = 0;
  for (size_t i = from; i < n; ++i) {
    ASN1UINT64 cur = (rem << 8) | work[i];
    work[i] = (ASN1OCTET)(cur / divisor);
    rem = cur % divisor;
  }
  return (ASN1UINT)rem;
}

/* Decimal digits, least significant first, into str[0..cap); their count or -1 when cap is
 * too small. Division by 10^9 yields nine digits a pass. */
long reversedDecimalDigits(ASN1OCTET* work, size_t n, char* str, size_t cap) {
  size_t from = 0, count = 0;
  do {
    ASN1UINT chunk = divideInPlace(work, from, n, 1000000000u);
    while (from < n && work[from] == 0) ++from;
    bool last = (from == n);
    for (int i = 0; i < 9 && (!last || chunk != 0 || i == 0); ++i) {
      if (count == cap) return -1;
      str[count++] = (char)('0' + chunk % 10);
      chunk /= 10;
    }
  } while (from < n);
  return (long)count;
}

int writeDecimal(ASN1CTXT* pctxt, const ASN1BigInt* pInt, char* str, ASN1UINT strSize) {
  if (strSize < 2) return LOG_RTERR(pctxt, ASN_E_BUFOVFLW);
  size_t n = pInt->numocts;
  ASN1OCTET zero = 0;
  ASN1OCTET* work = &zero;
  if (n > 0) {
    work = (ASN1OCTET*)rtMemHeapAlloc(&pctxt->memHeap, n);
    if (work == nullptr) return LOG_RTERR(pctxt, ASN_E_NOMEM);
    memcpy(work, pInt->mag, n);
  }
  char* digits = str + (pInt->sign < 0);
  long count = reversedDecimalDigits(work, n > 0 ? n : 1, digits, strSize - 1 - (pInt->sign < 0));
  if (n > 0) rtMemHeapFreePtr(&pctxt->memHeap, work);
  if (count < 0) return LOG_RTERR(pctxt, ASN_E_BUFOVFLW);
  if (pInt->sign < 0) str[0] = '-';
  for (long i = 0, j = count - 1; i < j; ++i, --j) {
    char c = digits[i];
    digits[i] = digits[j];
    digits[j] = c;
  }
  digits[count] = '\0';
  return 0;
}

}  // namespace

void rtBigIntInit(ASN1BigInt* pInt) { memset(pInt, 0, sizeof *pInt); }

int rtBigIntSetStr(ASN1CTXT* pctxt, ASN1BigInt* pInt, const char* value, int radix) {
  NumberText text = {};
  int stat = parseNumberText(pctxt, value, radix, &text);
  if (stat < 0) return stat;
  if (text.radix == 10) return setFromDecimalDigits(pctxt, pInt, text);
  return setFromPowerOfTwoDigits(pctxt, pInt, text);
}

int rtBigIntSetOctets(ASN1CTXT* pctxt, ASN1BigInt* pInt, const ASN1OCTET* data,
                      ASN1UINT numocts) {
  if (numocts == 0) {
    settleMagnitude(pInt, 0, 0, false);
    return 0;
  }
  if (data == nullptr) return LOG_RTERR(pctxt, ASN_E_BADVALUE);
  int stat = reserveMagnitude(pctxt, pInt, numocts);
  if (stat < 0) return stat;
  bool negative = (data[0] & 0x80) != 0;
  if (negative)
    negateOctets(pInt->mag, data, numocts);
  else
    memcpy(pInt->mag, data, numocts);
  settleMagnitude(pInt, 0, numocts, negative);
  return 0;
}

int rtBigIntGetOctets(ASN1CTXT* pctxt, const ASN1BigInt* pInt, ASN1OCTET* buf,
                      ASN1UINT bufsize) {
  ASN1UINT len = twosComplementLength(pInt);
  if (len > bufsize) return pctxt ? LOG_RTERR(pctxt, ASN_E_BUFOVFLW) : ASN_E_BUFOVFLW;
  ASN1OCTET* out = buf + bufsize - len;
  ASN1UINT n = pInt->numocts;
  if (len > n) *out++ = pInt->sign < 0 ? 0xFF : 0x00; /* sign octet (or zero itself) */
  if (pInt->sign < 0)
    negateOctets(out, pInt->mag, n);
  else if (n > 0)
    memcpy(out, pInt->mag, n);
  return (int)len;
}

int rtBigIntDigitsNum(const ASN1BigInt* pInt, int radix) {
  if (!isSupportedRadix(radix)) return ASN_E_INVPARAM;
  size_t count = (pInt->sign < 0);
  if (radix == 10) {
    /* 30103 / 100000 is just above log10(2), so this never falls short. */
    count += (size_t)((ASN1UINT64)magnitudeBits(pInt) * 30103 / 100000) + 1;
  }
  else {
    count += 2 + powerOfTwoDigitCount(pInt, radix);
  }
  return (int)count;
}

int rtBigIntToString(ASN1CTXT* pctxt, const ASN1BigInt* pInt, int radix, char* str,
                     ASN1UINT strSize) {
  if (!isSupportedRadix(radix)) return LOG_RTERR(pctxt, ASN_E_INVPARAM);
  if (str == nullptr) return LOG_RTERR(pctxt, ASN_E_BUFOVFLW);
  if (radix == 10) return writeDecimal(pctxt, pInt, str, strSize);
  return writePowerOfTwo(pctxt, pInt, radix, str, strSize);
}

void rtBigIntFree(ASN1CTXT* pctxt, ASN1BigInt* pInt) {
  releaseMagnitude(pctxt, pInt);
  pInt->numocts = 0;
  pInt->sign = 0;
}
