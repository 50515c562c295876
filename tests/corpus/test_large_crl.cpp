// A CRL of 10,000 entries, made at build time by tests/data/make-corpus.sh --large-crl (too
// big to commit): every entry decodes, every tenth with its typed reason code, and the whole
// re-encodes byte for byte.
#include <gtest/gtest.h>

#include <quillon/modules/PKIX1Explicit88.h>

#include "corpus.h"
#include "message_codec.h"

namespace {

const size_t kEntries = 10000;  // as make-corpus.sh writes them
const int kCrlExtensions = 3;   // authority key identifier, distribution point, CRL number

TEST(LargeCrl, TenThousandEntriesDecodeAndReencode) {
  corpus::Octets crl = corpus::readFile(std::string(QN_CORPUS_GENERATED_DIR) + "/crl-large.der");
  ASSERT_GT(crl.size(), kEntries * 20);
  const quillon_tool::TypeEntry& type = corpus::typeOf("PKIX1Explicit88.CertificateList");
  quillon_tool::MessageCodec codec(type);
  ASSERT_EQ(codec.decode(crl.data(), crl.size()), 0) << codec.errorReport();

  const auto* value = static_cast<const ASN1T_CertificateList*>(codec.value());
  ASSERT_TRUE(value->tbsCertList.m.revokedCertificatesPresent);
  EXPECT_EQ(value->tbsCertList.revokedCertificates.count, kEntries);

  corpus::OpenTypeCensus census;
  type.walk(codec.value(), census, 0);
  EXPECT_EQ(census.count("ExtensionSet"), static_cast<int>(kEntries / 10) + kCrlExtensions);
  // Only the signature algorithm (sha256WithRSAEncryption, twice) is unknown to its set.
  EXPECT_EQ(census.opaqueOids(), std::set<std::string>{"1.2.840.113549.1.1.11"});

  std::vector<uint8_t> der;
  ASSERT_GE(codec.encode(der), 0) << codec.errorReport();
  EXPECT_TRUE(der == crl) << "re-encoding differs from the CRL";
}

}  // namespace
