// The XER encode buffer and output streams: construction variants, reuse, writing to files,
// control classes encoding through them, and failures turned into exceptions.
#include <gtest/gtest.h>

#include <quillon/asn1XerCppTypes.h>

#include <stdio.h>
#include <string.h>
#include <unistd.h>

#include <string>
#include <vector>

namespace {

const std::string kDecl = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>";

// A control class that encodes the way a generated one does for an XER target: a whole
// document unless the context asks for a fragment.
class Greeting : public ASN1CType {
 public:
  explicit Greeting(const char* text, const char* name = "Greeting") : text_(text), name_(name) {}

  int EncodeTo(ASN1MessageBufferIF& msgBuf) override {
    setMsgBuf(msgBuf);
    if (!msgBuf.isA(ASN1MessageBufferIF::XEREncode)) return ASN_E_NOTSUPP;
    ASN1CTXT* c = msgBuf.getCtxtPtr();
    const bool fragment = (c->flags & ASN1XMLFRAG) != 0;
    int stat = fragment ? 0 : xerEncStartDocument(c);
    if (stat == 0) stat = xerEncAscCharStr(c, text_, name_);
    if (stat == 0 && !fragment) stat = xerEncEndDocument(c);
    return stat;
  }

 private:
  const char* text_;
  const char* name_;
};

std::string messageOf(ASN1XEREncodeBuffer& buf) {
  return std::string((const char*)buf.getMsgPtr(), (size_t)buf.getMsgLen());
}

// The status of the E that f throws; 0 when it throws nothing.
template <typename E, typename F>
int thrown(F f) {
  try {
    f();
  } catch (const E& e) {
    return e.getStatus();
  }
  return 0;
}

std::string tempPath(const char* tag) {
  return "/tmp/qn_xerenc_" + std::to_string(getpid()) + "_" + tag + ".xml";
}

std::string fileText(const std::string& path) {
  std::string text;
  FILE* fp = fopen(path.c_str(), "rb");
  if (!fp) return "<no file>";
  char chunk[4096];
  size_t n;
  while ((n = fread(chunk, 1, sizeof chunk, fp)) > 0) text.append(chunk, n);
  fclose(fp);
  return text;
}

TEST(XerEncodeBuffer, DynamicBufferHoldsOneDocumentAtATime) {
  ASN1XEREncodeBuffer buf;
  EXPECT_TRUE(buf.isA(ASN1MessageBufferIF::XEREncode));
  EXPECT_FALSE(buf.isA(ASN1MessageBufferIF::BEREncode));
  EXPECT_FALSE(buf.isA(ASN1MessageBufferIF::XERDecode));
  EXPECT_EQ(buf.getMsgCopy(), nullptr);  // nothing written yet

  Greeting hello("a < b");
  ASSERT_EQ(hello.EncodeTo(buf), 0);
  EXPECT_EQ(messageOf(buf), kDecl + "\n<Greeting>a &lt; b</Greeting>");
  ASN1OCTET* copy = buf.getMsgCopy();
  ASSERT_NE(copy, nullptr);
  EXPECT_STREQ((const char*)copy, (kDecl + "\n<Greeting>a &lt; b</Greeting>").c_str());
  delete[] copy;

  // After init() the next document replaces the last one from the start of the buffer.
  buf.init();
  Greeting bye("bye");
  buf << bye;
  EXPECT_EQ(messageOf(buf), kDecl + "\n<Greeting>bye</Greeting>");
}

TEST(XerEncodeBuffer, CanonicalFragmentAndStaticVariants) {
  ASN1XEREncodeBuffer canonical(1);
  Greeting hello("hi");
  canonical << hello;
  EXPECT_EQ(messageOf(canonical), kDecl + "<Greeting>hi</Greeting>");

  // A fragment for embedding: no declaration, and the caller's memory holds it.
  ASN1OCTET mem[64];
  ASN1XEREncodeBuffer fragment(mem, sizeof mem, 0, 1);
  EXPECT_TRUE(fragment.getCtxtPtr()->flags & ASN1XMLFRAG);
  fragment << hello;
  EXPECT_EQ(messageOf(fragment), "\n<Greeting>hi</Greeting>");
  EXPECT_EQ(fragment.getMsgPtr(), mem);

  ASN1XEREncodeBuffer oneLineFragment(mem, sizeof mem, 1, 1);
  oneLineFragment << hello;
  EXPECT_EQ(messageOf(oneLineFragment), "<Greeting>hi</Greeting>");

  // A static buffer too small for the document: the encode fails with -1.
  ASN1OCTET small[16];
  ASN1XEREncodeBuffer tight(small, sizeof small);
  EXPECT_FALSE(tight.getCtxtPtr()->flags & (ASN1XMLFRAG | ASN1CANXER));
  EXPECT_EQ(thrown<ASN1RTLException>([&] { tight << hello; }), ASN_E_BUFOVFLW);

  // Buffers that cannot be set up.
  EXPECT_EQ(thrown<ASN1MessageBuffer::RTLError>([&] { ASN1XEREncodeBuffer bad(mem, -1); }),
            ASN_E_INVPARAM);
  EXPECT_EQ(thrown<ASN1MessageBuffer::RTLError>([] { ASN1XEREncodeBuffer bad(0, nullptr, -5); }),
            ASN_E_INVPARAM);
}

TEST(XerEncodeBuffer, SharesAnotherContextsMessageHeap) {
  ASN1XEREncodeBuffer owner;
  ASN1CTXT* other = owner.getCtxtPtr();
  {
    ASN1XEREncodeBuffer buf(0, other, 100);
    ASN1CTXT* c = buf.getCtxtPtr();
    EXPECT_EQ(c->msgMemHeap, other->msgMemHeap);
    EXPECT_NE(c->memHeap, other->memHeap);
    EXPECT_EQ(c->buffer.size, 100u);
    // The buffer grows on the shared heap beyond its first size.
    Greeting longer("0123456789012345678901234567890123456789012345678901234567890123456789"
                    "0123456789012345678901234567890123456789");
    buf << longer;
    EXPECT_GT(buf.getMsgLen(), 100);
  }
  // The buffer's context went away; the heap it shared is still the owner's and usable.
  Greeting hello("still");
  owner << hello;
  EXPECT_EQ(messageOf(owner), kDecl + "\n<Greeting>still</Greeting>");

  ASN1XEREncodeBuffer ownHeap(1, nullptr, 0);
  EXPECT_EQ(ownHeap.getCtxtPtr()->msgMemHeap, ownHeap.getCtxtPtr()->memHeap);
}

TEST(XerEncodeBuffer, WritesTheMessageToFiles) {
  ASN1XEREncodeBuffer buf;
  Greeting hello("file");
  buf << hello;
  const std::string expected = kDecl + "\n<Greeting>file</Greeting>";

  const std::string path = tempPath("buffer");
  EXPECT_EQ(buf.write(path.c_str()), (int)expected.size());
  EXPECT_EQ(fileText(path), expected);  // no terminator in the file

  FILE* fp = fopen(path.c_str(), "ab");
  ASSERT_NE(fp, nullptr);
  EXPECT_EQ(buf.write(fp), (int)expected.size());
  fclose(fp);
  EXPECT_EQ(fileText(path), expected + expected);
  unlink(path.c_str());

  EXPECT_EQ(buf.write("/nonexistent-dir/x.xml"), -1);
}

// An XER stream over memory of its own, for reading back what was written.
class MemoryXerStream : public ASN1XEROutputStream {
 public:
  MemoryXerStream() { check(rtStreamMemoryCreate(getCtxtPtr(), OSRTSTRMF_OUTPUT)); }
  std::string text() {
    size_t n = 0;
    const ASN1OCTET* p = rtStreamMemoryGetBuffer(getCtxtPtr(), &n);
    return p ? std::string((const char*)p, n) : std::string();
  }
};

TEST(XerOutputStream, MembersWriteEachKind) {
  MemoryXerStream out;
  EXPECT_TRUE(out.isA(ASN1MessageBufferIF::XEREncode));
  EXPECT_FALSE(out.isA(ASN1MessageBufferIF::BEREncode));
  ASN1CTXT* c = out.getCtxtPtr();
  static const ASN1OCTET octets[] = {0xCA, 0xFE};
  const ASN1OBJID oid = {3, {1, 3, 6}};
  const ASN1OID64 oid64 = {2, {2, 5}};
  ASN1USINT bmp[] = {'b'};
  ASN1UINT ucs[] = {'u'};

  ASSERT_EQ(xerEncStartDocument(c), 0);
  EXPECT_EQ(out.encodeStartElement("All", "v=\"1\""), 0);
  c->xmlLevel++;
  out.encodeInt(-1, "i");
  out.encodeInt64(-5000000000LL);
  out.encodeUInt(7, "u");
  out.encodeUInt64(8, "u64");
  out.encodeBigInt("0x100", "big");
  out.encodeBool(1, "b");
  out.encodeReal(0.5, "r");
  out.encodeBitStr(octets, 4, "bits");
  out.encodeBitStr(ASN1DynBitStr{8, octets}, "hexbits", ASN1HEX);
  out.encodeOctStr(octets, 2, "o");
  out.encodeOctStr(ASN1DynOctStr{1, octets});
  out.encodeCharStr("x&y", "s");
  out.encodeObjId(oid, "oid");
  out.encodeObjId64(oid64, "oid64");
  out.encodeRelativeOID(oid, "rel");
  out.encodeNull();
  out.encodeBMPStr(Asn116BitCharString{1, bmp});
  out.encodeUnivStr(Asn132BitCharString{1, ucs}, "univ");
  out.encodeEmptyElement("e");
  c->xmlLevel--;
  out.encodeEndElement("All");
  ASSERT_EQ(xerEncEndDocument(c), 0);
  EXPECT_EQ(out.text(), kDecl +
                            "\n<All v=\"1\">"
                            "\n   <i>-1</i>"
                            "\n   <INTEGER>-5000000000</INTEGER>"
                            "\n   <u>7</u>"
                            "\n   <u64>8</u64>"
                            "\n   <big>256</big>"
                            "\n   <b><true/></b>"
                            "\n   <r>5.0E-1</r>"
                            "\n   <bits>1100</bits>"
                            "\n   <hexbits form=\"hex\">CA</hexbits>"
                            "\n   <o>CAFE</o>"
                            "\n   <OCTET_STRING>CA</OCTET_STRING>"
                            "\n   <s>x&amp;y</s>"
                            "\n   <oid>1.3.6</oid>"
                            "\n   <oid64>2.5</oid64>"
                            "\n   <rel>1.3.6</rel>"
                            "\n   <NULL/>"
                            "\n   <BMPString>b</BMPString>"
                            // An empty element is content: no indentation before or after.
                            "\n   <univ>u</univ><e/></All>");
}

TEST(XerOutputStream, FailuresThrowWithTheirStatus) {
  MemoryXerStream out;
  const ASN1OBJID bad = {1, {0}};
  auto statusOf = [](auto write) { return thrown<OSCStreamException>(write); };
  EXPECT_EQ(statusOf([&] { out.encodeObjId(bad, "oid"); }), ASN_E_INVOBJID);
  EXPECT_EQ(statusOf([&] { out.encodeCharStr("text", nullptr); }), ASN_E_INVPARAM);
  EXPECT_EQ(statusOf([&] { out.encodeBigInt("1.5"); }), ASN_E_BADVALUE);
  EXPECT_EQ(statusOf([&] { out.encodeBitStr(nullptr, 3, "b", (ASN1StrType)9); }),
            ASN_E_INVPARAM);
  EXPECT_EQ(statusOf([&] { out.encodeInt(1); }), 0);

  // A device that runs out of room: a piece larger than the stage goes to it directly.
  ASN1XEROutputStream fixed;
  ASN1OCTET mem[32];
  ASSERT_EQ(rtStreamMemoryAttach(fixed.getCtxtPtr(), mem, sizeof mem, OSRTSTRMF_OUTPUT), 0);
  std::vector<ASN1OCTET> big(2000, 0x11);
  EXPECT_EQ(statusOf([&] { fixed.encodeOctStr(big.data(), (ASN1UINT)big.size()); }),
            ASN_E_BUFOVFLW);

  // A stream with no device at all.
  ASN1XEROutputStream detached;
  EXPECT_LT(statusOf([&] { detached.encodeOctStr(big.data(), (ASN1UINT)big.size()); }), 0);
}

TEST(XerOutputStream, ControlClassesEncodeThroughTheStream) {
  MemoryXerStream out;
  Greeting hello("streamed");
  out << hello;
  EXPECT_EQ(out.text(), kDecl + "\n<Greeting>streamed</Greeting>");

  // A failing control class: its status travels in the exception.
  Greeting nameless("x", nullptr);
  EXPECT_EQ(thrown<OSCStreamException>([&] { out.encodeObj(nameless); }), ASN_E_INVPARAM);
}

TEST(XerFileOutputStream, WritesFilesByNameAndByHandle) {
  const std::string path = tempPath("stream");
  std::string expected;
  {
    ASN1XERFileOutputStream out(path.c_str());
    Greeting hello("to a file");
    ASN1OCTET big[3000];
    memset(big, 0xEE, sizeof big);
    out << hello;
    out.encodeOctStr(big, sizeof big, "tail");
    out.close();
    expected = kDecl + "\n<Greeting>to a file</Greeting>\n<tail>" +
               std::string(2 * sizeof big, 'E') + "</tail>";
  }
  EXPECT_EQ(fileText(path), expected);

  FILE* fp = fopen(path.c_str(), "wb");
  ASSERT_NE(fp, nullptr);
  {
    ASN1XERFileOutputStream out(fp);
    Greeting hello("by handle");
    out << hello;
  }
  // Releasing the stream wrote what was staged and left the caller's file open.
  EXPECT_EQ(fputs("!", fp), 1);
  fclose(fp);
  EXPECT_EQ(fileText(path), kDecl + "\n<Greeting>by handle</Greeting>!");
  unlink(path.c_str());

  EXPECT_EQ(thrown<OSCStreamException>([] { ASN1XERFileOutputStream bad("/nonexistent-dir/x"); }),
            ASN_E_FILNOTFOU);
}

}  // namespace
