// The time classes' common part: fields kept in step with the caller's time string, zones,
// comparison and calendar arithmetic.

#include <quillon/asn1CTime.h>

#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <time.h>

#include "rtErrLog.h"

static_assert(sizeof(time_t) == sizeof(long), "setTime and getTime take time_t values as long");

namespace {

const long long kSecondsPerDay = 86400;
const long long kMillisPerDay = kSecondsPerDay * 1000;
// Day numbers count from 1 January of year 0 as day 1, so that every instant a time class can
// hold (year 0 at +12:00 included) has a day number of 0 or more and no status is mistaken for
// one.
const long long kDayNumberOf1970 = 719529;
// The fraction is held in a 32-bit integer and written into kMinStrSize bytes.
const int kMaxFractionDigits = 9;
const int kMaxFraction = 999999999;
const int kMaxOffsetSeconds = (12 * 60 + 59) * 60;

long long floorDiv(long long a, long long b) { return a / b - (a % b < 0 ? 1 : 0); }
long long floorMod(long long a, long long b) { return a - floorDiv(a, b) * b; }

bool isLeapYear(int year) { return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0); }

// Days of the month in a year; with a negative (unknown) year February may have 29.
int daysInMonth(int month, int year) {
  static const int kDays[12] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  if (month == 2 && (year < 0 || isLeapYear(year))) return 29;
  return kDays[month - 1];
}

// Days since 1970-01-01 in the proleptic Gregorian calendar. Years are counted from March, so
// that the leap day ends the year and a day of the year needs no leap test; 400-year eras
// repeat exactly.
long long daysFromCivil(int year, int month, int day) {
  const long long y = year - (month <= 2 ? 1 : 0);
  const long long era = floorDiv(y, 400);
  const long long yearOfEra = y - era * 400;
  const long long monthFromMarch = (month + 9) % 12;
  const long long dayOfYear = (153 * monthFromMarch + 2) / 5 + day - 1;
  const long long dayOfEra = yearOfEra * 365 + yearOfEra / 4 - yearOfEra / 100 + dayOfYear;
  return era * 146097 + dayOfEra - 719468;
}

struct CivilDate {
  long long year;
  int month;
  int day;
};

CivilDate civilFromDays(long long days) {
  const long long shifted = days + 719468;
  const long long era = floorDiv(shifted, 146097);
  const long long dayOfEra = shifted - era * 146097;
  const long long yearOfEra =
      (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / 146096) / 365;
  const long long dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
  const int monthFromMarch = static_cast<int>((5 * dayOfYear + 2) / 153);
  const int day = static_cast<int>(dayOfYear - (153 * monthFromMarch + 2) / 5 + 1);
  const int month = monthFromMarch < 10 ? monthFromMarch + 3 : monthFromMarch - 9;
  return {yearOfEra + era * 400 + (month <= 2 ? 1 : 0), month, day};
}

// The fields' date and clock read as if they were UTC, in seconds since 1970.
long long civilSeconds(int year, int month, int day, int hour, int minute, int second) {
  return daysFromCivil(year, month, day) * kSecondsPerDay + hour * 3600LL + minute * 60LL + second;
}

long long civilSeconds(const ASN1TimeFields& f) {
  return civilSeconds(f.year, f.month, f.day, f.hour, f.minute, f.second);
}

long long civilSeconds(const struct tm& tm) {
  return civilSeconds(tm.tm_year + 1900, tm.tm_mon + 1, tm.tm_mday, tm.tm_hour, tm.tm_min,
                      tm.tm_sec);
}

// Moves the date and clock of f by seconds; false when the year leaves 0..9999, the years
// every time class can write (and the 16-bit field can hold).
bool shiftClock(ASN1TimeFields& f, long long seconds) {
  const long long total = civilSeconds(f) + seconds;
  const CivilDate date = civilFromDays(floorDiv(total, kSecondsPerDay));
  if (date.year < 0 || date.year > 9999) return false;
  const long long secondOfDay = floorMod(total, kSecondsPerDay);
  f.year = static_cast<ASN1SINT>(date.year);
  f.month = static_cast<ASN1SINT>(date.month);
  f.day = static_cast<ASN1SINT>(date.day);
  f.hour = static_cast<ASN1SINT>(secondOfDay / 3600);
  f.minute = static_cast<ASN1SINT>(secondOfDay / 60 % 60);
  f.second = static_cast<ASN1SINT>(secondOfDay % 60);
  return true;
}

