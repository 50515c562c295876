// A codec context for one test: initialised on construction, released (heap included) on
// destruction, with accessors for what the tests inspect in the error record.
#ifndef QUILLON_TESTS_TEST_CONTEXT_H
#define QUILLON_TESTS_TEST_CONTEXT_H

#include <quillon/rtContext.h>

#include <string>

class TestContext {
 public:
  TestContext() { rtInitContext(&ctxt_, nullptr); }
  ~TestContext() { rtFreeContext(&ctxt_); }
  TestContext(const TestContext&) = delete;
  TestContext& operator=(const TestContext&) = delete;

  ASN1CTXT* get() { return &ctxt_; }

  // The status of the first error recorded since the last reset (0 when none).
  int errorStatus() const { return ctxt_.errInfo.status; }
  // The module recorded at the point of detection, "" when nothing is recorded.
  std::string errorModule() const {
    return ctxt_.errInfo.stkx > 0 ? ctxt_.errInfo.stack[0].module : "";
  }
  // The first error parameter, "" when there is none.
  std::string errorParm() const {
    return ctxt_.errInfo.parmcnt > 0 ? ctxt_.errInfo.parms[0] : "";
  }
  void resetError() { rtErrReset(&ctxt_.errInfo); }

 private:
  ASN1CTXT ctxt_{};
};

#endif
