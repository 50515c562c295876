/*
 * BER, DER and CER coding over the byte stream attached to a context (rtStream.h), and the
 * stream classes that wrap it.
 *
 * Encoders write forward: identifier, length, contents. They return the number of octets
 * written, or a negative status recorded in the context's error record. Their tagging
 * argument: ASN1EXPL writes the universal identifier, the length and the contents; ASN1IMPL
 * writes the length and the contents only, the caller having written its own identifier
 * (berEncStrmTag) first, since only the encoder knows the length. An output stream with
 * buffering stages small writes and passes them on in blocks.
 *
 * Decoders read what the buffer decoders of asn1berdec.h read and give the same values and
 * statuses for a complete encoding (one cut short ends with -2, the end of the stream): each
 * makes the next element available in memory and runs the buffer decoder over it. An element
 * that fits the stream's read buffer is decoded in place there, and left unread when it fails
 * to decode; a larger one is read into the context's heap first (the contents of a primitive
 * OCTET STRING straight into the memory of its value), and is gone from the stream whatever
 * the outcome, unless its identifier was the wrong one. Their tagging argument is that of the buffer decoders: ASN1IMPL means
 * the caller has read the identifier and the length (berDecStrmTag, berDecStrmTagAndLen,
 * berDecStrmMatchTag, which set ASN1CONSTAG from the identifier) and passes the contents
 * length, ASN_K_INDEFLEN for an indefinite one. With fast copy, strings and open types of a
 * large element point into its heap copy rather than into copies of their own; values from
 * the read buffer are always copied, since it is reused. An input stream without buffering
 * gets it on first use.
 *
 * Every function checks its stream: -32 without one, -30 when it goes the other way.
 */
#ifndef QUILLON_ASN1BERSTREAM_H
#define QUILLON_ASN1BERSTREAM_H

#include "asn1type.h"
#include "rtStream.h"

QN_BEGIN_C

/* Where a constructed value read from a stream ends: the stream position where its contents
 * start (rtStreamBufGetPos) and their length, ASN_K_INDEFLEN when end-of-contents octets close
 * it. */
typedef struct ASN1StrmCCB {
  ASN1UINT start;
  ASN1INT len;
} ASN1StrmCCB;

/* ---- Encoding: identifiers, lengths, end-of-contents ------------------------------------ */

QN_API int berEncStrmTag(ASN1CTXT* pctxt, ASN1TagType tag);
/* Short or long form; ASN_K_INDEFLEN writes 0x80; any other negative length is -30. */
QN_API int berEncStrmLength(ASN1CTXT* pctxt, int length);
QN_API int berEncStrmTagAndLen(ASN1CTXT* pctxt, ASN1TagType tag, int length);
/* The identifier (constructed bit added) and 0x80; close the value with berEncStrmEOC. */
QN_API int berEncStrmTagAndIndefLen(ASN1CTXT* pctxt, ASN1TagType tag);
QN_API int berEncStrmEOC(ASN1CTXT* pctxt);

/* ---- Encoding: primitive values --------------------------------------------------------- */

QN_API int berEncStrmInt(ASN1CTXT* pctxt, ASN1INT value, int tagging);
QN_API int berEncStrmInt8(ASN1CTXT* pctxt, ASN1INT8 value, int tagging);
QN_API int berEncStrmInt16(ASN1CTXT* pctxt, ASN1SINT value, int tagging);
QN_API int berEncStrmInt64(ASN1CTXT* pctxt, ASN1INT64 value, int tagging);
QN_API int berEncStrmUInt(ASN1CTXT* pctxt, ASN1UINT value, int tagging);
QN_API int berEncStrmUInt8(ASN1CTXT* pctxt, ASN1UINT8 value, int tagging);
QN_API int berEncStrmUInt16(ASN1CTXT* pctxt, ASN1USINT value, int tagging);
QN_API int berEncStrmUInt64(ASN1CTXT* pctxt, ASN1UINT64 value, int tagging);
QN_API int berEncStrmEnum(ASN1CTXT* pctxt, ASN1ENUM value, int tagging);
QN_API int berEncStrmReal(ASN1CTXT* pctxt, ASN1REAL value, int tagging);
/* Big integer from its text, as xe_bigint reads it; -18 for a malformed text. */
QN_API int berEncStrmBigInt(ASN1CTXT* pctxt, const char* pvalue, int tagging);
QN_API int berEncStrmBool(ASN1CTXT* pctxt, ASN1BOOL value, int tagging);
QN_API int berEncStrmNull(ASN1CTXT* pctxt, int tagging);
/* As xe_bitstr: a null pvalue with bits counted writes nothing and returns 0. */
QN_API int berEncStrmBitStr(ASN1CTXT* pctxt, const ASN1OCTET* pvalue, ASN1UINT numbits,
                            int tagging);
/* A null pvalue writes empty contents. The octets go to the stream as they stand. */
QN_API int berEncStrmOctStr(ASN1CTXT* pctxt, const ASN1OCTET* pvalue, ASN1UINT numocts,
                            int tagging);
/* Zero-terminated text under the universal tag given (e.g. ASN_ID_IA5String); -18 for null. */
QN_API int berEncStrmCharStr(ASN1CTXT* pctxt, const char* pvalue, int tagging, ASN1TagType tag);
QN_API int berEncStrmBMPStr(ASN1CTXT* pctxt, const Asn116BitCharString* pvalue, int tagging);
QN_API int berEncStrmUnivStr(ASN1CTXT* pctxt, const Asn132BitCharString* pvalue, int tagging);
/* -4 for an identifier the buffer encoder refuses. */
QN_API int berEncStrmObjId(ASN1CTXT* pctxt, const ASN1OBJID* pvalue, int tagging);
QN_API int berEncStrmObjId64(ASN1CTXT* pctxt, const ASN1OID64* pvalue, int tagging);
QN_API int berEncStrmRelativeOID(ASN1CTXT* pctxt, const ASN1RELOID* pvalue, int tagging);
/* A complete encoding (tag, length, contents) written as it stands. */
QN_API int berEncStrmOpenType(ASN1CTXT* pctxt, const ASN1OCTET* pvalue, ASN1UINT numocts);

