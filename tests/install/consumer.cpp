// Uses the installed library through the umbrella header only: encodes a value to DER, decodes
// it back and reads an error report, checking each documented result. Exit status 0 when all
// hold; each failure is named on standard error.
#include <quillon/quillon.h>

#include <cstdio>
#include <cstring>

namespace {

int failures = 0;

void check(bool ok, const char* what) {
  if (!ok) {
    std::fprintf(stderr, "consumer: FAILED: %s\n", what);
    ++failures;
  }
}

// SEQUENCE { INTEGER 128, OBJECT IDENTIFIER 1.2.840.113549 } as DER.
const ASN1OCTET kExpected[] = {0x30, 0x0C, 0x02, 0x02, 0x00, 0x80, 0x06, 0x06,
                               0x2A, 0x86, 0x48, 0x86, 0xF7, 0x0D};

void encodeIntoStaticBuffer() {
  ASN1CTXT ctxt;
  check(rtInitContext(&ctxt, nullptr) == 0, "rtInitContext");
  ASN1OCTET buf[64];
  xe_setp(&ctxt, buf, sizeof buf);
  ASN1OBJID oid = {};
  const ASN1UINT arcs[] = {1, 2, 840, 113549};
  oid.numids = 4;
  std::memcpy(oid.subid, arcs, sizeof arcs);
  ASN1INT value = 128;
  int len = xe_objid(&ctxt, &oid, ASN1EXPL);
  check(len == 8, "xe_objid length");
  len += xe_integer(&ctxt, &value, ASN1EXPL);
  len = xe_tag_len(&ctxt, TM_UNIV | TM_CONS | ASN_ID_SEQ, len);
  check(len == static_cast<int>(sizeof kExpected), "encoded length");
  check(len > 0 && std::memcmp(xe_getp(&ctxt), kExpected, sizeof kExpected) == 0,
        "encoded octets");
  rtFreeContext(&ctxt);
}

void decodeBack() {
  ASN1CTXT ctxt;
  check(rtInitContext(&ctxt, nullptr) == 0, "rtInitContext");
  int seqlen = 0;
  check(xd_setp(&ctxt, kExpected, sizeof kExpected, nullptr, nullptr) == 0, "xd_setp");
  check(xd_match(&ctxt, TM_UNIV | TM_CONS | ASN_ID_SEQ, &seqlen, XM_ADVANCE) == 0, "xd_match");
  check(seqlen == 12, "SEQUENCE length");
  ASN1INT value = 0;
  check(xd_integer(&ctxt, &value, ASN1EXPL, 0) == 0 && value == 128, "xd_integer");
  ASN1OBJID oid = {};
  check(xd_objid(&ctxt, &oid, ASN1EXPL, 0) == 0 && oid.numids == 4 && oid.subid[3] == 113549,
        "xd_objid");
  rtFreeContext(&ctxt);
}

void reportError() {
  ASN1CTXT ctxt;
  check(rtInitContext(&ctxt, nullptr) == 0, "rtInitContext");
  // INTEGER whose length says two octets where one is left.
  const ASN1OCTET cut[] = {0x02, 0x02, 0x01};
  ASN1INT value = 0;
  int stat = xd_setp(&ctxt, cut, sizeof cut, nullptr, nullptr);
  if (stat == 0) {
    stat = xd_integer(&ctxt, &value, ASN1EXPL, 0);
  }
  check(stat < 0, "a cut INTEGER is refused");
  const char* text = rtErrGetText(&ctxt);
  check(text != nullptr && std::strncmp(text, "ASN.1 ERROR: Status -", 21) == 0,
        "error report text");
  check(text != nullptr && std::strstr(text, "Module: rtbersrc/") != nullptr,
        "error report names the runtime module");
  rtFreeContext(&ctxt);
}

}  // namespace

int main() {
  encodeIntoStaticBuffer();
  decodeBack();
  reportError();
  if (failures == 0) {
    std::printf("consumer: all checks passed\n");
  }
  return failures == 0 ? 0 : 1;
}
