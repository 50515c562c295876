/*
 * Private to the XML value decoders: the input text as a bounded range, white space, and the
 * way a decoder records its failures.
 */
#ifndef QUILLON_XERDECCOMMON_H
#define QUILLON_XERDECCOMMON_H

#include <string.h>

#include <quillon/asn1XerDec.h>

#include "rtErrLog.h"

namespace qn::xerdec {

/* The decode input [begin, end): from the buffer's byte position to the first NUL or the
 * buffer's end. Both bounds are kept so that nothing past a buffer without a NUL is read. */
struct Text {
  const char* begin;
  const char* end;

  size_t size() const { return static_cast<size_t>(end - begin); }
  bool empty() const { return begin == end; }
};

inline Text inputText(const ASN1CTXT* pctxt) {
  const ASN1BUFFER& buf = pctxt->buffer;
  if (!buf.data || buf.byteIndex >= buf.size) return Text{"", ""};
  const char* begin = reinterpret_cast<const char*>(buf.data) + buf.byteIndex;
  const size_t avail = buf.size - buf.byteIndex;
  const void* nul = memchr(begin, 0, avail);
  return Text{begin, nul ? static_cast<const char*>(nul) : begin + avail};
}

inline bool isSpace(char c) {
  return c == ' ' || c == '\t' || c == '\n' || c == '\v' || c == '\f' || c == '\r';
}

inline Text skipLeadingSpace(Text t) {
  while (t.begin < t.end && isSpace(*t.begin)) ++t.begin;
  return t;
}

inline Text trimSpace(Text t) {
  t = skipLeadingSpace(t);
  while (t.end > t.begin && isSpace(t.end[-1])) --t.end;
  return t;
}

/* The next run of characters other than white space at or after p, which moves past it; an
 * empty token when only white space is left. */
inline Text nextToken(const char*& p, const char* end) {
  while (p < end && isSpace(*p)) ++p;
  const char* start = p;
  while (p < end && !isSpace(*p)) ++p;
  return Text{start, p};
}

/* True when t is exactly the NUL-terminated token. */
inline bool equals(Text t, const char* token) {
  const size_t n = strlen(token);
  return t.size() == n && memcmp(t.begin, token, n) == 0;
}

inline bool isDigit(char c) { return c >= '0' && c <= '9'; }

/* Value of a hexadecimal digit, -1 for another character. */
inline int hexValue(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  return -1;
}

/* Digits of a text one at a time. digitValue gives a character's value, or a status below -1
 * for a character that is no digit; white space passes when skipWs is set. */
template <int (*digitValue)(char)>
class DigitScanner {
 public:
  DigitScanner(Text t, bool skipWs) : p_(t.begin), end_(t.end), skipWs_(skipWs) {}

  /* The next digit's value, -1 at the end of the text, or digitValue's status. */
  int next() {
    while (p_ < end_ && skipWs_ && isSpace(*p_)) ++p_;
    return p_ == end_ ? -1 : digitValue(*p_++);
  }

  /* The digits left in the text, or the status of the first character that is none. */
  long countRest() {
    long count = 0;
    for (int v; (v = next()) != -1; ++count) {
      if (v < 0) return v;
    }
    return count;
  }

 private:
  const char* p_;
  const char* end_;
  bool skipWs_;
};

/* Records a failure at the calling decoder's location: a status of a helper of the same
 * source or of another family gets this source's entry in the trace. 0 passes unrecorded. */
inline int traced(ASN1CTXT* pctxt, int stat, const char* module, int line) {
  return stat < 0 ? rtErrSetData(&pctxt->errInfo, stat, module, line) : stat;
}
#define XERDEC_TRACE(pctxt, stat) qn::xerdec::traced((pctxt), (stat), QN_MODULE, __LINE__)

/* Heap memory for n elements of T; null when there are none or no memory is left. */
template <typename T>
T* allocArray(ASN1CTXT* pctxt, size_t n) {
  if (n == 0 || n > SIZE_MAX / sizeof(T)) return nullptr;
  return static_cast<T*>(rtMemHeapAlloc(&pctxt->memHeap, n * sizeof(T)));
}

/* A copy of n bytes in the heap into out (null when n is 0); false when memory ran out. */
inline bool heapCopy(ASN1CTXT* pctxt, const ASN1OCTET* data, size_t n, ASN1OCTET*& out) {
  out = nullptr;
  if (n == 0) return true;
  out = allocArray<ASN1OCTET>(pctxt, n);
  if (!out) return false;
  memcpy(out, data, n);
  return true;
}

}  // namespace qn::xerdec

#endif
