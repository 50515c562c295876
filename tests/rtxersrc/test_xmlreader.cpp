// The XML reader over expat: events as handlers see them, the three input kinds, failures as
// exceptions, and the hostile documents it must survive (deep nesting, entity expansion, size).
#include <gtest/gtest.h>
#include <quillon/asn1XerSax.h>

#include <expat.h>
#include <stdio.h>
#include <unistd.h>

#include <chrono>
#include <string>
#include <vector>

#include "xer_decode_harness.h"

#if defined(__SANITIZE_ADDRESS__)
#define QN_TEST_ASAN 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define QN_TEST_ASAN 1
#endif
#endif
#ifdef QN_TEST_ASAN
// The sanitizer runtime's count of live heap bytes (its header is not installed everywhere).
extern "C" size_t __sanitizer_get_current_allocated_bytes(void);
#else
#include <malloc.h>
#endif

namespace {

// Bytes the process has taken from the heap right now.
size_t heapInUse() {
#ifdef QN_TEST_ASAN
  return __sanitizer_get_current_allocated_bytes();
#else
  struct mallinfo2 mi = mallinfo2();
  return mi.uordblks + mi.hblkhd;
#endif
}

// Every event as one line: "<name uri=.. attr=..>", "text", "</name>"; consecutive character
// data is merged, since expat may split it anywhere.
class RecordingHandler : public OSXMLContentHandler {
 public:
  void startElement(const char* uri, const char* localname, const char* qname,
                    const char* const* attrs) override {
    std::string line = "<" + std::string(qname);
    if (std::string(localname) != qname) line += " localname=" + std::string(localname);
    if (*uri) line += " uri=" + std::string(uri);
    for (const char* const* a = attrs; *a; a += 2) line += " " + std::string(a[0]) + "=" + a[1];
    events.push_back(line + ">");
    starts++;
  }
  void endElement(const char*, const char*, const char* qname) override {
    events.push_back("</" + std::string(qname) + ">");
  }
  void startDocument() override { events.push_back("{"); }
  void endDocument() override { events.push_back("}"); }
  void characters(const char* chars, unsigned int length) override {
    if (events.empty() || strchr("<{", events.back()[0])) events.emplace_back();
    events.back().append(chars, length);
    characterBytes += length;
  }

  std::vector<std::string> events;
  long starts = 0;
  long characterBytes = 0;
};

// An input stream that records the size of every read it is asked for.
class CountingStream : public OSCMemoryInputStream {
 public:
  explicit CountingStream(std::string& text)
      : OSCMemoryInputStream(reinterpret_cast<ASN1OCTET*>(&text[0]), (ASN1UINT)text.size()) {}
  long read(ASN1OCTET* buffer, ASN1UINT size) override {
    requests.push_back(size);
    const long n = OSCMemoryInputStream::read(buffer, size);
    results.push_back(n);
    return n;
  }
  std::vector<ASN1UINT> requests;
  std::vector<long> results;
};

// A document of `items` elements made up as it is read, never held whole; records the most
// heap in use seen between reads.
class GeneratedDocument : public OSCInputStream {
 public:
  explicit GeneratedDocument(long items) : items_(items) { pending_ = "<doc>"; }
  long read(ASN1OCTET* buffer, ASN1UINT size) override {
    peakHeap = std::max(peakHeap, heapInUse());
    while (pending_.size() < size && made_ <= items_) {
      pending_ += made_ < items_ ? "<item n=\"" + std::to_string(made_) + "\">payload " +
                                       std::string(40, 'x') + "</item>\n"
                                 : std::string("</doc>");
      made_++;
    }
    const size_t n = std::min<size_t>(size, pending_.size());
    memcpy(buffer, pending_.data(), n);
    pending_.erase(0, n);
    produced += (long)n;
    return (long)n;
  }
  size_t peakHeap = 0;
  long produced = 0;

