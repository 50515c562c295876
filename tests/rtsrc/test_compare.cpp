// Comparing two values: what counts as equal for each primitive, the report line of a
// difference, its accumulation in a buffer and on standard output, and buffers that cannot
// take a report.
#include <gtest/gtest.h>

#include <quillon/rtCompare.h>
#include <quillon/rtReal.h>

#include <stdint.h>
#include <string.h>

#include <string>
#include <vector>

using testing::internal::CaptureStdout;
using testing::internal::GetCapturedStdout;

namespace {

// A report buffer that tests read back after each comparison.
class Report {
 public:
  char* buf() { return buf_; }
  size_t size() const { return sizeof buf_; }
  // The text reported since the last call, then forgotten.
  std::string take() {
    std::string text = buf_;
    buf_[0] = '\0';
    return text;
  }

 private:
  char buf_[1024] = "";
};

ASN1OBJID makeOid(std::initializer_list<ASN1UINT> arcs) {
  ASN1OBJID oid{};
  for (ASN1UINT arc : arcs) oid.subid[oid.numids++] = arc;
  return oid;
}

}  // namespace

TEST(Compare, ScalarsReportBothValues) {
  Report r;
  EXPECT_TRUE(rtCmpInteger("version", 2, 2, r.buf(), r.size()));
  EXPECT_TRUE(rtCmpBoolean("critical", 1, 0xFF, r.buf(), r.size())) << "both are TRUE";
  EXPECT_TRUE(rtCmpTag("t", TM_CTXT | 3, TM_CTXT | 3, r.buf(), r.size()));
  EXPECT_EQ(r.take(), "") << "equal values report nothing";

  EXPECT_FALSE(rtCmpInteger("version", 1, -2, r.buf(), r.size()));
  EXPECT_FALSE(rtCmpBoolean("critical", 1, 0, r.buf(), r.size()));
  EXPECT_FALSE(rtCmpUnsigned("u", UINT32_MAX, 0, r.buf(), r.size()));
  EXPECT_FALSE(rtCmpInt64("i", INT64_MIN, INT64_MAX, r.buf(), r.size()));
  EXPECT_FALSE(rtCmpUInt64("u", UINT64_MAX, 1, r.buf(), r.size()));
  EXPECT_FALSE(rtCmpEnum("reason", 1, 8, r.buf(), r.size()));
  EXPECT_FALSE(rtCmpTag("t", TM_CTXT | TM_CONS | 3, TM_CTXT | 3, r.buf(), r.size()));
  EXPECT_FALSE(rtCmpInteger(nullptr, 1, 2, r.buf(), r.size()));
  EXPECT_EQ(r.take(),
            "version: 1 != -2\n"
            "critical: TRUE != FALSE\n"
            "u: 4294967295 != 0\n"
            "i: -9223372036854775808 != 9223372036854775807\n"
            "u: 18446744073709551615 != 1\n"
            "reason: 1 != 8\n"
            "t: [3] constructed != [3]\n"
            "1 != 2\n");
}

TEST(Compare, RealsTreatNaNAsOneValueAndMinusZeroApart) {
  Report r;
  EXPECT_TRUE(rtCmpReal("r", rtGetNaN(), rtGetNaN(), r.buf(), r.size()));
  EXPECT_TRUE(rtCmpReal("r", rtGetMinusInfinity(), rtGetMinusInfinity(), r.buf(), r.size()));
  EXPECT_TRUE(rtCmpReal("r", 0.5, 0.5, r.buf(), r.size()));
  EXPECT_EQ(r.take(), "");
  EXPECT_FALSE(rtCmpReal("r", rtGetMinusZero(), 0.0, r.buf(), r.size()));
  EXPECT_FALSE(rtCmpReal("r", rtGetNaN(), 1.0, r.buf(), r.size()));
  EXPECT_FALSE(rtCmpReal("r", 0.1, 0.1 + 0.2 - 0.2, r.buf(), r.size()));
  const std::string reported = r.take();
  EXPECT_EQ(reported.substr(0, 38), "r: -0 != 0\nr: NOT-A-NUMBER != 1\nr: 0.1");
  EXPECT_EQ(reported.find("0.1 != 0.1\n"), std::string::npos)
      << "nearby values print apart: " << reported;
}

