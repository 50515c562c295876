/* Private to the runtime: the formatting core shared by the printers and the comparisons.
 * Renderers write a value's text to an Output; the sinks decide where it goes. */
#ifndef QUILLON_RTPRINTCORE_H
#define QUILLON_RTPRINTCORE_H

#include <quillon/rtPrint.h>

#include <string.h>

namespace qnprint {

/* Values up to these sizes stay on their name's line; longer ones continue on lines of their
 * own, so that a signature does not become one line of a thousand characters. */
constexpr ASN1UINT kInlineOctets = 16;
constexpr ASN1UINT kInlineHexBits = 8 * kInlineOctets;
constexpr ASN1UINT kInlineBinaryBits = 64;

/* One call's text on its way to a sink. A string sink receives it whole or not at all: the
 * text is written as it comes and taken back by finish() if it did not all fit. */
class Output {
 public:
  explicit Output(ASN1PrintSink* sink);
  Output(const Output&) = delete;
  Output& operator=(const Output&) = delete;

  void write(const char* text, size_t n);
  void write(const char* text) { write(text, strlen(text)); }
  void put(char c) { write(&c, 1); }
  void indent(int level);
  /* Notes a fault of the value being printed; the line is still completed. */
  void invalid(int status);
  /* Settles the call: rolls a string sink back when the text did not fit, records the first
   * failure in the sink and returns this call's status. */
  int finish();

 private:
  void writeToString(const char* text, size_t n);
  void fail(int status);

  ASN1PrintSink* sink_;
  size_t start_;
  int status_;
};

/* The sink, or when it is null, standard output through local. */
ASN1PrintSink* sinkOrStdout(ASN1PrintSink* sink, ASN1PrintSink* local);

/* Inline value texts, as rtPrint.h describes them. */
void renderBoolean(Output& out, ASN1BOOL value);
void renderSigned(Output& out, ASN1INT64 value);
void renderUnsigned(Output& out, ASN1UINT64 value);
void renderReal(Output& out, ASN1REAL value);
void renderText(Output& out, const char* value);  /* as it stands, or <null> */
void renderCharStr(Output& out, const char* value);
void render16BitCharStr(Output& out, const Asn116BitCharString* value);
void render32BitCharStr(Output& out, const Asn132BitCharString* value);
void renderOID(Output& out, const ASN1OBJID* value);
void renderOID64(Output& out, const ASN1OID64* value);
void renderTag(Output& out, ASN1TagType tag);
/* 'HEX'H of numocts octets, the last one masked with lastMask. */
void renderHexInline(Output& out, const ASN1OCTET* data, ASN1UINT numocts, ASN1OCTET lastMask);
void renderBitsHexInline(Output& out, ASN1UINT numbits, const ASN1OCTET* data);

/* Whole values, inline when short and on continuation lines at level + 1 when long; the last
 * line is left open for the caller's newline. */
void renderOctets(Output& out, int level, ASN1UINT numocts, const ASN1OCTET* data);
void renderBitsHex(Output& out, int level, ASN1UINT numbits, const ASN1OCTET* data);
void renderBitsBinary(Output& out, int level, ASN1UINT numbits, const ASN1OCTET* data);

/* A count with a non-null data pointer, or none at all. */
inline bool hasData(ASN1UINT count, const void* data) { return count == 0 || data != nullptr; }
/* Octets that hold numbits bits. */
inline ASN1UINT octetsOfBits(ASN1UINT numbits) { return numbits / 8 + (numbits % 8 != 0); }
/* The bits of the last octet that belong to a string of numbits bits. */
inline ASN1OCTET lastOctetMask(ASN1UINT numbits) {
  return numbits % 8 == 0 ? 0xFF : static_cast<ASN1OCTET>(0xFF << (8 - numbits % 8));
}

}  // namespace qnprint

#endif
