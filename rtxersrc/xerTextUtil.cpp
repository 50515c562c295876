/* Element-name matching for the decode handlers and access to the decoders' input text. */
#include <quillon/rtUTF8.h>

#include "xerDecCommon.h"

using namespace qn::xerdec;

namespace {

/* Moves the byte position to p, a place inside the input text t. */
void advanceTo(ASN1CTXT* pctxt, const Text& t, const char* p) {
  pctxt->buffer.byteIndex += static_cast<ASN1UINT>(p - t.begin);
}

}  // namespace

QN_BEGIN_C

ASN1BOOL xerCmpText(const char* text, const char* token) {
  if (!text || !token) return ASN1FALSE;
  return strcmp(text, token) == 0 ? ASN1TRUE : ASN1FALSE;
}

int xerTextLength(const char* text) { return text ? static_cast<int>(strlen(text)) : 0; }

char* xerTextToCStr(ASN1CTXT* pctxt, const char* text) {
  if (!text) return nullptr;
  const size_t n = strlen(text) + 1;
  char* copy = static_cast<char*>(rtMemHeapAlloc(&pctxt->memHeap, n));
  if (copy) memcpy(copy, text, n);
  return copy;
}

int xerGetElemId(const char* name, const XERElemInfo* elemInfoArray, int count) {
  for (int i = 0; i < count; ++i) {
    if (xerCmpText(name, elemInfoArray[i].name)) return i;
  }
  return -1;
}

int xerGetSeqElemIdx(const char* name, const XERElemInfo* elemInfoArray, int count, int start) {
  for (int i = start < 0 ? 0 : start; i < count; ++i) {
    if (xerCmpText(name, elemInfoArray[i].name)) return i;
    if (!elemInfoArray[i].optional) return -1;
  }
  return -1;
}

/* The NUL goes into reserved room beyond the text rather than being counted, so the text's
 * length stays the buffer's size and an append that follows simply overwrites it. */
int xerFinalizeMemBuf(ASN1MemBuf* pMemBuf) {
  if (!pMemBuf || !pMemBuf->pctxt) return ASN_E_INVPARAM;
  ASN1CTXT* pctxt = pMemBuf->pctxt;
  int stat = rtMemBufPreAllocate(pMemBuf, 1);
  if (stat != 0) return LOG_RTERR(pctxt, stat);
  pMemBuf->buffer[pMemBuf->usedcnt] = 0;
  int length = 0;
  ASN1OCTET* text = rtMemBufGetData(pMemBuf, &length);
  return XERDEC_TRACE(pctxt, xerSetDecBufPtr(pctxt, reinterpret_cast<const char*>(text), length));
}

/* An empty input still gets a buffer to point at: given none, the context would make a fresh
 * dynamic one, which a decode input has no use for. */
int xerSetDecBufPtr(ASN1CTXT* pctxt, const char* text, int length) {
  static const char kEmpty[1] = {0};
  if (!text) {
    if (length > 0) return LOG_RTERR(pctxt, ASN_E_INVPARAM);
    text = kEmpty;
  }
  if (length < 0) length = static_cast<int>(strlen(text));
  ASN1OCTET* data = reinterpret_cast<ASN1OCTET*>(const_cast<char*>(text));
  return XERDEC_TRACE(pctxt, rtInitContextBuffer(pctxt, data, length));
}

int xerReadChar(ASN1CTXT* pctxt) {
  const Text t = inputText(pctxt);
  if (t.empty()) return ASN_E_ENDOFBUF;
  size_t index = 0;
  const int ch = rtUTF8DecodeChar(pctxt, t.begin, t.size(), &index);
  if (ch < 0) return LOG_RTERR(pctxt, ch);
  advanceTo(pctxt, t, t.begin + index);
  return ch;
}

int xerParseToken(ASN1CTXT* pctxt, const char** ppToken) {
  const Text t = inputText(pctxt);
  const char* p = t.begin;
  const Text token = nextToken(p, t.end);
  advanceTo(pctxt, t, p);
  if (ppToken) *ppToken = token.begin;
  return static_cast<int>(token.size());
}

QN_END_C
