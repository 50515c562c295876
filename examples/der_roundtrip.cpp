// der_roundtrip: encodes a small record to DER with the runtime's primitive encoders, decodes it
// back with the primitive decoders, then decodes a damaged copy and prints the error report.
//
//   Record ::= SEQUENCE {
//     version    INTEGER,
//     algorithm  OBJECT IDENTIFIER,
//     digest     OCTET STRING }
//
// Exit status: 0 when the round trip gives back the values and the damaged copy is refused.
#include <quillon/quillon.h>

#include <cstdio>
#include <cstring>

namespace {

const ASN1TagType kSequenceTag = TM_UNIV | TM_CONS | ASN_ID_SEQ;

struct Record {
  ASN1INT version;
  ASN1OBJID algorithm;
  ASN1DynOctStr digest;
};

// The encoder fills its buffer from the end towards the start, so the components go in last
// first and the SEQUENCE header, which needs their total length, goes in after them.
int encodeRecord(ASN1CTXT* ctxt, const Record& record) {
  int total = xe_octstr(ctxt, record.digest.data, record.digest.numocts, ASN1EXPL);
  if (total < 0) {
    return total;
  }
  int len = xe_objid(ctxt, &record.algorithm, ASN1EXPL);
  if (len < 0) {
    return len;
  }
  total += len;
  len = xe_integer(ctxt, &record.version, ASN1EXPL);
  if (len < 0) {
    return len;
  }
  total += len;
  return xe_tag_len(ctxt, kSequenceTag, total);
}

// Adds this function's place to the error trace on the way out, as every level of a decoder
// does, so that the report shows where the failure was met and who asked.
int traced(ASN1CTXT* ctxt, int stat, int line) {
  return rtErrSetData(&ctxt->errInfo, stat, "examples/der_roundtrip", line);
}

int decodeRecordContents(ASN1CTXT* ctxt, Record& record) {
  int stat = xd_integer(ctxt, &record.version, ASN1EXPL, 0);
  if (stat < 0) {
    return traced(ctxt, stat, __LINE__);
  }
  stat = xd_objid(ctxt, &record.algorithm, ASN1EXPL, 0);
  if (stat < 0) {
    return traced(ctxt, stat, __LINE__);
  }
  stat = xd_octstr(ctxt, &record.digest.data, &record.digest.numocts, ASN1EXPL, 0);
  if (stat < 0) {
    return traced(ctxt, stat, __LINE__);
  }
  return 0;
}

// Decoded octets come from the context's heap and live until the context is freed.
int decodeRecord(ASN1CTXT* ctxt, const ASN1OCTET* msg, int msglen, Record& record) {
  int stat = xd_setp(ctxt, msg, msglen, nullptr, nullptr);
  if (stat < 0) {
    return traced(ctxt, stat, __LINE__);
  }
  int seqlen = 0;
  stat = xd_match(ctxt, kSequenceTag, &seqlen, XM_ADVANCE);
  if (stat < 0) {
    return traced(ctxt, stat, __LINE__);
  }
  ASN1CCB ccb = {ctxt->buffer.data + ctxt->buffer.byteIndex, seqlen};
  stat = decodeRecordContents(ctxt, record);
  if (stat < 0) {
    return traced(ctxt, stat, __LINE__);
  }
  // A component the record does not know about is an error here; extensible types would
  // skip it instead.
  if (!xd_chkend(ctxt, &ccb)) {
    return traced(ctxt, ASN_E_INVLEN, __LINE__);
  }
  return 0;
}

void printHex(const char* label, const ASN1OCTET* data, int len) {
  std::printf("%s (%d octets):", label, len);
  for (int i = 0; i < len; ++i) {
    std::printf(" %02X", data[i]);
  }
  std::printf("\n");
}

void printRecord(const Record& record) {
  std::printf("version   = %d\n", static_cast<int>(record.version));
  std::printf("algorithm = ");
  for (ASN1UINT i = 0; i < record.algorithm.numids; ++i) {
    std::printf("%s%u", i ? "." : "", static_cast<unsigned>(record.algorithm.subid[i]));
  }
  std::printf("\n");
  printHex("digest   ", record.digest.data, static_cast<int>(record.digest.numocts));
}

bool sameRecord(const Record& a, const Record& b) {
  return a.version == b.version && a.algorithm.numids == b.algorithm.numids &&
         std::memcmp(a.algorithm.subid, b.algorithm.subid,
                     a.algorithm.numids * sizeof a.algorithm.subid[0]) == 0 &&
         a.digest.numocts == b.digest.numocts &&
         std::memcmp(a.digest.data, b.digest.data, a.digest.numocts) == 0;
}

// Encodes and decodes one record on ctxt; false (with the report printed) on any failure.
bool roundTrip(ASN1CTXT* ctxt, const Record& original) {
  xe_setp(ctxt, nullptr, 0);  // a dynamic buffer from the context's heap
  int len = encodeRecord(ctxt, original);
  if (len < 0) {
    rtErrPrint(&ctxt->errInfo);
    return false;
  }
  const ASN1OCTET* der = xe_getp(ctxt);
  printHex("DER", der, len);

  // The decoder takes its own context, so the encoding stays where the encoder left it.
  ASN1CTXT dctxt;
  if (rtInitContext(&dctxt, nullptr) != 0) {
    return false;
  }
  Record decoded = {};
  int stat = decodeRecord(&dctxt, der, len, decoded);
  bool ok = stat == 0;
  if (ok) {
    printRecord(decoded);
    ok = sameRecord(original, decoded);
    std::printf("round trip: %s\n", ok ? "values match" : "VALUES DIFFER");
  } else {
    rtErrPrint(&dctxt.errInfo);
  }
  rtFreeContext(&dctxt);
  return ok;
}

// A record whose OBJECT IDENTIFIER claims five octets where only three are left: the decoder
// must refuse it and say where.
bool refuseBroken() {
  static const ASN1OCTET broken[] = {0x30, 0x08, 0x02, 0x01, 0x03, 0x06, 0x05, 0x2A, 0x86, 0x48};
  printHex("broken DER", broken, sizeof broken);
  ASN1CTXT ctxt;
  if (rtInitContext(&ctxt, nullptr) != 0) {
    return false;
  }
  Record decoded = {};
  int stat = decodeRecord(&ctxt, broken, sizeof broken, decoded);
  if (stat >= 0) {
    std::printf("the broken encoding was accepted\n");
  } else {
    rtErrPrint(&ctxt.errInfo);
  }
  rtFreeContext(&ctxt);
  return stat < 0;
}

}  // namespace

int main() {
  static const ASN1OCTET digest[] = {0xDE, 0xAD, 0xBE, 0xEF};
  Record record = {};
  record.version = 3;
  // 2.16.840.1.101.3.4.2.1: SHA-256.
  const ASN1UINT arcs[] = {2, 16, 840, 1, 101, 3, 4, 2, 1};
  record.algorithm.numids = sizeof arcs / sizeof arcs[0];
  std::memcpy(record.algorithm.subid, arcs, sizeof arcs);
  record.digest.numocts = sizeof digest;
  record.digest.data = digest;

  ASN1CTXT ctxt;
  if (rtInitContext(&ctxt, nullptr) != 0) {
    std::fprintf(stderr, "cannot initialise a context\n");
    return 1;
  }
  bool ok = roundTrip(&ctxt, record);
  rtFreeContext(&ctxt);
  std::printf("\n");
  ok = refuseBroken() && ok;
  return ok ? 0 : 1;
}
