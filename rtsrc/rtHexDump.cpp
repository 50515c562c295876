/* Hex dump: offset, 16 octets in two groups of eight, and their printable characters. */
#include <stdio.h>

#include <quillon/rtUtil.h>

namespace {

constexpr ASN1UINT kOctetsPerLine = 16;

/* ASCII only: a dump must look the same whatever the program's locale. */
inline bool isPrintable(ASN1OCTET c) { return c >= 0x20 && c < 0x7f; }

void dumpLine(FILE* fp, ASN1UINT offset, const ASN1OCTET* data, ASN1UINT count) {
  fprintf(fp, "%08x ", offset);
  for (ASN1UINT i = 0; i < kOctetsPerLine; i++) {
    if (i == kOctetsPerLine / 2) fputc(' ', fp);
    if (i < count) fprintf(fp, " %02x", data[i]);
    else fputs("   ", fp);
  }
  fputs("  |", fp);
  for (ASN1UINT i = 0; i < count; i++) fputc(isPrintable(data[i]) ? data[i] : '.', fp);
  fputs("|\n", fp);
}

}  // namespace

void rtHexDumpToFile(FILE* fp, const ASN1OCTET* data, ASN1UINT numocts) {
  if (!fp || (!data && numocts != 0)) return;
  for (ASN1UINT offset = 0; offset < numocts; offset += kOctetsPerLine) {
    ASN1UINT rest = numocts - offset;
    dumpLine(fp, offset, data + offset, rest < kOctetsPerLine ? rest : kOctetsPerLine);
  }
}
