#include "velan/base/Log.h"

#include <cstdarg>
#include <cstdio>
#include <mutex>
#include <string>

namespace velan {
namespace {

struct Destination {
  LogSink sink;
  void* context;
};

void writeToStandardError(std::string_view message, void*) {
  std::fprintf(stderr, "%.*s\n", static_cast<int>(message.size()), message.data());
}

// Sink and context change together, hence a lock; logging is no hot path.
std::mutex destinationLock;
Destination destination{writeToStandardError, nullptr};

}  // namespace

void setLogSink(LogSink sink, void* context) {
  const std::lock_guard lock(destinationLock);
  destination = sink ? Destination{sink, context} : Destination{writeToStandardError, nullptr};
}

void logMessage(std::string_view message) {
  Destination current{};
  {
    const std::lock_guard lock(destinationLock);
    current = destination;
  }
  current.sink(message, current.context);
}

void logFormat(const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  va_list copy;
  va_copy(copy, arguments);
  const int length = std::vsnprintf(nullptr, 0, format, copy);
  va_end(copy);
  if (length >= 0) {
    std::string message(static_cast<size_t>(length) + 1, '\0');
    std::vsnprintf(message.data(), message.size(), format, arguments);
    message.pop_back();
    logMessage(message);
  }
  va_end(arguments);
}

void logFailedAssertion(const char* file, unsigned line, const char* condition) {
  logFormat("%s:%u: Failed debug assertion `%s'", file, line, condition);
}

}  // namespace velan
