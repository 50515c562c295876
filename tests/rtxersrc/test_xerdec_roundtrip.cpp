// Every primitive through the whole path: the XER writer makes a document, the reader parses it,
// a handler collects the element's text and the decoder turns it back into the value written.
#include <gtest/gtest.h>
#include <quillon/asn1XerDec.h>
#include <quillon/rtReal.h>

#include <string.h>

#include <cmath>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "xer_decode_harness.h"

namespace {

using Octets = std::vector<ASN1OCTET>;

std::mt19937& rng() {
  static std::mt19937 gen(20240611);
  return gen;
}

Octets randomOctets(size_t n) {
  Octets o(n);
  for (auto& b : o) b = static_cast<ASN1OCTET>(rng()());
  return o;
}

template <typename T>
T randomOf() {
  T v;
  uint64_t bits = (uint64_t(rng()()) << 32) | rng()();
  memcpy(&v, &bits, sizeof v);
  return v;
}

// value written by enc as a document, read back by dec from the element's text, and compared
// bit for bit with expected, so that minus zero and the infinities count.
template <typename W, typename T>
void expectBack(XerRoundTrip& rt, int (*enc)(ASN1CTXT*, W, const char*), int (*dec)(ASN1CTXT*, T*),
                W value, T expected, const char* name = nullptr) {
  ASSERT_TRUE(rt.run([&](ASN1CTXT* c) { return enc(c, value, name); }));
  T out = static_cast<T>(42);
  EXPECT_EQ(0, dec(rt.ctxt(), &out)) << rt.document();
  EXPECT_EQ(0, memcmp(&expected, &out, sizeof out)) << rt.document() << " gave " << +out;
}

TEST(XerRoundTrip, Booleans) {
  XerRoundTrip rt;
  for (ASN1BOOL b : {ASN1FALSE, ASN1TRUE}) {
    expectBack(rt, xerEncBool, xerDecBool, b, b);
    expectBack(rt, xmlEncBool, xmlDecBool, b, b, "flag");
    EXPECT_EQ("flag", rt.collected().name());
  }
}

TEST(XerRoundTrip, IntegersOfEveryWidth) {
  XerRoundTrip rt;
  std::vector<ASN1INT64> values = {0, 1, -1, INT32_MIN, INT32_MAX, INT64_MIN, INT64_MAX};
  for (int i = 0; i < 200; ++i) values.push_back(randomOf<ASN1INT64>() >> (rng()() % 64));
  for (ASN1INT64 v : values) {
    expectBack(rt, xerEncInt64, xerDecInt64, v, v);
    expectBack(rt, xerEncUInt64, xerDecUInt64, (ASN1UINT64)v, (ASN1UINT64)v);
    expectBack(rt, xerEncInt, xerDecInt, (ASN1INT)v, (ASN1INT)v);
    expectBack(rt, xerEncUInt, xerDecUInt, (ASN1UINT)v, (ASN1UINT)v);
  }
  for (ASN1INT v : {-128, -1, 0, 127}) expectBack(rt, xerEncInt, xerDecInt8, v, (ASN1INT8)v);
  for (ASN1UINT v : {0u, 255u, 65535u}) expectBack(rt, xerEncUInt, xerDecUInt16, v, (ASN1USINT)v);
}

TEST(XerRoundTrip, BigIntegersComeBackAsNormalisedDecimal) {
  XerRoundTrip rt;
  const std::pair<const char*, const char*> cases[] = {
      {"0", "0"}, {"-0", "0"}, {"000", "0"}, {"0x1F", "31"}, {"0b101", "5"},
      {"-00123456789012345678901234567890", "-123456789012345678901234567890"},
      {"0xFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFF", "340282366920938463463374607431768211455"}};
  for (const auto& c : cases) {
    ASSERT_TRUE(rt.run([&](ASN1CTXT* ctx) { return xerEncBigInt(ctx, c.first, nullptr); }));
    const char* out = nullptr;
    EXPECT_EQ(0, xerDecBigInt(rt.ctxt(), &out));
    EXPECT_STREQ(c.second, out) << rt.document();
  }
}

TEST(XerRoundTrip, RealsExactlyInBothForms) {
  XerRoundTrip rt;
  std::vector<ASN1REAL> values = {1.0, 0.5, -0.001, 123.45, 1e308, -2.2250738585072014e-308,
                                  std::numeric_limits<double>::denorm_min(),
                                  std::numeric_limits<double>::max(), rtGetPlusInfinity(),
                                  rtGetMinusInfinity(), 0.0};
  for (int i = 0; i < 300; ++i) {
    const ASN1REAL r = randomOf<ASN1REAL>();
    if (std::isfinite(r)) values.push_back(r);
  }
  for (ASN1REAL v : values) {
    expectBack(rt, xerEncReal, xerDecReal, v, v);
    expectBack(rt, xmlEncReal, xmlDecReal, v, v);
  }
  // The schema form keeps NaN and minus zero; X.693's writes both as 0, deliberately.
  expectBack(rt, xmlEncReal, xmlDecReal, rtGetMinusZero(), rtGetMinusZero());
  expectBack(rt, xerEncReal, xerDecReal, rtGetNaN(), 0.0);
  ASN1REAL out = 1;
  ASSERT_TRUE(rt.run([&](ASN1CTXT* c) { return xmlEncReal(c, rtGetNaN(), nullptr); }));
  EXPECT_EQ(0, xmlDecReal(rt.ctxt(), &out));
  EXPECT_TRUE(rtIsNaN(out));
}

TEST(XerRoundTrip, OctetStringsInHexAndBase64FromMemoryAndStreams) {
  XerRoundTrip rt;
  for (size_t n : {0u, 1u, 2u, 3u, 40u, 41u, 1025u, 6000u}) {
    const Octets value = randomOctets(n);
    for (bool stream : {false, true}) {
      ASSERT_TRUE(rt.run([&](ASN1CTXT* c) { return xerEncOctStr(c, (ASN1UINT)n, value.data(), nullptr); },
                         false, stream));
      ASN1DynOctStr dyn;
      EXPECT_EQ(0, xerDecDynOctStr(rt.ctxt(), &dyn));
      EXPECT_EQ(value, Octets(dyn.data, dyn.data + dyn.numocts)) << "hex, " << n << " octets";
      EXPECT_EQ(0, xmlDecDynOctStr(rt.ctxt(), &dyn));
      EXPECT_EQ(n, dyn.numocts);

      ASSERT_TRUE(rt.run([&](ASN1CTXT* c) { return xerEncBase64Str(c, (ASN1UINT)n, value.data(), nullptr); },
                         true, stream));
      EXPECT_EQ(0, xerDecDynBase64Str(rt.ctxt(), &dyn));
      EXPECT_EQ(value, Octets(dyn.data, dyn.data + dyn.numocts)) << "base64, " << n << " octets";
    }
    if (n > 3000) {
      EXPECT_GT(rt.collected().pieces(), 1) << "long text arrives in pieces";
    }
  }
}

TEST(XerRoundTrip, BitStringsInEveryForm) {
  XerRoundTrip rt;
  for (ASN1UINT nbits : {0u, 1u, 7u, 8u, 9u, 63u, 64u, 1000u}) {
    Octets value = randomOctets((nbits + 7) / 8);
    if (nbits % 8) value.back() &= static_cast<ASN1OCTET>(0xFF00 >> (nbits % 8));
    ASSERT_TRUE(rt.run([&](ASN1CTXT* c) { return xerEncBitStr(c, nbits, value.data(), nullptr, ASN1BIN); }));
    ASN1DynBitStr dyn;
    EXPECT_EQ(0, xerDecDynBitStr(rt.ctxt(), &dyn));
    EXPECT_EQ(nbits, dyn.numbits);
    EXPECT_EQ(value, Octets(dyn.data, dyn.data + (dyn.numbits + 7) / 8)) << rt.document();

    ASSERT_TRUE(rt.run([&](ASN1CTXT* c) { return xmlEncBitStr(c, nbits, value.data(), nullptr); }));
    EXPECT_EQ(0, xmlDecDynBitStr(rt.ctxt(), &dyn));
    EXPECT_EQ(nbits, dyn.numbits);

    // The hexadecimal form writes whole octets and says so in its attribute.
    ASSERT_TRUE(rt.run([&](ASN1CTXT* c) { return xerEncBitStr(c, nbits, value.data(), nullptr, ASN1HEX); }));
    EXPECT_EQ("form=hex", rt.collected().attributes());
    Octets out(value.size() + 1);
    ASN1UINT got = 0;
    EXPECT_EQ(0, xerDecHexStrValue(rt.ctxt(), out.data(), &got, (int)out.size(), 0, 1));
    EXPECT_EQ(value.size() * 8, got);
    out.resize(value.size());
    EXPECT_EQ(value, out);
  }
}

TEST(XerRoundTrip, ObjectIdentifiers) {
  XerRoundTrip rt;
  ASN1OBJID oid = {7, {1, 2, 840, 113549, 1, 1, 4294967295u}};
  ASSERT_TRUE(rt.run([&](ASN1CTXT* c) { return xerEncObjId(c, &oid, nullptr); }));
  ASN1OBJID out;
  EXPECT_EQ(0, xerDecObjId(rt.ctxt(), &out));
  EXPECT_EQ(0, memcmp(&oid, &out, sizeof(ASN1UINT) * (1 + oid.numids)));

  ASN1OID64 oid64 = {3, {2, 999, UINT64_MAX}};
  ASSERT_TRUE(rt.run([&](ASN1CTXT* c) { return xerEncObjId64(c, &oid64, nullptr); }));
  ASN1OID64 out64;
  EXPECT_EQ(0, xerDecObjId64(rt.ctxt(), &out64));
  EXPECT_EQ(3u, out64.numids);
  EXPECT_EQ(UINT64_MAX, out64.subid[2]);

  for (ASN1UINT n : {0u, 1u, 128u}) {
    ASN1OBJID rel;
    rel.numids = n;
    for (ASN1UINT i = 0; i < n; ++i) rel.subid[i] = rng()() >> (rng()() % 32);
    ASSERT_TRUE(rt.run([&](ASN1CTXT* c) { return xerEncRelativeOID(c, &rel, nullptr); }));
    EXPECT_EQ(0, xerDecRelativeOID(rt.ctxt(), &out)) << rt.document();
    EXPECT_EQ(0, memcmp(&rel, &out, sizeof(ASN1UINT) * (1 + n)));
  }
}

TEST(XerRoundTrip, CharacterStrings) {
  XerRoundTrip rt;
  std::string printable;
  for (char c = 0x20; c < 0x7F; ++c) printable += c;
  ASSERT_TRUE(rt.run([&](ASN1CTXT* c) { return xerEncAscCharStr(c, printable.c_str(), "cn"); }));
  const char* out = nullptr;
  EXPECT_EQ(0, xerDecDynAscCharStr(rt.ctxt(), &out));
  EXPECT_EQ(printable, out) << "markup characters come back from their escapes";
  // A tab goes out as the two characters \t, which are not turned back (deliberately).
  ASSERT_TRUE(rt.run([&](ASN1CTXT* c) { return xerEncAscCharStr(c, "a\tb", "cn"); }));
  EXPECT_EQ(0, xerDecDynAscCharStr(rt.ctxt(), &out));
  EXPECT_STREQ("a\\tb", out);

  const std::string utf8 = "gr\xC3\xBC\xC3\x9F \xE4\xB8\xAD\xE6\x96\x87 \xF0\x9F\x94\x92 & <>";
  ASSERT_TRUE(rt.run([&](ASN1CTXT* c) { return xerEncAscCharStr(c, utf8.c_str(), "utf8"); }));
  EXPECT_EQ(0, xerDecDynUTF8Str(rt.ctxt(), &out));
  EXPECT_EQ(utf8, out);

  std::vector<ASN1USINT> bmpChars = {'A', 0xE9, 0x4E2D, 0xFFFD, '&', 0xD7FF, 0xE000};
  Asn116BitCharString bmp = {(ASN1UINT)bmpChars.size(), bmpChars.data()};
  ASSERT_TRUE(rt.run([&](ASN1CTXT* c) { return xerEncBMPStr(c, &bmp, nullptr); }));
  Asn116BitCharString bmpOut;
  EXPECT_EQ(0, xerDecBMPStr(rt.ctxt(), &bmpOut));
  EXPECT_EQ(bmpChars, std::vector<ASN1USINT>(bmpOut.data, bmpOut.data + bmpOut.nchars));

  std::vector<ASN1UINT> univChars = {'z', 0x10FFFD, 0x1F512, 0x3042};
  Asn132BitCharString univ = {(ASN1UINT)univChars.size(), univChars.data()};
  ASSERT_TRUE(rt.run([&](ASN1CTXT* c) { return xerEncUnivStr(c, &univ, nullptr); }));
  Asn132BitCharString univOut;
  EXPECT_EQ(0, xerDecUnivStr(rt.ctxt(), &univOut));
  EXPECT_EQ(univChars, std::vector<ASN1UINT>(univOut.data, univOut.data + univOut.nchars));
}

TEST(XerRoundTrip, Times) {
  XerRoundTrip rt;
  for (const char* utc : {"1105031200Z", "4912312359Z", "5001010000Z", "9906151230+0130"}) {
    ASSERT_TRUE(rt.run([&](ASN1CTXT* c) { return xmlEncUTCTime(c, utc, "utcTime"); }));
    const char* out = nullptr;
    EXPECT_EQ(0, xmlDecUTCTime(rt.ctxt(), &out)) << rt.document();
    EXPECT_STREQ(utc, out);
  }
  for (const char* gen : {"20110503120000Z", "19991231235930.25Z", "00010101000000-1200"}) {
    ASSERT_TRUE(rt.run([&](ASN1CTXT* c) { return xmlEncGeneralizedTime(c, gen, "generalTime"); }));
    const char* out = nullptr;
    EXPECT_EQ(0, xmlDecGeneralizedTime(rt.ctxt(), &out)) << rt.document();
    EXPECT_STREQ(gen, out);
  }
}

}  // namespace
