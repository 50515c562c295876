/* INTEGER of any size as text. */
#include <string.h>

#include "xd_common.h"

using namespace qn::xd;

namespace {

const char kHexDigits[] = "0123456789abcdef";

void putHexOctet(char* p, ASN1OCTET octet) {
  p[0] = kHexDigits[octet >> 4];
  p[1] = kHexDigits[octet & 0x0F];
}

/* Hex digits of the magnitude of the two's complement number in p[0..n-1], two per octet at
 * digits; a negative number is negated on the way, from its least significant octet up. */
void putMagnitudeDigits(const ASN1OCTET* p, ASN1UINT n, bool negative, char* digits) {
  unsigned carry = 1;
  for (ASN1UINT i = n; i-- > 0;) {
    ASN1OCTET octet = p[i];
    if (negative) {
      unsigned sum = (ASN1OCTET)~octet + carry;
      carry = sum >> 8;
      octet = (ASN1OCTET)sum;
    }
    putHexOctet(digits + 2 * i, octet);
  }
}

/* Leading zero octets of the magnitude, keeping at least one. */
ASN1UINT redundantOctets(const char* digits, ASN1UINT n) {
  ASN1UINT skip = 0;
  while (skip + 1 < n && digits[2 * skip] == '0' && digits[2 * skip + 1] == '0') ++skip;
  return skip;
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
  const bool negative = (p[0] & 0x80) != 0;
  const char* prefix = negative ? "-0x" : "0x";
  const size_t prefixLen = negative ? 3 : 2;
  /* Room for the prefix, two digits an octet and the terminator, in one block; the digits
   * are written behind the prefix and then moved up over the redundant zero octets. */
  char* text = static_cast<char*>(allocValue(pctxt, prefixLen + 2 * (size_t)n + 1));
  if (!text) return LOG_RTERR(pctxt, ASN_E_NOMEM);
  char* digits = text + prefixLen;
  putMagnitudeDigits(p, n, negative, digits);
  const ASN1UINT skip = redundantOctets(digits, n);
  memmove(digits, digits + 2 * skip, 2 * (size_t)(n - skip));
  digits[2 * (n - skip)] = '\0';
  memcpy(text, prefix, prefixLen);

  pctxt->buffer.byteIndex += n;
  *object_p = text;
  return 0;
}

QN_END_C
