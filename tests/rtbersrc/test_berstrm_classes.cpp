// The BER stream classes: wrappers through the operators, control classes through a stream,
// failures as OSCStreamException, and the file variants.
#include <gtest/gtest.h>

#include <quillon/asn1berStream.h>
#include <quillon/asn1berdec.h>
#include <quillon/asn1berenc.h>

#include <string.h>

#include <string>

#include "decode_harness.h"
#include "stream_harness.h"

namespace {

// An output stream into memory of its own, and an input stream over what it wrote.
class MemoryBerOutput : public ASN1BEROutputStream {
 public:
  MemoryBerOutput() { rtStreamMemoryCreate(getCtxtPtr(), OSRTSTRMF_OUTPUT); }
  StreamBytes bytes() {
    size_t n = 0;
    const ASN1OCTET* p = rtStreamMemoryGetBuffer(getCtxtPtr(), &n);
    return StreamBytes(p, p + n);
  }
};

class MemoryBerInput : public ASN1BERInputStream {
 public:
  explicit MemoryBerInput(const StreamBytes& bytes) : bytes_(bytes) {
    rtStreamMemoryAttach(getCtxtPtr(), bytes_.data(), bytes_.size(), OSRTSTRMF_INPUT);
  }

 private:
  StreamBytes bytes_;
};

// Stands for a generated control class of SEQUENCE { INTEGER, OCTET STRING }: it codes its
// value with the buffer functions on the context of the buffer it is given.
class SeqControl : public ASN1CType {
 public:
  explicit SeqControl(ASN1MessageBufferIF& mb) : ASN1CType(mb) {}
  ASN1INT number = 0;
  ASN1DynOctStr octets = {0, nullptr};

  int EncodeTo(ASN1MessageBufferIF& mb) override {
    ASN1CTXT* c = mb.getCtxtPtr();
    int len = xe_octstr(c, octets.data, octets.numocts, ASN1EXPL);
    if (len < 0) return len;
    int n = xe_integer(c, &number, ASN1EXPL);
    if (n < 0) return n;
    return xe_tag_len(c, TM_UNIV | TM_CONS | ASN_ID_SEQ, len + n);
  }
  int DecodeFrom(ASN1MessageBufferIF& mb) override {
    ASN1CTXT* c = mb.getCtxtPtr();
    int len = 0;
    int stat = xd_match(c, TM_UNIV | TM_CONS | ASN_ID_SEQ, &len, XM_ADVANCE);
    if (stat == 0) stat = xd_integer(c, &number, ASN1EXPL, 0);
    if (stat == 0) stat = xd_octstr(c, &octets.data, &octets.numocts, ASN1EXPL, 0);
    return stat;
  }
};

}  // namespace

