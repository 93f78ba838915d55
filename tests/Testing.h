// What every test stands on: the framework, tables of cases, texts by chance, buffers of exact sizes, a quiet log.
#ifndef VELAN_TESTS_TESTING_H
#define VELAN_TESTS_TESTING_H

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <random>
#include <string>
#include <string_view>
#include <thread>
#include <tuple>
#include <vector>

#include "tests/FailingAllocation.h"
#include "velan/base/Log.h"
#include "velan/base/String.h"

namespace velan {

/// A table: each row a tuple, whose columns are named by the loop over it.
///
///     const Cases<const char*, String, bool> cases = {
///         {"a reason to be there", u"input", true},
///     };
///     for (const auto& [why, text, expected] : cases) EXPECT_EQ(operation(text), expected) << why;
template <typename... Columns>
using Cases = std::vector<std::tuple<Columns...>>;

/// Each use has a seed of its own, so that a failure can be repeated.
class Chance : public std::mt19937 {
 public:
  using std::mt19937::mt19937;

  size_t below(size_t bound) { return (*this)() % bound; }

  /// One of an array, a list or the units of a text.
  template <typename List>
  auto oneOf(const List& list) {
    return list[below(std::size(list))];
  }

  /// As many units of `units`, or as many of several pieces of text, one behind the other.
  std::u16string text(size_t count, std::u16string_view units) {
    std::u16string result(count, u'\0');
    for (unichar& unit : result) unit = oneOf(units);
    return result;
  }
  template <size_t kCount>
  std::u16string text(size_t count, const std::u16string_view (&pieces)[kCount], size_t kinds = kCount) {
    std::u16string result;
    while (count-- > 0) result += pieces[below(kinds)];
    return result;
  }
};

/// A copy on the heap, exactly as long: the address sanitizer sees what lies beyond it.
template <typename Unit>
std::unique_ptr<Unit[]> exactCopy(std::basic_string_view<Unit> units) {
  auto copy = std::make_unique<Unit[]>(units.size());
  std::ranges::copy(units, copy.get());
  return copy;
}

/// `part` so many times, then `end`.
inline std::u16string repeated(std::u16string_view part, size_t times, std::u16string_view end = {}) {
  std::u16string text;
  while (times-- > 0) text += part;
  return text += end;
}

template <typename Body>
void inThreads(int count, Body body) {
  std::vector<std::thread> threads;
  for (int i = 0; i < count; ++i) threads.emplace_back(body, i);
  for (std::thread& thread : threads) thread.join();
}

/// Keeps the log quiet and its messages.
class CapturedLog {
 public:
  CapturedLog() {
    setLogSink([](std::string_view line, void* context) { static_cast<CapturedLog*>(context)->add(line); }, this);
  }
  ~CapturedLog() { setLogSink(nullptr, nullptr); }
  CapturedLog(const CapturedLog&) = delete;
  CapturedLog& operator=(const CapturedLog&) = delete;

  std::vector<std::string> messages;

 private:
  void add(std::string_view message) {
    const SparedAllocations spared;
    if (messages.size() < 100) messages.emplace_back(message);
  }
};

}  // namespace velan

#endif  // VELAN_TESTS_TESTING_H
