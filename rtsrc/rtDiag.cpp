/* The process-wide diagnostic trace: off until a program switches it on. */
#include <stdarg.h>
#include <stdio.h>

#include <quillon/rtContext.h>
#include <quillon/rtUtil.h>

namespace {
bool g_diagOn = false;
}

void rtSetDiag(int on) { g_diagOn = on != 0; }

void rtdiag(const char* fmtspec, ...) {
  if (!g_diagOn || !fmtspec) return;
  va_list args;
  va_start(args, fmtspec);
  vfprintf(stdout, fmtspec, args);
  va_end(args);
}

void rtDiagHexDump(const ASN1OCTET* data, ASN1UINT numocts) {
  if (g_diagOn) rtHexDumpToFile(stdout, data, numocts);
}
