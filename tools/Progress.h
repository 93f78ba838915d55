// A line on a terminal that tells how far a long scan has come.
#ifndef VELAN_TOOLS_PROGRESS_H
#define VELAN_TOOLS_PROGRESS_H

#include <chrono>
#include <cstddef>

namespace velan::tool {

/// Shows on standard error, if that is a terminal, and only after a second.
class Progress {
 public:
  explicit Progress(size_t total);
  ~Progress() { hide(); }
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  /// Writes "velan: 123 of 4567 files" over what was shown before, at most ten times a second.
  void show(size_t done);
  /// Makes room for other output.
  void hide();

 private:
  using Clock = std::chrono::steady_clock;

  const size_t _total;
  const bool _enabled;
  bool _shown = false;
  Clock::time_point _due;  // when to show it next
};

}  // namespace velan::tool

#endif  // VELAN_TOOLS_PROGRESS_H
