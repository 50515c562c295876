/*
 * Comparison of two values with a report of what differs, for tests and for checking that a
 * value survives an encode and decode unchanged.
 *
 * Every rtCmp<Type> returns TRUE when the two values are equal. When they differ it appends
 * one line to the NUL-terminated text in errBuf (errBufSize bytes in all),
 *     name: value != compValue
 * with the values in the forms of rtPrint.h, and returns FALSE. As with the print functions
 * the line is appended whole or not at all (a buffer too small for it keeps its text); a null
 * errBuf, or one that holds no NUL within errBufSize, only compares. rtCmpToStdout<Type>
 * prints the same line to standard output instead. A null name leaves out "name: ".
 *
 * Equality is that of the ASN.1 values:
 *   - bit strings compare their numbits bits; unused bits of the last octet are ignored;
 *   - REAL: NaN equals NaN; -0 differs from 0, as their encodings do;
 *   - big integers compare numerically, whatever their text form ("0x0A" equals "10"); a text
 *     that is not a number equals only the same text;
 *   - strings and records given by pointer: two null pointers are equal, a null pointer
 *     differs from any value (shown as <null>);
 *   - object identifiers compare their arcs (RELATIVE-OID values use rtCmpOID);
 *   - open types compare their encodings; table-constrained ones (Asn1TObject) also differ
 *     when both name an information object and the objects are not the same one.
 * The report of octet strings longer than 16 octets and bit strings longer than 128 bits names
 * the first difference ("name: octet 17: '0A'H != '0B'H", "name: bit 130: 0 != 1") or the
 * different sizes ("name: (20 octets) != (21 octets)").
 */
#ifndef QUILLON_RTCOMPARE_H
#define QUILLON_RTCOMPARE_H

#include "asn1type.h"

QN_BEGIN_C

QN_API ASN1BOOL rtCmpBoolean(const char* name, ASN1BOOL value, ASN1BOOL compValue, char* errBuf,
                             size_t errBufSize);
QN_API ASN1BOOL rtCmpInteger(const char* name, ASN1INT value, ASN1INT compValue, char* errBuf,
                             size_t errBufSize);
QN_API ASN1BOOL rtCmpUnsigned(const char* name, ASN1UINT value, ASN1UINT compValue,
                              char* errBuf, size_t errBufSize);
QN_API ASN1BOOL rtCmpInt64(const char* name, ASN1INT64 value, ASN1INT64 compValue, char* errBuf,
                           size_t errBufSize);
QN_API ASN1BOOL rtCmpUInt64(const char* name, ASN1UINT64 value, ASN1UINT64 compValue,
                            char* errBuf, size_t errBufSize);
QN_API ASN1BOOL rtCmpEnum(const char* name, ASN1ENUM value, ASN1ENUM compValue, char* errBuf,
                          size_t errBufSize);
QN_API ASN1BOOL rtCmpReal(const char* name, ASN1REAL value, ASN1REAL compValue, char* errBuf,
                          size_t errBufSize);
QN_API ASN1BOOL rtCmpBigInt(const char* name, const char* value, const char* compValue,
                            char* errBuf, size_t errBufSize);
QN_API ASN1BOOL rtCmpBitStr(const char* name, ASN1UINT numbits, const ASN1OCTET* data,
                            ASN1UINT compNumbits, const ASN1OCTET* compData, char* errBuf,
                            size_t errBufSize);
QN_API ASN1BOOL rtCmpOctStr(const char* name, ASN1UINT numocts, const ASN1OCTET* data,
                            ASN1UINT compNumocts, const ASN1OCTET* compData, char* errBuf,
                            size_t errBufSize);
QN_API ASN1BOOL rtCmpCharStr(const char* name, const char* value, const char* compValue,
                             char* errBuf, size_t errBufSize);
QN_API ASN1BOOL rtCmp16BitCharStr(const char* name, const Asn116BitCharString* value,
                                  const Asn116BitCharString* compValue, char* errBuf,
                                  size_t errBufSize);
