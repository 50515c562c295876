/* OCTET STRING values from hexadecimal text: whole, or piece by piece as character data
 * arrives. */
#include "xerDecCommon.h"

using namespace qn::xerdec;

namespace {

int hexDigit(char c) {
  const int v = hexValue(c);
  return v < 0 ? ASN_E_INVHEXSTR : v;
}

using HexDigits = DigitScanner<hexDigit>;

long countHexDigits(Text t, bool skipWs) { return HexDigits(t, skipWs).countRest(); }

/* The first count digits of t into out, right-aligned: with an odd count the first digit is
 * the low half of the first octet. -14 when t holds fewer digits or another character. */
int readHexDigits(Text t, bool skipWs, size_t count, ASN1OCTET* out) {
  HexDigits digits(t, skipWs);
  if (count % 2) out[0] = 0;
  for (size_t i = 0, pos = count % 2; i < count; ++i, ++pos) {
    const int v = digits.next();
    if (v == -1) return ASN_E_INVHEXSTR;
    if (v < 0) return v;
    ASN1OCTET& octet = out[pos / 2];
    octet = pos % 2 ? static_cast<ASN1OCTET>(octet | v) : static_cast<ASN1OCTET>(v << 4);
  }
  return 0;
}

/* Hexadecimal text into at most maxOctets octets; count 0 means every digit of the text. */
int decodeHex(Text t, bool skipWs, long count, ASN1OCTET* out, long maxOctets,
              ASN1UINT* pNumBits) {
  if (count <= 0) count = countHexDigits(t, skipWs);
  if (count < 0) return static_cast<int>(count);
  const long octets = (count + 1) / 2;
  if (octets > maxOctets || count > static_cast<long>(UINT32_MAX / 4)) return ASN_E_STROVFLW;
  int stat = readHexDigits(t, skipWs, static_cast<size_t>(count), out);
  if (stat != 0) return stat;
  if (pNumBits) *pNumBits = static_cast<ASN1UINT>(count * 4);
  return 0;
}

/* The X.693 form lets white space in anywhere; hexBinary collapses it around the digits. */
Text hexText(ASN1CTXT* pctxt, bool xml) {
  const Text t = inputText(pctxt);
  return xml ? trimSpace(t) : t;
}

int decodeFixed(ASN1CTXT* pctxt, bool xml, ASN1OCTET* pvalue, ASN1UINT* pnocts, ASN1INT size) {
  ASN1UINT numBits = 0;
  int stat = decodeHex(hexText(pctxt, xml), !xml, 0, pvalue, size, &numBits);
  if (stat != 0) return stat;
  *pnocts = (numBits / 4 + 1) / 2;
  return 0;
}

int decodeDynamic(ASN1CTXT* pctxt, bool xml, ASN1DynOctStr* pvalue) {
  const Text t = hexText(pctxt, xml);
  const long count = countHexDigits(t, !xml);
  if (count < 0) return static_cast<int>(count);
  const long octets = (count + 1) / 2;
  ASN1OCTET* data = nullptr;
  if (octets > 0) {
    data = allocArray<ASN1OCTET>(pctxt, static_cast<size_t>(octets));
    if (!data) return ASN_E_NOMEM;
  }
  int stat = decodeHex(t, !xml, count, data, octets, nullptr);
  if (stat != 0) return stat;
  pvalue->numocts = static_cast<ASN1UINT>(octets);
  pvalue->data = data;
  return 0;
}

/* Appends the digits of a piece of text; a lone digit waits in the high half of the last
 * octet (bitOffset 4) for the piece that brings its partner. */
int appendHexPiece(ASN1MemBuf* pMemBuf, const char* chars, size_t length) {
  int stat = rtMemBufPreAllocate(pMemBuf, static_cast<ASN1UINT>(length / 2 + 1));
  if (stat != 0) return stat;
  for (size_t i = 0; i < length; ++i) {
    if (isSpace(chars[i])) continue;
    const int v = hexValue(chars[i]);
    if (v < 0) return ASN_E_INVHEXSTR;
    if (pMemBuf->bitOffset == 4) {
      pMemBuf->buffer[pMemBuf->usedcnt - 1] |= static_cast<ASN1OCTET>(v);
      pMemBuf->bitOffset = 0;
    } else {
      pMemBuf->buffer[pMemBuf->usedcnt++] = static_cast<ASN1OCTET>(v << 4);
      pMemBuf->bitOffset = 4;
    }
  }
  return 0;
}

/* The collected octets, refused while half an octet is still waiting for its digit. */
int collectedOctets(ASN1MemBuf* pMemBuf, ASN1DynOctStr& octets) {
  if (pMemBuf->bitOffset == 4) return ASN_E_INVHEXSTR;
  int length = 0;
  octets.data = rtMemBufGetData(pMemBuf, &length);
  octets.numocts = static_cast<ASN1UINT>(length);
  return 0;
}

int copyFixed(ASN1OCTET* pvalue, ASN1UINT* pnocts, ASN1INT bufsize, ASN1MemBuf* pMemBuf) {
  ASN1DynOctStr octets;
  int stat = collectedOctets(pMemBuf, octets);
  if (stat != 0) return stat;
  if (bufsize < 0 || octets.numocts > static_cast<ASN1UINT>(bufsize)) return ASN_E_STROVFLW;
  if (octets.numocts) memcpy(pvalue, octets.data, octets.numocts);
  *pnocts = octets.numocts;
  return 0;
}

int copyDynamic(ASN1CTXT* pctxt, ASN1DynOctStr* pvalue, ASN1MemBuf* pMemBuf) {
  ASN1DynOctStr octets;
  int stat = collectedOctets(pMemBuf, octets);
  if (stat != 0) return stat;
  ASN1OCTET* data = nullptr;
  if (!heapCopy(pctxt, octets.data, octets.numocts, data)) return ASN_E_NOMEM;
  pvalue->numocts = octets.numocts;
  pvalue->data = data;
  return 0;
}

}  // namespace

