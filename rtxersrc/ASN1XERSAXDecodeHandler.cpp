/* The handler interfaces of the XML reader and the base of every XER decode handler. */
#include <quillon/asn1XerSax.h>

OSXMLContentHandler::~OSXMLContentHandler() {}

void OSXMLContentHandler::startDocument() {}

void OSXMLContentHandler::endDocument() {}

OSXMLErrorHandler::~OSXMLErrorHandler() {}

OSXMLErrorInfo::~OSXMLErrorInfo() {}

ASN1XERSAXDecodeHandler::ASN1XERSAXDecodeHandler()
    : mCurrState(0),
      mLevel(0),
      mStartLevel(0),
      mErrorStatus(0),
      mpErrorFile(nullptr),
      mErrorLine(0) {}

ASN1XERSAXDecodeHandler::~ASN1XERSAXDecodeHandler() {}

void ASN1XERSAXDecodeHandler::characters(const char*, unsigned int) {}

void ASN1XERSAXDecodeHandler::endElement(const char*, const char*, const char*) {}

void ASN1XERSAXDecodeHandler::startElement(const char*, const char*, const char*,
                                           const char* const*) {}

void ASN1XERSAXDecodeHandler::startDocument() {}

void ASN1XERSAXDecodeHandler::endDocument() {}

void ASN1XERSAXDecodeHandler::resetErrorInfo() { mErrorStatus = 0; }

void ASN1XERSAXDecodeHandler::setErrorInfo(int status, const char* file, int line) {
  mErrorStatus = status;
  mpErrorFile = file;
  mErrorLine = line;
}

int ASN1XERSAXDecodeHandler::getErrorInfo(int* status, const char** file, int* line) {
  if (mErrorStatus == 0) return 0;
  if (status) *status = mErrorStatus;
  if (file) *file = mpErrorFile;
  if (line) *line = mErrorLine;
  return 1;
}

void ASN1XERSAXDecodeHandler::finalize() {}

void ASN1XERSAXDecodeHandler::init(int level) {
  mCurrState = 0;
  mLevel = level;
  mStartLevel = level;
}

void ASN1XERSAXDecodeHandler::throwSAXException(int status, const char* file, int line) {
  setErrorInfo(status, file, line);
  throw OSRTSAXExceptionImpl(status, file, line);
}

/* Room for the NUL is made before msgBuf takes the text: appending it afterwards could
 * otherwise move the text that msgBuf now points at. */
void ASN1XERSAXDecodeHandler::finalizeMemBuf(ASN1MessageBufferIF* msgBuf, ASN1MemBuf& memBuf) {
  int stat = rtMemBufPreAllocate(&memBuf, 1);
  if (stat == 0) stat = msgBuf->initBuffer(memBuf);
  if (stat == 0) stat = rtMemBufSet(&memBuf, 0, 1);
  if (stat != 0) throw ASN1MessageBuffer::RTLError(stat);
}
