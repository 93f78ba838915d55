// `velan blocks …`.
#include <fmt/format.h>

#include <cstdint>
#include <memory>
#include <string>
#include <utility>

#include "tools/CommandLine.h"
#include "tools/Commands.h"
#include "tools/Console.h"
#include "tools/Interruption.h"
#include "tools/Progress.h"
#include "velan/storage/BlockStorage.h"

namespace velan::tool {
namespace {

const char* describe(BlockDamage damage) {
  switch (damage) {
    case BlockDamage::InvalidHeader:
      return "no block header";
    case BlockDamage::Truncated:
      return "the file ends inside a block";
    case BlockDamage::InvalidChecksum:
      return "wrong checksum";
    case BlockDamage::DoesNotInflate:
      return "does not inflate";
    case BlockDamage::HiddenBlocks:
      return "blocks where filler should be";
  }
  return "";
}

void printDamage(const DamagedPlace& place) {
  print(fmt::format("{:>12}  {:>10}  damaged: {}\n", place.offset, place.length, describe(place.damage)));
}

// Shows how far an operation of a storage has come, and cancels it where the user does. To be gone before anything else
// is said.
class ProgressHandler {
 public:
  explicit ProgressHandler(const char* action) : _progress(action, "bytes") {}
  bool operator()(int64_t done, int64_t total) {
    _progress.show(done, total);
    return Interruption::requested();
  }

