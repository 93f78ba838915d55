#include "tests/FailingAllocation.h"

#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <new>

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define VELAN_SANITIZED 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define VELAN_SANITIZED 1
#endif
#endif
#if defined(__GLIBC__) && !defined(VELAN_SANITIZED)
#define VELAN_INTERPOSES_MALLOC 1
#endif

namespace {

thread_local bool failsOnwards = false;
thread_local int64_t first = 0;  // that fails
thread_local int64_t counted = 0;
thread_local bool failed = false;

bool fails() {
  if (!velan::countsAllocations || counted++ < first || (failed && !failsOnwards)) return false;
  failed = true;
  return true;
}

}  // namespace

namespace velan {

FailingAllocation::FailingAllocation(int64_t at, bool onwards) {
  failsOnwards = onwards;
  first = at;
  counted = 0;
  failed = false;
  countsAllocations = true;
}

FailingAllocation::~FailingAllocation() { countsAllocations = false; }

bool FailingAllocation::happened() { return failed; }

int64_t FailingAllocation::count() { return counted; }

}  // namespace velan

#ifdef VELAN_INTERPOSES_MALLOC

extern "C" {
void* __libc_malloc(size_t size);
void* __libc_calloc(size_t count, size_t size);
void* __libc_realloc(void* bytes, size_t size);

void* malloc(size_t size) { return fails() ? (errno = ENOMEM, nullptr) : __libc_malloc(size); }
void* calloc(size_t count, size_t size) { return fails() ? (errno = ENOMEM, nullptr) : __libc_calloc(count, size); }
void* realloc(void* bytes, size_t size) { return fails() ? (errno = ENOMEM, nullptr) : __libc_realloc(bytes, size); }
}

#else

void* operator new(size_t size) {
  void* const bytes = fails() ? nullptr : std::malloc(size ? size : 1);
  if (!bytes) throw std::bad_alloc();
  return bytes;
}
void* operator new(size_t size, const std::nothrow_t&) noexcept {
  return fails() ? nullptr : std::malloc(size ? size : 1);
}
void* operator new[](size_t size) { return operator new(size); }
void* operator new[](size_t size, const std::nothrow_t& tag) noexcept { return operator new(size, tag); }
void operator delete(void* bytes) noexcept { std::free(bytes); }
void operator delete(void* bytes, size_t) noexcept { std::free(bytes); }
void operator delete[](void* bytes) noexcept { std::free(bytes); }
void operator delete[](void* bytes, size_t) noexcept { std::free(bytes); }

#endif
