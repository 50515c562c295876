/* Everything a program needs from libquillon: the runtime and the object layer. */
#ifndef QUILLON_QUILLON_H
#define QUILLON_QUILLON_H

#include "asn1type.h"
#include "rtContext.h"
#include "rtMemHeap.h"
#include "rtList.h"
#include "rtUtil.h"
#include "asn1ber.h"
#include "rtTime.h"
#include "rtBitOps.h"
#include "rtUTF8.h"
#include "rtBase64.h"
#include "rtValueText.h"
#include "rtReal.h"
#include "rtBigInt.h"
#include "rtCopy.h"
#include "rtStream.h"
#include "asn1berStream.h"
#include "rtPrint.h"
#include "rtCompare.h"
#include "asn1xer.h"
#include "asn1XerDec.h"

#ifdef __cplusplus
#include "asn1CppTypes.h"
#include "asn1BerCppTypes.h"
#include "asn1CSeqOfList.h"
#include "asn1Stream.h"
#include "asn1CTime.h"
#include "asn1CBitStr.h"
#include "asn1XerCppTypes.h"
#include "asn1XerSax.h"
#endif

#endif
