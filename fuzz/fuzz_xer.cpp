// The XML reader and the XER value decoders on hostile input. The first octet chooses the
// decoder (its upper bits) and the path (its low two bits):
//   0: the rest is a document parsed from memory; every element's text is collected as a
//      generated handler collects a primitive component and decoded at its end tag;
//   1: the same document read through a stream, 2048 bytes at a time;
//   2: the rest is the decoder's input itself, without a NUL, so that a read past the text
//      shows up under ASan;
//   3: the rest arrives as character data in pieces for the piecewise string decoders.
// Results are read back in full so that a pointer or count that lies shows up.
#include <quillon/asn1XerSax.h>

#include <stddef.h>
#include <stdint.h>
#include <string.h>

#include <algorithm>
#include <vector>

namespace {

volatile unsigned g_sink;

void touch(const void* p, size_t n) {
  const unsigned char* b = static_cast<const unsigned char*>(p);
  unsigned sum = 0;
  for (size_t i = 0; i < n; ++i) sum += b[i];
  g_sink = sum;
}

void touchText(const char* text) {
  if (text) touch(text, strlen(text) + 1);
}

template <typename T>
void decodeScalar(int (*dec)(ASN1CTXT*, T*), ASN1CTXT* c) {
  T value{};
  if (dec(c, &value) == 0) touch(&value, sizeof value);
}

void decodeText(int (*dec)(ASN1CTXT*, const char**), ASN1CTXT* c) {
  const char* text = nullptr;
  if (dec(c, &text) == 0) touchText(text);
}

template <typename Str>
void decodeWide(int (*dec)(ASN1CTXT*, Str*), ASN1CTXT* c) {
  Str s{};
  if (dec(c, &s) == 0 && s.nchars) touch(s.data, s.nchars * sizeof *s.data);
}

void decodeOctets(int (*dec)(ASN1CTXT*, ASN1DynOctStr*), ASN1CTXT* c) {
  ASN1DynOctStr s{};
  if (dec(c, &s) == 0 && s.numocts) touch(s.data, s.numocts);
}

void decodeBits(int (*dec)(ASN1CTXT*, ASN1DynBitStr*), ASN1CTXT* c) {
  ASN1DynBitStr s{};
  if (dec(c, &s) == 0 && s.numbits) touch(s.data, (s.numbits + 7) / 8);
}

template <typename Dec>
void decodeFixed(Dec dec, ASN1CTXT* c) {
  ASN1OCTET buf[16] = {};
  ASN1UINT n = 0;
  if (dec(c, buf, &n, static_cast<ASN1INT>(sizeof buf)) == 0) touch(buf, sizeof buf);
}

template <typename Oid>
void decodeOid(int (*dec)(ASN1CTXT*, Oid*), ASN1CTXT* c) {
  Oid oid;
  dec(c, &oid);
  if (oid.numids <= ASN_K_MAXSUBIDS) touch(oid.subid, oid.numids * sizeof oid.subid[0]);
}

void decodeNamedBits(ASN1CTXT* c) {
  static const XMLNamedBit kBits[] = {{"a", 0}, {"b", 7}, {"keyCertSign", 5}, {"far", 200}};
  ASN1OCTET buf[4] = {};
  ASN1UINT n = 0;
  if (xmlDecNamedBitStr(c, buf, &n, sizeof buf, kBits, 4) == 0) touch(buf, (n + 7) / 8);
}

void decodeHexValue(ASN1CTXT* c) {
  ASN1OCTET buf[8] = {};
  ASN1UINT bits = 0;
  if (xerDecHexStrValue(c, buf, &bits, sizeof buf, 3, 1) == 0) touch(buf, 2);
  xerDecBinStrValue(c, buf, &bits, sizeof buf, 0, 0);
}

void walkText(ASN1CTXT* c) {
  const char* token = nullptr;
  for (int n; (n = xerParseToken(c, &token)) > 0;) touch(token, (size_t)n);
  c->buffer.byteIndex = 0;
  while (xerReadChar(c) >= 0) {
  }
}

using Decoder = void (*)(ASN1CTXT*);

const Decoder kDecoders[] = {
    [](ASN1CTXT* c) { decodeScalar(xerDecBool, c); },
    [](ASN1CTXT* c) { decodeScalar(xmlDecBool, c); },
    [](ASN1CTXT* c) { decodeScalar(xerDecInt, c); },
    [](ASN1CTXT* c) { decodeScalar(xerDecInt8, c); },
    [](ASN1CTXT* c) { decodeScalar(xerDecUInt16, c); },
    [](ASN1CTXT* c) { decodeScalar(xerDecUInt, c); },
    [](ASN1CTXT* c) { decodeScalar(xerDecInt64, c); },
    [](ASN1CTXT* c) { decodeScalar(xerDecUInt64, c); },
    [](ASN1CTXT* c) { decodeText(xerDecBigInt, c); },
    [](ASN1CTXT* c) { decodeScalar(xerDecReal, c); },
    [](ASN1CTXT* c) { decodeScalar(xmlDecReal, c); },
    [](ASN1CTXT* c) { decodeOid(xerDecObjId, c); },
    [](ASN1CTXT* c) { decodeOid(xerDecObjId64, c); },
    [](ASN1CTXT* c) { decodeOid(xerDecRelativeOID, c); },
    [](ASN1CTXT* c) { decodeOctets(xerDecDynOctStr, c); },
    [](ASN1CTXT* c) { decodeOctets(xmlDecDynOctStr, c); },
    [](ASN1CTXT* c) { decodeFixed(xerDecOctStr, c); },
    [](ASN1CTXT* c) { decodeBits(xerDecDynBitStr, c); },
    [](ASN1CTXT* c) { decodeBits(xmlDecDynBitStr, c); },
    [](ASN1CTXT* c) { decodeFixed(xerDecBitStr, c); },
    [](ASN1CTXT* c) { decodeOctets(xerDecDynBase64Str, c); },
    [](ASN1CTXT* c) { decodeFixed(xerDecBase64Str, c); },
    [](ASN1CTXT* c) { decodeText(xerDecDynAscCharStr, c); },
    [](ASN1CTXT* c) { decodeText(xerDecDynUTF8Str, c); },
    [](ASN1CTXT* c) { decodeWide(xerDecBMPStr, c); },
    [](ASN1CTXT* c) { decodeWide(xerDecUnivStr, c); },
    [](ASN1CTXT* c) { decodeText(xmlDecUTCTime, c); },
    [](ASN1CTXT* c) { decodeText(xmlDecGeneralizedTime, c); },
    [](ASN1CTXT* c) {
      ASN1TOpenType ot{};
      if (xerDecOpenType(c, &ot) == 0 && ot.numocts) touch(ot.data, ot.numocts);
    },
    decodeNamedBits,
    decodeHexValue,
    walkText,
};
constexpr size_t kDecoderCount = sizeof kDecoders / sizeof kDecoders[0];

// Collects each element's text and decodes it at the element's end, as generated handlers do
// for primitive components; nested elements start a new text.
class FuzzHandler : public ASN1XERSAXDecodeHandler {
 public:
  FuzzHandler(ASN1XERDecodeBuffer& buf, Decoder decode) : buf_(buf), decode_(decode) {
    rtMemBufInit(buf.getCtxtPtr(), &text_, 0);
  }
  ~FuzzHandler() override { rtMemBufFree(&text_); }