 private:
  Progress _progress;
};

struct BlockOptions {
  std::string file;
  std::string input = "-";
  std::string output;
  int64_t offset = 0;
  uint64_t blockSize = 0;
  size_t limit = size_t{1} << 30;
  bool compress = false;
  bool dryRun = false;
  bool skipErrors = false;
};

// Null after a complaint.
std::unique_ptr<BlockStorage> opened(const BlockOptions& options, bool updating) {
  const String path = String::fromUTF8(options.file);
  FileError error;
  auto storage = updating ? BlockStorage::blockStorageForUpdatingAtPath(path, &error)
                          : BlockStorage::blockStorageForReadingAtPath(path, &error);
  if (!storage) {
    trouble(options.file, error);
    return nullptr;
  }
  storage->setBlockSize(options.blockSize);
  storage->setCompressed(options.compress);
  storage->setInflationLimit(options.limit);
  return storage;
}

int list(const BlockOptions& options) {
  const auto storage = opened(options, false);
  if (!storage) return Trouble;
  print(fmt::format("{:>12}  {:>10}  {:>8}  kind\n", "offset", "stored", "padding"));
  int64_t count = 0;
  const bool whole = storage->enumerateStoredBlocks(
      [&count](const StoredBlock& block) {
        const char* kind = block.deleted() ? "deleted" : block.compressed ? "compressed" : "plain";
        print(fmt::format("{:>12}  {:>10}  {:>8}  {}\n", block.offset, block.length, block.padding, kind));
        count += block.deleted() ? 0 : 1;
        return false;
      },
      [](const DamagedPlace& place) {
        printDamage(place);
        return false;
      });
  if (!whole) return trouble(options.file, storage->error());
  return count > 0 ? Something : Nothing;
}

int report(const BlockSurvey& survey) {
  for (const DamagedPlace& place : survey.damages) printDamage(place);
  print(fmt::format("{}, {} deleted, {}\n", counted(static_cast<uint64_t>(survey.blocks), "block"), survey.deleted,
                    counted(survey.damages.size(), "damaged place")));
  return survey.damages.empty() ? Something : Nothing;
}

int verify(const BlockOptions& options) {
  const auto storage = opened(options, false);
  if (!storage) return Trouble;
  const auto survey = storage->verify(ProgressHandler("verifying"));
  return survey ? report(*survey) : trouble(options.file, storage->error());
}

int get(const BlockOptions& options) {
  const auto storage = opened(options, false);
  if (!storage) return Trouble;
  const Data data = storage->seekToFileOffset(options.offset) ? storage->nextAvailableBlock() : Data();
  const FileError error = storage->error();
  if (error.reason() == FileReason::TooLarge) {
    return trouble(fmt::format("{}: the block at {} expands to more than {} bytes (see --limit)", options.file,
                               options.offset, options.limit));
  }
  if (error) return trouble(options.file, error);
  if (!data || storage->offsetOfLastBlock() != options.offset) {
    complain(fmt::format("{}: no readable block at {}", options.file, options.offset));
    return Nothing;
  }
  print(data.view());
  return Something;
}

int append(const BlockOptions& options) {
  const Data bytes = readDataOrComplain(options.input);
  if (!bytes) return Trouble;
  if (bytes.isEmpty()) return trouble(options.input + ": is empty; an empty block cannot be stored");
  if (bytes.length() > UINT32_MAX) return trouble(options.input + ": a block holds 4,294,967,295 bytes at most");
  const auto storage = opened(options, true);
  if (!storage) return Trouble;
  if (!storage->recoverTail() && !storage->error()) {
    return trouble(options.file + ": is damaged, or no block file; try `velan blocks repair`");
  }
  const int64_t offset = storage->error() ? 0 : storage->seekToEndOfFile();
  if (storage->error() || !storage->appendBlock(bytes) || !storage->synchronizeFile() || !storage->closeFile()) {
    return trouble(options.file, storage->error());
  }
  print(fmt::format("{}\n", offset));
  return Something;
}

int remove(const BlockOptions& options) {
  FileError missing;
  if (!File::open(String::fromUTF8(options.file), FileAccess::Updating, &missing)) {
    return trouble(options.file, missing);
  }
  const auto storage = opened(options, true);
  if (!storage) return Trouble;
  if (!storage->isBlockAtFileOffset(options.offset) && !storage->error()) {
    complain(fmt::format("{}: no block at {}", options.file, options.offset));
    return Nothing;
  }
  const bool deleted = !storage->error() && storage->deleteBlockAtFileOffset(options.offset);
  return deleted && storage->synchronizeFile() && storage->closeFile() ? Something
                                                                       : trouble(options.file, storage->error());
}

// What was to be written to a new file and was not.
int notWritten(const BlockOptions& options, const char* what, const FileError& error) {
  if (error.reason() == FileReason::Exists) return trouble(options.output, error);
  return trouble(fmt::format("{}: cannot be {} into {}: {}", options.file, what, options.output,
                             error ? error.description().toUTF8() : "it is damaged"));
}

int compact(const BlockOptions& options) {
  const Interruption interruption;
  const auto storage = opened(options, false);
  if (!storage) return Trouble;
  const auto survey =
      storage->compactToPath(String::fromUTF8(options.output), options.skipErrors, ProgressHandler("compacting"));
  if (!survey) return notWritten(options, "compacted", storage->error());
  if (survey->damages.empty()) return Something;
  report(*survey);
  return trouble(options.file + ": what is damaged was left out");
}

int repair(const BlockOptions& options) {
  const Interruption interruption;
  const auto storage = opened(options, false);
  if (!storage) return Trouble;
  const auto survey = options.dryRun
                          ? storage->verify(ProgressHandler("verifying"))
                          : storage->repairToPath(String::fromUTF8(options.output), ProgressHandler("repairing"));
  if (!survey && options.dryRun) return trouble(options.file, storage->error());
  if (!survey) return notWritten(options, "repaired", storage->error());
  report(*survey);
  return survey->blocks > 0 ? Something : Nothing;
}

void addOffset(CLI::App& command, BlockOptions& options) {
  addArgument(command, "OFFSET", options.offset, "Where the block begins, in bytes")->required();
}

void addWriting(CLI::App& command, BlockOptions& options) {
  const auto check = [](const std::string& text) {
    const bool fits = !text.empty() && text.find_first_not_of("0123456789") == std::string::npos && text.size() < 10 &&
                      std::stoul(text) % 512 == 0;
    return fits ? std::string() : std::string("must be a multiple of 512");
  };
  command.add_option("--block-size", options.blockSize, "Let blocks occupy a multiple of N bytes")
      ->check(check)
      ->type_name("N");
  command.add_flag("-c,--compress", options.compress, "Compress blocks where that makes them shorter");
}

std::pair<CLI::App*, BlockOptions*> add(CLI::App& blocks, int& status, const char* name, const char* description,
                                        int (*run)(const BlockOptions&)) {
  const auto added = addCommand<BlockOptions>(blocks, status, name, description, run);
  addArgument(*added.first, "FILE", added.second->file, "The block file")->required();
  return added;
}

void addGet(CLI::App& blocks, int& status) {
  const auto [command, options] = add(blocks, status, "get", "Write the contents of a block to standard output", get);
  addOffset(*command, *options);
  addNumber(*command, "--limit", options->limit, size_t{1}, SIZE_MAX,
            "Fail when the block expands to more than N bytes (default 1 GiB)");
}

void addAppend(CLI::App& blocks, int& status) {
  const auto [command, options] =
      add(blocks, status, "append", "Store a block, print its offset; completes or cuts a torn end first", append);
  addArgument(*command, "INPUT", options->input, "What to store; standard input by default");
  addWriting(*command, *options);
}

void addDelete(CLI::App& blocks, int& status) {
  const auto [command, options] = add(blocks, status, "delete", "Mark a block as deleted", remove);
  addOffset(*command, *options);
}

void addCompact(CLI::App& blocks, int& status) {
  const auto [command, options] =
      add(blocks, status, "compact", "Write the blocks that are left into a new file", compact);
  command->add_option("-o,--output", options->output, "The new file; must not exist")->required()->type_name("FILE");
  command->add_flag("--skip-errors", options->skipErrors,
                    "Go on behind damage, and exit with 2 where something was left out");
  addWriting(*command, *options);
}

void addRepair(CLI::App& blocks, int& status) {
  const auto [command, options] =
      add(blocks, status, "repair",
          "Write all blocks that can be found into a new file, also those behind damaged headers; headers inside "
          "payloads that hold blocks themselves can be mistaken for blocks",
          repair);
  CLI::App* target = command->add_option_group("target");
  target->add_option("-o,--output", options->output, "The new file; must not exist")->type_name("FILE");
  target->add_flag("--dry-run", options->dryRun, "Only tell what would be found");
  target->require_option(1);
}

}  // namespace

void addBlockCommands(CLI::App& app, int& status) {
  CLI::App* blocks = app.add_subcommand("blocks", "Block files: list, check, read, write, compact, repair");
  blocks->require_subcommand(1);
  blocks->footer(
      "Examples:\n"
      "  velan blocks append notes.blocks letter.txt    store a file, print its offset\n"
      "  velan blocks get notes.blocks 0 > letter.txt   read it back\n"
      "  velan blocks verify notes.blocks               exit status 1 when something is damaged\n"
      "  velan blocks repair notes.blocks --dry-run     what can be saved?\n"
      "  velan blocks repair notes.blocks -o new.blocks");
  add(*blocks, status, "list", "List all blocks with their offsets", list);
  add(*blocks, status, "verify", "Check every header and checksum", verify);
  addGet(*blocks, status);
  addAppend(*blocks, status);
  addDelete(*blocks, status);
  addCompact(*blocks, status);
  addRepair(*blocks, status);
}

}  // namespace velan::tool
