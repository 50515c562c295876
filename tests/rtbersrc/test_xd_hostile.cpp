// What the decoders do with what the encoder writes, and with every truncation of it: each
// valid encoding cut short at any octet must fail with a recorded error, never read past it.
#include <gtest/gtest.h>

#include <float.h>
#include <limits.h>
#include <math.h>

#include <functional>
#include <random>

#include "decode_harness.h"
#include "encode_harness.h"

namespace {

using Decoder = std::function<int(ASN1CTXT*)>;

struct Sample {
  const char* name;
  const char* hex;
  Decoder decode;
  bool fastCopy;
};

template <typename T, typename Fn>
Decoder into(Fn fn) {
  return [fn](ASN1CTXT* c) {
    T v{};
    return fn(c, &v, ASN1EXPL, 0);
  };
}

Decoder heapString(int (*fn)(ASN1CTXT*, const ASN1OCTET**, ASN1UINT*, int, int)) {
  return [fn](ASN1CTXT* c) {
    const ASN1OCTET* data;
    ASN1UINT n;
    return fn(c, &data, &n, ASN1EXPL, 0);
  };
}

Decoder fixedString(int (*fn)(ASN1CTXT*, ASN1OCTET*, ASN1UINT*, int, int), ASN1UINT cap) {
  return [fn, cap](ASN1CTXT* c) {
    ASN1OCTET buf[16];
    ASN1UINT n = cap;
    return fn(c, buf, &n, ASN1EXPL, 0);
  };
}

template <typename Str, typename Fn>
Decoder taggedString(Fn fn, ASN1TagType tag) {
  return [fn, tag](ASN1CTXT* c) {
    Str s{};
    return fn(c, &s, ASN1EXPL, tag, 0);
  };
}

std::vector<Sample> samples() {
  const char* consOct = "24 80 24 05 04 03 41 42 43 24 80 04 01 44 00 00 00 00";
  const char* consBits = "23 80 03 02 00 AA 23 04 03 02 04 B0 00 00";
  return {
      {"integer", "02 02 FF 7F", into<ASN1INT>(xd_integer), false},
      {"int8", "02 01 80", into<ASN1INT8>(xd_int8), false},
      {"int16", "02 02 80 00", into<ASN1SINT>(xd_int16), false},
      {"int64", "02 08 80 00 00 00 00 00 00 01", into<ASN1INT64>(xd_int64), false},
      {"enum", "0A 01 03", into<ASN1ENUM>(xd_enum), false},
      {"unsigned", "02 05 00 80 00 00 00", into<ASN1UINT>(xd_unsigned), false},
      {"uint8", "02 02 00 FF", into<ASN1UINT8>(xd_uint8), false},
      {"uint16", "02 81 02 FF FF", into<ASN1USINT>(xd_uint16), false},
      {"uint64", "02 09 00 FF FF FF FF FF FF FF FF", into<ASN1UINT64>(xd_uint64), false},
      {"boolean", "01 01 FF", into<ASN1BOOL>(xd_boolean), false},
      {"null", "05 00", [](ASN1CTXT* c) { return xd_null(c, ASN1EXPL, 0); }, false},
      {"bitstr", "03 03 06 AB C0", heapString(xd_bitstr), false},
      {"bitstr fast", "03 03 06 AB C0", heapString(xd_bitstr), true},
      {"bitstr constructed", consBits, heapString(xd_bitstr), false},
      {"bitstr_s constructed", consBits, fixedString(xd_bitstr_s, 16), false},
      {"octstr", "04 82 00 03 41 42 43", heapString(xd_octstr), false},
      {"octstr fast", "04 03 41 42 43", heapString(xd_octstr), true},
      {"octstr constructed", consOct, heapString(xd_octstr), true},
      {"octstr_s constructed", consOct, fixedString(xd_octstr_s, 4), false},
      {"charstr", "36 80 04 02 48 69 04 01 21 00 00",
       [](ASN1CTXT* c) {
         const char* text;
         return xd_charstr(c, &text, ASN1EXPL, ASN_ID_IA5String, 0);
       },
       false},
      {"bmp", "1E 04 00 48 04 10",
       taggedString<Asn116BitCharString>(xd_16BitCharStr, ASN_ID_BMPString), false},
      {"ucs", "1C 04 00 01 F6 00",
       taggedString<Asn132BitCharString>(xd_32BitCharStr, ASN_ID_UniversalString), false},
      {"objid", "06 06 2A 86 48 86 F7 0D", into<ASN1OBJID>(xd_objid), false},
      {"oid64", "06 03 2A 86 48", into<ASN1OID64>(xd_oid64), false},
      {"reloid", "0D 02 86 48", into<ASN1RELOID>(xd_reloid), false},
      {"real binary", "09 05 83 01 0A 01 03", into<ASN1REAL>(xd_real), false},
      {"real decimal", "09 04 01 2D 34 32", into<ASN1REAL>(xd_real), false},
      {"bigint", "02 03 FF 00 01",
       [](ASN1CTXT* c) {
         const char* text;
         return xd_bigint(c, &text, ASN1EXPL, 0);
       },
       false},
      {"open type", "30 80 A0 80 02 01 01 00 00 04 01 41 00 00",
       [](ASN1CTXT* c) {
         const ASN1OCTET* data;
         ASN1UINT n;
         return xd_OpenType(c, &data, &n);
       },
       false},
      {"next element", "7F 81 48 80 9F 20 01 00 00 00",
       [](ASN1CTXT* c) { return xd_NextElement(c); }, false},
  };
}

TEST(XdHostile, EveryTruncationOfAValidEncodingFailsWithARecordedError) {
  for (const Sample& s : samples()) {
    Octets full = hexOctets(s.hex);
    {
      DecodeHarness h(full);
      if (s.fastCopy) rtSetFastCopy(h.ctxt());
      ASSERT_EQ(s.decode(h.ctxt()), 0) << s.name;
      EXPECT_EQ(h.pos(), full.size()) << s.name;
    }
    for (size_t cut = 0; cut < full.size(); ++cut) {
      DecodeHarness h(full.data(), cut);
      if (s.fastCopy) rtSetFastCopy(h.ctxt());
      int stat = s.decode(h.ctxt());
      EXPECT_LT(stat, 0) << s.name << " cut at " << cut;
      EXPECT_EQ(h.context().errorStatus(), stat) << s.name << " cut at " << cut;
    }
  }
}

// ---- Round trips with the encoder ------------------------------------------------------

template <typename T>
Octets encodeWith(int (*enc)(ASN1CTXT*, const T*, int), T value) {
  EncodeHarness e;
  EXPECT_GT(enc(e.ctxt(), &value, ASN1EXPL), 0);
  Bytes b = e.written();
  return Octets(b.begin(), b.end());
}

template <typename T>
T decodeWith(int (*dec)(ASN1CTXT*, T*, int, int), const Octets& octets) {
  DecodeHarness d(octets);
  T value{};
  EXPECT_EQ(dec(d.ctxt(), &value, ASN1EXPL, 0), 0) << hexText(octets.data(), octets.size());
  EXPECT_EQ(d.pos(), octets.size());
  return value;
}

template <typename T>
void roundTripIntegers(int (*enc)(ASN1CTXT*, const T*, int), int (*dec)(ASN1CTXT*, T*, int, int),
                       std::vector<T> values) {
  std::mt19937_64 rng(1234);
  for (int i = 0; i < 200; ++i) values.push_back((T)rng());
  for (int shift = 0; shift < (int)(8 * sizeof(T)); ++shift) {
    const ASN1UINT64 bit = (ASN1UINT64)1 << shift;
    values.insert(values.end(), {(T)bit, (T)(bit - 1), (T)(bit + 1), (T)(0 - bit)});
  }
  for (T v : values) EXPECT_EQ(decodeWith(dec, encodeWith(enc, v)), v) << +v;
}

TEST(XdRoundTrip, IntegersOfEveryWidthAndSignedness) {
  roundTripIntegers<ASN1INT>(xe_integer, xd_integer, {0, -1, 127, 128, -128, -129, INT_MIN});
  roundTripIntegers<ASN1INT8>(xe_int8, xd_int8, {0, -1, SCHAR_MIN, SCHAR_MAX});
  roundTripIntegers<ASN1SINT>(xe_int16, xd_int16, {0, -1, SHRT_MIN, SHRT_MAX});
  roundTripIntegers<ASN1INT64>(xe_int64, xd_int64, {0, -1, LLONG_MIN, LLONG_MAX});
  roundTripIntegers<ASN1ENUM>(xe_enum, xd_enum, {0, 10, -5});
  roundTripIntegers<ASN1UINT>(xe_unsigned, xd_unsigned, {0, 0x80000000u, UINT_MAX});
  roundTripIntegers<ASN1UINT8>(xe_uint8, xd_uint8, {0, 0x80, UCHAR_MAX});
  roundTripIntegers<ASN1USINT>(xe_uint16, xd_uint16, {0, 0x8000, USHRT_MAX});
  roundTripIntegers<ASN1UINT64>(xe_uint64, xd_uint64, {0, 1ull << 63, ULLONG_MAX});
}

TEST(XdRoundTrip, BooleansComeBackAsFF) {
  for (int v : {0, 1, 0x80}) {
    EXPECT_EQ(decodeWith(xd_boolean, encodeWith(xe_boolean, (ASN1BOOL)v)), v ? 0xFF : 0);
  }
}

TEST(XdRoundTrip, OctetAndBitStringsOfManyLengths) {
  for (ASN1UINT n : {0u, 1u, 127u, 128u, 255u, 256u, 70000u}) {
    Octets src(n);
    for (ASN1UINT i = 0; i < n; ++i) src[i] = (uint8_t)(i * 31 + 7);
    EncodeHarness e;
    ASSERT_GT(xe_octstr(e.ctxt(), src.data(), n, ASN1EXPL), 0);
    Bytes enc = e.written();
    DecodeHarness d(Octets(enc.begin(), enc.end()));
    const ASN1OCTET* data;
    ASN1UINT got;
    ASSERT_EQ(xd_octstr(d.ctxt(), &data, &got, ASN1EXPL, 0), 0);
    ASSERT_EQ(got, n);
    if (n) {
      EXPECT_EQ(Octets(data, data + n), src);
    }
  }
  for (ASN1UINT bits = 0; bits <= 40; ++bits) {
    ASN1OCTET src[5] = {0xA5, 0x5A, 0xC3, 0x3C, 0xF0};
    if (bits % 8) src[bits / 8] &= (ASN1OCTET)(0xFF << (8 - bits % 8));
    EncodeHarness e;
    ASSERT_GT(xe_bitstr(e.ctxt(), src, bits, ASN1EXPL), 0);
    Bytes enc = e.written();
    DecodeHarness d(Octets(enc.begin(), enc.end()));
    const ASN1OCTET* data;
    ASN1UINT got;
    ASSERT_EQ(xd_bitstr(d.ctxt(), &data, &got, ASN1EXPL, 0), 0);
    ASSERT_EQ(got, bits);
    EXPECT_EQ(Octets(data, data + (bits + 7) / 8), Octets(src, src + (bits + 7) / 8));
  }
}

TEST(XdRoundTrip, CharacterStrings) {
  {
    EncodeHarness e;
    ASSERT_GT(xe_charstr(e.ctxt(), "Quillon", ASN1EXPL, ASN_ID_UTF8String), 0);
    Bytes enc = e.written();
    DecodeHarness d(Octets(enc.begin(), enc.end()));
    const char* text;
    ASSERT_EQ(xd_charstr(d.ctxt(), &text, ASN1EXPL, ASN_ID_UTF8String, 0), 0);
    EXPECT_STREQ(text, "Quillon");
  }
  {
    ASN1USINT chars[] = {0x0041, 0x0410, 0xFFFD};
    Asn116BitCharString s{3, chars};
    EncodeHarness e;
    ASSERT_GT(xe_16BitCharStr(e.ctxt(), &s, ASN1EXPL, ASN_ID_BMPString), 0);
    Bytes enc = e.written();
    DecodeHarness d(Octets(enc.begin(), enc.end()));
    Asn116BitCharString got{};
    ASSERT_EQ(xd_16BitCharStr(d.ctxt(), &got, ASN1EXPL, ASN_ID_BMPString, 0), 0);
    ASSERT_EQ(got.nchars, 3u);
    EXPECT_EQ(std::vector<ASN1USINT>(got.data, got.data + 3), std::vector<ASN1USINT>(chars, chars + 3));
  }
  {
    ASN1UINT chars[] = {0x1F600, 0x41};
    Asn132BitCharString s{2, chars};
    EncodeHarness e;
    ASSERT_GT(xe_32BitCharStr(e.ctxt(), &s, ASN1EXPL, ASN_ID_UniversalString), 0);
    Bytes enc = e.written();
    DecodeHarness d(Octets(enc.begin(), enc.end()));
    Asn132BitCharString got{};
    ASSERT_EQ(xd_32BitCharStr(d.ctxt(), &got, ASN1EXPL, ASN_ID_UniversalString, 0), 0);
    ASSERT_EQ(got.nchars, 2u);
    EXPECT_EQ(got.data[0], 0x1F600u);
  }
}

template <typename Oid>
void expectSameArcs(const Oid& a, const Oid& b) {
  ASSERT_EQ(a.numids, b.numids);
  for (ASN1UINT i = 0; i < a.numids; ++i) EXPECT_EQ(a.subid[i], b.subid[i]) << i;
}

TEST(XdRoundTrip, ObjectIdentifiers) {
  std::vector<std::vector<ASN1UINT>> oids = {
      {1, 2, 840, 113549, 1, 1, 11}, {2, 999, 1}, {0, 39}, {2, 5, 29, 24}, {1, 3, 0xFFFFFFFFu}};
  std::vector<ASN1UINT> longest(ASN_K_MAXSUBIDS, 127);
  longest[0] = 1;
  longest[1] = 3;
  oids.push_back(longest);
  for (const auto& arcs : oids) {
    ASN1OBJID oid{};
    oid.numids = (ASN1UINT)arcs.size();
    std::copy(arcs.begin(), arcs.end(), oid.subid);
    expectSameArcs(decodeWith(xd_objid, encodeWith(xe_objid, oid)), oid);
    ASN1RELOID rel = oid;
    expectSameArcs(decodeWith(xd_reloid, encodeWith(xe_reloid, rel)), rel);
  }
  const ASN1OID64 wide = {3, {2, 0xFFFFFFFFFFull, ULLONG_MAX}};
  expectSameArcs(decodeWith(xd_oid64, encodeWith(xe_oid64, wide)), wide);
}

TEST(XdRoundTrip, RealValues) {
  std::vector<double> values = {1.0,     -1.0,    0.1,     -2.5,    M_PI,   1e300,
                                -1e-300, DBL_MAX, DBL_MIN, ldexp(1.0, -1074),
                                HUGE_VAL, -HUGE_VAL, 0.0};
  std::mt19937_64 rng(99);
  for (int i = 0; i < 500; ++i) {
    ASN1UINT64 bits = rng();
    double d;
    memcpy(&d, &bits, sizeof d);
    if (!isnan(d)) values.push_back(d);
  }
  for (double v : values) EXPECT_EQ(decodeWith(xd_real, encodeWith(xe_real, v)), v) << v;
  EXPECT_TRUE(isnan(decodeWith(xd_real, encodeWith(xe_real, (double)NAN))));
}

TEST(XdRoundTrip, BigIntegerTextIsStable) {
  const char* texts[] = {"0x00", "0x01", "0x7f", "0x80", "0xff", "0x0100",
                         "0x00ffeeddccbbaa99887766554433221100ffeeddccbbaa99887766554433221100",
                         "-0x01", "-0x80", "-0x81", "-0x0100", "-0x8000",
                         ("-0xffeeddccbbaa99887766554433221100ffeeddccbbaa99887766554433221100"
                          "ffeeddccbbaa99887766554433221100ffeeddccbbaa99887766554433221100")};
  for (const char* text : texts) {
    EncodeHarness e;
    ASSERT_GT(xe_bigint(e.ctxt(), text, ASN1EXPL), 0) << text;
    Bytes enc = e.written();
    DecodeHarness d(Octets(enc.begin(), enc.end()));
    const char* got;
    ASSERT_EQ(xd_bigint(d.ctxt(), &got, ASN1EXPL, 0), 0) << text;
    std::string expected = text;
    // The encoder drops a zero octet that carries no sign; the text then has none either.
    if (expected.rfind("0x00ff", 0) == 0) expected = "0x" + expected.substr(4);
    EXPECT_EQ(got, expected);
  }
}

}  // namespace
