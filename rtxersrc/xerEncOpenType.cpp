/* Open types: values already encoded as XML, copied into the document as they are. */
#include "xerEncCommon.h"

using namespace qn::xer;

QN_BEGIN_C

/* Without a name the octets stand as a whole element of their own on an indented line. */
int xerEncOpenType(ASN1CTXT* pctxt, ASN1UINT numocts, const ASN1OCTET* data,
                   const char* elemName) {
  if (numocts && !data) return LOG_RTERR(pctxt, ASN_E_INVPARAM);
  const char* text = reinterpret_cast<const char*>(data);
  TextStage s(pctxt);
  if (hasName(elemName)) {
    putStartTag(s, elemName, nullptr);
    s.put(text, numocts);
    putEndTag(s, elemName);
  } else {
    putIndent(s);
    setState(pctxt, XERSTARTTAG);
    s.put(text, numocts);
    setState(pctxt, XERENDTAG);
  }
  return XER_TRACE(pctxt, s.finish());
}

QN_END_C
