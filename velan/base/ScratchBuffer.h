// Working memory that lives on the stack while it is small.
#ifndef VELAN_BASE_SCRATCH_BUFFER_H
#define VELAN_BASE_SCRATCH_BUFFER_H

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <type_traits>

namespace velan {

/// Uninitialised room for `count` elements: inside the object up to `kInline`, on the heap above that. Converts to
/// false when the heap had no room.
template <typename T, size_t kInline>
class ScratchBuffer {
  static_assert(std::is_trivially_copyable_v<T>);

 public:
  explicit ScratchBuffer(size_t count)
      : _elements(count <= kInline                ? _inline
                  : count <= SIZE_MAX / sizeof(T) ? static_cast<T*>(std::malloc(count * sizeof(T)))
                                                  : nullptr) {}
  ~ScratchBuffer() {
    if (_elements != _inline) std::free(_elements);
  }
  ScratchBuffer(const ScratchBuffer&) = delete;
  ScratchBuffer& operator=(const ScratchBuffer&) = delete;

  explicit operator bool() const { return _elements != nullptr; }
  T* data() { return _elements; }
  T& operator[](size_t index) { return _elements[index]; }

 private:
  T _inline[kInline];
  T* _elements;
};

}  // namespace velan

#endif  // VELAN_BASE_SCRATCH_BUFFER_H
