// Time texts: parsing UTCTime, GeneralizedTime and XML dateTime into ASN1TimeFields, and
// writing them back.

#include <quillon/rtTime.h>

#include <quillon/rtUTF8.h>

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "rtErrLog.h"

namespace {

// Parsers work on a local record and report failure as false; the public functions record -31
// once, so a refused text never leaves half-filled fields behind.

bool isDigit(char c) { return c >= '0' && c <= '9'; }

// Reads exactly n digits. Each character is checked before the next is looked at, so a short
// text stops at its NUL and nothing beyond it is read.
bool takeDigits(const char*& p, int n, int& value) {
  int v = 0;
  for (int i = 0; i < n; ++i) {
    if (!isDigit(p[i])) return false;
    v = v * 10 + (p[i] - '0');
  }
  p += n;
  value = v;
  return true;
}

bool takeChar(const char*& p, char c) {
  if (*p != c) return false;
  ++p;
  return true;
}

bool isLeapYear(int year) { return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0); }

int daysInMonth(int month, int year) {
  static const int kDays[12] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  return month == 2 && isLeapYear(year) ? 29 : kDays[month - 1];
}

bool isValidDate(int year, int month, int day) {
  return month >= 1 && month <= 12 && day >= 1 && day <= daysInMonth(month, year);
}

bool isValidClock(int hour, int minute, int second) {
  return hour >= 0 && hour <= 23 && minute >= 0 && minute <= 59 && second >= 0 && second <= 59;
}

// Fraction digits after "." or ",". Leading zeros are dropped (".05" keeps "5"): the fields
// carry the significant digits only. Digits beyond the 20 kept are consumed, so that a zone
// after a long fraction is still recognised.
bool takeFraction(const char*& p, bool haveSeconds, char* out) {
  out[0] = '\0';
  if (*p != '.' && *p != ',') return true;
  ++p;
  if (!haveSeconds || !isDigit(*p)) return false;
  int n = 0;
  for (; isDigit(*p); ++p) {
    if (n == 0 && *p == '0') continue;
    if (n < ASN_K_MAXFRACDIGITS) out[n++] = *p;
  }
  out[n] = '\0';
  return true;
}

enum class ZoneForm {
  Required,          // UTCTime: "Z" or +-hhmm, nothing else
  OptionalMinutes,   // GeneralizedTime: +-hh[mm], or local time
  Colon              // XML: +-hh:mm, or local time
};

// The zone at the end of a text. Nothing may follow "Z" or an offset; a text that continues
// with anything else is local time except in UTCTime, which must carry a zone.
bool takeZone(const char* p, ZoneForm form, ASN1TimeFields& f) {
  f.utcFlag = 0;
  f.diffHour = 0;
  f.diffMin = 0;
  if (*p == 'Z') {
    f.utcFlag = 1;
    return p[1] == '\0';
  }
  if (*p != '+' && *p != '-') return form != ZoneForm::Required;
  const int sign = *p == '-' ? -1 : 1;
  ++p;
  int hours = 0;
  int minutes = 0;
  if (!takeDigits(p, 2, hours)) return false;
  if (form == ZoneForm::Colon) {
    if (!takeChar(p, ':') || !takeDigits(p, 2, minutes)) return false;
  } else if (form == ZoneForm::Required || isDigit(*p)) {
    if (!takeDigits(p, 2, minutes)) return false;
  }
  if (hours > 12 || minutes > 59 || *p != '\0') return false;
  f.diffHour = static_cast<ASN1SINT>(sign * hours);
  f.diffMin = static_cast<ASN1SINT>(sign * minutes);
  return true;
}

void storeDateTime(ASN1TimeFields& f, int year, int month, int day, int hour, int minute,
                   int second) {
  f.year = static_cast<ASN1SINT>(year);
  f.month = static_cast<ASN1SINT>(month);
  f.day = static_cast<ASN1SINT>(day);
  f.hour = static_cast<ASN1SINT>(hour);
  f.minute = static_cast<ASN1SINT>(minute);
  f.second = static_cast<ASN1SINT>(second);
}

bool parseUTCTime(const char* p, ASN1TimeFields& f) {
  int yy, month, day, hour, minute, second = 0;
  if (!takeDigits(p, 2, yy) || !takeDigits(p, 2, month) || !takeDigits(p, 2, day)) return false;
  // Two-digit years cover 1950..2049.
  const int year = yy < 50 ? 2000 + yy : 1900 + yy;
  if (!isValidDate(year, month, day)) return false;
  if (!takeDigits(p, 2, hour) || !takeDigits(p, 2, minute)) return false;
  if (isDigit(*p) && !takeDigits(p, 2, second)) return false;
  if (!isValidClock(hour, minute, second)) return false;
  storeDateTime(f, year, month, day, hour, minute, second);
  f.fraction[0] = '\0';
  return takeZone(p, ZoneForm::Required, f);
}

