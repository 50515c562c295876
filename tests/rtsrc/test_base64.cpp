// Base64: the published test vectors, round trips of every short length, white space, every
// kind of malformed text, and caller buffers that are too small.

#include <quillon/rtBase64.h>

#include <gtest/gtest.h>

#include <string.h>

#include <string>
#include <vector>

#include "test_context.h"

namespace {

const ASN1OCTET* octetsOf(const std::string& s) {
  return reinterpret_cast<const ASN1OCTET*>(s.data());
}

class Base64Test : public ::testing::Test {
 protected:
  std::string encode(const std::string& data) {
    char* text = nullptr;
    const int len = rtBase64EncodeDyn(ctxt.get(), octetsOf(data), data.size(), &text);
    EXPECT_GE(len, 0);
    return len < 0 ? "<error>" : std::string(text, len);
  }

  // Decoded octets, or "<status N>" for a refused text.
  std::string decode(const std::string& text) {
    ASN1DynOctStr octs{};
    const int n = rtBase64DecodeDyn(ctxt.get(), text.data(), text.size(), &octs);
    if (n < 0) return "<status " + std::to_string(n) + ">";
    EXPECT_EQ(static_cast<ASN1UINT>(n), octs.numocts);
    return std::string(reinterpret_cast<const char*>(octs.data), octs.numocts);
  }

  TestContext ctxt;
};

// RFC 4648, section 10.
TEST_F(Base64Test, PublishedVectors) {
  const char* vectors[][2] = {{"", ""},         {"f", "Zg=="},         {"fo", "Zm8="},
                              {"foo", "Zm9v"},  {"foob", "Zm9vYg=="},  {"fooba", "Zm9vYmE="},
                              {"foobar", "Zm9vYmFy"}};
  for (const auto& v : vectors) {
    EXPECT_EQ(encode(v[0]), v[1]);
    EXPECT_EQ(decode(v[1]), v[0]);
    EXPECT_EQ(rtBase64EncodedLen(strlen(v[0])), strlen(v[1]));
  }
  // The two characters beyond the letters and digits, and the top and bottom of each group.
  EXPECT_EQ(encode(std::string("\xFB\xEF\xBE", 3)), "++++");
  EXPECT_EQ(encode(std::string("\xFF\xFF\xFF", 3)), "////");
  EXPECT_EQ(encode(std::string("\0\0\0", 3)), "AAAA");
}

TEST_F(Base64Test, EveryLengthSurvivesARoundTrip) {
  for (size_t n = 0; n <= 70; ++n) {
    std::string data(n, '\0');
    for (size_t k = 0; k < n; ++k) data[k] = static_cast<char>((k * 151 + n * 7) & 0xFF);
    const std::string text = encode(data);
    EXPECT_EQ(text.size() % 4, 0u) << n;
    EXPECT_EQ(text.size(), rtBase64EncodedLen(n)) << n;
    EXPECT_EQ(rtBase64DecodedLen(ctxt.get(), text.data(), text.size()), static_cast<int>(n));
    EXPECT_EQ(decode(text), data) << n;
  }
}

TEST_F(Base64Test, WhiteSpaceIsSkippedAnywhere) {
  EXPECT_EQ(decode("\n  Zm9v\r\nYmFy\n"), "foobar");
  EXPECT_EQ(decode("Z m 9 v\tY\vm\fE ="), "fooba");
  EXPECT_EQ(decode("Zm9vYg=\n=\n"), "foob");
  EXPECT_EQ(decode(" \r\n\t"), "");

  // Line-wrapped text as XML and mail carry it: 76 characters a line.
  std::string data(200, '\0');
  for (size_t k = 0; k < data.size(); ++k) data[k] = static_cast<char>(k);
  const std::string flat = encode(data);
  std::string wrapped;
  for (size_t k = 0; k < flat.size(); k += 76) wrapped += "  " + flat.substr(k, 76) + "\r\n";
  EXPECT_EQ(decode(wrapped), data);
}

TEST_F(Base64Test, MalformedTextsAreRefused) {
  const char* bad[] = {
      "Zm9",       // incomplete group
      "Zm9vY",     // one character after whole groups
      "Zg=",       // padding cut short
      "Z===",      // three padding characters
      "====",      // padding without data
      "Zg=g",      // data between padding characters
      "Zm9v=",     // padding after a complete group
      "Zg==Zg==",  // data after the end
      "Zg===",     // padding beyond the group
      "Zm9v!",     // character outside the alphabet
      "Zm-v",      // the URL-safe alphabet is another encoding
      "Zm9v\x80",
  };
  for (const char* text : bad) {
    ctxt.resetError();
    EXPECT_EQ(decode(text), "<status -43>") << text;
    EXPECT_EQ(ctxt.errorStatus(), ASN_E_INVBASE64) << text;
    EXPECT_EQ(ctxt.errorModule(), "rtsrc/rtBase64") << text;
  }
  // A NUL inside the counted text is no base64 character either.
  ctxt.resetError();
  EXPECT_EQ(rtBase64DecodedLen(ctxt.get(), "Zm\0v", 4), ASN_E_INVBASE64);
}

TEST_F(Base64Test, CallerBuffersMustHoldTheResult) {
  const std::string data = "foobar";
  char text[9];
  memset(text, '#', sizeof text);
  ctxt.resetError();
  // Eight characters and the NUL: eight bytes are one too few.
  EXPECT_EQ(rtBase64Encode(ctxt.get(), octetsOf(data), data.size(), text, 8), ASN_E_STROVFLW);
  EXPECT_EQ(ctxt.errorStatus(), ASN_E_STROVFLW);
  EXPECT_EQ(text[0], '#');
  EXPECT_EQ(rtBase64Encode(ctxt.get(), octetsOf(data), data.size(), text, 9), 8);
  EXPECT_STREQ(text, "Zm9vYmFy");

  ASN1OCTET octs[6];
  memset(octs, 0x5A, sizeof octs);
  ctxt.resetError();
  EXPECT_EQ(rtBase64Decode(ctxt.get(), text, 8, octs, 5), ASN_E_STROVFLW);
  EXPECT_EQ(octs[0], 0x5A);
  EXPECT_EQ(rtBase64Decode(ctxt.get(), text, 8, octs, 6), 6);
  EXPECT_EQ(std::string(reinterpret_cast<char*>(octs), 6), data);
  // A text that is bad is reported as bad, whatever the buffer's size.
  EXPECT_EQ(rtBase64Decode(ctxt.get(), "Zm9", 3, octs, 0), ASN_E_INVBASE64);

  ASN1DynOctStr untouched{3, octs};
  EXPECT_EQ(rtBase64DecodeDyn(ctxt.get(), "Zm9", 3, &untouched), ASN_E_INVBASE64);
  EXPECT_EQ(untouched.numocts, 3u);
  EXPECT_EQ(untouched.data, octs);
  EXPECT_EQ(rtBase64Encode(ctxt.get(), nullptr, 3, text, sizeof text), ASN_E_INVPARAM);
}

}  // namespace
