/*
 * The XML value decoders and the text utilities of the XER decode handlers.
 *
 * A handler collects the character data of a primitive element and, at its end tag, makes the
 * text the context's message buffer (xerFinalizeMemBuf, xerSetDecBufPtr or the SAX handler's
 * finalizeMemBuf). The decoders read that text: from the buffer's data plus its byte position
 * up to the first NUL or the end of the buffer, whichever comes first, so a text that is not
 * NUL-terminated is never read past its size. They write the value through their out-parameter
 * and return 0 or a negative status recorded in the context's error record with their own
 * source location. An out-parameter is left as far as it had been written when a decoder
 * fails; memory for values comes from the context's heap.
 *
 * White space is blank, tab, line feed, vertical tab, form feed and carriage return. Every
 * decoder skips it before the value; what it takes after the value is stated with each. The
 * xerDec forms read the texts the xerEnc writers produce (asn1xer.h), the xmlDec forms those of
 * the xmlEnc writers (the XML Schema forms).
 */
#ifndef QUILLON_ASN1XERDEC_H
#define QUILLON_ASN1XERDEC_H

#include "asn1type.h"
#include "rtMemHeap.h"

QN_BEGIN_C

/* ---- Text utilities --------------------------------------------------------------------- */

/* One child element of a SEQUENCE or SET in declaration order: its element name and whether
 * it may be absent (OPTIONAL or DEFAULT). Generated handlers keep a static array of these. */
typedef struct XERElemInfo {
  const char* name;
  int optional;
} XERElemInfo;

/* True only when both texts are present and equal in full; two empty texts are equal. */
QN_API ASN1BOOL xerCmpText(const char* text, const char* token);
/* Bytes before the NUL; 0 for null. */
QN_API int xerTextLength(const char* text);
/* A NUL-terminated copy of text from the context's heap; null for null text or when the heap
 * is exhausted (nothing recorded: the caller decides what a missing copy means). */
QN_API char* xerTextToCStr(ASN1CTXT* pctxt, const char* text);
/* Index of the first entry named name, -1 when none. */
QN_API int xerGetElemId(const char* name, const XERElemInfo* elemInfoArray, int count);
/* Index of the entry named name searching from start upward, skipping optional entries only:
 * -1 at the first required entry of another name or at the end. This is the SEQUENCE rule
 * that components come in declaration order. */
QN_API int xerGetSeqElemIdx(const char* name, const XERElemInfo* elemInfoArray, int count,
                            int start);

/* Makes the collected bytes of pMemBuf the input of its context's decoders: one more byte is
 * reserved (its status returned when that fails) and set to NUL after the text, and the
 * context's buffer becomes the text (byte position 0, size the text's length, not dynamic).
 * The text stays where it is: appending to pMemBuf afterwards may move it. */
QN_API int xerFinalizeMemBuf(ASN1MemBuf* pMemBuf);
/* Makes length bytes of text (which need not be NUL-terminated) the context's decode input;
 * a negative length takes the text up to its NUL. -30 for null text with a length above 0. */
QN_API int xerSetDecBufPtr(ASN1CTXT* pctxt, const char* text, int length);

/* The next UTF-8 character of the input at the byte position, which moves past it: the
 * character, -2 at the end of the text, or -26 (recorded) for a malformed sequence. */
QN_API int xerReadChar(ASN1CTXT* pctxt);
/* Skips white space at the byte position and returns the next run of other characters: its
 * start in *ppToken, its length as the result, 0 when only white space was left. The byte
 * position moves past the token. */
QN_API int xerParseToken(ASN1CTXT* pctxt, const char** ppToken);

/* ---- BOOLEAN ---------------------------------------------------------------------------- */

/* "true" (1) or "false" (0), nothing after; else -18. */
QN_API int xerDecBool(ASN1CTXT* pctxt, ASN1BOOL* pvalue);
/* "true" or "1" (1), "false" or "0" (0), nothing after; else -18. */
QN_API int xmlDecBool(ASN1CTXT* pctxt, ASN1BOOL* pvalue);

