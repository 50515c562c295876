/*
 * Private to the XML encoder: the stage that collects a writer's text before it goes to the
 * context's byte writer, and the layout pieces (indentation, tags, escaping) written into it.
 *
 * A writer stages a whole element (indentation, tags and content) and hands it to rtWriteBytes
 * in one piece when it is short, so that a primitive costs one call of the byte writer; long
 * content passes through in blocks of the stage's size.
 */
#ifndef QUILLON_XERENCCOMMON_H
#define QUILLON_XERENCCOMMON_H

#include <string.h>

#include <quillon/asn1xer.h>

#include "rtErrLog.h"

namespace qn::xer {

/* Records a failure at the exported function's location: a status passed up from the byte
 * writer or another family gains a trace entry, one detected by a helper of the same source
 * (which returns it unrecorded) gets its first. Each source thus appears once in the trace;
 * 0 and lengths pass as they are. */
inline int traced(ASN1CTXT* pctxt, int stat, const char* module, int line) {
  return stat < 0 ? rtErrSetData(&pctxt->errInfo, stat, module, line) : stat;
}
#define XER_TRACE(pctxt, stat) qn::xer::traced((pctxt), (stat), QN_MODULE, __LINE__)

/* Text on its way to the byte writer. The first failure of the writer sticks: later pieces
 * are dropped and finish() returns it (recorded by rtWriteBytes). */
class TextStage {
 public:
  static constexpr size_t kSize = 256;

  explicit TextStage(ASN1CTXT* pctxt) : pctxt_(pctxt) {}
  TextStage(const TextStage&) = delete;
  TextStage& operator=(const TextStage&) = delete;

  ASN1CTXT* ctxt() const { return pctxt_; }
  bool failed() const { return stat_ < 0; }
  /* Bytes that can be staged before the stage is handed on. */
  size_t space() const { return kSize - used_; }

  void put(char c) {
    if (used_ == kSize) drain();
    buf_[used_++] = c;
  }
  void put(const char* text, size_t n) {
    if (n <= kSize - used_) {
      memcpy(buf_ + used_, text, n);
      used_ += n;
      return;
    }
    putLong(text, n);
  }
  /* A null text puts nothing. */
  void put(const char* text) {
    if (text) put(text, strlen(text));
  }

  /* Room for at most kSize bytes written in place: room(n) makes n bytes free and returns
   * where they start; commit(k) takes k of them. */
  char* room(size_t n) {
    if (kSize - used_ < n) drain();
    return buf_ + used_;
  }
  void commit(size_t n) { used_ += n; }

  /* Hands what is staged to the byte writer; 0 or the first failure. */
  int finish() {
    drain();
    return stat_;
  }

 private:
  void drain() {
    if (used_ && stat_ == 0)
      stat_ = rtWriteBytes(pctxt_, reinterpret_cast<const ASN1OCTET*>(buf_), used_);
    used_ = 0;
  }
  void putLong(const char* text, size_t n);

  ASN1CTXT* pctxt_;
  int stat_ = 0;
  size_t used_ = 0;
  char buf_[kSize];
};

inline void setState(ASN1CTXT* pctxt, ASN1OCTET state) { pctxt->xmlState = state; }

inline bool hasName(const char* name) { return name && *name; }

/* The name a value writer gives its element: the caller's, or the kind's default. */
inline const char* nameOr(const char* elemName, const char* defaultName) {
  return elemName ? elemName : defaultName;
}

/* A line feed and three blanks per level, unless the document is canonical. */
void putIndent(TextStage& s);
/* Indentation and "<name attributes>", state XERSTARTTAG; nothing without a name. */
void putStartTag(TextStage& s, const char* name, const char* attributes);
/* "</name>" (indented after element content), state XERENDTAG; nothing without a name. */
void putEndTag(TextStage& s, const char* name);
/* "<name attributes/>", state XERSTARTTAG; nothing without a name. */
void putEmptyElement(TextStage& s, const char* name, const char* attributes);
/* A self-closing element standing as a whole element: indented, state XERENDTAG after. */
void putWholeEmptyElement(TextStage& s, const char* name, const char* attributes);
/* Character content escaped as xerPutCharStr does. */
void putEscaped(TextStage& s, const char* chars, size_t n);
/* One character as xerEncChar writes it. */
void putChar(TextStage& s, ASN1UINT character);

/* Runs a content writer between a start and an end tag and stages the whole element; the
 * element's status, traced at the writer's location by the caller. */
template <typename Content>
int writeElement(ASN1CTXT* pctxt, const char* name, const char* attributes, Content content) {
  TextStage s(pctxt);
  putStartTag(s, name, attributes);
  setState(pctxt, XERDATA);
  content(s);
  putEndTag(s, name);
  return s.finish();
}

}  // namespace qn::xer

#endif
