// Decoding of the primitives, and a bare walk over every tag and length of a real certificate,
// beside OpenSSL's d2i and ASN1_get_object on the same octets. Each pair differs only in
// "quillon" and "openssl"; before timing, a pair checks that both sides read the same values.
//
// Our values come from the context heap, which a decoding application resets per message;
// the benchmarks reset it per iteration likewise. The peer reuses one object per value kind
// (d2i into an existing object), its cheapest way.
#include <benchmark/benchmark.h>

#include <quillon/asn1berdec.h>
#include <quillon/asn1berenc.h>
#include <quillon/rtContext.h>
#include <quillon/rtMemHeap.h>

#include <openssl/asn1.h>
#include <openssl/bn.h>
#include <openssl/objects.h>
#include <openssl/pem.h>
#include <openssl/x509.h>

#include <dirent.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include <string>
#include <vector>

namespace {

using Bytes = std::vector<unsigned char>;

// A context over one buffer of concatenated encodings, rewound before every batch.
class Decoder {
 public:
  explicit Decoder(const Bytes& msg) : msg_(msg) {
    rtInitContext(&ctxt_, nullptr);
    rtInitContextBuffer(&ctxt_, msg_.data(), (int)msg_.size());
  }
  ~Decoder() { rtFreeContext(&ctxt_); }
  ASN1CTXT* get() { return &ctxt_; }
  void rewind() {
    ctxt_.buffer.byteIndex = 0;
    rtMemHeapReset(&ctxt_.memHeap);
  }

