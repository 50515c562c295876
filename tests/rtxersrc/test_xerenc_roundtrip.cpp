// Writer to reader to decoder: a document written with the value writers is parsed by the
// XML reader, and the text (or the empty child element) of each element is handed to the
// matching value decoder, which must give back the value that was written. This is the path
// every generated type takes, and it checks that the writers' escaping, number forms and
// character coding agree with what the parser and the decoders expect.
#include <gtest/gtest.h>

#include <quillon/asn1XerDec.h>
#include <quillon/asn1XerSax.h>
#include <quillon/asn1xer.h>

#include <limits.h>
#include <math.h>
#include <stdint.h>
#include <string.h>

#include <limits>
#include <random>
#include <string>
#include <vector>

#include "xer_encode_harness.h"

namespace {

// One element of the parsed document: its character data and the names of its children.
struct Node {
  std::string name;
  std::string text;
  std::vector<std::string> children;
};

// Keeps every element in document order; enough structure for flat test documents.
class Collector : public OSXMLContentHandler {
 public:
  std::vector<Node> nodes;

  void startElement(const char*, const char*, const char* qname, const char* const*) override {
    if (!open_.empty()) nodes[open_.back()].children.push_back(qname);
    open_.push_back(nodes.size());
    nodes.push_back(Node{qname, "", {}});
  }
  void endElement(const char*, const char*, const char*) override { open_.pop_back(); }
  void characters(const char* chars, unsigned int length) override {
    if (!open_.empty()) nodes[open_.back()].text.append(chars, length);
  }

 private:
  std::vector<size_t> open_;
};

// Writes a document whose root holds what write() adds, parses it and returns the root's
// children.
template <typename Write>
std::vector<Node> roundTrip(Write write) {
  XerOut out;
  ASN1CTXT* c = out.ctxt();
  EXPECT_EQ(xerEncStartDocument(c), 0);
  EXPECT_EQ(xerEncStartElement(c, "Doc", nullptr), 0);
  c->xmlLevel++;
  write(c);
  c->xmlLevel--;
  EXPECT_EQ(xerEncEndElement(c, "Doc"), 0);
  EXPECT_EQ(xerEncEndDocument(c), 0);
  const std::string xml = out.text();
  Collector collector;
  OSExpatXMLReader reader;
  reader.setContentHandler(&collector);
  EXPECT_EQ(reader.parse(xml.data(), (int)xml.size()), 0);
  if (collector.nodes.empty()) return {};
  // Only the root's direct children: leaf values with their own child elements dropped.
  std::vector<Node> leaves;
  size_t i = 1;
  for (const std::string& name : collector.nodes[0].children) {
    leaves.push_back(collector.nodes[i]);
    EXPECT_EQ(collector.nodes[i].name, name);
    i += 1 + collector.nodes[i].children.size();
  }
  return leaves;
}

// A decode context over one text.
class Reading {
 public:
  explicit Reading(const std::string& text) : text_(text) {
    xerSetDecBufPtr(ctx_.get(), text_.c_str(), (int)text_.size());
  }
  ASN1CTXT* ctxt() { return ctx_.get(); }

