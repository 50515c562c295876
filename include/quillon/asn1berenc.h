/*
 * BER/DER encoding into the context's message buffer, back to front.
 *
 * Every encoder writes its contents first and then, with explicit tagging (tagging = 1), the
 * universal tag and length in front of them; with implicit tagging (0) only the contents, so
 * the caller can put its own tag around them. Each returns the number of octets it wrote, or a
 * negative status recorded in the context's error record. Nothing already written is taken
 * back on failure. A dynamic buffer grows at its front when full; a caller's static buffer
 * cannot grow and yields -1 ("Encode buffer overflow").
 *
 * The finished encoding starts at xe_getp() and runs to the octet before the buffer's last,
 * which xe_setp leaves unused.
 */
#ifndef QUILLON_ASN1BERENC_H
#define QUILLON_ASN1BERENC_H

#include "asn1type.h"

QN_BEGIN_C

/* Where a finished component lies: its length and its distance from the buffer's end, which
 * stays valid when the buffer grows (growth adds room at the front). */
typedef struct Asn1BufLocDescr {
  ASN1INT numocts;
  ASN1INT offset;
} Asn1BufLocDescr;

/* ---- Buffer ----------------------------------------------------------------------------- */

/* Attaches buf_p (bufsiz octets, not owned) or, with a null buf_p, a dynamic buffer of bufsiz
 * octets (0: 16384) from the context's heap, and positions at its end. Always returns 0: a
 * failed attachment shows as a buffer with no room, and the first write reports it. */
QN_API int xe_setp(ASN1CTXT* pctxt, ASN1OCTET* buf_p, int bufsiz);
/* Start of the encoding written so far. */
QN_API ASN1OCTET* xe_getp(ASN1CTXT* pctxt);
/* Frees a dynamic buffer and detaches it; leaves a caller's buffer alone. */
QN_API void xe_free(ASN1CTXT* pctxt);
/* Grows a dynamic buffer by at least max(length, 16384) octets at its front, keeping what was
 * written. -1 for a static buffer, -12 when memory runs out or the size would pass 2 GiB. */
QN_API int xe_expandBuffer(ASN1CTXT* pctxt, ASN1UINT length);
/* Writes length octets from object_p in front of the encoding: length, -18 for null bytes, or
 * the status of growth. */
QN_API int xe_memcpy(ASN1CTXT* pctxt, const ASN1OCTET* object_p, ASN1UINT length);
/* Records where the component just finished (length octets) lies, for xe_derCanonicalSort. */
QN_API void xe_getBufLocDescr(ASN1CTXT* pctxt, ASN1INT length, Asn1BufLocDescr* pDescr);

/* ---- Tags and lengths ------------------------------------------------------------------- */

/* Identifier octets of tag (class, constructed bit, number in one word); their count. */
QN_API int xe_tag(ASN1CTXT* pctxt, ASN1TagType tag);
/* value as a base-128 number, 7 bits an octet, continuation bit on all but the last. */
QN_API int xe_identifier(ASN1CTXT* pctxt, ASN1UINT value);
/* Length octets: short form to 127, long form above, 0x80 for -9999 (indefinite). Any other
 * negative length writes nothing and returns 0. */
QN_API int xe_len(ASN1CTXT* pctxt, int length);
/* Length then tag in front of contents of length octets; returns length + header octets, or
 * the header octets alone for -9999 (the caller writes and counts the contents and the
 * end-of-contents octets). Any other negative length is a status and is returned as it is. */
QN_API int xe_tag_len(ASN1CTXT* pctxt, ASN1TagType tag, int length);
/* Tag and indefinite-length octet in front of contents of length octets that the caller has
 * written (end-of-contents octets included); returns header octets + length. */
QN_API int xe_TagAndIndefLen(ASN1CTXT* pctxt, ASN1TagType tag, int length);

/* ---- Primitive values ------------------------------------------------------------------- */
/* Null value pointers give -18 unless said otherwise. */

/* INTEGER in minimal two's complement. */
QN_API int xe_integer(ASN1CTXT* pctxt, const ASN1INT* object_p, int tagging);
QN_API int xe_int8(ASN1CTXT* pctxt, const ASN1INT8* object_p, int tagging);
QN_API int xe_int16(ASN1CTXT* pctxt, const ASN1SINT* object_p, int tagging);
QN_API int xe_int64(ASN1CTXT* pctxt, const ASN1INT64* object_p, int tagging);
/* INTEGER from an unsigned value: a 0x00 goes in front when the top bit of the first octet is
 * set, so the value never reads back as negative. */
