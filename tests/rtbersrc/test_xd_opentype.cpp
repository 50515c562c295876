// Open types: whole elements taken as encoded, one at a time or as extension lists.
#include <gtest/gtest.h>

#include <quillon/rtList.h>
#include <quillon/rtMemHeap.h>

#include "decode_harness.h"

namespace {

TEST(XdOpenType, WholeElementOfEitherLengthForm) {
  for (bool fast : {false, true}) {
    DecodeHarness h("A1 03 02 01 05 30 80 04 00 A0 80 00 00 00 00 05 00");
    if (fast) rtSetFastCopy(h.ctxt());
    const ASN1OCTET* data;
    ASN1UINT n;
    ASSERT_EQ(xd_OpenType(h.ctxt(), &data, &n), 0);
    EXPECT_EQ(hexText(data, n), "A1 03 02 01 05");
    EXPECT_EQ(data == h.data(), fast);
    ASSERT_EQ(xd_OpenType(h.ctxt(), &data, &n), 0);
    EXPECT_EQ(hexText(data, n), "30 80 04 00 A0 80 00 00 00 00");
    EXPECT_EQ(h.pos(), 15u);
  }
  const ASN1OCTET* data;
  ASN1UINT n;
  EXPECT_EQ(xd_OpenType(DecodeHarness("30 80 04 00").ctxt(), &data, &n), ASN_E_ENDOFBUF);
  EXPECT_EQ(xd_OpenType(DecodeHarness("30 05 04 00").ctxt(), &data, &n), ASN_E_INVLEN);
  EXPECT_EQ(xd_OpenType(DecodeHarness("").ctxt(), &data, &n), ASN_E_ENDOFBUF);
  // End-of-contents octets are no value: the encoder could not write them back.
  for (const char* eocHex : {"00 00 05 00", "00 81 00 05 00", "1F 00 00"}) {
    DecodeHarness eoc(eocHex);
    EXPECT_EQ(xd_OpenType(eoc.ctxt(), &data, &n), ASN_E_BADTAG) << eocHex;
    EXPECT_EQ(eoc.ctxt()->errInfo.status, ASN_E_BADTAG);
  }
}

std::vector<std::string> listHex(const _Asn1RTDList& list) {
  std::vector<std::string> out;
  for (_Asn1RTDListNode* node = list.head; node; node = node->next) {
    const ASN1TOpenType* e = static_cast<const ASN1TOpenType*>(node->data);
    out.push_back(hexText(e->data, e->numocts));
  }
  return out;
}

TEST(XdOpenTypeExt, CollectsUpToTheEndOrTheStopTag) {
  using V = std::vector<std::string>;
  // Contents of a SEQUENCE: two unknown extensions, then a known [3].
  DecodeHarness h("30 0B 81 01 AA A2 80 05 00 00 00 83 00");
  rtSetFastCopy(h.ctxt());
  int len;
  ASSERT_EQ(xd_match1(h.ctxt(), 0x30, &len), 0);
  ASN1CCB ccb = {h.data() + h.pos(), len};
  _Asn1RTDList list;
  rtDListInit(&list);
  ASSERT_EQ(xd_OpenTypeExt(h.ctxt(), &ccb, TM_CTXT | 3, &list), 0);
  EXPECT_EQ(listHex(list), (V{"81 01 AA", "A2 80 05 00 00 00"}));
  // Extension octets are the context's, whatever fast copy says.
  const ASN1TOpenType* first = static_cast<const ASN1TOpenType*>(list.head->data);
  EXPECT_FALSE(first->data >= h.data() && first->data < h.data() + h.size());
  EXPECT_EQ(h.pos(), 11u);
  rtMemFreeOpenSeqExt(h.ctxt(), &list);
  EXPECT_EQ(list.count, 0u);

  // Without a stop tag everything up to the end is taken; a null list only skips.
  h.ctxt()->buffer.byteIndex = 2;
  ASSERT_EQ(xd_OpenTypeExt(h.ctxt(), &ccb, ASN_K_NOTAG, &list), 0);
  EXPECT_EQ(list.count, 3u);
  EXPECT_EQ(h.pos(), 13u);
  h.ctxt()->buffer.byteIndex = 2;
  ASSERT_EQ(xd_OpenTypeExt(h.ctxt(), &ccb, ASN_K_NOTAG, nullptr), 0);
  EXPECT_EQ(h.pos(), 13u);
}

TEST(XdOpenTypeExt, IndefiniteContainerAndBadElements) {
  DecodeHarness h("81 01 AA 82 00 00 00 FF");
  ASN1CCB ccb = {h.data(), ASN_K_INDEFLEN};
  _Asn1RTDList list;
  rtDListInit(&list);
  ASSERT_EQ(xd_OpenTypeExt(h.ctxt(), &ccb, ASN_K_NOTAG, &list), 0);
  EXPECT_EQ(list.count, 2u);
  EXPECT_EQ(h.pos(), 5u);

  DecodeHarness bad("81 01 AA 82 05 00");
  ASN1CCB ccb2 = {bad.data(), ASN_K_INDEFLEN};
  _Asn1RTDList list2;
  rtDListInit(&list2);
  EXPECT_EQ(xd_OpenTypeExt(bad.ctxt(), &ccb2, ASN_K_NOTAG, &list2), ASN_E_INVLEN);
  EXPECT_EQ(bad.context().errorStatus(), ASN_E_INVLEN);
}

}  // namespace
