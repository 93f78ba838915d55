#include "velan/containers/FastArray.h"

#include <algorithm>
#include <cstdlib>
#include <functional>
#include <memory>
#include <new>

#include "velan/base/ASCII.h"
#include "velan/base/Log.h"

namespace velan {
namespace {

// Runs of so many elements are sorted by insertion before they are merged.
constexpr uint64_t kRun = 8;

[[noreturn]] void failForMemory(uint64_t capacity) {
  logFormat("ERROR: No memory for an array of %llu objects", static_cast<unsigned long long>(capacity));
  std::abort();
}

// Both keep within their bounds whatever `precedes` says.
void sortByInsertion(void** objects, uint64_t count, auto precedes) {
  for (uint64_t i = 1; i < count; ++i) {
    void* const object = objects[i];
    uint64_t place = i;
    for (; place > 0 && precedes(object, objects[place - 1]); --place) objects[place] = objects[place - 1];
    objects[place] = object;
  }
}

void merge(void* const* a, void* const* aEnd, void* const* b, void* const* bEnd, void** to, auto precedes) {
  while (a < aEnd && b < bEnd) *to++ = precedes(*b, *a) ? *b++ : *a++;
  to = std::copy(a, aEnd, to);
  std::copy(b, bEnd, to);
}

}  // namespace

FastArrayCore::FastArrayCore(uint64_t capacity, uint64_t growBy) : _growBy(std::max(growBy, kLeastStep)) {
  setCapacityOfFastArray(std::max(capacity, kLeastCapacity));
}

FastArrayCore::~FastArrayCore() { std::free(_objects); }

void FastArrayCore::setCapacityOfFastArray(uint64_t capacity) {
  if (capacity > PTRDIFF_MAX / sizeof(void*)) failForMemory(capacity);
  void* const table = std::realloc(_objects, capacity * sizeof(void*));
  if (!table) failForMemory(capacity);
  _objects = static_cast<void**>(table);
  _capacity = capacity;
}

void FastArrayCore::grow() {
  uint64_t capacity = 0;
  const uint64_t added = _count <= _growBy ? std::max(_count, kLeastCapacity) : _growBy;
  if (__builtin_add_overflow(_count, added, &capacity)) failForMemory(UINT64_MAX);
  setCapacityOfFastArray(capacity);
}

void FastArrayCore::insert(void* object, uint64_t index) {
  if (!object) return;
  if (index >= _count) return append(object);
  if (_count == _capacity) grow();
  std::copy_backward(_objects + index, _objects + _count, _objects + _count + 1);
  _objects[index] = object;
  ++_count;
}

// The objects may lie in the table, which growing moves.
void FastArrayCore::appendAll(void* const* objects, uint64_t count) {
  const bool isOwn = !std::less<>()(objects, _objects) && std::less<>()(objects, _objects + _capacity);
  const auto offset = isOwn ? static_cast<uint64_t>(objects - _objects) : 0;
  for (uint64_t i = 0; objects && i < count; ++i) append(isOwn ? _objects[offset + i] : objects[i]);
}

// What lies in the table is read before it is overwritten, because nothing moves up.
void FastArrayCore::assign(void* const* objects, uint64_t count) {
  _count = 0;
  if (!objects) return;
  if (count > _capacity) setCapacityOfFastArray(count);
  for (uint64_t i = 0; i < count; ++i) {
    if (objects[i]) _objects[_count++] = objects[i];
  }
}

void FastArrayCore::removeObjectAtIndex(uint64_t index) {
  if (index >= _count) return;
  std::copy(_objects + index + 1, _objects + _count, _objects + index);
  --_count;
}

void FastArrayCore::copyRange(void** buffer, Range range) const {
  const auto count = static_cast<int64_t>(_count);
  if (!buffer || range.location < 0 || range.length <= 0 || range.location > count) return;
  if (range.length <= count - range.location) std::copy_n(_objects + range.location, range.length, buffer);
}

// The table and the count are read anew after each question.
void FastArrayCore::removeWhere(FunctionRef<bool(const void* object)> isRemoved) {
  uint64_t kept = 0;
  for (uint64_t i = 0; i < _count; ++i) {
    void* const object = _objects[i];
    if (!isRemoved(object)) _objects[kept++] = object;
  }
  setCount(kept);
}

int64_t FastArrayCore::indexWhere(FunctionRef<bool(const void* object)> isFound) const {
  for (uint64_t i = 0; i < _count; ++i) {
    if (isFound(_objects[i])) return static_cast<int64_t>(i);
  }
  return NSNotFound;
}

// A copy is sorted, which a comparison cannot change. Merging needs the fewest comparisons.
void FastArrayCore::sort(Compare compare) {
  const uint64_t count = _count;
  if (count < 2) return;
  const std::unique_ptr<void*[]> room(new (std::nothrow) void*[2 * count]);
  if (!room) return sortInPlace(count, compare);
  const auto precedes = [compare](const void* a, const void* b) { return compare(a, b) < 0; };
  void** const table = _objects;
  void** from = room.get();
  void** to = from + count;
  std::copy_n(_objects, count, from);
  for (uint64_t start = 0; start < count; start += kRun) {
    sortByInsertion(from + start, std::min(kRun, count - start), precedes);
  }
  for (uint64_t run = kRun; run < count; run *= 2) {
    for (uint64_t start = 0; start < count; start += 2 * run) {
      const uint64_t middle = std::min(start + run, count);
      const uint64_t end = std::min(middle + run, count);
      merge(from + start, from + middle, from + middle, from + end, to + start, precedes);
    }
    std::swap(from, to);
  }
  const bool wasChanged = _count != count || _objects != table;
  if (!wasChanged) std::copy_n(from, count, _objects);
}

// The smallest elements seen so far are kept as a heap with the largest of them on top.
void FastArrayCore::sortFirst(uint64_t count, Compare compare) {
  const uint64_t all = _count;
  if (all < 2 || count == 0) return;
  if (count >= all || (count >= 51 && count > all / 80)) return sort(compare);
  for (uint64_t i = count / 2; i-- > 0;) {
    if (!sink(i, count, compare)) return;
  }
  for (uint64_t i = count; i < all && i < _count; ++i) {
    if (compare(_objects[i], _objects[0]) >= 0) continue;
    if (i >= _count) return;
    std::swap(_objects[i], _objects[0]);
    if (!sink(0, count, compare)) return;
  }
  sortInPlace(count, compare);
}

void FastArrayCore::sortInPlace(uint64_t count, Compare compare) {
  for (uint64_t i = count / 2; i-- > 0;) {
    if (!sink(i, count, compare)) return;
  }
  for (uint64_t end = count; end-- > 1 && end < _count;) {
    std::swap(_objects[0], _objects[end]);
    if (!sink(0, end, compare)) return;
  }
}

// Puts the element at `hole` where it belongs in the heap below it; false when the array has become shorter.
bool FastArrayCore::sink(uint64_t hole, uint64_t count, Compare compare) {
  for (uint64_t child; (child = 2 * hole + 1) < count; hole = child) {
    if (_count < count) return false;
    if (child + 1 < count && compare(_objects[child], _objects[child + 1]) < 0) ++child;
    if (_count < count) return false;
    const bool isInPlace = compare(_objects[hole], _objects[child]) >= 0;
    if (_count < count) return false;
    if (isInPlace) return true;
    std::swap(_objects[hole], _objects[child]);
  }
  return true;
}

std::string FastArrayCore::descriptionOf(FunctionRef<std::string(const void* object)> describe) const {
  std::string text = "(";
  for (uint64_t i = 0; i < _count; ++i) text += (i > 0 ? ", " : "") + describe(_objects[i]);
  return text += ")";
}

std::string describeAddress(const void* address) {
  const auto number = reinterpret_cast<uintptr_t>(address);
  std::string text = "0x";
  for (unsigned shift = 8 * sizeof number; shift > 0; shift -= 4) {
    text += lowerHexadecimalDigit(static_cast<unsigned>(number >> (shift - 4) & 15));
  }
  return text;
}

}  // namespace velan
