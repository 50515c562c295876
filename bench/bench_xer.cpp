// Writing a large XML document: a revocation-list-like SEQUENCE OF entries of integers,
// booleans, named values, identifiers, octets and escaped text, of 100 and 10,000 entries.
//
// The peer is the plainest writer that produces the same bytes: snprintf and a std::string
// with its own escaping loop. The pair checks that both texts are equal before timing, so the
// ratio is the cost of our layout machinery (state, indentation, staging, the byte writer)
// over hand-written formatting. A third benchmark writes the same document through a buffered
// memory stream.
#include <benchmark/benchmark.h>

#include <quillon/asn1xer.h>
#include <quillon/rtStream.h>

#include <stdio.h>
#include <string.h>

#include <string>
#include <vector>

namespace {

struct Entry {
  ASN1INT64 serial;
  ASN1BOOL revoked;
  const char* reason;
  ASN1OBJID id;
  ASN1OCTET digest[20];
  std::string note;
};

std::vector<Entry> makeEntries(int count) {
  static const char* const kReasons[] = {"keyCompromise", "cACompromise", "superseded"};
  std::vector<Entry> entries((size_t)count);
  for (int i = 0; i < count; ++i) {
    Entry& e = entries[(size_t)i];
    e.serial = 1000000007LL * (i + 1);
    e.revoked = (ASN1BOOL)(i % 3 != 0);
    e.reason = kReasons[i % 3];
    static const ASN1UINT arcs[] = {2, 5, 29, 21};
    e.id.numids = 4;
    memcpy(e.id.subid, arcs, sizeof arcs);
    for (int k = 0; k < 20; ++k) e.digest[k] = (ASN1OCTET)(i * 31 + k * 7);
    e.note = "entry " + std::to_string(i) + " <held> by \"R&D\"";
  }
  return entries;
}

// ---- Our side ---------------------------------------------------------------------------

int writeEntry(ASN1CTXT* c, const Entry& e) {
  int stat = xerEncStartElement(c, "Entry", nullptr);
  c->xmlLevel++;
  if (stat == 0) stat = xerEncInt64(c, e.serial, "serialNumber");
  if (stat == 0) stat = xerEncBool(c, e.revoked, "revoked");
  if (stat == 0) stat = xerEncNamedValue(c, e.reason, "reason", nullptr);
  if (stat == 0) stat = xerEncObjId(c, &e.id, "extnID");
  if (stat == 0) stat = xerEncOctStr(c, sizeof e.digest, e.digest, "digest");
  if (stat == 0) stat = xerEncAscCharStr(c, e.note.c_str(), "note");
  c->xmlLevel--;
  if (stat == 0) stat = xerEncEndElement(c, "Entry");
  return stat;
}

int writeDocument(ASN1CTXT* c, const std::vector<Entry>& entries) {
  int stat = xerEncStartDocument(c);
  if (stat == 0) stat = xerEncStartElement(c, "RevokedList", nullptr);
  c->xmlLevel++;
  for (size_t i = 0; i < entries.size() && stat == 0; ++i) stat = writeEntry(c, entries[i]);
  c->xmlLevel--;
  if (stat == 0) stat = xerEncEndElement(c, "RevokedList");
  if (stat == 0) stat = xerEncEndDocument(c);
  return stat;
}

class BufferWriter {
 public:
  BufferWriter() {
    rtInitContext(&ctxt_, nullptr);
    xerSetEncBufPtr(&ctxt_, nullptr, 0, 0);
  }
  ~BufferWriter() { rtFreeContext(&ctxt_); }
  ASN1CTXT* get() { return &ctxt_; }
  // The same buffer is reused, as a server writing one response after another would.
  void rewind() { ctxt_.buffer.byteIndex = 0; }
  std::string text() {
    return std::string((const char*)xerGetMsgPtr(&ctxt_), (size_t)xerGetMsgLen(&ctxt_));
  }

