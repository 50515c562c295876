// OCTET STRING, BIT STRING and character strings, primitive and constructed.
#include <gtest/gtest.h>

#include "decode_harness.h"

namespace {

using FixedDecoder = int (*)(ASN1CTXT*, ASN1OCTET*, ASN1UINT*, int, int);

struct OctResult {
  int stat;
  std::string hex;
  bool inMessage;
};

OctResult octstr(const std::string& hex, bool fastCopy = false, int tagging = ASN1EXPL,
                 int length = 0) {
  DecodeHarness h(hex);
  if (fastCopy) rtSetFastCopy(h.ctxt());
  const ASN1OCTET* data = reinterpret_cast<const ASN1OCTET*>(1);
  ASN1UINT n = 12345;
  OctResult r{xd_octstr(h.ctxt(), &data, &n, tagging, length), "", false};
  if (r.stat < 0) {
    EXPECT_EQ(h.context().errorStatus(), r.stat) << hex;
    return r;
  }
  EXPECT_EQ(h.pos(), h.size()) << hex;
  if (n == 0) {
    EXPECT_EQ(data, nullptr) << hex;
  }
  r.hex = n ? hexText(data, n) : "";
  r.inMessage = data >= h.data() && data < h.data() + h.size();
  return r;
}

// Nested constructed OCTET STRING: depth levels of 24 80 around one primitive segment.
std::string nestedOctets(int depth) {
  std::string hex;
  for (int i = 0; i < depth; ++i) hex += "24 80 ";
  hex += "04 01 41 ";
  for (int i = 0; i < depth; ++i) hex += "00 00 ";
  return hex;
}

TEST(XdOctstr, PrimitiveIsCopiedUnlessFastCopy) {
  OctResult copied = octstr("04 03 01 02 03");
  EXPECT_EQ(copied.hex, "01 02 03");
  EXPECT_FALSE(copied.inMessage);
  OctResult inPlace = octstr("04 03 01 02 03", true);
  EXPECT_EQ(inPlace.hex, "01 02 03");
  EXPECT_TRUE(inPlace.inMessage);
  EXPECT_EQ(octstr("04 00").hex, "");
  EXPECT_EQ(octstr("04 00", true).hex, "");
  EXPECT_EQ(octstr("AA BB", false, ASN1IMPL, 2).hex, "AA BB");
  EXPECT_EQ(octstr("AA BB", false, ASN1IMPL, 3).stat, ASN_E_ENDOFBUF);
  EXPECT_EQ(octstr("04 04 01 02 03").stat, ASN_E_INVLEN);
  EXPECT_EQ(octstr("03 01 00").stat, ASN_E_IDNOTFOU);
}

TEST(XdOctstr, ConstructedSegmentsAreJoinedWhateverTheirLengthForm) {
  EXPECT_EQ(octstr("24 80 04 02 41 42 04 01 43 00 00").hex, "41 42 43");
  EXPECT_EQ(octstr("24 07 04 02 41 42 04 01 43").hex, "41 42 43");
  // Nested, mixed forms; fast copy cannot point at scattered segments.
  OctResult mixed = octstr("24 80 24 05 04 03 41 42 43 24 80 04 01 44 00 00 00 00", true);
  EXPECT_EQ(mixed.hex, "41 42 43 44");
  EXPECT_FALSE(mixed.inMessage);
  EXPECT_EQ(octstr("24 80 00 00").hex, "");
  EXPECT_EQ(octstr("24 00").hex, "");
}

TEST(XdOctstr, MalformedConstructedStrings) {
  // A segment of another type.
  EXPECT_EQ(octstr("24 80 03 01 00 00 00").stat, ASN_E_IDNOTFOU);
  // A segment that overruns its definite parent, directly or through a nested level.
  EXPECT_EQ(octstr("24 03 04 02 41 42").stat, ASN_E_INVLEN);
  EXPECT_EQ(octstr("24 04 24 80 04 01 41 00 00").stat, ASN_E_INVLEN);
  // No end-of-contents octets before the data ends.
  EXPECT_EQ(octstr("24 80 04 01 41").stat, ASN_E_ENDOFBUF);
  EXPECT_EQ(octstr("24 80 04 01 41 04").stat, ASN_E_ENDOFBUF);
}

TEST(XdOctstr, NestingIsBoundedAt32Levels) {
  EXPECT_EQ(octstr(nestedOctets(32)).hex, "41");
  DecodeHarness h(nestedOctets(33));
  const ASN1OCTET* data;
  ASN1UINT n;
  EXPECT_EQ(xd_octstr(h.ctxt(), &data, &n, ASN1EXPL, 0), ASN_E_TOODEEP);
  EXPECT_EQ(h.context().errorStatus(), ASN_E_TOODEEP);
  // Deep enough to exhaust the call stack if the walk were unbounded.
  std::string deep;
  for (int i = 0; i < 100000; ++i) deep += "24 80 ";
  EXPECT_EQ(octstr(deep).stat, ASN_E_TOODEEP);
}

// What a fixed-size decoder makes of hex in an array of exactly `octets`, told a capacity
// of `capacity` (octets or bits): "count: octets", or the status.
std::string fixed(FixedDecoder dec, const std::string& hex, size_t octets, ASN1UINT capacity) {
  std::vector<ASN1OCTET> buf(octets);
  int stat = dec(DecodeHarness(hex).ctxt(), buf.data(), &capacity, ASN1EXPL, 0);
  if (stat < 0) return "status " + std::to_string(stat);
  return std::to_string(capacity) + ": " + hexText(buf.data(), octets);
}

TEST(XdOctstrS, CapacityOfTheCallersArray) {
  for (const char* hex : {"04 03 41 42 43", "24 80 04 01 41 04 02 42 43 00 00"}) {
    EXPECT_EQ(fixed(xd_octstr_s, hex, 3, 3), "3: 41 42 43") << hex;
    EXPECT_EQ(fixed(xd_octstr_s, hex, 2, 2), "status -17") << hex;
  }
}

struct BitResult {
  int stat;
  ASN1UINT numbits;
  std::string hex;
  bool inMessage;
};

BitResult bitstr(const std::string& hex, bool fastCopy = false) {
  DecodeHarness h(hex);
  if (fastCopy) rtSetFastCopy(h.ctxt());
  const ASN1OCTET* data = nullptr;
  ASN1UINT numbits = 12345;
  BitResult r{xd_bitstr(h.ctxt(), &data, &numbits, ASN1EXPL, 0), numbits, "", false};
  if (r.stat < 0) {
    EXPECT_EQ(h.context().errorStatus(), r.stat) << hex;
    return r;
  }
  EXPECT_EQ(h.pos(), h.size()) << hex;
  if (numbits == 0) {
    EXPECT_EQ(data, nullptr) << hex;
  }
  r.hex = numbits ? hexText(data, (numbits + 7) / 8) : "";
  r.inMessage = data >= h.data() && data < h.data() + h.size();
  return r;
}

TEST(XdBitstr, PrimitiveForms) {
  for (bool fast : {false, true}) {
    BitResult ten = bitstr("03 03 06 AB C0", fast);
    EXPECT_EQ(ten.numbits, 10u);
    EXPECT_EQ(ten.hex, "AB C0");
    EXPECT_EQ(ten.inMessage, fast);
    EXPECT_EQ(bitstr("03 02 00 FF", fast).numbits, 8u);
    EXPECT_EQ(bitstr("03 01 00", fast).numbits, 0u);
    // Deliberately accepted: no unused-bits octet at all.
    EXPECT_EQ(bitstr("03 00", fast).numbits, 0u);
    EXPECT_EQ(bitstr("03 01 03", fast).stat, ASN_E_INVLEN);
    EXPECT_EQ(bitstr("03 02 08 FF", fast).stat, ASN_E_BADVALUE);
  }
}

TEST(XdBitstr, ConstructedSegmentsShareOneUnusedCount) {
  BitResult joined = bitstr("23 80 03 02 00 AA 23 04 03 02 04 B0 00 00", true);
  EXPECT_EQ(joined.stat, 0);
  EXPECT_EQ(joined.numbits, 12u);
  EXPECT_EQ(joined.hex, "AA B0");
  EXPECT_FALSE(joined.inMessage);
  EXPECT_EQ(bitstr("23 80 00 00").numbits, 0u);
  EXPECT_EQ(bitstr("23 03 03 01 00").numbits, 0u);
  // Only the last segment may leave bits unused, each segment has its unused-bits octet.
  EXPECT_EQ(bitstr("23 80 03 02 04 A0 03 02 00 FF 00 00").stat, ASN_E_BADVALUE);
  EXPECT_EQ(bitstr("23 80 03 00 00 00").stat, ASN_E_INVLEN);
  EXPECT_EQ(bitstr("23 80 03 02 09 A0 00 00").stat, ASN_E_BADVALUE);
  EXPECT_EQ(bitstr("23 80 04 02 00 A0 00 00").stat, ASN_E_IDNOTFOU);
}

TEST(XdBitstrS, CapacityInBits) {
  EXPECT_EQ(fixed(xd_bitstr_s, "03 03 06 AB C0", 2, 10), "10: AB C0");
  EXPECT_EQ(fixed(xd_bitstr_s, "03 03 06 AB C0", 2, 9), "status -17");
  EXPECT_EQ(fixed(xd_bitstr_s, "23 08 03 02 00 AA 03 02 07 80", 2, 16), "9: AA 80");
  EXPECT_EQ(fixed(xd_bitstr_s, "23 08 03 02 00 AA 03 02 07 80", 2, 8), "status -17");
}

TEST(XdConsStr, LengthAndSizeWithoutMovingThePosition) {
  DecodeHarness h("24 80 04 02 41 42 24 80 04 01 43 00 00 00 00 FF");
  h.ctxt()->buffer.byteIndex = 2;
  int len = ASN_K_INDEFLEN, size = -1;
  ASSERT_EQ(xd_consStrIndefLenAndSize(h.ctxt(), ASN_ID_OCTSTR, &len, &size), 0);
  EXPECT_EQ(len, 13);
  EXPECT_EQ(size, 3);
  EXPECT_EQ(h.pos(), 2u);

  DecodeHarness bits("03 02 00 AA 03 02 04 B0");
  len = 8;
  ASSERT_EQ(xd_consStrIndefLenAndSize(bits.ctxt(), ASN_ID_BITSTR, &len, &size), 0);
  EXPECT_EQ(len, 8);
  EXPECT_EQ(size, 3);
}

// The text decoded from hex, or the status as text; the context lives only inside.
std::string charstr(const std::string& hex, ASN1TagType tag, bool fastCopy = false) {
  DecodeHarness h(hex);
  if (fastCopy) rtSetFastCopy(h.ctxt());
  const char* text = nullptr;
  int stat = xd_charstr(h.ctxt(), &text, ASN1EXPL, tag, 0);
  if (stat < 0) return "status " + std::to_string(stat);
  EXPECT_FALSE((const ASN1OCTET*)text >= h.data() && (const ASN1OCTET*)text < h.data() + h.size());
  return text;
}

TEST(XdCharstr, TextIsAlwaysACopyTerminatedAndJoined) {
  EXPECT_EQ(charstr("13 05 48 65 6C 6C 6F", ASN_ID_PrintableString, true), "Hello");
  const char* ia5[][2] = {{"16 00", ""}, {"36 80 04 02 48 69 04 01 21 00 00", "Hi!"},
                          {"36 80 00 00", ""}, {"0C 01 41", "status -3"},
                          {"16 80 00 00", "status -5"}};
  for (const auto& c : ia5) EXPECT_EQ(charstr(c[0], ASN_ID_IA5String), c[1]) << c[0];
}

template <typename Str, typename Fn>
std::vector<ASN1UINT> wide(Fn fn, const std::string& hex, ASN1TagType tag) {
  DecodeHarness h(hex);
  Str s{99, nullptr};
  int stat = fn(h.ctxt(), &s, ASN1EXPL, tag, 0);
  if (stat < 0) return {(ASN1UINT)stat};
  if (s.nchars == 0) {
    EXPECT_EQ(s.data, nullptr);
  }
  return std::vector<ASN1UINT>(s.data, s.data + s.nchars);
}

TEST(XdCharstr, WideCharactersMostSignificantOctetFirst) {
  using V = std::vector<ASN1UINT>;
  auto bmp = [](const std::string& hex) {
    return wide<Asn116BitCharString>(xd_16BitCharStr, hex, ASN_ID_BMPString);
  };
  auto ucs = [](const std::string& hex) {
    return wide<Asn132BitCharString>(xd_32BitCharStr, hex, ASN_ID_UniversalString);
  };
  EXPECT_EQ(bmp("1E 04 00 48 04 10"), (V{0x48, 0x0410}));
  EXPECT_EQ(bmp("3E 80 04 01 00 04 03 48 04 10 00 00"), (V{0x48, 0x0410}));
  EXPECT_EQ(bmp("1E 00"), V{});
  EXPECT_EQ(bmp("1E 03 00 48 00"), V{(ASN1UINT)ASN_E_INVLEN});
  EXPECT_EQ(ucs("1C 08 00 01 F6 00 00 00 00 41"), (V{0x1F600, 0x41}));
  EXPECT_EQ(ucs("1C 06 00 01 F6 00 00 00"), V{(ASN1UINT)ASN_E_INVLEN});
}

}  // namespace
