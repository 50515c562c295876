/* The XML encoder's document and layout: buffer, declaration, tags, indentation, raw text and
 * escaped text. */
#include <quillon/rtMemHeap.h>
#include <quillon/rtStream.h>

#include "xerEncCommon.h"

namespace {

const char kDeclaration[] = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>";

const char kBlanks[] = "                                                                ";

/* Replacement text of each byte that is not written as itself in character content. */
struct Escape {
  const char* text;
  unsigned char length;
};

struct EscapeTable {
  Escape entry[256];
  EscapeTable() : entry() {
    set('&', "&amp;");
    set('<', "&lt;");
    set('>', "&gt;");
    set('"', "&quot;");
    set('\'', "&apos;");
    /* Control characters keep a readable C-style escape of their own; these are not XML
     * character references and a decoder keeps them as two characters. */
    set('\b', "\\b");
    set('\t', "\\t");
    set('\n', "\\n");
    set('\f', "\\f");
    set('\r', "\\r");
  }
  void set(char c, const char* text) {
    entry[static_cast<unsigned char>(c)] = {text, static_cast<unsigned char>(strlen(text))};
  }
};

const EscapeTable kEscapes;

bool contextReady(const ASN1CTXT* pctxt) { return pctxt && pctxt->key == ASN1_CTXT_KEY; }

/* A stream owns the buffer it stages in; only the encoder's own dynamic buffer is dropped. */
void releaseDynamicBuffer(ASN1CTXT* pctxt) {
  ASN1BUFFER& b = pctxt->buffer;
  if (pctxt->pStream || !b.dynamic || !b.data) return;
  rtMemHeapFreePtr(&pctxt->msgMemHeap, b.data);
  b.data = nullptr;
  b.size = 0;
  b.byteIndex = 0;
}

void putTagBody(qn::xer::TextStage& s, const char* name, const char* attributes) {
  s.put(name);
  if (attributes) {
    s.put(' ');
    s.put(attributes);
  }
}

int writeRaw(ASN1CTXT* pctxt, const char* text, size_t n) {
  return rtWriteBytes(pctxt, reinterpret_cast<const ASN1OCTET*>(text), n);
}

}  // namespace

namespace qn::xer {

void TextStage::putLong(const char* text, size_t n) {
  drain();
  if (n <= kSize) {
    memcpy(buf_, text, n);
    used_ = n;
  } else if (stat_ == 0) {
    stat_ = rtWriteBytes(pctxt_, reinterpret_cast<const ASN1OCTET*>(text), n);
  }
}

void putIndent(TextStage& s) {
  ASN1CTXT* pctxt = s.ctxt();
  if (pctxt->flags & ASN1CANXER) return;
  s.put('\n');
  for (size_t n = 3u * pctxt->xmlLevel; n > 0;) {
    const size_t k = n < sizeof kBlanks - 1 ? n : sizeof kBlanks - 1;
    s.put(kBlanks, k);
    n -= k;
  }
}

void putStartTag(TextStage& s, const char* name, const char* attributes) {
  if (!hasName(name)) return;
  putIndent(s);
  setState(s.ctxt(), XERSTARTTAG);
  s.put('<');
  putTagBody(s, name, attributes);
  s.put('>');
}

void putEndTag(TextStage& s, const char* name) {
  if (!hasName(name)) return;
  if (s.ctxt()->xmlState == XERENDTAG) putIndent(s);
  setState(s.ctxt(), XERENDTAG);
  s.put("</", 2);
  s.put(name);
  s.put('>');
}

void putEmptyElement(TextStage& s, const char* name, const char* attributes) {
  if (!hasName(name)) return;
  setState(s.ctxt(), XERSTARTTAG);
  s.put('<');
  putTagBody(s, name, attributes);
  s.put("/>", 2);
}

void putWholeEmptyElement(TextStage& s, const char* name, const char* attributes) {
  if (!hasName(name)) return;
  putIndent(s);
  putEmptyElement(s, name, attributes);
  setState(s.ctxt(), XERENDTAG);
}

/* Runs of bytes that need no escape are staged in one piece. */
void putEscaped(TextStage& s, const char* chars, size_t n) {
  size_t run = 0;
  for (size_t i = 0; i < n; ++i) {
    const Escape& e = kEscapes.entry[static_cast<unsigned char>(chars[i])];
    if (!e.text) continue;
    s.put(chars + run, i - run);
    s.put(e.text, e.length);
    run = i + 1;
  }
  s.put(chars + run, n - run);
}

void putChar(TextStage& s, ASN1UINT character) {
  if (character < 0x80) {
    const char c = static_cast<char>(character);
    putEscaped(s, &c, 1);
    return;
  }
  static const ASN1UINT kLimits[] = {0x800, 0x10000, 0x200000, 0x4000000};
  static const unsigned char kLeads[] = {0xC0, 0xE0, 0xF0, 0xF8, 0xFC};
  size_t n = 2;
  while (n < 6 && character >= kLimits[n - 2]) ++n;
  char* out = s.room(n);
  for (size_t i = n - 1; i > 0; --i) {
    out[i] = static_cast<char>(0x80 | (character & 0x3F));
    character >>= 6;
  }
  out[0] = static_cast<char>(kLeads[n - 2] | character);
  s.commit(n);
}

}  // namespace qn::xer

