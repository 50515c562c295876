/*
 * Values as text for printing and messages: booleans, integers and object identifiers.
 * The number and identifier writers fill a caller's buffer with the text and its NUL and return
 * the text's length; a buffer too small for both is recorded as -17 and nothing is written.
 */
#ifndef QUILLON_RTVALUETEXT_H
#define QUILLON_RTVALUETEXT_H

#include "asn1type.h"

QN_BEGIN_C

/* "TRUE" or "FALSE", as ASN.1 value notation writes them; any non-zero value is TRUE. */
QN_API const char* rtBoolToString(ASN1BOOL value);

/* Decimal text: "-2147483648", "0", "18446744073709551615". */
QN_API int rtIntToString(ASN1CTXT* pctxt, ASN1INT value, char* buf, size_t bufsize);
QN_API int rtUIntToString(ASN1CTXT* pctxt, ASN1UINT value, char* buf, size_t bufsize);
QN_API int rtInt64ToString(ASN1CTXT* pctxt, ASN1INT64 value, char* buf, size_t bufsize);
QN_API int rtUInt64ToString(ASN1CTXT* pctxt, ASN1UINT64 value, char* buf, size_t bufsize);

/* Dotted arcs, "1.2.840.113549.1.1.11". -4 when the arc count is 0 or above 128 (the text
 * would not name an identifier, or the record is corrupt). */
QN_API int rtOidToStr(ASN1CTXT* pctxt, const ASN1OBJID* pOid, char* buf, size_t bufsize);
QN_API int rtOid64ToStr(ASN1CTXT* pctxt, const ASN1OID64* pOid, char* buf, size_t bufsize);

QN_END_C

#endif
