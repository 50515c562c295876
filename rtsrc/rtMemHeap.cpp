/*
 * The block heap: small elements carved from blocks of defBlkSize bytes, large requests in
 * memory of their own, bulk release by walking the block list.
 */
#include <stdlib.h>
#include <string.h>

#include <quillon/rtContext.h>
#include <quillon/rtList.h>

#include "rtMemHeapImpl.h"

using namespace qn_heap;

namespace {

OSMallocFunc g_malloc = rtDefaultMalloc;
OSReallocFunc g_realloc = rtDefaultRealloc;
OSFreeFunc g_free = rtDefaultFree;
ASN1UINT g_defBlkSize = 4096;

/* ---- Element and block addressing ------------------------------------------------------- */

inline ASN1OCTET* dataArea(OSMemBlk* blk) { return reinterpret_cast<ASN1OCTET*>(blk + 1); }

inline OSMemElemHdr* elemAt(OSMemBlk* blk, unsigned index) {
  return reinterpret_cast<OSMemElemHdr*>(dataArea(blk) + index * kUnit);
}

inline unsigned indexOf(OSMemBlk* blk, const OSMemElemHdr* elem) {
  return static_cast<unsigned>((reinterpret_cast<const ASN1OCTET*>(elem) - dataArea(blk)) /
                               kUnit);
}

inline OSMemElemHdr* headerOf(const void* mem) {
  return reinterpret_cast<OSMemElemHdr*>(const_cast<void*>(mem)) - 1;
}

inline void* bodyOf(OSMemElemHdr* elem) { return elem + 1; }

/* Only a live element knows its position; a free one uses the field as its free-list link. */
inline OSMemBlk* blockOf(OSMemElemHdr* elem) {
  ASN1OCTET* data = reinterpret_cast<ASN1OCTET*>(elem) - elem->position * kUnit;
  return reinterpret_cast<OSMemBlk*>(data) - 1;
}

inline OSMemBlk* blockOfLink(OSMemLink* link) { return static_cast<OSMemBlk*>(link->memBlk); }

inline bool isLarge(const OSMemLink* link) { return (link->flags & RTMEMRAW) != 0; }

inline unsigned tailRoom(const OSMemBlk* blk) {
  return static_cast<unsigned>(blk->totalUnits - blk->tailIndex);
}

inline OSMemElemHdr* nextElem(OSMemBlk* blk, OSMemElemHdr* elem) {
  return elemAt(blk, indexOf(blk, elem) + 1 + elem->units);
}

inline OSMemElemHdr* prevElem(OSMemBlk* blk, OSMemElemHdr* elem) {
  return elemAt(blk, indexOf(blk, elem) - elem->prevOffset);
}

/* ---- The link list ---------------------------------------------------------------------- */

inline OSMemLink* firstLarge(OSMemHeap* heap) {
  OSMemLink* head = heap->blocks;
  if (!head) return nullptr;
  return isLarge(head) ? head : head->nextRaw;
}

/* The list is linked forward to a null end, and backward in a ring: the head's prev is the
 * last link, so that kept-empty blocks can be parked at the end and taken back in O(1). */
inline OSMemLink* lastLink(OSMemHeap* heap) { return heap->blocks ? heap->blocks->prev : nullptr; }

void pushLink(OSMemHeap* heap, OSMemLink* link) {
  OSMemLink* head = heap->blocks;
  link->prev = head ? head->prev : link;
  link->next = head;
  link->nextRaw = head ? (isLarge(head) ? head : head->nextRaw) : nullptr;
  if (head) head->prev = link;
  heap->blocks = link;
}

/* Only ordinary blocks are appended: nothing large is behind them. */
void appendLink(OSMemHeap* heap, OSMemLink* link) {
  OSMemLink* head = heap->blocks;
  if (!head) {
    pushLink(heap, link);
    return;
  }
  OSMemLink* last = head->prev;
  last->next = link;
  link->prev = last;
  link->next = nullptr;
  link->nextRaw = nullptr;
  head->prev = link;
}

void unlinkLink(OSMemHeap* heap, OSMemLink* link) {
  OSMemLink* head = heap->blocks;
  if (isLarge(link)) {
    for (OSMemLink* l = head; l != link; l = l->next) {
      if (l->nextRaw == link) l->nextRaw = link->nextRaw;
    }
  }
  if (link == head) {
    heap->blocks = link->next;
    if (link->next) link->next->prev = link->prev;
    return;
  }
  link->prev->next = link->next;
  if (link->next) link->next->prev = link->prev;
  else head->prev = link->prev;
}

OSMemLink* findLarge(OSMemHeap* heap, const void* mem) {
  for (OSMemLink* l = firstLarge(heap); l; l = l->nextRaw) {
    if (l->memBlk == mem) return l;
  }
  return nullptr;
}

void freeLarge(OSMemHeap* heap, OSMemLink* link) {
  unlinkLink(heap, link);
  if (link->flags & RTMEMMALLOC) g_free(heap->memAllocCtx, link->memBlk);
  g_free(heap->memAllocCtx, link);
}

inline void enterEmptyCounters(OSMemHeap* heap, const OSMemBlk* blk) {
  heap->emptyUnits += blk->totalUnits;
  heap->emptyCount++;
}

inline void leaveEmptyCounters(OSMemHeap* heap, const OSMemBlk* blk) {
  heap->emptyUnits -= blk->totalUnits;
  heap->emptyCount--;
}

void releaseBlock(OSMemHeap* heap, OSMemLink* link) {
  OSMemBlk* blk = blockOfLink(link);
  unlinkLink(heap, link);
  heap->blockUnits -= blk->totalUnits;
  heap->blockCount--;
  g_free(heap->memAllocCtx, link);
}

/* ---- Free lists ------------------------------------------------------------------------- */

inline OSMemElemHdr* nextFree(OSMemElemHdr* elem) {
  return elem->position ? elem + elem->position : nullptr;
}

inline void setNextFree(OSMemElemHdr* elem, OSMemElemHdr* next) {
  elem->position = next ? static_cast<ASN1USINT>(next - elem) : 0;
}

inline OSMemElemHdr* freeHead(OSMemBlk* blk) {
  return blk->freeHead ? elemAt(blk, blk->freeHead - 1u) : nullptr;
}

inline void setFreeHead(OSMemBlk* blk, OSMemElemHdr* elem) {
  blk->freeHead = elem ? static_cast<ASN1USINT>(indexOf(blk, elem) + 1) : 0;
}

/* The free element in front of elem in address order, or null. Searched two ways in step,
 * forward along the free list and backward through elem's neighbours, because each alone is
 * slow on a common pattern: many free elements before elem, or many live ones. */
OSMemElemHdr* freePredecessor(OSMemBlk* blk, OSMemElemHdr* elem) {
  OSMemElemHdr* pred = nullptr;
  OSMemElemHdr* ahead = freeHead(blk);
  OSMemElemHdr* behind = elem;
  for (;;) {
    if (!ahead || ahead >= elem) return pred;
    pred = ahead;
    ahead = nextFree(ahead);
    if (behind->prevOffset == 0) return nullptr;
    behind = prevElem(blk, behind);
    if (behind->flags & RTMEMELEM_FREE) return behind;
  }
}

void unlinkFree(OSMemBlk* blk, OSMemElemHdr* elem) {
  OSMemElemHdr* pred = freePredecessor(blk, elem);
  OSMemElemHdr* next = nextFree(elem);
  if (pred) setNextFree(pred, next);
  else setFreeHead(blk, next);
}

void insertFree(OSMemBlk* blk, OSMemElemHdr* elem) {
  OSMemElemHdr* pred = freePredecessor(blk, elem);
  OSMemElemHdr* next = pred ? nextFree(pred) : freeHead(blk);
  setNextFree(elem, next);
  if (pred) setNextFree(pred, elem);
  else setFreeHead(blk, elem);
}

/* elem absorbs the element right behind it, which is not the last of the block. */
void absorbNext(OSMemBlk* blk, OSMemElemHdr* elem, OSMemElemHdr* next) {
  elem->units = static_cast<ASN1USINT>(elem->units + 1 + next->units);
  OSMemElemHdr* after = nextElem(blk, elem);
  after->prevOffset = static_cast<ASN1USINT>(after - elem);
}

/* ---- Emptying and reuse of blocks ------------------------------------------------------- */

/* Kept-empty blocks stay behind every block in use, so allocation finds them at the end of the
 * list and the blocks in use at its front. */
void parkEmptyBlock(OSMemHeap* heap, OSMemBlk* blk) {
  enterEmptyCounters(heap, blk);
  unlinkLink(heap, blk->plink);
  appendLink(heap, blk->plink);
}

void clearBlock(OSMemBlk* blk) {
  blk->tailIndex = 0;
  blk->freeUnits = 0;
  blk->lastElem = 0;
  blk->freeHead = 0;
  blk->savedCount = 0;
  blk->plink->flags &= ~RTMEMSAVED;
}

bool keepsEmptyBlock(const OSMemHeap* heap, const OSMemBlk* blk) {
  if (heap->flags & RT_MH_DONTKEEPFREE) return false;
  return heap->emptyLimit == 0 || heap->emptyUnits + blk->totalUnits <= heap->emptyLimit;
}

void blockBecameEmpty(OSMemHeap* heap, OSMemBlk* blk) {
  clearBlock(blk);
  if (!keepsEmptyBlock(heap, blk)) {
    releaseBlock(heap, blk->plink);
    return;
  }
  parkEmptyBlock(heap, blk);
}

/* ---- Freeing an element ----------------------------------------------------------------- */

void clearSavedMark(OSMemBlk* blk, OSMemElemHdr* elem) {
  elem->flags &= ~RTMEMELEM_SAVED;
  if (--blk->savedCount == 0) blk->plink->flags &= ~RTMEMSAVED;
}

void freeInner(OSMemHeap* heap, OSMemBlk* blk, OSMemElemHdr* elem) {
  heap->flags |= RT_MH_MAYFREE;
  elem->flags |= RTMEMELEM_FREE;
  blk->freeUnits = static_cast<ASN1USINT>(blk->freeUnits + elem->units);
  insertFree(blk, elem);
  OSMemElemHdr* next = nextElem(blk, elem);
  if (next->flags & RTMEMELEM_FREE) {
    setNextFree(elem, nextFree(next));
    absorbNext(blk, elem, next);
    blk->freeUnits++;
  }
  if (elem->prevOffset == 0) return;
  OSMemElemHdr* prev = prevElem(blk, elem);
  if (prev->flags & RTMEMELEM_FREE) {
    setNextFree(prev, nextFree(elem));
    absorbNext(blk, prev, elem);
    blk->freeUnits++;
  }
}

void freeLast(OSMemHeap* heap, OSMemBlk* blk, OSMemElemHdr* elem) {
  unsigned index = indexOf(blk, elem);
  /* Marked free so that a second free of the same pointer stays harmless. */
  elem->flags = RTMEMELEM_FREE;
  blk->tailIndex = static_cast<ASN1USINT>(index);
  OSMemElemHdr* newLast = nullptr;
  if (elem->prevOffset != 0) {
    newLast = prevElem(blk, elem);
    if (newLast->flags & RTMEMELEM_FREE) {
      unlinkFree(blk, newLast);
      blk->freeUnits = static_cast<ASN1USINT>(blk->freeUnits - newLast->units);
      blk->tailIndex = static_cast<ASN1USINT>(indexOf(blk, newLast));
      newLast = newLast->prevOffset ? prevElem(blk, newLast) : nullptr;
    }
  }
  if (!newLast) {
    blockBecameEmpty(heap, blk);
    return;
  }
  newLast->flags |= RTMEMELEM_LAST;
  blk->lastElem = static_cast<ASN1USINT>(indexOf(blk, newLast) + 1);
}

void freeElement(OSMemHeap* heap, OSMemElemHdr* elem) {
  if (elem->flags & RTMEMELEM_FREE) return;
  OSMemBlk* blk = blockOf(elem);
  if (elem->flags & RTMEMELEM_SAVED) clearSavedMark(blk, elem);
  if (elem->flags & RTMEMELEM_LAST) freeLast(heap, blk, elem);
  else freeInner(heap, blk, elem);
}

/* ---- Resizing in place ------------------------------------------------------------------ */

/* Gives the units of elem beyond units back to the block. */
void shrinkElement(OSMemHeap* heap, OSMemBlk* blk, OSMemElemHdr* elem, unsigned units) {
  unsigned index = indexOf(blk, elem);
  if (elem->flags & RTMEMELEM_LAST) {
    elem->units = static_cast<ASN1USINT>(units);
    blk->tailIndex = static_cast<ASN1USINT>(index + 1 + units);
    return;
  }
  /* The rest becomes an element of its own, which the ordinary free path merges. */
  OSMemElemHdr* next = nextElem(blk, elem);
  OSMemElemHdr* rest = elemAt(blk, index + 1 + units);
  rest->flags = 0;
  rest->reserved = 0;
  rest->units = static_cast<ASN1USINT>(elem->units - units - 1);
  rest->prevOffset = static_cast<ASN1USINT>(units + 1);
  rest->position = static_cast<ASN1USINT>(index + 1 + units);
  next->prevOffset = static_cast<ASN1USINT>(next - rest);
  elem->units = static_cast<ASN1USINT>(units);
  freeElement(heap, rest);
}

/* Grows elem in place to units when the tail or a free neighbour allows; false otherwise. */
bool growElement(OSMemHeap* heap, OSMemBlk* blk, OSMemElemHdr* elem, unsigned units) {
  unsigned index = indexOf(blk, elem);
  if (elem->flags & RTMEMELEM_LAST) {
    if (index + 1 + units > blk->totalUnits) return false;
    elem->units = static_cast<ASN1USINT>(units);
    blk->tailIndex = static_cast<ASN1USINT>(index + 1 + units);
    return true;
  }
  OSMemElemHdr* next = nextElem(blk, elem);
  if (!(next->flags & RTMEMELEM_FREE) || elem->units + 1u + next->units < units) return false;
  unlinkFree(blk, next);
  blk->freeUnits = static_cast<ASN1USINT>(blk->freeUnits - next->units);
  absorbNext(blk, elem, next);
  if (elem->units > units) shrinkElement(heap, blk, elem, units);
  return true;
}

/* ---- Allocation ------------------------------------------------------------------------- */

inline void* carveAtTail(OSMemBlk* blk, unsigned units) {
  unsigned index = blk->tailIndex;
  OSMemElemHdr* elem = elemAt(blk, index);
  elem->flags = RTMEMELEM_LAST;
  elem->reserved = 0;
  elem->units = static_cast<ASN1USINT>(units);
  elem->position = static_cast<ASN1USINT>(index);
  elem->prevOffset = 0;
  if (blk->lastElem != 0) {
    OSMemElemHdr* last = elemAt(blk, blk->lastElem - 1u);
    last->flags &= ~RTMEMELEM_LAST;
    elem->prevOffset = static_cast<ASN1USINT>(elem - last);
  }
  blk->lastElem = static_cast<ASN1USINT>(index + 1);
  blk->tailIndex = static_cast<ASN1USINT>(index + 1 + units);
  return bodyOf(elem);
}

/* Allocation looks at the tails and free lists of the few newest blocks in use only, then at
 * a kept-empty block, then makes a new block: a search of every block would make decoding a
 * message of many blocks (a large CRL) quadratic. What is left in an older block is at most
 * the few units a request did not fit in. */
constexpr unsigned kRecentBlocks = 4;

/* The next ordinary block in use behind l (l included), or null at the kept-empty part. */
OSMemBlk* blockInUseFrom(OSMemLink* l) {
  for (; l; l = l->next) {
    if (isLarge(l)) continue;
    OSMemBlk* blk = blockOfLink(l);
    return blk->tailIndex != 0 ? blk : nullptr;
  }
  return nullptr;
}

void* allocFromRecentTails(OSMemHeap* heap, unsigned units) {
  OSMemBlk* blk = blockInUseFrom(heap->blocks);
  for (unsigned n = 0; blk && n < kRecentBlocks; ++n) {
    if (tailRoom(blk) >= units + 1) return carveAtTail(blk, units);
    blk = blockInUseFrom(blk->plink->next);
  }
  return nullptr;
}

/* Takes the kept-empty block at the end of the list back into use, at the front. */
void* allocFromKeptEmpty(OSMemHeap* heap, unsigned units) {
  OSMemLink* last = lastLink(heap);
  if (heap->emptyCount == 0 || !last || isLarge(last)) return nullptr;
  OSMemBlk* blk = blockOfLink(last);
  if (blk->tailIndex != 0 || tailRoom(blk) < units + 1) return nullptr;
  leaveEmptyCounters(heap, blk);
  unlinkLink(heap, last);
  pushLink(heap, last);
  return carveAtTail(blk, units);
}

void* takeFromFreeList(OSMemHeap* heap, OSMemBlk* blk, unsigned units) {
  OSMemElemHdr* pred = nullptr;
  OSMemElemHdr* elem = freeHead(blk);
  while (elem && elem->units < units) {
    pred = elem;
    elem = nextFree(elem);
  }
  if (!elem) return nullptr;
  if (pred) setNextFree(pred, nextFree(elem));
  else setFreeHead(blk, nextFree(elem));
  elem->flags &= ~RTMEMELEM_FREE;
  elem->position = static_cast<ASN1USINT>(indexOf(blk, elem));
  blk->freeUnits = static_cast<ASN1USINT>(blk->freeUnits - elem->units);
  if (elem->units > units) shrinkElement(heap, blk, elem, units);
  return bodyOf(elem);
}

void* allocFromRecentFreeLists(OSMemHeap* heap, unsigned units) {
  if (!(heap->flags & RT_MH_MAYFREE)) return nullptr;
  bool anyFree = false;
  OSMemBlk* blk = blockInUseFrom(heap->blocks);
  for (unsigned n = 0; blk && n < kRecentBlocks; ++n) {
    anyFree = anyFree || blk->freeUnits != 0;
    if (blk->freeUnits >= units) {
      if (void* mem = takeFromFreeList(heap, blk, units)) return mem;
    }
    blk = blockInUseFrom(blk->plink->next);
  }
  if (!anyFree && !blk) heap->flags &= ~RT_MH_MAYFREE;
  return nullptr;
}

/* Nominal byte size of a block that can hold an element of units units. */
size_t blockBytesFor(const OSMemHeap* heap, unsigned units) {
  size_t blkSize = heap->defBlkSize;
  size_t needed = units * kUnit + kCapacitySlackBytes + kUnit;
  if (needed >= blkSize) blkSize = roundUp(needed, blkSize);
  return blkSize;
}

void* allocFromNewBlock(OSMemHeap* heap, unsigned units) {
  size_t byteSize = blockBytesFor(heap, units);
  size_t capacity = (byteSize - kCapacitySlackBytes) / kUnit;
  if (capacity > kMaxBlockUnits) {
    capacity = kMaxBlockUnits;
    byteSize = kMaxBlockUnits * kUnit + kCapacitySlackBytes;
  }
  void* mem = g_malloc(heap->memAllocCtx, blockAllocBytes(byteSize));
  if (!mem) return nullptr;
  OSMemLink* link = static_cast<OSMemLink*>(mem);
  OSMemBlk* blk = reinterpret_cast<OSMemBlk*>(static_cast<ASN1OCTET*>(mem) + kLinkPrefix);
  link->memBlk = blk;
  link->flags = RTMEMSTD | RTMEMLINK;
  blk->plink = link;
  blk->totalUnits = static_cast<ASN1USINT>(capacity);
  blk->reserved = 0;
  clearBlock(blk);
  pushLink(heap, link);
  heap->blockUnits += blk->totalUnits;
  heap->blockCount++;
  return carveAtTail(blk, units);
}

void* allocLarge(OSMemHeap* heap, size_t nbytes) {
  void* mem = g_malloc(heap->memAllocCtx, nbytes);
  if (!mem) return nullptr;
  OSMemLink* link = static_cast<OSMemLink*>(g_malloc(heap->memAllocCtx, sizeof(OSMemLink)));
  if (!link) {
    g_free(heap->memAllocCtx, mem);
    return nullptr;
  }
  link->memBlk = mem;
  link->flags = RTMEMRAW | RTMEMMALLOC;
  link->blockSize = nbytes;
  pushLink(heap, link);
  return mem;
}

void* reallocLarge(OSMemHeap** ppHeap, OSMemLink* link, size_t nbytes) {
  OSMemHeap* heap = *ppHeap;
  if (nbytes >= kLargeMinBytes) {
    void* mem = g_realloc(heap->memAllocCtx, link->memBlk, nbytes);
    if (!mem) return nullptr;
    link->memBlk = mem;
    link->blockSize = nbytes;
    return mem;
  }
  void* mem = rtMemHeapAlloc(ppHeap, nbytes);
  if (!mem) return nullptr;
  memcpy(mem, link->memBlk, nbytes);
  freeLarge(heap, link);
  return mem;
}

inline unsigned unitsFor(size_t nbytes) { return static_cast<unsigned>((nbytes + 7) / kUnit); }

void* relocateElement(OSMemHeap** ppHeap, OSMemElemHdr* elem, size_t nbytes) {
  void* mem = rtMemHeapAlloc(ppHeap, nbytes);
  if (!mem) return nullptr;
  size_t keep = elem->units * kUnit;
  memcpy(mem, bodyOf(elem), keep < nbytes ? keep : nbytes);
  freeElement(*ppHeap, elem);
  return mem;
}

/* ---- Bulk release ----------------------------------------------------------------------- */

inline bool holdsSaved(const OSMemLink* link) { return (link->flags & RTMEMSAVED) != 0; }

void emptyBlockForReuse(OSMemHeap* heap, OSMemBlk* blk) {
  if (blk->tailIndex == 0) return;
  clearBlock(blk);
  parkEmptyBlock(heap, blk);
}

void freeAllLinks(OSMemHeap* heap, bool keepSaved) {
  OSMemLink* next;
  for (OSMemLink* l = heap->blocks; l; l = next) {
    next = l->next;
    if (keepSaved && holdsSaved(l)) continue;
    if (isLarge(l)) {
      freeLarge(heap, l);
      continue;
    }
    if (blockOfLink(l)->tailIndex == 0) leaveEmptyCounters(heap, blockOfLink(l));
    releaseBlock(heap, l);
  }
}

/* Element lookup for rtMemHeapCheckPtr: walks the element chain, so it is exact. It walks
 * forward, because a value is freed in the order it was decoded and freed neighbours merge:
 * the element asked about usually stands right behind one free run at the block's start. */
bool blockHoldsLiveElement(OSMemBlk* blk, const void* mem) {
  uintptr_t p = reinterpret_cast<uintptr_t>(mem);
  uintptr_t data = reinterpret_cast<uintptr_t>(dataArea(blk));
  if (blk->lastElem == 0 || p <= data || p > data + blk->tailIndex * kUnit) return false;
  for (unsigned index = 0; index < blk->tailIndex;) {
    OSMemElemHdr* e = elemAt(blk, index);
    if (bodyOf(e) == mem) return !(e->flags & RTMEMELEM_FREE);
    if (bodyOf(e) > mem) return false;
    index += 1u + e->units;
  }
  return false;
}

bool holdsElement(OSMemLink* link, const void* mem) {
  return isLarge(link) ? link->memBlk == mem : blockHoldsLiveElement(blockOfLink(link), mem);
}

void markLinkSaved(OSMemLink* link, ASN1BOOL saved) {
  if (saved) link->flags |= RTMEMSAVED;
  else link->flags &= ~RTMEMSAVED;
}

void markElemSaved(OSMemElemHdr* elem, ASN1BOOL saved) {
  if (elem->flags & RTMEMELEM_FREE) return;
  OSMemBlk* blk = blockOf(elem);
  bool isSaved = (elem->flags & RTMEMELEM_SAVED) != 0;
  if (saved && !isSaved) {
    elem->flags |= RTMEMELEM_SAVED;
    blk->savedCount++;
    blk->plink->flags |= RTMEMSAVED;
  } else if (!saved && isSaved) {
    clearSavedMark(blk, elem);
  }
}

}  // namespace

