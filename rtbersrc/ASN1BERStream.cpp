/* The BER stream classes: each member runs one stream coder on the stream's context and turns
 * a failure into OSCStreamException; each operator hands its wrapper to the member. */
#include <quillon/asn1berStream.h>
#include <quillon/asn1berdec.h>
#include <quillon/asn1berenc.h>
#include <quillon/rtMemHeap.h>

/* ---- ASN1BERInputStream ----------------------------------------------------------------- */

int ASN1BERInputStream::decodeTag(ASN1TagType& tag) {
  return (int)check(berDecStrmTag(getCtxtPtr(), &tag));
}

int ASN1BERInputStream::decodeLength(int& length) {
  return (int)check(berDecStrmLength(getCtxtPtr(), &length));
}

int ASN1BERInputStream::decodeTagAndLen(ASN1TagType& tag, int& length) {
  return (int)check(berDecStrmTagAndLen(getCtxtPtr(), &tag, &length));
}

int ASN1BERInputStream::decodeEoc() { return (int)check(berDecStrmMatchEOC(getCtxtPtr())); }

int ASN1BERInputStream::peekTag(ASN1TagType& tag) {
  return (int)check(berDecStrmPeekTag(getCtxtPtr(), &tag));
}

int ASN1BERInputStream::skipElement() {
  return (int)check(berDecStrmNextElement(getCtxtPtr()));
}

int ASN1BERInputStream::decodeInt(ASN1INT& value, int tagging, int length) {
  return (int)check(berDecStrmInt(getCtxtPtr(), &value, tagging, length));
}

int ASN1BERInputStream::decodeInt8(ASN1INT8& value, int tagging, int length) {
  return (int)check(berDecStrmInt8(getCtxtPtr(), &value, tagging, length));
}

int ASN1BERInputStream::decodeInt16(ASN1SINT& value, int tagging, int length) {
  return (int)check(berDecStrmInt16(getCtxtPtr(), &value, tagging, length));
}

int ASN1BERInputStream::decodeInt64(ASN1INT64& value, int tagging, int length) {
  return (int)check(berDecStrmInt64(getCtxtPtr(), &value, tagging, length));
}

int ASN1BERInputStream::decodeUInt(ASN1UINT& value, int tagging, int length) {
  return (int)check(berDecStrmUInt(getCtxtPtr(), &value, tagging, length));
}

int ASN1BERInputStream::decodeUInt8(ASN1UINT8& value, int tagging, int length) {
  return (int)check(berDecStrmUInt8(getCtxtPtr(), &value, tagging, length));
}

int ASN1BERInputStream::decodeUInt16(ASN1USINT& value, int tagging, int length) {
  return (int)check(berDecStrmUInt16(getCtxtPtr(), &value, tagging, length));
}

int ASN1BERInputStream::decodeUInt64(ASN1UINT64& value, int tagging, int length) {
  return (int)check(berDecStrmUInt64(getCtxtPtr(), &value, tagging, length));
}

int ASN1BERInputStream::decodeEnum(ASN1ENUM& value, int tagging, int length) {
  return (int)check(berDecStrmEnum(getCtxtPtr(), &value, tagging, length));
}

int ASN1BERInputStream::decodeReal(ASN1REAL& value, int tagging, int length) {
  return (int)check(berDecStrmReal(getCtxtPtr(), &value, tagging, length));
}

int ASN1BERInputStream::decodeBigInt(const char*& value, int tagging, int length) {
  return (int)check(berDecStrmBigInt(getCtxtPtr(), &value, tagging, length));
}

int ASN1BERInputStream::decodeBool(ASN1BOOL& value, int tagging, int length) {
  return (int)check(berDecStrmBool(getCtxtPtr(), &value, tagging, length));
}

int ASN1BERInputStream::decodeObjId(ASN1OBJID& value, int tagging, int length) {
  return (int)check(berDecStrmObjId(getCtxtPtr(), &value, tagging, length));
}

int ASN1BERInputStream::decodeObjId64(ASN1OID64& value, int tagging, int length) {
  return (int)check(berDecStrmObjId64(getCtxtPtr(), &value, tagging, length));
}

int ASN1BERInputStream::decodeRelativeOID(ASN1RELOID& value, int tagging, int length) {
  return (int)check(berDecStrmRelativeOID(getCtxtPtr(), &value, tagging, length));
}

