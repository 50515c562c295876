/* The SEQUENCE OF list class over _Asn1RTDList, and its fail-fast iterator. */
#include <new>

#include <quillon/asn1CSeqOfList.h>

#include "rtErrLog.h"

/* ---- Construction ----------------------------------------------------------------------- */

namespace {

_Asn1RTDList* prepared(_Asn1RTDList& lst, ASN1OCTET initBeforeUse) {
  if (initBeforeUse) rtDListInit(&lst);
  return &lst;
}

}  // namespace

ASN1CSeqOfList::ASN1CSeqOfList(ASN1MessageBufferIF& msgBuf, _Asn1RTDList& lst,
                               ASN1OCTET initBeforeUse)
    : ASN1CType(msgBuf), pList(prepared(lst, initBeforeUse)), modCount(0), wasAssigned(1) {}

ASN1CSeqOfList::ASN1CSeqOfList(ASN1MessageBufferIF& msgBuf)
    : ASN1CType(msgBuf), pList(nullptr), modCount(0), wasAssigned(0) {
  allocateOwnList();
}

ASN1CSeqOfList::ASN1CSeqOfList(ASN1MessageBufferIF& msgBuf, ASN1TSeqOfList& lst)
    : ASN1CType(msgBuf), pList(&lst), modCount(0), wasAssigned(1) {}

ASN1CSeqOfList::ASN1CSeqOfList(ASN1MessageBufferIF& msgBuf, ASN1TPDUSeqOfList& lst)
    : ASN1CType(msgBuf), pList(&lst), modCount(0), wasAssigned(1) {}

ASN1CSeqOfList::ASN1CSeqOfList(ASN1Context& ctxt, _Asn1RTDList& lst, ASN1OCTET initBeforeUse)
    : ASN1CType(ctxt), pList(prepared(lst, initBeforeUse)), modCount(0), wasAssigned(1) {}

ASN1CSeqOfList::ASN1CSeqOfList(ASN1Context& ctxt)
    : ASN1CType(ctxt), pList(nullptr), modCount(0), wasAssigned(0) {
  allocateOwnList();
}

ASN1CSeqOfList::ASN1CSeqOfList(ASN1Context& ctxt, ASN1TSeqOfList& lst)
    : ASN1CType(ctxt), pList(&lst), modCount(0), wasAssigned(1) {}

ASN1CSeqOfList::ASN1CSeqOfList(ASN1Context& ctxt, ASN1TPDUSeqOfList& lst)
    : ASN1CType(ctxt), pList(&lst), modCount(0), wasAssigned(1) {}

ASN1CSeqOfList::ASN1CSeqOfList(_Asn1RTDList& lst)
    : ASN1CType(), pList(&lst), modCount(0), wasAssigned(1) {}

ASN1CSeqOfList::ASN1CSeqOfList(ASN1TSeqOfList& lst)
    : ASN1CType(), pList(&lst), modCount(0), wasAssigned(1) {}

ASN1CSeqOfList::ASN1CSeqOfList(ASN1TPDUSeqOfList& lst)
    : ASN1CType(), pList(&lst), modCount(0), wasAssigned(1) {}

/* An object without its list would be half made, so running out of memory is a construction
 * failure like the context's own. */
void ASN1CSeqOfList::allocateOwnList() {
  ASN1CTXT* pctxt = getCtxtPtr();
  if (!pctxt) return;
  pList = static_cast<_Asn1RTDList*>(rtMemHeapAlloc(&pctxt->memHeap, sizeof(_Asn1RTDList)));
  if (!pList) throw ASN1MessageBuffer::RTLError(LOG_RTERR(pctxt, ASN_E_NOMEM));
  rtDListInit(pList);
}

/* A caller's list keeps its nodes: it is typically a member of a value that is encoded after
 * this object is gone. */
ASN1CSeqOfList::~ASN1CSeqOfList() {
  ASN1CTXT* pctxt = editableCtxt();
  if (wasAssigned || !pctxt) return;
  clear();
  rtMemHeapFreePtr(&pctxt->memHeap, pList);
}

