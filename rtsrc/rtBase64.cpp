// Base64 encoding and decoding of octet strings.

#include <quillon/rtBase64.h>

#include <quillon/rtMemHeap.h>

#include <limits.h>
#include <string.h>

#include "rtErrLog.h"

namespace {

constexpr char kAlphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

// Classes of a text byte beyond the 64 digit values.
constexpr ASN1OCTET kSpace = 64;
constexpr ASN1OCTET kPad = 65;
constexpr ASN1OCTET kBad = 66;

// White space of XML and mail line breaks, skipped between characters.
constexpr char kWhiteSpace[] = " \t\n\v\f\r";

constexpr ASN1OCTET byteOf(char c) { return static_cast<ASN1OCTET>(c); }

struct DecodeTable {
  ASN1OCTET value[256];
};

constexpr DecodeTable makeDecodeTable() {
  DecodeTable t{};
  for (int c = 0; c < 256; ++c) t.value[c] = kBad;
  for (int v = 0; v < 64; ++v) t.value[byteOf(kAlphabet[v])] = static_cast<ASN1OCTET>(v);
  for (const char* c = kWhiteSpace; *c != '\0'; ++c) t.value[byteOf(*c)] = kSpace;
  t.value[byteOf('=')] = kPad;
  return t;
}

constexpr DecodeTable kDecode = makeDecodeTable();

// Largest input whose text length still fits an int.
const size_t kMaxEncodable = static_cast<size_t>(INT_MAX) / 4 * 3;

void encodeInto(const ASN1OCTET* data, size_t nocts, char* out) {
  size_t i = 0;
  for (; i + 3 <= nocts; i += 3) {
    const ASN1UINT group = (ASN1UINT{data[i]} << 16) | (ASN1UINT{data[i + 1]} << 8) | data[i + 2];
    *out++ = kAlphabet[group >> 18];
    *out++ = kAlphabet[(group >> 12) & 0x3F];
    *out++ = kAlphabet[(group >> 6) & 0x3F];
    *out++ = kAlphabet[group & 0x3F];
  }
  const size_t rest = nocts - i;
  if (rest > 0) {
    const ASN1UINT group = (ASN1UINT{data[i]} << 16) | (rest == 2 ? ASN1UINT{data[i + 1]} << 8 : 0);
    *out++ = kAlphabet[group >> 18];
    *out++ = kAlphabet[(group >> 12) & 0x3F];
    *out++ = rest == 2 ? kAlphabet[(group >> 6) & 0x3F] : '=';
    *out++ = '=';
  }
  *out = '\0';
}

// One pass over the text that checks it and, when out is given, writes the octets (the caller
// has sized out by a counting pass). Returns false for a text that is not valid base64.
class Base64Reader {
 public:
  explicit Base64Reader(ASN1OCTET* out) : out_(out) {}

  bool read(const ASN1OCTET* s, size_t n) {
    for (size_t i = 0; i < n; ++i) {
      const ASN1OCTET v = kDecode.value[s[i]];
      if (v == kSpace) continue;
      if (finished_ || v == kBad) return false;
      if (v == kPad ? !takePad() : !takeDigit(v)) return false;
    }
    return digits_ == 0 && pads_ == 0;
  }

  size_t count() const { return count_; }

 private:
  bool takeDigit(ASN1OCTET v) {
    if (pads_ > 0) return false;
    group_ = (group_ << 6) | v;
    if (++digits_ == 4) {
      emit(3);
      digits_ = 0;
      group_ = 0;
    }
    return true;
  }

  // "=" stands for missing digits of the last group: two or three digits must precede it.
  bool takePad() {
    if (digits_ < 2) return false;
    if (digits_ + ++pads_ < 4) return true;
    group_ <<= 6 * pads_;
    emit(static_cast<size_t>(digits_ - 1));
    digits_ = 0;
    pads_ = 0;
    finished_ = true;
    return true;
  }

  void emit(size_t nocts) {
    if (out_ != nullptr) {
      for (size_t k = 0; k < nocts; ++k) {
        out_[count_ + k] = static_cast<ASN1OCTET>(group_ >> (16 - 8 * k));
      }
    }
    count_ += nocts;
  }

