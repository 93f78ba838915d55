#include "velan/base/Log.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <memory>
#include <mutex>
#include <new>
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

// Line ends as "\n" and "\r"; without memory, what stands before the first one.
std::string_view asOneLine(std::string_view message, std::string& storage) {
  try {
    for (const char c : message) storage += c == '\n' ? "\\n" : c == '\r' ? "\\r" : std::string_view(&c, 1);
    return storage;
  } catch (const std::bad_alloc&) {
    return message.substr(0, message.find_first_of("\r\n"));
  }
}

}  // namespace

void setLogSink(LogSink sink, void* context) {
  const std::lock_guard lock(destinationLock);
  destination = sink ? Destination{sink, context} : Destination{writeToStandardError, nullptr};
}

void logMessage(std::string_view message) {
  std::string escaped;
  if (message.find_first_of("\r\n") != std::string_view::npos) message = asOneLine(message, escaped);
  Destination current{};
  {
    const std::lock_guard lock(destinationLock);
    current = destination;
  }
  current.sink(message, current.context);
}

// What does not fit the stack goes to the heap; where that is exhausted, it is cut.
void logFormat(const char* format, ...) {
  char brief[512];
  va_list arguments;
  va_start(arguments, format);
  va_list copy;
  va_copy(copy, arguments);
  const int length = std::vsnprintf(brief, sizeof brief, format, copy);
  va_end(copy);
  if (length >= 0) {
    const size_t size = static_cast<size_t>(length) + 1;
    const std::unique_ptr<char[]> whole(size > sizeof brief ? new (std::nothrow) char[size] : nullptr);
    if (whole) std::vsnprintf(whole.get(), size, format, arguments);
    logMessage(whole ? std::string_view(whole.get(), size - 1)
                     : std::string_view(brief, std::min(size, sizeof brief) - 1));
  }
  va_end(arguments);
}

void logFailedAssertion(const char* file, unsigned line, const char* condition) {
  logFormat("%s:%u: Failed debug assertion `%s'", file, line, condition);
}

}  // namespace velan
