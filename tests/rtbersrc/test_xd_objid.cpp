// OBJECT IDENTIFIER (32 and 64-bit arcs), RELATIVE-OID and REAL.
#include <gtest/gtest.h>

#include <math.h>

#include <utility>

#include "decode_harness.h"

namespace {

template <typename Oid, typename Fn>
std::string arcs(Fn fn, const std::string& hex) {
  DecodeHarness h(hex);
  Oid oid;
  int stat = fn(h.ctxt(), &oid, ASN1EXPL, 0);
  if (stat < 0) return "status " + std::to_string(stat);
  EXPECT_EQ(h.pos(), h.size()) << hex;
  std::string s;
  for (ASN1UINT i = 0; i < oid.numids; ++i)
    s += (i ? "." : "") + std::to_string(oid.subid[i]);
  return s;
}

std::string objid(const std::string& hex) { return arcs<ASN1OBJID>(xd_objid, hex); }
std::string oid64(const std::string& hex) { return arcs<ASN1OID64>(xd_oid64, hex); }
std::string reloid(const std::string& hex) { return arcs<ASN1RELOID>(xd_reloid, hex); }

TEST(XdObjid, ArcsAndTheCombinedFirstSubidentifier) {
  EXPECT_EQ(objid("06 03 2A 86 48"), "1.2.840");
  EXPECT_EQ(objid("06 03 55 1D 18"), "2.5.29.24");
  EXPECT_EQ(objid("06 01 00"), "0.0");
  EXPECT_EQ(objid("06 01 27"), "0.39");
  EXPECT_EQ(objid("06 01 50"), "2.0");
  // Under arc 2 the second arc is unbounded.
  EXPECT_EQ(objid("06 02 88 37"), "2.999");
  EXPECT_EQ(objid("06 05 8F FF FF FF 7F"), "2.4294967215");
  EXPECT_EQ(objid("06 06 2A 8F FF FF FF 7F"), "1.2.4294967295");
}

TEST(XdObjid, Failures) {
  EXPECT_EQ(objid("06 00"), "status -5");
  EXPECT_EQ(objid("06 03 2A 86"), "status -5");
  EXPECT_EQ(objid("0D 01 2A"), "status -3");
  // 2^32 does not fit a 32-bit arc.
  EXPECT_EQ(objid("06 06 2A 90 80 80 80 00"), "status -4");
}

TEST(XdObjid, DeliberateLeniencyForACutOffLastSubidentifier) {
  EXPECT_EQ(objid("06 02 2A 86"), "1.2.6");
  EXPECT_EQ(objid("06 01 81"), "0.1");
}

TEST(XdObjid, MoreThan128ArcsKeepsWhatFitsWithoutATraceEntry) {
  std::string hex = "06 81 80 2A";
  for (int i = 0; i < 127; ++i) hex += " 01";
  DecodeHarness h(hex);
  ASN1OBJID oid;
  EXPECT_EQ(xd_objid(h.ctxt(), &oid, ASN1EXPL, 0), ASN_E_INVOBJID);
  EXPECT_EQ(oid.numids, 128u);
  EXPECT_EQ(oid.subid[127], 1u);
  EXPECT_EQ(h.errorDepth(), 0);

  std::string fits = "06 7F 2A";
  for (int i = 0; i < 126; ++i) fits += " 05";
  EXPECT_EQ(objid(fits).size(), std::string("1.2").size() + 126 * 2);
}

TEST(XdOid64, WideArcs) {
  EXPECT_EQ(oid64("06 0B 2A 81 80 80 80 80 80 80 80 80 00"), "1.2.9223372036854775808");
  EXPECT_EQ(oid64("06 0B 2A 82 80 80 80 80 80 80 80 80 00"), "status -4");
  EXPECT_EQ(oid64("06 03 2A 86 48"), "1.2.840");
}

TEST(XdReloid, ArcsAreNotCombined) {
  EXPECT_EQ(reloid("0D 04 01 86 48 2A"), "1.840.42");
  EXPECT_EQ(reloid("0D 01 55"), "85");
  EXPECT_EQ(reloid("06 01 55"), "status -3");
  EXPECT_EQ(reloid("0D 00"), "status -5");
}

int real(const std::string& hex, double* value) {
  DecodeHarness h(hex);
  int stat = xd_real(h.ctxt(), value, ASN1EXPL, 0);
  if (stat == 0) {
    EXPECT_EQ(h.pos(), h.size()) << hex;
  }
  return stat;
}

double realValue(const std::string& hex) {
  double v = 12345.0;
  EXPECT_EQ(real(hex, &v), 0) << hex;
  return v;
}

TEST(XdReal, BinaryFormsInEveryBaseAndScale) {
  // Base 8 and 16 (the exponent counts digits of 3 and 4 bits; the scale adds bits), exponents
  // of two octets or of a counted length, more mantissa octets than a double holds, and
  // exponents far beyond the range, which only saturate.
  const std::pair<const char*, double> cases[] = {
      {"09 03 80 00 01", 1.0}, {"09 03 C0 00 01", -1.0}, {"09 03 80 FF 03", 1.5},
      {"09 03 80 02 05", 20.0}, {"09 03 90 01 01", 8.0}, {"09 03 A0 FF 10", 1.0},
      {"09 03 88 00 01", 4.0}, {"09 04 81 FB CE 01", ldexp(1.0, -1074)},
      {"09 05 83 02 00 0A 03", ldexp(3.0, 10)},
      {"09 0C 80 B0 01 00 00 00 00 00 00 00 00 00", ldexp(1.0, -8)},
      {"09 07 83 04 7F FF FF FF 01", HUGE_VAL}, {"09 07 83 04 80 00 00 00 01", 0.0}};
  for (const auto& c : cases) EXPECT_EQ(realValue(c.first), c.second) << c.first;
}

TEST(XdReal, SpecialAndDecimalForms) {
  EXPECT_EQ(realValue("09 00"), 0.0);
  EXPECT_EQ(realValue("09 01 40"), HUGE_VAL);
  EXPECT_EQ(realValue("09 01 41"), -HUGE_VAL);
  EXPECT_TRUE(isnan(realValue("09 01 42")));
  double minusZero = realValue("09 01 43");
  EXPECT_TRUE(minusZero == 0.0 && signbit(minusZero));
  EXPECT_EQ(realValue("09 04 01 2D 34 32"), -42.0);
  EXPECT_EQ(realValue("09 05 02 20 31 2C 35"), 1.5);
  EXPECT_EQ(realValue("09 05 03 31 45 2D 32"), 0.01);
}

TEST(XdReal, MalformedContents) {
  double v;
  const char* bad[] = {
      "09 02 B0 01",        // base code 3 is reserved
      "09 02 80 01",        // no mantissa octet
      "09 01 83",           // exponent length octet missing
      "09 03 83 00 01",     // exponent of no octets
      "09 0C 83 09 01 01 01 01 01 01 01 01 01 01",  // exponent of nine octets
      "09 02 40 00",        // special value with extra octets
      "09 01 44",           // unassigned special value
      "09 04 01 69 6E 66",  // "inf" is not a decimal form
      "09 04 01 30 78 31",  // nor "0x1"
      "09 02 04 31",        // NR4 does not exist
      "09 01 01",           // decimal form without digits
  };
  for (const char* hex : bad) EXPECT_EQ(real(hex, &v), ASN_E_INVREAL) << hex;
  EXPECT_EQ(real("09 03 80 00", &v), ASN_E_INVLEN);
}

}  // namespace
