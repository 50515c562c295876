// Big integers as text: parsing and printing in every radix, two's complement octets in and
// out, digit counts, and where the magnitude lives.
#include <gtest/gtest.h>

#include <quillon/rtBigInt.h>

#include <string.h>

#include <random>
#include <string>
#include <vector>

#include "bigint_reference.h"
#include "test_context.h"

namespace {

using Octets = bigref::Octets;

class BigInt {
 public:
  explicit BigInt(ASN1CTXT* pctxt) : pctxt_(pctxt) { rtBigIntInit(&v_); }
  ~BigInt() { rtBigIntFree(pctxt_, &v_); }
  ASN1BigInt* get() { return &v_; }

  int set(const char* text, int radix = 0) { return rtBigIntSetStr(pctxt_, &v_, text, radix); }
  int setOctets(const Octets& o) {
    return rtBigIntSetOctets(pctxt_, &v_, o.data(), (ASN1UINT)o.size());
  }
  Octets octets() {
    Octets buf(v_.numocts + 1);
    int n = rtBigIntGetOctets(pctxt_, &v_, buf.data(), (ASN1UINT)buf.size());
    if (n < 0) return Octets();
    return Octets(buf.end() - n, buf.end());
  }
  std::string text(int radix) {
    std::vector<char> s(v_.numocts * 8 + 8);
    if (rtBigIntToString(pctxt_, &v_, radix, s.data(), (ASN1UINT)s.size()) != 0) return "?";
    return s.data();
  }

