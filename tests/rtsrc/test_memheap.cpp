// The block heap: block sizing as seen through the allocation hooks, element placement, free,
// merge and reuse, realloc, saved elements, bulk release, reference counts, and a randomised run
// that checks every internal invariant after each step.
#include <gtest/gtest.h>

#include <quillon/rtContext.h>
#include <quillon/rtList.h>
#include <quillon/rtMemHeap.h>

#include <stdint.h>
#include <string.h>

#include <map>
#include <random>
#include <string>
#include <vector>

#include "../../rtsrc/rtMemHeapImpl.h"
#include "heap_hooks.h"

using namespace qn_heap;

namespace {

// ---- Invariant checker: walks the heap's own records and names the first inconsistency. ----

ASN1OCTET* dataOf(OSMemBlk* blk) { return reinterpret_cast<ASN1OCTET*>(blk + 1); }
OSMemElemHdr* elemAt(OSMemBlk* blk, unsigned i) {
  return reinterpret_cast<OSMemElemHdr*>(dataOf(blk) + i * kUnit);
}

std::string checkFreeList(OSMemBlk* blk, const std::vector<unsigned>& freeIdx) {
  std::vector<unsigned> listed;
  if (blk->freeHead) {
    unsigned i = blk->freeHead - 1u;
    for (;;) {
      listed.push_back(i);
      if (listed.size() > freeIdx.size()) return "free list longer than the free elements";
      unsigned step = elemAt(blk, i)->position;
      if (step == 0) break;
      i += step;
    }
  }
  return listed == freeIdx ? "" : "free list differs from the free elements in address order";
}

std::string checkBlock(OSMemBlk* blk) {
  if (blk->tailIndex > blk->totalUnits) return "tail beyond capacity";
  std::vector<unsigned> freeIdx;
  unsigned idx = 0, prev = 0, freeSum = 0, saved = 0;
  bool first = true, prevFree = false;
  while (idx < blk->tailIndex) {
    OSMemElemHdr* e = elemAt(blk, idx);
    bool isFree = e->flags & RTMEMELEM_FREE;
    bool isLast = idx + 1u + e->units == blk->tailIndex;
    if (idx + 1u + e->units > blk->tailIndex) return "element runs past the tail";
    if (e->prevOffset != (first ? 0u : idx - prev)) return "wrong prevOffset";
    if (isLast != static_cast<bool>(e->flags & RTMEMELEM_LAST)) return "wrong last mark";
    if (isFree && (isLast || prevFree)) return "free element last or next to another free";
    if (isFree) {
      freeIdx.push_back(idx);
      freeSum += e->units;
    } else {
      if (e->position != idx) return "wrong position";
      if (e->flags & RTMEMELEM_SAVED) saved++;
    }
    prev = idx;
    prevFree = isFree;
    first = false;
    idx += 1u + e->units;
  }
  if (blk->lastElem != (blk->tailIndex == 0 ? 0u : prev + 1u)) return "wrong lastElem";
  if (blk->freeUnits != freeSum) return "wrong freeUnits";
  if (blk->savedCount != saved) return "wrong savedCount";
  if (static_cast<bool>(blk->plink->flags & RTMEMSAVED) != (saved > 0)) return "wrong saved flag";
  return checkFreeList(blk, freeIdx);
}

// What allocation relies on: kept-empty blocks wait behind everything else, the head's prev
// names the last link, and the flag that says whether any free list is worth searching.
std::string checkShortcuts(OSMemHeap* heap) {
  bool anyFree = false, inEmptyPart = false;
  OSMemLink* last = nullptr;
  for (OSMemLink* l = heap->blocks; l; l = l->next) {
    last = l;
    bool emptyBlock = false;
    if (!(l->flags & RTMEMRAW)) {
      OSMemBlk* blk = static_cast<OSMemBlk*>(l->memBlk);
      anyFree = anyFree || blk->freeUnits != 0;
      emptyBlock = blk->tailIndex == 0;
    }
    if (inEmptyPart && !emptyBlock) return "a kept-empty block is in front of one in use";
    inEmptyPart = emptyBlock;
  }
  if (last && heap->blocks->prev != last) return "the head's prev is not the last link";
  if (anyFree && !(heap->flags & RT_MH_MAYFREE)) return "free elements the heap does not know of";
  return "";
}

std::string checkHeap(OSMemHeap* heap) {
  ASN1UINT units = 0, count = 0, emptyUnits = 0, emptyCount = 0;
  std::vector<OSMemLink*> links;
  for (OSMemLink* l = heap->blocks; l; l = l->next) {
    if (l->next && l->next->prev != l) return "broken prev link";
    links.push_back(l);
  }
  OSMemLink* nearestLarge = nullptr;
  for (auto it = links.rbegin(); it != links.rend(); ++it) {
    OSMemLink* l = *it;
    if (l->nextRaw != nearestLarge) return "nextRaw does not name the next large allocation";
    if (l->flags & RTMEMRAW) {
      nearestLarge = l;
      continue;
    }
    OSMemBlk* blk = static_cast<OSMemBlk*>(l->memBlk);
    if (blk->plink != l) return "block does not point back to its link";
    units += blk->totalUnits;
    count++;
    if (blk->tailIndex == 0) {
      emptyUnits += blk->totalUnits;
      emptyCount++;
    }
    std::string err = checkBlock(blk);
    if (!err.empty()) return err;
  }
  if (heap->blockUnits != units || heap->blockCount != count) return "wrong block counters";
  if (heap->emptyUnits != emptyUnits || heap->emptyCount != emptyCount) {
    return "wrong empty-block counters";
  }
  return checkShortcuts(heap);
}

size_t blockRequest(size_t nominal) { return blockAllocBytes(nominal); }

class MemHeapTest : public ::testing::Test {
 protected:
  void TearDown() override {
    rtMemHeapRelease(&heap_);
    EXPECT_EQ(hooks_.log().outstanding, 0) << "hook memory not returned";
  }
  HookScope hooks_;
  OSMemHeap* heap_ = nullptr;
};

}  // namespace

