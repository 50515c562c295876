/* The doubly linked list behind every SEQUENCE OF and SET OF value; nodes from the context heap. */
#include <string.h>

#include <quillon/rtList.h>
#include <quillon/rtMemHeap.h>

#include "rtErrLog.h"

namespace {

_Asn1RTDListNode* newNode(ASN1CTXT* pctxt, void* pData) {
  auto* node =
      static_cast<_Asn1RTDListNode*>(rtMemHeapAlloc(&pctxt->memHeap, sizeof(_Asn1RTDListNode)));
  if (!node) return nullptr;
  node->data = pData;
  node->next = nullptr;
  node->prev = nullptr;
  return node;
}

void linkAtTail(_Asn1RTDList* pList, _Asn1RTDListNode* node) {
  node->next = nullptr;
  node->prev = pList->tail;
  if (pList->tail) pList->tail->next = node;
  else pList->head = node;
  pList->tail = node;
  pList->count++;
}

void linkAtHead(_Asn1RTDList* pList, _Asn1RTDListNode* node) {
  node->prev = nullptr;
  node->next = pList->head;
  if (pList->head) pList->head->prev = node;
  else pList->tail = node;
  pList->head = node;
  pList->count++;
}

/* anchor is an inner or tail node; node goes right behind it. */
void linkAfter(_Asn1RTDList* pList, _Asn1RTDListNode* anchor, _Asn1RTDListNode* node) {
  if (anchor == pList->tail) {
    linkAtTail(pList, node);
    return;
  }
  node->prev = anchor;
  node->next = anchor->next;
  anchor->next->prev = node;
  anchor->next = node;
  pList->count++;
}

/* A node built together with its element sits right in front of it. */
inline bool elementInNodeBlock(const _Asn1RTDListNode* node) { return node->data == node + 1; }

}  // namespace

void rtDListInit(_Asn1RTDList* pList) {
  if (!pList) return;
  pList->count = 0;
  pList->head = nullptr;
  pList->tail = nullptr;
}

_Asn1RTDListNode* rtDListAppend(ASN1CTXT* pctxt, _Asn1RTDList* pList, void* pData) {
  if (!pctxt || !pList) return nullptr;
  _Asn1RTDListNode* node = newNode(pctxt, pData);
  if (node) linkAtTail(pList, node);
  return node;
}

_Asn1RTDListNode* rtDListAppendNode(ASN1CTXT*, _Asn1RTDList* pList, void* pData) {
  if (!pList) return nullptr;
  /* Computed on integers: a data pointer of exactly one node size would give a null node. */
  uintptr_t address = reinterpret_cast<uintptr_t>(pData);
  if (address <= sizeof(_Asn1RTDListNode)) return nullptr;
  auto* node = reinterpret_cast<_Asn1RTDListNode*>(address - sizeof(_Asn1RTDListNode));
  node->data = pData;
  linkAtTail(pList, node);
  return node;
}

_Asn1RTDListNode* rtDListInsert(ASN1CTXT* pctxt, _Asn1RTDList* pList, int index, void* pData) {
  if (!pctxt || !pList || index < 0 || static_cast<ASN1UINT>(index) > pList->count) {
    return nullptr;
  }
  _Asn1RTDListNode* node = newNode(pctxt, pData);
  if (!node) return nullptr;
  if (index == 0) linkAtHead(pList, node);
  else linkAfter(pList, rtDListFindByIndex(pList, index - 1), node);
  return node;
}

_Asn1RTDListNode* rtDListInsertBefore(ASN1CTXT* pctxt, _Asn1RTDList* pList,
                                      _Asn1RTDListNode* node, void* pData) {
  if (!pctxt || !pList) return nullptr;
  _Asn1RTDListNode* added = newNode(pctxt, pData);
  if (!added) return nullptr;
  if (!node) linkAtTail(pList, added);
  else if (node == pList->head) linkAtHead(pList, added);
  else linkAfter(pList, node->prev, added);
  return added;
}

/* A null node means the head here, the opposite end from rtDListInsertBefore; callers that
 * walk a list backwards rely on that. */
_Asn1RTDListNode* rtDListInsertAfter(ASN1CTXT* pctxt, _Asn1RTDList* pList,
                                     _Asn1RTDListNode* node, void* pData) {
  if (!pctxt || !pList) return nullptr;
  _Asn1RTDListNode* added = newNode(pctxt, pData);
  if (!added) return nullptr;
  if (!node) linkAtHead(pList, added);
  else linkAfter(pList, node, added);
  return added;
}

/* The count is compared as signed, so a negative index lands on the head. */
_Asn1RTDListNode* rtDListFindByIndex(const _Asn1RTDList* pList, int index) {
  if (!pList || index >= static_cast<int>(pList->count)) return nullptr;
  _Asn1RTDListNode* node = pList->head;
  for (int i = 0; i < index && node; i++) node = node->next;
  return node;
}

