// Many copies of one string.
#ifndef VELAN_BASE_STRING_COPIES_INTERNAL_H
#define VELAN_BASE_STRING_COPIES_INTERNAL_H

#include "velan/base/StringStorageInternal.h"

namespace velan {

/// Counted all together, with one atomic step instead of one a copy.
class StringCopies {
 public:
  StringCopies(const String& string, size_t count)
      : _storage(static_cast<String::Storage*>(string._storage)), _left(_storage ? static_cast<uint32_t>(count) : 0) {
    if (_left > 0) _storage->references.fetch_add(_left, std::memory_order_relaxed);
  }
  /// The string itself outlives this object, so the last reference is never among those that are given back.
  ~StringCopies() {
    if (_left > 0) _storage->references.fetch_sub(_left, std::memory_order_relaxed);
  }
  StringCopies(const StringCopies&) = delete;
  StringCopies& operator=(const StringCopies&) = delete;

  /// One of them; not to be called more often than there are copies.
  String take() noexcept {
    if (_storage) --_left;
    return String(_storage);
  }

 private:
  String::Storage* const _storage;
  uint32_t _left;
};

}  // namespace velan

#endif  // VELAN_BASE_STRING_COPIES_INTERNAL_H
