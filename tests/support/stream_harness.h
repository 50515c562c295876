// Streams for tests: a context with a memory stream over test bytes, a device that hands out
// its bytes a few at a time (as a pipe or socket does), and a temporary directory for files.
#ifndef QUILLON_TESTS_STREAM_HARNESS_H
#define QUILLON_TESTS_STREAM_HARNESS_H

#include <quillon/asn1Stream.h>
#include <quillon/rtMemHeap.h>
#include <quillon/rtStream.h>

#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "test_context.h"

using StreamBytes = std::vector<unsigned char>;

// A buffered input stream over a copy of the bytes given.
class MemoryInput {
 public:
  explicit MemoryInput(const StreamBytes& bytes) : bytes_(bytes.empty() ? 1 : bytes.size()) {
    if (!bytes.empty()) memcpy(bytes_.data(), bytes.data(), bytes.size());
    rtStreamBufInit(ctx_.get());
    rtStreamMemoryAttach(ctx_.get(), bytes_.data(), bytes.size(), OSRTSTRMF_INPUT);
  }
  ASN1CTXT* ctxt() { return ctx_.get(); }
  TestContext& context() { return ctx_; }
  long pos() { return rtStreamBufGetPos(ctx_.get()); }

 private:
  StreamBytes bytes_;
  TestContext ctx_;
};

// A buffered output stream into memory of its own; bytes() flushes what is staged first.
class MemoryOutput {
 public:
  MemoryOutput() {
    rtStreamBufInit(ctx_.get());
    rtStreamMemoryCreate(ctx_.get(), OSRTSTRMF_OUTPUT);
  }
  ASN1CTXT* ctxt() { return ctx_.get(); }
  TestContext& context() { return ctx_; }
  StreamBytes bytes() {
    size_t n = 0;
    const ASN1OCTET* p = rtStreamMemoryGetBuffer(ctx_.get(), &n);
    return p ? StreamBytes(p, p + n) : StreamBytes();
  }

 private:
  TestContext ctx_;
};

// An input device serving at most `step` bytes per read, so that every refill loop and every
// header split across reads is exercised. Installed on a context's stream record by hand,
// the way the device functions install theirs.
class TrickleDevice {
 public:
  TrickleDevice(const StreamBytes& bytes, size_t step) : bytes_(bytes), step_(step) {}

  void install(ASN1CTXT* pctxt) {
    rtStreamBufInit(pctxt);
    OSRTSTREAM* s = pctxt->pStream;
    s->read = read;
    s->close = close;
    s->device = this;
    s->flags |= OSRTSTRMF_INPUT;
  }
  int readCalls() const { return calls_; }

 private:
  static long read(void* device, ASN1OCTET* buf, size_t count) {
    TrickleDevice* d = static_cast<TrickleDevice*>(device);
    d->calls_++;
    size_t n = d->bytes_.size() - d->pos_;
    if (n > d->step_) n = d->step_;
    if (n > count) n = count;
    memcpy(buf, d->bytes_.data() + d->pos_, n);
    d->pos_ += n;
    return (long)n;
  }
  static int close(void*) { return 0; }

  StreamBytes bytes_;
  size_t step_;
  size_t pos_ = 0;
  int calls_ = 0;
};

// Runs f and returns the status of the OSCStreamException it throws, 0 when it throws none.
template <typename F>
int thrownStatus(F f) {
  try {
    f();
  } catch (const OSCStreamException& e) {
    return e.getStatus();
  }
  return 0;
}

// A directory of its own under TMPDIR (or /tmp), removed with what it holds.
class TempDir {
 public:
  TempDir() {
    const char* base = getenv("TMPDIR");
    std::string pattern = std::string(base && *base ? base : "/tmp") + "/qnstrm.XXXXXX";
    std::vector<char> buf(pattern.begin(), pattern.end());
    buf.push_back('\0');
    if (mkdtemp(buf.data())) path_ = buf.data();
  }
  ~TempDir() {
    for (const std::string& f : files_) unlink(f.c_str());
    if (!path_.empty()) rmdir(path_.c_str());
  }
  TempDir(const TempDir&) = delete;
  TempDir& operator=(const TempDir&) = delete;

  std::string file(const std::string& name) {
    files_.push_back(path_ + "/" + name);
    return files_.back();
  }

 private:
  std::string path_;
  std::vector<std::string> files_;
};

#endif
