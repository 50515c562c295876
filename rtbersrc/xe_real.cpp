/* REAL, in base 2. */
#include <math.h>

#include "xe_common.h"

namespace {

const ASN1OCTET kPlusInfinity = 0x40;
const ASN1OCTET kMinusInfinity = 0x41;
const ASN1OCTET kNotANumber = 0x42;

/* Binary form, base 2, scale 0: bit 8 set, bit 7 the sign, bits 2-1 the exponent's length
 * less one. A double's exponent (-1074..971) always fits two octets, so the form with a
 * separate exponent-length octet is never needed. */
const ASN1OCTET kBinaryForm = 0x80;
const ASN1OCTET kNegative = 0x40;

/* A finite non-zero |value| as mantissa * 2^exponent with an odd mantissa, which is the one
 * form DER accepts and also the shortest. */
struct BinaryReal {
  ASN1UINT64 mantissa;
  ASN1INT exponent;
};

BinaryReal splitReal(double magnitude) {
  int exp2;
  double fraction = frexp(magnitude, &exp2); /* in [0.5, 1) */
  const int kMantissaBits = 53;
  BinaryReal r;
  r.mantissa = (ASN1UINT64)(fraction * 9007199254740992.0); /* 2^53: exact */
  r.exponent = exp2 - kMantissaBits;
  int zeros = __builtin_ctzll(r.mantissa);
  r.mantissa >>= zeros;
  r.exponent += zeros;
  return r;
}

int putBinaryReal(ASN1CTXT* pctxt, double value) {
  BinaryReal r = splitReal(fabs(value));
  unsigned mantOcts = (xeBitLength(r.mantissa) + 7) / 8;
  unsigned expOcts = xeIntOctetCount(r.exponent);
  unsigned n = 1 + expOcts + mantOcts;
  int stat = xeReserve(pctxt, n);
  if (stat < 0) return stat;
  ASN1OCTET* p = xeClaim(pctxt, n);
  p[0] = (ASN1OCTET)(kBinaryForm | (value < 0 ? kNegative : 0) | (expOcts - 1));
  xeStoreIntOctets(p + 1, expOcts, r.exponent);
  xeStoreIntOctets(p + 1 + expOcts, mantOcts, r.mantissa);
  return (int)n;
}

int putRealContents(ASN1CTXT* pctxt, double value) {
  if (value == 0.0) return 0;
  if (isinf(value)) return xePutOctet(pctxt, value > 0 ? kPlusInfinity : kMinusInfinity);
  if (isnan(value)) return xePutOctet(pctxt, kNotANumber);
  return putBinaryReal(pctxt, value);
}

}  // namespace

int xe_real(ASN1CTXT* pctxt, const ASN1REAL* object_p, int tagging) {
  if (object_p == nullptr) return LOG_RTERR(pctxt, ASN_E_BADVALUE);
  return xeFinishPrimitive(pctxt, putRealContents(pctxt, *object_p), tagging, ASN_ID_REAL);
}