int ASN1BERInputStream::decodeBMPStr(Asn116BitCharString& value, int tagging, int length) {
  return (int)check(berDecStrmBMPStr(getCtxtPtr(), &value, tagging, length));
}

int ASN1BERInputStream::decodeUnivStr(Asn132BitCharString& value, int tagging, int length) {
  return (int)check(berDecStrmUnivStr(getCtxtPtr(), &value, tagging, length));
}

int ASN1BERInputStream::decodeNull(int tagging, int length) {
  return (int)check(berDecStrmNull(getCtxtPtr(), tagging, length));
}

int ASN1BERInputStream::decodeBitStr(ASN1OCTET* data, ASN1UINT& numbits, int tagging,
                                     int length) {
  return (int)check(berDecStrmBitStr(getCtxtPtr(), data, &numbits, tagging, length));
}

int ASN1BERInputStream::decodeBitStr(ASN1DynBitStr& value, int tagging, int length) {
  return (int)check(
      berDecStrmDynBitStr(getCtxtPtr(), &value.data, &value.numbits, tagging, length));
}

int ASN1BERInputStream::decodeOctStr(ASN1OCTET* data, ASN1UINT& numocts, int tagging,
                                     int length) {
  return (int)check(berDecStrmOctStr(getCtxtPtr(), data, &numocts, tagging, length));
}

int ASN1BERInputStream::decodeOctStr(ASN1DynOctStr& value, int tagging, int length) {
  return (int)check(
      berDecStrmDynOctStr(getCtxtPtr(), &value.data, &value.numocts, tagging, length));
}

int ASN1BERInputStream::decodeCharStr(const char*& value, ASN1TagType tag, int tagging,
                                      int length) {
  return (int)check(berDecStrmCharStr(getCtxtPtr(), &value, tagging, tag, length));
}

/* The element goes where a decode buffer would have it, in place of the read buffer, and the
 * read buffer comes back whatever the control class does. */
int ASN1BERInputStream::decodeObj(ASN1CType& c) {
  ASN1CTXT* pctxt = getCtxtPtr();
  const ASN1OCTET* element = nullptr;
  ASN1UINT numocts = 0;
  check(berDecStrmOpenType(pctxt, &element, &numocts));
  const ASN1BUFFER readBuffer = pctxt->buffer;
  const ASN1USINT flags = pctxt->flags;
  int stat = xd_setp(pctxt, element, (int)numocts, nullptr, nullptr);
  if (stat == 0) stat = c.DecodeFrom(*this);
  pctxt->buffer = readBuffer;
  const ASN1USINT messageFlags = ASN1INDEFLEN | ASN1LASTEOC;
  pctxt->flags = (ASN1USINT)((pctxt->flags & ~messageFlags) | (flags & messageFlags));
  if (!(pctxt->flags & ASN1FASTCOPY))
    rtMemHeapFreePtr(&pctxt->memHeap, const_cast<ASN1OCTET*>(element));
  return (int)check(stat);
}

void ASN1BERInputStream::initCCB(ASN1StrmCCB& ccb, int length) {
  berDecStrmInitCCB(getCtxtPtr(), &ccb, length);
}

int ASN1BERInputStream::chkend(ASN1StrmCCB& ccb) { return berDecStrmChkEnd(getCtxtPtr(), &ccb); }

long ASN1BERInputStream::byteIndex() { return check(rtStreamBufGetPos(getCtxtPtr())); }

void ASN1BERInputStream::mark(int readAheadLimit) {
  check(readAheadLimit < 0 ? ASN_E_INVPARAM
                           : rtStreamBufMark(getCtxtPtr(), (ASN1UINT)readAheadLimit));
}

void ASN1BERInputStream::reset() { check(rtStreamBufReset(getCtxtPtr())); }

ASN1BERInputStream& ASN1BERInputStream::operator>>(ASN1CType& c) {
  decodeObj(c);
  return *this;
}

ASN1BERInputStream& ASN1BERInputStream::operator>>(const OSDecStrmTag& w) {
  decodeTag(w.value);
  return *this;
}

ASN1BERInputStream& ASN1BERInputStream::operator>>(const OSDecStrmLength& w) {
  decodeLength(w.value);
  return *this;
}

ASN1BERInputStream& ASN1BERInputStream::operator>>(const OSDecStrmTagAndLen& w) {
  decodeTagAndLen(w.tag, w.length);
  return *this;
}

