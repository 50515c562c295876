/*
 * The BER message buffers: an encode buffer that control classes fill from the end towards the
 * start, and a decode buffer over a caller's message (or a file read into the context's heap).
 */
#ifndef QUILLON_ASN1BERCPPTYPES_H
#define QUILLON_ASN1BERCPPTYPES_H

#include "asn1CppTypes.h"

/* Common parent of the two BER buffers. */
class QN_API ASN1BERMessageBuffer : public ASN1MessageBuffer {
 protected:
  explicit ASN1BERMessageBuffer(Type bufferType) : ASN1MessageBuffer(bufferType) {}

 public:
  virtual ~ASN1BERMessageBuffer();
};

/* Encodes into a dynamic buffer that grows as needed, or into a fixed caller buffer where
 * running out of room is an encode error (-1). The encoder writes backwards: the message runs
 * from getMsgPtr() for the length that EncodeTo returned (also getMsgLen()). */
class QN_API ASN1BEREncodeBuffer : public ASN1BERMessageBuffer {
 public:
  /* A dynamic buffer; throws RTLError when the context cannot be made. */
  ASN1BEREncodeBuffer();
  /* The caller's size bytes, not owned; throws RTLError when the context cannot be made. */
  ASN1BEREncodeBuffer(ASN1OCTET* pMsgBuf, int msgBufLen);
  virtual ~ASN1BEREncodeBuffer();

  /* A new[] copy of buffer size - position bytes from getMsgPtr(): the message and the one
   * unused byte the backward encoder keeps at the buffer's end. Null when there is no buffer.
   * The caller delete[]s it. */
  virtual ASN1OCTET* getMsgCopy();
  /* The first byte of the encoding written so far. */
  virtual const ASN1OCTET* getMsgPtr();
  /* Empties the buffer for a fresh message, keeping its memory. */
  virtual void init();
  virtual int isA(Type bufferType);

  /* Attaches another buffer (null: dynamic) and starts empty; its status. */
  int setBuffer(ASN1OCTET* pMsgBuf, int msgBufLen);
  /* The length of the encoding written so far. */
  int getMsgLen();

  /* Encodes c into this buffer; throws ASN1RTLException with a non-zero status. */
  ASN1BEREncodeBuffer& operator<<(ASN1CType& c);
};

/* Decodes from a caller's message, which is neither copied nor owned and must outlive the
 * buffer and every value decoded with fast copy. The decode position carries over from one
 * decode to the next until another message is attached. */
class QN_API ASN1BERDecodeBuffer : public ASN1BERMessageBuffer {
 protected:
  const ASN1OCTET* mpMsgBuf;
  ASN1INT mMsgBufLen;
  ASN1BOOL mBufSetFlag;

 public:
  /* No message yet (setBuffer or readBinaryFile attaches one). */
  ASN1BERDecodeBuffer();
  /* Remembers the message; the context is pointed at it by the first decode (init). */
  ASN1BERDecodeBuffer(const ASN1OCTET* pMsgBuf, int msgBufLen);
  virtual ~ASN1BERDecodeBuffer();

  /* Points the context at the remembered message, unless it already is: decoding again after
   * init() continues where the last decode stopped instead of starting over. When the last
   * decode used up one message and more bytes follow it, the next message is attached, so
   * successive decodes read successive messages of one buffer (or file). */
  virtual void init();
  virtual int isA(Type bufferType);

  /* Attaches the message and rewinds, unless it is the one already attached (then 0 and the
   * position is kept). The status of reading its outer header (xd_setp). */
  int setBuffer(const ASN1OCTET* pMsgBuf, int msgBufLen);

  /* Reads the whole file into the context's heap and attaches it: 0, -40 (cannot open),
   * -41 (cannot read), -12, or the status of setBuffer. An empty file gives -2. */
  int readBinaryFile(const char* filePath);

  /* Finds the next element with the given tag (the constructed bit is ignored) by walking the
   * message in document order, into constructed values. firstFlag non-zero starts from the
   * message's beginning; zero continues after the element found last. On success the decode
   * position is at the element's tag, elemLen holds its length and the result points at its
   * tag. Null when no such element follows; elemLen is then unchanged and the position is
   * where the search began. */
  const ASN1OCTET* findElement(ASN1TagType tag, int& elemLen, int firstFlag = 1);

  /* The position of the next byte to decode. */
  int getByteIndex() { return (int)getCtxtPtr()->buffer.byteIndex; }

  /* Decodes c from this buffer; throws ASN1RTLException with a non-zero status. */
  ASN1BERDecodeBuffer& operator>>(ASN1CType& c);

 protected:
  void attachNextMessage();
};

#endif
