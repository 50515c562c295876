// Every value writer's exact text: numbers, big integers, REAL forms, booleans and NULL, octet
// and bit strings in hexadecimal, binary and base64, identifiers, character strings with their
// escapes and UTF-8, named values, open types and times. Long values are checked against
// independent references so that the staging of long content is covered.
#include <gtest/gtest.h>

#include <quillon/asn1xer.h>
#include <quillon/rtBase64.h>
#include <quillon/rtUTF8.h>

#include <limits.h>
#include <math.h>
#include <stdint.h>
#include <stdlib.h>

#include <limits>
#include <random>
#include <string>
#include <vector>

#include "xer_encode_harness.h"

namespace {

using Octets = std::vector<ASN1OCTET>;

Octets randomOctets(size_t n, unsigned seed) {
  std::mt19937 gen(seed);
  Octets out(n);
  for (auto& o : out) o = (ASN1OCTET)gen();
  return out;
}

// The content between the first ">" and the last "</", for long values.
std::string contentOf(const std::string& element) {
  size_t open = element.find('>');
  size_t close = element.rfind("</");
  return element.substr(open + 1, close - open - 1);
}

std::string referenceEscape(const std::string& text) {
  std::string out;
  for (char ch : text) {
    switch (ch) {
      case '&': out += "&amp;"; break;
      case '<': out += "&lt;"; break;
      case '>': out += "&gt;"; break;
      case '"': out += "&quot;"; break;
      case '\'': out += "&apos;"; break;
      case '\b': out += "\\b"; break;
      case '\t': out += "\\t"; break;
      case '\n': out += "\\n"; break;
      case '\f': out += "\\f"; break;
      case '\r': out += "\\r"; break;
      default: out += ch;
    }
  }
  return out;
}

// Decimal text of a hexadecimal number by schoolbook arithmetic on decimal digits.
std::string referenceHexToDecimal(const std::string& hex) {
  std::vector<int> digits{0};  // least significant first
  for (char h : hex) {
    int carry = h <= '9' ? h - '0' : (h | 0x20) - 'a' + 10;
    for (int& d : digits) {
      int v = d * 16 + carry;
      d = v % 10;
      carry = v / 10;
    }
    for (; carry; carry /= 10) digits.push_back(carry % 10);
  }
  std::string out;
  for (auto it = digits.rbegin(); it != digits.rend(); ++it) out += (char)('0' + *it);
  return out;
}

TEST(XerEncValues, IntegersAtTheirLimits) {
  XerOut out;
  EXPECT_EQ(out.written([](ASN1CTXT* c) { return xerEncInt(c, INT_MIN, nullptr); }),
            "\n<INTEGER>-2147483648</INTEGER>");
  EXPECT_EQ(out.ctxt()->xmlState, XERENDTAG);
  EXPECT_EQ(out.written([](ASN1CTXT* c) { return xerEncInt(c, 0, "zero"); }),
            "\n<zero>0</zero>");
  EXPECT_EQ(out.written([](ASN1CTXT* c) { return xerEncUInt(c, UINT_MAX, nullptr); }),
            "\n<INTEGER>4294967295</INTEGER>");
  EXPECT_EQ(out.written([](ASN1CTXT* c) { return xerEncInt64(c, INT64_MIN, "n"); }),
            "\n<n>-9223372036854775808</n>");
  EXPECT_EQ(out.written([](ASN1CTXT* c) { return xerEncUInt64(c, UINT64_MAX, "n"); }),
            "\n<n>18446744073709551615</n>");
}

TEST(XerEncValues, BigIntegerTexts) {
  XerOut out;
  auto big = [&](const char* text) {
    return out.written([text](ASN1CTXT* c) { return xerEncBigInt(c, text, "v"); });
  };
  // Zero loses every digit, deliberately, and so does an empty text; other radixes are
  // converted to decimal.
  const char* cases[][2] = {{"123456789012345678901234567890", "123456789012345678901234567890"},
                            {"-000123", "-123"}, {"0", ""}, {"-0", ""}, {"000", ""}, {"", ""},
                            {"0xFF", "255"}, {"0b1010", "10"}, {"0o777", "511"},
                            {"-0x10", "-16"}, {"0x00", ""}};
  for (const auto& c : cases) EXPECT_EQ(big(c[0]), "\n<v>" + std::string(c[1]) + "</v>") << c[0];
  const std::string pow256 = "0x1" + std::string(64, '0');
  EXPECT_EQ(big(pow256.c_str()),
            "\n<v>115792089237316195423570985008687907853269984665640564039457584007913129639936"
            "</v>");
  EXPECT_EQ(out.written([](ASN1CTXT* c) { return xerEncBigInt(c, "7", nullptr); }),
            "\n<INTEGER>7</INTEGER>");

  // Malformed texts fail before anything is written.
  for (const char* bad : {"12a", "1 2", "+5", "--1", "0x", "0xG1", "0b102"}) {
    XerOut fresh;
    EXPECT_EQ(xerEncBigInt(fresh.ctxt(), bad, "v"), ASN_E_BADVALUE) << bad;
    EXPECT_EQ(fresh.text(), "") << bad;
  }
  XerOut fresh;
  EXPECT_EQ(xerEncBigInt(fresh.ctxt(), nullptr, "v"), ASN_E_INVPARAM);
  EXPECT_EQ(fresh.context().errorModule(), "rtxersrc/xerEncBigInt");
}

TEST(XerEncValues, BigIntegerBeyondTheLocalDigits) {
  // About 1300 decimal digits: the conversion needs heap memory.
  std::string hex(1080, '0');
  std::mt19937 gen(7);
  for (char& h : hex) h = "0123456789abcdef"[gen() % 16];
  hex[0] = 'f';
  XerOut out;
  std::string text = out.written(
      [&](ASN1CTXT* c) { return xerEncBigInt(c, ("0x" + hex).c_str(), "v"); });
  const std::string expected = referenceHexToDecimal(hex);
  ASSERT_GT(expected.size(), 1000u);
  EXPECT_EQ(contentOf(text), expected);
}

TEST(XerEncValues, RealForms) {
  XerOut out;
  auto xer = [&](double v) {
    return contentOf(out.written([v](ASN1CTXT* c) { return xerEncReal(c, v, "r"); }));
  };
  auto xml = [&](double v) {
    return contentOf(out.written([v](ASN1CTXT* c) { return xmlEncReal(c, v, "r"); }));
  };
  const double inf = std::numeric_limits<double>::infinity();
  const double nan = std::numeric_limits<double>::quiet_NaN();

  // 1e300 is printed ...5250E+300 with its trailing zero dropped. The basic rules have no
  // text for NaN or minus zero: both are written as zero, deliberately.
  const std::pair<double, const char*> xerCases[] = {
      {123.45, "1.23450000000000002842E+2"}, {1.0, "1.0E+0"}, {0.5, "5.0E-1"},
      {0.001, "1.00000000000000002082E-3"}, {-2.5, "-2.5E+0"},
      {1e300, "1.0000000000000000525E+300"}, {0.0, "0"}, {-0.0, "0"}, {nan, "0"},
      {inf, "<PLUS-INFINITY/>"}, {-inf, "<MINUS-INFINITY/>"}};
  for (const auto& c : xerCases) EXPECT_EQ(xer(c.first), c.second) << c.first;
  EXPECT_EQ(out.written([](ASN1CTXT* c) { return xerEncReal(c, 2.0, nullptr); }),
            "\n<REAL>2.0E+0</REAL>");
  const std::pair<double, const char*> xmlCases[] = {
      {1.0, "1.0E0"}, {0.5, "5.0E-1"}, {123.45, "1.23450000000000002842E2"},
      {-1e-300, "-1.00000000000000002506E-300"}, {0.0, "0"}, {-0.0, "-0"}, {inf, "INF"},
      {-inf, "-INF"}, {nan, "NaN"}};
  for (const auto& c : xmlCases) EXPECT_EQ(xml(c.first), c.second) << c.first;
}

TEST(XerEncValues, RealTextReadsBackExactly) {
  std::mt19937_64 gen(11);
  XerOut out;
  for (int i = 0; i < 2000; ++i) {
    uint64_t bits = gen();
    double v;
    memcpy(&v, &bits, sizeof v);
    if (!isfinite(v) || v == 0) continue;
    std::string text = contentOf(out.written([v](ASN1CTXT* c) { return xerEncReal(c, v, "r"); }));
    EXPECT_EQ(strtod(text.c_str(), nullptr), v) << text;
    // Trailing zeros of the mantissa are gone, but one digit stays after the point.
    size_t e = text.find('E');
    ASSERT_NE(e, std::string::npos) << text;
    EXPECT_TRUE(text[e - 1] != '0' || text[e - 2] == '.') << text;
    EXPECT_TRUE(text[e + 1] == '+' || text[e + 1] == '-') << text;
    EXPECT_TRUE(text[e + 2] != '0' || text.size() == e + 3) << text;
  }
}

TEST(XerEncValues, BooleansAndNull) {
  XerOut out;
  EXPECT_EQ(out.written([](ASN1CTXT* c) { return xerEncBool(c, 1, nullptr); }),
            "\n<BOOLEAN><true/></BOOLEAN>");
  EXPECT_EQ(out.written([](ASN1CTXT* c) { return xerEncBool(c, 0, "b"); }),
            "\n<b><false/></b>");
  EXPECT_EQ(out.written([](ASN1CTXT* c) { return xmlEncBool(c, 7, "b"); }), "\n<b>true</b>");
  EXPECT_EQ(out.written([](ASN1CTXT* c) { return xmlEncBool(c, 0, nullptr); }),
            "\n<BOOLEAN>false</BOOLEAN>");
  EXPECT_EQ(out.written([](ASN1CTXT* c) { return xerEncBoolValue(c, 1); }), "<true/>");
  EXPECT_EQ(out.ctxt()->xmlState, XERDATA);
  EXPECT_EQ(out.written([](ASN1CTXT* c) { return xmlEncBoolValue(c, 0); }), "false");
  EXPECT_EQ(out.written([](ASN1CTXT* c) { return xerEncNull(c, nullptr); }), "\n<NULL/>");
  EXPECT_EQ(out.ctxt()->xmlState, XERENDTAG);
}

TEST(XerEncValues, OctetStrings) {
  XerOut out;
  static const ASN1OCTET bytes[] = {0x00, 0x9F, 0xAB, 0x10};
  EXPECT_EQ(out.written([](ASN1CTXT* c) { return xerEncOctStr(c, 4, bytes, nullptr); }),
            "\n<OCTET_STRING>009FAB10</OCTET_STRING>");
  EXPECT_EQ(out.written([](ASN1CTXT* c) { return xerEncOctStr(c, 0, nullptr, "o"); }),
            "\n<o/>");
  EXPECT_EQ(out.ctxt()->xmlState, XERENDTAG);
  EXPECT_EQ(out.written([](ASN1CTXT* c) { return xerEncHexStrValue(c, 2, bytes + 1); }),
            "9FAB");
  EXPECT_EQ(out.ctxt()->xmlState, XERDATA);
  EXPECT_EQ(xerEncOctStr(out.ctxt(), 1, nullptr, "o"), ASN_E_INVPARAM);

  // Long content crosses many stage blocks, starting at an odd offset within one.
  Octets data = randomOctets(5001, 3);
  std::string expected;
  char pair[3];
  for (ASN1OCTET o : data) {
    snprintf(pair, sizeof pair, "%02X", o);
    expected += pair;
  }
  std::string text = out.written([&](ASN1CTXT* c) {
    return xerEncOctStr(c, (ASN1UINT)data.size(), data.data(), "a-longer-element-name");
  });
  EXPECT_EQ(contentOf(text), expected);
}

TEST(XerEncValues, Base64) {
  XerOut out;
  auto b64 = [&](const std::string& s) {
    return out.written([&s](ASN1CTXT* c) {
      return xerEncBase64Str(c, (ASN1UINT)s.size(), (const ASN1OCTET*)s.data(), nullptr);
    });
  };
  EXPECT_EQ(b64(""), "\n<OCTET_STRING/>");
  EXPECT_EQ(b64("f"), "\n<OCTET_STRING>Zg==</OCTET_STRING>");
  EXPECT_EQ(b64("fo"), "\n<OCTET_STRING>Zm8=</OCTET_STRING>");
  EXPECT_EQ(b64("foo"), "\n<OCTET_STRING>Zm9v</OCTET_STRING>");
  EXPECT_EQ(b64("foobar"), "\n<OCTET_STRING>Zm9vYmFy</OCTET_STRING>");

  // Long values come out as one unbroken run that decodes to the octets: block boundaries
  // inside must not add padding or line breaks.
  for (size_t n : {95u, 96u, 97u, 1000u, 4099u}) {
    Octets data = randomOctets(n, (unsigned)n);
    std::string text = contentOf(out.written([&](ASN1CTXT* c) {
      return xerEncBase64Str(c, (ASN1UINT)n, data.data(), "b");
    }));
    EXPECT_EQ(text.size(), rtBase64EncodedLen(n));
    EXPECT_EQ(text.find_first_of("\n\r "), std::string::npos);
    size_t pad = text.find('=');
    EXPECT_TRUE(pad == std::string::npos || pad >= text.size() - 2) << n;
    Octets back(n);
    EXPECT_EQ(rtBase64Decode(out.ctxt(), text.data(), text.size(), back.data(), n), (int)n);
    EXPECT_EQ(back, data) << n;
  }
}

TEST(XerEncValues, BitStrings) {
  XerOut out;
  static const ASN1OCTET bits[] = {0xA5, 0xC0};
  EXPECT_EQ(out.written([](ASN1CTXT* c) { return xerEncBitStr(c, 10, bits, nullptr, ASN1BIN); }),
            "\n<BIT_STRING>1010010111</BIT_STRING>");
  EXPECT_EQ(out.written([](ASN1CTXT* c) { return xerEncBitStr(c, 12, bits, "k", ASN1HEX); }),
            "\n<k form=\"hex\">A5C0</k>");
  EXPECT_EQ(out.written([](ASN1CTXT* c) { return xmlEncBitStr(c, 3, bits, "k"); }),
            "\n<k>101</k>");
  EXPECT_EQ(out.written([](ASN1CTXT* c) { return xerEncBinStrValue(c, 4, bits); }), "1010");
  EXPECT_EQ(out.ctxt()->xmlState, XERDATA);

  // No bits: an empty element, whatever the form; the hexadecimal form keeps its attribute.
  EXPECT_EQ(out.written([](ASN1CTXT* c) { return xerEncBitStr(c, 0, nullptr, nullptr, ASN1HEX); }),
            "\n<BIT_STRING form=\"hex\"/>");
  EXPECT_EQ(out.written([](ASN1CTXT* c) { return xerEncBitStr(c, 0, nullptr, nullptr, ASN1BIN); }),
            "\n<BIT_STRING/>");
  EXPECT_EQ(out.ctxt()->xmlState, XERENDTAG);
  EXPECT_EQ(out.written([](ASN1CTXT* c) {
              return xerEncBitStr(c, 8, bits, nullptr, (ASN1StrType)2);
            }),
            "status -30");

  // Binary digits of a long string against the bits read one by one.
  Octets data = randomOctets(700, 5);
  const ASN1UINT n = 5555;
  std::string expected;
  for (ASN1UINT i = 0; i < n; ++i) expected += ((data[i / 8] >> (7 - i % 8)) & 1) ? '1' : '0';
  EXPECT_EQ(contentOf(out.written([&](ASN1CTXT* c) {
              return xerEncBitStr(c, n, data.data(), "b", ASN1BIN);
            })),
            expected);
}

TEST(XerEncValues, ObjectIdentifiers) {
  XerOut out;
  auto oid = [&](std::initializer_list<ASN1UINT> arcs) {
    ASN1OBJID v{};
    for (ASN1UINT a : arcs) v.subid[v.numids++] = a;
    return out.written([&v](ASN1CTXT* c) { return xerEncObjId(c, &v, nullptr); });
  };
  EXPECT_EQ(oid({1, 2, 840, 113549, 1, 1, 11}),
            "\n<OBJECT_IDENTIFIER>1.2.840.113549.1.1.11</OBJECT_IDENTIFIER>");
  EXPECT_EQ(oid({2, 100, 3}), "\n<OBJECT_IDENTIFIER>2.100.3</OBJECT_IDENTIFIER>");
  EXPECT_EQ(oid({0, 39}), "\n<OBJECT_IDENTIFIER>0.39</OBJECT_IDENTIFIER>");
  // Invalid values fail before anything is written.
  EXPECT_EQ(oid({1, 40}), "status -4");
  EXPECT_EQ(out.text(), "");
  EXPECT_EQ(oid({1}), "status -4");
  EXPECT_EQ(oid({3, 1}), "status -4");
  EXPECT_EQ(oid({}), "status -4");
  EXPECT_EQ(out.context().errorModule(), "rtxersrc/xerEncObjId");
  ASN1OBJID tooLong{};
  tooLong.numids = ASN_K_MAXSUBIDS + 1;
  EXPECT_EQ(xerEncObjId(out.ctxt(), &tooLong, nullptr), ASN_E_INVOBJID);

  ASN1OID64 wide = {3, {2, 999, 0xFFFFFFFFFFull}};
  EXPECT_EQ(out.written([&](ASN1CTXT* c) { return xerEncObjId64(c, &wide, "o"); }),
            "\n<o>2.999.1099511627775</o>");
  wide.subid[0] = 1;
  EXPECT_EQ(out.written([&](ASN1CTXT* c) { return xerEncObjId64(c, &wide, "o"); }), "status -4");

  // Relative identifiers are not checked against the first-arc rules; arcs are unsigned.
  ASN1OBJID rel{};
  EXPECT_EQ(out.written([&](ASN1CTXT* c) { return xerEncRelativeOID(c, &rel, nullptr); }),
            "\n<RELATIVE_OID></RELATIVE_OID>");
  rel = {3, {99, 0, 3000000000u}};
  EXPECT_EQ(out.written([&](ASN1CTXT* c) { return xerEncRelativeOID(c, &rel, "r"); }),
            "\n<r>99.0.3000000000</r>");
  rel.numids = ASN_K_MAXSUBIDS + 1;
  EXPECT_EQ(xerEncRelativeOID(out.ctxt(), &rel, "r"), ASN_E_INVOBJID);
}

TEST(XerEncValues, CharacterStringsAreEscaped) {
  XerOut out;
  EXPECT_EQ(out.written([](ASN1CTXT* c) {
              return xerEncAscCharStr(c, "a<b&c>'d\"e\tf\ng\rh\bi\fj\x01\xC3\xA9", "s");
            }),
            "\n<s>a&lt;b&amp;c&gt;&apos;d&quot;e\\tf\\ng\\rh\\bi\\fj\x01\xC3\xA9</s>");
  EXPECT_EQ(out.written([](ASN1CTXT* c) { return xerEncAscCharStr(c, nullptr, "s"); }),
            "\n<s></s>");
  EXPECT_EQ(out.written([](ASN1CTXT* c) { return xerEncAscCharStr(c, "x", nullptr); }),
            "status -30");
  EXPECT_EQ(out.written([](ASN1CTXT* c) { return xerPutCharStr(c, "<<>>", 2); }), "&lt;&lt;");
  EXPECT_EQ(out.written([](ASN1CTXT* c) { return xerPutCharStr(c, nullptr, 0); }), "");

  // Escapes landing on every position of the stage blocks.
  std::mt19937 gen(9);
  const char alphabet[] = "abc&<>\"'\b\t\n\f\r\x7F\xFF";
  std::string text;
  for (int i = 0; i < 4000; ++i) text += alphabet[gen() % (sizeof alphabet - 1)];
  EXPECT_EQ(contentOf(out.written([&](ASN1CTXT* c) {
              return xerEncAscCharStr(c, text.c_str(), "s");
            })),
            referenceEscape(text));
}

TEST(XerEncValues, WideCharactersAsUtf8) {
  XerOut out;
  auto ch = [&](ASN1UINT c) {
    return out.written([c](ASN1CTXT* ctxt) { return xerEncChar(ctxt, c); });
  };
  // Beyond the Unicode range the old five and six-byte forms continue the pattern.
  const std::pair<ASN1UINT, const char*> cases[] = {
      {'A', "A"}, {'<', "&lt;"}, {'\t', "\\t"}, {0x7F, "\x7F"}, {0x80, "\xC2\x80"},
      {0x7FF, "\xDF\xBF"}, {0x800, "\xE0\xA0\x80"}, {0xFFFF, "\xEF\xBF\xBF"},
      {0x10000, "\xF0\x90\x80\x80"}, {0x1FFFFF, "\xF7\xBF\xBF\xBF"},
      {0x200000, "\xF8\x88\x80\x80\x80"}, {0x3FFFFFF, "\xFB\xBF\xBF\xBF\xBF"},
      {0x4000000, "\xFC\x84\x80\x80\x80\x80"}, {0x7FFFFFFF, "\xFD\xBF\xBF\xBF\xBF\xBF"}};
  for (const auto& c : cases) EXPECT_EQ(ch(c.first), c.second) << std::hex << c.first;

  // Every scalar value of a sample across the planes reads back through the UTF-8 decoder.
  std::vector<ASN1UINT> chars;
  for (ASN1UINT c = 0x80; c < 0x110000; c += 0x3F1)
    if (c < 0xD800 || c > 0xDFFF) chars.push_back(c);
  Asn132BitCharString univ{(ASN1UINT)chars.size(), chars.data()};
  std::string text = contentOf(
      out.written([&](ASN1CTXT* c) { return xerEncUnivStr(c, &univ, nullptr); }));
  size_t pos = 0;
  for (ASN1UINT expected : chars) {
    ASSERT_EQ(rtUTF8DecodeChar(out.ctxt(), text.data(), text.size(), &pos), (int)expected);
  }
  EXPECT_EQ(pos, text.size());
}

TEST(XerEncValues, SixteenAndThirtyTwoBitStrings) {
  XerOut out;
  ASN1USINT bmp[] = {'H', '&', 0x00E9, 0x4E2D, 0};
  Asn116BitCharString b{4, bmp};
  EXPECT_EQ(out.written([&](ASN1CTXT* c) { return xerEncBMPStr(c, &b, nullptr); }),
            "\n<BMPString>H&amp;\xC3\xA9\xE4\xB8\xAD</BMPString>");
  ASN1UINT ucs[] = {0x1F600, '>'};
  Asn132BitCharString u{2, ucs};
  EXPECT_EQ(out.written([&](ASN1CTXT* c) { return xerEncUnivStr(c, &u, "u"); }),
            "\n<u>\xF0\x9F\x98\x80&gt;</u>");
  Asn116BitCharString empty{0, nullptr};
  EXPECT_EQ(out.written([&](ASN1CTXT* c) { return xerEncBMPStr(c, &empty, "e"); }),
            "\n<e></e>");
  Asn116BitCharString broken{3, nullptr};
  EXPECT_EQ(out.written([&](ASN1CTXT* c) { return xerEncBMPStr(c, &broken, "e"); }),
            "status -30");

  // NUL-terminated 16-bit text, and content without tags.
  EXPECT_EQ(out.written([&](ASN1CTXT* c) { return xerEncUniCharStr(c, bmp, "t"); }),
            "\n<t>H&amp;\xC3\xA9\xE4\xB8\xAD</t>");
  EXPECT_EQ(out.written([&](ASN1CTXT* c) { return xerEncUniCharStr(c, bmp, nullptr); }),
            "status -30");
  EXPECT_EQ(out.written([&](ASN1CTXT* c) { return xerEncUniCharData(c, bmp + 2, 2); }),
            "\xC3\xA9\xE4\xB8\xAD");
  EXPECT_EQ(out.ctxt()->xmlState, XERDATA);
}

TEST(XerEncValues, NamedValuesAndEnumerations) {
  XerOut out;
  ASN1CTXT* c = out.ctxt();
  ASSERT_EQ(xerEncStartElement(c, "TBSCertificate", nullptr), 0);
  c->xmlLevel++;
  ASSERT_EQ(xerEncNamedValue(c, "v3", "version", nullptr), 0);
  ASSERT_EQ(xmlEncNamedValue(c, "keyCertSign", "usage", "a=\"b\""), 0);
  c->xmlLevel--;
  ASSERT_EQ(xerEncEndElement(c, "TBSCertificate"), 0);
  EXPECT_EQ(out.text(),
            "\n<TBSCertificate>\n   <version><v3/></version>"
            "\n   <usage a=\"b\">keyCertSign</usage>\n</TBSCertificate>");
  EXPECT_EQ(out.written([](ASN1CTXT* c) { return xmlEncEnum(c, "green"); }), "green");
  EXPECT_EQ(c->xmlState, XERDATA);
}

TEST(XerEncValues, OpenTypesAreCopiedRaw) {
  XerOut out;
  ASN1CTXT* c = out.ctxt();
  const std::string inner = "<Inner>a&amp;b</Inner>";
  const ASN1OCTET* data = (const ASN1OCTET*)inner.data();
  ASSERT_EQ(xerEncStartElement(c, "Outer", nullptr), 0);
  c->xmlLevel++;
  ASSERT_EQ(xerEncOpenType(c, (ASN1UINT)inner.size(), data, "named"), 0);
  ASSERT_EQ(xerEncOpenType(c, (ASN1UINT)inner.size(), data, nullptr), 0);
  EXPECT_EQ(c->xmlState, XERENDTAG);
  c->xmlLevel--;
  ASSERT_EQ(xerEncEndElement(c, "Outer"), 0);
  EXPECT_EQ(out.text(), "\n<Outer>\n   <named>" + inner + "</named>\n   " + inner +
                            "\n</Outer>");
  EXPECT_EQ(xerEncOpenType(c, 4, nullptr, "x"), ASN_E_INVPARAM);
}

TEST(XerEncValues, TimesAsXmlDateTime) {
  XerOut out;
  EXPECT_EQ(out.written([](ASN1CTXT* c) { return xmlEncUTCTime(c, "110503120000Z", "t"); }),
            "\n<t>2011-05-03T12:00:00Z</t>");
  EXPECT_EQ(out.written([](ASN1CTXT* c) { return xmlEncUTCTime(c, "4912312359Z", "t"); }),
            "\n<t>2049-12-31T23:59:00Z</t>");
  EXPECT_EQ(out.written([](ASN1CTXT* c) {
              return xmlEncGeneralizedTime(c, "20110503120000.25+0130", "g");
            }),
            "\n<g>2011-05-03T12:00:00.25+01:30</g>");
  EXPECT_EQ(out.written([](ASN1CTXT* c) { return xmlEncUTCTime(c, "1105031200", "t"); }),
            "status -31");
  EXPECT_EQ(out.text(), "");
  EXPECT_EQ(out.written([](ASN1CTXT* c) { return xmlEncUTCTime(c, "110503120000Z", nullptr); }),
            "status -30");
}

}  // namespace
