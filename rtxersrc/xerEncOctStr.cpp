/* OCTET STRING and BIT STRING values: hexadecimal, binary and base64 content. */
#include <quillon/rtBase64.h>

#include "xerEncCommon.h"

using namespace qn::xer;

namespace {

/* Octets per base64 block: 128 characters, which the stage holds with the encoder's NUL. */
constexpr size_t kBase64Block = 96;

const char kHexAttribute[] = "form=\"hex\"";

size_t octetsOfBits(ASN1UINT numbits) { return numbits / 8 + (numbits % 8 != 0); }

/* Fills the stage in place, as many digits at a time as it has room for. */
void putHex(TextStage& s, const ASN1OCTET* data, size_t numocts) {
  static const char kDigits[] = "0123456789ABCDEF";
  size_t i = 0;
  while (i < numocts && !s.failed()) {
    char* out = s.room(2);
    size_t n = s.space() / 2;
    if (n > numocts - i) n = numocts - i;
    for (size_t k = 0; k < n; ++k, ++i) {
      out[2 * k] = kDigits[data[i] >> 4];
      out[2 * k + 1] = kDigits[data[i] & 0x0F];
    }
    s.commit(2 * n);
  }
}

void putBinary(TextStage& s, const ASN1OCTET* data, ASN1UINT numbits) {
  ASN1UINT i = 0;
  while (i < numbits && !s.failed()) {
    char* out = s.room(1);
    size_t n = s.space();
    if (n > numbits - i) n = numbits - i;
    for (size_t k = 0; k < n; ++k, ++i)
      out[k] = (data[i / 8] & (0x80u >> (i % 8))) ? '1' : '0';
    s.commit(n);
  }
}

void putBase64(TextStage& s, const ASN1OCTET* data, size_t numocts) {
  for (size_t i = 0; i < numocts && !s.failed(); i += kBase64Block) {
    const size_t n = numocts - i < kBase64Block ? numocts - i : kBase64Block;
    const size_t room = rtBase64EncodedLen(n) + 1;
    char* out = s.room(room);
    const int len = rtBase64Encode(s.ctxt(), data + i, n, out, room);
    if (len > 0) s.commit(static_cast<size_t>(len));
  }
}

/* No octets at all are written as a whole self-closing element. */
int writeEmpty(ASN1CTXT* pctxt, const char* name, const char* attributes) {
  TextStage s(pctxt);
  putWholeEmptyElement(s, name, attributes);
  return s.finish();
}

/* No bits give the empty element whatever the form: there is no content for the form to
 * describe. */
int writeBitStr(ASN1CTXT* pctxt, ASN1UINT numbits, const ASN1OCTET* data, const char* elemName,
                ASN1StrType outputType) {
  const char* name = nameOr(elemName, "BIT_STRING");
  const char* attributes = outputType == ASN1HEX ? kHexAttribute : nullptr;
  if (numbits == 0) return writeEmpty(pctxt, name, attributes);
  if (outputType != ASN1HEX && outputType != ASN1BIN) return ASN_E_INVPARAM;
  if (!data) return ASN_E_INVPARAM;
  return writeElement(pctxt, name, attributes, [=](TextStage& s) {
    if (outputType == ASN1HEX)
      putHex(s, data, octetsOfBits(numbits));
    else
      putBinary(s, data, numbits);
  });
}

/* An octet string element with content made by put; no octets give the empty element. */
template <typename Put>
int writeOctStr(ASN1CTXT* pctxt, ASN1UINT numocts, const ASN1OCTET* data, const char* elemName,
                Put put) {
  if (numocts && !data) return ASN_E_INVPARAM;
  const char* name = nameOr(elemName, "OCTET_STRING");
  if (numocts == 0) return writeEmpty(pctxt, name, nullptr);
  return writeElement(pctxt, name, nullptr, [=](TextStage& s) { put(s, data, numocts); });
}

/* Content without tags: count octets or bits made into text by put. */
template <typename Put>
int writeContent(ASN1CTXT* pctxt, ASN1UINT count, const ASN1OCTET* data, Put put) {
  if (count && !data) return ASN_E_INVPARAM;
  TextStage s(pctxt);
  setState(pctxt, XERDATA);
  put(s, data, count);
  return s.finish();
}

}  // namespace

QN_BEGIN_C

int xerEncHexStrValue(ASN1CTXT* pctxt, ASN1UINT numocts, const ASN1OCTET* data) {
  return XER_TRACE(pctxt, writeContent(pctxt, numocts, data, putHex));
}

int xerEncBinStrValue(ASN1CTXT* pctxt, ASN1UINT numbits, const ASN1OCTET* data) {
  return XER_TRACE(pctxt, writeContent(pctxt, numbits, data, putBinary));
}

int xerEncOctStr(ASN1CTXT* pctxt, ASN1UINT numocts, const ASN1OCTET* data,
                 const char* elemName) {
  return XER_TRACE(pctxt, writeOctStr(pctxt, numocts, data, elemName, putHex));
}

int xerEncBase64Str(ASN1CTXT* pctxt, ASN1UINT numocts, const ASN1OCTET* data,
                    const char* elemName) {
  return XER_TRACE(pctxt, writeOctStr(pctxt, numocts, data, elemName, putBase64));
}

int xerEncBitStr(ASN1CTXT* pctxt, ASN1UINT numbits, const ASN1OCTET* data,
                 const char* elemName, ASN1StrType outputType) {
  return XER_TRACE(pctxt, writeBitStr(pctxt, numbits, data, elemName, outputType));
}

int xmlEncBitStr(ASN1CTXT* pctxt, ASN1UINT numbits, const ASN1OCTET* data,
                 const char* elemName) {
  return XER_TRACE(pctxt, writeBitStr(pctxt, numbits, data, elemName, ASN1BIN));
}

QN_END_C
