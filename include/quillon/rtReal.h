/*
 * The special REAL values: the infinities, NaN and minus zero, which have their own encodings
 * (BER) and texts (XER) and so must be made and recognised exactly. IEEE 754 doubles.
 */
#ifndef QUILLON_RTREAL_H
#define QUILLON_RTREAL_H

#include "asn1type.h"

QN_BEGIN_C

QN_API ASN1REAL rtGetPlusInfinity(void);
QN_API ASN1REAL rtGetMinusInfinity(void);
/* A quiet NaN. */
QN_API ASN1REAL rtGetNaN(void);
QN_API ASN1REAL rtGetMinusZero(void);

/* Each returns 1 when value is the named special value, else 0. rtIsMinusZero is 0 for plain
 * zero, which compares equal to minus zero but encodes differently. */
QN_API int rtIsPlusInfinity(ASN1REAL value);
QN_API int rtIsMinusInfinity(ASN1REAL value);
QN_API int rtIsNaN(ASN1REAL value);
QN_API int rtIsMinusZero(ASN1REAL value);

QN_END_C

#endif
