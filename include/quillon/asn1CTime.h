/*
 * Time classes: a UTCTime or GeneralizedTime text held by the caller, and its fields kept in
 * step with it. Reading a field parses the text on first use; changing a field rewrites the
 * text. The text lives in the caller's buffer when its capacity is at least
 * ASN1CTime::kMinStrSize bytes; otherwise (a read-only string, a small buffer) the caller's
 * pointer is aimed at a buffer inside the object at the first rewrite, so the object must then
 * outlive every use of the string.
 *
 * Statuses: getters return the field, or the negative status when the text cannot be parsed;
 * other operations return 0 or a negative status. Every failure is recorded in the context's
 * error record: -31 for a text or value that is no valid time (nothing is changed then), -33 for
 * a time that does not fit a long.
 *
 * The zone. "Z" is UTC; an offset (+-hhmm) is kept as hour and minute differences with one
 * sign; without either, a GeneralizedTime is local time of this machine's zone (TZ). An
 * explicit zero offset is taken as UTC. A UTCTime always has a zone.
 *
 * The fraction of a second is kept as the integer its digits spell and written back as
 * ".<digits>": ".5" is 5 and ".125" is 125. Leading zeros are not kept (".05" reads as 5 and is
 * written back as ".5"), so sub-second values that start with a zero digit cannot be held.
 * Up to 9 digits are kept; further digits are dropped.
 */
#ifndef QUILLON_ASN1CTIME_H
#define QUILLON_ASN1CTIME_H

#include "asn1CppTypes.h"
#include "rtTime.h"

/* The common part of UTCTime and GeneralizedTime: fields, comparison and arithmetic. */
class QN_API ASN1CTime : public ASN1CType {
 public:
  /* A field not set yet (year, month, day or hour after clear()). */
  enum { kNotSet = -3 };
  /* Caller buffers smaller than this are not written to; the longest text fits in it. */
  enum { kMinStrSize = 30 };

 protected:
  ASN1SINT mYear;
  ASN1SINT mMonth;
  ASN1SINT mDay;
  ASN1SINT mHour;
  ASN1SINT mMinute;
  ASN1SINT mSecond;
  ASN1SINT mDiffHour;
  ASN1SINT mDiffMin;
  ASN1INT mSecFraction;
  ASN1BOOL mbUtcFlag;
  ASN1BOOL mbParsed;
  ASN1BOOL mbDerRules;
  char** mpTimeStr;
  ASN1INT mTimeStrSize;
  char mTimeStrBuf[kMinStrSize];

  /* buf: the caller's pointer (kept by reference, so repointing it is seen here) to a buffer of
   * bufSize bytes; useDerRules: the time is to be kept in UTC. */
  ASN1CTime(char*& buf, int bufSize, ASN1BOOL useDerRules);
  ASN1CTime(ASN1MessageBufferIF& msgBuf, char*& buf, int bufSize, ASN1BOOL useDerRules);
  ASN1CTime(ASN1Context& ctxt, char*& buf, int bufSize, ASN1BOOL useDerRules);
  /* A read-only string: the first change aims buf at the object's own buffer. */
  ASN1CTime(const char*& buf, ASN1BOOL useDerRules);
  ASN1CTime(ASN1MessageBufferIF& msgBuf, const char*& buf, ASN1BOOL useDerRules);
  ASN1CTime(ASN1Context& ctxt, const char*& buf, ASN1BOOL useDerRules);

 public:
  /* The object refers to the caller's pointer and may hold the text itself: not copyable. */
  ASN1CTime(const ASN1CTime&) = delete;
  ASN1CTime& operator=(const ASN1CTime&) = delete;
  virtual ~ASN1CTime();

  /* Fields as written in the text (not converted to UTC); kNotSet for one not set. */
  virtual int getYear();
  virtual int getMonth();
  virtual int getDay();
  virtual int getHour();
  virtual int getMinute();
  virtual int getSecond();
  /* The fraction's digits as an integer (see above); 0 when there is none. */
  virtual int getFraction();
  virtual int getDiffHour();
  virtual int getDiffMinute();
  /* The zone offset in minutes: hour difference x 60 + minute difference. */
  virtual int getDiff();
  /* 1 when the time is UTC ("Z"), 0 otherwise. */
  virtual int getUTC();
  /* Seconds since 1970-01-01T00:00:00Z (the fraction dropped); local time is converted with
   * this machine's zone. */
  virtual long getTime();

