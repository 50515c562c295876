// Printing values as "name = value" lines: the exact form of every primitive, indentation and
// blocks, the three sinks (string, file, standard output), all-or-nothing behaviour of a
// buffer that is too small, and hex dumps into a string.
#include <gtest/gtest.h>

#include <quillon/rtPrint.h>
#include <quillon/rtReal.h>
#include <quillon/rtUtil.h>

#include <limits.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include <string>
#include <vector>

using testing::internal::CaptureStdout;
using testing::internal::GetCapturedStdout;

namespace {

// A string sink over its own buffer, large enough for every test's text.
class Printed {
 public:
  Printed() { EXPECT_EQ(rtPrintSinkInitString(&sink_, buf_, sizeof buf_), 0); }
  ASN1PrintSink* sink() { return &sink_; }
  std::string text() const { return buf_; }

 private:
  char buf_[8192] = "";
  ASN1PrintSink sink_;
};

std::vector<ASN1OCTET> counting(size_t n) {
  std::vector<ASN1OCTET> v(n);
  for (size_t i = 0; i < n; ++i) v[i] = static_cast<ASN1OCTET>(i);
  return v;
}

ASN1OBJID makeOid(std::initializer_list<ASN1UINT> arcs) {
  ASN1OBJID oid{};
  for (ASN1UINT arc : arcs) oid.subid[oid.numids++] = arc;
  return oid;
}

// What write puts in a file, read back through a memory stream.
template <typename Write>
std::string writtenToFile(Write write) {
  char* text = nullptr;
  size_t len = 0;
  FILE* fp = open_memstream(&text, &len);
  write(fp);
  fclose(fp);
  std::string out(text, len);
  free(text);
  return out;
}

std::string hexDumpToFile(const ASN1OCTET* data, ASN1UINT n) {
  return writtenToFile([&](FILE* fp) { rtHexDumpToFile(fp, data, n); });
}

}  // namespace

TEST(Print, ScalarsAsNameEqualsValue) {
  Printed p;
  ASN1PrintSink* s = p.sink();
  EXPECT_EQ(rtPrintBoolean(s, 0, "critical", 7), 0);  // any non-zero byte is TRUE
  rtPrintBoolean(s, 0, "critical", 0);
  rtPrintInteger(s, 0, "i", INT32_MIN);
  rtPrintUnsigned(s, 0, "u", UINT32_MAX);
  rtPrintInt64(s, 0, "i64", INT64_MIN);
  rtPrintUInt64(s, 0, "u64", UINT64_MAX);
  rtPrintEnum(s, 0, "reason", 1, "keyCompromise");
  rtPrintEnum(s, 0, "reason", -7, nullptr);
  rtPrintBigInt(s, 0, "serialNumber", "0x00ff3a");
  rtPrintBigInt(s, 0, "serialNumber", nullptr);
  rtPrintNull(s, 0, "parameters");
  rtPrintTag(s, 0, "t", TM_UNIV | TM_CONS | ASN_ID_SEQ);
  rtPrintTag(s, 0, "t", TM_CTXT | 3);
  rtPrintTag(s, 0, "t", TM_APPL | 1);
  rtPrintTag(s, 0, "t", TM_PRIV | TM_CONS | 7);
  rtPrintInteger(s, 0, nullptr, 42);
  EXPECT_EQ(p.text(),
            "critical = TRUE\n"
            "critical = FALSE\n"
            "i = -2147483648\n"
            "u = 4294967295\n"
            "i64 = -9223372036854775808\n"
            "u64 = 18446744073709551615\n"
            "reason = keyCompromise(1)\n"
            "reason = -7\n"
            "serialNumber = 0x00ff3a\n"
            "serialNumber = <null>\n"
            "parameters = NULL\n"
            "t = [UNIVERSAL 16] constructed\n"
            "t = [3]\n"
            "t = [APPLICATION 1]\n"
            "t = [PRIVATE 7] constructed\n"
            "42\n");
  EXPECT_EQ(s->status, 0);
}

