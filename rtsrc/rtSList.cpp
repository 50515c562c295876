/* The singly linked list: nodes from the list's context heap, or from malloc without one. */
#include <stdlib.h>

#include <quillon/rtList.h>
#include <quillon/rtMemHeap.h>

namespace {

void* allocFor(ASN1CTXT* pctxt, size_t size) {
  return pctxt ? rtMemHeapAlloc(&pctxt->memHeap, size) : malloc(size);
}

void freeFor(ASN1CTXT* pctxt, void* mem) {
  if (pctxt) rtMemHeapFreePtr(&pctxt->memHeap, mem);
  else free(mem);
}

}  // namespace

void rtSListInit(_Asn1RTSList* pList) { rtSListInitEx(nullptr, pList); }

void rtSListInitEx(ASN1CTXT* pctxt, _Asn1RTSList* pList) {
  if (!pList) return;
  pList->count = 0;
  pList->head = nullptr;
  pList->tail = nullptr;
  pList->pctxt = pctxt;
}

_Asn1RTSList* rtSListCreate(void) {
  auto* pList = static_cast<_Asn1RTSList*>(malloc(sizeof(_Asn1RTSList)));
  rtSListInit(pList);
  return pList;
}

_Asn1RTSList* rtSListCreateEx(ASN1CTXT* pctxt) {
  if (!pctxt) return nullptr;
  auto* pList = static_cast<_Asn1RTSList*>(rtMemHeapAlloc(&pctxt->memHeap, sizeof(_Asn1RTSList)));
  rtSListInitEx(pctxt, pList);
  return pList;
}

_Asn1RTSListNode* rtSListAppend(_Asn1RTSList* pList, void* pData) {
  if (!pList) return nullptr;
  auto* node = static_cast<_Asn1RTSListNode*>(allocFor(pList->pctxt, sizeof(_Asn1RTSListNode)));
  if (!node) return nullptr;
  node->data = pData;
  node->next = nullptr;
  if (pList->tail) pList->tail->next = node;
  else pList->head = node;
  pList->tail = node;
  pList->count++;
  return node;
}

ASN1BOOL rtSListFind(_Asn1RTSList* pList, void* pData) {
  if (!pList) return 0;
  for (_Asn1RTSListNode* node = pList->head; node; node = node->next) {
    if (node->data == pData) return 1;
  }
  return 0;
}

void rtSListRemove(_Asn1RTSList* pList, void* pData) {
  if (!pList) return;
  _Asn1RTSListNode* prev = nullptr;
  for (_Asn1RTSListNode* node = pList->head; node; prev = node, node = node->next) {
    if (node->data != pData) continue;
    if (prev) prev->next = node->next;
    else pList->head = node->next;
    if (pList->tail == node) pList->tail = prev;
    pList->count--;
    freeFor(pList->pctxt, node);
    return;
  }
}

/* Clears the context as well: a list made by rtSListCreateEx gets it again through
 * rtSListInitEx before it is reused. */
void rtSListFree(_Asn1RTSList* pList) {
  if (!pList) return;
  _Asn1RTSListNode* next;
  for (_Asn1RTSListNode* node = pList->head; node; node = next) {
    next = node->next;
    freeFor(pList->pctxt, node);
  }
  rtSListInit(pList);
}
