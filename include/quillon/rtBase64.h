/*
 * Base64 (alphabet "A"-"Z", "a"-"z", "0"-"9", "+", "/", "=" padding) for octet strings.
 *
 * Encoding writes one run with no line breaks. Decoding skips white space (blank, tab, line
 * feed, vertical tab, form feed, carriage return) anywhere in the text, since XML content and
 * mail bodies wrap base64 text; it requires the text without white space to be whole groups of
 * four characters, "=" only as one or two padding characters of the last group, and nothing but
 * white space after them. The unused low bits of the last character before padding are ignored.
 * A text that breaks these rules is recorded as -43 ("Invalid Base64 string").
 * Lengths are returned as int: -33 is recorded for a result of more than INT_MAX bytes.
 */
#ifndef QUILLON_RTBASE64_H
#define QUILLON_RTBASE64_H

#include "asn1type.h"

QN_BEGIN_C

/* Characters of the base64 text of nocts octets, without the NUL. */
QN_API size_t rtBase64EncodedLen(size_t nocts);
/* Writes the text and its NUL into buf; returns the text's length, or -17 recorded when
 * bufsize cannot hold both (nothing written then). */
QN_API int rtBase64Encode(ASN1CTXT* pctxt, const ASN1OCTET* data, size_t nocts, char* buf,
                          size_t bufsize);
/* The text, NUL-terminated, from the context's heap into *ppText; returns its length or -12. */
QN_API int rtBase64EncodeDyn(ASN1CTXT* pctxt, const ASN1OCTET* data, size_t nocts,
                             char** ppText);

/* Number of octets that nchars characters of text decode to, or -43. */
QN_API int rtBase64DecodedLen(ASN1CTXT* pctxt, const char* text, size_t nchars);
/* Decodes into buf; returns the number of octets, -43, or -17 when they exceed bufsize
 * (nothing written on failure). */
QN_API int rtBase64Decode(ASN1CTXT* pctxt, const char* text, size_t nchars, ASN1OCTET* buf,
                          size_t bufsize);
/* Decodes into octets from the context's heap (data null when there are none); returns the
 * number of octets or the status; *pOut is left untouched on failure. */
QN_API int rtBase64DecodeDyn(ASN1CTXT* pctxt, const char* text, size_t nchars,
                             ASN1DynOctStr* pOut);

QN_END_C

#endif
