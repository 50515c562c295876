// BOOLEAN, NULL and the string types: bit, octet, 8, 16 and 32-bit character strings.
#include <gtest/gtest.h>

#include "encode_harness.h"

namespace {

TEST(XeBoolean, AnyNonZeroIsFF) {
  for (int v : {1, 2, 0x80, 0xFF}) {
    EncodeHarness h;
    ASN1BOOL b = (ASN1BOOL)v;
    EXPECT_EQ(xe_boolean(h.ctxt(), &b, ASN1EXPL), 3);
    EXPECT_EQ(h.hex(), "01 01 FF") << v;
  }
  EncodeHarness h;
  ASN1BOOL f = 0;
  EXPECT_EQ(xe_boolean(h.ctxt(), &f, ASN1IMPL), 1);
  EXPECT_EQ(h.hex(), "00");
  EXPECT_EQ(xe_boolean(h.ctxt(), nullptr, ASN1EXPL), ASN_E_BADVALUE);
}

TEST(XeNull, ExplicitOnlyWritesAnything) {
  EncodeHarness h;
  EXPECT_EQ(xe_null(h.ctxt(), ASN1IMPL), 0);
  EXPECT_TRUE(h.written().empty());
  EXPECT_EQ(xe_null(h.ctxt(), ASN1EXPL), 2);
  EXPECT_EQ(h.hex(), "05 00");
}

TEST(XeBitStr, UnusedBitsOctetFollowsTheBitCount) {
  const ASN1OCTET data[] = {0xA5, 0xC0, 0x77};
  struct Case {
    ASN1UINT bits;
    const char* hex;
  } cases[] = {{0, "03 01 00"},          {1, "03 02 07 A5"},       {8, "03 02 00 A5"},
               {9, "03 03 07 A5 C0"},    {10, "03 03 06 A5 C0"},   {16, "03 03 00 A5 C0"},
               {17, "03 04 07 A5 C0 77"}};
  for (const Case& c : cases) {
    EncodeHarness h;
    int n = xe_bitstr(h.ctxt(), data, c.bits, ASN1EXPL);
    EXPECT_EQ(h.hex(), c.hex) << c.bits;
    EXPECT_EQ(n, (int)h.written().size()) << c.bits;
  }
}

TEST(XeBitStr, NullDataLeavesTheComponentOut) {
  EncodeHarness h;
  EXPECT_EQ(xe_bitstr(h.ctxt(), nullptr, 12, ASN1EXPL), 0);
  EXPECT_TRUE(h.written().empty());
  EXPECT_EQ(h.context().errorStatus(), 0);
  // With no bits the data pointer does not matter.
  EXPECT_EQ(xe_bitstr(h.ctxt(), nullptr, 0, ASN1EXPL), 3);
  EXPECT_EQ(h.hex(), "03 01 00");
}

TEST(XeOctStr, ContentsAndEmptyForms) {
  EncodeHarness h;
  const ASN1OCTET data[] = {0xDE, 0xAD, 0xBE, 0xEF};
  EXPECT_EQ(xe_octstr(h.ctxt(), data, 4, ASN1EXPL), 6);
  EXPECT_EQ(h.hex(), "04 04 DE AD BE EF");

  EncodeHarness empty;
  EXPECT_EQ(xe_octstr(empty.ctxt(), nullptr, 7, ASN1EXPL), 2);
  EXPECT_EQ(empty.hex(), "04 00");
  EXPECT_EQ(xe_octstr(empty.ctxt(), nullptr, 0, ASN1IMPL), 0);

  // 200 octets take a long-form length.
  Bytes big(200, 0x5A);
  EncodeHarness longer;
  EXPECT_EQ(xe_octstr(longer.ctxt(), big.data(), 200, ASN1EXPL), 203);
  Bytes w = longer.written();
  EXPECT_EQ(hexOf(Bytes(w.begin(), w.begin() + 3)), "04 81 C8");
}

TEST(XeCharStr, TextUnderTheCallersTag) {
  EncodeHarness h;
  EXPECT_EQ(xe_charstr(h.ctxt(), "Test", ASN1EXPL, ASN_ID_PrintableString), 6);
  EXPECT_EQ(h.hex(), "13 04 54 65 73 74");

  EncodeHarness empty;
  EXPECT_EQ(xe_charstr(empty.ctxt(), "", ASN1EXPL, ASN_ID_IA5String), 2);
  EXPECT_EQ(empty.hex(), "16 00");
  EXPECT_EQ(xe_charstr(empty.ctxt(), nullptr, ASN1EXPL, ASN_ID_IA5String), ASN_E_BADVALUE);
  EXPECT_EQ(empty.context().errorModule(), "rtbersrc/xe_charstr");
}

TEST(XeWideCharStr, CharactersMostSignificantOctetFirst) {
  ASN1USINT bmp[] = {0x0041, 0x20AC, 0xFFFD};
  Asn116BitCharString s16 = {3, bmp};
  EncodeHarness h16;
  EXPECT_EQ(xe_16BitCharStr(h16.ctxt(), &s16, ASN1EXPL, ASN_ID_BMPString), 8);
  EXPECT_EQ(h16.hex(), "1E 06 00 41 20 AC FF FD");

  ASN1UINT ucs[] = {0x41, 0x1F600};
  Asn132BitCharString s32 = {2, ucs};
  EncodeHarness h32;
  EXPECT_EQ(xe_32BitCharStr(h32.ctxt(), &s32, ASN1EXPL, ASN_ID_UniversalString), 10);
  EXPECT_EQ(h32.hex(), "1C 08 00 00 00 41 00 01 F6 00");
}

TEST(XeWideCharStr, EmptyAndInvalidValues) {
  EncodeHarness h;
  Asn116BitCharString none16 = {0, nullptr};
  EXPECT_EQ(xe_16BitCharStr(h.ctxt(), &none16, ASN1EXPL, ASN_ID_BMPString), 2);
  EXPECT_EQ(h.hex(), "1E 00");

  EncodeHarness bad;
  Asn116BitCharString missing16 = {2, nullptr};
  Asn132BitCharString missing32 = {1, nullptr};
  EXPECT_EQ(xe_16BitCharStr(bad.ctxt(), &missing16, ASN1EXPL, ASN_ID_BMPString),
            ASN_E_BADVALUE);
  EXPECT_EQ(xe_32BitCharStr(bad.ctxt(), &missing32, ASN1EXPL, ASN_ID_UniversalString),
            ASN_E_BADVALUE);
  EXPECT_EQ(xe_16BitCharStr(bad.ctxt(), nullptr, ASN1EXPL, ASN_ID_BMPString), ASN_E_BADVALUE);
  EXPECT_EQ(xe_32BitCharStr(bad.ctxt(), nullptr, ASN1EXPL, ASN_ID_UniversalString),
            ASN_E_BADVALUE);
  // A count whose octets cannot be addressed is refused before anything is read.
  ASN1UINT one = 1;
  Asn132BitCharString absurd = {0x40000000u, &one};
  EXPECT_EQ(xe_32BitCharStr(bad.ctxt(), &absurd, ASN1EXPL, ASN_ID_UniversalString),
            ASN_E_NOMEM);
  EXPECT_TRUE(bad.written().empty());
}

}  // namespace
