/*
 * Deep copies of the primitive value records, for the generated asn1Copy_ functions and for
 * callers that copy values by hand. Every new block comes from the context's heap (memHeap);
 * the source is never changed. Each returns 0, or -12 when the heap has no memory, in which case
 * the destination is left empty.
 */
#ifndef QUILLON_RTCOPY_H
#define QUILLON_RTCOPY_H

#include "asn1type.h"

QN_BEGIN_C

/* A NUL-terminated copy of src in *dst_p; a null src gives a null copy. */
QN_API int rtCopyCharStr(ASN1CTXT* pctxt, const char* src, const char** dst_p);
/* The octets (numocts of them; none gives null data). */
QN_API int rtCopyDynOctStr(ASN1CTXT* pctxt, const ASN1DynOctStr* src, ASN1DynOctStr* dst);
/* The (numbits + 7) / 8 octets holding the bits. */
QN_API int rtCopyDynBitStr(ASN1CTXT* pctxt, const ASN1DynBitStr* src, ASN1DynBitStr* dst);
/* The encoding of an open type. */
QN_API int rtCopyOpenType(ASN1CTXT* pctxt, const ASN1TOpenType* src, ASN1TOpenType* dst);
/* BMPString- and UniversalString-like values: nchars characters. */
QN_API int rtCopy16BitCharStr(ASN1CTXT* pctxt, const Asn116BitCharString* src,
                              Asn116BitCharString* dst);
QN_API int rtCopy32BitCharStr(ASN1CTXT* pctxt, const Asn132BitCharString* src,
                              Asn132BitCharString* dst);
/* The count and exactly that many arcs (at most the record's 128); allocates nothing. */
QN_API void rtCopyOID(const ASN1OBJID* src, ASN1OBJID* dst);

QN_END_C

#endif
