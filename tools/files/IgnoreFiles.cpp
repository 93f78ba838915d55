#include "tools/files/IgnoreFiles.h"

#include <filesystem>
#include <system_error>
#include <utility>
#include <vector>

#include "tools/Console.h"
#include "tools/files/FileReading.h"
#include "tools/files/FileWalk.h"

namespace velan::tool {
namespace {

namespace fs = std::filesystem;

PathPatterns patternsIn(const std::string& folder, std::string_view name) {
  const std::string path = joinedPath(folder, name);
  std::string why;
  const auto contents = readFile(path, why);
  if (!contents) complain(path + ": " + why);
  return contents ? PathPatterns(*contents) : PathPatterns();
}

bool isThere(const fs::path& path) {
  std::error_code unknown;
  return fs::exists(path, unknown);
}

}  // namespace

IgnoreFiles::IgnoreFiles(std::shared_ptr<const IgnoreFiles> above, const std::string& path, bool hasVersionControlFile,
                         bool hasIgnoreFile, bool isRepository)
    : _above(std::move(above)), _cut(joinedPath(path, "").size()), _isRepository(isRepository) {
  if (hasVersionControlFile) _versionControl = patternsIn(path, kVersionControlIgnoreFile);
  if (hasIgnoreFile) _own = patternsIn(path, kIgnoreFile);
}

std::shared_ptr<const IgnoreFiles> IgnoreFiles::above(const std::string& path) {
  std::error_code error;
  const fs::path folder = fs::canonical(path.empty() ? "." : path, error);
  std::vector<fs::path> folders;  // from the inside out
  bool isRepository = error || isThere(folder / kRepository);
  for (fs::path each = folder; !isRepository && each.has_relative_path();) {
    each = each.parent_path();
    folders.push_back(each);
    isRepository = isThere(each / kRepository);
  }
  if (!isRepository) return nullptr;
  std::shared_ptr<IgnoreFiles> files;
  for (auto each = folders.rbegin(); each != folders.rend(); ++each) {
    files = std::make_shared<IgnoreFiles>(files, each->string(), isThere(*each / kVersionControlIgnoreFile),
                                          isThere(*each / kIgnoreFile), each == folders.rbegin());
    files->_lead = folder.lexically_relative(*each).string() + '/';
    files->_cut = joinedPath(path, "").size();
  }
  return files;
}

std::optional<bool> IgnoreFiles::decide(PathPatterns IgnoreFiles::*patterns, std::string_view entry,
                                        bool isFolder) const {
  for (const IgnoreFiles* each = this; each; each = each->_above.get()) {
    const PathPatterns& found = each->*patterns;
    if (!found.isEmpty()) {
      if (const auto decision = found.decide(each->relative(entry), isFolder)) return decision;
    }
    if (each->_isRepository && patterns == &IgnoreFiles::_versionControl) break;
  }
  return std::nullopt;
}

bool IgnoreFiles::ignores(std::string_view entry, bool isFolder) const {
  if (const auto decision = decide(&IgnoreFiles::_own, entry, isFolder)) return *decision;
  return decide(&IgnoreFiles::_versionControl, entry, isFolder).value_or(false);
}

}  // namespace velan::tool
