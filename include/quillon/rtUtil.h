/* Value utilities the codec itself needs: tag texts and hex dumps. */
#ifndef QUILLON_RTUTIL_H
#define QUILLON_RTUTIL_H

#include <stdio.h>
#include "asn1type.h"

QN_BEGIN_C

/* "[UNIVERSAL n]", "[APPLICATION n]", "[n]" or "[PRIVATE n]" into buf (bufsiz bytes, always
 * terminated); returns buf. */
QN_API char* rtTagToString(ASN1TagType tag, char* buf, size_t bufsiz);
/* Hex and printable-character dump of data to fp, 16 octets a line. */
QN_API void rtHexDumpToFile(FILE* fp, const ASN1OCTET* data, ASN1UINT numocts);
/* The same dump appended to the NUL-terminated text in buf (bufsize bytes in all): a line of
 * 63 characters plus one per octet on it. The whole dump or nothing: 0, -17 when it does not
 * fit with the NUL (buf keeps its text), -30 for a null buf, a buf without a NUL within
 * bufsize, or null data with octets. */
QN_API int rtHexDumpToString(const ASN1OCTET* data, ASN1UINT numocts, char* buf, size_t bufsize);
/* Reads the whole file into memory from the context's heap: *ppMsgBuf and *pLength. 0, or -40
 * when it cannot be opened, -41 when its size cannot be told or it reads short, -12. */
QN_API int rtFileReadBinary(ASN1CTXT* pctxt, const char* filePath, ASN1OCTET** ppMsgBuf,
                            int* pLength);

QN_END_C

#endif