TEST(BerStrmClasses, EveryWrapperGoesOutAndComesBack) {
  ASN1OBJID oid = {3, {1, 3, 6}};
  ASN1OID64 oid64 = {2, {2, 1ull << 40}};
  ASN1RELOID rel = {2, {5, 300}};
  ASN1USINT bmpChars[] = {0x41, 0x42};
  Asn116BitCharString bmp = {2, bmpChars};
  ASN1UINT univChars[] = {0x10FFFF};
  Asn132BitCharString univ = {1, univChars};
  const ASN1OCTET bits[] = {0xF0};
  ASN1DynOctStr dynOcts = {3, (const ASN1OCTET*)"xyz"};
  ASN1DynBitStr dynBits = {4, bits};

  MemoryBerOutput out;
  out << OSEncStrmTagAndIndefLen(TM_UNIV | ASN_ID_SEQ) << OSEncStrmInt(-5) << OSEncStrmInt8(-8)
      << OSEncStrmInt16(-16) << OSEncStrmInt64(-(1LL << 40)) << OSEncStrmUInt(0xFFFFFFFFu)
      << OSEncStrmUInt8(255) << OSEncStrmUInt16(65535) << OSEncStrmUInt64(1ull << 63)
      << OSEncStrmEnum(4) << OSEncStrmReal(0.5) << OSEncStrmBigInt("0x0100000000000000000000")
      << OSEncStrmBool(1) << OSEncStrmNull() << OSEncStrmBitStr(bits, 4)
      << OSEncStrmDynBitStr(dynBits) << OSEncStrmOctStr((const ASN1OCTET*)"ab", 2)
      << OSEncStrmDynOctStr(dynOcts) << OSEncStrmCharStr("text", ASN_ID_PrintableString)
      << OSEncStrmObjId(oid) << OSEncStrmObjId64(oid64) << OSEncStrmRelativeOID(rel)
      << OSEncStrmBMPString(bmp) << OSEncStrmUnivString(univ) << OSEncStrmEoc();
  out << OSEncStrmImplInt(7, TM_CTXT | 0) << OSEncStrmImplUInt64(9, TM_CTXT | 1)
      << OSEncStrmImplBool(0, TM_CTXT | 2) << OSEncStrmImplNull(TM_CTXT | 3)
      << OSEncStrmImplOctStr((const ASN1OCTET*)"q", 1, TM_APPL | 4)
      << OSEncStrmImplCharStr("imp", TM_CTXT | 5) << OSEncStrmImplObjId(oid, TM_CTXT | 6)
      << OSEncStrmImplBMPString(bmp, TM_PRIV | 7);
  out.flush();
  const StreamBytes enc = out.bytes();
  ASSERT_FALSE(enc.empty());

  MemoryBerInput in(enc);
  ASN1TagType tag = 0;
  int len = 0;
  ASN1INT i = 0;
  ASN1INT8 i8 = 0;
  ASN1SINT i16 = 0;
  ASN1INT64 i64 = 0;
  ASN1UINT u = 0;
  ASN1UINT8 u8 = 0;
  ASN1USINT u16 = 0;
  ASN1UINT64 u64 = 0;
  ASN1ENUM e = 0;
  ASN1REAL r = 0;
  const char* big = nullptr;
  ASN1BOOL b = 0;
  ASN1OCTET fixedBits[1] = {0};
  ASN1UINT numbits = 8;
  ASN1DynBitStr gotBits = {0, nullptr};
  ASN1OCTET fixedOcts[4];
  ASN1UINT numocts = sizeof fixedOcts;
  ASN1DynOctStr gotOcts = {0, nullptr};
  const char* text = nullptr;
  ASN1OBJID gotOid = {0, {0}};
  ASN1OID64 gotOid64 = {0, {0}};
  ASN1RELOID gotRel = {0, {0}};
  Asn116BitCharString gotBmp = {0, nullptr};
  Asn132BitCharString gotUniv = {0, nullptr};
  in >> OSDecStrmTagAndLen(tag, len) >> OSDecStrmInt(i) >> OSDecStrmInt8(i8)
     >> OSDecStrmInt16(i16) >> OSDecStrmInt64(i64) >> OSDecStrmUInt(u) >> OSDecStrmUInt8(u8)
     >> OSDecStrmUInt16(u16) >> OSDecStrmUInt64(u64) >> OSDecStrmEnum(e) >> OSDecStrmReal(r)
     >> OSDecStrmBigInt(big) >> OSDecStrmBool(b) >> OSDecStrmNull()
     >> OSDecStrmBitStr(fixedBits, numbits) >> OSDecStrmDynBitStr(gotBits)
     >> OSDecStrmOctStr(fixedOcts, numocts) >> OSDecStrmDynOctStr(gotOcts)
     >> OSDecStrmCharStr(text, ASN_ID_PrintableString) >> OSDecStrmObjId(gotOid)
     >> OSDecStrmObjId64(gotOid64) >> OSDecStrmRelativeOID(gotRel) >> OSDecStrmBMPString(gotBmp)
     >> OSDecStrmUnivString(gotUniv) >> OSDecStrmEoc();
  EXPECT_EQ(tag, TM_UNIV | TM_CONS | ASN_ID_SEQ);
  EXPECT_EQ(len, ASN_K_INDEFLEN);
  EXPECT_EQ(i, -5);
  EXPECT_EQ(i8, -8);
  EXPECT_EQ(i16, -16);
  EXPECT_EQ(i64, -(1LL << 40));
  EXPECT_EQ(u, 0xFFFFFFFFu);
  EXPECT_EQ(u8, 255);
  EXPECT_EQ(u16, 65535);
  EXPECT_EQ(u64, 1ull << 63);
  EXPECT_EQ(e, 4);
  EXPECT_EQ(r, 0.5);
  EXPECT_STREQ(big, "0x0100000000000000000000");
  EXPECT_EQ(b, 0xFF);
  EXPECT_EQ(numbits, 4u);
  EXPECT_EQ(fixedBits[0], 0xF0);
  EXPECT_EQ(gotBits.numbits, 4u);
  EXPECT_EQ(numocts, 2u);
  EXPECT_EQ(memcmp(fixedOcts, "ab", 2), 0);
  EXPECT_EQ(std::string((const char*)gotOcts.data, gotOcts.numocts), "xyz");
  EXPECT_STREQ(text, "text");
  EXPECT_TRUE(gotOid == oid);
  EXPECT_TRUE(gotOid64 == oid64);
  EXPECT_TRUE(gotRel == rel);
  ASSERT_EQ(gotBmp.nchars, 2u);
  EXPECT_EQ(gotBmp.data[1], 0x42);
  ASSERT_EQ(gotUniv.nchars, 1u);
  EXPECT_EQ(gotUniv.data[0], 0x10FFFFu);

  // Each implicit value: its identifier read by the caller, its contents by the wrapper.
  auto implicitHeader = [&](ASN1TagType expected) {
    in >> OSDecStrmTagAndLen(tag, len);
    EXPECT_EQ(tag, expected);
  };
  implicitHeader(TM_CTXT | 0);
  in >> OSDecStrmImplInt(i, len);
  EXPECT_EQ(i, 7);
  implicitHeader(TM_CTXT | 1);
  in >> OSDecStrmImplUInt64(u64, len);
  EXPECT_EQ(u64, 9u);
  implicitHeader(TM_CTXT | 2);
  in >> OSDecStrmImplBool(b, len);
  EXPECT_EQ(b, 0);
  implicitHeader(TM_CTXT | 3);
  in >> OSDecStrmImplNull(len);
  implicitHeader(TM_APPL | 4);
  in >> OSDecStrmImplDynOctStr(gotOcts, len);
  EXPECT_EQ(std::string((const char*)gotOcts.data, gotOcts.numocts), "q");
  implicitHeader(TM_CTXT | 5);
  in >> OSDecStrmImplCharStr(text, len);
  EXPECT_STREQ(text, "imp");
  implicitHeader(TM_CTXT | 6);
  in >> OSDecStrmImplObjId(gotOid, len);
  EXPECT_TRUE(gotOid == oid);
  implicitHeader(TM_PRIV | 7);
  in >> OSDecStrmImplBMPString(gotBmp, len);
  EXPECT_EQ(gotBmp.nchars, 2u);
  EXPECT_EQ(in.byteIndex(), (long)enc.size());
}

