/*
 * The SEQUENCE OF / SET OF list class and its fail-fast iterator.
 *
 * ASN1CSeqOfList edits a _Asn1RTDList in place: the caller's list record (a member of a
 * generated value, or any list) or one it allocates itself. Elements are pointers the list
 * never copies (except appendArrayCopy) and never frees (except free()); nodes come from the
 * context's heap and unlinked ones stay there until the heap is reset.
 *
 * Every structural change made through the list object raises its modification count, and an
 * iterator made before the change fails with -27 on its next step. Changes made through an
 * iterator keep that iterator (and only that one) valid.
 */
#ifndef QUILLON_ASN1CSEQOFLIST_H
#define QUILLON_ASN1CSEQOFLIST_H

#include "asn1CppTypes.h"
#include "rtList.h"

class ASN1CSeqOfListIterator;

class QN_API ASN1CSeqOfList : public ASN1CType {
 protected:
  _Asn1RTDList* pList;
  ASN1INT modCount;
  ASN1BOOL wasAssigned; /* 1: the list record is the caller's; 0: allocated here */

  friend class ASN1CSeqOfListIterator;

 public:
  /* On a buffer's context. With a caller's list, init non-zero empties the record first
   * (without freeing anything it held); without one, an empty list is allocated. */
  ASN1CSeqOfList(ASN1MessageBufferIF& msgBuf, _Asn1RTDList& lst, ASN1OCTET initBeforeUse);
  explicit ASN1CSeqOfList(ASN1MessageBufferIF& msgBuf);
  ASN1CSeqOfList(ASN1MessageBufferIF& msgBuf, ASN1TSeqOfList& lst);
  ASN1CSeqOfList(ASN1MessageBufferIF& msgBuf, ASN1TPDUSeqOfList& lst);

  /* On the given context (one more reference), without a buffer. */
  ASN1CSeqOfList(ASN1Context& ctxt, _Asn1RTDList& lst, ASN1OCTET initBeforeUse);
  explicit ASN1CSeqOfList(ASN1Context& ctxt);
  ASN1CSeqOfList(ASN1Context& ctxt, ASN1TSeqOfList& lst);
  ASN1CSeqOfList(ASN1Context& ctxt, ASN1TPDUSeqOfList& lst);

  /* On a new context of the object's own; the list is used as it is. */
  explicit ASN1CSeqOfList(_Asn1RTDList& lst);
  explicit ASN1CSeqOfList(ASN1TSeqOfList& lst);
  explicit ASN1CSeqOfList(ASN1TPDUSeqOfList& lst);

  ASN1CSeqOfList(const ASN1CSeqOfList&) = delete;
  ASN1CSeqOfList& operator=(const ASN1CSeqOfList&) = delete;

  /* Frees the nodes (not the elements), and the list record when the object allocated it. */
  virtual ~ASN1CSeqOfList();

  /* The changing operations do nothing and return null when the object has no context. Those
   * that return a node return the new one, or null when it could not be allocated. */
  _Asn1RTDListNode* append(void* data);
  /* Appends a pointer to each of numElems elements of elemSize bytes (no copies). */
  void appendArray(const void* data, int numElems, int elemSize);
  /* Appends a heap copy of each element. numElems is the array's length in BYTES, as with
   * rtDListAppendArrayCopy. */
  void appendArrayCopy(const void* data, int numElems, int elemSize);
  /* At position index (0..size()); null past the end, and the modification count still rises. */
  _Asn1RTDListNode* insert(int index, void* data);
  /* Before node; a null node appends at the tail. */
  _Asn1RTDListNode* insertBefore(void* data, _Asn1RTDListNode* node);
  /* After node; a null node inserts at the head. */
  _Asn1RTDListNode* insertAfter(void* data, _Asn1RTDListNode* node);

  /* The element at index (a negative index reads the first), or null. */
  void* get(int index) const;
  void* getFirst() const;
  void* getLast() const;
  /* Position of the first node holding exactly this pointer, or -1. */
  int indexOf(void* data) const;

