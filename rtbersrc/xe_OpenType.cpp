/* Open types: encodings made elsewhere, copied in as they stand. */
#include <quillon/asn1berdec.h>
#include <quillon/rtContext.h>

#include "xe_common.h"

namespace {

/* Header and contents of the encoding at object_p, as the decoder reads its outer header. A
 * context of its own keeps the caller's buffer and flags untouched; it shares nothing that
 * needs a heap, so none is created. */
int encodedLength(ASN1CTXT* pctxt, const ASN1OCTET* object_p, ASN1UINT numocts) {
  if (numocts > 0x7FFFFFFFu) return LOG_RTERR(pctxt, ASN_E_BADVALUE);
  ASN1CTXT reader;
  rtInitSubContext(&reader, pctxt);
  ASN1TagType tag = 0;
  int len = 0;
  int stat = xd_setp(&reader, object_p, (int)numocts, &tag, &len);
  ASN1UINT definiteLength = reader.buffer.size; /* the outer element, header included */
  if (stat < 0) rtErrCopyData(&reader.errInfo, &pctxt->errInfo);
  reader.buffer.data = nullptr; /* the caller's bytes: nothing of the reader's to free */
  reader.buffer.dynamic = 0;
  rtFreeContext(&reader);
  if (stat < 0) return LOG_RTERR(pctxt, stat);
  if (tag == 0 && len == 0) return LOG_RTERR(pctxt, ASN_E_BADVALUE); /* end-of-contents */
  if (len != ASN_K_INDEFLEN) return (int)definiteLength;
  /* Bounded by what the caller gave, so a missing end-of-contents cannot lead past it. */
  len = xd_indeflen_ex(object_p, (int)numocts);
  return len < 0 ? LOG_RTERR(pctxt, len) : len;
}

}  // namespace

int xe_OpenType(ASN1CTXT* pctxt, const ASN1OCTET* object_p, ASN1UINT numocts) {
  if (numocts == 0) return 0;
  if (object_p == nullptr) return LOG_RTERR(pctxt, ASN_E_BADVALUE);
  int len = encodedLength(pctxt, object_p, numocts);
  if (len < 0) return len;
  /* Generated code may encode an open type straight into the buffer and pass that back. */
  if (object_p == xe_getp(pctxt)) return len;
  return xe_memcpy(pctxt, object_p, (ASN1UINT)len);
}

int xe_OpenTypeExt(ASN1CTXT* pctxt, const _Asn1RTDList* pElemList) {
  if (pElemList == nullptr) return 0;
  int total = 0;
  for (const _Asn1RTDListNode* node = pElemList->tail; node != nullptr; node = node->prev) {
    const ASN1TOpenType* elem = (const ASN1TOpenType*)node->data;
    if (elem == nullptr) continue;
    int len = xe_OpenType(pctxt, elem->data, elem->numocts);
    if (len < 0) return len;
    total += len;
  }
  return total;
}