/* ---- Hooks and process-wide settings ---------------------------------------------------- */

void* rtDefaultMalloc(void*, size_t size) { return malloc(size); }
void* rtDefaultRealloc(void*, void* ptr, size_t size) { return realloc(ptr, size); }
void rtDefaultFree(void*, void* ptr) { free(ptr); }

void rtMemSetAllocFuncs(OSMallocFunc malloc_func, OSReallocFunc realloc_func,
                        OSFreeFunc free_func) {
  g_malloc = malloc_func ? malloc_func : rtDefaultMalloc;
  g_realloc = realloc_func ? realloc_func : rtDefaultRealloc;
  g_free = free_func ? free_func : rtDefaultFree;
}

ASN1UINT rtMemGetDefBlkSize(void) { return g_defBlkSize; }

void rtMemSetDefBlkSize(ASN1UINT blkSize) {
  if (blkSize != 0) g_defBlkSize = blkSize;
}

void rtMemFreeNullPtr(void*) {}

/* ---- Heap ------------------------------------------------------------------------------- */

int rtMemHeapCreate(OSMemHeap** ppHeap, void* pMemAllocCtx) {
  if (!ppHeap) return ASN_E_INVPARAM;
  OSMemHeap* heap = static_cast<OSMemHeap*>(g_malloc(pMemAllocCtx, sizeof(OSMemHeap)));
  if (!heap) return ASN_E_NOMEM;
  memset(heap, 0, sizeof(OSMemHeap));
  heap->defBlkSize = g_defBlkSize;
  heap->memAllocCtx = pMemAllocCtx;
  heap->refCount = 1;
  heap->flags = RT_MH_FREEHEAPDESC;
  *ppHeap = heap;
  return 0;
}

