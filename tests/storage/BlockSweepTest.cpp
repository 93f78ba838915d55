// Every operation with every read failing, and with every allocation failing: once, and from then on. What an operation
// claims is so, and what fails says which of the two it was and has changed nothing.
#include <functional>

#include "tests/FailingAllocation.h"
#include "tests/Testing.h"
#include "tests/storage/SimulatedFiles.h"
#include "velan/storage/BlockStorage.h"

namespace velan {
namespace {

const String kPath = u"blocks"_s;
const String kNew = u"new"_s;
const String kOld = u"old"_s;
const Data kLong = Data::withBytes(std::string(3000, 'a'));
const Data kShort = Data::withBytes("short");

using Strings = std::vector<std::string>;

// What an operation claims; nothing when it says that it failed.
using Claim = std::optional<std::string>;

Claim claimOf(bool success) { return success ? Claim("done") : std::nullopt; }

Claim claimOf(const std::optional<BlockSurvey>& survey) {
  const SparedAllocations spared;
  if (!survey) return std::nullopt;
  std::string text;
  const auto add = [&text](int64_t number) { text.append(std::to_string(number)).append(1, ' '); };
  for (const int64_t count : {survey->blocks, survey->deleted}) add(count);
  for (const DamagedPlace& place : survey->damages) add(static_cast<int>(place.damage)), add(place.offset);
  return text;
}

Claim everyBlock(BlockStorage& storage, const std::function<Data(BlockStorage&)>& next) {
  std::string all;
  storage.seekToFileOffset(0);
  for (int i = 0; i < 100; ++i) {
    const Data data = next(storage);
    const SparedAllocations spared;
    if (!data) break;
    all.append(data.view()).append("|");
  }
  const SparedAllocations spared;
  return storage.error() ? std::nullopt : Claim(all);
}

// Blocks are as they were when compressed: what they hold counts.
Strings contentsOf(SimulatedFiles& files, const std::string& name) {
  Strings all;
  if (!files.images.contains(name)) return {"missing"};
  const auto storage = BlockStorage::blockStorageForReadingAtPath(String::fromUTF8(name));
  while (const Data data = storage->nextAvailableBlock()) all.emplace_back(data.view());
  all.push_back("ends at " + std::to_string(storage->offsetInFile() < storage->lengthOfFile()));
  return all;
}

struct Operation {
  const char* name;
  Claim (*run)(BlockStorage&);
  bool compressed = false;  // without memory for that it stores what it has, or says that there is no room
};

void PrintTo(const Operation& operation, std::ostream* out) { *out << operation.name; }

struct TakeAll : BlockStorageHandler {};

const Operation kOperations[] = {
    {"opening for reading", [](BlockStorage& s) { return claimOf(s.openFileForReading()); }},
    {"opening for updating", [](BlockStorage& s) { return claimOf(s.openFileForUpdating()); }},
    {"opening for appending", [](BlockStorage& s) { return claimOf(s.openFileForAppending()); }},
    {"nextAvailableBlock",
     [](BlockStorage& s) { return everyBlock(s, [](BlockStorage& t) { return t.nextAvailableBlock(); }); }},
    {"copyOfNextAvailableBlock",
     [](BlockStorage& s) { return everyBlock(s, [](BlockStorage& t) { return t.copyOfNextAvailableBlock(); }); }},
    {"mutableCopyOfNextAvailableBlock",
     [](BlockStorage& s) {
       return everyBlock(s, [](BlockStorage& t) {
         Data compressed;
         const auto copy = t.mutableCopyOfNextAvailableBlock(&compressed);
         const SparedAllocations spared;
         return copy ? copy->data() : Data();
       });
     }},
    {"enumerateStoredBlocks",
     [](BlockStorage& s) {
       uint64_t sum = 0;  // wraps
       const auto found = [&](const StoredBlock& block) {
         return sum = 31 * sum + static_cast<uint64_t>(block.end()), false;
       };
       const auto damaged = [&](const DamagedPlace& place) {
         return sum = 31 * sum - static_cast<uint64_t>(place.offset), false;
       };
       const bool whole = s.enumerateStoredBlocks(found, nullptr) && s.enumerateStoredBlocks(found, damaged);
       const SparedAllocations spared;
       return whole ? Claim(std::to_string(sum)) : std::nullopt;
     }},
    {"verify", [](BlockStorage& s) { return claimOf(s.verify()); }},
    {"isBlockAtFileOffset", [](BlockStorage& s) { return claimOf(s.isBlockAtFileOffset(s.offsetOfLastBlock())); }},
    {"recoverTail", [](BlockStorage& s) { return claimOf(s.recoverTail()); }},
    {"optimizeToPath", [](BlockStorage& s) { return claimOf(s.optimizeToPath(kNew, false, nullptr)); }},
    {"optimizeToPath with skipErrors",
     [](BlockStorage& s) {
       TakeAll handler;
       return claimOf(s.optimizeToPath(kNew, true, &handler));
     },
     true},
    {"optimizeToPath over a file", [](BlockStorage& s) { return claimOf(s.optimizeToPath(kOld, true, nullptr)); }},
    {"compactToPath", [](BlockStorage& s) { return claimOf(s.compactToPath(kNew, true, nullptr)); }, true},
    {"repairToPath", [](BlockStorage& s) { return claimOf(s.repairToPath(kNew)); }},
    {"backupToPath", [](BlockStorage& s) { return claimOf(s.backupToPath(kNew)); }},
    {"appendBlock",
     [](BlockStorage& s) { return claimOf(s.seekToEndOfFile() && s.appendBlock(kLong) && s.synchronizeFile()); }, true},
    {"updateBlock", [](BlockStorage& s) { return claimOf(s.updateBlock(kShort, 0)); }, true},
    {"deleteBlockAtFileOffset", [](BlockStorage& s) { return claimOf(s.deleteBlockAtFileOffset(0)); }},
    {"optimizeLastBlock", [](BlockStorage& s) { return claimOf(s.optimizeLastBlock(kShort, Data(), 0, nullptr)); },
     true},
    {"truncateFileAtOffset", [](BlockStorage& s) { return claimOf(s.truncateFileAtOffset(0)); }},
};

class BlockSweepTest : public testing::TestWithParam<Operation> {
 protected:
  BlockSweepTest() {
    const auto storage = BlockStorage::blockStorageForUpdatingAtPath(kPath);
    for (int i = 0; i < 6; ++i) {
      storage->setCompressed(i % 2 == 1);
      storage->setBlockSize(i == 4 ? 512 : 0);
      storage->appendBlock(Data::withBytes(std::to_string(i) + std::string(1500, static_cast<char>('a' + i))));
    }
    storage->deleteBlockAtFileOffset(storage->lengthOfFile() / 2);
    storage->closeFile();
    const std::string sound = files.images["blocks"];
    std::string damaged = sound;
    damaged[1516] ^= 1;  // the second header
    _images = {sound, damaged, sound.substr(0, sound.size() - 9)};
  }