ASN1BERInputStream& ASN1BERInputStream::operator>>(const OSDecStrmEoc& /* w */) {
  decodeEoc();
  return *this;
}

ASN1BERInputStream& ASN1BERInputStream::operator>>(const OSDecStrmInt& w) {
  decodeInt(w.value);
  return *this;
}

ASN1BERInputStream& ASN1BERInputStream::operator>>(const OSDecStrmInt8& w) {
  decodeInt8(w.value);
  return *this;
}

ASN1BERInputStream& ASN1BERInputStream::operator>>(const OSDecStrmInt16& w) {
  decodeInt16(w.value);
  return *this;
}

ASN1BERInputStream& ASN1BERInputStream::operator>>(const OSDecStrmInt64& w) {
  decodeInt64(w.value);
  return *this;
}

ASN1BERInputStream& ASN1BERInputStream::operator>>(const OSDecStrmUInt& w) {
  decodeUInt(w.value);
  return *this;
}

ASN1BERInputStream& ASN1BERInputStream::operator>>(const OSDecStrmUInt8& w) {
  decodeUInt8(w.value);
  return *this;
}

ASN1BERInputStream& ASN1BERInputStream::operator>>(const OSDecStrmUInt16& w) {
  decodeUInt16(w.value);
  return *this;
}

ASN1BERInputStream& ASN1BERInputStream::operator>>(const OSDecStrmUInt64& w) {
  decodeUInt64(w.value);
  return *this;
}

ASN1BERInputStream& ASN1BERInputStream::operator>>(const OSDecStrmEnum& w) {
  decodeEnum(w.value);
  return *this;
}

ASN1BERInputStream& ASN1BERInputStream::operator>>(const OSDecStrmReal& w) {
  decodeReal(w.value);
  return *this;
}

ASN1BERInputStream& ASN1BERInputStream::operator>>(const OSDecStrmBigInt& w) {
  decodeBigInt(w.value);
  return *this;
}

ASN1BERInputStream& ASN1BERInputStream::operator>>(const OSDecStrmBool& w) {
  decodeBool(w.value);
  return *this;
}

ASN1BERInputStream& ASN1BERInputStream::operator>>(const OSDecStrmObjId& w) {
  decodeObjId(w.value);
  return *this;
}

ASN1BERInputStream& ASN1BERInputStream::operator>>(const OSDecStrmObjId64& w) {
  decodeObjId64(w.value);
  return *this;
}

ASN1BERInputStream& ASN1BERInputStream::operator>>(const OSDecStrmRelativeOID& w) {
  decodeRelativeOID(w.value);
  return *this;
}

ASN1BERInputStream& ASN1BERInputStream::operator>>(const OSDecStrmBMPString& w) {
  decodeBMPStr(w.value);
  return *this;
}

ASN1BERInputStream& ASN1BERInputStream::operator>>(const OSDecStrmUnivString& w) {
  decodeUnivStr(w.value);
  return *this;
}

ASN1BERInputStream& ASN1BERInputStream::operator>>(const OSDecStrmNull& /* w */) {
  decodeNull();
  return *this;
}

ASN1BERInputStream& ASN1BERInputStream::operator>>(const OSDecStrmBitStr& w) {
  decodeBitStr(w.data, w.numbits);
  return *this;
}

ASN1BERInputStream& ASN1BERInputStream::operator>>(const OSDecStrmDynBitStr& w) {
  decodeBitStr(w.value);
  return *this;
}

ASN1BERInputStream& ASN1BERInputStream::operator>>(const OSDecStrmOctStr& w) {
  decodeOctStr(w.data, w.numocts);
  return *this;
}

ASN1BERInputStream& ASN1BERInputStream::operator>>(const OSDecStrmDynOctStr& w) {
  decodeOctStr(w.value);
  return *this;
}

ASN1BERInputStream& ASN1BERInputStream::operator>>(const OSDecStrmCharStr& w) {
  decodeCharStr(w.value, w.tag);
  return *this;
}

ASN1BERInputStream& ASN1BERInputStream::operator>>(const OSDecStrmImplInt& w) {
  decodeInt(w.value, ASN1IMPL, w.length);
  return *this;
}

ASN1BERInputStream& ASN1BERInputStream::operator>>(const OSDecStrmImplInt8& w) {
  decodeInt8(w.value, ASN1IMPL, w.length);
  return *this;
}

