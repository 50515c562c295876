/* BOOLEAN values: the X.693 identifiers and the XML Schema literals. */
#include "xerDecCommon.h"

using namespace qn::xerdec;

namespace {

struct BoolLiteral {
  const char* text;
  ASN1BOOL value;
};

/* The value of the literal the text holds after its leading white space, or -18. */
template <size_t N>
int decodeLiteral(ASN1CTXT* pctxt, ASN1BOOL* pvalue, const BoolLiteral (&literals)[N]) {
  const Text t = skipLeadingSpace(inputText(pctxt));
  for (const BoolLiteral& literal : literals) {
    if (equals(t, literal.text)) {
      *pvalue = literal.value;
      return 0;
    }
  }
  return ASN_E_BADVALUE;
}

const BoolLiteral kXerLiterals[] = {{"true", ASN1TRUE}, {"false", ASN1FALSE}};
const BoolLiteral kXmlLiterals[] = {
    {"true", ASN1TRUE}, {"false", ASN1FALSE}, {"1", ASN1TRUE}, {"0", ASN1FALSE}};

}  // namespace

QN_BEGIN_C

int xerDecBool(ASN1CTXT* pctxt, ASN1BOOL* pvalue) {
  return XERDEC_TRACE(pctxt, decodeLiteral(pctxt, pvalue, kXerLiterals));
}

int xmlDecBool(ASN1CTXT* pctxt, ASN1BOOL* pvalue) {
  return XERDEC_TRACE(pctxt, decodeLiteral(pctxt, pvalue, kXmlLiterals));
}

QN_END_C