/* ---- INTEGER ---------------------------------------------------------------------------- */

/* An optional "-" and decimal digits, nothing after (a trailing blank too is -34); an empty
 * text or a lone "-" is 0; no "+". -34 for any other character, -33 when the value does not
 * fit. The 32 and 64-bit forms set *pvalue to 0 first; the 8 and 16-bit forms read the 32-bit
 * value and write it only when it is in their range. The unsigned forms take no sign. */
QN_API int xerDecInt(ASN1CTXT* pctxt, ASN1INT* pvalue);
QN_API int xerDecInt8(ASN1CTXT* pctxt, ASN1INT8* pvalue);
QN_API int xerDecInt16(ASN1CTXT* pctxt, ASN1SINT* pvalue);
QN_API int xerDecInt64(ASN1CTXT* pctxt, ASN1INT64* pvalue);
QN_API int xerDecUInt(ASN1CTXT* pctxt, ASN1UINT* pvalue);
QN_API int xerDecUInt8(ASN1CTXT* pctxt, ASN1UINT8* pvalue);
QN_API int xerDecUInt16(ASN1CTXT* pctxt, ASN1USINT* pvalue);
QN_API int xerDecUInt64(ASN1CTXT* pctxt, ASN1UINT64* pvalue);
/* An integer of any length kept as decimal text from the heap: an optional "-" and digits,
 * leading zeros dropped; the empty text the writer makes of zero, and "-" alone, read as "0".
 * -34 for another character, -12 without heap memory. */
QN_API int xerDecBigInt(ASN1CTXT* pctxt, const char** ppvalue);

/* ---- REAL ------------------------------------------------------------------------------- */

/* "PLUS-INFINITY" or "MINUS-INFINITY" as the whole rest of the text, or an optional "-",
 * digits with an optional ".", an optional exponent ("E" or "e", an optional sign, digits);
 * white space may follow. The value is the nearest double to the decimal text, so every text
 * xerEncReal writes reads back as the value it was made from. -16 for anything else or a
 * value beyond the range of a double. */
QN_API int xerDecReal(ASN1CTXT* pctxt, ASN1REAL* pvalue);
/* The XML Schema double: "INF", "+INF", "-INF", "NaN", or a decimal number as above with an
 * optional "+" or "-"; white space may follow. -16 otherwise. */
QN_API int xmlDecReal(ASN1CTXT* pctxt, ASN1REAL* pvalue);

/* ---- OBJECT IDENTIFIER and RELATIVE-OID ------------------------------------------------- */

/* Arcs in decimal separated by single points, white space after. Malformed text or more than
 * 128 arcs: -4 recorded; an arc too large for its field: -33 recorded. Then the identifier
 * rules (at least two arcs, the first at most 2, the second at most 39 under 0 and 1) give -4
 * returned without a record, so that a caller may still accept the arcs it got. The arc count
 * is set to 0 first. */
QN_API int xerDecObjId(ASN1CTXT* pctxt, ASN1OBJID* pvalue);
QN_API int xerDecObjId64(ASN1CTXT* pctxt, ASN1OID64* pvalue);
/* As xerDecObjId without the identifier rules: any number of arcs up to 128, none included. */
QN_API int xerDecRelativeOID(ASN1CTXT* pctxt, ASN1OBJID* pvalue);

/* ---- OCTET STRING and BIT STRING -------------------------------------------------------- */

/* Hexadecimal digits ("0"-"9", "A"-"F", "a"-"f") into out, at most maxOctets octets (-17
 * beyond). digitCount is the number of digits to read when the caller knows it (0: all of the
 * text, counted first). An odd number of digits is aligned to the right: "ABC" is 0x0A 0xBC.
 * *pNumBits, when given, receives 4 x the number of digits. White space between and around
 * digits is skipped when skipWhitespace is set, else -14 like any other character. */
