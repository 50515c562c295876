/*
 * The object layer's foundation: the reference-counted context object and its smart pointer,
 * the message-buffer interface every encode or decode target implements, the exceptions of the
 * object layer, the base of every control class, and the C++ flavours of the primitive value
 * records that generated value types use.
 *
 * Ownership in one sentence: every buffer, control class and value that works with a message
 * shares one ASN1Context through ASN1CtxtPtr, and the context (with the heap that holds every
 * decoded value) goes away when the last of them lets go. Nothing here owns the caller's
 * message memory.
 *
 * Virtual operations are declared in their slot order; classes deriving from these keep it by
 * adding new virtual operations only after the inherited ones.
 */
#ifndef QUILLON_ASN1CPPTYPES_H
#define QUILLON_ASN1CPPTYPES_H

#ifndef __cplusplus
#error "asn1CppTypes.h declares the C++ object layer; C programs use the rt*/xe_/xd_ functions"
#endif

#include "asn1type.h"
#include "rtContext.h"
#include "rtMemHeap.h"

/* ---- Context ---------------------------------------------------------------------------- */

/* A codec context with a reference count. The ASN1CTXT comes first, so a pointer to the object
 * is a pointer to its context. Create it with new and hand it to an ASN1CtxtPtr (or _ref it);
 * the last _unref deletes it. The destructor is not public because a context on the stack
 * would be deleted by the first holder that lets go of it. */
class QN_API ASN1Context {
 protected:
  ASN1CTXT mCtxt;
  ASN1INT mnRefCnt;

  /* Releases everything the context holds (rtFreeContext). */
  ~ASN1Context();

 public:
  /* Reference count 0, context initialised; throws ASN1MessageBuffer::RTLError with the status
   * when the context cannot be initialised (no memory for its heap). */
  ASN1Context();
  ASN1Context(const ASN1Context&) = delete;
  ASN1Context& operator=(const ASN1Context&) = delete;

  ASN1CTXT* getPtr() { return &mCtxt; }
  const ASN1CTXT* getPtr() const { return &mCtxt; }
  operator ASN1CTXT*() { return &mCtxt; }

  void _ref();
  /* Drops one reference; at 0 the object deletes itself. */
  void _unref();
  int getRefCount() const { return mnRefCnt; }

  /* The status of the first error recorded since the last reset (0 when none). */
  int getStatus() const { return mCtxt.errInfo.status; }
  /* Prints the error report (status, message, trace) to standard output and clears it. */
  void PrintErrorInfo();
};

/* Holds one reference to an ASN1Context (or none). Copying takes a reference, destruction
 * drops one; assignment drops the old reference before taking the new one. */
class QN_API ASN1CtxtPtr {
 protected:
  ASN1Context* mPointer;

 public:
  /* Takes a reference to rf when it is not null. */
  ASN1CtxtPtr(ASN1Context* rf = nullptr);
  ASN1CtxtPtr(const ASN1CtxtPtr& o);
  ~ASN1CtxtPtr();

  ASN1CtxtPtr& operator=(const ASN1CtxtPtr& rf);
  ASN1CtxtPtr& operator=(ASN1Context* rf);

  ASN1Context* operator->() const { return mPointer; }
  ASN1Context& operator*() const { return *mPointer; }
  operator ASN1Context*() const { return mPointer; }
};

/* ---- Exceptions ------------------------------------------------------------------------- */

/* Thrown by operator<< and operator>> of the buffers with the status of the failed encode or
 * decode; the details are in the context's error record. */
class QN_API ASN1RTLException {
 protected:
  ASN1INT stat;

 public:
  explicit ASN1RTLException(int status) : stat(status) {}
  virtual ~ASN1RTLException();

  int getStatus() const { return stat; }
};

/* ---- Message buffers -------------------------------------------------------------------- */

/* What a control class needs of the target it encodes into or decodes from. Implemented by the
 * BER and XER buffers and by the byte streams. A class overriding one initBuffer overload
 * brings the others in with a using-declaration so that they stay visible. */
class QN_API ASN1MessageBufferIF {
 public:
  /* Buffer kinds; 2 and 3 are reserved. */
  enum Type { BEREncode = 0, BERDecode = 1, XEREncode = 4, XERDecode = 5 };