  /* With the DER flag the time stays UTC and this does nothing. Setting UTC on a time with an
   * offset converts it to UTC (the instant is kept); on a local time it declares the fields
   * UTC. Clearing it makes the fields local time. */
  virtual int setUTC(ASN1BOOL utc);
  /* Year 0 or later, with the current day valid in it (29 February needs a leap year). */
  virtual int setYear(int year);
  /* 1..12, with the current day valid in it. */
  virtual int setMonth(int month);
  /* 1..31, valid in the current month and year where they are set. */
  virtual int setDay(int day);
  virtual int setHour(int hour);     /* 0..23 */
  virtual int setMinute(int minute); /* 0..59 */
  virtual int setSecond(int second); /* 0..59 */
  /* 0..999999999, the fraction's digits (0: no fraction). */
  virtual int setFraction(int fraction);
  /* The calendar time t (seconds since 1970, UTC) as UTC fields ("Z"), or with diffTime as
   * this machine's local time with its offset (UTC when the offset is 0; -31 when the offset
   * is beyond +-12:59 or not whole minutes). The DER flag forces UTC. The fraction is cleared. */
  virtual int setTime(long t, ASN1BOOL diffTime) = 0;
  /* Zone offsets, -12..12 hours and -59..59 minutes with one sign. A zero offset makes the time
   * UTC; a non-zero one is refused under the DER flag. setDiffHour keeps the minutes, giving
   * them the hour's sign. */
  virtual int setDiffHour(int dhour);
  virtual int setDiff(int dhour, int dminutes);
  /* The offset as a total of minutes, -720..720. */
  virtual int setDiff(int inMinutes);
  /* Reads text into the fields (the held string is not changed until a field is). */
  virtual int parseString(const char* text) = 0;
  /* Every field not set, no fraction, UTC as the DER flag, and an empty string. Start here to
   * build a time field by field; the string is written once year, month, day and hour are set. */
  virtual void clear();
  /* Same instant, to the millisecond. False when either time is not valid. */
  virtual bool equals(ASN1CTime& other);
  virtual bool operator==(ASN1CTime& other);
  virtual bool operator!=(ASN1CTime& other);
  virtual bool operator>(ASN1CTime& other);
  virtual bool operator<(ASN1CTime& other);
  virtual bool operator>=(ASN1CTime& other);
  virtual bool operator<=(ASN1CTime& other);
  /* Rewrites the held string from the fields (nothing to do before they were first read). */
  virtual int compileString() = 0;

  /* The held string after compileString(); null when that fails. */
  const char* getTimeStringPtr();
  /* Its length, or the status of compileString(). */
  int getTimeStringLen();
  /* Copies the string with its NUL into buf; null when it needs size bytes or more. */
  char* getTimeString(char* buf, int size);

  /* True when day fits month in year; a day or month below 1 counts as not known yet and is
   * accepted, and so is 29 February of a year not known yet (negative). */
  static bool checkDate(int day, int month, int year);

  /* The instant in UTC as a day number, 1 January of year 0 being day 1, and the
   * milliseconds within that day. Negative statuses as the getters (-31 for a time not
   * complete). */
  long getDaysNum();
  long getMillisNum();

  /* Moves the time by whole days or milliseconds, keeping its zone; -31 when the result leaves
   * the years of the type or has a fraction it cannot hold (a UTCTime none; a
   * GeneralizedTime not one with a leading zero, so milliseconds 1..99 are refused).
   * Millisecond arithmetic drops digits of the fraction below a millisecond. */
  int addDays(int days);
  int addMilliseconds(int msec);

 protected:
  using TimeParser = int (*)(ASN1CTXT*, const char*, ASN1TimeFields*);
  using TimeMaker = int (*)(ASN1CTXT*, const ASN1TimeFields*, char**, int);

  /* Parses the held string unless the fields are already current. */
  int ensureParsed();
  /* Reads text with parse into the fields; an explicit zero offset becomes UTC. */
  int parseWith(TimeParser parse, const char* text);
  /* Writes the fields with make into the held string; an incomplete time empties it. */
  int writeString(TimeMaker make);
  /* The shared body of setTime. */
  int setCalendarTime(long t, ASN1BOOL diffTime);
  /* Re-expresses a UTC time in this machine's zone with an explicit offset (stays UTC where
   * the offset is 0). */
  int convertToLocalZone();