// Offset of this machine's zone from UTC in seconds, at a calendar time.
long long localOffsetAtInstant(time_t t) {
  struct tm local;
  if (localtime_r(&t, &local) == nullptr) return 0;
  return civilSeconds(local) - t;
}

long long localOffsetAtSeconds(long long epochSeconds) {
  const time_t t = static_cast<time_t>(epochSeconds);
  // Beyond time_t (years after 2038 where it has 32 bits) today's offset stands in.
  if (static_cast<long long>(t) != epochSeconds) return localOffsetAtInstant(time(nullptr));
  return localOffsetAtInstant(t);
}

// Offset of this machine's zone at a local date and time; mktime settles daylight saving.
long long localOffsetAtLocalTime(const ASN1TimeFields& f) {
  struct tm local = {};
  local.tm_year = f.year - 1900;
  local.tm_mon = f.month - 1;
  local.tm_mday = f.day;
  local.tm_hour = f.hour;
  local.tm_min = f.minute;
  local.tm_sec = f.second;
  local.tm_isdst = -1;
  const time_t t = mktime(&local);
  if (t == static_cast<time_t>(-1)) return localOffsetAtInstant(time(nullptr));
  return civilSeconds(f) - t;
}

// An offset as the fields' zone: UTC for 0, else hour and minute differences of one sign.
// False when the fields cannot hold it.
bool setZoneOfOffset(ASN1TimeFields& f, long long offsetSeconds) {
  if (offsetSeconds % 60 != 0 || llabs(offsetSeconds) > kMaxOffsetSeconds) return false;
  f.utcFlag = offsetSeconds == 0;
  f.diffHour = static_cast<ASN1SINT>(offsetSeconds / 3600);
  f.diffMin = static_cast<ASN1SINT>(offsetSeconds / 60 % 60);
  return true;
}

// The zone's offset in seconds; a time without a zone is local time of this machine.
long long zoneOffsetSeconds(const ASN1TimeFields& f) {
  if (f.utcFlag) return 0;
  if (f.diffHour != 0 || f.diffMin != 0) return (f.diffHour * 60LL + f.diffMin) * 60;
  return localOffsetAtLocalTime(f);
}

void setFractionDigits(ASN1TimeFields& f, int fraction) {
  f.fraction[0] = '\0';
  if (fraction > 0) snprintf(f.fraction, sizeof f.fraction, "%d", fraction);
}

int fractionOfDigits(const char* digits) {
  int value = 0;
  for (int i = 0; i < kMaxFractionDigits && digits[i] != '\0'; ++i) {
    value = value * 10 + (digits[i] - '0');
  }
  return value;
}

int decimalDigits(int value) {
  int n = 1;
  for (; value >= 10; value /= 10) ++n;
  return n;
}

// The fraction's digits follow the decimal mark: 5 is half a second, 125 is 125 ms.
int millisOfFraction(int fraction) {
  if (fraction == 0) return 0;
  int n = decimalDigits(fraction);
  for (; n < 3; ++n) fraction *= 10;
  for (; n > 3; --n) fraction /= 10;
  return fraction;
}

// Milliseconds 100..999 as fraction digits, trailing zeros dropped; 1..99 would need a leading
// zero, which the fraction cannot keep.
bool fractionOfMillis(int millis, int& fraction) {
  if (millis != 0 && millis < 100) return false;
  while (millis != 0 && millis % 10 == 0) millis /= 10;
  fraction = millis;
  return true;
}

long long millisOfDay(const ASN1TimeFields& f, int fraction) {
  return (f.hour * 3600LL + f.minute * 60LL + f.second) * 1000 + millisOfFraction(fraction);
}

// Whether a text's zone was written as a signed offset (dates and clocks hold no signs).
bool hasSignedOffset(const char* text) { return strpbrk(text, "+-") != nullptr; }

bool isOppositeSign(int a, int b) { return (a < 0 && b > 0) || (a > 0 && b < 0); }

}  // namespace

// ---- Construction -------------------------------------------------------------------------

ASN1CTime::ASN1CTime(char*& buf, int bufSize, ASN1BOOL useDerRules) : ASN1CType() {
  initFields(&buf, bufSize, useDerRules);
}

ASN1CTime::ASN1CTime(ASN1MessageBufferIF& msgBuf, char*& buf, int bufSize, ASN1BOOL useDerRules)
    : ASN1CType(msgBuf) {
  initFields(&buf, bufSize, useDerRules);
}

