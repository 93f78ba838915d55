#include "tools/documents/FileWalk.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <system_error>
#include <utility>

namespace velan::tool {
namespace {

namespace fs = std::filesystem;

struct Entry {
  std::string path;
  bool isFolder;
};

std::string joined(const std::string& folder, const std::string& name) {
  return folder.empty() || folder.ends_with('/') ? folder + name : folder + '/' + name;
}

class FolderWalk {
 public:
  FolderWalk(std::vector<InputFile>& files, bool hidden) : _files(files), _hidden(hidden) {}

  // An empty path is the current folder, whose files go by their names alone.
  void walk(const std::string& path) {
    _pending.push_back({path, true});
    while (!_pending.empty()) {
      const Entry entry = std::move(_pending.back());
      _pending.pop_back();
      if (entry.isFolder) {
        addEntries(entry.path);
      } else {
        _files.push_back({entry.path, false, ""});
      }
    }
  }

 private:
  // What comes first goes on top of the stack.
  void addEntries(const std::string& folder) {
    std::error_code error;
    const size_t known = _pending.size();
    fs::directory_iterator each(folder.empty() ? "." : folder, error);
    for (; !error && each != fs::directory_iterator(); each.increment(error)) {
      const std::string name = each->path().filename().string();
      if (!_hidden && name.starts_with('.')) continue;
      std::error_code unknown;
      const fs::file_type type = each->symlink_status(unknown).type();
      if (type == fs::file_type::directory || type == fs::file_type::regular) {
        _pending.push_back({joined(folder, name), type == fs::file_type::directory});
      }
    }
    if (error) _files.push_back({folder.empty() ? "." : folder, false, error.message()});
    std::sort(_pending.begin() + static_cast<std::ptrdiff_t>(known), _pending.end(),
              [](const Entry& a, const Entry& b) { return a.path > b.path; });
  }

  std::vector<InputFile>& _files;
  const bool _hidden;
  std::vector<Entry> _pending;
};

bool standardInputHasData() {
  struct stat information {};
  return fstat(STDIN_FILENO, &information) == 0 &&
         (S_ISREG(information.st_mode) || S_ISFIFO(information.st_mode) || S_ISSOCK(information.st_mode));
}

}  // namespace

std::vector<InputFile> collectFiles(const std::vector<std::string>& paths, bool hidden) {
  std::vector<InputFile> files;
  FolderWalk walk(files, hidden);
  if (paths.empty() && !standardInputHasData()) walk.walk("");
  if (paths.empty() && standardInputHasData()) files.push_back({"-", true, ""});
  for (const std::string& path : paths) {
    std::error_code error;
    if (path != "-" && fs::is_directory(path, error)) {
      walk.walk(path);
    } else {
      files.push_back({path, true, ""});
    }
  }
  return files;
}

void sortByPath(std::vector<InputFile>& files) {
  std::stable_sort(files.begin(), files.end(), [](const auto& a, const auto& b) { return a.path < b.path; });
}

void sortByModification(std::vector<InputFile>& files) {
  std::vector<std::pair<fs::file_time_type, InputFile>> timed;
  for (InputFile& file : files) {
    std::error_code unknown;
    const fs::file_time_type time = fs::last_write_time(file.path, unknown);
    timed.emplace_back(unknown ? fs::file_time_type::min() : time, std::move(file));
  }
  std::stable_sort(timed.begin(), timed.end(), [](const auto& a, const auto& b) { return a.first > b.first; });
  for (size_t i = 0; i < files.size(); ++i) files[i] = std::move(timed[i].second);
}

std::string displayName(const std::string& path) { return path == "-" ? "(standard input)" : path; }

}  // namespace velan::tool
