// How many elements a context's heap holds alive: a free function that forgets a block, or
// frees one it does not own, shows up as a wrong count. Reads the heap's private layout, which
// is why only tests include this.
#ifndef QUILLON_TESTS_HEAP_CENSUS_H
#define QUILLON_TESTS_HEAP_CENSUS_H

#include <quillon/asn1type.h>

#include "rtMemHeapImpl.h"

// Live elements of every ordinary block plus every large allocation.
inline long liveHeapElements(ASN1CTXT* pctxt) {
  OSMemHeap* heap = pctxt->memHeap;
  if (heap == nullptr) return 0;
  long live = 0;
  for (OSMemLink* link = heap->blocks; link != nullptr; link = link->next) {
    if (link->flags & RTMEMRAW) {
      live++;
      continue;
    }
    OSMemBlk* blk = static_cast<OSMemBlk*>(link->memBlk);
    if (blk->tailIndex == 0 || blk->lastElem == 0) continue;
    ASN1OCTET* data = reinterpret_cast<ASN1OCTET*>(blk + 1);
    for (unsigned index = blk->lastElem - 1u;;) {
      OSMemElemHdr* elem = reinterpret_cast<OSMemElemHdr*>(data + index * qn_heap::kUnit);
      if (!(elem->flags & RTMEMELEM_FREE)) live++;
      if (elem->prevOffset == 0) break;
      index -= elem->prevOffset;
    }
  }
  return live;
}

#endif
