// Values as indented "name = value" lines: the formatting core that printing and comparison
// share, the file sink, and the printers.

#include <quillon/rtPrint.h>

#include <quillon/rtContext.h>
#include <quillon/rtReal.h>
#include <quillon/rtUTF8.h>
#include <quillon/rtUtil.h>
#include <quillon/rtValueText.h>

#include <locale.h>
#include <stdlib.h>
#include <string.h>

#include "rtPrintCore.h"

namespace qnprint {

namespace {

constexpr int kIndentWidth = 2;
// Deeper levels print at this one: a runaway level must not turn into megabytes of blanks.
constexpr int kMaxLevel = 32;
const char kBlanks[] = "                                                                ";
static_assert(sizeof kBlanks - 1 == kIndentWidth * kMaxLevel, "one blank per indent column");

const char kHexDigits[] = "0123456789ABCDEF";
// Significant decimal digits that tell every double apart.
constexpr int kRealDigits = 17;

int clampLevel(int level) { return level < 0 ? 0 : level > kMaxLevel ? kMaxLevel : level; }

// The text converters of rtValueText.h and rtUTF8.h record their failures in a context.
// Printing has none and sizes its buffers so that the converters cannot fail for want of
// room; the record is there for them all the same, and what lands in it is dropped.
class ScratchContext {
 public:
  ScratchContext() = default;
  ScratchContext(const ScratchContext&) = delete;
  ScratchContext& operator=(const ScratchContext&) = delete;
  ~ScratchContext() { rtErrReset(&ctxt_.errInfo); }
  ASN1CTXT* get() { return &ctxt_; }

