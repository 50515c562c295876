// Comparison of two values with a one-line report of the difference, in the value forms of the
// printers.

#include <quillon/rtCompare.h>

#include <quillon/rtBigInt.h>
#include <quillon/rtContext.h>
#include <quillon/rtPrint.h>

#include <math.h>
#include <string.h>

#include "rtPrintCore.h"

namespace {

using qnprint::Output;

ASN1PrintSink toString(char* errBuf, size_t errBufSize) {
  ASN1PrintSink sink;
  // A buffer that cannot take text leaves a sink that discards it: the comparison still runs.
  rtPrintSinkInitString(&sink, errBuf, errBufSize);
  return sink;
}

ASN1PrintSink toStdout() {
  ASN1PrintSink sink;
  rtPrintSinkInitFile(&sink, stdout);
  return sink;
}

// "name: " and what render writes, as one line; the comparison's result is FALSE.
template <typename Render>
ASN1BOOL reportDifference(ASN1PrintSink report, const char* name, Render render) {
  Output out(&report);
  if (name != nullptr) {
    out.write(name);
    out.write(": ");
  }
  render(out);
  out.put('\n');
  out.finish();
  return ASN1FALSE;
}

template <typename T, typename Render>
ASN1BOOL compareValues(ASN1PrintSink report, const char* name, const T& value,
                       const T& compValue, bool equal, Render render) {
  if (equal) return ASN1TRUE;
  return reportDifference(report, name, [&](Output& out) {
    render(out, value);
    out.write(" != ");
    render(out, compValue);
  });
}

// Records given by pointer: two null pointers are equal, one null pointer differs; the
// renderers show a null pointer as <null>.
template <typename T, typename Same, typename Render>
ASN1BOOL comparePointers(ASN1PrintSink report, const char* name, const T* value,
                         const T* compValue, Same same, Render render) {
  const bool equal = value == nullptr || compValue == nullptr ? value == compValue
                                                              : same(value, compValue);
  return compareValues(report, name, value, compValue, equal, render);
}

ASN1BOOL compareSigned(ASN1PrintSink report, const char* name, ASN1INT64 value,
                       ASN1INT64 compValue) {
  return compareValues(report, name, value, compValue, value == compValue, qnprint::renderSigned);
}

ASN1BOOL compareUnsigned(ASN1PrintSink report, const char* name, ASN1UINT64 value,
                         ASN1UINT64 compValue) {
  return compareValues(report, name, value, compValue, value == compValue,
                       qnprint::renderUnsigned);
}

// Any non-zero byte is TRUE, as it prints.
ASN1BOOL compareBoolean(ASN1PrintSink report, const char* name, ASN1BOOL value,
                        ASN1BOOL compValue) {
  return compareValues(report, name, value, compValue, !value == !compValue,
                       qnprint::renderBoolean);
}

// NaN is one value, NOT-A-NUMBER, so it equals itself; -0 and 0 encode differently.
bool sameReal(ASN1REAL a, ASN1REAL b) {
  if (isnan(a) || isnan(b)) return isnan(a) && isnan(b);
  return a == b && signbit(a) == signbit(b);
}

ASN1BOOL compareReal(ASN1PrintSink report, const char* name, ASN1REAL value, ASN1REAL compValue) {
  return compareValues(report, name, value, compValue, sameReal(value, compValue),
                       qnprint::renderReal);
}

bool sameMagnitude(const ASN1BigInt& a, const ASN1BigInt& b) {
  return a.sign == b.sign && a.numocts == b.numocts &&
         (a.numocts == 0 || memcmp(a.mag, b.mag, a.numocts) == 0);
}

// Parsing may need more room than any fixed buffer, so it gets a context of its own.
bool sameIntegerText(const char* a, const char* b) {
  if (strcmp(a, b) == 0) return true;
  ASN1CTXT ctxt;
  if (rtInitContext(&ctxt, nullptr) < 0) return false;
  ASN1BigInt x, y;
  rtBigIntInit(&x);
  rtBigIntInit(&y);
  const bool same = rtBigIntSetStr(&ctxt, &x, a, 0) == 0 && rtBigIntSetStr(&ctxt, &y, b, 0) == 0 &&
                    sameMagnitude(x, y);
  rtBigIntFree(&ctxt, &x);
  rtBigIntFree(&ctxt, &y);
  rtFreeContext(&ctxt);
  return same;
}

ASN1BOOL compareBigInt(ASN1PrintSink report, const char* name, const char* value,
                       const char* compValue) {
  const bool equal = value == nullptr || compValue == nullptr ? value == compValue
                                                              : sameIntegerText(value, compValue);
  return compareValues(report, name, value, compValue, equal, qnprint::renderText);
}

bool sameOctets(const ASN1OCTET* a, const ASN1OCTET* b, ASN1UINT numocts) {
  return numocts == 0 || memcmp(a, b, numocts) == 0;
}

ASN1UINT firstDifferentOctet(const ASN1OCTET* a, const ASN1OCTET* b, ASN1UINT numocts) {
  ASN1UINT i = 0;
  while (i < numocts && a[i] == b[i]) ++i;
  return i;
}

// An octet string as a report shows it: inline when short, by its size when long.
struct Octets {
  ASN1UINT numocts;
  const ASN1OCTET* data;
};

void renderOctetsBrief(Output& out, const Octets& value) {
  if (value.numocts <= qnprint::kInlineOctets || !qnprint::hasData(value.numocts, value.data)) {
    return qnprint::renderOctets(out, 0, value.numocts, value.data);
  }
  out.put('(');
  qnprint::renderUnsigned(out, value.numocts);
  out.write(" octets)");
}

ASN1BOOL compareOctets(ASN1PrintSink report, const char* name, const Octets& value,
                       const Octets& compValue) {
  const bool valid = qnprint::hasData(value.numocts, value.data) &&
                     qnprint::hasData(compValue.numocts, compValue.data);
  const bool sameSize = value.numocts == compValue.numocts;
  if (valid && sameSize && sameOctets(value.data, compValue.data, value.numocts)) return ASN1TRUE;
  const bool bothShort =
      value.numocts <= qnprint::kInlineOctets && compValue.numocts <= qnprint::kInlineOctets;
  if (!valid || !sameSize || bothShort) {
    return compareValues(report, name, value, compValue, false, renderOctetsBrief);
  }
  const ASN1UINT at = firstDifferentOctet(value.data, compValue.data, value.numocts);
  return reportDifference(report, name, [&](Output& out) {
    out.write("octet ");
    qnprint::renderUnsigned(out, at);
    out.write(": ");
    qnprint::renderHexInline(out, value.data + at, 1, 0xFF);
    out.write(" != ");
    qnprint::renderHexInline(out, compValue.data + at, 1, 0xFF);
  });
}

struct Bits {
  ASN1UINT numbits;
  const ASN1OCTET* data;
};

void renderBitsBrief(Output& out, const Bits& value) {
  if (value.numbits <= qnprint::kInlineHexBits || !qnprint::hasData(value.numbits, value.data)) {
    return qnprint::renderBitsHexInline(out, value.numbits, value.data);
  }
  out.put('(');
  qnprint::renderUnsigned(out, value.numbits);
  out.write(" bits)");
}

int bitOf(const ASN1OCTET* data, ASN1UINT bit) { return (data[bit / 8] >> (7 - bit % 8)) & 1; }

// The unused bits of the last octet are not part of the value.
bool sameBits(const ASN1OCTET* a, const ASN1OCTET* b, ASN1UINT numbits) {
  const ASN1UINT full = numbits / 8;
  if (!sameOctets(a, b, full)) return false;
  return numbits % 8 == 0 || ((a[full] ^ b[full]) & qnprint::lastOctetMask(numbits)) == 0;
}

ASN1UINT firstDifferentBit(const ASN1OCTET* a, const ASN1OCTET* b, ASN1UINT numbits) {
  ASN1UINT bit = 8 * firstDifferentOctet(a, b, numbits / 8);
  while (bit < numbits && bitOf(a, bit) == bitOf(b, bit)) ++bit;
  return bit;
}

ASN1BOOL compareBits(ASN1PrintSink report, const char* name, const Bits& value,
                     const Bits& compValue) {
  const bool valid = qnprint::hasData(value.numbits, value.data) &&
                     qnprint::hasData(compValue.numbits, compValue.data);
  const bool sameSize = value.numbits == compValue.numbits;
  if (valid && sameSize && sameBits(value.data, compValue.data, value.numbits)) return ASN1TRUE;
  const bool bothShort =
      value.numbits <= qnprint::kInlineHexBits && compValue.numbits <= qnprint::kInlineHexBits;
  if (!valid || !sameSize || bothShort) {
    return compareValues(report, name, value, compValue, false, renderBitsBrief);
  }
  const ASN1UINT at = firstDifferentBit(value.data, compValue.data, value.numbits);
  return reportDifference(report, name, [&](Output& out) {
    out.write("bit ");
    qnprint::renderUnsigned(out, at);
    out.write(bitOf(value.data, at) ? ": 1 != 0" : ": 0 != 1");
  });
}

bool sameCharStr(const char* a, const char* b) { return strcmp(a, b) == 0; }

// A record whose data pointer is null under a non-zero count is corrupt and equals nothing.
template <typename CharString>
bool sameCodeUnits(const CharString* a, const CharString* b) {
  if (a->nchars != b->nchars) return false;
  if (!qnprint::hasData(a->nchars, a->data) || !qnprint::hasData(b->nchars, b->data)) {
    return false;
  }
  return a->nchars == 0 || memcmp(a->data, b->data, a->nchars * sizeof a->data[0]) == 0;
}

// A record with an arc count outside 1..128 is corrupt and equals nothing.
template <typename Oid>
bool sameArcs(const Oid* a, const Oid* b) {
  if (a->numids != b->numids || a->numids == 0 || a->numids > ASN_K_MAXSUBIDS) return false;
  return memcmp(a->subid, b->subid, a->numids * sizeof a->subid[0]) == 0;
}

void renderOpenType(Output& out, const ASN1TOpenType* value) {
  if (value == nullptr) return out.write("<null>");
  renderOctetsBrief(out, Octets{value->numocts, value->data});
}

ASN1BOOL compareOpenType(ASN1PrintSink report, const char* name, const ASN1TOpenType* value,
                         const ASN1TOpenType* compValue) {
  if (value == nullptr || compValue == nullptr) {
    return compareValues(report, name, value, compValue, value == compValue, renderOpenType);
  }
  return compareOctets(report, name, Octets{value->numocts, value->data},
                       Octets{compValue->numocts, compValue->data});
}

// Two values decoded through different information objects are different values, even when
// their encodings happen to agree.
ASN1BOOL compareTCOpenType(ASN1PrintSink report, const char* name, const Asn1TObject* value,
                           const Asn1TObject* compValue) {
  if (value == nullptr || compValue == nullptr) {
    return compareValues(report, name, value, compValue, value == compValue,
                         [](Output& out, const Asn1TObject* object) {
                           if (object == nullptr) return out.write("<null>");
                           renderOctetsBrief(out, Octets{object->numocts, object->data});
                         });
  }
  if (!compareOctets(report, name, Octets{value->numocts, value->data},
                     Octets{compValue->numocts, compValue->data})) {
    return ASN1FALSE;
  }
  if (value->object == nullptr || compValue->object == nullptr ||
      value->object == compValue->object) {
    return ASN1TRUE;
  }
  return reportDifference(report, name,
                          [](Output& out) { out.write("information objects differ"); });
}

ASN1BOOL compareTag(ASN1PrintSink report, const char* name, ASN1TagType tag,
                    ASN1TagType compTag) {
  return compareValues(report, name, tag, compTag, tag == compTag, qnprint::renderTag);
}

}  // namespace

