/* The stream classes' root, their input and output sides, and the stream as message buffer. */
#include <quillon/asn1Stream.h>

#include "rtCppContext.h"

OSCStreamException::~OSCStreamException() {}

/* ---- OSCStream -------------------------------------------------------------------------- */

/* The default stream keeps read buffering underneath while its flag says unbuffered, so that
 * the decoders above it can look ahead whatever the flag. */
OSCStream::OSCStream() : mpContext(qn::newContextObject()), mBuffered(0) {
  check(rtStreamBufInit(mpContext->getPtr()));
}

OSCStream::OSCStream(ASN1OCTET buffered)
    : mpContext(qn::newContextObject()), mBuffered(buffered) {
  ASN1CTXT* pctxt = mpContext->getPtr();
  check(buffered ? rtStreamBufInit(pctxt) : rtStreamInit(pctxt));
}

OSCStream::~OSCStream() {}

long OSCStream::check(long stat) {
  if (stat < 0) throw OSCStreamException((int)stat);
  return stat;
}

int OSCStream::close() {
  ASN1CTXT* pctxt = mpContext->getPtr();
  return (int)check(mBuffered ? rtStreamBufClose(pctxt) : rtStreamClose(pctxt));
}

int OSCStream::flush() {
  ASN1CTXT* pctxt = mpContext->getPtr();
  return (int)check(mBuffered ? rtStreamBufFlush(pctxt) : rtStreamFlush(pctxt));
}

/* ---- Input and output sides ------------------------------------------------------------- */

long OSCInputStream::currentPos() { return check(rtStreamGetIOBytes(mpContext->getPtr())); }

long OSCInputStream::read(ASN1OCTET* pbuffer, ASN1UINT bufsize) {
  return check(rtStreamRead(mpContext->getPtr(), pbuffer, bufsize));
}

int OSCOutputStream::flush() { return (int)check(rtStreamFlush(mpContext->getPtr())); }

int OSCOutputStream::write(const ASN1OCTET* pdata, ASN1UINT size) {
  return (int)check(rtStreamWrite(mpContext->getPtr(), pdata, size));
}

/* ---- ASN1Stream ------------------------------------------------------------------------- */

ASN1CtxtPtr ASN1Stream::getContext() { return mpContext; }

ASN1CTXT* ASN1Stream::getCtxtPtr() { return mpContext->getPtr(); }

int ASN1Stream::isA(Type) { return 1; }
