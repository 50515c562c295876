// OBJECT IDENTIFIER (32 and 64-bit arcs) and RELATIVE-OID.
#include <gtest/gtest.h>

#include <initializer_list>

#include "encode_harness.h"

namespace {

ASN1OBJID oid(std::initializer_list<ASN1UINT> arcs) {
  ASN1OBJID o = {};
  for (ASN1UINT a : arcs) o.subid[o.numids++] = a;
  return o;
}

ASN1OID64 oid64(std::initializer_list<ASN1UINT64> arcs) {
  ASN1OID64 o = {};
  for (ASN1UINT64 a : arcs) o.subid[o.numids++] = a;
  return o;
}

std::string objidHex(const ASN1OBJID& o) {
  EncodeHarness h;
  int n = xe_objid(h.ctxt(), &o, ASN1EXPL);
  if (n < 0) return "status " + std::to_string(n);
  EXPECT_EQ(n, (int)h.written().size());
  return h.hex();
}

TEST(XeObjId, FirstTwoArcsShareOneSubidentifier) {
  EXPECT_EQ(objidHex(oid({1, 2, 840, 113549, 1, 1, 11})), "06 09 2A 86 48 86 F7 0D 01 01 0B");
  EXPECT_EQ(objidHex(oid({2, 5, 29, 19})), "06 03 55 1D 13");
  EXPECT_EQ(objidHex(oid({0, 0})), "06 01 00");
  EXPECT_EQ(objidHex(oid({0, 39})), "06 01 27");
  EXPECT_EQ(objidHex(oid({1, 39})), "06 01 4F");
  EXPECT_EQ(objidHex(oid({2, 999})), "06 02 88 37");  // 1079 as one subidentifier
  EXPECT_EQ(objidHex(oid({2, 0xFFFFFFFFu - 80})), "06 05 8F FF FF FF 7F");
  EXPECT_EQ(objidHex(oid({1, 3, 0xFFFFFFFFu})), "06 06 2B 8F FF FF FF 7F");
}

TEST(XeObjId, InvalidIdentifiersFailWithNothingWritten) {
  // The second arc under 0 and 1, the first arc, too few arcs, a head past 32 bits.
  for (const ASN1OBJID& bad : {oid({1, 40}), oid({0, 40}), oid({3, 1}), oid({1}), oid({}),
                               oid({2, 0xFFFFFFFFu - 79})})
    EXPECT_EQ(objidHex(bad), "status -4");

  ASN1OBJID tooMany = oid({1, 2});
  tooMany.numids = ASN_K_MAXSUBIDS + 1;
  EXPECT_EQ(objidHex(tooMany), "status -4");

  EncodeHarness h;
  EXPECT_EQ(xe_objid(h.ctxt(), nullptr, ASN1EXPL), ASN_E_INVOBJID);
  EXPECT_EQ(h.context().errorStatus(), ASN_E_INVOBJID);
  EXPECT_TRUE(h.written().empty());
}

TEST(XeObjId, TheFullArcCapacityEncodes) {
  ASN1OBJID o = oid({1, 3});
  while (o.numids < ASN_K_MAXSUBIDS) o.subid[o.numids++] = 300;
  EncodeHarness h;
  int n = xe_objid(h.ctxt(), &o, ASN1IMPL);
  EXPECT_EQ(n, 1 + 2 * (ASN_K_MAXSUBIDS - 2));
  Bytes w = h.written();
  EXPECT_EQ(hexOf(Bytes(w.begin(), w.begin() + 3)), "2B 82 2C");
}

TEST(XeOid64, MatchesTheNarrowEncoderAndTakesWideArcs) {
  EncodeHarness narrow, wide;
  ASN1OBJID o = oid({1, 2, 643, 2, 2, 35, 1});
  ASN1OID64 o64 = oid64({1, 2, 643, 2, 2, 35, 1});
  ASSERT_GT(xe_objid(narrow.ctxt(), &o, ASN1EXPL), 0);
  ASSERT_GT(xe_oid64(wide.ctxt(), &o64, ASN1EXPL), 0);
  EXPECT_EQ(wide.written(), narrow.written());

  EncodeHarness big;
  ASN1OID64 huge = oid64({2, 25, 0xFFFFFFFFFFFFFFFFull});
  EXPECT_EQ(xe_oid64(big.ctxt(), &huge, ASN1EXPL), 13);
  EXPECT_EQ(big.hex(), "06 0B 69 81 FF FF FF FF FF FF FF FF 7F");

  EncodeHarness bad;
  ASN1OID64 head = oid64({2, 0xFFFFFFFFFFFFFFFFull - 79});
  EXPECT_EQ(xe_oid64(bad.ctxt(), &head, ASN1EXPL), ASN_E_INVOBJID);
  ASN1OID64 first = oid64({1, 40, 5});
  EXPECT_EQ(xe_oid64(bad.ctxt(), &first, ASN1EXPL), ASN_E_INVOBJID);
}

TEST(XeRelOid, ArcsAreNotCombined) {
  EncodeHarness h;
  ASN1RELOID r = oid({8571, 3, 2});
  EXPECT_EQ(xe_reloid(h.ctxt(), &r, ASN1EXPL), 6);
  EXPECT_EQ(h.hex(), "0D 04 C2 7B 03 02");

  EncodeHarness single;
  ASN1RELOID one = oid({200});
  EXPECT_EQ(xe_reloid(single.ctxt(), &one, ASN1IMPL), 2);
  EXPECT_EQ(single.hex(), "81 48");

  EncodeHarness bad;
  ASN1RELOID none = oid({});
  EXPECT_EQ(xe_reloid(bad.ctxt(), &none, ASN1EXPL), ASN_E_INVOBJID);
  EXPECT_EQ(xe_reloid(bad.ctxt(), nullptr, ASN1EXPL), ASN_E_INVOBJID);
}

}  // namespace
