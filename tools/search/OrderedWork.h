// Work that is done by several threads and used in its order.
#ifndef VELAN_TOOLS_SEARCH_ORDERED_WORK_H
#define VELAN_TOOLS_SEARCH_ORDERED_WORK_H

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <exception>
#include <future>
#include <map>
#include <mutex>
#include <utility>
#include <vector>

namespace velan::tool {

/// Calls a function at the end of its scope.
template <typename Function>
class OnExit {
 public:
  explicit OnExit(Function function) : _function(std::move(function)) {}
  ~OnExit() { _function(); }
  OnExit(const OnExit&) = delete;
  OnExit& operator=(const OnExit&) = delete;

 private:
  Function _function;
};

/// Calls `work(i)` for each `i` below `count` on `threads` threads, and `take(i, result)` on this one in the order of
/// `i`, until it returns false. `wait()` is called about ten times a second while nothing can be taken. Threads run
/// ahead by a bounded number of results only. What `work` throws is thrown here.
template <typename Work, typename Take, typename Wait>
void workInOrder(size_t count, size_t threads, Work work, Take take, Wait wait) {
  using Result = decltype(work(size_t{}));
  std::mutex mutex;
  std::condition_variable changed;
  std::map<size_t, Result> done;  // worked and not yet taken
  std::exception_ptr failure;
  size_t started = 0;
  size_t taken = 0;
  bool stopped = false;
  const size_t window = 16 * threads;

  const auto runWorker = [&] {
    std::unique_lock lock(mutex);
    while (true) {
      changed.wait(lock, [&] { return stopped || started == count || started - taken < window; });
      if (stopped || started == count) return;
      const size_t number = started++;
      lock.unlock();
      try {
        Result result = work(number);
        lock.lock();
        done.emplace(number, std::move(result));
      } catch (...) {
        if (!lock.owns_lock()) lock.lock();
        failure = std::current_exception();
        stopped = true;
      }
      changed.notify_all();
    }
  };
  std::vector<std::future<void>> workers;  // waits for them when it goes
  const OnExit stopWorkers([&] {
    const std::lock_guard guard(mutex);
    stopped = true;
    changed.notify_all();
  });
  for (size_t i = 0; i < std::min(threads, count); ++i) workers.push_back(std::async(std::launch::async, runWorker));

  std::unique_lock lock(mutex);
  while (!stopped && taken < count) {
    const auto isReady = [&] { return stopped || done.contains(taken); };
    if (!changed.wait_for(lock, std::chrono::milliseconds(100), isReady)) {
      wait();
      continue;
    }
    if (stopped) break;
    const auto ready = done.extract(taken);
    lock.unlock();
    if (!take(ready.key(), ready.mapped())) return;
    lock.lock();
    ++taken;
    changed.notify_all();
  }
  if (failure) std::rethrow_exception(failure);
}

}  // namespace velan::tool

#endif  // VELAN_TOOLS_SEARCH_ORDERED_WORK_H