 private:
  long items_;
  long made_ = 0;
  std::string pending_;
};

// The message of the exception a parse throws, or "no exception".
template <typename Parse>
std::string parseFailure(Parse parse) {
  try {
    parse();
  } catch (const OSRTSAXExceptionImpl& e) {
    EXPECT_EQ(0, e.getStatus());
    return e.getMessage() ? e.getMessage() : "(null)";
  }
  return "no exception";
}

std::string nested(int depth) {
  std::string doc;
  for (int i = 0; i < depth; ++i) doc += "<a>";
  for (int i = 0; i < depth; ++i) doc += "</a>";
  return doc;
}

TEST(XmlReader, ReportsElementsAttributesAndTextAsWritten) {
  RecordingHandler h;
  ReaderPtr reader(saxCreateXmlReader(nullptr, &h, nullptr));
  const std::string doc =
      "<?xml version=\"1.0\"?>\n<x:Cert xmlns:x=\"urn:q\" form=\"hex\">"
      "<v>1 &lt; 2 &amp; &#xE9;</v><![CDATA[<raw>]]><empty/></x:Cert>";
  EXPECT_EQ(0, reader->parse(doc.data(), (int)doc.size()));
  const std::vector<std::string> expected = {
      "{", "<x:Cert xmlns:x=urn:q form=hex>", "<v>", "1 < 2 & \xC3\xA9", "</v>", "<raw>",
      "<empty>", "</empty>", "</x:Cert>", "}"};
  EXPECT_EQ(expected, h.events);
}

TEST(XmlReader, DocumentEncodingIsDeliveredAsUtf8) {
  RecordingHandler h;
  ReaderPtr reader(saxCreateXmlReader(nullptr, &h, nullptr));
  const std::string doc = "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?><s>caf\xE9</s>";
  reader->parse(doc.data(), (int)doc.size());
  ASSERT_EQ(5u, h.events.size());
  EXPECT_EQ("caf\xC3\xA9", h.events[2]);
}

TEST(XmlReader, StreamIsReadInPiecesOf2048AndGivesTheSameEvents) {
  std::string doc = "<list>";
  for (int i = 0; i < 300; ++i) doc += "<e a=\"" + std::to_string(i) + "\">text " + std::to_string(i) + "</e>";
  doc += "<long>" + std::string(5000, 'y') + "</long></list>";

  RecordingHandler fromMemory, fromStream;
  ReaderPtr(saxCreateXmlReader(nullptr, &fromMemory, nullptr))->parse(doc.data(), (int)doc.size());
  CountingStream in(doc);
  ReaderPtr(saxCreateXmlReader(nullptr, &fromStream, nullptr))->parse(in);

  EXPECT_EQ(fromMemory.events, fromStream.events);
  EXPECT_EQ(302, fromStream.starts);
  ASSERT_GE(in.requests.size(), doc.size() / 2048 + 2);
  for (ASN1UINT r : in.requests) EXPECT_EQ(2048u, r);
  EXPECT_EQ(0, in.results.back());
  EXPECT_NE(0, in.results[in.results.size() - 2]);
}

TEST(XmlReader, ParsesFilesAndRefusesMissingOnes) {
  char path[] = "/tmp/qn_xmlreader_XXXXXX";
  const int fd = mkstemp(path);
  ASSERT_GE(fd, 0);
  const std::string doc = "<a><b>file</b></a>";
  ASSERT_EQ((ssize_t)doc.size(), write(fd, doc.data(), doc.size()));
  close(fd);

  RecordingHandler h;
  ReaderPtr reader(saxCreateXmlReader(nullptr, &h, nullptr));
  EXPECT_EQ(0, reader->parse(static_cast<const char*>(path)));
  EXPECT_EQ((std::vector<std::string>{"{", "<a>", "<b>", "file", "</b>", "</a>", "}"}), h.events);

  // The same reader takes another document, and an empty file is a parse error at 1:0.
  FILE* f = fopen(path, "w");
  fclose(f);
  const std::string expected = std::string(XML_ErrorString(XML_ERROR_NO_ELEMENTS)) + ", line = 1, column = 0";
  EXPECT_EQ(expected, parseFailure([&] { reader->parse(static_cast<const char*>(path)); }));
  unlink(path);

  EXPECT_THROW(reader->parse("/nonexistent/dir/file.xml"), OSCStreamException);
}

class FatalErrorLog : public OSXMLErrorHandler {
 public:
  void fatalError(const char* message, int line, int column) override {
    text = message;
    where = std::to_string(line) + ":" + std::to_string(column);
  }
  std::string text, where;
};

TEST(XmlReader, MalformedXmlThrowsExpatMessageWithPosition) {
  RecordingHandler h;
  FatalErrorLog log;
  ReaderPtr reader(saxCreateXmlReader(nullptr, &h, nullptr));
  reader->setErrorHandler(&log);
  const std::string doc = "<a>\n  <b></c>\n</a>";
  const std::string message = parseFailure([&] { reader->parse(doc.data(), (int)doc.size()); });
  EXPECT_EQ(std::string(XML_ErrorString(XML_ERROR_TAG_MISMATCH)) + ", line = 2, column = 7", message);
  EXPECT_EQ(message, log.text);
  EXPECT_EQ("2:7", log.where);

  // Truncated input from a stream fails the same way on its final, empty piece.
  std::string cut = "<a><b>";
  CountingStream in(cut);
  EXPECT_NE(std::string::npos,
            parseFailure([&] { reader->parse(in); }).find(XML_ErrorString(XML_ERROR_NO_ELEMENTS)));
}

TEST(XmlReader, ErrorStringFitsTheCallersBuffer) {
  XML_Parser p = XML_ParserCreate(nullptr);
  XML_Parse(p, "<a>\n<", 5, XML_TRUE);
  const int code = XML_GetErrorCode(p);
  const std::string base = XML_ErrorString(static_cast<XML_Error>(code));
  const std::string full = base + ", line = 2, column = 0";

  char buf[256];
  EXPECT_EQ(full, EXML_ErrorString(p, code, buf, sizeof buf));
  EXPECT_EQ(base, EXML_ErrorString(p, code, nullptr, 0));
  EXPECT_EQ(base, EXML_ErrorString(p, code, nullptr, 10));

  // Cut to size - 1 characters, always terminated; only a text far too long is returned as is.
  const int size = (int)base.size() + 4;
  std::vector<char> small(size + 1, '#');
  EXPECT_EQ(full.substr(0, size - 1), EXML_ErrorString(p, code, small.data(), size));
  EXPECT_EQ('#', small[size]);
  // Compared by text: the i386 build links its own copy of expat beside the library's.
  char tiny[4];
  const char* unchanged = EXML_ErrorString(p, code, tiny, sizeof tiny);
  EXPECT_NE(tiny, unchanged);
  EXPECT_EQ(base, unchanged);
  XML_ParserFree(p);
}

// Throws out of the handler at the named element; counts what it is shown.
struct Refusal {
  int code;
};
class RefusingHandler : public RecordingHandler {
 public:
  explicit RefusingHandler(std::string at) : at_(std::move(at)) {}
  void startElement(const char* uri, const char* localname, const char* qname,
                    const char* const* attrs) override {
    RecordingHandler::startElement(uri, localname, qname, attrs);
    if (at_ == qname) throw Refusal{42};
  }

