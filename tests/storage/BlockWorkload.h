// A random sequence of appends, updates, deletions and synchronisations that remembers what a file has to hold.
#ifndef VELAN_TESTS_STORAGE_BLOCK_WORKLOAD_H
#define VELAN_TESTS_STORAGE_BLOCK_WORKLOAD_H

#include <gtest/gtest.h>

#include <random>
#include <set>
#include <string>
#include <vector>

#include "tests/storage/SimulatedFiles.h"
#include "velan/storage/BlockStorage.h"

namespace velan {

class BlockWorkload {
 public:
  BlockWorkload(SimulatedFiles* files, unsigned seed) : _files(files), _random(seed) {}

  /// Each step that answers false counts as a failure.
  int failures = 0;
  bool changeFailed = false;

  void run(BlockStorage& storage, int steps) {
    for (int i = 0; i < steps; ++i) {
      const size_t what = pick(100);
      if (what < 20) {
        synchronize(storage);
      } else if (what < 65 || _blocks.empty()) {
        append(storage);
      } else {
        change(storage, what < 85);
      }
    }
    synchronize(storage);
  }

  /// A text that reading may return besides the workload's own.
  void allow(const std::string& text) { _written.insert(text); }

  /// Is every block that a successful synchronisation before event `events` proved stored still there, unless it was
  /// being changed then? `partial`: event number `events` may have begun.
  void check(BlockStorage& storage, size_t events, bool partial) const {
    std::set<int64_t> found;
    storage.enumerateStoredBlocks([&](const StoredBlock& block) { return !found.insert(block.offset).second; },
                                  nullptr);
    for (const Block& block : _blocks) {
      const std::string* expected = acknowledged(block, events, partial);
      if (!expected || expected->empty()) continue;
      ASSERT_TRUE(storage.seekToFileOffset(block.offset));
      ASSERT_EQ(storage.nextAvailableBlock().view(), *expected) << block.offset << " after " << events;
      ASSERT_EQ(storage.offsetOfLastBlock(), block.offset) << "after " << events;
      ASSERT_TRUE(found.contains(block.offset)) << block.offset << " after " << events;
    }
    checkNothingIsWrong(storage);
  }

  /// Whatever reading returns was written once. One exception lies in the format: zeros have the checksum 0, so a block
  /// whose header lies across two sectors reads as zeros when only the first of them reached the disk.
  void checkNothingIsWrong(BlockStorage& storage) const {
    ASSERT_TRUE(storage.seekToFileOffset(0));
    while (const Data data = storage.nextAvailableBlock()) {
      const bool lostSector =
          storage.offsetOfLastBlock() % 512 > 496 && data.view().find_first_not_of('\0') == std::string_view::npos;
      ASSERT_TRUE(lostSector || _written.contains(std::string(data.view())))
          << data.view() << " at " << storage.offsetOfLastBlock();
    }
  }

  size_t liveBlocks() const {
    return static_cast<size_t>(std::ranges::count_if(
        _blocks, [](const Block& block) { return !block.doubtful && !block.versions.back().text.empty(); }));
  }

 private:
  struct Version {
    size_t event;      // how many changes of the file came before
    size_t proven;     // how many came before the synchronisation that proved it
    std::string text;  // empty: deleted
  };
  struct Block {
    int64_t offset;
    size_t room;
    std::vector<Version> versions;
    bool doubtful;
  };

  size_t pick(size_t count) { return _random() % count; }
  size_t events() const { return _files->events.size(); }

  std::string newText(size_t most) {
    std::string text = std::to_string(++_texts) + ":";
    const size_t length = std::min(most, pick(30) == 0 ? size_t{1500} : 1 + pick(220));
    while (text.size() < length) text += static_cast<char>('a' + pick(26));
    if (text.size() <= most) _written.insert(text);
    return text;
  }

  void append(BlockStorage& storage) {
    const int64_t offset = storage.seekToEndOfFile();
    const std::string text = newText(SIZE_MAX);
    const Version version{events(), SIZE_MAX, text};
    if (!storage.appendBlock(Data::withBytes(text))) return void(++failures);
    const auto extent = static_cast<size_t>(storage.offsetInFile() - offset);
    _blocks.push_back({offset, extent - 16, {version}, false});
  }

  void change(BlockStorage& storage, bool update) {
    Block& block = _blocks[pick(_blocks.size())];
    const std::string text = update ? newText(block.room) : "";
    if (block.doubtful || block.versions.back().text.empty() || text.size() > block.room) return;
    block.versions.push_back({events(), SIZE_MAX, text});
    if (update ? storage.updateBlock(Data::withBytes(text), block.offset)
               : storage.deleteBlockAtFileOffset(block.offset)) {
      return;
    }
    ++failures;
    changeFailed = block.doubtful = true;
  }

  void synchronize(BlockStorage& storage) {
    const bool done = storage.synchronizeFile();
    failures += done ? 0 : 1;
    for (Block& block : _blocks) {
      Version& last = block.versions.back();
      if (last.proven != SIZE_MAX) continue;
      if (done) last.proven = events();
      block.doubtful |= !done;
    }
  }

  // Nothing when nothing was proven, or when a later version may have been under way.
  static const std::string* acknowledged(const Block& block, size_t events, bool partial) {
    const std::string* text = nullptr;
    if (block.doubtful) return nullptr;
    for (const Version& version : block.versions) {
      if (version.proven <= events) {
        text = &version.text;
      } else if (text && version.event < events + (partial ? 1 : 0)) {
        return nullptr;
      }
    }
    return text;
  }

  SimulatedFiles* _files;
  std::mt19937 _random;
  std::vector<Block> _blocks;
  std::set<std::string> _written;
  size_t _texts = 0;
};

}  // namespace velan

#endif  // VELAN_TESTS_STORAGE_BLOCK_WORKLOAD_H