ASN1CTime::ASN1CTime(ASN1Context& ctxt, char*& buf, int bufSize, ASN1BOOL useDerRules)
    : ASN1CType(ctxt) {
  initFields(&buf, bufSize, useDerRules);
}

// A capacity of 0 keeps the caller's read-only text from ever being written to.
ASN1CTime::ASN1CTime(const char*& buf, ASN1BOOL useDerRules) : ASN1CType() {
  initFields(const_cast<char**>(&buf), 0, useDerRules);
}

ASN1CTime::ASN1CTime(ASN1MessageBufferIF& msgBuf, const char*& buf, ASN1BOOL useDerRules)
    : ASN1CType(msgBuf) {
  initFields(const_cast<char**>(&buf), 0, useDerRules);
}

ASN1CTime::ASN1CTime(ASN1Context& ctxt, const char*& buf, ASN1BOOL useDerRules) : ASN1CType(ctxt) {
  initFields(const_cast<char**>(&buf), 0, useDerRules);
}

ASN1CTime::~ASN1CTime() {}

void ASN1CTime::initFields(char** ppTimeStr, int bufSize, ASN1BOOL useDerRules) {
  mbDerRules = useDerRules ? 1 : 0;
  mpTimeStr = ppTimeStr;
  mTimeStrSize = bufSize;
  mTimeStrBuf[0] = '\0';
  resetFields();
  mbParsed = 0;
}

void ASN1CTime::resetFields() {
  mYear = mMonth = mDay = mHour = kNotSet;
  mMinute = mSecond = mDiffHour = mDiffMin = 0;
  mSecFraction = 0;
  mbUtcFlag = mbDerRules;
}

// ---- Fields and the string ----------------------------------------------------------------

void ASN1CTime::toFields(ASN1TimeFields& f) const {
  f.year = mYear;
  f.month = mMonth;
  f.day = mDay;
  f.hour = mHour;
  f.minute = mMinute;
  f.second = mSecond;
  f.diffHour = mDiffHour;
  f.diffMin = mDiffMin;
  setFractionDigits(f, mSecFraction);
  f.utcFlag = mbUtcFlag;
}

void ASN1CTime::fromFields(const ASN1TimeFields& f) {
  mYear = f.year;
  mMonth = f.month;
  mDay = f.day;
  mHour = f.hour;
  mMinute = f.minute;
  mSecond = f.second;
  mDiffHour = f.diffHour;
  mDiffMin = f.diffMin;
  mSecFraction = fractionOfDigits(f.fraction);
  mbUtcFlag = f.utcFlag ? 1 : 0;
}

// "+0000" and "Z" are one zone; keeping the former as an offset of 0 would make the time local
// on the next rewrite.
int ASN1CTime::parseWith(TimeParser parse, const char* text) {
  ASN1TimeFields fields;
  const int stat = parse(getCtxtPtr(), text, &fields);
  if (stat < 0) return stat;
  fromFields(fields);
  if (!mbUtcFlag && mDiffHour == 0 && mDiffMin == 0 && hasSignedOffset(text)) mbUtcFlag = 1;
  mbParsed = 1;
  return 0;
}

bool ASN1CTime::isComplete() const { return mYear >= 0 && mMonth >= 1 && mDay >= 1 && mHour >= 0; }

int ASN1CTime::ensureParsed() {
  if (mbParsed) return 0;
  const int stat = parseString(*mpTimeStr);
  if (stat < 0) return LOG_RTERR(getCtxtPtr(), stat);
  return 0;
}

// The caller's buffer when it can take any text; otherwise the object's own, with the
// caller's pointer aimed at it.
char* ASN1CTime::writableString() {
  if (mTimeStrSize < kMinStrSize || *mpTimeStr == nullptr) *mpTimeStr = mTimeStrBuf;
  return *mpTimeStr;
}

int ASN1CTime::writeString(TimeMaker make) {
  if (!mbParsed) return 0;
  if (!isComplete()) {
    writableString()[0] = '\0';
    return 0;
  }
  ASN1TimeFields f;
  toFields(f);
  // Made aside first, so that a refused time leaves the caller's string and pointer alone.
  char text[kMinStrSize];
  char* pText = text;
  const int stat = make(getCtxtPtr(), &f, &pText, static_cast<int>(sizeof text));
  if (stat < 0) return LOG_RTERR(getCtxtPtr(), stat);
  strcpy(writableString(), text);
  return 0;
}

int ASN1CTime::commitFields(const ASN1TimeFields& fields) {
  ASN1TimeFields saved;
  toFields(saved);
  fromFields(fields);
  const int stat = compileString();
  if (stat < 0) fromFields(saved);
  return stat;
}

