// Accepted and refused texts of the BOOLEAN, INTEGER, REAL and OBJECT IDENTIFIER decoders.
#include <gtest/gtest.h>
#include <quillon/asn1XerDec.h>
#include <quillon/rtReal.h>

#include <cmath>
#include <limits>
#include <string>

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

TEST(XerDecBool, IdentifiersAndSchemaLiterals) {
  ASN1BOOL b = 9;
  EXPECT_EQ(0, decode(xerDecBool, "  true", b));
  EXPECT_EQ(1, b);
  EXPECT_EQ(0, decode(xerDecBool, "\n\tfalse", b));
  EXPECT_EQ(0, b);
  std::string module;
  for (const char* bad : {"true ", "True", "1", "", "tru", "falsey"}) {
    EXPECT_EQ(ASN_E_BADVALUE, decode(xerDecBool, bad, b, &module)) << bad;
  }
  EXPECT_EQ("rtxersrc/xerDecBool", module);
  EXPECT_EQ(0, decode(xmlDecBool, "1", b));
  EXPECT_EQ(1, b);
  EXPECT_EQ(0, decode(xmlDecBool, " 0", b));
  EXPECT_EQ(0, b);
  EXPECT_EQ(0, decode(xmlDecBool, "true", b));
  EXPECT_EQ(1, b);
  EXPECT_EQ(ASN_E_BADVALUE, decode(xmlDecBool, "2", b));
  EXPECT_EQ(ASN_E_BADVALUE, decode(xmlDecBool, "01", b));
}

TEST(XerDecInt, SignsBlanksAndLimits) {
  ASN1INT v = 5;
  std::string module;
  EXPECT_EQ(0, decode(xerDecInt, "", v));
  EXPECT_EQ(0, v);
  EXPECT_EQ(0, decode(xerDecInt, "   ", v));
  EXPECT_EQ(0, decode(xerDecInt, "-", v));
  EXPECT_EQ(0, v);
  EXPECT_EQ(0, decode(xerDecInt, " \n-042", v));
  EXPECT_EQ(-42, v);
  EXPECT_EQ(0, decode(xerDecInt, "2147483647", v));
  EXPECT_EQ(INT32_MAX, v);
  EXPECT_EQ(0, decode(xerDecInt, "-2147483648", v)) << "the writer's text of the minimum";
  EXPECT_EQ(INT32_MIN, v);
  EXPECT_EQ(ASN_E_TOOBIG, decode(xerDecInt, "2147483648", v, &module));
  EXPECT_EQ("rtxersrc/xerDecInt", module);
  EXPECT_EQ(ASN_E_TOOBIG, decode(xerDecInt, "-2147483649", v));
  EXPECT_EQ(ASN_E_TOOBIG, decode(xerDecInt, "99999999999999999999999", v));
  for (const char* bad : {"+5", "5 ", "1-2", "- 5", "0x10", "1e3", "--1"}) {
    v = 5;
    EXPECT_EQ(ASN_E_INVCHAR, decode(xerDecInt, bad, v)) << bad;
    EXPECT_EQ(0, v) << "set to 0 first";
  }
}

