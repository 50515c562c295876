// Parsing a large XML document back into values: a revocation-list-like SEQUENCE OF entries
// (an integer, a boolean, an identifier, 20 octets and escaped text each) of 100 and 10,000
// entries, written by the XER writer.
//
// Ours: the reader over expat feeding a handler shaped like a generated one (element table,
// text collected per component, finalizeMemBuf, the xerDec decoders), from memory and from a
// stream read 2048 bytes at a time. The peer: expat alone with hand-written callbacks doing the
// same conversions with the C library. Both check the values they decode before timing, so the
// ratio is the cost of our framework and decoders over the bare parser.
#include <benchmark/benchmark.h>

#include <expat.h>
#include <quillon/asn1XerSax.h>

#include <stdlib.h>
#include <string.h>

#include <string>
#include <vector>

namespace {

struct Entry {
  ASN1INT64 serial = 0;
  ASN1BOOL revoked = 0;
  ASN1OBJID id{};
  ASN1OCTET digest[20] = {};
  std::string note;
};

const XERElemInfo kEntryElems[] = {
    {"serialNumber", 0}, {"revoked", 0}, {"extnID", 0}, {"digest", 0}, {"note", 1}};
enum { kSerial, kRevoked, kExtnId, kDigest, kNote, kElems };

std::string makeDocument(int count) {
  ASN1CTXT c;
  rtInitContext(&c, nullptr);
  xerSetEncBufPtr(&c, nullptr, 0, 0);
  int stat = xerEncStartDocument(&c);
  stat |= xerEncStartElement(&c, "RevokedList", nullptr);
  c.xmlLevel++;
  for (int i = 0; i < count; ++i) {
    stat |= xerEncStartElement(&c, "Entry", nullptr);
    c.xmlLevel++;
    ASN1OBJID id = {4, {2, 5, 29, (ASN1UINT)(21 + i % 3)}};
    ASN1OCTET digest[20];
    for (int k = 0; k < 20; ++k) digest[k] = (ASN1OCTET)(i * 31 + k * 7);
    const std::string note = "entry " + std::to_string(i) + " <held> by \"R&D\"";
    stat |= xerEncInt64(&c, 1000000007LL * (i + 1), "serialNumber");
    stat |= xerEncBool(&c, (ASN1BOOL)(i % 3 != 0), "revoked");
    stat |= xerEncObjId(&c, &id, "extnID");
    stat |= xerEncOctStr(&c, sizeof digest, digest, "digest");
    stat |= xerEncAscCharStr(&c, note.c_str(), "note");
    c.xmlLevel--;
    stat |= xerEncEndElement(&c, "Entry");
  }
  c.xmlLevel--;
  stat |= xerEncEndElement(&c, "RevokedList");
  stat |= xerEncEndDocument(&c);
  std::string doc = stat == 0 ? std::string((const char*)xerGetMsgPtr(&c), (size_t)xerGetMsgLen(&c)) : "";
  rtFreeContext(&c);
  return doc;
}

// The values a correct decode of entry i holds, for the check before timing.
bool entryIsRight(const Entry& e, int i) {
  return e.serial == 1000000007LL * (i + 1) && e.revoked == (i % 3 != 0) && e.id.numids == 4 &&
         e.id.subid[3] == (ASN1UINT)(21 + i % 3) && e.digest[19] == (ASN1OCTET)(i * 31 + 133) &&
         e.note == "entry " + std::to_string(i) + " <held> by \"R&D\"";
}

bool allRight(const std::vector<Entry>& entries, int count) {
  if ((int)entries.size() != count) return false;
  for (int i = 0; i < count; ++i) {
    if (!entryIsRight(entries[(size_t)i], i)) return false;
  }
  return true;
}

// ---- Ours -------------------------------------------------------------------------------

// The list (level 0), its entries (level 1) and their components (level 2), as the generated
// handlers of a SEQUENCE OF SEQUENCE split the work between them.
class RevokedListHandler : public ASN1XERSAXDecodeHandler {
 public:
  RevokedListHandler(ASN1XERDecodeBuffer& buf, std::vector<Entry>& out) : buf_(buf), out_(out) {
    rtMemBufInit(buf.getCtxtPtr(), &text_, 128);
  }
  ~RevokedListHandler() override { rtMemBufFree(&text_); }

