// The structural walkers on hostile input: skipping, counting, end-of-contents search, the
// end test of constructed values, tag search and extension collection, all over a message of
// known size. Each must stop, on every input, with a status.
#include <quillon/asn1berdec.h>
#include <quillon/rtContext.h>
#include <quillon/rtList.h>
#include <quillon/rtMemHeap.h>

#include <stddef.h>
#include <stdint.h>

namespace {

void restart(ASN1CTXT* c) {
  c->buffer.byteIndex = 0;
  rtErrReset(&c->errInfo);
}

void skipAll(ASN1CTXT* c) {
  while (c->buffer.byteIndex < c->buffer.size && xd_NextElement(c) == 0) {
  }
}

void countAll(ASN1CTXT* c) {
  int count;
  xd_count(c, (int)c->buffer.size, &count);
  xd_count(c, ASN_K_INDEFLEN, &count);
}

/* From behind every header the top-level walk meets, as if each were indefinite. */
void movePastEOCEverywhere(ASN1CTXT* c) {
  for (int steps = 0; steps < 64 && c->buffer.byteIndex < c->buffer.size; ++steps) {
    int len;
    if (xd_tag_len(c, nullptr, &len, XM_ADVANCE) != 0) break;
    ASN1UINT behindHeader = c->buffer.byteIndex;
    xd_MovePastEOC(c);
    c->buffer.byteIndex = behindHeader;
  }
}

/* The loop a generated SEQUENCE decoder runs over its components. */
void walkComponents(ASN1CTXT* c) {
  int len;
  if (xd_tag_len(c, nullptr, &len, XM_ADVANCE) != 0) return;
  ASN1CCB ccb = {c->buffer.data + c->buffer.byteIndex, len};
  while (!xd_chkend(c, &ccb)) {
    if (xd_NextElement(c) != 0) return;
  }
}

void collectExtensions(ASN1CTXT* c, ASN1TagType stopTag) {
  int len;
  if (xd_tag_len(c, nullptr, &len, XM_ADVANCE) != 0) return;
  ASN1CCB ccb = {c->buffer.data + c->buffer.byteIndex, len};
  _Asn1RTDList list;
  rtDListInit(&list);
  xd_OpenTypeExt(c, &ccb, stopTag, &list);
  rtMemFreeOpenSeqExt(c, &list);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < 1 || size > 0x100000) return 0;
  ASN1CTXT ctxt;
  if (rtInitContext(&ctxt, nullptr) != 0) return 0;
  rtInitContextBuffer(&ctxt, const_cast<uint8_t*>(data), (int)size);
  /* A tag to look for, taken from the input so the search can succeed. */
  const ASN1TagType wanted = ((ASN1TagType)(data[0] & 0xC0) << 24) | (data[0] & 0x1F);

  skipAll(&ctxt);
  restart(&ctxt);
  countAll(&ctxt);
  restart(&ctxt);
  movePastEOCEverywhere(&ctxt);
  restart(&ctxt);
  walkComponents(&ctxt);
  restart(&ctxt);
  int len;
  xd_match(&ctxt, wanted, &len, XM_SKIP | XM_ADVANCE);
  restart(&ctxt);
  xd_match(&ctxt, wanted, &len, XM_ENTER | XM_SKIP);
  restart(&ctxt);
  collectExtensions(&ctxt, wanted);
  restart(&ctxt);
  xd_indeflen_ex(data, (int)size);

  rtFreeContext(&ctxt);
  return 0;
}
