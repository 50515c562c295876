/* BER/DER coding of tags, lengths and every primitive type into and out of a memory buffer. */
#ifndef QUILLON_ASN1BER_H
#define QUILLON_ASN1BER_H

#include "asn1type.h"
#include "rtContext.h"
#include "rtMemHeap.h"
#include "rtList.h"
#include "asn1berenc.h"
#include "asn1berdec.h"

#endif
