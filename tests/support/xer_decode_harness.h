// XML decoding for tests: a decoder input made from a literal text, a handler that collects an
// element's text the way a generated handler does for a primitive component, and the whole
// path from an XER writer through the reader to the decoder's input.
#ifndef QUILLON_TESTS_XER_DECODE_HARNESS_H
#define QUILLON_TESTS_XER_DECODE_HARNESS_H

#include <gtest/gtest.h>
#include <quillon/asn1XerSax.h>

#include <memory>
#include <string>
#include <vector>

#include "test_context.h"
#include "xer_encode_harness.h"

// A decoder input over a copy of the text without a terminating NUL, so that a decoder
// reading past the input's size is caught by the sanitizer build.
class XerIn {
 public:
  explicit XerIn(const std::string& text) : bytes_(text.begin(), text.end()) {
    bytes_.shrink_to_fit();
    xerSetDecBufPtr(ctx_.get(), bytes_.empty() ? nullptr : bytes_.data(), (int)bytes_.size());
  }
  ASN1CTXT* ctxt() { return ctx_.get(); }
  TestContext& context() { return ctx_; }

 private:
  std::vector<char> bytes_;
  TestContext ctx_;
};

// Collects the content of the document's outermost element: its character data and the names
// of the empty elements X.693 writes inside it (<true/>, <PLUS-INFINITY/>, named values). At
// the element's end the text becomes msgBuf's decode input through finalizeMemBuf.
class PrimitiveCollector : public ASN1XERSAXDecodeHandler {
 public:
  explicit PrimitiveCollector(ASN1MessageBufferIF& msgBuf) : msgBuf_(msgBuf) {
    rtMemBufInit(msgBuf.getCtxtPtr(), &text_, 0);
  }
  ~PrimitiveCollector() override { rtMemBufFree(&text_); }

  void startElement(const char*, const char*, const char* qname,
                    const char* const* attrs) override {
    if (mLevel == 0) {
      name_ = qname;
      for (const char* const* a = attrs; a && *a; a += 2) attributes_ += a[0] + ("=" + std::string(a[1]));
    } else {
      rtMemBufAppend(&text_, reinterpret_cast<const ASN1OCTET*>(qname), (ASN1UINT)strlen(qname));
    }
    mLevel++;
  }
  void characters(const char* chars, unsigned int length) override {
    pieces_++;
    if (mLevel >= 1) rtMemBufAppend(&text_, reinterpret_cast<const ASN1OCTET*>(chars), length);
  }
  void endElement(const char*, const char*, const char*) override {
    if (--mLevel == 0) finalizeMemBuf(&msgBuf_, text_);
  }

  const std::string& name() const { return name_; }
  const std::string& attributes() const { return attributes_; }
  // Number of character-data calls: more than one when text arrived in pieces.
  int pieces() const { return pieces_; }

 private:
  ASN1MessageBufferIF& msgBuf_;
  ASN1MemBuf text_;
  std::string name_;
  std::string attributes_;
  int pieces_ = 0;
};

// Releases a reader when the scope ends, exceptions included.
struct ReaderRelease {
  void operator()(OSXMLReader* r) const { r->release(); }
};
using ReaderPtr = std::unique_ptr<OSXMLReader, ReaderRelease>;

// Parses buffer with handler as a generated DecodeFrom does: init(0), a reader on the buffer's
// context with the handler as content handler and error information, decodeXML.
inline int decodeWith(ASN1XERDecodeBuffer& buffer, ASN1XERSAXDecodeHandler& handler) {
  handler.init(0);
  ReaderPtr reader(saxCreateXmlReader(buffer.getContext(), &handler, &handler));
  return buffer.decodeXML(reader.get());
}

// One value through the whole path: written as a document by an XER writer, parsed from memory
// or from a stream, its element's text collected and left as the decode context's input.
class XerRoundTrip {
 public:
  template <typename Write>
  ::testing::AssertionResult run(Write write, bool canonical = false, bool viaStream = false) {
    XerOut out(canonical);
    int stat = xerEncStartDocument(out.ctxt());
    if (stat == 0) stat = write(out.ctxt());
    if (stat == 0) stat = xerEncEndDocument(out.ctxt());
    if (stat != 0) return ::testing::AssertionFailure() << "writer status " << stat;
    document_ = out.text();
    collector_.reset();
    buffer_.reset();
    stream_.reset();
    ASN1OCTET* bytes = reinterpret_cast<ASN1OCTET*>(&document_[0]);
    if (viaStream) {
      stream_.reset(new OSCMemoryInputStream(bytes, (ASN1UINT)document_.size()));
      buffer_.reset(new ASN1XERDecodeBuffer(*stream_));
    } else {
      buffer_.reset(new ASN1XERDecodeBuffer(bytes, (ASN1UINT)document_.size()));
    }
    collector_.reset(new PrimitiveCollector(*buffer_));
    try {
      stat = decodeWith(*buffer_, *collector_);
    } catch (const OSRTSAXExceptionImpl& e) {
      return ::testing::AssertionFailure()
             << "parse failed: " << (e.getMessage() ? e.getMessage() : "") << " in " << document_;
    }
    if (stat != 0) return ::testing::AssertionFailure() << "decodeXML status " << stat;
    return ::testing::AssertionSuccess();
  }

  ASN1CTXT* ctxt() { return buffer_->getCtxtPtr(); }
  const std::string& document() const { return document_; }
  const PrimitiveCollector& collected() const { return *collector_; }

 private:
  std::string document_;
  std::unique_ptr<OSCMemoryInputStream> stream_;
  std::unique_ptr<ASN1XERDecodeBuffer> buffer_;
  std::unique_ptr<PrimitiveCollector> collector_;
};

#endif