#if UINTPTR_MAX == 0xFFFFFFFFu
TEST(MemHeapLayout, I386Figures) {
  EXPECT_EQ(sizeof(OSMemHeap), 40u);
  EXPECT_EQ(kLinkPrefix, 20u);
  EXPECT_EQ(sizeof(OSMemBlk), 20u);
  EXPECT_EQ(sizeof(OSMemLink), 24u);
  EXPECT_EQ(sizeof(_Asn1RTDListNode), 12u);
  EXPECT_EQ(blockAllocBytes(4096), 4096u + 20);
  EXPECT_EQ(blockAllocBytes(8192), 8192u + 20);
}
#endif

TEST_F(MemHeapTest, BlockSizesFollowTheSizingRule) {
  ASSERT_EQ(rtMemHeapCreate(&heap_, nullptr), 0);
  ASSERT_EQ(hooks_.log().mallocSizes.size(), 1u);
  EXPECT_EQ(hooks_.log().mallocSizes[0], sizeof(OSMemHeap));
  EXPECT_EQ(heap_->refCount, 1u);
  EXPECT_EQ(heap_->flags, RT_MH_FREEHEAPDESC);
  EXPECT_EQ(heap_->defBlkSize, 4096u);

  // First small request: one default block; later small ones fit in it.
  void* p = rtMemHeapAlloc(&heap_, 100);
  ASSERT_NE(p, nullptr);
  ASSERT_EQ(hooks_.log().mallocSizes.size(), 2u);
  EXPECT_EQ(hooks_.log().mallocSizes[1], blockRequest(4096));
  EXPECT_EQ(heap_->blockUnits, (4096u - 28) / 8);
  ASSERT_NE(rtMemHeapAlloc(&heap_, 200), nullptr);
  EXPECT_EQ(hooks_.log().mallocSizes.size(), 2u);

  // 4056 bytes (507 units) still fit the default size exactly.
  ASSERT_NE(rtMemHeapAlloc(&heap_, 4056), nullptr);
  EXPECT_EQ(hooks_.log().mallocSizes.back(), blockRequest(4096));
  // 4064 bytes need 508 units; 508 * 8 + 36 = 4100 outgrows a 4096 block: 8192 instead.
  ASSERT_NE(rtMemHeapAlloc(&heap_, 4064), nullptr);
  EXPECT_EQ(hooks_.log().mallocSizes.back(), blockRequest(8192));
  EXPECT_EQ(heap_->blockCount, 3u);
  EXPECT_EQ(checkHeap(heap_), "");
}

