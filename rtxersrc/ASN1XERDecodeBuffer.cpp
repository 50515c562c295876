/* The input of an XML decode and the driver of the reader over it. */
#include <limits.h>

#include <quillon/asn1XerSax.h>

#include "rtErrLog.h"

ASN1XERDecodeBuffer::ASN1XERDecodeBuffer(const char* xmlFile)
    : ASN1XERMessageBuffer(XERDecode),
      mpXmlFile(xmlFile),
      mpMemBuf(nullptr),
      mpInputStream(nullptr),
      mMemBufLen(0),
      mInputKind(kFile) {}

ASN1XERDecodeBuffer::ASN1XERDecodeBuffer(const ASN1OCTET* msgbuf, ASN1UINT bufLen,
                                         ASN1OCTET openType, ASN1Context* pctxt)
    : ASN1XERMessageBuffer(XERDecode),
      mpXmlFile(nullptr),
      mpMemBuf(msgbuf),
      mpInputStream(nullptr),
      mMemBufLen(bufLen),
      mInputKind(kMemory) {
  /* An open type's text is decoded in the context of the message that carried it, so that the
   * values it yields live in that message's heap. */
  if (pctxt) mpContext = pctxt;
  if (openType) rtCtxtSetFlag(getCtxtPtr(), ASN1XMLFRAG);
}

ASN1XERDecodeBuffer::ASN1XERDecodeBuffer(OSCInputStream& inputStream, ASN1OCTET openType)
    : ASN1XERMessageBuffer(XERDecode),
      mpXmlFile(nullptr),
      mpMemBuf(nullptr),
      mpInputStream(&inputStream),
      mMemBufLen(0),
      mInputKind(kStream) {
  if (openType) rtCtxtSetFlag(getCtxtPtr(), ASN1XMLFRAG);
}

ASN1XERDecodeBuffer::~ASN1XERDecodeBuffer() {}

int ASN1XERDecodeBuffer::initBuffer(ASN1MemBuf& membuf) {
  int length = 0;
  const ASN1OCTET* text = rtMemBufGetData(&membuf, &length);
  return xerSetDecBufPtr(getCtxtPtr(), reinterpret_cast<const char*>(text), length);
}

int ASN1XERDecodeBuffer::initBuffer(char* str) { return xerSetDecBufPtr(getCtxtPtr(), str, -1); }

int ASN1XERDecodeBuffer::isA(Type bufferType) { return bufferType == XERDecode; }

void ASN1XERDecodeBuffer::throwSAXException(int status, const char* file, int line) {
  throw OSRTSAXExceptionImpl(status, file, line);
}

int ASN1XERDecodeBuffer::decodeXML(OSXMLReader* pReader) {
  ASN1CTXT* pctxt = getCtxtPtr();
  if (!pReader) return LOG_RTERR(pctxt, ASN_E_INVPARAM);
  switch (mInputKind) {
    case kMemory:
      /* The parser counts in int; a larger block cannot be handed to it in one piece. */
      if (mMemBufLen > static_cast<ASN1UINT>(INT_MAX)) return LOG_RTERR(pctxt, ASN_E_INVLEN);
      pReader->parse(reinterpret_cast<const char*>(mpMemBuf), static_cast<int>(mMemBufLen));
      break;
    case kStream:
      pReader->parse(*mpInputStream);
      break;
    case kFile:
      pReader->parse(mpXmlFile);
      break;
  }
  return pctxt->errInfo.status;
}