// Year, month and day are checked together, as whichever of them is set last may not fit.
int ASN1CTime::setField(ASN1SINT ASN1TimeFields::*field, int value) {
  const int stat = ensureParsed();
  if (stat < 0) return stat;
  ASN1TimeFields f;
  toFields(f);
  f.*field = static_cast<ASN1SINT>(value);
  if (!checkDate(f.day, f.month, f.year)) return LOG_RTERR(getCtxtPtr(), ASN_E_INVFORMAT);
  return commitFields(f);
}

const char* ASN1CTime::getTimeStringPtr() {
  if (compileString() < 0) return nullptr;
  return *mpTimeStr;
}

int ASN1CTime::getTimeStringLen() {
  const int stat = compileString();
  if (stat < 0) return stat;
  return *mpTimeStr == nullptr ? 0 : static_cast<int>(strlen(*mpTimeStr));
}

char* ASN1CTime::getTimeString(char* buf, int size) {
  const int len = getTimeStringLen();
  if (len < 0 || len >= size) return nullptr;
  memcpy(buf, *mpTimeStr == nullptr ? "" : *mpTimeStr, len + 1);
  return buf;
}

// ---- Getters ------------------------------------------------------------------------------

// The field is bound before the text is read, and read after.
int ASN1CTime::readField(const ASN1SINT& field) {
  const int stat = ensureParsed();
  return stat < 0 ? stat : field;
}

int ASN1CTime::getYear() { return readField(mYear); }

int ASN1CTime::getMonth() { return readField(mMonth); }

int ASN1CTime::getDay() { return readField(mDay); }

int ASN1CTime::getHour() { return readField(mHour); }

int ASN1CTime::getMinute() { return readField(mMinute); }

int ASN1CTime::getSecond() { return readField(mSecond); }

int ASN1CTime::getFraction() {
  const int stat = ensureParsed();
  return stat < 0 ? stat : mSecFraction;
}

int ASN1CTime::getDiffHour() { return readField(mDiffHour); }

int ASN1CTime::getDiffMinute() { return readField(mDiffMin); }

int ASN1CTime::getDiff() {
  const int stat = ensureParsed();
  return stat < 0 ? stat : mDiffHour * 60 + mDiffMin;
}

int ASN1CTime::getUTC() {
  const int stat = ensureParsed();
  return stat < 0 ? stat : mbUtcFlag;
}

long ASN1CTime::getTime() {
  long long epochMillis;
  const int stat = instant(epochMillis);
  if (stat < 0) return stat;
  const long long seconds = floorDiv(epochMillis, 1000);
  const long t = static_cast<long>(seconds);
  if (t != seconds) return LOG_RTERR(getCtxtPtr(), ASN_E_TOOBIG);
  return t;
}

// ---- Setters ------------------------------------------------------------------------------

int ASN1CTime::setYear(int year) {
  if (year < 0 || year > 9999) return LOG_RTERR(getCtxtPtr(), ASN_E_INVFORMAT);
  return setField(&ASN1TimeFields::year, year);
}

int ASN1CTime::setMonth(int month) {
  if (month < 1 || month > 12) return LOG_RTERR(getCtxtPtr(), ASN_E_INVFORMAT);
  return setField(&ASN1TimeFields::month, month);
}

int ASN1CTime::setDay(int day) {
  if (day < 1 || day > 31) return LOG_RTERR(getCtxtPtr(), ASN_E_INVFORMAT);
  return setField(&ASN1TimeFields::day, day);
}

int ASN1CTime::setHour(int hour) {
  if (hour < 0 || hour > 23) return LOG_RTERR(getCtxtPtr(), ASN_E_INVFORMAT);
  return setField(&ASN1TimeFields::hour, hour);
}

int ASN1CTime::setMinute(int minute) {
  if (minute < 0 || minute > 59) return LOG_RTERR(getCtxtPtr(), ASN_E_INVFORMAT);
  return setField(&ASN1TimeFields::minute, minute);
}

int ASN1CTime::setSecond(int second) {
  if (second < 0 || second > 59) return LOG_RTERR(getCtxtPtr(), ASN_E_INVFORMAT);
  return setField(&ASN1TimeFields::second, second);
}

int ASN1CTime::setFraction(int fraction) {
  if (fraction < 0 || fraction > kMaxFraction) return LOG_RTERR(getCtxtPtr(), ASN_E_INVFORMAT);
  const int stat = ensureParsed();
  if (stat < 0) return stat;
  ASN1TimeFields f;
  toFields(f);
  setFractionDigits(f, fraction);
  return commitFields(f);
}

