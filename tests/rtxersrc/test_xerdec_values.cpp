// Accepted and refused texts of the BOOLEAN, INTEGER, REAL and OBJECT IDENTIFIER decoders.
#include <gtest/gtest.h>
#include <quillon/asn1XerDec.h>
#include <quillon/rtReal.h>

#include <string.h>

#include <cmath>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "xer_decode_harness.h"

namespace {

// Runs one decoder on text; the status, with the value in out and the module that recorded
// the failure (if any) in module.
template <typename T>
int decode(int (*dec)(ASN1CTXT*, T*), const std::string& text, T& out, std::string* module = nullptr) {
  XerIn in(text);
  const int stat = dec(in.ctxt(), &out);
  if (module) *module = in.context().errorModule();
  EXPECT_EQ(stat < 0 ? stat : 0, in.context().errorStatus()) << "recorded status for \"" << text << "\"";
  return stat;
}

// Each text decodes to its value, compared bit for bit (minus zero is not zero).
template <typename T>
void expectValues(int (*dec)(ASN1CTXT*, T*), std::vector<std::pair<std::string, T>> cases) {
  for (const auto& c : cases) {
    T out = static_cast<T>(7);
    EXPECT_EQ(0, decode(dec, c.first, out)) << "\"" << c.first << "\"";
    EXPECT_EQ(0, memcmp(&c.second, &out, sizeof out)) << "\"" << c.first << "\" gave " << +out;
  }
}

// Each text is refused with stat, recorded by module when one is given.
template <typename T>
void expectRefusals(int (*dec)(ASN1CTXT*, T*), int stat, std::vector<std::string> texts,
                    const std::string& module = "") {
  for (const std::string& text : texts) {
    T out{};
    std::string recorded;
    EXPECT_EQ(stat, decode(dec, text, out, &recorded)) << "\"" << text << "\"";
    if (!module.empty()) {
      EXPECT_EQ(module, recorded) << "\"" << text << "\"";
    }
  }
}

TEST(XerDecBool, IdentifiersAndSchemaLiterals) {
  expectValues<ASN1BOOL>(xerDecBool, {{"  true", 1}, {"\n\tfalse", 0}});
  expectRefusals<ASN1BOOL>(xerDecBool, ASN_E_BADVALUE, {"true ", "True", "1", "", "tru", "falsey"},
                           "rtxersrc/xerDecBool");
  expectValues<ASN1BOOL>(xmlDecBool, {{"1", 1}, {" 0", 0}, {"true", 1}});
  expectRefusals<ASN1BOOL>(xmlDecBool, ASN_E_BADVALUE, {"2", "01"});
}

TEST(XerDecInt, SignsBlanksAndLimits) {
  // An empty text, blanks or a lone sign are 0; the writer's text of the minimum reads back.
  expectValues<ASN1INT>(xerDecInt, {{"", 0}, {"   ", 0}, {"-", 0}, {" \n-042", -42},
                                    {"2147483647", INT32_MAX}, {"-2147483648", INT32_MIN}});
  expectRefusals<ASN1INT>(xerDecInt, ASN_E_TOOBIG,
                          {"2147483648", "-2147483649", "99999999999999999999999"},
                          "rtxersrc/xerDecInt");
  for (const char* bad : {"+5", "5 ", "1-2", "- 5", "0x10", "1e3", "--1"}) {
    ASN1INT v = 5;
    EXPECT_EQ(ASN_E_INVCHAR, decode(xerDecInt, bad, v)) << bad;
    EXPECT_EQ(0, v) << "set to 0 first";
  }
}

TEST(XerDecInt, NarrowUnsignedAnd64BitForms) {
  expectValues<ASN1INT8>(xerDecInt8, {{"-128", -128}});
  expectRefusals<ASN1INT8>(xerDecInt8, ASN_E_TOOBIG, {"128"});
  expectRefusals<ASN1INT8>(xerDecInt8, ASN_E_INVCHAR, {"1a"});
  expectValues<ASN1SINT>(xerDecInt16, {{"32767", 32767}});
  expectRefusals<ASN1SINT>(xerDecInt16, ASN_E_TOOBIG, {"-32769"});
  expectValues<ASN1UINT>(xerDecUInt, {{"4294967295", UINT32_MAX}});
  expectRefusals<ASN1UINT>(xerDecUInt, ASN_E_TOOBIG, {"4294967296"});
  expectRefusals<ASN1UINT>(xerDecUInt, ASN_E_INVCHAR, {"-1"});
  expectValues<ASN1UINT8>(xerDecUInt8, {{"255", 255}});
  expectRefusals<ASN1UINT8>(xerDecUInt8, ASN_E_TOOBIG, {"256"});
  expectRefusals<ASN1USINT>(xerDecUInt16, ASN_E_TOOBIG, {"65536"});
  expectValues<ASN1INT64>(xerDecInt64, {{"-9223372036854775808", INT64_MIN}});
  expectRefusals<ASN1INT64>(xerDecInt64, ASN_E_TOOBIG, {"9223372036854775808"});
  expectValues<ASN1UINT64>(xerDecUInt64, {{"18446744073709551615", UINT64_MAX}});
  expectRefusals<ASN1UINT64>(xerDecUInt64, ASN_E_TOOBIG, {"18446744073709551616"});
  expectRefusals<ASN1UINT64>(xerDecUInt64, ASN_E_INVCHAR, {"1 "});
}

// The heap text a decoder makes of input, or "status N".
std::string textOf(int (*dec)(ASN1CTXT*, const char**), const std::string& input) {
  XerIn in(input);
  const char* value = nullptr;
  const int stat = dec(in.ctxt(), &value);
  return stat == 0 ? std::string(value) : "status " + std::to_string(stat);
}

TEST(XerDecBigInt, NormalisesLikeTheWriter) {
  EXPECT_EQ("0", textOf(xerDecBigInt, ""));
  EXPECT_EQ("0", textOf(xerDecBigInt, "-"));
  EXPECT_EQ("-123456789012345678901234567890",
            textOf(xerDecBigInt, "  -000123456789012345678901234567890"));
  EXPECT_EQ("0", textOf(xerDecBigInt, "0000"));
  EXPECT_EQ("status -34", textOf(xerDecBigInt, "12a"));
  EXPECT_EQ("status -34", textOf(xerDecBigInt, "0x1F"));
}

TEST(XerDecReal, DecimalFormsAndInfinities) {
  // Correctly rounded: the twenty digits of 123.45 give 123.45 exactly.
  expectValues<ASN1REAL>(xerDecReal, {{" PLUS-INFINITY", rtGetPlusInfinity()},
                                      {"MINUS-INFINITY", rtGetMinusInfinity()},
                                      {"1.0E+0", 1.0}, {"5.0E-1\n", 0.5}, {"-12.5e2", -1250.0},
                                      {".5", 0.5}, {"7.", 7.0}, {"-0", rtGetMinusZero()},
                                      {"1.23450000000000002842E+2", 123.45},
                                      {"4.94065645841246544177E-324",
                                       std::numeric_limits<double>::denorm_min()}});
  expectRefusals<ASN1REAL>(xerDecReal, ASN_E_INVREAL,
                           {"", "PLUS-INFINITY ", "INF", "+1.0", "1.0E", "1.0E+", ".", "-.",
                            "1..0", "1.0E+0x", "NaN", "1E999", "1,5", "- 1"},
                           "rtxersrc/xerDecReal");
}

TEST(XerDecReal, SchemaForms) {
  expectValues<ASN1REAL>(xmlDecReal, {{" INF ", rtGetPlusInfinity()}, {"+INF", rtGetPlusInfinity()},
                                      {"-INF", rtGetMinusInfinity()}, {"+1.5E0", 1.5},
                                      {"-0", rtGetMinusZero()}});
  ASN1REAL r = 0;
  EXPECT_EQ(0, decode(xmlDecReal, "NaN", r));
  EXPECT_TRUE(rtIsNaN(r));
  expectRefusals<ASN1REAL>(xmlDecReal, ASN_E_INVREAL,
                           {"inf", "nan", "+-1", "-+1", "PLUS-INFINITY", "1.0 E0"});
}

TEST(XerDecObjId, ArcsAndIdentifierRules) {
  ASN1OBJID oid;
  std::string module;
  EXPECT_EQ(0, decode(xerDecObjId, " 1.2.840.113549 \n", oid));
  ASSERT_EQ(4u, oid.numids);
  EXPECT_EQ(113549u, oid.subid[3]);
  EXPECT_EQ(0, decode(xerDecObjId, "2.100.3", oid)) << "no limit on the second arc under 2";
  EXPECT_EQ(0, decode(xerDecObjId, "2.5.4.4294967295", oid));
  EXPECT_EQ(UINT32_MAX, oid.subid[3]);

  for (const char* bad : {"1..2", "1.2.", ".1.2", "1.2 .3", "1.a", "1,2"}) {
    EXPECT_EQ(ASN_E_INVOBJID, decode(xerDecObjId, bad, oid, &module)) << bad;
    EXPECT_EQ("rtxersrc/xerDecObjId", module);
  }
  EXPECT_EQ(ASN_E_TOOBIG, decode(xerDecObjId, "1.2.4294967296", oid));

  // The identifier rules refuse without a record, the arcs read left in place.
  for (const char* unencodable : {"1.40", "3.1", "1", ""}) {
    XerIn in(unencodable);
    EXPECT_EQ(ASN_E_INVOBJID, xerDecObjId(in.ctxt(), &oid)) << unencodable;
    EXPECT_EQ(0, in.context().errorStatus()) << unencodable;
  }
  XerIn rule("1.40");
  EXPECT_EQ(ASN_E_INVOBJID, xerDecObjId(rule.ctxt(), &oid));
  EXPECT_EQ(2u, oid.numids);
  EXPECT_EQ(40u, oid.subid[1]);

  std::string many = "1";
  for (int i = 1; i < ASN_K_MAXSUBIDS; ++i) many += ".7";
  EXPECT_EQ(0, decode(xerDecObjId, many, oid));
  EXPECT_EQ((ASN1UINT)ASN_K_MAXSUBIDS, oid.numids);
  EXPECT_EQ(ASN_E_INVOBJID, decode(xerDecObjId, many + ".7", oid));
}

TEST(XerDecObjId, WideArcsAndRelativeIdentifiers) {
  ASN1OID64 oid64;
  EXPECT_EQ(0, decode(xerDecObjId64, "2.999.18446744073709551615", oid64));
  EXPECT_EQ(UINT64_MAX, oid64.subid[2]);
  EXPECT_EQ(ASN_E_TOOBIG, decode(xerDecObjId64, "2.999.18446744073709551616", oid64));
  XerIn rule("0.40");
  EXPECT_EQ(ASN_E_INVOBJID, xerDecObjId64(rule.ctxt(), &oid64));

  ASN1OBJID rel;
  EXPECT_EQ(0, decode(xerDecRelativeOID, "", rel));
  EXPECT_EQ(0u, rel.numids);
  EXPECT_EQ(0, decode(xerDecRelativeOID, "99", rel));
  EXPECT_EQ(1u, rel.numids);
  EXPECT_EQ(0, decode(xerDecRelativeOID, "5.40.0", rel));
  EXPECT_EQ(3u, rel.numids);
  EXPECT_EQ(ASN_E_INVOBJID, decode(xerDecRelativeOID, "5..0", rel));
}

}  // namespace
