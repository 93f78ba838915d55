#include "tests/Testing.h"
#include "tests/storage/SimulatedFiles.h"
#include "velan/storage/BlockStorage.h"
#include "velan/storage/Compression.h"
#include "velan/text/digest/Checksums.h"

namespace velan {
namespace {

const String kPath = u"blocks"_s;
constexpr int64_t kHeader = 16;

std::string word(uint32_t value) {
  return {static_cast<char>(value >> 24), static_cast<char>(value >> 16), static_cast<char>(value >> 8),
          static_cast<char>(value)};
}

// A second writer of the format.
std::string block(std::string_view payload, uint32_t padding, uint32_t marker) {
  return word(marker) + word(static_cast<uint32_t>(payload.size())) + word(padding) +
         word(CRC32(payload.data(), payload.size())) + std::string(payload) + std::string(padding, '\0');
}

std::string plain(std::string_view payload, uint32_t padding) { return block(payload, padding, 0x31415926); }

std::string changed(std::string bytes, size_t at, char value) {
  bytes[at] = value;
  return bytes;
}

Data dataOf(std::string_view bytes) { return Data::withBytes(bytes); }

std::vector<std::string> readAll(BlockStorage& storage) {
  std::vector<std::string> result;
  while (const Data data = storage.nextAvailableBlock()) result.emplace_back(data.view());
  return result;
}

using Strings = std::vector<std::string>;

class BlockStorageTest : public testing::Test {
 protected:
  std::unique_ptr<BlockStorage> updating() { return BlockStorage::blockStorageForUpdatingAtPath(kPath); }
  std::unique_ptr<BlockStorage> reading() { return BlockStorage::blockStorageForReadingAtPath(kPath); }
  Strings contents() {
    const auto storage = reading();
    return readAll(*storage);
  }
  std::string& image() { return files.images["blocks"]; }

