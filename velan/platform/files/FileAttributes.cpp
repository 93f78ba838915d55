// Owner, permissions and extended attributes of one file for another. Linux keeps access lists as such attributes.
#include <sys/types.h>
#include <unistd.h>
#if __has_include(<sys/xattr.h>) && defined(__linux__)
#include <sys/xattr.h>
#define VELAN_EXTENDED_ATTRIBUTES 1
#endif

#include <cerrno>
#include <string>
#include <vector>

#include "velan/platform/files/FileCallsInternal.h"

namespace velan {
namespace {

#ifdef VELAN_EXTENDED_ATTRIBUTES

// What `get(buffer, size)` fills, whose size may change between asking and reading. False with `errno` set.
template <typename Get>
bool fetch(Get get, std::string& bytes) {
  for (int attempt = 0; attempt < 100; ++attempt) {
    const ssize_t size = get(nullptr, size_t{0});
    if (size < 0) return false;
    bytes.resize(static_cast<size_t>(size));
    if (size == 0) return true;
    const ssize_t got = get(bytes.data(), bytes.size());
    if (got >= 0) return bytes.resize(static_cast<size_t>(got)), true;
    if (errno != ERANGE) return false;
  }
  return false;
}

bool valueOf(int file, const char* name, std::string& value) {
  return fetch([&](char* buffer, size_t size) { return fgetxattr(file, name, buffer, size); }, value);
}

// The names, each with its zero. A volume without such attributes has none.
bool namesOf(int file, std::string& names) {
  if (fetch([&](char* buffer, size_t size) { return flistxattr(file, buffer, size); }, names)) return true;
  names.clear();
  return errno == ENOTSUP || errno == ENOSYS;
}

template <typename Handle>
bool forEachName(const std::string& names, Handle handle) {
  for (size_t at = 0; at < names.size(); at += std::char_traits<char>::length(names.data() + at) + 1) {
    if (!handle(names.data() + at)) return false;
  }
  return true;
}

bool copyExtendedAttributes(int from, int to) {
  std::string names, there;
  if (!namesOf(from, names) || !namesOf(to, there)) return false;
  std::string value, present;
  const bool removed = forEachName(there, [&](const char* name) {
    return valueOf(from, name, value) || (errno == ENODATA && fremovexattr(to, name) == 0);
  });
  return removed && forEachName(names, [&](const char* name) {
           if (!valueOf(from, name, value)) return false;
           return (valueOf(to, name, present) && present == value) ||
                  fsetxattr(to, name, value.data(), value.size(), 0) == 0;
         });
}

#else

bool copyExtendedAttributes(int, int) { return true; }

#endif

}  // namespace

// The permissions last: changing the owner and the access list changes them.
int FileCalls::copyAttributes(int from, int to) {
  struct stat wanted {};
  struct stat present {};
  if (fstat(from, &wanted) != 0 || fstat(to, &present) != 0) return -1;
  const bool sameOwner = wanted.st_uid == present.st_uid && wanted.st_gid == present.st_gid;
  if (!sameOwner && fchown(to, wanted.st_uid, wanted.st_gid) != 0) return -1;
  if (!copyExtendedAttributes(from, to)) return -1;
  return fchmod(to, wanted.st_mode & 07777);
}

}  // namespace velan