QN_API ASN1BOOL rtCmp32BitCharStr(const char* name, const Asn132BitCharString* value,
                                  const Asn132BitCharString* compValue, char* errBuf,
                                  size_t errBufSize);
QN_API ASN1BOOL rtCmpOID(const char* name, const ASN1OBJID* value, const ASN1OBJID* compValue,
                         char* errBuf, size_t errBufSize);
QN_API ASN1BOOL rtCmpOID64(const char* name, const ASN1OID64* value, const ASN1OID64* compValue,
                           char* errBuf, size_t errBufSize);
QN_API ASN1BOOL rtCmpOpenType(const char* name, const ASN1TOpenType* value,
                              const ASN1TOpenType* compValue, char* errBuf, size_t errBufSize);
QN_API ASN1BOOL rtCmpTCOpenType(const char* name, const Asn1TObject* value,
                                const Asn1TObject* compValue, char* errBuf, size_t errBufSize);
QN_API ASN1BOOL rtCmpTag(const char* name, ASN1TagType tag, ASN1TagType compTag, char* errBuf,
                         size_t errBufSize);

/* The same comparisons, reporting a difference on standard output. */
QN_API ASN1BOOL rtCmpToStdoutBoolean(const char* name, ASN1BOOL value, ASN1BOOL compValue);
QN_API ASN1BOOL rtCmpToStdoutInteger(const char* name, ASN1INT value, ASN1INT compValue);
QN_API ASN1BOOL rtCmpToStdoutUnsigned(const char* name, ASN1UINT value, ASN1UINT compValue);
QN_API ASN1BOOL rtCmpToStdoutInt64(const char* name, ASN1INT64 value, ASN1INT64 compValue);
QN_API ASN1BOOL rtCmpToStdoutUInt64(const char* name, ASN1UINT64 value, ASN1UINT64 compValue);
QN_API ASN1BOOL rtCmpToStdoutEnum(const char* name, ASN1ENUM value, ASN1ENUM compValue);
QN_API ASN1BOOL rtCmpToStdoutReal(const char* name, ASN1REAL value, ASN1REAL compValue);
QN_API ASN1BOOL rtCmpToStdoutBigInt(const char* name, const char* value, const char* compValue);
QN_API ASN1BOOL rtCmpToStdoutBitStr(const char* name, ASN1UINT numbits, const ASN1OCTET* data,
                                    ASN1UINT compNumbits, const ASN1OCTET* compData);
QN_API ASN1BOOL rtCmpToStdoutOctStr(const char* name, ASN1UINT numocts, const ASN1OCTET* data,
                                    ASN1UINT compNumocts, const ASN1OCTET* compData);
QN_API ASN1BOOL rtCmpToStdoutCharStr(const char* name, const char* value,
                                     const char* compValue);
QN_API ASN1BOOL rtCmpToStdout16BitCharStr(const char* name, const Asn116BitCharString* value,
                                          const Asn116BitCharString* compValue);
QN_API ASN1BOOL rtCmpToStdout32BitCharStr(const char* name, const Asn132BitCharString* value,
                                          const Asn132BitCharString* compValue);
QN_API ASN1BOOL rtCmpToStdoutOID(const char* name, const ASN1OBJID* value,
                                 const ASN1OBJID* compValue);
QN_API ASN1BOOL rtCmpToStdoutOID64(const char* name, const ASN1OID64* value,
                                   const ASN1OID64* compValue);
QN_API ASN1BOOL rtCmpToStdoutOpenType(const char* name, const ASN1TOpenType* value,
                                      const ASN1TOpenType* compValue);
QN_API ASN1BOOL rtCmpToStdoutTCOpenType(const char* name, const Asn1TObject* value,
                                        const Asn1TObject* compValue);
QN_API ASN1BOOL rtCmpToStdoutTag(const char* name, ASN1TagType tag, ASN1TagType compTag);

QN_END_C

#endif
