/* The BER encode buffer: the context's reverse buffer seen as an object. */
#include <string.h>

#include <quillon/asn1BerCppTypes.h>
#include <quillon/asn1berenc.h>

ASN1BERMessageBuffer::~ASN1BERMessageBuffer() {}

namespace {

void attachOrThrow(ASN1CTXT* pctxt, ASN1OCTET* buf, int size) {
  int stat = xe_setp(pctxt, buf, size);
  if (stat != 0) throw ASN1MessageBuffer::RTLError(stat);
}

}  // namespace

ASN1BEREncodeBuffer::ASN1BEREncodeBuffer() : ASN1BERMessageBuffer(BEREncode) {
  attachOrThrow(getCtxtPtr(), nullptr, 0);
}

ASN1BEREncodeBuffer::ASN1BEREncodeBuffer(ASN1OCTET* pMsgBuf, int msgBufLen)
    : ASN1BERMessageBuffer(BEREncode) {
  attachOrThrow(getCtxtPtr(), pMsgBuf, msgBufLen);
}

ASN1BEREncodeBuffer::~ASN1BEREncodeBuffer() {}

int ASN1BEREncodeBuffer::getMsgLen() {
  const ASN1BUFFER& b = getCtxtPtr()->buffer;
  return b.data && b.size > 0 ? (int)(b.size - 1 - b.byteIndex) : 0;
}

/* The copy runs to the end of the buffer, the unused byte included, as callers of this
 * buffer have always received it; they take the message's length from the encode result. */
ASN1OCTET* ASN1BEREncodeBuffer::getMsgCopy() {
  const ASN1OCTET* msg = xe_getp(getCtxtPtr());
  if (!msg || getMsgLen() <= 0) return nullptr;
  const ASN1BUFFER& b = getCtxtPtr()->buffer;
  ASN1UINT length = b.size - b.byteIndex;
  ASN1OCTET* copy = new ASN1OCTET[length];
  memcpy(copy, msg, length);
  return copy;
}

const ASN1OCTET* ASN1BEREncodeBuffer::getMsgPtr() { return xe_getp(getCtxtPtr()); }

void ASN1BEREncodeBuffer::init() {
  ASN1BUFFER& b = getCtxtPtr()->buffer;
  b.byteIndex = b.size > 0 ? b.size - 1 : 0;
}

int ASN1BEREncodeBuffer::isA(Type bufferType) { return bufferType == BEREncode; }

int ASN1BEREncodeBuffer::setBuffer(ASN1OCTET* pMsgBuf, int msgBufLen) {
  return xe_setp(getCtxtPtr(), pMsgBuf, msgBufLen);
}

/* Encoders return the length they wrote, so only a negative result is a failure. */
ASN1BEREncodeBuffer& ASN1BEREncodeBuffer::operator<<(ASN1CType& c) {
  int stat = c.EncodeTo(*this);
  if (stat < 0) throw ASN1RTLException(stat);
  return *this;
}
