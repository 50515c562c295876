// Every primitive BER decoder on hostile input. The first octet chooses the decoder (low six
// bits), implicit tagging (0x40: the header is read generically first, as a generated decoder
// reads an implicit tag) and fast copy (0x80); the rest is the message, of known size.
// Results are read back in full so that a pointer or count that lies shows up under ASan.
#include <quillon/asn1berdec.h>
#include <quillon/rtContext.h>

#include <stddef.h>
#include <stdint.h>
#include <string.h>

namespace {

volatile unsigned g_sink;

void touch(const void* p, size_t n) {
  const unsigned char* b = static_cast<const unsigned char*>(p);
  unsigned sum = 0;
  for (size_t i = 0; i < n; ++i) sum += b[i];
  g_sink = sum;
}

template <typename T, typename Fn>
int decodeScalar(Fn fn, ASN1CTXT* c, int tagging, int length) {
  T value{};
  int stat = fn(c, &value, tagging, length);
  if (stat == 0) touch(&value, sizeof value);
  return stat;
}

template <typename Fn>
int decodeDynamic(Fn fn, ASN1CTXT* c, int tagging, int length, bool bits) {
  const ASN1OCTET* data = nullptr;
  ASN1UINT n = 0;
  int stat = fn(c, &data, &n, tagging, length);
  if (stat == 0 && n) touch(data, bits ? (n + 7) / 8 : n);
  return stat;
}

template <typename Fn>
int decodeFixed(Fn fn, ASN1CTXT* c, int tagging, int length, ASN1UINT capacity, bool bits) {
  ASN1OCTET buf[64];
  ASN1UINT n = capacity;
  int stat = fn(c, buf, &n, tagging, length);
  if (stat == 0) touch(buf, bits ? (n + 7) / 8 : n);
  return stat;
}

template <typename Str, typename Fn>
int decodeWide(Fn fn, ASN1CTXT* c, int tagging, ASN1TagType tag, int length) {
  Str s{};
  int stat = fn(c, &s, tagging, tag, length);
  if (stat == 0) touch(s.data, (size_t)s.nchars * sizeof *s.data);
  return stat;
}

template <typename Oid, typename Fn>
int decodeOid(Fn fn, ASN1CTXT* c, int tagging, int length) {
  Oid oid;
  int stat = fn(c, &oid, tagging, length);
  if (stat == 0) touch(oid.subid, oid.numids * sizeof oid.subid[0]);
  return stat;
}

int decodeText(int (*fn)(ASN1CTXT*, const char**, int, int), ASN1CTXT* c, int tagging,
               int length) {
  const char* text = nullptr;
  int stat = fn(c, &text, tagging, length);
  if (stat == 0) touch(text, strlen(text));
  return stat;
}

int decodeCharstr(ASN1CTXT* c, const char** text, int tagging, int length) {
  return xd_charstr(c, text, tagging, ASN_ID_IA5String, length);
}

int decodeOpenType(ASN1CTXT* c) {
  const ASN1OCTET* data = nullptr;
  ASN1UINT n = 0;
  int stat = xd_OpenType(c, &data, &n);
  if (stat == 0) touch(data, n);
  return stat;
}

int decodeNull(ASN1CTXT* c, int tagging, int length) { return xd_null(c, tagging, length); }

const int kDecoders = 25;

int decodeOne(int which, ASN1CTXT* c, int tagging, int length) {
  switch (which) {
    case 0: return decodeScalar<ASN1INT>(xd_integer, c, tagging, length);
    case 1: return decodeScalar<ASN1INT8>(xd_int8, c, tagging, length);
    case 2: return decodeScalar<ASN1SINT>(xd_int16, c, tagging, length);
    case 3: return decodeScalar<ASN1INT64>(xd_int64, c, tagging, length);
    case 4: return decodeScalar<ASN1ENUM>(xd_enum, c, tagging, length);
    case 5: return decodeScalar<ASN1UINT>(xd_unsigned, c, tagging, length);
    case 6: return decodeScalar<ASN1UINT8>(xd_uint8, c, tagging, length);
    case 7: return decodeScalar<ASN1USINT>(xd_uint16, c, tagging, length);
    case 8: return decodeScalar<ASN1UINT64>(xd_uint64, c, tagging, length);
    case 9: return decodeScalar<ASN1BOOL>(xd_boolean, c, tagging, length);
    case 10: return decodeNull(c, tagging, length);
    case 11: return decodeScalar<ASN1REAL>(xd_real, c, tagging, length);
    case 12: return decodeDynamic(xd_bitstr, c, tagging, length, true);
    case 13: return decodeFixed(xd_bitstr_s, c, tagging, length, 8 * 64, true);
    case 14: return decodeFixed(xd_bitstr_s, c, tagging, length, 13, true);
    case 15: return decodeDynamic(xd_octstr, c, tagging, length, false);
    case 16: return decodeFixed(xd_octstr_s, c, tagging, length, 64, false);
    case 17: return decodeFixed(xd_octstr_s, c, tagging, length, 3, false);
    case 18: return decodeText(decodeCharstr, c, tagging, length);
    case 19:
      return decodeWide<Asn116BitCharString>(xd_16BitCharStr, c, tagging, ASN_ID_BMPString,
                                             length);
    case 20:
      return decodeWide<Asn132BitCharString>(xd_32BitCharStr, c, tagging,
                                             ASN_ID_UniversalString, length);
    case 21: return decodeOid<ASN1OBJID>(xd_objid, c, tagging, length);
    case 22: return decodeOid<ASN1OID64>(xd_oid64, c, tagging, length);
    case 23: return decodeOid<ASN1RELOID>(xd_reloid, c, tagging, length);
    case 24: return decodeText(xd_bigint, c, tagging, length);
    default: return decodeOpenType(c);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < 1 || size > 0x100000) return 0;
  const uint8_t selector = data[0];
  ASN1CTXT ctxt;
  if (rtInitContext(&ctxt, nullptr) != 0) return 0;
  rtInitContextBuffer(&ctxt, const_cast<uint8_t*>(data + 1), (int)(size - 1));
  if (selector & 0x80) rtSetFastCopy(&ctxt);

  int tagging = ASN1EXPL;
  int length = 0;
  int stat = 0;
  if (selector & 0x40) {
    tagging = ASN1IMPL;
    stat = xd_tag_len(&ctxt, nullptr, &length, XM_ADVANCE);
  }
  /* Decoders run until the message is used up or one fails, as a SEQUENCE of them would. */
  while (stat == 0 && ctxt.buffer.byteIndex < ctxt.buffer.size) {
    ASN1UINT before = ctxt.buffer.byteIndex;
    stat = decodeOne((selector & 0x3F) % (kDecoders + 1), &ctxt, tagging, length);
    if (ctxt.buffer.byteIndex == before) break;
    tagging = ASN1EXPL;
  }
  rtFreeContext(&ctxt);
  return 0;
}