TEST_F(MemHeapTest, LargeAllocationThresholdIs65535Units) {
  // 524272 bytes are 65534 units: the biggest element a block can hold, in a capped block.
  void* inBlock = rtMemHeapAlloc(&heap_, 524272);
  ASSERT_NE(inBlock, nullptr);
  EXPECT_EQ(hooks_.log().mallocSizes.back(), blockRequest(524308));
  EXPECT_EQ(heap_->blocks->flags, RTMEMSTD | RTMEMLINK);
  EXPECT_EQ(heap_->blockUnits, 65535u);

  size_t before = hooks_.log().mallocSizes.size();
  void* large = rtMemHeapAlloc(&heap_, 524273);
  ASSERT_NE(large, nullptr);
  ASSERT_EQ(hooks_.log().mallocSizes.size(), before + 2);
  EXPECT_EQ(hooks_.log().mallocSizes[before], 524273u);
  EXPECT_EQ(hooks_.log().mallocSizes[before + 1], sizeof(OSMemLink));
  EXPECT_EQ(heap_->blocks->flags, RTMEMRAW | RTMEMMALLOC);
  EXPECT_EQ(heap_->blocks->blockSize, 524273u);
  EXPECT_EQ(heap_->blockCount, 1u) << "large allocations are not blocks";

  EXPECT_EQ(rtMemHeapCheckPtr(&heap_, large), 1);
  EXPECT_EQ(rtMemHeapCheckPtr(&heap_, inBlock), 1);
  memset(large, 0xA5, 524273);
  rtMemHeapFreePtr(&heap_, large);
  EXPECT_EQ(rtMemHeapCheckPtr(&heap_, large), 0);
  EXPECT_EQ(checkHeap(heap_), "");
}

TEST_F(MemHeapTest, ElementsAreUnitAlignedAndCostAHeaderUnit) {
  auto* a = static_cast<ASN1OCTET*>(rtMemHeapAlloc(&heap_, 0));
  auto* b = static_cast<ASN1OCTET*>(rtMemHeapAlloc(&heap_, 1));
  auto* c = static_cast<ASN1OCTET*>(rtMemHeapAlloc(&heap_, 8));
  auto* d = static_cast<ASN1OCTET*>(rtMemHeapAlloc(&heap_, 9));
  ASSERT_TRUE(a && b && c && d);
  EXPECT_EQ(b - a, 8) << "a zero-byte element is just its header";
  EXPECT_EQ(c - b, 16);
  EXPECT_EQ(d - c, 16);
  EXPECT_EQ(rtMemHeapCheckPtr(&heap_, a), 1);
  EXPECT_EQ(rtMemHeapCheckPtr(&heap_, c + 8), 0) << "inside an element is not an element";

  auto* z = static_cast<ASN1OCTET*>(rtMemHeapAllocZ(&heap_, 37));
  ASSERT_NE(z, nullptr);
  for (int i = 0; i < 37; i++) ASSERT_EQ(z[i], 0);
  EXPECT_EQ(checkHeap(heap_), "");
}

TEST_F(MemHeapTest, FreedElementsAreReusedSplitAndMerged) {
  // 128-byte blocks hold 12 units: four 16-byte elements fill one, so the free lists are used.
  ASN1UINT blkSize = 128;
  rtMemHeapSetProperty(&heap_, OSRTMH_PROPID_DEFBLKSIZE, &blkSize);
  ASN1OCTET* p[4];
  for (auto& e : p) e = static_cast<ASN1OCTET*>(rtMemHeapAlloc(&heap_, 16));
  ASSERT_EQ(heap_->blockCount, 1u);
  OSMemBlk* blk = static_cast<OSMemBlk*>(heap_->blocks->memBlk);
  ASSERT_EQ(blk->tailIndex, blk->totalUnits);
  size_t hookCalls = hooks_.log().mallocSizes.size();

  rtMemHeapFreePtr(&heap_, p[1]);
  EXPECT_EQ(rtMemHeapCheckPtr(&heap_, p[1]), 0);
  EXPECT_EQ(blk->freeUnits, 2u);
  EXPECT_EQ(rtMemHeapAlloc(&heap_, 16), p[1]) << "first fit reuses the freed element";
  EXPECT_EQ(blk->freeUnits, 0u);

  // Two neighbours merge into one element of 2 + 1 + 2 units.
  rtMemHeapFreePtr(&heap_, p[1]);
  rtMemHeapFreePtr(&heap_, p[2]);
  EXPECT_EQ(blk->freeUnits, 5u);
  EXPECT_EQ(checkHeap(heap_), "");
  EXPECT_EQ(rtMemHeapAlloc(&heap_, 40), p[1]);
  rtMemHeapFreePtr(&heap_, p[1]);

  // A smaller request splits it: 1 unit handed out, 3 units left behind a new header.
  EXPECT_EQ(rtMemHeapAlloc(&heap_, 8), p[1]);
  EXPECT_EQ(blk->freeUnits, 3u);
  EXPECT_EQ(rtMemHeapAlloc(&heap_, 24), p[1] + 16);
  EXPECT_EQ(hooks_.log().mallocSizes.size(), hookCalls) << "no new block was needed";
  EXPECT_EQ(checkHeap(heap_), "");

  // Freeing between two free elements merges all three, leaving one free-list entry.
  rtMemHeapFreePtr(&heap_, p[0]);
  rtMemHeapFreePtr(&heap_, p[1] + 16);
  rtMemHeapFreePtr(&heap_, p[1]);
  EXPECT_EQ(blk->freeUnits, 8u);
  EXPECT_EQ(blk->freeHead, 1u);
  EXPECT_EQ(checkHeap(heap_), "");

  // The last element takes the free space before it back to the tail; the block is then empty
  // and kept for reuse.
  rtMemHeapFreePtr(&heap_, p[3]);
  EXPECT_EQ(blk->tailIndex, 0u);
  EXPECT_EQ(heap_->emptyCount, 1u);
  EXPECT_EQ(heap_->emptyUnits, blk->totalUnits);
  EXPECT_EQ(checkHeap(heap_), "");
}

