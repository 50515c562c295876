/* BIT STRING values from binary digits, piece by piece as character data arrives, or from a
 * list of bit names. */
#include "xerDecCommon.h"

using namespace qn::xerdec;

namespace {

int binDigit(char c) { return c == '0' || c == '1' ? c - '0' : ASN_E_INVBINS; }

using BinDigits = DigitScanner<binDigit>;

long countBits(Text t, bool skipWs) { return BinDigits(t, skipWs).countRest(); }

/* The first count bits of t into out, most significant bit first, unused bits zero. */
int readBits(Text t, bool skipWs, size_t count, ASN1OCTET* out) {
  BinDigits digits(t, skipWs);
  for (size_t i = 0; i < count; ++i) {
    const int v = digits.next();
    if (v == -1) return ASN_E_INVBINS;
    if (v < 0) return v;
    if (i % 8 == 0) out[i / 8] = 0;
    if (v) out[i / 8] |= static_cast<ASN1OCTET>(0x80u >> (i % 8));
  }
  return 0;
}

int decodeBin(Text t, bool skipWs, long count, ASN1OCTET* out, long maxOctets,
              ASN1UINT* pNumBits) {
  if (count <= 0) count = countBits(t, skipWs);
  if (count < 0) return static_cast<int>(count);
  if ((count + 7) / 8 > maxOctets) return ASN_E_STROVFLW;
  int stat = readBits(t, skipWs, static_cast<size_t>(count), out);
  if (stat != 0) return stat;
  if (pNumBits) *pNumBits = static_cast<ASN1UINT>(count);
  return 0;
}

/* X.693 lets white space in anywhere; the XML Schema form only around the digits. */
Text binText(ASN1CTXT* pctxt, bool xml) {
  const Text t = inputText(pctxt);
  return xml ? trimSpace(t) : t;
}

int decodeDynamic(ASN1CTXT* pctxt, bool xml, ASN1DynBitStr* pvalue) {
  const Text t = binText(pctxt, xml);
  const long count = countBits(t, !xml);
  if (count < 0) return static_cast<int>(count);
  const long octets = (count + 7) / 8;
  ASN1OCTET* data = nullptr;
  if (octets > 0) {
    data = allocArray<ASN1OCTET>(pctxt, static_cast<size_t>(octets));
    if (!data) return ASN_E_NOMEM;
  }
  int stat = decodeBin(t, !xml, count, data, octets, nullptr);
  if (stat != 0) return stat;
  pvalue->numbits = static_cast<ASN1UINT>(count);
  pvalue->data = data;
  return 0;
}

int bitOfName(Text name, const XMLNamedBit* namedBits, int count) {
  for (int i = 0; i < count; ++i) {
    const size_t n = strlen(namedBits[i].name);
    if (name.size() == n && memcmp(name.begin, namedBits[i].name, n) == 0) return i;
  }
  return -1;
}

int decodeNamedBits(ASN1CTXT* pctxt, ASN1OCTET* pvalue, ASN1UINT* pnbits, ASN1INT bufsize,
                    const XMLNamedBit* namedBits, int count) {
  if (bufsize > 0) memset(pvalue, 0, static_cast<size_t>(bufsize));
  ASN1UINT numbits = 0;
  const Text t = inputText(pctxt);
  const char* p = t.begin;
  for (Text name = nextToken(p, t.end); !name.empty(); name = nextToken(p, t.end)) {
    const int i = bitOfName(name, namedBits, count);
    if (i < 0) return ASN_E_BADVALUE;
    const ASN1UINT bit = namedBits[i].bitno;
    if (bufsize <= 0 || bit / 8 >= static_cast<ASN1UINT>(bufsize)) return ASN_E_STROVFLW;
    pvalue[bit / 8] |= static_cast<ASN1OCTET>(0x80u >> (bit % 8));
    if (bit >= numbits) numbits = bit + 1;
  }
  *pnbits = numbits;
  return 0;
}

/* Appends the bits of a piece of text; bitOffset counts the bits used of the last octet. */
int appendBitPiece(ASN1MemBuf* pMemBuf, const char* chars, size_t length) {
  int stat = rtMemBufPreAllocate(pMemBuf, static_cast<ASN1UINT>(length / 8 + 1));
  if (stat != 0) return stat;
  for (size_t i = 0; i < length; ++i) {
    const char c = chars[i];
    if (isSpace(c)) continue;
    if (c != '0' && c != '1') return ASN_E_INVBINS;
    if (pMemBuf->bitOffset == 0) pMemBuf->buffer[pMemBuf->usedcnt++] = 0;
    if (c == '1') {
      pMemBuf->buffer[pMemBuf->usedcnt - 1] |= static_cast<ASN1OCTET>(0x80u >> pMemBuf->bitOffset);
    }
    pMemBuf->bitOffset = (pMemBuf->bitOffset + 1) % 8;
  }
  return 0;
}

ASN1DynBitStr collectedBits(ASN1MemBuf* pMemBuf) {
  int length = 0;
  ASN1DynBitStr bits;
  bits.data = rtMemBufGetData(pMemBuf, &length);
  const ASN1UINT unused = pMemBuf->bitOffset ? 8 - pMemBuf->bitOffset : 0;
  bits.numbits = length ? static_cast<ASN1UINT>(length) * 8 - unused : 0;
  return bits;
}

int copyFixed(ASN1OCTET* pvalue, ASN1UINT* pnbits, ASN1INT bufsize, ASN1MemBuf* pMemBuf) {
  const ASN1DynBitStr bits = collectedBits(pMemBuf);
  const ASN1UINT octets = (bits.numbits + 7) / 8;
  if (bufsize < 0 || octets > static_cast<ASN1UINT>(bufsize)) return ASN_E_STROVFLW;
  if (octets) memcpy(pvalue, bits.data, octets);
  *pnbits = bits.numbits;
  return 0;
}

int copyDynamic(ASN1CTXT* pctxt, ASN1DynBitStr* pvalue, ASN1MemBuf* pMemBuf) {
  const ASN1DynBitStr bits = collectedBits(pMemBuf);
  const ASN1UINT octets = (bits.numbits + 7) / 8;
  ASN1OCTET* data = nullptr;
  if (!heapCopy(pctxt, bits.data, octets, data)) return ASN_E_NOMEM;
  pvalue->numbits = bits.numbits;
  pvalue->data = data;
  return 0;
}

}  // namespace

