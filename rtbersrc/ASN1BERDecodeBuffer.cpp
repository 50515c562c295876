/* The BER decode buffer: a caller's message (or a file's contents) attached to the context,
 * and a search for elements by tag. */
#include <quillon/asn1BerCppTypes.h>
#include <quillon/rtUtil.h>

#include "xd_common.h"

using namespace qn::xd;

ASN1BERDecodeBuffer::ASN1BERDecodeBuffer()
    : ASN1BERMessageBuffer(BERDecode), mpMsgBuf(nullptr), mMsgBufLen(0), mBufSetFlag(0) {}

ASN1BERDecodeBuffer::ASN1BERDecodeBuffer(const ASN1OCTET* pMsgBuf, int msgBufLen)
    : ASN1BERMessageBuffer(BERDecode), mpMsgBuf(pMsgBuf), mMsgBufLen(msgBufLen), mBufSetFlag(0) {}

ASN1BERDecodeBuffer::~ASN1BERDecodeBuffer() {}

/* Control classes call init() before each decode; keeping the position when the message is
 * already attached lets successive decodes read successive values of one buffer. */
void ASN1BERDecodeBuffer::init() {
  setBuffer(mpMsgBuf, mMsgBufLen);
  attachNextMessage();
}

/* Attaching a message of definite length narrows the context's buffer to it, so the bytes
 * behind it are only reachable by attaching them anew once it has been read. */
void ASN1BERDecodeBuffer::attachNextMessage() {
  ASN1CTXT* pctxt = getCtxtPtr();
  const ASN1BUFFER& b = pctxt->buffer;
  uintptr_t start = reinterpret_cast<uintptr_t>(mpMsgBuf);
  uintptr_t window = reinterpret_cast<uintptr_t>(b.data);
  if (!mpMsgBuf || mMsgBufLen <= 0 || b.byteIndex != b.size) return;
  if (window < start || window - start > (uintptr_t)mMsgBufLen) return;
  uintptr_t used = window - start + b.size;
  if (used >= (uintptr_t)mMsgBufLen) return;
  xd_setp(pctxt, mpMsgBuf + used, mMsgBufLen - (int)used, nullptr, nullptr);
}

int ASN1BERDecodeBuffer::isA(Type bufferType) { return bufferType == BERDecode; }

int ASN1BERDecodeBuffer::setBuffer(const ASN1OCTET* pMsgBuf, int msgBufLen) {
  if (mBufSetFlag && pMsgBuf == mpMsgBuf && msgBufLen == mMsgBufLen) return 0;
  mpMsgBuf = pMsgBuf;
  mMsgBufLen = msgBufLen;
  mBufSetFlag = 1;
  return xd_setp(getCtxtPtr(), pMsgBuf, msgBufLen, nullptr, nullptr);
}

int ASN1BERDecodeBuffer::readBinaryFile(const char* filePath) {
  ASN1CTXT* pctxt = getCtxtPtr();
  ASN1OCTET* data = nullptr;
  int length = 0;
  int stat = rtFileReadBinary(pctxt, filePath, &data, &length);
  if (stat != 0) return stat;
  /* A length of 0 would ask the decoder for a message of unknown size. */
  if (length == 0) return LOG_RTERR(pctxt, ASN_E_ENDOFBUF);
  return setBuffer(data, length);
}

namespace {

bool sameTag(ASN1TagType a, ASN1TagType b) { return ((a ^ b) & ~TM_CONS) == 0; }

/* The end of the outermost element. An indefinite outer length leaves the buffer's size at
 * what the caller gave (possibly "unknown"), so the search finds the end-of-contents instead
 * of walking on into whatever follows the message. */
ASN1UINT messageEnd(const ASN1CTXT* pctxt) {
  const ASN1BUFFER& b = pctxt->buffer;
  if (!(pctxt->flags & ASN1INDEFLEN)) return b.size;
  ASN1UINT end = 0;
  return skipElement(b.data, b.size, &end) == 0 ? end : b.size;
}

/* Reads the header at *idx_p and moves to where a document-order walk goes next: into a
 * constructed element, past a primitive one. */
int stepFrom(const ASN1OCTET* data, ASN1UINT end, ASN1UINT* idx_p, ASN1TagType* tag_p,
             int* len_p) {
  ASN1UINT idx = *idx_p;
  int stat = readHeaderAt(data, end, &idx, tag_p, len_p);
  if (stat < 0) return stat;
  *idx_p = (*tag_p & TM_CONS) ? idx : idx + (ASN1UINT)*len_p;
  return 0;
}

/* Walks from *idx_p to the first element with the tag; on success *idx_p is its tag's
 * position. Malformed data ends the walk like the end of the message does. */
bool findFrom(const ASN1OCTET* data, ASN1UINT end, ASN1TagType tag, ASN1UINT* idx_p,
              int* len_p) {
  ASN1UINT idx = *idx_p;
  while (idx < end) {
    ASN1UINT at = idx;
    ASN1TagType parsed;
    int len;
    if (stepFrom(data, end, &idx, &parsed, &len) < 0) return false;
    if (sameTag(parsed, tag)) {
      *idx_p = at;
      *len_p = len;
      return true;
    }
  }
  return false;
}

}  // namespace

const ASN1OCTET* ASN1BERDecodeBuffer::findElement(ASN1TagType tag, int& elemLen,
                                                   int firstFlag) {
  ASN1CTXT* pctxt = getCtxtPtr();
  if (firstFlag) {
    mBufSetFlag = 1;
    if (xd_setp(pctxt, mpMsgBuf, mMsgBufLen, nullptr, nullptr) != 0) return nullptr;
  }
  const ASN1BUFFER& b = pctxt->buffer;
  ASN1UINT end = messageEnd(pctxt);
  ASN1UINT idx = b.byteIndex;
  if (!firstFlag) {
    /* Continuing: the element found last is where the walk resumes, not a match again. */
    ASN1TagType current;
    int currentLen;
    if (stepFrom(b.data, end, &idx, &current, &currentLen) < 0) return nullptr;
  }
  int len;
  if (!findFrom(b.data, end, tag, &idx, &len)) return nullptr;
  pctxt->buffer.byteIndex = idx;
  elemLen = len;
  return b.data + idx;
}

ASN1BERDecodeBuffer& ASN1BERDecodeBuffer::operator>>(ASN1CType& c) {
  int stat = c.DecodeFrom(*this);
  if (stat != 0) throw ASN1RTLException(stat);
  return *this;
}
