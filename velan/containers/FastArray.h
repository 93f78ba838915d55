// A growable array of references for hot loops. It owns no elements, checks no bounds by exceptions and does nothing
// where an index is out of range. Not safe for concurrent use.
//
// A comparison, an equality or an applied function may change the array that it is called for: that is safe, while what
// comes out of the operation is then unspecified.
#ifndef VELAN_CONTAINERS_FAST_ARRAY_H
#define VELAN_CONTAINERS_FAST_ARRAY_H

#include <concepts>
#include <cstdint>
#include <span>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "velan/base/FunctionRef.h"
#include "velan/base/Range.h"

namespace velan {

/// The table of a `FastArray`, whatever its elements are.
class VELAN_EXPORT FastArrayCore {
 public:
  static constexpr uint64_t kLeastCapacity = 16;
  static constexpr uint64_t kLeastStep = 1024;

  /// `count`: the number of elements.
  uint64_t count() const { return _count; }
  /// `setCount:`: only shrinks; returns the resulting count.
  uint64_t setCount(uint64_t count) {
    if (count < _count) _count = count;
    return _count;
  }
  /// `capacity`: the number of slots.
  uint64_t capacity() const { return _capacity; }
  /// `removeAllObjects`: keeps the table.
  void removeAllObjects() { _count = 0; }
  /// `removeObjectAtIndex:`: later elements move down.
  void removeObjectAtIndex(uint64_t index);

 protected:
  using Compare = FunctionRef<int64_t(const void* a, const void* b)>;

  FastArrayCore(uint64_t capacity, uint64_t growBy);
  FastArrayCore(FastArrayCore&& other) noexcept { swap(other); }
  ~FastArrayCore();
  void swap(FastArrayCore& other) noexcept {
    std::swap(_capacity, other._capacity);
    std::swap(_growBy, other._growBy);
    std::swap(_count, other._count);
    std::swap(_objects, other._objects);
  }

  void setCapacityOfFastArray(uint64_t capacity);
  void append(void* object) {
    if (!object) return;
    if (_count == _capacity) grow();
    _objects[_count++] = object;
  }
  void insert(void* object, uint64_t index);
  void appendAll(void* const* objects, uint64_t count);
  void assign(void* const* objects, uint64_t count);
  void copyRange(void** buffer, Range range) const;
  void removeWhere(FunctionRef<bool(const void* object)> isRemoved);
  int64_t indexWhere(FunctionRef<bool(const void* object)> isFound) const;
  void sort(Compare compare);
  void sortFirst(uint64_t count, Compare compare);
  std::string descriptionOf(FunctionRef<std::string(const void* object)> describe) const;

  uint64_t _capacity = 0;
  uint64_t _growBy = kLeastStep;
  uint64_t _count = 0;
  void** _objects = nullptr;  // a table of `_capacity` references, none of them null up to `_count`

 private:
  void grow();
  void sortInPlace(uint64_t count, Compare compare);
  bool sink(uint64_t hole, uint64_t count, Compare compare);
};

/// How the elements of a `FastArray` are compared and described. Specialise it, or give the array another one.
template <typename Object>
struct FastArrayElement {
  /// By `==` of the elements where they have one, else by identity.
  static bool isEqual(const Object* element, const Object* other) {
    if constexpr (std::equality_comparable<Object>) {
      return *element == *other;
    } else {
      return element == other;
    }
  }
  /// What the element's `description()` gives where it has one that gives UTF-8, else its address.
  static std::string description(const Object* element) {
    if constexpr (requires {
                    { element->description() } -> std::convertible_to<std::string>;
                  }) {
      return element->description();
    } else if constexpr (requires {
                           { element->description().toUTF8() } -> std::convertible_to<std::string>;
                         }) {
      return element->description().toUTF8();
    } else {
      return addressOf(element);
    }
  }
  static std::string addressOf(const void* element);
};

/// The state of an enumeration by `countByEnumeratingWithState`; all zero before it begins.
template <typename Object>
struct FastEnumerationState {
  uint64_t state = 0;
  Object** itemsPtr = nullptr;
  uint64_t* mutationsPtr = nullptr;
  uint64_t extra[5] = {};
};

/// An array of references to `Object`s that somebody else keeps alive. Null references are never stored.
///
/// A full array of at most `_growBy` elements doubles, a larger one grows by `_growBy` slots. When memory runs out, or
/// a capacity overflows, the process ends.
template <typename Object, typename Element = FastArrayElement<Object>>
class FastArray : public FastArrayCore {
 public:
  /// Both as `init`.
  FastArray() : FastArrayCore(kLeastCapacity, kLeastStep) {}
  FastArray(FastArray&& other) noexcept = default;
  FastArray& operator=(FastArray other) noexcept {
    swap(other);
    return *this;
  }
  FastArray(const FastArray& other) : FastArrayCore(other._count, other._growBy) { setFastArray(other); }

