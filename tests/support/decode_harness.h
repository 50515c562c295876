// A decoding context over a copy of the test's octets in a heap block of exactly their size,
// so that a read one octet too far is an out-of-bounds read the sanitizer build reports,
// not a quiet look at whatever follows in a vector's spare capacity.
#ifndef QUILLON_TESTS_DECODE_HARNESS_H
#define QUILLON_TESTS_DECODE_HARNESS_H

#include <quillon/asn1berdec.h>
#include <quillon/rtContext.h>

#include <ctype.h>
#include <stdint.h>
#include <string.h>

#include <memory>
#include <string>
#include <vector>

#include "test_context.h"

using Octets = std::vector<uint8_t>;

// "30 80 04 01 41" or "30800401 41": hex digit pairs, spaces ignored.
inline Octets hexOctets(const std::string& text) {
  Octets out;
  int high = -1;
  for (char c : text) {
    if (isspace((unsigned char)c)) continue;
    int v = isdigit((unsigned char)c) ? c - '0' : (toupper((unsigned char)c) - 'A' + 10);
    if (high < 0) {
      high = v;
    } else {
      out.push_back((uint8_t)(high << 4 | v));
      high = -1;
    }
  }
  return out;
}

inline std::string hexText(const uint8_t* p, size_t n) {
  static const char digits[] = "0123456789ABCDEF";
  std::string s;
  for (size_t i = 0; i < n; ++i) {
    if (i) s += ' ';
    s += digits[p[i] >> 4];
    s += digits[p[i] & 15];
  }
  return s;
}

class DecodeHarness {
 public:
  explicit DecodeHarness(const Octets& octets) : DecodeHarness(octets.data(), octets.size()) {}
  explicit DecodeHarness(const std::string& hex) : DecodeHarness(hexOctets(hex)) {}
  DecodeHarness(const uint8_t* p, size_t n) : size_(n), data_(new ASN1OCTET[n ? n : 1]) {
    if (n) memcpy(data_.get(), p, n);
    rtInitContextBuffer(ctx_.get(), data_.get(), (int)n);
  }

  ASN1CTXT* ctxt() { return ctx_.get(); }
  TestContext& context() { return ctx_; }
  const ASN1OCTET* data() const { return data_.get(); }
  size_t size() const { return size_; }
  ASN1UINT pos() { return ctx_.get()->buffer.byteIndex; }
  bool constructedFlag() { return (ctx_.get()->flags & ASN1CONSTAG) != 0; }
  // Entries in the error record's trace.
  int errorDepth() { return ctx_.get()->errInfo.stkx; }

 private:
  size_t size_;
  std::unique_ptr<ASN1OCTET[]> data_;
  TestContext ctx_;
};

#endif