QN_API int xerDecHexStrValue(ASN1CTXT* pctxt, ASN1OCTET* out, ASN1UINT* pNumBits, int maxOctets,
                             int digitCount, ASN1BOOL skipWhitespace);
/* Binary digits "0" and "1", most significant bit of each octet first, into out (at most
 * maxOctets octets, -17 beyond); bitCount as digitCount above. The unused bits of the last
 * octet are zero. *pNumBits receives the number of bits. -15 for another character (white
 * space unless skipWhitespace). */
QN_API int xerDecBinStrValue(ASN1CTXT* pctxt, ASN1OCTET* out, ASN1UINT* pNumBits, int maxOctets,
                             int bitCount, ASN1BOOL skipWhitespace);

/* Hexadecimal text into the caller's bufsize octets (-17 when longer) or into octets from the
 * heap (data null when empty, -12 without memory). The xer forms skip white space anywhere;
 * the xml forms (hexBinary) take it only before and after the digits. */
QN_API int xerDecOctStr(ASN1CTXT* pctxt, ASN1OCTET* pvalue, ASN1UINT* pnocts, ASN1INT bufsize);
QN_API int xerDecDynOctStr(ASN1CTXT* pctxt, ASN1DynOctStr* pvalue);
QN_API int xmlDecOctStr(ASN1CTXT* pctxt, ASN1OCTET* pvalue, ASN1UINT* pnocts, ASN1INT bufsize);
QN_API int xmlDecDynOctStr(ASN1CTXT* pctxt, ASN1DynOctStr* pvalue);
/* Binary text into the caller's bufsize octets or heap octets, as the octet string forms. */
QN_API int xerDecBitStr(ASN1CTXT* pctxt, ASN1OCTET* pvalue, ASN1UINT* pnbits, ASN1INT bufsize);
QN_API int xerDecDynBitStr(ASN1CTXT* pctxt, ASN1DynBitStr* pvalue);
QN_API int xmlDecBitStr(ASN1CTXT* pctxt, ASN1OCTET* pvalue, ASN1UINT* pnbits, ASN1INT bufsize);
QN_API int xmlDecDynBitStr(ASN1CTXT* pctxt, ASN1DynBitStr* pvalue);

/* One named bit of a BIT STRING type. */
typedef struct XMLNamedBit {
  const char* name;
  ASN1UINT bitno;
} XMLNamedBit;
/* A white-space separated list of bit names (XML Schema list form) into the caller's bufsize
 * octets: each name sets its bit; *pnbits becomes the highest bit set + 1 (0 for an empty
 * list). -18 for a name not in the table, -17 for a bit beyond bufsize octets. */
QN_API int xmlDecNamedBitStr(ASN1CTXT* pctxt, ASN1OCTET* pvalue, ASN1UINT* pnbits,
                             ASN1INT bufsize, const XMLNamedBit* namedBits, int count);

/* Decoding as the text arrives in pieces (character data comes in runs of any length): each
 * call appends the octets of length bytes of hexadecimal text to pMemBuf, white space skipped.
 * A digit left over waits as the high half of the last octet with bitOffset 4 until the next
 * piece completes it. -14 for another character, the status of rtMemBufAppend on growth.
 * Failures are recorded in the buffer's context. */
QN_API int xerDecOctStrMemBuf(ASN1MemBuf* pMemBuf, const char* chars, int length);
/* As xerDecOctStrMemBuf for binary text: bitOffset counts the bits used of the last octet
 * (0 when it is full). -15 for another character. */
QN_API int xerDecBitStrMemBuf(ASN1MemBuf* pMemBuf, const char* chars, int length);
/* The octets collected by xerDecOctStrMemBuf into the caller's bufsize octets (-17 when longer)
 * or into heap octets; -14 when an odd number of digits left half an octet. */
