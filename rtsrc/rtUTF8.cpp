// UTF-8 validation, counting, character coding, heap copies and conversions to and from 16-bit
// and 32-bit character strings.

#include <quillon/rtUTF8.h>

#include <quillon/rtMemHeap.h>

#include <limits.h>
#include <stdint.h>
#include <string.h>

#include "rtErrLog.h"

namespace {

const int kMalformed = -1;

// The character of the sequence starting at s[i] (i < n), or kMalformed. Lead bytes C0, C1 and
// F5..FF can only start overlong or out-of-range forms, so they are refused outright; the
// remaining overlong and surrogate forms are caught by the value checks.
int decodeSequence(const ASN1OCTET* s, size_t n, size_t i, size_t& len) {
  const ASN1OCTET lead = s[i];
  if (lead < 0x80) {
    len = 1;
    return lead;
  }
  size_t trail;
  ASN1UINT wc;
  if (lead >= 0xC2 && lead <= 0xDF) {
    trail = 1;
    wc = lead & 0x1Fu;
  } else if ((lead & 0xF0) == 0xE0) {
    trail = 2;
    wc = lead & 0x0Fu;
  } else if (lead >= 0xF0 && lead <= 0xF4) {
    trail = 3;
    wc = lead & 0x07u;
  } else {
    return kMalformed;
  }
  if (n - i <= trail) return kMalformed;
  for (size_t k = 1; k <= trail; ++k) {
    const ASN1OCTET b = s[i + k];
    if ((b & 0xC0) != 0x80) return kMalformed;
    wc = (wc << 6) | (b & 0x3Fu);
  }
  static const ASN1UINT kSmallest[4] = {0, 0x80, 0x800, 0x10000};
  if (wc < kSmallest[trail] || wc > 0x10FFFF || (wc >= 0xD800 && wc <= 0xDFFF)) {
    return kMalformed;
  }
  len = trail + 1;
  return static_cast<int>(wc);
}

const ASN1OCTET* bytesOf(const char* text) { return reinterpret_cast<const ASN1OCTET*>(text); }

int invalidAt(ASN1CTXT* pctxt, size_t index) {
  rtErrAddIntParm(&pctxt->errInfo, index > INT_MAX ? INT_MAX : static_cast<int>(index));
  return LOG_RTERR(pctxt, ASN_E_INVUTF8);
}

int countChars(ASN1CTXT* pctxt, const ASN1OCTET* s, size_t n) {
  size_t count = 0;
  size_t i = 0;
  while (i < n) {
    size_t len = 1;
    if (s[i] >= 0x80 && decodeSequence(s, n, i, len) == kMalformed) return invalidAt(pctxt, i);
    i += len;
    ++count;
  }
  if (count > INT_MAX) return LOG_RTERR(pctxt, ASN_E_TOOBIG);
  return static_cast<int>(count);
}

char* copyToHeap(ASN1CTXT* pctxt, const char* text, size_t nbytes) {
  if (nbytes == SIZE_MAX) {
    LOG_RTERR(pctxt, ASN_E_NOMEM);
    return nullptr;
  }
  char* copy = static_cast<char*>(rtMemHeapAlloc(&pctxt->memHeap, nbytes + 1));
  if (copy == nullptr) {
    LOG_RTERR(pctxt, ASN_E_NOMEM);
    return nullptr;
  }
  if (nbytes > 0) memcpy(copy, text, nbytes);
  copy[nbytes] = '\0';
  return copy;
}

// Text validated by countChars is decoded a second time into the array, so the array is sized
// exactly and taken from the heap once.
template <typename Unit>
int utf8ToUnits(ASN1CTXT* pctxt, const char* text, ASN1UINT maxChar, ASN1UINT& nchars,
                Unit*& data) {
  const ASN1OCTET* s = bytesOf(text);
  const size_t n = strlen(text);
  const int count = countChars(pctxt, s, n);
  if (count < 0) return LOG_RTERR(pctxt, count);
  Unit* out = nullptr;
  if (count > 0) {
    if (static_cast<size_t>(count) > SIZE_MAX / sizeof(Unit)) return LOG_RTERR(pctxt, ASN_E_NOMEM);
    out = static_cast<Unit*>(rtMemHeapAlloc(&pctxt->memHeap, count * sizeof(Unit)));
    if (out == nullptr) return LOG_RTERR(pctxt, ASN_E_NOMEM);
  }
  size_t i = 0;
  for (int k = 0; k < count; ++k) {
    size_t len = 1;
    const ASN1UINT wc = static_cast<ASN1UINT>(decodeSequence(s, n, i, len));
    if (wc > maxChar) {
      rtMemHeapFreePtr(&pctxt->memHeap, out);
      return LOG_RTERR(pctxt, ASN_E_INVCHAR);
    }
    out[k] = static_cast<Unit>(wc);
    i += len;
  }
  nchars = static_cast<ASN1UINT>(count);
  data = out;
  return 0;
}

template <typename Unit>
int unitsToUTF8(ASN1CTXT* pctxt, ASN1UINT nchars, const Unit* data, char** ppText) {
  if (ppText == nullptr || (nchars > 0 && data == nullptr)) {
    return LOG_RTERR(pctxt, ASN_E_INVPARAM);
  }
  size_t total = 0;
  for (ASN1UINT k = 0; k < nchars; ++k) {
    const int size = rtUTF8CharSize(data[k]);
    if (size == 0) return LOG_RTERR(pctxt, ASN_E_INVCHAR);
    total += static_cast<size_t>(size);
  }
  if (total > INT_MAX) return LOG_RTERR(pctxt, ASN_E_TOOBIG);
  char* out = static_cast<char*>(rtMemHeapAlloc(&pctxt->memHeap, total + 1));
  if (out == nullptr) return LOG_RTERR(pctxt, ASN_E_NOMEM);
  ASN1OCTET* p = reinterpret_cast<ASN1OCTET*>(out);
  for (ASN1UINT k = 0; k < nchars; ++k) p += rtUTF8EncodeChar(data[k], p);
  *p = 0;
  *ppText = out;
  return static_cast<int>(total);
}

}  // namespace

