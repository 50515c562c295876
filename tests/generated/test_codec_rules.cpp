// The structural rules the generated codecs enforce, each on the type that shows it: presence
// bits and BOOLEAN DEFAULT, element counts, SIZE and value constraints, CHOICE and SET
// dispatch, indefinite lengths, open types through their information objects, free and copy,
// and the nesting bound.
#include <gtest/gtest.h>
#include <quillon/asn1CppTypes.h>

#include <string>
#include <vector>

#include "decode_harness.h"
#include "encode_harness.h"
#include "heap_census.h"
#include "quillon_samples.h"

namespace {

// A TLV with a definite length in the shortest form.
Bytes tlv(int tag, const Bytes& contents) {
  Bytes out{(uint8_t)tag};
  size_t n = contents.size();
  if (n < 0x80) {
    out.push_back((uint8_t)n);
  } else {
    Bytes len;
    for (; n; n >>= 8) len.insert(len.begin(), (uint8_t)n);
    out.push_back((uint8_t)(0x80 | len.size()));
    out.insert(out.end(), len.begin(), len.end());
  }
  out.insert(out.end(), contents.begin(), contents.end());
  return out;
}

Bytes cat(std::initializer_list<Bytes> parts) {
  Bytes out;
  for (const Bytes& p : parts) out.insert(out.end(), p.begin(), p.end());
  return out;
}

// Encodes with a fresh dynamic buffer; "" and the status in *stat on failure.
template <class T>
std::string encodeHex(int (*encode)(ASN1CTXT*, T*, ASN1TagType), T* value, int* stat = nullptr,
                      EncodeHarness* keep = nullptr) {
  EncodeHarness local;
  EncodeHarness& enc = keep ? *keep : local;
  int len = encode(enc.ctxt(), value, ASN1EXPL);
  if (stat) *stat = len < 0 ? len : 0;
  return len < 0 ? "" : hexOf(enc.written());
}

// The contents of a TLV, in hex.
std::string contentsHex(const Bytes& encoding) {
  size_t header = encoding[1] < 0x80 ? 2 : 2 + (encoding[1] & 0x7F);
  return hexOf(Bytes(encoding.begin() + (long)header, encoding.end()));
}

const Bytes kUnknownOid = hexOctets("06 03 2A 03 04");  // 1.2.3.4, in no object set
const Bytes kReasonCodeOid = hexOctets("06 03 55 1D 15");

TEST(GeneratedSequence, PresenceBitsAndBooleanDefault) {
  ASN1T_Extension ext;
  ext.extnID.numids = 4;
  const ASN1UINT arcs[] = {1, 2, 3, 4};
  for (int i = 0; i < 4; i++) ext.extnID.subid[i] = arcs[i];
  ext.extnValue.numocts = 2;
  ext.extnValue.data = qnSampleNull;
  EXPECT_EQ(encodeHex(asn1E_Extension, &ext), "30 09 06 03 2A 03 04 04 02 05 00")
      << "critical FALSE is the default and is left out";
  ext.critical = ASN1TRUE;
  EXPECT_EQ(encodeHex(asn1E_Extension, &ext), "30 0C 06 03 2A 03 04 01 01 FF 04 02 05 00");

  // The decoder stores the default before it reads, whatever the value held.
  DecodeHarness dec("30 09 06 03 2A 03 04 04 02 05 00");
  ext.critical = 7;
  ASSERT_EQ(asn1D_Extension(dec.ctxt(), &ext, ASN1EXPL, 0), 0);
  EXPECT_EQ(ext.critical, ASN1FALSE);
  EXPECT_EQ(dec.pos(), 11u);

  // A presence-bit DEFAULT is written when its bit is set, even holding the default.
  TestContext ctx;
  ASN1T_TBSCertificate tbs;
  qnSample_TBSCertificate(ctx.get(), &tbs, 0, 0);
  tbs.m.versionPresent = 1;
  tbs.version = Version::v1;
  EncodeHarness versioned;
  ASSERT_GT(asn1E_TBSCertificate(versioned.ctxt(), &tbs, ASN1EXPL), 0);
  EXPECT_EQ(contentsHex(versioned.written()).substr(0, 20), "A0 03 02 01 00 02 0D");

  tbs.m.versionPresent = tbs.m.issuerUniqueIDPresent = 0;
  tbs.m.subjectUniqueIDPresent = tbs.m.extensionsPresent = 0;
  EncodeHarness enc;
  ASSERT_GT(asn1E_TBSCertificate(enc.ctxt(), &tbs, ASN1EXPL), 0);
  Bytes bare = enc.written();
  EXPECT_EQ(contentsHex(bare).substr(0, 5), "02 0D") << "the serial number comes first";
  ASN1T_TBSCertificate back;
  DecodeHarness dec2(bare);
  ASSERT_EQ(asn1D_TBSCertificate(dec2.ctxt(), &back, ASN1EXPL, 0), 0);
  EXPECT_FALSE(back.m.versionPresent || back.m.issuerUniqueIDPresent ||
               back.m.subjectUniqueIDPresent || back.m.extensionsPresent);
}

TEST(GeneratedSequence, ElementCountsAndOverrunsFailWithTheirStatus) {
  struct Case {
    const char* hex;
    int status;
    const char* what;
  } cases[] = {
      {"30 0B 06 03 2A 03 04 04 02 05 00 05 00", ASN_E_SEQOVFLW, "a third element"},
      {"30 05 06 03 2A 03 04", ASN_E_SETMISRQ, "no extnValue"},
      {"30 08 06 03 2A 03 04 01 01 FF", ASN_E_SETMISRQ, "critical but no extnValue"},
      {"30 08 06 03 2A 03 04 04 02 05 00", ASN_E_INVLEN, "extnValue runs past the SEQUENCE"},
      {"30 09 02 03 2A 03 04 04 02 05 00", ASN_E_IDNOTFOU, "an INTEGER for the OID"},
  };
  for (const Case& c : cases) {
    DecodeHarness dec(c.hex);
    ASN1T_Extension ext;
    EXPECT_EQ(asn1D_Extension(dec.ctxt(), &ext, ASN1EXPL, 0), c.status) << c.what;
    EXPECT_EQ(dec.context().errorStatus(), c.status) << c.what;
    const ASN1ErrInfo& err = dec.ctxt()->errInfo;
    ASSERT_GT(err.stkx, 0);
    EXPECT_STREQ(err.stack[err.stkx - 1].module, "PKIX1Explicit88") << c.what;
  }

  // One trace entry per generated level on the way out: Extension, then Extensions.
  DecodeHarness dec("30 07 30 05 06 03 2A 03 04");
  ASN1T_Extensions list;
  EXPECT_EQ(asn1D_Extensions(dec.ctxt(), &list, ASN1EXPL, 0), ASN_E_SETMISRQ);
  EXPECT_EQ(dec.errorDepth(), 2);
}

TEST(GeneratedList, SizeConstraintAndCopiesKeepOrderInNewMemory) {
  ASN1T_Extensions empty;
  EncodeHarness enc;
  EXPECT_EQ(asn1E_Extensions(enc.ctxt(), &empty, ASN1EXPL), ASN_E_CONSVIO);
  ASSERT_EQ(enc.ctxt()->errInfo.parmcnt, 2);
  EXPECT_STREQ(enc.ctxt()->errInfo.parms[0], "pvalue->count");
  EXPECT_STREQ(enc.ctxt()->errInfo.parms[1], "0");

  DecodeHarness none("30 00");
  ASN1T_Extensions decodedNone;
  EXPECT_EQ(asn1D_Extensions(none.ctxt(), &decodedNone, ASN1EXPL, 0), ASN_E_CONSVIO);

  Bytes first = tlv(0x30, cat({kUnknownOid, hexOctets("04 01 01")}));
  Bytes second = tlv(0x30, cat({kReasonCodeOid, hexOctets("04 03 0A 01 06")}));
  Bytes both = tlv(0x30, cat({first, second}));
  DecodeHarness dec(both);
  ASN1T_Extensions list;
  ASSERT_EQ(asn1D_Extensions(dec.ctxt(), &list, ASN1EXPL, 0), 0);
  ASN1T_Extensions copy;
  EXPECT_EQ(asn1Copy_Extensions(dec.ctxt(), &list, &copy), 2);
  ASSERT_EQ(copy.count, 2u);
  for (_Asn1RTDListNode *a = list.head, *b = copy.head; a && b; a = a->next, b = b->next) {
    EXPECT_NE(a->data, b->data);
    auto* ea = static_cast<ASN1T_Extension*>(a->data);
    auto* eb = static_cast<ASN1T_Extension*>(b->data);
    EXPECT_NE(ea->extnValue.data, eb->extnValue.data);
    EXPECT_TRUE(ea->extnID == eb->extnID);
  }
  EXPECT_EQ(encodeHex(asn1E_Extensions, &copy), hexOf(both));

  // Copying a value onto itself leaves it as it was.
  EXPECT_EQ(asn1Copy_Extensions(dec.ctxt(), &list, &list), 2);
  EXPECT_EQ(encodeHex(asn1E_Extensions, &list), hexOf(both));
}

TEST(GeneratedChoice, UnknownTagsAndFailedAlternatives) {
  DecodeHarness unknown("89 01 00");
  ASN1T_GeneralName name;
  EXPECT_EQ(asn1D_GeneralName(unknown.ctxt(), &name, ASN1EXPL, 0), ASN_E_INVOPT);
  EXPECT_EQ(unknown.context().errorParm(), "[9]");
  EXPECT_EQ(name.t, 0u);

  // An alternative that fails to decode leaves t as it was.
  DecodeHarness broken("82 05 41");
  name.t = ASN1T_GeneralName::T_uniformResourceIdentifier;
  EXPECT_LT(asn1D_GeneralName(broken.ctxt(), &name, ASN1EXPL, 0), 0);
  EXPECT_EQ(name.t, (ASN1UINT)ASN1T_GeneralName::T_uniformResourceIdentifier);

  DecodeHarness oid("88 03 2A 03 04");
  ASSERT_EQ(asn1D_GeneralName(oid.ctxt(), &name, ASN1EXPL, 0), 0);
  ASSERT_EQ(name.t, (ASN1UINT)ASN1T_GeneralName::T_registeredID);
  EXPECT_EQ(name.u.registeredID->numids, 4u);
  EXPECT_EQ(encodeHex(asn1E_GeneralName, &name), "88 03 2A 03 04");

  for (ASN1UINT t : {0u, 10u}) {
    name.t = t;
    int stat;
    encodeHex(asn1E_GeneralName, &name, &stat);
    EXPECT_EQ(stat, ASN_E_INVOPT) << "t = " << t;
  }
  // An alternative held through a pointer that was never set is refused, not followed.
  name.t = ASN1T_GeneralName::T_directoryName;
  name.u.directoryName = nullptr;
  int stat;
  encodeHex(asn1E_GeneralName, &name, &stat);
  EXPECT_EQ(stat, ASN_E_BADVALUE);
}

TEST(GeneratedSet, DuplicatesUnknownTagsSizesAndDerOrder) {
  struct Case {
    const char* hex;
    int status;
  } cases[] = {
      {"31 06 14 01 41 14 01 42", ASN_E_SETDUPL},
      {"31 03 02 01 00", ASN_E_NOTINSET},
      {"31 02 14 00", ASN_E_CONSVIO},
  };
  for (const Case& c : cases) {
    DecodeHarness dec(c.hex);
    ASN1T_UnformattedPostalAddress addr;
    EXPECT_EQ(asn1D_UnformattedPostalAddress(dec.ctxt(), &addr, ASN1EXPL, 0), c.status)
        << c.hex;
  }
  DecodeHarness empty("31 02 14 00");
  ASN1T_UnformattedPostalAddress addr;
  asn1D_UnformattedPostalAddress(empty.ctxt(), &addr, ASN1EXPL, 0);
  EXPECT_EQ(empty.context().errorParm(), "pvalue->teletex_string");

  // Any order in, tag order out: [UNIVERSAL 16] before [UNIVERSAL 20].
  DecodeHarness dec("31 08 14 01 41 30 03 13 01 42");
  ASN1T_UnformattedPostalAddress both;
  ASSERT_EQ(asn1D_UnformattedPostalAddress(dec.ctxt(), &both, ASN1EXPL, 0), 0);
  EXPECT_TRUE(both.m.printable_addressPresent && both.m.teletex_stringPresent);
  EXPECT_EQ(encodeHex(asn1E_UnformattedPostalAddress, &both), "31 08 30 03 13 01 42 14 01 41");
}

TEST(GeneratedPrimitive, EnumeratedRangeAndNamedBits) {
  ASN1T_CRLReason reason = 0;
  DecodeHarness seven("0A 01 07");
  EXPECT_EQ(asn1D_CRLReason(seven.ctxt(), &reason, ASN1EXPL, 0), 0)
      << "7 is unassigned but within range; the codecs check only the range";
  EXPECT_EQ(reason, 7u);
  DecodeHarness eleven("0A 01 0B");
  EXPECT_EQ(asn1D_CRLReason(eleven.ctxt(), &reason, ASN1EXPL, 0), ASN_E_INVENUM);
  reason = 11;
  int stat;
  encodeHex(asn1E_CRLReason, &reason, &stat);
  EXPECT_EQ(stat, ASN_E_INVENUM);
  reason = CRLReason::aACompromise;
  EXPECT_EQ(encodeHex(asn1E_CRLReason, &reason), "0A 01 0A");

  ASN1T_KeyUsage usage;
  usage.numbits = 9;
  usage.data[0] = 0x80;  // digitalSignature only: DER drops the trailing zero bits
  EXPECT_EQ(encodeHex(asn1E_KeyUsage, &usage), "03 02 07 80");
  usage.data[1] = 0x80;  // decipherOnly, the ninth bit
  EXPECT_EQ(encodeHex(asn1E_KeyUsage, &usage), "03 03 07 80 80");
  DecodeHarness nine("03 03 07 80 80");
  ASN1T_KeyUsage back;
  ASSERT_EQ(asn1D_KeyUsage(nine.ctxt(), &back, ASN1EXPL, 0), 0);
  EXPECT_EQ(back.numbits, 9u);
  DecodeHarness ten("03 03 06 80 40");
  EXPECT_LT(asn1D_KeyUsage(ten.ctxt(), &back, ASN1EXPL, 0), 0) << "more bits than named";
}

TEST(GeneratedDecoder, IndefiniteLengths) {
  DecodeHarness ext("30 80 06 03 2A 03 04 04 02 05 00 00 00 05 00");
  ASN1T_Extension e;
  ASSERT_EQ(asn1D_Extension(ext.ctxt(), &e, ASN1EXPL, 0), 0);
  EXPECT_EQ(ext.pos(), 13u) << "the contents end at the first end-of-contents pair";

  DecodeHarness list("30 80 30 80 06 03 2A 03 04 04 02 05 00 00 00 00 00");
  ASN1T_Extensions l;
  ASSERT_EQ(asn1D_Extensions(list.ctxt(), &l, ASN1EXPL, 0), 0);
  EXPECT_EQ(l.count, 1u);
  EXPECT_EQ(list.pos(), 17u);

  // An explicit wrapper of indefinite length around a CHOICE, closed by its caller.
  DecodeHarness dir("A4 80 30 00 00 00");
  ASN1T_GeneralName name;
  ASSERT_EQ(asn1D_GeneralName(dir.ctxt(), &name, ASN1EXPL, 0), 0);
  EXPECT_EQ(name.t, (ASN1UINT)ASN1T_GeneralName::T_directoryName);
  EXPECT_EQ(dir.pos(), 6u);

  // A constructed OCTET STRING inside indefinite contents.
  DecodeHarness cons("30 80 06 03 2A 03 04 24 80 04 01 05 04 01 00 00 00 00 00");
  ASSERT_EQ(asn1D_Extension(cons.ctxt(), &e, ASN1EXPL, 0), 0);
  EXPECT_EQ(hexText(e.extnValue.data, e.extnValue.numocts), "05 00");

  DecodeHarness unterminated("30 80 06 03 2A 03 04 04 02 05 00");
  EXPECT_LT(asn1D_Extension(unterminated.ctxt(), &e, ASN1EXPL, 0), 0);
}

TEST(GeneratedTable, ExtensionValuesDecodeThroughTheirObjects) {
  // Unknown identifier: octets only, re-encoded as they came.
  Bytes unknown = tlv(0x30, cat({kUnknownOid, hexOctets("04 03 02 01 05")}));
  DecodeHarness dec(unknown);
  ASN1T_Extension ext;
  ASSERT_EQ(asn1D_Extension(dec.ctxt(), &ext, ASN1EXPL, 0), 0);
  EXPECT_EQ(ext.extnValue_obj.decoded, nullptr);
  EXPECT_EQ(ext.extnValue_obj.object, nullptr);
  EXPECT_EQ(encodeHex(asn1E_Extension, &ext), hexOf(unknown));

  // reasonCode: the CRLReason is reachable through the object member, and a change of it is
  // what the next encoding carries.
  Bytes reason = tlv(0x30, cat({kReasonCodeOid, hexOctets("04 03 0A 01 01")}));
  DecodeHarness rdec(reason);
  ASN1T_Extension rext;
  ASSERT_EQ(asn1D_Extension(rdec.ctxt(), &rext, ASN1EXPL, 0), 0);
  ASSERT_NE(rext.extnValue_obj.decoded, nullptr);
  EXPECT_EQ(rext.extnValue_obj.object,
            ExtensionSet::instance(rdec.ctxt())->lookupObject(ASN1TObjId(rext.extnID)));
  auto* code = static_cast<ASN1T_CRLReason*>(rext.extnValue_obj.decoded);
  EXPECT_EQ(*code, (ASN1T_CRLReason)CRLReason::keyCompromise);
  *code = CRLReason::cessationOfOperation;
  EncodeHarness keep;
  EXPECT_EQ(encodeHex(asn1E_Extension, &rext, nullptr, &keep), "30 0A 06 03 55 1D 15 04 03 0A 01 05");
  EXPECT_EQ(hexText(rext.extnValue.data, rext.extnValue.numocts), "0A 01 05");

  // A known identifier with an empty value is not handed to its object.
  DecodeHarness empty(tlv(0x30, cat({kReasonCodeOid, hexOctets("04 00")})));
  ASSERT_EQ(asn1D_Extension(empty.ctxt(), &ext, ASN1EXPL, 0), 0);
  EXPECT_EQ(ext.extnValue_obj.decoded, nullptr);

  // A typed value that does not decode fails the extension, traced through both modules.
  DecodeHarness bad(tlv(0x30, cat({kReasonCodeOid, hexOctets("04 03 02 01 01")})));
  EXPECT_EQ(asn1D_Extension(bad.ctxt(), &ext, ASN1EXPL, 0), ASN_E_IDNOTFOU);
  const ASN1ErrInfo& err = bad.ctxt()->errInfo;
  ASSERT_GE(err.stkx, 3);
  EXPECT_STREQ(err.stack[err.stkx - 1].module, "PKIX1Explicit88");
  bool sawExtensions = false;
  for (int i = 0; i < err.stkx; i++)
    sawExtensions |= std::string(err.stack[i].module) == "CertificateExtensions";
  EXPECT_TRUE(sawExtensions);
}

// The members of a set, reached through a subclass's view of them.
template <class Set>
struct SetMembers : Set {
  static auto objects() { return &SetMembers::mObjects; }
  static auto count() { return &SetMembers::mCount; }
};

// lookupObject answers what a search of the members in table order would: the first member
// with an equal identifier, and nothing for an identifier no member has.
template <class Set>
void expectLookupFindsTheFirstMember(ASN1CTXT* c, const char* setName) {
  Set* set = Set::instance(c);
  const auto& objects = set->*SetMembers<Set>::objects();
  const ASN1UINT count = set->*SetMembers<Set>::count();
  for (ASN1UINT i = 0; i < count; i++) {
    ASN1UINT first = 0;
    while (!(objects[first]->id == objects[i]->id)) first++;
    EXPECT_EQ(set->lookupObject(ASN1TObjId(objects[i]->id)), objects[first])
        << setName << " member " << i;
    // Same count and last arc as a member, another identifier: none.
    ASN1TObjId other(objects[i]->id);
    other.subid[0] = 3;
    EXPECT_EQ(set->lookupObject(other), nullptr) << setName << " member " << i;
  }
  EXPECT_EQ(set->lookupObject(ASN1TObjId()), nullptr) << setName;
}

TEST(GeneratedTable, EverySetFindsItsMembersInTableOrder) {
  DecodeHarness h("");
  expectLookupFindsTheFirstMember<SupportedAttributes>(h.ctxt(), "SupportedAttributes");
  expectLookupFindsTheFirstMember<SupportedAlgorithms>(h.ctxt(), "SupportedAlgorithms");
  expectLookupFindsTheFirstMember<ExtensionSet>(h.ctxt(), "ExtensionSet");
  expectLookupFindsTheFirstMember<SupportedContentTypes>(h.ctxt(), "SupportedContentTypes");
  expectLookupFindsTheFirstMember<SupportedEContentTypes>(h.ctxt(), "SupportedEContentTypes");
  expectLookupFindsTheFirstMember<SupportedSigPolicyQualifiers>(h.ctxt(),
                                                                "SupportedSigPolicyQualifiers");
  expectLookupFindsTheFirstMember<SupportedPolicyQualifiers>(h.ctxt(), "SupportedPolicyQualifiers");
  expectLookupFindsTheFirstMember<Gost28147_89_Algorithms>(h.ctxt(), "Gost28147_89_Algorithms");
  expectLookupFindsTheFirstMember<GostR3410_2001_CMSSignatureAlgorithms>(
      h.ctxt(), "GostR3410_2001_CMSSignatureAlgorithms");
  expectLookupFindsTheFirstMember<GostR3410_94_CMSSignatureAlgorithms>(
      h.ctxt(), "GostR3410_94_CMSSignatureAlgorithms");
  expectLookupFindsTheFirstMember<GostR3411_94_DigestAlgorithms>(h.ctxt(),
                                                                 "GostR3411_94_DigestAlgorithms");
  expectLookupFindsTheFirstMember<SupportedInfos>(h.ctxt(), "SupportedInfos");
  expectLookupFindsTheFirstMember<SupportedOCSPResponseTypes>(h.ctxt(),
                                                              "SupportedOCSPResponseTypes");
}

TEST(GeneratedTable, AttributeValuesAndAbsentParameters) {
  // Two commonName values decode into a list of typed values, in order.
  Bytes values = tlv(0x31, cat({tlv(0x0C, hexOctets("41 6C 69 63 65")), tlv(0x13, hexOctets("42 6F 62"))}));
  Bytes attr = tlv(0x30, cat({hexOctets("06 03 55 04 03"), values}));
  DecodeHarness dec(attr);
  ASN1T_Attribute a;
  ASSERT_EQ(asn1D_Attribute(dec.ctxt(), &a, ASN1EXPL, 0), 0);
  auto* typed = static_cast<_Asn1RTDList*>(a.values_obj.decoded);
  ASSERT_NE(typed, nullptr);
  ASSERT_EQ(typed->count, 2u);
  auto* cn = static_cast<ASN1T__commonName_Type*>(typed->head->data);
  ASSERT_EQ(cn->t, (ASN1UINT)ASN1T__commonName_Type::T_utf8String);
  EXPECT_STREQ(cn->u.utf8String, "Alice");
  EncodeHarness keep;
  EXPECT_EQ(encodeHex(asn1E_Attribute, &a, nullptr, &keep), hexOf(attr));

  // Without parameters the algorithm's object set is never consulted.
  DecodeHarness alg("30 0B 06 09 2A 86 48 86 F7 0D 01 01 01");
  ASN1T_AlgorithmIdentifier id;
  ASSERT_EQ(asn1D_AlgorithmIdentifier(alg.ctxt(), &id, ASN1EXPL, 0), 0);
  EXPECT_FALSE(id.m.parametersPresent);
  EXPECT_EQ(id.parameters_obj.object, nullptr);
  DecodeHarness withNull("30 0D 06 09 2A 86 48 86 F7 0D 01 01 01 05 00");
  ASSERT_EQ(asn1D_AlgorithmIdentifier(withNull.ctxt(), &id, ASN1EXPL, 0), 0);
  EXPECT_NE(id.parameters_obj.object, nullptr) << "rsaEncryption is in SupportedAlgorithms";
}

TEST(GeneratedFree, BorrowedOctetsStayAndAttachedValuesFreeThemselves) {
  // With fast copy the octets point into the message; free leaves them, and the message.
  Bytes msg = tlv(0x30, cat({kUnknownOid, hexOctets("04 03 02 01 05")}));
  DecodeHarness dec(msg);
  rtSetFastCopy(dec.ctxt());
  ASN1T_Extension ext;
  ASSERT_EQ(asn1D_Extension(dec.ctxt(), &ext, ASN1EXPL, 0), 0);
  EXPECT_EQ(ext.extnValue.data, dec.data() + 9);
  asn1Free_Extension(dec.ctxt(), &ext);
  EXPECT_EQ(liveHeapElements(dec.ctxt()), 0);
  EXPECT_EQ(hexText(dec.data(), dec.size()), hexOf(msg));

  // A value attached to a context frees its content there when it is destroyed.
  ASN1Context* owner = new ASN1Context();
  owner->_ref();
  Bytes reason = tlv(0x30, cat({kReasonCodeOid, hexOctets("04 03 0A 01 01")}));
  {
    ASN1T_Extension attached;
    ASSERT_EQ(xd_setp(owner->getPtr(), reason.data(), (int)reason.size(), nullptr, nullptr), 0);
    ASSERT_EQ(asn1D_Extension(owner->getPtr(), &attached, ASN1EXPL, 0), 0);
    EXPECT_GT(liveHeapElements(owner->getPtr()), 0);
    attached.mpContext = owner;
    owner->_ref();
  }
  EXPECT_EQ(liveHeapElements(owner->getPtr()), 0);
  EXPECT_EQ(owner->getRefCount(), 1);
  owner->_unref();
}

// A PKIMessage whose body nests another PKIMessage, `depth` times, all of indefinite length.
Bytes nestedMessage(const Bytes& header, const Bytes& innermost, int depth) {
  Bytes msg = innermost;
  for (int i = 0; i < depth; i++) {
    Bytes outer = hexOctets("30 80");
    outer.insert(outer.end(), header.begin(), header.end());
    Bytes body = hexOctets("B4 80");
    outer.insert(outer.end(), body.begin(), body.end());
    outer.insert(outer.end(), msg.begin(), msg.end());
    for (int k = 0; k < 4; k++) outer.push_back(0);
    msg = outer;
  }
  return msg;
}

TEST(GeneratedDecoder, NestingDeeperThanTheBoundFailsWithTooDeep) {
  TestContext ctx;
  ASN1T_PKIMessage sample;
  qnSample_PKIMessage(ctx.get(), &sample, 0, 2);
  EncodeHarness enc;
  ASSERT_GT(asn1E_PKIMessage(enc.ctxt(), &sample, ASN1EXPL), 0);
  Bytes innermost = enc.written();
  EncodeHarness henc;
  ASSERT_GT(asn1E_PKIHeader(henc.ctxt(), &sample.header, ASN1EXPL), 0);
  Bytes header = henc.written();

  DecodeHarness shallow(nestedMessage(header, innermost, 10));
  ASN1T_PKIMessage msg;
  EXPECT_EQ(asn1D_PKIMessage(shallow.ctxt(), &msg, ASN1EXPL, 0), 0);
  EXPECT_EQ(shallow.pos(), shallow.size());

  DecodeHarness deep(nestedMessage(header, innermost, 200));
  ASN1T_PKIMessage deepMsg;
  EXPECT_EQ(asn1D_PKIMessage(deep.ctxt(), &deepMsg, ASN1EXPL, 0), ASN_E_TOODEEP);
  EXPECT_EQ(deep.context().errorStatus(), ASN_E_TOODEEP);
  // The count is back to zero: the same context decodes a shallow message again.
  ASSERT_EQ(xd_setp(deep.ctxt(), shallow.data(), (int)shallow.size(), nullptr, nullptr), 0);
  deep.context().resetError();
  EXPECT_EQ(asn1D_PKIMessage(deep.ctxt(), &msg, ASN1EXPL, 0), 0);
}

}  // namespace
