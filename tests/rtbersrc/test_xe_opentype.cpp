// Open types copied in whole, in place, and as extension lists.
#include <gtest/gtest.h>

#include <quillon/rtList.h>

#include "encode_harness.h"

namespace {

std::string openTypeHex(const Bytes& in, int* result = nullptr) {
  EncodeHarness h;
  int n = xe_OpenType(h.ctxt(), in.data(), (ASN1UINT)in.size());
  if (result) *result = n;
  if (n < 0) return "status " + std::to_string(n);
  EXPECT_EQ(n, (int)h.written().size());
  return h.hex();
}

TEST(XeOpenType, CopiesOneCompleteElement) {
  EXPECT_EQ(openTypeHex(bytesOf({0x30, 0x03, 0x02, 0x01, 0x05})), "30 03 02 01 05");
  EXPECT_EQ(openTypeHex(bytesOf({0x05, 0x00})), "05 00");
  // Bytes after the first element are not part of it.
  EXPECT_EQ(openTypeHex(bytesOf({0x02, 0x01, 0x07, 0xAA, 0xBB})), "02 01 07");

  Bytes longForm = bytesOf({0x04, 0x81, 0x80});
  longForm.resize(3 + 0x80, 0x11);
  int n = 0;
  openTypeHex(longForm, &n);
  EXPECT_EQ(n, 3 + 0x80);
}

TEST(XeOpenType, IndefiniteLengthRunsToItsEndOfContents) {
  EXPECT_EQ(openTypeHex(bytesOf({0x30, 0x80, 0x02, 0x01, 0x05, 0x00, 0x00, 0x99})),
            "30 80 02 01 05 00 00");
  EXPECT_EQ(openTypeHex(bytesOf({0xA0, 0x80, 0x30, 0x80, 0x05, 0x00, 0x00, 0x00, 0x00, 0x00})),
            "A0 80 30 80 05 00 00 00 00 00");
}

TEST(XeOpenType, MalformedEncodingsAreRefused) {
  EXPECT_EQ(openTypeHex(bytesOf({0x00, 0x00})), "status -18");  // end-of-contents
  int n = 0;
  openTypeHex(bytesOf({0x30, 0x05, 0x02, 0x01}), &n);  // longer than given
  EXPECT_LT(n, 0);
  openTypeHex(bytesOf({0x30, 0x80, 0x02, 0x01, 0x05}), &n);  // end-of-contents missing
  EXPECT_LT(n, 0);
  openTypeHex(bytesOf({0x30}), &n);  // header cut short
  EXPECT_LT(n, 0);

  EncodeHarness h;
  EXPECT_EQ(xe_OpenType(h.ctxt(), nullptr, 3), ASN_E_BADVALUE);
  EXPECT_EQ(xe_OpenType(h.ctxt(), nullptr, 0), 0);
  EXPECT_TRUE(h.written().empty());
}

TEST(XeOpenType, DecoderFailuresAreTracedThroughTheEncoder) {
  EncodeHarness h;
  Bytes cut = bytesOf({0x30, 0x05, 0x02, 0x01});
  int n = xe_OpenType(h.ctxt(), cut.data(), (ASN1UINT)cut.size());
  ASSERT_LT(n, 0);
  const ASN1ErrInfo& e = h.ctxt()->errInfo;
  EXPECT_EQ(e.status, n);
  ASSERT_GE(e.stkx, 2);
  EXPECT_EQ(std::string(e.stack[e.stkx - 1].module), "rtbersrc/xe_OpenType");
  EXPECT_EQ(std::string(e.stack[0].module).rfind("rtbersrc/xd_", 0), 0u);
}

TEST(XeOpenType, AnEncodingAlreadyInPlaceIsCountedNotCopied) {
  EncodeHarness h;
  ASN1INT v = 300;
  int len = xe_integer(h.ctxt(), &v, ASN1EXPL);
  ASSERT_EQ(len, 4);
  EXPECT_EQ(xe_OpenType(h.ctxt(), xe_getp(h.ctxt()), (ASN1UINT)len), 4);
  EXPECT_EQ(h.hex(), "02 02 01 2C");
}

TEST(XeOpenTypeExt, ElementsKeepTheirOrder) {
  EncodeHarness h;
  Bytes a = bytesOf({0x02, 0x01, 0x01}), b = bytesOf({0x05, 0x00}),
        c = bytesOf({0x04, 0x02, 0xAB, 0xCD});
  ASN1TOpenType elems[] = {{3, a.data()}, {2, b.data()}, {4, c.data()}};
  _Asn1RTDList list;
  rtDListInit(&list);
  for (ASN1TOpenType& e : elems) ASSERT_NE(rtDListAppend(h.ctxt(), &list, &e), nullptr);
  EXPECT_EQ(xe_OpenTypeExt(h.ctxt(), &list), 9);
  EXPECT_EQ(h.hex(), "02 01 01 05 00 04 02 AB CD");
  EXPECT_EQ(xe_OpenTypeExt(h.ctxt(), nullptr), 0);

  // A bad element stops the run with its status.
  Bytes eoc = bytesOf({0x00, 0x00});
  ASN1TOpenType bad = {2, eoc.data()};
  rtDListAppend(h.ctxt(), &list, &bad);
  EXPECT_EQ(xe_OpenTypeExt(h.ctxt(), &list), ASN_E_BADVALUE);
}

}  // namespace
