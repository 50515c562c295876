// Value utilities: numbers and object identifiers as text, single bits of byte
// arrays, and the special REAL values.

#include <quillon/rtBitOps.h>
#include <quillon/rtReal.h>
#include <quillon/rtValueText.h>

#include <gtest/gtest.h>

#include <inttypes.h>
#include <limits.h>
#include <stdio.h>
#include <string.h>

#include <string>
#include <vector>

#include "test_context.h"

namespace {

using Bytes = std::vector<ASN1OCTET>;

class ValueTextTest : public ::testing::Test {
 protected:
  TestContext ctxt;
};

// The C library's printf is the independent reference for every integer width.
TEST_F(ValueTextTest, IntegersMatchPrintf) {
  const int64_t samples[] = {0, 1, -1, 9, 10, -10, 99, 100, 65535, INT32_MAX, INT32_MIN,
                             INT64_MAX, INT64_MIN, 4294967295LL, -4294967296LL};
  for (int64_t v : samples) {
    char expected[32];
    char buf[32];
    snprintf(expected, sizeof expected, "%" PRId64, v);
    EXPECT_EQ(rtInt64ToString(ctxt.get(), v, buf, sizeof buf), static_cast<int>(strlen(expected)));
    EXPECT_STREQ(buf, expected);

    snprintf(expected, sizeof expected, "%" PRIu64, static_cast<uint64_t>(v));
    EXPECT_EQ(rtUInt64ToString(ctxt.get(), static_cast<uint64_t>(v), buf, sizeof buf),
              static_cast<int>(strlen(expected)));
    EXPECT_STREQ(buf, expected);

    const int32_t v32 = static_cast<int32_t>(v);
    snprintf(expected, sizeof expected, "%" PRId32, v32);
    EXPECT_EQ(rtIntToString(ctxt.get(), v32, buf, sizeof buf), static_cast<int>(strlen(expected)));
    EXPECT_STREQ(buf, expected);

    snprintf(expected, sizeof expected, "%" PRIu32, static_cast<uint32_t>(v));
    EXPECT_EQ(rtUIntToString(ctxt.get(), static_cast<uint32_t>(v), buf, sizeof buf),
              static_cast<int>(strlen(expected)));
    EXPECT_STREQ(buf, expected);
  }
  EXPECT_EQ(ctxt.errorStatus(), 0);
}

TEST_F(ValueTextTest, NumberBufferMustHoldTheNul) {
  char buf[12];
  memset(buf, '#', sizeof buf);
  // "-2147483648" is 11 characters.
  EXPECT_EQ(rtIntToString(ctxt.get(), INT32_MIN, buf, 11), ASN_E_STROVFLW);
  EXPECT_EQ(ctxt.errorStatus(), ASN_E_STROVFLW);
  EXPECT_EQ(ctxt.errorModule(), "rtsrc/rtValueText");
  EXPECT_EQ(buf[0], '#');
  EXPECT_EQ(rtIntToString(ctxt.get(), INT32_MIN, buf, 12), 11);
  EXPECT_STREQ(buf, "-2147483648");
  EXPECT_EQ(rtUIntToString(ctxt.get(), 7, buf, 1), ASN_E_STROVFLW);
  EXPECT_EQ(rtUIntToString(ctxt.get(), 7, nullptr, 0), ASN_E_INVPARAM);
}

TEST_F(ValueTextTest, ObjectIdentifiersAsDottedText) {
  ASN1OBJID oid = {7, {1, 2, 840, 113549, 1, 1, 11}};
  char buf[64];
  EXPECT_EQ(rtOidToStr(ctxt.get(), &oid, buf, sizeof buf), 21);
  EXPECT_STREQ(buf, "1.2.840.113549.1.1.11");

  // Exactly the text and its NUL fit; one byte less is refused before anything is written.
  memset(buf, '#', sizeof buf);
  EXPECT_EQ(rtOidToStr(ctxt.get(), &oid, buf, 21), ASN_E_STROVFLW);
  EXPECT_EQ(buf[0], '#');
  EXPECT_EQ(rtOidToStr(ctxt.get(), &oid, buf, 22), 21);

  oid.numids = 2;
  oid.subid[0] = 0;
  oid.subid[1] = UINT32_MAX;
  EXPECT_EQ(rtOidToStr(ctxt.get(), &oid, buf, sizeof buf), 12);
  EXPECT_STREQ(buf, "0.4294967295");

  const ASN1OID64 oid64 = {3, {2, 999, UINT64_MAX}};
  EXPECT_EQ(rtOid64ToStr(ctxt.get(), &oid64, buf, sizeof buf), 26);
  EXPECT_STREQ(buf, "2.999.18446744073709551615");

  // A record with no arcs, or more than it has room for, names no identifier.
  ctxt.resetError();
  oid.numids = 0;
  EXPECT_EQ(rtOidToStr(ctxt.get(), &oid, buf, sizeof buf), ASN_E_INVOBJID);
  EXPECT_EQ(ctxt.errorStatus(), ASN_E_INVOBJID);
  oid.numids = ASN_K_MAXSUBIDS + 1;
  EXPECT_EQ(rtOidToStr(ctxt.get(), &oid, buf, sizeof buf), ASN_E_INVOBJID);
}

TEST(BitOps, BitsAreNumberedFromTheMostSignificantBitOfTheFirstByte) {
  ASN1OCTET bits[3] = {0, 0, 0};
  EXPECT_EQ(rtSetBit(bits, 20, 0), 0);
  EXPECT_EQ(rtSetBit(bits, 20, 9), 0);
  EXPECT_EQ(rtSetBit(bits, 20, 19), 0);
  const Bytes set = {0x80, 0x40, 0x10};
  EXPECT_EQ(Bytes(bits, bits + 3), set);

  EXPECT_EQ(rtTestBit(bits, 20, 9), 1);
  EXPECT_EQ(rtTestBit(bits, 20, 8), 0);
  EXPECT_EQ(rtTestBit(bits, 20, 10), 0);

  // Setting a set bit reports it and changes nothing.
  EXPECT_EQ(rtSetBit(bits, 20, 9), 1);
  EXPECT_EQ(Bytes(bits, bits + 3), set);

  EXPECT_EQ(rtClearBit(bits, 20, 9), 1);
  EXPECT_EQ(rtClearBit(bits, 20, 9), 0);
  EXPECT_EQ(Bytes(bits, bits + 3), (Bytes{0x80, 0x00, 0x10}));
}

TEST(BitOps, BitsOutsideTheArrayAreNeverTouched) {
  ASN1OCTET bits[3] = {0xFF, 0x00, 0xAA};
  // Only the first 12 bits are the array's; the rest of byte 1 and byte 2 are not.
  EXPECT_EQ(rtSetBit(bits, 12, 12), ASN_E_OUTOFBND);
  EXPECT_EQ(rtSetBit(bits, 12, -1), ASN_E_OUTOFBND);
  EXPECT_EQ(rtClearBit(bits, 12, 16), ASN_E_OUTOFBND);
  EXPECT_EQ(rtClearBit(bits, 12, INT_MIN), ASN_E_OUTOFBND);
  EXPECT_EQ(rtTestBit(bits, 12, 16), 0);
  EXPECT_EQ(rtTestBit(bits, 12, -8), 0);
  EXPECT_EQ(rtSetBit(bits, 0, 0), ASN_E_OUTOFBND);
  EXPECT_EQ(Bytes(bits, bits + 3), (Bytes{0xFF, 0x00, 0xAA}));

  EXPECT_EQ(rtSetBit(bits, 12, 11), 0);
  EXPECT_EQ(bits[1], 0x10);
  EXPECT_EQ(rtSetBit(nullptr, 12, 3), ASN_E_INVPARAM);
  EXPECT_EQ(rtTestBit(nullptr, 12, 3), 0);
}

// Each special value is recognised by its own predicate and by no other.
TEST(SpecialReal, EachValueMatchesOnlyItsOwnPredicate) {
  using Predicate = int (*)(ASN1REAL);
  const Predicate predicates[] = {rtIsPlusInfinity, rtIsMinusInfinity, rtIsNaN, rtIsMinusZero};
  const ASN1REAL specials[] = {rtGetPlusInfinity(), rtGetMinusInfinity(), rtGetNaN(),
                               rtGetMinusZero()};
  for (int v = 0; v < 4; ++v) {
    for (int p = 0; p < 4; ++p) {
      EXPECT_EQ(predicates[p](specials[v]), v == p ? 1 : 0) << "value " << v << " predicate " << p;
    }
  }
  for (ASN1REAL ordinary : {0.0, 1.0, -1.0, 1e308, -1e-308, 5e-324}) {
    for (int p = 0; p < 4; ++p) EXPECT_EQ(predicates[p](ordinary), 0) << ordinary;
  }
  // The values behave as the arithmetic ones do, not merely as tags.
  EXPECT_GT(rtGetPlusInfinity(), 1e308);
  EXPECT_LT(rtGetMinusInfinity(), -1e308);
  EXPECT_NE(rtGetNaN(), rtGetNaN());
  EXPECT_EQ(rtGetMinusZero(), 0.0);
  EXPECT_EQ(1.0 / rtGetMinusZero(), rtGetMinusInfinity());
  EXPECT_EQ(rtIsMinusInfinity(-1e308 * 10), 1);
}

}  // namespace