QN_BEGIN_C

ASN1BOOL rtCmpBoolean(const char* name, ASN1BOOL value, ASN1BOOL compValue, char* errBuf,
                      size_t errBufSize) {
  return compareBoolean(toString(errBuf, errBufSize), name, value, compValue);
}

ASN1BOOL rtCmpInteger(const char* name, ASN1INT value, ASN1INT compValue, char* errBuf,
                      size_t errBufSize) {
  return compareSigned(toString(errBuf, errBufSize), name, value, compValue);
}

ASN1BOOL rtCmpUnsigned(const char* name, ASN1UINT value, ASN1UINT compValue, char* errBuf,
                       size_t errBufSize) {
  return compareUnsigned(toString(errBuf, errBufSize), name, value, compValue);
}

ASN1BOOL rtCmpInt64(const char* name, ASN1INT64 value, ASN1INT64 compValue, char* errBuf,
                    size_t errBufSize) {
  return compareSigned(toString(errBuf, errBufSize), name, value, compValue);
}

ASN1BOOL rtCmpUInt64(const char* name, ASN1UINT64 value, ASN1UINT64 compValue, char* errBuf,
                     size_t errBufSize) {
  return compareUnsigned(toString(errBuf, errBufSize), name, value, compValue);
}

ASN1BOOL rtCmpEnum(const char* name, ASN1ENUM value, ASN1ENUM compValue, char* errBuf,
                   size_t errBufSize) {
  return compareSigned(toString(errBuf, errBufSize), name, value, compValue);
}

