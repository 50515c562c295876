/*
 * UTF-8 text: validation and character counting, single-character coding, copies into the
 * context's heap, and conversion to and from BMPString (16-bit) and UniversalString (32-bit)
 * characters.
 *
 * Only well-formed UTF-8 is accepted: sequences of one to four bytes for the scalar values
 * U+0000..U+10FFFF. An overlong form, a surrogate (U+D800..U+DFFF), a value above U+10FFFF, a
 * stray continuation byte or a truncated sequence is recorded as -26 ("Invalid UTF-8 character
 * at index %d") with the byte offset of the offending sequence as its parameter.
 * Memory for results comes from the context's heap (-12 recorded when it is exhausted).
 */
#ifndef QUILLON_RTUTF8_H
#define QUILLON_RTUTF8_H

#include "asn1type.h"

QN_BEGIN_C

/* Longest UTF-8 sequence of one character. */
#define ASN_K_UTF8MAXCHARSIZE 4

/* Number of characters in the NUL-terminated text, or -26. */
QN_API int rtUTF8Len(ASN1CTXT* pctxt, const char* text);
/* Number of characters in nbytes bytes of text (a NUL counts as a character), or -26. */
QN_API int rtUTF8LenN(ASN1CTXT* pctxt, const char* text, size_t nbytes);

/* Bytes that the UTF-8 form of wc takes (1..4); 0 when wc is a surrogate or above U+10FFFF. */
QN_API int rtUTF8CharSize(ASN1UINT wc);
/* Writes the UTF-8 form of wc to buf, which must hold ASN_K_UTF8MAXCHARSIZE bytes; returns the
 * number of bytes written, 0 (nothing written) when wc is not encodable. */
QN_API int rtUTF8EncodeChar(ASN1UINT wc, ASN1OCTET* buf);
/* Decodes the character at text[*pIndex] (nbytes bytes in all) and moves *pIndex past it.
 * Returns the character (0..0x10FFFF), -26 for a bad sequence (*pIndex unchanged), or -29 when
 * *pIndex is not below nbytes. */
QN_API int rtUTF8DecodeChar(ASN1CTXT* pctxt, const char* text, size_t nbytes, size_t* pIndex);

/* Copy of the NUL-terminated text in the context's heap; null (and -12 recorded) on failure. */
QN_API char* rtUTF8Strdup(ASN1CTXT* pctxt, const char* text);
/* Copy of nbytes bytes of text, NUL-terminated, in the context's heap; null on failure. */
QN_API char* rtUTF8Strndup(ASN1CTXT* pctxt, const char* text, size_t nbytes);

/* NUL-terminated UTF-8 into 16-bit characters from the context's heap (data is null for an
 * empty text). -26 on bad UTF-8; -34 for a character above U+FFFF, which a BMPString cannot
 * hold. Returns 0 or the status; *pOut is left untouched on failure. */
QN_API int rtUTF8ToBMP(ASN1CTXT* pctxt, const char* text, Asn116BitCharString* pOut);
/* As rtUTF8ToBMP into 32-bit characters. */
QN_API int rtUTF8ToUCS4(ASN1CTXT* pctxt, const char* text, Asn132BitCharString* pOut);
/* UTF-8 text of the characters, NUL-terminated, from the context's heap into *ppText.
 * Returns its length in bytes (a U+0000 character is written as a zero byte inside it), or
 * -34 for a character that is a surrogate or above U+10FFFF. */
QN_API int rtBMPToUTF8(ASN1CTXT* pctxt, const Asn116BitCharString* pIn, char** ppText);
QN_API int rtUCS4ToUTF8(ASN1CTXT* pctxt, const Asn132BitCharString* pIn, char** ppText);

QN_END_C

#endif
