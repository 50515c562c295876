// INTEGER of any size from text: every text form, agreement with the fixed-width encoder, and
// long values checked against reference arithmetic.
#include <gtest/gtest.h>

#include <inttypes.h>
#include <stdio.h>

#include <limits>
#include <random>

#include "bigint_reference.h"
#include "encode_harness.h"

namespace {

std::string bigintHex(const char* text) {
  EncodeHarness h;
  int n = xe_bigint(h.ctxt(), text, ASN1EXPL);
  if (n < 0) return "status " + std::to_string(n);
  EXPECT_EQ(n, (int)h.written().size()) << text;
  return h.hex();
}

TEST(XeBigInt, TextFormsOfOneValueEncodeAlike) {
  for (const char* text : {"171", "0xAB", "0x00AB", "0xab", "0b10101011", "0o253", "000171"})
    EXPECT_EQ(bigintHex(text), "02 02 00 AB") << text;
  for (const char* text : {"-171", "-0xAB", "-0b10101011", "-0o253"})
    EXPECT_EQ(bigintHex(text), "02 02 FF 55") << text;
}

TEST(XeBigInt, ZeroAndSignBoundaries) {
  const char* cases[][2] = {
      {"0", "02 01 00"}, {"-0", "02 01 00"}, {"0x0000", "02 01 00"}, {"-1", "02 01 FF"},
      {"127", "02 01 7F"}, {"128", "02 02 00 80"}, {"-128", "02 01 80"}, {"-129", "02 02 FF 7F"},
      {"-0x8000", "02 02 80 00"}, {"-0x8001", "02 03 FF 7F FF"}};
  for (const auto& c : cases) EXPECT_EQ(bigintHex(c[0]), c[1]) << c[0];
}

TEST(XeBigInt, AgreesWithTheInt64EncoderOnDecimalAndHexText) {
  std::vector<int64_t> values = {std::numeric_limits<int64_t>::min(),
                                 std::numeric_limits<int64_t>::max(), 0, -1};
  std::mt19937_64 rng(77);
  for (int i = 0; i < 1500; ++i) values.push_back((int64_t)(rng() >> (rng() % 64)));
  for (int64_t v : values) {
    EncodeHarness fixed;
    ASSERT_GT(xe_int64(fixed.ctxt(), &v, ASN1EXPL), 0);
    char dec[32], hex[32];
    snprintf(dec, sizeof dec, "%" PRId64, v);
    uint64_t mag = v < 0 ? 0 - (uint64_t)v : (uint64_t)v;
    snprintf(hex, sizeof hex, "%s0x%" PRIX64, v < 0 ? "-" : "", mag);
    EXPECT_EQ(bigintHex(dec), fixed.hex()) << dec;
    EXPECT_EQ(bigintHex(hex), fixed.hex()) << hex;
  }
}

TEST(XeBigInt, LongValuesMatchReferenceArithmetic) {
  std::mt19937 rng(5);
  for (int i = 0; i < 300; ++i) {
    size_t ndigits = 1 + rng() % 400;  // well past the encoder's on-stack magnitude
    std::string digits(1, (char)('1' + rng() % 9));
    while (digits.size() < ndigits) digits += (char)('0' + rng() % 10);
    bool negative = rng() % 2;
    std::string text = (negative ? "-" : "") + digits;

    EncodeHarness h;
    ASSERT_GT(xe_bigint(h.ctxt(), text.c_str(), ASN1IMPL), 0) << text;
    bigref::Octets expected = bigref::twosComplement(bigref::decimalToMagnitude(digits),
                                                     negative);
    EXPECT_EQ(h.written(), Bytes(expected.begin(), expected.end())) << text;
  }
}

TEST(XeBigInt, MalformedTextWritesNothing) {
  for (const char* text : {"", "-", "0x", "-0b", "12a", "0x1G", "0b102", "0o8", "+5", " 5",
                           "5 ", "0X10", "--1", "1-"}) {
    EncodeHarness h;
    EXPECT_EQ(xe_bigint(h.ctxt(), text, ASN1EXPL), ASN_E_BADVALUE) << '"' << text << '"';
    EXPECT_TRUE(h.written().empty()) << text;
    EXPECT_EQ(h.context().errorStatus(), ASN_E_BADVALUE);
  }
  EncodeHarness h;
  EXPECT_EQ(xe_bigint(h.ctxt(), nullptr, ASN1EXPL), ASN_E_BADVALUE);
}

TEST(XeBigInt, StaticBufferOverflow) {
  ASN1OCTET buf[4];
  EncodeHarness h(buf, sizeof buf);
  EXPECT_EQ(xe_bigint(h.ctxt(), "0x010203", ASN1EXPL), ASN_E_BUFOVFLW);
  EXPECT_EQ(h.ctxt()->buffer.byteIndex, 0u);  // contents written; their header did not fit
  EncodeHarness tiny(buf, 2);
  EXPECT_EQ(xe_bigint(tiny.ctxt(), "0x0102", ASN1EXPL), ASN_E_BUFOVFLW);
  EXPECT_TRUE(tiny.written().empty());
}

}  // namespace
