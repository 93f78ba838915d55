#include "tools/Console.h"

#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <memory>
#include <utility>

#include "tools/Commands.h"
#include "tools/files/FileReading.h"

namespace velan::tool {
namespace {

int outputError = 0;  // the first one of standard output

bool checkOutput(bool success) {
  if (!success && outputError == 0) outputError = errno;
  return outputError == 0;
}

}  // namespace

void complain(std::string_view message) {
  std::fprintf(stderr, "velan: %.*s\n", static_cast<int>(message.size()), message.data());
}

int trouble(std::string_view message) {
  complain(message);
  return Trouble;
}

std::string counted(uint64_t count, std::string_view unit) {
  return std::to_string(count) + ' ' + std::string(unit) + (count == 1 ? "" : "s");
}

bool print(std::string_view text) {
  return checkOutput(std::fwrite(text.data(), 1, text.size(), stdout) == text.size());
}

bool showPrinted() {
  using Clock = std::chrono::steady_clock;
  static const bool isTerminal = isatty(STDOUT_FILENO) == 1;
  static Clock::time_point due;
  if (!isTerminal) {
    const Clock::time_point now = Clock::now();
    if (now < due) return outputError == 0;
    due = now + std::chrono::milliseconds(50);
  }
  return checkOutput(std::fflush(stdout) == 0);
}

int finishOutput(int status) {
  errno = EIO;
  if (checkOutput(std::fflush(stdout) == 0 && !std::ferror(stdout)) || outputError == EPIPE) return status;
  complain(std::string("standard output: ") + std::strerror(outputError));
  return Trouble;
}

std::optional<std::string> readFileOrComplain(const std::string& path) {
  std::string why;
  auto bytes = readFile(path, why);
  if (!bytes) complain(path + ": " + why);
  return bytes;
}

Data readDataOrComplain(const std::string& path) {
  auto bytes = readFileOrComplain(path);
  if (!bytes) return Data();
  auto owner = std::make_shared<const std::string>(std::move(*bytes));
  const std::string_view view = *owner;
  return Data::withOwner(std::move(owner), view.data(), view.size());
}

int trouble(const std::string& path, const FileError& error) {
  return trouble(path + ": " + error.description().toUTF8());
}

}  // namespace velan::tool
