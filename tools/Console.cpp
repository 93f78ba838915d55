#include "tools/Console.h"

#include <sys/stat.h>

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <mutex>
#include <utility>

#include "tools/Commands.h"

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

bool printNow(std::string_view text) { return print(text) && checkOutput(std::fflush(stdout) == 0); }

int finishOutput(int status) {
  errno = EIO;
  if (checkOutput(std::fflush(stdout) == 0 && !std::ferror(stdout)) || outputError == EPIPE) return status;
  complain(std::string("standard output: ") + std::strerror(outputError));
  return Trouble;
}

namespace {

std::optional<std::string> readOpenedFile(const std::string& path, std::string& why) {
  const auto close = [](FILE* file) {
    if (file != stdin) std::fclose(file);
  };
  const std::unique_ptr<FILE, decltype(close)> file(path == "-" ? stdin : std::fopen(path.c_str(), "rb"), close);
  struct stat information {};
  if (!file || fstat(fileno(file.get()), &information) != 0) {
    why = std::strerror(errno);
    return std::nullopt;
  }
  if (S_ISDIR(information.st_mode)) {
    why = "it is a folder";
    return std::nullopt;
  }
  std::string bytes;
  if (S_ISREG(information.st_mode)) bytes.reserve(static_cast<size_t>(information.st_size) + 1);
  char block[65536];
  size_t count = 0;
  while ((count = std::fread(block, 1, sizeof block, file.get())) > 0) bytes.append(block, count);
  if (std::ferror(file.get())) {
    why = std::strerror(errno);
    return std::nullopt;
  }
  return bytes;
}

// What standard input gave, for those who read it again; read by one at a time.
struct StandardInput {
  std::atomic<bool> isRemembered = false;
  std::mutex mutex;
  bool isRead = false;
  std::optional<std::string> bytes;
  std::string why;
};
StandardInput standardInput;

}  // namespace

void rememberStandardInput() { standardInput.isRemembered = true; }

std::optional<std::string> readFile(const std::string& path, std::string& why) {
  if (path != "-" || !standardInput.isRemembered) return readOpenedFile(path, why);
  const std::lock_guard lock(standardInput.mutex);
  if (!standardInput.isRead) standardInput.bytes = readOpenedFile(path, standardInput.why);
  standardInput.isRead = true;
  why = standardInput.why;
  return standardInput.bytes;
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
