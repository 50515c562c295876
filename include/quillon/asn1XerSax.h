/*
 * XML decoding by events: the reader that parses a document (over expat) and reports its
 * elements and character data to a content handler, the decode buffer that holds the input and
 * drives the reader, the base of every XER decode handler, the exception that carries a
 * decoding or parsing failure out of the parse, and small text utilities.
 *
 * The flow of a decode: a control class bound to an ASN1XERDecodeBuffer calls init(0), creates
 * a reader with saxCreateXmlReader(context, this, this), calls decodeXML(reader) and releases
 * the reader. Each event reaches the handler's startElement, characters and endElement; a
 * handler that meets a value it cannot accept records the status in the context and calls
 * throwSAXException, which ends the parse at once. Malformed XML ends it with an
 * OSRTSAXExceptionImpl whose message is expat's text with the line and column. The exceptions
 * pass through decodeXML to the caller.
 *
 * Virtual operations are declared in their slot order.
 */
#ifndef QUILLON_ASN1XERSAX_H
#define QUILLON_ASN1XERSAX_H

#ifndef __cplusplus
#error "asn1XerSax.h declares the XML decoding classes; C programs use asn1XerDec.h"
#endif

#include <exception>

#include "asn1XerCppTypes.h"
#include "asn1XerDec.h"

/* expat's parser record; only the reader's source sees its definition. */
struct XML_ParserStruct;

/* Elements nested deeper than this end the parse with -22 ("Nesting level too deep"): no
 * schema of the library comes near it, and a hostile document of endless nesting must not
 * drive the handlers, which forward each event down their chain, into stack exhaustion. */
#define OSXML_K_MAXDEPTH 1024

/* ---- Text utilities --------------------------------------------------------------------- */

/* 8-bit texts unless stated; 16-bit texts are NUL-terminated arrays of unsigned short. Every
 * text a function returns as new is made with new[] and freed by the caller with delete[]. */
class QN_API OSXMLString {
 public:
  /* A shared empty text. */
  static const char* zeroLenString();
  /* Characters before the NUL; 0 for null. */
  static int stringLen(const char* text);
  static int stringLen(const unsigned short* text);
  /* A new copy; null for null. */
  static char* replicate(const char* text);
  static char* transcode(const char* text);
  /* A new 8-bit copy keeping the low 8 bits of each 16-bit character; null for null. */
  static char* transcode(const unsigned short* text);
  /* Byte by byte as signed characters: the difference at the first place they differ, 0 when
   * equal. A null text counts as empty, so null against "abc" is -3 and "abc" against null 3. */
  static int compareString(const char* text1, const char* text2);
  /* Appends src to the NUL-terminated dest of size bytes, cut to fit size - 1 characters, and
   * returns dest; null (dest unchanged) when dest has no room left or an argument is missing. */
  static char* catString(char* dest, int size, const char* src);
  /* UTF-8 characters in byteLength bytes (0: up to the NUL), taking lead bytes of 1 to 6-byte
   * sequences (the longest the XER writer makes); -1 at a byte that starts no sequence or a
   * sequence cut short. */
  static int stringUTF8Len(const char* text, int byteLength);
  /* UTF-8 to a new UTF-16 text (characters above U+FFFF as surrogate pairs), and back; null
   * for null or malformed input. */
  static unsigned short* transUTF8(const char* text);
  static char* transUTF8(const unsigned short* text);
  /* As transUTF8, into buf (bufSize units, NUL included) when the result fits, else into a new
   * text; the caller delete[]s the result only when it is not buf. Null for null or malformed
   * input. */
  static char* safeTranscode(const unsigned short* text, char* buf, int bufSize);
  static unsigned short* safeTranscode(const char* text, unsigned short* buf, int bufSize);
};

/* An 8-bit copy of a text (OSXMLString::transcode) for the life of the object. */
class QN_API StrX {
 public:
  explicit StrX(const char* text) : mLocalForm(OSXMLString::transcode(text)) {}
  explicit StrX(const unsigned short* text) : mLocalForm(OSXMLString::transcode(text)) {}
  StrX(const StrX&) = delete;
  StrX& operator=(const StrX&) = delete;
  ~StrX() { delete[] mLocalForm; }