 private:
  Bytes msg_;
  ASN1CTXT ctxt_;
};

// The encodings of values, one after another, and where each starts.
struct Encodings {
  Bytes all;
  std::vector<size_t> starts;
};

template <typename F>
Encodings encodeEach(size_t count, F encodeOne) {
  Encodings e;
  for (size_t i = 0; i < count; ++i) {
    ASN1CTXT c;
    rtInitContext(&c, nullptr);
    xe_setp(&c, nullptr, 0);
    int len = encodeOne(&c, i);
    const ASN1OCTET* p = xe_getp(&c);
    e.starts.push_back(e.all.size());
    e.all.insert(e.all.end(), p, p + len);
    rtFreeContext(&c);
  }
  return e;
}

bool check(benchmark::State& state, bool same) {
  if (!same) state.SkipWithError("the two decoders read different values");
  return same;
}

// ---- INTEGER ------------------------------------------------------------------------------

const std::vector<ASN1INT>& integerValues() {
  static const std::vector<ASN1INT> v = {0, 2, 1, 127, 128, 255, 1000, -1, 65535, 300,
                                         86400, 0x12345678, -129, 42, 7, 0x7FFFFFFF};
  return v;
}

const Encodings& integerEncodings() {
  static const Encodings e = encodeEach(integerValues().size(), [](ASN1CTXT* c, size_t i) {
    return xe_integer(c, &integerValues()[i], ASN1EXPL);
  });
  return e;
}

void DecodeInteger_quillon(benchmark::State& state) {
  Decoder dec(integerEncodings().all);
  const size_t n = integerValues().size();
  for (auto _ : state) {
    dec.rewind();
    for (size_t i = 0; i < n; ++i) {
      ASN1INT v;
      benchmark::DoNotOptimize(xd_integer(dec.get(), &v, ASN1EXPL, 0));
      benchmark::DoNotOptimize(v);
    }
  }
  state.SetItemsProcessed((int64_t)(state.iterations() * n));
}

void DecodeInteger_openssl(benchmark::State& state) {
  const Encodings& e = integerEncodings();
  const size_t n = integerValues().size();
  ASN1_INTEGER* a = ASN1_INTEGER_new();
  for (size_t i = 0; i < n; ++i) {
    const unsigned char* p = e.all.data() + e.starts[i];
    d2i_ASN1_INTEGER(&a, &p, (long)(e.all.size() - e.starts[i]));
    int64_t v = 0;
    ASN1_INTEGER_get_int64(&v, a);
    if (!check(state, v == integerValues()[i])) break;
  }
  for (auto _ : state) {
    const unsigned char* p = e.all.data();
    const unsigned char* end = p + e.all.size();
    for (size_t i = 0; i < n; ++i) {
      d2i_ASN1_INTEGER(&a, &p, end - p);
      int64_t v;
      benchmark::DoNotOptimize(ASN1_INTEGER_get_int64(&v, a));
    }
  }
  ASN1_INTEGER_free(a);
  state.SetItemsProcessed((int64_t)(state.iterations() * n));
}

// A 20-octet serial number: text for us (the value type's form), an ASN1_INTEGER for the peer.
const Bytes& serialEncoding() {
  static const Bytes b = {0x02, 0x14, 0x4F, 0x2D, 0x1A, 0x3B, 0x5C, 0x6D, 0x7E, 0x8F, 0x90,
                          0xA1, 0xB2, 0xC3, 0xD4, 0xE5, 0xF6, 0x07, 0x18, 0x29, 0x3A, 0x4B};
  return b;
}

void DecodeSerial_quillon(benchmark::State& state) {
  Decoder dec(serialEncoding());
  for (auto _ : state) {
    dec.rewind();
    const char* text;
    benchmark::DoNotOptimize(xd_bigint(dec.get(), &text, ASN1EXPL, 0));
  }
  state.SetItemsProcessed(state.iterations());
}

void DecodeSerial_openssl(benchmark::State& state) {
  const Bytes& b = serialEncoding();
  {
    Decoder dec(b);
    const char* text;
    xd_bigint(dec.get(), &text, ASN1EXPL, 0);
    const unsigned char* p = b.data();
    ASN1_INTEGER* a = d2i_ASN1_INTEGER(nullptr, &p, (long)b.size());
    BIGNUM* bn = ASN1_INTEGER_to_BN(a, nullptr);
    char* hex = BN_bn2hex(bn);
    check(state, strcasecmp(hex, text + 2) == 0);
    OPENSSL_free(hex);
    BN_free(bn);
    ASN1_INTEGER_free(a);
  }
  ASN1_INTEGER* a = ASN1_INTEGER_new();
  for (auto _ : state) {
    const unsigned char* p = b.data();
    benchmark::DoNotOptimize(d2i_ASN1_INTEGER(&a, &p, (long)b.size()));
  }
  ASN1_INTEGER_free(a);
  state.SetItemsProcessed(state.iterations());
}

// ---- OBJECT IDENTIFIER -------------------------------------------------------------------
// We convert to arcs; the peer keeps the contents octets, so its work is a copy.

const std::vector<const char*>& oidTexts() {
  static const std::vector<const char*> v = {
      "1.2.840.113549.1.1.11", "1.2.840.113549.1.1.1", "2.5.4.3",         "2.5.4.6",
      "2.5.29.19",             "2.5.29.15",            "1.3.6.1.5.5.7.1.1", "1.2.840.10045.4.3.2"};
  return v;
}

ASN1OBJID parseDotted(const char* text) {
  ASN1OBJID oid{};
  for (const char* p = text; *p;) {
    char* end;
    oid.subid[oid.numids++] = (ASN1UINT)strtoul(p, &end, 10);
    p = *end == '.' ? end + 1 : end;
  }
  return oid;
}

const Encodings& oidEncodings() {
  static const Encodings e = encodeEach(oidTexts().size(), [](ASN1CTXT* c, size_t i) {
    ASN1OBJID oid = parseDotted(oidTexts()[i]);
    return xe_objid(c, &oid, ASN1EXPL);
  });
  return e;
}

std::string dotted(const ASN1OBJID& oid) {
  std::string s;
  for (ASN1UINT i = 0; i < oid.numids; ++i) s += (i ? "." : "") + std::to_string(oid.subid[i]);
  return s;
}

void DecodeObjectIdentifier_quillon(benchmark::State& state) {
  Decoder dec(oidEncodings().all);
  const size_t n = oidTexts().size();
  for (auto _ : state) {
    dec.rewind();
    for (size_t i = 0; i < n; ++i) {
      ASN1OBJID oid;
      benchmark::DoNotOptimize(xd_objid(dec.get(), &oid, ASN1EXPL, 0));
      benchmark::DoNotOptimize(oid.numids);
    }
  }
  state.SetItemsProcessed((int64_t)(state.iterations() * n));
}

void DecodeObjectIdentifier_openssl(benchmark::State& state) {
  const Encodings& e = oidEncodings();
  const size_t n = oidTexts().size();
  {
    Decoder dec(e.all);
    for (size_t i = 0; i < n; ++i) {
      ASN1OBJID oid;
      xd_objid(dec.get(), &oid, ASN1EXPL, 0);
      if (!check(state, dotted(oid) == oidTexts()[i])) break;
    }
  }
  ASN1_OBJECT* o = nullptr;
  const unsigned char* q = e.all.data();
  for (size_t i = 0; i < n; ++i) {
    d2i_ASN1_OBJECT(&o, &q, (long)(e.all.size() - e.starts[i]));
    char text[64];
    OBJ_obj2txt(text, sizeof text, o, 1);
    if (!check(state, strcmp(text, oidTexts()[i]) == 0)) break;
  }
  for (auto _ : state) {
    const unsigned char* p = e.all.data();
    const unsigned char* end = p + e.all.size();
    for (size_t i = 0; i < n; ++i) benchmark::DoNotOptimize(d2i_ASN1_OBJECT(&o, &p, end - p));
  }
  ASN1_OBJECT_free(o);
  state.SetItemsProcessed((int64_t)(state.iterations() * n));
}

// ---- OCTET STRING ------------------------------------------------------------------------

Bytes octetStringEncoding(size_t n) {
  Bytes value(n);
  for (size_t i = 0; i < n; ++i) value[i] = (unsigned char)(i * 31 + 7);
  Encodings e = encodeEach(1, [&](ASN1CTXT* c, size_t) {
    return xe_octstr(c, value.data(), (ASN1UINT)n, ASN1EXPL);
  });
  return e.all;
}

void decodeOctetStrings(benchmark::State& state, bool fastCopy) {
  Decoder dec(octetStringEncoding((size_t)state.range(0)));
  if (fastCopy) rtSetFastCopy(dec.get());
  for (auto _ : state) {
    dec.rewind();
    const ASN1OCTET* data;
    ASN1UINT n;
    benchmark::DoNotOptimize(xd_octstr(dec.get(), &data, &n, ASN1EXPL, 0));
  }
  state.SetBytesProcessed(state.iterations() * state.range(0));
}

void DecodeOctetString_quillon(benchmark::State& state) { decodeOctetStrings(state, false); }

// Fast copy leaves the octets in the message; no peer offers that, so it stands alone.
void DecodeOctetStringFastCopy_quillon(benchmark::State& state) {
  decodeOctetStrings(state, true);
}

void DecodeOctetString_openssl(benchmark::State& state) {
  Bytes b = octetStringEncoding((size_t)state.range(0));
  ASN1_OCTET_STRING* s = ASN1_OCTET_STRING_new();
  {
    Decoder dec(b);
    const ASN1OCTET* data;
    ASN1UINT n;
    xd_octstr(dec.get(), &data, &n, ASN1EXPL, 0);
    const unsigned char* p = b.data();
    d2i_ASN1_OCTET_STRING(&s, &p, (long)b.size());
    check(state, (int)n == ASN1_STRING_length(s) && memcmp(data, ASN1_STRING_get0_data(s), n) == 0);
  }
  for (auto _ : state) {
    const unsigned char* p = b.data();
    benchmark::DoNotOptimize(d2i_ASN1_OCTET_STRING(&s, &p, (long)b.size()));
  }
  ASN1_OCTET_STRING_free(s);
  state.SetBytesProcessed(state.iterations() * state.range(0));
}

// ---- Every header of a certificate -------------------------------------------------------

// The first certificate of the system store, as DER; a generated one when there is none.
Bytes certificateDer() {
  Bytes der;
  if (DIR* dir = opendir("/etc/ssl/certs")) {
    while (dirent* entry = readdir(dir)) {
      std::string name = entry->d_name;
      if (name.size() < 4 || name.compare(name.size() - 4, 4, ".pem") != 0) continue;
      FILE* f = fopen(("/etc/ssl/certs/" + name).c_str(), "r");
      if (!f) continue;
      X509* cert = PEM_read_X509(f, nullptr, nullptr, nullptr);
      fclose(f);
      if (!cert) continue;
      unsigned char* out = nullptr;
      int len = i2d_X509(cert, &out);
      if (len > 0) der.assign(out, out + len);
      OPENSSL_free(out);
      X509_free(cert);
      if (!der.empty()) break;
    }
    closedir(dir);
  }
  return der;
}

// Reads every header, entering constructed values and stepping over primitive contents.
int walkOurs(ASN1CTXT* c) {
  int headers = 0;
  while (c->buffer.byteIndex < c->buffer.size) {
    ASN1TagType tag;
    int len;
    if (xd_tag_len(c, &tag, &len, XM_ADVANCE) != 0) return -1;
    ++headers;
    if (!(tag & TM_CONS)) c->buffer.byteIndex += (ASN1UINT)len;
  }
  return headers;
}

int walkPeer(const Bytes& der) {
  const unsigned char* p = der.data();
  const unsigned char* end = p + der.size();
  int headers = 0;
  while (p < end) {
    long len;
    int tag, cls;
    int ret = ASN1_get_object(&p, &len, &tag, &cls, end - p);
    if (ret & 0x80) return -1;
    ++headers;
    if (!(ret & V_ASN1_CONSTRUCTED)) p += len;
  }
  return headers;
}

void WalkCertificate_quillon(benchmark::State& state) {
  Bytes der = certificateDer();
  if (der.empty()) {
    state.SkipWithError("no certificate under /etc/ssl/certs");
    return;
  }
  Decoder dec(der);
  int headers = 0;
  for (auto _ : state) {
    dec.get()->buffer.byteIndex = 0;
    benchmark::DoNotOptimize(headers = walkOurs(dec.get()));
  }
  state.counters["headers"] = headers;
  state.SetBytesProcessed(state.iterations() * (int64_t)der.size());
}

void WalkCertificate_openssl(benchmark::State& state) {
  Bytes der = certificateDer();
  if (der.empty()) {
    state.SkipWithError("no certificate under /etc/ssl/certs");
    return;
  }
  Decoder dec(der);
  if (!check(state, walkOurs(dec.get()) == walkPeer(der) && walkPeer(der) > 0)) return;
  int headers = 0;
  for (auto _ : state) benchmark::DoNotOptimize(headers = walkPeer(der));
  state.counters["headers"] = headers;
  state.SetBytesProcessed(state.iterations() * (int64_t)der.size());
}

}  // namespace

BENCHMARK(DecodeInteger_quillon);
BENCHMARK(DecodeInteger_openssl);
BENCHMARK(DecodeSerial_quillon);
BENCHMARK(DecodeSerial_openssl);
BENCHMARK(DecodeObjectIdentifier_quillon);
BENCHMARK(DecodeObjectIdentifier_openssl);
BENCHMARK(DecodeOctetString_quillon)->Arg(20)->Arg(256);
BENCHMARK(DecodeOctetString_openssl)->Arg(20)->Arg(256);
BENCHMARK(DecodeOctetStringFastCopy_quillon)->Arg(20)->Arg(256);
BENCHMARK(WalkCertificate_quillon);
BENCHMARK(WalkCertificate_openssl);

BENCHMARK_MAIN();
