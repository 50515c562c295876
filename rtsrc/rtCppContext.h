/* Private to the object layer: how its classes make the context object they own. */
#ifndef QUILLON_RTCPPCONTEXT_H
#define QUILLON_RTCPPCONTEXT_H

#include <quillon/asn1CppTypes.h>

namespace qn {

/* A new ASN1Context (reference count 0). Throws ASN1MessageBuffer::RTLError: -12 when there is
 * no memory for the object, or the status with which the context failed to initialise. */
ASN1Context* newContextObject();

}  // namespace qn

#endif
