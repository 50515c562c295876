/*
 * Time texts as broken-down fields and back: UTCTime (YYMMDDhhmm[ss] with "Z" or +-hhmm),
 * GeneralizedTime (YYYYMMDDhh[mm[ss]][.f] with an optional zone) and the XML Schema dateTime
 * (YYYY-MM-DDThh:mm:ss[.f] with an optional "Z" or +-hh:mm).
 *
 * Every function records its failure in the context's error record and returns it:
 * -31 for a text or field out of format or range, -17 for a caller buffer too small for the
 * text and its NUL, -12 when the heap is exhausted, -30 for a null argument. On failure nothing
 * is written to the output record or buffer.
 */
#ifndef QUILLON_RTTIME_H
#define QUILLON_RTTIME_H

#include "asn1type.h"

QN_BEGIN_C

/* Digits of a fraction of a second kept in ASN1TimeFields.fraction. */
#define ASN_K_MAXFRACDIGITS 20

typedef struct ASN1TimeFields {
  ASN1SINT year;      /* full year, e.g. 2024 */
  ASN1SINT month;     /* 1..12 */
  ASN1SINT day;       /* 1..31 */
  ASN1SINT hour;      /* 0..23 */
  ASN1SINT minute;    /* 0..59 */
  ASN1SINT second;    /* 0..59 */
  ASN1SINT diffHour;  /* zone offset hours, -12..12, negative west of UTC */
  ASN1SINT diffMin;   /* zone offset minutes, -59..59, same sign as diffHour */
  char fraction[ASN_K_MAXFRACDIGITS + 1]; /* digits after the decimal mark, NUL-terminated */
  ASN1BOOL utcFlag;   /* the text ended with "Z" */
} ASN1TimeFields;

/* Two-digit years below 50 are 20YY, the others 19YY. A zone is required. */
QN_API int rtParseUTCTime(ASN1CTXT* pctxt, const char* text, ASN1TimeFields* pFields);
/* Minutes, seconds, fraction (only after seconds; "." or ",") and zone are optional; without a
 * zone the time is local. Leading zeros of the fraction are not kept (".05" keeps "5"). */
QN_API int rtParseGeneralizedTime(ASN1CTXT* pctxt, const char* text, ASN1TimeFields* pFields);
/* Year 1 or later; fraction as for GeneralizedTime; without a zone the time is local. */
QN_API int rtParseXmlDateTime(ASN1CTXT* pctxt, const char* text, ASN1TimeFields* pFields);

/*
 * The make functions write the text of pFields. With bufsize 0 the text is copied to the
 * context's heap and *ppText receives it; otherwise *ppText must point at a caller buffer of
 * bufsize bytes, which gets the text when bufsize exceeds its length (else -17).
 * Zone: "Z" when utcFlag is set, nothing when both differences are 0 (local time), else the
 * signed offset.
 */
/* Years 1950..2049; zero seconds are left out ("1105031200Z"); no fraction. */
QN_API int rtMakeUTCTime(ASN1CTXT* pctxt, const ASN1TimeFields* pFields, char** ppText,
                         int bufsize);
/* Years 0..9999; seconds always written, the fraction when not empty. */
QN_API int rtMakeGeneralizedTime(ASN1CTXT* pctxt, const ASN1TimeFields* pFields, char** ppText,
                                 int bufsize);
/* Any non-zero year (negative ones as "-YYYY"); 46 characters at most for a four-digit year. */
QN_API int rtMakeXmlDateTime(ASN1CTXT* pctxt, const ASN1TimeFields* pFields, char** ppText,
                             int bufsize);

QN_END_C

#endif