/* Everything but the common case: the newest block's tail has room. Kept apart so that the
 * common case, a few loads and stores, pays for no register saves. */
static __attribute__((noinline)) void* allocSlow(OSMemHeap** ppHeap, size_t nbytes) {
  if (!ppHeap) return nullptr;
  if (!*ppHeap && rtMemHeapCreate(ppHeap, nullptr) != 0) return nullptr;
  OSMemHeap* heap = *ppHeap;
  if (nbytes >= kLargeMinBytes) return allocLarge(heap, nbytes);
  unsigned units = unitsFor(nbytes);
  if (void* mem = allocFromRecentTails(heap, units)) return mem;
  if (void* mem = allocFromKeptEmpty(heap, units)) return mem;
  if (void* mem = allocFromRecentFreeLists(heap, units)) return mem;
  return allocFromNewBlock(heap, units);
}

void* rtMemHeapAlloc(OSMemHeap** ppHeap, size_t nbytes) {
  OSMemLink* head = ppHeap && *ppHeap ? (*ppHeap)->blocks : nullptr;
  if (head && !isLarge(head) && nbytes < kLargeMinBytes) {
    OSMemBlk* blk = blockOfLink(head);
    unsigned units = unitsFor(nbytes);
    if (blk->tailIndex != 0 && tailRoom(blk) >= units + 1) return carveAtTail(blk, units);
  }
  return allocSlow(ppHeap, nbytes);
}