ASN1BERInputStream& ASN1BERInputStream::operator>>(const OSDecStrmImplInt16& w) {
  decodeInt16(w.value, ASN1IMPL, w.length);
  return *this;
}

ASN1BERInputStream& ASN1BERInputStream::operator>>(const OSDecStrmImplInt64& w) {
  decodeInt64(w.value, ASN1IMPL, w.length);
  return *this;
}

ASN1BERInputStream& ASN1BERInputStream::operator>>(const OSDecStrmImplUInt& w) {
  decodeUInt(w.value, ASN1IMPL, w.length);
  return *this;
}

ASN1BERInputStream& ASN1BERInputStream::operator>>(const OSDecStrmImplUInt8& w) {
  decodeUInt8(w.value, ASN1IMPL, w.length);
  return *this;
}

ASN1BERInputStream& ASN1BERInputStream::operator>>(const OSDecStrmImplUInt16& w) {
  decodeUInt16(w.value, ASN1IMPL, w.length);
  return *this;
}

ASN1BERInputStream& ASN1BERInputStream::operator>>(const OSDecStrmImplUInt64& w) {
  decodeUInt64(w.value, ASN1IMPL, w.length);
  return *this;
}

ASN1BERInputStream& ASN1BERInputStream::operator>>(const OSDecStrmImplEnum& w) {
  decodeEnum(w.value, ASN1IMPL, w.length);
  return *this;
}

ASN1BERInputStream& ASN1BERInputStream::operator>>(const OSDecStrmImplReal& w) {
  decodeReal(w.value, ASN1IMPL, w.length);
  return *this;
}

ASN1BERInputStream& ASN1BERInputStream::operator>>(const OSDecStrmImplBigInt& w) {
  decodeBigInt(w.value, ASN1IMPL, w.length);
  return *this;
}

ASN1BERInputStream& ASN1BERInputStream::operator>>(const OSDecStrmImplBool& w) {
  decodeBool(w.value, ASN1IMPL, w.length);
  return *this;
}

ASN1BERInputStream& ASN1BERInputStream::operator>>(const OSDecStrmImplObjId& w) {
  decodeObjId(w.value, ASN1IMPL, w.length);
  return *this;
}

ASN1BERInputStream& ASN1BERInputStream::operator>>(const OSDecStrmImplObjId64& w) {
  decodeObjId64(w.value, ASN1IMPL, w.length);
  return *this;
}

ASN1BERInputStream& ASN1BERInputStream::operator>>(const OSDecStrmImplRelativeOID& w) {
  decodeRelativeOID(w.value, ASN1IMPL, w.length);
  return *this;
}

ASN1BERInputStream& ASN1BERInputStream::operator>>(const OSDecStrmImplBMPString& w) {
  decodeBMPStr(w.value, ASN1IMPL, w.length);
  return *this;
}

ASN1BERInputStream& ASN1BERInputStream::operator>>(const OSDecStrmImplUnivString& w) {
  decodeUnivStr(w.value, ASN1IMPL, w.length);
  return *this;
}

ASN1BERInputStream& ASN1BERInputStream::operator>>(const OSDecStrmImplNull& w) {
  decodeNull(ASN1IMPL, w.length);
  return *this;
}

ASN1BERInputStream& ASN1BERInputStream::operator>>(const OSDecStrmImplBitStr& w) {
  decodeBitStr(w.data, w.numbits, ASN1IMPL, w.length);
  return *this;
}

ASN1BERInputStream& ASN1BERInputStream::operator>>(const OSDecStrmImplDynBitStr& w) {
  decodeBitStr(w.value, ASN1IMPL, w.length);
  return *this;
}

ASN1BERInputStream& ASN1BERInputStream::operator>>(const OSDecStrmImplOctStr& w) {
  decodeOctStr(w.data, w.numocts, ASN1IMPL, w.length);
  return *this;
}

ASN1BERInputStream& ASN1BERInputStream::operator>>(const OSDecStrmImplDynOctStr& w) {
  decodeOctStr(w.value, ASN1IMPL, w.length);
  return *this;
}

ASN1BERInputStream& ASN1BERInputStream::operator>>(const OSDecStrmImplCharStr& w) {
  decodeCharStr(w.value, 0, ASN1IMPL, w.length);
  return *this;
}