  void startElement(const char*, const char*, const char* qname, const char* const*) override {
    if (mLevel == 1) {
      out_.emplace_back();
      elem_ = -1;
    } else if (mLevel == 2) {
      elem_ = xerGetSeqElemIdx(qname, kEntryElems, kElems, elem_ + 1);
      if (elem_ < 0) throwSAXException(ASN_E_IDNOTFOU, nullptr, 0);
      rtMemBufReset(&text_);
    } else if (mLevel == 3) {
      append(qname, strlen(qname));  // <true/> and <false/>
    }
    mLevel++;
  }
  void characters(const char* chars, unsigned int length) override {
    if (mLevel >= 3) append(chars, length);
  }
  void endElement(const char*, const char*, const char*) override {
    if (--mLevel != 2) return;
    finalizeMemBuf(&buf_, text_);
    ASN1CTXT* c = buf_.getCtxtPtr();
    Entry& e = out_.back();
    ASN1UINT n = 0;
    const char* note = nullptr;
    int stat = 0;
    switch (elem_) {
      case kSerial: stat = xerDecInt64(c, &e.serial); break;
      case kRevoked: stat = xerDecBool(c, &e.revoked); break;
      case kExtnId: stat = xerDecObjId(c, &e.id); break;
      case kDigest: stat = xerDecOctStr(c, e.digest, &n, sizeof e.digest); break;
      case kNote:
        stat = xerDecDynAscCharStr(c, &note);
        if (stat == 0) e.note = note;
        ASN1MEMFREEPTR(c, note);
        break;
    }
    if (stat != 0) throwSAXException(stat, nullptr, 0);
  }

 private:
  void append(const char* chars, size_t n) {
    if (rtMemBufAppend(&text_, reinterpret_cast<const ASN1OCTET*>(chars), (ASN1UINT)n) != 0) {
      throwSAXException(ASN_E_NOMEM, nullptr, 0);
    }
  }

