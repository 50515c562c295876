// The decode framework around the reader: the decode buffer and its input kinds, the handler
// base and its error information, finalizeMemBuf, the exception class and the text utilities.
#include <gtest/gtest.h>
#include <quillon/asn1XerSax.h>

#include <string>

#include "xer_decode_harness.h"

namespace {

TEST(XerDecodeBuffer, KindsContextsAndFragmentFlag) {
  static const char kFile[] = "doc.xml";
  ASN1XERDecodeBuffer fromFile(kFile);
  EXPECT_EQ(ASN1XERDecodeBuffer::kFile, fromFile.getInputKind());
  EXPECT_TRUE(fromFile.isA(ASN1MessageBufferIF::XERDecode));
  EXPECT_FALSE(fromFile.isA(ASN1MessageBufferIF::XEREncode));
  EXPECT_FALSE(fromFile.isA(ASN1MessageBufferIF::BERDecode));
  EXPECT_EQ(0, fromFile.getCtxtPtr()->flags & ASN1XMLFRAG);

  // An open type decodes in the context of the message that carried it.
  ASN1CtxtPtr outer(new ASN1Context());
  const ASN1OCTET text[] = "<a/>";
  {
    ASN1XERDecodeBuffer openType(text, 4, 1, outer);
    EXPECT_EQ(ASN1XERDecodeBuffer::kMemory, openType.getInputKind());
    EXPECT_EQ(outer->getPtr(), openType.getCtxtPtr());
    EXPECT_EQ(2, outer->getRefCount());
    EXPECT_NE(0, outer->getPtr()->flags & ASN1XMLFRAG);
  }
  EXPECT_EQ(1, outer->getRefCount());

  OSCMemoryInputStream in(const_cast<ASN1OCTET*>(text), 4);
  ASN1XERDecodeBuffer fromStream(in, 1);
  EXPECT_EQ(ASN1XERDecodeBuffer::kStream, fromStream.getInputKind());
  EXPECT_NE(0, fromStream.getCtxtPtr()->flags & ASN1XMLFRAG);
  EXPECT_NE(outer->getPtr(), fromStream.getCtxtPtr());
}

// Decodes <n>digits</n> as a generated handler of an INTEGER element would: collects the text,
// finalizes it at the end tag, records and throws a decoder failure.
class IntHandler : public ASN1XERSAXDecodeHandler {
 public:
  explicit IntHandler(ASN1XERDecodeBuffer& buf) : buf_(buf) { rtMemBufInit(buf.getCtxtPtr(), &text_, 0); }
  ~IntHandler() override { rtMemBufFree(&text_); }
  void startElement(const char*, const char*, const char*, const char* const*) override {
    mLevel++;
    mCurrState = 1;
  }
  void characters(const char* chars, unsigned int n) override {
    rtMemBufAppend(&text_, reinterpret_cast<const ASN1OCTET*>(chars), n);
  }
  void endElement(const char*, const char*, const char*) override {
    mLevel--;
    finalizeMemBuf(&buf_, text_);
    const int stat = xerDecInt(buf_.getCtxtPtr(), &value);
    if (stat != 0 && throwOnError) throwSAXException(stat, "IntHandler", 7);
  }
  void setErrorInfo(int status, const char* file, int line) override {
    ASN1XERSAXDecodeHandler::setErrorInfo(status, file, line);
    infoCalls++;
  }
  ASN1INT value = 0;
  bool throwOnError = true;
  int infoCalls = 0;