  /* Replaces the element at index and returns the old one; null when there is no such node. */
  void* set(int index, void* data);
  /* Unlink a node (not freed); nothing when there is no such node. */
  void remove(int index);
  void remove(void* data);
  void remove(_Asn1RTDListNode* node);
  /* Empties the list; the elements stay. */
  void clear();
  /* Empties the list and frees the elements to the heap. */
  void free();

  ASN1BOOL isEmpty() const { return pList == nullptr || pList->count == 0; }
  int size() const { return pList ? (int)pList->count : 0; }

  /* The elements copied (elemSize bytes each) into a new array from the context's heap; null
   * for an empty list or on failure. */
  void* toArray(int elemSize);
  /* Into the caller's array when it holds allocatedElems >= size() elements, else into a new
   * heap array; returns the array filled, null on failure. */
  void* toArray(void* array, int elemSize, int allocatedElems);

  /* Iterators from the context's heap, released with it (never deleted); null on failure or
   * without a context. iteratorFrom starts at the first node holding data (none: at the end). */
  ASN1CSeqOfListIterator* iterator();
  ASN1CSeqOfListIterator* iteratorFromLast();
  ASN1CSeqOfListIterator* iteratorFrom(void* data);

  /* The list record the object edits. */
  _Asn1RTDList* getList() { return pList; }

 protected:
  /* The codec context when there is a context and a list to work on, else null. */
  ASN1CTXT* editableCtxt() { return pList ? getCtxtPtr() : nullptr; }
  ASN1CSeqOfListIterator* newIterator(_Asn1RTDListNode* start);
  void allocateOwnList();
};

/* Walks an ASN1CSeqOfList forwards (next) or backwards (prev). Statuses: -27 when the list was
 * changed other than through this iterator, -8 at the end, -28 for set/remove without an
 * element returned last. The status of the last failed step stays readable in getState(). */
class QN_API ASN1CSeqOfListIterator {
 protected:
  ASN1CSeqOfList* pSeqList;
  _Asn1RTDListNode* nextNode;
  _Asn1RTDListNode* lastNode;
  ASN1INT expectedModCount;
  ASN1INT stat;

  friend class ASN1CSeqOfList;
  ASN1CSeqOfListIterator(ASN1CSeqOfList* list, _Asn1RTDListNode* startNode);
  /* Lives in the context's heap and goes with it; never deleted. */
  ~ASN1CSeqOfListIterator() = default;

  /* Records status in the context and as the iterator's state, and returns it. */
  int fail(int status);
  /* Running off the end: state -8, nothing recorded in the context. */
  void* endReached() {
    stat = ASN_E_SETMISRQ;
    return nullptr;
  }
  bool listChanged() const { return pSeqList->modCount != expectedModCount; }

 public:
  ASN1CSeqOfListIterator(const ASN1CSeqOfListIterator&) = delete;
  ASN1CSeqOfListIterator& operator=(const ASN1CSeqOfListIterator&) = delete;

  /* Whether next() has an element to return. */
  ASN1BOOL hasNext() const { return nextNode != nullptr; }
  /* Whether prev() has an element to return. */
  ASN1BOOL hasPrev() const {
    return nextNode != nullptr && (lastNode == nullptr || nextNode->prev != nullptr);
  }

  /* The next element, or null (state -27 or -8). */
  void* next();
  /* Steps back: the element returned last again, or the one before it (see the class note
   * above for the statuses); null before the first element. */
  void* prev();
  /* Replaces the element returned last; 0, -27 or -28. */
  int set(void* data);
  /* Inserts before the next element (at the tail when there is none); 0, -27 or -12. */
  int insert(void* data);
  /* Unlinks the element returned last; 0, -27 or -28. */
  int remove();

  /* 0 while all went well, else the status of the last failure. */
  int getState() const { return stat; }
};

#endif
