// Whole PKI messages beside OpenSSL on the same octets: a certificate decoded (extensions,
// names and algorithm parameters reaching typed values through the object sets) and encoded,
// CRLs of 10, 10,000 and 100,000 entries, a CMS SignedData and an OCSP response.
//
// Our decoded values live in the context heap. An application decoding a stream of messages
// resets that heap per message, which is what "free" is here; the DecodeFree pair instead
// releases the value with its generated free function and then resets. The heap a message
// holds is reported per benchmark ("heap" octets, and "heap/der" against the message size).
#include <benchmark/benchmark.h>

#include <quillon/asn1berdec.h>
#include <quillon/asn1berenc.h>
#include <quillon/modules/CryptographicMessageSyntax.h>
#include <quillon/modules/PKIX1Explicit88.h>
#include <quillon/modules/PKIXOCSP.h>
#include <quillon/rtContext.h>
#include <quillon/rtMemHeap.h>

#include <openssl/bn.h>
#include <openssl/cms.h>
#include <openssl/ec.h>
#include <openssl/evp.h>
#include <openssl/ocsp.h>
#include <openssl/x509.h>
#include <openssl/x509v3.h>

#include <stdio.h>
#include <stdlib.h>

#include <map>
#include <string>
#include <vector>

namespace {

using Bytes = std::vector<unsigned char>;

// ---- Heap accounting ----------------------------------------------------------------------

// Octets the heap hooks hold right now: every block and large allocation of every heap. Only
// block allocations pass through here, so counting costs nothing measurable per value.
size_t heapHeld = 0;

struct Counted {
  size_t size;
  size_t pad;  // keeps the caller's memory 16-byte aligned
};

void* countingMalloc(void*, size_t size) {
  Counted* c = static_cast<Counted*>(malloc(sizeof(Counted) + size));
  if (!c) return nullptr;
  c->size = size;
  heapHeld += size;
  return c + 1;
}

void countingFree(void*, void* ptr) {
  if (!ptr) return;
  Counted* c = static_cast<Counted*>(ptr) - 1;
  heapHeld -= c->size;
  free(c);
}

void* countingRealloc(void* ctx, void* ptr, size_t size) {
  if (!ptr) return countingMalloc(ctx, size);
  Counted* c = static_cast<Counted*>(ptr) - 1;
  size_t old = c->size;
  Counted* moved = static_cast<Counted*>(realloc(c, sizeof(Counted) + size));
  if (!moved) return nullptr;
  heapHeld += size - old;
  moved->size = size;
  return moved + 1;
}

// Installed before main, so before any heap exists.
const bool hooksInstalled = (rtMemSetAllocFuncs(countingMalloc, countingRealloc, countingFree),
                             true);

// ---- Messages -----------------------------------------------------------------------------

Bytes readFile(const std::string& name) {
  Bytes bytes;
  FILE* f = fopen((std::string(QN_CORPUS_DIR) + "/" + name).c_str(), "rb");
  if (!f) return bytes;
  unsigned char chunk[4096];
  size_t n;
  while ((n = fread(chunk, 1, sizeof chunk, f)) > 0) bytes.insert(bytes.end(), chunk, chunk + n);
  fclose(f);
  return bytes;
}

// A certificate of 1076 octets with eight common extensions, signed with RSA.
const char kCertificate[] = "cert/leaf-rsa.der";
// A SignedData with content, signed attributes and two certificates.
const char kSignedData[] = "cms/signed-attached.der";
// A signed BasicOCSPResponse of three single responses and a responder certificate.
const char kOcspResponse[] = "ocsp/response-good-revoked-hold-unknown.der";

EVP_PKEY* signingKey() {
  static EVP_PKEY* key = EVP_EC_gen("P-256");
  return key;
}

// A CRL signed with P-256 of `entries` revoked certificates, every tenth with a reason code;
// made once per size.
const Bytes& crlDer(int entries) {
  static std::map<int, Bytes> made;
  Bytes& der = made[entries];
  if (!der.empty()) return der;
  X509_CRL* crl = X509_CRL_new();
  X509_NAME* issuer = X509_NAME_new();
  X509_NAME_add_entry_by_txt(issuer, "CN", MBSTRING_ASC,
                             reinterpret_cast<const unsigned char*>("Benchmark CA"), -1, -1, 0);
  X509_CRL_set_version(crl, X509_CRL_VERSION_2);
  X509_CRL_set_issuer_name(crl, issuer);
  ASN1_TIME* now = ASN1_TIME_set(nullptr, 1700000000);
  X509_CRL_set1_lastUpdate(crl, now);
  X509_CRL_set1_nextUpdate(crl, now);
  for (int i = 0; i < entries; ++i) {
    X509_REVOKED* entry = X509_REVOKED_new();
    ASN1_INTEGER* serial = ASN1_INTEGER_new();
    ASN1_INTEGER_set_uint64(serial, 0x1000000000ull + (uint64_t)i * 7919u);
    X509_REVOKED_set_serialNumber(entry, serial);
    X509_REVOKED_set_revocationDate(entry, now);
    if (i % 10 == 0) {
      ASN1_ENUMERATED* reason = ASN1_ENUMERATED_new();
      ASN1_ENUMERATED_set(reason, 1);
      X509_REVOKED_add1_ext_i2d(entry, NID_crl_reason, reason, 0, 0);
      ASN1_ENUMERATED_free(reason);
    }
    X509_CRL_add0_revoked(crl, entry);
    ASN1_INTEGER_free(serial);
  }
  X509_CRL_sign(crl, signingKey(), EVP_sha256());
  unsigned char* out = nullptr;
  int len = i2d_X509_CRL(crl, &out);
  if (len > 0) der.assign(out, out + len);
  OPENSSL_free(out);
  ASN1_TIME_free(now);
  X509_NAME_free(issuer);
  X509_CRL_free(crl);
  return der;
}

// ---- Our side -----------------------------------------------------------------------------

// One context for a benchmark's whole run; each message is decoded from the start of its
// buffer into a heap emptied before the next.
class Context {
 public:
  Context() { rtInitContext(&ctxt_, nullptr); }
  ~Context() { rtFreeContext(&ctxt_); }
  ASN1CTXT* get() { return &ctxt_; }

