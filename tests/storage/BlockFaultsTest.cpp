// What a crash, a failing disk, or decay can do to a block file. VELAN_SWEEP=full looks at every state.
#include <cstdlib>
#include <utility>

#include "tests/Testing.h"
#include "tests/storage/BlockWorkload.h"
#include "velan/storage/Compression.h"

namespace velan {
namespace {

const String kPath = u"blocks"_s;
constexpr size_t kSector = 512;

bool isFullSweep() {
  const char* sweep = std::getenv("VELAN_SWEEP");
  return sweep && std::string_view(sweep) == "full";
}

class BlockCrashTest : public testing::TestWithParam<uint64_t> {
 protected:
  void check(std::string state, size_t done, bool partial) {
    files.images["blocks"] = std::move(state);
    const auto storage = BlockStorage::blockStorageForReadingAtPath(kPath);
    workload.check(*storage, done, partial);
  }

  // Each sector that was written since the last synchronisation got to the disk, or did not.
  std::string withDroppedSectors(const std::string& before, std::string now) {
    for (size_t at = 0; at < now.size(); at += kSector) {
      const std::string was = at < before.size() ? before.substr(at, kSector) : "";
      const size_t length = std::min(kSector, now.size() - at);
      if (now.compare(at, length, was) == 0 || random() % 2) continue;
      std::string old = was;
      old.resize(length, '\0');
      now.replace(at, length, old);
    }
    return now;
  }

  CapturedLog log;
  SimulatedFiles files;
  BlockWorkload workload{&files, 7};
  std::mt19937 random{11};
};

TEST_P(BlockCrashTest, LosesNothingThatWasSynchronised) {
  {
    const auto storage = BlockStorage::blockStorageForUpdatingAtPath(kPath);
    files.recording = true;
    storage->setBlockSize(GetParam());
    storage->setCompressed(true);
    workload.run(*storage, 1000);
  }
  ASSERT_GT(workload.liveBlocks(), 100u);
  const size_t stride = isFullSweep() ? 1 : 61;
  const int drops = isFullSweep() ? 8 : 1;
  std::string image, synchronised;
  const std::vector<FileEvent> events = std::exchange(files.events, {});
  files.recording = false;
  for (size_t i = 0; i < events.size() && !HasFatalFailure(); ++i) {
    const FileEvent& event = events[i];
    check(image, i, false);
    for (size_t count = 1 + i % stride; count < event.bytes.size(); count += stride) {
      std::string torn = image;
      applyEvent(torn, event, count);
      check(torn, i, true);
    }
    applyEvent(image, event, event.bytes.size());
    if (event.kind == FileEvent::Synchronize) synchronised = image;
    for (int n = 0; n < drops; ++n) check(withDroppedSectors(synchronised, image), i + 1, false);
  }
}

INSTANTIATE_TEST_SUITE_P(Packed, BlockCrashTest, testing::Values(0));
INSTANTIATE_TEST_SUITE_P(Padded, BlockCrashTest, testing::Values(512));

struct FaultCase {
  const char* why;
  int error;
  bool onwards;
  bool harmless;
};

void PrintTo(const FaultCase& c, std::ostream* out) { *out << c.why; }

class BlockInputOutputTest : public testing::TestWithParam<FaultCase> {
 protected:
  // A life with a fault somewhere in it: written, read, compacted, copied. Returns whether the fault happened.
  bool live(SimulatedFiles::Fault fault) {
    SimulatedFiles files;
    BlockWorkload workload(&files, 5);
    files.fault = fault;
    log.messages.clear();
    int failures = 0;
    if (const auto storage = BlockStorage::blockStorageForUpdatingAtPath(kPath)) {
      workload.run(*storage, 40);
      failures += workload.failures;
      size_t blocks = 0;
      storage->seekToFileOffset(0);
      while (storage->nextAvailableBlock()) ++blocks;
      failures += blocks < workload.liveBlocks() ? 1 : 0;
      failures += storage->optimizeToPath(u"new"_s, false, nullptr) ? 0 : 1;
      failures += storage->backupToPath(u"copy"_s) ? 0 : 1;
      const auto survey = storage->verify();
      failures += survey && survey->damages.empty() ? 0 : 1;
      const int64_t end = storage->seekToEndOfFile();
      workload.allow(std::string(2000, 'x'));
      failures += storage->appendBlock(Data::withBytes(std::string(2000, 'x'))) ? 0 : 1;
      failures += storage->truncateFileAtOffset(end) ? 0 : 1;
      failures += storage->closeFile() ? 0 : 1;
    } else {
      ++failures;
    }
    EXPECT_EQ(failures > 0 || !log.messages.empty(), files.faults > 0 && !GetParam().harmless)
        << "a failure is told, and only a failure";
    files.fault = {};
    expectReadable(workload);
    return files.faults > 0;
  }

  void expectReadable(const BlockWorkload& workload) {
    const auto storage = BlockStorage::blockStorageForUpdatingAtPath(kPath);
    workload.check(*storage, SIZE_MAX - 1, false);
    const auto survey = storage->verify();
    for (const DamagedPlace& place : survey->damages) {
      EXPECT_TRUE(workload.changeFailed) << "only a block being changed is damaged";
      EXPECT_TRUE(GetParam().error < 0 || place.damage == BlockDamage::InvalidChecksum) << place.offset;
    }
  }

