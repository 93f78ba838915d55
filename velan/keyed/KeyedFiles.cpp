#include "velan/keyed/KeyedFiles.h"

#include <memory>

#include "velan/keyed/KeyedReading.h"
#include "velan/keyed/KeyedWriting.h"
#include "velan/platform/files/File.h"
#include "velan/platform/files/FileContents.h"

namespace velan {
namespace {

constexpr size_t kStagingSize = 1048576;

// The file, created when it is missing and then empty. Null when that fails.
std::unique_ptr<File> openForRewriting(const String& path) {
  if (createFileIfMissing(path)) return nullptr;
  auto file = File::open(path, FileAccess::Updating);
  return file && file->truncate(0) ? std::move(file) : nullptr;
}

}  // namespace

Data dataWithKeyedFile(const String& path) { return readFileContents(path, FileReading::Plain); }

Data dataWithUncachedKeyedFile(const String& path) { return readFileContents(path, FileReading::Uncached); }

Data dataWithMappedKeyedFile(const String& path) { return readFileContents(path, FileReading::Mapped); }

bool writeKeyedStringsFromSource(FunctionRef<const String*()> next, const String& path) {
  const auto file = openForRewriting(path);
  if (!file) return false;
  MutableData staging;
  while (const String* string = next()) {
    addString(staging, *string, kKeyedStringsKey);
    if (staging.length() < kStagingSize) continue;
    if (!file->write({staging.span()}, 0)) return false;
    staging.clear();
  }
  return file->write({staging.span()}, 0) && file->synchronize() && file->close();
}

bool readKeyedStringsFromFile(std::vector<String>& list, const String& path) {
  list.clear();
  const Data file = dataWithKeyedFile(path);
  if (file.isAbsent()) return false;
  addStringsForKey(file, kKeyedStringsKey, list);
  return true;
}

}  // namespace velan
