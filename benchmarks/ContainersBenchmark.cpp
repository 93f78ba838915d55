// FastArray beside std::vector and the algorithms of the C++ library.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <random>
#include <vector>

#include "velan/containers/FastArray.h"

namespace velan {
namespace {

struct Item {
  int key;
  friend bool operator==(const Item&, const Item&) = default;
};

int byKey(const Item* a, const Item* b) { return a->key < b->key ? -1 : a->key > b->key; }

std::vector<Item> randomItems(size_t count) {
  std::mt19937 random(1);
  std::vector<Item> items(count);
  for (Item& item : items) item.key = static_cast<int>(random() >> 1);
  return items;
}

FastArray<Item> arrayOf(std::vector<Item>& items) {
  FastArray<Item> array = FastArray<Item>::arrayWithCapacity(items.size());
  for (Item& item : items) array.addObject(&item);
  return array;
}

void BM_Append(benchmark::State& state) {
  Item item{1};
  for (auto _ : state) {
    FastArray<Item> array;
    for (int64_t i = 0; i < state.range(0); ++i) array.addObject(&item);
    benchmark::DoNotOptimize(array.getObjectsPtr());
  }
}
BENCHMARK(BM_Append)->Arg(1000)->Arg(10'000'000)->Unit(benchmark::kMicrosecond);

void BM_AppendVector(benchmark::State& state) {
  Item item{1};
  for (auto _ : state) {
    std::vector<void*> array;
    for (int64_t i = 0; i < state.range(0); ++i) array.push_back(&item);
    benchmark::DoNotOptimize(array.data());
  }
}
BENCHMARK(BM_AppendVector)->Arg(1000)->Arg(10'000'000)->Unit(benchmark::kMicrosecond);

void BM_RemoveObject(benchmark::State& state) {
  std::vector<Item> items = randomItems(1'000'000);
  for (size_t i = 0; i < items.size(); i += 2) items[i].key = 1;
  Item removed{1};
  for (auto _ : state) {
    state.PauseTiming();
    FastArray<Item> array = arrayOf(items);
    state.ResumeTiming();
    array.removeObject(&removed);
    benchmark::DoNotOptimize(array.count());
  }
}
BENCHMARK(BM_RemoveObject)->Unit(benchmark::kMicrosecond);

void partialSorts(benchmark::internal::Benchmark* benchmark) {
  for (const int64_t size : {10'000, 1'000'000}) {
    for (const int64_t count : {10, 50, 200}) benchmark->Args({size, count});
  }
  benchmark->Unit(benchmark::kMicrosecond);
}

void BM_PartialSort(benchmark::State& state) {
  std::vector<Item> items = randomItems(static_cast<size_t>(state.range(0)));
  for (auto _ : state) {
    state.PauseTiming();
    FastArray<Item> array = arrayOf(items);
    state.ResumeTiming();
    array.sortUsingFunction(byKey, static_cast<uint64_t>(state.range(1)));
  }
}
BENCHMARK(BM_PartialSort)->Apply(partialSorts);

void BM_PartialSortOfTheLibrary(benchmark::State& state) {
  std::vector<Item> items = randomItems(static_cast<size_t>(state.range(0)));
  for (auto _ : state) {
    state.PauseTiming();
    FastArray<Item> array = arrayOf(items);
    state.ResumeTiming();
    std::partial_sort(array.begin(), array.begin() + state.range(1), array.end(),
                      [](const Item* a, const Item* b) { return byKey(a, b) < 0; });
  }
}
BENCHMARK(BM_PartialSortOfTheLibrary)->Apply(partialSorts);

void BM_Sort(benchmark::State& state) {
  std::vector<Item> items = randomItems(static_cast<size_t>(state.range(0)));
  for (auto _ : state) {
    state.PauseTiming();
    FastArray<Item> array = arrayOf(items);
    state.ResumeTiming();
    array.sortUsingFunction(byKey);
  }
}
BENCHMARK(BM_Sort)->Arg(10'000)->Arg(1'000'000)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace velan