/* ---- Encoding: CER strings -------------------------------------------------------------- */
/* Contents of up to 1000 octets are primitive. Longer ones are constructed with an indefinite
 * length: segments of 1000 contents octets (the last shorter) and end-of-contents octets;
 * character strings are segmented as OCTET STRINGs. With ASN1IMPL the caller's identifier must
 * then carry the constructed bit (TM_CONS). The value is never copied whole. */

QN_API int cerEncStrmBitStr(ASN1CTXT* pctxt, const ASN1OCTET* pvalue, ASN1UINT numbits,
                            int tagging);
QN_API int cerEncStrmOctStr(ASN1CTXT* pctxt, const ASN1OCTET* pvalue, ASN1UINT numocts,
                            int tagging);
QN_API int cerEncStrmCharStr(ASN1CTXT* pctxt, const char* pvalue, int tagging, ASN1TagType tag);
QN_API int cerEncStrmBMPStr(ASN1CTXT* pctxt, const Asn116BitCharString* pvalue, int tagging);
QN_API int cerEncStrmUnivStr(ASN1CTXT* pctxt, const Asn132BitCharString* pvalue, int tagging);

/* ---- Decoding: identifiers, lengths, structure ------------------------------------------ */

/* Reads an identifier; sets or clears ASN1CONSTAG from its constructed bit. -2 at the end of
 * the stream, -21 for a tag number beyond 29 bits. */
QN_API int berDecStrmTag(ASN1CTXT* pctxt, ASN1TagType* tag_p);
/* Reads a length: ASN_K_INDEFLEN for 0x80; -5 for more than four octets or above 2^31 - 1. */
QN_API int berDecStrmLength(ASN1CTXT* pctxt, int* len_p);
/* Both; -5 also for an indefinite length on a primitive identifier. */
QN_API int berDecStrmTagAndLen(ASN1CTXT* pctxt, ASN1TagType* tag_p, int* len_p);
/* The next identifier without reading it. */
QN_API int berDecStrmPeekTag(ASN1CTXT* pctxt, ASN1TagType* tag_p);
/* Compares the next identifier with tag, ignoring the constructed bit. On a match the length
 * is stored (len_p may be null) and, when advance is set, the header is read. A mismatch or
 * the end of the stream gives -3 with the expected and the parsed tag as error parameters,
 * nothing read. */
QN_API int berDecStrmMatchTag(ASN1CTXT* pctxt, ASN1TagType tag, int* len_p, int advance);
/* Reads the end-of-contents octets 0x00 0x00; -3 when something else comes. */
QN_API int berDecStrmMatchEOC(ASN1CTXT* pctxt);
/* Starts a constructed value whose header was just read with contents of length octets. */
QN_API void berDecStrmInitCCB(ASN1CTXT* pctxt, ASN1StrmCCB* ccb_p, int length);
/* 1 at the end of the constructed value (its end-of-contents octets left unread), or at the
 * end of the stream; else 0. Records nothing. */
QN_API int berDecStrmChkEnd(ASN1CTXT* pctxt, ASN1StrmCCB* ccb_p);
/* Skips one complete element of either length form. */
QN_API int berDecStrmNextElement(ASN1CTXT* pctxt);

/* ---- Decoding: primitive values --------------------------------------------------------- */
/* Results as the buffer decoder of the same family gives them; heap memory from memHeap. */

QN_API int berDecStrmInt(ASN1CTXT* pctxt, ASN1INT* object_p, int tagging, int length);
QN_API int berDecStrmInt8(ASN1CTXT* pctxt, ASN1INT8* object_p, int tagging, int length);
QN_API int berDecStrmInt16(ASN1CTXT* pctxt, ASN1SINT* object_p, int tagging, int length);
QN_API int berDecStrmInt64(ASN1CTXT* pctxt, ASN1INT64* object_p, int tagging, int length);
QN_API int berDecStrmUInt(ASN1CTXT* pctxt, ASN1UINT* object_p, int tagging, int length);
QN_API int berDecStrmUInt8(ASN1CTXT* pctxt, ASN1UINT8* object_p, int tagging, int length);
QN_API int berDecStrmUInt16(ASN1CTXT* pctxt, ASN1USINT* object_p, int tagging, int length);
QN_API int berDecStrmUInt64(ASN1CTXT* pctxt, ASN1UINT64* object_p, int tagging, int length);
QN_API int berDecStrmEnum(ASN1CTXT* pctxt, ASN1ENUM* object_p, int tagging, int length);
QN_API int berDecStrmReal(ASN1CTXT* pctxt, ASN1REAL* object_p, int tagging, int length);
QN_API int berDecStrmBigInt(ASN1CTXT* pctxt, const char** object_p, int tagging, int length);
QN_API int berDecStrmBool(ASN1CTXT* pctxt, ASN1BOOL* object_p, int tagging, int length);
QN_API int berDecStrmNull(ASN1CTXT* pctxt, int tagging, int length);
/* Into the caller's array: *numbits_p / *numocts_p in is its capacity, out the count. */
QN_API int berDecStrmBitStr(ASN1CTXT* pctxt, ASN1OCTET* object_p, ASN1UINT* numbits_p,
                            int tagging, int length);
QN_API int berDecStrmOctStr(ASN1CTXT* pctxt, ASN1OCTET* object_p, ASN1UINT* numocts_p,
                            int tagging, int length);
/* Into heap memory. */
QN_API int berDecStrmDynBitStr(ASN1CTXT* pctxt, const ASN1OCTET** object_p2,
                               ASN1UINT* numbits_p, int tagging, int length);
