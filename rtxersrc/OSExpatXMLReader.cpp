/* The XML reader over expat: parsing from memory, streams and files, and expat's events
 * handed to the content handler. */
#include <stdio.h>
#include <string.h>

#include <expat.h>

#include <quillon/asn1XerSax.h>

#include "rtErrLog.h"

namespace {

/* Room for expat's longest message with the line and column after it. */
constexpr int kErrorTextSize = 256;

/* expat calls C functions; these pass its events on to the reader's static members, which
 * never let an exception out. */
extern "C" void startElementTrampoline(void* userData, const XML_Char* name,
                                       const XML_Char** attrs) {
  OSExpatXMLReader::startElementCallback(userData, name, attrs);
}

extern "C" void endElementTrampoline(void* userData, const XML_Char* name) {
  OSExpatXMLReader::endElementCallback(userData, name);
}

extern "C" void charDataTrampoline(void* userData, const XML_Char* chars, int length) {
  OSExpatXMLReader::charDataCallback(userData, chars, length);
}

OSExpatXMLReader* readerOf(void* userData) { return static_cast<OSExpatXMLReader*>(userData); }

}  // namespace

OSXMLReader::~OSXMLReader() {}

OSExpatXMLReader::OSExpatXMLReader()
    : mpParser(XML_ParserCreate(nullptr)),
      mpContentHandler(nullptr),
      mpErrorHandler(nullptr),
      mpErrorInfo(nullptr),
      mDepth(0),
      mUsed(false) {
  if (!mpParser) throw OSRTSAXExceptionImpl("");
}

OSExpatXMLReader::~OSExpatXMLReader() { XML_ParserFree(mpParser); }

void OSExpatXMLReader::release() { delete this; }

void OSExpatXMLReader::setContentHandler(OSXMLContentHandler* handler) {
  mpContentHandler = handler;
  attachCallbacks();
}

void OSExpatXMLReader::setErrorHandler(OSXMLErrorHandler* handler) { mpErrorHandler = handler; }

void OSExpatXMLReader::setErrorInfoHandler(OSXMLErrorInfo* errorInfo) {
  mpErrorInfo = errorInfo;
  if (errorInfo) errorInfo->resetErrorInfo();
}

void OSExpatXMLReader::attachCallbacks() {
  XML_SetUserData(mpParser, this);
  XML_SetElementHandler(mpParser, startElementTrampoline, endElementTrampoline);
  XML_SetCharacterDataHandler(mpParser, charDataTrampoline);
}

/* expat takes one document per parser: a second parse starts from a reset parser, which has
 * also forgotten its callbacks. */
void OSExpatXMLReader::beginDocument() {
  if (mUsed) {
    XML_ParserReset(mpParser, nullptr);
    attachCallbacks();
  }
  mUsed = true;
  mDepth = 0;
  mPending = nullptr;
  if (mpContentHandler) mpContentHandler->startDocument();
}

int OSExpatXMLReader::finishDocument() {
  if (mpContentHandler) mpContentHandler->endDocument();
  return 0;
}

int OSExpatXMLReader::parse(const char* buffer, int length) {
  beginDocument();
  if (XML_Parse(mpParser, buffer, length, XML_TRUE) == XML_STATUS_ERROR) throwParseFailure();
  return finishDocument();
}

/* The stream is read into expat's own buffer a piece at a time, so that only the piece being
 * parsed (and what expat keeps of an unfinished token) is ever held. */
int OSExpatXMLReader::parse(OSCInputStream& inputStream) {
  beginDocument();
  for (;;) {
    void* piece = XML_GetBuffer(mpParser, kStreamChunk);
    if (!piece) throwParseFailure();
    const long count = inputStream.read(static_cast<ASN1OCTET*>(piece), kStreamChunk);
    const XML_Bool last = count == 0 ? XML_TRUE : XML_FALSE;
    if (XML_ParseBuffer(mpParser, static_cast<int>(count), last) == XML_STATUS_ERROR) {
      throwParseFailure();
    }
    if (last) return finishDocument();
  }
}

int OSExpatXMLReader::parse(const char* fileName) {
  OSCFileInputStream in(fileName);
  return parse(in);
}

/* A handler's exception was kept by the callback that caught it and comes out now, unchanged;
 * otherwise the failure is expat's own. */
void OSExpatXMLReader::throwParseFailure() {
  if (mPending) std::rethrow_exception(mPending);
  char text[kErrorTextSize];
  const char* message =
      EXML_ErrorString(mpParser, XML_GetErrorCode(mpParser), text, kErrorTextSize);
  if (mpErrorHandler) {
    mpErrorHandler->fatalError(message, static_cast<int>(XML_GetCurrentLineNumber(mpParser)),
                               static_cast<int>(XML_GetCurrentColumnNumber(mpParser)));
  }
  throw OSRTSAXExceptionImpl(message);
}

void OSExpatXMLReader::throwTooDeep() {
  if (mpContext) LOG_RTERR(mpContext->getPtr(), ASN_E_TOODEEP);
  if (mpErrorInfo) mpErrorInfo->setErrorInfo(ASN_E_TOODEEP, QN_MODULE, __LINE__);
  throw OSRTSAXExceptionImpl(ASN_E_TOODEEP, QN_MODULE, __LINE__);
}

template <typename Event>
void OSExpatXMLReader::dispatch(Event event) {
  if (mPending || !mpContentHandler) return;
  try {
    event();
  } catch (...) {
    mPending = std::current_exception();
    XML_StopParser(mpParser, XML_FALSE);
  }
}

void OSExpatXMLReader::startElementCallback(void* userData, const char* name,
                                            const char** attrs) {
  OSExpatXMLReader* reader = readerOf(userData);
  reader->dispatch([=] {
    if (++reader->mDepth > OSXML_K_MAXDEPTH) reader->throwTooDeep();
    reader->mpContentHandler->startElement(OSXMLString::zeroLenString(), name, name, attrs);
  });
}

void OSExpatXMLReader::endElementCallback(void* userData, const char* name) {
  OSExpatXMLReader* reader = readerOf(userData);
  reader->dispatch([=] {
    reader->mDepth--;
    reader->mpContentHandler->endElement(OSXMLString::zeroLenString(), name, name);
  });
}

void OSExpatXMLReader::charDataCallback(void* userData, const char* chars, int length) {
  OSExpatXMLReader* reader = readerOf(userData);
  reader->dispatch([=] {
    reader->mpContentHandler->characters(chars, static_cast<unsigned int>(length));
  });
}

OSXMLReader* saxCreateXmlReader(ASN1CtxtPtr ctxt, OSXMLContentHandler* handler,
                                OSXMLErrorInfo* errorInfo) {
  OSExpatXMLReader* reader = new OSExpatXMLReader();
  reader->setContext(ctxt);
  reader->setContentHandler(handler);
  reader->setErrorInfoHandler(errorInfo);
  return reader;
}

const char* EXML_ErrorString(XML_ParserStruct* parser, int errorCode, char* buffer,
                             int bufferSize) {
  const char* text = XML_ErrorString(static_cast<XML_Error>(errorCode));
  if (!text || !parser || !buffer || bufferSize <= 0) return text;
  if (strlen(text) > static_cast<size_t>(bufferSize) + 1) return text;
  snprintf(buffer, static_cast<size_t>(bufferSize), "%s, line = %i, column = %i", text,
           static_cast<int>(XML_GetCurrentLineNumber(parser)),
           static_cast<int>(XML_GetCurrentColumnNumber(parser)));
  return buffer;
}
