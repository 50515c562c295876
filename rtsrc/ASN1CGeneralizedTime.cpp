// GeneralizedTime: four-digit years, an optional fraction and an optional zone.

#include <quillon/asn1CTime.h>

#include "rtErrLog.h"

ASN1CGeneralizedTime::ASN1CGeneralizedTime(char*& buf, int bufSize, ASN1BOOL useDerRules)
    : ASN1CTime(buf, bufSize, useDerRules) {}

ASN1CGeneralizedTime::ASN1CGeneralizedTime(ASN1MessageBufferIF& msgBuf, char*& buf, int bufSize,
                                           ASN1BOOL useDerRules)
    : ASN1CTime(msgBuf, buf, bufSize, useDerRules) {}

ASN1CGeneralizedTime::ASN1CGeneralizedTime(ASN1Context& ctxt, char*& buf, int bufSize,
                                           ASN1BOOL useDerRules)
    : ASN1CTime(ctxt, buf, bufSize, useDerRules) {}

ASN1CGeneralizedTime::ASN1CGeneralizedTime(const char*& buf, ASN1BOOL useDerRules)
    : ASN1CTime(buf, useDerRules) {}

ASN1CGeneralizedTime::ASN1CGeneralizedTime(ASN1MessageBufferIF& msgBuf, const char*& buf,
                                           ASN1BOOL useDerRules)
    : ASN1CTime(msgBuf, buf, useDerRules) {}

ASN1CGeneralizedTime::ASN1CGeneralizedTime(ASN1Context& ctxt, const char*& buf,
                                           ASN1BOOL useDerRules)
    : ASN1CTime(ctxt, buf, useDerRules) {}

ASN1CGeneralizedTime::~ASN1CGeneralizedTime() {}

int ASN1CGeneralizedTime::setTime(long t, ASN1BOOL diffTime) {
  return setCalendarTime(t, diffTime);
}

int ASN1CGeneralizedTime::parseString(const char* text) {
  return parseWith(rtParseGeneralizedTime, text);
}

int ASN1CGeneralizedTime::compileString() { return writeString(rtMakeGeneralizedTime); }

int ASN1CGeneralizedTime::getCentury() {
  const int stat = ensureParsed();
  if (stat < 0) return stat;
  return mYear < 0 ? kNotSet : mYear / 100;
}

int ASN1CGeneralizedTime::setCentury(int century) {
  if (century < 0 || century > 99) return LOG_RTERR(getCtxtPtr(), ASN_E_INVFORMAT);
  const int stat = ensureParsed();
  if (stat < 0) return stat;
  const int year = century * 100 + (mYear < 0 ? 0 : mYear % 100);
  return setYear(year);
}
