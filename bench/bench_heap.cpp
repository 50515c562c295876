// The block heap beside the C library's allocator on the allocation patterns of the codec:
// decoding makes many small allocations and releases them all at once (the heap by a reset or
// free-all, the C library one free per allocation), and scratch values come and go in pairs.
// The names of each pair differ only in "quillon" and "malloc", so the ratio script pairs them.
#include <benchmark/benchmark.h>

#include <quillon/rtMemHeap.h>

#include <stdlib.h>

#include <vector>

namespace {

// Sizes of the kind a certificate decode asks for: small records, short strings, identifiers.
constexpr size_t kSizes[] = {8, 16, 24, 12, 40, 64, 20, 32, 4, 48, 16, 136};
constexpr size_t kSizeCount = sizeof kSizes / sizeof kSizes[0];

inline size_t sizeAt(size_t i) { return kSizes[i % kSizeCount]; }

// Many small allocations, then the heap emptied for the next message with its blocks kept.
void ManySmallThenReset_quillon(benchmark::State& state) {
  const size_t count = static_cast<size_t>(state.range(0));
  OSMemHeap* heap = nullptr;
  rtMemHeapCreate(&heap, nullptr);
  for (auto _ : state) {
    for (size_t i = 0; i < count; i++) benchmark::DoNotOptimize(rtMemHeapAlloc(&heap, sizeAt(i)));
    rtMemHeapReset(&heap);
  }
  rtMemHeapRelease(&heap);
  state.SetItemsProcessed(static_cast<int64_t>(state.iterations() * count));
}

// The same, with every block returned to the C library after each message.
void ManySmallThenFreeAll_quillon(benchmark::State& state) {
  const size_t count = static_cast<size_t>(state.range(0));
  OSMemHeap* heap = nullptr;
  rtMemHeapCreate(&heap, nullptr);
  for (auto _ : state) {
    for (size_t i = 0; i < count; i++) benchmark::DoNotOptimize(rtMemHeapAlloc(&heap, sizeAt(i)));
    rtMemHeapFreeAll(&heap);
  }
  rtMemHeapRelease(&heap);
  state.SetItemsProcessed(static_cast<int64_t>(state.iterations() * count));
}

// The C library's counterpart of both: one malloc and one free per value.
void manySmallThenFreeEach(benchmark::State& state) {
  const size_t count = static_cast<size_t>(state.range(0));
  std::vector<void*> live(count);
  for (auto _ : state) {
    for (size_t i = 0; i < count; i++) {
      live[i] = malloc(sizeAt(i));
      benchmark::DoNotOptimize(live[i]);
    }
    for (void* p : live) free(p);
  }
  state.SetItemsProcessed(static_cast<int64_t>(state.iterations() * count));
}

// A value allocated and freed at once, with a few longer-lived ones already in the block.
void AllocFreePairs_quillon(benchmark::State& state) {
  OSMemHeap* heap = nullptr;
  rtMemHeapCreate(&heap, nullptr);
  for (size_t i = 0; i < 16; i++) rtMemHeapAlloc(&heap, sizeAt(i));
  size_t i = 0;
  for (auto _ : state) {
    void* p = rtMemHeapAlloc(&heap, sizeAt(i++));
    benchmark::DoNotOptimize(p);
    rtMemHeapFreePtr(&heap, p);
  }
  rtMemHeapRelease(&heap);
  state.SetItemsProcessed(static_cast<int64_t>(state.iterations()));
}

void AllocFreePairs_malloc(benchmark::State& state) {
  std::vector<void*> resident;
  for (size_t i = 0; i < 16; i++) resident.push_back(malloc(sizeAt(i)));
  size_t i = 0;
  for (auto _ : state) {
    void* p = malloc(sizeAt(i++));
    benchmark::DoNotOptimize(p);
    free(p);
  }
  for (void* p : resident) free(p);
  state.SetItemsProcessed(static_cast<int64_t>(state.iterations()));
}

// Interleaved frees inside a block: exercises the free lists and the neighbour merge.
void FreeEveryOtherThenRefill_quillon(benchmark::State& state) {
  const size_t count = static_cast<size_t>(state.range(0));
  OSMemHeap* heap = nullptr;
  rtMemHeapCreate(&heap, nullptr);
  std::vector<void*> live(count);
  for (auto _ : state) {
    for (size_t i = 0; i < count; i++) live[i] = rtMemHeapAlloc(&heap, sizeAt(i));
    for (size_t i = 0; i < count; i += 2) rtMemHeapFreePtr(&heap, live[i]);
    for (size_t i = 0; i < count; i += 2) live[i] = rtMemHeapAlloc(&heap, sizeAt(i));
    rtMemHeapReset(&heap);
  }
  rtMemHeapRelease(&heap);
  state.SetItemsProcessed(static_cast<int64_t>(state.iterations() * count * 3 / 2));
}

void FreeEveryOtherThenRefill_malloc(benchmark::State& state) {
  const size_t count = static_cast<size_t>(state.range(0));
  std::vector<void*> live(count);
  for (auto _ : state) {
    for (size_t i = 0; i < count; i++) live[i] = malloc(sizeAt(i));
    for (size_t i = 0; i < count; i += 2) free(live[i]);
    for (size_t i = 0; i < count; i += 2) live[i] = malloc(sizeAt(i));
    for (void* p : live) free(p);
  }
  state.SetItemsProcessed(static_cast<int64_t>(state.iterations() * count * 3 / 2));
}

}  // namespace

BENCHMARK(ManySmallThenReset_quillon)->Arg(64)->Arg(1024)->Arg(16384);
BENCHMARK(manySmallThenFreeEach)->Name("ManySmallThenReset_malloc")->Arg(64)->Arg(1024)->Arg(16384);
BENCHMARK(ManySmallThenFreeAll_quillon)->Arg(64)->Arg(1024)->Arg(16384);
BENCHMARK(manySmallThenFreeEach)->Name("ManySmallThenFreeAll_malloc")->Arg(64)->Arg(1024)->Arg(16384);
BENCHMARK(AllocFreePairs_quillon);
BENCHMARK(AllocFreePairs_malloc);
BENCHMARK(FreeEveryOtherThenRefill_quillon)->Arg(64)->Arg(1024);
BENCHMARK(FreeEveryOtherThenRefill_malloc)->Arg(64)->Arg(1024);

BENCHMARK_MAIN();