  /* Null when the source was null. */
  const char* localForm() const { return mLocalForm; }

 private:
  char* mLocalForm;
};

/* ---- Exceptions ------------------------------------------------------------------------- */

/* Root of the exceptions thrown out of XML decoding. */
class QN_API OSRTSAXException {
 public:
  virtual ~OSRTSAXException();
};

/* A failure of the parser (message set, status 0, no location) or of a handler (status and
 * the source location given to throwSAXException, no message). Owns copies of its texts. */
class QN_API OSRTSAXExceptionImpl : public OSRTSAXException {
 public:
  OSRTSAXExceptionImpl();
  explicit OSRTSAXExceptionImpl(const char* message);
  OSRTSAXExceptionImpl(const char* message, int status, const char* file, int line);
  OSRTSAXExceptionImpl(int status, const char* file, int line);
  OSRTSAXExceptionImpl(const OSRTSAXExceptionImpl& other);
  OSRTSAXExceptionImpl& operator=(const OSRTSAXExceptionImpl& other);
  virtual ~OSRTSAXExceptionImpl();

  /* Null when there is none. */
  virtual const char* getMessage() const;
  virtual int getStatus() const;
  /* Null when there is none. */
  virtual const char* getSrcFileName() const;
  virtual int getSrcLineNum() const;

  /* New objects the caller deletes. */
  static OSRTSAXExceptionImpl* createSAXException();
  static OSRTSAXExceptionImpl* createSAXException(const char* message, int status,
                                                  const char* file, int line);

 private:
  char* mpMessage;
  int mStatus;
  char* mpSrcFileName;
  int mSrcLineNum;
};

/* ---- Handler interfaces ----------------------------------------------------------------- */

/* Receives the events of a document: startDocument before the first element, endDocument
 * after the last one of a document that parsed without failure. The namespace URI is always empty; the local and the
 * qualified name are both the element name as written, prefix included. attrs is a
 * null-terminated array of alternating names and values. Character data points into the
 * parser's buffer, valid only during the call, and a run of text may come in several calls. */
class QN_API OSXMLContentHandler {
 public:
  virtual ~OSXMLContentHandler();
  virtual void characters(const char* chars, unsigned int length) = 0;
  virtual void endElement(const char* uri, const char* localname, const char* qname) = 0;
  virtual void startElement(const char* uri, const char* localname, const char* qname,
                            const char* const* attrs) = 0;
  /* Nothing by default. */
  virtual void startDocument();
  virtual void endDocument();
};

/* Told of a malformed document just before the reader throws: message as in the exception. */
class QN_API OSXMLErrorHandler {
 public:
  virtual ~OSXMLErrorHandler();
  virtual void fatalError(const char* message, int line, int column) = 0;
};

/* Keeps the first failure of a decode: status and source location. */
class QN_API OSXMLErrorInfo {
 public:
  virtual ~OSXMLErrorInfo();
  virtual void resetErrorInfo() = 0;
  virtual void setErrorInfo(int status, const char* file, int line) = 0;
  /* 1 with the three filled in when there is a failure; 0, outputs untouched, when not. */
  virtual int getErrorInfo(int* status, const char** file, int* line) = 0;
};

/* ---- Reader ----------------------------------------------------------------------------- */

class QN_API OSXMLBase {};

/* Parses a document and reports it to a content handler. Every parse function returns 0 or
 * throws: OSRTSAXExceptionImpl with expat's message for malformed XML (expat running out of
 * memory included), OSRTSAXExceptionImpl with status -22 for nesting beyond
 * OSXML_K_MAXDEPTH, whatever a handler throws, unchanged, and OSCStreamException for a
 * stream or file that cannot be read. A reader can parse several documents in turn. */
