/* BOOLEAN and NULL: the values that are written as names rather than as numbers or text. */
#include "xerEncCommon.h"

using namespace qn::xer;

namespace {

void putXerBool(TextStage& s, ASN1BOOL value) {
  if (value)
    s.put("<true/>", 7);
  else
    s.put("<false/>", 8);
}

void putXmlBool(TextStage& s, ASN1BOOL value) {
  if (value)
    s.put("true", 4);
  else
    s.put("false", 5);
}

template <typename Put>
int writeContent(ASN1CTXT* pctxt, ASN1BOOL value, Put put) {
  TextStage s(pctxt);
  setState(pctxt, XERDATA);
  put(s, value);
  return s.finish();
}

}  // namespace

QN_BEGIN_C

int xerEncBoolValue(ASN1CTXT* pctxt, ASN1BOOL value) {
  return XER_TRACE(pctxt, writeContent(pctxt, value, putXerBool));
}

int xmlEncBoolValue(ASN1CTXT* pctxt, ASN1BOOL value) {
  return XER_TRACE(pctxt, writeContent(pctxt, value, putXmlBool));
}

int xerEncBool(ASN1CTXT* pctxt, ASN1BOOL value, const char* elemName) {
  int stat = writeElement(pctxt, nameOr(elemName, "BOOLEAN"), nullptr,
                          [value](TextStage& s) { putXerBool(s, value); });
  return XER_TRACE(pctxt, stat);
}

int xmlEncBool(ASN1CTXT* pctxt, ASN1BOOL value, const char* elemName) {
  int stat = writeElement(pctxt, nameOr(elemName, "BOOLEAN"), nullptr,
                          [value](TextStage& s) { putXmlBool(s, value); });
  return XER_TRACE(pctxt, stat);
}

int xerEncNull(ASN1CTXT* pctxt, const char* elemName) {
  TextStage s(pctxt);
  putWholeEmptyElement(s, nameOr(elemName, "NULL"), nullptr);
  return XER_TRACE(pctxt, s.finish());
}

QN_END_C
