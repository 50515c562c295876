/*
 * The XML encoding targets of the object layer: the common parent of the XER message buffers,
 * the encode buffer that control classes write a document into, and the output streams that
 * write it to a device as it is produced.
 */
#ifndef QUILLON_ASN1XERCPPTYPES_H
#define QUILLON_ASN1XERCPPTYPES_H

#ifndef __cplusplus
#error "asn1XerCppTypes.h declares the XER buffer classes; C programs use asn1xer.h"
#endif

#include <stdio.h>

#include "asn1CppTypes.h"
#include "asn1Stream.h"
#include "asn1xer.h"

/* Common parent of the XER encode and decode buffers. */
class QN_API ASN1XERMessageBuffer : public ASN1MessageBuffer {
 protected:
  explicit ASN1XERMessageBuffer(Type bufferType) : ASN1MessageBuffer(bufferType) {}

 public:
  virtual ~ASN1XERMessageBuffer();
};

/* A document written forward into a dynamic buffer that grows, or into the caller's fixed
 * buffer where running out of room is an encode error (-1). The text starts at getMsgPtr(),
 * runs for getMsgLen() bytes and, once the document is ended, is followed by a NUL. Each
 * constructor throws RTLError with the status when the buffer cannot be set up. */
class QN_API ASN1XEREncodeBuffer : public ASN1XERMessageBuffer {
 public:
  /* A dynamic buffer, indented layout. */
  ASN1XEREncodeBuffer();
  /* A dynamic buffer; canonical non-zero writes the document on one line (ASN1CANXER). */
  explicit ASN1XEREncodeBuffer(ASN1OCTET canonical);
  /* A dynamic buffer of initBufSize bytes (0: 16384) taken from pctxt's message heap, so the
   * document can live as long as that context; a null pctxt leaves the buffer's own heap. */
  ASN1XEREncodeBuffer(ASN1OCTET canonical, ASN1CTXT* pctxt, int initBufSize);
  /* The caller's msgBufLen bytes, not owned, indented layout. */
  ASN1XEREncodeBuffer(ASN1OCTET* pMsgBuf, int msgBufLen);
  /* The caller's buffer; openType non-zero writes a fragment (ASN1XMLFRAG): a value without
   * the XML declaration, to be embedded in another document. */
  ASN1XEREncodeBuffer(ASN1OCTET* pMsgBuf, int msgBufLen, ASN1OCTET canonical,
                      ASN1OCTET openType);
  virtual ~ASN1XEREncodeBuffer();

  /* A new[] copy of the text and its NUL (getMsgLen() + 1 bytes), or null when nothing has
   * been written. The caller delete[]s it. */
  virtual ASN1OCTET* getMsgCopy();
  /* Starts the next document at the beginning of the same buffer. */
  virtual void init();
  /* True only for XEREncode. */
  virtual int isA(Type bufferType);

  /* Bytes written so far. */
  int getMsgLen();
  /* Writes the text to fp; the count fwrite returns. */
  int write(FILE* fp);
  /* Creates (or truncates) the file and writes the text to it; the count written, or -1 when
   * the file cannot be opened. */
  int write(const char* filename);

  /* Encodes c into this buffer; throws ASN1RTLException with a negative status. */
  ASN1XEREncodeBuffer& operator<<(ASN1CType& c);
};

/* Writes XML to the stream's device as it is produced; every member throws
 * OSCStreamException with the status when the writer fails, and returns 0 otherwise. The
 * default object has no device: attach one to getCtxtPtr() (rtStreamMemoryCreate,
 * rtStreamFileAttach). Output is staged: flush() or close() passes the rest on, and so does
 * releasing the stream. */
class QN_API ASN1XEROutputStream : public ASN1Stream {
 protected:
  explicit ASN1XEROutputStream(ASN1OCTET buffered) : ASN1Stream(buffered) {}

 public:
  ASN1XEROutputStream() {}

  /* True only for XEREncode: a control class given this stream must write XML, not BER. */
  virtual int isA(Type bufferType);

  int encodeStartElement(const char* elemName, const char* attributes = nullptr);
  int encodeEndElement(const char* elemName);
  int encodeEmptyElement(const char* elemName, const char* attributes = nullptr);
  int encodeInt(ASN1INT value, const char* elemName = nullptr);
  int encodeInt64(ASN1INT64 value, const char* elemName = nullptr);
  int encodeUInt(ASN1UINT value, const char* elemName = nullptr);
  int encodeUInt64(ASN1UINT64 value, const char* elemName = nullptr);
  int encodeBigInt(const char* value, const char* elemName = nullptr);
  int encodeBool(ASN1BOOL value, const char* elemName = nullptr);
  int encodeReal(ASN1REAL value, const char* elemName = nullptr);
  int encodeBitStr(const ASN1OCTET* data, ASN1UINT numbits, const char* elemName = nullptr,
                   ASN1StrType outputType = ASN1BIN);
  int encodeBitStr(const ASN1DynBitStr& value, const char* elemName = nullptr,
                   ASN1StrType outputType = ASN1BIN);
  int encodeOctStr(const ASN1OCTET* data, ASN1UINT numocts, const char* elemName = nullptr);
  int encodeOctStr(const ASN1DynOctStr& value, const char* elemName = nullptr);
  /* The element name is required (-30 without one). */
  int encodeCharStr(const char* value, const char* elemName);
  int encodeObjId(const ASN1OBJID& value, const char* elemName = nullptr);
  int encodeObjId64(const ASN1OID64& value, const char* elemName = nullptr);
  int encodeRelativeOID(const ASN1OBJID& value, const char* elemName = nullptr);
  int encodeNull(const char* elemName = nullptr);
  int encodeBMPStr(const Asn116BitCharString& value, const char* elemName = nullptr);
  int encodeUnivStr(const Asn132BitCharString& value, const char* elemName = nullptr);

  /* The control class's EncodeTo with this stream as its message buffer: a whole document
   * unless the context has ASN1XMLFRAG set. */
  int encodeObj(ASN1CType& c);
  ASN1XEROutputStream& operator<<(ASN1CType& c);
};

/* Writes XML to a file it creates by name (closed with the stream) or the caller's FILE. */
class QN_API ASN1XERFileOutputStream : public ASN1XEROutputStream {
 public:
  explicit ASN1XERFileOutputStream(const char* pFilename);
  explicit ASN1XERFileOutputStream(FILE* file);
};

#endif