 private:
  ASN1CTXT ctxt_;
};

// ---- The peer ---------------------------------------------------------------------------

void appendEscaped(std::string& out, const std::string& text) {
  for (char ch : text) {
    switch (ch) {
      case '&': out += "&amp;"; break;
      case '<': out += "&lt;"; break;
      case '>': out += "&gt;"; break;
      case '"': out += "&quot;"; break;
      case '\'': out += "&apos;"; break;
      default: out += ch;
    }
  }
}

void peerEntry(std::string& out, const Entry& e) {
  char line[160];
  out += "\n   <Entry>";
  snprintf(line, sizeof line, "\n      <serialNumber>%lld</serialNumber>", (long long)e.serial);
  out += line;
  out += e.revoked ? "\n      <revoked><true/></revoked>" : "\n      <revoked><false/></revoked>";
  snprintf(line, sizeof line, "\n      <reason><%s/></reason>", e.reason);
  out += line;
  out += "\n      <extnID>";
  for (ASN1UINT k = 0; k < e.id.numids; ++k) {
    snprintf(line, sizeof line, k ? ".%u" : "%u", e.id.subid[k]);
    out += line;
  }
  out += "</extnID>\n      <digest>";
  for (ASN1OCTET o : e.digest) {
    snprintf(line, sizeof line, "%02X", o);
    out += line;
  }
  out += "</digest>\n      <note>";
  appendEscaped(out, e.note);
  out += "</note>\n   </Entry>";
}

void peerDocument(std::string& out, const std::vector<Entry>& entries) {
  out += "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<RevokedList>";
  for (const Entry& e : entries) peerEntry(out, e);
  out += "\n</RevokedList>";
}

// ---- Benchmarks -------------------------------------------------------------------------

void setBytes(benchmark::State& state, size_t bytes, size_t entries) {
  state.SetBytesProcessed((int64_t)(state.iterations() * bytes));
  state.SetItemsProcessed((int64_t)(state.iterations() * entries));
}

void WriteDocument_quillon(benchmark::State& state) {
  std::vector<Entry> entries = makeEntries((int)state.range(0));
  BufferWriter w;
  for (auto _ : state) {
    w.rewind();
    if (writeDocument(w.get(), entries) != 0) {
      state.SkipWithError("the writer failed");
      break;
    }
  }
  setBytes(state, w.text().size(), entries.size());
}

void WriteDocument_snprintf(benchmark::State& state) {
  std::vector<Entry> entries = makeEntries((int)state.range(0));
  BufferWriter check;
  std::string out;
  peerDocument(out, entries);
  if (writeDocument(check.get(), entries) != 0 || check.text() != out) {
    state.SkipWithError("the two documents differ");
    return;
  }
  for (auto _ : state) {
    out.clear();
    peerDocument(out, entries);
    benchmark::DoNotOptimize(out.data());
  }
  setBytes(state, out.size(), entries.size());
}

// Through a buffered stream into memory of its own: the staging layer and the device.
void WriteDocumentToStream_quillon(benchmark::State& state) {
  std::vector<Entry> entries = makeEntries((int)state.range(0));
  size_t bytes = 0;
  for (auto _ : state) {
    ASN1CTXT c;
    rtInitContext(&c, nullptr);
    rtStreamBufInit(&c);
    rtStreamMemoryCreate(&c, OSRTSTRMF_OUTPUT);
    if (writeDocument(&c, entries) != 0) {
      state.SkipWithError("the writer failed");
      rtFreeContext(&c);
      break;
    }
    rtStreamMemoryGetBuffer(&c, &bytes);
    rtFreeContext(&c);
  }
  setBytes(state, bytes, entries.size());
}

}  // namespace

BENCHMARK(WriteDocument_quillon)->Arg(100)->Arg(10000);
BENCHMARK(WriteDocument_snprintf)->Arg(100)->Arg(10000);
BENCHMARK(WriteDocumentToStream_quillon)->Arg(100)->Arg(10000);

BENCHMARK_MAIN();
