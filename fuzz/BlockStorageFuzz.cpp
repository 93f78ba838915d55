// Any bytes as a block file: reading and verifying stay within bounds, repairing finds all that reading returns, a
// recovered file takes a block, and compaction agrees with reading.
#include <cstdlib>

#include "tests/storage/SimulatedFiles.h"
#include "velan/storage/BlockStorage.h"

using namespace velan;

namespace {

void require(bool condition) {
  if (!condition) std::abort();
}

std::vector<std::string> readAll(BlockStorage& storage) {
  std::vector<std::string> texts;
  require(storage.seekToFileOffset(0));
  while (const Data data = storage.nextAvailableBlock()) texts.emplace_back(data.view());
  return texts;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t length) {
  CountedLog log;
  SimulatedFiles files;
  std::string& image = files.images["blocks"];
  image.assign(reinterpret_cast<const char*>(bytes), length);
  const auto storage = BlockStorage::blockStorageForUpdatingAtPath(u"blocks"_s);
  std::vector<std::string> texts = readAll(*storage);
  const auto survey = storage->verify();
  require(survey.has_value());
  const auto repaired = storage->repairToPath(u"repaired"_s);
  require(repaired && repaired->blocks == survey->blocks);
  require(BlockStorage::blockStorageForReadingAtPath(u"repaired"_s)->verify()->blocks == survey->blocks);
  if (storage->optimizeToPath(u"compact"_s, false, nullptr)) {
    require(readAll(*BlockStorage::blockStorageForReadingAtPath(u"compact"_s)) == texts);
  }
  require(std::string_view(image) == std::string_view(reinterpret_cast<const char*>(bytes), length));
  const bool sound = survey->damages.empty();
  const bool recovered = storage->recoverTail();
  require(recovered || !sound);
  if (sound) {
    require(storage->seekToEndOfFile() >= 0 && storage->appendBlock(Data::withBytes("appended")));
    texts.emplace_back("appended");
    require(readAll(*storage) == texts);
  }
  return 0;
}
