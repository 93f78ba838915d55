#include "velan/platform/files/FolderListing.h"

#include <algorithm>
#include <cstdlib>
#include <memory>

#include "velan/base/utf/UTF.h"
#include "velan/platform/files/FileCallsInternal.h"
#include "velan/platform/files/FileErrorInternal.h"
#include "velan/platform/files/FilePathInternal.h"

namespace velan {
namespace {

void appendName(std::string_view name, std::vector<String>& names) {
  std::u16string units(name.size(), u'\0');
  const Transcoded done = convertUTF8ToUTF16(name, units.data());
  if (done.consumed < name.size()) return;
  names.emplace_back(std::u16string_view(units).substr(0, done.written));
  if (names.back().isAbsent()) throw std::bad_alloc();
}

}  // namespace

std::optional<std::vector<String>> namesInFolder(const String& path, FileError* error) {
  FileError why;
  std::vector<String> names;
  const auto folder = fileSystemPath(path, why);
  if (folder) {
    const int result = fileCalls().list(folder->c_str(), [&](const char* name) { appendName(name, names); });
    if (result != 0) why = lastSystemError();
  }
  if (error) *error = why;
  if (why) return std::nullopt;
  std::sort(names.begin(), names.end());
  return names;
}

bool isRegularFile(const String& path) {
  FileError error;
  const auto name = fileSystemPath(path, error);
  struct stat status {};
  return name && fileCalls().statusOfPath(name->c_str(), true, status) == 0 && S_ISREG(status.st_mode);
}

String pathWithoutLinks(const String& path) {
  FileError error;
  const auto name = fileSystemPath(path, error);
  const std::unique_ptr<char, void (*)(void*)> resolved(name ? fileCalls().resolve(name->c_str()) : nullptr, std::free);
  return resolved ? String::fromUTF8(resolved.get()) : String();
}

}  // namespace velan
