#include "tools/Console.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <memory>

#include "tools/Commands.h"

namespace velan::tool {
namespace {

int outputError = 0;  // the first one of standard output

bool checkOutput(bool success) {
  if (!success && outputError == 0) outputError = errno;
  return outputError == 0;
}

// What the file at `path` has, or what a new one gets.
mode_t permissionsOf(const std::string& path) {
  struct stat information {};
  if (stat(path.c_str(), &information) == 0) return information.st_mode & 07777;
  const mode_t mask = umask(0);
  umask(mask);
  return 0666 & ~mask;
}

bool writeAll(int file, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t count = write(file, bytes.data(), bytes.size());
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return false;
    bytes.remove_prefix(static_cast<size_t>(count));
  }
  return fsync(file) == 0;
}

void synchronizeFolder(const std::filesystem::path& folder) {
  const int file = open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_CLOEXEC);
  if (file < 0) return;
  fsync(file);
  close(file);
}

}  // namespace

void complain(std::string_view message) {
  std::fprintf(stderr, "velan: %.*s\n", static_cast<int>(message.size()), message.data());
}

bool print(std::string_view text) {
  return checkOutput(std::fwrite(text.data(), 1, text.size(), stdout) == text.size());
}

bool printNow(std::string_view text) { return print(text) && checkOutput(std::fflush(stdout) == 0); }

int finishOutput(int status) {
  errno = EIO;
  if (checkOutput(std::fflush(stdout) == 0 && !std::ferror(stdout)) || outputError == EPIPE) return status;
  complain(std::string("standard output: ") + std::strerror(outputError));
  return kTrouble;
}

std::optional<std::string> readFile(const std::string& path, std::string& why) {
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

bool replaceFile(const std::string& path, std::string_view bytes, std::string& why) {
  if (path == "-") {
    why = "standard input has no file to write to";
    return false;
  }
  std::error_code error;
  const auto resolved = std::filesystem::canonical(path, error);
  const std::string target = error ? path : resolved.string();
  std::string temporary = target + ".XXXXXX";
  const int file = mkstemp(temporary.data());
  if (file < 0) {
    why = std::strerror(errno);
    return false;
  }
  const bool written = fchmod(file, permissionsOf(target)) == 0 && writeAll(file, bytes);
  const bool done = close(file) == 0 && written && std::rename(temporary.c_str(), target.c_str()) == 0;
  if (!done) {
    why = std::strerror(errno);
    std::remove(temporary.c_str());
    return false;
  }
  synchronizeFolder(std::filesystem::path(target).parent_path());
  return true;
}

}  // namespace velan::tool