TEST_F(MemHeapTest, FreeingTheLastElementsGivesThemBackToTheTail) {
  void* a = rtMemHeapAlloc(&heap_, 16);
  void* b = rtMemHeapAlloc(&heap_, 16);
  void* c = rtMemHeapAlloc(&heap_, 16);
  rtMemHeapFreePtr(&heap_, b);
  rtMemHeapFreePtr(&heap_, c);  // takes the free b with it
  OSMemBlk* blk = static_cast<OSMemBlk*>(heap_->blocks->memBlk);
  EXPECT_EQ(blk->tailIndex, 3u);
  EXPECT_EQ(blk->freeUnits, 0u);
  EXPECT_EQ(blk->freeHead, 0u);
  EXPECT_EQ(rtMemHeapAlloc(&heap_, 40), b);
  EXPECT_EQ(checkHeap(heap_), "");

  // Freeing the same element twice changes nothing the second time.
  rtMemHeapFreePtr(&heap_, a);
  std::string once = checkHeap(heap_);
  ASN1USINT freeUnits = blk->freeUnits;
  rtMemHeapFreePtr(&heap_, a);
  EXPECT_EQ(once, "");
  EXPECT_EQ(checkHeap(heap_), "");
  EXPECT_EQ(blk->freeUnits, freeUnits);
  EXPECT_EQ(rtMemHeapCheckPtr(&heap_, a), 0);

  // Null pointers and null heaps are ignored.
  rtMemHeapFreePtr(&heap_, nullptr);
  rtMemHeapFreePtr(nullptr, c);
  OSMemHeap* none = nullptr;
  rtMemHeapFreePtr(&none, b);
  EXPECT_EQ(rtMemHeapCheckPtr(&heap_, b), 1);
}

TEST_F(MemHeapTest, EmptyBlocksAreKeptUnlessTheHeapSaysOtherwise) {
  void* p = rtMemHeapAlloc(&heap_, 64);
  long blocksOut = hooks_.log().outstanding;
  rtMemHeapFreePtr(&heap_, p);
  EXPECT_EQ(hooks_.log().outstanding, blocksOut) << "an empty block is kept";
  EXPECT_EQ(heap_->emptyCount, 1u);
  EXPECT_EQ(heap_->emptyUnits, heap_->blockUnits);
  EXPECT_EQ(rtMemHeapAlloc(&heap_, 64), p);

  ASN1UINT dontKeep = RT_MH_DONTKEEPFREE | 0xF0000000u;
  rtMemHeapSetProperty(&heap_, OSRTMH_PROPID_SETFLAGS, &dontKeep);
  EXPECT_EQ(heap_->flags & ~RT_MH_MAYFREE,
            RT_MH_FREEHEAPDESC | RT_MH_DONTKEEPFREE)
      << "top bits are the heap's";
  rtMemHeapFreePtr(&heap_, p);
  EXPECT_EQ(hooks_.log().outstanding, blocksOut - 1);
  EXPECT_EQ(heap_->blockCount, 0u);
  EXPECT_EQ(heap_->blockUnits, 0u);
  EXPECT_EQ(heap_->blocks, nullptr);
  ASN1UINT all = 0xFFFFFFFFu;
  rtMemHeapSetProperty(&heap_, OSRTMH_PROPID_CLEARFLAGS, &all);
  EXPECT_EQ(heap_->flags & ~RT_MH_MAYFREE, RT_MH_FREEHEAPDESC);
}

