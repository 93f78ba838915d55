#include "tools/files/FolderWalk.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <string_view>
#include <utility>

namespace velan::tool {

void FolderWalk::walk(const std::string& path) {
  _cut = joinedPath(path, "").size();
  auto above = std::make_shared<Folder>();
  if (_selection.ignoreFiles) above->ignored = IgnoreFiles::above(path);
  _pending.push_back({path, true, 0, std::move(above)});
  while (!_pending.empty()) {
    const Entry entry = std::move(_pending.back());
    _pending.pop_back();
    entry.isFolder ? visitFolder(entry) : visitFile(entry);
  }
}

void FolderWalk::visitFile(const Entry& entry) {
  if (_filter.isOutput(entry.path, entry.inode) || !_filter.wantsSizeOf(entry.path)) return;
  _files.push_back({entry.path, false, ""});
}

// What comes first goes on top of the stack.
void FolderWalk::visitFolder(const Entry& entry) {
  auto folder = std::make_shared<Folder>();
  folder->above = entry.above;
  if (!isToBeEntered(entry, *folder)) return;
  std::vector<Entry> entries = list(entry.path);
  const auto holds = [&](std::string_view name) {
    const std::string path = joinedPath(entry.path, name);
    return std::any_of(entries.begin(), entries.end(), [&](const Entry& each) { return each.path == path; });
  };
  folder->ignored = entry.above->ignored;
  if (_selection.ignoreFiles) {
    const bool hasFile = holds(kVersionControlIgnoreFile);
    const bool hasOwnFile = holds(kIgnoreFile);
    const bool isRepository = holds(kRepository);
    if (hasFile || hasOwnFile || isRepository) {
      folder->ignored = std::make_shared<IgnoreFiles>(folder->ignored, entry.path, hasFile, hasOwnFile, isRepository);
    }
  }
  std::erase_if(entries, [&](Entry& each) {
    const size_t name = joinedPath(entry.path, "").size();
    each.above = folder;
    return (!_selection.hidden && each.path[name] == '.') ||
           !_filter.wants(std::string_view(each.path).substr(_cut), each.isFolder) ||
           (folder->ignored && folder->ignored->ignores(each.path, each.isFolder));
  });
  std::sort(entries.begin(), entries.end(), [](const Entry& a, const Entry& b) { return a.path > b.path; });
  std::move(entries.begin(), entries.end(), std::back_inserter(_pending));
}

std::vector<FolderWalk::Entry> FolderWalk::list(const std::string& folder) {
  std::vector<Entry> entries;
  const auto close = [](DIR* directory) { closedir(directory); };
  const std::unique_ptr<DIR, decltype(close)> directory(opendir(folder.empty() ? "." : folder.c_str()), close);
  errno = directory ? 0 : errno;
  while (const dirent* listed = directory ? readdir(directory.get()) : nullptr) {
    Entry entry;
    if (describe(folder, *listed, entry)) entries.push_back(std::move(entry));
    errno = 0;
  }
  if (errno != 0) addTrouble(folder, std::strerror(errno));
  return entries;
}

// False for what is left out whatever it is called.
bool FolderWalk::describe(const std::string& folder, const dirent& listed, Entry& entry) {
  const std::string_view name(listed.d_name);
  if (name == "." || name == "..") return false;
  entry = {joinedPath(folder, name), listed.d_type == DT_DIR, listed.d_ino, nullptr};
  if (listed.d_type == DT_DIR || listed.d_type == DT_REG) return true;
  if (listed.d_type != DT_UNKNOWN && (listed.d_type != DT_LNK || !_selection.follow)) return false;
  struct stat information {};
  const auto ask = _selection.follow ? stat : lstat;
  if (ask(entry.path.c_str(), &information) != 0) {
    if (_selection.hidden || !name.starts_with('.')) addTrouble(entry.path, std::strerror(errno));
    return false;
  }
  entry.isFolder = S_ISDIR(information.st_mode);
  entry.inode = information.st_ino;
  return entry.isFolder || S_ISREG(information.st_mode);
}

// Not a folder that it lies in itself, by way of a link, and none on another file system.
bool FolderWalk::isToBeEntered(const Entry& entry, Folder& folder) {
  if (!_selection.follow && !_selection.oneFileSystem) return true;
  struct stat information {};
  if (stat(entry.path.empty() ? "." : entry.path.c_str(), &information) != 0) return true;  // listing it will tell
  folder.device = information.st_dev;
  folder.inode = information.st_ino;
  const Folder* const above = entry.above.get();
  const bool isRoot = above->above == nullptr;
  if (_selection.oneFileSystem && !isRoot && above->device != folder.device) return false;
  for (const Folder* each = above; each->above; each = each->above.get()) {
    if (each->device != folder.device || each->inode != folder.inode) continue;
    addTrouble(entry.path, "the link leads to a folder that it lies in");
    return false;
  }
  return true;
}

void FolderWalk::addTrouble(const std::string& path, const std::string& why) {
  _files.push_back({path.empty() ? "." : path, false, why});
}

}  // namespace velan::tool