QN_API int xe_unsigned(ASN1CTXT* pctxt, const ASN1UINT* object_p, int tagging);
QN_API int xe_uint8(ASN1CTXT* pctxt, const ASN1UINT8* object_p, int tagging);
QN_API int xe_uint16(ASN1CTXT* pctxt, const ASN1USINT* object_p, int tagging);
QN_API int xe_uint64(ASN1CTXT* pctxt, const ASN1UINT64* object_p, int tagging);
/* ENUMERATED, coded as an INTEGER under tag 10. */
QN_API int xe_enum(ASN1CTXT* pctxt, const ASN1ENUM* object_p, int tagging);
/* BOOLEAN: 0xFF for any non-zero value. */
QN_API int xe_boolean(ASN1CTXT* pctxt, const ASN1BOOL* object_p, int tagging);
/* NULL: 05 00 explicitly, nothing at all implicitly. */
QN_API int xe_null(ASN1CTXT* pctxt, int tagging);
/* BIT STRING of numbits bits, octets as stored (the caller keeps unused trailing bits zero)
 * behind the unused-bits octet. A null object_p with numbits above 0 writes nothing and
 * returns 0. */
QN_API int xe_bitstr(ASN1CTXT* pctxt, const ASN1OCTET* object_p, ASN1UINT numbits,
                     int tagging);
/* OCTET STRING; a null object_p writes empty contents. */
QN_API int xe_octstr(ASN1CTXT* pctxt, const ASN1OCTET* object_p, ASN1UINT numocts,
                     int tagging);
/* A zero-terminated 8-bit character string under the universal tag the caller names. */
QN_API int xe_charstr(ASN1CTXT* pctxt, const char* object_p, int tagging, ASN1TagType tag);
/* BMP and universal strings: each character in 2 or 4 octets, most significant first. A null
 * data pointer with characters counted gives -18. */
QN_API int xe_16BitCharStr(ASN1CTXT* pctxt, const Asn116BitCharString* object_p, int tagging,
                           ASN1TagType tag);
QN_API int xe_32BitCharStr(ASN1CTXT* pctxt, const Asn132BitCharString* object_p, int tagging,
                           ASN1TagType tag);
/* OBJECT IDENTIFIER: -4 for fewer than 2 or more than 128 arcs, a first arc above 2, a second
 * arc above 39 under a first arc of 0 or 1, or first and second arcs that do not combine into
 * one 32-bit (64-bit for xe_oid64) subidentifier. */
QN_API int xe_objid(ASN1CTXT* pctxt, const ASN1OBJID* object_p, int tagging);
QN_API int xe_oid64(ASN1CTXT* pctxt, const ASN1OID64* object_p, int tagging);
/* RELATIVE-OID: every arc on its own; -4 for no arcs or more than 128. */
QN_API int xe_reloid(ASN1CTXT* pctxt, const ASN1RELOID* object_p, int tagging);
/* REAL: zero (either sign) has no contents, infinities 0x40/0x41, NaN 0x42; every other value
 * in base 2 with an odd mantissa, as DER requires. */
QN_API int xe_real(ASN1CTXT* pctxt, const ASN1REAL* object_p, int tagging);
/* INTEGER of any size from its text: decimal, or "0x", "0b", "0o" followed by hex, binary or
 * octal digits, each with an optional leading '-'. -18 for a malformed text. */
QN_API int xe_bigint(ASN1CTXT* pctxt, const char* object_p, int tagging);

/* ---- Open types and SET OF -------------------------------------------------------------- */

/* Copies one complete encoding (its own tag and length included) in front; its leading
 * header is parsed to find where it ends, and a malformed header is the decoder's status.
 * Zero octets write nothing; -18 for null bytes or an end-of-contents header. Bytes that
 * already lie at xe_getp() (encoded in place) are counted but not copied. */
QN_API int xe_OpenType(ASN1CTXT* pctxt, const ASN1OCTET* object_p, ASN1UINT numocts);
/* Each ASN1TOpenType of the list, last first, as xe_OpenType; a null list writes nothing. */
QN_API int xe_OpenTypeExt(ASN1CTXT* pctxt, const _Asn1RTDList* pElemList);
/* Puts the components of a SET OF just written into DER order (ascending octets, a shorter
 * one before a longer one it begins). pList holds one heap-allocated Asn1BufLocDescr per
 * component (xe_getBufLocDescr after each); the descriptors and nodes are freed and the list
 * is left empty. Returns the components' total length or -12. */
QN_API int xe_derCanonicalSort(ASN1CTXT* pctxt, _Asn1RTDList* pList);

QN_END_C

#endif