void* rtMemHeapAllocZ(OSMemHeap** ppHeap, size_t nbytes) {
  void* mem = rtMemHeapAlloc(ppHeap, nbytes);
  if (mem) memset(mem, 0, nbytes);
  return mem;
}

void* rtMemHeapRealloc(OSMemHeap** ppHeap, void* mem_p, size_t nbytes) {
  if (!ppHeap) return nullptr;
  if (!mem_p) return rtMemHeapAlloc(ppHeap, nbytes);
  OSMemHeap* heap = *ppHeap;
  if (!heap) return nullptr;
  if (OSMemLink* link = findLarge(heap, mem_p)) return reallocLarge(ppHeap, link, nbytes);
  OSMemElemHdr* elem = headerOf(mem_p);
  if (elem->flags & RTMEMELEM_FREE) return nullptr;
  if (nbytes >= kLargeMinBytes) return relocateElement(ppHeap, elem, nbytes);
  unsigned units = unitsFor(nbytes);
  OSMemBlk* blk = blockOf(elem);
  if (units == elem->units) return mem_p;
  if (units < elem->units) {
    shrinkElement(heap, blk, elem, units);
    return mem_p;
  }
  if (growElement(heap, blk, elem, units)) return mem_p;
  return relocateElement(ppHeap, elem, nbytes);
}

