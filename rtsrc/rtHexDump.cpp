/* Hex dump: offset, 16 octets in two groups of eight, and their printable characters. */
#include <stdio.h>
#include <string.h>

#include <quillon/rtUtil.h>

namespace {

constexpr ASN1UINT kOctetsPerLine = 16;
/* Every line has the offset, the hex columns (padded on the last line), the bars and the
 * newline; only the character column varies with the octets on the line. */
constexpr size_t kLineFrame = 9 + 3 * kOctetsPerLine + 1 + 3 + 2;
constexpr size_t kMaxLine = kLineFrame + kOctetsPerLine;

/* ASCII only: a dump must look the same whatever the program's locale. */
inline bool isPrintable(ASN1OCTET c) { return c >= 0x20 && c < 0x7f; }

/* The line for count octets at offset, terminated, into line; returns its length. Both sinks
 * write exactly this text. */
size_t formatLine(char (&line)[kMaxLine + 1], ASN1UINT offset, const ASN1OCTET* data,
                  ASN1UINT count) {
  static const char kHex[] = "0123456789abcdef";
  char* p = line + snprintf(line, sizeof line, "%08x ", offset);
  for (ASN1UINT i = 0; i < kOctetsPerLine; i++) {
    if (i == kOctetsPerLine / 2) *p++ = ' ';
    *p++ = ' ';
    *p++ = i < count ? kHex[data[i] >> 4] : ' ';
    *p++ = i < count ? kHex[data[i] & 0xf] : ' ';
  }
  memcpy(p, "  |", 3);
  p += 3;
  for (ASN1UINT i = 0; i < count; i++) *p++ = isPrintable(data[i]) ? (char)data[i] : '.';
  memcpy(p, "|\n", 3);
  return (size_t)(p + 2 - line);
}

template <typename Sink>
void dumpLines(const ASN1OCTET* data, ASN1UINT numocts, Sink sink) {
  char line[kMaxLine + 1];
  /* Advanced by what was dumped, so that the offset cannot wrap past the end near 4 GiB. */
  for (ASN1UINT offset = 0; offset < numocts;) {
    ASN1UINT rest = numocts - offset;
    ASN1UINT count = rest < kOctetsPerLine ? rest : kOctetsPerLine;
    sink(line, formatLine(line, offset, data + offset, count));
    offset += count;
  }
}

/* Characters of the whole dump, counted wide enough for 4 GiB of octets on i386. */
ASN1UINT64 dumpLength(ASN1UINT numocts) {
  ASN1UINT64 lines = ((ASN1UINT64)numocts + kOctetsPerLine - 1) / kOctetsPerLine;
  return lines * kLineFrame + numocts;
}

}  // namespace

void rtHexDumpToFile(FILE* fp, const ASN1OCTET* data, ASN1UINT numocts) {
  if (!fp || (!data && numocts != 0)) return;
  dumpLines(data, numocts, [fp](const char* line, size_t len) { fwrite(line, 1, len, fp); });
}

int rtHexDumpToString(const ASN1OCTET* data, ASN1UINT numocts, char* buf, size_t bufsize) {
  if (!buf || (!data && numocts != 0)) return ASN_E_INVPARAM;
  const char* end = (const char*)memchr(buf, '\0', bufsize);
  if (!end) return ASN_E_INVPARAM;
  size_t used = (size_t)(end - buf);
  if (dumpLength(numocts) >= (ASN1UINT64)(bufsize - used)) return ASN_E_STROVFLW;
  dumpLines(data, numocts, [&](const char* line, size_t len) {
    memcpy(buf + used, line, len + 1);
    used += len;
  });
  return 0;
}
