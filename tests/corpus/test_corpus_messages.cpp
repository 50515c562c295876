// Every message of the corpus (tests/data/MANIFEST): it decodes as its type, reaches the
// typed values of its extensions, attributes, algorithm parameters and contents through the
// object sets, re-encodes byte for byte, and every damaged copy of it is refused with a
// recorded error (or, where the damage leaves a valid message, decodes to exactly that).
#include <gtest/gtest.h>

#include <string>

#include "corpus.h"
#include "damage.h"
#include "message_codec.h"

namespace {

using corpus::Entry;
using corpus::Octets;
using corpus::Outcome;

class CorpusMessage : public ::testing::TestWithParam<Entry> {
 protected:
  const quillon_tool::TypeEntry& type() { return corpus::typeOf(GetParam().type); }
};

// The damage tests run once per distinct DER message: not again for its PEM or BER forms.
class CorpusDamage : public CorpusMessage {};

std::string testName(const ::testing::TestParamInfo<Entry>& info) {
  std::string name = info.param.file;
  for (char& c : name) {
    if (!isalnum(static_cast<unsigned char>(c))) c = '_';
  }
  return name;
}

// A damaged copy must be refused with its status recorded, or be a valid message whose
// re-encoding is `valid` (the original, or the damaged copy itself when the damage only cut
// optional parts away).
void expectRefusedOrValid(const Outcome& outcome, const Octets& valid, const std::string& what) {
  EXPECT_EQ(outcome.leakedBlocks, 0) << what;
  if (outcome.status < 0) {
    EXPECT_TRUE(outcome.errorRecorded) << what << ": status " << outcome.status
                                       << " returned but not recorded";
    return;
  }
  EXPECT_GE(outcome.encodeStatus, 0) << what;
  EXPECT_EQ(outcome.reencoded, valid) << what << ": accepted, but is not that message";
}

void expectRefused(const Outcome& outcome, const std::string& what) {
  EXPECT_LT(outcome.status, 0) << what << ": accepted";
  EXPECT_TRUE(outcome.status >= 0 || outcome.errorRecorded) << what << ": status not recorded";
  EXPECT_EQ(outcome.leakedBlocks, 0) << what;
}

TEST_P(CorpusMessage, DecodesAndReencodesByteForByte) {
  Octets msg = corpus::message(GetParam());
  ASSERT_FALSE(msg.empty());
  quillon_tool::MessageCodec codec(type());
  ASSERT_EQ(codec.decode(msg.data(), msg.size()), 0) << codec.errorReport();
  Octets der;
  ASSERT_GE(codec.encode(der), 0) << codec.errorReport();
  EXPECT_EQ(der, corpus::expectedDer(GetParam()));
}

TEST_P(CorpusMessage, OpenTypesReachTheirTypes) {
  const Entry& entry = GetParam();
  Octets msg = corpus::message(entry);
  quillon_tool::MessageCodec codec(type());
  ASSERT_EQ(codec.decode(msg.data(), msg.size()), 0) << codec.errorReport();
  corpus::OpenTypeCensus census;
  type().walk(codec.value(), census, 0);

  // A value whose identifier the object set knows must have been decoded; one it does not
  // know stays octets.
  for (const auto& item : census.items) {
    EXPECT_EQ(item.decoded, !item.carriedType.empty())
        << item.set << " " << item.oid << (item.decoded ? " decoded" : " left as octets");
  }
  std::set<std::string> reached = census.typedValues();
  for (const std::string& t : entry.noteList("reach")) {
    EXPECT_TRUE(reached.count(t)) << "no decoded value of type " << t;
  }
  std::set<std::string> opaque = census.opaqueOids();
  for (const std::string& oid : entry.noteList("opaque")) {
    EXPECT_TRUE(opaque.count(oid)) << "no value of " << oid << " left as octets";
  }
  if (entry.notes.count("extensions")) {
    EXPECT_EQ(census.count("ExtensionSet"), std::stoi(entry.notes.at("extensions")));
  }
}

TEST_P(CorpusDamage, EveryTruncationIsRefused) {
  Octets msg = corpus::message(GetParam());
  for (size_t keep = 0; keep < msg.size(); ++keep) {
    expectRefused(corpus::decodeDamaged(type(), msg.data(), keep),
                  "first " + std::to_string(keep) + " octets");
  }
}

// The outer length rewritten to fit each cut, so that the decoders inside, not the check of
// the outer length, must find where the message breaks off.
TEST_P(CorpusDamage, ContentsCutShortAreRefusedOrValid) {
  Octets der = corpus::expectedDer(GetParam());
  corpus::Element outer;
  ASSERT_TRUE(corpus::readElement(der, 0, outer));
  for (size_t keep = 0; keep < outer.length; ++keep) {
    Octets cut = corpus::withContentsCut(der, outer, keep);
    expectRefusedOrValid(corpus::decodeDamaged(type(), cut.data(), cut.size()), cut,
                         std::to_string(keep) + " octets of contents");
  }
}

TEST_P(CorpusDamage, DamagedOuterHeaderIsRefused) {
  Octets der = corpus::expectedDer(GetParam());
  corpus::Element outer;
  ASSERT_TRUE(corpus::readElement(der, 0, outer));
  for (uint8_t tag : {0x31, 0x04, 0xA0, 0x02}) {
    Octets damaged = der;
    damaged[0] = tag;
    expectRefused(corpus::decodeDamaged(type(), damaged.data(), damaged.size()),
                  "outer tag " + std::to_string(tag));
  }
  Octets longer = corpus::withLength(der, outer, outer.length + 1);
  expectRefused(corpus::decodeDamaged(type(), longer.data(), longer.size()), "length + 1");
  Octets shorter = corpus::withLength(der, outer, outer.length - 1);
  expectRefused(corpus::decodeDamaged(type(), shorter.data(), shorter.size()), "length - 1");
  // The decoders match tags with the constructed bit masked, so a primitive-flagged outer
  // SEQUENCE may pass; if it does, it must still be this message.
  Octets primitive = der;
  primitive[0] ^= 0x20;
  expectRefusedOrValid(corpus::decodeDamaged(type(), primitive.data(), primitive.size()), der,
                       "outer constructed bit flipped");
}

// Every element's header damaged in turn, down into the extension values and encapsulated
// contents: whatever the decoder makes of it, it must not crash, leak or read out of bounds,
// and a refusal must be recorded.
TEST_P(CorpusDamage, DamagedElementsNeverCrash) {
  Octets der = corpus::expectedDer(GetParam());
  std::vector<corpus::Element> elements = corpus::scanElements(der);
  ASSERT_FALSE(elements.empty());
  auto check = [&](const Octets& damaged, const std::string& what) {
    Outcome outcome = corpus::decodeDamaged(type(), damaged.data(), damaged.size());
    EXPECT_EQ(outcome.leakedBlocks, 0) << what;
    if (outcome.status < 0) {
      EXPECT_TRUE(outcome.errorRecorded) << what << ": status " << outcome.status;
    } else {
      EXPECT_GE(outcome.encodeStatus, 0) << what << ": accepted but cannot be re-encoded";
    }
  };
  for (const corpus::Element& e : elements) {
    std::string at = "element at " + std::to_string(e.tagAt);
    Octets flipped = der;
    flipped[e.tagAt] ^= 0x20;
    check(flipped, at + ", constructed bit flipped");
    Octets retagged = der;
    retagged[e.tagAt] ^= 0x01;
    check(retagged, at + ", tag number changed");
    if (e.lengthSize > 1 || e.length < 0x7F) {
      check(corpus::withLength(der, e, e.length + 1), at + ", length + 1");
    }
    if (e.length > 0) check(corpus::withLength(der, e, e.length - 1), at + ", length - 1");
  }
}

// Messages our modules cannot take (a CMS password recipient, a CMP certConf, a time-stamp
// failure bit beyond the CMP module's, GOST signature parameters the algorithm set misreads):
// refused with the status the manifest names, recorded, without a leak.
class CorpusRefused : public CorpusMessage {};

TEST_P(CorpusRefused, IsRefusedWithItsStatus) {
  Octets msg = corpus::message(GetParam());
  Outcome outcome = corpus::decodeDamaged(type(), msg.data(), msg.size());
  EXPECT_EQ(outcome.status, std::stoi(GetParam().notes.at("refused")));
  EXPECT_TRUE(outcome.errorRecorded);
  EXPECT_EQ(outcome.leakedBlocks, 0);
}

INSTANTIATE_TEST_SUITE_P(Corpus, CorpusMessage, ::testing::ValuesIn(corpus::decodableEntries()),
                         testName);
INSTANTIATE_TEST_SUITE_P(Corpus, CorpusRefused, ::testing::ValuesIn(corpus::refusedEntries()),
                         testName);
INSTANTIATE_TEST_SUITE_P(Corpus, CorpusDamage, ::testing::ValuesIn(corpus::derEntries()),
                         testName);

TEST(CorpusManifest, CoversEveryKindWithItsType) {
  std::map<std::string, int> kinds;
  for (const Entry& entry : corpus::manifest()) {
    ++kinds[entry.kind];
    EXPECT_NE(quillon_tool::findType(entry.type), nullptr) << entry.file << ": " << entry.type;
  }
  for (const char* kind : {"cert", "crl", "cms", "ocsp", "tsp", "cmp", "pkcs10", "gost"}) {
    EXPECT_GE(kinds[kind], 1) << "no " << kind << " in the corpus";
  }
}

}  // namespace