TEST_F(MemHeapTest, ReallocResizesInPlaceWhenItCan) {
  auto* a = static_cast<ASN1OCTET*>(rtMemHeapAlloc(&heap_, 16));
  memset(a, 0x11, 16);
  // The last element grows into the tail.
  EXPECT_EQ(rtMemHeapRealloc(&heap_, a, 400), a);
  auto* b = static_cast<ASN1OCTET*>(rtMemHeapAlloc(&heap_, 16));
  memset(b, 0x22, 16);
  auto* c = static_cast<ASN1OCTET*>(rtMemHeapAlloc(&heap_, 16));
  // Shrinking an inner element leaves a free remainder that b can then grow back into.
  EXPECT_EQ(rtMemHeapRealloc(&heap_, a, 100), a);
  EXPECT_EQ(checkHeap(heap_), "");
  rtMemHeapFreePtr(&heap_, b);
  EXPECT_EQ(rtMemHeapRealloc(&heap_, a, 300), a) << "grows into the free neighbour";
  for (int i = 0; i < 16; i++) ASSERT_EQ(a[i], 0x11);
  EXPECT_EQ(checkHeap(heap_), "");

  // No room where it stands: moved, contents kept, the old element freed.
  auto* moved = static_cast<ASN1OCTET*>(rtMemHeapRealloc(&heap_, a, 3000));
  ASSERT_NE(moved, nullptr);
  EXPECT_NE(moved, a);
  for (int i = 0; i < 16; i++) ASSERT_EQ(moved[i], 0x11);
  EXPECT_EQ(rtMemHeapCheckPtr(&heap_, a), 0);
  EXPECT_EQ(rtMemHeapCheckPtr(&heap_, c), 1);

  // Across the large-allocation threshold and back, contents survive.
  auto* big = static_cast<ASN1OCTET*>(rtMemHeapRealloc(&heap_, moved, 600000));
  ASSERT_NE(big, nullptr);
  EXPECT_EQ(big[15], 0x11);
  big[599999] = 0x33;
  big = static_cast<ASN1OCTET*>(rtMemHeapRealloc(&heap_, big, 700000));
  ASSERT_NE(big, nullptr);
  EXPECT_EQ(big[599999], 0x33);
  auto* small = static_cast<ASN1OCTET*>(rtMemHeapRealloc(&heap_, big, 32));
  ASSERT_NE(small, nullptr);
  EXPECT_EQ(small[0], 0x11);
  EXPECT_EQ(rtMemHeapCheckPtr(&heap_, big), 0);

  EXPECT_NE(rtMemHeapRealloc(&heap_, nullptr, 10), nullptr) << "null pointer allocates";
  EXPECT_EQ(checkHeap(heap_), "");
}