int ASN1CTime::setUTC(ASN1BOOL utc) {
  if (mbDerRules) return 0;
  const int stat = ensureParsed();
  if (stat < 0) return stat;
  if (utc) return convertToUTC();
  if (!mbUtcFlag) return 0;
  ASN1TimeFields f;
  toFields(f);
  f.utcFlag = 0;
  return commitFields(f);
}

// An offset time is moved to UTC; a local one has no known offset and is declared UTC as it
// stands.
int ASN1CTime::convertToUTC() {
  if (mbUtcFlag) return 0;
  ASN1TimeFields f;
  toFields(f);
  const long long offset = (f.diffHour * 60LL + f.diffMin) * 60;
  if (offset != 0 && isComplete() && !shiftClock(f, -offset)) {
    return LOG_RTERR(getCtxtPtr(), ASN_E_INVFORMAT);
  }
  f.utcFlag = 1;
  f.diffHour = 0;
  f.diffMin = 0;
  return commitFields(f);
}

int ASN1CTime::convertToLocalZone() {
  const int stat = ensureParsed();
  if (stat < 0 || !mbUtcFlag) return stat;
  long long epochMillis;
  const int istat = instant(epochMillis);
  if (istat < 0) return istat;
  ASN1TimeFields f;
  toFields(f);
  const long long offset = localOffsetAtSeconds(floorDiv(epochMillis, 1000));
  if (!setZoneOfOffset(f, offset) || !shiftClock(f, offset)) {
    return LOG_RTERR(getCtxtPtr(), ASN_E_INVFORMAT);
  }
  return commitFields(f);
}

int ASN1CTime::setZone(int dhour, int dminutes) {
  if (mbDerRules && (dhour != 0 || dminutes != 0)) {
    return LOG_RTERR(getCtxtPtr(), ASN_E_INVFORMAT);
  }
  const int stat = ensureParsed();
  if (stat < 0) return stat;
  ASN1TimeFields f;
  toFields(f);
  f.diffHour = static_cast<ASN1SINT>(dhour);
  f.diffMin = static_cast<ASN1SINT>(dminutes);
  f.utcFlag = dhour == 0 && dminutes == 0;
  return commitFields(f);
}

int ASN1CTime::setDiffHour(int dhour) {
  if (dhour < -12 || dhour > 12) return LOG_RTERR(getCtxtPtr(), ASN_E_INVFORMAT);
  const int stat = ensureParsed();
  if (stat < 0) return stat;
  const int minutes = dhour < 0 ? -abs(mDiffMin) : dhour > 0 ? abs(mDiffMin) : mDiffMin;
  return setZone(dhour, minutes);
}

// Both parts carry the offset's sign, as in the text ("-0530" is -5 h and -30 min); -5 h with
// +30 min would be written as -0530 and read back differently, so it is refused.
int ASN1CTime::setDiff(int dhour, int dminutes) {
  if (dhour < -12 || dhour > 12 || dminutes < -59 || dminutes > 59 ||
      isOppositeSign(dhour, dminutes)) {
    return LOG_RTERR(getCtxtPtr(), ASN_E_INVFORMAT);
  }
  return setZone(dhour, dminutes);
}

int ASN1CTime::setDiff(int inMinutes) {
  if (inMinutes < -720 || inMinutes > 720) return LOG_RTERR(getCtxtPtr(), ASN_E_INVFORMAT);
  return setZone(inMinutes / 60, inMinutes % 60);
}

int ASN1CTime::setCalendarTime(long t, ASN1BOOL diffTime) {
  const time_t calendarTime = static_cast<time_t>(t);
  const bool local = diffTime && !mbDerRules;
  struct tm tm;
  const struct tm* broken = local ? localtime_r(&calendarTime, &tm) : gmtime_r(&calendarTime, &tm);
  if (broken == nullptr || tm.tm_year < -1900 || tm.tm_year > 9999 - 1900) {
    return LOG_RTERR(getCtxtPtr(), ASN_E_INVFORMAT);
  }
  ASN1TimeFields f = {};
  f.year = static_cast<ASN1SINT>(tm.tm_year + 1900);
  f.month = static_cast<ASN1SINT>(tm.tm_mon + 1);
  f.day = static_cast<ASN1SINT>(tm.tm_mday);
  f.hour = static_cast<ASN1SINT>(tm.tm_hour);
  f.minute = static_cast<ASN1SINT>(tm.tm_min);
  f.second = static_cast<ASN1SINT>(tm.tm_sec);
  if (!setZoneOfOffset(f, local ? civilSeconds(tm) - t : 0)) {
    return LOG_RTERR(getCtxtPtr(), ASN_E_INVFORMAT);
  }
  // The whole time is replaced, so the string need not be readable; a refusal brings its
  // unread state back.
  const ASN1BOOL wasParsed = mbParsed;
  mbParsed = 1;
  const int stat = commitFields(f);
  if (stat < 0) mbParsed = wasParsed;
  return stat;
}

