#include "velan/keyed/KeyedFiles.h"

#include "velan/keyed/KeyedReading.h"
#include "velan/keyed/KeyedWriting.h"
#include "velan/platform/FileContents.h"
#include "velan/platform/FileWriter.h"

namespace velan {
namespace {

constexpr size_t kStagingSize = 1048576;

}  // namespace

Data dataWithKeyedFile(const String& path) { return readFileContents(path, FileReading::Plain); }

Data dataWithUncachedKeyedFile(const String& path) { return readFileContents(path, FileReading::Uncached); }

Data dataWithMappedKeyedFile(const String& path) { return readFileContents(path, FileReading::Mapped); }

bool writeKeyedStringsFromSource(FunctionRef<const String*()> next, const String& path) {
  const auto file = FileWriter::withPath(path);
  if (!file) return false;
  MutableData staging;
  while (const String* string = next()) {
    addString(staging, *string, kKeyedStringsKey);
    if (staging.length() < kStagingSize) continue;
    if (!file->write(staging.span())) return false;
    staging.clear();
  }
  return file->write(staging.span()) && file->synchronize();
}

bool readKeyedStringsFromFile(std::vector<String>& list, const String& path) {
  list.clear();
  const Data file = dataWithKeyedFile(path);
  if (file.isAbsent()) return false;
  addStringsForKey(file, kKeyedStringsKey, list);
  return true;
}

}  // namespace velan