bool parseGeneralizedTime(const char* p, ASN1TimeFields& f) {
  int year, month, day, hour, minute = 0, second = 0;
  if (!takeDigits(p, 4, year) || !takeDigits(p, 2, month) || !takeDigits(p, 2, day))
    return false;
  if (!isValidDate(year, month, day)) return false;
  if (!takeDigits(p, 2, hour)) return false;
  bool haveSeconds = false;
  if (isDigit(*p)) {
    if (!takeDigits(p, 2, minute)) return false;
    if (isDigit(*p)) {
      if (!takeDigits(p, 2, second)) return false;
      haveSeconds = true;
    }
  }
  if (!isValidClock(hour, minute, second)) return false;
  if (!takeFraction(p, haveSeconds, f.fraction)) return false;
  storeDateTime(f, year, month, day, hour, minute, second);
  return takeZone(p, ZoneForm::OptionalMinutes, f);
}

// The XML year has as many digits as it needs; it must still fit the 16-bit field.
bool takeXmlYear(const char*& p, int& year) {
  if (!isDigit(*p)) return false;
  int v = 0;
  for (; isDigit(*p); ++p) {
    v = v * 10 + (*p - '0');
    if (v > 32767) return false;
  }
  year = v;
  return year >= 1;
}

bool parseXmlDateTime(const char* p, ASN1TimeFields& f) {
  int year, month, day, hour, minute, second;
  if (!takeXmlYear(p, year) || !takeChar(p, '-') || !takeDigits(p, 2, month) ||
      !takeChar(p, '-') || !takeDigits(p, 2, day) || !takeChar(p, 'T') ||
      !takeDigits(p, 2, hour) || !takeChar(p, ':') || !takeDigits(p, 2, minute) ||
      !takeChar(p, ':') || !takeDigits(p, 2, second))
    return false;
  if (!isValidDate(year, month, day) || !isValidClock(hour, minute, second)) return false;
  if (!takeFraction(p, true, f.fraction)) return false;
  storeDateTime(f, year, month, day, hour, minute, second);
  return takeZone(p, ZoneForm::Colon, f);
}

using TimeParser = bool (*)(const char*, ASN1TimeFields&);

int parseTime(ASN1CTXT* pctxt, const char* text, ASN1TimeFields* pFields, TimeParser parse) {
  if (text == nullptr || pFields == nullptr) return LOG_RTERR(pctxt, ASN_E_INVPARAM);
  ASN1TimeFields fields{};
  if (!parse(text, fields)) return LOG_RTERR(pctxt, ASN_E_INVFORMAT);
  *pFields = fields;
  return 0;
}

// ---- Writing ------------------------------------------------------------------------------

// Room for the longest text: a five-digit negative XML year, a full fraction and a zone.
const size_t kMaxTimeText = 64;

// The fraction is the caller's text: it must be digits and terminated within its array.
bool isValidFraction(const char* fraction) {
  size_t i = 0;
  for (; i <= ASN_K_MAXFRACDIGITS && fraction[i] != '\0'; ++i) {
    if (!isDigit(fraction[i])) return false;
  }
  return i <= ASN_K_MAXFRACDIGITS;
}

bool isValidFields(const ASN1TimeFields& f) {
  return isValidDate(f.year, f.month, f.day) && isValidClock(f.hour, f.minute, f.second) &&
         f.diffHour >= -12 && f.diffHour <= 12 && f.diffMin >= -59 && f.diffMin <= 59;
}

size_t appendFraction(char* text, size_t len, const ASN1TimeFields& f) {
  if (f.fraction[0] == '\0') return len;
  return len + snprintf(text + len, kMaxTimeText - len, ".%s", f.fraction);
}

size_t appendZone(char* text, size_t len, const ASN1TimeFields& f, bool colon) {
  if (f.utcFlag) return len + snprintf(text + len, kMaxTimeText - len, "Z");
  if (f.diffHour == 0 && f.diffMin == 0) return len;
  const char sign = f.diffHour < 0 || f.diffMin < 0 ? '-' : '+';
  return len + snprintf(text + len, kMaxTimeText - len, colon ? "%c%02d:%02d" : "%c%02d%02d",
                        sign, abs(f.diffHour), abs(f.diffMin));
}

