/*
 * Byte streams as objects: the stream root holding a context with a stream attached, input and
 * output streams over files and memory, and ASN1Stream, the stream that also serves as a
 * message buffer for control classes. Every operation that fails throws OSCStreamException
 * with the status; the details are in the context's error record.
 *
 * Virtual operations are declared in their slot order.
 */
#ifndef QUILLON_ASN1STREAM_H
#define QUILLON_ASN1STREAM_H

#ifndef __cplusplus
#error "asn1Stream.h declares the stream classes; C programs use rtStream.h"
#endif

#include "asn1CppTypes.h"
#include "rtStream.h"

/* A failed stream operation; carries its status. */
class QN_API OSCStreamException : public ASN1RTLException {
 public:
  explicit OSCStreamException(int status) : ASN1RTLException(status) {}
  virtual ~OSCStreamException();
};

/* Root of the stream classes: a context of its own with a stream record attached. The stream
 * and its device are released with the context when the last holder of the context lets go;
 * output still staged then is written first. */
class QN_API OSCStream {
 protected:
  ASN1CtxtPtr mpContext;
  ASN1OCTET mBuffered;

  /* A stream with read buffering underneath (rtStreamBufInit) whose flag says unbuffered:
   * flush and close then go to the device directly. */
  OSCStream();
  /* Buffered (rtStreamBufInit) or not (rtStreamInit) as the flag says. */
  explicit OSCStream(ASN1OCTET buffered);

  /* Throws OSCStreamException for a negative status; returns it otherwise. */
  static long check(long stat);

 public:
  OSCStream(const OSCStream&) = delete;
  OSCStream& operator=(const OSCStream&) = delete;
  virtual ~OSCStream();
  /* Closes the device (flushing output first); a second close throws with -32. */
  virtual int close();
  /* Writes staged output and flushes the device. */
  virtual int flush();

  ASN1OCTET isBuffered() const { return mBuffered; }
};

/* A stream that is read from. */
class QN_API OSCInputStream : public OSCStream {
 protected:
  OSCInputStream() {}
  explicit OSCInputStream(ASN1OCTET buffered) : OSCStream(buffered) {}

 public:
  /* Bytes read from the device so far. */
  virtual long currentPos();
  /* Up to bufsize bytes from the device: the number read, 0 at the end. */
  virtual long read(ASN1OCTET* pbuffer, ASN1UINT bufsize);
};

/* A stream that is written to. */
class QN_API OSCOutputStream : public OSCStream {
 protected:
  OSCOutputStream() {}
  explicit OSCOutputStream(ASN1OCTET buffered) : OSCStream(buffered) {}

 public:
  virtual int flush();
  /* All size bytes, or a throw. */
  virtual int write(const ASN1OCTET* pdata, ASN1UINT size);
};

/* Reads a file: one it opens by name (closed with the stream) or the caller's open FILE. */
class QN_API OSCFileInputStream : public OSCInputStream {
 public:
  explicit OSCFileInputStream(const char* pFilename);
  explicit OSCFileInputStream(FILE* file);
};

/* Reads the caller's bytes, which must outlive the stream. */
class QN_API OSCMemoryInputStream : public OSCInputStream {
 public:
  OSCMemoryInputStream(ASN1OCTET* pMemBuf, ASN1UINT bufSize);
};

/* Writes a file: one it creates by name (closed with the stream) or the caller's open FILE. */
class QN_API OSCFileOutputStream : public OSCOutputStream {
 public:
  explicit OSCFileOutputStream(const char* pFilename);
  explicit OSCFileOutputStream(FILE* file);
};

/* Writes to memory: a buffer of its own that grows on the context's heap (and goes with the
 * stream), or the caller's fixed buffer, where a write that does not fit throws with -1. */
class QN_API OSCMemoryOutputStream : public OSCOutputStream {
 public:
  OSCMemoryOutputStream();
  OSCMemoryOutputStream(ASN1OCTET* pMemBuf, ASN1UINT bufSize);
  /* The bytes written so far and, when pSize is given, their number. */
  ASN1OCTET* getBufferPtr(ASN1UINT* pSize = nullptr);
};

/* A stream that control classes can encode into or decode from, as from a message buffer. */
class QN_API ASN1Stream : public OSCStream, public ASN1MessageBufferIF {
 protected:
  ASN1Stream() {}
  explicit ASN1Stream(ASN1OCTET buffered) : OSCStream(buffered) {}

 public:
  virtual ASN1CtxtPtr getContext();
  virtual ASN1CTXT* getCtxtPtr();
  /* True for every kind: a stream stands in for any buffer. */
  virtual int isA(Type bufferType);
};

#endif
