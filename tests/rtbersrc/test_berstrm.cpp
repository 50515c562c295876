// BER, DER and CER coding over streams. The buffer coders are the reference: a stream encoder
// must write what the buffer encoder writes, and a stream decoder must give what the buffer
// decoder gives for the same octets, however the device hands them out.
#include <gtest/gtest.h>

#include <quillon/asn1berStream.h>
#include <quillon/asn1berdec.h>
#include <quillon/asn1berenc.h>

#include <math.h>
#include <string.h>

#include <functional>
#include <string>
#include <vector>

#include "decode_harness.h"
#include "encode_harness.h"
#include "heap_hooks.h"
#include "stream_harness.h"

namespace {

// ---- Encoding ----------------------------------------------------------------------------

// One value written by the buffer encoder and by the stream encoder, with either tagging.
struct EncodeCase {
  std::string name;
  std::function<int(ASN1CTXT*, int)> buffer;
  std::function<int(ASN1CTXT*, int)> stream;
};

ASN1USINT kBmpChars[] = {0x41, 0x20AC};
const Asn116BitCharString kBmp = {2, kBmpChars};
ASN1UINT kUnivChars[] = {0x1F600};
const Asn132BitCharString kUniv = {1, kUnivChars};

// A number: the buffer encoder takes it by address, the stream encoder by value.
template <typename T>
EncodeCase number(const std::string& name, T v, int (*buffer)(ASN1CTXT*, const T*, int),
                  int (*stream)(ASN1CTXT*, T, int)) {
  return {name, [=](ASN1CTXT* c, int t) { return buffer(c, &v, t); },
          [=](ASN1CTXT* c, int t) { return stream(c, v, t); }};
}

std::vector<EncodeCase> encodeCases() {
  static const ASN1OBJID oid = {4, {1, 2, 840, 113549}};
  static ASN1OID64 oid64 = {3, {2, 999, 0x123456789ABCDEFull}};
  static const ASN1OBJID reloid = {2, {128, 0}};
  static const ASN1OCTET bits[] = {0xA5, 0xC0};
  static const std::string longText(3000, 'q');
  static const StreamBytes longOctets(2000, 0x5A);
  static std::vector<ASN1USINT> wideChars(900, 0x263A);
  static const Asn116BitCharString longBmp = {900, wideChars.data()};
  std::vector<EncodeCase> cases;
  auto add = [&](std::string name, std::function<int(ASN1CTXT*, int)> b,
                 std::function<int(ASN1CTXT*, int)> s) { cases.push_back({name, b, s}); };
  for (ASN1INT v : {0, -1, 127, 128, -129, (ASN1INT)0x80000000, 0x7FFFFFFF}) {
    cases.push_back(number<ASN1INT>("int " + std::to_string(v), v, xe_integer, berEncStrmInt));
  }
  cases.push_back(number<ASN1INT8>("int8", -128, xe_int8, berEncStrmInt8));
  cases.push_back(number<ASN1SINT>("int16", -300, xe_int16, berEncStrmInt16));
  cases.push_back(number<ASN1INT64>("int64", -0x123456789ALL, xe_int64, berEncStrmInt64));
  cases.push_back(number<ASN1UINT>("uint", 0x80000000u, xe_unsigned, berEncStrmUInt));
  cases.push_back(number<ASN1UINT8>("uint8", 200, xe_uint8, berEncStrmUInt8));
  cases.push_back(number<ASN1USINT>("uint16", 0xFFFF, xe_uint16, berEncStrmUInt16));
  cases.push_back(number<ASN1UINT64>("uint64", ~0ull, xe_uint64, berEncStrmUInt64));
  cases.push_back(number<ASN1ENUM>("enum", 3, xe_enum, berEncStrmEnum));
  cases.push_back(number<ASN1BOOL>("bool", 7, xe_boolean, berEncStrmBool));
  for (ASN1REAL r : {0.0, 1.5, -0.15625, 1e300, (double)INFINITY}) {
    cases.push_back(number<ASN1REAL>("real " + std::to_string(r), r, xe_real, berEncStrmReal));
  }
  const char* big = "-0x0123456789abcdef0123456789abcdef";
  add("bigint", [=](ASN1CTXT* c, int t) { return xe_bigint(c, big, t); },
      [=](ASN1CTXT* c, int t) { return berEncStrmBigInt(c, big, t); });
  add("null", [](ASN1CTXT* c, int t) { return xe_null(c, t); },
      [](ASN1CTXT* c, int t) { return berEncStrmNull(c, t); });
  for (ASN1UINT n : {0u, 8u, 10u}) {
    add("bits " + std::to_string(n), [=](ASN1CTXT* c, int t) { return xe_bitstr(c, bits, n, t); },
        [=](ASN1CTXT* c, int t) { return berEncStrmBitStr(c, bits, n, t); });
  }
  for (ASN1UINT n : {15995u, 16000u}) {
    add("long bits " + std::to_string(n),
        [=](ASN1CTXT* c, int t) { return xe_bitstr(c, longOctets.data(), n, t); },
        [=](ASN1CTXT* c, int t) { return berEncStrmBitStr(c, longOctets.data(), n, t); });
  }
  add("octets", [](ASN1CTXT* c, int t) { return xe_octstr(c, bits, 2, t); },
      [](ASN1CTXT* c, int t) { return berEncStrmOctStr(c, bits, 2, t); });
  add("no octets", [](ASN1CTXT* c, int t) { return xe_octstr(c, nullptr, 5, t); },
      [](ASN1CTXT* c, int t) { return berEncStrmOctStr(c, nullptr, 5, t); });
  add("long octets", [](ASN1CTXT* c, int t) { return xe_octstr(c, longOctets.data(), 2000, t); },
      [](ASN1CTXT* c, int t) { return berEncStrmOctStr(c, longOctets.data(), 2000, t); });
  add("text", [](ASN1CTXT* c, int t) { return xe_charstr(c, "hello", t, ASN_ID_IA5String); },
      [](ASN1CTXT* c, int t) { return berEncStrmCharStr(c, "hello", t, ASN_ID_IA5String); });
  add("long text",
      [](ASN1CTXT* c, int t) { return xe_charstr(c, longText.c_str(), t, ASN_ID_UTF8String); },
      [](ASN1CTXT* c, int t) {
        return berEncStrmCharStr(c, longText.c_str(), t, ASN_ID_UTF8String);
      });
  add("bmp", [](ASN1CTXT* c, int t) { return xe_16BitCharStr(c, &kBmp, t, ASN_ID_BMPString); },
      [](ASN1CTXT* c, int t) { return berEncStrmBMPStr(c, &kBmp, t); });
  add("long bmp",
      [](ASN1CTXT* c, int t) { return xe_16BitCharStr(c, &longBmp, t, ASN_ID_BMPString); },
      [](ASN1CTXT* c, int t) { return berEncStrmBMPStr(c, &longBmp, t); });
  add("univ",
      [](ASN1CTXT* c, int t) { return xe_32BitCharStr(c, &kUniv, t, ASN_ID_UniversalString); },
      [](ASN1CTXT* c, int t) { return berEncStrmUnivStr(c, &kUniv, t); });
  add("oid", [](ASN1CTXT* c, int t) { return xe_objid(c, &oid, t); },
      [](ASN1CTXT* c, int t) { return berEncStrmObjId(c, &oid, t); });
  add("oid64", [](ASN1CTXT* c, int t) { return xe_oid64(c, &oid64, t); },
      [](ASN1CTXT* c, int t) { return berEncStrmObjId64(c, &oid64, t); });
  add("reloid", [](ASN1CTXT* c, int t) { return xe_reloid(c, &reloid, t); },
      [](ASN1CTXT* c, int t) { return berEncStrmRelativeOID(c, &reloid, t); });
  return cases;
}

// What the buffer encoder writes, made forward: with implicit tagging the stream encoders put
// the length in front of the contents (the caller having written its own identifier).
Bytes bufferEncoding(const EncodeCase& c, int tagging, int* count) {
  EncodeHarness h;
  *count = c.buffer(h.ctxt(), tagging);
  if (*count >= 0 && !tagging) *count += xe_len(h.ctxt(), *count);
  return h.written();
}

TEST(BerStrmEncode, WritesWhatTheBufferEncoderWrites) {
  for (const EncodeCase& c : encodeCases()) {
    for (int tagging : {ASN1EXPL, ASN1IMPL}) {
      int expectedCount = 0;
      Bytes expected = bufferEncoding(c, tagging, &expectedCount);
      MemoryOutput out;
      int count = c.stream(out.ctxt(), tagging);
      EXPECT_EQ(count, expectedCount) << c.name << " tagging " << tagging;
      StreamBytes got = out.bytes();
      EXPECT_EQ(hexOf(Bytes(got.begin(), got.end())), hexOf(expected))
          << c.name << " tagging " << tagging;
    }
  }
}

TEST(BerStrmEncode, FailuresAreTheBufferEncodersAndTheStreamsOwn) {
  MemoryOutput out;
  const ASN1OBJID bad = {2, {1, 40}};
  EXPECT_EQ(berEncStrmObjId(out.ctxt(), &bad, ASN1EXPL), ASN_E_INVOBJID);
  EXPECT_EQ(berEncStrmBigInt(out.ctxt(), "12x", ASN1EXPL), ASN_E_BADVALUE);
  EXPECT_EQ(berEncStrmCharStr(out.ctxt(), nullptr, ASN1EXPL, ASN_ID_IA5String),
            ASN_E_BADVALUE);
  const Asn116BitCharString noChars = {3, nullptr};
  EXPECT_EQ(berEncStrmBMPStr(out.ctxt(), &noChars, ASN1EXPL), ASN_E_BADVALUE);
  EXPECT_EQ(berEncStrmLength(out.ctxt(), -5), ASN_E_INVPARAM);
  EXPECT_EQ(berEncStrmBitStr(out.ctxt(), nullptr, 12, ASN1EXPL), 0) << "left out, as by xe_";
  EXPECT_TRUE(out.bytes().empty()) << "nothing of a failed value is written";

  MemoryInput in({0x02, 0x01, 0x00});
  EXPECT_EQ(berEncStrmInt(in.ctxt(), 1, ASN1EXPL), ASN_E_INVPARAM) << "an input stream";
  TestContext none;
  EXPECT_EQ(berEncStrmInt(none.get(), 1, ASN1EXPL), ASN_E_NOTINIT);
  EXPECT_EQ(none.errorStatus(), ASN_E_NOTINIT);
}

TEST(BerStrmEncode, HeadersAndIndefiniteLengths) {
  MemoryOutput out;
  int n = berEncStrmTagAndIndefLen(out.ctxt(), TM_UNIV | ASN_ID_SEQ);
  n += berEncStrmTag(out.ctxt(), TM_CTXT | 200);
  n += berEncStrmLength(out.ctxt(), 256);
  n += berEncStrmTagAndLen(out.ctxt(), TM_APPL | TM_CONS | 3, 5);
  n += berEncStrmEOC(out.ctxt());
  const ASN1OCTET element[] = {0x05, 0x00};
  n += berEncStrmOpenType(out.ctxt(), element, sizeof element);
  StreamBytes got = out.bytes();
  EXPECT_EQ(hexOf(Bytes(got.begin(), got.end())),
            "30 80 9F 81 48 82 01 00 63 05 00 00 05 00");
  EXPECT_EQ(n, (int)got.size());
}

// ---- CER ---------------------------------------------------------------------------------

// The segment headers of a constructed CER string: {tag octet, contents length} each.
std::vector<std::pair<int, int>> segmentsOf(const StreamBytes& enc, size_t start) {
  std::vector<std::pair<int, int>> segs;
  size_t i = start;
  while (i + 1 < enc.size() && !(enc[i] == 0 && enc[i + 1] == 0)) {
    int tag = enc[i];
    int len = enc[i + 1];
    size_t hdr = 2;
    if (len == 0x82) {
      len = enc[i + 2] << 8 | enc[i + 3];
      hdr = 4;
    } else if (len == 0x81) {
      len = enc[i + 2];
      hdr = 3;
    }
    segs.push_back({tag, len});
    i += hdr + (size_t)len;
  }
  return segs;
}

TEST(CerStrmEncode, LongStringsAreSegmentedByThousandsAndDecodeBack) {
  StreamBytes octets(2500);
  for (size_t i = 0; i < octets.size(); ++i) octets[i] = (unsigned char)(i % 253);
  MemoryOutput out;
  int n = cerEncStrmOctStr(out.ctxt(), octets.data(), 2500, ASN1EXPL);
  StreamBytes enc = out.bytes();
  EXPECT_EQ(n, (int)enc.size());
  ASSERT_GE(enc.size(), 4u);
  EXPECT_EQ(enc[0], 0x24);
  EXPECT_EQ(enc[1], 0x80);
  EXPECT_EQ(enc[enc.size() - 2], 0);
  EXPECT_EQ(enc[enc.size() - 1], 0);
  using Segs = std::vector<std::pair<int, int>>;
  EXPECT_EQ(segmentsOf(enc, 2), (Segs{{0x04, 1000}, {0x04, 1000}, {0x04, 500}}));

  MemoryInput in(enc);
  const ASN1OCTET* data = nullptr;
  ASN1UINT numocts = 0;
  ASSERT_EQ(berDecStrmDynOctStr(in.ctxt(), &data, &numocts, ASN1EXPL, 0), 0);
  ASSERT_EQ(numocts, 2500u);
  EXPECT_EQ(memcmp(data, octets.data(), 2500), 0);

  // Up to 1000 contents octets the string stays primitive.
  MemoryOutput shortOut;
  EXPECT_EQ(cerEncStrmOctStr(shortOut.ctxt(), octets.data(), 1000, ASN1EXPL), 1004);
  EXPECT_EQ(shortOut.bytes()[0], 0x04);
}

TEST(CerStrmEncode, BitStringSegmentsCarryTheirOwnUnusedBitsOctet) {
  StreamBytes octets(1999, 0xFF);
  octets.back() = 0xE0;  // three bits used in the last octet
  const ASN1UINT numbits = 1998 * 8 + 3;
  MemoryOutput out;
  ASSERT_GT(cerEncStrmBitStr(out.ctxt(), octets.data(), numbits, ASN1EXPL), 0);
  StreamBytes enc = out.bytes();
  using Segs = std::vector<std::pair<int, int>>;
  ASSERT_EQ(segmentsOf(enc, 2), (Segs{{0x03, 1000}, {0x03, 1000}, {0x03, 2}}));
  EXPECT_EQ(enc[0], 0x23);
  EXPECT_EQ(enc[2 + 4], 0x00) << "inner segments use all their bits";
  EXPECT_EQ(enc[2 + 1004 + 1004 + 2], 0x05) << "the last one says how many it leaves";

  MemoryInput in(enc);
  const ASN1OCTET* data = nullptr;
  ASN1UINT bits = 0;
  ASSERT_EQ(berDecStrmDynBitStr(in.ctxt(), &data, &bits, ASN1EXPL, 0), 0);
  EXPECT_EQ(bits, numbits);
  EXPECT_EQ(memcmp(data, octets.data(), octets.size()), 0);
}

TEST(CerStrmEncode, CharacterStringsSegmentAsOctetStringsOfWholeCharacters) {
  std::string text(1500, 'x');
  MemoryOutput out;
  ASSERT_GT(cerEncStrmCharStr(out.ctxt(), text.c_str(), ASN1EXPL, ASN_ID_IA5String), 0);
  StreamBytes enc = out.bytes();
  using Segs = std::vector<std::pair<int, int>>;
  EXPECT_EQ(enc[0], 0x36);
  EXPECT_EQ(segmentsOf(enc, 2), (Segs{{0x04, 1000}, {0x04, 500}}));
  MemoryInput in(enc);
  const char* back = nullptr;
  ASSERT_EQ(berDecStrmCharStr(in.ctxt(), &back, ASN1EXPL, ASN_ID_IA5String, 0), 0);
  EXPECT_EQ(back, text);

  std::vector<ASN1USINT> chars(700);
  for (size_t i = 0; i < chars.size(); ++i) chars[i] = (ASN1USINT)(0x3000 + i);
  const Asn116BitCharString bmp = {700, chars.data()};
  MemoryOutput bmpOut;
  ASSERT_GT(cerEncStrmBMPStr(bmpOut.ctxt(), &bmp, ASN1EXPL), 0);
  StreamBytes bmpEnc = bmpOut.bytes();
  EXPECT_EQ(bmpEnc[0], 0x3E);
  EXPECT_EQ(segmentsOf(bmpEnc, 2), (Segs{{0x04, 1000}, {0x04, 400}}));
  MemoryInput bmpIn(bmpEnc);
  Asn116BitCharString decoded = {0, nullptr};
  ASSERT_EQ(berDecStrmBMPStr(bmpIn.ctxt(), &decoded, ASN1EXPL, 0), 0);
  ASSERT_EQ(decoded.nchars, 700u);
  EXPECT_EQ(memcmp(decoded.data, chars.data(), 700 * sizeof(ASN1USINT)), 0);
}

TEST(CerStrmEncode, ImplicitConstructedStringRoundTrip) {
  StreamBytes octets(1200, 0x33);
  MemoryOutput out;
  const ASN1TagType tag = TM_CTXT | TM_CONS | 1;
  ASSERT_EQ(berEncStrmTag(out.ctxt(), tag), 1);
  ASSERT_GT(cerEncStrmOctStr(out.ctxt(), octets.data(), 1200, ASN1IMPL), 0);
  StreamBytes enc = out.bytes();
  EXPECT_EQ(enc[0], 0xA1);
  EXPECT_EQ(enc[1], 0x80);

  MemoryInput in(enc);
  int len = 0;
  ASSERT_EQ(berDecStrmMatchTag(in.ctxt(), TM_CTXT | 1, &len, 1), 0);
  EXPECT_EQ(len, ASN_K_INDEFLEN);
  const ASN1OCTET* data = nullptr;
  ASN1UINT numocts = 0;
  ASSERT_EQ(berDecStrmDynOctStr(in.ctxt(), &data, &numocts, ASN1IMPL, len), 0);
  EXPECT_EQ(numocts, 1200u);
  EXPECT_EQ(in.pos(), (long)enc.size());
}

// ---- Decoding: the stream gives what the buffer gives --------------------------------------

// Decodes one value at the context's position, by the buffer or by the stream decoder of one
// family, and renders it as text.
using Render = std::function<std::string(ASN1CTXT*, bool stream, int* stat)>;

template <typename T>
using Decoder = int (*)(ASN1CTXT*, T*, int, int);

template <typename T>
std::string show(T v) {
  return std::to_string(v);
}
std::string show(const char* v) { return v ? v : ""; }
template <typename Oid>
std::string arcsOf(const Oid& v) {
  std::string s;
  for (ASN1UINT i = 0; i < v.numids; ++i) s += (i ? "." : "") + std::to_string(v.subid[i]);
  return s;
}
std::string show(const ASN1OBJID& v) { return arcsOf(v); }
std::string show(const ASN1OID64& v) { return arcsOf(v); }
template <typename Str>
std::string charsOf(const Str& v) {
  std::string s;
  for (ASN1UINT i = 0; i < v.nchars; ++i) s += std::to_string(v.data[i]) + " ";
  return s;
}
std::string show(const Asn116BitCharString& v) { return charsOf(v); }
std::string show(const Asn132BitCharString& v) { return charsOf(v); }

// The families whose two decoders share one signature.
template <typename T>
Render family(Decoder<T> buffer, Decoder<T> stream) {
  return [=](ASN1CTXT* c, bool s, int* stat) {
    T v{};
    *stat = (s ? stream : buffer)(c, &v, ASN1EXPL, 0);
    return show(v);
  };
}

template <typename Str>
Render wideChars(int (*buffer)(ASN1CTXT*, Str*, int, ASN1TagType, int), Decoder<Str> stream,
                 ASN1TagType tag) {
  return [=](ASN1CTXT* c, bool s, int* stat) {
    Str v{};
    *stat = s ? stream(c, &v, ASN1EXPL, 0) : buffer(c, &v, ASN1EXPL, tag, 0);
    return show(v);
  };
}

using HeapDecoder = int (*)(ASN1CTXT*, const ASN1OCTET**, ASN1UINT*, int, int);
using FixedDecoder = int (*)(ASN1CTXT*, ASN1OCTET*, ASN1UINT*, int, int);

// Octets (bits false) or bits of a heap or fixed string, with their count.
Render heapString(HeapDecoder buffer, HeapDecoder stream, bool bits) {
  return [=](ASN1CTXT* c, bool s, int* stat) {
    const ASN1OCTET* d = nullptr;
    ASN1UINT n = 0;
    *stat = (s ? stream : buffer)(c, &d, &n, ASN1EXPL, 0);
    return std::to_string(n) + ":" + (d ? hexText(d, bits ? (n + 7) / 8 : n) : "");
  };
}

// A caller's array of exactly `octets`; the decoder is told its capacity in octets or bits.
Render fixedString(FixedDecoder buffer, FixedDecoder stream, size_t octets, bool bits) {
  return [=](ASN1CTXT* c, bool s, int* stat) {
    std::vector<ASN1OCTET> d(octets);
    ASN1UINT n = (ASN1UINT)(bits ? octets * 8 : octets);
    *stat = (s ? stream : buffer)(c, d.data(), &n, ASN1EXPL, 0);
    return std::to_string(n) + ":" + hexText(d.data(), octets);
  };
}

struct Family {
  Render render;
  std::vector<std::string> encodings;
};

// Complete encodings, good and bad, of every decoder family.
std::vector<Family> decodeFamilies() {
  std::string open, close;  // constructed strings nested deeper than the decoder allows
  for (int i = 0; i < 40; ++i) open += "24 80 ", close += "00 00 ";
  return {
      {family<ASN1INT>(xd_integer, berDecStrmInt),
       {"02 01 00", "02 02 FF 7F", "02 84 00 00 00 01 07", "02 05 01 00 00 00 00", "02 00",
        "04 01 00", "22 03 02 01 05"}},
      {family<ASN1INT8>(xd_int8, berDecStrmInt8), {"02 01 80", "02 02 00 80"}},
      {family<ASN1UINT>(xd_unsigned, berDecStrmUInt),
       {"02 05 00 80 00 00 00", "02 05 01 80 00 00 00"}},
      {family<ASN1UINT64>(xd_uint64, berDecStrmUInt64), {"02 09 00 FF FF FF FF FF FF FF FF"}},
      {family<ASN1ENUM>(xd_enum, berDecStrmEnum), {"0A 01 03", "02 01 03"}},
      {family<ASN1BOOL>(xd_boolean, berDecStrmBool), {"01 01 05", "01 02 00 00", "01 81 01 FF"}},
      {family<ASN1REAL>(xd_real, berDecStrmReal),
       {"09 00", "09 01 40", "09 03 80 FF 03", "09 04 03 31 2E 35", "09 01 77"}},
      {family<const char*>(xd_bigint, berDecStrmBigInt),
       {"02 09 00 80 00 00 00 00 00 00 00", "02 00"}},
      {[](ASN1CTXT* c, bool s, int* stat) {
         *stat = s ? berDecStrmNull(c, ASN1EXPL, 0) : xd_null(c, ASN1EXPL, 0);
         return std::string();
       },
       {"05 00", "05 01 00"}},
      {heapString(xd_octstr, berDecStrmDynOctStr, false),
       {"04 03 01 02 03", "04 00", "24 80 04 02 41 42 04 01 43 00 00", "24 07 04 02 41 42 04 01 43",
        "24 80 24 80 04 01 41 00 00 04 01 42 00 00", "24 80 03 01 00 00 00",
        "24 05 04 04 41 42 43 44", open + "04 01 41 " + close}},
      {fixedString(xd_octstr_s, berDecStrmOctStr, 4, false),
       {"04 02 AA BB", "04 05 01 02 03 04 05"}},
      {heapString(xd_bitstr, berDecStrmDynBitStr, true),
       {"03 02 06 C0", "03 01 00", "03 01 05", "03 02 08 FF",
        "23 80 03 02 00 AA 03 02 04 F0 00 00", "23 80 03 02 04 A0 03 02 00 F0 00 00"}},
      {fixedString(xd_bitstr_s, berDecStrmBitStr, 2, true),
       {"03 03 04 AA B0", "03 04 00 AA BB CC"}},
      {[](ASN1CTXT* c, bool s, int* stat) {
         const char* v = nullptr;
         *stat = s ? berDecStrmCharStr(c, &v, ASN1EXPL, ASN_ID_IA5String, 0)
                   : xd_charstr(c, &v, ASN1EXPL, ASN_ID_IA5String, 0);
         return show(v);
       },
       {"16 05 68 65 6C 6C 6F", "36 80 04 02 68 65 04 01 79 00 00", "0C 01 41"}},
      {wideChars<Asn116BitCharString>(xd_16BitCharStr, berDecStrmBMPStr, ASN_ID_BMPString),
       {"1E 04 00 41 20 AC", "1E 03 00 41 00"}},
      {wideChars<Asn132BitCharString>(xd_32BitCharStr, berDecStrmUnivStr,
                                       ASN_ID_UniversalString),
       {"1C 04 00 01 F6 00"}},
      {family<ASN1OBJID>(xd_objid, berDecStrmObjId),
       {"06 03 2A 86 48", "06 02 88 37", "06 00", "06 02 2A 86"}},
      {family<ASN1OID64>(xd_oid64, berDecStrmObjId64), {"06 0A 88 37 81 A3 CF 89 DE F7 B6 3F"}},
      {family<ASN1RELOID>(xd_reloid, berDecStrmRelativeOID), {"0D 03 81 00 05"}},
      {[](ASN1CTXT* c, bool s, int* stat) {
         const ASN1OCTET* d = nullptr;
         ASN1UINT n = 0;
         *stat = s ? berDecStrmOpenType(c, &d, &n) : xd_OpenType(c, &d, &n);
         return d ? hexText(d, n) : "";
       },
       {"30 03 02 01 05", "30 80 02 01 05 30 80 00 00 00 00", "A0 80 04 01 41"}},
  };
}

struct Outcome {
  int stat;
  std::string value;
  std::string parm;
};

Outcome viaBuffer(const Render& render, const Octets& bytes) {
  DecodeHarness h(bytes);
  Outcome o;
  o.value = render(h.ctxt(), false, &o.stat);
  o.parm = h.context().errorParm();
  return o;
}

Outcome viaStream(const Render& render, const Octets& bytes, size_t step) {
  TestContext ctx;
  TrickleDevice device(StreamBytes(bytes.begin(), bytes.end()), step);
  device.install(ctx.get());
  Outcome o;
  o.value = render(ctx.get(), true, &o.stat);
  o.parm = ctx.errorParm();
  // A value read whole leaves nothing behind; a complete bad one that fits the read buffer
  // is left unread.
  if (o.stat == 0) {
    EXPECT_EQ(rtStreamBufGetPos(ctx.get()), (long)bytes.size());
  } else if (o.stat != ASN_E_ENDOFBUF) {
    EXPECT_EQ(rtStreamBufGetPos(ctx.get()), 0);
  }
  return o;
}

TEST(BerStrmDecode, GivesWhatTheBufferDecoderGivesHoweverTheDeviceReads) {
  for (const Family& f : decodeFamilies()) {
    for (const std::string& hex : f.encodings) {
      const Octets bytes = hexOctets(hex);
      const Outcome expected = viaBuffer(f.render, bytes);
      for (size_t step : {(size_t)1, (size_t)3, (size_t)4096}) {
        const Outcome got = viaStream(f.render, bytes, step);
        EXPECT_EQ(got.stat, expected.stat) << hex << " step " << step;
        EXPECT_EQ(got.value, expected.value) << hex << " step " << step;
        EXPECT_EQ(got.parm, expected.parm) << hex << " step " << step;
      }
    }
  }
}

TEST(BerStrmDecode, LargeValuesComeThroughTheHeapTheSameWay) {
  // Elements larger than the read buffer take the other path: the same values result.
  for (size_t n : {(size_t)1020, (size_t)1021, (size_t)70000}) {
    EncodeHarness h;
    StreamBytes octets(n);
    for (size_t i = 0; i < n; ++i) octets[i] = (unsigned char)(i * 31);
    ASSERT_GT(xe_bitstr(h.ctxt(), octets.data(), (ASN1UINT)n * 8, ASN1EXPL), 0);
    ASSERT_GT(xe_octstr(h.ctxt(), octets.data(), (ASN1UINT)n, ASN1EXPL), 0);
    ASSERT_GT(xe_charstr(h.ctxt(), std::string(n, 'z').c_str(), ASN1EXPL, ASN_ID_IA5String), 0);
    const Bytes enc = h.written();
    for (bool fastCopy : {false, true}) {
      TestContext ctx;
      TrickleDevice device(StreamBytes(enc.begin(), enc.end()), 5000);
      device.install(ctx.get());
      if (fastCopy) rtSetFastCopy(ctx.get());
      const char* text = nullptr;
      ASSERT_EQ(berDecStrmCharStr(ctx.get(), &text, ASN1EXPL, ASN_ID_IA5String, 0), 0);
      EXPECT_EQ(text, std::string(n, 'z'));
      const ASN1OCTET* data = nullptr;
      ASN1UINT numocts = 0;
      ASSERT_EQ(berDecStrmDynOctStr(ctx.get(), &data, &numocts, ASN1EXPL, 0), 0);
      ASSERT_EQ(numocts, n);
      EXPECT_EQ(memcmp(data, octets.data(), n), 0);
      const ASN1OCTET* bits = nullptr;
      ASN1UINT numbits = 0;
      ASSERT_EQ(berDecStrmDynBitStr(ctx.get(), &bits, &numbits, ASN1EXPL, 0), 0);
      ASSERT_EQ(numbits, n * 8);
      EXPECT_EQ(memcmp(bits, octets.data(), n), 0);
      EXPECT_EQ(rtStreamBufGetPos(ctx.get()), (long)enc.size());
      if (!fastCopy) {
        // Values a caller may free one by one must each be a heap element of their own.
        EXPECT_EQ(rtMemHeapCheckPtr(&ctx.get()->memHeap, data), 1) << n;
        EXPECT_EQ(rtMemHeapCheckPtr(&ctx.get()->memHeap, bits), 1) << n;
        rtMemHeapFreePtr(&ctx.get()->memHeap, const_cast<ASN1OCTET*>(data));
        rtMemHeapFreePtr(&ctx.get()->memHeap, const_cast<ASN1OCTET*>(bits));
      }
      EXPECT_EQ(ctx.get()->flags & ASN1FASTCOPY, fastCopy ? ASN1FASTCOPY : 0)
          << "the caller's flag is left as it was";
    }
  }
}

TEST(BerStrmDecode, AFailedDecodeLeavesTheElementForAnother) {
  MemoryInput in({0x04, 0x01, 0x07, 0x02, 0x01, 0x09});
  ASN1INT v = 0;
  EXPECT_EQ(berDecStrmInt(in.ctxt(), &v, ASN1EXPL, 0), ASN_E_IDNOTFOU);
  EXPECT_EQ(in.pos(), 0);
  ASN1OCTET octet = 0;
  ASN1UINT n = 1;
  EXPECT_EQ(berDecStrmOctStr(in.ctxt(), &octet, &n, ASN1EXPL, 0), 0);
  EXPECT_EQ(octet, 7);
  EXPECT_EQ(berDecStrmInt(in.ctxt(), &v, ASN1EXPL, 0), 0);
  EXPECT_EQ(v, 9);
  EXPECT_EQ(berDecStrmInt(in.ctxt(), &v, ASN1EXPL, 0), ASN_E_ENDOFBUF);
}

TEST(BerStrmDecode, TruncatedOrHostileInputEndsWithAStatus) {
  HookScope hooks;
  struct Case {
    const char* hex;
    int stat;
  } cases[] = {
      {"04 05 01 02", ASN_E_ENDOFBUF},
      {"04 84 7F FF FF F0 01 02 03", ASN_E_ENDOFBUF},  // claims 2 GiB, brings 3 octets
      {"24 80 04 01 41", ASN_E_ENDOFBUF},
      {"04 85 00 00 00 00 01 41", ASN_E_INVLEN},
      {"04 84 80 00 00 00", ASN_E_INVLEN},
      {"04 80 00 00", ASN_E_INVLEN},
      {"1F", ASN_E_ENDOFBUF},
      {"", ASN_E_ENDOFBUF},
  };
  for (const Case& c : cases) {
    MemoryInput in(hexOctets(c.hex));
    const ASN1OCTET* data = nullptr;
    ASN1UINT n = 0;
    EXPECT_EQ(berDecStrmDynOctStr(in.ctxt(), &data, &n, ASN1EXPL, 0), c.stat) << c.hex;
    EXPECT_EQ(in.context().errorStatus(), c.stat) << c.hex;
  }
  for (size_t size : hooks.log().mallocSizes) {
    EXPECT_LE(size, (size_t)2 << 20) << "memory follows the octets that arrive, not the claim";
  }

  // Indefinite lengths nested without end are walked without recursion.
  std::string deep;
  for (int i = 0; i < 100000; ++i) deep += "30 80 ";
  MemoryInput in(hexOctets(deep));
  EXPECT_EQ(berDecStrmNextElement(in.ctxt()), ASN_E_ENDOFBUF);
}

// ---- Structure -----------------------------------------------------------------------------

TEST(BerStrmDecode, HeadersMatchingAndTheEndOfConstructedValues) {
  // SEQUENCE { [0] IMPLICIT INTEGER 5, [1] SEQUENCE (indefinite) { BOOLEAN }, NULL } then 7
  MemoryInput in(hexOctets("30 0C 80 01 05 A1 80 01 01 FF 00 00 05 00 02 01 07"));
  ASN1CTXT* c = in.ctxt();
  ASN1TagType tag = 0;
  int len = 0;
  ASSERT_EQ(berDecStrmTagAndLen(c, &tag, &len), 0);
  EXPECT_EQ(tag, TM_UNIV | TM_CONS | ASN_ID_SEQ);
  EXPECT_TRUE(c->flags & ASN1CONSTAG);
  ASN1StrmCCB seq;
  berDecStrmInitCCB(c, &seq, len);

  EXPECT_EQ(berDecStrmMatchTag(c, TM_CTXT | 1, &len, 1), ASN_E_IDNOTFOU);
  EXPECT_EQ(in.context().errorParm(), "[1]") << "the expected tag comes first";
  EXPECT_EQ(std::string(c->errInfo.parms[1]), "[0]");
  in.context().resetError();
  ASSERT_EQ(berDecStrmPeekTag(c, &tag), 0);
  EXPECT_EQ(tag, TM_CTXT | 0);
  ASSERT_EQ(berDecStrmMatchTag(c, TM_CTXT | 0, &len, 1), 0);
  ASN1INT v = 0;
  ASSERT_EQ(berDecStrmInt(c, &v, ASN1IMPL, len), 0);
  EXPECT_EQ(v, 5);
  EXPECT_FALSE(berDecStrmChkEnd(c, &seq));

  ASSERT_EQ(berDecStrmMatchTag(c, TM_CTXT | TM_CONS | 1, &len, 1), 0);
  ASN1StrmCCB inner;
  berDecStrmInitCCB(c, &inner, len);
  ASN1BOOL b = 0;
  ASSERT_FALSE(berDecStrmChkEnd(c, &inner));
  ASSERT_EQ(berDecStrmBool(c, &b, ASN1EXPL, 0), 0);
  EXPECT_TRUE(berDecStrmChkEnd(c, &inner));
  EXPECT_EQ(berDecStrmMatchEOC(c), 0);
  EXPECT_FALSE(berDecStrmChkEnd(c, &seq));
  EXPECT_EQ(berDecStrmMatchEOC(c), ASN_E_IDNOTFOU) << "a NULL is next";
  ASSERT_EQ(berDecStrmNull(c, ASN1EXPL, 0), 0);
  EXPECT_TRUE(berDecStrmChkEnd(c, &seq));
  ASSERT_EQ(berDecStrmInt(c, &v, ASN1EXPL, 0), 0);
  EXPECT_EQ(v, 7);
  ASN1StrmCCB rest;
  berDecStrmInitCCB(c, &rest, 100);
  EXPECT_TRUE(berDecStrmChkEnd(c, &rest)) << "the end of the stream ends any value";
  EXPECT_EQ(berDecStrmMatchTag(c, TM_UNIV | ASN_ID_INT, nullptr, 0), ASN_E_IDNOTFOU);
}

TEST(BerStrmDecode, NextElementSkipsEitherLengthFormAndLongHeaders) {
  MemoryInput in(hexOctets("30 80 A0 80 04 01 41 00 00 31 00 00 00 "
                           "9F 81 48 82 01 00 " + std::string(256 * 2, '0') + " 05 00"));
  ASSERT_EQ(berDecStrmNextElement(in.ctxt()), 0);
  EXPECT_EQ(in.pos(), 13);
  ASN1TagType tag = 0;
  ASSERT_EQ(berDecStrmTag(in.ctxt(), &tag), 0);
  EXPECT_EQ(tag, TM_CTXT | 200);
  int len = 0;
  ASSERT_EQ(berDecStrmLength(in.ctxt(), &len), 0);
  EXPECT_EQ(len, 256);
  ASSERT_EQ(rtStreamBufSkip(in.ctxt(), 256), 0);
  EXPECT_EQ(berDecStrmNull(in.ctxt(), ASN1EXPL, 0), 0);
}

TEST(BerStrmDecode, AnUnbufferedInputStreamIsBufferedOnFirstUse) {
  TestContext ctx;
  ASN1OCTET bytes[] = {0x02, 0x01, 0x2A, 0x01, 0x01, 0x00};
  ASSERT_EQ(rtStreamInit(ctx.get()), 0);
  ASSERT_EQ(rtStreamMemoryAttach(ctx.get(), bytes, sizeof bytes, OSRTSTRMF_INPUT), 0);
  ASN1INT v = 0;
  ASSERT_EQ(berDecStrmInt(ctx.get(), &v, ASN1EXPL, 0), 0);
  EXPECT_EQ(v, 42);
  EXPECT_TRUE(ctx.get()->pStream->flags & OSRTSTRMF_BUFFERED);
  ASN1BOOL b = 1;
  ASSERT_EQ(berDecStrmBool(ctx.get(), &b, ASN1EXPL, 0), 0);
  EXPECT_EQ(b, 0);

  MemoryOutput out;
  EXPECT_EQ(berDecStrmInt(out.ctxt(), &v, ASN1EXPL, 0), ASN_E_INVPARAM) << "an output stream";
}

// ---- Large files -----------------------------------------------------------------------

// Several megabytes go through a file in bounded memory: the integers of a long SEQUENCE OF
// are written and read without a single allocation, and a large string is written from its
// value without being copied.
TEST(BerStrmFile, MegabytesStreamThroughInBoundedMemory) {
  TempDir dir;
  const std::string path = dir.file("large.ber");
  const int count = 400000;
  StreamBytes blob(3000000);
  for (size_t i = 0; i < blob.size(); ++i) blob[i] = (unsigned char)(i ^ (i >> 11));
  HookScope hooks;
  {
    TestContext ctx;
    ASSERT_EQ(rtStreamBufInit(ctx.get()), 0);
    ASSERT_EQ(rtStreamFileOpen(ctx.get(), path.c_str(), OSRTSTRMF_OUTPUT), 0);
    const size_t allocations = hooks.log().mallocSizes.size();
    ASSERT_GT(berEncStrmTagAndIndefLen(ctx.get(), TM_UNIV | ASN_ID_SEQ), 0);
    for (int i = 0; i < count; ++i) ASSERT_GT(berEncStrmInt(ctx.get(), i * 37 - 5000, 1), 0);
    ASSERT_EQ(berEncStrmEOC(ctx.get()), 2);
    ASSERT_GT(cerEncStrmOctStr(ctx.get(), blob.data(), (ASN1UINT)blob.size(), 1), 0);
    EXPECT_EQ(hooks.log().mallocSizes.size(), allocations) << "no allocation while writing";
    ASSERT_EQ(rtStreamClose(ctx.get()), 0);
  }
  FILE* f = fopen(path.c_str(), "rb");
  ASSERT_NE(f, nullptr);
  fseek(f, 0, SEEK_END);
  const long fileSize = ftell(f);
  fclose(f);
  EXPECT_GT(fileSize, 4L << 20);

  TestContext ctx;
  ASSERT_EQ(rtStreamBufInit(ctx.get()), 0);
  ASSERT_EQ(rtStreamFileOpen(ctx.get(), path.c_str(), OSRTSTRMF_INPUT), 0);
  const size_t allocations = hooks.log().mallocSizes.size();
  ASN1TagType tag = 0;
  int len = 0;
  ASSERT_EQ(berDecStrmTagAndLen(ctx.get(), &tag, &len), 0);
  ASN1StrmCCB ccb;
  berDecStrmInitCCB(ctx.get(), &ccb, len);
  int n = 0;
  for (; !berDecStrmChkEnd(ctx.get(), &ccb); ++n) {
    ASN1INT v = 0;
    ASSERT_EQ(berDecStrmInt(ctx.get(), &v, ASN1EXPL, 0), 0);
    ASSERT_EQ(v, n * 37 - 5000);
  }
  EXPECT_EQ(n, count);
  ASSERT_EQ(berDecStrmMatchEOC(ctx.get()), 0);
  EXPECT_EQ(hooks.log().mallocSizes.size(), allocations) << "no allocation while reading";
  EXPECT_EQ(ctx.get()->pStream->bufsize, (ASN1UINT)OSRTSTRM_K_BUFSIZE);

  const ASN1OCTET* data = nullptr;
  ASN1UINT numocts = 0;
  ASSERT_EQ(berDecStrmDynOctStr(ctx.get(), &data, &numocts, ASN1EXPL, 0), 0);
  ASSERT_EQ(numocts, blob.size());
  EXPECT_EQ(memcmp(data, blob.data(), blob.size()), 0);
  EXPECT_EQ(rtStreamBufGetPos(ctx.get()), fileSize);
}

}  // namespace
