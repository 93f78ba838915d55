// A line on a terminal that tells how far a long operation has come.
#ifndef VELAN_TOOLS_PROGRESS_H
#define VELAN_TOOLS_PROGRESS_H

#include <chrono>
#include <cstdint>

namespace velan::tool {

/// Shows on standard error, if that is a terminal, and only after a second.
class Progress {
 public:
  /// `action` and `unit` are words such as "searching" and "files".
  Progress(const char* action, const char* unit);
  ~Progress() { hide(); }
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  /// Writes "velan: searching, 123 of 4567 files" over what was shown before, at most ten times a second.
  void show(int64_t done, int64_t total);
  /// Makes room for other output.
  void hide();

 private:
  using Clock = std::chrono::steady_clock;

  const char* const _action;
  const char* const _unit;
  const bool _enabled;
  bool _shown = false;
  Clock::time_point _due;  // when to show it next
};

}  // namespace velan::tool

#endif  // VELAN_TOOLS_PROGRESS_H
