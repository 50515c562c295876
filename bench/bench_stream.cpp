// Stream decoding beside buffer decoding of the same messages: every primitive of a real
// certificate, and a long SEQUENCE OF INTEGER. Each pair differs only in "quillon" (the stream
// decoder, reading a memory stream through its 1024-byte buffer) and "buffer" (the buffer
// decoder over the whole message), so the ratio is what reading through a stream costs.
// Before timing, each pair checks that both sides read the same values.
//
// Values come from the context heap, reset per iteration as a decoding application resets it
// per message; the stream is attached afresh per iteration, as per message.
#include <benchmark/benchmark.h>

#include <quillon/asn1berStream.h>
#include <quillon/asn1berdec.h>
#include <quillon/asn1berenc.h>
#include <quillon/rtContext.h>
#include <quillon/rtMemHeap.h>

#include <stdio.h>

#include <string>
#include <vector>

namespace {

using Bytes = std::vector<unsigned char>;

Bytes readFile(const std::string& path) {
  Bytes out;
  FILE* f = fopen(path.c_str(), "rb");
  if (!f) return out;
  unsigned char chunk[4096];
  size_t n;
  while ((n = fread(chunk, 1, sizeof chunk, f)) > 0) out.insert(out.end(), chunk, chunk + n);
  fclose(f);
  return out;
}

// The corpus certificate with many extensions, found beside this source.
const Bytes& certificate() {
  static const Bytes der = [] {
    std::string here = __FILE__;
    return readFile(here.substr(0, here.rfind('/')) + "/../tests/data/cert/full-extensions.der");
  }();
  return der;
}

// A SEQUENCE OF INTEGER of count values spread over one to four octets.
const Bytes& sequenceOfIntegers() {
  static const Bytes der = [] {
    ASN1CTXT c;
    rtInitContext(&c, nullptr);
    xe_setp(&c, nullptr, 0);
    int len = 0;
    for (int i = 9999; i >= 0; --i) {
      ASN1INT v = i * 2711 - 1000000;
      len += xe_integer(&c, &v, ASN1EXPL);
    }
    len = xe_tag_len(&c, TM_UNIV | TM_CONS | ASN_ID_SEQ, len);
    const ASN1OCTET* p = xe_getp(&c);
    Bytes out(p, p + len);
    rtFreeContext(&c);
    return out;
  }();
  return der;
}

// Decodes every primitive of a DER message by its universal tag, the way a generated decoder
// meets them: identifiers as arcs, booleans and small integers as numbers, the rest as octets.
// Returns a checksum of what was read, or -1.
struct Walker {
  int (*tagAndLen)(ASN1CTXT*, ASN1TagType*, int*);
  bool (*more)(ASN1CTXT*);
  int (*objid)(ASN1CTXT*, ASN1OBJID*, int, int);
  int (*boolean)(ASN1CTXT*, ASN1BOOL*, int, int);
  int (*integer)(ASN1CTXT*, ASN1INT*, int, int);
  int (*octets)(ASN1CTXT*, const ASN1OCTET**, ASN1UINT*, int, int);
};

long walkPrimitives(ASN1CTXT* c, const Walker& w) {
  long sum = 0;
  while (w.more(c)) {
    ASN1TagType tag;
    int len;
    if (w.tagAndLen(c, &tag, &len) != 0) return -1;
    if (tag & TM_CONS) continue;
    int stat;
    if (tag == ASN_ID_OBJID) {
      ASN1OBJID oid;
      stat = w.objid(c, &oid, ASN1IMPL, len);
      sum += oid.numids;
    } else if (tag == ASN_ID_BOOL) {
      ASN1BOOL b;
      stat = w.boolean(c, &b, ASN1IMPL, len);
      sum += b;
    } else if (tag == ASN_ID_INT && len <= 4) {
      ASN1INT v;
      stat = w.integer(c, &v, ASN1IMPL, len);
      sum += v;
    } else {
      const ASN1OCTET* data;
      ASN1UINT n;
      stat = w.octets(c, &data, &n, ASN1IMPL, len);
      sum += n ? data[n - 1] : 0;
    }
    if (stat != 0) return -1;
  }
  return sum;
}

int bufferTagAndLen(ASN1CTXT* c, ASN1TagType* tag, int* len) {
  return xd_tag_len(c, tag, len, XM_ADVANCE);
}
bool bufferMore(ASN1CTXT* c) { return c->buffer.byteIndex < c->buffer.size; }
bool streamMore(ASN1CTXT* c) {
  return c->buffer.byteIndex < c->buffer.size || rtStreamBufPreRead(c, 1) > 0;
}

const Walker kBufferWalker = {bufferTagAndLen, bufferMore, xd_objid, xd_boolean, xd_integer,
                              xd_octstr};
const Walker kStreamWalker = {berDecStrmTagAndLen, streamMore,  berDecStrmObjId,
                              berDecStrmBool,      berDecStrmInt, berDecStrmDynOctStr};

// The SEQUENCE OF read element by element to its end; the sum of the values.
long sumBuffer(ASN1CTXT* c) {
  int len;
  if (xd_match(c, TM_UNIV | TM_CONS | ASN_ID_SEQ, &len, XM_ADVANCE) != 0) return -1;
  ASN1CCB ccb = {c->buffer.data + c->buffer.byteIndex, len};
  long sum = 0;
  while (!xd_chkend(c, &ccb)) {
    ASN1INT v;
    if (xd_integer(c, &v, ASN1EXPL, 0) != 0) return -1;
    sum += v;
  }
  return sum;
}

long sumStream(ASN1CTXT* c) {
  int len;
  if (berDecStrmMatchTag(c, TM_UNIV | TM_CONS | ASN_ID_SEQ, &len, 1) != 0) return -1;
  ASN1StrmCCB ccb;
  berDecStrmInitCCB(c, &ccb, len);
  long sum = 0;
  while (!berDecStrmChkEnd(c, &ccb)) {
    ASN1INT v;
    if (berDecStrmInt(c, &v, ASN1EXPL, 0) != 0) return -1;
    sum += v;
  }
  return sum;
}

class BufferDecoder {
 public:
  explicit BufferDecoder(const Bytes& msg) : msg_(msg) { rtInitContext(&ctxt_, nullptr); }
  ~BufferDecoder() { rtFreeContext(&ctxt_); }
  ASN1CTXT* start() {
    rtMemHeapReset(&ctxt_.memHeap);
    xd_setp(&ctxt_, msg_.data(), (int)msg_.size(), nullptr, nullptr);
    return &ctxt_;
  }

