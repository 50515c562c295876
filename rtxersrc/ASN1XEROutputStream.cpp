/* The XER output streams: each member runs one writer on the stream's context. */
#include <quillon/asn1XerCppTypes.h>

int ASN1XEROutputStream::isA(Type bufferType) { return bufferType == XEREncode; }

int ASN1XEROutputStream::encodeStartElement(const char* elemName, const char* attributes) {
  return (int)check(xerEncStartElement(getCtxtPtr(), elemName, attributes));
}

int ASN1XEROutputStream::encodeEndElement(const char* elemName) {
  return (int)check(xerEncEndElement(getCtxtPtr(), elemName));
}

int ASN1XEROutputStream::encodeEmptyElement(const char* elemName, const char* attributes) {
  return (int)check(xerEncEmptyElement(getCtxtPtr(), elemName, attributes));
}

int ASN1XEROutputStream::encodeInt(ASN1INT value, const char* elemName) {
  return (int)check(xerEncInt(getCtxtPtr(), value, elemName));
}

int ASN1XEROutputStream::encodeInt64(ASN1INT64 value, const char* elemName) {
  return (int)check(xerEncInt64(getCtxtPtr(), value, elemName));
}

int ASN1XEROutputStream::encodeUInt(ASN1UINT value, const char* elemName) {
  return (int)check(xerEncUInt(getCtxtPtr(), value, elemName));
}

int ASN1XEROutputStream::encodeUInt64(ASN1UINT64 value, const char* elemName) {
  return (int)check(xerEncUInt64(getCtxtPtr(), value, elemName));
}

int ASN1XEROutputStream::encodeBigInt(const char* value, const char* elemName) {
  return (int)check(xerEncBigInt(getCtxtPtr(), value, elemName));
}

int ASN1XEROutputStream::encodeBool(ASN1BOOL value, const char* elemName) {
  return (int)check(xerEncBool(getCtxtPtr(), value, elemName));
}

int ASN1XEROutputStream::encodeReal(ASN1REAL value, const char* elemName) {
  return (int)check(xerEncReal(getCtxtPtr(), value, elemName));
}

int ASN1XEROutputStream::encodeBitStr(const ASN1OCTET* data, ASN1UINT numbits,
                                      const char* elemName, ASN1StrType outputType) {
  return (int)check(xerEncBitStr(getCtxtPtr(), numbits, data, elemName, outputType));
}

int ASN1XEROutputStream::encodeBitStr(const ASN1DynBitStr& value, const char* elemName,
                                      ASN1StrType outputType) {
  return encodeBitStr(value.data, value.numbits, elemName, outputType);
}

int ASN1XEROutputStream::encodeOctStr(const ASN1OCTET* data, ASN1UINT numocts,
                                      const char* elemName) {
  return (int)check(xerEncOctStr(getCtxtPtr(), numocts, data, elemName));
}

int ASN1XEROutputStream::encodeOctStr(const ASN1DynOctStr& value, const char* elemName) {
  return encodeOctStr(value.data, value.numocts, elemName);
}

int ASN1XEROutputStream::encodeCharStr(const char* value, const char* elemName) {
  return (int)check(xerEncAscCharStr(getCtxtPtr(), value, elemName));
}

int ASN1XEROutputStream::encodeObjId(const ASN1OBJID& value, const char* elemName) {
  return (int)check(xerEncObjId(getCtxtPtr(), &value, elemName));
}

int ASN1XEROutputStream::encodeObjId64(const ASN1OID64& value, const char* elemName) {
  return (int)check(xerEncObjId64(getCtxtPtr(), &value, elemName));
}

int ASN1XEROutputStream::encodeRelativeOID(const ASN1OBJID& value, const char* elemName) {
  return (int)check(xerEncRelativeOID(getCtxtPtr(), &value, elemName));
}

int ASN1XEROutputStream::encodeNull(const char* elemName) {
  return (int)check(xerEncNull(getCtxtPtr(), elemName));
}

int ASN1XEROutputStream::encodeBMPStr(const Asn116BitCharString& value, const char* elemName) {
  return (int)check(xerEncBMPStr(getCtxtPtr(), &value, elemName));
}

int ASN1XEROutputStream::encodeUnivStr(const Asn132BitCharString& value, const char* elemName) {
  return (int)check(xerEncUnivStr(getCtxtPtr(), &value, elemName));
}

int ASN1XEROutputStream::encodeObj(ASN1CType& c) {
  int stat = c.EncodeTo(*this);
  if (stat != 0) throw OSCStreamException(stat);
  return stat;
}

ASN1XEROutputStream& ASN1XEROutputStream::operator<<(ASN1CType& c) {
  encodeObj(c);
  return *this;
}

ASN1XERFileOutputStream::ASN1XERFileOutputStream(const char* pFilename)
    : ASN1XEROutputStream(1) {
  check(rtStreamFileOpen(getCtxtPtr(), pFilename, OSRTSTRMF_OUTPUT));
}

ASN1XERFileOutputStream::ASN1XERFileOutputStream(FILE* file) : ASN1XEROutputStream(1) {
  check(rtStreamFileAttach(getCtxtPtr(), file, OSRTSTRMF_OUTPUT));
}
