/* REAL: binary (bases 2, 8 and 16), decimal and the special values. */
#include <math.h>
#include <stdlib.h>
#include <string.h>

#include "xd_common.h"

using namespace qn::xd;

namespace {

const ASN1OCTET kBinaryForm = 0x80;
const ASN1OCTET kSpecialValue = 0x40;
const ASN1OCTET kPlusInfinity = 0x40;
const ASN1OCTET kMinusInfinity = 0x41;
const ASN1OCTET kNotANumber = 0x42;
const ASN1OCTET kMinusZero = 0x43;

/* Exponents beyond this already take any mantissa to zero or infinity; clamping keeps the
 * arithmetic on hostile exponents well inside an int. */
const ASN1INT64 kExponentClamp = 1 << 20;

ASN1INT64 clampExponent(ASN1INT64 e) {
  return e > kExponentClamp ? kExponentClamp : (e < -kExponentClamp ? -kExponentClamp : e);
}

int decodeBinary(const ASN1OCTET* p, ASN1UINT n, ASN1REAL* value_p) {
  const ASN1OCTET first = p[0];
  const unsigned baseCode = (first >> 4) & 3;
  if (baseCode == 3) return ASN_E_INVREAL;
  const unsigned bitsPerDigit = baseCode == 0 ? 1 : (baseCode == 1 ? 3 : 4);
  const unsigned scale = (first >> 2) & 3;

  ASN1UINT pos = 1;
  ASN1UINT expOcts = (first & 3) + 1;
  if ((first & 3) == 3) {
    if (pos >= n) return ASN_E_INVREAL;
    expOcts = p[pos++];
  }
  /* The exponent must be there, fit 64 bits, and leave at least one mantissa octet. */
  if (expOcts == 0 || expOcts > 8 || n - pos <= expOcts) return ASN_E_INVREAL;
  ASN1UINT64 e = (ASN1UINT64)(ASN1INT64)(ASN1INT8)p[pos];
  for (ASN1UINT i = 1; i < expOcts; ++i) e = (e << 8) | p[pos + i];
  pos += expOcts;

  /* The top 64 bits of the mantissa are all a double can use; further octets only scale. */
  ASN1UINT64 mantissa = 0;
  ASN1INT64 extraBits = 0;
  for (; pos < n; ++pos) {
    if (mantissa >> 56)
      extraBits += 8;
    else
      mantissa = (mantissa << 8) | p[pos];
  }
  ASN1INT64 exponent2 = clampExponent((ASN1INT64)e) * bitsPerDigit + scale + extraBits;
  double magnitude = ldexp((double)mantissa, (int)clampExponent(exponent2));
  *value_p = (first & 0x40) ? -magnitude : magnitude;
  return 0;
}

bool decimalChar(ASN1OCTET c) {
  return (c >= '0' && c <= '9') || c == ' ' || c == '+' || c == '-' || c == '.' || c == ',' ||
         c == 'E' || c == 'e';
}

/* Decimal forms NR1 to NR3 as text. Only the characters those forms use are let through,
 * so strtod cannot pick up "inf", "nan" or hex floats; a comma is a decimal mark too. */
int decodeDecimal(ASN1CTXT* pctxt, const ASN1OCTET* p, ASN1UINT n, ASN1REAL* value_p) {
  if (p[0] < 1 || p[0] > 3 || n < 2) return ASN_E_INVREAL;
  const ASN1UINT textLen = n - 1;
  char local[64];
  char* text = textLen < sizeof local ? local : static_cast<char*>(allocValue(pctxt, textLen + 1));
  if (!text) return ASN_E_NOMEM;
  int stat = 0;
  for (ASN1UINT i = 0; i < textLen && stat == 0; ++i) {
    ASN1OCTET c = p[1 + i];
    if (!decimalChar(c)) stat = ASN_E_INVREAL;
    text[i] = c == ',' ? '.' : (char)c;
  }
  text[textLen] = '\0';
  if (stat == 0) {
    char* end;
    double value = strtod(text, &end);
    if (end == text || *end != '\0')
      stat = ASN_E_INVREAL;
    else
      *value_p = value;
  }
  if (text != local) rtMemHeapFreePtr(&pctxt->memHeap, text);
  return stat;
}

int decodeSpecial(const ASN1OCTET* p, ASN1UINT n, ASN1REAL* value_p) {
  if (n != 1) return ASN_E_INVREAL;
  switch (p[0]) {
    case kPlusInfinity: *value_p = HUGE_VAL; return 0;
    case kMinusInfinity: *value_p = -HUGE_VAL; return 0;
    case kNotANumber: *value_p = NAN; return 0;
    case kMinusZero: *value_p = -0.0; return 0;
    default: return ASN_E_INVREAL;
  }
}

int decodeRealContents(ASN1CTXT* pctxt, const ASN1OCTET* p, ASN1UINT n, ASN1REAL* value_p) {
  if (n == 0) {
    *value_p = 0.0;
    return 0;
  }
  if (p[0] & kBinaryForm) return decodeBinary(p, n, value_p);
  if (p[0] & kSpecialValue) return decodeSpecial(p, n, value_p);
  return decodeDecimal(pctxt, p, n, value_p);
}

}  // namespace

QN_BEGIN_C

int xd_real(ASN1CTXT* pctxt, ASN1REAL* object_p, int tagging, int length) {
  if (tagging) {
    int stat = matchPrimitiveHeader(pctxt, ASN_ID_REAL, &length);
    if (stat < 0) return LOG_RTERR(pctxt, stat);
  }
  int stat = checkContents(pctxt, length);
  if (stat < 0) return LOG_RTERR(pctxt, stat);
  const ASN1OCTET* p = pctxt->buffer.data + pctxt->buffer.byteIndex;
  stat = decodeRealContents(pctxt, p, (ASN1UINT)length, object_p);
  if (stat < 0) return LOG_RTERR(pctxt, stat);
  pctxt->buffer.byteIndex += (ASN1UINT)length;
  return 0;
}

QN_END_C
