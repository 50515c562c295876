/* UTCTime and GeneralizedTime values written as XML Schema dateTime texts. */
#include <quillon/rtTime.h>

#include "xerEncCommon.h"

namespace {

/* The longest dateTime text of a four-digit year and its NUL, with room. */
constexpr int kDateTimeText = 48;

template <typename Parse>
int writeDateTime(ASN1CTXT* pctxt, const char* value, const char* elemName, Parse parse) {
  if (!elemName) return ASN_E_INVPARAM;
  ASN1TimeFields fields;
  int stat = parse(pctxt, value, &fields);
  if (stat < 0) return stat;
  char text[kDateTimeText];
  char* p = text;
  stat = rtMakeXmlDateTime(pctxt, &fields, &p, kDateTimeText);
  if (stat < 0) return stat;
  return xerEncAscCharStr(pctxt, text, elemName);
}

}  // namespace

QN_BEGIN_C

int xmlEncUTCTime(ASN1CTXT* pctxt, const char* value, const char* elemName) {
  return XER_TRACE(pctxt, writeDateTime(pctxt, value, elemName, rtParseUTCTime));
}

int xmlEncGeneralizedTime(ASN1CTXT* pctxt, const char* value, const char* elemName) {
  return XER_TRACE(pctxt, writeDateTime(pctxt, value, elemName, rtParseGeneralizedTime));
}

QN_END_C