  /// `array`: an empty array with 16 slots and a step of 1,024.
  static FastArray array() { return FastArray(); }
  /// `init`: the same as `array`.
  static FastArray init() { return FastArray(); }
  /// `arrayWithArray:`: the elements of a list; null ones are left out.
  static FastArray arrayWithArray(const std::vector<Object*>& list) {
    return initWithObjects(list.data(), list.size());
  }
  /// `initWithArray:`: the same as `arrayWithArray:`.
  static FastArray initWithArray(const std::vector<Object*>& list) { return arrayWithArray(list); }
  /// `arrayWithFastArray:`: the same references.
  static FastArray arrayWithFastArray(const FastArray& other) { return initWithObjects(other._table(), other._count); }
  /// `initWithFastArray:`: the same as `arrayWithFastArray:`.
  static FastArray initWithFastArray(const FastArray& other) { return arrayWithFastArray(other); }
  /// `arrayWithObjects:count:`: `objects[0, count)`; null ones are left out.
  static FastArray arrayWithObjects(Object* const* objects, uint64_t count) { return initWithObjects(objects, count); }
  /// `initWithObjects:count:`: the same as `arrayWithObjects:count:`.
  static FastArray initWithObjects(Object* const* objects, uint64_t count) {
    FastArray result(count, kLeastStep);
    result.setObjects(objects, count);
    return result;
  }
  /// `arrayWithObject:`: one element; none for null.
  static FastArray arrayWithObject(Object* object) { return initWithObjects(&object, 1); }
  /// `initWithObject:`: the same as `arrayWithObject:`.
  static FastArray initWithObject(Object* object) { return arrayWithObject(object); }
  /// `arrayWithCapacity:`: with at least 16 slots.
  static FastArray arrayWithCapacity(uint64_t capacity) { return FastArray(capacity, kLeastStep); }
  /// `initWithCapacity:`: the same as `arrayWithCapacity:`.
  static FastArray initWithCapacity(uint64_t capacity) { return FastArray(capacity, kLeastStep); }
  /// `arrayWithCapacity:growBy:`: with at least 16 slots and a step of at least 1,024.
  static FastArray arrayWithCapacity(uint64_t capacity, uint64_t growBy) { return FastArray(capacity, growBy); }
  /// `initWithCapacity:growBy:`: the same as `arrayWithCapacity:growBy:`.
  static FastArray initWithCapacity(uint64_t capacity, uint64_t growBy) { return FastArray(capacity, growBy); }

  /// `copy` and `copyWithZone:`: an array with the same references.
  FastArray copy() const { return *this; }
  /// `mutableCopy` and `mutableCopyWithZone:`: the same as `copy`.
  FastArray mutableCopy() const { return *this; }