/* ---- ASN1BEROutputStream ---------------------------------------------------------------- */

int ASN1BEROutputStream::encodeTag(ASN1TagType tag) {
  return (int)check(berEncStrmTag(getCtxtPtr(), tag));
}

int ASN1BEROutputStream::encodeLength(int length) {
  return (int)check(berEncStrmLength(getCtxtPtr(), length));
}

int ASN1BEROutputStream::encodeTagAndLen(ASN1TagType tag, int length) {
  return (int)check(berEncStrmTagAndLen(getCtxtPtr(), tag, length));
}

int ASN1BEROutputStream::encodeTagAndIndefLen(ASN1TagType tag) {
  return (int)check(berEncStrmTagAndIndefLen(getCtxtPtr(), tag));
}

int ASN1BEROutputStream::encodeEoc() { return (int)check(berEncStrmEOC(getCtxtPtr())); }

int ASN1BEROutputStream::encodeInt(ASN1INT value, int tagging) {
  return (int)check(berEncStrmInt(getCtxtPtr(), value, tagging));
}

int ASN1BEROutputStream::encodeInt8(ASN1INT8 value, int tagging) {
  return (int)check(berEncStrmInt8(getCtxtPtr(), value, tagging));
}

int ASN1BEROutputStream::encodeInt16(ASN1SINT value, int tagging) {
  return (int)check(berEncStrmInt16(getCtxtPtr(), value, tagging));
}

int ASN1BEROutputStream::encodeInt64(ASN1INT64 value, int tagging) {
  return (int)check(berEncStrmInt64(getCtxtPtr(), value, tagging));
}

int ASN1BEROutputStream::encodeUInt(ASN1UINT value, int tagging) {
  return (int)check(berEncStrmUInt(getCtxtPtr(), value, tagging));
}

int ASN1BEROutputStream::encodeUInt8(ASN1UINT8 value, int tagging) {
  return (int)check(berEncStrmUInt8(getCtxtPtr(), value, tagging));
}

int ASN1BEROutputStream::encodeUInt16(ASN1USINT value, int tagging) {
  return (int)check(berEncStrmUInt16(getCtxtPtr(), value, tagging));
}

int ASN1BEROutputStream::encodeUInt64(ASN1UINT64 value, int tagging) {
  return (int)check(berEncStrmUInt64(getCtxtPtr(), value, tagging));
}

int ASN1BEROutputStream::encodeEnum(ASN1ENUM value, int tagging) {
  return (int)check(berEncStrmEnum(getCtxtPtr(), value, tagging));
}

int ASN1BEROutputStream::encodeReal(ASN1REAL value, int tagging) {
  return (int)check(berEncStrmReal(getCtxtPtr(), value, tagging));
}

int ASN1BEROutputStream::encodeBigInt(const char* value, int tagging) {
  return (int)check(berEncStrmBigInt(getCtxtPtr(), value, tagging));
}

int ASN1BEROutputStream::encodeBool(ASN1BOOL value, int tagging) {
  return (int)check(berEncStrmBool(getCtxtPtr(), value, tagging));
}

int ASN1BEROutputStream::encodeObjId(const ASN1OBJID& value, int tagging) {
  return (int)check(berEncStrmObjId(getCtxtPtr(), &value, tagging));
}

int ASN1BEROutputStream::encodeObjId64(const ASN1OID64& value, int tagging) {
  return (int)check(berEncStrmObjId64(getCtxtPtr(), &value, tagging));
}

int ASN1BEROutputStream::encodeRelativeOID(const ASN1RELOID& value, int tagging) {
  return (int)check(berEncStrmRelativeOID(getCtxtPtr(), &value, tagging));
}

int ASN1BEROutputStream::encodeBMPStr(const Asn116BitCharString& value, int tagging) {
  return (int)check(berEncStrmBMPStr(getCtxtPtr(), &value, tagging));
}

int ASN1BEROutputStream::encodeUnivStr(const Asn132BitCharString& value, int tagging) {
  return (int)check(berEncStrmUnivStr(getCtxtPtr(), &value, tagging));
}

int ASN1BEROutputStream::encodeNull(int tagging) {
  return (int)check(berEncStrmNull(getCtxtPtr(), tagging));
}

int ASN1BEROutputStream::encodeBitStr(const ASN1OCTET* data, ASN1UINT numbits, int tagging) {
  return (int)check(berEncStrmBitStr(getCtxtPtr(), data, numbits, tagging));
}

