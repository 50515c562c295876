/* Character strings and names: 8-bit text escaped, 16 and 32-bit characters as UTF-8, and the
 * identifiers of named values and enumerations. */
#include "xerEncCommon.h"

using namespace qn::xer;

namespace {

template <typename Char>
void putChars(TextStage& s, const Char* chars, ASN1UINT nchars) {
  for (ASN1UINT i = 0; i < nchars && !s.failed(); ++i) putChar(s, chars[i]);
}

ASN1UINT uniLength(const ASN1USINT* text) {
  ASN1UINT n = 0;
  if (text)
    while (text[n]) ++n;
  return n;
}

template <typename CharString>
int writeWideString(ASN1CTXT* pctxt, const CharString* pvalue, const char* elemName) {
  if (!pvalue || (pvalue->nchars && !pvalue->data)) return ASN_E_INVPARAM;
  return writeElement(pctxt, elemName, nullptr,
                      [pvalue](TextStage& s) { putChars(s, pvalue->data, pvalue->nchars); });
}

}  // namespace

QN_BEGIN_C

int xerEncAscCharStr(ASN1CTXT* pctxt, const char* value, const char* elemName) {
  if (!elemName) return LOG_RTERR(pctxt, ASN_E_INVPARAM);
  int stat = writeElement(pctxt, elemName, nullptr, [value](TextStage& s) {
    if (value) putEscaped(s, value, strlen(value));
  });
  return XER_TRACE(pctxt, stat);
}

int xerEncBMPStr(ASN1CTXT* pctxt, const Asn116BitCharString* pvalue, const char* elemName) {
  return XER_TRACE(pctxt, writeWideString(pctxt, pvalue, nameOr(elemName, "BMPString")));
}

int xerEncUnivStr(ASN1CTXT* pctxt, const Asn132BitCharString* pvalue, const char* elemName) {
  return XER_TRACE(pctxt, writeWideString(pctxt, pvalue, nameOr(elemName, "UniversalString")));
}

int xerEncUniCharStr(ASN1CTXT* pctxt, const ASN1USINT* value, const char* elemName) {
  if (!elemName) return LOG_RTERR(pctxt, ASN_E_INVPARAM);
  const ASN1UINT nchars = uniLength(value);
  int stat = writeElement(pctxt, elemName, nullptr,
                          [&](TextStage& s) { putChars(s, value, nchars); });
  return XER_TRACE(pctxt, stat);
}

int xerEncUniCharData(ASN1CTXT* pctxt, const ASN1USINT* chars, ASN1UINT nchars) {
  if (nchars && !chars) return LOG_RTERR(pctxt, ASN_E_INVPARAM);
  TextStage s(pctxt);
  setState(pctxt, XERDATA);
  putChars(s, chars, nchars);
  return XER_TRACE(pctxt, s.finish());
}

/* The inner empty element leaves state XERSTARTTAG, so the end tag stays on the same line. */
int xerEncNamedValue(ASN1CTXT* pctxt, const char* identifier, const char* elemName,
                     const char* attributes) {
  TextStage s(pctxt);
  putStartTag(s, elemName, attributes);
  putEmptyElement(s, identifier, nullptr);
  putEndTag(s, elemName);
  return XER_TRACE(pctxt, s.finish());
}

int xmlEncNamedValue(ASN1CTXT* pctxt, const char* identifier, const char* elemName,
                     const char* attributes) {
  int stat = writeElement(pctxt, elemName, attributes,
                          [identifier](TextStage& s) { s.put(identifier); });
  return XER_TRACE(pctxt, stat);
}

int xmlEncEnum(ASN1CTXT* pctxt, const char* identifier) {
  TextStage s(pctxt);
  setState(pctxt, XERDATA);
  s.put(identifier);
  return XER_TRACE(pctxt, s.finish());
}

QN_END_C