TEST(Compare, BigIntegersCompareByValueNotText) {
  Report r;
  EXPECT_TRUE(rtCmpBigInt("serial", "0x0A", "10", r.buf(), r.size()));
  EXPECT_TRUE(rtCmpBigInt("serial", "-0x01", "-1", r.buf(), r.size()));
  EXPECT_TRUE(rtCmpBigInt("serial", "0x00ff", "255", r.buf(), r.size()));
  EXPECT_TRUE(rtCmpBigInt("serial", "0x0123456789abcdef0123456789abcdef",
                          "1512366075204170929049582354406559215", r.buf(), r.size()));
  EXPECT_TRUE(rtCmpBigInt("serial", "junk", "junk", r.buf(), r.size()));
  EXPECT_TRUE(rtCmpBigInt("serial", nullptr, nullptr, r.buf(), r.size()));
  EXPECT_EQ(r.take(), "");
  EXPECT_FALSE(rtCmpBigInt("serial", "0x0a", "11", r.buf(), r.size()));
  EXPECT_FALSE(rtCmpBigInt("serial", "1", "-1", r.buf(), r.size()));
  EXPECT_FALSE(rtCmpBigInt("serial", "junk", "0", r.buf(), r.size()));
  EXPECT_FALSE(rtCmpBigInt("serial", nullptr, "1", r.buf(), r.size()));
  EXPECT_EQ(r.take(),
            "serial: 0x0a != 11\n"
            "serial: 1 != -1\n"
            "serial: junk != 0\n"
            "serial: <null> != 1\n");
}

TEST(Compare, OctetStringsShortInFullLongByFirstDifference) {
  Report r;
  std::vector<ASN1OCTET> a(21), b(21);
  for (size_t i = 0; i < a.size(); ++i) a[i] = b[i] = static_cast<ASN1OCTET>(i);
  EXPECT_TRUE(rtCmpOctStr("o", 21, a.data(), 21, b.data(), r.buf(), r.size()));
  EXPECT_TRUE(rtCmpOctStr("o", 0, nullptr, 0, a.data(), r.buf(), r.size()));
  EXPECT_EQ(r.take(), "");

  b[17] = 0xEE;
  EXPECT_FALSE(rtCmpOctStr("o", 21, a.data(), 21, b.data(), r.buf(), r.size()));
  EXPECT_FALSE(rtCmpOctStr("o", 20, a.data(), 21, a.data(), r.buf(), r.size()));
  EXPECT_FALSE(rtCmpOctStr("o", 3, a.data(), 2, a.data(), r.buf(), r.size()));
  EXPECT_FALSE(rtCmpOctStr("o", 3, a.data(), 3, nullptr, r.buf(), r.size()));
  EXPECT_FALSE(rtCmpOctStr("o", 17, a.data(), 2, a.data(), r.buf(), r.size()));
  EXPECT_EQ(r.take(),
            "o: octet 17: '11'H != 'EE'H\n"
            "o: (20 octets) != (21 octets)\n"
            "o: '000102'H != '0001'H\n"
            "o: '000102'H != <invalid value>\n"
            "o: (17 octets) != '0001'H\n");

  const ASN1TOpenType x{3, a.data()}, y{3, b.data()}, z{2, a.data()};
  EXPECT_TRUE(rtCmpOpenType("ot", &x, &y, r.buf(), r.size()));
  EXPECT_FALSE(rtCmpOpenType("ot", &x, &z, r.buf(), r.size()));
  EXPECT_FALSE(rtCmpOpenType("ot", nullptr, &z, r.buf(), r.size()));
  EXPECT_TRUE(rtCmpOpenType("ot", nullptr, nullptr, r.buf(), r.size()));
  EXPECT_EQ(r.take(), "ot: '000102'H != '0001'H\not: <null> != '0001'H\n");
}

TEST(Compare, BitStringsIgnoreUnusedBits) {
  Report r;
  const ASN1OCTET a[] = {0xA5, 0xC0}, b[] = {0xA5, 0xCF}, c[] = {0xA5, 0xD0};
  EXPECT_TRUE(rtCmpBitStr("ku", 12, a, 12, b, r.buf(), r.size()));
  EXPECT_TRUE(rtCmpBitStr("ku", 0, nullptr, 0, a, r.buf(), r.size()));
  EXPECT_EQ(r.take(), "");
  EXPECT_FALSE(rtCmpBitStr("ku", 12, a, 12, c, r.buf(), r.size()));
  EXPECT_FALSE(rtCmpBitStr("ku", 12, a, 11, a, r.buf(), r.size()));
  EXPECT_EQ(r.take(), "ku: 'A5C0'H (12 bits) != 'A5D0'H (12 bits)\n"
                      "ku: 'A5C0'H (12 bits) != 'A5C0'H (11 bits)\n");

  // Long strings: the first differing bit, or the sizes.
  std::vector<ASN1OCTET> x(17, 0x55), y(17, 0x55);
  y[16] = 0x50;  // bits 133 and 135 differ; with 134 bits only bit 133 counts
  EXPECT_TRUE(rtCmpBitStr("sig", 133, x.data(), 133, y.data(), r.buf(), r.size()));
  EXPECT_FALSE(rtCmpBitStr("sig", 134, x.data(), 134, y.data(), r.buf(), r.size()));
  EXPECT_FALSE(rtCmpBitStr("sig", 136, x.data(), 135, y.data(), r.buf(), r.size()));
  EXPECT_EQ(r.take(), "sig: bit 133: 1 != 0\nsig: (136 bits) != (135 bits)\n");
}