QN_API int berDecStrmDynOctStr(ASN1CTXT* pctxt, const ASN1OCTET** object_p2,
                               ASN1UINT* numocts_p, int tagging, int length);
/* Text of the universal string type tag (e.g. ASN_ID_UTF8String), zero-terminated. */
QN_API int berDecStrmCharStr(ASN1CTXT* pctxt, const char** object_p, int tagging,
                             ASN1TagType tag, int length);
QN_API int berDecStrmBMPStr(ASN1CTXT* pctxt, Asn116BitCharString* object_p, int tagging,
                            int length);
QN_API int berDecStrmUnivStr(ASN1CTXT* pctxt, Asn132BitCharString* object_p, int tagging,
                             int length);
QN_API int berDecStrmObjId(ASN1CTXT* pctxt, ASN1OBJID* object_p, int tagging, int length);
QN_API int berDecStrmObjId64(ASN1CTXT* pctxt, ASN1OID64* object_p, int tagging, int length);
QN_API int berDecStrmRelativeOID(ASN1CTXT* pctxt, ASN1RELOID* object_p, int tagging,
                                 int length);
/* The next complete element as it stands, in heap memory. */
QN_API int berDecStrmOpenType(ASN1CTXT* pctxt, const ASN1OCTET** object_p2,
                              ASN1UINT* numocts_p);

QN_END_C

#ifdef __cplusplus

#include "asn1Stream.h"

/* ---- Value wrappers --------------------------------------------------------------------- */
/* One per primitive, to read (OSDecStrm*, naming the caller's variable) or write (OSEncStrm*,
 * holding the value) with the stream operators:
 *   in >> OSDecStrmTagAndLen(tag, len) >> OSDecStrmInt(version) >> OSDecStrmObjId(oid);
 *   out << OSEncStrmTagAndIndefLen(TM_UNIV | ASN_ID_SEQ) << OSEncStrmInt(2) << OSEncStrmEoc();
 * The Impl forms are implicitly tagged: a decode wrapper takes the contents length that the
 * caller read with the identifier, an encode wrapper the identifier to write in place of the
 * universal one. Record values (identifiers, strings) are referred to, not copied, so an
 * encode wrapper lives no longer than its value. */

template <typename T>
struct OSDecStrmRef {
  explicit OSDecStrmRef(T& v) : value(v) {}
  T& value;
};

template <typename T>
struct OSDecStrmImplRef {
  OSDecStrmImplRef(T& v, int len) : value(v), length(len) {}
  T& value;
  int length;
};

template <typename T>
struct OSEncStrmVal {
  explicit OSEncStrmVal(T v) : value(v) {}
  T value;
};

template <typename T>
struct OSEncStrmImplVal {
  OSEncStrmImplVal(T v, ASN1TagType t) : value(v), tag(t) {}
  T value;
  ASN1TagType tag;
};

struct OSDecStrmTag : OSDecStrmRef<ASN1TagType> { using OSDecStrmRef::OSDecStrmRef; };
struct OSDecStrmLength : OSDecStrmRef<int> { using OSDecStrmRef::OSDecStrmRef; };
struct OSDecStrmTagAndLen {
  OSDecStrmTagAndLen(ASN1TagType& t, int& len) : tag(t), length(len) {}
  ASN1TagType& tag;
  int& length;
};
struct OSDecStrmEoc {};
struct OSDecStrmInt : OSDecStrmRef<ASN1INT> { using OSDecStrmRef::OSDecStrmRef; };
struct OSDecStrmInt8 : OSDecStrmRef<ASN1INT8> { using OSDecStrmRef::OSDecStrmRef; };
struct OSDecStrmInt16 : OSDecStrmRef<ASN1SINT> { using OSDecStrmRef::OSDecStrmRef; };
struct OSDecStrmInt64 : OSDecStrmRef<ASN1INT64> { using OSDecStrmRef::OSDecStrmRef; };
struct OSDecStrmUInt : OSDecStrmRef<ASN1UINT> { using OSDecStrmRef::OSDecStrmRef; };
struct OSDecStrmUInt8 : OSDecStrmRef<ASN1UINT8> { using OSDecStrmRef::OSDecStrmRef; };
struct OSDecStrmUInt16 : OSDecStrmRef<ASN1USINT> { using OSDecStrmRef::OSDecStrmRef; };
struct OSDecStrmUInt64 : OSDecStrmRef<ASN1UINT64> { using OSDecStrmRef::OSDecStrmRef; };
struct OSDecStrmEnum : OSDecStrmRef<ASN1ENUM> { using OSDecStrmRef::OSDecStrmRef; };
struct OSDecStrmReal : OSDecStrmRef<ASN1REAL> { using OSDecStrmRef::OSDecStrmRef; };
struct OSDecStrmBigInt : OSDecStrmRef<const char*> { using OSDecStrmRef::OSDecStrmRef; };
struct OSDecStrmBool : OSDecStrmRef<ASN1BOOL> { using OSDecStrmRef::OSDecStrmRef; };
struct OSDecStrmNull {};
/* Fixed strings: numbits / numocts in is the array's capacity, out the count. */
struct OSDecStrmBitStr {
  OSDecStrmBitStr(ASN1OCTET* d, ASN1UINT& n) : data(d), numbits(n) {}
  ASN1OCTET* data;
  ASN1UINT& numbits;
};
struct OSDecStrmDynBitStr : OSDecStrmRef<ASN1DynBitStr> { using OSDecStrmRef::OSDecStrmRef; };
struct OSDecStrmOctStr {
  OSDecStrmOctStr(ASN1OCTET* d, ASN1UINT& n) : data(d), numocts(n) {}
  ASN1OCTET* data;
  ASN1UINT& numocts;
};
struct OSDecStrmDynOctStr : OSDecStrmRef<ASN1DynOctStr> { using OSDecStrmRef::OSDecStrmRef; };
struct OSDecStrmCharStr {
  OSDecStrmCharStr(const char*& v, ASN1TagType t) : value(v), tag(t) {}
  const char*& value;
  ASN1TagType tag;
};
struct OSDecStrmObjId : OSDecStrmRef<ASN1OBJID> { using OSDecStrmRef::OSDecStrmRef; };
struct OSDecStrmObjId64 : OSDecStrmRef<ASN1OID64> { using OSDecStrmRef::OSDecStrmRef; };
struct OSDecStrmRelativeOID : OSDecStrmRef<ASN1RELOID> { using OSDecStrmRef::OSDecStrmRef; };
struct OSDecStrmBMPString : OSDecStrmRef<Asn116BitCharString> {
  using OSDecStrmRef::OSDecStrmRef;
};
struct OSDecStrmUnivString : OSDecStrmRef<Asn132BitCharString> {
  using OSDecStrmRef::OSDecStrmRef;
};

