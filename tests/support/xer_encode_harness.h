// An XML encoding context for one test: a dynamic buffer (or the test's own static one)
// attached with xerSetEncBufPtr, and the text written so far as a string.
#ifndef QUILLON_TESTS_XER_ENCODE_HARNESS_H
#define QUILLON_TESTS_XER_ENCODE_HARNESS_H

#include <quillon/asn1xer.h>

#include <string>

#include "test_context.h"

class XerOut {
 public:
  // A dynamic buffer of initialSize bytes (0: the default size).
  explicit XerOut(bool canonical = false, int initialSize = 0) {
    xerSetEncBufPtr(ctx_.get(), nullptr, initialSize, canonical);
  }
  // The test's static buffer.
  XerOut(ASN1OCTET* buf, int size) { xerSetEncBufPtr(ctx_.get(), buf, size, 0); }

  ASN1CTXT* ctxt() { return ctx_.get(); }
  TestContext& context() { return ctx_; }

  // Everything written since the buffer was attached or rewound.
  std::string text() {
    ASN1CTXT* c = ctx_.get();
    const char* p = reinterpret_cast<const char*>(xerGetMsgPtr(c));
    return p ? std::string(p, (size_t)xerGetMsgLen(c)) : std::string();
  }
  // Starts over at the beginning of the buffer, as for a new document.
  void rewind() {
    ctx_.get()->buffer.byteIndex = 0;
    ctx_.get()->xmlLevel = 0;
    ctx_.get()->xmlState = XERSTART;
  }
  // Runs one writer on a rewound buffer and returns its text, or "status N" when it fails.
  template <typename Write>
  std::string written(Write write) {
    rewind();
    int stat = write(ctxt());
    return stat == 0 ? text() : "status " + std::to_string(stat);
  }

 private:
  TestContext ctx_;
};

#endif