QN_BEGIN_C

int xerDecBinStrValue(ASN1CTXT* pctxt, ASN1OCTET* out, ASN1UINT* pNumBits, int maxOctets,
                      int bitCount, ASN1BOOL skipWhitespace) {
  return XERDEC_TRACE(pctxt, decodeBin(inputText(pctxt), skipWhitespace != 0, bitCount, out,
                                       maxOctets, pNumBits));
}

int xerDecBitStr(ASN1CTXT* pctxt, ASN1OCTET* pvalue, ASN1UINT* pnbits, ASN1INT bufsize) {
  return XERDEC_TRACE(pctxt, decodeBin(binText(pctxt, false), true, 0, pvalue, bufsize, pnbits));
}

int xerDecDynBitStr(ASN1CTXT* pctxt, ASN1DynBitStr* pvalue) {
  return XERDEC_TRACE(pctxt, decodeDynamic(pctxt, false, pvalue));
}

int xmlDecBitStr(ASN1CTXT* pctxt, ASN1OCTET* pvalue, ASN1UINT* pnbits, ASN1INT bufsize) {
  return XERDEC_TRACE(pctxt, decodeBin(binText(pctxt, true), false, 0, pvalue, bufsize, pnbits));
}

int xmlDecDynBitStr(ASN1CTXT* pctxt, ASN1DynBitStr* pvalue) {
  return XERDEC_TRACE(pctxt, decodeDynamic(pctxt, true, pvalue));
}

int xmlDecNamedBitStr(ASN1CTXT* pctxt, ASN1OCTET* pvalue, ASN1UINT* pnbits, ASN1INT bufsize,
                      const XMLNamedBit* namedBits, int count) {
  return XERDEC_TRACE(pctxt, decodeNamedBits(pctxt, pvalue, pnbits, bufsize, namedBits, count));
}

int xerDecBitStrMemBuf(ASN1MemBuf* pMemBuf, const char* chars, int length) {
  if (!pMemBuf || !pMemBuf->pctxt) return ASN_E_INVPARAM;
  if (length <= 0) return 0;
  if (!chars) return LOG_RTERR(pMemBuf->pctxt, ASN_E_INVPARAM);
  return XERDEC_TRACE(pMemBuf->pctxt,
                      appendBitPiece(pMemBuf, chars, static_cast<size_t>(length)));
}

int xerDecCopyBitStr(ASN1CTXT* pctxt, ASN1OCTET* pvalue, ASN1UINT* pnbits, ASN1INT bufsize,
                     ASN1MemBuf* pMemBuf) {
  return XERDEC_TRACE(pctxt, copyFixed(pvalue, pnbits, bufsize, pMemBuf));
}

int xerDecCopyDynBitStr(ASN1CTXT* pctxt, ASN1DynBitStr* pvalue, ASN1MemBuf* pMemBuf) {
  return XERDEC_TRACE(pctxt, copyDynamic(pctxt, pvalue, pMemBuf));
}

QN_END_C