QN_BEGIN_C

int rtUTF8Len(ASN1CTXT* pctxt, const char* text) {
  if (text == nullptr) return LOG_RTERR(pctxt, ASN_E_INVPARAM);
  return countChars(pctxt, bytesOf(text), strlen(text));
}

int rtUTF8LenN(ASN1CTXT* pctxt, const char* text, size_t nbytes) {
  if (text == nullptr && nbytes > 0) return LOG_RTERR(pctxt, ASN_E_INVPARAM);
  return countChars(pctxt, bytesOf(text), nbytes);
}

int rtUTF8CharSize(ASN1UINT wc) {
  if (wc < 0x80) return 1;
  if (wc < 0x800) return 2;
  if (wc >= 0xD800 && wc <= 0xDFFF) return 0;
  if (wc < 0x10000) return 3;
  return wc <= 0x10FFFF ? 4 : 0;
}

int rtUTF8EncodeChar(ASN1UINT wc, ASN1OCTET* buf) {
  static const ASN1OCTET kLeadMark[ASN_K_UTF8MAXCHARSIZE + 1] = {0, 0, 0xC0, 0xE0, 0xF0};
  const int size = rtUTF8CharSize(wc);
  if (size == 0) return 0;
  if (size == 1) {
    buf[0] = static_cast<ASN1OCTET>(wc);
    return 1;
  }
  for (int k = size - 1; k > 0; --k) {
    buf[k] = static_cast<ASN1OCTET>(0x80 | (wc & 0x3F));
    wc >>= 6;
  }
  buf[0] = static_cast<ASN1OCTET>(kLeadMark[size] | wc);
  return size;
}

int rtUTF8DecodeChar(ASN1CTXT* pctxt, const char* text, size_t nbytes, size_t* pIndex) {
  if (text == nullptr || pIndex == nullptr) return LOG_RTERR(pctxt, ASN_E_INVPARAM);
  const size_t i = *pIndex;
  if (i >= nbytes) return LOG_RTERR(pctxt, ASN_E_OUTOFBND);
  size_t len = 1;
  const int wc = decodeSequence(bytesOf(text), nbytes, i, len);
  if (wc == kMalformed) return invalidAt(pctxt, i);
  *pIndex = i + len;
  return wc;
}

char* rtUTF8Strdup(ASN1CTXT* pctxt, const char* text) {
  if (text == nullptr) {
    LOG_RTERR(pctxt, ASN_E_INVPARAM);
    return nullptr;
  }
  return copyToHeap(pctxt, text, strlen(text));
}

char* rtUTF8Strndup(ASN1CTXT* pctxt, const char* text, size_t nbytes) {
  if (text == nullptr && nbytes > 0) {
    LOG_RTERR(pctxt, ASN_E_INVPARAM);
    return nullptr;
  }
  return copyToHeap(pctxt, text, nbytes);
}

int rtUTF8ToBMP(ASN1CTXT* pctxt, const char* text, Asn116BitCharString* pOut) {
  if (text == nullptr || pOut == nullptr) return LOG_RTERR(pctxt, ASN_E_INVPARAM);
  return utf8ToUnits(pctxt, text, 0xFFFFu, pOut->nchars, pOut->data);
}

int rtUTF8ToUCS4(ASN1CTXT* pctxt, const char* text, Asn132BitCharString* pOut) {
  if (text == nullptr || pOut == nullptr) return LOG_RTERR(pctxt, ASN_E_INVPARAM);
  return utf8ToUnits(pctxt, text, 0x10FFFFu, pOut->nchars, pOut->data);
}

int rtBMPToUTF8(ASN1CTXT* pctxt, const Asn116BitCharString* pIn, char** ppText) {
  if (pIn == nullptr) return LOG_RTERR(pctxt, ASN_E_INVPARAM);
  return unitsToUTF8(pctxt, pIn->nchars, pIn->data, ppText);
}

int rtUCS4ToUTF8(ASN1CTXT* pctxt, const Asn132BitCharString* pIn, char** ppText) {
  if (pIn == nullptr) return LOG_RTERR(pctxt, ASN_E_INVPARAM);
  return unitsToUTF8(pctxt, pIn->nchars, pIn->data, ppText);
}

QN_END_C