  /// `setCapacity:`: only grows, to exactly that many slots; returns the table.
  Object** setCapacity(uint64_t capacity) {
    if (capacity > _capacity) setCapacityOfFastArray(capacity);
    return getObjectsPtr();
  }
  /// `firstObject`: null when empty.
  Object* firstObject() const { return objectAtIndex(0); }
  /// `lastObject`: null when empty.
  Object* lastObject() const { return objectAtIndex(_count - 1); }
  /// `objectAtIndex:`: null when the index is not below the count.
  Object* objectAtIndex(uint64_t index) const { return index < _count ? at(index) : nullptr; }

  /// `addObject:`: appends; nothing for null.
  void addObject(Object* object) { append(erased(object)); }
  /// `addObjects:count:`: appends `objects[0, count)`, which may be the array's own.
  void addObjects(Object* const* objects, uint64_t count) { appendAll(erased(objects), count); }
  /// `addObjects:`: appends the elements of another array, or of this one.
  void addObjects(const FastArray& other) { appendAll(other._objects, other._count); }
  /// `addObjectsFromArray:`: appends the elements of a list.
  void addObjectsFromArray(const std::vector<Object*>& list) { addObjects(list.data(), list.size()); }
  /// `insertObject:atIndex:`: later elements move up; an index not below the count appends. Nothing for null.
  void insertObject(Object* object, uint64_t index) { insert(erased(object), index); }
  /// `replaceObjectAtIndex:withObject:`: nothing for null or an index not below the count.
  void replaceObjectAtIndex(uint64_t index, Object* object) {
    if (object && index < _count) _objects[index] = erased(object);
  }
  /// `removeObject:`: all elements that equal `object`.
  void removeObject(const Object* object) {
    if (object) removeWhere([object](const void* each) { return Element::isEqual(typed(each), object); });
  }
  /// `removeObjectIdenticalTo:`: all references to `object`.
  void removeObjectIdenticalTo(const Object* object) {
    removeWhere([object](const void* each) { return each == object; });
  }

  /// `containsObject:`: whether any element equals `object`.
  bool containsObject(const Object* object) const { return indexOfObject(object) != NSNotFound; }
  /// `indexOfObject:`: the first element that equals `object`; `NSNotFound` if none does, and for null.
  int64_t indexOfObject(const Object* object) const {
    if (!object) return NSNotFound;
    return indexWhere([object](const void* each) { return Element::isEqual(typed(each), object); });
  }
  /// `containsObjectIdenticalTo:`: whether `object` itself is there.
  bool containsObjectIdenticalTo(const Object* object) const { return indexOfObjectIdenticalTo(object) != NSNotFound; }
  /// `indexOfObjectIdenticalTo:`: the first reference to `object`; `NSNotFound` if there is none.
  int64_t indexOfObjectIdenticalTo(const Object* object) const {
    return indexWhere([object](const void* each) { return each == object; });
  }

  /// `getObjectsPtr`: the table; valid until the array grows.
  Object** getObjectsPtr() const { return reinterpret_cast<Object**>(_objects); }
  /// `getObjects:`: copies all references into `buffer`, which has room for them.
  void getObjects(Object** buffer) const { getObjects(buffer, {0, static_cast<int64_t>(_count)}); }
  /// `getObjects:range:`: copies those of a range; nothing for a null buffer or a range that is not inside the array.
  void getObjects(Object** buffer, Range range) const { copyRange(reinterpret_cast<void**>(buffer), range); }
  /// `setArray:`: the elements of a list in place of all.
  void setArray(const std::vector<Object*>& list) { setObjects(list.data(), list.size()); }
  /// `setFastArray:`: those of another array.
  void setFastArray(const FastArray& other) { assign(other._objects, other._count); }
  /// `setObjects:count:`: `objects[0, count)`, which may be the array's own.
  void setObjects(Object* const* objects, uint64_t count) { assign(erased(objects), count); }

