/* The message-buffer interface's defaults, the context-owning message buffer and the
 * exceptions of the object layer. */
#include <quillon/asn1CppTypes.h>

#include "rtCppContext.h"

ASN1RTLException::~ASN1RTLException() {}

ASN1MessageBuffer::RTLError::~RTLError() {}

/* ---- ASN1MessageBufferIF ---------------------------------------------------------------- */

ASN1MessageBufferIF::~ASN1MessageBufferIF() {}

ASN1OCTET* ASN1MessageBufferIF::getMsgCopy() { return nullptr; }

const ASN1OCTET* ASN1MessageBufferIF::getMsgPtr() { return nullptr; }

void ASN1MessageBufferIF::init() {}

int ASN1MessageBufferIF::initBuffer(ASN1MemBuf&) { return ASN_E_NOTSUPP; }

int ASN1MessageBufferIF::initBuffer(unsigned short*) { return ASN_E_NOTSUPP; }

int ASN1MessageBufferIF::initBuffer(char*) { return ASN_E_NOTSUPP; }

/* ---- ASN1MessageBuffer ------------------------------------------------------------------ */

ASN1MessageBuffer::ASN1MessageBuffer(Type bufferType)
    : mpContext(qn::newContextObject()), mBufferType(bufferType) {}

ASN1MessageBuffer::~ASN1MessageBuffer() {}

ASN1CtxtPtr ASN1MessageBuffer::getContext() { return mpContext; }

ASN1CTXT* ASN1MessageBuffer::getCtxtPtr() { return mpContext->getPtr(); }

ASN1OCTET* ASN1MessageBuffer::getMsgCopy() { return nullptr; }

const ASN1OCTET* ASN1MessageBuffer::getMsgPtr() { return getCtxtPtr()->buffer.data; }

int ASN1MessageBuffer::initBuffer(ASN1MemBuf& membuf) {
  int length = 0;
  ASN1OCTET* data = rtMemBufGetData(&membuf, &length);
  return rtInitContextBuffer(getCtxtPtr(), data, length);
}

int ASN1MessageBuffer::initBuffer(unsigned short*) { return ASN_E_NOTSUPP; }

int ASN1MessageBuffer::initBuffer(char*) { return ASN_E_NOTSUPP; }