ASN1BOOL rtCmpReal(const char* name, ASN1REAL value, ASN1REAL compValue, char* errBuf,
                   size_t errBufSize) {
  return compareReal(toString(errBuf, errBufSize), name, value, compValue);
}

ASN1BOOL rtCmpBigInt(const char* name, const char* value, const char* compValue, char* errBuf,
                     size_t errBufSize) {
  return compareBigInt(toString(errBuf, errBufSize), name, value, compValue);
}

ASN1BOOL rtCmpBitStr(const char* name, ASN1UINT numbits, const ASN1OCTET* data,
                     ASN1UINT compNumbits, const ASN1OCTET* compData, char* errBuf,
                     size_t errBufSize) {
  return compareBits(toString(errBuf, errBufSize), name, Bits{numbits, data},
                     Bits{compNumbits, compData});
}

ASN1BOOL rtCmpOctStr(const char* name, ASN1UINT numocts, const ASN1OCTET* data,
                     ASN1UINT compNumocts, const ASN1OCTET* compData, char* errBuf,
                     size_t errBufSize) {
  return compareOctets(toString(errBuf, errBufSize), name, Octets{numocts, data},
                       Octets{compNumocts, compData});
}

ASN1BOOL rtCmpCharStr(const char* name, const char* value, const char* compValue, char* errBuf,
                      size_t errBufSize) {
  return comparePointers(toString(errBuf, errBufSize), name, value, compValue, sameCharStr,
                         qnprint::renderCharStr);
}

