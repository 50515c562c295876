// Booleans, integers and object identifiers as text.

#include <quillon/rtValueText.h>

#include <quillon/rtContext.h>

#include <string.h>

#include "rtErrLog.h"

namespace {

// Digits of the largest 64-bit magnitude, a sign and the NUL.
const size_t kMaxIntText = 22;

size_t decimalDigits(ASN1UINT64 value) {
  size_t n = 1;
  for (; value >= 10; value /= 10) ++n;
  return n;
}

// Writes the digits so that the last one lands just before end; returns where they start.
char* writeDigitsBackward(ASN1UINT64 value, char* end) {
  do {
    *--end = static_cast<char>('0' + value % 10);
    value /= 10;
  } while (value != 0);
  return end;
}

int deliverNumber(ASN1CTXT* pctxt, ASN1UINT64 magnitude, bool negative, char* buf,
                  size_t bufsize) {
  if (buf == nullptr) return LOG_RTERR(pctxt, ASN_E_INVPARAM);
  char text[kMaxIntText];
  char* start = writeDigitsBackward(magnitude, text + kMaxIntText - 1);
  if (negative) *--start = '-';
  text[kMaxIntText - 1] = '\0';
  const size_t len = static_cast<size_t>(text + kMaxIntText - 1 - start);
  if (bufsize <= len) return LOG_RTERR(pctxt, ASN_E_STROVFLW);
  memcpy(buf, start, len + 1);
  return static_cast<int>(len);
}

// Magnitude of a signed value without overflowing on the most negative one.
ASN1UINT64 magnitudeOf(ASN1INT64 value) {
  return value < 0 ? ASN1UINT64{0} - static_cast<ASN1UINT64>(value)
                   : static_cast<ASN1UINT64>(value);
}

// The text is measured first so that a buffer too small is refused before anything is written.
template <typename Oid>
int oidToText(ASN1CTXT* pctxt, const Oid* pOid, char* buf, size_t bufsize) {
  if (pOid == nullptr || buf == nullptr) return LOG_RTERR(pctxt, ASN_E_INVPARAM);
  if (pOid->numids == 0 || pOid->numids > ASN_K_MAXSUBIDS) return LOG_RTERR(pctxt, ASN_E_INVOBJID);
  size_t len = pOid->numids - 1;
  for (ASN1UINT k = 0; k < pOid->numids; ++k) len += decimalDigits(pOid->subid[k]);
  if (bufsize <= len) return LOG_RTERR(pctxt, ASN_E_STROVFLW);
  char* end = buf + len;
  *end = '\0';
  for (ASN1UINT k = pOid->numids; k-- > 0;) {
    end = writeDigitsBackward(pOid->subid[k], end);
    if (k > 0) *--end = '.';
  }
  return static_cast<int>(len);
}

}  // namespace

QN_BEGIN_C

const char* rtBoolToString(ASN1BOOL value) { return value ? "TRUE" : "FALSE"; }

int rtIntToString(ASN1CTXT* pctxt, ASN1INT value, char* buf, size_t bufsize) {
  return deliverNumber(pctxt, magnitudeOf(value), value < 0, buf, bufsize);
}

int rtUIntToString(ASN1CTXT* pctxt, ASN1UINT value, char* buf, size_t bufsize) {
  return deliverNumber(pctxt, value, false, buf, bufsize);
}

int rtInt64ToString(ASN1CTXT* pctxt, ASN1INT64 value, char* buf, size_t bufsize) {
  return deliverNumber(pctxt, magnitudeOf(value), value < 0, buf, bufsize);
}

int rtUInt64ToString(ASN1CTXT* pctxt, ASN1UINT64 value, char* buf, size_t bufsize) {
  return deliverNumber(pctxt, value, false, buf, bufsize);
}

int rtOidToStr(ASN1CTXT* pctxt, const ASN1OBJID* pOid, char* buf, size_t bufsize) {
  return oidToText(pctxt, pOid, buf, bufsize);
}

int rtOid64ToStr(ASN1CTXT* pctxt, const ASN1OID64* pOid, char* buf, size_t bufsize) {
  return oidToText(pctxt, pOid, buf, bufsize);
}

QN_END_C
