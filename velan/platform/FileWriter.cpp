#include "velan/platform/FileWriter.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <string>

#include "velan/base/UTF.h"

namespace velan {
namespace {

// Makes every missing folder on the way to the file; whether it worked shows when the file is opened.
void createFoldersOf(const std::string& path) {
  for (size_t slash = path.find('/', 1); slash != std::string::npos; slash = path.find('/', slash + 1)) {
    mkdir(path.substr(0, slash).c_str(), 0777);
  }
}

int openForWriting(const std::string& path) {
  int descriptor = -1;
  do {
    descriptor = open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666);
  } while (descriptor < 0 && errno == EINTR);
  return descriptor;
}

}  // namespace

std::unique_ptr<FileWriter> FileWriter::withPath(const String& path) {
  const auto name = path ? utf8FromUTF16(path.view()) : std::nullopt;
  if (!name || name->empty() || name->find('\0') != std::string::npos) return nullptr;
  int descriptor = openForWriting(*name);
  if (descriptor < 0 && errno == ENOENT) {
    createFoldersOf(*name);
    descriptor = openForWriting(*name);
  }
  if (descriptor < 0) return nullptr;
  std::unique_ptr<FileWriter> writer(new FileWriter(descriptor));
  return ftruncate(descriptor, 0) == 0 ? std::move(writer) : nullptr;
}

FileWriter::~FileWriter() { close(_descriptor); }

bool FileWriter::write(std::span<const uint8_t> bytes) {
  while (!bytes.empty()) {
    const ssize_t count = ::write(_descriptor, bytes.data(), bytes.size());
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return false;
    bytes = bytes.subspan(static_cast<size_t>(count));
  }
  return true;
}

bool FileWriter::synchronize() { return fsync(_descriptor) == 0; }

}  // namespace velan