TEST_F(MemHeapTest, SavedElementsSurviveBulkReleaseButNotTheLastReference) {
  void* keep = rtMemHeapAlloc(&heap_, 48);
  void* drop = rtMemHeapAlloc(&heap_, 48);
  void* other = rtMemHeapAlloc(&heap_, 5000);  // a second block without saved elements
  void* bigKeep = rtMemHeapAlloc(&heap_, 600000);
  void* bigDrop = rtMemHeapAlloc(&heap_, 600000);
  ASSERT_TRUE(keep && drop && other && bigKeep && bigDrop);
  EXPECT_EQ(rtMemHeapMarkSaved(&heap_, keep, 1), keep);
  rtMemHeapMarkSaved(&heap_, bigKeep, 1);
  memset(keep, 0x5A, 48);

  rtMemHeapReset(&heap_);
  EXPECT_EQ(rtMemHeapCheckPtr(&heap_, keep), 1);
  EXPECT_EQ(rtMemHeapCheckPtr(&heap_, drop), 1) << "a block with a saved element is left whole";
  EXPECT_EQ(rtMemHeapCheckPtr(&heap_, other), 0) << "emptied, memory kept";
  EXPECT_EQ(rtMemHeapCheckPtr(&heap_, bigKeep), 1);
  EXPECT_EQ(rtMemHeapCheckPtr(&heap_, bigDrop), 0);
  EXPECT_EQ(heap_->emptyCount, 1u);
  EXPECT_EQ(checkHeap(heap_), "");

  rtMemHeapFreeAll(&heap_);
  EXPECT_EQ(rtMemHeapCheckPtr(&heap_, keep), 1);
  EXPECT_EQ(static_cast<ASN1OCTET*>(keep)[47], 0x5A);
  EXPECT_EQ(rtMemHeapCheckPtr(&heap_, bigKeep), 1);
  EXPECT_EQ(heap_->blockCount, 1u);
  EXPECT_EQ(heap_->emptyCount, 0u);
  EXPECT_EQ(hooks_.log().outstanding, 4) << "record, one block, one large allocation + link";
  EXPECT_EQ(checkHeap(heap_), "");

  // Clearing the mark and freeing a saved element both drop the protection.
  rtMemHeapMarkSaved(&heap_, bigKeep, 0);
  rtMemHeapFreeAll(&heap_);
  EXPECT_EQ(rtMemHeapCheckPtr(&heap_, bigKeep), 0);
  rtMemHeapFreePtr(&heap_, keep);
  OSMemBlk* blk = static_cast<OSMemBlk*>(heap_->blocks->memBlk);
  EXPECT_EQ(blk->savedCount, 0u);
  EXPECT_EQ(checkHeap(heap_), "");

  // The final release returns everything, saved or not (TearDown checks the hooks).
  rtMemHeapMarkSaved(&heap_, drop, 1);
  rtMemHeapMarkSaved(&heap_, rtMemHeapAlloc(&heap_, 600000), 1);
}

TEST_F(MemHeapTest, ResetBlocksServeTheNextMessageBeforeNewOnes) {
  auto decodeMessage = [&] {
    for (int i = 0; i < 2000; i++) ASSERT_NE(rtMemHeapAlloc(&heap_, 8 + i % 50), nullptr);
  };
  decodeMessage();
  size_t hookCalls = hooks_.log().mallocSizes.size();
  ASN1UINT blocks = heap_->blockCount;
  ASSERT_GT(blocks, 10u);
  for (int round = 0; round < 3; round++) {
    rtMemHeapReset(&heap_);
    EXPECT_EQ(heap_->emptyCount, blocks);
    EXPECT_EQ(checkHeap(heap_), "");
    decodeMessage();
    EXPECT_EQ(checkHeap(heap_), "");
  }
  EXPECT_EQ(hooks_.log().mallocSizes.size(), hookCalls) << "the same message fits the kept blocks";
  EXPECT_EQ(heap_->blockCount, blocks);
  EXPECT_EQ(heap_->emptyCount, 0u);
}

// Freeing a value asks about its elements oldest first; the block that answers comes to the
// front, so that the next question does not walk past every newer block.
TEST_F(MemHeapTest, TheBlockOfACheckedElementComesToTheFront) {
  std::vector<void*> elements;
  for (int i = 0; i < 600; i++) elements.push_back(rtMemHeapAlloc(&heap_, 56));
  ASSERT_GT(heap_->blockCount, 5u);
  for (void* p : elements) {
    ASSERT_EQ(rtMemHeapCheckPtr(&heap_, p), 1);
    ASSERT_TRUE(static_cast<ASN1OCTET*>(p) > static_cast<ASN1OCTET*>(heap_->blocks->memBlk) &&
                static_cast<ASN1OCTET*>(p) <
                    static_cast<ASN1OCTET*>(heap_->blocks->memBlk) + 4096 + 64);
    rtMemHeapFreePtr(&heap_, p);
  }
  EXPECT_EQ(checkHeap(heap_), "");
  EXPECT_EQ(heap_->emptyCount, heap_->blockCount);
}

TEST_F(MemHeapTest, ReferenceCountsShareOneHeap) {
  ASSERT_EQ(rtMemHeapCreate(&heap_, nullptr), 0);
  OSMemHeap* second = heap_;
  rtMemHeapAddRef(&second);
  EXPECT_EQ(heap_->refCount, 2u);
  void* p = rtMemHeapAlloc(&second, 10);
  rtMemHeapRelease(&second);
  EXPECT_EQ(heap_->refCount, 1u);
  EXPECT_EQ(rtMemHeapCheckPtr(&heap_, p), 1) << "lowering the count frees nothing";
  rtMemHeapRelease(&heap_);
  EXPECT_EQ(heap_, nullptr);
  EXPECT_EQ(hooks_.log().outstanding, 0);
  EXPECT_EQ(rtMemHeapCreate(nullptr, nullptr), ASN_E_INVPARAM);
}

