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

QN_END_C

#endif