QN_API int xerDecCopyOctStr(ASN1CTXT* pctxt, ASN1OCTET* pvalue, ASN1UINT* pnocts,
                            ASN1INT bufsize, ASN1MemBuf* pMemBuf);
QN_API int xerDecCopyDynOctStr(ASN1CTXT* pctxt, ASN1DynOctStr* pvalue, ASN1MemBuf* pMemBuf);
/* The bits collected by xerDecBitStrMemBuf, as the octet string forms. */
QN_API int xerDecCopyBitStr(ASN1CTXT* pctxt, ASN1OCTET* pvalue, ASN1UINT* pnbits,
                            ASN1INT bufsize, ASN1MemBuf* pMemBuf);
QN_API int xerDecCopyDynBitStr(ASN1CTXT* pctxt, ASN1DynBitStr* pvalue, ASN1MemBuf* pMemBuf);

/* ---- Base64 ----------------------------------------------------------------------------- */

/* Number of octets the base64 text decodes to, or -43. White space is skipped anywhere. */
QN_API int xerGetBase64StrDecodedLen(ASN1CTXT* pctxt);
/* The base64 text into out, at most maxOctets octets (-17 beyond, nothing written); *pnocts
 * receives the number of octets. -43 for text that is not base64: characters outside the
 * alphabet, groups that are not whole, "=" other than as the last group's padding. */
QN_API int xerDecBase64StrValue(ASN1CTXT* pctxt, ASN1OCTET* out, ASN1UINT* pnocts,
                                int maxOctets);
/* Into the caller's bufsize octets, or into heap octets (data null when empty). */
QN_API int xerDecBase64Str(ASN1CTXT* pctxt, ASN1OCTET* pvalue, ASN1UINT* pnocts,
                           ASN1INT bufsize);
QN_API int xerDecDynBase64Str(ASN1CTXT* pctxt, ASN1DynOctStr* pvalue);

/* ---- Character strings ------------------------------------------------------------------ */

/* The UTF-8 text as 8-bit characters from the heap: every character is kept as its low 8 bits
 * (characters above 255 lose the rest, deliberately: the 8-bit string types hold no more).
 * -26 for malformed UTF-8, -12 without memory. White space is part of the value. */
QN_API int xerDecDynAscCharStr(ASN1CTXT* pctxt, const char** ppvalue);
/* The bytes of the text as they are, NUL-terminated, from the heap; -12 without memory. */
QN_API int xerDecDynUTF8Str(ASN1CTXT* pctxt, const char** ppvalue);
/* The UTF-8 text as 16-bit or 32-bit characters from the heap (data null when empty). -26 for
 * malformed UTF-8, -34 for a character above U+FFFF in a BMPString, -12 without memory. */
QN_API int xerDecBMPStr(ASN1CTXT* pctxt, Asn116BitCharString* pvalue);
QN_API int xerDecUnivStr(ASN1CTXT* pctxt, Asn132BitCharString* pvalue);

/* ---- Time ------------------------------------------------------------------------------- */

/* An XML Schema dateTime (white space around it allowed) as the ASN.1 UTCTime or
 * GeneralizedTime text from the heap: "2011-05-03T12:00:00Z" reads as "1105031200Z" or
 * "20110503120000Z". -31 for a malformed date-time or one the ASN.1 form cannot hold. */
QN_API int xmlDecUTCTime(ASN1CTXT* pctxt, const char** ppvalue);
QN_API int xmlDecGeneralizedTime(ASN1CTXT* pctxt, const char** ppvalue);

/* ---- Open type -------------------------------------------------------------------------- */

/* The captured XML text of an open-type element copied to the heap as its octets (followed by
 * a NUL that numocts does not count; data null when empty); -12 without memory. */
QN_API int xerDecOpenType(ASN1CTXT* pctxt, ASN1TOpenType* pvalue);

QN_END_C

#endif