  /// `sortUsingFunction:`: in the order of `compare(a, b)`, negative where a comes first. Not stable; takes
  /// N log N steps whatever the function says.
  template <typename Function>
  requires std::is_invocable_r_v<int64_t, Function&, Object*, Object*>
  void sortUsingFunction(Function&& compare) { sort(compareWith(compare)); }
  /// `sortUsingFunction:context:`: as above with `compare(a, b, context)`.
  template <typename Function>
  requires std::is_invocable_r_v<int64_t, Function&, Object*, Object*, void*>
  void sortUsingFunction(Function&& compare, void* context) {
    sort([&compare, context](const void* a, const void* b) { return compare(typed(a), typed(b), context); });
  }
  /// `sortUsingFunction:count:`: puts the `count` smallest elements in order at the front; the order of the others is
  /// unspecified. Nothing for a `count` of 0.
  template <typename Function>
  requires std::is_invocable_r_v<int64_t, Function&, Object*, Object*>
  void sortUsingFunction(Function&& compare, std::unsigned_integral auto count) {
    sortFirst(count, compareWith(compare));
  }
  /// `sortUsingFunction:context:count:`: as above with `compare(a, b, context)`.
  template <typename Function>
  requires std::is_invocable_r_v<int64_t, Function&, Object*, Object*, void*>
  void sortUsingFunction(Function&& compare, void* context, uint64_t count) {
    sortFirst(count,
              [&compare, context](const void* a, const void* b) { return compare(typed(a), typed(b), context); });
  }

  /// `applyFunction:context:`: calls `function(object, context)` for each element in order.
  template <typename Function>
  void applyFunction(Function&& function, void* context) {
    for (uint64_t i = 0; i < _count; ++i) function(at(i), context);
  }
  /// `applyFunction:context:range:`: for those of a range; what lies outside the array is left out.
  template <typename Function>
  void applyFunction(Function&& function, void* context, Range range) {
    if (range.location < 0 || range.length <= 0) return;
    const auto first = static_cast<uint64_t>(range.location);
    for (uint64_t i = 0; i < static_cast<uint64_t>(range.length) && first + i < _count; ++i) {
      function(at(first + i), context);
    }
  }

  /// `objects`: a list of the elements.
  std::vector<Object*> objects() const { return {begin(), end()}; }
  /// `allObjects`: the same as `objects`.
  std::vector<Object*> allObjects() const { return objects(); }
  /// `countByEnumeratingWithState:objects:count:`: all elements in one batch, straight from the table; 0 when called
  /// again. `buffer` is not used.
  uint64_t countByEnumeratingWithState(FastEnumerationState<Object>* state, Object** /*buffer*/, uint64_t /*length*/) {
    if (!state || state->state != 0) return 0;
    state->state = 1;
    state->itemsPtr = getObjectsPtr();
    state->mutationsPtr = &_count;
    return _count;
  }
  Object** begin() const { return getObjectsPtr(); }
  Object** end() const { return getObjectsPtr() + _count; }

  /// `description`: the elements in parentheses, in UTF-8.
  std::string description() const {
    return descriptionOf([](const void* each) { return Element::description(typed(each)); });
  }

 private:
  FastArray(uint64_t capacity, uint64_t growBy) : FastArrayCore(capacity, growBy) {}

  static Object* typed(const void* object) { return const_cast<Object*>(static_cast<const Object*>(object)); }
  static void* erased(const Object* object) { return const_cast<std::remove_const_t<Object>*>(object); }
  static void* const* erased(Object* const* objects) { return reinterpret_cast<void* const*>(objects); }
  static auto compareWith(auto& compare) {
    return [&compare](const void* a, const void* b) -> int64_t { return compare(typed(a), typed(b)); };
  }
  Object* const* _table() const { return getObjectsPtr(); }
  Object* at(uint64_t index) const { return typed(_objects[index]); }
};

VELAN_EXPORT std::string describeAddress(const void* address);

template <typename Object>
std::string FastArrayElement<Object>::addressOf(const void* element) {
  return describeAddress(element);
}

}  // namespace velan

#endif  // VELAN_CONTAINERS_FAST_ARRAY_H
