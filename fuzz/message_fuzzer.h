// The body shared by the fuzz targets of the top-level PKI messages (fuzz/fuzz_<type>.cpp):
// each input is decoded as one message type. A refusal must be a negative status that the
// context's error record holds. An accepted value must re-encode; its DER must decode again
// and encode to the same octets (DER is canonical even when the input was BER), and a deep
// copy of the value must encode to them too. Check failures trap, with the library's error
// report on standard error, so libFuzzer reports them.
#ifndef QUILLON_FUZZ_MESSAGE_FUZZER_H
#define QUILLON_FUZZ_MESSAGE_FUZZER_H

#include <quillon/asn1berdec.h>
#include <quillon/asn1berenc.h>
#include <quillon/rtContext.h>

#include <stddef.h>
#include <stdint.h>
#include <stdio.h>

#include <vector>

namespace message_fuzzer {

using Octets = std::vector<uint8_t>;

// Larger inputs teach the fuzzer nothing the decoders' loops have not shown it already.
constexpr size_t kMaxInput = 0x100000;

// Stops with what went wrong and the library's error report, if it recorded one.
[[noreturn]] inline void fail(ASN1CTXT* c, const char* what) {
  const char* report = c->errInfo.status != 0 ? rtErrGetText(c) : nullptr;
  fprintf(stderr, "%s\n%s", what, report != nullptr ? report : "");
  __builtin_trap();
}

inline void check(ASN1CTXT* c, bool holds, const char* what) {
  if (!holds) fail(c, what);
}

// One context for one input; values declared after it are gone before it is freed, and the
// heap goes with it, so what ASan reports as leaked escaped the heap.
class Context {
 public:
  Context() : ok_(rtInitContext(&ctxt_, nullptr) == 0) {}
  ~Context() {
    if (ok_) rtFreeContext(&ctxt_);
  }
  Context(const Context&) = delete;
  Context& operator=(const Context&) = delete;

  bool ok() const { return ok_; }
  ASN1CTXT* get() { return &ctxt_; }

 private:
  ASN1CTXT ctxt_;
  bool ok_;
};

// A failed decode or encode must say why in the error record, with the status it returned
// and at least one location on the trace.
inline void checkRecorded(ASN1CTXT* c, int stat) {
  check(c, stat < 0, "a failure with a positive status");
  check(c, c->errInfo.status == stat && c->errInfo.stkx >= 1, "a refusal was not recorded");
}

template <typename T, typename Decode>
int decode(ASN1CTXT* c, const uint8_t* data, size_t size, T* value, Decode dec) {
  int stat = xd_setp(c, data, static_cast<int>(size), nullptr, nullptr);
  if (stat == 0) stat = dec(c, value, ASN1EXPL, 0);
  return stat;
}

// The value's encoding, which must succeed for any value a decoder accepted.
template <typename T, typename Encode>
Octets mustEncode(ASN1CTXT* c, T* value, Encode enc) {
  xe_setp(c, nullptr, 0);
  const int len = enc(c, value, ASN1EXPL);
  check(c, len > 0, "a decoded value does not encode");
  const ASN1OCTET* start = xe_getp(c);
  Octets der(start, start + len);
  xe_free(c);
  return der;
}

// first's DER (der) must decode again to a value with the same DER, and a copy of first must
// encode to it too.
template <typename T, typename Decode, typename Encode, typename Copy, typename Free>
void checkDer(ASN1CTXT* c, T* first, const Octets& der, Decode dec, Encode enc, Copy copy,
              Free release) {
  T again;
  check(c, decode(c, der.data(), der.size(), &again, dec) == 0, "the DER does not decode");
  check(c, c->buffer.byteIndex == der.size(), "the DER is not read to its end");
  check(c, mustEncode(c, &again, enc) == der, "the DER decodes to another value");
  release(c, &again);

  T duplicate;
  copy(c, first, &duplicate);
  check(c, mustEncode(c, &duplicate, enc) == der, "the copy encodes to other octets");
  release(c, &duplicate);
}

template <typename T, typename Decode, typename Encode, typename Copy, typename Free>
int fuzzMessage(const uint8_t* data, size_t size, Decode dec, Encode enc, Copy copy,
                Free release) {
  // An empty buffer means a stream of unknown size to the decoder, not an empty message.
  if (size == 0 || size > kMaxInput) return 0;
  Context ctxt;
  if (!ctxt.ok()) return 0;
  ASN1CTXT* c = ctxt.get();
  T first;
  const int stat = decode(c, data, size, &first, dec);
  if (stat != 0) {
    checkRecorded(c, stat);
  } else {
    const Octets der = mustEncode(c, &first, enc);
    checkDer(c, &first, der, dec, enc, copy, release);
  }
  release(c, &first);
  return 0;
}

}  // namespace message_fuzzer

// The libFuzzer entry point for one generated type, e.g. QN_MESSAGE_FUZZER(Certificate).
#define QN_MESSAGE_FUZZER(Type)                                                              \
  extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {                  \
    return message_fuzzer::fuzzMessage<ASN1T_##Type>(data, size, asn1D_##Type, asn1E_##Type, \
                                                     asn1Copy_##Type, asn1Free_##Type);      \
  }

#endif