ASN1BOOL rtCmp16BitCharStr(const char* name, const Asn116BitCharString* value,
                           const Asn116BitCharString* compValue, char* errBuf,
                           size_t errBufSize) {
  return comparePointers(toString(errBuf, errBufSize), name, value, compValue,
                         sameCodeUnits<Asn116BitCharString>, qnprint::render16BitCharStr);
}

ASN1BOOL rtCmp32BitCharStr(const char* name, const Asn132BitCharString* value,
                           const Asn132BitCharString* compValue, char* errBuf,
                           size_t errBufSize) {
  return comparePointers(toString(errBuf, errBufSize), name, value, compValue,
                         sameCodeUnits<Asn132BitCharString>, qnprint::render32BitCharStr);
}

ASN1BOOL rtCmpOID(const char* name, const ASN1OBJID* value, const ASN1OBJID* compValue,
                  char* errBuf, size_t errBufSize) {
  return comparePointers(toString(errBuf, errBufSize), name, value, compValue,
                         sameArcs<ASN1OBJID>, qnprint::renderOID);
}

ASN1BOOL rtCmpOID64(const char* name, const ASN1OID64* value, const ASN1OID64* compValue,
                    char* errBuf, size_t errBufSize) {
  return comparePointers(toString(errBuf, errBufSize), name, value, compValue,
                         sameArcs<ASN1OID64>, qnprint::renderOID64);
}

ASN1BOOL rtCmpOpenType(const char* name, const ASN1TOpenType* value,
                       const ASN1TOpenType* compValue, char* errBuf, size_t errBufSize) {
  return compareOpenType(toString(errBuf, errBufSize), name, value, compValue);
}

ASN1BOOL rtCmpTCOpenType(const char* name, const Asn1TObject* value,
                         const Asn1TObject* compValue, char* errBuf, size_t errBufSize) {
  return compareTCOpenType(toString(errBuf, errBufSize), name, value, compValue);
}

ASN1BOOL rtCmpTag(const char* name, ASN1TagType tag, ASN1TagType compTag, char* errBuf,
                  size_t errBufSize) {
  return compareTag(toString(errBuf, errBufSize), name, tag, compTag);
}