 private:
  ASN1CTXT ctxt_{};
};

void writeHexDigits(Output& out, ASN1UINT value, int ndigits) {
  char text[8];
  for (int i = ndigits; i-- > 0; value >>= 4) text[i] = kHexDigits[value & 0xF];
  out.write(text, static_cast<size_t>(ndigits));
}

void writeEscape(Output& out, const char* prefix, ASN1UINT value, int ndigits) {
  out.write(prefix);
  writeHexDigits(out, value, ndigits);
}

void writeInvalid(Output& out, int status) {
  out.write(status == ASN_E_INVOBJID ? "<invalid object identifier>" : "<invalid value>");
  out.invalid(status);
}

// C0, DEL and C1: a terminal acts on them instead of showing them, and a value that a
// certificate carries must not be able to move the cursor or start an escape sequence.
bool isControl(ASN1UINT cp) { return cp < 0x20 || (cp >= 0x7F && cp < 0xA0); }

void renderCodePoint(Output& out, ASN1UINT cp) {
  if (cp == '"' || cp == '\\') {
    out.put('\\');
    out.put(static_cast<char>(cp));
    return;
  }
  ASN1OCTET utf8[ASN_K_UTF8MAXCHARSIZE];
  const int n = isControl(cp) ? 0 : rtUTF8EncodeChar(cp, utf8);
  if (n > 0) {
    out.write(reinterpret_cast<const char*>(utf8), static_cast<size_t>(n));
  } else if (cp <= 0xFFFF) {
    writeEscape(out, "\\u", cp, 4);
  } else {
    writeEscape(out, "\\U", cp, 8);
  }
}

template <typename Unit>
void renderCodeUnits(Output& out, ASN1UINT nchars, const Unit* data) {
  if (!hasData(nchars, data)) return writeInvalid(out, ASN_E_INVPARAM);
  out.put('"');
  for (ASN1UINT i = 0; i < nchars; ++i) renderCodePoint(out, data[i]);
  out.put('"');
}

// Characters an arc of arcBytes bytes can take in dotted text, its dot included.
constexpr size_t arcTextSize(size_t arcBytes) { return arcBytes == 8 ? 21 : 11; }

template <typename Oid, typename ToText>
void renderArcs(Output& out, const Oid* value, ToText toText) {
  if (value == nullptr) return out.write("<null>");
  ScratchContext scratch;
  char text[ASN_K_MAXSUBIDS * arcTextSize(sizeof value->subid[0])];
  const int n = toText(scratch.get(), value, text, sizeof text);
  if (n < 0) return writeInvalid(out, n);
  out.write(text, static_cast<size_t>(n));
}

// %g writes the locale's decimal point; the printed value must not depend on the program's
// locale, as a dump read by another program would then parse differently.
void useDotAsDecimalPoint(char* text) {
  const char* point = localeconv()->decimal_point;
  if (point == nullptr || strcmp(point, ".") == 0) return;
  char* at = strstr(text, point);
  if (at == nullptr) return;
  const size_t pointLen = strlen(point);
  *at = '.';
  memmove(at + 1, at + pointLen, strlen(at + pointLen) + 1);
}

// The fewest significant digits that read back to the same double (17 always do). %g turns
// to an exponent as soon as the exponent reaches the precision, which would print 100 as
// 1e+02; below 17 digits the positional form is kept.
void formatShortestReal(ASN1REAL value, char* text, size_t size) {
  for (int precision = 1; precision <= kRealDigits; ++precision) {
    snprintf(text, size, "%.*g", precision, value);
    if (strtod(text, nullptr) == value) break;
  }
  const char* e = strchr(text, 'e');
  const int exponent = e ? atoi(e + 1) : -1;
  if (exponent >= 0 && exponent < kRealDigits) snprintf(text, size, "%.*g", exponent + 1, value);
  useDotAsDecimalPoint(text);
}

void renderCount(Output& out, ASN1UINT count, const char* unit) {
  out.put('(');
  renderUnsigned(out, count);
  out.put(' ');
  out.write(unit);
  if (count != 1) out.put('s');
  out.put(')');
}

// One continuation line per 16 octets: "30 82 01 0A ...". The loops over lines advance by
// what they wrote, so that a count near 4 GiB cannot wrap the position and loop forever.
void renderHexLines(Output& out, int level, const ASN1OCTET* data, ASN1UINT numocts,
                    ASN1OCTET lastMask) {
  for (ASN1UINT offset = 0; offset < numocts;) {
    const ASN1UINT count = numocts - offset < kInlineOctets ? numocts - offset : kInlineOctets;
    char line[3 * kInlineOctets];
    for (ASN1UINT i = 0; i < count; ++i) {
      const ASN1UINT at = offset + i;
      const ASN1OCTET octet = data[at] & (at + 1 == numocts ? lastMask : 0xFF);
      line[3 * i] = kHexDigits[octet >> 4];
      line[3 * i + 1] = kHexDigits[octet & 0xF];
      line[3 * i + 2] = ' ';
    }
    out.put('\n');
    out.indent(level);
    out.write(line, 3 * count - 1);
    offset += count;
  }
}

char bitChar(const ASN1OCTET* data, ASN1UINT bit) {
  return (data[bit / 8] >> (7 - bit % 8)) & 1 ? '1' : '0';
}

void renderBinaryDigits(Output& out, const ASN1OCTET* data, ASN1UINT from, ASN1UINT to,
                        bool grouped) {
  for (ASN1UINT bit = from; bit < to; ++bit) {
    if (grouped && bit != from && bit % 8 == 0) out.put(' ');
    out.put(bitChar(data, bit));
  }
}

// One continuation line per 64 bits, in groups of eight.
void renderBinaryLines(Output& out, int level, const ASN1OCTET* data, ASN1UINT numbits) {
  for (ASN1UINT from = 0; from < numbits;) {
    const ASN1UINT to = numbits - from < kInlineBinaryBits ? numbits : from + kInlineBinaryBits;
    out.put('\n');
    out.indent(level);
    renderBinaryDigits(out, data, from, to, true);
    from = to;
  }
}

// Indentation, then what render writes, then the newline; one call's text.
template <typename Render>
int printLine(ASN1PrintSink* sink, int level, Render render) {
  ASN1PrintSink local;
  Output out(sinkOrStdout(sink, &local));
  level = clampLevel(level);
  out.indent(level);
  render(out, level);
  out.put('\n');
  return out.finish();
}

// "name = value", the value rendered with the line's level for its continuation lines.
template <typename Render>
int printValue(ASN1PrintSink* sink, int level, const char* name, Render render) {
  return printLine(sink, level, [&](Output& out, int lineLevel) {
    if (name != nullptr) {
      out.write(name);
      out.write(" = ");
    }
    render(out, lineLevel);
  });
}

}  // namespace

// ---- Output ------------------------------------------------------------------------------

Output::Output(ASN1PrintSink* sink)
    : sink_(sink), start_(sink->length), status_(sink->full ? ASN_E_STROVFLW : 0) {}

void Output::write(const char* text, size_t n) {
  if (status_ == ASN_E_STROVFLW || status_ == ASN_E_FILEWRITE) return;
  if (sink_->fp != nullptr) {
    if (fwrite(text, 1, n, sink_->fp) != n) fail(ASN_E_FILEWRITE);
  } else if (sink_->buf != nullptr) {
    writeToString(text, n);
  }
}

// The NUL always fits: length stays below bufsize.
void Output::writeToString(const char* text, size_t n) {
  if (n >= sink_->bufsize - sink_->length) return fail(ASN_E_STROVFLW);
  memcpy(sink_->buf + sink_->length, text, n);
  sink_->length += n;
  sink_->buf[sink_->length] = '\0';
}

void Output::indent(int level) {
  write(kBlanks, static_cast<size_t>(kIndentWidth * clampLevel(level)));
}

void Output::invalid(int status) {
  if (status_ == 0) status_ = status;
}

// A failed write outranks a faulty value: the caller must learn that text is missing.
void Output::fail(int status) { status_ = status; }

int Output::finish() {
  if (status_ == ASN_E_STROVFLW && sink_->buf != nullptr) {
    sink_->length = start_;
    sink_->buf[start_] = '\0';
    sink_->full = ASN1TRUE;
  }
  if (sink_->status == 0) sink_->status = status_;
  return status_;
}

ASN1PrintSink* sinkOrStdout(ASN1PrintSink* sink, ASN1PrintSink* local) {
  if (sink != nullptr) return sink;
  rtPrintSinkInitFile(local, stdout);
  return local;
}

// ---- Renderers ---------------------------------------------------------------------------

void renderBoolean(Output& out, ASN1BOOL value) { out.write(rtBoolToString(value)); }

void renderSigned(Output& out, ASN1INT64 value) {
  ScratchContext scratch;
  char text[24];
  const int n = rtInt64ToString(scratch.get(), value, text, sizeof text);
  if (n > 0) out.write(text, static_cast<size_t>(n));
}

void renderUnsigned(Output& out, ASN1UINT64 value) {
  ScratchContext scratch;
  char text[24];
  const int n = rtUInt64ToString(scratch.get(), value, text, sizeof text);
  if (n > 0) out.write(text, static_cast<size_t>(n));
}

void renderReal(Output& out, ASN1REAL value) {
  if (rtIsNaN(value)) return out.write("NOT-A-NUMBER");
  if (rtIsPlusInfinity(value)) return out.write("PLUS-INFINITY");
  if (rtIsMinusInfinity(value)) return out.write("MINUS-INFINITY");
  if (rtIsMinusZero(value)) return out.write("-0");
  char text[40];
  formatShortestReal(value, text, sizeof text);
  out.write(text);
}

void renderText(Output& out, const char* value) { out.write(value ? value : "<null>"); }

// Valid UTF-8 passes through; a byte that starts no valid sequence shows as \xHH, so that
// Latin-1 or broken text stays visible and the printed line stays UTF-8.
void renderCharStr(Output& out, const char* value) {
  if (value == nullptr) return out.write("<null>");
  ScratchContext scratch;
  const size_t nbytes = strlen(value);
  out.put('"');
  for (size_t i = 0; i < nbytes;) {
    const ASN1OCTET byte = static_cast<ASN1OCTET>(value[i]);
    size_t next = i;
    const int cp = byte < 0x80 ? byte : rtUTF8DecodeChar(scratch.get(), value, nbytes, &next);
    if (cp < 0) {
      writeEscape(out, "\\x", byte, 2);
    } else {
      renderCodePoint(out, static_cast<ASN1UINT>(cp));
    }
    i = next > i ? next : i + 1;
  }
  out.put('"');
}

void render16BitCharStr(Output& out, const Asn116BitCharString* value) {
  if (value == nullptr) return out.write("<null>");
  renderCodeUnits(out, value->nchars, value->data);
}

void render32BitCharStr(Output& out, const Asn132BitCharString* value) {
  if (value == nullptr) return out.write("<null>");
  renderCodeUnits(out, value->nchars, value->data);
}

void renderOID(Output& out, const ASN1OBJID* value) { renderArcs(out, value, rtOidToStr); }

void renderOID64(Output& out, const ASN1OID64* value) { renderArcs(out, value, rtOid64ToStr); }

void renderTag(Output& out, ASN1TagType tag) {
  char text[32];
  out.write(rtTagToString(tag, text, sizeof text));
  if (tag & TM_CONS) out.write(" constructed");
}

void renderHexInline(Output& out, const ASN1OCTET* data, ASN1UINT numocts, ASN1OCTET lastMask) {
  out.put('\'');
  for (ASN1UINT i = 0; i < numocts; ++i) {
    const ASN1OCTET octet = data[i] & (i + 1 == numocts ? lastMask : 0xFF);
    writeHexDigits(out, octet, 2);
  }
  out.write("'H");
}

void renderBitsHexInline(Output& out, ASN1UINT numbits, const ASN1OCTET* data) {
  if (!hasData(numbits, data)) return writeInvalid(out, ASN_E_INVPARAM);
  renderHexInline(out, data, octetsOfBits(numbits), lastOctetMask(numbits));
  out.put(' ');
  renderCount(out, numbits, "bit");
}

void renderOctets(Output& out, int level, ASN1UINT numocts, const ASN1OCTET* data) {
  if (!hasData(numocts, data)) return writeInvalid(out, ASN_E_INVPARAM);
  if (numocts <= kInlineOctets) return renderHexInline(out, data, numocts, 0xFF);
  renderCount(out, numocts, "octet");
  renderHexLines(out, level + 1, data, numocts, 0xFF);
}

void renderBitsHex(Output& out, int level, ASN1UINT numbits, const ASN1OCTET* data) {
  if (numbits <= kInlineHexBits) return renderBitsHexInline(out, numbits, data);
  if (!hasData(numbits, data)) return writeInvalid(out, ASN_E_INVPARAM);
  renderCount(out, numbits, "bit");
  renderHexLines(out, level + 1, data, octetsOfBits(numbits), lastOctetMask(numbits));
}

void renderBitsBinary(Output& out, int level, ASN1UINT numbits, const ASN1OCTET* data) {
  if (!hasData(numbits, data)) return writeInvalid(out, ASN_E_INVPARAM);
  if (numbits <= kInlineBinaryBits) {
    out.put('\'');
    renderBinaryDigits(out, data, 0, numbits, false);
    out.write("'B");
    return;
  }
  renderCount(out, numbits, "bit");
  renderBinaryLines(out, level + 1, data, numbits);
}

}  // namespace qnprint

