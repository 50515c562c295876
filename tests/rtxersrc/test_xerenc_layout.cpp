// The XML encoder's document layout: declaration, tags, indentation, canonical mode, the end
// of a document, and the byte writer beneath them (growth, overflow, memory failure, traces).
#include <gtest/gtest.h>

#include <quillon/asn1xer.h>
#include <quillon/rtStream.h>

#include <string.h>

#include <string>
#include <vector>

#include "heap_hooks.h"
#include "xer_encode_harness.h"

namespace {

const std::string kDecl = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>";

// A SEQUENCE of primitives written the way a generated encoder writes it: start tag, one level
// deeper for the components, back up, end tag.
int writeValidity(ASN1CTXT* c) {
  static const ASN1OCTET value[] = {0xAB, 0x01};
  int stat = xerEncStartDocument(c);
  if (stat == 0) stat = xerEncStartElement(c, "Validity", "id=\"7\"");
  c->xmlLevel++;
  if (stat == 0) stat = xerEncInt(c, 2, "version");
  if (stat == 0) stat = xerEncBool(c, 1, "critical");
  if (stat == 0) stat = xerEncNull(c, "nothing");
  if (stat == 0) stat = xerEncOctStr(c, 2, value, "value");
  c->xmlLevel--;
  if (stat == 0) stat = xerEncEndElement(c, "Validity");
  if (stat == 0) stat = xerEncEndDocument(c);
  return stat;
}

TEST(XerEncLayout, SequenceOfPrimitivesIndentedAndCanonical) {
  XerOut out;
  ASSERT_EQ(writeValidity(out.ctxt()), 0);
  EXPECT_EQ(out.text(), kDecl +
                            "\n<Validity id=\"7\">"
                            "\n   <version>2</version>"
                            "\n   <critical><true/></critical>"
                            "\n   <nothing/>"
                            "\n   <value>AB01</value>"
                            "\n</Validity>");
  // The document is NUL-terminated, and the length does not count the terminator.
  EXPECT_EQ(xerGetMsgPtr(out.ctxt())[xerGetMsgLen(out.ctxt())], 0);

  XerOut canonical(true);
  ASSERT_EQ(writeValidity(canonical.ctxt()), 0);
  EXPECT_EQ(canonical.text(), kDecl +
                                  "<Validity id=\"7\"><version>2</version>"
                                  "<critical><true/></critical><nothing/>"
                                  "<value>AB01</value></Validity>");
  EXPECT_TRUE(canonical.ctxt()->flags & ASN1CANXER);
}

TEST(XerEncLayout, NestedElementsAndEmptyNames) {
  XerOut out;
  ASN1CTXT* c = out.ctxt();
  ASSERT_EQ(xerEncStartElement(c, "Outer", nullptr), 0);
  c->xmlLevel++;
  ASSERT_EQ(xerEncStartElement(c, "Inner", nullptr), 0);
  c->xmlLevel++;
  // An empty name writes no tag: this is how a CHOICE loses its wrapper element.
  ASSERT_EQ(xerEncStartElement(c, "", nullptr), 0);
  ASSERT_EQ(xerEncStartElement(c, nullptr, nullptr), 0);
  EXPECT_EQ(c->xmlState, XERSTARTTAG);
  ASSERT_EQ(xerEncUInt(c, 4000000000u, "n"), 0);
  ASSERT_EQ(xerEncEndElement(c, ""), 0);
  EXPECT_EQ(c->xmlState, XERENDTAG);
  c->xmlLevel--;
  ASSERT_EQ(xerEncEndElement(c, "Inner"), 0);
  c->xmlLevel--;
  ASSERT_EQ(xerEncEndElement(c, "Outer"), 0);
  EXPECT_EQ(out.text(),
            "\n<Outer>\n   <Inner>\n      <n>4000000000</n>\n   </Inner>\n</Outer>");

  // An element with no content at all keeps its end tag on its own line only after element
  // content; straight after the start tag it follows on the same line.
  EXPECT_EQ(out.written([](ASN1CTXT* c) {
              int s = xerEncStartElement(c, "Empty", nullptr);
              return s ? s : xerEncEndElement(c, "Empty");
            }),
            "\n<Empty></Empty>");
}

TEST(XerEncLayout, PrimitivesWriteExactlyTheirPiece) {
  XerOut out;
  EXPECT_EQ(out.written([](ASN1CTXT* c) { return xerEncEmptyElement(c, "e", "a=\"1\""); }),
            "<e a=\"1\"/>");
  EXPECT_EQ(out.ctxt()->xmlState, XERSTARTTAG);
  EXPECT_EQ(out.written([](ASN1CTXT* c) { return xerEncEmptyElement(c, "", nullptr); }), "");
  EXPECT_EQ(out.written(xerEncNewLine), "\n");
  EXPECT_EQ(out.written([](ASN1CTXT* c) { return xerCopyText2(c, "a<", "&b"); }), "a<&b");
  EXPECT_EQ(out.written([](ASN1CTXT* c) { return xerCopyText(c, nullptr); }), "");
  EXPECT_EQ(out.written([](ASN1CTXT* c) { return xerEncXmlCharData(c, "<x/>yz", 4); }), "<x/>");
  EXPECT_EQ(out.written([](ASN1CTXT* c) { return xerEncXmlCharData(c, "abc", 0); }), "");
  EXPECT_EQ(out.written([](ASN1CTXT* c) { return xerEncXmlCharData(c, nullptr, 3); }), "");

  // Indentation is three blanks a level, however deep, and nothing at all when canonical.
  EXPECT_EQ(out.written([](ASN1CTXT* c) {
              c->xmlLevel = 40;
              return xerEncIndent(c);
            }),
            "\n" + std::string(120, ' '));
  XerOut canonical(true);
  EXPECT_EQ(canonical.written([](ASN1CTXT* c) {
              c->xmlLevel = 3;
              return xerEncIndent(c);
            }),
            "");
}

TEST(XerEncLayout, EndOfDocumentNeedsEverythingClosed) {
  XerOut out;
  ASN1CTXT* c = out.ctxt();
  // Only the declaration: nothing was closed.
  ASSERT_EQ(xerEncStartDocument(c), 0);
  EXPECT_EQ(xerEncEndDocument(c), ASN_E_XMLSTATE);
  EXPECT_EQ(out.context().errorModule(), "rtxersrc/xerEncDocument");
  out.context().resetError();

  // An element still open one level down.
  ASSERT_EQ(xerEncStartElement(c, "a", nullptr), 0);
  c->xmlLevel++;
  ASSERT_EQ(xerEncInt(c, 1, "b"), 0);
  EXPECT_EQ(xerEncEndDocument(c), ASN_E_XMLSTATE);
  c->xmlLevel--;
  ASSERT_EQ(xerEncEndElement(c, "a"), 0);
  const std::string before = out.text();
  ASSERT_EQ(xerEncEndDocument(c), 0);
  EXPECT_EQ(out.text(), before);

  // A new document starts from level 0 whatever the last one left.
  c->xmlLevel = 5;
  ASSERT_EQ(xerEncStartDocument(c), 0);
  EXPECT_EQ(c->xmlLevel, 0);
  EXPECT_EQ(c->xmlState, XERSTART);
}

TEST(XerEncLayout, StaticBufferOverflowKeepsWhatFitAndTracesTheChain) {
  char buf[20];
  memset(buf, 'x', sizeof buf);
  XerOut out(reinterpret_cast<ASN1OCTET*>(buf), (int)sizeof buf);
  EXPECT_EQ(buf[0], 0);  // the attached buffer starts as an empty C string
  ASN1CTXT* c = out.ctxt();
  ASSERT_EQ(xerEncInt(c, 1, "a"), 0);
  ASSERT_EQ(xerEncInt(c, 2, "b"), 0);
  EXPECT_EQ(xerEncInt(c, 3, "c"), ASN_E_BUFOVFLW);
  EXPECT_EQ(out.text(), "\n<a>1</a>\n<b>2</b>");
  const ASN1ErrInfo& e = c->errInfo;
  ASSERT_EQ(e.stkx, 2);
  EXPECT_STREQ(e.stack[0].module, "rtsrc/rtWriteBytes");
  EXPECT_STREQ(e.stack[1].module, "rtxersrc/xerEncInt");
  out.context().resetError();

  // The terminator needs a byte of its own too.
  char exact[9];
  XerOut tight(reinterpret_cast<ASN1OCTET*>(exact), (int)sizeof exact);
  ASSERT_EQ(xerEncNull(tight.ctxt(), "n"), 0);  // "\n<n/>" and 4 bytes to spare
  ASSERT_EQ(xerCopyText(tight.ctxt(), "abcd"), 0);
  EXPECT_EQ(xerEncEndDocument(tight.ctxt()), ASN_E_BUFOVFLW);
}

TEST(XerEncLayout, DynamicBufferGrowsFromAnySize) {
  // Growth from a tiny buffer and from none at all (a context never given one) must keep
  // every byte written before.
  XerOut tiny(false, 4);
  TestContext bare;
  std::string expected;
  for (int i = 0; i < 5000; ++i) {
    ASSERT_EQ(xerEncInt(tiny.ctxt(), i, "i"), 0);
    ASSERT_EQ(xerEncInt(bare.get(), i, "i"), 0);
    expected += "\n<i>" + std::to_string(i) + "</i>";
  }
  EXPECT_EQ(tiny.text(), expected);
  EXPECT_EQ(std::string((const char*)xerGetMsgPtr(bare.get()), (size_t)xerGetMsgLen(bare.get())),
            expected);
  EXPECT_GE(tiny.ctxt()->buffer.size, expected.size());

  // A text longer than the stage goes through in one piece.
  std::string longName(3000, 'n');
  XerOut out(false, 16);
  ASSERT_EQ(xerEncNull(out.ctxt(), longName.c_str()), 0);
  EXPECT_EQ(out.text(), "\n<" + longName + "/>");
}

TEST(XerEncLayout, MemoryFailureWhileGrowingIsReported) {
  XerOut out(false, 64);
  ASSERT_EQ(xerEncInt(out.ctxt(), 42, "kept"), 0);
  std::vector<ASN1OCTET> big(1 << 20, 0x5A);
  {
    HookScope hooks;
    hooks.log().failAfter = 0;
    EXPECT_EQ(xerEncOctStr(out.ctxt(), (ASN1UINT)big.size(), big.data(), "big"), ASN_E_NOMEM);
  }
  EXPECT_EQ(out.context().errorStatus(), ASN_E_NOMEM);
  EXPECT_EQ(out.context().errorModule(), "rtsrc/rtWriteBytes");
  // What the writer had already passed on stays; nothing is rolled back.
  EXPECT_EQ(out.text().substr(0, 16), "\n<kept>42</kept>");
}

TEST(XerEncLayout, ReattachingStartsAFreshDocument) {
  TestContext ctx;
  ASN1CTXT* c = ctx.get();
  ASSERT_EQ(xerSetEncBufPtr(c, nullptr, 0, 0), 0);
  EXPECT_EQ(c->buffer.size, 16384u);
  EXPECT_TRUE(c->buffer.dynamic);
  ASSERT_EQ(xerEncStartElement(c, "open", nullptr), 0);
  c->xmlLevel = 2;

  ASN1OCTET buf[64];
  ASSERT_EQ(xerSetEncBufPtr(c, buf, sizeof buf, 1), 0);
  EXPECT_EQ(c->xmlLevel, 0);
  EXPECT_EQ(c->xmlState, XERSTART);
  EXPECT_EQ(xerGetMsgLen(c), 0);
  EXPECT_FALSE(c->buffer.dynamic);
  // Canonical is switched on by the argument but never off: a caller's flag survives.
  ASSERT_EQ(xerSetEncBufPtr(c, nullptr, 128, 0), 0);
  EXPECT_TRUE(c->flags & ASN1CANXER);
  EXPECT_EQ(c->buffer.size, 128u);

  EXPECT_EQ(xerSetEncBufPtr(c, nullptr, -1, 0), ASN_E_INVPARAM);
  ASN1CTXT raw;
  memset(&raw, 0, sizeof raw);
  EXPECT_EQ(xerSetEncBufPtr(&raw, buf, sizeof buf, 0), ASN_E_NOTINIT);
}

TEST(XerEncLayout, StreamReceivesTheSameDocument) {
  XerOut buffer;
  ASSERT_EQ(writeValidity(buffer.ctxt()), 0);

  // Unbuffered and buffered streams: every piece reaches the device, and the end of the
  // document flushes what is staged.
  for (int buffered = 0; buffered < 2; ++buffered) {
    TestContext ctx;
    ASN1CTXT* c = ctx.get();
    ASSERT_EQ(buffered ? rtStreamBufInit(c) : rtStreamInit(c), 0);
    ASSERT_EQ(rtStreamMemoryCreate(c, OSRTSTRMF_OUTPUT), 0);
    ASSERT_EQ(writeValidity(c), 0) << "buffered " << buffered;
    size_t n = 0;
    const ASN1OCTET* p = rtStreamMemoryGetBuffer(c, &n);
    ASSERT_NE(p, nullptr);
    EXPECT_EQ(std::string((const char*)p, n), buffer.text()) << "buffered " << buffered;
  }

  // A stream that cannot take the bytes fails the writer with its status.
  TestContext ctx;
  ASN1OCTET small[8];
  ASSERT_EQ(rtStreamInit(ctx.get()), 0);
  ASSERT_EQ(rtStreamMemoryAttach(ctx.get(), small, sizeof small, OSRTSTRMF_OUTPUT), 0);
  EXPECT_EQ(xerEncInt(ctx.get(), 123456, "number"), ASN_E_BUFOVFLW);
}

}  // namespace
