#include <cmath>
#include <span>

#include "tests/Testing.h"
#include "velan/containers/FastArray.h"

namespace velan {
namespace {

struct Item {
  int key;
  friend bool operator==(const Item&, const Item&) = default;
  std::string description() const { return std::to_string(key); }
};

using Items = FastArray<Item>;

int byKey(const Item* a, const Item* b) { return a->key - b->key; }

// Elements 0, 1, 2 …, each the key of `items`.
std::vector<Item> itemsUpTo(int count) {
  std::vector<Item> items;
  for (int i = 0; i < count; ++i) items.push_back({i});
  return items;
}

Items arrayOf(std::span<Item> items) {
  Items array;
  for (Item& item : items) array.addObject(&item);
  return array;
}

using Keys = std::vector<int>;

Keys keysOf(const Items& array) {
  Keys keys;
  for (const Item* item : array) keys.push_back(item->key);
  return keys;
}

TEST(FastArray, Growth) {
  Item item{1};
  const Cases<uint64_t, uint64_t, uint64_t, uint64_t> cases = {
      {0, 0, 0, 16},      {0, 0, 17, 32},         {0, 0, 1025, 2048},    {0, 0, 2049, 3072},    {2048, 0, 2049, 3072},
      {100, 0, 101, 200}, {0, 5000, 8193, 13192}, {0, 4096, 4097, 8192}, {1000, 0, 2001, 3024}, {17, 0, 18, 34}};
  for (const auto& [capacity, growBy, added, expected] : cases) {
    Items array = Items::initWithCapacity(capacity, growBy);
    for (uint64_t i = 0; i < added; ++i) array.addObject(&item);
    EXPECT_EQ(array.capacity(), expected) << capacity << ' ' << growBy << ' ' << added;
    EXPECT_EQ(array.count(), added);
  }
  Items array;
  array.setCapacity(100);
  array.setCapacity(50);
  EXPECT_EQ(array.capacity(), 100u);
  const Items moved = std::move(array);
  array.addObject(&item);
  EXPECT_EQ(array.firstObject(), &item);
  EXPECT_DEATH(Items::arrayWithCapacity(UINT64_MAX), "No memory");
  EXPECT_DEATH(Items::arrayWithCapacity(UINT64_MAX / 8), "No memory");
}

TEST(FastArray, Editing) {
  std::vector<Item> items = itemsUpTo(5);
  Items array = Items::arrayWithArray({&items[0], nullptr, &items[1], &items[2]});
  EXPECT_EQ(keysOf(array), (Keys{0, 1, 2}));
  EXPECT_EQ(array.setCount(10), 3u);
  array.insertObject(&items[3], 1000);
  array.insertObject(&items[4], 0);
  array.insertObject(nullptr, 0);
  array.addObject(nullptr);
  EXPECT_EQ(keysOf(array), (Keys{4, 0, 1, 2, 3}));
  array.replaceObjectAtIndex(1, &items[3]);
  array.replaceObjectAtIndex(5, &items[3]);
  array.replaceObjectAtIndex(0, nullptr);
  array.removeObjectAtIndex(5);
  array.removeObjectAtIndex(2);
  EXPECT_EQ(keysOf(array), (Keys{4, 3, 2, 3}));
  Item equal{3};
  EXPECT_EQ(array.indexOfObject(&equal), 1);
  EXPECT_EQ(array.indexOfObjectIdenticalTo(&equal), NSNotFound);
  EXPECT_EQ(array.indexOfObject(nullptr), NSNotFound);
  EXPECT_TRUE(array.containsObjectIdenticalTo(&items[2]));
  array.insertObject(&equal, 1);
  array.removeObjectIdenticalTo(&items[3]);
  EXPECT_EQ(keysOf(array), (Keys{4, 3, 2}));
  array.addObjects(array);
  array.removeObject(&items[3]);
  EXPECT_EQ(keysOf(array), (Keys{4, 2, 4, 2}));
  EXPECT_EQ(array.description(), "(4, 2, 4, 2)");
  EXPECT_EQ(array.setCount(1), 1u);
  EXPECT_EQ(array.lastObject(), &items[4]);
  array.removeAllObjects();
  EXPECT_EQ(array.firstObject(), nullptr);
  EXPECT_EQ(array.lastObject(), nullptr);
  EXPECT_EQ(array.objectAtIndex(0), nullptr);
}

TEST(FastArray, ItsOwnElements) {
  std::vector<Item> items = itemsUpTo(16);
  Items array = arrayOf(items);
  array.addObjects(array.getObjectsPtr() + 14, 2);  // the table moves
  EXPECT_EQ(array.count(), 18u);
  EXPECT_EQ(array.lastObject(), &items[15]);
  array.setObjects(array.getObjectsPtr() + 15, 3);
  EXPECT_EQ(keysOf(array), (Keys{15, 14, 15}));
  array.setFastArray(array);
  const Items copy = array.copy();
  array.setArray({&items[1]});
  EXPECT_EQ(keysOf(copy), (Keys{15, 14, 15}));
  EXPECT_EQ(keysOf(array), (Keys{1}));
  EXPECT_EQ(copy.objects(), (std::vector<Item*>{&items[15], &items[14], &items[15]}));
}

TEST(FastArray, RangesAndEnumeration) {
  std::vector<Item> items = itemsUpTo(3);
  Items array = arrayOf(items);
  const Cases<Range, int, int> cases = {{{0, 3}, 3, 3},          {{1, 2}, 2, 2},         {{1, 3}, 0, 2},
                                        {{3, 0}, 0, 0},          {{-1, 2}, 0, 0},        {{1, -1}, 0, 0},
                                        {{NSNotFound, 1}, 0, 0}, {{1, NSNotFound}, 0, 2}};
  for (const auto& [range, copied, expected] : cases) {
    Item* buffer[4] = {};
    array.getObjects(buffer, range);
    array.getObjects(nullptr, range);
    EXPECT_EQ(std::count_if(buffer, buffer + 4, [](Item* item) { return item != nullptr; }), copied);
    int applied = 0;
    array.applyFunction([](Item*, void* count) { ++*static_cast<int*>(count); }, &applied, range);
    EXPECT_EQ(applied, expected);
  }
  FastEnumerationState<Item> state;
  EXPECT_EQ(array.countByEnumeratingWithState(&state, nullptr, 0), 3u);
  EXPECT_EQ(state.itemsPtr[2], &items[2]);
  EXPECT_EQ(array.countByEnumeratingWithState(&state, nullptr, 0), 0u);
}

TEST(FastArray, PartialSort) {
  std::mt19937 random(1);
  std::vector<Item> items;
  for (int i = 0; i < 10000; ++i) items.push_back({static_cast<int>(random() % 500)});
  for (const uint64_t size : {0u, 1u, 2u, 9u, 100u, 10000u}) {
    Keys sorted = keysOf(arrayOf(std::span(items).first(size)));
    std::ranges::sort(sorted);
    for (uint64_t count = 0; count <= 200; ++count) {
      Items array = arrayOf(std::span(items).first(size));
      uint64_t steps = 0;
      array.sortUsingFunction(
          [](const Item* a, const Item* b, void* counter) {
            ++*static_cast<uint64_t*>(counter);
            return byKey(a, b);
          },
          &steps, count);
      Keys keys = keysOf(array);
      ASSERT_TRUE(std::ranges::equal(std::span(keys).first(std::min(count, size)),
                                     std::span(sorted).first(std::min(count, size))))
          << size << ' ' << count;
      EXPECT_LE(static_cast<double>(steps), 3 * static_cast<double>(size) * std::log2(static_cast<double>(size) + 1));
      if (size == 10000 && count == 200) {
        EXPECT_EQ(keys, sorted);  // beyond 50 and an eightieth all are sorted
      }
      std::ranges::sort(keys);
      ASSERT_EQ(keys, sorted);
    }
  }
}

TEST(FastArray, ComparisonsThatContradictThemselves) {
  std::mt19937 random(1);
  std::vector<Item> items = itemsUpTo(1000);
  for (const uint64_t count : {1u, 10u, 1000u}) {
    Items array = arrayOf(items);
    uint64_t steps = 0;
    array.sortUsingFunction(
        [&](const Item*, const Item*) {
          ++steps;
          return static_cast<int>(random() % 3) - 1;
        },
        count);
    EXPECT_LE(steps, 30000u);
    std::vector<int> keys = keysOf(array);
    std::ranges::sort(keys);
    EXPECT_EQ(keys, keysOf(arrayOf(items)));
  }
}

TEST(FastArray, ChangesFromInside) {
  std::vector<Item> items = itemsUpTo(200);
  for (const uint64_t count : {10u, 200u}) {
    for (const bool shrinks : {false, true}) {
      for (uint64_t at = 1; at < 400; at += 7) {
        Items array = arrayOf(items);
        uint64_t step = 0;
        const auto change = [&] {
          if (++step != at) return;
          shrinks ? static_cast<void>(array.setCount(step % 20)) : static_cast<void>(array.setCapacity(4096));
          if (!shrinks) array.addObject(&items[0]);
        };
        array.sortUsingFunction(
            [&](const Item* a, const Item* b) {
              change();
              return byKey(b, a);
            },
            count);
        array.applyFunction([&](Item*, void*) { change(); }, nullptr);
        for (const Item* item : array) ASSERT_LT(item->key, 200);
      }
    }
  }
}

struct Unequal {};

TEST(FastArray, ElementsWithoutEquality) {
  Unequal a, b;
  FastArray<Unequal> array = FastArray<Unequal>::arrayWithObject(&a);
  EXPECT_TRUE(array.containsObject(&a));
  EXPECT_FALSE(array.containsObject(&b));
  EXPECT_EQ(array.description().substr(0, 3), "(0x");
  FastArray<void> anything = FastArray<void>::arrayWithObject(&b);
  EXPECT_EQ(anything.indexOfObject(&b), 0);
}

}  // namespace
}  // namespace velan
