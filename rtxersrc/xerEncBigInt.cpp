/* INTEGER values of any length given as text. */
#include <quillon/rtBigInt.h>
#include <quillon/rtMemHeap.h>

#include "xerEncCommon.h"

using namespace qn::xer;

namespace {

/* Decimal digits converted on the stack; longer values take heap memory. */
constexpr int kLocalDigits = 1000;

/* The digits to write: no sign, no leading zeros. */
struct Decimal {
  bool negative;
  const char* digits;
  size_t count;
};

bool hasRadixPrefix(const char* value) {
  if (*value == '-') ++value;
  return value[0] == '0' && (value[1] == 'x' || value[1] == 'b' || value[1] == 'o');
}

/* Every leading zero goes, the last one too: zero is written as empty content, as readers of
 * our documents have always received it. */
int readDecimal(const char* text, Decimal* out) {
  out->negative = *text == '-';
  if (out->negative) ++text;
  while (*text == '0') ++text;
  const char* end = text;
  for (; *end; ++end)
    if (*end < '0' || *end > '9') return ASN_E_BADVALUE;
  out->digits = text;
  out->count = static_cast<size_t>(end - text);
  return 0;
}

int writeDecimal(ASN1CTXT* pctxt, const char* text, const char* elemName) {
  Decimal d;
  int stat = readDecimal(text, &d);
  if (stat < 0) return stat;
  return writeElement(pctxt, nameOr(elemName, "INTEGER"), nullptr, [&d](TextStage& s) {
    if (d.count == 0) return;
    if (d.negative) s.put('-');
    s.put(d.digits, d.count);
  });
}

/* Converts the value to decimal text (on the stack while it fits) and writes that. */
int writeConverted(ASN1CTXT* pctxt, const ASN1BigInt* value, const char* elemName) {
  const int digits = rtBigIntDigitsNum(value, 10);
  if (digits < 0) return digits;
  char local[kLocalDigits + 1];
  char* text = local;
  if (digits > kLocalDigits) {
    text = static_cast<char*>(rtMemHeapAlloc(&pctxt->memHeap, static_cast<size_t>(digits) + 1));
    if (!text) return ASN_E_NOMEM;
  }
  int stat = rtBigIntToString(pctxt, value, 10, text, static_cast<ASN1UINT>(digits) + 1);
  if (stat == 0) stat = writeDecimal(pctxt, text, elemName);
  if (text != local) rtMemHeapFreePtr(&pctxt->memHeap, text);
  return stat;
}

int writeRadixText(ASN1CTXT* pctxt, const char* value, const char* elemName) {
  ASN1BigInt bi;
  rtBigIntInit(&bi);
  int stat = rtBigIntSetStr(pctxt, &bi, value, 0);
  if (stat == 0) stat = writeConverted(pctxt, &bi, elemName);
  rtBigIntFree(pctxt, &bi);
  return stat;
}

}  // namespace

QN_BEGIN_C

int xerEncBigInt(ASN1CTXT* pctxt, const char* value, const char* elemName) {
  if (!value) return LOG_RTERR(pctxt, ASN_E_INVPARAM);
  if (hasRadixPrefix(value)) return XER_TRACE(pctxt, writeRadixText(pctxt, value, elemName));
  return XER_TRACE(pctxt, writeDecimal(pctxt, value, elemName));
}

QN_END_C