  virtual ~ASN1MessageBufferIF();
  /* A new holder of the buffer's context (one more reference). */
  virtual ASN1CtxtPtr getContext() = 0;
  /* The buffer's codec context, no reference taken. */
  virtual ASN1CTXT* getCtxtPtr() = 0;
  /* A copy of the message made with new[] (the caller delete[]s it), or null. */
  virtual ASN1OCTET* getMsgCopy();
  /* The first byte of the message, or null. */
  virtual const ASN1OCTET* getMsgPtr();
  /* Makes the buffer ready for the next message. */
  virtual void init();
  /* Attach a message held elsewhere; -99 where the kind of buffer cannot take it. */
  virtual int initBuffer(ASN1MemBuf& membuf);
  virtual int initBuffer(unsigned short* unicodeStr);
  virtual int initBuffer(char* str);
  /* True (non-zero) when the buffer is of the given kind. */
  virtual int isA(Type bufferType) = 0;
};

/* Status of initBuffer where the buffer kind does not support the source. */
#define ASN_E_NOTSUPP (-99)

/* A message buffer with a context of its own. */
class QN_API ASN1MessageBuffer : public ASN1MessageBufferIF {
 public:
  /* Thrown when a buffer or context cannot be constructed; carries the status. */
  class QN_API RTLError : public ASN1RTLException {
   public:
    explicit RTLError(int status) : ASN1RTLException(status) {}
    virtual ~RTLError();
  };

 protected:
  ASN1CtxtPtr mpContext;
  Type mBufferType;

  /* Creates the buffer's context (reference count 1); throws RTLError when it cannot. */
  explicit ASN1MessageBuffer(Type bufferType);

 public:
  ASN1MessageBuffer(const ASN1MessageBuffer&) = delete;
  ASN1MessageBuffer& operator=(const ASN1MessageBuffer&) = delete;
  virtual ~ASN1MessageBuffer();

  virtual ASN1CtxtPtr getContext();
  virtual ASN1CTXT* getCtxtPtr();
  /* Null: a plain message buffer has no message of its own to copy. */
  virtual ASN1OCTET* getMsgCopy();
  /* The data pointer of the context's buffer. */
  virtual const ASN1OCTET* getMsgPtr();
  /* Attaches the memory buffer's data (rtInitContextBuffer); its status. */
  virtual int initBuffer(ASN1MemBuf& membuf);
  virtual int initBuffer(unsigned short* unicodeStr);
  virtual int initBuffer(char* str);

  /* The status of the first error recorded in the context since the last reset. */
  int getStatus() const { return mpContext->getStatus(); }
  /* Prints the context's error report to standard output and clears it. */
  void PrintErrorInfo() { mpContext->PrintErrorInfo(); }
};

/* ---- Control-class base ----------------------------------------------------------------- */

/* Base of every generated control class ASN1C_<Type> and of the list, time and bit string
 * classes. It holds the shared context and points at (never owns) the current buffer, which
 * must outlive the Encode/Decode calls made with it. */
class QN_API ASN1CType {
 protected:
  ASN1CtxtPtr mpContext;
  ASN1MessageBufferIF* mpMsgBuf;

  /* A new context of its own, no buffer; throws ASN1MessageBuffer::RTLError when the context
   * cannot be made. */
  ASN1CType();
  /* The buffer's context (shared) and the buffer. */
  explicit ASN1CType(ASN1MessageBufferIF& msgBuf);
  /* The given context (one more reference), no buffer. */
  explicit ASN1CType(ASN1Context& ctxt);
  /* Shares the source's context and buffer. */
  ASN1CType(const ASN1CType& source) = default;
  ASN1CType& operator=(const ASN1CType& source) = default;

 public:
  virtual ~ASN1CType();
  /* EncodeTo / DecodeFrom with the held buffer; -30 when the object has none. */
  virtual int Encode();
  virtual int Decode();
  /* The base encodes and decodes nothing and returns 0; generated classes override these.
   * An override makes msgBuf current (setMsgBuf) and, when decoding, calls msgBuf.init()
   * first: that is where a decode buffer attaches its message on the first decode and moves
   * on to the next message after the last one was used up. */
  virtual int EncodeTo(ASN1MessageBufferIF& msgBuf);
  virtual int DecodeFrom(ASN1MessageBufferIF& msgBuf);

  /* Makes msgBuf the current buffer and lets the own context allocate from the buffer's heap,
   * so decoded values and the object's own allocations live in one heap. */
  void setMsgBuf(ASN1MessageBufferIF& msgBuf);