TEST(Print, RealsInShortestFormAndSpecialNames) {
  Printed p;
  const double plain[] = {1.5, 0.1, 100, -2.5e-300, 1e100, 123456789012.0, 1e21, 0.00001};
  for (double v : plain) rtPrintReal(p.sink(), 0, "r", v);
  rtPrintReal(p.sink(), 0, "r", rtGetPlusInfinity());
  rtPrintReal(p.sink(), 0, "r", rtGetMinusInfinity());
  rtPrintReal(p.sink(), 0, "r", rtGetNaN());
  rtPrintReal(p.sink(), 0, "r", rtGetMinusZero());
  rtPrintReal(p.sink(), 0, "r", 0.0);
  EXPECT_EQ(p.text(),
            "r = 1.5\nr = 0.1\nr = 100\nr = -2.5e-300\nr = 1e+100\nr = 123456789012\n"
            "r = 1e+21\nr = 1e-05\n"
            "r = PLUS-INFINITY\nr = MINUS-INFINITY\nr = NOT-A-NUMBER\nr = -0\nr = 0\n");

  // Values without a short form still read back exactly, in at most 17 digits.
  const double awkward[] = {1.0 / 3, 2.0 / 3 * 1e-7, 0.1 + 0.2, 5e-324, 1.7976931348623157e308};
  for (double v : awkward) {
    char buf[64] = "";
    ASSERT_EQ(rtPrintToStringReal(0, nullptr, v, buf, sizeof buf), 0);
    EXPECT_EQ(strtod(buf, nullptr), v) << buf;
    EXPECT_LE(strlen(buf), 24u) << buf;
  }
}

TEST(Print, IndentationFollowsLevelWithinBounds) {
  Printed p;
  rtPrintInteger(p.sink(), 3, "x", 1);
  rtPrintInteger(p.sink(), -5, "x", 2);
  rtPrintInteger(p.sink(), 1000, "x", 3);
  // The continuation lines of a value at the deepest level do not go deeper.
  const std::vector<ASN1OCTET> octets = counting(17);
  rtPrintOctStr(p.sink(), INT_MAX, "o", 17, octets.data());
  const std::string deepest(64, ' ');
  EXPECT_EQ(p.text(), "      x = 1\n"
                      "x = 2\n" +
                          deepest + "x = 3\n" + deepest + "o = (17 octets)\n" + deepest +
                          "00 01 02 03 04 05 06 07 08 09 0A 0B 0C 0D 0E 0F\n" + deepest +
                          "10\n");
}

TEST(Print, OctetStringsInlineUpTo16ThenOnLinesOf16) {
  const std::vector<ASN1OCTET> data = counting(40);
  Printed p;
  rtPrintOctStr(p.sink(), 0, "empty", 0, nullptr);
  const ASN1OCTET three[] = {0x00, 0xAB, 0x7F};
  rtPrintOctStr(p.sink(), 0, "keyId", 3, three);
  rtPrintOctStr(p.sink(), 0, "sixteen", 16, data.data());
  rtPrintOctStr(p.sink(), 1, "seventeen", 17, data.data());
  rtPrintOctStr(p.sink(), 0, "forty", 40, data.data());
  EXPECT_EQ(p.text(),
            "empty = ''H\n"
            "keyId = '00AB7F'H\n"
            "sixteen = '000102030405060708090A0B0C0D0E0F'H\n"
            "  seventeen = (17 octets)\n"
            "    00 01 02 03 04 05 06 07 08 09 0A 0B 0C 0D 0E 0F\n"
            "    10\n"
            "forty = (40 octets)\n"
            "  00 01 02 03 04 05 06 07 08 09 0A 0B 0C 0D 0E 0F\n"
            "  10 11 12 13 14 15 16 17 18 19 1A 1B 1C 1D 1E 1F\n"
            "  20 21 22 23 24 25 26 27\n");

  // An open type prints its encoding the same way.
  Printed q;
  const ASN1TOpenType open{3, three};
  rtPrintOpenType(q.sink(), 0, "keyId", &open);
  rtPrintOpenType(q.sink(), 0, "absent", nullptr);
  EXPECT_EQ(q.text(), "keyId = '00AB7F'H\nabsent = <null>\n");
}

