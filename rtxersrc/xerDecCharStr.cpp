/* Character strings from the UTF-8 text the parser delivers. */
#include <quillon/rtUTF8.h>

#include "xerDecCommon.h"

using namespace qn::xerdec;

namespace {

/* The characters of t as Units in one heap array of their number + extra units (null when
 * that is 0); characters above maxChar are refused with -34. The text is validated as a whole
 * first so that the array is sized exactly. */
template <typename Unit>
int decodeChars(ASN1CTXT* pctxt, Text t, ASN1UINT maxChar, size_t extra, Unit*& chars,
                ASN1UINT& count) {
  const int n = rtUTF8LenN(pctxt, t.begin, t.size());
  if (n < 0) return n;
  Unit* data = nullptr;
  if (n > 0 || extra > 0) {
    data = allocArray<Unit>(pctxt, static_cast<size_t>(n) + extra);
    if (!data) return ASN_E_NOMEM;
  }
  size_t index = 0;
  for (int k = 0; k < n; ++k) {
    const int ch = rtUTF8DecodeChar(pctxt, t.begin, t.size(), &index);
    if (ch < 0 || static_cast<ASN1UINT>(ch) > maxChar) {
      rtMemHeapFreePtr(&pctxt->memHeap, data);
      return ch < 0 ? ch : ASN_E_INVCHAR;
    }
    data[k] = static_cast<Unit>(ch);
  }
  chars = data;
  count = static_cast<ASN1UINT>(n);
  return 0;
}

const ASN1UINT kMaxUnicode = 0x10FFFF;

/* An 8-bit string type holds one byte a character: the low 8 bits are what it keeps. */
int decodeAscii(ASN1CTXT* pctxt, const char** ppvalue) {
  char* text = nullptr;
  ASN1UINT n = 0;
  int stat = decodeChars(pctxt, inputText(pctxt), kMaxUnicode, 1, text, n);
  if (stat != 0) return stat;
  text[n] = 0;
  *ppvalue = text;
  return 0;
}

int decodeUTF8(ASN1CTXT* pctxt, const char** ppvalue) {
  const Text t = inputText(pctxt);
  char* text = allocArray<char>(pctxt, t.size() + 1);
  if (!text) return ASN_E_NOMEM;
  memcpy(text, t.begin, t.size());
  text[t.size()] = 0;
  *ppvalue = text;
  return 0;
}

template <typename Str>
int decodeWide(ASN1CTXT* pctxt, ASN1UINT maxChar, Str* pvalue) {
  ASN1UINT n = 0;
  decltype(pvalue->data) data = nullptr;
  int stat = decodeChars(pctxt, inputText(pctxt), maxChar, 0, data, n);
  if (stat != 0) return stat;
  pvalue->nchars = n;
  pvalue->data = data;
  return 0;
}

}  // namespace

QN_BEGIN_C

int xerDecDynAscCharStr(ASN1CTXT* pctxt, const char** ppvalue) {
  return XERDEC_TRACE(pctxt, decodeAscii(pctxt, ppvalue));
}

int xerDecDynUTF8Str(ASN1CTXT* pctxt, const char** ppvalue) {
  return XERDEC_TRACE(pctxt, decodeUTF8(pctxt, ppvalue));
}

int xerDecBMPStr(ASN1CTXT* pctxt, Asn116BitCharString* pvalue) {
  return XERDEC_TRACE(pctxt, decodeWide(pctxt, 0xFFFF, pvalue));
}

int xerDecUnivStr(ASN1CTXT* pctxt, Asn132BitCharString* pvalue) {
  return XERDEC_TRACE(pctxt, decodeWide(pctxt, kMaxUnicode, pvalue));
}

QN_END_C