TEST_F(MemHeapTest, HookFailuresSurfaceAsNull) {
  hooks_.log().failAfter = 0;
  EXPECT_EQ(rtMemHeapCreate(&heap_, nullptr), ASN_E_NOMEM);
  EXPECT_EQ(heap_, nullptr);
  hooks_.log().failAfter = 1;  // the heap record, not its first block
  EXPECT_EQ(rtMemHeapAlloc(&heap_, 10), nullptr);
  ASSERT_NE(heap_, nullptr);
  hooks_.log().failAfter = 1;  // the large memory, not its link
  EXPECT_EQ(rtMemHeapAlloc(&heap_, 600000), nullptr);
  EXPECT_EQ(hooks_.log().outstanding, 1) << "the memory is returned when its link fails";
  hooks_.log().failAfter = -1;
  void* p = rtMemHeapAlloc(&heap_, 16);
  rtMemHeapAlloc(&heap_, 16);
  memset(p, 7, 16);
  hooks_.log().failAfter = 0;
  EXPECT_EQ(rtMemHeapRealloc(&heap_, p, 9000), nullptr);
  EXPECT_EQ(rtMemHeapCheckPtr(&heap_, p), 1) << "a failed realloc keeps the old element";
  EXPECT_EQ(static_cast<ASN1OCTET*>(p)[15], 7);
  hooks_.log().failAfter = -1;
}

TEST_F(MemHeapTest, BlockSizeSettingsReachNewHeapsAndContexts) {
  EXPECT_EQ(rtMemGetDefBlkSize(), 4096u);
  rtMemSetDefBlkSize(1024);
  ASSERT_EQ(rtMemHeapCreate(&heap_, nullptr), 0);
  rtMemSetDefBlkSize(4096);
  EXPECT_EQ(heap_->defBlkSize, 1024u);
  rtMemHeapAlloc(&heap_, 8);
  EXPECT_EQ(hooks_.log().mallocSizes.back(), blockRequest(1024));

  ASN1CTXT ctxt;
  ASSERT_EQ(rtInitContext(&ctxt, nullptr), 0);
  rtMemHeapSetDefBlkSize(&ctxt, 2048);
  EXPECT_EQ(rtMemHeapGetDefBlkSize(&ctxt), 2048u);
  rtMemHeapSetFlags(&ctxt, RT_MH_DONTKEEPFREE);
  EXPECT_EQ(ctxt.memHeap->flags & RT_MH_DONTKEEPFREE, RT_MH_DONTKEEPFREE);
  rtMemHeapClearFlags(&ctxt, RT_MH_DONTKEEPFREE);
  EXPECT_EQ(ctxt.memHeap->flags & RT_MH_DONTKEEPFREE, 0u);
  rtFreeContext(&ctxt);
  EXPECT_EQ(rtMemHeapGetDefBlkSize(nullptr), 4096u);
}

TEST_F(MemHeapTest, ContextShorthandsAllocateFromMemHeap) {
  ASN1CTXT ctxt;
  ASSERT_EQ(rtInitContext(&ctxt, nullptr), 0);
  struct {
    ASN1UINT n;
    ASN1UINT* elem;
  } array;
  ASSERT_NE(xu_alloc_array(&ctxt, &array, sizeof(ASN1UINT), 12), nullptr);
  EXPECT_EQ(array.n, 12u);
  EXPECT_EQ(rtMemHeapCheckPtr(&ctxt.memHeap, array.elem), 1);
  array.elem[11] = 1;
  EXPECT_EQ(xu_alloc_array(&ctxt, &array, SIZE_MAX / 2, 3), nullptr) << "size overflow";

  // Open-type extensions: each element's data and every node go back to the heap.
  _Asn1RTDList exts;
  rtDListInit(&exts);
  ASN1TOpenType ext[2];
  for (auto& e : ext) {
    e.numocts = 5;
    e.data = static_cast<ASN1OCTET*>(xu_malloc(&ctxt, 5));
    rtDListAppend(&ctxt, &exts, &e);
  }
  _Asn1RTDListNode* node = exts.head;
  rtMemFreeOpenSeqExt(&ctxt, &exts);
  EXPECT_EQ(rtMemHeapCheckPtr(&ctxt.memHeap, ext[0].data), 0);
  EXPECT_EQ(rtMemHeapCheckPtr(&ctxt.memHeap, ext[1].data), 0);
  EXPECT_EQ(rtMemHeapCheckPtr(&ctxt.memHeap, node), 0);
  EXPECT_EQ(exts.count, 0u);

  // xu_freeall releases the whole context, not only its heap.
  xu_freeall(&ctxt);
  EXPECT_EQ(ctxt.key, 0u);
  EXPECT_EQ(ctxt.memHeap, nullptr);
}