 private:
  ASN1CTXT* pctxt_;
  ASN1BigInt v_;
};

Octets randomOctets(std::mt19937& rng, size_t n) {
  Octets o(n);
  for (auto& b : o) b = (uint8_t)rng();
  return o;
}

TEST(BigIntText, PrintsEveryRadix) {
  TestContext ctx;
  BigInt v(ctx.get());
  ASSERT_EQ(v.set("-171"), 0);
  EXPECT_EQ(v.get()->sign, -1);
  EXPECT_EQ(v.text(10), "-171");
  EXPECT_EQ(v.text(16), "-0xab");
  EXPECT_EQ(v.text(2), "-0b10101011");
  EXPECT_EQ(v.text(8), "-0o253");

  ASSERT_EQ(v.set("0x0a0000"), 0);  // hex keeps whole octets, drops the redundant zero ones
  EXPECT_EQ(v.text(16), "0x0a0000");
  EXPECT_EQ(v.text(10), "655360");
  ASSERT_EQ(v.set("0x00000a"), 0);
  EXPECT_EQ(v.text(16), "0x0a");

  ASSERT_EQ(v.set("-0"), 0);
  EXPECT_EQ(v.get()->sign, 0);
  EXPECT_EQ(v.get()->numocts, 0u);
  EXPECT_EQ(v.text(10), "0");
  EXPECT_EQ(v.text(16), "0x00");
  EXPECT_EQ(v.text(2), "0b0");
  EXPECT_EQ(v.text(8), "0o0");
}

TEST(BigIntText, RadixArgumentAndPrefixes) {
  TestContext ctx;
  BigInt v(ctx.get());
  ASSERT_EQ(v.set("1F", 16), 0);
  EXPECT_EQ(v.text(10), "31");
  ASSERT_EQ(v.set("0x1F", 16), 0);  // the prefix of the radix given is allowed
  EXPECT_EQ(v.text(10), "31");
  ASSERT_EQ(v.set("0b101", 16), 0);  // another radix's prefix is digits: 0x0B101
  EXPECT_EQ(v.text(10), "45313");
  ASSERT_EQ(v.set("777", 8), 0);
  EXPECT_EQ(v.text(10), "511");
  ASSERT_EQ(v.set("-1010", 2), 0);
  EXPECT_EQ(v.text(10), "-10");

  EXPECT_EQ(v.set("10", 7), ASN_E_INVPARAM);
  EXPECT_EQ(v.set("0x10", 10), ASN_E_BADVALUE);
  EXPECT_EQ(v.set("19", 8), ASN_E_BADVALUE);
  EXPECT_EQ(v.set("", 0), ASN_E_BADVALUE);
  EXPECT_EQ(v.set(nullptr, 0), ASN_E_BADVALUE);
  EXPECT_EQ(ctx.errorModule(), "rtsrc/rtBigInt");
  EXPECT_EQ(rtBigIntDigitsNum(v.get(), 7), ASN_E_INVPARAM);
  char s[8];
  EXPECT_EQ(rtBigIntToString(ctx.get(), v.get(), 3, s, sizeof s), ASN_E_INVPARAM);
}

TEST(BigIntText, RandomValuesRoundTripThroughEveryRadix) {
  TestContext ctx;
  std::mt19937 rng(99);
  for (int i = 0; i < 400; ++i) {
    Octets twos = randomOctets(rng, 1 + rng() % 70);
    BigInt v(ctx.get());
    ASSERT_EQ(v.setOctets(twos), 0);
    Octets minimal = v.octets();
    for (int radix : {2, 8, 10, 16}) {
      std::string t = v.text(radix);
      BigInt back(ctx.get());
      ASSERT_EQ(back.set(t.c_str()), 0) << t;
      EXPECT_EQ(back.octets(), minimal) << t;
      // Digit counts are exact except for decimal, which may be one over.
      int digits = rtBigIntDigitsNum(v.get(), radix);
      if (radix == 10) {
        EXPECT_GE(digits, (int)t.size()) << t;
        EXPECT_LE(digits, (int)t.size() + 1) << t;
      }
      else {
        EXPECT_EQ(digits, (int)t.size()) << t;
      }
    }
    // Decimal text against schoolbook arithmetic.
    bool negative = v.get()->sign < 0;
    Octets mag(v.get()->mag, v.get()->mag + v.get()->numocts);
    EXPECT_EQ(v.text(10), (negative ? "-" : "") + bigref::magnitudeToDecimal(mag));
    EXPECT_EQ(minimal, bigref::twosComplement(mag, negative));
  }
}

TEST(BigIntOctets, ReadingTwosComplement) {
  TestContext ctx;
  BigInt v(ctx.get());
  struct Case {
    Octets in;
    int sign;
    Octets mag;
  } cases[] = {{{}, 0, {}},
               {{0x00}, 0, {}},
               {{0x00, 0x00, 0x80}, 1, {0x80}},  // redundant leading octets dropped
               {{0xFF}, -1, {0x01}},
               {{0x80}, -1, {0x80}},
               {{0xFF, 0x7F}, -1, {0x81}},
               {{0xFF, 0xFF, 0x00}, -1, {0x01, 0x00}},
               {{0x80, 0x00, 0x00}, -1, {0x80, 0x00, 0x00}}};
  for (const Case& c : cases) {
    ASSERT_EQ(v.setOctets(c.in), 0);
    EXPECT_EQ(v.get()->sign, c.sign);
    EXPECT_EQ(Octets(v.get()->mag, v.get()->mag + v.get()->numocts), c.mag);
  }
  EXPECT_EQ(rtBigIntSetOctets(ctx.get(), v.get(), nullptr, 3), ASN_E_BADVALUE);
}

TEST(BigIntOctets, WritingIsMinimalRightAlignedAndBounded) {
  TestContext ctx;
  BigInt v(ctx.get());
  ASSERT_EQ(v.set("-0x8000"), 0);
  ASN1OCTET buf[4] = {0xEE, 0xEE, 0xEE, 0xEE};
  EXPECT_EQ(rtBigIntGetOctets(ctx.get(), v.get(), buf, 4), 2);
  EXPECT_EQ(Octets(buf, buf + 4), (Octets{0xEE, 0xEE, 0x80, 0x00}));
  EXPECT_EQ(rtBigIntGetOctets(ctx.get(), v.get(), buf, 2), 2);
  EXPECT_EQ(rtBigIntGetOctets(ctx.get(), v.get(), buf, 1), ASN_E_BUFOVFLW);

  ASSERT_EQ(v.set("0x8000"), 0);  // needs its sign octet
  EXPECT_EQ(rtBigIntGetOctets(ctx.get(), v.get(), buf, 2), ASN_E_BUFOVFLW);
  EXPECT_EQ(rtBigIntGetOctets(ctx.get(), v.get(), buf, 3), 3);
  EXPECT_EQ(Octets(buf, buf + 3), (Octets{0x00, 0x80, 0x00}));

  ASSERT_EQ(v.set("0"), 0);
  EXPECT_EQ(rtBigIntGetOctets(ctx.get(), v.get(), buf, 1), 1);
  EXPECT_EQ(buf[0], 0x00);
}

TEST(BigIntText, ToStringNeedsRoomForTheTerminator) {
  TestContext ctx;
  BigInt v(ctx.get());
  ASSERT_EQ(v.set("-123456789012345678901234567890"), 0);
  for (int radix : {2, 8, 10, 16}) {
    std::string full = v.text(radix);
    std::vector<char> s(full.size() + 1);
    EXPECT_EQ(rtBigIntToString(ctx.get(), v.get(), radix, s.data(), (ASN1UINT)s.size()), 0);
    EXPECT_EQ(std::string(s.data()), full);
    EXPECT_EQ(rtBigIntToString(ctx.get(), v.get(), radix, s.data(), (ASN1UINT)full.size()),
              ASN_E_BUFOVFLW)
        << radix;
  }
  char one[1];
  ASSERT_EQ(v.set("0"), 0);
  EXPECT_EQ(rtBigIntToString(ctx.get(), v.get(), 10, one, 1), ASN_E_BUFOVFLW);
}

TEST(BigIntStorage, ALentBufferServesUntilTheValueOutgrowsIt) {
  TestContext ctx;
  ASN1OCTET local[4];
  ASN1BigInt v;
  rtBigIntInit(&v);
  v.mag = local;
  v.allocated = sizeof local;
  ASSERT_EQ(rtBigIntSetStr(ctx.get(), &v, "0xFFFFFFFF", 0), 0);
  EXPECT_EQ(v.mag, local);
  EXPECT_FALSE(v.dynamic);
  EXPECT_EQ(v.numocts, 4u);
  ASSERT_EQ(rtBigIntSetStr(ctx.get(), &v, "65535", 0), 0);
  EXPECT_EQ(v.mag, local);
  EXPECT_EQ(v.numocts, 2u);

  ASSERT_EQ(rtBigIntSetStr(ctx.get(), &v, "0x0102030405", 0), 0);
  EXPECT_NE(v.mag, local);
  EXPECT_TRUE(v.dynamic);
  EXPECT_EQ(Octets(v.mag, v.mag + v.numocts), (Octets{1, 2, 3, 4, 5}));

  // A malformed text leaves the value as it was.
  EXPECT_EQ(rtBigIntSetStr(ctx.get(), &v, "0x01zz", 0), ASN_E_BADVALUE);
  EXPECT_EQ(v.numocts, 5u);

  rtBigIntFree(ctx.get(), &v);
  EXPECT_EQ(v.mag, nullptr);
  EXPECT_EQ(v.numocts, 0u);
  EXPECT_EQ(v.sign, 0);
}

}  // namespace
