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
  int certificates = 0, extensions = 0, typedExtensions = 0;
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
      EXPECT_EQ(der, block.octets) << file;
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
                        std::to_string(typedExtensions) + " typed)";
  RecordProperty("system_certificates", summary);
  printf("%s: %s\n", kSystemCerts, summary.c_str());
}

}  // namespace
