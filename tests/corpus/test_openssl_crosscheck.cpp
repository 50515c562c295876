// What we encode, openssl reads: a typed value changed inside a decoded message (a CRL entry's
// reason code, a certificate's path length, an OCSP revocation reason, a time stamp's accuracy
// two open types deep, each reached through the object sets) is written back into its open
// type by the encoder, and openssl's own parser of that message kind finds the new value there.
#include <gtest/gtest.h>
#include <stdio.h>
#include <stdlib.h>
#include <unistd.h>

#include <quillon/modules/CertificateExtensions.h>
#include <quillon/modules/CryptographicMessageSyntax.h>
#include <quillon/modules/PKIX1Explicit88.h>
#include <quillon/modules/PKIXOCSP.h>
#include <quillon/modules/PKIXTSP.h>

#include <string>

#include "corpus.h"
#include "message_codec.h"

namespace {

using corpus::Octets;

bool haveOpenssl() { return system("openssl version >/dev/null 2>&1") == 0; }

// openssl's text form of a DER message ("crl -inform DER -noout -text" and the like); the
// message goes through a temporary file.
std::string opensslText(const std::string& command, const Octets& der) {
  char path[] = "/tmp/quillon-crosscheck-XXXXXX";
  int fd = mkstemp(path);
  if (fd < 0) return "(no temporary file)";
  bool written = write(fd, der.data(), der.size()) == static_cast<ssize_t>(der.size());
  close(fd);
  std::string text;
  if (written) {
    FILE* p = popen(("openssl " + command + " " + path + " 2>&1").c_str(), "r");
    char buf[4096];
    size_t n;
    while (p != nullptr && (n = fread(buf, 1, sizeof buf, p)) > 0) text.append(buf, n);
    if (p != nullptr) pclose(p);
  }
  unlink(path);
  return text;
}

bool sameOid(const ASN1OBJID& oid, std::initializer_list<ASN1UINT> arcs) {
  if (oid.numids != arcs.size()) return false;
  size_t i = 0;
  for (ASN1UINT arc : arcs) {
    if (oid.subid[i++] != arc) return false;
  }
  return true;
}

// The decoded value of the extension with the given identifier in a list of extensions.
void* extensionValue(const ASN1T_Extensions& extensions, std::initializer_list<ASN1UINT> oid) {
  for (const _Asn1RTDListNode* n = extensions.head; n != nullptr; n = n->next) {
    const auto* ext = static_cast<const ASN1T_Extension*>(n->data);
    if (sameOid(ext->extnID, oid)) return ext->extnValue_obj.decoded;
  }
  return nullptr;
}

class OpensslReadsOurEncoding : public ::testing::Test {
 protected:
  void SetUp() override {
    if (!haveOpenssl()) GTEST_SKIP() << "no openssl command";
  }

  // Decodes a corpus file as type; the codec keeps the value.
  void decode(quillon_tool::MessageCodec& codec, const std::string& file) {
    msg_ = corpus::readFile(corpus::dataDir() + "/" + file);
    ASSERT_EQ(codec.decode(msg_.data(), msg_.size()), 0) << codec.errorReport();
  }

