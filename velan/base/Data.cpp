#include "velan/base/Data.h"

#include <cstdlib>
#include <cstring>
#include <new>

namespace velan {
namespace {

constexpr uint8_t kNoBytes[1] = {0};

}  // namespace

Data Data::withBytes(const void* bytes, size_t length) {
  if (length == 0) return Data(nullptr, kNoBytes, 0);
  void* copy = bytes ? std::malloc(length) : nullptr;
  if (!copy) return Data();
  std::memcpy(copy, bytes, length);
  return withBytesNoCopy(copy, length, true);
}

Data Data::withBytesNoCopy(void* bytes, size_t length, bool freeWhenDone) {
  if (!bytes) return length == 0 ? withBytes(nullptr, 0) : Data();
  try {
    // shared_ptr calls the deleter when it cannot allocate its own part.
    return Data(freeWhenDone ? std::shared_ptr<const void>(bytes, std::free) : nullptr,
                static_cast<const uint8_t*>(bytes), length);
  } catch (const std::bad_alloc&) {
    return Data();
  }
}

Data Data::withOwner(std::shared_ptr<const void> owner, const void* bytes, size_t length) {
  if (length == 0) return withBytes(nullptr, 0);
  return bytes ? Data(std::move(owner), static_cast<const uint8_t*>(bytes), length) : Data();
}

Data Data::subdata(Range range) const {
  if (isAbsent()) return Data();
  const Range part = clippedRange(range, static_cast<int64_t>(_length));
  return Data(_owner, _bytes + part.location, static_cast<size_t>(part.length));
}

}  // namespace velan