// A long random mix of allocations, frees and reallocs over small blocks. Every element carries
// a fill pattern that must survive, and the heap's records must stay consistent at every step.
TEST_F(MemHeapTest, RandomWorkloadKeepsEveryInvariant) {
  for (ASN1UINT heapFlags : {0u, static_cast<ASN1UINT>(RT_MH_DONTKEEPFREE)}) {
    SCOPED_TRACE(heapFlags);
    ASN1UINT blkSize = 512;
    rtMemHeapSetProperty(&heap_, OSRTMH_PROPID_DEFBLKSIZE, &blkSize);
    rtMemHeapSetProperty(&heap_, OSRTMH_PROPID_SETFLAGS, &heapFlags);
    std::mt19937 rng(1234 + heapFlags);
    std::map<ASN1OCTET*, std::pair<size_t, ASN1OCTET>> live;
    auto pickSize = [&]() -> size_t {
      unsigned r = rng() % 100;
      if (r < 70) return rng() % 64;
      if (r < 99) return rng() % 1500;
      return 524273 + rng() % 100;
    };
    auto fill = [&](ASN1OCTET* p, size_t n) {
      ASN1OCTET tag = static_cast<ASN1OCTET>(rng());
      memset(p, tag, n);
      live[p] = {n, tag};
    };
    auto intact = [&](ASN1OCTET* p, size_t n) {
      ASN1OCTET tag = live[p].second;
      for (size_t i = 0; i < n; i++) {
        if (p[i] != tag) return false;
      }
      return true;
    };
    auto pickLive = [&]() {
      auto it = live.begin();
      std::advance(it, rng() % live.size());
      return it->first;
    };
    for (int step = 0; step < 5000; step++) {
      unsigned op = rng() % 1000;
      if (op < 3) {
        // Bulk release now and then, so that kept blocks are taken back into use.
        if (op == 0) rtMemHeapFreeAll(&heap_);
        else rtMemHeapReset(&heap_);
        live.clear();
      } else if (op < 500 || live.empty()) {
        size_t n = pickSize();
        auto* p = static_cast<ASN1OCTET*>(rtMemHeapAlloc(&heap_, n));
        ASSERT_NE(p, nullptr);
        ASSERT_EQ(live.count(p), 0u) << "handed out twice at step " << step;
        fill(p, n);
      } else if (op < 800) {
        ASN1OCTET* p = pickLive();
        ASSERT_TRUE(intact(p, live[p].first)) << "overwritten at step " << step;
        live.erase(p);
        rtMemHeapFreePtr(&heap_, p);
      } else {
        ASN1OCTET* p = pickLive();
        size_t oldSize = live[p].first;
        ASN1OCTET tag = live[p].second;
        size_t n = pickSize();
        live.erase(p);
        auto* q = static_cast<ASN1OCTET*>(rtMemHeapRealloc(&heap_, p, n));
        ASSERT_NE(q, nullptr);
        ASSERT_EQ(live.count(q), 0u) << "realloc returned a live element at step " << step;
        for (size_t i = 0; i < std::min(oldSize, n); i++) {
          ASSERT_EQ(q[i], tag) << "realloc lost contents at step " << step;
        }
        fill(q, n);
      }
      std::string err = checkHeap(heap_);
      ASSERT_EQ(err, "") << "after step " << step;
    }
    for (auto& [p, info] : live) {
      ASSERT_EQ(rtMemHeapCheckPtr(&heap_, p), 1);
      ASSERT_TRUE(intact(p, info.first));
    }
    ASSERT_EQ(checkHeap(heap_), "") << "after the checks reordered the blocks";
    rtMemHeapFreeAll(&heap_);
    EXPECT_EQ(hooks_.log().outstanding, 1) << "only the heap record is left";
    EXPECT_EQ(checkHeap(heap_), "");
  }
}