TEST(Print, BitStringsShowTheirCountAndMaskUnusedBits) {
  Printed p;
  // The low four bits of 0xCF lie beyond the twelfth bit: they print as zeros.
  const ASN1OCTET twelve[] = {0xA5, 0xCF};
  rtPrintBitStr(p.sink(), 0, "keyUsage", 12, twelve);
  rtPrintBitStr(p.sink(), 0, "one", 1, twelve);
  rtPrintBitStr(p.sink(), 0, "none", 0, nullptr);
  rtPrintBitStrBin(p.sink(), 0, "keyUsage", 12, twelve);
  rtPrintBitStrBin(p.sink(), 0, "none", 0, nullptr);
  const std::vector<ASN1OCTET> ones(17, 0xFF);
  rtPrintBitStr(p.sink(), 0, "b128", 128, ones.data());
  rtPrintBitStr(p.sink(), 0, "b129", 129, ones.data());
  const ASN1OCTET bits70[] = {0xA5, 0x0F, 0xFF, 0x00, 0x81, 0x42, 0x3C, 0x99, 0xFF};
  rtPrintBitStrBin(p.sink(), 1, "b70", 70, bits70);
  EXPECT_EQ(p.text(),
            "keyUsage = 'A5C0'H (12 bits)\n"
            "one = '80'H (1 bit)\n"
            "none = ''H (0 bits)\n"
            "keyUsage = '101001011100'B\n"
            "none = ''B\n"
            "b128 = 'FFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFF'H (128 bits)\n"
            "b129 = (129 bits)\n"
            "  FF FF FF FF FF FF FF FF FF FF FF FF FF FF FF FF\n"
            "  80\n"
            "  b70 = (70 bits)\n"
            "    10100101 00001111 11111111 00000000 10000001 01000010 00111100 10011001\n"
            "    111111\n");
}

TEST(Print, CharacterStringsAsQuotedUtf8WithEscapes) {
  Printed p;
  rtPrintCharStr(p.sink(), 0, "cn", "Example CA");
  // Quote and backslash, a newline, UTF-8 "é" kept, a stray 0xFF byte, the C1 control CSI
  // (U+009B) and a sequence cut short at the end.
  rtPrintCharStr(p.sink(), 0, "s", "a\"b\\c\n\xC3\xA9\xFF\xC2\x9B" "d\xE2\x82");
  rtPrintCharStr(p.sink(), 0, "empty", "");
  rtPrintCharStr(p.sink(), 0, "absent", nullptr);
  ASN1USINT bmpUnits[] = {0x0041, 0x00E9, 0xD800, 0x0022};
  const Asn116BitCharString bmp{4, bmpUnits};
  rtPrint16BitCharStr(p.sink(), 0, "bmp", &bmp);
  ASN1UINT ucsChars[] = {0x1F600, 0x110000, 0x7};
  const Asn132BitCharString ucs{3, ucsChars};
  rtPrint32BitCharStr(p.sink(), 0, "ucs", &ucs);
  const Asn116BitCharString emptyBmp{0, nullptr};
  rtPrint16BitCharStr(p.sink(), 0, "bmp", &emptyBmp);
  EXPECT_EQ(p.text(),
            "cn = \"Example CA\"\n"
            "s = \"a\\\"b\\\\c\\u000A\xC3\xA9\\xFF\\u009Bd\\xE2\\x82\"\n"
            "empty = \"\"\n"
            "absent = <null>\n"
            "bmp = \"A\xC3\xA9\\uD800\\\"\"\n"
            "ucs = \"\xF0\x9F\x98\x80\\U00110000\\u0007\"\n"
            "bmp = \"\"\n");
  EXPECT_EQ(p.sink()->status, 0);
}

