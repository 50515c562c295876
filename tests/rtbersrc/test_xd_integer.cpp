// INTEGER into signed and unsigned targets, ENUMERATED, BOOLEAN and NULL.
#include <gtest/gtest.h>

#include <limits.h>

#include "decode_harness.h"

namespace {

template <typename T, typename Fn>
int decode(Fn fn, const std::string& hex, T* value, int tagging = ASN1EXPL, int length = 0) {
  DecodeHarness h(hex);
  int stat = fn(h.ctxt(), value, tagging, length);
  if (stat < 0) {
    EXPECT_EQ(h.context().errorStatus(), stat) << hex;
  } else {
    EXPECT_EQ(h.pos(), h.size()) << hex;
  }
  return stat;
}

// hex decodes whole to value, written over a value that differs from it in every bit.
template <typename T, typename Fn>
void expectValue(Fn fn, const std::string& hex, T value, int tagging = ASN1EXPL, int length = 0) {
  T v = static_cast<T>(~static_cast<uint64_t>(value));
  ASSERT_EQ(decode(fn, hex, &v, tagging, length), 0) << hex;
  EXPECT_EQ(v, value) << hex;
}

TEST(XdInteger, TwosComplementValues) {
  struct Case {
    const char* hex;
    ASN1INT value;
  } cases[] = {{"02 01 00", 0},          {"02 01 7F", 127},
               {"02 02 00 80", 128},     {"02 01 80", -128},
               {"02 02 FF 7F", -129},    {"02 01 FF", -1},
               {"02 04 7F FF FF FF", INT_MAX}, {"02 04 80 00 00 00", INT_MIN},
               {"02 03 00 00 01", 1}};
  for (const Case& c : cases) expectValue(xd_integer, c.hex, c.value);
}

TEST(XdInteger, LengthAndTagFailures) {
  ASN1INT v;
  EXPECT_EQ(decode(xd_integer, "02 05 00 00 00 00 01", &v), ASN_E_TOOBIG);
  EXPECT_EQ(decode(xd_integer, "02 00", &v), ASN_E_INVLEN);
  expectValue<ASN1INT>(xd_integer, "02 82 00 01 05", 5);
  // Only the one-octet universal tag is accepted, and only primitive.
  EXPECT_EQ(decode(xd_integer, "0A 01 05", &v), ASN_E_IDNOTFOU);
  EXPECT_EQ(decode(xd_integer, "22 03 02 01 05", &v), ASN_E_IDNOTFOU);
  EXPECT_EQ(decode(xd_integer, "02 80 00 00", &v), ASN_E_INVLEN);
  // Implicit: the caller's length, checked against the data.
  expectValue<ASN1INT>(xd_integer, "FF 7F", -129, ASN1IMPL, 2);
  EXPECT_EQ(decode(xd_integer, "FF 7F", &v, ASN1IMPL, 3), ASN_E_ENDOFBUF);
  EXPECT_EQ(decode(xd_integer, "FF 7F", &v, ASN1IMPL, ASN_K_INDEFLEN), ASN_E_INVLEN);
}

TEST(XdInteger, NarrowAndWideTargets) {
  expectValue<ASN1INT8>(xd_int8, "02 01 80", -128);
  ASN1INT8 i8;
  EXPECT_EQ(decode(xd_int8, "02 02 00 80", &i8), ASN_E_TOOBIG);
  expectValue<ASN1SINT>(xd_int16, "02 02 80 00", SHRT_MIN);
  ASN1SINT i16;
  EXPECT_EQ(decode(xd_int16, "02 03 00 80 00", &i16), ASN_E_TOOBIG);
  expectValue<ASN1INT64>(xd_int64, "02 08 80 00 00 00 00 00 00 00", LLONG_MIN);
  expectValue<ASN1INT64>(xd_int64, "02 05 FF 00 00 00 00", -(1LL << 32));
  ASN1INT64 i64;
  EXPECT_EQ(decode(xd_int64, "02 09 00 80 00 00 00 00 00 00 00", &i64), ASN_E_TOOBIG);
  expectValue<ASN1ENUM>(xd_enum, "0A 01 08", 8);
  ASN1ENUM e;
  EXPECT_EQ(decode(xd_enum, "02 01 08", &e), ASN_E_IDNOTFOU);
}

TEST(XdUnsigned, WidthWithOptionalLeadingZero) {
  expectValue<ASN1UINT>(xd_unsigned, "02 05 00 80 00 00 00", 0x80000000u);
  expectValue<ASN1UINT>(xd_unsigned, "02 05 00 FF FF FF FF", 0xFFFFFFFFu);
  ASN1UINT u;
  EXPECT_EQ(decode(xd_unsigned, "02 05 01 00 00 00 00", &u), ASN_E_TOOBIG);
  EXPECT_EQ(decode(xd_unsigned, "02 06 00 00 00 00 00 01", &u), ASN_E_TOOBIG);
  EXPECT_EQ(decode(xd_unsigned, "30 01 00", &u), ASN_E_IDNOTFOU);

  expectValue<ASN1UINT8>(xd_uint8, "02 02 00 FF", 255);
  ASN1UINT8 u8;
  EXPECT_EQ(decode(xd_uint8, "02 02 01 00", &u8), ASN_E_TOOBIG);
  expectValue<ASN1USINT>(xd_uint16, "02 03 00 FF FE", 0xFFFE);
  expectValue<ASN1UINT64>(xd_uint64, "02 09 00 FF FF FF FF FF FF FF FE", 0xFFFFFFFFFFFFFFFEull);
  ASN1UINT64 u64;
  EXPECT_EQ(decode(xd_uint64, "02 09 01 00 00 00 00 00 00 00 00", &u64), ASN_E_TOOBIG);
}

TEST(XdUnsigned, DeliberateLeniencies) {
  // A negative INTEGER reads as its bit pattern; empty contents read as 0.
  expectValue<ASN1UINT>(xd_unsigned, "02 01 FF", 0xFFu);
  expectValue<ASN1UINT>(xd_unsigned, "02 04 FF FF FF FE", 0xFFFFFFFEu);
  expectValue<ASN1UINT>(xd_unsigned, "02 00", 0u);
  ASN1UINT u;
  // Contents that run past the data: one trace entry, from the point of detection.
  DecodeHarness h("01 02");
  EXPECT_EQ(xd_unsigned(h.ctxt(), &u, ASN1IMPL, 4), ASN_E_ENDOFBUF);
  EXPECT_EQ(h.errorDepth(), 1);
  EXPECT_EQ(decode(xd_unsigned, "02", &u), ASN_E_ENDOFBUF);
}

TEST(XdBoolean, ValueKeptAsItStandsAndShortLengthOnly) {
  expectValue<ASN1BOOL>(xd_boolean, "01 01 05", 5);
  expectValue<ASN1BOOL>(xd_boolean, "01 01 00", 0);
  expectValue<ASN1BOOL>(xd_boolean, "FF", 0xFF, ASN1IMPL, 1);
  ASN1BOOL b;
  EXPECT_EQ(decode(xd_boolean, "01 02 FF FF", &b), ASN_E_INVLEN);
  EXPECT_EQ(decode(xd_boolean, "01 00", &b), ASN_E_INVLEN);
  EXPECT_EQ(decode(xd_boolean, "01 81 01 FF", &b), ASN_E_INVLEN);
  EXPECT_EQ(decode(xd_boolean, "02 01 FF", &b), ASN_E_IDNOTFOU);
  EXPECT_EQ(decode(xd_boolean, "01 01", &b), ASN_E_ENDOFBUF);
  EXPECT_EQ(decode(xd_boolean, "", &b, ASN1IMPL, 1), ASN_E_ENDOFBUF);
}

TEST(XdNull, EmptyContentsOnly) {
  auto null = [](ASN1CTXT* c, void*, int tagging, int length) {
    return xd_null(c, tagging, length);
  };
  void* none = nullptr;
  EXPECT_EQ(decode(null, "05 00", &none), 0);
  EXPECT_EQ(decode(null, "", &none, ASN1IMPL, 0), 0);
  EXPECT_EQ(decode(null, "05 01 00", &none), ASN_E_INVLEN);
  EXPECT_EQ(decode(null, "00", &none, ASN1IMPL, 1), ASN_E_INVLEN);
  EXPECT_EQ(decode(null, "04 00", &none), ASN_E_IDNOTFOU);
}

std::string bigint(const std::string& hex, int tagging = ASN1EXPL, int length = 0) {
  DecodeHarness h(hex);
  const char* text = nullptr;
  int stat = xd_bigint(h.ctxt(), &text, tagging, length);
  if (stat < 0) return "status " + std::to_string(stat);
  EXPECT_EQ(h.pos(), h.size()) << hex;
  return text;
}

TEST(XdBigint, HexTextOfTheMagnitude) {
  const char* cases[][2] = {
      {"02 01 00", "0x00"}, {"02 01 7F", "0x7f"}, {"02 02 00 80", "0x80"},
      {"02 03 00 00 01", "0x01"}, {"02 09 00 FF EE DD CC BB AA 99 88", "0xffeeddccbbaa9988"},
      {"02 01 FF", "-0x01"}, {"02 01 80", "-0x80"}, {"02 02 FF 7F", "-0x81"},
      {"02 02 FF 00", "-0x0100"}, {"02 02 80 00", "-0x8000"}, {"02 03 FF FF FF", "-0x01"},
      {"02 00", "status -5"}, {"04 01 00", "status -3"}, {"02 03 01", "status -5"}};
  for (const auto& c : cases) EXPECT_EQ(bigint(c[0]), c[1]) << c[0];
  EXPECT_EQ(bigint("01 02", ASN1IMPL, 2), "0x0102");
  EXPECT_EQ(bigint("01", ASN1IMPL, 2), "status -2");
}

}  // namespace
