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
 * statuses: each makes the next element available in memory and runs the buffer decoder over
 * it. An element that fits the stream's read buffer is decoded in place there, and left unread
 * when it fails to decode; a larger one is read into the context's heap first (an octet or bit
 * string straight into the memory of its value). Their tagging argument is that of the buffer
 * decoders: ASN1IMPL means the caller has read the identifier and the length (berDecStrmTag,
 * berDecStrmTagAndLen, berDecStrmMatchTag, which set ASN1CONSTAG from the identifier) and passes
 * the contents length, ASN_K_INDEFLEN for an indefinite one. Fast copy does not apply: a stream
 * keeps no message to point into. An input stream without buffering gets it on first use.
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

#endif
