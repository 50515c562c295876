/* The stream classes over files and memory. */
#include <quillon/asn1Stream.h>

OSCFileInputStream::OSCFileInputStream(const char* pFilename) {
  check(rtStreamFileOpen(mpContext->getPtr(), pFilename, OSRTSTRMF_INPUT));
}

OSCFileInputStream::OSCFileInputStream(FILE* file) {
  check(rtStreamFileAttach(mpContext->getPtr(), file, OSRTSTRMF_INPUT));
}

OSCMemoryInputStream::OSCMemoryInputStream(ASN1OCTET* pMemBuf, ASN1UINT bufSize) {
  check(rtStreamMemoryAttach(mpContext->getPtr(), pMemBuf, bufSize, OSRTSTRMF_INPUT));
}

OSCFileOutputStream::OSCFileOutputStream(const char* pFilename) {
  check(rtStreamFileOpen(mpContext->getPtr(), pFilename, OSRTSTRMF_OUTPUT));
}

OSCFileOutputStream::OSCFileOutputStream(FILE* file) {
  check(rtStreamFileAttach(mpContext->getPtr(), file, OSRTSTRMF_OUTPUT));
}

OSCMemoryOutputStream::OSCMemoryOutputStream() {
  check(rtStreamMemoryCreate(mpContext->getPtr(), OSRTSTRMF_OUTPUT));
}

OSCMemoryOutputStream::OSCMemoryOutputStream(ASN1OCTET* pMemBuf, ASN1UINT bufSize) {
  check(rtStreamMemoryAttach(mpContext->getPtr(), pMemBuf, bufSize, OSRTSTRMF_OUTPUT));
}

ASN1OCTET* OSCMemoryOutputStream::getBufferPtr(ASN1UINT* pSize) {
  size_t length = 0;
  ASN1OCTET* data = rtStreamMemoryGetBuffer(mpContext->getPtr(), &length);
  if (pSize) *pSize = (ASN1UINT)length;
  return data;
}