/* ---- Changes ---------------------------------------------------------------------------- */

_Asn1RTDListNode* ASN1CSeqOfList::append(void* data) {
  ASN1CTXT* pctxt = editableCtxt();
  if (!pctxt) return nullptr;
  modCount++;
  return rtDListAppend(pctxt, pList, data);
}

void ASN1CSeqOfList::appendArray(const void* data, int numElems, int elemSize) {
  ASN1CTXT* pctxt = editableCtxt();
  if (!pctxt) return;
  modCount++;
  if (numElems <= 0 || elemSize < 0) return;
  rtDListAppendArray(pctxt, pList, const_cast<void*>(data), (ASN1UINT)numElems,
                     (size_t)elemSize);
}

void ASN1CSeqOfList::appendArrayCopy(const void* data, int numElems, int elemSize) {
  ASN1CTXT* pctxt = editableCtxt();
  if (!pctxt) return;
  modCount++;
  if (numElems <= 0 || elemSize <= 0) return;
  rtDListAppendArrayCopy(pctxt, pList, data, (ASN1UINT)numElems, (size_t)elemSize);
}

_Asn1RTDListNode* ASN1CSeqOfList::insert(int index, void* data) {
  ASN1CTXT* pctxt = editableCtxt();
  if (!pctxt) return nullptr;
  modCount++;
  return rtDListInsert(pctxt, pList, index, data);
}

_Asn1RTDListNode* ASN1CSeqOfList::insertBefore(void* data, _Asn1RTDListNode* node) {
  ASN1CTXT* pctxt = editableCtxt();
  if (!pctxt) return nullptr;
  modCount++;
  return rtDListInsertBefore(pctxt, pList, node, data);
}

_Asn1RTDListNode* ASN1CSeqOfList::insertAfter(void* data, _Asn1RTDListNode* node) {
  ASN1CTXT* pctxt = editableCtxt();
  if (!pctxt) return nullptr;
  modCount++;
  return rtDListInsertAfter(pctxt, pList, node, data);
}

void* ASN1CSeqOfList::set(int index, void* data) {
  if (!editableCtxt()) return nullptr;
  _Asn1RTDListNode* node = rtDListFindByIndex(pList, index);
  if (!node) return nullptr;
  void* old = node->data;
  node->data = data;
  modCount++;
  return old;
}

void ASN1CSeqOfList::remove(int index) {
  if (!editableCtxt()) return;
  remove(rtDListFindByIndex(pList, index));
}

void ASN1CSeqOfList::remove(void* data) {
  if (!editableCtxt()) return;
  remove(rtDListFindByData(pList, data));
}

void ASN1CSeqOfList::remove(_Asn1RTDListNode* node) {
  if (!node || !editableCtxt()) return;
  rtDListRemove(pList, node);
  modCount++;
}

void ASN1CSeqOfList::clear() {
  ASN1CTXT* pctxt = editableCtxt();
  if (!pctxt) return;
  rtDListFreeNodes(pctxt, pList);
  modCount++;
}

void ASN1CSeqOfList::free() {
  ASN1CTXT* pctxt = editableCtxt();
  if (!pctxt) return;
  rtDListFreeAll(pctxt, pList);
  modCount++;
}

/* ---- Queries ---------------------------------------------------------------------------- */

void* ASN1CSeqOfList::get(int index) const {
  _Asn1RTDListNode* node = rtDListFindByIndex(pList, index);
  return node ? node->data : nullptr;
}

void* ASN1CSeqOfList::getFirst() const {
  return pList && pList->head ? pList->head->data : nullptr;
}

void* ASN1CSeqOfList::getLast() const {
  return pList && pList->tail ? pList->tail->data : nullptr;
}

int ASN1CSeqOfList::indexOf(void* data) const { return rtDListFindIndexByData(pList, data); }

void* ASN1CSeqOfList::toArray(int elemSize) { return toArray(nullptr, elemSize, 0); }