int ASN1BEROutputStream::encodeBitStr(const ASN1DynBitStr& value, int tagging) {
  return encodeBitStr(value.data, value.numbits, tagging);
}

int ASN1BEROutputStream::encodeOctStr(const ASN1OCTET* data, ASN1UINT numocts, int tagging) {
  return (int)check(berEncStrmOctStr(getCtxtPtr(), data, numocts, tagging));
}

int ASN1BEROutputStream::encodeOctStr(const ASN1DynOctStr& value, int tagging) {
  return encodeOctStr(value.data, value.numocts, tagging);
}

int ASN1BEROutputStream::encodeCharStr(const char* value, ASN1TagType tag, int tagging) {
  return (int)check(berEncStrmCharStr(getCtxtPtr(), value, tagging, tag));
}

/* A control class encodes backwards into a buffer: the context gets one for the purpose, in
 * place of the stream's staging buffer, and the result is written once it is complete. */
int ASN1BEROutputStream::encodeObj(ASN1CType& c) {
  ASN1CTXT* pctxt = getCtxtPtr();
  const ASN1BUFFER staging = pctxt->buffer;
  xe_setp(pctxt, nullptr, 0);
  int len = c.EncodeTo(*this);
  const ASN1OCTET* message = xe_getp(pctxt);
  ASN1OCTET* encodeBuffer = pctxt->buffer.dynamic ? pctxt->buffer.data : nullptr;
  pctxt->buffer = staging;
  int stat = len > 0 ? rtStreamBufWrite(pctxt, message, (size_t)len) : len;
  if (encodeBuffer) rtMemHeapFreePtr(&pctxt->msgMemHeap, encodeBuffer);
  check(stat);
  return len;
}

ASN1BEROutputStream& ASN1BEROutputStream::operator<<(ASN1CType& c) {
  encodeObj(c);
  return *this;
}

ASN1BEROutputStream& ASN1BEROutputStream::operator<<(const OSEncStrmTag& w) {
  encodeTag(w.value);
  return *this;
}

ASN1BEROutputStream& ASN1BEROutputStream::operator<<(const OSEncStrmLength& w) {
  encodeLength(w.value);
  return *this;
}

ASN1BEROutputStream& ASN1BEROutputStream::operator<<(const OSEncStrmTagAndLen& w) {
  encodeTagAndLen(w.tag, w.length);
  return *this;
}

ASN1BEROutputStream& ASN1BEROutputStream::operator<<(const OSEncStrmTagAndIndefLen& w) {
  encodeTagAndIndefLen(w.value);
  return *this;
}

ASN1BEROutputStream& ASN1BEROutputStream::operator<<(const OSEncStrmEoc& /* w */) {
  encodeEoc();
  return *this;
}

ASN1BEROutputStream& ASN1BEROutputStream::operator<<(const OSEncStrmInt& w) {
  encodeInt(w.value);
  return *this;
}

ASN1BEROutputStream& ASN1BEROutputStream::operator<<(const OSEncStrmInt8& w) {
  encodeInt8(w.value);
  return *this;
}

ASN1BEROutputStream& ASN1BEROutputStream::operator<<(const OSEncStrmInt16& w) {
  encodeInt16(w.value);
  return *this;
}

ASN1BEROutputStream& ASN1BEROutputStream::operator<<(const OSEncStrmInt64& w) {
  encodeInt64(w.value);
  return *this;
}

ASN1BEROutputStream& ASN1BEROutputStream::operator<<(const OSEncStrmUInt& w) {
  encodeUInt(w.value);
  return *this;
}

ASN1BEROutputStream& ASN1BEROutputStream::operator<<(const OSEncStrmUInt8& w) {
  encodeUInt8(w.value);
  return *this;
}

ASN1BEROutputStream& ASN1BEROutputStream::operator<<(const OSEncStrmUInt16& w) {
  encodeUInt16(w.value);
  return *this;
}

ASN1BEROutputStream& ASN1BEROutputStream::operator<<(const OSEncStrmUInt64& w) {
  encodeUInt64(w.value);
  return *this;
}

ASN1BEROutputStream& ASN1BEROutputStream::operator<<(const OSEncStrmEnum& w) {
  encodeEnum(w.value);
  return *this;
}

