/*
 * The XML encoder: values written as XML text by the basic XML Encoding Rules (xerEnc*) or in
 * their XML Schema forms (xmlEnc*), and the layout primitives beneath them.
 *
 * The encoder writes forward, appending at the context's byte position through rtWriteBytes:
 * into a dynamic buffer that grows, a caller's static buffer (-1 when it is full), or an
 * attached output stream. Two bytes of the context hold its state: xmlLevel, the nesting depth
 * that governs indentation (raised after a constructed element's start tag and lowered before
 * its end tag by the generated asn1XE_ functions, never by the primitives), and xmlState, what
 * was written last (XERSTART, XERSTARTTAG, XERDATA, XERENDTAG).
 *
 * Layout: every element starts on a new line indented three blanks per level; an element with
 * character content keeps its end tag on the same line, one with element content puts it on a
 * line of its own. The canonical flag (ASN1CANXER) drops all newlines and indentation.
 *
 * Every function returns 0 or a negative status recorded in the context's error record with
 * its source location. Element names and attribute texts are NUL-terminated and written as
 * they are; a null name in a value writer means the kind's default name (given with each), an
 * empty name means the layout primitives write no tag at all. Partial output stays in the
 * buffer when a writer fails.
 */
#ifndef QUILLON_ASN1XER_H
#define QUILLON_ASN1XER_H

#include "asn1type.h"
#include "rtContext.h"

QN_BEGIN_C

/* What the encoder wrote last (ASN1CTXT.xmlState). */
#define XERSTART 0    /* nothing yet, or the XML declaration */
#define XERSTARTTAG 1 /* a start tag (or an empty element inside content) */
#define XERDATA 2     /* character content */
#define XERENDTAG 3   /* an end tag or a whole self-closing element */

/* Output form of a BIT STRING: hexadecimal digits of the whole octets (with the attribute
 * form="hex") or one "0"/"1" per bit. */
typedef enum ASN1StrType { ASN1HEX = 0, ASN1BIN = 1 } ASN1StrType;

/* ---- Document and layout ---------------------------------------------------------------- */

/* Attaches buf of size bytes, or with a null buf a dynamic buffer of size bytes (0: 16384),
 * freeing a dynamic one attached before; puts a NUL in its first byte and starts a fresh
 * document (state XERSTART, level 0). A non-zero canonical sets ASN1CANXER (zero leaves the
 * flag as it is). The status of rtInitContextBuffer. */
QN_API int xerSetEncBufPtr(ASN1CTXT* pctxt, ASN1OCTET* buf, int size, ASN1BOOL canonical);
/* The start of the buffer, and the bytes written so far (the terminating NUL not counted). */
QN_API ASN1OCTET* xerGetMsgPtr(ASN1CTXT* pctxt);
QN_API int xerGetMsgLen(ASN1CTXT* pctxt);

/* Level 0, state XERSTART, and the XML declaration without a newline after it. */
QN_API int xerEncStartDocument(ASN1CTXT* pctxt);
/* With a stream attached: flushes it. Otherwise the document must be complete (level 0, an end
 * tag last), else -35; then a NUL follows the text without being counted in its length. */
QN_API int xerEncEndDocument(ASN1CTXT* pctxt);

/* Indentation, state XERSTARTTAG, "<name attributes>"; nothing for a null or empty name. */
QN_API int xerEncStartElement(ASN1CTXT* pctxt, const char* elemName, const char* attributes);
/* "</name>", on a new indented line when element content came before it (state XERENDTAG),
 * else right after the character content; state XERENDTAG. Nothing for a null or empty name. */
QN_API int xerEncEndElement(ASN1CTXT* pctxt, const char* elemName);
/* "<name attributes/>" without indentation, state XERSTARTTAG: as content of an element. A
 * caller writing it as a whole element indents first and sets XERENDTAG after it. */