using qnprint::Output;

QN_BEGIN_C

void rtPrintSinkInitFile(ASN1PrintSink* pSink, FILE* fp) {
  *pSink = ASN1PrintSink{};
  pSink->fp = fp;
}

int rtPrintBoolean(ASN1PrintSink* pSink, int level, const char* name, ASN1BOOL value) {
  return qnprint::printValue(pSink, level, name,
                             [=](Output& out, int) { qnprint::renderBoolean(out, value); });
}

int rtPrintInteger(ASN1PrintSink* pSink, int level, const char* name, ASN1INT value) {
  return qnprint::printValue(pSink, level, name,
                             [=](Output& out, int) { qnprint::renderSigned(out, value); });
}

int rtPrintUnsigned(ASN1PrintSink* pSink, int level, const char* name, ASN1UINT value) {
  return qnprint::printValue(pSink, level, name,
                             [=](Output& out, int) { qnprint::renderUnsigned(out, value); });
}

int rtPrintInt64(ASN1PrintSink* pSink, int level, const char* name, ASN1INT64 value) {
  return qnprint::printValue(pSink, level, name,
                             [=](Output& out, int) { qnprint::renderSigned(out, value); });
}

int rtPrintUInt64(ASN1PrintSink* pSink, int level, const char* name, ASN1UINT64 value) {
  return qnprint::printValue(pSink, level, name,
                             [=](Output& out, int) { qnprint::renderUnsigned(out, value); });
}