  CapturedLog log;
  SimulatedFiles files;
};

TEST_F(BlockStorageTest, WritesTheFormatToTheByte) {
  const auto storage = updating();
  const std::string big(3000, 'x');
  const Data deflated = dataByDeflatingData(dataOf(big), 1);
  EXPECT_TRUE(storage->appendBlock(dataOf("abc")));
  storage->setCompressed(true);
  EXPECT_TRUE(storage->appendBlock(dataOf(big)));
  EXPECT_TRUE(storage->appendBlock(dataOf("short stays plain")));
  storage->setBlockSize(512);
  EXPECT_TRUE(storage->appendUncompressedBlock(dataOf(std::string(100, 'y'))));
  EXPECT_TRUE(storage->appendBlock(dataOf(std::string(496, '\0')))) << "fits exactly once it is deflated";
  EXPECT_FALSE(storage->appendBlock(Data::withBytes("")));
  EXPECT_FALSE(storage->appendBlock(Data()));
  storage->closeFile();
  const Data zeros = dataByDeflatingData(dataOf(std::string(496, '\0')), 1);
  EXPECT_EQ(image(), plain("abc", 0) + block(deflated.view(), 0, 0x98765432) + plain("short stays plain", 0) +
                         plain(std::string(100, 'y'), 396) +
                         block(zeros.view(), static_cast<uint32_t>(496 - zeros.length()), 0x98765432));
  EXPECT_EQ(contents(), (Strings{"abc", big, "short stays plain", std::string(100, 'y'), std::string(496, '\0')}));
}

TEST_F(BlockStorageTest, SkipsWhatIsDeletedEmptyOrCorruptAndStopsAtWhatIsNoBlock) {
  std::string corrupt = plain("corrupt", 3);
  corrupt[18] ^= 1;
  const std::string sound = plain("one", 5) + plain("", 40) + block("old", 0, 0x53545354);
  image() = sound + corrupt + block("", 9, 0x98765432) + plain("two", 0) + "ten stray.";
  const auto storage = reading();
  EXPECT_EQ(readAll(*storage), (Strings{"one", "old", "two"}));
  EXPECT_EQ(log.messages,
            (Strings{"ERROR: Invalid checksum at " + std::to_string(sound.size()) + " in file blocks",
                     "ERROR: Invalid header at " + std::to_string(image().size() - 10) + " in file blocks"}));
  EXPECT_EQ(storage->offsetInFile(), static_cast<int64_t>(image().size()) - 10);
  EXPECT_EQ(storage->offsetOfLastBlock(), static_cast<int64_t>(image().size()) - 10 - 19);
  EXPECT_EQ(storage->lengthOfLastBlock(), 19u);

  log.messages.clear();
  image() = plain("payload beyond the end", 0).substr(0, 30);
  EXPECT_TRUE(contents().empty());
  image() = word(0x31415926) + word(0xFFFFFFFF) + word(0xFFFFFFFF) + word(0) + "4 GB are claimed, none allocated";
  EXPECT_TRUE(contents().empty());
  EXPECT_EQ(log.messages, Strings(2, "ERROR: Truncated data at 0 in file blocks"));
  image() = plain("padding beyond the end", 50).substr(0, 60);
  EXPECT_EQ(contents(), (Strings{"padding beyond the end"}));
}

TEST_F(BlockStorageTest, HandsOverStoredPayloadsAndPassesBlocksThatDoNotInflate) {
  const auto storage = updating();
  const Data deflated = dataByDeflatingData(dataOf("text text text text text text"));
  EXPECT_TRUE(storage->appendCompressedBlock(deflated));
  EXPECT_TRUE(storage->appendCompressedBlock(dataOf("no stream")));
  EXPECT_TRUE(storage->appendBlock(dataOf("plain")));
  EXPECT_TRUE(storage->seekToFileOffset(0));
  Data compressed;
  EXPECT_EQ(storage->mutableCopyOfNextAvailableBlock(&compressed)->view(), "text text text text text text");
  EXPECT_EQ(compressed, deflated);
  EXPECT_FALSE(storage->mutableCopyOfNextAvailableBlock(&compressed));
  EXPECT_EQ(storage->mutableCopyOfNextAvailableBlock(&compressed)->view(), "plain");
  EXPECT_TRUE(compressed.isAbsent());
  EXPECT_EQ(storage->verify()->damages.size(), 1u);
}

TEST_F(BlockStorageTest, UpdatesWithinTheOldRoomAndDeletesTwice) {
  image() = plain(std::string(100, 'a'), 49) + plain("next", 0);
  const auto storage = updating();
  EXPECT_EQ(storage->nextAvailableBlock().length(), 100u);
  EXPECT_FALSE(storage->updateBlock(dataOf(std::string(150, 'b')), 0));
  EXPECT_TRUE(storage->updateBlock(dataOf("now shorter"), 0));
  EXPECT_EQ(image(),
            plain("now shorter", 138).substr(0, 27) + std::string(89, 'a') + std::string(49, '\0') + plain("next", 0));
  EXPECT_EQ(storage->offsetInFile(), 165) << "the position stays";
  EXPECT_TRUE(storage->updateBlock(dataOf(std::string(149, 'b')), 0));
  EXPECT_EQ(image(), plain(std::string(149, 'b'), 0) + plain("next", 0));
  EXPECT_TRUE(storage->deleteBlockAtFileOffset(0));
  EXPECT_TRUE(storage->deleteBlockAtFileOffset(0));
  EXPECT_EQ(image().substr(0, kHeader), plain("", 149).substr(0, kHeader));
  EXPECT_EQ(storage->nextAvailableBlock().view(), "next") << "what was read ahead is as it was";
  EXPECT_FALSE(storage->updateBlock(dataOf("x"), 3));
  EXPECT_FALSE(storage->deleteBlockAtFileOffset(165 + 20));
  EXPECT_EQ(log.messages.size(), 1u) << "nothing can be read at the end, without a message";
  const std::string before = image();
  storage->openFileForAppending();
  EXPECT_FALSE(storage->updateBlock(dataOf("x"), 165) || storage->deleteBlockAtFileOffset(165));
  storage->openFileForReading();
  EXPECT_FALSE(storage->appendBlock(dataOf("x")) || storage->deleteBlockAtFileOffset(165));
  EXPECT_EQ(image(), before);
}

TEST_F(BlockStorageTest, PositionsAndLengths) {
  const auto storage = updating();
  EXPECT_TRUE(storage->appendBlock(dataOf("one")));
  EXPECT_EQ(storage->lengthOfFile(), 19) << "with what is kept back";
  EXPECT_TRUE(image().empty());
  EXPECT_FALSE(storage->seekToFileOffset(-1));
  EXPECT_TRUE(storage->seekToFileOffset(0));
  EXPECT_TRUE(storage->appendBlock(dataOf("two"))) << "over the first one, in updating mode";
  EXPECT_EQ(storage->seekToEndOfFile(), 19);
  EXPECT_TRUE(storage->appendBlock(dataOf("three")));
  EXPECT_TRUE(storage->truncateFileAtOffset(19));
  EXPECT_TRUE(storage->appendBlock(dataOf("four")));
  EXPECT_TRUE(storage->backupToPath(u"copy"_s));
  EXPECT_FALSE(storage->backupToPath(u"copy"_s));
  EXPECT_EQ(files.images["copy"], plain("two", 0) + plain("four", 0));
  storage->setBlockSize(100);
  ASSERT_EQ(log.messages.size(), 1u);
  EXPECT_TRUE(log.messages[0].ends_with("Failed debug assertion `(blockSize%512)==0'"));
  EXPECT_EQ(storage->blockSize(), 100u);
  storage->closeFile();
  EXPECT_FALSE(storage->isValid() || storage->appendBlock(dataOf("x")) || storage->synchronizeFile());
  EXPECT_EQ(storage->offsetInFile() + storage->lengthOfFile(), 0);
  EXPECT_FALSE(storage->verify());
  EXPECT_FALSE(BlockStorage::blockStorageForUpdatingAtPath(String(u"lone \xD800")));
  EXPECT_TRUE(log.messages.back().starts_with("getFileSystemRepresentation 'lone "));
}

struct EveryOther : BlockStorageHandler {
  bool storageHandleDataKey(BlockStorage& storage, const Data&, int64_t key) override {
    EXPECT_EQ(key, storage.lengthOfFile());
    return count++ % 2 == 0;
  }
  bool shouldCancelIterationOfStorage(BlockStorage&) override { return count > most; }
  int count = 0;
  int most = 100;
};

TEST_F(BlockStorageTest, CompactsIntoANewFile) {
  const Data deflated = dataByDeflatingData(dataOf(std::string(99, 'z')));
  const std::string compressed = block(deflated.view(), 0, 0x98765432);
  image() = plain("a", 7) + plain("", 60) + compressed + plain("b", 0) + plain("c", 0);
  const auto storage = reading();
  EXPECT_TRUE(storage->optimizeToPath(u"new"_s, false, nullptr));
  EXPECT_EQ(files.images["new"], plain("a", 0) + plain(std::string(99, 'z'), 0) + plain("b", 0) + plain("c", 0));
  storage->setCompressed(true);
  EveryOther handler;
  EXPECT_TRUE(storage->optimizeToPath(u"new"_s, false, &handler));
  EXPECT_EQ(files.images["new"], plain("a", 0) + plain("b", 0));
  handler.most = 1;
  handler.count = 0;
  EXPECT_FALSE(storage->optimizeToPath(u"new"_s, false, &handler)) << "cancelled";
  EXPECT_FALSE(storage->optimizeToPath(u"BLOCKS"_s, false, nullptr));
  EXPECT_FALSE(storage->optimizeToPath(u""_s, false, nullptr));

  const std::string good = plain("a", 7) + plain("", 60) + compressed + plain("b", 0) + plain("c", 0);
  EXPECT_EQ(image(), good);
  std::string corrupt = plain("corrupt", 0);
  corrupt.back() ^= 1;
  const std::string tails[] = {corrupt, "stray", plain("truncated", 0).substr(0, 20),
                               block("no stream", 0, 0x98765432)};
  for (const std::string& tail : tails) {
    image() = good + tail;
    EXPECT_FALSE(reading()->optimizeToPath(u"new"_s, false, nullptr)) << tail;
    EXPECT_TRUE(reading()->optimizeToPath(u"new"_s, true, nullptr)) << tail;
  }
}

TEST_F(BlockStorageTest, MovesBlocksToTheFront) {
  image() = plain("", 30) + plain(std::string(20, 'm'), 0) + plain("n", 0);
  const auto storage = updating();
  Data data = storage->nextAvailableBlock();
  int64_t next = 0;
  EXPECT_TRUE(storage->optimizeLastBlock(data, Data(), 0, &next));
  EXPECT_EQ(next, 36);
  EXPECT_EQ(storage->offsetInFile(), 46 + 36);
  data = storage->nextAvailableBlock();
  EXPECT_TRUE(storage->optimizeLastBlock(data, Data(), next, &next));
  EXPECT_TRUE(storage->truncateFileAtOffset(next));
  EXPECT_EQ(image(), plain(std::string(20, 'm'), 0) + plain("n", 0));
  storage->seekToFileOffset(0);
  data = storage->nextAvailableBlock();
  EXPECT_FALSE(storage->optimizeLastBlock(data, Data(), 0, &next)) << "it is in the best place";
  EXPECT_FALSE(storage->optimizeLastBlock(dataOf(std::string(21, 'o')), Data(), 0, &next)) << "no room";
  EXPECT_EQ(next, 36);
}

TEST_F(BlockStorageTest, RecoversATornTail) {
  const std::string good = plain("first", 0) + plain("second", 12);
  std::string longFile;
  while (longFile.size() < 100000) longFile += good;
  // after: nothing where it is refused and untouched
  const Cases<const char*, std::string, std::optional<std::string>> cases = {
      {"padding missing", good + plain("whole", 100).substr(0, 30), good + plain("whole", 100)},
      {"padding beyond reason", good + plain("whole", 2 << 20).substr(0, 30), {}},
      {"torn before padding", good + changed(plain("whale", 100), 18, 'o').substr(0, 30), good},
      {"a header in the middle", changed(good, 0, '?') + plain("x", 0).substr(0, 9), {}},
      {"a damaged marker of a whole block", good + changed(plain("whole", 0), 0, '?'), {}},
      {"a foreign tail", good + "notes\n", {}},
      {"blocks behind", good + plain("torn", 0).substr(0, 18) + good, {}},
      {"half a header alone", plain("x", 0).substr(0, 15), ""},
      {"a torn block alone", plain("torn", 0).substr(0, 18), {}},
      {"a disk image", std::string(70000, '\0'), {}},
      {"a note that begins like a marker", "1A, left of the door", {}},
      {"nothing to recover at the end of a long file", changed(longFile, 0, '?'), changed(longFile, 0, '?')},
      {"a torn block that holds blocks", good + plain(good + good, 0).substr(0, 16 + good.size()), {}},
  };
  for (const auto& [why, before, after] : cases) {
    image() = before;
    EXPECT_FALSE(reading()->recoverTail());
    const auto storage = updating();
    EXPECT_EQ(storage->recoverTail(), after.has_value()) << why;
    EXPECT_EQ(image(), after.value_or(before)) << why;
  }
}

TEST_F(BlockStorageTest, RepairFindsBlocksBehindDamagedHeaders) {
  const std::string blocks[] = {plain("first", 0), plain("second", 100), plain("third", 0), plain("fourth", 0)};
  for (const size_t byte : {0u, 5u, 7u, 10u, 11u, 13u, 17u}) {
    std::string damaged = blocks[1];
    damaged[byte] ^= 0x40;
    image() = blocks[0] + damaged + blocks[2] + "stray" + blocks[3];
    const auto storage = reading();
    EXPECT_TRUE(storage->repairToPath(u"new"_s)) << byte;
    EXPECT_FALSE(storage->repairToPath(u"new"_s)) << "only into a new file";
    const std::string& repaired = files.images["new"];
    const bool paddingOnly = byte == 10 || byte == 11;
    EXPECT_EQ(repaired, blocks[0] + (paddingOnly ? plain("second", 0) : "") + blocks[2] + blocks[3]) << byte;
    files.images.erase("new");
  }
}

TEST_F(BlockStorageTest, TheEndOfALongFileIsFoundWithoutReadingItAll) {
  for (const size_t size : {200u, 100000u}) {
    int64_t reads[2] = {};
    for (const size_t blocks : {40u, 400u}) {
      image().clear();
      for (size_t i = 0; i < blocks; ++i) image() += plain(std::string(size, 'x'), 0);
      const auto storage = updating();
      files.calls[0] = 0;
      EXPECT_TRUE(storage->recoverTail());
      reads[blocks / 400] = files.calls[0];
    }
    EXPECT_LE(reads[1], 2 * reads[0]) << size;
    const auto storage = updating();
    for (int64_t n = 0; n < reads[1]; ++n) {
      files.calls[0] = 0;
      files.fault = {SimulatedFiles::Call::Read, n, EIO, false};
      EXPECT_FALSE(storage->recoverTail()) << n;
      EXPECT_EQ(storage->error().reason(), FileReason::InputOutput) << n;
    }
    files.fault = {};
  }
}

TEST_F(BlockStorageTest, AWriteTornByOneByteLeavesNothing) {
  image() = plain("sound", 0);
  const auto storage = updating();
  storage->seekToEndOfFile();
  for (const size_t size : {10u, 5000u}) {  // kept back, and written at once
    constexpr auto kWrite = SimulatedFiles::Call::Write;
    files.fault = {kWrite, files.calls[static_cast<int>(kWrite)], -ENOSPC, true};
    EXPECT_FALSE(storage->appendBlock(dataOf(std::string(size, 'x'))) && storage->seekToFileOffset(0));
    EXPECT_EQ(image(), plain("sound", 0));
    EXPECT_EQ(storage->error().reason(), FileReason::NoSpace);
    EXPECT_EQ(storage->synchronizeFile(), size > 1000) << "what was kept back is lost";
    EXPECT_EQ(storage->lengthOfFile(), 21);
  }
}

TEST_F(BlockStorageTest, TellsBlocksFromWhatLooksLikeThemAndGoesOnBehindDamageOnlyInCompactToPath) {
  const std::string nesting = plain("inner", 0);
  image() =
      plain("one", 0) + plain(nesting, 3) + changed(plain("damaged", 0), 0, '?') + plain("three", 4) + plain("", 9);
  const auto storage = reading();
  std::vector<int64_t> blocks;
  for (int64_t offset = 0; offset < storage->lengthOfFile(); ++offset) {
    if (storage->isBlockAtFileOffset(offset)) blocks.push_back(offset);
  }
  EXPECT_EQ(blocks, (std::vector<int64_t>{0, 19, 19 + 16 + 21 + 3 + 23, 19 + 16 + 21 + 3 + 23 + 25}));
  EXPECT_TRUE(storage->optimizeToPath(u"new"_s, true, nullptr));
  EXPECT_EQ(files.images["new"], plain("one", 0) + plain(nesting, 0));
  EXPECT_EQ(storage->compactToPath(u"newer"_s, true, nullptr)->damages.size(), 1u);
  EXPECT_EQ(files.images["newer"], plain("one", 0) + plain(nesting, 0) + plain("three", 0));
  EXPECT_FALSE(storage->compactToPath(u"newest"_s, false, nullptr) || files.images.contains("newest"));
  EXPECT_FALSE(storage->error()) << "damage is no failure of the system";
}

TEST_F(BlockStorageTest, TellsATornEndFromOtherDamage) {
  for (const size_t length : {1u, 9u, 15u, 17u}) {
    image() = plain("one", 0) + plain("two", 0).substr(0, length);
    EXPECT_EQ(reading()->verify()->damages.at(0).damage, BlockDamage::Truncated) << length;
  }
  for (const std::string& end : {std::string("notes\n"), changed(plain("two", 0), 0, '?')}) {
    image() = plain("one", 0) + end;
    EXPECT_EQ(reading()->verify()->damages.at(0).damage, BlockDamage::InvalidHeader) << end;
  }
}

TEST_F(BlockStorageTest, InflatesNoMoreThanTheLimit) {
  const auto storage = updating();
  storage->setCompressed(true);
  EXPECT_TRUE(storage->appendBlock(dataOf(std::string(100000, 'x'))));
  storage->seekToFileOffset(0);
  storage->setInflationLimit(99999);
  EXPECT_FALSE(storage->nextAvailableBlock());
  EXPECT_EQ(storage->error().reason(), FileReason::TooLarge);
  EXPECT_FALSE(storage->optimizeToPath(u"new"_s, true, nullptr)) << "what is not read is not left out silently";
  EXPECT_FALSE(files.images.contains("new"));
  storage->seekToFileOffset(0);
  storage->setInflationLimit(100000);
  EXPECT_EQ(storage->nextAvailableBlock().length(), 100000u);
}

// A chain of claims to be read again and again would take minutes; what is read stays in proportion to the length.
// Each call of the system takes as long as some hundred bytes.
TEST_F(BlockStorageTest, LooksAtManyBlocksWithFewCalls) {
  using Call = SimulatedFiles::Call;
  for (const uint64_t blockSize : {0u, 512u, 4096u}) {
    image().clear();
    const auto storage = updating();
    storage->setBlockSize(blockSize);
    for (int i = 0; i < 1000; ++i) EXPECT_TRUE(storage->appendBlock(dataOf(std::string(1100, 'x'))));
    const auto callsOf = [&](Call call, auto operation) {
      const int64_t before = files.calls[static_cast<int>(call)];
      operation();
      return files.calls[static_cast<int>(call)] - before;
    };
    const auto most = static_cast<int64_t>(image().size() / 32768 + 20);
    storage->seekToFileOffset(0);
    const int64_t gaps = blockSize == 4096 ? 1000 : 0;  // too large to read them
    EXPECT_LT(callsOf(Call::Read, [&] { EXPECT_EQ(readAll(*storage).size(), 1000u); }), most + gaps);
    EXPECT_LT(callsOf(Call::Read, [&] { EXPECT_EQ(storage->verify()->blocks, 1000); }), most);
    EXPECT_LT(callsOf(Call::Write, [&] { EXPECT_TRUE(storage->repairToPath(u"new"_s)); }), most);
    EXPECT_EQ(files.images["new"].size(), image().size());
    files.images.erase("new");
  }
}

TEST_F(BlockStorageTest, SearchingIsLinearInTheLengthOfTheFile) {
  int64_t reads[2] = {};
  for (const uint32_t scale : {1u, 4u}) {
    std::string claims = "damaged";
    for (size_t i = 0; i < 2000 * scale; ++i) claims += word(0x31415926) + word(100000 * scale) + word(0) + word(1);
    image() = claims + std::string(200000 * scale, 'x');
    files.calls[0] = 0;
    EXPECT_FALSE(reading()->verify()->damages.empty());
    reads[scale / 4] = files.calls[0];
  }
  EXPECT_LT(reads[1], 6 * reads[0]);
}

}  // namespace
}  // namespace velan
