// Whether the process has one thread only, so that counting needs no atomic steps.
#ifndef VELAN_BASE_SINGLE_THREAD_INTERNAL_H
#define VELAN_BASE_SINGLE_THREAD_INTERNAL_H

#include <atomic>

#if __has_include(<sys/single_threaded.h>)
#include <sys/single_threaded.h>
#endif

namespace velan {

/// False where the C library does not tell. It becomes false before a second thread runs, which then sees all that was
/// done before.
inline bool isSingleThreaded() {
#if __has_include(<sys/single_threaded.h>)
  return __libc_single_threaded;
#else
  return false;
#endif
}

/// Adds to a count of references and returns what it was before.
template <typename Count>
Count addReferences(std::atomic<Count>& references, Count count) {
  if (!isSingleThreaded()) return references.fetch_add(count, std::memory_order_relaxed);
  const Count before = references.load(std::memory_order_relaxed);
  references.store(before + count, std::memory_order_relaxed);
  return before;
}

/// Takes one away and returns how many there were before; who takes the last one sees what the others did.
template <typename Count>
Count removeReference(std::atomic<Count>& references) {
  if (!isSingleThreaded()) return references.fetch_sub(1, std::memory_order_acq_rel);
  const Count before = references.load(std::memory_order_relaxed);
  references.store(before - 1, std::memory_order_relaxed);
  return before;
}

}  // namespace velan

#endif  // VELAN_BASE_SINGLE_THREAD_INTERNAL_H