  CapturedLog log;
};

TEST_P(BlockInputOutputTest, ToldAndSurvivedAtEveryCall) {
  using Call = SimulatedFiles::Call;
  for (const Call call : {Call::Read, Call::Write, Call::Truncate, Call::Synchronize}) {
    const bool hasBytes = call == Call::Read || call == Call::Write;
    if (GetParam().error <= 0 && !hasBytes) continue;  // nothing to cut
    int64_t n = 0;
    while (!HasFailure() && live({call, n, GetParam().error, GetParam().onwards})) ++n;
    EXPECT_GT(n, 0) << "no such call";
    EXPECT_FALSE(HasFailure()) << "call " << static_cast<int>(call) << " number " << n;
  }
}

INSTANTIATE_TEST_SUITE_P(
    Faults, BlockInputOutputTest,
    testing::Values(FaultCase{"EIO once", EIO, false, false}, FaultCase{"EIO from then on", EIO, true, false},
                    FaultCase{"ENOSPC once", ENOSPC, false, false},
                    FaultCase{"ENOSPC from then on", ENOSPC, true, false}, FaultCase{"EINTR once", EINTR, false, true},
                    FaultCase{"EINTR from then on", EINTR, true, false}, FaultCase{"cut once", 0, false, true},
                    FaultCase{"cut from then on", 0, true, true}, FaultCase{"cut, then ENOSPC", -ENOSPC, true, false}));

class BlockDecayTest : public testing::TestWithParam<uint64_t> {
 protected:
  BlockDecayTest() {
    const auto storage = BlockStorage::blockStorageForUpdatingAtPath(kPath);
    storage->setBlockSize(GetParam());
    add(*storage, "plain text");
    add(*storage, std::string(90, '\0'));
    add(*storage, "to be deleted, between others");
    add(*storage, "to be updated with something shorter");
    storage->setCompressed(true);
    add(*storage, std::string(60, 'c') + "ompressed");
    add(*storage, "deleted at the end");
    add(*storage, "the last one");
    EXPECT_TRUE(storage->deleteBlockAtFileOffset(blocks[2]) && storage->deleteBlockAtFileOffset(blocks[5]));
    EXPECT_TRUE(storage->updateBlock(Data::withBytes("shorter"), blocks[3]));
    texts.insert("shorter");
    storage->closeFile();
    sound = files.images["blocks"];
  }

  void add(BlockStorage& storage, const std::string& text) {
    blocks.push_back(storage.offsetInFile());
    EXPECT_TRUE(storage.appendBlock(Data::withBytes(text)));
    texts.insert(text);
  }

  std::unique_ptr<BlockStorage> withImage(std::string image) {
    files.images["blocks"] = std::move(image);
    return BlockStorage::blockStorageForReadingAtPath(kPath);
  }

  // Zeros have the checksum 0 whatever their number.
  void expectKnownTexts(BlockStorage& storage) {
    while (const Data data = storage.nextAvailableBlock()) {
      const bool zeros = data.view().find_first_not_of('\0') == std::string_view::npos;
      EXPECT_TRUE(zeros || texts.contains(std::string(data.view()))) << storage.offsetOfLastBlock();
    }
  }

  std::set<size_t> fillerBytes() {
    std::set<size_t> filler;
    withImage(sound)->enumerateStoredBlocks(
        [&](const StoredBlock& block) {
          for (int64_t i = block.offset + 16 + block.length; i < block.end(); ++i)
            filler.insert(static_cast<size_t>(i));
          return false;
        },
        nullptr);
    return filler;
  }

  CapturedLog log;
  SimulatedFiles files;
  std::vector<int64_t> blocks;
  std::set<std::string> texts;
  std::string sound;
};

TEST_P(BlockDecayTest, VerifyReportsEveryFlippedBitOutsideFiller) {
  const std::set<size_t> filler = fillerBytes();
  ASSERT_LT(filler.size(), sound.size());
  EXPECT_TRUE(withImage(sound)->verify()->damages.empty());
  for (size_t bit = 0; bit < 8 * sound.size(); ++bit) {
    std::string image = sound;
    image[bit / 8] = static_cast<char>(image[bit / 8] ^ (1 << bit % 8));
    const auto storage = withImage(image);
    EXPECT_TRUE(filler.contains(bit / 8) || !storage->verify()->damages.empty()) << bit;
    expectKnownTexts(*storage);
  }
}

TEST_P(BlockDecayTest, TruncationAnywhereIsReadAndRepairedWithinBounds) {
  for (size_t length = 0; length <= sound.size(); ++length) {
    const auto storage = withImage(sound.substr(0, length));
    expectKnownTexts(*storage);
    EXPECT_TRUE(storage->verify());
    storage->openFileForUpdating();
    // Nothing proves a file of a single torn block to be a block file.
    const bool isDoubtful = length >= 16 && length < 26;
    EXPECT_EQ(storage->recoverTail(), !isDoubtful) << length;
    EXPECT_EQ(storage->verify()->damages.empty(), !isDoubtful) << length;
  }
}

INSTANTIATE_TEST_SUITE_P(Packed, BlockDecayTest, testing::Values(0));
INSTANTIATE_TEST_SUITE_P(Padded, BlockDecayTest, testing::Values(512));

}  // namespace
}  // namespace velan
