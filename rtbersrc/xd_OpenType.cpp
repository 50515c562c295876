/* Open types: whole elements kept as encoded, alone or as a list of extension elements. */
#include <string.h>

#include <quillon/rtList.h>

#include "xd_common.h"

using namespace qn::xd;

namespace {

bool atStopTag(ASN1CTXT* pctxt, ASN1TagType stopTag) {
  if (stopTag == ASN_K_NOTAG) return false;
  ASN1UINT idx = pctxt->buffer.byteIndex;
  ASN1TagType tag;
  int len;
  return readHeader(pctxt, &idx, &tag, &len) == 0 && ((tag ^ stopTag) & ~TM_CONS) == 0;
}

/* End-of-contents (tag 0, no contents, in whatever length form) only closes an indefinite
 * length; taken as a value it could never be encoded again, since a reader would take it for
 * that close. */
bool isEndOfContents(const ASN1OCTET* data, ASN1UINT end, ASN1UINT start) {
  if (data[start] != 0x00 && data[start] != 0x1F) return false; /* tag 0 starts no other way */
  ASN1TagType tag;
  int len;
  return readHeaderAt(data, end, &start, &tag, &len) == 0 && tag == 0 && len == 0;
}

/* The element at the position, copied to the heap unless borrow lets it stay in place. */
int takeElement(ASN1CTXT* pctxt, bool borrow, const ASN1OCTET** data_p, ASN1UINT* numocts_p) {
  if (streamEnded(pctxt)) return LOG_RTERR(pctxt, ASN_E_ENDOFBUF);
  ASN1BUFFER& buf = pctxt->buffer;
  const ASN1UINT start = buf.byteIndex;
  ASN1UINT end = start;
  int stat = skipElement(buf.data, buf.size, &end);
  if (stat < 0) return LOG_RTERR(pctxt, stat);
  const ASN1UINT numocts = end - start;
  if (isEndOfContents(buf.data, end, start)) return LOG_RTERR(pctxt, ASN_E_BADTAG);
  if (borrow) {
    *data_p = buf.data + start;
  } else {
    ASN1OCTET* mem = static_cast<ASN1OCTET*>(allocValue(pctxt, numocts));
    if (!mem) return LOG_RTERR(pctxt, ASN_E_NOMEM);
    memcpy(mem, buf.data + start, numocts);
    *data_p = mem;
  }
  buf.byteIndex = end;
  *numocts_p = numocts;
  return 0;
}

}  // namespace

QN_BEGIN_C

int xd_OpenType(ASN1CTXT* pctxt, const ASN1OCTET** object_p2, ASN1UINT* numocts_p) {
  int stat = takeElement(pctxt, (pctxt->flags & ASN1FASTCOPY) != 0, object_p2, numocts_p);
  if (stat < 0) return LOG_RTERR(pctxt, stat);
  return 0;
}

/* Extension elements are always copied, whatever fast copy says: rtMemFreeOpenSeqExt returns
 * their octets to the heap. Node and element share one block, so freeing the node frees
 * both. */
int xd_OpenTypeAppend(ASN1CTXT* pctxt, _Asn1RTDList* pElemList) {
  const size_t nodeSize = sizeof(_Asn1RTDListNode);
  ASN1OCTET* block = static_cast<ASN1OCTET*>(allocValue(pctxt, nodeSize + sizeof(ASN1TOpenType)));
  if (!block) return LOG_RTERR(pctxt, ASN_E_NOMEM);
  ASN1TOpenType* element = reinterpret_cast<ASN1TOpenType*>(block + nodeSize);
  int stat = takeElement(pctxt, false, &element->data, &element->numocts);
  if (stat < 0) {
    rtMemHeapFreePtr(&pctxt->memHeap, block);
    return LOG_RTERR(pctxt, stat);
  }
  rtDListAppendNode(pctxt, pElemList, element);
  return 0;
}

int xd_OpenTypeExt(ASN1CTXT* pctxt, ASN1CCB* ccb_p, ASN1TagType tag, _Asn1RTDList* pElemList) {
  while (!xd_chkend(pctxt, ccb_p) && !atStopTag(pctxt, tag)) {
    int stat = pElemList ? xd_OpenTypeAppend(pctxt, pElemList) : xd_NextElement(pctxt);
    if (stat < 0) return LOG_RTERR(pctxt, stat);
  }
  return 0;
}

QN_END_C
