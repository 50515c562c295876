/*
 * The doubly linked list of every SEQUENCE OF / SET OF value, the singly linked list and the
 * fixed 32-entry pointer stack. Nodes come from the context's heap.
 */
#ifndef QUILLON_RTLIST_H
#define QUILLON_RTLIST_H

#include "asn1type.h"

QN_BEGIN_C

QN_API void rtDListInit(_Asn1RTDList* pList);
/* A node from the context's heap linked at the tail; null (list unchanged) when none is had. */
QN_API _Asn1RTDListNode* rtDListAppend(ASN1CTXT* pctxt, _Asn1RTDList* pList, void* pData);
/* The node is the 12 (pointer-size x 3) bytes in front of pData, allocated with it. */
QN_API _Asn1RTDListNode* rtDListAppendNode(ASN1CTXT* pctxt, _Asn1RTDList* pList, void* pData);
/* Inserts so that the new node has position index (0..count); null past the end. */
QN_API _Asn1RTDListNode* rtDListInsert(ASN1CTXT* pctxt, _Asn1RTDList* pList, int index,
                                       void* pData);
/* Before node; a null node appends at the tail. */
QN_API _Asn1RTDListNode* rtDListInsertBefore(ASN1CTXT* pctxt, _Asn1RTDList* pList,
                                             _Asn1RTDListNode* node, void* pData);
/* After node; a null node inserts at the head (the other end from rtDListInsertBefore). */
QN_API _Asn1RTDListNode* rtDListInsertAfter(ASN1CTXT* pctxt, _Asn1RTDList* pList,
                                            _Asn1RTDListNode* node, void* pData);
/* The node at index; null when index >= count, the head for a negative index. */
QN_API _Asn1RTDListNode* rtDListFindByIndex(const _Asn1RTDList* pList, int index);
/* The first node whose data pointer is data (or its index, -1 when absent). */
QN_API _Asn1RTDListNode* rtDListFindByData(const _Asn1RTDList* pList, void* data);
QN_API int rtDListFindIndexByData(const _Asn1RTDList* pList, void* data);
/* Unlinks node without freeing it. */
QN_API void rtDListRemove(_Asn1RTDList* pList, _Asn1RTDListNode* node);
/* Frees the nodes, not the elements, and empties the list. */
QN_API void rtDListFreeNodes(ASN1CTXT* pctxt, _Asn1RTDList* pList);
/* Frees elements and nodes (an element built into its node goes with it) and empties the list. */
QN_API void rtDListFreeAll(ASN1CTXT* pctxt, _Asn1RTDList* pList);
/* Copies each element (elemSize bytes) into *ppArray in list order and returns the count. When
 * pElemCount is given and below the count, a new array is taken from the heap first; a null
 * pElemCount means *ppArray is large enough. -30 or -12 on failure. */
QN_API int rtDListToArray(ASN1CTXT* pctxt, _Asn1RTDList* pList, void** ppArray,
                          ASN1UINT* pElemCount, size_t elemSize);
/* Appends a pointer to each of the numElements elements of pArray; 0, -30 or -12. */
QN_API int rtDListAppendArray(ASN1CTXT* pctxt, _Asn1RTDList* pList, void* pArray,
                              ASN1UINT numElements, size_t elemSize);
/* Appends a heap copy of each element; numElements is the array's size in BYTES here.
 * 0, -30 (elemSize 0) or -12. */
QN_API int rtDListAppendArrayCopy(ASN1CTXT* pctxt, _Asn1RTDList* pList, const void* pArray,
                                  ASN1UINT numElements, size_t elemSize);

/* Singly linked list: nodes from the context's heap, or from malloc when the context is null. */
QN_API void rtSListInit(_Asn1RTSList* pList);
QN_API void rtSListInitEx(ASN1CTXT* pctxt, _Asn1RTSList* pList);
/* A malloc'ed list without a context (the caller frees the record). */
QN_API _Asn1RTSList* rtSListCreate(void);
/* A list record from the context's heap. */
QN_API _Asn1RTSList* rtSListCreateEx(ASN1CTXT* pctxt);
QN_API _Asn1RTSListNode* rtSListAppend(_Asn1RTSList* pList, void* pData);
QN_API ASN1BOOL rtSListFind(_Asn1RTSList* pList, void* pData);
/* Unlinks and frees the first node holding pData. */
QN_API void rtSListRemove(_Asn1RTSList* pList, void* pData);
/* Frees every node and clears the list, its context included (rtSListInitEx before reuse). */
QN_API void rtSListFree(_Asn1RTSList* pList);

QN_API void rtStackInit(_Asn1RTStack* pStack);
/* A malloc'ed stack (the caller frees it), or one from the context's heap. */
QN_API _Asn1RTStack* rtStackCreate(void);
QN_API _Asn1RTStack* rtStackCreateEx(ASN1CTXT* pctxt);
/* -22 when the stack is null or already holds 32 entries. */
QN_API int rtStackPush(_Asn1RTStack* pStack, void* pData);
/* The last entry pushed, or null when empty. */
QN_API void* rtStackPop(_Asn1RTStack* pStack);

QN_END_C

#endif
