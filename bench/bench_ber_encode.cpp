// Encoding of the primitives into a reused buffer, beside OpenSSL's i2d on the same values.
// Each pair differs only in "quillon" and "openssl"; before timing, a pair checks that both
// sides produce the same octets, so the ratio compares equal work.
//
// Each side starts from its own native value: we encode from an int, an arc array, text; the
// peer from its ASN1_INTEGER, ASN1_OBJECT (which already holds the contents octets) and
// BIGNUM. The OID pair thus measures our arc conversion against the peer's plain copy.
#include <benchmark/benchmark.h>

#include <quillon/asn1berenc.h>
#include <quillon/rtContext.h>

#include <openssl/asn1.h>
#include <openssl/bn.h>
#include <openssl/objects.h>
#include <openssl/x509.h>

#include <string.h>

#include <string>
#include <vector>

namespace {

using Bytes = std::vector<unsigned char>;

// A context whose static buffer is rewound before every batch, as a server re-encoding
// messages would reuse one.
class Encoder {
 public:
  Encoder() : buf_(1 << 16) {
    rtInitContext(&ctxt_, nullptr);
    rewind();
  }
  ~Encoder() { rtFreeContext(&ctxt_); }
  ASN1CTXT* get() { return &ctxt_; }
  void rewind() { xe_setp(&ctxt_, buf_.data(), (int)buf_.size()); }
  Bytes written(int len) {
    const ASN1OCTET* p = xe_getp(&ctxt_);
    return Bytes(p, p + len);
  }

