#include "tools/files/FileWalk.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <system_error>
#include <utility>

#include "tools/Console.h"
#include "tools/files/FileFilter.h"
#include "tools/files/FileReading.h"
#include "tools/files/FolderWalk.h"

namespace velan::tool {
namespace {

namespace fs = std::filesystem;

bool standardInputHasData() {
  struct stat information {};
  return fstat(STDIN_FILENO, &information) == 0 &&
         (S_ISREG(information.st_mode) || S_ISFIFO(information.st_mode) || S_ISSOCK(information.st_mode));
}

class Collector {
 public:
  explicit Collector(const FileSelection& selection)
      : _selection(selection), _filter(selection), _walk(selection, _filter, _files) {}

  std::vector<InputFile> collect() {
    for (const std::string& path : _selection.paths) add(path, true);
    if (!_selection.list.empty()) {
      addList();
    } else if (_selection.paths.empty()) {
      standardInputHasData() ? add("-", true) : _walk.walk("");
    }
    return std::move(_files);
  }

 private:
  void add(const std::string& path, bool named) {
    std::error_code error;
    if (path != "-" && fs::is_directory(path, error)) {
      _walk.walk(path);
    } else if (_filter.isOutput(path, 0)) {
      if (named) _files.push_back({path, true, "it is where the output goes, and is not searched"});
    } else if (named || (_filter.wants(path, false) && _filter.wantsSizeOf(path))) {
      _files.push_back({path, named, ""});
    }
  }

  void addList() {
    std::string why;
    const auto contents = readFile(_selection.list, why);
    if (!contents) {
      _files.push_back({_selection.list, true, why});
      return;
    }
    const char separator = _selection.separatedByNul ? '\0' : '\n';
    for (size_t start = 0; start < contents->size();) {
      const size_t end = std::min(contents->find(separator, start), contents->size());
      if (end > start) add(contents->substr(start, end - start), false);
      start = end + 1;
    }
  }

  const FileSelection& _selection;
  const FileFilter _filter;
  std::vector<InputFile> _files;
  FolderWalk _walk;
};

}  // namespace

std::vector<InputFile> collectFiles(const FileSelection& selection) { return Collector(selection).collect(); }

std::string joinedPath(const std::string& folder, std::string_view name) {
  std::string path = folder;
  if (!folder.empty() && !folder.ends_with('/')) path += '/';
  return path.append(name);
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