 private:
  ASN1CTXT ctxt_;
};

template <class Value>
using Decoder = int (*)(ASN1CTXT*, Value*, ASN1TagType, int);
template <class Value>
using Freer = void (*)(ASN1CTXT*, Value*);

template <class Value>
int decodeMessage(ASN1CTXT* c, const Bytes& der, Value* value, Decoder<Value> decode) {
  int stat = xd_setp(c, der.data(), (int)der.size(), nullptr, nullptr);
  return stat != 0 ? stat : decode(c, value, ASN1EXPL, 0);
}

void reportHeap(benchmark::State& state, size_t held, const Bytes& der) {
  state.counters["heap"] = (double)held;
  state.counters["heap/der"] = (double)held / (double)der.size();
  state.SetBytesProcessed(state.iterations() * (int64_t)der.size());
}

// Decodes once to check the message and to weigh the heap it holds, then times decode+reset.
template <class Value>
void decodeLoop(benchmark::State& state, const Bytes& der, Decoder<Value> decode,
                ASN1UINT flags = 0) {
  if (der.empty()) return state.SkipWithError("message not found");
  Context c;
  if (flags != 0) rtCtxtSetFlag(c.get(), flags);
  Value value;
  size_t before = heapHeld;
  if (decodeMessage(c.get(), der, &value, decode) != 0) {
    rtErrPrint(&c.get()->errInfo);
    return state.SkipWithError("decode failed");
  }
  size_t held = heapHeld - before;
  rtMemHeapReset(&c.get()->memHeap);
  for (auto _ : state) {
    benchmark::DoNotOptimize(decodeMessage(c.get(), der, &value, decode));
    rtMemHeapReset(&c.get()->memHeap);
  }
  reportHeap(state, held, der);
}

// The same decode, the value then released with its generated free function before the
// reset: what a caller that gives values back one by one pays.
template <class Value>
void decodeFreeLoop(benchmark::State& state, const Bytes& der, Decoder<Value> decode,
                    Freer<Value> release) {
  if (der.empty()) return state.SkipWithError("message not found");
  Context c;
  Value value;
  for (auto _ : state) {
    if (decodeMessage(c.get(), der, &value, decode) != 0) {
      return state.SkipWithError("decode failed");
    }
    release(c.get(), &value);
    rtMemHeapReset(&c.get()->memHeap);
  }
  state.SetBytesProcessed(state.iterations() * (int64_t)der.size());
}

// ---- OpenSSL's side -----------------------------------------------------------------------

template <class T>
using PeerDecoder = T* (*)(T**, const unsigned char**, long);
template <class T>
using PeerFreer = void (*)(T*);

template <class T>
void peerLoop(benchmark::State& state, const Bytes& der, PeerDecoder<T> decode, PeerFreer<T> free) {
  if (der.empty()) return state.SkipWithError("message not found");
  for (auto _ : state) {
    const unsigned char* p = der.data();
    T* value = decode(nullptr, &p, (long)der.size());
    if (!value) return state.SkipWithError("OpenSSL refused the message");
    free(value);
  }
  state.SetBytesProcessed(state.iterations() * (int64_t)der.size());
}

// ---- Certificate --------------------------------------------------------------------------

void DecodeCertificate_quillon(benchmark::State& state) {
  decodeLoop<ASN1T_Certificate>(state, readFile(kCertificate), asn1D_Certificate);
}

void DecodeCertificate_openssl(benchmark::State& state) {
  peerLoop<X509>(state, readFile(kCertificate), d2i_X509, X509_free);
}

// With fast copy, strings and open types point into the caller's message instead of being
// copied to the heap: the way to decode when the message outlives its values.
void DecodeCertificateFastCopy_quillon(benchmark::State& state) {
  decodeLoop<ASN1T_Certificate>(state, readFile(kCertificate), asn1D_Certificate, ASN1FASTCOPY);
}

void DecodeCertificateFastCopy_openssl(benchmark::State& state) {
  peerLoop<X509>(state, readFile(kCertificate), d2i_X509, X509_free);
}

void DecodeFreeCertificate_quillon(benchmark::State& state) {
  decodeFreeLoop<ASN1T_Certificate>(state, readFile(kCertificate), asn1D_Certificate,
                                    asn1Free_Certificate);
}

void DecodeFreeCertificate_openssl(benchmark::State& state) {
  peerLoop<X509>(state, readFile(kCertificate), d2i_X509, X509_free);
}

// Encoding a decoded certificate whose serial number was changed, so that neither side can
// return octets it kept from the decode. OpenSSL keeps the encoding of the to-be-signed part
// even across X509_set_serialNumber; i2d_re_X509_tbs marks it modified for good, so every
// i2d_X509 after it encodes that part again (names and extension values stay cached octets).
const char kNewSerial[] = "0x7f01020304050607";

Bytes encodeOurs(ASN1CTXT* c, ASN1T_Certificate* value) {
  xe_setp(c, nullptr, 0);
  int len = asn1E_Certificate(c, value, ASN1EXPL);
  Bytes der;
  if (len > 0) der.assign(xe_getp(c), xe_getp(c) + len);
  rtMemHeapReset(&c->memHeap);
  return der;
}

X509* peerCertificateWithNewSerial(const Bytes& der) {
  const unsigned char* p = der.data();
  X509* cert = d2i_X509(nullptr, &p, (long)der.size());
  if (!cert) return nullptr;
  BIGNUM* bn = nullptr;
  BN_hex2bn(&bn, kNewSerial + 2);
  ASN1_INTEGER* serial = BN_to_ASN1_INTEGER(bn, nullptr);
  X509_set_serialNumber(cert, serial);
  i2d_re_X509_tbs(cert, nullptr);
  ASN1_INTEGER_free(serial);
  BN_free(bn);
  return cert;
}

Bytes encodePeer(X509* cert) {
  unsigned char* out = nullptr;
  int len = i2d_X509(cert, &out);
  Bytes der;
  if (len > 0) der.assign(out, out + len);
  OPENSSL_free(out);
  return der;
}

void EncodeCertificate_quillon(benchmark::State& state) {
  Bytes der = readFile(kCertificate);
  Context dc, ec;
  ASN1T_Certificate value;
  if (decodeMessage(dc.get(), der, &value, asn1D_Certificate) != 0) {
    return state.SkipWithError("decode failed");
  }
  value.tbsCertificate.serialNumber = kNewSerial;
  X509* peer = peerCertificateWithNewSerial(der);
  bool same = peer && encodeOurs(ec.get(), &value) == encodePeer(peer);
  X509_free(peer);
  if (!same) return state.SkipWithError("the two encoders wrote different octets");
  int len = 0;
  for (auto _ : state) {
    xe_setp(ec.get(), nullptr, 0);
    benchmark::DoNotOptimize(len = asn1E_Certificate(ec.get(), &value, ASN1EXPL));
    rtMemHeapReset(&ec.get()->memHeap);
  }
  state.counters["octets"] = len;
}

void EncodeCertificate_openssl(benchmark::State& state) {
  X509* cert = peerCertificateWithNewSerial(readFile(kCertificate));
  if (!cert) return state.SkipWithError("OpenSSL refused the certificate");
  int len = 0;
  for (auto _ : state) {
    unsigned char* out = nullptr;
    benchmark::DoNotOptimize(len = i2d_X509(cert, &out));
    OPENSSL_free(out);
  }
  X509_free(cert);
  state.counters["octets"] = len;
}

// ---- CRL ----------------------------------------------------------------------------------

void DecodeCrl_quillon(benchmark::State& state) {
  decodeLoop<ASN1T_CertificateList>(state, crlDer((int)state.range(0)), asn1D_CertificateList);
}

void DecodeCrl_openssl(benchmark::State& state) {
  peerLoop<X509_CRL>(state, crlDer((int)state.range(0)), d2i_X509_CRL, X509_CRL_free);
}

void DecodeFreeCrl_quillon(benchmark::State& state) {
  decodeFreeLoop<ASN1T_CertificateList>(state, crlDer((int)state.range(0)),
                                        asn1D_CertificateList, asn1Free_CertificateList);
}

void DecodeFreeCrl_openssl(benchmark::State& state) {
  peerLoop<X509_CRL>(state, crlDer((int)state.range(0)), d2i_X509_CRL, X509_CRL_free);
}

// ---- CMS and OCSP -------------------------------------------------------------------------

void DecodeSignedData_quillon(benchmark::State& state) {
  decodeLoop<ASN1T_ContentInfo>(state, readFile(kSignedData), asn1D_ContentInfo);
}

void DecodeSignedData_openssl(benchmark::State& state) {
  peerLoop<CMS_ContentInfo>(state, readFile(kSignedData), d2i_CMS_ContentInfo,
                            CMS_ContentInfo_free);
}

void DecodeOcspResponse_quillon(benchmark::State& state) {
  decodeLoop<ASN1T_OCSPResponse>(state, readFile(kOcspResponse), asn1D_OCSPResponse);
}

// d2i_OCSP_RESPONSE leaves the response bytes an OCTET STRING; ours decodes the
// BasicOCSPResponse inside through the object set, so the peer decodes it too.
void DecodeOcspResponse_openssl(benchmark::State& state) {
  Bytes der = readFile(kOcspResponse);
  if (der.empty()) return state.SkipWithError("message not found");
  for (auto _ : state) {
    const unsigned char* p = der.data();
    OCSP_RESPONSE* response = d2i_OCSP_RESPONSE(nullptr, &p, (long)der.size());
    OCSP_BASICRESP* basic = response ? OCSP_response_get1_basic(response) : nullptr;
    if (!basic) return state.SkipWithError("OpenSSL refused the response");
    OCSP_BASICRESP_free(basic);
    OCSP_RESPONSE_free(response);
  }
  state.SetBytesProcessed(state.iterations() * (int64_t)der.size());
}

}  // namespace

