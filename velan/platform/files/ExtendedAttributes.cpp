#include "velan/platform/files/ExtendedAttributes.h"

#if __has_include(<sys/xattr.h>)
#include <sys/xattr.h>
#define VELAN_EXTENDED_ATTRIBUTES 1
#endif
#include <sys/types.h>

#include <cerrno>

#include "velan/platform/files/FilePathInternal.h"

namespace velan {
namespace {

#if defined(VELAN_EXTENDED_ATTRIBUTES) && defined(__APPLE__)
ssize_t get(const char* path, const char* name, void* value, size_t size) {
  return getxattr(path, name, value, size, 0, 0);
}
int set(const char* path, const char* name, const void* value, size_t size) {
  return setxattr(path, name, value, size, 0, 0);
}
int remove(const char* path, const char* name) { return removexattr(path, name, 0); }
ssize_t sizeOfNames(const char* path) { return listxattr(path, nullptr, 0, 0); }
ssize_t sizeOfNames(int descriptor) { return flistxattr(descriptor, nullptr, 0, 0); }
constexpr int kNone = ENOATTR;
#elif defined(VELAN_EXTENDED_ATTRIBUTES)
ssize_t get(const char* path, const char* name, void* value, size_t size) { return getxattr(path, name, value, size); }
int set(const char* path, const char* name, const void* value, size_t size) {
  return setxattr(path, name, value, size, 0);
}
int remove(const char* path, const char* name) { return removexattr(path, name); }
ssize_t sizeOfNames(const char* path) { return listxattr(path, nullptr, 0); }
ssize_t sizeOfNames(int descriptor) { return flistxattr(descriptor, nullptr, 0); }
constexpr int kNone = ENODATA;
#else
int refused() {
  errno = ENOTSUP;
  return -1;
}
ssize_t get(const char*, const char*, void*, size_t) { return refused(); }
int set(const char*, const char*, const void*, size_t) { return refused(); }
int remove(const char*, const char*) { return refused(); }
ssize_t sizeOfNames(const char*) { return refused(); }
ssize_t sizeOfNames(int) { return refused(); }
constexpr int kNone = ENOTSUP;
#endif

}  // namespace

std::optional<std::string> extendedAttribute(const String& path, const char* name) {
  FileError error;
  const auto file = fileSystemPath(path, error);
  constexpr int kMostAttempts = 10;  // another process may change it between the two questions
  for (int i = 0; file && i < kMostAttempts; ++i) {
    const ssize_t size = get(file->c_str(), name, nullptr, 0);
    if (size < 0) break;
    std::string value(static_cast<size_t>(size), '\0');
    const ssize_t got = get(file->c_str(), name, value.data(), value.size());
    if (got >= 0 && got <= size) return value.substr(0, static_cast<size_t>(got));
  }
  return std::nullopt;
}

bool hasExtendedAttributes(const String& path) {
  FileError error;
  const auto file = fileSystemPath(path, error);
  return file && sizeOfNames(file->c_str()) > 0;
}

bool hasExtendedAttributesOfDescriptor(int descriptor) { return sizeOfNames(descriptor) > 0; }

bool setExtendedAttribute(const String& path, const char* name, std::string_view value) {
  FileError error;
  const auto file = fileSystemPath(path, error);
  return file && set(file->c_str(), name, value.data(), value.size()) == 0;
}

bool removeExtendedAttribute(const String& path, const char* name) {
  FileError error;
  const auto file = fileSystemPath(path, error);
  return file && (remove(file->c_str(), name) == 0 || errno == kNone || errno == ENOTSUP);
}

}  // namespace velan
