// The text utilities of the decode handlers: element matching, the decoders' input and the
// readers over it.
#include <gtest/gtest.h>
#include <quillon/asn1XerDec.h>

#include "xer_decode_harness.h"

namespace {

TEST(XerText, CompareAndHeapCopy) {
  EXPECT_TRUE(xerCmpText("", ""));
  EXPECT_FALSE(xerCmpText("version", "versio")) << "equal in full, not as a prefix";
  EXPECT_FALSE(xerCmpText("versio", "version"));
  EXPECT_FALSE(xerCmpText(nullptr, nullptr));

  TestContext ctx;
  char* copy = xerTextToCStr(ctx.get(), "issuer");
  EXPECT_STREQ("issuer", copy);
  EXPECT_TRUE(rtMemHeapCheckPtr(&ctx.get()->memHeap, copy));
}

TEST(XerText, ElementLookupFollowsSequenceOrder) {
  const XERElemInfo elems[] = {{"a", 0}, {"b", 1}, {"c", 0}, {"d", 1}, {"e", 1}};
  EXPECT_EQ(2, xerGetSeqElemIdx("c", elems, 5, 1)) << "optional b may be skipped";
  EXPECT_EQ(-1, xerGetSeqElemIdx("c", elems, 5, 0)) << "required a may not";
  EXPECT_EQ(4, xerGetSeqElemIdx("e", elems, 5, 3));
  EXPECT_EQ(-1, xerGetSeqElemIdx("a", elems, 5, 1)) << "no going back";
  EXPECT_EQ(-1, xerGetSeqElemIdx("z", elems, 5, 3)) << "end of the table";
  EXPECT_EQ(2, xerGetElemId("c", elems, 5));
  EXPECT_EQ(-1, xerGetElemId("z", elems, 5));
}

TEST(XerText, FinalizeMemBufAndSetDecBufPtrDefineTheInput) {
  TestContext ctx;
  ASN1MemBuf mb;
  rtMemBufInit(ctx.get(), &mb, 0);
  rtMemBufAppend(&mb, reinterpret_cast<const ASN1OCTET*>("  42"), 4);
  ASSERT_EQ(0, xerFinalizeMemBuf(&mb));
  ASN1BUFFER& in = ctx.get()->buffer;
  EXPECT_EQ(rtMemBufGetData(&mb, nullptr), in.data);
  EXPECT_EQ(4u, in.size);
  EXPECT_EQ(0u, in.byteIndex);
  EXPECT_EQ(8, in.bitOffset);
  EXPECT_EQ(0, in.dynamic);
  EXPECT_EQ(4, rtMemBufGetDataLen(&mb)) << "the NUL is not counted";
  EXPECT_EQ('\0', in.data[4]);
  ASN1INT v = 0;
  EXPECT_EQ(0, xerDecInt(ctx.get(), &v));
  EXPECT_EQ(42, v);
  rtMemBufFree(&mb);

  // Without a NUL the input ends at the size given; a NUL inside ends it earlier.
  const char digits[] = {'1', '2', '3'};
  ASSERT_EQ(0, xerSetDecBufPtr(ctx.get(), digits, 2));
  EXPECT_EQ(0, xerDecInt(ctx.get(), &v));
  EXPECT_EQ(12, v);
  ASSERT_EQ(0, xerSetDecBufPtr(ctx.get(), "7\0" "8", 3));
  EXPECT_EQ(0, xerDecInt(ctx.get(), &v));
  EXPECT_EQ(7, v);
  EXPECT_EQ(0, xerSetDecBufPtr(ctx.get(), nullptr, 0));
  EXPECT_EQ(0, xerDecInt(ctx.get(), &v));
  EXPECT_EQ(0, v);
  EXPECT_EQ(ASN_E_INVPARAM, xerSetDecBufPtr(ctx.get(), nullptr, 3));
}

TEST(XerText, ReadCharAndParseTokenWalkTheInput) {
  XerIn in("a\xC3\xA9\xF0\x9F\x98\x80");
  EXPECT_EQ('a', xerReadChar(in.ctxt()));
  EXPECT_EQ(0xE9, xerReadChar(in.ctxt()));
  EXPECT_EQ(0x1F600, xerReadChar(in.ctxt()));
  EXPECT_EQ(ASN_E_ENDOFBUF, xerReadChar(in.ctxt()));

  XerIn bad("\xC3(");
  EXPECT_EQ(ASN_E_INVUTF8, xerReadChar(bad.ctxt()));
  EXPECT_EQ(ASN_E_INVUTF8, bad.context().errorStatus());
  EXPECT_EQ(0u, bad.ctxt()->buffer.byteIndex) << "position kept on failure";

  XerIn words("  digitalSignature\n\tkeyCertSign  ");
  const char* token = nullptr;
  int n = xerParseToken(words.ctxt(), &token);
  EXPECT_EQ("digitalSignature", std::string(token, n));
  n = xerParseToken(words.ctxt(), &token);
  EXPECT_EQ("keyCertSign", std::string(token, n));
  EXPECT_EQ(0, xerParseToken(words.ctxt(), &token));
}

}  // namespace
