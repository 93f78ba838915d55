#include "benchmarks/RealTexts.h"

#include <zlib.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <vector>

#include "velan/base/String.h"

namespace velan {
namespace {

namespace fs = std::filesystem;

constexpr size_t kMost = size_t{4} << 20;  // units of a text, before it begins anew

constexpr size_t kSkipped = 4096;

struct Source {
  const char* name;
  std::vector<const char*> folders;
  const char* beginning;  // of the names of files
  const char* packages;   // that install it
  size_t skipped;         // units of heads and dates
};

const Source kSources[] = {
    {"licence", {"usr/share/common-licenses"}, "GPL-3", "base-files", 0},
    {"manual", {"usr/share/man/man1", "usr/share/man/man5", "usr/share/man/man7"}, "", "manpages", kSkipped},
    {"changelog", {"usr/share/doc"}, "changelog", "git", kSkipped},
    {"manual-de", {"usr/share/man/de"}, "", "manpages-de", kSkipped},
    {"manual-ru", {"usr/share/man/ru"}, "", "manpages-ru", kSkipped},
    {"manual-ja", {"usr/share/man/ja"}, "", "manpages-ja", kSkipped},
};

std::vector<std::string> roots() {
  const char* first = std::getenv("VELAN_BENCHMARK_TEXTS");
  return first ? std::vector<std::string>{first, "/"} : std::vector<std::string>{"/"};
}

// The largest first, so that few are read.
std::vector<fs::path> filesOf(const fs::path& root, const Source& source) {
  std::vector<std::pair<uintmax_t, fs::path>> files;
  std::error_code error;
  for (const char* folder : source.folders) {
    for (fs::recursive_directory_iterator at(root / folder, error), end; !error && at != end; at.increment(error)) {
      const bool isWanted = at->path().filename().string().starts_with(source.beginning);
      if (isWanted && at->symlink_status().type() == fs::file_type::regular) {
        files.emplace_back(at->file_size(), at->path());
      }
    }
  }
  std::ranges::sort(files, std::greater());
  std::vector<fs::path> paths;
  for (auto& [size, path] : files) paths.push_back(std::move(path));
  return paths;
}

// Nothing if it is not UTF-8.
String unpacked(const fs::path& path) {
  const std::unique_ptr<gzFile_s, decltype(&gzclose)> file(gzopen(path.c_str(), "rb"), gzclose);
  std::string bytes;
  char buffer[1 << 14];
  for (int count = 1; file && count > 0;) {
    count = gzread(file.get(), buffer, sizeof buffer);
    if (count > 0) bytes.append(buffer, static_cast<size_t>(count));
  }
  return String::fromUTF8(bytes);
}

std::u16string readSource(const Source& source) {
  for (const std::string& root : roots()) {
    std::u16string text;
    for (const fs::path& path : filesOf(root, source)) {
      text += unpacked(path).view();
      if (text.size() >= kMost + source.skipped) break;
    }
    if (text.size() > 2 * source.skipped) return text.substr(source.skipped, kMost);
  }
  std::fprintf(stderr, "No text \"%s\": it comes with %s, or below VELAN_BENCHMARK_TEXTS\n", source.name,
               source.packages);
  return {};
}

}  // namespace

std::u16string realText(std::string_view name, size_t length) {
  static std::map<std::string_view, std::u16string> texts;
  const auto source = std::ranges::find(kSources, name, &Source::name);
  if (source == std::end(kSources)) return {};
  const auto [kept, isNew] = texts.try_emplace(source->name);
  if (isNew) kept->second = readSource(*source);
  std::u16string text = kept->second.substr(0, length);
  while (!text.empty() && text.size() < length) text.append(kept->second, 0, length - text.size());
  return text;
}

}  // namespace velan