TEST(Compare, CharacterStrings) {
  Report r;
  EXPECT_TRUE(rtCmpCharStr("cn", "abc", "abc", r.buf(), r.size()));
  EXPECT_TRUE(rtCmpCharStr("cn", nullptr, nullptr, r.buf(), r.size()));
  ASN1USINT u1[] = {'a', 0xE9}, u2[] = {'a', 0xE9}, u3[] = {'a', 'e'};
  const Asn116BitCharString b1{2, u1}, b2{2, u2}, b3{2, u3}, b4{1, u1}, empty{0, nullptr},
      broken{2, nullptr};
  EXPECT_TRUE(rtCmp16BitCharStr("bmp", &b1, &b2, r.buf(), r.size()));
  EXPECT_TRUE(rtCmp16BitCharStr("bmp", &empty, &empty, r.buf(), r.size()));
  ASN1UINT w1[] = {0x1F600}, w2[] = {0x1F601};
  const Asn132BitCharString c1{1, w1}, c2{1, w2};
  EXPECT_TRUE(rtCmp32BitCharStr("ucs", &c1, &c1, r.buf(), r.size()));
  EXPECT_EQ(r.take(), "");

  EXPECT_FALSE(rtCmpCharStr("cn", "abc", "abd", r.buf(), r.size()));
  EXPECT_FALSE(rtCmpCharStr("cn", "", nullptr, r.buf(), r.size()));
  EXPECT_FALSE(rtCmp16BitCharStr("bmp", &b1, &b3, r.buf(), r.size()));
  EXPECT_FALSE(rtCmp16BitCharStr("bmp", &b1, &b4, r.buf(), r.size()));
  EXPECT_FALSE(rtCmp16BitCharStr("bmp", &broken, &broken, r.buf(), r.size()));
  EXPECT_FALSE(rtCmp32BitCharStr("ucs", &c1, &c2, r.buf(), r.size()));
  EXPECT_EQ(r.take(),
            "cn: \"abc\" != \"abd\"\n"
            "cn: \"\" != <null>\n"
            "bmp: \"a\xC3\xA9\" != \"ae\"\n"
            "bmp: \"a\xC3\xA9\" != \"a\"\n"
            "bmp: <invalid value> != <invalid value>\n"
            "ucs: \"\xF0\x9F\x98\x80\" != \"\xF0\x9F\x98\x81\"\n");
}

TEST(Compare, ObjectIdentifiersCompareOnlyTheArcsInUse) {
  Report r;
  ASN1OBJID a = makeOid({1, 2, 840, 113549});
  ASN1OBJID b = a;
  b.subid[10] = 77;  // beyond numids: not part of the value
  EXPECT_TRUE(rtCmpOID("alg", &a, &b, r.buf(), r.size()));
  EXPECT_TRUE(rtCmpOID("alg", nullptr, nullptr, r.buf(), r.size()));
  EXPECT_EQ(r.take(), "");
  const ASN1OBJID shorter = makeOid({1, 2, 840});
  const ASN1OBJID other = makeOid({1, 2, 840, 10045});
  ASN1OBJID corrupt{};
  EXPECT_FALSE(rtCmpOID("alg", &a, &shorter, r.buf(), r.size()));
  EXPECT_FALSE(rtCmpOID("alg", &a, &other, r.buf(), r.size()));
  EXPECT_FALSE(rtCmpOID("alg", &corrupt, &corrupt, r.buf(), r.size()));
  EXPECT_FALSE(rtCmpOID("alg", &a, nullptr, r.buf(), r.size()));
  EXPECT_EQ(r.take(),
            "alg: 1.2.840.113549 != 1.2.840\n"
            "alg: 1.2.840.113549 != 1.2.840.10045\n"
            "alg: <invalid object identifier> != <invalid object identifier>\n"
            "alg: 1.2.840.113549 != <null>\n");

  const ASN1OID64 x = {2, {2, 1ULL << 33}}, y = {2, {2, 1}};
  EXPECT_TRUE(rtCmpOID64("o", &x, &x, r.buf(), r.size()));
  EXPECT_FALSE(rtCmpOID64("o", &x, &y, r.buf(), r.size()));
  EXPECT_EQ(r.take(), "o: 2.8589934592 != 2.1\n");
}

