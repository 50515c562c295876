/*
 * Fundamental types of the runtime: fixed-width scalars, tags, status codes, the primitive value
 * records shared by every layer, the list records, and the codec context ASN1CTXT.
 *
 * Every record keeps its fields in the documented order; 8, 16 and 32-bit fields keep their
 * width on both the i386 and the x86-64 build, pointers are native.
 */
#ifndef QUILLON_ASN1TYPE_H
#define QUILLON_ASN1TYPE_H

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
#define QN_EXTERN_C extern "C"
#define QN_BEGIN_C extern "C" {
#define QN_END_C }
#else
#define QN_EXTERN_C
#define QN_BEGIN_C
#define QN_END_C
#endif

/* Symbols of the shared library; everything else stays hidden. */
#define QN_API __attribute__((visibility("default")))

QN_BEGIN_C

/* ---- Scalars ---------------------------------------------------------------------------- */

typedef unsigned char ASN1OCTET;
typedef unsigned char ASN1BOOL;
typedef int8_t ASN1INT8;
typedef uint8_t ASN1UINT8;
typedef int16_t ASN1SINT;
typedef uint16_t ASN1USINT;
typedef int32_t ASN1INT;
typedef uint32_t ASN1UINT;
typedef int32_t ASN1ENUM;
typedef int64_t ASN1INT64;
typedef uint64_t ASN1UINT64;
typedef double ASN1REAL;
typedef const char* ASN1ConstCharPtr;

#define ASN1TRUE 1
#define ASN1FALSE 0

/* A tag in one word: bits 31-30 class, bit 29 constructed, bits 28-0 the number. */
typedef uint32_t ASN1TagType;

#define TM_UNIV 0x00000000u
#define TM_APPL 0x40000000u
#define TM_CTXT 0x80000000u
#define TM_PRIV 0xC0000000u
#define TM_CONS 0x20000000u
#define TM_CLASS_MASK 0xC0000000u
#define TM_IDCODE_MASK 0x1FFFFFFFu

#define ASN_ID_EOC 0u
#define ASN_ID_BOOL 1u
#define ASN_ID_INT 2u
#define ASN_ID_BITSTR 3u
#define ASN_ID_OCTSTR 4u
#define ASN_ID_NULL 5u
#define ASN_ID_OBJID 6u
#define ASN_ID_OBJDSC 7u
#define ASN_ID_EXTERN 8u
#define ASN_ID_REAL 9u
#define ASN_ID_ENUM 10u
#define ASN_ID_EPDV 11u
#define ASN_ID_UTF8String 12u
#define ASN_ID_RELOID 13u
#define ASN_ID_SEQ 16u
#define ASN_ID_SET 17u
#define ASN_ID_NumericString 18u
#define ASN_ID_PrintableString 19u
#define ASN_ID_TeletexString 20u
#define ASN_ID_T61String 20u
#define ASN_ID_VideotexString 21u
#define ASN_ID_IA5String 22u
#define ASN_ID_UTCTime 23u
#define ASN_ID_GeneralTime 24u
#define ASN_ID_GraphicString 25u
#define ASN_ID_VisibleString 26u
#define ASN_ID_GeneralString 27u
#define ASN_ID_UniversalString 28u
#define ASN_ID_BMPString 30u

/* Tagging argument of every primitive coder. */
#define ASN1EXPL 1
#define ASN1IMPL 0

/* The length that stands for the indefinite form everywhere in the runtime. */
#define ASN_K_INDEFLEN (-9999)

/* ---- Status codes ----------------------------------------------------------------------- */