void ASN1CTime::clear() {
  resetFields();
  writableString()[0] = '\0';
  mbParsed = 1;
}

bool ASN1CTime::checkDate(int day, int month, int year) {
  if (day < 1 || month < 1) return true;
  if (month > 12) return false;
  return day <= daysInMonth(month, year);
}

// ---- Instants, comparison, arithmetic -----------------------------------------------------

int ASN1CTime::instant(long long& epochMillis) {
  const int stat = ensureParsed();
  if (stat < 0) return stat;
  if (!isComplete()) return LOG_RTERR(getCtxtPtr(), ASN_E_INVFORMAT);
  ASN1TimeFields f;
  toFields(f);
  const long long localMillis =
      daysFromCivil(f.year, f.month, f.day) * kMillisPerDay + millisOfDay(f, mSecFraction);
  epochMillis = localMillis - zoneOffsetSeconds(f) * 1000;
  return 0;
}

long ASN1CTime::getDaysNum() {
  long long epochMillis;
  const int stat = instant(epochMillis);
  if (stat < 0) return stat;
  return static_cast<long>(floorDiv(epochMillis, kMillisPerDay) + kDayNumberOf1970);
}

long ASN1CTime::getMillisNum() {
  long long epochMillis;
  const int stat = instant(epochMillis);
  if (stat < 0) return stat;
  return static_cast<long>(floorMod(epochMillis, kMillisPerDay));
}

int ASN1CTime::compareTo(ASN1CTime& other, int& order) {
  long long mine, theirs;
  int stat = instant(mine);
  if (stat == 0) stat = other.instant(theirs);
  if (stat < 0) return stat;
  order = mine < theirs ? -1 : mine > theirs ? 1 : 0;
  return 0;
}

bool ASN1CTime::equals(ASN1CTime& other) {
  int order;
  return compareTo(other, order) == 0 && order == 0;
}

bool ASN1CTime::operator==(ASN1CTime& other) { return equals(other); }

bool ASN1CTime::operator!=(ASN1CTime& other) {
  int order;
  return compareTo(other, order) == 0 && order != 0;
}

bool ASN1CTime::operator>(ASN1CTime& other) {
  int order;
  return compareTo(other, order) == 0 && order > 0;
}

bool ASN1CTime::operator<(ASN1CTime& other) {
  int order;
  return compareTo(other, order) == 0 && order < 0;
}

bool ASN1CTime::operator>=(ASN1CTime& other) {
  int order;
  return compareTo(other, order) == 0 && order >= 0;
}

bool ASN1CTime::operator<=(ASN1CTime& other) {
  int order;
  return compareTo(other, order) == 0 && order <= 0;
}

int ASN1CTime::addDays(int days) {
  const int stat = ensureParsed();
  if (stat < 0) return stat;
  ASN1TimeFields f;
  toFields(f);
  if (!isComplete() || !shiftClock(f, days * kSecondsPerDay)) {
    return LOG_RTERR(getCtxtPtr(), ASN_E_INVFORMAT);
  }
  return commitFields(f);
}

int ASN1CTime::addMilliseconds(int msec) {
  const int stat = ensureParsed();
  if (stat < 0) return stat;
  if (!isComplete()) return LOG_RTERR(getCtxtPtr(), ASN_E_INVFORMAT);
  ASN1TimeFields f;
  toFields(f);
  const long long millis = millisOfDay(f, mSecFraction) + msec;
  const long long seconds = floorDiv(millis, 1000) - millisOfDay(f, 0) / 1000;
  int fraction;
  if (!fractionOfMillis(static_cast<int>(floorMod(millis, 1000)), fraction) ||
      !shiftClock(f, seconds)) {
    return LOG_RTERR(getCtxtPtr(), ASN_E_INVFORMAT);
  }
  setFractionDigits(f, fraction);
  return commitFields(f);
}