TEST(XerDecInt, NarrowUnsignedAnd64BitForms) {
  ASN1INT8 i8 = 0;
  EXPECT_EQ(0, decode(xerDecInt8, "-128", i8));
  EXPECT_EQ(-128, i8);
  EXPECT_EQ(ASN_E_TOOBIG, decode(xerDecInt8, "128", i8));
  EXPECT_EQ(ASN_E_INVCHAR, decode(xerDecInt8, "1a", i8));
  ASN1SINT i16 = 0;
  EXPECT_EQ(0, decode(xerDecInt16, "32767", i16));
  EXPECT_EQ(32767, i16);
  EXPECT_EQ(ASN_E_TOOBIG, decode(xerDecInt16, "-32769", i16));

  ASN1UINT u = 0;
  EXPECT_EQ(0, decode(xerDecUInt, "4294967295", u));
  EXPECT_EQ(UINT32_MAX, u);
  EXPECT_EQ(ASN_E_TOOBIG, decode(xerDecUInt, "4294967296", u));
  EXPECT_EQ(ASN_E_INVCHAR, decode(xerDecUInt, "-1", u));
  ASN1UINT8 u8 = 0;
  EXPECT_EQ(0, decode(xerDecUInt8, "255", u8));
  EXPECT_EQ(255, u8);
  EXPECT_EQ(ASN_E_TOOBIG, decode(xerDecUInt8, "256", u8));
  ASN1USINT u16 = 0;
  EXPECT_EQ(ASN_E_TOOBIG, decode(xerDecUInt16, "65536", u16));

  ASN1INT64 i64 = 0;
  EXPECT_EQ(0, decode(xerDecInt64, "-9223372036854775808", i64));
  EXPECT_EQ(INT64_MIN, i64);
  EXPECT_EQ(ASN_E_TOOBIG, decode(xerDecInt64, "9223372036854775808", i64));
  ASN1UINT64 u64 = 0;
  EXPECT_EQ(0, decode(xerDecUInt64, "18446744073709551615", u64));
  EXPECT_EQ(UINT64_MAX, u64);
  EXPECT_EQ(ASN_E_TOOBIG, decode(xerDecUInt64, "18446744073709551616", u64));
  EXPECT_EQ(ASN_E_INVCHAR, decode(xerDecUInt64, "1 ", u64));
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
  ASN1REAL r = 0;
  std::string module;
  EXPECT_EQ(0, decode(xerDecReal, " PLUS-INFINITY", r));
  EXPECT_TRUE(rtIsPlusInfinity(r));
  EXPECT_EQ(0, decode(xerDecReal, "MINUS-INFINITY", r));
  EXPECT_TRUE(rtIsMinusInfinity(r));
  EXPECT_EQ(0, decode(xerDecReal, "1.0E+0", r));
  EXPECT_EQ(1.0, r);
  EXPECT_EQ(0, decode(xerDecReal, "5.0E-1\n", r));
  EXPECT_EQ(0.5, r);
  EXPECT_EQ(0, decode(xerDecReal, "-12.5e2", r));
  EXPECT_EQ(-1250.0, r);
  EXPECT_EQ(0, decode(xerDecReal, ".5", r));
  EXPECT_EQ(0.5, r);
  EXPECT_EQ(0, decode(xerDecReal, "7.", r));
  EXPECT_EQ(7.0, r);
  EXPECT_EQ(0, decode(xerDecReal, "-0", r));
  EXPECT_TRUE(rtIsMinusZero(r));
  // Correctly rounded: the twenty digits of 123.45 give 123.45 exactly.
  EXPECT_EQ(0, decode(xerDecReal, "1.23450000000000002842E+2", r));
  EXPECT_EQ(123.45, r);
  EXPECT_EQ(0, decode(xerDecReal, "4.94065645841246544177E-324", r));
  EXPECT_EQ(std::numeric_limits<double>::denorm_min(), r);
  for (const char* bad : {"", "PLUS-INFINITY ", "INF", "+1.0", "1.0E", "1.0E+", ".", "-.",
                          "1..0", "1.0E+0x", "NaN", "1E999", "1,5", "- 1"}) {
    EXPECT_EQ(ASN_E_INVREAL, decode(xerDecReal, bad, r, &module)) << bad;
  }
  EXPECT_EQ("rtxersrc/xerDecReal", module);
}

TEST(XerDecReal, SchemaForms) {
  ASN1REAL r = 0;
  EXPECT_EQ(0, decode(xmlDecReal, " INF ", r));
  EXPECT_TRUE(rtIsPlusInfinity(r));
  EXPECT_EQ(0, decode(xmlDecReal, "+INF", r));
  EXPECT_TRUE(rtIsPlusInfinity(r));
  EXPECT_EQ(0, decode(xmlDecReal, "-INF", r));
  EXPECT_TRUE(rtIsMinusInfinity(r));
  EXPECT_EQ(0, decode(xmlDecReal, "NaN", r));
  EXPECT_TRUE(rtIsNaN(r));
  EXPECT_EQ(0, decode(xmlDecReal, "+1.5E0", r));
  EXPECT_EQ(1.5, r);
  EXPECT_EQ(0, decode(xmlDecReal, "-0", r));
  EXPECT_TRUE(rtIsMinusZero(r));
  for (const char* bad : {"inf", "nan", "+-1", "-+1", "PLUS-INFINITY", "1.0 E0"}) {
    EXPECT_EQ(ASN_E_INVREAL, decode(xmlDecReal, bad, r)) << bad;
  }
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