struct OSDecStrmImplInt : OSDecStrmImplRef<ASN1INT> { using OSDecStrmImplRef::OSDecStrmImplRef; };
struct OSDecStrmImplInt8 : OSDecStrmImplRef<ASN1INT8> {
  using OSDecStrmImplRef::OSDecStrmImplRef;
};
struct OSDecStrmImplInt16 : OSDecStrmImplRef<ASN1SINT> {
  using OSDecStrmImplRef::OSDecStrmImplRef;
};
struct OSDecStrmImplInt64 : OSDecStrmImplRef<ASN1INT64> {
  using OSDecStrmImplRef::OSDecStrmImplRef;
};
struct OSDecStrmImplUInt : OSDecStrmImplRef<ASN1UINT> {
  using OSDecStrmImplRef::OSDecStrmImplRef;
};
struct OSDecStrmImplUInt8 : OSDecStrmImplRef<ASN1UINT8> {
  using OSDecStrmImplRef::OSDecStrmImplRef;
};
struct OSDecStrmImplUInt16 : OSDecStrmImplRef<ASN1USINT> {
  using OSDecStrmImplRef::OSDecStrmImplRef;
};
struct OSDecStrmImplUInt64 : OSDecStrmImplRef<ASN1UINT64> {
  using OSDecStrmImplRef::OSDecStrmImplRef;
};
struct OSDecStrmImplEnum : OSDecStrmImplRef<ASN1ENUM> {
  using OSDecStrmImplRef::OSDecStrmImplRef;
};
struct OSDecStrmImplReal : OSDecStrmImplRef<ASN1REAL> {
  using OSDecStrmImplRef::OSDecStrmImplRef;
};
struct OSDecStrmImplBigInt : OSDecStrmImplRef<const char*> {
  using OSDecStrmImplRef::OSDecStrmImplRef;
};
struct OSDecStrmImplBool : OSDecStrmImplRef<ASN1BOOL> {
  using OSDecStrmImplRef::OSDecStrmImplRef;
};
struct OSDecStrmImplNull {
  explicit OSDecStrmImplNull(int len) : length(len) {}
  int length;
};
struct OSDecStrmImplBitStr {
  OSDecStrmImplBitStr(ASN1OCTET* d, ASN1UINT& n, int len) : data(d), numbits(n), length(len) {}
  ASN1OCTET* data;
  ASN1UINT& numbits;
  int length;
};
struct OSDecStrmImplDynBitStr : OSDecStrmImplRef<ASN1DynBitStr> {
  using OSDecStrmImplRef::OSDecStrmImplRef;
};
struct OSDecStrmImplOctStr {
  OSDecStrmImplOctStr(ASN1OCTET* d, ASN1UINT& n, int len) : data(d), numocts(n), length(len) {}
  ASN1OCTET* data;
  ASN1UINT& numocts;
  int length;
};
struct OSDecStrmImplDynOctStr : OSDecStrmImplRef<ASN1DynOctStr> {
  using OSDecStrmImplRef::OSDecStrmImplRef;
};
struct OSDecStrmImplCharStr : OSDecStrmImplRef<const char*> {
  using OSDecStrmImplRef::OSDecStrmImplRef;
};
struct OSDecStrmImplObjId : OSDecStrmImplRef<ASN1OBJID> {
  using OSDecStrmImplRef::OSDecStrmImplRef;
};
struct OSDecStrmImplObjId64 : OSDecStrmImplRef<ASN1OID64> {
  using OSDecStrmImplRef::OSDecStrmImplRef;
};
struct OSDecStrmImplRelativeOID : OSDecStrmImplRef<ASN1RELOID> {
  using OSDecStrmImplRef::OSDecStrmImplRef;
};
struct OSDecStrmImplBMPString : OSDecStrmImplRef<Asn116BitCharString> {
  using OSDecStrmImplRef::OSDecStrmImplRef;
};
struct OSDecStrmImplUnivString : OSDecStrmImplRef<Asn132BitCharString> {
  using OSDecStrmImplRef::OSDecStrmImplRef;
};

