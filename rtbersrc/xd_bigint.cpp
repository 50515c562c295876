/* INTEGER of any size as text. */
#include <string.h>

#include <quillon/rtBigInt.h>

#include "xd_common.h"

using namespace qn::xd;

namespace {

/* A non-negative number (the usual serial number or key parameter) is its contents octets in
 * hex behind "0x", leading zero octets dropped: no arithmetic needed, so it is done here.
 * The text is the same as rtBigIntToString's in radix 16. */
int nonNegativeText(ASN1CTXT* pctxt, const ASN1OCTET* p, ASN1UINT n, char** text_p) {
  static const char kHexDigits[] = "0123456789abcdef";
  while (n > 1 && p[0] == 0) {
    ++p;
    --n;
  }
  char* text = static_cast<char*>(allocValue(pctxt, 2 + 2 * (size_t)n + 1));
  if (!text) return ASN_E_NOMEM;
  text[0] = '0';
  text[1] = 'x';
  for (ASN1UINT i = 0; i < n; ++i) {
    text[2 + 2 * i] = kHexDigits[p[i] >> 4];
    text[3 + 2 * i] = kHexDigits[p[i] & 0x0F];
  }
  text[2 + 2 * n] = '\0';
  *text_p = text;
  return 0;
}

/* A negative number needs its magnitude worked out, which is the big-integer code's job. A
 * small local buffer holds the magnitude of all but unusually long numbers. */
int negativeText(ASN1CTXT* pctxt, const ASN1OCTET* p, ASN1UINT n, char** text_p) {
  ASN1OCTET local[64];
  ASN1BigInt value;
  rtBigIntInit(&value);
  value.mag = local;
  value.allocated = sizeof local;
  int stat = rtBigIntSetOctets(pctxt, &value, p, n);
  char* text = nullptr;
  if (stat == 0) {
    const int size = rtBigIntDigitsNum(&value, 16) + 1;
    text = static_cast<char*>(allocValue(pctxt, (size_t)size));
    stat = text ? rtBigIntToString(pctxt, &value, 16, text, (ASN1UINT)size) : ASN_E_NOMEM;
  }
  if (value.dynamic) rtBigIntFree(pctxt, &value);
  if (stat < 0) {
    if (text) rtMemHeapFreePtr(&pctxt->memHeap, text);
    return stat;
  }
  *text_p = text;
  return 0;
}

}  // namespace

QN_BEGIN_C

int xd_bigint(ASN1CTXT* pctxt, const char** object_p, int tagging, int length) {
  if (tagging) {
    int stat = matchPrimitiveHeader(pctxt, ASN_ID_INT, &length);
    if (stat < 0) return LOG_RTERR(pctxt, stat);
  }
  if (length == 0) return LOG_RTERR(pctxt, ASN_E_INVLEN);
  int stat = checkContents(pctxt, length);
  if (stat < 0) return LOG_RTERR(pctxt, stat);

  const ASN1OCTET* p = pctxt->buffer.data + pctxt->buffer.byteIndex;
  const ASN1UINT n = (ASN1UINT)length;
  char* text;
  stat = (p[0] & 0x80) ? negativeText(pctxt, p, n, &text) : nonNegativeText(pctxt, p, n, &text);
  if (stat < 0) return LOG_RTERR(pctxt, stat);
  pctxt->buffer.byteIndex += n;
  *object_p = text;
  return 0;
}

QN_END_C
