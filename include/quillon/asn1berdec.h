/*
 * BER/DER decoding out of the context's message buffer, front to back: buffer.byteIndex is the
 * next octet to read, buffer.size the end of the data. Every function returns 0 (or the value
 * documented) on success, or a negative status that it has recorded in the context's error
 * record with its module and line. A failed peek or match leaves the position where it was.
 *
 * Tagging argument of the primitive decoders: ASN1EXPL (1) reads and checks the universal tag
 * and the length; ASN1IMPL (0) means the caller has read them and passes the contents length
 * (ASN_K_INDEFLEN for an indefinite one).
 *
 * Values are allocated from the context's memHeap; nothing needs freeing one by one. With fast
 * copy (rtSetFastCopy) octet and bit strings of primitive encoding and open types point into
 * the message instead, which must then outlive the value.
 *
 * Every read is bounded by buffer.size, also under ASN1INDEFLEN: a stream attached with an
 * unknown size has size 0x7FFFFFFF, so the bound costs it nothing and protects a caller's buffer
 * of known size whose message happens to have an indefinite outer length.
 */
#ifndef QUILLON_ASN1BERDEC_H
#define QUILLON_ASN1BERDEC_H

#include "asn1type.h"

QN_BEGIN_C

/* Flags of xd_tag_len and xd_match. */
#define XM_SKIP 0x01    /* xd_match: step over (into, if constructed) elements that differ */
#define XM_ADVANCE 0x02 /* leave the position behind the header read; otherwise only peek */
#define XM_ENTER 0x08   /* xd_match: first consume one enclosing tag and length */

/* Stop tag of xd_OpenTypeExt meaning "collect up to the end of the constructed value". */
#ifndef ASN_K_NOTAG
#define ASN_K_NOTAG 0xFFFFFFFFu
#endif

/* Where a constructed value's contents began and how long they are (ASN_K_INDEFLEN when they
 * end with end-of-contents octets). Filled by the caller right after reading the header. */
typedef struct ASN1CCB {
  const ASN1OCTET* ptr;
  ASN1INT len;
} ASN1CCB;

/* Position and flags word, for look-ahead that must be undone. */
typedef struct ASN1BUFSAVE {
  ASN1UINT byteIndex;
  ASN1USINT flags;
} ASN1BUFSAVE;

/* ---- Buffer, tags and lengths ----------------------------------------------------------- */

/* Attaches msg (not copied, not owned) as a static buffer of msglen octets (below 1: unknown,
 * 0x7FFFFFFF) and reads the outer header. A definite outer length shrinks the size to the
 * message; an indefinite one sets ASN1INDEFLEN and reports ASN_K_INDEFLEN. The position goes
 * back to 0. -5 when the message is longer than msglen, -2 when its header is cut short,
 * -30 for a null msg. tag_p and len_p may be null. */
QN_API int xd_setp(ASN1CTXT* pctxt, const ASN1OCTET* msg, int msglen, ASN1TagType* tag_p,
                   int* len_p);

/* Reads one identifier and one length. With XM_ADVANCE the position moves behind them and
 * ASN1CONSTAG follows the tag's constructed bit; without it nothing changes (a peek).
 * -2 at the end of the data, -5 for a bad length or an indefinite one on a primitive tag,
 * -21 for a tag number beyond 29 bits. */
QN_API int xd_tag_len(ASN1CTXT* pctxt, ASN1TagType* tag_p, int* len_p, ASN1OCTET flags);

/* Reads a length at the position and moves behind it: ASN_K_INDEFLEN for 0x80. -2 when the
 * octets run out, -5 for more than four length octets or a length beyond the data. */
QN_API int xd_len(ASN1CTXT* pctxt, int* len_p);

/* Skips a one-octet identifier (setting ASN1CONSTAG from it) and reads the length. */
QN_API int xd_Tag1AndLen(ASN1CTXT* pctxt, int* len_p);

/* Compares the next tag with tag, ignoring the constructed bit; flags XM_SKIP, XM_ADVANCE,
 * XM_ENTER. On a match stores the length (len_p may be null). A mismatch, or the end of the
 * data, gives -3 with the expected and the parsed tag as error parameters, position restored.
 * A header of tag 0 and length 0 matched with XM_ADVANCE consumes end-of-contents octets. */
QN_API int xd_match(ASN1CTXT* pctxt, ASN1TagType tag, int* len_p, ASN1OCTET flags);

