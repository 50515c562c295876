/*
 * The doubly linked list of every SEQUENCE OF / SET OF value, the singly linked list and the
 * fixed 32-entry pointer stack. Nodes come from the context's heap.
 */
#ifndef QUILLON_RTLIST_H
#define QUILLON_RTLIST_H

#include "asn1type.h"

QN_BEGIN_C

QN_API void rtDListInit(_Asn1RTDList* pList);
QN_API _Asn1RTDListNode* rtDListAppend(ASN1CTXT* pctxt, _Asn1RTDList* pList, void* pData);
/* The node is the 12 (pointer-size x 3) bytes in front of pData, allocated with it. */
QN_API _Asn1RTDListNode* rtDListAppendNode(ASN1CTXT* pctxt, _Asn1RTDList* pList, void* pData);
QN_API _Asn1RTDListNode* rtDListInsert(ASN1CTXT* pctxt, _Asn1RTDList* pList, int index,
                                       void* pData);
QN_API _Asn1RTDListNode* rtDListInsertBefore(ASN1CTXT* pctxt, _Asn1RTDList* pList,
                                             _Asn1RTDListNode* node, void* pData);
QN_API _Asn1RTDListNode* rtDListInsertAfter(ASN1CTXT* pctxt, _Asn1RTDList* pList,
                                            _Asn1RTDListNode* node, void* pData);
QN_API _Asn1RTDListNode* rtDListFindByIndex(const _Asn1RTDList* pList, int index);
QN_API _Asn1RTDListNode* rtDListFindByData(const _Asn1RTDList* pList, void* data);
QN_API int rtDListFindIndexByData(const _Asn1RTDList* pList, void* data);
QN_API void rtDListRemove(_Asn1RTDList* pList, _Asn1RTDListNode* node);
QN_API void rtDListFreeNodes(ASN1CTXT* pctxt, _Asn1RTDList* pList);
QN_API void rtDListFreeAll(ASN1CTXT* pctxt, _Asn1RTDList* pList);
QN_API int rtDListToArray(ASN1CTXT* pctxt, _Asn1RTDList* pList, void** ppArray,
                          ASN1UINT* pElemCount, size_t elemSize);
QN_API int rtDListAppendArray(ASN1CTXT* pctxt, _Asn1RTDList* pList, void* pArray,
                              ASN1UINT numElements, size_t elemSize);
QN_API int rtDListAppendArrayCopy(ASN1CTXT* pctxt, _Asn1RTDList* pList, const void* pArray,
                                  ASN1UINT numElements, size_t elemSize);

QN_API void rtSListInit(_Asn1RTSList* pList);
QN_API void rtSListInitEx(ASN1CTXT* pctxt, _Asn1RTSList* pList);
QN_API _Asn1RTSList* rtSListCreate(void);
QN_API _Asn1RTSList* rtSListCreateEx(ASN1CTXT* pctxt);
QN_API _Asn1RTSListNode* rtSListAppend(_Asn1RTSList* pList, void* pData);
QN_API ASN1BOOL rtSListFind(_Asn1RTSList* pList, void* pData);
QN_API void rtSListRemove(_Asn1RTSList* pList, void* pData);
QN_API void rtSListFree(_Asn1RTSList* pList);

QN_API void rtStackInit(_Asn1RTStack* pStack);
QN_API _Asn1RTStack* rtStackCreate(void);
QN_API _Asn1RTStack* rtStackCreateEx(ASN1CTXT* pctxt);
/* -22 when the stack is null or already holds 32 entries. */
QN_API int rtStackPush(_Asn1RTStack* pStack, void* pData);
QN_API void* rtStackPop(_Asn1RTStack* pStack);

QN_END_C

#endif