 private:
  std::string at_;
};

TEST(XmlReader, HandlerExceptionEndsTheParseAndLeavesTheReaderUsable) {
  RefusingHandler h("stop");
  ReaderPtr reader(saxCreateXmlReader(nullptr, &h, nullptr));
  // An empty element would get its end event even after expat is told to stop.
  const std::string doc = "<a><stop/>tail<b/></a>";
  try {
    reader->parse(doc.data(), (int)doc.size());
    FAIL() << "no exception";
  } catch (const Refusal& r) {
    EXPECT_EQ(42, r.code);
  }
  EXPECT_EQ((std::vector<std::string>{"{", "<a>", "<stop>"}), h.events) << "no end of document";

  std::string again = "<again><stop/></again>";
  CountingStream in(again);
  h.events.clear();
  EXPECT_THROW(reader->parse(in), Refusal);
  EXPECT_EQ((std::vector<std::string>{"{", "<again>", "<stop>"}), h.events);

  RecordingHandler plain;
  reader->setContentHandler(&plain);
  EXPECT_EQ(0, reader->parse(doc.data(), (int)doc.size()));
  EXPECT_EQ(3, plain.starts);
}

// Error information the reader writes into; the reader resets it when it is installed.
class ErrorInfoLog : public OSXMLErrorInfo {
 public:
  void resetErrorInfo() override { status = 0, resets++; }
  void setErrorInfo(int s, const char*, int) override { status = s; }
  int getErrorInfo(int*, const char**, int*) override { return status != 0; }
  int status = 7;
  int resets = 0;
};

TEST(XmlReader, NestingBeyondTheLimitFailsCleanlyWithStatus22) {
  ASN1CtxtPtr ctxt(new ASN1Context());
  RecordingHandler h;
  ErrorInfoLog info;
  ReaderPtr reader(saxCreateXmlReader(ctxt, &h, &info));
  EXPECT_EQ(1, info.resets);
  EXPECT_EQ(0, info.status);

  const std::string hostile = nested(100000);
  try {
    reader->parse(hostile.data(), (int)hostile.size());
    FAIL() << "no exception";
  } catch (const OSRTSAXExceptionImpl& e) {
    EXPECT_EQ(ASN_E_TOODEEP, e.getStatus());
    EXPECT_STREQ("rtxersrc/OSExpatXMLReader", e.getSrcFileName());
  }
  EXPECT_EQ(OSXML_K_MAXDEPTH, h.starts);
  EXPECT_EQ(ASN_E_TOODEEP, ctxt->getStatus());
  EXPECT_EQ(ASN_E_TOODEEP, info.status);

  // Exactly at the limit is fine, from a stream too; the count starts over per document.
  std::string deepest = nested(OSXML_K_MAXDEPTH);
  h.starts = 0;
  CountingStream in(deepest);
  EXPECT_EQ(0, reader->parse(in));
  EXPECT_EQ(OSXML_K_MAXDEPTH, h.starts);
  std::string over = nested(OSXML_K_MAXDEPTH + 1);
  CountingStream in2(over);
  EXPECT_THROW(reader->parse(in2), OSRTSAXExceptionImpl);
}

TEST(XmlReader, EntityExpansionAttackIsRefusedByExpat) {
  std::string doc = "<?xml version=\"1.0\"?><!DOCTYPE lolz [<!ENTITY lol \"lollollollollol\">";
  std::string prev = "lol";
  for (int i = 1; i <= 9; ++i) {
    const std::string name = "lol" + std::to_string(i);
    doc += "<!ENTITY " + name + " \"";
    for (int k = 0; k < 10; ++k) doc += "&" + prev + ";";
    doc += "\">";
    prev = name;
  }
  doc += "]><lolz>&" + prev + ";</lolz>";

  RecordingHandler h;
  ReaderPtr reader(saxCreateXmlReader(nullptr, &h, nullptr));
  const auto start = std::chrono::steady_clock::now();
  const std::string message = parseFailure([&] { reader->parse(doc.data(), (int)doc.size()); });
  const auto seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  EXPECT_EQ(0u, message.find(XML_ErrorString(XML_ERROR_AMPLIFICATION_LIMIT_BREACH))) << message;
  // Fifteen billion characters were asked for; expat stops after a few megabytes.
  EXPECT_LT(h.characterBytes, 64L << 20);
  EXPECT_LT(seconds, 30.0);
}

TEST(XmlReader, HugeStreamParsesInBoundedMemory) {
  const long items = 600000;  // about 50 MB of XML
  GeneratedDocument in(items);
  // Keep only the counts: the recorder's own event log would grow with the document.
  class CountingHandler : public OSXMLContentHandler {
   public:
    void startElement(const char*, const char*, const char*, const char* const*) override { starts++; }
    void endElement(const char*, const char*, const char*) override {}
    void characters(const char*, unsigned int n) override { chars += n; }
    long starts = 0, chars = 0;
  } h;
  ReaderPtr reader(saxCreateXmlReader(nullptr, &h, nullptr));
  const size_t before = heapInUse();
  EXPECT_EQ(0, reader->parse(in));
  EXPECT_EQ(items + 1, h.starts);
  EXPECT_GT(in.produced, 40L << 20);
  EXPECT_LT(in.peakHeap - std::min(in.peakHeap, before), (size_t)(4 << 20));
}

}  // namespace