void rtMemHeapFreePtr(OSMemHeap** ppHeap, void* mem_p) {
  if (!ppHeap || !*ppHeap || !mem_p) return;
  OSMemHeap* heap = *ppHeap;
  if (OSMemLink* link = findLarge(heap, mem_p)) {
    freeLarge(heap, link);
    return;
  }
  freeElement(heap, headerOf(mem_p));
}

void rtMemHeapFreeAll(OSMemHeap** ppHeap) {
  if (!ppHeap || !*ppHeap) return;
  freeAllLinks(*ppHeap, true);
}

void rtMemHeapReset(OSMemHeap** ppHeap) {
  if (!ppHeap || !*ppHeap) return;
  OSMemHeap* heap = *ppHeap;
  OSMemLink* next;
  for (OSMemLink* l = heap->blocks; l; l = next) {
    next = l->next;
    if (holdsSaved(l)) continue;
    if (isLarge(l)) freeLarge(heap, l);
    else emptyBlockForReuse(heap, blockOfLink(l));
  }
}

void* rtMemHeapMarkSaved(OSMemHeap** ppHeap, const void* mem_p, ASN1BOOL saved) {
  if (!ppHeap || !*ppHeap || !mem_p) return nullptr;
  if (OSMemLink* link = findLarge(*ppHeap, mem_p)) markLinkSaved(link, saved);
  else markElemSaved(headerOf(mem_p), saved);
  return const_cast<void*>(mem_p);
}