TEST(Print, ObjectIdentifiersDotted) {
  Printed p;
  const ASN1OBJID rsa = makeOid({1, 2, 840, 113549, 1, 1, 11});
  rtPrintOID(p.sink(), 0, "algorithm", &rsa);
  const ASN1OID64 big = {3, {2, 999, 1ULL << 40}};
  rtPrintOID64(p.sink(), 0, "oid64", &big);
  rtPrintOID(p.sink(), 0, "absent", nullptr);
  EXPECT_EQ(p.text(),
            "algorithm = 1.2.840.113549.1.1.11\n"
            "oid64 = 2.999.1099511627776\n"
            "absent = <null>\n");

  // The longest identifier the record can hold prints in full.
  ASN1OBJID longest{};
  longest.numids = ASN_K_MAXSUBIDS;
  for (ASN1UINT& arc : longest.subid) arc = UINT32_MAX;
  ASN1OID64 longest64{};
  longest64.numids = ASN_K_MAXSUBIDS;
  for (ASN1UINT64& arc : longest64.subid) arc = UINT64_MAX;
  Printed q;
  EXPECT_EQ(rtPrintOID(q.sink(), 0, nullptr, &longest), 0);
  EXPECT_EQ(rtPrintOID64(q.sink(), 0, nullptr, &longest64), 0);
  std::string expected, expected64;
  for (int i = 0; i < ASN_K_MAXSUBIDS; ++i) {
    expected += (i ? ".4294967295" : "4294967295");
    expected64 += (i ? ".18446744073709551615" : "18446744073709551615");
  }
  EXPECT_EQ(q.text(), expected + "\n" + expected64 + "\n");
}

TEST(Print, FaultyRecordsStillPrintALineAndReportTheirStatus) {
  Printed p;
  ASN1OBJID oid{};
  EXPECT_EQ(rtPrintOID(p.sink(), 0, "noArcs", &oid), ASN_E_INVOBJID);
  oid.numids = ASN_K_MAXSUBIDS + 1;
  EXPECT_EQ(rtPrintOID(p.sink(), 0, "tooMany", &oid), ASN_E_INVOBJID);
  const Asn116BitCharString bmp{3, nullptr};
  EXPECT_EQ(rtPrint16BitCharStr(p.sink(), 0, "bmp", &bmp), ASN_E_INVPARAM);
  EXPECT_EQ(rtPrintOctStr(p.sink(), 0, "octets", 40, nullptr), ASN_E_INVPARAM);
  EXPECT_EQ(rtPrintBitStr(p.sink(), 0, "bits", 300, nullptr), ASN_E_INVPARAM);
  EXPECT_EQ(rtPrintBitStrBin(p.sink(), 0, "bits", 3, nullptr), ASN_E_INVPARAM);
  EXPECT_EQ(rtPrintInteger(p.sink(), 0, "after", 1), 0);
  EXPECT_EQ(p.text(),
            "noArcs = <invalid object identifier>\n"
            "tooMany = <invalid object identifier>\n"
            "bmp = <invalid value>\n"
            "octets = <invalid value>\n"
            "bits = <invalid value>\n"
            "bits = <invalid value>\n"
            "after = 1\n");
  EXPECT_EQ(p.sink()->status, ASN_E_INVOBJID) << "the first failure is kept";
  EXPECT_FALSE(p.sink()->full);
}

// The calls a generated printer makes for a structure with a nested one.
TEST(Print, BlocksNestComponentsOneLevelDeeper) {
  Printed p;
  const ASN1OBJID sha256 = makeOid({2, 16, 840, 1, 101, 3, 4, 2, 1});
  rtPrintOpenBrace(p.sink(), 0, "tbsCertificate");
  rtPrintInteger(p.sink(), 1, "version", 2);
  rtPrintOpenBrace(p.sink(), 1, "signature");
  rtPrintOID(p.sink(), 2, "algorithm", &sha256);
  rtPrintNull(p.sink(), 2, "parameters");
  rtPrintCloseBrace(p.sink(), 1);
  rtPrintOpenBrace(p.sink(), 1, nullptr);
  rtPrintCloseBrace(p.sink(), 1);
  rtPrintCloseBrace(p.sink(), 0);
  EXPECT_EQ(p.text(),
            "tbsCertificate {\n"
            "  version = 2\n"
            "  signature {\n"
            "    algorithm = 2.16.840.1.101.3.4.2.1\n"
            "    parameters = NULL\n"
            "  }\n"
            "  {\n"
            "  }\n"
            "}\n");
}