  ASN1XERDecodeBuffer& buf_;
  std::vector<Entry>& out_;
  ASN1MemBuf text_;
  int elem_ = -1;
};

bool decodeOurs(ASN1XERDecodeBuffer& buf, std::vector<Entry>& out) {
  out.clear();
  RevokedListHandler handler(buf, out);
  handler.init(0);
  OSXMLReader* reader = saxCreateXmlReader(buf.getContext(), &handler, &handler);
  int stat = -1;
  try {
    stat = buf.decodeXML(reader);
  } catch (const OSRTSAXException&) {
  }
  reader->release();
  return stat == 0;
}

// ---- The peer ---------------------------------------------------------------------------

struct PeerState {
  std::vector<Entry>* out;
  std::string text;
  int level = 0;
  int elem = -1;
};

int hexDigit(char c) { return c <= '9' ? c - '0' : (c & ~0x20) - 'A' + 10; }

void peerDecode(PeerState& s) {
  Entry& e = s.out->back();
  const char* t = s.text.c_str();
  switch (s.elem) {
    case kSerial: e.serial = strtoll(t, nullptr, 10); break;
    case kRevoked: e.revoked = s.text == "true"; break;
    case kExtnId: {
      e.id.numids = 0;
      for (char* p = const_cast<char*>(t); *p && e.id.numids < ASN_K_MAXSUBIDS; p += *p == '.') {
        e.id.subid[e.id.numids++] = (ASN1UINT)strtoul(p, &p, 10);
      }
      break;
    }
    case kDigest:
      for (size_t k = 0; k + 1 < s.text.size() && k / 2 < sizeof e.digest; k += 2) {
        e.digest[k / 2] = (ASN1OCTET)(hexDigit(t[k]) << 4 | hexDigit(t[k + 1]));
      }
      break;
    case kNote: e.note = s.text; break;
  }
}

void XMLCALL peerStart(void* data, const XML_Char* name, const XML_Char**) {
  PeerState& s = *static_cast<PeerState*>(data);
  if (s.level == 1) s.out->emplace_back();
  if (s.level == 2) {
    for (s.elem = 0; s.elem < kElems && strcmp(kEntryElems[s.elem].name, name) != 0;) s.elem++;
    s.text.clear();
  }
  if (s.level == 3) s.text += name;
  s.level++;
}

void XMLCALL peerEnd(void* data, const XML_Char*) {
  PeerState& s = *static_cast<PeerState*>(data);
  if (--s.level == 2) peerDecode(s);
}

void XMLCALL peerChars(void* data, const XML_Char* chars, int length) {
  PeerState& s = *static_cast<PeerState*>(data);
  if (s.level >= 3) s.text.append(chars, (size_t)length);
}

bool decodePeer(const std::string& doc, std::vector<Entry>& out) {
  out.clear();
  PeerState s;
  s.out = &out;
  XML_Parser p = XML_ParserCreate(nullptr);
  XML_SetUserData(p, &s);
  XML_SetElementHandler(p, peerStart, peerEnd);
  XML_SetCharacterDataHandler(p, peerChars);
  const bool ok = XML_Parse(p, doc.data(), (int)doc.size(), XML_TRUE) == XML_STATUS_OK;
  XML_ParserFree(p);
  return ok;
}

// ---- Benchmarks -------------------------------------------------------------------------

void setBytes(benchmark::State& state, size_t bytes, size_t entries) {
  state.SetBytesProcessed((int64_t)(state.iterations() * bytes));
  state.SetItemsProcessed((int64_t)(state.iterations() * entries));
}

void ParseDocument_quillon(benchmark::State& state) {
  const int count = (int)state.range(0);
  const std::string doc = makeDocument(count);
  std::vector<Entry> entries;
  ASN1XERDecodeBuffer buf(reinterpret_cast<const ASN1OCTET*>(doc.data()), (ASN1UINT)doc.size());
  if (!decodeOurs(buf, entries) || !allRight(entries, count)) {
    state.SkipWithError("the decoded values are wrong");
    return;
  }
  for (auto _ : state) {
    decodeOurs(buf, entries);
    rtMemHeapReset(&buf.getCtxtPtr()->memHeap);
  }
  setBytes(state, doc.size(), entries.size());
}

void ParseDocument_expat(benchmark::State& state) {
  const int count = (int)state.range(0);
  const std::string doc = makeDocument(count);
  std::vector<Entry> entries;
  if (!decodePeer(doc, entries) || !allRight(entries, count)) {
    state.SkipWithError("the decoded values are wrong");
    return;
  }
  for (auto _ : state) decodePeer(doc, entries);
  setBytes(state, doc.size(), entries.size());
}

// From a stream, 2048 bytes at a time into expat's own buffer.
void ParseDocumentFromStream_quillon(benchmark::State& state) {
  const int count = (int)state.range(0);
  std::string doc = makeDocument(count);
  std::vector<Entry> entries;
  for (auto _ : state) {
    OSCMemoryInputStream in(reinterpret_cast<ASN1OCTET*>(&doc[0]), (ASN1UINT)doc.size());
    ASN1XERDecodeBuffer buf(in);
    if (!decodeOurs(buf, entries)) {
      state.SkipWithError("the decode failed");
      break;
    }
  }
  if (!allRight(entries, count)) state.SkipWithError("the decoded values are wrong");
  setBytes(state, doc.size(), entries.size());
}

}  // namespace

BENCHMARK(ParseDocument_quillon)->Arg(100)->Arg(10000);
BENCHMARK(ParseDocument_expat)->Arg(100)->Arg(10000);
BENCHMARK(ParseDocumentFromStream_quillon)->Arg(100)->Arg(10000);

BENCHMARK_MAIN();