int rtPrintEnum(ASN1PrintSink* pSink, int level, const char* name, ASN1ENUM value,
                const char* identifier) {
  return qnprint::printValue(pSink, level, name, [=](Output& out, int) {
    if (identifier == nullptr) return qnprint::renderSigned(out, value);
    out.write(identifier);
    out.put('(');
    qnprint::renderSigned(out, value);
    out.put(')');
  });
}

int rtPrintReal(ASN1PrintSink* pSink, int level, const char* name, ASN1REAL value) {
  return qnprint::printValue(pSink, level, name,
                             [=](Output& out, int) { qnprint::renderReal(out, value); });
}

int rtPrintBigInt(ASN1PrintSink* pSink, int level, const char* name, const char* value) {
  return qnprint::printValue(pSink, level, name,
                             [=](Output& out, int) { qnprint::renderText(out, value); });
}

int rtPrintBitStr(ASN1PrintSink* pSink, int level, const char* name, ASN1UINT numbits,
                  const ASN1OCTET* data) {
  return qnprint::printValue(pSink, level, name, [=](Output& out, int lineLevel) {
    qnprint::renderBitsHex(out, lineLevel, numbits, data);
  });
}

int rtPrintBitStrBin(ASN1PrintSink* pSink, int level, const char* name, ASN1UINT numbits,
                     const ASN1OCTET* data) {
  return qnprint::printValue(pSink, level, name, [=](Output& out, int lineLevel) {
    qnprint::renderBitsBinary(out, lineLevel, numbits, data);
  });
}