class QN_API OSXMLReader : public OSXMLBase {
 public:
  virtual ~OSXMLReader();
  /* Deletes the reader. */
  virtual void release() = 0;
  /* The whole stream, read and parsed in pieces, so its size is not bounded by memory. */
  virtual int parse(OSCInputStream& inputStream) = 0;
  /* length bytes of XML in memory. */
  virtual int parse(const char* buffer, int length) = 0;
  /* The named file, read as a stream. */
  virtual int parse(const char* fileName) = 0;
  /* Handlers are not owned and must outlive the parse. */
  virtual void setContentHandler(OSXMLContentHandler* handler) = 0;
  virtual void setErrorHandler(OSXMLErrorHandler* handler) = 0;
  /* Also resets the error information of a non-null handler. */
  virtual void setErrorInfoHandler(OSXMLErrorInfo* errorInfo) = 0;
};

/* The reader over expat. The document's own declaration chooses its encoding (UTF-8 when it
 * names none); events reach the handlers as UTF-8. expat's protections against entity
 * expansion stay as expat sets them, and no external entity is ever loaded. */
class QN_API OSExpatXMLReader : public OSXMLReader {
 public:
  /* Throws OSRTSAXExceptionImpl with an empty message when expat cannot create a parser. */
  OSExpatXMLReader();
  OSExpatXMLReader(const OSExpatXMLReader&) = delete;
  OSExpatXMLReader& operator=(const OSExpatXMLReader&) = delete;
  virtual ~OSExpatXMLReader();

  virtual void release();
  virtual int parse(OSCInputStream& inputStream);
  virtual int parse(const char* buffer, int length);
  virtual int parse(const char* fileName);
  virtual void setContentHandler(OSXMLContentHandler* handler);
  virtual void setErrorHandler(OSXMLErrorHandler* handler);
  virtual void setErrorInfoHandler(OSXMLErrorInfo* errorInfo);

  /* The context in which a nesting failure is recorded besides being thrown (none: thrown
   * only). */
  void setContext(ASN1CtxtPtr ctxt) { mpContext = ctxt; }

  /* Bytes read from a stream at a time. */
  static const int kStreamChunk = 2048;

  /* expat's callbacks (userData is the reader); each does nothing without a content handler. */
  static void startElementCallback(void* userData, const char* name, const char** attrs);
  static void endElementCallback(void* userData, const char* name);
  static void charDataCallback(void* userData, const char* chars, int length);

 private:
  /* Registers the reader and its callbacks with the parser. */
  void attachCallbacks();
  /* Makes the parser ready for a document (a fresh one after the first, callbacks attached)
   * and tells the content handler that a document starts. */
  void beginDocument();
  /* Tells the content handler that the document ended well; 0. */
  int finishDocument();
  /* Rethrows what a callback caught, or throws the parser's own error. */
  [[noreturn]] void throwParseFailure();
  /* Records -22 (in the context and the error information, when there are such) and throws. */
  [[noreturn]] void throwTooDeep();
  /* Runs one event on the content handler. An exception is kept and the parser stopped, since
   * it must not cross expat's C frames; the events expat still delivers after that are
   * dropped. */
  template <typename Event>
  void dispatch(Event event);

  XML_ParserStruct* mpParser;
  OSXMLContentHandler* mpContentHandler;
  OSXMLErrorHandler* mpErrorHandler;
  OSXMLErrorInfo* mpErrorInfo;
  ASN1CtxtPtr mpContext;
  std::exception_ptr mPending;
  int mDepth;
  bool mUsed;
};

/* A new OSExpatXMLReader with the handler and error information set (the latter reset); a
 * nesting failure is also recorded in ctxt when it is given. End it with release(). */
QN_API OSXMLReader* saxCreateXmlReader(ASN1CtxtPtr ctxt, OSXMLContentHandler* handler,
                                       OSXMLErrorInfo* errorInfo);

/* expat's message for errorCode; with buffer and bufferSize, copied there and followed by
 * ", line = %i, column = %i" from the parser's position, cut to bufferSize - 1 characters.
 * Returns buffer, or expat's own text when there is no buffer or the text is far too long for
 * it. */
QN_API const char* EXML_ErrorString(XML_ParserStruct* parser, int errorCode, char* buffer,
                                    int bufferSize);

