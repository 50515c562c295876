/* The XER encode buffer: the context's forward buffer seen as an object. */
#include <string.h>

#include <quillon/asn1XerCppTypes.h>

namespace {

void attachOrThrow(ASN1CTXT* pctxt, ASN1OCTET* buf, int size, ASN1OCTET canonical) {
  int stat = xerSetEncBufPtr(pctxt, buf, size, canonical);
  if (stat != 0) throw ASN1MessageBuffer::RTLError(stat);
}

}  // namespace

ASN1XEREncodeBuffer::ASN1XEREncodeBuffer() : ASN1XERMessageBuffer(XEREncode) {
  attachOrThrow(getCtxtPtr(), nullptr, 0, 0);
}

ASN1XEREncodeBuffer::ASN1XEREncodeBuffer(ASN1OCTET canonical)
    : ASN1XERMessageBuffer(XEREncode) {
  attachOrThrow(getCtxtPtr(), nullptr, 0, canonical);
}

ASN1XEREncodeBuffer::ASN1XEREncodeBuffer(ASN1OCTET canonical, ASN1CTXT* pctxt, int initBufSize)
    : ASN1XERMessageBuffer(XEREncode) {
  rtCtxtSetMsgMemHeap(getCtxtPtr(), pctxt);
  attachOrThrow(getCtxtPtr(), nullptr, initBufSize, canonical);
}

ASN1XEREncodeBuffer::ASN1XEREncodeBuffer(ASN1OCTET* pMsgBuf, int msgBufLen)
    : ASN1XERMessageBuffer(XEREncode) {
  attachOrThrow(getCtxtPtr(), pMsgBuf, msgBufLen, 0);
}

ASN1XEREncodeBuffer::ASN1XEREncodeBuffer(ASN1OCTET* pMsgBuf, int msgBufLen, ASN1OCTET canonical,
                                         ASN1OCTET openType)
    : ASN1XERMessageBuffer(XEREncode) {
  attachOrThrow(getCtxtPtr(), pMsgBuf, msgBufLen, canonical);
  if (openType) rtCtxtSetFlag(getCtxtPtr(), ASN1XMLFRAG);
}

ASN1XEREncodeBuffer::~ASN1XEREncodeBuffer() {}

ASN1OCTET* ASN1XEREncodeBuffer::getMsgCopy() {
  const int len = getMsgLen();
  const ASN1OCTET* msg = getMsgPtr();
  if (!msg || len <= 0) return nullptr;
  ASN1OCTET* copy = new ASN1OCTET[(size_t)len + 1];
  memcpy(copy, msg, (size_t)len);
  copy[len] = 0;
  return copy;
}

/* A document left unfinished by a failed encode must not indent the next one. */
void ASN1XEREncodeBuffer::init() {
  ASN1CTXT* pctxt = getCtxtPtr();
  pctxt->buffer.byteIndex = 0;
  pctxt->xmlLevel = 0;
  pctxt->xmlState = XERSTART;
}

int ASN1XEREncodeBuffer::isA(Type bufferType) { return bufferType == XEREncode; }

int ASN1XEREncodeBuffer::getMsgLen() { return xerGetMsgLen(getCtxtPtr()); }

int ASN1XEREncodeBuffer::write(FILE* fp) {
  const ASN1OCTET* msg = getMsgPtr();
  const int len = getMsgLen();
  if (!fp || !msg || len <= 0) return 0;
  return (int)fwrite(msg, 1, (size_t)len, fp);
}

int ASN1XEREncodeBuffer::write(const char* filename) {
  FILE* fp = filename ? fopen(filename, "wb") : nullptr;
  if (!fp) return -1;
  const int count = write(fp);
  fclose(fp);
  return count;
}

ASN1XEREncodeBuffer& ASN1XEREncodeBuffer::operator<<(ASN1CType& c) {
  int stat = c.EncodeTo(*this);
  if (stat < 0) throw ASN1RTLException(stat);
  return *this;
}