int rtPrintOctStr(ASN1PrintSink* pSink, int level, const char* name, ASN1UINT numocts,
                  const ASN1OCTET* data) {
  return qnprint::printValue(pSink, level, name, [=](Output& out, int lineLevel) {
    qnprint::renderOctets(out, lineLevel, numocts, data);
  });
}

int rtPrintCharStr(ASN1PrintSink* pSink, int level, const char* name, const char* value) {
  return qnprint::printValue(pSink, level, name,
                             [=](Output& out, int) { qnprint::renderCharStr(out, value); });
}

int rtPrint16BitCharStr(ASN1PrintSink* pSink, int level, const char* name,
                        const Asn116BitCharString* value) {
  return qnprint::printValue(pSink, level, name,
                             [=](Output& out, int) { qnprint::render16BitCharStr(out, value); });
}

int rtPrint32BitCharStr(ASN1PrintSink* pSink, int level, const char* name,
                        const Asn132BitCharString* value) {
  return qnprint::printValue(pSink, level, name,
                             [=](Output& out, int) { qnprint::render32BitCharStr(out, value); });
}

int rtPrintOID(ASN1PrintSink* pSink, int level, const char* name, const ASN1OBJID* value) {
  return qnprint::printValue(pSink, level, name,
                             [=](Output& out, int) { qnprint::renderOID(out, value); });
}

int rtPrintOID64(ASN1PrintSink* pSink, int level, const char* name, const ASN1OID64* value) {
  return qnprint::printValue(pSink, level, name,
                             [=](Output& out, int) { qnprint::renderOID64(out, value); });
}

int rtPrintNull(ASN1PrintSink* pSink, int level, const char* name) {
  return qnprint::printValue(pSink, level, name, [](Output& out, int) { out.write("NULL"); });
}

int rtPrintOpenType(ASN1PrintSink* pSink, int level, const char* name,
                    const ASN1TOpenType* value) {
  return qnprint::printValue(pSink, level, name, [=](Output& out, int lineLevel) {
    if (value == nullptr) return out.write("<null>");
    qnprint::renderOctets(out, lineLevel, value->numocts, value->data);
  });
}

int rtPrintTag(ASN1PrintSink* pSink, int level, const char* name, ASN1TagType tag) {
  return qnprint::printValue(pSink, level, name,
                             [=](Output& out, int) { qnprint::renderTag(out, tag); });
}

int rtPrintOpenBrace(ASN1PrintSink* pSink, int level, const char* name) {
  return qnprint::printLine(pSink, level, [=](Output& out, int) {
    if (name != nullptr) {
      out.write(name);
      out.put(' ');
    }
    out.put('{');
  });
}

int rtPrintCloseBrace(ASN1PrintSink* pSink, int level) {
  return qnprint::printLine(pSink, level, [](Output& out, int) { out.put('}'); });
}

QN_END_C