/* ---- Decode buffer ---------------------------------------------------------------------- */

/* The input of an XML decode: a file, a stream or a memory block, none of them owned. A
 * constructor that cannot set up the buffer throws RTLError with the status. */
class QN_API ASN1XERDecodeBuffer : public ASN1XERMessageBuffer {
 public:
  /* The input kinds. */
  enum InputKind { kFile = 0, kStream = 2, kMemory = 3 };

  /* The named file; the name must outlive the buffer. */
  explicit ASN1XERDecodeBuffer(const char* xmlFile);
  /* bufLen bytes of XML in memory. With pctxt the buffer shares that context (one more
   * reference) instead of making its own; openType non-zero sets ASN1XMLFRAG on it. */
  ASN1XERDecodeBuffer(const ASN1OCTET* msgbuf, ASN1UINT bufLen, ASN1OCTET openType = 0,
                      ASN1Context* pctxt = nullptr);
  /* The stream, read as the parse proceeds. */
  explicit ASN1XERDecodeBuffer(OSCInputStream& inputStream, ASN1OCTET openType = 0);
  virtual ~ASN1XERDecodeBuffer();

  using ASN1MessageBuffer::initBuffer;
  /* The collected text becomes the context's buffer as it stands, never a fresh dynamic one
   * (xerSetDecBufPtr), even when it is empty. */
  virtual int initBuffer(ASN1MemBuf& membuf);
  /* The NUL-terminated text becomes the context's buffer. */
  virtual int initBuffer(char* str);
  /* True only for XERDecode. */
  virtual int isA(Type bufferType);
  /* Throws OSRTSAXExceptionImpl(status, file, line). */
  virtual void throwSAXException(int status, const char* file, int line);

  /* Parses the input with reader; the status the handlers left in the context (0 when they
   * recorded none). Exceptions of the reader and handlers pass through. */
  int decodeXML(OSXMLReader* pReader);

  InputKind getInputKind() const { return mInputKind; }

 private:
  const char* mpXmlFile;
  const ASN1OCTET* mpMemBuf;
  OSCInputStream* mpInputStream;
  ASN1UINT mMemBufLen;
  InputKind mInputKind;
};

/* ---- Decode handler base ---------------------------------------------------------------- */

/* Base of every generated XER decode handler. mCurrState is the position in the type's element
 * grammar (0 at start), mLevel the current element depth relative to the handler and
 * mStartLevel the depth its own element stands at; the event functions do nothing here. */
class QN_API ASN1XERSAXDecodeHandler : public OSXMLContentHandler, public OSXMLErrorInfo {
 public:
  ASN1XERSAXDecodeHandler();
  virtual ~ASN1XERSAXDecodeHandler();

  virtual void characters(const char* chars, unsigned int length);
  virtual void endElement(const char* uri, const char* localname, const char* qname);
  virtual void startElement(const char* uri, const char* localname, const char* qname,
                            const char* const* attrs);
  virtual void startDocument();
  virtual void endDocument();
  virtual void resetErrorInfo();
  virtual void setErrorInfo(int status, const char* file, int line);
  virtual int getErrorInfo(int* status, const char** file, int* line);
  /* Called when the handler's element is complete; nothing here. */
  virtual void finalize();
  /* State 0 and both levels set to level. */
  virtual void init(int level);
  /* setErrorInfo (through its slot, so a derived handler may extend it), then throws
   * OSRTSAXExceptionImpl(status, file, line). */
  virtual void throwSAXException(int status, const char* file, int line);

  /* Makes the text collected in memBuf the input of msgBuf's decoders and NUL-terminates it;
   * a failure throws ASN1MessageBuffer::RTLError with the status. */
  static void finalizeMemBuf(ASN1MessageBufferIF* msgBuf, ASN1MemBuf& memBuf);

  int getState() const { return mCurrState; }
  int getLevel() const { return mLevel; }
  int getStartLevel() const { return mStartLevel; }

 protected:
  int mCurrState;
  int mLevel;
  int mStartLevel;
  int mErrorStatus;
  const char* mpErrorFile;
  int mErrorLine;
};

#endif
