/* The base of every control class: the shared context and the current message buffer. */
#include <quillon/asn1CppTypes.h>

#include "rtCppContext.h"
#include "rtErrLog.h"

ASN1CType::ASN1CType() : mpContext(qn::newContextObject()), mpMsgBuf(nullptr) {}

ASN1CType::ASN1CType(ASN1MessageBufferIF& msgBuf)
    : mpContext(msgBuf.getContext()), mpMsgBuf(&msgBuf) {}

ASN1CType::ASN1CType(ASN1Context& ctxt) : mpContext(&ctxt), mpMsgBuf(nullptr) {}

ASN1CType::~ASN1CType() {}

namespace {

/* Encode and Decode on an object made without a buffer have nothing to work on. */
int noMessageBuffer(ASN1CTXT* pctxt) {
  return pctxt ? LOG_RTERR(pctxt, ASN_E_INVPARAM) : ASN_E_INVPARAM;
}

}  // namespace

int ASN1CType::Encode() {
  if (!mpMsgBuf) return noMessageBuffer(getCtxtPtr());
  return EncodeTo(*mpMsgBuf);
}

int ASN1CType::Decode() {
  if (!mpMsgBuf) return noMessageBuffer(getCtxtPtr());
  return DecodeFrom(*mpMsgBuf);
}

int ASN1CType::EncodeTo(ASN1MessageBufferIF&) { return 0; }

int ASN1CType::DecodeFrom(ASN1MessageBufferIF&) { return 0; }

void ASN1CType::setMsgBuf(ASN1MessageBufferIF& msgBuf) {
  mpMsgBuf = &msgBuf;
  ASN1CTXT* own = getCtxtPtr();
  ASN1CTXT* bufCtxt = msgBuf.getCtxtPtr();
  if (own && bufCtxt) rtCtxtSetMemHeap(own, bufCtxt);
}