  ASN1CtxtPtr getContext() { return mpContext; }
  /* Null only when the object has no context. */
  ASN1CTXT* getCtxtPtr() { return mpContext ? mpContext->getPtr() : nullptr; }
  /* Prints the context's error report to standard output and clears it. */
  void PrintErrorInfo() {
    if (mpContext) mpContext->PrintErrorInfo();
  }
};

/* ---- C++ flavours of the primitive value records ---------------------------------------- */

/* The same fields as ASN1DynOctStr; empty when default-constructed. The octets are not owned. */
struct ASN1TDynOctStr : public ASN1DynOctStr {
  ASN1TDynOctStr() {
    numocts = 0;
    data = nullptr;
  }
  ASN1TDynOctStr(ASN1UINT numOcts, const ASN1OCTET* octets) {
    numocts = numOcts;
    data = octets;
  }
  ASN1TDynOctStr(const ASN1DynOctStr& os) : ASN1DynOctStr(os) {}
  ASN1TDynOctStr& operator=(const ASN1DynOctStr& os) {
    numocts = os.numocts;
    data = os.data;
    return *this;
  }
};

/* The same fields as ASN1DynBitStr; empty when default-constructed. The octets are not owned. */
struct ASN1TDynBitStr : public ASN1DynBitStr {
  ASN1TDynBitStr() {
    numbits = 0;
    data = nullptr;
  }
  ASN1TDynBitStr(ASN1UINT numBits, const ASN1OCTET* octets) {
    numbits = numBits;
    data = octets;
  }
  ASN1TDynBitStr(const ASN1DynBitStr& bs) : ASN1DynBitStr(bs) {}
  ASN1TDynBitStr& operator=(const ASN1DynBitStr& bs) {
    numbits = bs.numbits;
    data = bs.data;
    return *this;
  }
};

/* ASN1TOpenType is the plain record of asn1type.h (numocts, data): C code and generated code
 * share it as it is. Value-initialise it (ASN1TOpenType ot{}) for an empty one. */

/* Buckets of the identifier index that every generated object set keeps (a power of two). */
#define ASN1_OBJSET_BUCKETS 32

/* An object identifier with value semantics over ASN1OBJID. Each constructor and assignment
 * copies exactly the count's arcs, at most the record's capacity of ASN_K_MAXSUBIDS. */
class QN_API ASN1TObjId : public ASN1OBJID {
 public:
  /* The empty identifier. */
  ASN1TObjId() { numids = 0; }
  ASN1TObjId(ASN1OCTET numIds, const ASN1UINT* subIds);
  ASN1TObjId(const ASN1OBJID& oid);
  ASN1TObjId(const ASN1TObjId& oid);
  ASN1TObjId& operator=(const ASN1OBJID& rhs);
  ASN1TObjId& operator=(const ASN1TObjId& rhs);
};

/* The same over ASN1OID64: 64-bit arcs. */
class QN_API ASN1TObjId64 : public ASN1OID64 {
 public:
  ASN1TObjId64() { numids = 0; }
  ASN1TObjId64(ASN1OCTET numIds, const ASN1UINT64* subIds);
  ASN1TObjId64(const ASN1OID64& oid);
  ASN1TObjId64(const ASN1TObjId64& oid);
  ASN1TObjId64& operator=(const ASN1OID64& rhs);
  ASN1TObjId64& operator=(const ASN1TObjId64& rhs);
};

/* Equal when the counts are equal and so is every arc; two empty identifiers are equal. */
QN_API bool operator==(const ASN1OBJID& lhs, const ASN1OBJID& rhs);
QN_API bool operator!=(const ASN1OBJID& lhs, const ASN1OBJID& rhs);
QN_API bool operator==(const ASN1OID64& lhs, const ASN1OID64& rhs);
QN_API bool operator!=(const ASN1OID64& lhs, const ASN1OID64& rhs);

/* List records of SEQUENCE OF / SET OF members of generated value types: the layout of
 * _Asn1RTDList, empty when constructed. Distinct types so that ASN1CSeqOfList can tell a
 * generated member from a caller's plain list. */
struct ASN1TSeqOfList : public _Asn1RTDList {
  ASN1TSeqOfList() {
    count = 0;
    head = nullptr;
    tail = nullptr;
  }
};

struct ASN1TPDUSeqOfList : public _Asn1RTDList {
  ASN1TPDUSeqOfList() {
    count = 0;
    head = nullptr;
    tail = nullptr;
  }
};

#endif