  Octets msg_;
};

TEST_F(OpensslReadsOurEncoding, ChangedCrlReasonCode) {
  quillon_tool::MessageCodec codec(corpus::typeOf("PKIX1Explicit88.CertificateList"));
  ASSERT_NO_FATAL_FAILURE(decode(codec, "crl/entries-and-idp.der"));
  auto* crl = static_cast<ASN1T_CertificateList*>(codec.value());
  ASSERT_TRUE(crl->tbsCertList.m.revokedCertificatesPresent);
  ASN1T_CRLReason* reason = nullptr;
  for (_Asn1RTDListNode* n = crl->tbsCertList.revokedCertificates.head; n; n = n->next) {
    auto* entry = static_cast<ASN1T_TBSCertList_revokedCertificates_element*>(n->data);
    if (std::string(entry->userCertificate) == "0x2004" && entry->m.crlEntryExtensionsPresent) {
      reason = static_cast<ASN1T_CRLReason*>(
          extensionValue(entry->crlEntryExtensions, {2, 5, 29, 21}));
    }
  }
  ASSERT_NE(reason, nullptr) << "no typed reason code on entry 2004";
  ASSERT_EQ(*reason, 4u) << "superseded, as the corpus script revoked it";
  *reason = 3;  // affiliationChanged

  Octets der;
  ASSERT_GE(codec.encode(der), 0) << codec.errorReport();
  EXPECT_EQ(der.size(), msg_.size());
  std::string text = opensslText("crl -inform DER -noout -text -in", der);
  EXPECT_NE(text.find("Serial Number: 2004\n        Revocation Date: Feb  4 00:00:00 2025 GMT\n"
                      "        CRL entry extensions:\n            X509v3 CRL Reason Code: \n"
                      "                Affiliation Changed"),
            std::string::npos)
      << text;
}

TEST_F(OpensslReadsOurEncoding, ChangedPathLengthConstraint) {
  quillon_tool::MessageCodec codec(corpus::typeOf("PKIX1Explicit88.Certificate"));
  ASSERT_NO_FATAL_FAILURE(decode(codec, "cert/sub-ca.der"));
  auto* cert = static_cast<ASN1T_Certificate*>(codec.value());
  ASSERT_TRUE(cert->tbsCertificate.m.extensionsPresent);
  auto* basic = static_cast<ASN1T_BasicConstraintsSyntax*>(
      extensionValue(cert->tbsCertificate.extensions, {2, 5, 29, 19}));
  ASSERT_NE(basic, nullptr) << "no typed basic constraints";
  ASSERT_TRUE(basic->cA);
  ASSERT_TRUE(basic->m.pathLenConstraintPresent);
  ASSERT_EQ(basic->pathLenConstraint, 0u);
  basic->pathLenConstraint = 300;  // two content octets: every enclosing length grows

  Octets der;
  ASSERT_GE(codec.encode(der), 0) << codec.errorReport();
  EXPECT_EQ(der.size(), msg_.size() + 1);
  std::string text = opensslText("x509 -inform DER -noout -text -in", der);
  EXPECT_NE(text.find("CA:TRUE, pathlen:300"), std::string::npos) << text;
  EXPECT_NE(text.find("Subject: C = DE, O = Example, OU = Corpus, CN = Corpus Sub CA"),
            std::string::npos)
      << text;
}

TEST_F(OpensslReadsOurEncoding, ChangedOcspRevocationReason) {
  quillon_tool::MessageCodec codec(corpus::typeOf("PKIXOCSP.OCSPResponse"));
  ASSERT_NO_FATAL_FAILURE(decode(codec, "ocsp/response-good-revoked-hold-unknown.der"));
  auto* response = static_cast<ASN1T_OCSPResponse*>(codec.value());
  ASSERT_TRUE(response->m.responseBytesPresent);
  auto* basic = static_cast<ASN1T_BasicOCSPResponse*>(response->responseBytes.response_obj.decoded);
  ASSERT_NE(basic, nullptr) << "the basic response was not decoded";
  ASN1T_RevokedInfo* revoked = nullptr;
  for (_Asn1RTDListNode* n = basic->tbsResponseData.responses.head; n; n = n->next) {
    auto* single = static_cast<ASN1T_SingleResponse*>(n->data);
    if (single->certStatus.t == ASN1T_CertStatus::T_revoked &&
        single->certStatus.u.revoked->m.revocationReasonPresent &&
        single->certStatus.u.revoked->revocationReason == 1) {
      revoked = single->certStatus.u.revoked;
    }
  }
  ASSERT_NE(revoked, nullptr) << "no response revoked for key compromise";
  revoked->revocationReason = 5;  // cessationOfOperation

  Octets der;
  ASSERT_GE(codec.encode(der), 0) << codec.errorReport();
  EXPECT_EQ(der.size(), msg_.size());
  std::string text = opensslText("ocsp -noverify -resp_text -respin", der);
  EXPECT_NE(text.find("Revocation Reason: cessationOfOperation (0x5)"), std::string::npos) << text;
  EXPECT_EQ(text.find("keyCompromise"), std::string::npos) << text;
}

// The TSTInfo is the encapsulated content of the SignedData that is the token's content: the
// encoder must re-encode both open types around the changed value.
TEST_F(OpensslReadsOurEncoding, ChangedTimeStampAccuracy) {
  quillon_tool::MessageCodec codec(corpus::typeOf("PKIXTSP.TimeStampResp"));
  ASSERT_NO_FATAL_FAILURE(decode(codec, "tsp/reply-certs-accuracy-nonce.der"));
  auto* response = static_cast<ASN1T_TimeStampResp*>(codec.value());
  ASSERT_TRUE(response->m.timeStampTokenPresent);
  auto* signedData = static_cast<ASN1T_SignedData*>(response->timeStampToken.content_obj.decoded);
  ASSERT_NE(signedData, nullptr) << "the token's signed data was not decoded";
  ASSERT_TRUE(signedData->encapContentInfo.m.eContentPresent);
  auto* info = static_cast<ASN1T_TSTInfo*>(signedData->encapContentInfo.eContent_obj.decoded);
  ASSERT_NE(info, nullptr) << "the time-stamp info was not decoded";
  ASSERT_TRUE(info->m.accuracyPresent);
  ASSERT_TRUE(info->accuracy.m.millisPresent);
  ASSERT_EQ(info->accuracy.millis, 500u);  // as the corpus script's TSA configuration says
  info->accuracy.millis = 250;

  Octets der;
  ASSERT_GE(codec.encode(der), 0) << codec.errorReport();
  EXPECT_EQ(der.size(), msg_.size());
  std::string text = opensslText("ts -reply -text -in", der);
  EXPECT_NE(text.find("Accuracy: 0x01 seconds, 0xFA millis, 0x64 micros"), std::string::npos)
      << text;
}

}  // namespace