TEST(Compare, TableConstrainedOpenTypesAlsoCompareTheirObject) {
  Report r;
  const ASN1OCTET enc[] = {0x05, 0x00};
  const int objectA = 0, objectB = 0;
  const Asn1TObject a{2, enc, nullptr, &objectA}, b{2, enc, nullptr, &objectB},
      unresolved{2, enc, nullptr, nullptr}, otherEnc{1, enc, nullptr, &objectA};
  EXPECT_TRUE(rtCmpTCOpenType("params", &a, &a, r.buf(), r.size()));
  EXPECT_TRUE(rtCmpTCOpenType("params", &a, &unresolved, r.buf(), r.size()));
  EXPECT_EQ(r.take(), "");
  EXPECT_FALSE(rtCmpTCOpenType("params", &a, &b, r.buf(), r.size()));
  EXPECT_FALSE(rtCmpTCOpenType("params", &a, &otherEnc, r.buf(), r.size()));
  EXPECT_FALSE(rtCmpTCOpenType("params", &a, nullptr, r.buf(), r.size()));
  EXPECT_EQ(r.take(),
            "params: information objects differ\n"
            "params: '0500'H != '05'H\n"
            "params: '0500'H != <null>\n");
}

TEST(Compare, ReportsAccumulateAndATooSmallBufferKeepsItsText) {
  char buf[40] = "";
  EXPECT_FALSE(rtCmpInteger("a", 1, 2, buf, sizeof buf));
  EXPECT_FALSE(rtCmpCharStr("b", "x", "y", buf, sizeof buf));
  EXPECT_STREQ(buf, "a: 1 != 2\nb: \"x\" != \"y\"\n");
  // 24 of 40 bytes are used: this report needs 17 with its NUL, one too many...
  EXPECT_FALSE(rtCmpInteger("cc", 100, 2000, buf, sizeof buf));
  EXPECT_STREQ(buf, "a: 1 != 2\nb: \"x\" != \"y\"\n");
  // ...and this one exactly fills the buffer.
  EXPECT_FALSE(rtCmpInteger("c", 100, 2000, buf, sizeof buf));
  EXPECT_STREQ(buf, "a: 1 != 2\nb: \"x\" != \"y\"\nc: 100 != 2000\n");

  // Without a usable buffer the comparison still answers.
  EXPECT_FALSE(rtCmpInteger("a", 1, 2, nullptr, 0));
  EXPECT_TRUE(rtCmpInteger("a", 1, 1, nullptr, 0));
  char noNul[4] = {'x', 'x', 'x', 'x'};
  EXPECT_FALSE(rtCmpInteger("a", 1, 2, noNul, sizeof noNul));
  EXPECT_EQ(std::string(noNul, 4), "xxxx");
}

TEST(Compare, ToStdoutPrintsTheSameReport) {
  const ASN1OCTET a[] = {1, 2}, b[] = {1, 3};
  const ASN1OBJID x = makeOid({2, 5, 4, 3}), y = makeOid({2, 5, 4, 6});
  Report r;
  rtCmpOctStr("o", 2, a, 2, b, r.buf(), r.size());
  rtCmpOID("oid", &x, &y, r.buf(), r.size());
  rtCmpReal("r", 1.5, rtGetPlusInfinity(), r.buf(), r.size());
  const std::string expected = r.take();

  CaptureStdout();
  EXPECT_TRUE(rtCmpToStdoutInteger("same", 5, 5));
  EXPECT_FALSE(rtCmpToStdoutOctStr("o", 2, a, 2, b));
  EXPECT_FALSE(rtCmpToStdoutOID("oid", &x, &y));
  EXPECT_FALSE(rtCmpToStdoutReal("r", 1.5, rtGetPlusInfinity()));
  EXPECT_EQ(GetCapturedStdout(), expected);
  EXPECT_EQ(expected, "o: '0102'H != '0103'H\noid: 2.5.4.3 != 2.5.4.6\nr: 1.5 != PLUS-INFINITY\n");
}
