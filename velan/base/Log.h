// Messages of the library: one line each, to a replaceable sink.
#ifndef VELAN_BASE_LOG_H
#define VELAN_BASE_LOG_H

#include <string_view>

#include "velan/base/CTypes.h"

namespace velan {

/// Receives one message without its line feed. Called from whatever thread logs, possibly from several at once.
using LogSink = void (*)(std::string_view message, void* context);

/// Sends all later messages to `sink`, which gets `context` with each; null restores the default, standard error.
/// May be called at any time; a message being logged on another thread may still reach the previous sink.
VELAN_EXPORT void setLogSink(LogSink sink, void* context);

/// Logs `message` as one line: line feeds and carriage returns in it are written as `\n` and `\r`. Messages of the
/// library begin with "ERROR: " or "WARNING: ".
VELAN_EXPORT void logMessage(std::string_view message);

/// Formats like `printf` (without the influence of a locale on the texts and integers that the library logs).
VELAN_EXPORT void logFormat(const char* format, ...) __attribute__((format(printf, 1, 2)));

/// Prints "file:line: Failed debug assertion `condition'" and goes on: for conditions that callers should have met but
/// that are survivable.
VELAN_EXPORT void logFailedAssertion(const char* file, unsigned line, const char* condition);

}  // namespace velan

/// Checks `condition`, reports a failure under its text, and carries on.
#define VELAN_DEBUG_ASSERT(condition, text) \
  ((condition) ? static_cast<void>(0) : ::velan::logFailedAssertion(__FILE__, __LINE__, text))

#endif  // VELAN_BASE_LOG_H