TEST(BerStrmClasses, ImplicitWrappersWriteTheirIdentifierInPlaceOfTheUniversalOne) {
  MemoryBerOutput out;
  out << OSEncStrmImplInt(5, TM_CTXT | 2) << OSEncStrmImplNull(TM_CTXT | 31);
  out.flush();
  StreamBytes enc = out.bytes();
  EXPECT_EQ(hexText(enc.data(), enc.size()), "82 01 05 9F 1F 00");
}

TEST(BerStrmClasses, FailuresThrowWithTheStatus) {
  MemoryBerInput in({0x04, 0x01, 0x00});
  ASN1INT v = 0;
  EXPECT_EQ(thrownStatus([&] { in >> OSDecStrmInt(v); }), ASN_E_IDNOTFOU);
  EXPECT_EQ(in.byteIndex(), 0) << "the element is still there";
  ASN1DynOctStr octets = {0, nullptr};
  EXPECT_EQ(thrownStatus([&] { in >> OSDecStrmDynOctStr(octets); }), 0);
  EXPECT_EQ(thrownStatus([&] { in >> OSDecStrmInt(v); }), ASN_E_ENDOFBUF);

  MemoryBerOutput out;
  const ASN1OBJID bad = {1, {1}};
  EXPECT_EQ(thrownStatus([&] { out << OSEncStrmObjId(bad); }), ASN_E_INVOBJID);
  ASN1BEROutputStream unattached;
  EXPECT_EQ(thrownStatus([&] { unattached << OSEncStrmInt(1); }), ASN_E_INVPARAM);
  EXPECT_EQ(thrownStatus([&] { in.mark(-1); }), ASN_E_INVPARAM);
}

