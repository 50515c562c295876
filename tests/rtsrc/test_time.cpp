// Time texts: parsing the three formats into fields, writing them back, and the checks between.

#include <quillon/rtTime.h>

#include <gtest/gtest.h>

#include <string.h>

#include <string>

#include "test_context.h"

namespace {

using Parser = int (*)(ASN1CTXT*, const char*, ASN1TimeFields*);
using Maker = int (*)(ASN1CTXT*, const ASN1TimeFields*, char**, int);

ASN1TimeFields fieldsOf(int year, int month, int day, int hour, int minute, int second,
                        bool utc = true) {
  ASN1TimeFields f{};
  f.year = static_cast<ASN1SINT>(year);
  f.month = static_cast<ASN1SINT>(month);
  f.day = static_cast<ASN1SINT>(day);
  f.hour = static_cast<ASN1SINT>(hour);
  f.minute = static_cast<ASN1SINT>(minute);
  f.second = static_cast<ASN1SINT>(second);
  f.utcFlag = utc;
  return f;
}

void expectFields(const ASN1TimeFields& f, int year, int month, int day, int hour, int minute,
                  int second) {
  EXPECT_EQ(f.year, year);
  EXPECT_EQ(f.month, month);
  EXPECT_EQ(f.day, day);
  EXPECT_EQ(f.hour, hour);
  EXPECT_EQ(f.minute, minute);
  EXPECT_EQ(f.second, second);
}

class TimeTest : public ::testing::Test {
 protected:
  ASN1TimeFields parseOk(Parser parse, const char* text) {
    ASN1TimeFields f{};
    EXPECT_EQ(parse(ctxt.get(), text, &f), 0) << text;
    return f;
  }

  // A refused text gives -31, recorded here, and leaves the caller's record as it was.
  void expectRefused(Parser parse, const char* text) {
    ASN1TimeFields f{};
    f.year = 1234;
    ctxt.resetError();
    EXPECT_EQ(parse(ctxt.get(), text, &f), ASN_E_INVFORMAT) << text;
    EXPECT_EQ(ctxt.errorStatus(), ASN_E_INVFORMAT) << text;
    EXPECT_EQ(ctxt.errorModule(), "rtsrc/rtTime") << text;
    EXPECT_EQ(f.year, 1234) << text;
  }

  std::string make(Maker makeText, const ASN1TimeFields& f) {
    char* text = nullptr;
    const int stat = makeText(ctxt.get(), &f, &text, 0);
    EXPECT_EQ(stat, 0);
    return stat == 0 ? std::string(text) : std::string("<status ") + std::to_string(stat) + ">";
  }

  int makeStatus(Maker makeText, const ASN1TimeFields& f) {
    char* text = nullptr;
    ctxt.resetError();
    return makeText(ctxt.get(), &f, &text, 0);
  }