ASN1BOOL rtCmpToStdoutBoolean(const char* name, ASN1BOOL value, ASN1BOOL compValue) {
  return compareBoolean(toStdout(), name, value, compValue);
}

ASN1BOOL rtCmpToStdoutInteger(const char* name, ASN1INT value, ASN1INT compValue) {
  return compareSigned(toStdout(), name, value, compValue);
}

ASN1BOOL rtCmpToStdoutUnsigned(const char* name, ASN1UINT value, ASN1UINT compValue) {
  return compareUnsigned(toStdout(), name, value, compValue);
}

ASN1BOOL rtCmpToStdoutInt64(const char* name, ASN1INT64 value, ASN1INT64 compValue) {
  return compareSigned(toStdout(), name, value, compValue);
}

ASN1BOOL rtCmpToStdoutUInt64(const char* name, ASN1UINT64 value, ASN1UINT64 compValue) {
  return compareUnsigned(toStdout(), name, value, compValue);
}

ASN1BOOL rtCmpToStdoutEnum(const char* name, ASN1ENUM value, ASN1ENUM compValue) {
  return compareSigned(toStdout(), name, value, compValue);
}

ASN1BOOL rtCmpToStdoutReal(const char* name, ASN1REAL value, ASN1REAL compValue) {
  return compareReal(toStdout(), name, value, compValue);
}

ASN1BOOL rtCmpToStdoutBigInt(const char* name, const char* value, const char* compValue) {
  return compareBigInt(toStdout(), name, value, compValue);
}

ASN1BOOL rtCmpToStdoutBitStr(const char* name, ASN1UINT numbits, const ASN1OCTET* data,
                             ASN1UINT compNumbits, const ASN1OCTET* compData) {
  return compareBits(toStdout(), name, Bits{numbits, data}, Bits{compNumbits, compData});
}

ASN1BOOL rtCmpToStdoutOctStr(const char* name, ASN1UINT numocts, const ASN1OCTET* data,
                             ASN1UINT compNumocts, const ASN1OCTET* compData) {
  return compareOctets(toStdout(), name, Octets{numocts, data}, Octets{compNumocts, compData});
}

ASN1BOOL rtCmpToStdoutCharStr(const char* name, const char* value, const char* compValue) {
  return comparePointers(toStdout(), name, value, compValue, sameCharStr,
                         qnprint::renderCharStr);
}

ASN1BOOL rtCmpToStdout16BitCharStr(const char* name, const Asn116BitCharString* value,
                                   const Asn116BitCharString* compValue) {
  return comparePointers(toStdout(), name, value, compValue, sameCodeUnits<Asn116BitCharString>,
                         qnprint::render16BitCharStr);
}

ASN1BOOL rtCmpToStdout32BitCharStr(const char* name, const Asn132BitCharString* value,
                                   const Asn132BitCharString* compValue) {
  return comparePointers(toStdout(), name, value, compValue, sameCodeUnits<Asn132BitCharString>,
                         qnprint::render32BitCharStr);
}

ASN1BOOL rtCmpToStdoutOID(const char* name, const ASN1OBJID* value,
                          const ASN1OBJID* compValue) {
  return comparePointers(toStdout(), name, value, compValue, sameArcs<ASN1OBJID>,
                         qnprint::renderOID);
}

ASN1BOOL rtCmpToStdoutOID64(const char* name, const ASN1OID64* value,
                            const ASN1OID64* compValue) {
  return comparePointers(toStdout(), name, value, compValue, sameArcs<ASN1OID64>,
                         qnprint::renderOID64);
}

ASN1BOOL rtCmpToStdoutOpenType(const char* name, const ASN1TOpenType* value,
                               const ASN1TOpenType* compValue) {
  return compareOpenType(toStdout(), name, value, compValue);
}

ASN1BOOL rtCmpToStdoutTCOpenType(const char* name, const Asn1TObject* value,
                                 const Asn1TObject* compValue) {
  return compareTCOpenType(toStdout(), name, value, compValue);
}

ASN1BOOL rtCmpToStdoutTag(const char* name, ASN1TagType tag, ASN1TagType compTag) {
  return compareTag(toStdout(), name, tag, compTag);
}

QN_END_C
