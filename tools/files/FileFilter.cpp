#include "tools/files/FileFilter.h"

#include <unistd.h>

#include <algorithm>

#include "tools/files/FileTypes.h"

namespace velan::tool {
namespace {

PathPatterns patternsOf(const std::vector<std::string>& globs) {
  PathPatterns patterns;
  for (const std::string& glob : globs) patterns.add(glob);
  return patterns;
}

PathPatterns patternsOfTypes(const std::vector<std::string>& names) {
  PathPatterns patterns;
  for (const std::string& name : names) {
    std::string_view rest = fileTypeCalled(name)->patterns;
    while (!rest.empty()) {
      const size_t end = std::min(rest.find(' '), rest.size());
      patterns.add(rest.substr(0, end));
      rest.remove_prefix(std::min(end + 1, rest.size()));
    }
  }
  return patterns;
}

}  // namespace

FileFilter::FileFilter(const FileSelection& selection)
    : _globs(patternsOf(selection.globs)),
      _hasPositiveGlobs(_globs.hasPositive()),
      _types(patternsOfTypes(selection.types)),
      _maxSize(selection.maxSize) {
  struct stat output {};
  if (fstat(STDOUT_FILENO, &output) == 0 && S_ISREG(output.st_mode)) _output = output;
}

bool FileFilter::wants(std::string_view path, bool isFolder) const {
  const bool isTaken = _globs.isEmpty() || _globs.decide(path, isFolder).value_or(isFolder || !_hasPositiveGlobs);
  return isTaken && (isFolder || _types.isEmpty() || _types.decide(path, false).value_or(false));
}

bool FileFilter::wantsSizeOf(const std::string& path) const {
  struct stat information {};
  return _maxSize == UINT64_MAX || stat(path.c_str(), &information) != 0 ||
         static_cast<uint64_t>(information.st_size) <= _maxSize;
}

bool FileFilter::isOutput(const std::string& path, ino_t inode) const {
  if (!_output || (inode != 0 && inode != _output->st_ino)) return false;
  struct stat information {};
  return stat(path.c_str(), &information) == 0 && information.st_ino == _output->st_ino &&
         information.st_dev == _output->st_dev;
}

}  // namespace velan::tool