  TestContext ctxt;
};

TEST_F(TimeTest, UTCTimeTwoDigitYearPivotsAtFifty) {
  expectFields(parseOk(rtParseUTCTime, "491231235959Z"), 2049, 12, 31, 23, 59, 59);
  expectFields(parseOk(rtParseUTCTime, "500101000000Z"), 1950, 1, 1, 0, 0, 0);
  expectFields(parseOk(rtParseUTCTime, "991231235959Z"), 1999, 12, 31, 23, 59, 59);
  expectFields(parseOk(rtParseUTCTime, "000101000000Z"), 2000, 1, 1, 0, 0, 0);
}

TEST_F(TimeTest, UTCTimeSecondsAreOptionalAndZoneIsRequired) {
  const ASN1TimeFields noSeconds = parseOk(rtParseUTCTime, "1105031200Z");
  expectFields(noSeconds, 2011, 5, 3, 12, 0, 0);
  EXPECT_TRUE(noSeconds.utcFlag);
  EXPECT_STREQ(noSeconds.fraction, "");

  const ASN1TimeFields east = parseOk(rtParseUTCTime, "110503120000+0530");
  EXPECT_FALSE(east.utcFlag);
  EXPECT_EQ(east.diffHour, 5);
  EXPECT_EQ(east.diffMin, 30);

  // Both differences take the sign, so a half-hour zone west of UTC stays west.
  const ASN1TimeFields west = parseOk(rtParseUTCTime, "1105031200-0030");
  EXPECT_EQ(west.diffHour, 0);
  EXPECT_EQ(west.diffMin, -30);

  // No zone, text after it, zone hour or minute out of range or cut short, one-digit seconds,
  // no minutes.
  for (const char* text : {"1105031200", "110503120000Zx", "110503120000+1300", "110503120000+0560",
                           "110503120000+05", "110503120000+0500x", "1105031200005Z", "11050312Z"})
    expectRefused(rtParseUTCTime, text);
}

TEST_F(TimeTest, DatesFollowTheMonthLengthsAndLeapYears) {
  expectFields(parseOk(rtParseUTCTime, "0402290000Z"), 2004, 2, 29, 0, 0, 0);
  expectFields(parseOk(rtParseUTCTime, "0002290000Z"), 2000, 2, 29, 0, 0, 0);
  // 30 April is the last; months and days count from 1.
  for (const char* text :
       {"0102290000Z", "0104310000Z", "0113010000Z", "0100010000Z", "0101000000Z"})
    expectRefused(rtParseUTCTime, text);

  // Centuries are leap years only when divisible by 400.
  for (const char* date : {"20000229", "24000229", "19960229", "20231231"})
    parseOk(rtParseGeneralizedTime, (date + std::string("000000Z")).c_str());
  for (const char* date : {"19000229", "21000229", "20230229", "20231232"})
    expectRefused(rtParseGeneralizedTime, (date + std::string("000000Z")).c_str());

  expectRefused(rtParseXmlDateTime, "1900-02-29T00:00:00Z");
  parseOk(rtParseXmlDateTime, "2000-02-29T00:00:00Z");
}

TEST_F(TimeTest, ClockFieldsAreRangeChecked) {
  parseOk(rtParseUTCTime, "110503235959Z");
  for (const char* text : {"110503240000Z", "110503126000Z", "110503120060Z"})
    expectRefused(rtParseUTCTime, text);
  for (const char* text : {"2011050324Z", "201105031260Z", "20110503120060Z"})
    expectRefused(rtParseGeneralizedTime, text);
  expectRefused(rtParseXmlDateTime, "2011-05-03T24:00:00Z");
  expectRefused(rtParseXmlDateTime, "2011-05-03T12:00:60Z");
}

TEST_F(TimeTest, MalformedTextsAreRefusedWithoutReadingPastTheEnd) {
  for (const char* text : {"", "1", "11050", "1105031", "11O5031200Z", " 105031200Z",
                           "+105031200Z", "-105031200Z"}) {
    expectRefused(rtParseUTCTime, text);
  }
  for (const char* text : {"", "2011", "20110503", "201105031", "2011-05-03T12:00:00Z",
                           "2011050312.5", "20110503120"}) {
    expectRefused(rtParseGeneralizedTime, text);
  }
  for (const char* text : {"", "2011", "20110503120000Z", "2011-05-03 12:00:00Z",
                           "2011-5-03T12:00:00Z", "2011-05-03T12:00Z", "0000-01-01T00:00:00Z",
                           "40000-01-01T00:00:00Z", "-2011-05-03T12:00:00Z"}) {
    expectRefused(rtParseXmlDateTime, text);
  }

  ctxt.resetError();
  ASN1TimeFields f{};
  EXPECT_EQ(rtParseUTCTime(ctxt.get(), nullptr, &f), ASN_E_INVPARAM);
  EXPECT_EQ(rtParseGeneralizedTime(ctxt.get(), "2011050312Z", nullptr), ASN_E_INVPARAM);
}

TEST_F(TimeTest, GeneralizedTimeOptionalPartsAndLocalTime) {
  const ASN1TimeFields local = parseOk(rtParseGeneralizedTime, "2011050312");
  expectFields(local, 2011, 5, 3, 12, 0, 0);
  EXPECT_FALSE(local.utcFlag);
  EXPECT_EQ(local.diffHour, 0);
  EXPECT_EQ(local.diffMin, 0);

  expectFields(parseOk(rtParseGeneralizedTime, "201105031230Z"), 2011, 5, 3, 12, 30, 0);
  expectFields(parseOk(rtParseGeneralizedTime, "00000101000000Z"), 0, 1, 1, 0, 0, 0);

  const ASN1TimeFields hoursOnly = parseOk(rtParseGeneralizedTime, "20110503120000-05");
  EXPECT_EQ(hoursOnly.diffHour, -5);
  EXPECT_EQ(hoursOnly.diffMin, 0);
  const ASN1TimeFields full = parseOk(rtParseGeneralizedTime, "20110503120000-0130");
  EXPECT_EQ(full.diffHour, -1);
  EXPECT_EQ(full.diffMin, -30);

  for (const char* zone : {"+13", "+1", "+0575", "+05x", "+x", "ZZ"})
    expectRefused(rtParseGeneralizedTime, ("20110503120000" + std::string(zone)).c_str());
}

TEST_F(TimeTest, FractionsKeepTheirSignificantDigits) {
  EXPECT_STREQ(parseOk(rtParseGeneralizedTime, "20110503120000.5Z").fraction, "5");
  // Leading zeros are dropped, trailing ones kept: the fields carry ".050" as "50".
  EXPECT_STREQ(parseOk(rtParseGeneralizedTime, "20110503120000.050Z").fraction, "50");
  EXPECT_STREQ(parseOk(rtParseGeneralizedTime, "20110503120000,25").fraction, "25");
  EXPECT_STREQ(parseOk(rtParseGeneralizedTime, "20110503120000.000Z").fraction, "");
  EXPECT_STREQ(parseOk(rtParseXmlDateTime, "2011-05-03T12:00:00.125+01:00").fraction, "125");

  // Only 20 digits are kept, but the rest are read so the zone after them is still seen.
  const ASN1TimeFields longFraction =
      parseOk(rtParseGeneralizedTime, "20110503120000.1234567890123456789012345Z");
  EXPECT_STREQ(longFraction.fraction, "12345678901234567890");
  EXPECT_TRUE(longFraction.utcFlag);

  expectRefused(rtParseGeneralizedTime, "201105031200.5Z");  // fraction without seconds
  expectRefused(rtParseGeneralizedTime, "20110503120000.Z");
  expectRefused(rtParseXmlDateTime, "2011-05-03T12:00:00.Z");
}

TEST_F(TimeTest, XmlDateTimeZones) {
  const ASN1TimeFields utc = parseOk(rtParseXmlDateTime, "2011-05-03T12:34:56Z");
  expectFields(utc, 2011, 5, 3, 12, 34, 56);
  EXPECT_TRUE(utc.utcFlag);

  const ASN1TimeFields west = parseOk(rtParseXmlDateTime, "2011-05-03T12:34:56-09:30");
  EXPECT_EQ(west.diffHour, -9);
  EXPECT_EQ(west.diffMin, -30);
  EXPECT_FALSE(west.utcFlag);

  const ASN1TimeFields local = parseOk(rtParseXmlDateTime, "2011-05-03T12:34:56");
  EXPECT_FALSE(local.utcFlag);
  EXPECT_EQ(local.diffHour, 0);

  EXPECT_EQ(parseOk(rtParseXmlDateTime, "12345-01-01T00:00:00Z").year, 12345);

  for (const char* zone : {"+13:00", "+05:60", "+0500", "Z "})
    expectRefused(rtParseXmlDateTime, ("2011-05-03T12:34:56" + std::string(zone)).c_str());
}

TEST_F(TimeTest, MakeUTCTime) {
  EXPECT_EQ(make(rtMakeUTCTime, fieldsOf(2011, 5, 3, 12, 0, 0)), "1105031200Z");
  EXPECT_EQ(make(rtMakeUTCTime, fieldsOf(2011, 5, 3, 12, 0, 7)), "110503120007Z");
  EXPECT_EQ(make(rtMakeUTCTime, fieldsOf(1999, 12, 31, 23, 59, 59)), "991231235959Z");

  ASN1TimeFields zoned = fieldsOf(2049, 1, 2, 3, 4, 5, false);
  zoned.diffHour = -5;
  zoned.diffMin = -30;
  EXPECT_EQ(make(rtMakeUTCTime, zoned), "490102030405-0530");
  // Zero differences without the UTC flag mean local time: no zone is written.
  EXPECT_EQ(make(rtMakeUTCTime, fieldsOf(1950, 1, 1, 0, 0, 0, false)), "5001010000");

  EXPECT_EQ(makeStatus(rtMakeUTCTime, fieldsOf(2050, 1, 1, 0, 0, 0)), ASN_E_INVFORMAT);
  EXPECT_EQ(makeStatus(rtMakeUTCTime, fieldsOf(1949, 12, 31, 0, 0, 0)), ASN_E_INVFORMAT);
  EXPECT_EQ(ctxt.errorStatus(), ASN_E_INVFORMAT);
}

TEST_F(TimeTest, MakeGeneralizedTimeAndXmlDateTime) {
  ASN1TimeFields f = fieldsOf(2011, 5, 3, 12, 0, 0);
  EXPECT_EQ(make(rtMakeGeneralizedTime, f), "20110503120000Z");
  EXPECT_EQ(make(rtMakeXmlDateTime, f), "2011-05-03T12:00:00Z");

  strcpy(f.fraction, "25");
  f.utcFlag = 0;
  f.diffHour = 1;
  f.diffMin = 30;
  EXPECT_EQ(make(rtMakeGeneralizedTime, f), "20110503120000.25+0130");
  EXPECT_EQ(make(rtMakeXmlDateTime, f), "2011-05-03T12:00:00.25+01:30");

  // A negative minute difference alone still makes the zone west of UTC.
  f.diffHour = 0;
  f.diffMin = -45;
  EXPECT_EQ(make(rtMakeXmlDateTime, f), "2011-05-03T12:00:00.25-00:45");

  EXPECT_EQ(make(rtMakeGeneralizedTime, fieldsOf(5, 1, 1, 0, 0, 0)), "00050101000000Z");
  EXPECT_EQ(make(rtMakeXmlDateTime, fieldsOf(-44, 3, 15, 0, 0, 0)), "-0044-03-15T00:00:00Z");
  EXPECT_EQ(makeStatus(rtMakeXmlDateTime, fieldsOf(0, 1, 1, 0, 0, 0)), ASN_E_INVFORMAT);
  EXPECT_EQ(makeStatus(rtMakeGeneralizedTime, fieldsOf(10000, 1, 1, 0, 0, 0)), ASN_E_INVFORMAT);
}

TEST_F(TimeTest, MakeRefusesFieldsOutOfRange) {
  struct Case {
    const char* what;
    ASN1TimeFields fields;
  } cases[] = {
      {"month 0", fieldsOf(2011, 0, 1, 0, 0, 0)},
      {"month 13", fieldsOf(2011, 13, 1, 0, 0, 0)},
      {"day 0", fieldsOf(2011, 1, 0, 0, 0, 0)},
      {"29 February 2100", fieldsOf(2100, 2, 29, 0, 0, 0)},
      {"31 June", fieldsOf(2011, 6, 31, 0, 0, 0)},
      {"hour 24", fieldsOf(2011, 1, 1, 24, 0, 0)},
      {"minute -1", fieldsOf(2011, 1, 1, 0, -1, 0)},
      {"second 60", fieldsOf(2011, 1, 1, 0, 0, 60)},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(makeStatus(rtMakeGeneralizedTime, c.fields), ASN_E_INVFORMAT) << c.what;
  }

  ASN1TimeFields zone = fieldsOf(2011, 1, 1, 0, 0, 0, false);
  zone.diffHour = 13;
  EXPECT_EQ(makeStatus(rtMakeGeneralizedTime, zone), ASN_E_INVFORMAT);
  zone.diffHour = 0;
  zone.diffMin = -60;
  EXPECT_EQ(makeStatus(rtMakeXmlDateTime, zone), ASN_E_INVFORMAT);

  // The fraction is the caller's text: digits only, terminated within its array.
  ASN1TimeFields fraction = fieldsOf(2011, 1, 1, 0, 0, 0);
  strcpy(fraction.fraction, "12a");
  EXPECT_EQ(makeStatus(rtMakeGeneralizedTime, fraction), ASN_E_INVFORMAT);
  memset(fraction.fraction, '1', sizeof fraction.fraction);
  EXPECT_EQ(makeStatus(rtMakeXmlDateTime, fraction), ASN_E_INVFORMAT);
  // UTCTime has no fraction, so it does not look at one.
  EXPECT_EQ(makeStatus(rtMakeUTCTime, fraction), 0);
}

TEST_F(TimeTest, MakeIntoCallerBufferNeedsRoomForTheNul) {
  const ASN1TimeFields f = fieldsOf(2011, 5, 3, 12, 0, 0);
  char buf[16];
  char* out = buf;
  memset(buf, '#', sizeof buf);
  ctxt.resetError();
  // "1105031200Z" is 11 characters: 11 bytes are one too few.
  EXPECT_EQ(rtMakeUTCTime(ctxt.get(), &f, &out, 11), ASN_E_STROVFLW);
  EXPECT_EQ(ctxt.errorStatus(), ASN_E_STROVFLW);
  EXPECT_EQ(buf[0], '#');
  EXPECT_EQ(rtMakeUTCTime(ctxt.get(), &f, &out, -1), ASN_E_STROVFLW);
  EXPECT_EQ(rtMakeUTCTime(ctxt.get(), &f, &out, 12), 0);
  EXPECT_EQ(out, buf);
  EXPECT_STREQ(buf, "1105031200Z");
  EXPECT_EQ(buf[12], '#');

  char* none = nullptr;
  EXPECT_EQ(rtMakeUTCTime(ctxt.get(), &f, &none, 12), ASN_E_INVPARAM);
  EXPECT_EQ(rtMakeUTCTime(ctxt.get(), nullptr, &out, 12), ASN_E_INVPARAM);
}

// What one format writes, the same format reads back to the same fields; the XML form carries
// every field of the GeneralizedTime form, as the XML encoder relies on.
TEST_F(TimeTest, TextsSurviveParseAndMake) {
  for (const char* text : {"20110503120000Z", "20491231235959.999-1200", "20000229123456.5+0001",
                           "00010101000000"}) {
    ASN1TimeFields f{};
    ASSERT_EQ(rtParseGeneralizedTime(ctxt.get(), text, &f), 0) << text;
    EXPECT_EQ(make(rtMakeGeneralizedTime, f), text);

    const std::string xml = make(rtMakeXmlDateTime, f);
    ASN1TimeFields back{};
    ASSERT_EQ(rtParseXmlDateTime(ctxt.get(), xml.c_str(), &back), 0) << xml;
    EXPECT_EQ(make(rtMakeGeneralizedTime, back), text) << xml;
  }
  for (const char* text : {"491231235959Z", "5001010000Z", "0402290000-0001"}) {
    ASN1TimeFields f{};
    ASSERT_EQ(rtParseUTCTime(ctxt.get(), text, &f), 0) << text;
    EXPECT_EQ(make(rtMakeUTCTime, f), text);
  }
}

}  // namespace
