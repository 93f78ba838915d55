// Runs a test's work on a thread with a small stack, which anything that recurses by its input's depth would overrun.
#ifndef VELAN_TESTS_SMALL_STACK_H
#define VELAN_TESTS_SMALL_STACK_H

#include <gtest/gtest.h>
#include <limits.h>
#include <pthread.h>
#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <functional>

namespace velan {

/// 64 KiB, or the least that the system allows. Sanitizers make frames larger, far from what a million of them take.
inline size_t smallStackSize() {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__) || defined(__clang__)
  constexpr size_t kWanted = 256 << 10;  // clang does not tell the sanitizers by a macro
#else
  constexpr size_t kWanted = 64 << 10;
#endif
  return std::max({kWanted, static_cast<size_t>(PTHREAD_STACK_MIN),
                   static_cast<size_t>(std::max(0L, sysconf(_SC_THREAD_STACK_MIN)))});
}

inline void runOnSmallStack(std::function<void()> work) {
  pthread_attr_t attributes;
  ASSERT_EQ(pthread_attr_init(&attributes), 0);
  ASSERT_EQ(pthread_attr_setstacksize(&attributes, smallStackSize()), 0);
  pthread_t thread;
  const auto start = [](void* argument) -> void* {
    (*static_cast<std::function<void()>*>(argument))();
    return nullptr;
  };
  ASSERT_EQ(pthread_create(&thread, &attributes, start, &work), 0);
  pthread_join(thread, nullptr);
  pthread_attr_destroy(&attributes);
}

}  // namespace velan

#endif  // VELAN_TESTS_SMALL_STACK_H
