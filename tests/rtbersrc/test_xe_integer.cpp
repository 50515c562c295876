// INTEGER and ENUMERATED of every width, signed and unsigned.
#include <gtest/gtest.h>

#include <limits>
#include <random>
#include <utility>

#include "encode_harness.h"

namespace {

// Reads contents back as a two's complement number, independently of the encoder.
int64_t readSigned(const Bytes& contents) {
  uint64_t v = (contents[0] & 0x80) ? ~0ull : 0;
  for (uint8_t o : contents) v = (v << 8) | o;
  return (int64_t)v;
}

// DER's minimal form: the first nine bits are never all equal.
bool isMinimal(const Bytes& c) {
  if (c.size() < 2) return c.size() == 1;
  return !((c[0] == 0x00 && !(c[1] & 0x80)) || (c[0] == 0xFF && (c[1] & 0x80)));
}

Bytes contentsOfInt64(int64_t v) {
  EncodeHarness h;
  int n = xe_int64(h.ctxt(), &v, ASN1IMPL);
  EXPECT_EQ(n, (int)h.written().size());
  return h.written();
}

std::string explicitInt(ASN1INT v) {
  EncodeHarness h;
  int n = xe_integer(h.ctxt(), &v, ASN1EXPL);
  EXPECT_EQ(n, (int)h.written().size());
  return h.hex();
}

TEST(XeInteger, SmallValuesAndSignBoundaries) {
  const std::pair<ASN1INT, const char*> cases[] = {
      {0, "02 01 00"}, {-1, "02 01 FF"}, {127, "02 01 7F"}, {128, "02 02 00 80"},
      {-128, "02 01 80"}, {-129, "02 02 FF 7F"}, {256, "02 02 01 00"},
      {std::numeric_limits<ASN1INT>::max(), "02 04 7F FF FF FF"},
      {std::numeric_limits<ASN1INT>::min(), "02 04 80 00 00 00"}};
  for (const auto& c : cases) EXPECT_EQ(explicitInt(c.first), c.second) << c.first;
}

TEST(XeInteger, Int64RoundTripsMinimallyAcrossItsRange) {
  std::vector<int64_t> values = {std::numeric_limits<int64_t>::min(),
                                 std::numeric_limits<int64_t>::max()};
  for (int shift = 0; shift < 63; ++shift) {
    int64_t p = (int64_t)1 << shift;
    for (int64_t v : {p - 1, p, p + 1, -p - 1, -p, -p + 1}) values.push_back(v);
  }
  std::mt19937_64 rng(20261121);
  for (int i = 0; i < 2000; ++i) values.push_back((int64_t)(rng() >> (rng() % 64)));
  for (int64_t v : values) {
    Bytes c = contentsOfInt64(v);
    ASSERT_FALSE(c.empty()) << v;
    EXPECT_LE(c.size(), 8u) << v;
    EXPECT_TRUE(isMinimal(c)) << v << ": " << hexOf(c);
    EXPECT_EQ(readSigned(c), v) << hexOf(c);
  }
}

TEST(XeInteger, NarrowWidthsMatchTheWideEncoder) {
  for (int v = -32768; v <= 32767; v += 97) {
    ASN1SINT s16 = (ASN1SINT)v;
    EncodeHarness h;
    ASSERT_GT(xe_int16(h.ctxt(), &s16, ASN1EXPL), 0);
    ASN1INT s32 = v;
    EXPECT_EQ(h.hex(), explicitInt(s32)) << v;
  }
  for (int v = -128; v <= 127; ++v) {
    ASN1INT8 s8 = (ASN1INT8)v;
    EncodeHarness h;
    ASSERT_GT(xe_int8(h.ctxt(), &s8, ASN1EXPL), 0);
    EXPECT_EQ(h.hex(), explicitInt(v)) << v;
  }
}

TEST(XeInteger, EnumeratedTakesTag10) {
  EncodeHarness h;
  ASN1ENUM e = 200;
  EXPECT_EQ(xe_enum(h.ctxt(), &e, ASN1EXPL), 4);
  EXPECT_EQ(h.hex(), "0A 02 00 C8");
}

std::string explicitUnsigned64(ASN1UINT64 v) {
  EncodeHarness h;
  int n = xe_uint64(h.ctxt(), &v, ASN1EXPL);
  EXPECT_EQ(n, (int)h.written().size());
  return h.hex();
}

TEST(XeUnsigned, TopBitGetsALeadingZero) {
  EncodeHarness h;
  ASN1UINT u = 0x80000000u;
  EXPECT_EQ(xe_unsigned(h.ctxt(), &u, ASN1IMPL), 5);
  EXPECT_EQ(h.hex(), "00 80 00 00 00");

  EXPECT_EQ(explicitUnsigned64(0), "02 01 00");
  EXPECT_EQ(explicitUnsigned64(0x7F), "02 01 7F");
  EXPECT_EQ(explicitUnsigned64(0xFF), "02 02 00 FF");
  EXPECT_EQ(explicitUnsigned64(0xFFFFFFFFFFFFFFFFull), "02 09 00 FF FF FF FF FF FF FF FF");
  EXPECT_EQ(explicitUnsigned64(0x0100000000000000ull), "02 08 01 00 00 00 00 00 00 00");
}

TEST(XeUnsigned, EveryWidthAgreesWithTheSignedReading) {
  // An unsigned value encodes as the same INTEGER as that value held signed and wider.
  for (ASN1UINT v : {0u, 1u, 0x7Fu, 0x80u, 0xFFu, 0x100u, 0xFFFFu, 0x10000u, 0x7FFFFFFFu,
                     0xFFFFFFFFu}) {
    EncodeHarness h;
    ASSERT_GT(xe_unsigned(h.ctxt(), &v, ASN1IMPL), 0);
    EXPECT_EQ(readSigned(h.written()), (int64_t)v);
    EXPECT_TRUE(isMinimal(h.written())) << h.hex();
    if (v <= 0xFFFF) {
      ASN1USINT u16 = (ASN1USINT)v;
      EncodeHarness h16;
      xe_uint16(h16.ctxt(), &u16, ASN1IMPL);
      EXPECT_EQ(h16.written(), h.written());
    }
    if (v <= 0xFF) {
      ASN1UINT8 u8 = (ASN1UINT8)v;
      EncodeHarness h8;
      xe_uint8(h8.ctxt(), &u8, ASN1IMPL);
      EXPECT_EQ(h8.written(), h.written());
    }
  }
}

TEST(XeInteger, NullValuesAreRefusedWithARecordedError) {
  EncodeHarness h;
  EXPECT_EQ(xe_integer(h.ctxt(), nullptr, ASN1EXPL), ASN_E_BADVALUE);
  EXPECT_EQ(h.context().errorModule(), "rtbersrc/xe_integer");
  EXPECT_EQ(xe_int8(h.ctxt(), nullptr, ASN1EXPL), ASN_E_BADVALUE);
  EXPECT_EQ(xe_int16(h.ctxt(), nullptr, ASN1EXPL), ASN_E_BADVALUE);
  EXPECT_EQ(xe_int64(h.ctxt(), nullptr, ASN1EXPL), ASN_E_BADVALUE);
  EXPECT_EQ(xe_enum(h.ctxt(), nullptr, ASN1EXPL), ASN_E_BADVALUE);
  EXPECT_EQ(xe_unsigned(h.ctxt(), nullptr, ASN1EXPL), ASN_E_BADVALUE);
  EXPECT_EQ(xe_uint8(h.ctxt(), nullptr, ASN1EXPL), ASN_E_BADVALUE);
  EXPECT_EQ(xe_uint16(h.ctxt(), nullptr, ASN1EXPL), ASN_E_BADVALUE);
  EXPECT_EQ(xe_uint64(h.ctxt(), nullptr, ASN1EXPL), ASN_E_BADVALUE);
  EXPECT_TRUE(h.written().empty());
}

TEST(XeInteger, AFailedHeaderLeavesTheContentsWritten) {
  ASN1OCTET buf[5];
  EncodeHarness h(buf, sizeof buf);
  ASN1INT v = 0x01020304;
  EXPECT_EQ(xe_integer(h.ctxt(), &v, ASN1EXPL), ASN_E_BUFOVFLW);  // contents fit, header not
  EXPECT_EQ(h.hex(), "01 02 03 04");
  EncodeHarness h2(buf, 3);
  EXPECT_EQ(xe_integer(h2.ctxt(), &v, ASN1EXPL), ASN_E_BUFOVFLW);
  EXPECT_TRUE(h2.written().empty());
}

}  // namespace
