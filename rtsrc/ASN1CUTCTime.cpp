// UTCTime: two-digit years 1950..2049, no fraction, and always a zone.

#include <quillon/asn1CTime.h>

#include "rtErrLog.h"

ASN1CUTCTime::ASN1CUTCTime(char*& buf, int bufSize, ASN1BOOL useDerRules)
    : ASN1CTime(buf, bufSize, useDerRules) {}

ASN1CUTCTime::ASN1CUTCTime(ASN1MessageBufferIF& msgBuf, char*& buf, int bufSize,
                           ASN1BOOL useDerRules)
    : ASN1CTime(msgBuf, buf, bufSize, useDerRules) {}

ASN1CUTCTime::ASN1CUTCTime(ASN1Context& ctxt, char*& buf, int bufSize, ASN1BOOL useDerRules)
    : ASN1CTime(ctxt, buf, bufSize, useDerRules) {}

ASN1CUTCTime::ASN1CUTCTime(const char*& buf, ASN1BOOL useDerRules) : ASN1CTime(buf, useDerRules) {}

ASN1CUTCTime::ASN1CUTCTime(ASN1MessageBufferIF& msgBuf, const char*& buf, ASN1BOOL useDerRules)
    : ASN1CTime(msgBuf, buf, useDerRules) {}

ASN1CUTCTime::ASN1CUTCTime(ASN1Context& ctxt, const char*& buf, ASN1BOOL useDerRules)
    : ASN1CTime(ctxt, buf, useDerRules) {}

ASN1CUTCTime::~ASN1CUTCTime() {}

int ASN1CUTCTime::getFraction() {
  const int stat = ensureParsed();
  return stat < 0 ? stat : 0;
}

// Local time without an offset cannot be written as a UTCTime, so the offset of this machine's
// zone is written out instead.
int ASN1CUTCTime::setUTC(ASN1BOOL utc) {
  if (mbDerRules || utc) return ASN1CTime::setUTC(utc);
  return convertToLocalZone();
}

int ASN1CUTCTime::setYear(int year) {
  if (year < 1950 || year > 2049) return LOG_RTERR(getCtxtPtr(), ASN_E_INVFORMAT);
  return ASN1CTime::setYear(year);
}

int ASN1CUTCTime::setFraction(int fraction) {
  if (fraction != 0) return LOG_RTERR(getCtxtPtr(), ASN_E_INVFORMAT);
  return ASN1CTime::setFraction(fraction);
}

int ASN1CUTCTime::setTime(long t, ASN1BOOL diffTime) { return setCalendarTime(t, diffTime); }

int ASN1CUTCTime::parseString(const char* text) { return parseWith(rtParseUTCTime, text); }

void ASN1CUTCTime::clear() {
  ASN1CTime::clear();
  mbUtcFlag = 1;
}

// A fraction can only come from millisecond arithmetic here, and a UTCTime cannot carry it.
int ASN1CUTCTime::compileString() {
  if (mbParsed && mSecFraction != 0) return LOG_RTERR(getCtxtPtr(), ASN_E_INVFORMAT);
  return writeString(rtMakeUTCTime);
}