/* A value is freed element by element in the order it was decoded, so a question is nearly
 * always about the block of the one before, or about the oldest block not yet asked about.
 * The first is brought to the front when it answers; the second is at the end of the blocks
 * in use. So the search runs from both ends at once: freeing a message of many blocks does not
 * walk the whole list once per pointer. Order means nothing else to a block in use. */
int rtMemHeapCheckPtr(OSMemHeap** ppHeap, const void* mem_p) {
  if (!ppHeap || !*ppHeap || !mem_p) return 0;
  OSMemHeap* heap = *ppHeap;
  OSMemLink* front = heap->blocks;
  OSMemLink* back = lastLink(heap);
  while (front) {
    OSMemLink* found = holdsElement(front, mem_p) ? front : nullptr;
    if (!found && front != back && holdsElement(back, mem_p)) found = back;
    if (found) {
      if (!isLarge(found) && found != heap->blocks) {
        unlinkLink(heap, found);
        pushLink(heap, found);
      }
      return 1;
    }
    if (front == back || front->next == back) break;
    front = front->next;
    back = back->prev;
  }
  return 0;
}

void rtMemHeapAddRef(OSMemHeap** ppHeap) {
  if (ppHeap && *ppHeap) (*ppHeap)->refCount++;
}

void rtMemHeapRelease(OSMemHeap** ppHeap) {
  if (!ppHeap || !*ppHeap) return;
  OSMemHeap* heap = *ppHeap;
  if (--heap->refCount > 0) return;
  freeAllLinks(heap, false);
  if (heap->flags & RT_MH_FREEHEAPDESC) g_free(heap->memAllocCtx, heap);
  *ppHeap = nullptr;
}