using namespace qn::xer;

QN_BEGIN_C

int xerSetEncBufPtr(ASN1CTXT* pctxt, ASN1OCTET* buf, int size, ASN1BOOL canonical) {
  if (!contextReady(pctxt)) return ASN_E_NOTINIT;
  releaseDynamicBuffer(pctxt);
  int stat = rtInitContextBuffer(pctxt, buf, size);
  if (stat < 0) return XER_TRACE(pctxt, stat);
  if (pctxt->buffer.size > 0) pctxt->buffer.data[0] = 0;
  pctxt->xmlState = XERSTART;
  pctxt->xmlLevel = 0;
  if (canonical) rtCtxtSetFlag(pctxt, ASN1CANXER);
  return 0;
}

ASN1OCTET* xerGetMsgPtr(ASN1CTXT* pctxt) { return pctxt->buffer.data; }

int xerGetMsgLen(ASN1CTXT* pctxt) { return static_cast<int>(pctxt->buffer.byteIndex); }

int xerEncStartDocument(ASN1CTXT* pctxt) {
  pctxt->xmlState = XERSTART;
  pctxt->xmlLevel = 0;
  return XER_TRACE(pctxt, writeRaw(pctxt, kDeclaration, sizeof kDeclaration - 1));
}

int xerEncEndDocument(ASN1CTXT* pctxt) {
  if (pctxt->pStream) return XER_TRACE(pctxt, rtStreamFlush(pctxt));
  if (pctxt->xmlLevel != 0 || pctxt->xmlState != XERENDTAG)
    return LOG_RTERR(pctxt, ASN_E_XMLSTATE);
  /* The terminator makes the text usable as a C string; the length does not count it. */
  int stat = writeRaw(pctxt, "", 1);
  if (stat < 0) return XER_TRACE(pctxt, stat);
  pctxt->buffer.byteIndex--;
  return 0;
}

int xerEncStartElement(ASN1CTXT* pctxt, const char* elemName, const char* attributes) {
  TextStage s(pctxt);
  putStartTag(s, elemName, attributes);
  return XER_TRACE(pctxt, s.finish());
}

int xerEncEndElement(ASN1CTXT* pctxt, const char* elemName) {
  TextStage s(pctxt);
  putEndTag(s, elemName);
  return XER_TRACE(pctxt, s.finish());
}

int xerEncEmptyElement(ASN1CTXT* pctxt, const char* elemName, const char* attributes) {
  TextStage s(pctxt);
  putEmptyElement(s, elemName, attributes);
  return XER_TRACE(pctxt, s.finish());
}

int xerEncIndent(ASN1CTXT* pctxt) {
  TextStage s(pctxt);
  putIndent(s);
  return XER_TRACE(pctxt, s.finish());
}

int xerEncNewLine(ASN1CTXT* pctxt) { return XER_TRACE(pctxt, writeRaw(pctxt, "\n", 1)); }

int xerCopyText(ASN1CTXT* pctxt, const char* text) {
  if (!text || !*text) return 0;
  return XER_TRACE(pctxt, writeRaw(pctxt, text, strlen(text)));
}

int xerCopyText2(ASN1CTXT* pctxt, const char* text1, const char* text2) {
  int stat = xerCopyText(pctxt, text1);
  if (stat < 0) return stat;
  return xerCopyText(pctxt, text2);
}

int xerEncXmlCharData(ASN1CTXT* pctxt, const char* chars, int length) {
  if (!chars || length < 1) return 0;
  return XER_TRACE(pctxt, writeRaw(pctxt, chars, static_cast<size_t>(length)));
}

int xerPutCharStr(ASN1CTXT* pctxt, const char* chars, int length) {
  if (length <= 0) return 0;
  if (!chars) return LOG_RTERR(pctxt, ASN_E_INVPARAM);
  TextStage s(pctxt);
  putEscaped(s, chars, static_cast<size_t>(length));
  return XER_TRACE(pctxt, s.finish());
}

int xerEncChar(ASN1CTXT* pctxt, ASN1UINT character) {
  TextStage s(pctxt);
  putChar(s, character);
  return XER_TRACE(pctxt, s.finish());
}

QN_END_C
