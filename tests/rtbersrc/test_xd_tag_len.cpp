// Identifier and length octets, and attaching a message with xd_setp.
#include <gtest/gtest.h>

#include <utility>

#include "decode_harness.h"

namespace {

struct Header {
  int stat;
  ASN1TagType tag;
  int len;
  ASN1UINT pos;
};

Header readHeader(const std::string& hex, ASN1OCTET flags = XM_ADVANCE) {
  DecodeHarness h(hex);
  Header r{0, 0, 0, 0};
  r.stat = xd_tag_len(h.ctxt(), &r.tag, &r.len, flags);
  r.pos = h.pos();
  if (r.stat < 0) {
    EXPECT_EQ(h.context().errorStatus(), r.stat) << hex;
  }
  return r;
}

TEST(XdTagLen, IdentifiersOfOneOctetAndInBase128) {
  const std::pair<const char*, ASN1TagType> cases[] = {
      {"02 00", ASN_ID_INT}, {"30 00", TM_CONS | ASN_ID_SEQ}, {"82 00", TM_CTXT | 2},
      {"A3 00", TM_CTXT | TM_CONS | 3}, {"5E 00", TM_APPL | 30}, {"E0 00", TM_PRIV | TM_CONS | 0},
      {"9F 1F 00", TM_CTXT | 31}, {"7F 81 80 00 00", TM_APPL | TM_CONS | 0x4000},
      {"DF 81 FF FF FF 7F 00", TM_PRIV | TM_IDCODE_MASK}};
  for (const auto& c : cases) EXPECT_EQ(readHeader(c.first).tag, c.second) << c.first;
  Header h = readHeader("9F 81 48 00");
  EXPECT_EQ(h.tag, TM_CTXT | 200);
  EXPECT_EQ(h.pos, 4u);
  // One more base-128 group would push the number past 29 bits.
  EXPECT_EQ(readHeader("DF 82 80 80 80 00 00").stat, ASN_E_BADTAG);
  EXPECT_EQ(readHeader("DF 81 FF FF FF FF 7F 00").stat, ASN_E_BADTAG);
  // Continuation octets running into the end of the data.
  EXPECT_EQ(readHeader("9F").stat, ASN_E_ENDOFBUF);
  EXPECT_EQ(readHeader("9F 81 81").stat, ASN_E_ENDOFBUF);
}

TEST(XdTagLen, DefiniteLengthsAreBoundedByTheData) {
  EXPECT_EQ(readHeader("04 00").len, 0);
  EXPECT_EQ(readHeader("04 03 01 02 03").len, 3);
  Octets longForm = hexOctets("04 84 00 00 01 00");
  longForm.resize(longForm.size() + 256);
  DecodeHarness h(longForm);
  int len = 0;
  ASSERT_EQ(xd_tag_len(h.ctxt(), nullptr, &len, XM_ADVANCE), 0);
  EXPECT_EQ(len, 256);
  EXPECT_EQ(h.pos(), 6u);

  // Past the data, five length octets, 0xFF, and four whose top bit would make them negative
  // as an int; then headers cut short.
  for (const char* hex : {"04 81 05 01 02 03", "04 04 01 02 03", "04 85 00 00 00 00 01 00",
                          "04 FF", "04 84 80 00 00 00"})
    EXPECT_EQ(readHeader(hex).stat, ASN_E_INVLEN) << hex;
  for (const char* hex : {"04 82 01", "04", ""}) EXPECT_EQ(readHeader(hex).stat, ASN_E_ENDOFBUF);
}

TEST(XdTagLen, IndefiniteLengthOnlyOnConstructedTags) {
  Header h = readHeader("30 80 00 00");
  EXPECT_EQ(h.stat, 0);
  EXPECT_EQ(h.len, ASN_K_INDEFLEN);
  EXPECT_EQ(readHeader("04 80 00 00").stat, ASN_E_INVLEN);
  EXPECT_EQ(readHeader("9F 20 80 00 00").stat, ASN_E_INVLEN);
}

TEST(XdTagLen, PeekLeavesPositionAndFlagsAdvanceUpdatesThem) {
  DecodeHarness h("30 03 04 01 41");
  ASN1TagType tag;
  int len;
  ASSERT_EQ(xd_tag_len(h.ctxt(), &tag, &len, 0), 0);
  EXPECT_EQ(tag, TM_CONS | ASN_ID_SEQ);
  EXPECT_EQ(h.pos(), 0u);
  EXPECT_FALSE(h.constructedFlag());

  ASSERT_EQ(xd_tag_len(h.ctxt(), &tag, &len, XM_ADVANCE), 0);
  EXPECT_EQ(h.pos(), 2u);
  EXPECT_TRUE(h.constructedFlag());
  ASSERT_EQ(xd_tag_len(h.ctxt(), &tag, &len, XM_ADVANCE), 0);
  EXPECT_EQ(tag, ASN_ID_OCTSTR);
  EXPECT_EQ(len, 1);
  EXPECT_FALSE(h.constructedFlag());

  // A failed read leaves the position where it was.
  DecodeHarness bad("30 03 04 85");
  bad.ctxt()->buffer.byteIndex = 2;
  EXPECT_EQ(xd_tag_len(bad.ctxt(), &tag, &len, XM_ADVANCE), ASN_E_INVLEN);
  EXPECT_EQ(bad.pos(), 2u);
}

TEST(XdTagLen, StreamThatMetItsLastEndOfContentsGivesNoMoreTags) {
  DecodeHarness h("02 01 00");
  ASN1TagType tag;
  int len;
  h.ctxt()->flags |= ASN1INDEFLEN | ASN1LASTEOC;
  EXPECT_EQ(xd_tag_len(h.ctxt(), &tag, &len, XM_ADVANCE), ASN_E_ENDOFBUF);
  EXPECT_EQ(xd_Tag1AndLen(h.ctxt(), &len), ASN_E_ENDOFBUF);
  h.ctxt()->flags &= (ASN1USINT)~ASN1LASTEOC;
  EXPECT_EQ(xd_tag_len(h.ctxt(), &tag, &len, XM_ADVANCE), 0);
}

TEST(XdLen, FormsAndTheModuleRecorded) {
  struct Case {
    std::string hex;
    int stat;
    int len;
  } cases[] = {
      {"00", 0, 0},           {"7F" + std::string(127 * 2, '0'), 0, 127},
      {"80", 0, ASN_K_INDEFLEN}, {"81 02 AA BB", 0, 2},
      {"81", ASN_E_ENDOFBUF, 0}, {"85 00 00 00 00 01", ASN_E_INVLEN, 0},
      {"81 05 01 02 03", ASN_E_INVLEN, 0},
  };
  for (const Case& c : cases) {
    DecodeHarness h(c.hex);
    int len = -1;
    EXPECT_EQ(xd_len(h.ctxt(), &len), c.stat) << c.hex;
    if (c.stat == 0) {
      EXPECT_EQ(len, c.len) << c.hex;
    } else {
      EXPECT_EQ(h.context().errorModule(), "rtbersrc/xd_len") << c.hex;
      EXPECT_EQ(h.pos(), 0u);
    }
  }
}

TEST(XdTag1AndLen, SkipsTheIdentifierAndTracksTheConstructedBit) {
  DecodeHarness h("A0 81 03 04 01 41");
  int len;
  ASSERT_EQ(xd_Tag1AndLen(h.ctxt(), &len), 0);
  EXPECT_EQ(len, 3);
  EXPECT_EQ(h.pos(), 3u);
  EXPECT_TRUE(h.constructedFlag());
  ASSERT_EQ(xd_Tag1AndLen(h.ctxt(), &len), 0);
  EXPECT_FALSE(h.constructedFlag());
  EXPECT_EQ(len, 1);

  EXPECT_EQ(xd_Tag1AndLen(DecodeHarness("04").ctxt(), &len), ASN_E_ENDOFBUF);
  EXPECT_EQ(xd_Tag1AndLen(DecodeHarness("04 02 00").ctxt(), &len), ASN_E_INVLEN);
  EXPECT_EQ(xd_Tag1AndLen(DecodeHarness("04 80 00 00").ctxt(), &len), ASN_E_INVLEN);
  EXPECT_EQ(xd_Tag1AndLen(DecodeHarness("24 80 00 00").ctxt(), &len), 0);
  EXPECT_EQ(len, ASN_K_INDEFLEN);
}

TEST(XdSetp, DefiniteOuterLengthBoundsTheMessage) {
  // Trailing octets beyond the outer value are not part of the message.
  Octets msg = hexOctets("30 03 02 01 05 FF FF");
  TestContext ctx;
  ASN1TagType tag;
  int len;
  ctx.get()->flags |= ASN1INDEFLEN | ASN1LASTEOC;
  ASSERT_EQ(xd_setp(ctx.get(), msg.data(), (int)msg.size(), &tag, &len), 0);
  EXPECT_EQ(tag, TM_CONS | ASN_ID_SEQ);
  EXPECT_EQ(len, 3);
  EXPECT_EQ(ctx.get()->buffer.size, 5u);
  EXPECT_EQ(ctx.get()->buffer.byteIndex, 0u);
  EXPECT_EQ(ctx.get()->buffer.data, msg.data());
  EXPECT_FALSE(ctx.get()->buffer.dynamic);
  EXPECT_EQ(ctx.get()->flags & (ASN1INDEFLEN | ASN1LASTEOC), 0);

  // Unknown size: the header alone decides.
  ASSERT_EQ(xd_setp(ctx.get(), msg.data(), 0, nullptr, &len), 0);
  EXPECT_EQ(ctx.get()->buffer.size, 5u);
}

TEST(XdSetp, IndefiniteOuterLengthAndFailures) {
  Octets msg = hexOctets("30 80 02 01 05 00 00");
  TestContext ctx;
  int len;
  ASSERT_EQ(xd_setp(ctx.get(), msg.data(), (int)msg.size(), nullptr, &len), 0);
  EXPECT_EQ(len, ASN_K_INDEFLEN);
  EXPECT_TRUE(ctx.get()->flags & ASN1INDEFLEN);
  EXPECT_EQ(ctx.get()->buffer.size, msg.size());

  ASSERT_EQ(xd_setp(ctx.get(), msg.data(), -1, nullptr, &len), 0);
  EXPECT_EQ(ctx.get()->buffer.size, 0x7FFFFFFFu);

  Octets shortMsg = hexOctets("30 05 02 01 05");
  EXPECT_EQ(xd_setp(ctx.get(), shortMsg.data(), (int)shortMsg.size(), nullptr, &len),
            ASN_E_INVLEN);
  EXPECT_EQ(xd_setp(ctx.get(), shortMsg.data(), 1, nullptr, &len), ASN_E_ENDOFBUF);
  EXPECT_EQ(xd_setp(ctx.get(), nullptr, 5, nullptr, &len), ASN_E_INVPARAM);
}

TEST(XdSetp, KnownSizeStillBoundsReadsUnderAnIndefiniteOuterLength) {
  // The outer value never ends; with the caller's size known, the walk must stop at it.
  DecodeHarness h("30 80 04 01 41");
  TestContext& ctx = h.context();
  int len;
  ASSERT_EQ(xd_setp(ctx.get(), h.data(), (int)h.size(), nullptr, &len), 0);
  ASSERT_EQ(xd_tag_len(ctx.get(), nullptr, &len, XM_ADVANCE), 0);
  EXPECT_EQ(xd_MovePastEOC(ctx.get()), ASN_E_ENDOFBUF);
  ASN1OCTET value[4];
  ASN1UINT n = sizeof value;
  EXPECT_EQ(xd_octstr_s(ctx.get(), value, &n, ASN1EXPL, 0), 0);
  EXPECT_EQ(xd_tag_len(ctx.get(), nullptr, &len, XM_ADVANCE), ASN_E_ENDOFBUF);
}

}  // namespace
