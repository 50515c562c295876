/*
 * Private layout of the block heap. Kept in a header of its own so that the heap's tests can
 * check the records and reckon block sizes with sizeof instead of hard-coding i386 figures.
 *
 * A heap is a list of links, newest first, except that kept-empty blocks wait at its end. The
 * list is linked forward to a null end and backward in a ring (the head's prev is the last
 * link). An ordinary block is one hook allocation holding
 * its link, its block header and a data area of 8-byte units; a large allocation is the
 * caller's memory on its own with a separately allocated link. Inside a block every element
 * is preceded by a one-unit header and all bookkeeping is in 16-bit unit counts.
 */
#ifndef QUILLON_RTMEMHEAPIMPL_H
#define QUILLON_RTMEMHEAPIMPL_H

#include <quillon/rtMemHeap.h>

struct OSMemLink {
  OSMemLink* next;
  OSMemLink* prev;
  /* The nearest large-allocation link behind this one, so that a pointer can be looked up
   * among the large allocations without walking the ordinary blocks. */
  OSMemLink* nextRaw;
  void* memBlk;
  ASN1OCTET flags;
  size_t blockSize; /* large allocations: bytes asked for; unused in a block's own link */
};

/* Link flags. */
#define RTMEMSTD 0x01u
#define RTMEMRAW 0x02u
#define RTMEMMALLOC 0x04u
#define RTMEMSAVED 0x08u
#define RTMEMLINK 0x10u

struct OSMemBlk {
  OSMemLink* plink;
  ASN1USINT tailIndex;  /* first unit not yet handed out; 0 when the block is empty */
  ASN1USINT freeUnits;  /* units in free element bodies below the tail */
  ASN1USINT totalUnits;
  ASN1USINT lastElem;   /* 1-based unit index of the last element's header, 0 if none */
  ASN1USINT freeHead;   /* 1-based unit index of the first free element's header, 0 if none */
  ASN1USINT savedCount;
  ASN1UINT reserved;    /* keeps the data area on an 8-byte boundary on both builds */
};

struct OSMemElemHdr {
  ASN1OCTET flags;
  ASN1OCTET reserved;
  ASN1USINT units;      /* body size in units */
  ASN1USINT prevOffset; /* units back to the previous element's header; 0 for the first */
  ASN1USINT position;   /* live: own header's unit index; free: units to the next free one */
};

/* Element flags. */
#define RTMEMELEM_FREE 0x01u
#define RTMEMELEM_LAST 0x02u
#define RTMEMELEM_SAVED 0x04u

struct OSMemHeap {
  OSMemLink* blocks;
  ASN1UINT blockUnits;  /* capacity of every ordinary block held */
  ASN1UINT blockCount;  /* ordinary blocks held, the kept-empty ones included */
  ASN1UINT emptyUnits;  /* capacity of the empty blocks kept for reuse */
  ASN1UINT emptyCount;
  ASN1UINT emptyLimit;  /* most units kept in empty blocks; 0 means no limit */
  ASN1UINT defBlkSize;
  ASN1UINT refCount;
  ASN1UINT flags;
  void* memAllocCtx;
};

/* Set on a heap record that rtMemHeapCreate allocated; the top four flag bits are the heap's. */
#define RT_MH_FREEHEAPDESC 0x10000000u
/* Some block may hold free elements; clear after a search of the free lists found none. */
#define RT_MH_MAYFREE 0x40000000u
#define RT_MH_INTERNALMASK 0xF0000000u

namespace qn_heap {

constexpr size_t kUnit = 8;
/* A request of this many bytes needs 65535 units, more than a block's 16-bit counts address. */
constexpr size_t kLargeMinBytes = 65535 * kUnit - 7;
constexpr unsigned kMaxBlockUnits = 65535;
/* Block sizes are reckoned with the 20-byte block header of the i386 layout, so that a block of
 * a given size holds the same number of units on both builds. */
constexpr size_t kNominalBlkHdrBytes = 20;
constexpr size_t kCapacitySlackBytes = 28;

constexpr size_t roundUp(size_t n, size_t to) { return (n + to - 1) / to * to; }

/* An ordinary block's link needs only the fields before blockSize. */
constexpr size_t kLinkPrefix = roundUp(offsetof(OSMemLink, blockSize), alignof(OSMemBlk));
constexpr size_t kBlockOverhead = kLinkPrefix + sizeof(OSMemBlk);

/* Bytes asked from the malloc hook for an ordinary block of nominal size byteSize. */
constexpr size_t blockAllocBytes(size_t byteSize) {
  return byteSize - kNominalBlkHdrBytes + kBlockOverhead;
}

static_assert(sizeof(OSMemElemHdr) == kUnit, "an element header is one unit");
static_assert(kBlockOverhead % kUnit == 0, "the data area starts on a unit boundary");
#if UINTPTR_MAX == 0xFFFFFFFFu
static_assert(sizeof(OSMemHeap) == 40, "ten 32-bit words");
static_assert(kLinkPrefix == 20 && sizeof(OSMemLink) == 24, "20-byte block link, 24 large");
static_assert(sizeof(OSMemBlk) == 20, "20-byte block header");
static_assert(blockAllocBytes(4096) == 4096 + 20, "a default block is 4096 + 20 bytes");
#endif

}  // namespace qn_heap

#endif
