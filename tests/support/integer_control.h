// A control class for one INTEGER, built the way generated control classes are (the buffer
// made current with setMsgBuf, init() before each decode), so that buffer and stream tests can
// run real encodes and decodes through the object layer without the generated code.
#ifndef QUILLON_TESTS_INTEGER_CONTROL_H
#define QUILLON_TESTS_INTEGER_CONTROL_H

#include <quillon/asn1CppTypes.h>
#include <quillon/asn1ber.h>

class IntegerControl : public ASN1CType {
 public:
  IntegerControl(ASN1MessageBufferIF& msgBuf, ASN1INT& value)
      : ASN1CType(msgBuf), value_(value) {}
  explicit IntegerControl(ASN1INT& value) : value_(value) {}

  int EncodeTo(ASN1MessageBufferIF& msgBuf) override {
    setMsgBuf(msgBuf);
    return xe_integer(msgBuf.getCtxtPtr(), &value_, ASN1EXPL);
  }
  int DecodeFrom(ASN1MessageBufferIF& msgBuf) override {
    setMsgBuf(msgBuf);
    msgBuf.init();
    return xd_integer(msgBuf.getCtxtPtr(), &value_, ASN1EXPL, 0);
  }

 private:
  ASN1INT& value_;
};

#endif
