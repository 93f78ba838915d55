#include "tools/Progress.h"

#include <unistd.h>

#include <cinttypes>
#include <cstdio>

namespace velan::tool {

Progress::Progress(const char* action, const char* unit)
    : _action(action),
      _unit(unit),
      _enabled(isatty(STDERR_FILENO) == 1),
      _due(Clock::now() + std::chrono::seconds(1)) {}

void Progress::show(int64_t done, int64_t total) {
  if (!_enabled || Clock::now() < _due) return;
  std::fprintf(stderr, "\rvelan: %s, %" PRId64 " of %" PRId64 " %s\x1b[K", _action, done, total, _unit);
  std::fflush(stderr);
  _shown = true;
  _due = Clock::now() + std::chrono::milliseconds(100);
}

void Progress::hide() {
  if (!_shown) return;
  std::fputs("\r\x1b[K", stderr);
  std::fflush(stderr);
  _shown = false;
}

}  // namespace velan::tool
