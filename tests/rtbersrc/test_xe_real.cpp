// REAL: special values, round numbers, and exact round trips through an independent reading of
// the binary form.
#include <gtest/gtest.h>

#include <float.h>
#include <math.h>
#include <string.h>

#include <limits>
#include <random>
#include <utility>

#include "encode_harness.h"

namespace {

std::string realHex(double v) {
  EncodeHarness h;
  int n = xe_real(h.ctxt(), &v, ASN1EXPL);
  EXPECT_EQ(n, (int)h.written().size());
  return h.hex();
}

struct Decoded {
  bool ok = false;
  double value = 0;
  uint64_t mantissa = 0;
};

// Reads base-2, scale-0 binary contents as they are defined, without the encoder's code.
Decoded readBinaryReal(const Bytes& c) {
  Decoded d;
  if (c.size() < 3 || (c[0] & 0xBC) != 0x80) return d;  // binary, base 2, scale 0
  size_t expLen = (c[0] & 3) + 1;
  if (expLen > 3 || c.size() < 1 + expLen + 1) return d;
  int64_t e = (c[1] & 0x80) ? -1 : 0;
  for (size_t i = 0; i < expLen; ++i) e = e * 256 + c[1 + i];
  for (size_t i = 1 + expLen; i < c.size(); ++i) d.mantissa = (d.mantissa << 8) | c[i];
  d.value = ldexp((double)d.mantissa, (int)e);
  if (c[0] & 0x40) d.value = -d.value;
  d.ok = true;
  return d;
}

Bytes realContents(double v) {
  EncodeHarness h;
  EXPECT_GE(xe_real(h.ctxt(), &v, ASN1IMPL), 0);
  return h.written();
}

// Special values, round numbers (their mantissa made odd), two-octet exponents (which switch
// the format bits to 1) and the extremes of the double range.
TEST(XeReal, EncodingsOfSpecialRoundAndExtremeValues) {
  const double inf = std::numeric_limits<double>::infinity();
  const std::pair<double, const char*> cases[] = {
      {0.0, "09 00"}, {-0.0, "09 00"}, {inf, "09 01 40"}, {-inf, "09 01 41"},
      {std::numeric_limits<double>::quiet_NaN(), "09 01 42"}, {1.0, "09 03 80 00 01"},
      {-1.0, "09 03 C0 00 01"}, {0.5, "09 03 80 FF 01"}, {2.0, "09 03 80 01 01"},
      {3.0, "09 03 80 00 03"}, {10.0, "09 03 80 01 05"}, {1024.0, "09 03 80 0A 01"},
      {-0.375, "09 03 C0 FD 03"}, {256.0 * 255.0, "09 03 80 08 FF"},
      {ldexp(1.0, 200), "09 04 81 00 C8 01"}, {ldexp(1.0, -200), "09 04 81 FF 38 01"},
      {DBL_MAX, "09 0A 81 03 CB 1F FF FF FF FF FF FF"},
      {std::numeric_limits<double>::denorm_min(), "09 04 81 FB CE 01"},
      {DBL_MIN, "09 04 81 FC 02 01"}};
  for (const auto& c : cases) EXPECT_EQ(realHex(c.first), c.second) << c.first;
}

TEST(XeReal, FiniteValuesRoundTripExactly) {
  std::vector<double> values = {0.1, -0.1, 1.0 / 3, M_PI, -M_E, 123.45, 1e300, -1e-300,
                                4.9e-324, 2.2250738585072014e-308, 9007199254740991.0};
  std::mt19937_64 rng(1121);
  while (values.size() < 3000) {
    uint64_t bits = rng();
    double v;
    memcpy(&v, &bits, sizeof v);
    if (isfinite(v) && v != 0) values.push_back(v);
  }
  for (double v : values) {
    Bytes c = realContents(v);
    Decoded d = readBinaryReal(c);
    ASSERT_TRUE(d.ok) << v << ": " << hexOf(c);
    EXPECT_EQ(d.value, v) << hexOf(c);
    EXPECT_EQ(d.mantissa & 1, 1u) << v << ": " << hexOf(c);
    EXPECT_LE(c.size(), 1u + 2 + 7) << v;
  }
}

TEST(XeReal, NullValue) {
  EncodeHarness h;
  EXPECT_EQ(xe_real(h.ctxt(), nullptr, ASN1EXPL), ASN_E_BADVALUE);
  EXPECT_EQ(h.context().errorModule(), "rtbersrc/xe_real");
}

}  // namespace