QN_API int xerEncEmptyElement(ASN1CTXT* pctxt, const char* elemName, const char* attributes);
/* A line feed and three blanks per level; nothing in canonical mode. */
QN_API int xerEncIndent(ASN1CTXT* pctxt);
/* One line feed (never CR LF). */
QN_API int xerEncNewLine(ASN1CTXT* pctxt);
/* Text as it stands, unescaped; nothing for null or empty text. */
QN_API int xerCopyText(ASN1CTXT* pctxt, const char* text);
QN_API int xerCopyText2(ASN1CTXT* pctxt, const char* text1, const char* text2);
/* length bytes of raw XML, unescaped; nothing when chars is null or length below 1. */
QN_API int xerEncXmlCharData(ASN1CTXT* pctxt, const char* chars, int length);

/* length bytes escaped for character content: & < > " ' as entity references, and backspace,
 * tab, line feed, form feed and carriage return as the two-character C escapes \b \t \n \f \r
 * (which the decoder does not turn back); every other byte as it is. */
QN_API int xerPutCharStr(ASN1CTXT* pctxt, const char* chars, int length);
/* One character: below 128 escaped as above, else its UTF-8 sequence of 2 to 6 bytes (values
 * up to 0x7FFFFFFF; surrogates are not refused). */
QN_API int xerEncChar(ASN1CTXT* pctxt, ASN1UINT character);

/* ---- Content only (state XERDATA, no tags) ---------------------------------------------- */

/* "<true/>" or "<false/>"; the XML Schema form writes "true" or "false". */
QN_API int xerEncBoolValue(ASN1CTXT* pctxt, ASN1BOOL value);
QN_API int xmlEncBoolValue(ASN1CTXT* pctxt, ASN1BOOL value);
/* Two upper-case hexadecimal digits per octet. */
QN_API int xerEncHexStrValue(ASN1CTXT* pctxt, ASN1UINT numocts, const ASN1OCTET* data);
/* One "0" or "1" per bit, most significant bit of each octet first. */
QN_API int xerEncBinStrValue(ASN1CTXT* pctxt, ASN1UINT numbits, const ASN1OCTET* data);
/* The identifier of an enumerated value as text. */
QN_API int xmlEncEnum(ASN1CTXT* pctxt, const char* identifier);
/* nchars 16-bit characters, each through xerEncChar. */
QN_API int xerEncUniCharData(ASN1CTXT* pctxt, const ASN1USINT* chars, ASN1UINT nchars);

/* ---- Value writers: one element each, on one line --------------------------------------- */

/* Decimal; default name "INTEGER". */
QN_API int xerEncInt(ASN1CTXT* pctxt, ASN1INT value, const char* elemName);
QN_API int xerEncUInt(ASN1CTXT* pctxt, ASN1UINT value, const char* elemName);
QN_API int xerEncInt64(ASN1CTXT* pctxt, ASN1INT64 value, const char* elemName);
QN_API int xerEncUInt64(ASN1CTXT* pctxt, ASN1UINT64 value, const char* elemName);
/* An integer of any length given as text: decimal with an optional "-", or "0x", "0b", "0o"
 * followed by hexadecimal, binary or octal digits (converted to decimal). Leading zeros are
 * dropped, all of them: zero is written as empty content, deliberately. -18 for a text that is
 * not such a number (nothing written then), -30 for a null text, -12 when a converted value of
 * more than 1000 digits finds no heap memory. Default name "INTEGER". */
QN_API int xerEncBigInt(ASN1CTXT* pctxt, const char* value, const char* elemName);
/* Default name "BOOLEAN"; content as the *BoolValue writers. */
QN_API int xerEncBool(ASN1CTXT* pctxt, ASN1BOOL value, const char* elemName);
QN_API int xmlEncBool(ASN1CTXT* pctxt, ASN1BOOL value, const char* elemName);
/* A whole self-closing element, default name "NULL"; state XERENDTAG. */
QN_API int xerEncNull(ASN1CTXT* pctxt, const char* elemName);
/* "0" for either zero and for NaN (deliberately), "<PLUS-INFINITY/>", "<MINUS-INFINITY/>",
 * else the twenty-digit mantissa without its trailing zeros (one digit kept after the point),
 * "E", the exponent's sign and its digits: 1.0E+0, 5.0E-1. Default name "REAL". */
