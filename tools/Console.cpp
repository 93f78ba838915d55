#include "tools/Console.h"

#include <sys/stat.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>

namespace velan::tool {

void complain(std::string_view message) {
  std::fprintf(stderr, "velan: %.*s\n", static_cast<int>(message.size()), message.data());
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

}  // namespace velan::tool