/* xd_match with XM_ADVANCE for a tag given as its identifier octet (number below 31), e.g.
 * 0x04 for OCTET STRING or 0xA0 for [0]; the constructed bit 0x20 is ignored. */
QN_API int xd_match1(ASN1CTXT* pctxt, ASN1OCTET tag, int* len_p);

/* 1 when the position is at the end of the constructed value ccb describes, else 0. For an
 * indefinite one the end is the end-of-contents header, which is left unread, or the end of
 * the data. Never records an error. */
QN_API int xd_chkend(ASN1CTXT* pctxt, ASN1CCB* ccb_p);

/* Skips one complete element, of definite or indefinite length. */
QN_API int xd_NextElement(ASN1CTXT* pctxt);

/* From inside an indefinite-length value, moves just behind its end-of-contents octets,
 * stepping over nested values of either length form. -2 if they never come. */
QN_API int xd_MovePastEOC(ASN1CTXT* pctxt);

/* Counts the elements of the constructed contents that start at the position (length octets
 * long, or up to end-of-contents octets for ASN_K_INDEFLEN). The position is not moved. */
QN_API int xd_count(ASN1CTXT* pctxt, int length, int* count_p);

/* Full length (header, contents and end-of-contents octets) of the encoding at msg_p, whose
 * outer length is indefinite, reading at most bufSize octets (below 1: 0x7FFFFFFF). Returns the
 * length, or -5 for a definite outer length, -2 when the data end first, -30 for a null msg_p.
 * Records nothing: there is no context. */
QN_API int xd_indeflen_ex(const ASN1OCTET* msg_p, int bufSize);

QN_API void xu_SaveBufferState(ASN1CTXT* pctxt, ASN1BUFSAVE* pSavedInfo);
QN_API void xu_RestoreBufferState(ASN1CTXT* pctxt, ASN1BUFSAVE* pSavedInfo);

/* Copies length octets from the position into object_p and moves past them; -2 when fewer
 * remain. */
QN_API int xd_memcpy(ASN1CTXT* pctxt, ASN1OCTET* object_p, int length);

/* For a constructed string whose contents start at the position: *len_p in is the contents
 * length (ASN_K_INDEFLEN allowed), out the octets they span, end-of-contents included; *size_p
 * receives the contents size once joined (for tag ASN_ID_BITSTR the data octets plus the one
 * unused-bits octet). tag is the segments' universal tag: ASN_ID_OCTSTR or ASN_ID_BITSTR.
 * The position is not moved. -22 when segments nest more than 32 deep, -3 for a segment of
 * another type, -5 for segments that overrun their parent. */
QN_API int xd_consStrIndefLenAndSize(ASN1CTXT* pctxt, ASN1TagType tag, int* len_p,
                                     int* size_p);

/* ---- Primitive values ------------------------------------------------------------------- */

/* INTEGER into 8, 16, 32 and 64 bits; ENUMERATED. -33 when the contents are wider than the
 * target, -5 when empty. */
QN_API int xd_integer(ASN1CTXT* pctxt, ASN1INT* object_p, int tagging, int length);
QN_API int xd_int8(ASN1CTXT* pctxt, ASN1INT8* object_p, int tagging, int length);
QN_API int xd_int16(ASN1CTXT* pctxt, ASN1SINT* object_p, int tagging, int length);
QN_API int xd_int64(ASN1CTXT* pctxt, ASN1INT64* object_p, int tagging, int length);
QN_API int xd_enum(ASN1CTXT* pctxt, ASN1ENUM* object_p, int tagging, int length);

/* INTEGER into unsigned targets. One leading 0x00 octet beyond the width is allowed. Leniently,
 * a negative INTEGER that fits gives its two's-complement pattern, and empty contents give 0. */
QN_API int xd_unsigned(ASN1CTXT* pctxt, ASN1UINT* object_p, int tagging, int length);
QN_API int xd_uint8(ASN1CTXT* pctxt, ASN1UINT8* object_p, int tagging, int length);
QN_API int xd_uint16(ASN1CTXT* pctxt, ASN1USINT* object_p, int tagging, int length);
QN_API int xd_uint64(ASN1CTXT* pctxt, ASN1UINT64* object_p, int tagging, int length);

/* BOOLEAN: the contents octet as it stands (any non-zero octet is true). -5 unless length 1. */
QN_API int xd_boolean(ASN1CTXT* pctxt, ASN1BOOL* object_p, int tagging, int length);

