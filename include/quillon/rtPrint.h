/*
 * Printing of values as indented "name = value" lines, to standard output, a FILE* or a
 * caller's character buffer.
 *
 * Each rtPrint<Type> function writes one value to a sink; a null sink means standard output.
 * A generated printer calls them component by component with the component's name and its
 * nesting level, and opens and closes a structured value with rtPrintOpenBrace and
 * rtPrintCloseBrace. A line is indented by two blanks per level (levels below 0 count as 0,
 * levels above 32 as 32); a null name leaves out "name = " and prints the value alone.
 *
 * Value forms:
 *   BOOLEAN              TRUE, FALSE
 *   INTEGER, ENUMERATED  decimal; an enumeration with its identifier as keyCompromise(1)
 *   big INTEGER          the text as the value holds it (0x... or decimal)
 *   REAL                 shortest decimal that reads back to the same double (1.5, 1e+100),
 *                        always with '.', whatever the locale; PLUS-INFINITY,
 *                        MINUS-INFINITY, NOT-A-NUMBER, -0
 *   OCTET STRING,        up to 16 octets inline as '0A1B'H; longer ones as "(N octets)"
 *   open type            followed by lines of 16 octets ("30 82 01 0A ...") one level deeper
 *   BIT STRING (hex)     up to 128 bits as 'A5C0'H (12 bits); longer ones as "(N bits)" and
 *                        octet lines as above; unused bits of the last octet print as 0
 *   BIT STRING (binary)  up to 64 bits as '101001011100'B; longer ones as "(N bits)" and lines
 *                        of 64 bits in groups of 8
 *   character strings    in double quotes, as UTF-8; '"' and '\' escaped with '\'; control
 *                        characters (C0, DEL, C1) and 16-bit surrogates as \uHHHH, 32-bit
 *                        values beyond Unicode as \UHHHHHHHH, bytes of an 8-bit string that
 *                        are not UTF-8 as \xHH
 *   OBJECT IDENTIFIER    dotted arcs 1.2.840.113549 (RELATIVE-OID values, ASN1RELOID, print
 *                        with rtPrintOID)
 *   NULL                 NULL
 *   tag                  [UNIVERSAL 16], [APPLICATION 1], [3], [PRIVATE 7], with " constructed"
 *                        when the constructed bit is set
 *   a null pointer       <null>
 * 8 and 16-bit integers print through rtPrintInteger and rtPrintUnsigned.
 *
 * Statuses: 0 on success; -17 when a string sink cannot hold the call's text; -42 when writing
 * to the file fails; -30 for an octet, bit or character record whose data pointer is null
 * with a non-zero count, and -4 for an object identifier with no arcs or more than 128: both
 * still print a line, with "<invalid value>" or "<invalid object identifier>" as the value.
 * The sink keeps the first failure in its status field.
 */
#ifndef QUILLON_RTPRINT_H
#define QUILLON_RTPRINT_H

#include <stdio.h>

#include "asn1type.h"

QN_BEGIN_C

/* Where printed text goes. Set up with rtPrintSinkInitFile or rtPrintSinkInitString; the
 * fields belong to the print functions, callers read status (and length of a string sink).
 *
 * A string sink appends after the text the buffer already holds and keeps it terminated.
 * Each call is all or nothing: a call whose whole text does not fit writes nothing, returns
 * -17 and marks the sink full; a full sink takes no further text, so a report never shows a
 * later line without an earlier one. */
typedef struct ASN1PrintSink {
  FILE* fp;         /* file sink; null for a string sink */
  char* buf;        /* string sink: the caller's buffer */
  size_t bufsize;
  size_t length;    /* characters in buf before its terminating NUL */
  int status;       /* first failure, 0 while none */
  ASN1BOOL full;    /* a call's text did not fit: nothing more is written */
} ASN1PrintSink;

/* A sink over an open file (stdout for standard output). The file stays the caller's. */
QN_API void rtPrintSinkInitFile(ASN1PrintSink* pSink, FILE* fp);
/* A sink over buf that appends after the NUL-terminated text buf holds (set buf[0] to 0 to
 * start empty). -30 when buf is null or holds no NUL within bufsize bytes. */
QN_API int rtPrintSinkInitString(ASN1PrintSink* pSink, char* buf, size_t bufsize);

/* ---- One value to a sink (null: standard output) ---------------------------------------- */

QN_API int rtPrintBoolean(ASN1PrintSink* pSink, int level, const char* name, ASN1BOOL value);
QN_API int rtPrintInteger(ASN1PrintSink* pSink, int level, const char* name, ASN1INT value);
QN_API int rtPrintUnsigned(ASN1PrintSink* pSink, int level, const char* name, ASN1UINT value);
QN_API int rtPrintInt64(ASN1PrintSink* pSink, int level, const char* name, ASN1INT64 value);
QN_API int rtPrintUInt64(ASN1PrintSink* pSink, int level, const char* name, ASN1UINT64 value);
/* identifier: the enumeration's name for value, or null to print the number alone. */
QN_API int rtPrintEnum(ASN1PrintSink* pSink, int level, const char* name, ASN1ENUM value,
                       const char* identifier);
QN_API int rtPrintReal(ASN1PrintSink* pSink, int level, const char* name, ASN1REAL value);
/* An INTEGER held as text (serial numbers); the text is printed as it stands. */
QN_API int rtPrintBigInt(ASN1PrintSink* pSink, int level, const char* name, const char* value);
/* numbits bits of data, most significant bit of data[0] first; fits named-bit records and
 * ASN1DynBitStr alike. */