BENCHMARK(DecodeCertificate_quillon);
BENCHMARK(DecodeCertificate_openssl);
BENCHMARK(DecodeCertificateFastCopy_quillon);
BENCHMARK(DecodeCertificateFastCopy_openssl);
BENCHMARK(DecodeFreeCertificate_quillon);
BENCHMARK(DecodeFreeCertificate_openssl);
BENCHMARK(EncodeCertificate_quillon);
BENCHMARK(EncodeCertificate_openssl);
BENCHMARK(DecodeCrl_quillon)->Arg(10)->Arg(10000)->Arg(100000)->Unit(benchmark::kMicrosecond);
BENCHMARK(DecodeCrl_openssl)->Arg(10)->Arg(10000)->Arg(100000)->Unit(benchmark::kMicrosecond);
BENCHMARK(DecodeFreeCrl_quillon)->Arg(10)->Arg(10000)->Arg(100000)->Unit(benchmark::kMicrosecond);
BENCHMARK(DecodeFreeCrl_openssl)->Arg(10)->Arg(10000)->Arg(100000)->Unit(benchmark::kMicrosecond);
BENCHMARK(DecodeSignedData_quillon);
BENCHMARK(DecodeSignedData_openssl);
BENCHMARK(DecodeOcspResponse_quillon);
BENCHMARK(DecodeOcspResponse_openssl);

BENCHMARK_MAIN();