 private:
  /* Applies a new set of fields and rewrites the string; all or nothing. */
  int commitFields(const ASN1TimeFields& fields);
  void toFields(ASN1TimeFields& fields) const;
  void fromFields(const ASN1TimeFields& fields);
  /* Sets one field of the record to value after the text was read, keeping the date valid;
   * all or nothing. */
  int setField(ASN1SINT ASN1TimeFields::*field, int value);
  /* Year, month, day and hour are set. */
  bool isComplete() const;
  /* The instant in milliseconds since 1970-01-01T00:00:00Z. */
  int instant(long long& epochMillis);
  void initFields(char** ppTimeStr, int bufSize, ASN1BOOL useDerRules);
  void resetFields();
  int readField(const ASN1SINT& field);
  int setZone(int dhour, int dminutes);
  int convertToUTC();
  int compareTo(ASN1CTime& other, int& order);
  char* writableString();
};

/* UTCTime: YYMMDDhhmm[ss] with "Z" or +-hhmm; years 1950..2049; no fraction. */
class QN_API ASN1CUTCTime : public ASN1CTime {
 public:
  ASN1CUTCTime(char*& buf, int bufSize, ASN1BOOL useDerRules = 0);
  ASN1CUTCTime(ASN1MessageBufferIF& msgBuf, char*& buf, int bufSize, ASN1BOOL useDerRules = 0);
  ASN1CUTCTime(ASN1Context& ctxt, char*& buf, int bufSize, ASN1BOOL useDerRules = 0);
  ASN1CUTCTime(const char*& buf, ASN1BOOL useDerRules = 0);
  ASN1CUTCTime(ASN1MessageBufferIF& msgBuf, const char*& buf, ASN1BOOL useDerRules = 0);
  ASN1CUTCTime(ASN1Context& ctxt, const char*& buf, ASN1BOOL useDerRules = 0);
  virtual ~ASN1CUTCTime();

  /* Always 0 (or the parse status). */
  virtual int getFraction();
  /* A UTCTime cannot be without a zone: clearing UTC expresses the time in this machine's
   * zone with its offset (it stays UTC where that offset is 0). */
  virtual int setUTC(ASN1BOOL utc);
  /* 1950..2049. */
  virtual int setYear(int year);
  /* Only 0 is accepted. */
  virtual int setFraction(int fraction);
  virtual int setTime(long t, ASN1BOOL diffTime);
  virtual int parseString(const char* text);
  /* As the base, but the time starts as UTC. */
  virtual void clear();
  virtual int compileString();
};

/* GeneralizedTime: YYYYMMDDhhmmss[.f] with "Z", +-hhmm or nothing (local time) when written;
 * read as rtParseGeneralizedTime reads it. Years 0..9999. */
class QN_API ASN1CGeneralizedTime : public ASN1CTime {
 public:
  ASN1CGeneralizedTime(char*& buf, int bufSize, ASN1BOOL useDerRules = 0);
  ASN1CGeneralizedTime(ASN1MessageBufferIF& msgBuf, char*& buf, int bufSize,
                       ASN1BOOL useDerRules = 0);
  ASN1CGeneralizedTime(ASN1Context& ctxt, char*& buf, int bufSize, ASN1BOOL useDerRules = 0);
  ASN1CGeneralizedTime(const char*& buf, ASN1BOOL useDerRules = 0);
  ASN1CGeneralizedTime(ASN1MessageBufferIF& msgBuf, const char*& buf, ASN1BOOL useDerRules = 0);
  ASN1CGeneralizedTime(ASN1Context& ctxt, const char*& buf, ASN1BOOL useDerRules = 0);
  virtual ~ASN1CGeneralizedTime();

  virtual int setTime(long t, ASN1BOOL diffTime);
  virtual int parseString(const char* text);
  virtual int compileString();

  /* The year's hundreds (20 for 2024); kNotSet when the year is not set. */
  int getCentury();
  /* 0..99: replaces the year's hundreds, keeping its last two digits. */
  int setCentury(int century);
};

#endif