ASN1BEROutputStream& ASN1BEROutputStream::operator<<(const OSEncStrmReal& w) {
  encodeReal(w.value);
  return *this;
}

ASN1BEROutputStream& ASN1BEROutputStream::operator<<(const OSEncStrmBigInt& w) {
  encodeBigInt(w.value);
  return *this;
}

ASN1BEROutputStream& ASN1BEROutputStream::operator<<(const OSEncStrmBool& w) {
  encodeBool(w.value);
  return *this;
}

ASN1BEROutputStream& ASN1BEROutputStream::operator<<(const OSEncStrmObjId& w) {
  encodeObjId(w.value);
  return *this;
}

ASN1BEROutputStream& ASN1BEROutputStream::operator<<(const OSEncStrmObjId64& w) {
  encodeObjId64(w.value);
  return *this;
}

ASN1BEROutputStream& ASN1BEROutputStream::operator<<(const OSEncStrmRelativeOID& w) {
  encodeRelativeOID(w.value);
  return *this;
}

ASN1BEROutputStream& ASN1BEROutputStream::operator<<(const OSEncStrmBMPString& w) {
  encodeBMPStr(w.value);
  return *this;
}

ASN1BEROutputStream& ASN1BEROutputStream::operator<<(const OSEncStrmUnivString& w) {
  encodeUnivStr(w.value);
  return *this;
}

ASN1BEROutputStream& ASN1BEROutputStream::operator<<(const OSEncStrmNull& /* w */) {
  encodeNull();
  return *this;
}

ASN1BEROutputStream& ASN1BEROutputStream::operator<<(const OSEncStrmBitStr& w) {
  encodeBitStr(w.data, w.numbits);
  return *this;
}

ASN1BEROutputStream& ASN1BEROutputStream::operator<<(const OSEncStrmDynBitStr& w) {
  encodeBitStr(w.value);
  return *this;
}

ASN1BEROutputStream& ASN1BEROutputStream::operator<<(const OSEncStrmOctStr& w) {
  encodeOctStr(w.data, w.numocts);
  return *this;
}

ASN1BEROutputStream& ASN1BEROutputStream::operator<<(const OSEncStrmDynOctStr& w) {
  encodeOctStr(w.value);
  return *this;
}

ASN1BEROutputStream& ASN1BEROutputStream::operator<<(const OSEncStrmCharStr& w) {
  encodeCharStr(w.value, w.tag);
  return *this;
}

ASN1BEROutputStream& ASN1BEROutputStream::operator<<(const OSEncStrmImplInt& w) {
  encodeTag(w.tag);
  encodeInt(w.value, ASN1IMPL);
  return *this;
}

ASN1BEROutputStream& ASN1BEROutputStream::operator<<(const OSEncStrmImplInt8& w) {
  encodeTag(w.tag);
  encodeInt8(w.value, ASN1IMPL);
  return *this;
}

ASN1BEROutputStream& ASN1BEROutputStream::operator<<(const OSEncStrmImplInt16& w) {
  encodeTag(w.tag);
  encodeInt16(w.value, ASN1IMPL);
  return *this;
}

ASN1BEROutputStream& ASN1BEROutputStream::operator<<(const OSEncStrmImplInt64& w) {
  encodeTag(w.tag);
  encodeInt64(w.value, ASN1IMPL);
  return *this;
}

ASN1BEROutputStream& ASN1BEROutputStream::operator<<(const OSEncStrmImplUInt& w) {
  encodeTag(w.tag);
  encodeUInt(w.value, ASN1IMPL);
  return *this;
}

ASN1BEROutputStream& ASN1BEROutputStream::operator<<(const OSEncStrmImplUInt8& w) {
  encodeTag(w.tag);
  encodeUInt8(w.value, ASN1IMPL);
  return *this;
}

ASN1BEROutputStream& ASN1BEROutputStream::operator<<(const OSEncStrmImplUInt16& w) {
  encodeTag(w.tag);
  encodeUInt16(w.value, ASN1IMPL);
  return *this;
}

ASN1BEROutputStream& ASN1BEROutputStream::operator<<(const OSEncStrmImplUInt64& w) {
  encodeTag(w.tag);
  encodeUInt64(w.value, ASN1IMPL);
  return *this;
}

ASN1BEROutputStream& ASN1BEROutputStream::operator<<(const OSEncStrmImplEnum& w) {
  encodeTag(w.tag);
  encodeEnum(w.value, ASN1IMPL);
  return *this;
}