  ASN1OCTET* out_;
  ASN1UINT group_ = 0;
  int digits_ = 0;
  int pads_ = 0;
  bool finished_ = false;
  size_t count_ = 0;
};

const ASN1OCTET* bytesOf(const char* text) { return reinterpret_cast<const ASN1OCTET*>(text); }

int decodedLength(ASN1CTXT* pctxt, const char* text, size_t nchars) {
  if (text == nullptr && nchars > 0) return LOG_RTERR(pctxt, ASN_E_INVPARAM);
  Base64Reader counter(nullptr);
  if (!counter.read(bytesOf(text), nchars)) return LOG_RTERR(pctxt, ASN_E_INVBASE64);
  if (counter.count() > INT_MAX) return LOG_RTERR(pctxt, ASN_E_TOOBIG);
  return static_cast<int>(counter.count());
}

void decodeInto(const char* text, size_t nchars, ASN1OCTET* out) {
  Base64Reader writer(out);
  writer.read(bytesOf(text), nchars);
}

bool hasBadEncodeInput(const ASN1OCTET* data, size_t nocts) {
  return data == nullptr && nocts > 0;
}

}  // namespace

QN_BEGIN_C

size_t rtBase64EncodedLen(size_t nocts) { return (nocts / 3 + (nocts % 3 != 0)) * 4; }

int rtBase64Encode(ASN1CTXT* pctxt, const ASN1OCTET* data, size_t nocts, char* buf,
                   size_t bufsize) {
  if (hasBadEncodeInput(data, nocts) || buf == nullptr) return LOG_RTERR(pctxt, ASN_E_INVPARAM);
  if (nocts > kMaxEncodable) return LOG_RTERR(pctxt, ASN_E_TOOBIG);
  const size_t len = rtBase64EncodedLen(nocts);
  if (bufsize <= len) return LOG_RTERR(pctxt, ASN_E_STROVFLW);
  encodeInto(data, nocts, buf);
  return static_cast<int>(len);
}

int rtBase64EncodeDyn(ASN1CTXT* pctxt, const ASN1OCTET* data, size_t nocts, char** ppText) {
  if (hasBadEncodeInput(data, nocts) || ppText == nullptr) return LOG_RTERR(pctxt, ASN_E_INVPARAM);
  if (nocts > kMaxEncodable) return LOG_RTERR(pctxt, ASN_E_TOOBIG);
  const size_t len = rtBase64EncodedLen(nocts);
  char* text = static_cast<char*>(rtMemHeapAlloc(&pctxt->memHeap, len + 1));
  if (text == nullptr) return LOG_RTERR(pctxt, ASN_E_NOMEM);
  encodeInto(data, nocts, text);
  *ppText = text;
  return static_cast<int>(len);
}

int rtBase64DecodedLen(ASN1CTXT* pctxt, const char* text, size_t nchars) {
  return decodedLength(pctxt, text, nchars);
}

int rtBase64Decode(ASN1CTXT* pctxt, const char* text, size_t nchars, ASN1OCTET* buf,
                   size_t bufsize) {
  const int nocts = decodedLength(pctxt, text, nchars);
  if (nocts < 0) return LOG_RTERR(pctxt, nocts);
  if (static_cast<size_t>(nocts) > bufsize) return LOG_RTERR(pctxt, ASN_E_STROVFLW);
  if (nocts > 0 && buf == nullptr) return LOG_RTERR(pctxt, ASN_E_INVPARAM);
  decodeInto(text, nchars, buf);
  return nocts;
}

int rtBase64DecodeDyn(ASN1CTXT* pctxt, const char* text, size_t nchars, ASN1DynOctStr* pOut) {
  if (pOut == nullptr) return LOG_RTERR(pctxt, ASN_E_INVPARAM);
  const int nocts = decodedLength(pctxt, text, nchars);
  if (nocts < 0) return LOG_RTERR(pctxt, nocts);
  ASN1OCTET* data = nullptr;
  if (nocts > 0) {
    data = static_cast<ASN1OCTET*>(rtMemHeapAlloc(&pctxt->memHeap, static_cast<size_t>(nocts)));
    if (data == nullptr) return LOG_RTERR(pctxt, ASN_E_NOMEM);
    decodeInto(text, nchars, data);
  }
  pOut->numocts = static_cast<ASN1UINT>(nocts);
  pOut->data = data;
  return nocts;
}

QN_END_C