struct OSEncStrmTag : OSEncStrmVal<ASN1TagType> { using OSEncStrmVal::OSEncStrmVal; };
struct OSEncStrmLength : OSEncStrmVal<int> { using OSEncStrmVal::OSEncStrmVal; };
struct OSEncStrmTagAndLen {
  OSEncStrmTagAndLen(ASN1TagType t, int len) : tag(t), length(len) {}
  ASN1TagType tag;
  int length;
};
struct OSEncStrmTagAndIndefLen : OSEncStrmVal<ASN1TagType> { using OSEncStrmVal::OSEncStrmVal; };
struct OSEncStrmEoc {};
struct OSEncStrmInt : OSEncStrmVal<ASN1INT> { using OSEncStrmVal::OSEncStrmVal; };
struct OSEncStrmInt8 : OSEncStrmVal<ASN1INT8> { using OSEncStrmVal::OSEncStrmVal; };
struct OSEncStrmInt16 : OSEncStrmVal<ASN1SINT> { using OSEncStrmVal::OSEncStrmVal; };
struct OSEncStrmInt64 : OSEncStrmVal<ASN1INT64> { using OSEncStrmVal::OSEncStrmVal; };
struct OSEncStrmUInt : OSEncStrmVal<ASN1UINT> { using OSEncStrmVal::OSEncStrmVal; };
struct OSEncStrmUInt8 : OSEncStrmVal<ASN1UINT8> { using OSEncStrmVal::OSEncStrmVal; };
struct OSEncStrmUInt16 : OSEncStrmVal<ASN1USINT> { using OSEncStrmVal::OSEncStrmVal; };
struct OSEncStrmUInt64 : OSEncStrmVal<ASN1UINT64> { using OSEncStrmVal::OSEncStrmVal; };
struct OSEncStrmEnum : OSEncStrmVal<ASN1ENUM> { using OSEncStrmVal::OSEncStrmVal; };
struct OSEncStrmReal : OSEncStrmVal<ASN1REAL> { using OSEncStrmVal::OSEncStrmVal; };
struct OSEncStrmBigInt : OSEncStrmVal<const char*> { using OSEncStrmVal::OSEncStrmVal; };
struct OSEncStrmBool : OSEncStrmVal<ASN1BOOL> { using OSEncStrmVal::OSEncStrmVal; };
struct OSEncStrmNull {};
struct OSEncStrmBitStr {
  OSEncStrmBitStr(const ASN1OCTET* d, ASN1UINT n) : data(d), numbits(n) {}
  const ASN1OCTET* data;
  ASN1UINT numbits;
};
struct OSEncStrmDynBitStr : OSEncStrmVal<const ASN1DynBitStr&> {
  using OSEncStrmVal::OSEncStrmVal;
};
struct OSEncStrmOctStr {
  OSEncStrmOctStr(const ASN1OCTET* d, ASN1UINT n) : data(d), numocts(n) {}
  const ASN1OCTET* data;
  ASN1UINT numocts;
};
struct OSEncStrmDynOctStr : OSEncStrmVal<const ASN1DynOctStr&> {
  using OSEncStrmVal::OSEncStrmVal;
};
struct OSEncStrmCharStr {
  OSEncStrmCharStr(const char* v, ASN1TagType t) : value(v), tag(t) {}
  const char* value;
  ASN1TagType tag;
};
struct OSEncStrmObjId : OSEncStrmVal<const ASN1OBJID&> { using OSEncStrmVal::OSEncStrmVal; };
struct OSEncStrmObjId64 : OSEncStrmVal<const ASN1OID64&> { using OSEncStrmVal::OSEncStrmVal; };
struct OSEncStrmRelativeOID : OSEncStrmVal<const ASN1RELOID&> {
  using OSEncStrmVal::OSEncStrmVal;
};
struct OSEncStrmBMPString : OSEncStrmVal<const Asn116BitCharString&> {
  using OSEncStrmVal::OSEncStrmVal;
};
struct OSEncStrmUnivString : OSEncStrmVal<const Asn132BitCharString&> {
  using OSEncStrmVal::OSEncStrmVal;
};

struct OSEncStrmImplInt : OSEncStrmImplVal<ASN1INT> { using OSEncStrmImplVal::OSEncStrmImplVal; };
struct OSEncStrmImplInt8 : OSEncStrmImplVal<ASN1INT8> {
  using OSEncStrmImplVal::OSEncStrmImplVal;
};
struct OSEncStrmImplInt16 : OSEncStrmImplVal<ASN1SINT> {
  using OSEncStrmImplVal::OSEncStrmImplVal;
};
struct OSEncStrmImplInt64 : OSEncStrmImplVal<ASN1INT64> {
  using OSEncStrmImplVal::OSEncStrmImplVal;
};
struct OSEncStrmImplUInt : OSEncStrmImplVal<ASN1UINT> {
  using OSEncStrmImplVal::OSEncStrmImplVal;
};
struct OSEncStrmImplUInt8 : OSEncStrmImplVal<ASN1UINT8> {
  using OSEncStrmImplVal::OSEncStrmImplVal;
};
struct OSEncStrmImplUInt16 : OSEncStrmImplVal<ASN1USINT> {
  using OSEncStrmImplVal::OSEncStrmImplVal;
};
struct OSEncStrmImplUInt64 : OSEncStrmImplVal<ASN1UINT64> {
  using OSEncStrmImplVal::OSEncStrmImplVal;
};
struct OSEncStrmImplEnum : OSEncStrmImplVal<ASN1ENUM> {
  using OSEncStrmImplVal::OSEncStrmImplVal;
};
struct OSEncStrmImplReal : OSEncStrmImplVal<ASN1REAL> {
  using OSEncStrmImplVal::OSEncStrmImplVal;
};
struct OSEncStrmImplBigInt : OSEncStrmImplVal<const char*> {
  using OSEncStrmImplVal::OSEncStrmImplVal;
};
struct OSEncStrmImplBool : OSEncStrmImplVal<ASN1BOOL> {
  using OSEncStrmImplVal::OSEncStrmImplVal;
};
struct OSEncStrmImplNull {
  explicit OSEncStrmImplNull(ASN1TagType t) : tag(t) {}
  ASN1TagType tag;
};
struct OSEncStrmImplBitStr {
  OSEncStrmImplBitStr(const ASN1OCTET* d, ASN1UINT n, ASN1TagType t)
      : data(d), numbits(n), tag(t) {}
  const ASN1OCTET* data;
  ASN1UINT numbits;
  ASN1TagType tag;
};
struct OSEncStrmImplDynBitStr : OSEncStrmImplVal<const ASN1DynBitStr&> {
  using OSEncStrmImplVal::OSEncStrmImplVal;
};
struct OSEncStrmImplOctStr {
  OSEncStrmImplOctStr(const ASN1OCTET* d, ASN1UINT n, ASN1TagType t)
      : data(d), numocts(n), tag(t) {}
  const ASN1OCTET* data;
  ASN1UINT numocts;
  ASN1TagType tag;
};
struct OSEncStrmImplDynOctStr : OSEncStrmImplVal<const ASN1DynOctStr&> {
  using OSEncStrmImplVal::OSEncStrmImplVal;
};
struct OSEncStrmImplCharStr : OSEncStrmImplVal<const char*> {
  using OSEncStrmImplVal::OSEncStrmImplVal;
};
struct OSEncStrmImplObjId : OSEncStrmImplVal<const ASN1OBJID&> {
  using OSEncStrmImplVal::OSEncStrmImplVal;
};
struct OSEncStrmImplObjId64 : OSEncStrmImplVal<const ASN1OID64&> {
  using OSEncStrmImplVal::OSEncStrmImplVal;
};
struct OSEncStrmImplRelativeOID : OSEncStrmImplVal<const ASN1RELOID&> {
  using OSEncStrmImplVal::OSEncStrmImplVal;
};
struct OSEncStrmImplBMPString : OSEncStrmImplVal<const Asn116BitCharString&> {
  using OSEncStrmImplVal::OSEncStrmImplVal;
};
struct OSEncStrmImplUnivString : OSEncStrmImplVal<const Asn132BitCharString&> {
  using OSEncStrmImplVal::OSEncStrmImplVal;
};

