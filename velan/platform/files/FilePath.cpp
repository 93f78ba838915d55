#include "velan/base/utf/UTF.h"
#include "velan/platform/files/FilePathInternal.h"

namespace velan {

std::optional<std::string> fileSystemPath(const String& path, FileError& error) {
  if (path.isEmpty()) {
    // Absent is what bytes become that are no UTF-8.
    error = path.isAbsent() ? FileReason::NameNotText : FileReason::NoName;
    return std::nullopt;
  }
  auto name = utf8FromUTF16(path.view());
  if (name && name->find('\0') == std::string::npos) return name;
  error = name ? FileReason::NameHoldsNull : FileReason::NameNotText;
  return std::nullopt;
}

std::string folderOf(const std::string& path) {
  const size_t end = path.find_last_not_of('/');
  const size_t slash = end == std::string::npos ? end : path.rfind('/', end);
  if (slash == std::string::npos) return path.empty() || path.front() != '/' ? "." : "/";
  const size_t last = path.find_last_not_of('/', slash);
  return last == std::string::npos ? "/" : path.substr(0, last + 1);
}

}  // namespace velan
