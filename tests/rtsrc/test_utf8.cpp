// UTF-8: counting and validation, single characters, heap copies, and the BMP / UCS-4
// conversions, cross-checked against the C library's iconv over every scalar value.

#include <quillon/rtUTF8.h>

#include <gtest/gtest.h>

#include <iconv.h>
#include <string.h>

#include <string>
#include <vector>

#include "test_context.h"

namespace {

class UTF8Test : public ::testing::Test {
 protected:
  TestContext ctxt;
};

// Every scalar value is sized and encoded in the comparison with iconv below; these are not.
TEST_F(UTF8Test, NonCharactersHaveNoEncoding) {
  for (ASN1UINT bad : {0xD800u, 0xDFFFu, 0x110000u, 0xFFFFFFFFu}) {
    ASN1OCTET buf[ASN_K_UTF8MAXCHARSIZE] = {0x55, 0x55, 0x55, 0x55};
    EXPECT_EQ(rtUTF8CharSize(bad), 0) << std::hex << bad;
    EXPECT_EQ(rtUTF8EncodeChar(bad, buf), 0) << std::hex << bad;
    EXPECT_EQ(buf[0], 0x55);
  }
}

TEST_F(UTF8Test, LengthCountsCharactersNotBytes) {
  EXPECT_EQ(rtUTF8Len(ctxt.get(), ""), 0);
  // The counted form reads exactly nbytes: a NUL inside is a character, the rest is not read.
  EXPECT_EQ(rtUTF8LenN(ctxt.get(), "a\0b", 3), 3);
  EXPECT_EQ(rtUTF8LenN(ctxt.get(), "\xC3\xBC\xC3\xBC", 2), 1);
  EXPECT_EQ(rtUTF8LenN(ctxt.get(), nullptr, 0), 0);
  EXPECT_EQ(ctxt.errorStatus(), 0);
}

// Every kind of ill-formed sequence, at a known byte offset behind valid text.
TEST_F(UTF8Test, IllFormedSequencesAreRefusedWithTheirOffset) {
  struct Case {
    const char* what;
    std::string bytes;
  } cases[] = {
      {"stray continuation", "\x80"},
      {"overlong 2-byte NUL", "\xC0\x80"},
      {"overlong 2-byte", "\xC1\xBF"},
      {"overlong 3-byte", "\xE0\x9F\xBF"},
      {"overlong 4-byte", "\xF0\x8F\xBF\xBF"},
      {"high surrogate", "\xED\xA0\x80"},
      {"low surrogate", "\xED\xBF\xBF"},
      {"above U+10FFFF", "\xF4\x90\x80\x80"},
      {"lead F5", "\xF5\x80\x80\x80"},
      {"old 5-byte form", "\xF8\x88\x80\x80\x80"},
      {"byte FE", "\xFE"},
      {"byte FF", "\xFF"},
      {"2-byte lead then ASCII", "\xC3" "A"},
      {"3-byte lead cut short", "\xE2\x82"},
      {"4-byte lead cut short", "\xF0\x9F\x94"},
      {"lead then another lead", "\xE2\xE2\x82\xAC"},
  };
  const std::string prefix = "ok\xC3\xA9";  // 4 bytes, 3 characters
  for (const Case& c : cases) {
    const std::string text = prefix + c.bytes + "tail";
    ctxt.resetError();
    EXPECT_EQ(rtUTF8LenN(ctxt.get(), text.data(), text.size()), ASN_E_INVUTF8) << c.what;
    EXPECT_EQ(ctxt.errorStatus(), ASN_E_INVUTF8) << c.what;
    EXPECT_EQ(ctxt.errorParm(), "4") << c.what;
    EXPECT_EQ(ctxt.errorModule(), "rtsrc/rtUTF8") << c.what;

    size_t index = prefix.size();
    ctxt.resetError();
    EXPECT_EQ(rtUTF8DecodeChar(ctxt.get(), text.data(), text.size(), &index), ASN_E_INVUTF8)
        << c.what;
    EXPECT_EQ(index, prefix.size()) << c.what;

    // The truncated forms must also be caught when the text simply ends there.
    const std::string cut = prefix + c.bytes;
    ctxt.resetError();
    EXPECT_EQ(rtUTF8LenN(ctxt.get(), cut.data(), cut.size()), ASN_E_INVUTF8) << c.what;
  }

  // A count that ends inside a sequence cuts it, even when the bytes beyond would complete it.
  const char euro[] = "\xE2\x82\xAC";
  EXPECT_EQ(rtUTF8LenN(ctxt.get(), euro, 2), ASN_E_INVUTF8);
  EXPECT_EQ(rtUTF8LenN(ctxt.get(), euro, 1), ASN_E_INVUTF8);
  size_t index = 0;
  EXPECT_EQ(rtUTF8DecodeChar(ctxt.get(), euro, 2, &index), ASN_E_INVUTF8);
  EXPECT_EQ(rtUTF8DecodeChar(ctxt.get(), euro, 3, &index), 0x20AC);
}

TEST_F(UTF8Test, DecodeCharWalksTextAndStopsAtItsEnd) {
  const std::string text = "a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x94\x92";
  std::vector<int> chars;
  std::vector<size_t> offsets;
  size_t index = 0;
  while (index < text.size()) {
    const int wc = rtUTF8DecodeChar(ctxt.get(), text.data(), text.size(), &index);
    ASSERT_GE(wc, 0);
    chars.push_back(wc);
    offsets.push_back(index);
  }
  EXPECT_EQ(chars, (std::vector<int>{'a', 0xE9, 0x20AC, 0x1F512}));
  EXPECT_EQ(offsets, (std::vector<size_t>{1, 3, 6, 10}));
  EXPECT_EQ(rtUTF8DecodeChar(ctxt.get(), text.data(), text.size(), &index), ASN_E_OUTOFBND);
  EXPECT_EQ(index, text.size());
}

TEST_F(UTF8Test, StrdupCopiesIntoTheContextHeap) {
  char source[] = "K\xC3\xB6ln";
  char* copy = rtUTF8Strdup(ctxt.get(), source);
  ASSERT_NE(copy, nullptr);
  EXPECT_NE(copy, source);
  source[0] = 'X';
  EXPECT_STREQ(copy, "K\xC3\xB6ln");

  char* part = rtUTF8Strndup(ctxt.get(), "abcdef", 3);
  ASSERT_NE(part, nullptr);
  EXPECT_STREQ(part, "abc");
  char* empty = rtUTF8Strndup(ctxt.get(), nullptr, 0);
  ASSERT_NE(empty, nullptr);
  EXPECT_STREQ(empty, "");

  EXPECT_EQ(rtUTF8Strdup(ctxt.get(), nullptr), nullptr);
  EXPECT_EQ(ctxt.errorStatus(), ASN_E_INVPARAM);
}

TEST_F(UTF8Test, BMPConversionKeepsTheBasicPlaneOnly) {
  const char* text = "\xD0\x9F\xD1\x80\xD0\xB8 \xE2\x82\xAC\xEF\xBF\xBD";
  Asn116BitCharString bmp{};
  ASSERT_EQ(rtUTF8ToBMP(ctxt.get(), text, &bmp), 0);
  ASSERT_EQ(bmp.nchars, 6u);
  EXPECT_EQ(bmp.data[0], 0x41F);
  EXPECT_EQ(bmp.data[4], 0x20AC);
  EXPECT_EQ(bmp.data[5], 0xFFFD);

  char* back = nullptr;
  EXPECT_EQ(rtBMPToUTF8(ctxt.get(), &bmp, &back), static_cast<int>(strlen(text)));
  EXPECT_STREQ(back, text);

  Asn116BitCharString untouched{7, nullptr};
  ctxt.resetError();
  EXPECT_EQ(rtUTF8ToBMP(ctxt.get(), "x\xF0\x9F\x94\x92", &untouched), ASN_E_INVCHAR);
  EXPECT_EQ(ctxt.errorStatus(), ASN_E_INVCHAR);
  EXPECT_EQ(untouched.nchars, 7u);
  EXPECT_EQ(rtUTF8ToBMP(ctxt.get(), "x\xF0\x9F", &untouched), ASN_E_INVUTF8);

  // A surrogate code unit is no character of its own.
  ASN1USINT units[] = {'a', 0xD83D, 0xDD12};
  const Asn116BitCharString pair{3, units};
  ctxt.resetError();
  EXPECT_EQ(rtBMPToUTF8(ctxt.get(), &pair, &back), ASN_E_INVCHAR);

  Asn116BitCharString empty{};
  ASSERT_EQ(rtUTF8ToBMP(ctxt.get(), "", &empty), 0);
  EXPECT_EQ(empty.nchars, 0u);
  ASSERT_EQ(rtBMPToUTF8(ctxt.get(), &empty, &back), 0);
  EXPECT_STREQ(back, "");
}

TEST_F(UTF8Test, UCS4ConversionRefusesNonCharacters) {
  ASN1UINT chars[] = {'A', 0, 0x10FFFF};
  const Asn132BitCharString withNul{3, chars};
  char* text = nullptr;
  // U+0000 is a character: it is written, and the returned length tells the text's end.
  ASSERT_EQ(rtUCS4ToUTF8(ctxt.get(), &withNul, &text), 6);
  EXPECT_EQ(std::string(text, 6), std::string("A\0\xF4\x8F\xBF\xBF", 6));

  for (ASN1UINT bad : {0xD800u, 0x110000u}) {
    chars[1] = bad;
    ctxt.resetError();
    EXPECT_EQ(rtUCS4ToUTF8(ctxt.get(), &withNul, &text), ASN_E_INVCHAR) << std::hex << bad;
  }
  const Asn132BitCharString missing{2, nullptr};
  EXPECT_EQ(rtUCS4ToUTF8(ctxt.get(), &missing, &text), ASN_E_INVPARAM);
}

std::string iconvToUTF8(const std::vector<ASN1UINT>& chars) {
  iconv_t cd = iconv_open("UTF-8", "UTF-32LE");
  if (cd == reinterpret_cast<iconv_t>(-1)) return "<no iconv>";
  std::vector<char> in(chars.size() * 4);
  for (size_t k = 0; k < chars.size(); ++k) {
    for (int b = 0; b < 4; ++b) in[k * 4 + b] = static_cast<char>(chars[k] >> (8 * b));
  }
  std::string out(chars.size() * 4, '\0');
  char* inp = in.data();
  size_t inLeft = in.size();
  char* outp = &out[0];
  size_t outLeft = out.size();
  const size_t rc = iconv(cd, &inp, &inLeft, &outp, &outLeft);
  iconv_close(cd);
  if (rc == static_cast<size_t>(-1) || inLeft != 0) return "<iconv failed>";
  out.resize(out.size() - outLeft);
  return out;
}

// Every scalar value from U+0001 up, converted both ways and compared with the C library.
TEST_F(UTF8Test, EveryScalarValueMatchesIconvBothWays) {
  std::vector<ASN1UINT> chars;
  for (ASN1UINT wc = 1; wc <= 0x10FFFF; ++wc) {
    if (wc < 0xD800 || wc > 0xDFFF) chars.push_back(wc);
  }
  const Asn132BitCharString ucs4{static_cast<ASN1UINT>(chars.size()), chars.data()};
  char* text = nullptr;
  const int len = rtUCS4ToUTF8(ctxt.get(), &ucs4, &text);
  ASSERT_GT(len, 0);
  const std::string expected = iconvToUTF8(chars);
  ASSERT_EQ(static_cast<size_t>(len), expected.size());
  EXPECT_TRUE(std::string(text, len) == expected);

  EXPECT_EQ(rtUTF8Len(ctxt.get(), text), static_cast<int>(chars.size()));
  Asn132BitCharString back{};
  ASSERT_EQ(rtUTF8ToUCS4(ctxt.get(), text, &back), 0);
  ASSERT_EQ(back.nchars, chars.size());
  EXPECT_EQ(memcmp(back.data, chars.data(), chars.size() * sizeof(ASN1UINT)), 0);
}

}  // namespace