 private:
  Bytes buf_;
  ASN1CTXT ctxt_;
};

// Writes with i2d forward into a reused buffer.
template <typename T, typename F>
Bytes i2dBytes(F i2d, T* value) {
  Bytes out(4096);
  unsigned char* p = out.data();
  out.resize((size_t)i2d(value, &p));
  return out;
}

bool sameOctets(benchmark::State& state, const Bytes& ours, const Bytes& peer) {
  if (ours == peer) return true;
  state.SkipWithError("the two encodings differ");
  return false;
}

// The peer's side of a pair: every value written with i2d, one after another.
template <typename T, typename F>
void timeI2d(benchmark::State& state, const std::vector<T*>& values, F i2d) {
  Bytes out(1 << 16);
  for (auto _ : state) {
    unsigned char* p = out.data();
    for (T* v : values) benchmark::DoNotOptimize(i2d(v, &p));
  }
  state.SetItemsProcessed((int64_t)(state.iterations() * values.size()));
}

// Values of a certificate's kind: versions, small counts, lengths, a few wide ones.
const std::vector<ASN1INT>& integerValues() {
  static const std::vector<ASN1INT> v = {0, 2, 1, 127, 128, 255, 1000, -1, 65535, 300,
                                         86400, 0x12345678, -129, 42, 7, 0x7FFFFFFF};
  return v;
}

void EncodeInteger_quillon(benchmark::State& state) {
  Encoder enc;
  for (auto _ : state) {
    enc.rewind();
    for (ASN1INT v : integerValues()) benchmark::DoNotOptimize(xe_integer(enc.get(), &v, 1));
  }
  state.SetItemsProcessed((int64_t)(state.iterations() * integerValues().size()));
}

void EncodeInteger_openssl(benchmark::State& state) {
  std::vector<ASN1_INTEGER*> values;
  for (ASN1INT v : integerValues()) {
    ASN1_INTEGER* a = ASN1_INTEGER_new();
    ASN1_INTEGER_set_int64(a, v);
    values.push_back(a);
  }
  Encoder check;
  for (size_t i = 0; i < values.size(); ++i) {
    check.rewind();
    int len = xe_integer(check.get(), &integerValues()[i], 1);
    if (!sameOctets(state, check.written(len), i2dBytes(i2d_ASN1_INTEGER, values[i]))) break;
  }
  timeI2d(state, values, i2d_ASN1_INTEGER);
  for (ASN1_INTEGER* a : values) ASN1_INTEGER_free(a);
}

// Identifiers a certificate carries: signature and key algorithms, name attributes,
// extensions.
const std::vector<std::vector<ASN1UINT>>& oidArcs() {
  static const std::vector<std::vector<ASN1UINT>> v = {
      {1, 2, 840, 113549, 1, 1, 11}, {1, 2, 840, 113549, 1, 1, 1}, {2, 5, 4, 3},
      {2, 5, 4, 6},                  {2, 5, 29, 19},               {2, 5, 29, 15},
      {1, 3, 6, 1, 5, 5, 7, 1, 1},   {1, 2, 840, 10045, 4, 3, 2}};
  return v;
}

std::vector<ASN1OBJID> oidValues() {
  std::vector<ASN1OBJID> out;
  for (const auto& arcs : oidArcs()) {
    ASN1OBJID o;
    o.numids = (ASN1UINT)arcs.size();
    for (size_t i = 0; i < arcs.size(); ++i) o.subid[i] = arcs[i];
    out.push_back(o);
  }
  return out;
}

std::string dotted(const std::vector<ASN1UINT>& arcs) {
  std::string s;
  for (ASN1UINT a : arcs) s += (s.empty() ? "" : ".") + std::to_string(a);
  return s;
}

void EncodeObjectIdentifier_quillon(benchmark::State& state) {
  Encoder enc;
  std::vector<ASN1OBJID> oids = oidValues();
  for (auto _ : state) {
    enc.rewind();
    for (const ASN1OBJID& o : oids) benchmark::DoNotOptimize(xe_objid(enc.get(), &o, 1));
  }
  state.SetItemsProcessed((int64_t)(state.iterations() * oids.size()));
}

void EncodeObjectIdentifier_openssl(benchmark::State& state) {
  std::vector<ASN1OBJID> oids = oidValues();
  std::vector<ASN1_OBJECT*> objs;
  for (const auto& arcs : oidArcs()) objs.push_back(OBJ_txt2obj(dotted(arcs).c_str(), 1));
  Encoder check;
  for (size_t i = 0; i < objs.size(); ++i) {
    check.rewind();
    int len = xe_objid(check.get(), &oids[i], 1);
    if (!sameOctets(state, check.written(len), i2dBytes(i2d_ASN1_OBJECT, objs[i]))) break;
  }
  timeI2d(state, objs, i2d_ASN1_OBJECT);
  for (ASN1_OBJECT* o : objs) ASN1_OBJECT_free(o);
}

// A key identifier (20 octets) or a signature-sized string (256 octets).
Bytes octetValue(size_t n) {
  Bytes b(n);
  for (size_t i = 0; i < n; ++i) b[i] = (unsigned char)(i * 31 + 7);
  return b;
}

void EncodeOctetString_quillon(benchmark::State& state) {
  Encoder enc;
  Bytes value = octetValue((size_t)state.range(0));
  for (auto _ : state) {
    enc.rewind();
    benchmark::DoNotOptimize(xe_octstr(enc.get(), value.data(), (ASN1UINT)value.size(), 1));
  }
  state.SetBytesProcessed((int64_t)(state.iterations() * value.size()));
}

void EncodeOctetString_openssl(benchmark::State& state) {
  Bytes value = octetValue((size_t)state.range(0));
  ASN1_OCTET_STRING* s = ASN1_OCTET_STRING_new();
  ASN1_OCTET_STRING_set(s, value.data(), (int)value.size());
  Encoder check;
  int len = xe_octstr(check.get(), value.data(), (ASN1UINT)value.size(), 1);
  sameOctets(state, check.written(len), i2dBytes(i2d_ASN1_OCTET_STRING, s));
  timeI2d(state, std::vector<ASN1_OCTET_STRING*>{s}, i2d_ASN1_OCTET_STRING);
  ASN1_OCTET_STRING_free(s);
  state.SetBytesProcessed((int64_t)(state.iterations() * value.size()));
}

// The header of every value: short, long and high-number forms. No peer writes headers alone.
void EncodeTagAndLength_quillon(benchmark::State& state) {
  Encoder enc;
  const ASN1TagType tags[] = {TM_CONS | ASN_ID_SEQ, ASN_ID_INT, TM_CTXT | TM_CONS | 0,
                              TM_CTXT | 2, TM_CTXT | 40};
  const int lengths[] = {3, 120, 200, 1500, 70000};
  for (auto _ : state) {
    enc.rewind();
    for (int i = 0; i < 5; ++i)
      benchmark::DoNotOptimize(xe_tag_len(enc.get(), tags[i], lengths[i]));
  }
  state.SetItemsProcessed(state.iterations() * 5);
}

// SEQUENCE { sha256WithRSAEncryption, NULL }, the AlgorithmIdentifier of a certificate, built
// backwards by hand as a generated encoder does.
int encodeAlgorithmIdentifier(ASN1CTXT* pctxt, const ASN1OBJID* algorithm) {
  int len = xe_null(pctxt, 1);
  if (len < 0) return len;
  int oidLen = xe_objid(pctxt, algorithm, 1);
  if (oidLen < 0) return oidLen;
  return xe_tag_len(pctxt, TM_CONS | ASN_ID_SEQ, len + oidLen);
}

void EncodeAlgorithmIdentifier_quillon(benchmark::State& state) {
  Encoder enc;
  ASN1OBJID oid = oidValues()[0];
  for (auto _ : state) {
    enc.rewind();
    benchmark::DoNotOptimize(encodeAlgorithmIdentifier(enc.get(), &oid));
  }
  state.SetItemsProcessed(state.iterations());
}

void EncodeAlgorithmIdentifier_openssl(benchmark::State& state) {
  X509_ALGOR* alg = X509_ALGOR_new();
  X509_ALGOR_set0(alg, OBJ_nid2obj(NID_sha256WithRSAEncryption), V_ASN1_NULL, nullptr);
  Encoder check;
  ASN1OBJID oid = oidValues()[0];
  int len = encodeAlgorithmIdentifier(check.get(), &oid);
  sameOctets(state, check.written(len), i2dBytes(i2d_X509_ALGOR, alg));
  timeI2d(state, std::vector<X509_ALGOR*>{alg}, i2d_X509_ALGOR);
  X509_ALGOR_free(alg);
}

// A 20-octet certificate serial number from its hex text, as a value type holds it.
const char kSerialHex[] = "0x5C3A0E9B7D21F4A8C6E0B1D3F5A7C9E1B3D5F7A9";

void EncodeSerialFromText_quillon(benchmark::State& state) {
  Encoder enc;
  for (auto _ : state) {
    enc.rewind();
    benchmark::DoNotOptimize(xe_bigint(enc.get(), kSerialHex, 1));
  }
  state.SetItemsProcessed(state.iterations());
}

// The peer does the same work from the same text: parse to a BIGNUM, convert, encode.
int peerSerialFromText(unsigned char** pp) {
  BIGNUM* bn = nullptr;
  BN_hex2bn(&bn, kSerialHex + 2);
  ASN1_INTEGER* a = BN_to_ASN1_INTEGER(bn, nullptr);
  int len = i2d_ASN1_INTEGER(a, pp);
  ASN1_INTEGER_free(a);
  BN_free(bn);
  return len;
}

void EncodeSerialFromText_openssl(benchmark::State& state) {
  Encoder check;
  int len = xe_bigint(check.get(), kSerialHex, 1);
  Bytes peer(64);
  unsigned char* q = peer.data();
  peer.resize((size_t)peerSerialFromText(&q));
  sameOctets(state, check.written(len), peer);
  Bytes out(64);
  for (auto _ : state) {
    unsigned char* p = out.data();
    benchmark::DoNotOptimize(peerSerialFromText(&p));
  }
  state.SetItemsProcessed(state.iterations());
}

}  // namespace

BENCHMARK(EncodeInteger_quillon);
BENCHMARK(EncodeInteger_openssl);
BENCHMARK(EncodeObjectIdentifier_quillon);
BENCHMARK(EncodeObjectIdentifier_openssl);
BENCHMARK(EncodeOctetString_quillon)->Arg(20)->Arg(256);
BENCHMARK(EncodeOctetString_openssl)->Arg(20)->Arg(256);
BENCHMARK(EncodeTagAndLength_quillon);
BENCHMARK(EncodeAlgorithmIdentifier_quillon);
BENCHMARK(EncodeAlgorithmIdentifier_openssl);
BENCHMARK(EncodeSerialFromText_quillon);
BENCHMARK(EncodeSerialFromText_openssl);

BENCHMARK_MAIN();
