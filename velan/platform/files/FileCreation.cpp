// Opening, creating and copying files by path.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <memory>

#include "velan/platform/files/File.h"
#include "velan/platform/files/FileCallsInternal.h"
#include "velan/platform/files/RetryInternal.h"

namespace velan {
namespace {

constexpr mode_t kFileMode = 0666;
constexpr mode_t kFolderMode = 0777;

int openRetried(const std::string& path, int flags) {
  return retried([&] { return fileCalls().open(path.c_str(), flags | O_CLOEXEC, kFileMode); });
}

std::string folderOf(const std::string& path) {
  const size_t end = path.find_last_not_of('/');
  const size_t slash = end == std::string::npos ? end : path.rfind('/', end);
  if (slash == std::string::npos) return path.empty() || path.front() != '/' ? "." : "/";
  const size_t last = path.find_last_not_of('/', slash);
  return last == std::string::npos ? "/" : path.substr(0, last + 1);
}

// A new name is only safe when its folder is written. File systems that cannot synchronise folders say EINVAL.
bool synchronizeFolder(const std::string& folder) {
  const int descriptor = openRetried(folder, O_RDONLY | O_DIRECTORY);
  if (descriptor < 0) return errno == EACCES;
  const bool done =
      retried([&] { return fileCalls().synchronize(descriptor); }) == 0 || errno == EINVAL || errno == ENOTSUP;
  fileCalls().close(descriptor);
  return done;
}

// From the outermost missing folder inwards, without recursion: a path may have thousands of components.
bool createFolders(const std::string& folder) {
  for (size_t end = 0; end != std::string::npos;) {
    end = folder.find('/', end + 1);
    const std::string outer = folder.substr(0, end);
    if (mkdir(outer.c_str(), kFolderMode) == 0) {
      if (!synchronizeFolder(folderOf(outer))) return false;
    } else if (errno != EEXIST && errno != EISDIR && errno != EROFS && errno != EACCES) {
      return false;
    }
  }
  return true;
}

bool copyContents(File& from, File& to) {
  uint8_t chunk[65536];
  for (int64_t got = 0; (got = from.read(chunk, sizeof chunk)) != 0;) {
    if (got < 0 || !to.write({{chunk, static_cast<size_t>(got)}}, 0)) return false;
  }
  return to.synchronize();
}

std::unique_ptr<File> opened(int descriptor, FileAccess access) {
  if (descriptor < 0) return nullptr;
  auto file = File::withDescriptor(descriptor, access);
  if (!file) fileCalls().close(descriptor);
  return file;
}

}  // namespace

int openFileDescriptor(const std::string& path, FileAccess access) {
  switch (access) {
    case FileAccess::Reading:
      return openRetried(path, O_RDONLY | O_NONBLOCK);
    case FileAccess::Updating:
      return openRetried(path, O_RDWR | O_NONBLOCK);
    case FileAccess::Appending:
      return openRetried(path, O_WRONLY | O_APPEND | O_CREAT | O_NONBLOCK);
  }
  return -1;
}

void closeFileDescriptor(int descriptor) { fileCalls().close(descriptor); }

bool createNewFile(const std::string& path) {
  constexpr int kNew = O_WRONLY | O_CREAT | O_EXCL;
  int descriptor = openRetried(path, kNew);
  if (descriptor < 0 && errno == ENOENT && createFolders(folderOf(path))) descriptor = openRetried(path, kNew);
  if (descriptor < 0) return false;
  fileCalls().close(descriptor);
  errno = 0;
  return synchronizeFolder(folderOf(path));
}

bool createFileIfMissing(const std::string& path) { return createNewFile(path) || errno == EEXIST; }

bool copyFile(const std::string& from, const std::string& to) {
  const auto source = opened(openFileDescriptor(from, FileAccess::Reading), FileAccess::Reading);
  if (!source) return false;
  const auto target = opened(openRetried(to, O_WRONLY | O_CREAT | O_EXCL), FileAccess::Appending);
  if (!target) return false;
  if (copyContents(*source, *target) && target->close() && synchronizeFolder(folderOf(to))) return true;
  unlink(to.c_str());
  return false;
}

}  // namespace velan