 private:
  Bytes msg_;
  ASN1CTXT ctxt_;
};

class StreamDecoder {
 public:
  explicit StreamDecoder(const Bytes& msg) : msg_(msg) {
    rtInitContext(&ctxt_, nullptr);
    rtStreamBufInit(&ctxt_);
  }
  ~StreamDecoder() { rtFreeContext(&ctxt_); }
  ASN1CTXT* start() {
    rtMemHeapReset(&ctxt_.memHeap);
    rtStreamMemoryAttach(&ctxt_, msg_.data(), msg_.size(), OSRTSTRMF_INPUT);
    return &ctxt_;
  }

 private:
  Bytes msg_;
  ASN1CTXT ctxt_;
};

bool same(benchmark::State& state, long a, long b) {
  if (a < 0 || a != b) state.SkipWithError("stream and buffer read different values");
  return a >= 0 && a == b;
}

void DecodeCertificatePrimitives_buffer(benchmark::State& state) {
  BufferDecoder dec(certificate());
  for (auto _ : state) benchmark::DoNotOptimize(walkPrimitives(dec.start(), kBufferWalker));
  state.SetBytesProcessed(state.iterations() * (int64_t)certificate().size());
}

void DecodeCertificatePrimitives_quillon(benchmark::State& state) {
  BufferDecoder reference(certificate());
  StreamDecoder dec(certificate());
  if (!same(state, walkPrimitives(dec.start(), kStreamWalker),
            walkPrimitives(reference.start(), kBufferWalker)))
    return;
  for (auto _ : state) benchmark::DoNotOptimize(walkPrimitives(dec.start(), kStreamWalker));
  state.SetBytesProcessed(state.iterations() * (int64_t)certificate().size());
}

void DecodeSequenceOfInteger_buffer(benchmark::State& state) {
  BufferDecoder dec(sequenceOfIntegers());
  for (auto _ : state) benchmark::DoNotOptimize(sumBuffer(dec.start()));
  state.SetItemsProcessed(state.iterations() * 10000);
}

void DecodeSequenceOfInteger_quillon(benchmark::State& state) {
  BufferDecoder reference(sequenceOfIntegers());
  StreamDecoder dec(sequenceOfIntegers());
  if (!same(state, sumStream(dec.start()), sumBuffer(reference.start()))) return;
  for (auto _ : state) benchmark::DoNotOptimize(sumStream(dec.start()));
  state.SetItemsProcessed(state.iterations() * 10000);
}

}  // namespace

BENCHMARK(DecodeCertificatePrimitives_quillon);
BENCHMARK(DecodeCertificatePrimitives_buffer);
BENCHMARK(DecodeSequenceOfInteger_quillon);
BENCHMARK(DecodeSequenceOfInteger_buffer);

BENCHMARK_MAIN();
