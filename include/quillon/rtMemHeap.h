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

/* The default hooks: the C library's malloc, realloc and free; the context is ignored. */
QN_API void* rtDefaultMalloc(void* pMemAllocCtx, size_t size);
QN_API void* rtDefaultRealloc(void* pMemAllocCtx, void* ptr, size_t size);
QN_API void rtDefaultFree(void* pMemAllocCtx, void* ptr);

/* A new heap (reference count 1) in *ppHeap; -30 for a null ppHeap, -12 when the hook fails. */
QN_API int rtMemHeapCreate(OSMemHeap** ppHeap, void* pMemAllocCtx);
/* An 8-byte aligned element of at least nbytes (524273 bytes or more: memory of its own);
 * creates the heap when *ppHeap is null; null when the hooks fail. */
QN_API void* rtMemHeapAlloc(OSMemHeap** ppHeap, size_t nbytes);
QN_API void* rtMemHeapAllocZ(OSMemHeap** ppHeap, size_t nbytes);
/* Resizes in place when the element can grow or shrink where it stands, else moves it; a null
 * mem_p allocates. Null on failure, the old element then left untouched. */
QN_API void* rtMemHeapRealloc(OSMemHeap** ppHeap, void* mem_p, size_t nbytes_);
/* Frees one element or large allocation, saved or not; null and already free are ignored. */
QN_API void rtMemHeapFreePtr(OSMemHeap** ppHeap, void* mem_p);
/* Returns every block and large allocation without a saved element to the free hook. */
QN_API void rtMemHeapFreeAll(OSMemHeap** ppHeap);
/* Empties every block without a saved element, keeping its memory for reuse, and frees every
 * large allocation not marked saved. */
QN_API void rtMemHeapReset(OSMemHeap** ppHeap);
/* Protects an element from rtMemHeapFreeAll/Reset (saved 1) or lifts that (0); returns it. */
QN_API void* rtMemHeapMarkSaved(OSMemHeap** ppHeap, const void* mem_p, ASN1BOOL saved);
/* 1 when mem_p is a live element or large allocation of this heap, else 0 (walks the heap). */
QN_API int rtMemHeapCheckPtr(OSMemHeap** ppHeap, const void* mem_p);
QN_API void rtMemHeapAddRef(OSMemHeap** ppHeap);
/* Drops one reference; the last frees everything, saved elements included, and nulls *ppHeap. */
QN_API void rtMemHeapRelease(OSMemHeap** ppHeap);
/* pProp points at an ASN1UINT: the block size, or flag bits to set or clear (the top four bits
 * belong to the heap and are never changed). Creates the heap when *ppHeap is null. */
QN_API void rtMemHeapSetProperty(OSMemHeap** ppHeap, ASN1UINT propId, void* pProp);
/* The same properties on the context's memHeap; nothing when it has none. */
QN_API void rtMemHeapSetFlags(ASN1CTXT* pctxt, ASN1UINT flags);
QN_API void rtMemHeapClearFlags(ASN1CTXT* pctxt, ASN1UINT flags);
QN_API void rtMemHeapSetDefBlkSize(ASN1CTXT* pctxt, ASN1UINT blkSize);
/* The context heap's block size, or the process default without a context or heap. */
QN_API ASN1UINT rtMemHeapGetDefBlkSize(ASN1CTXT* pctxt);
/* Replaces the allocation hooks for the whole process (a null hook restores its default); set
 * them before any heap exists. */
QN_API void rtMemSetAllocFuncs(OSMallocFunc malloc_func, OSReallocFunc realloc_func,
                               OSFreeFunc free_func);
/* The block size heaps take when created (4096 at start; 0 is ignored). */
QN_API ASN1UINT rtMemGetDefBlkSize(void);
QN_API void rtMemSetDefBlkSize(ASN1UINT blkSize);
/* Does nothing: the release function for memory that must not be freed. */
QN_API void rtMemFreeNullPtr(void* ptr);
/* Frees the data of each open-type extension element of the list, then its nodes. */
QN_API void rtMemFreeOpenSeqExt(ASN1CTXT* pctxt, _Asn1RTDList* pElemList);

/* rtMemHeapAlloc on the context's memHeap. */
QN_API void* xu_malloc(ASN1CTXT* pctxt, size_t nbytes);
/* An array record is { ASN1UINT n; void* elem; }: count first, pointer second. */
QN_API void* xu_alloc_array(ASN1CTXT* pctxt, void* pArray, size_t elemSize, ASN1UINT count);
/* Releases the whole context (rtFreeContext), not only its heap. */
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

/* An empty dynamic buffer growing in steps of segsize bytes (0: exactly as needed). */
QN_API void rtMemBufInit(ASN1CTXT* pctxt, ASN1MemBuf* pMemBuf, ASN1UINT segsize);
/* Wraps the caller's bufsize bytes as full, read-only data; growing moves to the heap without
 * carrying them over. */
QN_API void rtMemBufInitBuffer(ASN1CTXT* pctxt, ASN1MemBuf* pMemBuf, ASN1OCTET* buf,
                               ASN1UINT bufsize, ASN1UINT segsize);
/* Appends nbytes (null pdata only reserves room); 0 or -12. */
QN_API int rtMemBufAppend(ASN1MemBuf* pMemBuf, const ASN1OCTET* pdata, ASN1UINT nbytes);
/* Appends nbytes copies of value; 0 or -12. */
QN_API int rtMemBufSet(ASN1MemBuf* pMemBuf, ASN1OCTET value, ASN1UINT nbytes);
/* Ensures room for nbytes more, rounded up to a multiple of segsize; 0 or -12, the buffer
 * unchanged on failure. */
QN_API int rtMemBufPreAllocate(ASN1MemBuf* pMemBuf, ASN1UINT nbytes);
/* The data and, when length is given, its length. */
QN_API ASN1OCTET* rtMemBufGetData(ASN1MemBuf* pMemBuf, int* length);
QN_API int rtMemBufGetDataLen(ASN1MemBuf* pMemBuf);
/* Removes nbytes at fromOffset (counted from the start of the data); -30 past the end. */
QN_API int rtMemBufCut(ASN1MemBuf* pMemBuf, ASN1UINT fromOffset, ASN1UINT nbytes);
/* Drops white space at both ends of the data; returns the length left. */
QN_API int rtMemBufTrimW(ASN1MemBuf* pMemBuf);
/* Empties the buffer, keeping its storage. */
QN_API void rtMemBufReset(ASN1MemBuf* pMemBuf);
/* Returns dynamic storage to the heap; a caller's storage is left alone. */
QN_API void rtMemBufFree(ASN1MemBuf* pMemBuf);

QN_END_C

#endif