TEST(BerStrmClasses, ControlClassesCodeThroughTheStreamLeavingItsBufferIntact) {
  MemoryBerOutput out;
  SeqControl value(out);
  value.number = 300;
  value.octets = {4, (const ASN1OCTET*)"data"};
  out << OSEncStrmInt(1);
  EXPECT_EQ(out.encodeObj(value), 2 + 4 + 6);
  out << OSEncStrmInt(2);
  out.flush();
  StreamBytes enc = out.bytes();
  EXPECT_EQ(hexText(enc.data(), enc.size()),
            "02 01 01 30 0A 02 02 01 2C 04 04 64 61 74 61 02 01 02");

  for (bool fastCopy : {false, true}) {
    MemoryBerInput in(enc);
    if (fastCopy) rtSetFastCopy(in.getCtxtPtr());
    SeqControl decoded(in);
    ASN1INT first = 0, last = 0;
    in >> OSDecStrmInt(first) >> decoded >> OSDecStrmInt(last);
    EXPECT_EQ(first, 1);
    EXPECT_EQ(last, 2);
    EXPECT_EQ(decoded.number, 300);
    EXPECT_EQ(std::string((const char*)decoded.octets.data, decoded.octets.numocts), "data");
    EXPECT_EQ(in.getCtxtPtr()->buffer.size - in.getCtxtPtr()->buffer.byteIndex, 0u)
        << "the read buffer is back, its contents consumed";
  }

  MemoryBerInput bad({0x30, 0x03, 0x04, 0x01, 0x00});
  SeqControl failing(bad);
  EXPECT_EQ(thrownStatus([&] { bad >> failing; }), ASN_E_IDNOTFOU);
}

TEST(BerStrmClasses, FileStreamsMarkResetAndWalkConstructedValues) {
  TempDir dir;
  const std::string path = dir.file("classes.ber");
  {
    ASN1BERFileOutputStream out(path.c_str());
    EXPECT_TRUE(out.isBuffered());
    out << OSEncStrmTagAndLen(TM_UNIV | TM_CONS | ASN_ID_SEQ, 9) << OSEncStrmInt(1)
        << OSEncStrmInt(2) << OSEncStrmInt(3);
    // Closed by going out of scope: the staged bytes must reach the file.
  }
  EXPECT_EQ(thrownStatus([&] { ASN1BERFileInputStream in(dir.file("none").c_str()); }),
            ASN_E_FILNOTFOU);

  ASN1BERFileInputStream in(path.c_str());
  ASN1TagType tag = 0;
  int len = 0;
  in.decodeTagAndLen(tag, len);
  ASN1StrmCCB ccb;
  in.initCCB(ccb, len);
  in.mark(64);
  int sum = 0;
  while (!in.chkend(ccb)) {
    ASN1INT v = 0;
    in.decodeInt(v);
    sum += v;
  }
  EXPECT_EQ(sum, 6);
  EXPECT_EQ(in.byteIndex(), 11);
  in.reset();
  EXPECT_EQ(in.byteIndex(), 2);
  ASN1TagType next = 0;
  in.peekTag(next);
  EXPECT_EQ(next, (ASN1TagType)ASN_ID_INT);
  in.skipElement();
  ASN1INT second = 0;
  in >> OSDecStrmInt(second);
  EXPECT_EQ(second, 2);
  EXPECT_EQ(in.close(), 0);
}
