#include "velan/base/MutableString.h"

#include <algorithm>
#include <cstring>
#include <functional>
#include <new>

#include "velan/base/StringStorageInternal.h"

namespace velan {
namespace {

constexpr int64_t kFirstCapacity = 16;

}  // namespace

void MutableString::setCapacity(int64_t units) {
  unichar* grown = units <= String::Storage::kLongest ? String::Storage::reallocateUnits(_units, units) : nullptr;
  if (!grown) throw std::bad_alloc();
  _units = grown;
  _capacity = units;
}

void MutableString::grow(int64_t units) {
  if (units > String::Storage::kLongest - _length) throw std::bad_alloc();
  setCapacity(std::max({_length + units, std::min(2 * _capacity, String::Storage::kLongest), kFirstCapacity}));
}

void MutableString::appendCharacter(unichar c, int64_t count) {
  if (count <= 0) return;
  if (count > _capacity - _length) grow(count);
  std::fill_n(_units + _length, count, c);
  _length += count;
}

void MutableString::replaceCharactersInRange(Range range, std::u16string_view text) {
  // Comparable with std::less also when the units are another object's.
  const std::less<const unichar*> before;
  if (!text.empty() && !before(text.data(), _units) && before(text.data(), _units + _length)) {
    return replaceCharactersInRange(range, MutableString(text).view());
  }
  const Range replaced = clippedRange(range, _length);
  const auto inserted = static_cast<int64_t>(text.size());
  const int64_t tail = _length - endOf(replaced);
  if (inserted - replaced.length > _capacity - _length) grow(inserted - replaced.length);
  unichar* at = _units + replaced.location;
  if (tail > 0) std::memmove(at + inserted, at + replaced.length, static_cast<size_t>(tail) * sizeof(unichar));
  if (inserted > 0) std::memcpy(at, text.data(), text.size() * sizeof(unichar));
  _length += inserted - replaced.length;
}

String MutableString::takeString() {
  String result;
  if (!_units) return String(u"");
  result.adopt(String::Storage::fittedUnits(_units, _capacity, _length), _length);
  _units = nullptr;
  _length = _capacity = 0;
  return result;
}

void MutableString::clearStorage() noexcept { String::Storage::freeUnits(_units); }

}  // namespace velan
