// Matching expected tags, finding the end of constructed values, skipping and counting.
#include <gtest/gtest.h>

#include "decode_harness.h"

namespace {

std::string parm(TestContext& ctx, int i) {
  ASN1ErrInfo& e = ctx.get()->errInfo;
  return i < e.parmcnt ? e.parms[i] : "";
}

TEST(XdMatch, MatchIgnoresTheConstructedBitAndAdvancesOnlyWhenAsked) {
  DecodeHarness h("A0 03 02 01 07");
  int len = 0;
  ASSERT_EQ(xd_match(h.ctxt(), TM_CTXT | 0, &len, 0), 0);
  EXPECT_EQ(len, 3);
  EXPECT_EQ(h.pos(), 0u);
  ASSERT_EQ(xd_match(h.ctxt(), TM_CTXT | TM_CONS | 0, &len, XM_ADVANCE), 0);
  EXPECT_EQ(h.pos(), 2u);
  EXPECT_TRUE(h.constructedFlag());
  ASSERT_EQ(xd_match(h.ctxt(), TM_CONS | ASN_ID_INT, nullptr, XM_ADVANCE), 0);
  EXPECT_FALSE(h.constructedFlag());
  EXPECT_EQ(h.pos(), 4u);
}

TEST(XdMatch, MismatchReportsExpectedThenParsedAndRestores) {
  DecodeHarness h("81 01 00");
  int len = 99;
  h.ctxt()->flags |= ASN1CONSTAG;
  EXPECT_EQ(xd_match(h.ctxt(), TM_CTXT | 0, &len, XM_ADVANCE), ASN_E_IDNOTFOU);
  EXPECT_EQ(parm(h.context(), 0), "[0]");
  EXPECT_EQ(parm(h.context(), 1), "[1]");
  EXPECT_EQ(h.pos(), 0u);
  EXPECT_EQ(len, 99);
  EXPECT_TRUE(h.constructedFlag());

  // Running out of data is a mismatch too: an absent optional component.
  DecodeHarness end("02 01 00");
  end.ctxt()->buffer.byteIndex = 3;
  EXPECT_EQ(xd_match(end.ctxt(), ASN_ID_BOOL, &len, XM_ADVANCE), ASN_E_IDNOTFOU);
  EXPECT_EQ(parm(end.context(), 0), "[UNIVERSAL 1]");

  // A malformed header is not an absent component.
  DecodeHarness bad("04 85 00");
  EXPECT_EQ(xd_match(bad.ctxt(), ASN_ID_OCTSTR, &len, XM_ADVANCE), ASN_E_INVLEN);
}

TEST(XdMatch, SkipSearchesThroughAndIntoElements) {
  // [1] primitive is stepped over, SEQUENCE is entered, the INTEGER inside is found.
  DecodeHarness h("81 02 AA BB 30 03 02 01 09");
  int len;
  ASSERT_EQ(xd_match(h.ctxt(), ASN_ID_INT, &len, XM_SKIP | XM_ADVANCE), 0);
  EXPECT_EQ(h.pos(), 8u);
  EXPECT_EQ(len, 1);

  DecodeHarness none("81 02 AA BB 30 80 04 00 00 00");
  EXPECT_EQ(xd_match(none.ctxt(), ASN_ID_INT, &len, XM_SKIP | XM_ADVANCE), ASN_E_IDNOTFOU);
  EXPECT_EQ(none.pos(), 0u);
}

TEST(XdMatch, EnterConsumesAnEnclosingHeaderFirst) {
  DecodeHarness h("A2 03 02 01 05");
  int len;
  ASSERT_EQ(xd_match(h.ctxt(), ASN_ID_INT, &len, XM_ENTER | XM_ADVANCE), 0);
  EXPECT_EQ(h.pos(), 4u);
  ASSERT_EQ(xd_match(DecodeHarness("A2 03 02 01 05").ctxt(), ASN_ID_INT, &len, XM_ENTER), 0);
  EXPECT_EQ(xd_match(DecodeHarness("A2 00").ctxt(), ASN_ID_INT, &len, XM_ENTER),
            ASN_E_IDNOTFOU);
}

TEST(XdMatch1, OneOctetTags) {
  DecodeHarness h("24 80 04 01 41 00 00");
  int len;
  ASSERT_EQ(xd_match1(h.ctxt(), ASN_ID_OCTSTR, &len), 0);
  EXPECT_EQ(len, ASN_K_INDEFLEN);
  EXPECT_TRUE(h.constructedFlag());
  EXPECT_EQ(h.pos(), 2u);

  DecodeHarness other("9F 81 48 00");
  EXPECT_EQ(xd_match1(other.ctxt(), 0x80, &len), ASN_E_IDNOTFOU);
  EXPECT_EQ(parm(other.context(), 0), "[0]");
  EXPECT_EQ(parm(other.context(), 1), "[200]");
  EXPECT_EQ(xd_match1(DecodeHarness("").ctxt(), ASN_ID_OCTSTR, &len), ASN_E_IDNOTFOU);
}

TEST(XdChkend, DefiniteContentsEndByCountOrByTheData) {
  DecodeHarness h("30 06 02 01 01 02 01 02");
  int len;
  ASSERT_EQ(xd_match1(h.ctxt(), 0x30, &len), 0);
  ASN1CCB ccb = {h.data() + h.pos(), len};
  int seen = 0;
  while (!xd_chkend(h.ctxt(), &ccb)) {
    ASN1INT v;
    ASSERT_EQ(xd_integer(h.ctxt(), &v, ASN1EXPL, 0), 0);
    EXPECT_EQ(v, ++seen);
  }
  EXPECT_EQ(seen, 2);

  // A length that claims more than the data has still ends at the data's end.
  DecodeHarness cut("02 01 01");
  ASN1CCB longer = {cut.data(), 10};
  EXPECT_EQ(xd_chkend(cut.ctxt(), &longer), 0);
  cut.ctxt()->buffer.byteIndex = 3;
  EXPECT_EQ(xd_chkend(cut.ctxt(), &longer), 1);
}

TEST(XdChkend, IndefiniteContentsEndAtEndOfContentsWithoutRecordingAnything) {
  DecodeHarness h("02 01 01 00 00");
  ASN1CCB ccb = {h.data(), ASN_K_INDEFLEN};
  EXPECT_EQ(xd_chkend(h.ctxt(), &ccb), 0);
  h.ctxt()->buffer.byteIndex = 3;
  EXPECT_EQ(xd_chkend(h.ctxt(), &ccb), 1);
  EXPECT_EQ(h.pos(), 3u);
  // Consuming the end-of-contents octets is a match of tag 0.
  int len;
  ASSERT_EQ(xd_match(h.ctxt(), 0, &len, XM_ADVANCE), 0);
  EXPECT_EQ(h.pos(), 5u);
  EXPECT_EQ(xd_chkend(h.ctxt(), &ccb), 1);
  // 00 05 is not end-of-contents, and a bad header is left for the element decoder.
  DecodeHarness notEnd("00 05 00 00 00 00 00 04 85");
  ASN1CCB ccb2 = {notEnd.data(), ASN_K_INDEFLEN};
  EXPECT_EQ(xd_chkend(notEnd.ctxt(), &ccb2), 0);
  notEnd.ctxt()->buffer.byteIndex = 7;
  EXPECT_EQ(xd_chkend(notEnd.ctxt(), &ccb2), 0);
  EXPECT_EQ(notEnd.context().errorStatus(), 0);
  EXPECT_EQ(h.context().errorStatus(), 0);
}

TEST(XdSkip, MovePastEOCFollowsNestingOfBothLengthForms) {
  DecodeHarness h("30 80 04 01 41 00 00");
  h.ctxt()->buffer.byteIndex = 2;
  ASSERT_EQ(xd_MovePastEOC(h.ctxt()), 0);
  EXPECT_EQ(h.pos(), 7u);

  // Definite values are skipped whole, even when their contents look like end-of-contents.
  DecodeHarness nested("30 80 A0 80 31 02 00 00 00 00 24 80 00 00 00 00 FF");
  nested.ctxt()->buffer.byteIndex = 2;
  ASSERT_EQ(xd_MovePastEOC(nested.ctxt()), 0);
  EXPECT_EQ(nested.pos(), 16u);

  DecodeHarness unterminated("30 80 A0 80 04 00 00 00");
  unterminated.ctxt()->buffer.byteIndex = 2;
  EXPECT_EQ(xd_MovePastEOC(unterminated.ctxt()), ASN_E_ENDOFBUF);
  EXPECT_EQ(unterminated.pos(), 2u);
  EXPECT_EQ(unterminated.context().errorStatus(), ASN_E_ENDOFBUF);
}

TEST(XdSkip, NextElementAndCount) {
  DecodeHarness h("02 01 05 30 80 04 00 00 00 31 02 05 00 00 00");
  ASSERT_EQ(xd_NextElement(h.ctxt()), 0);
  EXPECT_EQ(h.pos(), 3u);
  ASSERT_EQ(xd_NextElement(h.ctxt()), 0);
  EXPECT_EQ(h.pos(), 9u);
  ASSERT_EQ(xd_NextElement(h.ctxt()), 0);
  EXPECT_EQ(h.pos(), 13u);

  int count = -1;
  h.ctxt()->buffer.byteIndex = 0;
  ASSERT_EQ(xd_count(h.ctxt(), 13, &count), 0);
  EXPECT_EQ(count, 3);
  EXPECT_EQ(h.pos(), 0u);
  ASSERT_EQ(xd_count(h.ctxt(), ASN_K_INDEFLEN, &count), 0);
  EXPECT_EQ(count, 3);
  ASSERT_EQ(xd_count(h.ctxt(), 3, &count), 0);
  EXPECT_EQ(count, 1);
  ASSERT_EQ(xd_count(h.ctxt(), 0, &count), 0);
  EXPECT_EQ(count, 0);

  DecodeHarness broken("02 01 05 04 05 00");
  EXPECT_LT(xd_count(broken.ctxt(), 6, &count), 0);
  EXPECT_EQ(broken.pos(), 0u);
  EXPECT_LT(xd_NextElement(DecodeHarness("30 80 02 01 05").ctxt()), 0);
}

TEST(XdIndeflen, FullLengthOfIndefiniteEncodings) {
  Octets msg = hexOctets("30 80 A0 80 02 01 01 00 00 04 02 00 00 00 00 FF FF");
  EXPECT_EQ(xd_indeflen_ex(msg.data(), (int)msg.size()), 15);
  EXPECT_EQ(xd_indeflen_ex(msg.data(), 0x7FFFFFFF), 15);
  EXPECT_EQ(xd_indeflen_ex(msg.data(), 14), ASN_E_ENDOFBUF);
  Octets definite = hexOctets("30 03 02 01 01");
  EXPECT_EQ(xd_indeflen_ex(definite.data(), (int)definite.size()), ASN_E_INVLEN);
  EXPECT_EQ(xd_indeflen_ex(nullptr, 4), ASN_E_INVPARAM);
}

TEST(XdBufferState, RestoresPositionAndFlags) {
  DecodeHarness h("30 00 02 01 00");
  ASN1BUFSAVE saved;
  xu_SaveBufferState(h.ctxt(), &saved);
  int len;
  ASSERT_EQ(xd_tag_len(h.ctxt(), nullptr, &len, XM_ADVANCE), 0);
  EXPECT_TRUE(h.constructedFlag());
  xu_RestoreBufferState(h.ctxt(), &saved);
  EXPECT_EQ(h.pos(), 0u);
  EXPECT_FALSE(h.constructedFlag());
}

}  // namespace
