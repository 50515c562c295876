// Big-integer arithmetic for checking the library's conversions: schoolbook long division and
// multiplication on decimal digit strings, sharing nothing with the code under test.
#ifndef QUILLON_TESTS_BIGINT_REFERENCE_H
#define QUILLON_TESTS_BIGINT_REFERENCE_H

#include <stdint.h>

#include <string>
#include <vector>

namespace bigref {

using Octets = std::vector<uint8_t>;

// Magnitude octets (most significant first, no leading zeros) of a decimal digit string.
inline Octets decimalToMagnitude(std::string digits) {
  Octets little;
  while (!(digits.empty() || digits == "0")) {
    std::string quotient;
    unsigned rem = 0;
    for (char c : digits) {
      rem = rem * 10 + (unsigned)(c - '0');
      if (!quotient.empty() || rem / 256 != 0) quotient += (char)('0' + rem / 256);
      rem %= 256;
    }
    little.push_back((uint8_t)rem);
    digits = quotient;
  }
  return Octets(little.rbegin(), little.rend());
}

// Decimal text of a magnitude.
inline std::string magnitudeToDecimal(const Octets& mag) {
  std::string digits = "0";  // least significant digit first
  for (uint8_t o : mag) {
    unsigned carry = o;
    for (char& d : digits) {
      unsigned v = (unsigned)(d - '0') * 256 + carry;
      d = (char)('0' + v % 10);
      carry = v / 10;
    }
    for (; carry; carry /= 10) digits += (char)('0' + carry % 10);
  }
  while (digits.size() > 1 && digits.back() == '0') digits.pop_back();
  return std::string(digits.rbegin(), digits.rend());
}

inline Octets stripZeros(const Octets& mag) {
  size_t i = 0;
  while (i < mag.size() && mag[i] == 0) ++i;
  return Octets(mag.begin() + (long)i, mag.end());
}

// Minimal two's complement of +mag or -mag. A negative value -m is the complement of m - 1.
inline Octets twosComplement(Octets mag, bool negative) {
  mag = stripZeros(mag);
  if (mag.empty()) return Octets{0};
  if (negative) {
    for (size_t i = mag.size(); i-- > 0;) {
      if (mag[i]-- != 0) break;
    }
    mag = stripZeros(mag);
  }
  if (mag.empty() || (mag[0] & 0x80)) mag.insert(mag.begin(), 0);
  if (negative) {
    for (uint8_t& o : mag) o = (uint8_t)~o;
  }
  return mag;
}

}  // namespace bigref

#endif
