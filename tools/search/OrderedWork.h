// Work that is done by several threads and used in its order.
#ifndef VELAN_TOOLS_SEARCH_ORDERED_WORK_H
#define VELAN_TOOLS_SEARCH_ORDERED_WORK_H

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <exception>
#include <future>
#include <mutex>
#include <optional>
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

/// The same as `workInOrder` below for one thread, which is this one.
template <typename Work, typename Take>
void workAlone(size_t count, Work work, Take take) {
  for (size_t i = 0; i < count; ++i) {
    auto result = work(i);
    if (!take(i, result)) return;
  }
}

/// Calls `work(i)` for each `i` below `count` on `threads` threads, and `take(i, result)` on this one in the order of
/// `i`, until it returns false. A result that `hurries(result)` is taken as soon as its turn comes, others when there
/// are some, because waking this thread takes longer than many a piece of work. `wait()` is called about ten times a
/// second while nothing can be taken. Threads run ahead by a bounded number of results only. What `work` throws is
/// thrown here. A single thread is this one; `wait` is not called then.
template <typename Work, typename Hurries, typename Take, typename Wait>
void workInOrder(size_t count, size_t threads, Work work, Hurries hurries, Take take, Wait wait) {
  if (threads == 1) return workAlone(count, std::move(work), std::move(take));
  using Result = decltype(work(size_t{}));
  const size_t window = 64 * threads;
  std::mutex mutex;
  std::condition_variable isReady;
  std::condition_variable hasRoom;
  std::vector<std::optional<Result>> done(window);  // worked and not yet taken, each at its number modulo the window
  std::exception_ptr failure;
  size_t started = 0;
  size_t finished = 0;
  size_t taken = 0;
  size_t hurried = 0;  // of the finished that were not taken
  bool stopped = false;
  const auto isTurn = [&] { return taken < count && done[taken % window].has_value(); };
  const auto isWorthWaking = [&] {
    return stopped || (isTurn() && (hurried > 0 || finished == count || finished - taken >= window / 2));
  };

  const auto runWorker = [&] {
    std::unique_lock lock(mutex);
    while (true) {
      hasRoom.wait(lock, [&] { return stopped || started == count || started - taken < window; });
      if (stopped || started == count) return;
      const size_t number = started++;
      lock.unlock();
      try {
        Result result = work(number);
        lock.lock();
        hurried += hurries(result);
        done[number % window].emplace(std::move(result));
        ++finished;
      } catch (...) {
        if (!lock.owns_lock()) lock.lock();
        failure = std::current_exception();
        stopped = true;
      }
      if (isWorthWaking()) isReady.notify_one();
    }
  };
  std::vector<std::future<void>> workers;  // waits for them when it goes
  const OnExit stopWorkers([&] {
    const std::lock_guard guard(mutex);
    stopped = true;
    hasRoom.notify_all();
  });
  for (size_t i = 0; i < std::min(threads, count); ++i) workers.push_back(std::async(std::launch::async, runWorker));

  std::vector<Result> results;
  std::unique_lock lock(mutex);
  while (!stopped && taken < count) {
    if (!isReady.wait_for(lock, std::chrono::milliseconds(100), isWorthWaking) && !isTurn()) {
      wait();
      continue;
    }
    size_t number = taken;
    for (; isTurn(); ++taken) {
      hurried -= hurries(*done[taken % window]);
      results.push_back(std::move(*done[taken % window]));
      done[taken % window].reset();
    }
    hasRoom.notify_all();
    lock.unlock();
    for (Result& result : results) {
      if (!take(number++, result)) return;
    }
    results.clear();
    lock.lock();
  }
  if (failure) std::rethrow_exception(failure);
}

}  // namespace velan::tool

#endif  // VELAN_TOOLS_SEARCH_ORDERED_WORK_H