void rtMemHeapSetProperty(OSMemHeap** ppHeap, ASN1UINT propId, void* pProp) {
  if (!ppHeap || !pProp) return;
  if (!*ppHeap && rtMemHeapCreate(ppHeap, nullptr) != 0) return;
  OSMemHeap* heap = *ppHeap;
  ASN1UINT value = *static_cast<ASN1UINT*>(pProp);
  switch (propId) {
    case OSRTMH_PROPID_DEFBLKSIZE:
      if (value != 0) heap->defBlkSize = value;
      break;
    case OSRTMH_PROPID_SETFLAGS:
      heap->flags |= value & ~RT_MH_INTERNALMASK;
      break;
    case OSRTMH_PROPID_CLEARFLAGS:
      heap->flags &= ~(value & ~RT_MH_INTERNALMASK);
      break;
    default:
      break;
  }
}

static void setContextHeapProperty(ASN1CTXT* pctxt, ASN1UINT propId, ASN1UINT value) {
  if (!pctxt || !pctxt->memHeap) return;
  rtMemHeapSetProperty(&pctxt->memHeap, propId, &value);
}

void rtMemHeapSetFlags(ASN1CTXT* pctxt, ASN1UINT flags) {
  setContextHeapProperty(pctxt, OSRTMH_PROPID_SETFLAGS, flags);
}

