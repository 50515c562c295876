/* The common parent of the XER buffers: its destructor anchors the class in the library. */
#include <quillon/asn1XerCppTypes.h>

ASN1XERMessageBuffer::~ASN1XERMessageBuffer() {}