/* ---- BER input stream ------------------------------------------------------------------- */

/* Reads BER from its stream. The named members return the buffer decoders' result (0) and
 * throw OSCStreamException on failure; tagging and length are as for the C decoders. The
 * default object has buffering but no device: attach one to getCtxtPtr() (rtStreamMemoryAttach,
 * rtStreamFileAttach). */
class QN_API ASN1BERInputStream : public ASN1Stream {
 protected:
  explicit ASN1BERInputStream(ASN1OCTET buffered) : ASN1Stream(buffered) {}

 public:
  ASN1BERInputStream() {}

  int decodeTag(ASN1TagType& tag);
  int decodeLength(int& length);
  int decodeTagAndLen(ASN1TagType& tag, int& length);
  int decodeEoc();
  int peekTag(ASN1TagType& tag);
  int skipElement();

  int decodeInt(ASN1INT& value, int tagging = ASN1EXPL, int length = 0);
  int decodeInt8(ASN1INT8& value, int tagging = ASN1EXPL, int length = 0);
  int decodeInt16(ASN1SINT& value, int tagging = ASN1EXPL, int length = 0);
  int decodeInt64(ASN1INT64& value, int tagging = ASN1EXPL, int length = 0);
  int decodeUInt(ASN1UINT& value, int tagging = ASN1EXPL, int length = 0);
  int decodeUInt8(ASN1UINT8& value, int tagging = ASN1EXPL, int length = 0);
  int decodeUInt16(ASN1USINT& value, int tagging = ASN1EXPL, int length = 0);
  int decodeUInt64(ASN1UINT64& value, int tagging = ASN1EXPL, int length = 0);
  int decodeEnum(ASN1ENUM& value, int tagging = ASN1EXPL, int length = 0);
  int decodeReal(ASN1REAL& value, int tagging = ASN1EXPL, int length = 0);
  int decodeBigInt(const char*& value, int tagging = ASN1EXPL, int length = 0);
  int decodeBool(ASN1BOOL& value, int tagging = ASN1EXPL, int length = 0);
  int decodeNull(int tagging = ASN1EXPL, int length = 0);
  int decodeBitStr(ASN1OCTET* data, ASN1UINT& numbits, int tagging = ASN1EXPL, int length = 0);
  int decodeBitStr(ASN1DynBitStr& value, int tagging = ASN1EXPL, int length = 0);
  int decodeOctStr(ASN1OCTET* data, ASN1UINT& numocts, int tagging = ASN1EXPL, int length = 0);
  int decodeOctStr(ASN1DynOctStr& value, int tagging = ASN1EXPL, int length = 0);
  int decodeCharStr(const char*& value, ASN1TagType tag, int tagging = ASN1EXPL,
                    int length = 0);
  int decodeObjId(ASN1OBJID& value, int tagging = ASN1EXPL, int length = 0);
  int decodeObjId64(ASN1OID64& value, int tagging = ASN1EXPL, int length = 0);
  int decodeRelativeOID(ASN1RELOID& value, int tagging = ASN1EXPL, int length = 0);
  int decodeBMPStr(Asn116BitCharString& value, int tagging = ASN1EXPL, int length = 0);
  int decodeUnivStr(Asn132BitCharString& value, int tagging = ASN1EXPL, int length = 0);
  /* Reads the next complete element into the context's heap and lets the control class decode
   * it as from a decode buffer (its DecodeFrom with this stream); the element's memory is
   * kept only when fast copy leaves values pointing into it. */
  int decodeObj(ASN1CType& c);

  /* Starts a constructed value whose header was just read; chkend tells its end. */
  void initCCB(ASN1StrmCCB& ccb, int length);
  int chkend(ASN1StrmCCB& ccb);
  /* Bytes consumed so far. */
  long byteIndex();
  /* Remembers the position for reset() while no more than readAheadLimit bytes are read. */
  void mark(int readAheadLimit);
  void reset();

