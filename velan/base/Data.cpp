#include "velan/base/Data.h"

#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>

namespace velan {
namespace {

constexpr uint8_t kNoBytes[1] = {0};

}  // namespace

void Data::retain() const noexcept { __atomic_fetch_add(&_owner->references, 1, __ATOMIC_RELAXED); }

void Data::release() noexcept {
  if (__atomic_sub_fetch(&_owner->references, 1, __ATOMIC_ACQ_REL) == 0) _owner->dispose(_owner);
}

// The owner and the bytes are one allocation.
Data Data::withBytes(const void* bytes, size_t length) {
  if (length == 0) return Data(nullptr, kNoBytes, 0);
  if (!bytes || length > SIZE_MAX - sizeof(Owner)) return Data();
  void* memory = std::malloc(sizeof(Owner) + length);
  if (!memory) return Data();
  auto* owner = new (memory) Owner([](Owner* each) noexcept { std::free(each); });
  auto* copy = reinterpret_cast<uint8_t*>(owner + 1);
  std::memcpy(copy, bytes, length);
  return Data(owner, copy, length);
}

Data Data::withBytesNoCopy(void* bytes, size_t length, bool freeWhenDone) {
  if (!bytes) return length == 0 ? withBytes(nullptr, 0) : Data();
  if (!freeWhenDone) return Data(nullptr, static_cast<const uint8_t*>(bytes), length);
  std::unique_ptr<void, decltype(&std::free)> owned(bytes, std::free);
  auto* owner = new (std::nothrow) Holder<decltype(owned)>(std::move(owned));
  return owner ? Data(owner, static_cast<const uint8_t*>(bytes), length) : Data();
}

Data Data::subdata(Range range) const {
  if (isAbsent()) return Data();
  const Range part = clippedRange(range, static_cast<int64_t>(_length));
  if (_owner) retain();
  return Data(_owner, _bytes + part.location, static_cast<size_t>(part.length));
}

}  // namespace velan
