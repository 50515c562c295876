/* DER order for the components of a SET OF. */
#include <string.h>

#include <algorithm>

#include <quillon/rtList.h>
#include <quillon/rtMemHeap.h>

#include "xe_common.h"

namespace {

struct Component {
  const ASN1OCTET* octets;
  ASN1UINT length;
};

/* Ascending octet order; a component that begins a longer one comes first. Equal components
 * are identical octets, so the order among them cannot show. */
bool derLess(const Component& a, const Component& b) {
  ASN1UINT common = a.length < b.length ? a.length : b.length;
  int diff = common == 0 ? 0 : memcmp(a.octets, b.octets, common);
  return diff != 0 ? diff < 0 : a.length < b.length;
}

/* A descriptor must name octets inside what is written, or the sort would read outside. */
bool locate(const ASN1BUFFER& b, const Asn1BufLocDescr* d, Component* out) {
  if (d == nullptr || d->numocts < 0 || d->offset < 0) return false;
  ASN1UINT64 start = (ASN1UINT64)b.size - 1 - (ASN1UINT64)d->offset;
  if (d->offset >= (ASN1INT)b.size || start < b.byteIndex ||
      start + (ASN1UINT)d->numocts > b.size)
    return false;
  out->octets = b.data + start;
  out->length = (ASN1UINT)d->numocts;
  return true;
}

int collectComponents(ASN1CTXT* pctxt, const _Asn1RTDList* pList, Component* out,
                      ASN1UINT64* total) {
  *total = 0;
  ASN1UINT i = 0;
  for (const _Asn1RTDListNode* node = pList->head; node != nullptr; node = node->next, ++i) {
    if (i == pList->count || !locate(pctxt->buffer, (const Asn1BufLocDescr*)node->data, &out[i]))
      return LOG_RTERR(pctxt, ASN_E_BADVALUE);
    *total += out[i].length;
  }
  if (i != pList->count || *total > pctxt->buffer.size - pctxt->buffer.byteIndex)
    return LOG_RTERR(pctxt, ASN_E_BADVALUE);
  return 0;
}

/* Components are appended as encoded, and encoding runs backwards, so a list in descending
 * order stands ascending in the buffer already. */
bool alreadyInOrder(const Component* c, ASN1UINT n) {
  for (ASN1UINT i = 1; i < n; ++i) {
    if (derLess(c[i - 1], c[i])) return false;
  }
  return true;
}

/* Rewrites the total octets at the front of the encoding in sorted order. */
int rewriteSorted(ASN1CTXT* pctxt, Component* c, ASN1UINT n, ASN1UINT total) {
  ASN1OCTET* work = (ASN1OCTET*)rtMemHeapAlloc(&pctxt->memHeap, total);
  if (work == nullptr) return LOG_RTERR(pctxt, ASN_E_NOMEM);
  std::sort(c, c + n, derLess);
  ASN1OCTET* p = work;
  for (ASN1UINT i = 0; i < n; ++i) {
    memcpy(p, c[i].octets, c[i].length);
    p += c[i].length;
  }
  memcpy(pctxt->buffer.data + pctxt->buffer.byteIndex, work, total);
  rtMemHeapFreePtr(&pctxt->memHeap, work);
  return 0;
}

int sortComponents(ASN1CTXT* pctxt, const _Asn1RTDList* pList) {
  ASN1UINT n = pList->count;
  Component* c = (Component*)rtMemHeapAlloc(&pctxt->memHeap, (size_t)n * sizeof(Component));
  if (c == nullptr) return LOG_RTERR(pctxt, ASN_E_NOMEM);
  ASN1UINT64 total;
  int stat = collectComponents(pctxt, pList, c, &total);
  if (stat == 0 && !alreadyInOrder(c, n)) stat = rewriteSorted(pctxt, c, n, (ASN1UINT)total);
  rtMemHeapFreePtr(&pctxt->memHeap, c);
  return stat < 0 ? stat : (int)total;
}

}  // namespace

/* Equal components are identical octets, so any sort gives the same result; sorting an array
 * keeps a large SET OF at n log n comparisons instead of a list sort's n squared. */
int xe_derCanonicalSort(ASN1CTXT* pctxt, _Asn1RTDList* pList) {
  if (pList == nullptr || pList->head == nullptr) return 0;
  int result = sortComponents(pctxt, pList);
  rtDListFreeAll(pctxt, pList);
  return result;
}