  ASN1BERInputStream& operator>>(ASN1CType& c);
  ASN1BERInputStream& operator>>(const OSDecStrmTag& w);
  ASN1BERInputStream& operator>>(const OSDecStrmLength& w);
  ASN1BERInputStream& operator>>(const OSDecStrmTagAndLen& w);
  ASN1BERInputStream& operator>>(const OSDecStrmEoc& w);
  ASN1BERInputStream& operator>>(const OSDecStrmInt& w);
  ASN1BERInputStream& operator>>(const OSDecStrmInt8& w);
  ASN1BERInputStream& operator>>(const OSDecStrmInt16& w);
  ASN1BERInputStream& operator>>(const OSDecStrmInt64& w);
  ASN1BERInputStream& operator>>(const OSDecStrmUInt& w);
  ASN1BERInputStream& operator>>(const OSDecStrmUInt8& w);
  ASN1BERInputStream& operator>>(const OSDecStrmUInt16& w);
  ASN1BERInputStream& operator>>(const OSDecStrmUInt64& w);
  ASN1BERInputStream& operator>>(const OSDecStrmEnum& w);
  ASN1BERInputStream& operator>>(const OSDecStrmReal& w);
  ASN1BERInputStream& operator>>(const OSDecStrmBigInt& w);
  ASN1BERInputStream& operator>>(const OSDecStrmBool& w);
  ASN1BERInputStream& operator>>(const OSDecStrmNull& w);
  ASN1BERInputStream& operator>>(const OSDecStrmBitStr& w);
  ASN1BERInputStream& operator>>(const OSDecStrmDynBitStr& w);
  ASN1BERInputStream& operator>>(const OSDecStrmOctStr& w);
  ASN1BERInputStream& operator>>(const OSDecStrmDynOctStr& w);
  ASN1BERInputStream& operator>>(const OSDecStrmCharStr& w);
  ASN1BERInputStream& operator>>(const OSDecStrmObjId& w);
  ASN1BERInputStream& operator>>(const OSDecStrmObjId64& w);
  ASN1BERInputStream& operator>>(const OSDecStrmRelativeOID& w);
  ASN1BERInputStream& operator>>(const OSDecStrmBMPString& w);
  ASN1BERInputStream& operator>>(const OSDecStrmUnivString& w);
  ASN1BERInputStream& operator>>(const OSDecStrmImplInt& w);
  ASN1BERInputStream& operator>>(const OSDecStrmImplInt8& w);
  ASN1BERInputStream& operator>>(const OSDecStrmImplInt16& w);
  ASN1BERInputStream& operator>>(const OSDecStrmImplInt64& w);
  ASN1BERInputStream& operator>>(const OSDecStrmImplUInt& w);
  ASN1BERInputStream& operator>>(const OSDecStrmImplUInt8& w);
  ASN1BERInputStream& operator>>(const OSDecStrmImplUInt16& w);
  ASN1BERInputStream& operator>>(const OSDecStrmImplUInt64& w);
  ASN1BERInputStream& operator>>(const OSDecStrmImplEnum& w);
  ASN1BERInputStream& operator>>(const OSDecStrmImplReal& w);
  ASN1BERInputStream& operator>>(const OSDecStrmImplBigInt& w);
  ASN1BERInputStream& operator>>(const OSDecStrmImplBool& w);
  ASN1BERInputStream& operator>>(const OSDecStrmImplNull& w);
  ASN1BERInputStream& operator>>(const OSDecStrmImplBitStr& w);
  ASN1BERInputStream& operator>>(const OSDecStrmImplDynBitStr& w);
  ASN1BERInputStream& operator>>(const OSDecStrmImplOctStr& w);
  ASN1BERInputStream& operator>>(const OSDecStrmImplDynOctStr& w);
  ASN1BERInputStream& operator>>(const OSDecStrmImplCharStr& w);
  ASN1BERInputStream& operator>>(const OSDecStrmImplObjId& w);
  ASN1BERInputStream& operator>>(const OSDecStrmImplObjId64& w);
  ASN1BERInputStream& operator>>(const OSDecStrmImplRelativeOID& w);
  ASN1BERInputStream& operator>>(const OSDecStrmImplBMPString& w);
  ASN1BERInputStream& operator>>(const OSDecStrmImplUnivString& w);
};

/* ---- BER output stream ------------------------------------------------------------------ */

/* Writes BER to its stream; the named members return the octets written and throw
 * OSCStreamException on failure. Output is staged in blocks: flush() or close() passes the rest
 * on (releasing the stream does too). The default object has no device: attach one to
 * getCtxtPtr() (rtStreamMemoryCreate, rtStreamFileAttach). */
class QN_API ASN1BEROutputStream : public ASN1Stream {
 protected:
  explicit ASN1BEROutputStream(ASN1OCTET buffered) : ASN1Stream(buffered) {}

 public:
  ASN1BEROutputStream() {}

  int encodeTag(ASN1TagType tag);
  int encodeLength(int length);
  int encodeTagAndLen(ASN1TagType tag, int length);
  int encodeTagAndIndefLen(ASN1TagType tag);
  int encodeEoc();

  int encodeInt(ASN1INT value, int tagging = ASN1EXPL);
  int encodeInt8(ASN1INT8 value, int tagging = ASN1EXPL);
  int encodeInt16(ASN1SINT value, int tagging = ASN1EXPL);
  int encodeInt64(ASN1INT64 value, int tagging = ASN1EXPL);
  int encodeUInt(ASN1UINT value, int tagging = ASN1EXPL);
  int encodeUInt8(ASN1UINT8 value, int tagging = ASN1EXPL);
  int encodeUInt16(ASN1USINT value, int tagging = ASN1EXPL);
  int encodeUInt64(ASN1UINT64 value, int tagging = ASN1EXPL);
  int encodeEnum(ASN1ENUM value, int tagging = ASN1EXPL);
  int encodeReal(ASN1REAL value, int tagging = ASN1EXPL);
  int encodeBigInt(const char* value, int tagging = ASN1EXPL);
  int encodeBool(ASN1BOOL value, int tagging = ASN1EXPL);
  int encodeNull(int tagging = ASN1EXPL);
  int encodeBitStr(const ASN1OCTET* data, ASN1UINT numbits, int tagging = ASN1EXPL);
  int encodeBitStr(const ASN1DynBitStr& value, int tagging = ASN1EXPL);
  int encodeOctStr(const ASN1OCTET* data, ASN1UINT numocts, int tagging = ASN1EXPL);
  int encodeOctStr(const ASN1DynOctStr& value, int tagging = ASN1EXPL);
  int encodeCharStr(const char* value, ASN1TagType tag, int tagging = ASN1EXPL);
  int encodeObjId(const ASN1OBJID& value, int tagging = ASN1EXPL);
  int encodeObjId64(const ASN1OID64& value, int tagging = ASN1EXPL);
  int encodeRelativeOID(const ASN1RELOID& value, int tagging = ASN1EXPL);
  int encodeBMPStr(const Asn116BitCharString& value, int tagging = ASN1EXPL);
  int encodeUnivStr(const Asn132BitCharString& value, int tagging = ASN1EXPL);
  /* Encodes the control class's value (its EncodeTo with this stream, into a backward buffer
   * of the context) and writes the result. */
  int encodeObj(ASN1CType& c);