 private:
  TestContext ctx_;
  std::string text_;
};

std::mt19937_64& rng() {
  static std::mt19937_64 gen(20240521);
  return gen;
}

TEST(XerEncRoundTrip, Integers) {
  const std::vector<ASN1INT> ints = {INT_MIN, -1, 0, 1, INT_MAX, (ASN1INT)rng()()};
  const std::vector<ASN1INT64> longs = {INT64_MIN, -5000000000LL, INT64_MAX, (ASN1INT64)rng()()};
  const std::vector<ASN1UINT64> ulongs = {0, UINT32_MAX, UINT64_MAX, rng()()};
  auto nodes = roundTrip([&](ASN1CTXT* c) {
    for (ASN1INT v : ints) xerEncInt(c, v, "i");
    for (ASN1INT64 v : longs) xerEncInt64(c, v, "l");
    for (ASN1UINT64 v : ulongs) xerEncUInt64(c, v, "u");
    xerEncUInt(c, UINT_MAX, "w");
  });
  ASSERT_EQ(nodes.size(), ints.size() + longs.size() + ulongs.size() + 1);
  size_t k = 0;
  for (ASN1INT v : ints) {
    Reading r(nodes[k++].text);
    ASN1INT back = 0;
    EXPECT_EQ(xerDecInt(r.ctxt(), &back), 0);
    EXPECT_EQ(back, v);
  }
  for (ASN1INT64 v : longs) {
    Reading r(nodes[k++].text);
    ASN1INT64 back = 0;
    EXPECT_EQ(xerDecInt64(r.ctxt(), &back), 0);
    EXPECT_EQ(back, v);
  }
  for (ASN1UINT64 v : ulongs) {
    Reading r(nodes[k++].text);
    ASN1UINT64 back = 0;
    EXPECT_EQ(xerDecUInt64(r.ctxt(), &back), 0);
    EXPECT_EQ(back, v);
  }
  Reading r(nodes[k].text);
  ASN1UINT back = 0;
  EXPECT_EQ(xerDecUInt(r.ctxt(), &back), 0);
  EXPECT_EQ(back, UINT_MAX);
}

TEST(XerEncRoundTrip, BigIntegers) {
  const std::string decimal = "-98765432109876543210987654321098765432109876543210";
  auto nodes = roundTrip([&](ASN1CTXT* c) {
    xerEncBigInt(c, decimal.c_str(), "d");
    xerEncBigInt(c, "0x0123456789ABCDEF0123456789ABCDEF", "h");
    xerEncBigInt(c, "0", "z");  // written as empty content
  });
  ASSERT_EQ(nodes.size(), 3u);
  const char* back = nullptr;
  Reading d(nodes[0].text);
  ASSERT_EQ(xerDecBigInt(d.ctxt(), &back), 0);
  EXPECT_STREQ(back, decimal.c_str());
  Reading h(nodes[1].text);
  ASSERT_EQ(xerDecBigInt(h.ctxt(), &back), 0);
  EXPECT_STREQ(back, "1512366075204170929049582354406559215");
  Reading z(nodes[2].text);
  ASSERT_EQ(xerDecBigInt(z.ctxt(), &back), 0);
  EXPECT_STREQ(back, "0");
}

TEST(XerEncRoundTrip, BooleansAndReals) {
  std::vector<double> reals = {1.0, -0.5, 123.45, 1e-310, -1.7976931348623157e308};
  while (reals.size() < 300) {
    uint64_t bits = rng()();
    double v;
    memcpy(&v, &bits, sizeof v);
    if (isfinite(v) && v != 0) reals.push_back(v);
  }
  const double inf = std::numeric_limits<double>::infinity();
  auto nodes = roundTrip([&](ASN1CTXT* c) {
    xerEncBool(c, 1, "t");
    xerEncBool(c, 0, "f");
    xmlEncBool(c, 1, "xt");
    xerEncReal(c, inf, "pinf");
    xerEncReal(c, -inf, "minf");
    xerEncReal(c, std::numeric_limits<double>::quiet_NaN(), "nan");
    for (double v : reals) xerEncReal(c, v, "r");
    for (double v : {inf, -inf, -0.0, 2.5e-3}) xmlEncReal(c, v, "x");
    xmlEncReal(c, std::numeric_limits<double>::quiet_NaN(), "xnan");
  });
  ASSERT_EQ(nodes.size(), 6 + reals.size() + 5);

  // Values written as empty child elements are read from the child's name.
  ASN1BOOL b = 9;
  ASSERT_EQ(nodes[0].children.size(), 1u);
  Reading t(nodes[0].children[0]);
  EXPECT_EQ(xerDecBool(t.ctxt(), &b), 0);
  EXPECT_EQ(b, 1);
  Reading f(nodes[1].children[0]);
  EXPECT_EQ(xerDecBool(f.ctxt(), &b), 0);
  EXPECT_EQ(b, 0);
  Reading xt(nodes[2].text);
  EXPECT_EQ(xmlDecBool(xt.ctxt(), &b), 0);
  EXPECT_EQ(b, 1);
  double v = 0;
  Reading pinf(nodes[3].children[0]);
  EXPECT_EQ(xerDecReal(pinf.ctxt(), &v), 0);
  EXPECT_EQ(v, inf);
  Reading minf(nodes[4].children[0]);
  EXPECT_EQ(xerDecReal(minf.ctxt(), &v), 0);
  EXPECT_EQ(v, -inf);
  Reading nan(nodes[5].text);  // NaN is written as zero, deliberately
  EXPECT_EQ(xerDecReal(nan.ctxt(), &v), 0);
  EXPECT_EQ(v, 0.0);

  size_t k = 6;
  for (double expected : reals) {
    Reading r(nodes[k].text);
    v = 0;
    EXPECT_EQ(xerDecReal(r.ctxt(), &v), 0) << nodes[k].text;
    EXPECT_EQ(v, expected) << nodes[k].text;
    ++k;
  }
  for (double expected : {inf, -inf, -0.0, 2.5e-3}) {
    Reading r(nodes[k].text);
    EXPECT_EQ(xmlDecReal(r.ctxt(), &v), 0) << nodes[k].text;
    EXPECT_EQ(v, expected) << nodes[k].text;
    EXPECT_EQ(signbit(v), signbit(expected)) << nodes[k].text;
    ++k;
  }
  Reading xnan(nodes[k].text);
  EXPECT_EQ(xmlDecReal(xnan.ctxt(), &v), 0);
  EXPECT_TRUE(isnan(v));
}

TEST(XerEncRoundTrip, OctetAndBitStrings) {
  std::vector<std::vector<ASN1OCTET>> values;
  for (size_t n : {1u, 2u, 3u, 95u, 96u, 97u, 500u}) {
    std::vector<ASN1OCTET> v(n);
    for (auto& o : v) o = (ASN1OCTET)rng()();
    values.push_back(v);
  }
  const ASN1UINT nbits = 8 * 499 + 3;
  std::vector<ASN1OCTET> bits = values.back();
  bits.back() &= 0xE0;  // the unused bits of the last octet are zero
  auto nodes = roundTrip([&](ASN1CTXT* c) {
    for (const auto& v : values) xerEncOctStr(c, (ASN1UINT)v.size(), v.data(), "hex");
    for (const auto& v : values) xerEncBase64Str(c, (ASN1UINT)v.size(), v.data(), "b64");
    xerEncBitStr(c, nbits, bits.data(), "bin", ASN1BIN);
    xerEncBitStr(c, 16, values[1].data(), "hexbits", ASN1HEX);
  });
  ASSERT_EQ(nodes.size(), 2 * values.size() + 2);
  size_t k = 0;
  for (const auto& v : values) {
    Reading r(nodes[k++].text);
    ASN1DynOctStr back{};
    ASSERT_EQ(xerDecDynOctStr(r.ctxt(), &back), 0);
    EXPECT_EQ(std::vector<ASN1OCTET>(back.data, back.data + back.numocts), v);
  }
  for (const auto& v : values) {
    Reading r(nodes[k++].text);
    ASN1DynOctStr back{};
    ASSERT_EQ(xerDecDynBase64Str(r.ctxt(), &back), 0);
    EXPECT_EQ(std::vector<ASN1OCTET>(back.data, back.data + back.numocts), v);
  }
  Reading bin(nodes[k++].text);
  ASN1DynBitStr backBits{};
  ASSERT_EQ(xerDecDynBitStr(bin.ctxt(), &backBits), 0);
  EXPECT_EQ(backBits.numbits, nbits);
  EXPECT_EQ(std::vector<ASN1OCTET>(backBits.data, backBits.data + 500), bits);

  // The hexadecimal form carries its attribute; the digits read back as whole octets.
  EXPECT_EQ(nodes[k].name, "hexbits");
  Reading hex(nodes[k].text);
  ASN1OCTET out[2];
  ASN1UINT got = 0;
  ASSERT_EQ(xerDecHexStrValue(hex.ctxt(), out, &got, 2, 0, 0), 0);
  EXPECT_EQ(got, 16u);
  EXPECT_EQ(memcmp(out, values[1].data(), 2), 0);
}

TEST(XerEncRoundTrip, Identifiers) {
  ASN1OBJID oid{};
  for (ASN1UINT a : {1u, 2u, 840u, 113549u, 1u, 9u, 16u, 2u, 47u}) oid.subid[oid.numids++] = a;
  ASN1OID64 oid64{};
  oid64.numids = 3;
  oid64.subid[0] = 2;
  oid64.subid[1] = 25;
  oid64.subid[2] = 0x123456789ABCull;
  ASN1OBJID rel{};
  for (ASN1UINT a : {0u, 7u, 2147483647u}) rel.subid[rel.numids++] = a;
  auto nodes = roundTrip([&](ASN1CTXT* c) {
    xerEncObjId(c, &oid, nullptr);
    xerEncObjId64(c, &oid64, nullptr);
    xerEncRelativeOID(c, &rel, nullptr);
  });
  ASSERT_EQ(nodes.size(), 3u);
  ASN1OBJID back{};
  Reading o(nodes[0].text);
  ASSERT_EQ(xerDecObjId(o.ctxt(), &back), 0);
  EXPECT_TRUE(back.numids == oid.numids &&
              memcmp(back.subid, oid.subid, oid.numids * sizeof(ASN1UINT)) == 0);
  ASN1OID64 back64{};
  Reading o64(nodes[1].text);
  ASSERT_EQ(xerDecObjId64(o64.ctxt(), &back64), 0);
  EXPECT_EQ(back64.numids, 3u);
  EXPECT_EQ(back64.subid[2], oid64.subid[2]);
  Reading r(nodes[2].text);
  ASSERT_EQ(xerDecRelativeOID(r.ctxt(), &back), 0);
  EXPECT_TRUE(back.numids == rel.numids &&
              memcmp(back.subid, rel.subid, rel.numids * sizeof(ASN1UINT)) == 0);
}

TEST(XerEncRoundTrip, CharacterStrings) {
  const std::string markup = "if a < b && c > \"d\" then 'e' \xC3\xA9t\xC3\xA9";
  std::vector<ASN1USINT> bmp;
  std::vector<ASN1UINT> ucs;
  for (int i = 0; i < 400; ++i) {
    ASN1UINT c = (ASN1UINT)(rng()() % 0x10FFFF) + 1;
    if (c >= 0xD800 && c <= 0xDFFF) continue;
    if (c < 0x20) c += 0x20;  // control characters have escapes of their own, below
    ucs.push_back(c);
    if (c <= 0xFFFF) bmp.push_back((ASN1USINT)c);
  }
  Asn116BitCharString b{(ASN1UINT)bmp.size(), bmp.data()};
  Asn132BitCharString u{(ASN1UINT)ucs.size(), ucs.data()};
  auto nodes = roundTrip([&](ASN1CTXT* c) {
    xerEncAscCharStr(c, markup.c_str(), "s");
    xerEncAscCharStr(c, "a\tb\nc", "ctl");
    xerEncBMPStr(c, &b, nullptr);
    xerEncUnivStr(c, &u, nullptr);
  });
  ASSERT_EQ(nodes.size(), 4u);
  const char* text = nullptr;
  Reading s(nodes[0].text);
  ASSERT_EQ(xerDecDynUTF8Str(s.ctxt(), &text), 0);
  EXPECT_EQ(std::string(text), markup);
  // The control characters' C-style escapes are not turned back, deliberately.
  Reading ctl(nodes[1].text);
  ASSERT_EQ(xerDecDynUTF8Str(ctl.ctxt(), &text), 0);
  EXPECT_EQ(std::string(text), "a\\tb\\nc");

  Asn116BitCharString backB{};
  Reading rb(nodes[2].text);
  ASSERT_EQ(xerDecBMPStr(rb.ctxt(), &backB), 0);
  EXPECT_EQ(std::vector<ASN1USINT>(backB.data, backB.data + backB.nchars), bmp);
  Asn132BitCharString backU{};
  Reading ru(nodes[3].text);
  ASSERT_EQ(xerDecUnivStr(ru.ctxt(), &backU), 0);
  EXPECT_EQ(std::vector<ASN1UINT>(backU.data, backU.data + backU.nchars), ucs);
}

TEST(XerEncRoundTrip, Times) {
  auto nodes = roundTrip([](ASN1CTXT* c) {
    xmlEncUTCTime(c, "490503120045Z", "utc");
    xmlEncGeneralizedTime(c, "20110503120000.25Z", "gen");
  });
  ASSERT_EQ(nodes.size(), 2u);
  const char* text = nullptr;
  Reading utc(nodes[0].text);
  ASSERT_EQ(xmlDecUTCTime(utc.ctxt(), &text), 0);
  EXPECT_STREQ(text, "490503120045Z");
  Reading gen(nodes[1].text);
  ASSERT_EQ(xmlDecGeneralizedTime(gen.ctxt(), &text), 0);
  EXPECT_STREQ(text, "20110503120000.25Z");
}

}  // namespace