TEST(Print, StringSinkIsAllOrNothingAndStopsWhenFull) {
  char buf[32] = "abc\n";
  ASN1PrintSink sink;
  ASSERT_EQ(rtPrintSinkInitString(&sink, buf, sizeof buf), 0);
  EXPECT_EQ(sink.length, 4u);
  EXPECT_EQ(rtPrintUnsigned(&sink, 0, "value", 123456789), 0);  // 18 characters: 22 in all
  EXPECT_STREQ(buf, "abc\nvalue = 123456789\n");
  // A value whose text would end in the middle of the buffer leaves no part of it behind.
  const std::vector<ASN1OCTET> octets = counting(20);
  EXPECT_EQ(rtPrintOctStr(&sink, 0, "o", 20, octets.data()), ASN_E_STROVFLW);
  EXPECT_STREQ(buf, "abc\nvalue = 123456789\n");
  EXPECT_EQ(sink.length, 22u);
  EXPECT_TRUE(sink.full);
  EXPECT_EQ(sink.status, ASN_E_STROVFLW);
  // A full sink takes nothing more, not even a line that would fit.
  EXPECT_EQ(rtPrintNull(&sink, 0, nullptr), ASN_E_STROVFLW);
  EXPECT_STREQ(buf, "abc\nvalue = 123456789\n");

  // The text and its NUL exactly fill the buffer; one byte less is refused.
  char exact[7] = "";
  EXPECT_EQ(rtPrintToStringInteger(0, "n", 5, exact, sizeof exact), 0);
  EXPECT_STREQ(exact, "n = 5\n");
  char shortBuf[6] = "";
  EXPECT_EQ(rtPrintToStringInteger(0, "n", 5, shortBuf, sizeof shortBuf), ASN_E_STROVFLW);
  EXPECT_STREQ(shortBuf, "");
}

TEST(Print, ToStringAppendsAndRefusesBuffersWithoutText) {
  char buf[128] = "";
  const ASN1OBJID oid = makeOid({2, 5, 29, 19});
  EXPECT_EQ(rtPrintToStringOpenBrace(0, "ext", buf, sizeof buf), 0);
  EXPECT_EQ(rtPrintToStringOID(1, "extnID", &oid, buf, sizeof buf), 0);
  EXPECT_EQ(rtPrintToStringBoolean(1, "critical", 1, buf, sizeof buf), 0);
  EXPECT_EQ(rtPrintToStringCloseBrace(0, buf, sizeof buf), 0);
  EXPECT_STREQ(buf, "ext {\n  extnID = 2.5.29.19\n  critical = TRUE\n}\n");

  char noNul[8];
  memset(noNul, 'x', sizeof noNul);
  EXPECT_EQ(rtPrintToStringNull(0, "n", noNul, sizeof noNul), ASN_E_INVPARAM);
  EXPECT_EQ(std::string(noNul, sizeof noNul), "xxxxxxxx");
  EXPECT_EQ(rtPrintToStringNull(0, "n", nullptr, 64), ASN_E_INVPARAM);
  ASN1PrintSink sink;
  EXPECT_EQ(rtPrintSinkInitString(&sink, noNul, sizeof noNul), ASN_E_INVPARAM);
  EXPECT_EQ(rtPrintNull(&sink, 0, "n"), 0) << "a sink that failed to set up discards its text";
  EXPECT_EQ(std::string(noNul, sizeof noNul), "xxxxxxxx");
}