QN_API int rtPrintBitStr(ASN1PrintSink* pSink, int level, const char* name, ASN1UINT numbits,
                         const ASN1OCTET* data);
QN_API int rtPrintBitStrBin(ASN1PrintSink* pSink, int level, const char* name, ASN1UINT numbits,
                            const ASN1OCTET* data);
QN_API int rtPrintOctStr(ASN1PrintSink* pSink, int level, const char* name, ASN1UINT numocts,
                         const ASN1OCTET* data);
/* NUL-terminated 8-bit text (IA5String, PrintableString, UTF8String, time texts, ...). */
QN_API int rtPrintCharStr(ASN1PrintSink* pSink, int level, const char* name, const char* value);
QN_API int rtPrint16BitCharStr(ASN1PrintSink* pSink, int level, const char* name,
                               const Asn116BitCharString* value);
QN_API int rtPrint32BitCharStr(ASN1PrintSink* pSink, int level, const char* name,
                               const Asn132BitCharString* value);
QN_API int rtPrintOID(ASN1PrintSink* pSink, int level, const char* name, const ASN1OBJID* value);
QN_API int rtPrintOID64(ASN1PrintSink* pSink, int level, const char* name,
                        const ASN1OID64* value);
QN_API int rtPrintNull(ASN1PrintSink* pSink, int level, const char* name);
/* The open type's encoding, as octets. */
QN_API int rtPrintOpenType(ASN1PrintSink* pSink, int level, const char* name,
                           const ASN1TOpenType* value);
QN_API int rtPrintTag(ASN1PrintSink* pSink, int level, const char* name, ASN1TagType tag);
/* "name {" at level; the components follow at level + 1 and rtPrintCloseBrace writes "}" at
 * level. */
QN_API int rtPrintOpenBrace(ASN1PrintSink* pSink, int level, const char* name);
QN_API int rtPrintCloseBrace(ASN1PrintSink* pSink, int level);

/* ---- One value appended to a caller's buffer -------------------------------------------- */
/* Each appends to the NUL-terminated text in buf (bufsize bytes in all), exactly as the sink
 * function of the same type does to a string sink: the whole text or, with -17, nothing. -30
 * when buf is null or holds no NUL within bufsize bytes. Each call stands alone, so a refused
 * call does not stop a later, shorter one; print a whole value through one ASN1PrintSink to
 * stop at the first line that does not fit. */

QN_API int rtPrintToStringBoolean(int level, const char* name, ASN1BOOL value, char* buf,
                                  size_t bufsize);
QN_API int rtPrintToStringInteger(int level, const char* name, ASN1INT value, char* buf,
                                  size_t bufsize);
QN_API int rtPrintToStringUnsigned(int level, const char* name, ASN1UINT value, char* buf,
                                   size_t bufsize);
QN_API int rtPrintToStringInt64(int level, const char* name, ASN1INT64 value, char* buf,
                                size_t bufsize);
QN_API int rtPrintToStringUInt64(int level, const char* name, ASN1UINT64 value, char* buf,
                                 size_t bufsize);
QN_API int rtPrintToStringEnum(int level, const char* name, ASN1ENUM value,
                               const char* identifier, char* buf, size_t bufsize);
QN_API int rtPrintToStringReal(int level, const char* name, ASN1REAL value, char* buf,
                               size_t bufsize);
QN_API int rtPrintToStringBigInt(int level, const char* name, const char* value, char* buf,
                                 size_t bufsize);
QN_API int rtPrintToStringBitStr(int level, const char* name, ASN1UINT numbits,
                                 const ASN1OCTET* data, char* buf, size_t bufsize);
QN_API int rtPrintToStringBitStrBin(int level, const char* name, ASN1UINT numbits,
                                    const ASN1OCTET* data, char* buf, size_t bufsize);
QN_API int rtPrintToStringOctStr(int level, const char* name, ASN1UINT numocts,
                                 const ASN1OCTET* data, char* buf, size_t bufsize);
QN_API int rtPrintToStringCharStr(int level, const char* name, const char* value, char* buf,
                                  size_t bufsize);
QN_API int rtPrintToString16BitCharStr(int level, const char* name,
                                       const Asn116BitCharString* value, char* buf,
                                       size_t bufsize);
QN_API int rtPrintToString32BitCharStr(int level, const char* name,
                                       const Asn132BitCharString* value, char* buf,
                                       size_t bufsize);
QN_API int rtPrintToStringOID(int level, const char* name, const ASN1OBJID* value, char* buf,
                              size_t bufsize);
QN_API int rtPrintToStringOID64(int level, const char* name, const ASN1OID64* value, char* buf,
                                size_t bufsize);
QN_API int rtPrintToStringNull(int level, const char* name, char* buf, size_t bufsize);
QN_API int rtPrintToStringOpenType(int level, const char* name, const ASN1TOpenType* value,
                                   char* buf, size_t bufsize);
QN_API int rtPrintToStringTag(int level, const char* name, ASN1TagType tag, char* buf,
                              size_t bufsize);
QN_API int rtPrintToStringOpenBrace(int level, const char* name, char* buf, size_t bufsize);
QN_API int rtPrintToStringCloseBrace(int level, char* buf, size_t bufsize);

QN_END_C

#endif
