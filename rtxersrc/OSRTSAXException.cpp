/* The exception that carries a parsing or decoding failure out of an XML parse. */
#include <quillon/asn1XerSax.h>

OSRTSAXException::~OSRTSAXException() {}

OSRTSAXExceptionImpl::OSRTSAXExceptionImpl() : OSRTSAXExceptionImpl(nullptr, 0, nullptr, 0) {}

OSRTSAXExceptionImpl::OSRTSAXExceptionImpl(const char* message)
    : OSRTSAXExceptionImpl(message, 0, nullptr, 0) {}

OSRTSAXExceptionImpl::OSRTSAXExceptionImpl(int status, const char* file, int line)
    : OSRTSAXExceptionImpl(nullptr, status, file, line) {}

OSRTSAXExceptionImpl::OSRTSAXExceptionImpl(const char* message, int status, const char* file,
                                           int line)
    : mpMessage(OSXMLString::replicate(message)),
      mStatus(status),
      mpSrcFileName(OSXMLString::replicate(file)),
      mSrcLineNum(line) {}

OSRTSAXExceptionImpl::OSRTSAXExceptionImpl(const OSRTSAXExceptionImpl& other)
    : OSRTSAXExceptionImpl(other.mpMessage, other.mStatus, other.mpSrcFileName,
                           other.mSrcLineNum) {}

OSRTSAXExceptionImpl& OSRTSAXExceptionImpl::operator=(const OSRTSAXExceptionImpl& other) {
  if (this == &other) return *this;
  char* message = OSXMLString::replicate(other.mpMessage);
  char* file = OSXMLString::replicate(other.mpSrcFileName);
  delete[] mpMessage;
  delete[] mpSrcFileName;
  mpMessage = message;
  mpSrcFileName = file;
  mStatus = other.mStatus;
  mSrcLineNum = other.mSrcLineNum;
  return *this;
}

OSRTSAXExceptionImpl::~OSRTSAXExceptionImpl() {
  delete[] mpMessage;
  delete[] mpSrcFileName;
}

const char* OSRTSAXExceptionImpl::getMessage() const { return mpMessage; }

int OSRTSAXExceptionImpl::getStatus() const { return mStatus; }

const char* OSRTSAXExceptionImpl::getSrcFileName() const { return mpSrcFileName; }

int OSRTSAXExceptionImpl::getSrcLineNum() const { return mSrcLineNum; }

OSRTSAXExceptionImpl* OSRTSAXExceptionImpl::createSAXException() {
  return new OSRTSAXExceptionImpl();
}

OSRTSAXExceptionImpl* OSRTSAXExceptionImpl::createSAXException(const char* message, int status,
                                                               const char* file, int line) {
  return new OSRTSAXExceptionImpl(message, status, file, line);
}