 private:
  ASN1XERDecodeBuffer& buf_;
  ASN1MemBuf text_;
};

TEST(XerDecodeBuffer, DecodeXmlRunsHandlersOnEveryInputKind) {
  std::string doc = "<n>-1234</n>";
  ASN1OCTET* bytes = reinterpret_cast<ASN1OCTET*>(&doc[0]);
  ASN1XERDecodeBuffer memory(bytes, (ASN1UINT)doc.size());
  IntHandler h1(memory);
  EXPECT_EQ(0, decodeWith(memory, h1));
  EXPECT_EQ(-1234, h1.value);

  OSCMemoryInputStream in(bytes, (ASN1UINT)doc.size());
  ASN1XERDecodeBuffer stream(in);
  IntHandler h2(stream);
  EXPECT_EQ(0, decodeWith(stream, h2));
  EXPECT_EQ(-1234, h2.value);

  // A failure the handler records but does not throw comes back as decodeXML's status.
  std::string bad = "<n>12x</n>";
  ASN1XERDecodeBuffer quiet(reinterpret_cast<const ASN1OCTET*>(bad.data()), (ASN1UINT)bad.size());
  IntHandler h3(quiet);
  h3.throwOnError = false;
  EXPECT_EQ(ASN_E_INVCHAR, decodeWith(quiet, h3));
  EXPECT_EQ(ASN_E_INVCHAR, decodeWith(quiet, h3)) << "status stays until the caller resets it";
}

TEST(XerDecodeBuffer, HandlerFailureReachesTheCallerAsException) {
  std::string bad = "<n>99999999999</n>";
  ASN1XERDecodeBuffer buf(reinterpret_cast<const ASN1OCTET*>(bad.data()), (ASN1UINT)bad.size());
  IntHandler h(buf);
  try {
    decodeWith(buf, h);
    FAIL() << "no exception";
  } catch (const OSRTSAXExceptionImpl& e) {
    EXPECT_EQ(ASN_E_TOOBIG, e.getStatus());
    EXPECT_STREQ("IntHandler", e.getSrcFileName());
    EXPECT_EQ(7, e.getSrcLineNum());
    EXPECT_EQ(nullptr, e.getMessage());
  }
  EXPECT_EQ(ASN_E_TOOBIG, buf.getStatus());
  EXPECT_EQ(1, h.infoCalls) << "throwSAXException goes through the virtual setErrorInfo";
  int status = 0, line = 0;
  const char* file = nullptr;
  EXPECT_EQ(1, h.getErrorInfo(&status, &file, &line));
  EXPECT_EQ(ASN_E_TOOBIG, status);
  EXPECT_STREQ("IntHandler", file);

  // The next reader resets the handler's error information.
  ReaderPtr reader(saxCreateXmlReader(buf.getContext(), &h, &h));
  status = 5;
  EXPECT_EQ(0, h.getErrorInfo(&status, &file, &line));
  EXPECT_EQ(5, status) << "outputs untouched without an error";

  // The buffer's own throw carries what it is given.
  try {
    buf.throwSAXException(ASN_E_XMLSTATE, "here", 9);
  } catch (const OSRTSAXExceptionImpl& e) {
    EXPECT_EQ(ASN_E_XMLSTATE, e.getStatus());
    EXPECT_STREQ("here", e.getSrcFileName());
  }
}

TEST(XerDecodeBuffer, MalformedDocumentPassesThroughAsParserException) {
  std::string doc = "<n>1</m>";
  ASN1XERDecodeBuffer buf(reinterpret_cast<const ASN1OCTET*>(doc.data()), (ASN1UINT)doc.size());
  IntHandler h(buf);
  try {
    decodeWith(buf, h);
    FAIL() << "no exception";
  } catch (const OSRTSAXExceptionImpl& e) {
    EXPECT_EQ(0, e.getStatus());
    EXPECT_NE(nullptr, strstr(e.getMessage(), ", line = 1, column = "));
  }
  EXPECT_EQ(0, buf.getStatus()) << "a parser error is not recorded as a status";
}

TEST(XerDecodeBuffer, InitBufferMakesTextTheDecodeInput) {
  ASN1XERDecodeBuffer buf(reinterpret_cast<const ASN1OCTET*>(""), 0);
  char text[] = "  77";
  ASN1INT v = 0;
  EXPECT_EQ(0, buf.initBuffer(text));
  EXPECT_EQ(0, xerDecInt(buf.getCtxtPtr(), &v));
  EXPECT_EQ(77, v);
  EXPECT_EQ(ASN_E_NOTSUPP, buf.initBuffer(static_cast<unsigned short*>(nullptr)));

  // An empty collection is an empty input, not a fresh dynamic buffer.
  ASN1MemBuf empty;
  rtMemBufInit(buf.getCtxtPtr(), &empty, 0);
  EXPECT_EQ(0, buf.initBuffer(empty));
  EXPECT_EQ(0u, buf.getCtxtPtr()->buffer.size);
  EXPECT_EQ(0, buf.getCtxtPtr()->buffer.dynamic);
  EXPECT_EQ(0, xerDecInt(buf.getCtxtPtr(), &v));
  EXPECT_EQ(0, v);
}

TEST(XerSaxHandler, FinalizeMemBufTerminatesWithoutMovingTheText) {
  ASN1XERDecodeBuffer buf(reinterpret_cast<const ASN1OCTET*>(""), 0);
  ASN1CTXT* c = buf.getCtxtPtr();
  ASN1MemBuf mb;
  // Full to the last byte: the NUL needs more room, which must not leave the input behind.
  rtMemBufInit(c, &mb, 4);
  rtMemBufAppend(&mb, reinterpret_cast<const ASN1OCTET*>("4321"), 4);
  ASSERT_EQ(mb.bufsize, mb.usedcnt);
  ASN1XERSAXDecodeHandler::finalizeMemBuf(&buf, mb);
  EXPECT_EQ(rtMemBufGetData(&mb, nullptr), c->buffer.data);
  EXPECT_EQ(4u, c->buffer.size);
  EXPECT_EQ(0u, c->buffer.byteIndex);
  EXPECT_EQ('\0', reinterpret_cast<const char*>(c->buffer.data)[4]);
  ASN1INT v = 0;
  EXPECT_EQ(0, xerDecInt(c, &v));
  EXPECT_EQ(4321, v);
  rtMemBufFree(&mb);

  // A buffer that cannot take a memory buffer turns its refusal into RTLError.
  ASN1MemBuf other;
  rtMemBufInit(c, &other, 0);
  class NoMemBuf : public ASN1XERDecodeBuffer {
   public:
    NoMemBuf() : ASN1XERDecodeBuffer(reinterpret_cast<const ASN1OCTET*>(""), 0) {}
    using ASN1XERDecodeBuffer::initBuffer;
    int initBuffer(ASN1MemBuf&) override { return ASN_E_NOTSUPP; }
  } refusing;
  try {
    ASN1XERSAXDecodeHandler::finalizeMemBuf(&refusing, other);
    FAIL() << "no exception";
  } catch (const ASN1MessageBuffer::RTLError& e) {
    EXPECT_EQ(ASN_E_NOTSUPP, e.getStatus());
  }
  rtMemBufFree(&other);
}

TEST(XerSaxException, CopiesOwnTheirTexts) {
  char message[] = "parser said no";
  char file[] = "src.cpp";
  OSRTSAXExceptionImpl original(message, -36, file, 12);
  message[0] = file[0] = 'X';
  EXPECT_STREQ("parser said no", original.getMessage());
  EXPECT_STREQ("src.cpp", original.getSrcFileName());

  OSRTSAXExceptionImpl copy(original);
  EXPECT_NE(original.getMessage(), copy.getMessage());
  EXPECT_STREQ(original.getMessage(), copy.getMessage());
  EXPECT_EQ(12, copy.getSrcLineNum());

  OSRTSAXExceptionImpl assigned;
  EXPECT_EQ(nullptr, assigned.getMessage());
  assigned = original;
  const OSRTSAXExceptionImpl& self = assigned;
  assigned = self;
  EXPECT_STREQ("src.cpp", assigned.getSrcFileName());
  EXPECT_EQ(-36, assigned.getStatus());

  OSRTSAXException* made = OSRTSAXExceptionImpl::createSAXException("m", -1, nullptr, 0);
  EXPECT_STREQ("m", static_cast<OSRTSAXExceptionImpl*>(made)->getMessage());
  EXPECT_EQ(nullptr, static_cast<OSRTSAXExceptionImpl*>(made)->getSrcFileName());
  delete made;
}

TEST(OSXMLStringTest, CompareAndCatFollowTheirEdgeRules) {
  EXPECT_EQ(-3, OSXMLString::compareString(nullptr, "abc"));
  EXPECT_EQ(3, OSXMLString::compareString("abc", nullptr));
  EXPECT_EQ(0, OSXMLString::compareString(nullptr, ""));
  EXPECT_EQ(0, OSXMLString::compareString("abc", "abc"));
  EXPECT_LT(OSXMLString::compareString("ab", "abc"), 0);
  // Bytes compare as signed characters: 0xE9 sorts before "a".
  EXPECT_LT(OSXMLString::compareString("\xE9", "a"), 0);

  char dest[8] = "abc";
  EXPECT_EQ(dest, OSXMLString::catString(dest, sizeof dest, "defghij"));
  EXPECT_STREQ("abcdefg", dest);
  EXPECT_EQ(nullptr, OSXMLString::catString(dest, sizeof dest, "x"));
  EXPECT_STREQ("abcdefg", dest);
  EXPECT_EQ(nullptr, OSXMLString::catString(dest, 0, "x"));

  EXPECT_STREQ("", OSXMLString::zeroLenString());
  EXPECT_EQ(0, OSXMLString::stringLen(static_cast<const char*>(nullptr)));
  const unsigned short wide[] = {'h', 0x4E2D, 'i', 0};
  EXPECT_EQ(3, OSXMLString::stringLen(wide));
  StrX narrow(wide);
  EXPECT_STREQ("h\x2Di", narrow.localForm()) << "low 8 bits of each character";
  EXPECT_EQ(nullptr, StrX(static_cast<const char*>(nullptr)).localForm());
}

TEST(OSXMLStringTest, Utf8CountsAndConversions) {
  // 1, 2, 3, 4 and 6-byte sequences (the writer makes 6-byte ones above 0x3FFFFFF).
  const std::string text = "a\xC3\xA9\xE4\xB8\xAD\xF0\x9F\x98\x80\xFD\xBF\xBF\xBF\xBF\xBF";
  EXPECT_EQ(5, OSXMLString::stringUTF8Len(text.c_str(), 0));
  EXPECT_EQ(2, OSXMLString::stringUTF8Len(text.c_str(), 3));
  EXPECT_EQ(-1, OSXMLString::stringUTF8Len(text.c_str(), 2)) << "sequence cut short";
  EXPECT_EQ(-1, OSXMLString::stringUTF8Len("a\x80", 0));
  EXPECT_EQ(-1, OSXMLString::stringUTF8Len("\xFF", 0));

  const char* utf8 = "a\xC3\xA9\xE4\xB8\xAD\xF0\x9F\x98\x80";
  unsigned short* wide = OSXMLString::transUTF8(utf8);
  ASSERT_NE(nullptr, wide);
  const unsigned short expected[] = {'a', 0xE9, 0x4E2D, 0xD83D, 0xDE00, 0};
  EXPECT_EQ(0, memcmp(expected, wide, sizeof expected));
  char* back = OSXMLString::transUTF8(wide);
  EXPECT_STREQ(utf8, back);
  delete[] back;

  char small[4];
  char* fitted = OSXMLString::safeTranscode(wide, small, sizeof small);
  EXPECT_NE(small, fitted) << "eleven bytes do not fit four";
  EXPECT_STREQ(utf8, fitted);
  delete[] fitted;
  char roomy[16];
  EXPECT_EQ(roomy, OSXMLString::safeTranscode(wide, roomy, sizeof roomy));
  EXPECT_STREQ(utf8, roomy);
  unsigned short units[8];
  EXPECT_EQ(units, OSXMLString::safeTranscode(utf8, units, 8));
  EXPECT_EQ(0, memcmp(expected, units, sizeof expected));
  delete[] wide;

  const unsigned short lone[] = {'x', 0xD800, 0};
  EXPECT_EQ(nullptr, OSXMLString::transUTF8(lone));
  EXPECT_EQ(nullptr, OSXMLString::transUTF8("\xFD\xBF\xBF\xBF\xBF\xBF")) << "beyond UTF-16";
}

}  // namespace
