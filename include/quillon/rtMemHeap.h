/*
 * The block heap from which a context takes every buffer, value and list node, and the growable
 * byte buffer rtMemBuf built on it. ppHeap is the address of a heap pointer (normally
 * &ctxt->memHeap); a null heap pointer there is created on the first allocation.
 */
#ifndef QUILLON_RTMEMHEAP_H
#define QUILLON_RTMEMHEAP_H

#include "asn1type.h"

QN_BEGIN_C

typedef void* (*OSMallocFunc)(void* pMemAllocCtx, size_t size);
typedef void* (*OSReallocFunc)(void* pMemAllocCtx, void* ptr, size_t size);
typedef void (*OSFreeFunc)(void* pMemAllocCtx, void* ptr);

#define RT_MH_DONTKEEPFREE 0x1u
#define OSRTMH_PROPID_DEFBLKSIZE 1
#define OSRTMH_PROPID_SETFLAGS 2
#define OSRTMH_PROPID_CLEARFLAGS 3

QN_API void* rtDefaultMalloc(void* pMemAllocCtx, size_t size);
QN_API void* rtDefaultRealloc(void* pMemAllocCtx, void* ptr, size_t size);
QN_API void rtDefaultFree(void* pMemAllocCtx, void* ptr);

QN_API int rtMemHeapCreate(OSMemHeap** ppHeap, void* pMemAllocCtx);
QN_API void* rtMemHeapAlloc(OSMemHeap** ppHeap, size_t nbytes);
QN_API void* rtMemHeapAllocZ(OSMemHeap** ppHeap, size_t nbytes);
QN_API void* rtMemHeapRealloc(OSMemHeap** ppHeap, void* mem_p, size_t nbytes_);
QN_API void rtMemHeapFreePtr(OSMemHeap** ppHeap, void* mem_p);
QN_API void rtMemHeapFreeAll(OSMemHeap** ppHeap);
QN_API void rtMemHeapReset(OSMemHeap** ppHeap);
QN_API void* rtMemHeapMarkSaved(OSMemHeap** ppHeap, const void* mem_p, ASN1BOOL saved);
QN_API int rtMemHeapCheckPtr(OSMemHeap** ppHeap, const void* mem_p);
QN_API void rtMemHeapAddRef(OSMemHeap** ppHeap);
QN_API void rtMemHeapRelease(OSMemHeap** ppHeap);
QN_API void rtMemHeapSetProperty(OSMemHeap** ppHeap, ASN1UINT propId, void* pProp);
QN_API void rtMemHeapSetFlags(ASN1CTXT* pctxt, ASN1UINT flags);
QN_API void rtMemHeapClearFlags(ASN1CTXT* pctxt, ASN1UINT flags);
QN_API void rtMemHeapSetDefBlkSize(ASN1CTXT* pctxt, ASN1UINT blkSize);
QN_API ASN1UINT rtMemHeapGetDefBlkSize(ASN1CTXT* pctxt);
QN_API void rtMemSetAllocFuncs(OSMallocFunc malloc_func, OSReallocFunc realloc_func,
                               OSFreeFunc free_func);
QN_API ASN1UINT rtMemGetDefBlkSize(void);
QN_API void rtMemSetDefBlkSize(ASN1UINT blkSize);
QN_API void rtMemFreeNullPtr(void* ptr);
/* Frees the data of each open-type extension element of the list, then its nodes. */
QN_API void rtMemFreeOpenSeqExt(ASN1CTXT* pctxt, _Asn1RTDList* pElemList);

QN_API void* xu_malloc(ASN1CTXT* pctxt, size_t nbytes);
/* An array record is { ASN1UINT n; void* elem; }: count first, pointer second. */
QN_API void* xu_alloc_array(ASN1CTXT* pctxt, void* pArray, size_t elemSize, ASN1UINT count);
QN_API void xu_freeall(ASN1CTXT* pctxt);

/* Heap shorthands on a context. */
#define ASN1MALLOC(pctxt, nbytes) rtMemHeapAlloc(&(pctxt)->memHeap, nbytes)
#define ASN1MALLOCZ(pctxt, nbytes) rtMemHeapAllocZ(&(pctxt)->memHeap, nbytes)
#define ASN1REALLOC(pctxt, ptr, nbytes) rtMemHeapRealloc(&(pctxt)->memHeap, ptr, nbytes)
#define ASN1MEMFREEPTR(pctxt, ptr) rtMemHeapFreePtr(&(pctxt)->memHeap, (void*)(ptr))

/* Growable byte buffer over the context's heap. */
typedef struct ASN1MemBuf {
  ASN1CTXT* pctxt;
  ASN1UINT segsize;
  ASN1UINT startidx;
  ASN1UINT usedcnt;
  ASN1UINT bufsize;
  ASN1UINT bitOffset;
  ASN1UINT userState;
  ASN1OCTET* buffer;
  ASN1BOOL isDynamic;
} ASN1MemBuf;

QN_API void rtMemBufInit(ASN1CTXT* pctxt, ASN1MemBuf* pMemBuf, ASN1UINT segsize);
QN_API void rtMemBufInitBuffer(ASN1CTXT* pctxt, ASN1MemBuf* pMemBuf, ASN1OCTET* buf,
                               ASN1UINT bufsize, ASN1UINT segsize);
QN_API int rtMemBufAppend(ASN1MemBuf* pMemBuf, const ASN1OCTET* pdata, ASN1UINT nbytes);
QN_API int rtMemBufSet(ASN1MemBuf* pMemBuf, ASN1OCTET value, ASN1UINT nbytes);
QN_API int rtMemBufPreAllocate(ASN1MemBuf* pMemBuf, ASN1UINT nbytes);
QN_API ASN1OCTET* rtMemBufGetData(ASN1MemBuf* pMemBuf, int* length);
QN_API int rtMemBufGetDataLen(ASN1MemBuf* pMemBuf);
QN_API int rtMemBufCut(ASN1MemBuf* pMemBuf, ASN1UINT fromOffset, ASN1UINT nbytes);
QN_API int rtMemBufTrimW(ASN1MemBuf* pMemBuf);
QN_API void rtMemBufReset(ASN1MemBuf* pMemBuf);
QN_API void rtMemBufFree(ASN1MemBuf* pMemBuf);

QN_END_C

#endif
