// An encoding context for one test: a dynamic buffer (or a static one of the test's choosing)
// attached with xe_setp, and the bytes written so far as a vector, for comparisons that print
// both sides in hex when they differ.
#ifndef QUILLON_TESTS_ENCODE_HARNESS_H
#define QUILLON_TESTS_ENCODE_HARNESS_H

#include <quillon/asn1berenc.h>
#include <quillon/rtContext.h>

#include <stdint.h>

#include <initializer_list>
#include <string>
#include <vector>

#include "test_context.h"

using Bytes = std::vector<uint8_t>;

inline Bytes bytesOf(std::initializer_list<int> octets) {
  Bytes out;
  for (int o : octets) out.push_back((uint8_t)o);
  return out;
}

inline std::string hexOf(const Bytes& b) {
  static const char digits[] = "0123456789ABCDEF";
  std::string s;
  for (uint8_t o : b) {
    if (!s.empty()) s += ' ';
    s += digits[o >> 4];
    s += digits[o & 15];
  }
  return s;
}

class EncodeHarness {
 public:
  // bufsiz 0: a dynamic buffer of the default size.
  explicit EncodeHarness(int bufsiz = 0) { xe_setp(ctx_.get(), nullptr, bufsiz); }
  // A caller's static buffer.
  EncodeHarness(ASN1OCTET* buf, int bufsiz) { xe_setp(ctx_.get(), buf, bufsiz); }

  ASN1CTXT* ctxt() { return ctx_.get(); }
  TestContext& context() { return ctx_; }

  // Everything written since xe_setp (the encoding runs to the buffer's second-last octet).
  Bytes written() {
    ASN1CTXT* c = ctx_.get();
    if (c->buffer.data == nullptr) return Bytes();
    const ASN1OCTET* p = xe_getp(c);
    const ASN1OCTET* end = c->buffer.data + c->buffer.size - 1;
    return Bytes(p, end);
  }
  std::string hex() { return hexOf(written()); }

 private:
  TestContext ctx_;
};

#endif
