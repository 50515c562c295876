// Time classes: fields kept in step with the caller's string, zones and local time, calendar
// arithmetic checked against an independent day count and the C library, and the string's
// storage rules.

#include <quillon/asn1BerCppTypes.h>
#include <quillon/asn1CTime.h>

#include <gtest/gtest.h>

#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <time.h>

#include <string>

namespace {

// Sets TZ for one test and puts the previous value back.
class ScopedTimeZone {
 public:
  explicit ScopedTimeZone(const char* tz) {
    const char* old = getenv("TZ");
    hadOld_ = old != nullptr;
    if (hadOld_) old_ = old;
    setenv("TZ", tz, 1);
    tzset();
  }
  ~ScopedTimeZone() {
    if (hadOld_) {
      setenv("TZ", old_.c_str(), 1);
    } else {
      unsetenv("TZ");
    }
    tzset();
  }

 private:
  bool hadOld_;
  std::string old_;
};

// A time class over a caller buffer large enough to be written in place.
template <typename TimeClass>
struct Held {
  char buf[40] = {};
  char* ptr = buf;
  TimeClass t;
  explicit Held(const char* text, ASN1BOOL der = 0) : t(ptr, sizeof buf, der) {
    snprintf(buf, sizeof buf, "%s", text);
  }
  std::string text() const { return ptr; }
};

using GenTime = Held<ASN1CGeneralizedTime>;
using UtcTime = Held<ASN1CUTCTime>;

std::string genText(int year, int month, int day, int hour, int minute, int second) {
  char text[32];
  snprintf(text, sizeof text, "%04d%02d%02d%02d%02d%02dZ", year, month, day, hour, minute, second);
  return text;
}

// The calendar the test trusts: a plain month table and the leap rule, advanced a day at a time.
bool referenceLeap(int y) { return (y % 4 == 0 && y % 100 != 0) || y % 400 == 0; }

int referenceMonthLength(int y, int m) {
  static const int kLengths[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  return m == 2 && referenceLeap(y) ? 29 : kLengths[m - 1];
}

void referenceNextDay(int& y, int& m, int& d) {
  if (++d <= referenceMonthLength(y, m)) return;
  d = 1;
  if (++m <= 12) return;
  m = 1;
  ++y;
}

// A change that succeeded and left the string reading text.
template <typename T>
::testing::AssertionResult wrote(Held<T>& h, int stat, const std::string& text) {
  if (stat != 0) return ::testing::AssertionFailure() << "status " << stat;
  if (h.text() != text) return ::testing::AssertionFailure() << "wrote " << h.text();
  return ::testing::AssertionSuccess();
}

// The string stays the same, the fields of the text still read back, and the error is recorded.
template <typename T>
void expectRefused(Held<T>& h, int stat) {
  const std::string before = h.text();
  EXPECT_EQ(stat, ASN_E_INVFORMAT);
  EXPECT_EQ(h.text(), before);
  EXPECT_EQ(h.t.getContext()->getStatus(), ASN_E_INVFORMAT);
  rtErrReset(&h.t.getCtxtPtr()->errInfo);
}

// UTC and offset times must not depend on the machine's zone: every test that does not ask for
// local time runs in an odd one.
class CTimeTest : public ::testing::Test {
 protected:
  ScopedTimeZone zone{"<+0930>-9:30"};
};

TEST_F(CTimeTest, DayNumbersFollowTheCalendarDayByDay) {
  // 1890..2110 spans the non-leap 1900 and 2100 and the leap 2000, and every month end.
  GenTime h("18900101120000Z");
  const long first = h.t.getDaysNum();
  int y = 1890, m = 1, d = 1;
  long long reference = 0;
  for (int year = 0; year < 1890; ++year) reference += referenceLeap(year) ? 366 : 365;
  ASSERT_EQ(first, reference + 1);  // 1 January of year 0 is day 1
  for (long i = 1; y < 2111; ++i) {
    ASSERT_EQ(h.t.addDays(1), 0);
    referenceNextDay(y, m, d);
    ASSERT_TRUE(h.t.getYear() == y && h.t.getMonth() == m && h.t.getDay() == d)
        << "expected " << y << "-" << m << "-" << d << ", got " << h.text();
    ASSERT_EQ(h.t.getDaysNum(), first + i) << h.text();
    ASSERT_EQ(h.t.getMillisNum(), 12 * 3600 * 1000) << h.text();
  }
}

TEST_F(CTimeTest, DayNumbersOfEveryYearMatchAnIndependentCount) {
  long long daysBefore = 0;  // days from 1 January of year 0 to 1 January of year
  for (int year = 0; year <= 9999; ++year) {
    GenTime jan(genText(year, 1, 1, 0, 0, 0).c_str());
    GenTime mar(genText(year, 3, 1, 0, 0, 0).c_str());
    GenTime dec(genText(year, 12, 31, 23, 59, 59).c_str());
    const long long marchDay = daysBefore + 31 + (referenceLeap(year) ? 29 : 28) + 1;
    const long long yearLength = referenceLeap(year) ? 366 : 365;
    ASSERT_EQ(jan.t.getDaysNum(), daysBefore + 1) << year;
    ASSERT_EQ(mar.t.getDaysNum(), marchDay) << year;
    ASSERT_EQ(dec.t.getDaysNum(), daysBefore + yearLength) << year;
    ASSERT_EQ(dec.t.getMillisNum(), 86399000) << year;
    daysBefore += yearLength;
  }
}

TEST_F(CTimeTest, CalendarTimesAgreeWithTheCLibrary) {
  // time_t has 32 bits on i386: stay inside it there, go to year 9999 where it is wider.
  const long long lowest = sizeof(time_t) > 4 ? -62135596800LL : -2147483647LL;
  const long long highest = sizeof(time_t) > 4 ? 253402300799LL : 2147483647LL;
  const long long step = (highest - lowest) / 5000 + 7;
  for (long long s = lowest; s <= highest; s += step) {
    const time_t t = static_cast<time_t>(s);
    struct tm expected;
    ASSERT_NE(gmtime_r(&t, &expected), nullptr);
    GenTime fromText(genText(expected.tm_year + 1900, expected.tm_mon + 1, expected.tm_mday,
                             expected.tm_hour, expected.tm_min, expected.tm_sec)
                         .c_str());
    ASSERT_EQ(fromText.t.getTime(), static_cast<long>(t)) << fromText.text();

    GenTime fromTime("");
    ASSERT_EQ(fromTime.t.setTime(static_cast<long>(t), 0), 0);
    ASSERT_EQ(fromTime.text(), fromText.text());
  }
}

TEST_F(CTimeTest, TimesBeyondALongAreRefusedByGetTime) {
  GenTime last("99991231235959Z");
  if (sizeof(long) == 4) {
    EXPECT_EQ(last.t.getTime(), ASN_E_TOOBIG);
    EXPECT_EQ(last.t.getContext()->getStatus(), ASN_E_TOOBIG);
  } else {
    EXPECT_EQ(last.t.getTime(), 253402300799L);
  }
  UtcTime beforeRange("240101120000Z");
  expectRefused(beforeRange, beforeRange.t.setTime(-631152001L, 0));  // 1949-12-31T23:59:59Z
  GenTime first("00000101000000Z");
  EXPECT_EQ(first.t.getDaysNum(), 1);
  EXPECT_EQ(first.t.getMillisNum(), 0);
}

TEST_F(CTimeTest, OffsetsAreTakenIntoAccountWhenComparing) {
  GenTime utc("20240101100000Z");
  GenTime east("20240101120000+0200");
  GenTime west("20240101043000-0530");
  GenTime later("20240101100000.5Z");
  UtcTime shortForm("240101100000Z");
  EXPECT_TRUE(utc.t == east.t);
  EXPECT_TRUE(east.t.equals(west.t));
  EXPECT_TRUE(utc.t == shortForm.t);
  EXPECT_EQ(west.t.getDiff(), -330);
  EXPECT_EQ(west.t.getDiffHour(), -5);
  EXPECT_EQ(west.t.getDiffMinute(), -30);
  // Same second, half a second apart.
  EXPECT_TRUE(later.t > east.t);
  EXPECT_TRUE(west.t < later.t);
  EXPECT_TRUE(later.t != utc.t);
  EXPECT_FALSE(later.t == utc.t);
  EXPECT_TRUE(utc.t >= east.t && utc.t <= east.t);
  EXPECT_FALSE(utc.t < east.t || utc.t > east.t);
  EXPECT_EQ(later.t.getMillisNum(), 10 * 3600 * 1000 + 500);
  // Across midnight the day number moves with the instant, not with the written date.
  GenTime early("20240102013000+0200");
  EXPECT_EQ(early.t.getDaysNum(), utc.t.getDaysNum());
  EXPECT_EQ(early.t.getMillisNum(), 23 * 3600 * 1000 + 30 * 60 * 1000);
}

TEST_F(CTimeTest, ComparingAnUnreadableTimeIsNeitherEqualNorOrdered) {
  GenTime good("20240101100000Z");
  GenTime bad("20241301100000Z");
  EXPECT_FALSE(good.t == bad.t);
  EXPECT_FALSE(good.t != bad.t);
  EXPECT_FALSE(good.t < bad.t || good.t > bad.t || good.t <= bad.t || good.t >= bad.t);
  EXPECT_EQ(bad.t.getDaysNum(), ASN_E_INVFORMAT);
  EXPECT_EQ(bad.t.getTime(), ASN_E_INVFORMAT);
}

TEST(CTimeLocalTest, LocalTimeUsesTheMachineZoneWithDaylightSaving) {
  ScopedTimeZone zone("CET-1CEST,M3.5.0,M10.5.0/3");
  GenTime winter("20240115130000");
  GenTime winterUtc("20240115120000Z");
  GenTime summer("20240715140000");
  GenTime summerUtc("20240715120000Z");
  EXPECT_EQ(winter.t.getUTC(), 0);
  EXPECT_EQ(winter.t.getDiff(), 0);
  EXPECT_TRUE(winter.t == winterUtc.t);
  EXPECT_TRUE(summer.t == summerUtc.t);
  EXPECT_EQ(summer.t.getTime(), summerUtc.t.getTime());
}

TEST(CTimeLocalTest, SetTimeWritesTheLocalOffsetOrUTC) {
  const long t = 1704110400;  // 2024-01-01T12:00:00Z
  {
    ScopedTimeZone zone("EST5");
    GenTime gen("");
    UtcTime utc("");
    EXPECT_TRUE(wrote(gen, gen.t.setTime(t, 1), "20240101070000-0500"));
    EXPECT_TRUE(wrote(utc, utc.t.setTime(t, 1), "2401010700-0500"));
    EXPECT_EQ(gen.t.getTime(), t);
    EXPECT_TRUE(wrote(gen, gen.t.setTime(t, 0), "20240101120000Z"));
    // DER keeps the time in UTC whatever is asked.
    GenTime der("", 1);
    EXPECT_TRUE(wrote(der, der.t.setTime(t, 1), "20240101120000Z"));
  }
  {
    ScopedTimeZone zone("<+0545>-5:45");
    GenTime gen("");
    EXPECT_TRUE(wrote(gen, gen.t.setTime(t, 1), "20240101174500+0545"));
    EXPECT_EQ(gen.t.getDiff(), 345);
  }
  {
    ScopedTimeZone zone("UTC0");
    GenTime gen("");
    EXPECT_TRUE(wrote(gen, gen.t.setTime(t, 1), "20240101120000Z"));
  }
  {
    // +14:00 cannot be written as a difference of at most 12 hours.
    ScopedTimeZone zone("<+14>-14");
    GenTime gen("20000101000000Z");
    expectRefused(gen, gen.t.setTime(t, 1));
  }
}

TEST(CTimeLocalTest, UTCTimeLeavesUTCByWritingTheMachineOffset) {
  ScopedTimeZone zone("EST5");
  UtcTime utc("240101120000Z");
  EXPECT_TRUE(wrote(utc, utc.t.setUTC(0), "2401010700-0500"));
  EXPECT_TRUE(wrote(utc, utc.t.setUTC(1), "2401011200Z"));
  // Beyond a 32-bit time_t the zone's offset of today stands in; EST5 has only one.
  UtcTime late("491231120000Z");
  EXPECT_TRUE(wrote(late, late.t.setUTC(0), "4912310700-0500"));
  UtcTime der("240101120000Z", 1);
  EXPECT_TRUE(wrote(der, der.t.setUTC(0), "240101120000Z"));
}

TEST_F(CTimeTest, SetUTCConvertsOffsetsAndDeclaresLocalTimes) {
  GenTime offset("20240101010000+0200");
  EXPECT_TRUE(wrote(offset, offset.t.setUTC(1), "20231231230000Z"));
  EXPECT_EQ(offset.t.getDiff(), 0);
  GenTime local("20240101010000");
  EXPECT_TRUE(wrote(local, local.t.setUTC(1), "20240101010000Z"));
  EXPECT_TRUE(wrote(local, local.t.setUTC(0), "20240101010000"));
  GenTime der("20240101010000Z", 1);
  EXPECT_TRUE(wrote(der, der.t.setUTC(0), "20240101010000Z"));
  EXPECT_EQ(der.t.getUTC(), 1);
}

TEST_F(CTimeTest, ZoneDifferencesKeepOneSign) {
  GenTime h("20240101120000Z");
  EXPECT_TRUE(wrote(h, h.t.setDiff(-330), "20240101120000-0530"));
  EXPECT_EQ(h.t.getDiffMinute(), -30);
  // The hour takes over the sign of the minutes it keeps.
  EXPECT_TRUE(wrote(h, h.t.setDiffHour(3), "20240101120000+0330"));
  EXPECT_EQ(h.t.getDiffMinute(), 30);
  EXPECT_TRUE(wrote(h, h.t.setDiff(0, -30), "20240101120000-0030"));
  EXPECT_EQ(h.t.getDiff(), -30);
  expectRefused(h, h.t.setDiff(-5, 30));
  expectRefused(h, h.t.setDiff(13, 0));
  expectRefused(h, h.t.setDiff(0, 60));
  expectRefused(h, h.t.setDiff(721));
  expectRefused(h, h.t.setDiffHour(-13));
  EXPECT_TRUE(wrote(h, h.t.setDiff(-720), "20240101120000-1200"));
  // A zero offset is UTC.
  EXPECT_TRUE(wrote(h, h.t.setDiff(0), "20240101120000Z"));
  EXPECT_EQ(h.t.getUTC(), 1);
  GenTime der("20240101120000Z", 1);
  expectRefused(der, der.t.setDiff(2, 0));
  EXPECT_EQ(der.t.setDiff(0, 0), 0);
}

TEST_F(CTimeTest, ExplicitZeroOffsetsStayUTCWhenRewritten) {
  GenTime gen("20240101120000+0000");
  EXPECT_EQ(gen.t.getUTC(), 1);
  EXPECT_TRUE(wrote(gen, gen.t.setSecond(1), "20240101120001Z"));
  UtcTime utc("2401011200-0000");
  EXPECT_TRUE(wrote(utc, utc.t.setSecond(1), "240101120001Z"));
}

TEST_F(CTimeTest, FieldsAreBuiltOneByOneAfterClear) {
  GenTime h("garbage");
  h.t.clear();
  EXPECT_EQ(h.text(), "");
  EXPECT_EQ(h.t.getYear(), ASN1CTime::kNotSet);
  // 29 February is accepted while the year is not known.
  EXPECT_EQ(h.t.setDay(29), 0);
  EXPECT_TRUE(wrote(h, h.t.setMonth(2), ""));
  expectRefused(h, h.t.setYear(2023));
  EXPECT_TRUE(wrote(h, h.t.setYear(2024), ""));
  EXPECT_TRUE(wrote(h, h.t.setHour(7), "20240229070000"));
  EXPECT_TRUE(wrote(h, h.t.setUTC(1), "20240229070000Z"));
  EXPECT_EQ(h.t.setMinute(5), 0);
  EXPECT_TRUE(wrote(h, h.t.setSecond(9), "20240229070509Z"));
  expectRefused(h, h.t.setMonth(13));
  expectRefused(h, h.t.setMonth(0));
  expectRefused(h, h.t.setHour(24));
  expectRefused(h, h.t.setMinute(60));
  expectRefused(h, h.t.setSecond(-1));
  expectRefused(h, h.t.setDay(30));
  expectRefused(h, h.t.setYear(10000));
  EXPECT_EQ(h.t.getContext()->getStatus(), 0);
  UtcTime u("");
  u.t.clear();
  EXPECT_EQ(u.t.getUTC(), 1);
  EXPECT_EQ(u.t.setYear(2049), 0);
  EXPECT_EQ(u.t.setMonth(12), 0);
  EXPECT_EQ(u.t.setDay(31), 0);
  EXPECT_TRUE(wrote(u, u.t.setHour(23), "4912312300Z"));
  expectRefused(u, u.t.setYear(2050));
  expectRefused(u, u.t.setYear(1949));
}

TEST_F(CTimeTest, CheckDateAcceptsWhatIsNotKnownYet) {
  // Day, month, year; a part not known yet (0 or -1) limits nothing.
  const int good[][3] = {{29, 2, 2000}, {29, 2, 2024}, {29, 2, -1}, {31, 1, -1}, {0, 2, 2023},
                         {31, 0, 2023}};
  const int bad[][3] = {{29, 2, 1900}, {29, 2, 2100}, {30, 2, -1}, {31, 4, 2024}, {1, 13, 2023}};
  for (const auto& d : good) EXPECT_TRUE(ASN1CTime::checkDate(d[0], d[1], d[2])) << d[0] << d[1];
  for (const auto& d : bad) EXPECT_FALSE(ASN1CTime::checkDate(d[0], d[1], d[2])) << d[0] << d[1];
}

TEST_F(CTimeTest, AnUnreadableStringIsReportedByEveryGetterAndSetter) {
  GenTime h("2024");
  EXPECT_EQ(h.t.getYear(), ASN_E_INVFORMAT);
  ASN1CTXT* pctxt = h.t.getCtxtPtr();
  EXPECT_EQ(pctxt->errInfo.status, ASN_E_INVFORMAT);
  ASSERT_GE(pctxt->errInfo.stkx, 2);
  EXPECT_STREQ(pctxt->errInfo.stack[0].module, "rtsrc/rtTime");
  EXPECT_STREQ(pctxt->errInfo.stack[1].module, "rtsrc/ASN1CTime");
  EXPECT_EQ(h.t.getUTC(), ASN_E_INVFORMAT);
  EXPECT_EQ(h.t.getCentury(), ASN_E_INVFORMAT);
  expectRefused(h, h.t.setHour(3));
  expectRefused(h, h.t.addDays(1));
  // A string not read yet is handed out as it is.
  EXPECT_STREQ(h.t.getTimeStringPtr(), "2024");
  UtcTime noZone("1105031200");
  EXPECT_EQ(noZone.t.getDay(), ASN_E_INVFORMAT);
}

TEST_F(CTimeTest, TheCallersStringIsWrittenInPlaceOnlyWhenLargeEnough) {
  char big[32] = "20240101120000Z";
  char* bigPtr = big;
  ASN1CGeneralizedTime inPlace(bigPtr, sizeof big);
  EXPECT_EQ(inPlace.setHour(13), 0);
  EXPECT_EQ(bigPtr, big);
  EXPECT_STREQ(big, "20240101130000Z");

  char small[20] = "20240101120000Z";
  char* smallPtr = small;
  ASN1CGeneralizedTime redirected(smallPtr, sizeof small);
  EXPECT_EQ(redirected.getHour(), 12);
  EXPECT_EQ(smallPtr, small);  // reading does not move it
  EXPECT_EQ(redirected.setFraction(123456789), 0);
  EXPECT_NE(smallPtr, small);
  EXPECT_STREQ(small, "20240101120000Z");
  EXPECT_STREQ(smallPtr, "20240101120000.123456789Z");

  const char* text = "240101120000Z";
  const char* readOnly = text;
  ASN1CUTCTime fromConst(readOnly);
  EXPECT_EQ(fromConst.getYear(), 2024);
  EXPECT_EQ(readOnly, text);
  EXPECT_EQ(fromConst.addDays(1), 0);
  EXPECT_STREQ(text, "240101120000Z");
  EXPECT_STREQ(readOnly, "2401021200Z");

  // The longest text, with a nine-digit fraction and an offset, fits the object's own buffer.
  const char* longest = "20241231230000Z";
  ASN1CGeneralizedTime full(longest);
  EXPECT_EQ(full.setFraction(999999999), 0);
  EXPECT_EQ(full.setDiff(-12, -59), 0);
  EXPECT_STREQ(longest, "20241231230000.999999999-1259");
  EXPECT_EQ(full.getTimeStringLen(), static_cast<int>(strlen(longest)));
  EXPECT_EQ(full.setFraction(1000000000), ASN_E_INVFORMAT);
}

TEST_F(CTimeTest, GetTimeStringChecksTheCallersSize) {
  GenTime h("20240101120000Z");
  char out[16];
  EXPECT_EQ(h.t.getTimeString(out, 15), nullptr);
  EXPECT_EQ(h.t.getTimeString(out, 16), out);
  EXPECT_STREQ(out, "20240101120000Z");
  EXPECT_EQ(h.t.getTimeStringLen(), 15);
}

TEST_F(CTimeTest, FractionsKeepTheirDigitsButNotLeadingZeros) {
  GenTime h("20110503120000.050Z");
  EXPECT_EQ(h.t.getFraction(), 50);
  // Rewriting shows the runtime's rule: the leading zero is gone.
  EXPECT_TRUE(wrote(h, h.t.setSecond(1), "20110503120001.50Z"));
  EXPECT_EQ(h.t.getMillisNum(), 12 * 3600000 + 1000 + 500);
  GenTime many("20110503120000,12345678901234Z");
  EXPECT_EQ(many.t.getFraction(), 123456789);
  EXPECT_EQ(many.t.getMillisNum(), 12 * 3600000 + 123);
  EXPECT_TRUE(wrote(many, many.t.setFraction(0), "20110503120000Z"));
  UtcTime u("110503120000Z");
  EXPECT_EQ(u.t.getFraction(), 0);
  expectRefused(u, u.t.setFraction(5));
  EXPECT_EQ(u.t.setFraction(0), 0);
}

TEST_F(CTimeTest, AddingDaysCrossesMonthsYearsAndLeapDays) {
  GenTime h("20000301000000+0100");
  EXPECT_TRUE(wrote(h, h.t.addDays(-1), "20000229000000+0100"));
  GenTime c("21000301000000Z");
  EXPECT_TRUE(wrote(c, c.t.addDays(-1), "21000228000000Z"));
  EXPECT_TRUE(wrote(c, c.t.addDays(366), "21010301000000Z"));
  GenTime end("99991231000000Z");
  expectRefused(end, end.t.addDays(1));
  GenTime start("00000101000000Z");
  expectRefused(start, start.t.addDays(-1));
  expectRefused(start, start.t.addDays(-2147483647));
  UtcTime u("491231120000Z");
  expectRefused(u, u.t.addDays(1));
  EXPECT_TRUE(wrote(u, u.t.addDays(-36524), "5001011200Z"));
  GenTime incomplete("");
  incomplete.t.clear();
  EXPECT_EQ(incomplete.t.addDays(1), ASN_E_INVFORMAT);
}

TEST_F(CTimeTest, AddingMillisecondsCarriesThroughFractionAndClock) {
  GenTime h("20241231235959.5+0200");
  EXPECT_TRUE(wrote(h, h.t.addMilliseconds(250), "20241231235959.75+0200"));
  EXPECT_TRUE(wrote(h, h.t.addMilliseconds(250), "20250101000000+0200"));
  EXPECT_TRUE(wrote(h, h.t.addMilliseconds(-1500), "20241231235958.5+0200"));
  // 50 ms past a whole second would need a leading zero in the fraction.
  expectRefused(h, h.t.addMilliseconds(-450));
  GenTime day("20240228120000Z");
  GenTime sameDay("20240228120000Z");
  EXPECT_EQ(day.t.addMilliseconds(86400000), 0);
  EXPECT_EQ(sameDay.t.addDays(1), 0);
  EXPECT_EQ(day.text(), sameDay.text());
  EXPECT_EQ(day.text(), "20240229120000Z");
  UtcTime u("240101120000Z");
  expectRefused(u, u.t.addMilliseconds(500));
  EXPECT_TRUE(wrote(u, u.t.addMilliseconds(-3600 * 1000), "2401011100Z"));
}

TEST_F(CTimeTest, CenturiesReplaceTheHundredsOfTheYear) {
  GenTime h("20240229120000Z");
  EXPECT_EQ(h.t.getCentury(), 20);
  EXPECT_TRUE(wrote(h, h.t.setCentury(16), "16240229120000Z"));
  GenTime leap("20000229120000Z");
  expectRefused(leap, leap.t.setCentury(19));
  expectRefused(leap, leap.t.setCentury(100));
  leap.t.clear();
  EXPECT_EQ(leap.t.getCentury(), ASN1CTime::kNotSet);
}

// How long the context is held is the base class's business (tested with it).
TEST_F(CTimeTest, ObjectsReportIntoTheContextTheyAreMadeOn) {
  ASN1BEREncodeBuffer buffer;
  const char* text = "20240101120000Z";
  ASN1CGeneralizedTime t(buffer, text);
  EXPECT_EQ(t.setMonth(13), ASN_E_INVFORMAT);
  EXPECT_EQ(buffer.getStatus(), ASN_E_INVFORMAT);
  ASN1CtxtPtr ctxt(new ASN1Context());
  const char* utc = "240101120000Z";
  ASN1CUTCTime u(*ctxt, utc);
  EXPECT_EQ(u.getCtxtPtr(), ctxt->getPtr());
}

}  // namespace