_Asn1RTDListNode* rtDListFindByData(const _Asn1RTDList* pList, void* data) {
  if (!pList) return nullptr;
  _Asn1RTDListNode* node = pList->head;
  for (ASN1UINT i = 0; i < pList->count && node; i++, node = node->next) {
    if (node->data == data) return node;
  }
  return nullptr;
}

int rtDListFindIndexByData(const _Asn1RTDList* pList, void* data) {
  if (!pList) return -1;
  _Asn1RTDListNode* node = pList->head;
  for (ASN1UINT i = 0; i < pList->count && node; i++, node = node->next) {
    if (node->data == data) return static_cast<int>(i);
  }
  return -1;
}

void rtDListRemove(_Asn1RTDList* pList, _Asn1RTDListNode* node) {
  if (!pList || !node) return;
  if (node->prev) node->prev->next = node->next;
  else pList->head = node->next;
  if (node->next) node->next->prev = node->prev;
  else pList->tail = node->prev;
  node->next = nullptr;
  node->prev = nullptr;
  pList->count--;
}

void rtDListFreeNodes(ASN1CTXT* pctxt, _Asn1RTDList* pList) {
  if (!pctxt || !pList) return;
  _Asn1RTDListNode* next;
  for (_Asn1RTDListNode* node = pList->head; node; node = next) {
    next = node->next;
    rtMemHeapFreePtr(&pctxt->memHeap, node);
  }
  rtDListInit(pList);
}

void rtDListFreeAll(ASN1CTXT* pctxt, _Asn1RTDList* pList) {
  if (!pctxt || !pList) return;
  _Asn1RTDListNode* next;
  for (_Asn1RTDListNode* node = pList->head; node; node = next) {
    next = node->next;
    if (!elementInNodeBlock(node)) rtMemHeapFreePtr(&pctxt->memHeap, node->data);
    rtMemHeapFreePtr(&pctxt->memHeap, node);
  }
  rtDListInit(pList);
}

int rtDListToArray(ASN1CTXT* pctxt, _Asn1RTDList* pList, void** ppArray, ASN1UINT* pElemCount,
                   size_t elemSize) {
  if (!pctxt || !pList || !ppArray) return ASN_E_INVPARAM;
  if (pElemCount && *pElemCount < pList->count) {
    if (pList->count > SIZE_MAX / (elemSize ? elemSize : 1)) return LOG_RTERR(pctxt, ASN_E_NOMEM);
    void* array = rtMemHeapAlloc(&pctxt->memHeap, pList->count * elemSize);
    if (!array) return LOG_RTERR(pctxt, ASN_E_NOMEM);
    *ppArray = array;
    *pElemCount = pList->count;
  }
  if (pList->count != 0 && !*ppArray) return LOG_RTERR(pctxt, ASN_E_INVPARAM);
  ASN1OCTET* slot = static_cast<ASN1OCTET*>(*ppArray);
  for (_Asn1RTDListNode* node = pList->head; node; node = node->next, slot += elemSize) {
    memcpy(slot, node->data, elemSize);
  }
  return static_cast<int>(pList->count);
}

int rtDListAppendArray(ASN1CTXT* pctxt, _Asn1RTDList* pList, void* pArray,
                       ASN1UINT numElements, size_t elemSize) {
  if (!pctxt || !pList || (!pArray && numElements != 0)) return ASN_E_INVPARAM;
  ASN1OCTET* elem = static_cast<ASN1OCTET*>(pArray);
  for (ASN1UINT i = 0; i < numElements; i++, elem += elemSize) {
    if (!rtDListAppend(pctxt, pList, elem)) return LOG_RTERR(pctxt, ASN_E_NOMEM);
  }
  return 0;
}

/* numElements is a byte length here: the loop steps through the array by elemSize while the
 * offset stays below it, so callers pass the array's size in bytes. */
int rtDListAppendArrayCopy(ASN1CTXT* pctxt, _Asn1RTDList* pList, const void* pArray,
                           ASN1UINT numElements, size_t elemSize) {
  if (!pctxt || !pList || elemSize == 0 || (!pArray && numElements != 0)) {
    return ASN_E_INVPARAM;
  }
  const ASN1OCTET* array = static_cast<const ASN1OCTET*>(pArray);
  for (size_t offset = 0; offset < numElements; offset += elemSize) {
    void* copy = rtMemHeapAlloc(&pctxt->memHeap, elemSize);
    if (!copy) return LOG_RTERR(pctxt, ASN_E_NOMEM);
    memcpy(copy, array + offset, elemSize);
    if (!rtDListAppend(pctxt, pList, copy)) {
      rtMemHeapFreePtr(&pctxt->memHeap, copy);
      return LOG_RTERR(pctxt, ASN_E_NOMEM);
    }
  }
  return 0;
}
