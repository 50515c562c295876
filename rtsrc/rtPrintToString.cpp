// Printing into a caller's buffer: the string sink, and each printer over a string sink made
// for one call.

#include <quillon/rtPrint.h>

#include <string.h>

namespace {

// The sink over buf for one call, handed to print when buf is usable.
template <typename Print>
int printToString(char* buf, size_t bufsize, Print print) {
  ASN1PrintSink sink;
  const int stat = rtPrintSinkInitString(&sink, buf, bufsize);
  if (stat < 0) return stat;
  return print(&sink);
}

}  // namespace

QN_BEGIN_C

// A sink that fails to set up discards what it is given, so that a caller that ignores the
// status loses its text but never writes through a bad pointer.
int rtPrintSinkInitString(ASN1PrintSink* pSink, char* buf, size_t bufsize) {
  *pSink = ASN1PrintSink{};
  if (buf == nullptr) return ASN_E_INVPARAM;
  const void* end = memchr(buf, '\0', bufsize);
  if (end == nullptr) return ASN_E_INVPARAM;
  pSink->buf = buf;
  pSink->bufsize = bufsize;
  pSink->length = static_cast<size_t>(static_cast<const char*>(end) - buf);
  return 0;
}

int rtPrintToStringBoolean(int level, const char* name, ASN1BOOL value, char* buf,
                           size_t bufsize) {
  return printToString(buf, bufsize, [=](ASN1PrintSink* sink) {
    return rtPrintBoolean(sink, level, name, value);
  });
}

int rtPrintToStringInteger(int level, const char* name, ASN1INT value, char* buf,
                           size_t bufsize) {
  return printToString(buf, bufsize, [=](ASN1PrintSink* sink) {
    return rtPrintInteger(sink, level, name, value);
  });
}

int rtPrintToStringUnsigned(int level, const char* name, ASN1UINT value, char* buf,
                            size_t bufsize) {
  return printToString(buf, bufsize, [=](ASN1PrintSink* sink) {
    return rtPrintUnsigned(sink, level, name, value);
  });
}

int rtPrintToStringInt64(int level, const char* name, ASN1INT64 value, char* buf,
                         size_t bufsize) {
  return printToString(buf, bufsize, [=](ASN1PrintSink* sink) {
    return rtPrintInt64(sink, level, name, value);
  });
}

int rtPrintToStringUInt64(int level, const char* name, ASN1UINT64 value, char* buf,
                          size_t bufsize) {
  return printToString(buf, bufsize, [=](ASN1PrintSink* sink) {
    return rtPrintUInt64(sink, level, name, value);
  });
}

int rtPrintToStringEnum(int level, const char* name, ASN1ENUM value, const char* identifier,
                        char* buf, size_t bufsize) {
  return printToString(buf, bufsize, [=](ASN1PrintSink* sink) {
    return rtPrintEnum(sink, level, name, value, identifier);
  });
}

int rtPrintToStringReal(int level, const char* name, ASN1REAL value, char* buf, size_t bufsize) {
  return printToString(buf, bufsize, [=](ASN1PrintSink* sink) {
    return rtPrintReal(sink, level, name, value);
  });
}

int rtPrintToStringBigInt(int level, const char* name, const char* value, char* buf,
                          size_t bufsize) {
  return printToString(buf, bufsize, [=](ASN1PrintSink* sink) {
    return rtPrintBigInt(sink, level, name, value);
  });
}

int rtPrintToStringBitStr(int level, const char* name, ASN1UINT numbits, const ASN1OCTET* data,
                          char* buf, size_t bufsize) {
  return printToString(buf, bufsize, [=](ASN1PrintSink* sink) {
    return rtPrintBitStr(sink, level, name, numbits, data);
  });
}

int rtPrintToStringBitStrBin(int level, const char* name, ASN1UINT numbits,
                             const ASN1OCTET* data, char* buf, size_t bufsize) {
  return printToString(buf, bufsize, [=](ASN1PrintSink* sink) {
    return rtPrintBitStrBin(sink, level, name, numbits, data);
  });
}

int rtPrintToStringOctStr(int level, const char* name, ASN1UINT numocts, const ASN1OCTET* data,
                          char* buf, size_t bufsize) {
  return printToString(buf, bufsize, [=](ASN1PrintSink* sink) {
    return rtPrintOctStr(sink, level, name, numocts, data);
  });
}

int rtPrintToStringCharStr(int level, const char* name, const char* value, char* buf,
                           size_t bufsize) {
  return printToString(buf, bufsize, [=](ASN1PrintSink* sink) {
    return rtPrintCharStr(sink, level, name, value);
  });
}

int rtPrintToString16BitCharStr(int level, const char* name, const Asn116BitCharString* value,
                                char* buf, size_t bufsize) {
  return printToString(buf, bufsize, [=](ASN1PrintSink* sink) {
    return rtPrint16BitCharStr(sink, level, name, value);
  });
}

int rtPrintToString32BitCharStr(int level, const char* name, const Asn132BitCharString* value,
                                char* buf, size_t bufsize) {
  return printToString(buf, bufsize, [=](ASN1PrintSink* sink) {
    return rtPrint32BitCharStr(sink, level, name, value);
  });
}

int rtPrintToStringOID(int level, const char* name, const ASN1OBJID* value, char* buf,
                       size_t bufsize) {
  return printToString(buf, bufsize, [=](ASN1PrintSink* sink) {
    return rtPrintOID(sink, level, name, value);
  });
}

int rtPrintToStringOID64(int level, const char* name, const ASN1OID64* value, char* buf,
                         size_t bufsize) {
  return printToString(buf, bufsize, [=](ASN1PrintSink* sink) {
    return rtPrintOID64(sink, level, name, value);
  });
}

int rtPrintToStringNull(int level, const char* name, char* buf, size_t bufsize) {
  return printToString(buf, bufsize, [=](ASN1PrintSink* sink) {
    return rtPrintNull(sink, level, name);
  });
}

int rtPrintToStringOpenType(int level, const char* name, const ASN1TOpenType* value, char* buf,
                            size_t bufsize) {
  return printToString(buf, bufsize, [=](ASN1PrintSink* sink) {
    return rtPrintOpenType(sink, level, name, value);
  });
}

int rtPrintToStringTag(int level, const char* name, ASN1TagType tag, char* buf, size_t bufsize) {
  return printToString(buf, bufsize, [=](ASN1PrintSink* sink) {
    return rtPrintTag(sink, level, name, tag);
  });
}

int rtPrintToStringOpenBrace(int level, const char* name, char* buf, size_t bufsize) {
  return printToString(buf, bufsize, [=](ASN1PrintSink* sink) {
    return rtPrintOpenBrace(sink, level, name);
  });
}

int rtPrintToStringCloseBrace(int level, char* buf, size_t bufsize) {
  return printToString(buf, bufsize, [=](ASN1PrintSink* sink) {
    return rtPrintCloseBrace(sink, level);
  });
}

QN_END_C
