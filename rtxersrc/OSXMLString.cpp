/* Text utilities of the XML reader and handlers: copies, comparison and UTF-8 / UTF-16
 * conversion of NUL-terminated texts, every new text made with new[]. */
#include <string.h>

#include <quillon/asn1XerSax.h>
#include <quillon/rtUTF8.h>

namespace {

typedef unsigned short Unit16;

/* Length of the UTF-8 sequence a lead byte starts: 1 to 6 (the XER writer makes sequences of
 * up to six bytes for characters up to 0x7FFFFFFF), 0 for a byte that starts none. */
size_t sequenceLength(unsigned char lead) {
  if (lead < 0x80) return 1;
  if (lead < 0xC0) return 0;
  if (lead < 0xE0) return 2;
  if (lead < 0xF0) return 3;
  if (lead < 0xF8) return 4;
  if (lead < 0xFC) return 5;
  return lead < 0xFE ? 6 : 0;
}

/* The character of the sequence at s[i] (n bytes in all), moving i past it; -1 for a byte
 * that starts no sequence or a sequence cut short. */
long decodeSequence(const unsigned char* s, size_t n, size_t& i) {
  const size_t len = sequenceLength(s[i]);
  if (len == 0 || len > n - i) return -1;
  unsigned long value = len == 1 ? s[i] : s[i] & (0x7Fu >> len);
  for (size_t k = 1; k < len; ++k) {
    if ((s[i + k] & 0xC0) != 0x80) return -1;
    value = (value << 6) | (s[i + k] & 0x3Fu);
  }
  i += len;
  return static_cast<long>(value);
}

const unsigned char* bytesOf(const char* text) {
  return reinterpret_cast<const unsigned char*>(text);
}

size_t unitLen(const Unit16* text) {
  size_t n = 0;
  while (text[n]) ++n;
  return n;
}

/* UTF-8 to UTF-16 (pairs above U+FFFF): the number of units, written to out unless it is
 * null, or -1 for malformed input or a character UTF-16 cannot hold. */
long utf8ToUtf16(const char* text, Unit16* out) {
  const unsigned char* s = bytesOf(text);
  const size_t n = strlen(text);
  long units = 0;
  for (size_t i = 0; i < n;) {
    const long ch = decodeSequence(s, n, i);
    if (ch < 0 || ch > 0x10FFFF) return -1;
    if (ch < 0x10000) {
      if (out) out[units] = static_cast<Unit16>(ch);
      units += 1;
      continue;
    }
    if (out) {
      out[units] = static_cast<Unit16>(0xD800 + ((ch - 0x10000) >> 10));
      out[units + 1] = static_cast<Unit16>(0xDC00 + ((ch - 0x10000) & 0x3FF));
    }
    units += 2;
  }
  return units;
}

/* The character at text[i], a surrogate pair combined, moving i past it. */
ASN1UINT nextUtf16Char(const Unit16* text, size_t& i) {
  const ASN1UINT hi = text[i++];
  if (hi < 0xD800 || hi > 0xDBFF || text[i] < 0xDC00 || text[i] > 0xDFFF) return hi;
  return 0x10000 + ((hi - 0xD800) << 10) + (text[i++] - 0xDC00u);
}

/* UTF-16 to UTF-8: the number of bytes, written to out unless it is null, or -1 for a lone
 * surrogate. */
long utf16ToUtf8(const Unit16* text, char* out) {
  long bytes = 0;
  for (size_t i = 0; text[i];) {
    ASN1OCTET seq[ASN_K_UTF8MAXCHARSIZE];
    const int len = rtUTF8EncodeChar(nextUtf16Char(text, i), seq);
    if (len == 0) return -1;
    if (out) memcpy(out + bytes, seq, static_cast<size_t>(len));
    bytes += len;
  }
  return bytes;
}

/* The converted text in buf when it fits there with its NUL, else in a new one; null for null
 * or malformed input. */
template <typename Out, typename In>
Out* convert(const In* text, Out* buf, int bufSize, long (*conv)(const In*, Out*)) {
  if (!text) return nullptr;
  const long n = conv(text, nullptr);
  if (n < 0) return nullptr;
  Out* out = buf && n < bufSize ? buf : new Out[static_cast<size_t>(n) + 1];
  conv(text, out);
  out[n] = 0;
  return out;
}

}  // namespace

const char* OSXMLString::zeroLenString() {
  static const char kEmpty[1] = {0};
  return kEmpty;
}

int OSXMLString::stringLen(const char* text) { return text ? static_cast<int>(strlen(text)) : 0; }

int OSXMLString::stringLen(const unsigned short* text) {
  return text ? static_cast<int>(unitLen(text)) : 0;
}

char* OSXMLString::replicate(const char* text) {
  if (!text) return nullptr;
  const size_t n = strlen(text) + 1;
  char* copy = new char[n];
  memcpy(copy, text, n);
  return copy;
}

char* OSXMLString::transcode(const char* text) { return replicate(text); }

char* OSXMLString::transcode(const unsigned short* text) {
  if (!text) return nullptr;
  const size_t n = unitLen(text);
  char* narrow = new char[n + 1];
  for (size_t i = 0; i <= n; ++i) narrow[i] = static_cast<char>(text[i]);
  return narrow;
}

int OSXMLString::compareString(const char* text1, const char* text2) {
  if (!text1) return -stringLen(text2);
  if (!text2) return stringLen(text1);
  for (size_t i = 0;; ++i) {
    const signed char c1 = static_cast<signed char>(text1[i]);
    const signed char c2 = static_cast<signed char>(text2[i]);
    if (c1 != c2) return c1 - c2;
    if (c1 == 0) return 0;
  }
}

char* OSXMLString::catString(char* dest, int size, const char* src) {
  if (!dest || !src || size <= 0) return nullptr;
  const size_t used = strnlen(dest, static_cast<size_t>(size));
  if (used + 1 >= static_cast<size_t>(size)) return nullptr;
  const size_t room = static_cast<size_t>(size) - 1 - used;
  const size_t n = strnlen(src, room);
  memcpy(dest + used, src, n);
  dest[used + n] = 0;
  return dest;
}

int OSXMLString::stringUTF8Len(const char* text, int byteLength) {
  if (!text) return 0;
  const size_t n = byteLength > 0 ? static_cast<size_t>(byteLength) : strlen(text);
  int count = 0;
  for (size_t i = 0; i < n; ++count) {
    if (decodeSequence(bytesOf(text), n, i) < 0) return -1;
  }
  return count;
}

unsigned short* OSXMLString::transUTF8(const char* text) {
  return convert<Unit16, char>(text, nullptr, 0, utf8ToUtf16);
}

char* OSXMLString::transUTF8(const unsigned short* text) {
  return convert<char, Unit16>(text, nullptr, 0, utf16ToUtf8);
}

char* OSXMLString::safeTranscode(const unsigned short* text, char* buf, int bufSize) {
  return convert<char, Unit16>(text, buf, bufSize, utf16ToUtf8);
}

unsigned short* OSXMLString::safeTranscode(const char* text, unsigned short* buf, int bufSize) {
  return convert<Unit16, char>(text, buf, bufSize, utf8ToUtf16);
}
