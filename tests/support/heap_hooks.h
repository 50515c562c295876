// Allocation hooks for tests that need to see what the heap asks of the C library: the sizes
// requested, the allocation context passed, how many blocks are outstanding, and a switch that
// makes the next requests fail. Installed for the life of one HookScope.
#ifndef QUILLON_TESTS_HEAP_HOOKS_H
#define QUILLON_TESTS_HEAP_HOOKS_H

#include <quillon/rtMemHeap.h>

#include <stdlib.h>

#include <vector>

struct HeapHookLog {
  std::vector<size_t> mallocSizes;
  std::vector<void*> allocCtxSeen;
  long outstanding = 0;
  long frees = 0;
  int failAfter = -1;  // number of further mallocs that succeed; -1 never fails
};

inline HeapHookLog g_hookLog;

inline void* recordingMalloc(void* pMemAllocCtx, size_t size) {
  if (g_hookLog.failAfter == 0) return nullptr;
  if (g_hookLog.failAfter > 0) g_hookLog.failAfter--;
  g_hookLog.mallocSizes.push_back(size);
  g_hookLog.allocCtxSeen.push_back(pMemAllocCtx);
  void* mem = malloc(size);
  if (mem) g_hookLog.outstanding++;
  return mem;
}

inline void* recordingRealloc(void*, void* ptr, size_t size) {
  if (g_hookLog.failAfter == 0) return nullptr;
  return realloc(ptr, size);
}

inline void recordingFree(void*, void* ptr) {
  if (!ptr) return;
  g_hookLog.outstanding--;
  g_hookLog.frees++;
  free(ptr);
}

class HookScope {
 public:
  HookScope() {
    g_hookLog = HeapHookLog{};
    rtMemSetAllocFuncs(recordingMalloc, recordingRealloc, recordingFree);
  }
  ~HookScope() { rtMemSetAllocFuncs(rtDefaultMalloc, rtDefaultRealloc, rtDefaultFree); }
  HookScope(const HookScope&) = delete;
  HookScope& operator=(const HookScope&) = delete;

  HeapHookLog& log() { return g_hookLog; }
};

#endif
