#include "tools/Progress.h"

#include <unistd.h>

#include <cstdio>

namespace velan::tool {

Progress::Progress(size_t total)
    : _total(total), _enabled(isatty(STDERR_FILENO) == 1), _due(Clock::now() + std::chrono::seconds(1)) {}

void Progress::show(size_t done) {
  if (!_enabled || Clock::now() < _due) return;
  std::fprintf(stderr, "\rvelan: %zu of %zu files\x1b[K", done, _total);
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