  struct Outcome {
    Claim claim;
    FileError error;
    std::vector<Strings> contents;  // of the file, the new one and the old one
    size_t count;
    bool happened;
  };

  std::vector<Strings> allContents() {
    return {contentsOf(files, "blocks"), contentsOf(files, "new"), contentsOf(files, "old")};
  }

  Outcome run(const std::string& image, SimulatedFiles::Fault fault, std::optional<int64_t> allocation, bool onwards) {
    files.images = {{"blocks", image}, {"old", "was there"}};
    files.fault = {};
    auto storage = BlockStorage::blockStorageForUpdatingAtPath(kPath);
    for (int i = 0; i < 2; ++i) storage->nextAvailableBlock();
    files.faults = files.calls[0] = 0;
    files.fault = fault;
    Outcome outcome{};
    {
      const FailingAllocation failing(allocation.value_or(INT64_MAX), onwards);
      storage->setCompressed(GetParam().compressed);
      outcome.claim = GetParam().run(*storage);
      outcome.error = storage->error();
    }
    outcome.happened = files.faults > 0 || FailingAllocation::happened();
    files.fault = {};
    storage.reset();
    outcome.contents = allContents();
    outcome.count = files.images.size();
    return outcome;
  }

  void expectHonest(const Outcome& outcome, const std::vector<Strings>& before, const Outcome& sound,
                    FileReason reason) {
    if (outcome.claim) {
      EXPECT_EQ(*outcome.claim, sound.claim.value_or("nothing"));
    } else {
      const bool quiet = GetParam().compressed || !sound.claim;
      EXPECT_TRUE(quiet || outcome.error.reason() == reason) << outcome.error.words();
    }
    EXPECT_EQ(outcome.contents, outcome.claim ? sound.contents : before);
    EXPECT_EQ(outcome.count, outcome.contents[1].front() == "missing" ? 2u : 3u) << "nothing is left behind";
  }

  CapturedLog log;
  SimulatedFiles files;
  std::vector<std::string> _images;
};

TEST_P(BlockSweepTest, ClaimsNothingThatIsNotSo) {
  for (const std::string& image : _images) {
    const Outcome sound = run(image, {}, std::nullopt, false);
    files.images = {{"blocks", image}, {"old", "was there"}};
    const std::vector<Strings> before = allContents();
    for (const bool onwards : {false, true}) {
      for (const auto reason : {FileReason::InputOutput, FileReason::NoMemory}) {
        const bool reads = reason == FileReason::InputOutput;
        bool happened = true;
        for (int64_t n = 0; happened && !HasFailure(); ++n) {
          SCOPED_TRACE(testing::Message() << (reads ? "read " : "allocation ") << n << (onwards ? " onwards" : ""));
          const Outcome outcome = reads ? run(image, {SimulatedFiles::Call::Read, n, EIO, onwards}, {}, onwards)
                                        : run(image, {}, n, onwards);
          expectHonest(outcome, before, sound, reason);
          happened = outcome.happened;
        }
      }
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Blocks, BlockSweepTest, testing::ValuesIn(kOperations));

}  // namespace
}  // namespace velan