ASN1BEROutputStream& ASN1BEROutputStream::operator<<(const OSEncStrmImplReal& w) {
  encodeTag(w.tag);
  encodeReal(w.value, ASN1IMPL);
  return *this;
}

ASN1BEROutputStream& ASN1BEROutputStream::operator<<(const OSEncStrmImplBigInt& w) {
  encodeTag(w.tag);
  encodeBigInt(w.value, ASN1IMPL);
  return *this;
}

ASN1BEROutputStream& ASN1BEROutputStream::operator<<(const OSEncStrmImplBool& w) {
  encodeTag(w.tag);
  encodeBool(w.value, ASN1IMPL);
  return *this;
}

ASN1BEROutputStream& ASN1BEROutputStream::operator<<(const OSEncStrmImplObjId& w) {
  encodeTag(w.tag);
  encodeObjId(w.value, ASN1IMPL);
  return *this;
}

ASN1BEROutputStream& ASN1BEROutputStream::operator<<(const OSEncStrmImplObjId64& w) {
  encodeTag(w.tag);
  encodeObjId64(w.value, ASN1IMPL);
  return *this;
}

ASN1BEROutputStream& ASN1BEROutputStream::operator<<(const OSEncStrmImplRelativeOID& w) {
  encodeTag(w.tag);
  encodeRelativeOID(w.value, ASN1IMPL);
  return *this;
}

ASN1BEROutputStream& ASN1BEROutputStream::operator<<(const OSEncStrmImplBMPString& w) {
  encodeTag(w.tag);
  encodeBMPStr(w.value, ASN1IMPL);
  return *this;
}

ASN1BEROutputStream& ASN1BEROutputStream::operator<<(const OSEncStrmImplUnivString& w) {
  encodeTag(w.tag);
  encodeUnivStr(w.value, ASN1IMPL);
  return *this;
}

ASN1BEROutputStream& ASN1BEROutputStream::operator<<(const OSEncStrmImplNull& w) {
  encodeTag(w.tag);
  encodeNull(ASN1IMPL);
  return *this;
}

ASN1BEROutputStream& ASN1BEROutputStream::operator<<(const OSEncStrmImplBitStr& w) {
  encodeTag(w.tag);
  encodeBitStr(w.data, w.numbits, ASN1IMPL);
  return *this;
}

ASN1BEROutputStream& ASN1BEROutputStream::operator<<(const OSEncStrmImplDynBitStr& w) {
  encodeTag(w.tag);
  encodeBitStr(w.value, ASN1IMPL);
  return *this;
}

ASN1BEROutputStream& ASN1BEROutputStream::operator<<(const OSEncStrmImplOctStr& w) {
  encodeTag(w.tag);
  encodeOctStr(w.data, w.numocts, ASN1IMPL);
  return *this;
}

ASN1BEROutputStream& ASN1BEROutputStream::operator<<(const OSEncStrmImplDynOctStr& w) {
  encodeTag(w.tag);
  encodeOctStr(w.value, ASN1IMPL);
  return *this;
}

ASN1BEROutputStream& ASN1BEROutputStream::operator<<(const OSEncStrmImplCharStr& w) {
  encodeTag(w.tag);
  encodeCharStr(w.value, 0, ASN1IMPL);
  return *this;
}

/* ---- File variants ---------------------------------------------------------------------- */

ASN1BERFileInputStream::ASN1BERFileInputStream(const char* pFilename) : ASN1BERInputStream(1) {
  check(rtStreamFileOpen(getCtxtPtr(), pFilename, OSRTSTRMF_INPUT));
}

ASN1BERFileInputStream::ASN1BERFileInputStream(FILE* file) : ASN1BERInputStream(1) {
  check(rtStreamFileAttach(getCtxtPtr(), file, OSRTSTRMF_INPUT));
}

ASN1BERFileOutputStream::ASN1BERFileOutputStream(const char* pFilename)
    : ASN1BEROutputStream(1) {
  check(rtStreamFileOpen(getCtxtPtr(), pFilename, OSRTSTRMF_OUTPUT));
}

ASN1BERFileOutputStream::ASN1BERFileOutputStream(FILE* file) : ASN1BEROutputStream(1) {
  check(rtStreamFileAttach(getCtxtPtr(), file, OSRTSTRMF_OUTPUT));
}