QN_BEGIN_C

int xerDecHexStrValue(ASN1CTXT* pctxt, ASN1OCTET* out, ASN1UINT* pNumBits, int maxOctets,
                      int digitCount, ASN1BOOL skipWhitespace) {
  return XERDEC_TRACE(pctxt, decodeHex(inputText(pctxt), skipWhitespace != 0, digitCount, out,
                                       maxOctets, pNumBits));
}

int xerDecOctStr(ASN1CTXT* pctxt, ASN1OCTET* pvalue, ASN1UINT* pnocts, ASN1INT bufsize) {
  return XERDEC_TRACE(pctxt, decodeFixed(pctxt, false, pvalue, pnocts, bufsize));
}

int xerDecDynOctStr(ASN1CTXT* pctxt, ASN1DynOctStr* pvalue) {
  return XERDEC_TRACE(pctxt, decodeDynamic(pctxt, false, pvalue));
}

int xmlDecOctStr(ASN1CTXT* pctxt, ASN1OCTET* pvalue, ASN1UINT* pnocts, ASN1INT bufsize) {
  return XERDEC_TRACE(pctxt, decodeFixed(pctxt, true, pvalue, pnocts, bufsize));
}

int xmlDecDynOctStr(ASN1CTXT* pctxt, ASN1DynOctStr* pvalue) {
  return XERDEC_TRACE(pctxt, decodeDynamic(pctxt, true, pvalue));
}

int xerDecOctStrMemBuf(ASN1MemBuf* pMemBuf, const char* chars, int length) {
  if (!pMemBuf || !pMemBuf->pctxt) return ASN_E_INVPARAM;
  if (length <= 0) return 0;
  if (!chars) return LOG_RTERR(pMemBuf->pctxt, ASN_E_INVPARAM);
  return XERDEC_TRACE(pMemBuf->pctxt,
                      appendHexPiece(pMemBuf, chars, static_cast<size_t>(length)));
}

int xerDecCopyOctStr(ASN1CTXT* pctxt, ASN1OCTET* pvalue, ASN1UINT* pnocts, ASN1INT bufsize,
                     ASN1MemBuf* pMemBuf) {
  return XERDEC_TRACE(pctxt, copyFixed(pvalue, pnocts, bufsize, pMemBuf));
}

int xerDecCopyDynOctStr(ASN1CTXT* pctxt, ASN1DynOctStr* pvalue, ASN1MemBuf* pMemBuf) {
  return XERDEC_TRACE(pctxt, copyDynamic(pctxt, pvalue, pMemBuf));
}

QN_END_C