void* ASN1CSeqOfList::toArray(void* array, int elemSize, int allocatedElems) {
  ASN1CTXT* pctxt = editableCtxt();
  if (!pctxt || elemSize <= 0) return nullptr;
  ASN1UINT capacity = allocatedElems > 0 ? (ASN1UINT)allocatedElems : 0;
  void* filled = array;
  if (rtDListToArray(pctxt, pList, &filled, &capacity, (size_t)elemSize) < 0) return nullptr;
  return filled;
}

/* ---- Iterators -------------------------------------------------------------------------- */

ASN1CSeqOfListIterator* ASN1CSeqOfList::newIterator(_Asn1RTDListNode* start) {
  ASN1CTXT* pctxt = editableCtxt();
  if (!pctxt) return nullptr;
  void* mem = rtMemHeapAlloc(&pctxt->memHeap, sizeof(ASN1CSeqOfListIterator));
  if (!mem) return nullptr;
  return new (mem) ASN1CSeqOfListIterator(this, start);
}

ASN1CSeqOfListIterator* ASN1CSeqOfList::iterator() {
  return newIterator(pList ? pList->head : nullptr);
}

ASN1CSeqOfListIterator* ASN1CSeqOfList::iteratorFromLast() {
  return newIterator(pList ? pList->tail : nullptr);
}

ASN1CSeqOfListIterator* ASN1CSeqOfList::iteratorFrom(void* data) {
  return newIterator(rtDListFindByData(pList, data));
}

ASN1CSeqOfListIterator::ASN1CSeqOfListIterator(ASN1CSeqOfList* list, _Asn1RTDListNode* startNode)
    : pSeqList(list),
      nextNode(startNode),
      lastNode(nullptr),
      expectedModCount(list->modCount),
      stat(0) {}

/* Misuse (a stale iterator, set or remove with nothing to act on) is recorded in the context
 * like any other error; reaching the end is not an error and is only kept in the state. */
int ASN1CSeqOfListIterator::fail(int status) {
  ASN1CTXT* pctxt = pSeqList->getCtxtPtr();
  stat = pctxt ? LOG_RTERR(pctxt, status) : status;
  return stat;
}

void* ASN1CSeqOfListIterator::next() {
  if (listChanged()) {
    fail(ASN_E_CONCMODF);
    return nullptr;
  }
  if (!nextNode) return endReached();
  lastNode = nextNode;
  nextNode = nextNode->next;
  return lastNode->data;
}

/* Stepping back first hands out the next element itself when nothing was returned yet, so an
 * iterator made at the tail walks backwards from the last element. */
void* ASN1CSeqOfListIterator::prev() {
  if (listChanged()) {
    fail(ASN_E_CONCMODF);
    return nullptr;
  }
  if (!nextNode) return endReached();
  if (!lastNode) {
    lastNode = nextNode;
    return lastNode->data;
  }
  if (!nextNode->prev) return endReached();
  nextNode = lastNode = nextNode->prev;
  return lastNode->data;
}

int ASN1CSeqOfListIterator::set(void* data) {
  if (listChanged()) return fail(ASN_E_CONCMODF);
  if (!lastNode) return fail(ASN_E_ILLSTATE);
  lastNode->data = data;
  return 0;
}

int ASN1CSeqOfListIterator::insert(void* data) {
  if (listChanged()) return fail(ASN_E_CONCMODF);
  _Asn1RTDListNode* added = pSeqList->insertBefore(data, nextNode);
  expectedModCount = pSeqList->modCount;
  lastNode = nullptr;
  return added ? 0 : fail(ASN_E_NOMEM);
}

int ASN1CSeqOfListIterator::remove() {
  if (listChanged()) return fail(ASN_E_CONCMODF);
  if (!lastNode) return fail(ASN_E_ILLSTATE);
  _Asn1RTDListNode* successor = lastNode->next;
  pSeqList->remove(lastNode);
  if (nextNode == lastNode) nextNode = successor;
  expectedModCount = pSeqList->modCount;
  lastNode = nullptr;
  return 0;
}
