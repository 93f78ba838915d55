// Any bytes as a block file: reading and verifying stay within bounds, repairing finds all that reading returns, a
// recovered file takes a block, and compaction agrees with reading.
#include "fuzz/FuzzTarget.h"
#include "tests/storage/SimulatedFiles.h"
#include "velan/storage/BlockStorage.h"

using namespace velan;

namespace {

std::vector<std::string> readAll(BlockStorage& storage) {
  std::vector<std::string> texts;
  require(storage.seekToFileOffset(0));
  while (const Data data = storage.nextAvailableBlock()) texts.emplace_back(data.view());
  return texts;
}

}  // namespace

FUZZ_TARGET(block_storage) {
  SimulatedFiles files;
  std::string& image = files.images["blocks"];
  image = input.bytes;
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
  require(image == input.bytes);
  const bool sound = survey->damages.empty();
  const bool recovered = storage->recoverTail();
  require(recovered || !sound);
  if (sound) {
    require(storage->seekToEndOfFile() >= 0 && storage->appendBlock(Data::withBytes("appended")));
    texts.emplace_back("appended");
    require(readAll(*storage) == texts);
  }
}
