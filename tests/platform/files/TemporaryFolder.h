// A folder that lives as long as a test.
#ifndef VELAN_TESTS_PLATFORM_FILES_TEMPORARY_FOLDER_H
#define VELAN_TESTS_PLATFORM_FILES_TEMPORARY_FOLDER_H

#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "velan/base/String.h"

namespace velan {

inline std::string contentsOf(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

class TemporaryFolder {
 public:
  TemporaryFolder() {
    char name[] = "/tmp/velan-files-XXXXXX";
    _path = mkdtemp(name);
  }
  ~TemporaryFolder() { std::filesystem::remove_all(_path); }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  std::string operator/(const std::string& name) const { return _path + "/" + name; }
  String path(const std::string& name) const { return String::fromUTF8(*this / name); }
  void write(const std::string& name, const std::string& bytes) const {
    std::ofstream(*this / name, std::ios::binary) << bytes;
  }
  std::string read(const std::string& name) const { return contentsOf(*this / name); }
  size_t count() const { return static_cast<size_t>(std::distance(std::filesystem::directory_iterator(_path), {})); }

 private:
  std::string _path;
};

}  // namespace velan

#endif  // VELAN_TESTS_PLATFORM_FILES_TEMPORARY_FOLDER_H