void rtMemHeapClearFlags(ASN1CTXT* pctxt, ASN1UINT flags) {
  setContextHeapProperty(pctxt, OSRTMH_PROPID_CLEARFLAGS, flags);
}

void rtMemHeapSetDefBlkSize(ASN1CTXT* pctxt, ASN1UINT blkSize) {
  setContextHeapProperty(pctxt, OSRTMH_PROPID_DEFBLKSIZE, blkSize);
}

ASN1UINT rtMemHeapGetDefBlkSize(ASN1CTXT* pctxt) {
  if (!pctxt || !pctxt->memHeap) return g_defBlkSize;
  return pctxt->memHeap->defBlkSize;
}

/* ---- Context shorthands ----------------------------------------------------------------- */

void rtMemFreeOpenSeqExt(ASN1CTXT* pctxt, _Asn1RTDList* pElemList) {
  if (!pctxt || !pElemList) return;
  for (_Asn1RTDListNode* node = pElemList->head; node; node = node->next) {
    if (auto* ext = static_cast<ASN1TOpenType*>(node->data)) {
      rtMemHeapFreePtr(&pctxt->memHeap, const_cast<ASN1OCTET*>(ext->data));
    }
  }
  rtDListFreeNodes(pctxt, pElemList);
}

void* xu_malloc(ASN1CTXT* pctxt, size_t nbytes) {
  if (!pctxt) return nullptr;
  return rtMemHeapAlloc(&pctxt->memHeap, nbytes);
}

/* The array record every generated SEQUENCE OF array type starts with. */
struct XuArray {
  ASN1UINT n;
  void* elem;
};

void* xu_alloc_array(ASN1CTXT* pctxt, void* pArray, size_t elemSize, ASN1UINT count) {
  if (!pctxt || !pArray) return nullptr;
  XuArray* array = static_cast<XuArray*>(pArray);
  array->n = count;
  array->elem = nullptr;
  if (elemSize != 0 && count > SIZE_MAX / elemSize) return nullptr;
  array->elem = rtMemHeapAlloc(&pctxt->memHeap, elemSize * count);
  return array->elem;
}

void xu_freeall(ASN1CTXT* pctxt) { rtFreeContext(pctxt); }