  ASN1BEROutputStream& operator<<(ASN1CType& c);
  ASN1BEROutputStream& operator<<(const OSEncStrmTag& w);
  ASN1BEROutputStream& operator<<(const OSEncStrmLength& w);
  ASN1BEROutputStream& operator<<(const OSEncStrmTagAndLen& w);
  ASN1BEROutputStream& operator<<(const OSEncStrmTagAndIndefLen& w);
  ASN1BEROutputStream& operator<<(const OSEncStrmEoc& w);
  ASN1BEROutputStream& operator<<(const OSEncStrmInt& w);
  ASN1BEROutputStream& operator<<(const OSEncStrmInt8& w);
  ASN1BEROutputStream& operator<<(const OSEncStrmInt16& w);
  ASN1BEROutputStream& operator<<(const OSEncStrmInt64& w);
  ASN1BEROutputStream& operator<<(const OSEncStrmUInt& w);
  ASN1BEROutputStream& operator<<(const OSEncStrmUInt8& w);
  ASN1BEROutputStream& operator<<(const OSEncStrmUInt16& w);
  ASN1BEROutputStream& operator<<(const OSEncStrmUInt64& w);
  ASN1BEROutputStream& operator<<(const OSEncStrmEnum& w);
  ASN1BEROutputStream& operator<<(const OSEncStrmReal& w);
  ASN1BEROutputStream& operator<<(const OSEncStrmBigInt& w);
  ASN1BEROutputStream& operator<<(const OSEncStrmBool& w);
  ASN1BEROutputStream& operator<<(const OSEncStrmNull& w);
  ASN1BEROutputStream& operator<<(const OSEncStrmBitStr& w);
  ASN1BEROutputStream& operator<<(const OSEncStrmDynBitStr& w);
  ASN1BEROutputStream& operator<<(const OSEncStrmOctStr& w);
  ASN1BEROutputStream& operator<<(const OSEncStrmDynOctStr& w);
  ASN1BEROutputStream& operator<<(const OSEncStrmCharStr& w);
  ASN1BEROutputStream& operator<<(const OSEncStrmObjId& w);
  ASN1BEROutputStream& operator<<(const OSEncStrmObjId64& w);
  ASN1BEROutputStream& operator<<(const OSEncStrmRelativeOID& w);
  ASN1BEROutputStream& operator<<(const OSEncStrmBMPString& w);
  ASN1BEROutputStream& operator<<(const OSEncStrmUnivString& w);
  ASN1BEROutputStream& operator<<(const OSEncStrmImplInt& w);
  ASN1BEROutputStream& operator<<(const OSEncStrmImplInt8& w);
  ASN1BEROutputStream& operator<<(const OSEncStrmImplInt16& w);
  ASN1BEROutputStream& operator<<(const OSEncStrmImplInt64& w);
  ASN1BEROutputStream& operator<<(const OSEncStrmImplUInt& w);
  ASN1BEROutputStream& operator<<(const OSEncStrmImplUInt8& w);
  ASN1BEROutputStream& operator<<(const OSEncStrmImplUInt16& w);
  ASN1BEROutputStream& operator<<(const OSEncStrmImplUInt64& w);
  ASN1BEROutputStream& operator<<(const OSEncStrmImplEnum& w);
  ASN1BEROutputStream& operator<<(const OSEncStrmImplReal& w);
  ASN1BEROutputStream& operator<<(const OSEncStrmImplBigInt& w);
  ASN1BEROutputStream& operator<<(const OSEncStrmImplBool& w);
  ASN1BEROutputStream& operator<<(const OSEncStrmImplNull& w);
  ASN1BEROutputStream& operator<<(const OSEncStrmImplBitStr& w);
  ASN1BEROutputStream& operator<<(const OSEncStrmImplDynBitStr& w);
  ASN1BEROutputStream& operator<<(const OSEncStrmImplOctStr& w);
  ASN1BEROutputStream& operator<<(const OSEncStrmImplDynOctStr& w);
  ASN1BEROutputStream& operator<<(const OSEncStrmImplCharStr& w);
  ASN1BEROutputStream& operator<<(const OSEncStrmImplObjId& w);
  ASN1BEROutputStream& operator<<(const OSEncStrmImplObjId64& w);
  ASN1BEROutputStream& operator<<(const OSEncStrmImplRelativeOID& w);
  ASN1BEROutputStream& operator<<(const OSEncStrmImplBMPString& w);
  ASN1BEROutputStream& operator<<(const OSEncStrmImplUnivString& w);
};

/* ---- File variants ---------------------------------------------------------------------- */

/* Reads BER from a file it opens by name (closed with the stream) or the caller's FILE. */
class QN_API ASN1BERFileInputStream : public ASN1BERInputStream {
 public:
  explicit ASN1BERFileInputStream(const char* pFilename);
  explicit ASN1BERFileInputStream(FILE* file);
};

/* Writes BER to a file it creates by name (closed with the stream) or the caller's FILE. */
class QN_API ASN1BERFileOutputStream : public ASN1BEROutputStream {
 public:
  explicit ASN1BERFileOutputStream(const char* pFilename);
  explicit ASN1BERFileOutputStream(FILE* file);
};

#endif /* __cplusplus */

#endif