#define ASN_OK 0
#define ASN_E_BUFOVFLW (-1)     /* Encode buffer overflow */
#define ASN_E_ENDOFBUF (-2)     /* Unexpected end of buffer on decode */
#define ASN_E_IDNOTFOU (-3)     /* Unexpected tag encountered */
#define ASN_E_INVOBJID (-4)     /* Invalid object identifier */
#define ASN_E_INVLEN (-5)       /* Invalid field length detected */
#define ASN_E_INVENUM (-6)      /* Enumerated value not in defined set */
#define ASN_E_SETDUPL (-7)      /* Duplicate element in SET */
#define ASN_E_SETMISRQ (-8)     /* Missing required element in SET */
#define ASN_E_NOTINSET (-9)     /* Element not part of SET */
#define ASN_E_SEQOVFLW (-10)    /* Max elements for SEQUENCE field exceeded */
#define ASN_E_INVOPT (-11)      /* Invalid option in choice */
#define ASN_E_NOMEM (-12)       /* No dynamic memory available */
#define ASN_E_INVHEXS (-13)     /* Invalid string type */
#define ASN_E_INVHEXSTR (-14)   /* Invalid hex string */
#define ASN_E_INVBINS (-15)     /* Invalid binary string */
#define ASN_E_INVREAL (-16)     /* Invalid real value */
#define ASN_E_STROVFLW (-17)    /* Sized BIT or OCTET STRING overflow */
#define ASN_E_BADVALUE (-18)    /* Invalid value given */
#define ASN_E_UNDEFVAL (-19)    /* No definition for referenced value */
#define ASN_E_UNDEFTYP (-20)    /* No definition for referenced type */
#define ASN_E_BADTAG (-21)      /* Invalid tag value */
#define ASN_E_TOODEEP (-22)     /* Nesting level too deep */
#define ASN_E_CONSVIO (-23)     /* Value constraint violation */
#define ASN_E_RANGERR (-24)     /* Value range error */
#define ASN_E_ENDOFFILE (-25)   /* Unexpected end of file */
#define ASN_E_INVUTF8 (-26)     /* Invalid UTF-8 character */
#define ASN_E_CONCMODF (-27)    /* Concurrent list modification */
#define ASN_E_ILLSTATE (-28)    /* Illegal list state */
#define ASN_E_OUTOFBND (-29)    /* Array index out of bounds */
#define ASN_E_INVPARAM (-30)    /* Invalid parameter */
#define ASN_E_INVFORMAT (-31)   /* Invalid time string format */
#define ASN_E_NOTINIT (-32)     /* Context is not initialized */
#define ASN_E_TOOBIG (-33)      /* Value will not fit in target variable */
#define ASN_E_INVCHAR (-34)     /* Character not within defined set */
#define ASN_E_XMLSTATE (-35)    /* Invalid XML state */
#define ASN_E_XMLPARSE (-36)    /* Error from XML parser */
#define ASN_E_SEQORDER (-37)    /* SEQUENCE elements out of order */
#define ASN_E_INVINDEX (-38)    /* Invalid table constraint index */
#define ASN_E_INVTCVAL (-39)    /* Invalid relational table constraint value */
#define ASN_E_FILNOTFOU (-40)   /* File not found */
#define ASN_E_FILEREAD (-41)    /* File read error */
#define ASN_E_FILEWRITE (-42)   /* File write error */
#define ASN_E_INVBASE64 (-43)   /* Invalid Base64 string */
#define ASN_E_INVSOCKET (-44)   /* Socket error */
#define ASN_E_XMLLIBNFOU (-45)  /* XML interface library not found */
#define ASN_E_XMLLIBINV (-46)   /* Invalid XML interface library */
#define ASN_K_MAXSTATUS 46

/* ---- Context flags ---------------------------------------------------------------------- */

#define ASN1DYNCTXT 0x8000u   /* record allocated by rtNewContext */
#define ASN1INDEFLEN 0x4000u  /* outer length indefinite: size unknown */
#define ASN1LASTEOC 0x1000u   /* with ASN1INDEFLEN: the next tag read meets the end */
#define ASN1FASTCOPY 0x0800u  /* decoders point into the message instead of copying */
#define ASN1CONSTAG 0x0400u   /* the last tag read was constructed */
#define ASN1CANXER 0x0200u    /* canonical XML: no indentation */
#define ASN1SAVEBUF 0x0100u   /* keep a dynamic message buffer on rtFreeContext */
#define ASN1XMLFRAG 0x0080u   /* XML fragment: no declaration, no end of document */

#define ASN1_CTXT_KEY 0x1AA2A34Au

/* ---- Primitive value records ------------------------------------------------------------ */

#define ASN_K_MAXSUBIDS 128

typedef struct ASN1OBJID {
  ASN1UINT numids;
  ASN1UINT subid[ASN_K_MAXSUBIDS];
} ASN1OBJID;

typedef struct ASN1OID64 {
  ASN1UINT numids;
  ASN1UINT64 subid[ASN_K_MAXSUBIDS];
} ASN1OID64;

/* A RELATIVE-OID has the layout of an object identifier; its arcs are not combined. */
typedef ASN1OBJID ASN1RELOID;

typedef struct ASN1DynOctStr {
  ASN1UINT numocts;
  const ASN1OCTET* data;
} ASN1DynOctStr;

typedef struct ASN1DynBitStr {
  ASN1UINT numbits;
  const ASN1OCTET* data;
} ASN1DynBitStr;

typedef struct ASN1TOpenType {
  ASN1UINT numocts;
  const ASN1OCTET* data;
} ASN1TOpenType;

typedef struct Asn116BitCharString {
  ASN1UINT nchars;
  ASN1USINT* data;
} Asn116BitCharString;

