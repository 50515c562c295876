/* Open-type values: the captured XML text of the element, kept for a later decode. */
#include "xerDecCommon.h"

using namespace qn::xerdec;

namespace {

/* The copy carries a NUL after the text, so the captured XML can be made a decode input
 * again as it stands. */
int decodeOpenType(ASN1CTXT* pctxt, ASN1TOpenType* pvalue) {
  const Text t = inputText(pctxt);
  ASN1OCTET* data = nullptr;
  if (!t.empty()) {
    data = allocArray<ASN1OCTET>(pctxt, t.size() + 1);
    if (!data) return ASN_E_NOMEM;
    memcpy(data, t.begin, t.size());
    data[t.size()] = 0;
  }
  pvalue->numocts = static_cast<ASN1UINT>(t.size());
  pvalue->data = data;
  return 0;
}

}  // namespace

QN_BEGIN_C

int xerDecOpenType(ASN1CTXT* pctxt, ASN1TOpenType* pvalue) {
  return XERDEC_TRACE(pctxt, decodeOpenType(pctxt, pvalue));
}

QN_END_C
