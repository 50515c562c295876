// Identifier and length octets, and the header that xe_tag_len puts in front of contents.
#include <gtest/gtest.h>

#include <limits.h>

#include <utility>

#include "encode_harness.h"

namespace {

std::string tagHex(ASN1TagType tag) {
  EncodeHarness h;
  int n = xe_tag(h.ctxt(), tag);
  EXPECT_EQ(n, (int)h.written().size());
  return h.hex();
}

std::string lenHex(int length) {
  EncodeHarness h;
  int n = xe_len(h.ctxt(), length);
  EXPECT_EQ(n, (int)h.written().size());
  return h.hex();
}

// Class and constructed bit in the first octet; numbers from 31 up in base 128 after it.
TEST(XeTag, ClassConstructedBitAndNumber) {
  const std::pair<ASN1TagType, const char*> cases[] = {
      {ASN_ID_INT, "02"}, {TM_CONS | ASN_ID_SEQ, "30"}, {TM_CTXT | 2, "82"},
      {TM_CTXT | TM_CONS | 3, "A3"}, {TM_APPL | 30, "5E"}, {TM_PRIV | TM_CONS | 0, "E0"},
      {TM_CTXT | 31, "9F 1F"}, {TM_CTXT | 127, "9F 7F"}, {TM_CTXT | 128, "9F 81 00"},
      {TM_CTXT | 200, "9F 81 48"}, {TM_APPL | TM_CONS | 0x4000, "7F 81 80 00"},
      {TM_PRIV | TM_IDCODE_MASK, "DF 81 FF FF FF 7F"}};
  for (const auto& c : cases) EXPECT_EQ(tagHex(c.first), c.second) << std::hex << c.first;
}

TEST(XeTag, IdentifierTakesTheWhole32BitRange) {
  EncodeHarness zero, max;
  EXPECT_EQ(xe_identifier(zero.ctxt(), 0), 1);
  EXPECT_EQ(zero.hex(), "00");
  EXPECT_EQ(xe_identifier(max.ctxt(), 0xFFFFFFFFu), 5);
  EXPECT_EQ(max.hex(), "8F FF FF FF 7F");
}

TEST(XeTag, LengthForms) {
  // Any negative length other than the indefinite one writes nothing.
  const std::pair<int, const char*> cases[] = {
      {0, "00"}, {127, "7F"}, {128, "81 80"}, {255, "81 FF"}, {256, "82 01 00"},
      {0x10000, "83 01 00 00"}, {INT_MAX, "84 7F FF FF FF"}, {ASN_K_INDEFLEN, "80"},
      {-1, ""}, {-10000, ""}};
  for (const auto& c : cases) EXPECT_EQ(lenHex(c.first), c.second) << c.first;
}

TEST(XeTagLen, CountsHeaderAndContents) {
  EncodeHarness h;
  EXPECT_EQ(xe_tag_len(h.ctxt(), TM_CTXT | TM_CONS | 3, 5), 7);
  EXPECT_EQ(h.hex(), "A3 05");

  EncodeHarness longForm;
  EXPECT_EQ(xe_tag_len(longForm.ctxt(), TM_CTXT | 200, 300), 300 + 6);
  EXPECT_EQ(longForm.hex(), "9F 81 48 82 01 2C");
}

TEST(XeTagLen, IndefiniteAndStatusLengths) {
  // Indefinite: only the header is counted; the caller counts contents and end octets.
  EncodeHarness indef;
  EXPECT_EQ(xe_tag_len(indef.ctxt(), TM_CONS | ASN_ID_SEQ, ASN_K_INDEFLEN), 2);
  EXPECT_EQ(indef.hex(), "30 80");

  // A negative length is a failed component's status: passed on, nothing written.
  EncodeHarness status;
  EXPECT_EQ(xe_tag_len(status.ctxt(), ASN_ID_INT, ASN_E_BUFOVFLW), ASN_E_BUFOVFLW);
  EXPECT_EQ(xe_TagAndIndefLen(status.ctxt(), ASN_ID_INT, ASN_E_NOMEM), ASN_E_NOMEM);
  EXPECT_TRUE(status.written().empty());

  EncodeHarness tagIndef;
  EXPECT_EQ(xe_TagAndIndefLen(tagIndef.ctxt(), TM_CTXT | TM_CONS | 0, 12), 14);
  EXPECT_EQ(tagIndef.hex(), "A0 80");

  // A contents length no buffer could hold cannot wrap the sum round.
  EncodeHarness huge;
  EXPECT_EQ(xe_tag_len(huge.ctxt(), ASN_ID_OCTSTR, INT_MAX), ASN_E_INVLEN);
}

TEST(XeTagLen, HeaderOverflowOnAStaticBufferWritesNothing) {
  ASN1OCTET buf[3];
  EncodeHarness h(buf, sizeof buf);
  EXPECT_EQ(xe_tag_len(h.ctxt(), ASN_ID_OCTSTR, 200), ASN_E_BUFOVFLW);  // needs 3 octets
  EXPECT_EQ(h.ctxt()->buffer.byteIndex, 2u);
  EXPECT_EQ(xe_tag_len(h.ctxt(), ASN_ID_OCTSTR, 0), 2);
  EXPECT_EQ(h.hex(), "04 00");
}

}  // namespace