  void startElement(const char*, const char*, const char* qname,
                    const char* const* attrs) override {
    touchText(qname);
    for (const char* const* a = attrs; *a; ++a) touchText(*a);
    rtMemBufReset(&text_);
  }
  void characters(const char* chars, unsigned int length) override {
    if (rtMemBufAppend(&text_, reinterpret_cast<const ASN1OCTET*>(chars), length) != 0) {
      throwSAXException(ASN_E_NOMEM, nullptr, 0);
    }
  }
  void endElement(const char*, const char*, const char*) override {
    finalizeMemBuf(&buf_, text_);
    decode_(buf_.getCtxtPtr());
    rtMemBufReset(&text_);
    rtErrReset(&buf_.getCtxtPtr()->errInfo);
  }

 private:
  ASN1XERDecodeBuffer& buf_;
  Decoder decode_;
  ASN1MemBuf text_;
};

void parseDocument(const uint8_t* data, size_t size, Decoder decode, bool viaStream) {
  // One byte more than the document, so that even an empty one has memory to attach.
  std::vector<ASN1OCTET> copy(size + 1);
  memcpy(copy.data(), data, size);
  OSCMemoryInputStream in(copy.data(), static_cast<ASN1UINT>(size));
  ASN1XERDecodeBuffer memory(copy.data(), static_cast<ASN1UINT>(size));
  ASN1XERDecodeBuffer stream(in);
  ASN1XERDecodeBuffer& buf = viaStream ? stream : memory;
  FuzzHandler handler(buf, decode);
  handler.init(0);
  OSXMLReader* reader = saxCreateXmlReader(buf.getContext(), &handler, &handler);
  try {
    buf.decodeXML(reader);
  } catch (const OSRTSAXException&) {
  } catch (const ASN1RTLException&) {
  }
  reader->release();
}

void decodeDirect(const uint8_t* data, size_t size, Decoder decode) {
  std::vector<char> text(data, data + size);
  ASN1CTXT ctxt;
  if (rtInitContext(&ctxt, nullptr) != 0) return;
  xerSetDecBufPtr(&ctxt, text.empty() ? nullptr : text.data(), static_cast<int>(text.size()));
  decode(&ctxt);
  rtFreeContext(&ctxt);
}

// The text in pieces of the lengths its own bytes suggest, as expat may cut character data.
void decodePieces(const uint8_t* data, size_t size) {
  ASN1CTXT ctxt;
  if (rtInitContext(&ctxt, nullptr) != 0) return;
  ASN1MemBuf hex, bin;
  rtMemBufInit(&ctxt, &hex, 0);
  rtMemBufInit(&ctxt, &bin, 0);
  const char* text = reinterpret_cast<const char*>(data);
  for (size_t at = 0; at < size;) {
    const size_t piece = std::min<size_t>(1u + data[at] % 7u, size - at);
    xerDecOctStrMemBuf(&hex, text + at, static_cast<int>(piece));
    xerDecBitStrMemBuf(&bin, text + at, static_cast<int>(piece));
    at += piece;
  }
  ASN1DynOctStr octets;
  if (xerDecCopyDynOctStr(&ctxt, &octets, &hex) == 0 && octets.numocts) touch(octets.data, octets.numocts);
  ASN1DynBitStr bits;
  if (xerDecCopyDynBitStr(&ctxt, &bits, &bin) == 0 && bits.numbits) touch(bits.data, (bits.numbits + 7) / 8);
  rtFreeContext(&ctxt);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < 1) return 0;
  const Decoder decode = kDecoders[(data[0] >> 2) % kDecoderCount];
  switch (data[0] & 3) {
    case 0:
      parseDocument(data + 1, size - 1, decode, false);
      break;
    case 1:
      parseDocument(data + 1, size - 1, decode, true);
      break;
    case 2:
      decodeDirect(data + 1, size - 1, decode);
      break;
    default:
      decodePieces(data + 1, size - 1);
      break;
  }
  return 0;
}
