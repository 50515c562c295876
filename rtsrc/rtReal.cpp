// The special REAL values.

#include <quillon/rtReal.h>

#include <cmath>
#include <limits>

namespace {

using Limits = std::numeric_limits<ASN1REAL>;
static_assert(Limits::is_iec559, "REAL values are IEEE 754 doubles");

}  // namespace

QN_BEGIN_C

ASN1REAL rtGetPlusInfinity(void) { return Limits::infinity(); }

ASN1REAL rtGetMinusInfinity(void) { return -Limits::infinity(); }

ASN1REAL rtGetNaN(void) { return Limits::quiet_NaN(); }

ASN1REAL rtGetMinusZero(void) { return -0.0; }

int rtIsPlusInfinity(ASN1REAL value) { return std::isinf(value) && !std::signbit(value); }

int rtIsMinusInfinity(ASN1REAL value) { return std::isinf(value) && std::signbit(value); }

int rtIsNaN(ASN1REAL value) { return std::isnan(value); }

int rtIsMinusZero(ASN1REAL value) { return value == 0.0 && std::signbit(value); }

QN_END_C
