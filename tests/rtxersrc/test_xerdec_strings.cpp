// Accepted and refused texts of the string decoders: hexadecimal and binary digits, the
// piecewise forms, base64, named bits, character strings, times and open types.
#include <gtest/gtest.h>
#include <quillon/asn1XerDec.h>

#include <string>
#include <vector>

#include "xer_decode_harness.h"

namespace {

using Octets = std::vector<ASN1OCTET>;

Octets octetsOf(const ASN1OCTET* data, size_t n) { return Octets(data, data + n); }

TEST(XerDecHex, AlignmentCountsAndWhiteSpace) {
  ASN1OCTET out[4] = {0xEE, 0xEE, 0xEE, 0xEE};
  ASN1UINT bits = 0;
  XerIn odd("0A1");
  EXPECT_EQ(0, xerDecHexStrValue(odd.ctxt(), out, &bits, 4, 0, 0));
  EXPECT_EQ((Octets{0x00, 0xA1}), octetsOf(out, 2));
  EXPECT_EQ(12u, bits);
  XerIn abc("ABC");
  EXPECT_EQ(0, xerDecHexStrValue(abc.ctxt(), out, &bits, 4, 0, 0));
  EXPECT_EQ((Octets{0x0A, 0xBC}), octetsOf(out, 2));

  // A known digit count reads only those digits.
  XerIn known("a1b2c3");
  EXPECT_EQ(0, xerDecHexStrValue(known.ctxt(), out, &bits, 4, 4, 0));
  EXPECT_EQ((Octets{0xA1, 0xB2}), octetsOf(out, 2));
  EXPECT_EQ(16u, bits);
  XerIn few("a1");
  EXPECT_EQ(ASN_E_INVHEXSTR, xerDecHexStrValue(few.ctxt(), out, &bits, 4, 4, 0));

  XerIn spaced(" de ad\nbe\tef ");
  EXPECT_EQ(ASN_E_INVHEXSTR, xerDecHexStrValue(spaced.ctxt(), out, &bits, 4, 0, 0));
  spaced.context().resetError();
  EXPECT_EQ(0, xerDecHexStrValue(spaced.ctxt(), out, &bits, 4, 0, 1));
  EXPECT_EQ((Octets{0xDE, 0xAD, 0xBE, 0xEF}), octetsOf(out, 4));
  XerIn big("0102030405");
  EXPECT_EQ(ASN_E_STROVFLW, xerDecHexStrValue(big.ctxt(), out, &bits, 4, 0, 0));
  EXPECT_EQ("rtxersrc/xerDecOctStr", big.context().errorModule());
  XerIn bad("12G4");
  EXPECT_EQ(ASN_E_INVHEXSTR, xerDecHexStrValue(bad.ctxt(), out, &bits, 4, 0, 1));
}

TEST(XerDecOctStr, FixedDynamicAndSchemaForms) {
  ASN1OCTET fixed[3];
  ASN1UINT n = 0;
  XerIn text("01 FF\n7f");
  EXPECT_EQ(0, xerDecOctStr(text.ctxt(), fixed, &n, sizeof fixed));
  EXPECT_EQ((Octets{0x01, 0xFF, 0x7F}), octetsOf(fixed, n));
  EXPECT_EQ(ASN_E_STROVFLW, xerDecOctStr(text.ctxt(), fixed, &n, 2));

  ASN1DynOctStr dyn;
  EXPECT_EQ(0, xerDecDynOctStr(text.ctxt(), &dyn));
  EXPECT_EQ((Octets{0x01, 0xFF, 0x7F}), octetsOf(dyn.data, dyn.numocts));
  EXPECT_TRUE(rtMemHeapCheckPtr(&text.ctxt()->memHeap, dyn.data));
  XerIn empty("  ");
  EXPECT_EQ(0, xerDecDynOctStr(empty.ctxt(), &dyn));
  EXPECT_EQ(0u, dyn.numocts);
  EXPECT_EQ(nullptr, dyn.data);

  // hexBinary takes white space only around the digits.
  EXPECT_EQ(ASN_E_INVHEXSTR, xmlDecDynOctStr(text.ctxt(), &dyn));
  XerIn schema("\n  C0FFEE  ");
  EXPECT_EQ(0, xmlDecDynOctStr(schema.ctxt(), &dyn));
  EXPECT_EQ((Octets{0xC0, 0xFF, 0xEE}), octetsOf(dyn.data, dyn.numocts));
  EXPECT_EQ(0, xmlDecOctStr(schema.ctxt(), fixed, &n, sizeof fixed));
  EXPECT_EQ(3u, n);
}

TEST(XerDecBitStr, BinaryDigitsFixedDynamicAndSchemaForms) {
  ASN1OCTET fixed[2] = {0xFF, 0xFF};
  ASN1UINT nbits = 0;
  XerIn text("1010 0001\n101");
  EXPECT_EQ(0, xerDecBitStr(text.ctxt(), fixed, &nbits, sizeof fixed));
  EXPECT_EQ(11u, nbits);
  EXPECT_EQ((Octets{0xA1, 0xA0}), octetsOf(fixed, 2)) << "unused bits cleared";
  EXPECT_EQ(ASN_E_STROVFLW, xerDecBitStr(text.ctxt(), fixed, &nbits, 1));

  ASN1DynBitStr dyn;
  EXPECT_EQ(0, xerDecDynBitStr(text.ctxt(), &dyn));
  EXPECT_EQ(11u, dyn.numbits);
  EXPECT_EQ((Octets{0xA1, 0xA0}), octetsOf(dyn.data, 2));
  EXPECT_EQ(ASN_E_INVBINS, xmlDecDynBitStr(text.ctxt(), &dyn));
  XerIn schema(" 011 ");
  EXPECT_EQ(0, xmlDecBitStr(schema.ctxt(), fixed, &nbits, sizeof fixed));
  EXPECT_EQ(3u, nbits);
  EXPECT_EQ(0x60, fixed[0]);
  XerIn two("102");
  EXPECT_EQ(ASN_E_INVBINS, xerDecBitStr(two.ctxt(), fixed, &nbits, sizeof fixed));
  EXPECT_EQ("rtxersrc/xerDecBitStr", two.context().errorModule());

  ASN1OCTET out[2];
  XerIn counted("1111 0000 1");
  EXPECT_EQ(0, xerDecBinStrValue(counted.ctxt(), out, &nbits, 2, 4, 1));
  EXPECT_EQ(4u, nbits);
  EXPECT_EQ(0xF0, out[0]);
  EXPECT_EQ(ASN_E_INVBINS, xerDecBinStrValue(counted.ctxt(), out, &nbits, 2, 0, 0));
}

TEST(XerDecBitStr, NamedBitList) {
  const XMLNamedBit keyUsage[] = {{"digitalSignature", 0}, {"keyEncipherment", 2},
                                  {"keyCertSign", 5}, {"decipherOnly", 8}};
  ASN1OCTET bits[2];
  ASN1UINT nbits = 99;
  XerIn list("  keyCertSign digitalSignature\n");
  EXPECT_EQ(0, xmlDecNamedBitStr(list.ctxt(), bits, &nbits, sizeof bits, keyUsage, 4));
  EXPECT_EQ(6u, nbits);
  EXPECT_EQ(0x84, bits[0]);
  XerIn high("decipherOnly");
  EXPECT_EQ(0, xmlDecNamedBitStr(high.ctxt(), bits, &nbits, sizeof bits, keyUsage, 4));
  EXPECT_EQ(9u, nbits);
  EXPECT_EQ((Octets{0x00, 0x80}), octetsOf(bits, 2));
  EXPECT_EQ(ASN_E_STROVFLW, xmlDecNamedBitStr(high.ctxt(), bits, &nbits, 1, keyUsage, 4));
  XerIn none("");
  EXPECT_EQ(0, xmlDecNamedBitStr(none.ctxt(), bits, &nbits, sizeof bits, keyUsage, 4));
  EXPECT_EQ(0u, nbits);
  XerIn unknown("keyCertSignX");
  EXPECT_EQ(ASN_E_BADVALUE, xmlDecNamedBitStr(unknown.ctxt(), bits, &nbits, sizeof bits, keyUsage, 4));
}

// Character data may be cut anywhere: every split of the text into two pieces must give the
// octets of the whole.
TEST(XerDecMemBuf, PiecesGiveTheSameValueWhereverTheyAreCut) {
  const std::string hex = "0f1E 2d\n3C4b";
  const Octets octets = {0x0F, 0x1E, 0x2D, 0x3C, 0x4B};
  const std::string bin = "1011 0111\t001";
  TestContext ctx;
  for (size_t cut = 0; cut <= hex.size(); ++cut) {
    ASN1MemBuf mb;
    rtMemBufInit(ctx.get(), &mb, 0);
    ASSERT_EQ(0, xerDecOctStrMemBuf(&mb, hex.data(), (int)cut));
    ASSERT_EQ(0, xerDecOctStrMemBuf(&mb, hex.data() + cut, (int)(hex.size() - cut)));
    ASN1DynOctStr dyn;
    ASSERT_EQ(0, xerDecCopyDynOctStr(ctx.get(), &dyn, &mb));
    EXPECT_EQ(octets, octetsOf(dyn.data, dyn.numocts)) << "cut at " << cut;
    rtMemBufFree(&mb);
  }
  for (size_t cut = 0; cut <= bin.size(); ++cut) {
    ASN1MemBuf mb;
    rtMemBufInit(ctx.get(), &mb, 0);
    ASSERT_EQ(0, xerDecBitStrMemBuf(&mb, bin.data(), (int)cut));
    ASSERT_EQ(0, xerDecBitStrMemBuf(&mb, bin.data() + cut, (int)(bin.size() - cut)));
    ASN1OCTET bits[2];
    ASN1UINT nbits = 0;
    ASSERT_EQ(0, xerDecCopyBitStr(ctx.get(), bits, &nbits, sizeof bits, &mb));
    EXPECT_EQ(11u, nbits);
    EXPECT_EQ((Octets{0xB7, 0x20}), octetsOf(bits, 2)) << "cut at " << cut;
    rtMemBufFree(&mb);
  }
}

TEST(XerDecMemBuf, RefusalsOfThePiecewiseForms) {
  TestContext ctx;
  ASN1MemBuf mb;
  rtMemBufInit(ctx.get(), &mb, 0);
  ASSERT_EQ(0, xerDecOctStrMemBuf(&mb, "ABC", 3));
  ASN1OCTET out[4];
  ASN1UINT n = 0;
  EXPECT_EQ(ASN_E_INVHEXSTR, xerDecCopyOctStr(ctx.get(), out, &n, sizeof out, &mb)) << "half an octet left";
  ASSERT_EQ(0, xerDecOctStrMemBuf(&mb, "D", 1));
  EXPECT_EQ(ASN_E_STROVFLW, xerDecCopyOctStr(ctx.get(), out, &n, 1, &mb));
  EXPECT_EQ(0, xerDecCopyOctStr(ctx.get(), out, &n, sizeof out, &mb));
  EXPECT_EQ((Octets{0xAB, 0xCD}), octetsOf(out, n));
  EXPECT_EQ(ASN_E_INVHEXSTR, xerDecOctStrMemBuf(&mb, "1x", 2));
  EXPECT_EQ(ASN_E_INVBINS, xerDecBitStrMemBuf(&mb, "012", 3));
  EXPECT_EQ(ASN_E_INVHEXSTR, ctx.errorStatus());
  EXPECT_EQ(0, xerDecOctStrMemBuf(&mb, nullptr, 0));
  EXPECT_EQ(ASN_E_INVPARAM, xerDecOctStrMemBuf(nullptr, "1", 1));
  rtMemBufFree(&mb);
}

TEST(XerDecBase64, LengthValueAndRefusals) {
  ASN1OCTET out[8];
  ASN1UINT n = 0;
  XerIn text(" AQID\nBA== ");
  EXPECT_EQ(4, xerGetBase64StrDecodedLen(text.ctxt()));
  EXPECT_EQ(0, xerDecBase64Str(text.ctxt(), out, &n, sizeof out));
  EXPECT_EQ((Octets{1, 2, 3, 4}), octetsOf(out, n));
  EXPECT_EQ(ASN_E_STROVFLW, xerDecBase64StrValue(text.ctxt(), out, &n, 3));
  ASN1DynOctStr dyn;
  EXPECT_EQ(0, xerDecDynBase64Str(text.ctxt(), &dyn));
  EXPECT_EQ((Octets{1, 2, 3, 4}), octetsOf(dyn.data, dyn.numocts));
  XerIn empty("");
  EXPECT_EQ(0, xerDecDynBase64Str(empty.ctxt(), &dyn));
  EXPECT_EQ(0u, dyn.numocts);
  for (const char* bad : {"AQI", "AQ=D", "A===", "AQID!", "AQ==AQ=="}) {
    XerIn in(bad);
    EXPECT_EQ(ASN_E_INVBASE64, xerDecDynBase64Str(in.ctxt(), &dyn)) << bad;
    EXPECT_EQ(ASN_E_INVBASE64, xerGetBase64StrDecodedLen(in.ctxt())) << bad;
  }
}

TEST(XerDecCharStr, EightBitUtf8AndWideForms) {
  const std::string text = " A\xC3\xA9\xE4\xB8\xAD\xF0\x9F\x98\x80 ";  // A, U+E9, U+4E2D, U+1F600
  XerIn in(text);
  const char* ascii = nullptr;
  EXPECT_EQ(0, xerDecDynAscCharStr(in.ctxt(), &ascii));
  EXPECT_EQ(std::string(" A\xE9\x2D\x00 ", 6), std::string(ascii, 6)) << "low 8 bits kept";
  const char* utf8 = nullptr;
  EXPECT_EQ(0, xerDecDynUTF8Str(in.ctxt(), &utf8));
  EXPECT_EQ(text, utf8);

  Asn132BitCharString univ;
  EXPECT_EQ(0, xerDecUnivStr(in.ctxt(), &univ));
  ASSERT_EQ(6u, univ.nchars);
  EXPECT_EQ(0xE9u, univ.data[2]);
  EXPECT_EQ(0x1F600u, univ.data[4]);
  Asn116BitCharString bmp;
  EXPECT_EQ(ASN_E_INVCHAR, xerDecBMPStr(in.ctxt(), &bmp)) << "U+1F600 is beyond a BMPString";
  XerIn plane0("\xE4\xB8\xAD!");
  EXPECT_EQ(0, xerDecBMPStr(plane0.ctxt(), &bmp));
  ASSERT_EQ(2u, bmp.nchars);
  EXPECT_EQ(0x4E2D, bmp.data[0]);

  XerIn none("");
  EXPECT_EQ(0, xerDecBMPStr(none.ctxt(), &bmp));
  EXPECT_EQ(0u, bmp.nchars);
  EXPECT_EQ(nullptr, bmp.data);
  EXPECT_EQ(0, xerDecDynAscCharStr(none.ctxt(), &ascii));
  EXPECT_STREQ("", ascii);

  XerIn broken("ok\xE4\xB8");
  EXPECT_EQ(ASN_E_INVUTF8, xerDecDynAscCharStr(broken.ctxt(), &ascii));
  EXPECT_EQ(ASN_E_INVUTF8, xerDecUnivStr(broken.ctxt(), &univ));
  EXPECT_EQ("rtsrc/rtUTF8", broken.context().errorModule());
}

TEST(XmlDecTime, DateTimesBecomeAsn1TimeTexts) {
  const char* t = nullptr;
  XerIn utc(" 2011-05-03T12:00:00Z\n");
  EXPECT_EQ(0, xmlDecUTCTime(utc.ctxt(), &t));
  EXPECT_STREQ("1105031200Z", t);
  EXPECT_EQ(0, xmlDecGeneralizedTime(utc.ctxt(), &t));
  EXPECT_STREQ("20110503120000Z", t);
  XerIn offset("1999-12-31T23:59:30.25+01:30");
  EXPECT_EQ(0, xmlDecGeneralizedTime(offset.ctxt(), &t));
  EXPECT_STREQ("19991231235930.25+0130", t);
  XerIn far("2050-01-01T00:00:00Z");
  EXPECT_EQ(ASN_E_INVFORMAT, xmlDecUTCTime(far.ctxt(), &t)) << "beyond UTCTime's years";
  XerIn junk("2011-05-03 12:00:00Z");
  EXPECT_EQ(ASN_E_INVFORMAT, xmlDecGeneralizedTime(junk.ctxt(), &t));
  XerIn longText(std::string(100, '1'));
  EXPECT_EQ(ASN_E_INVFORMAT, xmlDecGeneralizedTime(longText.ctxt(), &t));
  EXPECT_EQ("rtxersrc/xmlDecTime", longText.context().errorModule());
}

TEST(XerDecOpenType, CapturedTextIsCopied) {
  XerIn in("<v3/>");
  ASN1TOpenType ot;
  EXPECT_EQ(0, xerDecOpenType(in.ctxt(), &ot));
  EXPECT_EQ(5u, ot.numocts);
  EXPECT_NE(in.ctxt()->buffer.data, ot.data);
  EXPECT_EQ("<v3/>", std::string(reinterpret_cast<const char*>(ot.data)));
  XerIn empty("");
  EXPECT_EQ(0, xerDecOpenType(empty.ctxt(), &ot));
  EXPECT_EQ(0u, ot.numocts);
  EXPECT_EQ(nullptr, ot.data);
}

}  // namespace