typedef struct Asn132BitCharString {
  ASN1UINT nchars;
  ASN1UINT* data;
} Asn132BitCharString;

/* Carries an open-type value: its encoding, the decoded value once known, and the information
 * object that describes it. */
typedef struct Asn1TObject {
  ASN1UINT numocts;
  const ASN1OCTET* data;
  void* decoded;
  const void* object;
} Asn1TObject;

/* ---- Lists ------------------------------------------------------------------------------ */

typedef struct _Asn1RTDListNode {
  void* data;
  struct _Asn1RTDListNode* next;
  struct _Asn1RTDListNode* prev;
} _Asn1RTDListNode;

typedef struct _Asn1RTDList {
  ASN1UINT count;
  _Asn1RTDListNode* head;
  _Asn1RTDListNode* tail;
} _Asn1RTDList;

typedef _Asn1RTDList Asn1RTDList;
typedef _Asn1RTDListNode Asn1RTDListNode;

struct ASN1CTXT;

typedef struct _Asn1RTSListNode {
  void* data;
  struct _Asn1RTSListNode* next;
} _Asn1RTSListNode;

typedef struct _Asn1RTSList {
  ASN1UINT count;
  _Asn1RTSListNode* head;
  _Asn1RTSListNode* tail;
  struct ASN1CTXT* pctxt;
} _Asn1RTSList;

#define ASN_K_MAXSTACK 32

typedef struct _Asn1RTStack {
  ASN1INT count;
  void* slots[ASN_K_MAXSTACK];
} _Asn1RTStack;

/* ---- Streams (record only; the functions live with the stream layer) -------------------- */

typedef long (*OSRTStreamReadProc)(void* device, ASN1OCTET* buf, size_t count);
typedef long (*OSRTStreamWriteProc)(void* device, const ASN1OCTET* data, size_t count);
typedef int (*OSRTStreamFlushProc)(void* device);
typedef int (*OSRTStreamCloseProc)(void* device);
typedef int (*OSRTStreamSkipProc)(void* device, size_t count);

#define OSRTSTRMF_INPUT 0x0001u
#define OSRTSTRMF_OUTPUT 0x0002u
#define OSRTSTRMF_BUFFERED 0x8000u

typedef struct OSRTSTREAM {
  OSRTStreamReadProc read;
  OSRTStreamWriteProc write;
  OSRTStreamFlushProc flush;
  OSRTStreamCloseProc close;
  OSRTStreamSkipProc skip;
  void* device;
  ASN1UINT id;          /* device kind: 1 file, 3 memory */
  ASN1UINT bufsize;     /* read buffering in bytes */
  ASN1UINT readAheadLimit;
  ASN1UINT bytesRead;
  ASN1UINT markedBytesRead;
  ASN1UINT ioBytes;
  ASN1USINT flags;
} OSRTSTREAM;

/* ---- Codec context ---------------------------------------------------------------------- */

typedef struct OSMemHeap OSMemHeap;

typedef struct ASN1BUFFER {
  ASN1OCTET* data;
  ASN1UINT byteIndex;
  ASN1UINT size;
  ASN1USINT bitOffset;
  ASN1BOOL dynamic;
  ASN1OCTET state;
} ASN1BUFFER;

typedef struct ASN1ErrLocn {
  const char* module;
  ASN1INT lineno;
} ASN1ErrLocn;

#define ASN_K_MAXERRSTK 8
#define ASN_K_MAXERRP 5

typedef struct ASN1ErrInfo {
  ASN1ErrLocn stack[ASN_K_MAXERRSTK];
  ASN1INT stkx;
  ASN1INT status;
  ASN1INT parmcnt;
  char* parms[ASN_K_MAXERRP];
} ASN1ErrInfo;

/* Room the stream and XML layers keep in the context for their own state; the last slot holds
 * the nesting depth of the generated decoders (-22 past a fixed bound). */
#define ASN_K_CTXTRESERVED 16

typedef struct ASN1CTXT {
  OSMemHeap* msgMemHeap;
  OSMemHeap* memHeap;
  ASN1BUFFER buffer;
  ASN1ErrInfo errInfo;
  _Asn1RTSList fieldList;
  _Asn1RTSList evtHndlrList;
  OSRTSTREAM* pStream;
  ASN1UINT key;
  ASN1USINT flags;
  ASN1OCTET xmlLevel;  /* XML encoder: nesting depth */
  ASN1OCTET xmlState;  /* XML encoder: what was written last */
  void* pMemAllocCtx;
  void* reserved[ASN_K_CTXTRESERVED];
} ASN1CTXT;

QN_END_C

#endif