/* NULL: -5 unless the contents are empty (length is the caller's with ASN1IMPL). */
QN_API int xd_null(ASN1CTXT* pctxt, int tagging, int length);

/* BIT STRING, primitive or constructed. *object_p2 is heap memory, or with fast copy on a
 * primitive encoding a pointer into the message; null for no bits. -18 for an unused-bits
 * count above 7. */
QN_API int xd_bitstr(ASN1CTXT* pctxt, const ASN1OCTET** object_p2, ASN1UINT* numbits_p,
                     int tagging, int length);
/* BIT STRING into the caller's array: *numbits_p in is its capacity in bits, out the number of
 * bits. -17 when the string is longer. */
QN_API int xd_bitstr_s(ASN1CTXT* pctxt, ASN1OCTET* object_p, ASN1UINT* numbits_p, int tagging,
                       int length);

/* OCTET STRING, primitive or constructed; *object_p2 as for xd_bitstr, null when empty. */
QN_API int xd_octstr(ASN1CTXT* pctxt, const ASN1OCTET** object_p2, ASN1UINT* numocts_p,
                     int tagging, int length);
/* OCTET STRING into the caller's array: *numocts_p in is its capacity, out the count; -17 when
 * the string is longer. */
QN_API int xd_octstr_s(ASN1CTXT* pctxt, ASN1OCTET* object_p, ASN1UINT* numocts_p, int tagging,
                       int length);

/* Character string of universal tag tag (e.g. ASN_ID_IA5String) as zero-terminated text from
 * the heap (always copied), primitive or constructed. */
QN_API int xd_charstr(ASN1CTXT* pctxt, const char** object_p, int tagging, ASN1TagType tag,
                      int length);
/* BMPString-like and UniversalString-like strings: 2 or 4 octets a character, most significant
 * first; -5 when the contents are not a whole number of characters. */
QN_API int xd_16BitCharStr(ASN1CTXT* pctxt, Asn116BitCharString* object_p, int tagging,
                           ASN1TagType tag, int length);
QN_API int xd_32BitCharStr(ASN1CTXT* pctxt, Asn132BitCharString* object_p, int tagging,
                           ASN1TagType tag, int length);

/* OBJECT IDENTIFIER with 32-bit or 64-bit arcs, RELATIVE-OID. -5 when empty, -4 when an arc
 * overflows its width. More than 128 arcs keep the first 128 and return -4 unrecorded, for
 * the caller to record. A last subidentifier cut off by the end of the contents is taken as
 * it stands. */
QN_API int xd_objid(ASN1CTXT* pctxt, ASN1OBJID* object_p, int tagging, int length);
QN_API int xd_oid64(ASN1CTXT* pctxt, ASN1OID64* object_p, int tagging, int length);
QN_API int xd_reloid(ASN1CTXT* pctxt, ASN1RELOID* object_p, int tagging, int length);

/* REAL in binary (bases 2, 8, 16), decimal and special forms; -16 for a malformed one. */
QN_API int xd_real(ASN1CTXT* pctxt, ASN1REAL* object_p, int tagging, int length);

/* INTEGER of any size as text from the heap: "0x" and lowercase hex digits of the magnitude
 * (whole octets, redundant leading zero octets dropped), "-0x..." when negative. -5 when
 * empty. */
QN_API int xd_bigint(ASN1CTXT* pctxt, const char** object_p, int tagging, int length);

/* ---- Open types ------------------------------------------------------------------------- */

/* The next complete element (tag, length, contents) as it stands: copied to the heap, or with
 * fast copy a pointer into the message. */
QN_API int xd_OpenType(ASN1CTXT* pctxt, const ASN1OCTET** object_p2, ASN1UINT* numocts_p);
/* Collects the elements up to the end of the constructed value of ccb_p, or up to an element
 * whose tag is tag (ASN_K_NOTAG: no such stop), appending each to pElemList as by
 * xd_OpenTypeAppend; a null list skips them. */
QN_API int xd_OpenTypeExt(ASN1CTXT* pctxt, ASN1CCB* ccb_p, ASN1TagType tag,
                          _Asn1RTDList* pElemList);
/* Appends the next element to pElemList as an ASN1TOpenType, allocated with its node; its
 * octets are always copied, fast copy or not, so rtMemFreeOpenSeqExt can free them. */
QN_API int xd_OpenTypeAppend(ASN1CTXT* pctxt, _Asn1RTDList* pElemList);

QN_END_C

#endif