QN_API int xerEncReal(ASN1CTXT* pctxt, ASN1REAL value, const char* elemName);
/* The XML Schema form: "0", "-0", "INF", "-INF", "NaN", else as above without a "+" in the
 * exponent: 1.0E0, 5.0E-1. Default name "REAL". */
QN_API int xmlEncReal(ASN1CTXT* pctxt, ASN1REAL value, const char* elemName);
/* Hexadecimal digits; no octets give a whole empty element. Default name "OCTET_STRING". */
QN_API int xerEncOctStr(ASN1CTXT* pctxt, ASN1UINT numocts, const ASN1OCTET* data,
                        const char* elemName);
/* Base64 in one run without line breaks; no octets give a whole empty element. Default name
 * "OCTET_STRING". */
QN_API int xerEncBase64Str(ASN1CTXT* pctxt, ASN1UINT numocts, const ASN1OCTET* data,
                           const char* elemName);
/* In the given form (-30 for another one); no bits give a whole empty element, carrying
 * form="hex" for ASN1HEX. Default name "BIT_STRING". */
QN_API int xerEncBitStr(ASN1CTXT* pctxt, ASN1UINT numbits, const ASN1OCTET* data,
                        const char* elemName, ASN1StrType outputType);
/* The XML Schema form: binary digits, as xerEncBitStr with ASN1BIN. */
QN_API int xmlEncBitStr(ASN1CTXT* pctxt, ASN1UINT numbits, const ASN1OCTET* data,
                        const char* elemName);
/* Arcs in decimal joined by "."; -4 before anything is written unless there are 2 to 128 arcs,
 * the first at most 2 and, under 0 and 1, the second at most 39. Default name
 * "OBJECT_IDENTIFIER". */
QN_API int xerEncObjId(ASN1CTXT* pctxt, const ASN1OBJID* pvalue, const char* elemName);
QN_API int xerEncObjId64(ASN1CTXT* pctxt, const ASN1OID64* pvalue, const char* elemName);
/* Arcs in decimal joined by "." without any check of their values; no arcs give empty
 * content, more than 128 -4. Default name "RELATIVE_OID". */
QN_API int xerEncRelativeOID(ASN1CTXT* pctxt, const ASN1OBJID* pvalue, const char* elemName);
/* The text escaped (xerPutCharStr); null text is empty. No default name: -30 for a null one. */
QN_API int xerEncAscCharStr(ASN1CTXT* pctxt, const char* value, const char* elemName);
/* Each character through xerEncChar. Default names "BMPString" and "UniversalString". */
QN_API int xerEncBMPStr(ASN1CTXT* pctxt, const Asn116BitCharString* pvalue,
                        const char* elemName);
QN_API int xerEncUnivStr(ASN1CTXT* pctxt, const Asn132BitCharString* pvalue,
                         const char* elemName);
/* A NUL-terminated 16-bit text, each character through xerEncChar; null text is empty. No
 * default name: -30 for a null one. */
QN_API int xerEncUniCharStr(ASN1CTXT* pctxt, const ASN1USINT* value, const char* elemName);
/* The identifier as an empty element inside the named element, on one line:
 * "<version><v3/></version>". */
QN_API int xerEncNamedValue(ASN1CTXT* pctxt, const char* identifier, const char* elemName,
                            const char* attributes);
/* The identifier as character content: "<version>v3</version>". */
QN_API int xmlEncNamedValue(ASN1CTXT* pctxt, const char* identifier, const char* elemName,
                            const char* attributes);
/* Octets that already are XML, copied raw: inside the named element, or without a name (null
 * or empty) as a whole element of their own on an indented line (state XERENDTAG after). */
QN_API int xerEncOpenType(ASN1CTXT* pctxt, ASN1UINT numocts, const ASN1OCTET* data,
                          const char* elemName);
/* An ASN.1 UTCTime or GeneralizedTime text written as an XML Schema dateTime
 * ("2011-05-03T12:00:00Z"); the status of parsing it (-31 for a malformed time), or -30 for a
 * null name. */
QN_API int xmlEncUTCTime(ASN1CTXT* pctxt, const char* value, const char* elemName);
QN_API int xmlEncGeneralizedTime(ASN1CTXT* pctxt, const char* value, const char* elemName);

QN_END_C

#endif
