/* The reference-counted context object and the smart pointer that holds it. */
#include <new>

#include <quillon/asn1CppTypes.h>

#include "rtCppContext.h"

ASN1Context::ASN1Context() : mnRefCnt(0) {
  int stat = rtInitContext(&mCtxt, nullptr);
  if (stat != 0) throw ASN1MessageBuffer::RTLError(stat);
}

ASN1Context::~ASN1Context() { rtFreeContext(&mCtxt); }

void ASN1Context::_ref() { mnRefCnt++; }

void ASN1Context::_unref() {
  /* An unbalanced _unref leaves the count negative rather than deleting twice. */
  if (--mnRefCnt == 0) delete this;
}

void ASN1Context::PrintErrorInfo() { rtErrPrint(&mCtxt.errInfo); }

namespace qn {

ASN1Context* newContextObject() {
  ASN1Context* ctxt = new (std::nothrow) ASN1Context();
  if (!ctxt) throw ASN1MessageBuffer::RTLError(ASN_E_NOMEM);
  return ctxt;
}

}  // namespace qn

ASN1CtxtPtr::ASN1CtxtPtr(ASN1Context* rf) : mPointer(rf) {
  if (mPointer) mPointer->_ref();
}

ASN1CtxtPtr::ASN1CtxtPtr(const ASN1CtxtPtr& o) : mPointer(o.mPointer) {
  if (mPointer) mPointer->_ref();
}

ASN1CtxtPtr::~ASN1CtxtPtr() {
  if (mPointer) mPointer->_unref();
}

ASN1CtxtPtr& ASN1CtxtPtr::operator=(const ASN1CtxtPtr& rf) { return *this = rf.mPointer; }

ASN1CtxtPtr& ASN1CtxtPtr::operator=(ASN1Context* rf) {
  /* Dropping first and taking second is the documented order; holding the same object again
   * is left alone, since dropping its last reference first would destroy it. */
  if (rf == mPointer) return *this;
  if (mPointer) mPointer->_unref();
  mPointer = rf;
  if (mPointer) mPointer->_ref();
  return *this;
}