int deliverText(ASN1CTXT* pctxt, const char* text, size_t len, char** ppText, int bufsize) {
  if (bufsize == 0) {
    char* copy = rtUTF8Strdup(pctxt, text);
    if (copy == nullptr) return LOG_RTERR(pctxt, ASN_E_NOMEM);
    *ppText = copy;
    return 0;
  }
  if (bufsize < 0 || static_cast<size_t>(bufsize) <= len) return LOG_RTERR(pctxt, ASN_E_STROVFLW);
  if (*ppText == nullptr) return LOG_RTERR(pctxt, ASN_E_INVPARAM);
  memcpy(*ppText, text, len + 1);
  return 0;
}

size_t writeUTCTime(char* text, const ASN1TimeFields& f) {
  size_t len = snprintf(text, kMaxTimeText, "%.2d%.2d%.2d%.2d%.2d", f.year % 100, f.month,
                        f.day, f.hour, f.minute);
  // Zero seconds are left out: the shorter form is the usual UTCTime text.
  if (f.second != 0) len += snprintf(text + len, kMaxTimeText - len, "%.2d", f.second);
  return appendZone(text, len, f, false);
}

size_t writeGeneralizedTime(char* text, const ASN1TimeFields& f) {
  size_t len = snprintf(text, kMaxTimeText, "%.4d%.2d%.2d%.2d%.2d%.2d", f.year, f.month, f.day,
                        f.hour, f.minute, f.second);
  len = appendFraction(text, len, f);
  return appendZone(text, len, f, false);
}

size_t writeXmlDateTime(char* text, const ASN1TimeFields& f) {
  size_t len = snprintf(text, kMaxTimeText, "%s%04d-%02d-%02dT%02d:%02d:%02d",
                        f.year < 0 ? "-" : "", abs(f.year), f.month, f.day, f.hour, f.minute,
                        f.second);
  len = appendFraction(text, len, f);
  return appendZone(text, len, f, true);
}

using TimeWriter = size_t (*)(char*, const ASN1TimeFields&);

int makeTime(ASN1CTXT* pctxt, const ASN1TimeFields* pFields, char** ppText, int bufsize,
             bool formatOk, TimeWriter write) {
  if (!formatOk || !isValidFields(*pFields)) return LOG_RTERR(pctxt, ASN_E_INVFORMAT);
  char text[kMaxTimeText];
  const size_t len = write(text, *pFields);
  return deliverText(pctxt, text, len, ppText, bufsize);
}

bool hasNullArgument(const ASN1TimeFields* pFields, char** ppText) {
  return pFields == nullptr || ppText == nullptr;
}

}  // namespace

QN_BEGIN_C

int rtParseUTCTime(ASN1CTXT* pctxt, const char* text, ASN1TimeFields* pFields) {
  return parseTime(pctxt, text, pFields, parseUTCTime);
}

int rtParseGeneralizedTime(ASN1CTXT* pctxt, const char* text, ASN1TimeFields* pFields) {
  return parseTime(pctxt, text, pFields, parseGeneralizedTime);
}

int rtParseXmlDateTime(ASN1CTXT* pctxt, const char* text, ASN1TimeFields* pFields) {
  return parseTime(pctxt, text, pFields, parseXmlDateTime);
}

int rtMakeUTCTime(ASN1CTXT* pctxt, const ASN1TimeFields* pFields, char** ppText, int bufsize) {
  if (hasNullArgument(pFields, ppText)) return LOG_RTERR(pctxt, ASN_E_INVPARAM);
  const bool yearOk = pFields->year >= 1950 && pFields->year <= 2049;
  return makeTime(pctxt, pFields, ppText, bufsize, yearOk, writeUTCTime);
}

int rtMakeGeneralizedTime(ASN1CTXT* pctxt, const ASN1TimeFields* pFields, char** ppText,
                          int bufsize) {
  if (hasNullArgument(pFields, ppText)) return LOG_RTERR(pctxt, ASN_E_INVPARAM);
  const bool formatOk =
      pFields->year >= 0 && pFields->year <= 9999 && isValidFraction(pFields->fraction);
  return makeTime(pctxt, pFields, ppText, bufsize, formatOk, writeGeneralizedTime);
}

int rtMakeXmlDateTime(ASN1CTXT* pctxt, const ASN1TimeFields* pFields, char** ppText,
                      int bufsize) {
  if (hasNullArgument(pFields, ppText)) return LOG_RTERR(pctxt, ASN_E_INVPARAM);
  const bool formatOk = pFields->year != 0 && isValidFraction(pFields->fraction);
  return makeTime(pctxt, pFields, ppText, bufsize, formatOk, writeXmlDateTime);
}

QN_END_C