// One formatter, three destinations: each receives the same text.
TEST(Print, FileAndStandardOutputReceiveTheStringSinksText) {
  const std::vector<ASN1OCTET> octets = counting(33);
  const ASN1OCTET bits[] = {0x80};
  auto printAll = [&](ASN1PrintSink* sink) {
    int stat = rtPrintOpenBrace(sink, 0, "v");
    if (stat == 0) stat = rtPrintOctStr(sink, 1, "o", 33, octets.data());
    if (stat == 0) stat = rtPrintBitStrBin(sink, 1, "b", 1, bits);
    if (stat == 0) stat = rtPrintCharStr(sink, 1, "s", "x\ty");
    if (stat == 0) stat = rtPrintCloseBrace(sink, 0);
    return stat;
  };
  Printed p;
  ASSERT_EQ(printAll(p.sink()), 0);
  EXPECT_EQ(p.text(),
            "v {\n"
            "  o = (33 octets)\n"
            "    00 01 02 03 04 05 06 07 08 09 0A 0B 0C 0D 0E 0F\n"
            "    10 11 12 13 14 15 16 17 18 19 1A 1B 1C 1D 1E 1F\n"
            "    20\n"
            "  b = '1'B\n"
            "  s = \"x\\u0009y\"\n"
            "}\n");
  EXPECT_EQ(writtenToFile([&](FILE* fp) {
              ASN1PrintSink sink;
              rtPrintSinkInitFile(&sink, fp);
              EXPECT_EQ(printAll(&sink), 0);
            }),
            p.text());
  CaptureStdout();
  const int stat = printAll(nullptr);
  EXPECT_EQ(GetCapturedStdout(), p.text());
  EXPECT_EQ(stat, 0);
}

TEST(Print, FileWriteFailureIsReported) {
  FILE* readOnly = fopen("/dev/null", "r");
  ASSERT_NE(readOnly, nullptr);
  ASN1PrintSink sink;
  rtPrintSinkInitFile(&sink, readOnly);
  EXPECT_EQ(rtPrintInteger(&sink, 0, "n", 1), ASN_E_FILEWRITE);
  EXPECT_EQ(sink.status, ASN_E_FILEWRITE);
  fclose(readOnly);
}

TEST(HexDumpToString, SameLinesAsTheFileDump) {
  std::vector<ASN1OCTET> data = counting(40);
  data[1] = 'A';
  data[2] = 0x7F;
  char buf[1024] = "";
  ASSERT_EQ(rtHexDumpToString(data.data(), 17, buf, sizeof buf), 0);
  EXPECT_STREQ(buf,
               "00000000  00 41 7f 03 04 05 06 07  08 09 0a 0b 0c 0d 0e 0f  |.A..............|\n"
               "00000010  10                                                |.|\n");
  for (ASN1UINT n : {0u, 1u, 15u, 16u, 17u, 40u}) {
    buf[0] = '\0';
    ASSERT_EQ(rtHexDumpToString(data.data(), n, buf, sizeof buf), 0) << n;
    EXPECT_EQ(buf, hexDumpToFile(data.data(), n)) << n;
  }
}

TEST(HexDumpToString, AppendsWholeOrNotAtAll) {
  const std::vector<ASN1OCTET> data = counting(20);
  const std::string dump = hexDumpToFile(data.data(), 20);
  ASSERT_EQ(dump.size(), 2 * 63 + 20u);
  // The prefix, the dump and the NUL exactly fill the buffer; one byte less is refused.
  std::vector<char> buf(3 + dump.size() + 1);
  strcpy(buf.data(), "hd\n");
  EXPECT_EQ(rtHexDumpToString(data.data(), 20, buf.data(), buf.size() - 1), ASN_E_STROVFLW);
  EXPECT_STREQ(buf.data(), "hd\n");
  EXPECT_EQ(rtHexDumpToString(data.data(), 20, buf.data(), buf.size()), 0);
  EXPECT_EQ(std::string(buf.data()), "hd\n" + dump);

  char noNul[4] = {'a', 'b', 'c', 'd'};
  EXPECT_EQ(rtHexDumpToString(data.data(), 1, noNul, sizeof noNul), ASN_E_INVPARAM);
  EXPECT_EQ(rtHexDumpToString(nullptr, 1, buf.data(), buf.size()), ASN_E_INVPARAM);
  EXPECT_EQ(rtHexDumpToString(data.data(), 1, nullptr, 64), ASN_E_INVPARAM);
}
