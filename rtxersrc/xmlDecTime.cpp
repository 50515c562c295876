/* UTCTime and GeneralizedTime values from XML Schema dateTime texts. */
#include <quillon/rtTime.h>

#include "xerDecCommon.h"

using namespace qn::xerdec;

namespace {

/* Longer than any dateTime the time functions accept (a fraction of at most 20 digits). */
constexpr size_t kMaxDateTimeText = 64;

using TimeMaker = int (*)(ASN1CTXT*, const ASN1TimeFields*, char**, int);

/* The time parser takes a NUL-terminated text: the trimmed value is copied out of the input,
 * which need not be terminated where the value ends. */
int decodeTime(ASN1CTXT* pctxt, const char** ppvalue, TimeMaker make) {
  const Text t = trimSpace(inputText(pctxt));
  if (t.size() >= kMaxDateTimeText) return ASN_E_INVFORMAT;
  char dateTime[kMaxDateTimeText];
  memcpy(dateTime, t.begin, t.size());
  dateTime[t.size()] = 0;
  ASN1TimeFields fields;
  int stat = rtParseXmlDateTime(pctxt, dateTime, &fields);
  if (stat < 0) return stat;
  char* text = nullptr;
  stat = make(pctxt, &fields, &text, 0);
  if (stat < 0) return stat;
  *ppvalue = text;
  return 0;
}

}  // namespace

QN_BEGIN_C

int xmlDecUTCTime(ASN1CTXT* pctxt, const char** ppvalue) {
  return XERDEC_TRACE(pctxt, decodeTime(pctxt, ppvalue, rtMakeUTCTime));
}

int xmlDecGeneralizedTime(ASN1CTXT* pctxt, const char** ppvalue) {
  return XERDEC_TRACE(pctxt, decodeTime(pctxt, ppvalue, rtMakeGeneralizedTime));
}

QN_END_C
