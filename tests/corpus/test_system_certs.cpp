// The certificates the system trusts (/etc/ssl/certs, PEM): real certificates from many CAs
// and many years, each of which must decode and re-encode byte for byte.
#include <dirent.h>
#include <gtest/gtest.h>
#include <limits.h>
#include <stdlib.h>

#include <set>
#include <string>

#include "corpus.h"
#include "message_codec.h"
#include "message_input.h"

namespace {

const char kSystemCerts[] = "/etc/ssl/certs";

// Certificates (by their subject's common name) whose issuers did not write DER, so that their
// DER re-encoding differs from them: both Trustwave ECC roots give their key usage BIT STRING
// a trailing zero octet (03 03 07 06 00 where DER has 03 02 01 06).
const char* const kNotDer[] = {
    "Trustwave Global ECC P256 Certification Authority",
    "Trustwave Global ECC P384 Certification Authority",
};

bool knownNotDer(const std::vector<uint8_t>& cert) {
  std::string octets(cert.begin(), cert.end());
  for (const char* name : kNotDer) {
    if (octets.find(name) != std::string::npos) return true;
  }
  return false;
}

// The re-encoding of a certificate that was not DER must itself decode and re-encode to
// exactly itself: the encoder's output is DER even where its input was not.
void expectStableDer(const quillon_tool::TypeEntry& type, const std::vector<uint8_t>& der,
                     const std::string& file) {
  quillon_tool::MessageCodec again(type);
  ASSERT_EQ(again.decode(der.data(), der.size()), 0) << file << "\n" << again.errorReport();
  std::vector<uint8_t> twice;
  ASSERT_GE(again.encode(twice), 0) << file;
  EXPECT_EQ(twice, der) << file;
}

// The PEM files of the folder, each once: the hash links point at files already listed.
std::set<std::string> pemFiles(const std::string& dir) {
  std::set<std::string> files;
  DIR* d = opendir(dir.c_str());
  if (d == nullptr) return files;
  while (dirent* e = readdir(d)) {
    std::string name = e->d_name;
    if (name.size() < 4 || (name.compare(name.size() - 4, 4, ".pem") != 0 &&
                            name.compare(name.size() - 4, 4, ".crt") != 0)) {
      continue;
    }
    char resolved[PATH_MAX];
    if (realpath((dir + "/" + name).c_str(), resolved) != nullptr) files.insert(resolved);
  }
  closedir(d);
  return files;
}

TEST(SystemCertificates, EveryOneDecodesAndReencodesByteForByte) {
  std::set<std::string> files = pemFiles(kSystemCerts);
  if (files.empty()) GTEST_SKIP() << "no certificates in " << kSystemCerts;
  const quillon_tool::TypeEntry& certificate = corpus::typeOf("PKIX1Explicit88.Certificate");
  int certificates = 0, extensions = 0, typedExtensions = 0, notDer = 0;
  for (const std::string& file : files) {
    std::vector<quillon_tool::InputMessage> blocks;
    std::string error;
    ASSERT_TRUE(quillon_tool::readMessages(file, blocks, error)) << error;
    for (const auto& block : blocks) {
      quillon_tool::MessageCodec codec(certificate);
      ASSERT_EQ(codec.decode(block.octets.data(), block.octets.size()), 0)
          << file << "\n" << codec.errorReport();
      std::vector<uint8_t> der;
      ASSERT_GE(codec.encode(der), 0) << file << "\n" << codec.errorReport();
      if (der != block.octets) {
        EXPECT_TRUE(knownNotDer(block.octets)) << file << " re-encodes to other octets";
        expectStableDer(certificate, der, file);
        ++notDer;
      }
      corpus::OpenTypeCensus census;
      certificate.walk(codec.value(), census, 0);
      for (const auto& item : census.items) {
        EXPECT_EQ(item.decoded, !item.carriedType.empty()) << file << ": " << item.oid;
        if (item.set != "ExtensionSet") continue;
        ++extensions;
        typedExtensions += item.decoded;
      }
      ++certificates;
    }
  }
  std::string summary = std::to_string(files.size()) + " files, " +
                        std::to_string(certificates) + " certificates, " +
                        std::to_string(extensions) + " extensions (" +
                        std::to_string(typedExtensions) + " typed), " +
                        std::to_string(notDer) + " not DER";
  RecordProperty("system_certificates", summary);
  printf("%s: %s\n", kSystemCerts, summary.c_str());
}

}  // namespace
