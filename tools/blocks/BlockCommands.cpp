// `velan blocks …`, `velan crc`, `velan deflate`, `velan gzip`, `velan inflate`.
#include <fmt/format.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "tools/Commands.h"
#include "tools/Console.h"
#include "velan/storage/BlockStorage.h"
#include "velan/storage/Compression.h"
#include "velan/text/digest/Checksums.h"

namespace velan::tool {
namespace {

// How far a long operation has come, on one line of a terminal, four times a second.
class ProgressLine {
 public:
  explicit ProgressLine(const char* what) : _what(what), _shown(isatty(STDERR_FILENO) == 1) {}
  ~ProgressLine() {
    if (_drawn) std::fputs("\r\x1B[K", stderr);
  }
  ProgressLine(const ProgressLine&) = delete;
  ProgressLine& operator=(const ProgressLine&) = delete;

  bool operator()(int64_t done, int64_t total) {
    const auto now = std::chrono::steady_clock::now();
    if (_shown && total > 0 && now - _last > std::chrono::milliseconds(250)) {
      std::fprintf(stderr, "\r%s %d %%", _what,
                   static_cast<int>(100.0 * static_cast<double>(done) / static_cast<double>(total)));
      _drawn = true;
      _last = now;
    }
    return false;
  }

 private:
  const char* _what;
  bool _shown;
  bool _drawn = false;
  std::chrono::steady_clock::time_point _last = std::chrono::steady_clock::now();
};

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
  fmt::print("{:>12}  {:>10}  damaged: {}\n", place.offset, place.length, describe(place.damage));
}

int trouble(const std::string& message) {
  complain(message);
  return Trouble;
}

struct BlockOptions {
  std::string file;
  std::string input = "-";
  std::string output;
  int64_t offset = 0;
  uint64_t blockSize = 0;
  bool compress = false;
  bool dryRun = false;
  bool skipErrors = false;
};

std::unique_ptr<BlockStorage> opened(const BlockOptions& options, bool updating) {
  const String path = String::fromUTF8(options.file);
  if (access(options.file.c_str(), F_OK) != 0 && !updating) {
    complain(fmt::format("{}: {}", options.file, std::strerror(errno)));
    return nullptr;
  }
  auto storage =
      updating ? BlockStorage::blockStorageForUpdatingAtPath(path) : BlockStorage::blockStorageForReadingAtPath(path);
  if (!storage) {
    complain(fmt::format("{}: cannot be opened; another program may have locked it", options.file));
    return nullptr;
  }
  storage->setBlockSize(options.blockSize);
  storage->setCompressed(options.compress);
  return storage;
}

int list(const BlockOptions& options) {
  const auto storage = opened(options, false);
  if (!storage) return Trouble;
  fmt::print("{:>12}  {:>10}  {:>8}  kind\n", "offset", "stored", "padding");
  int64_t count = 0;
  storage->enumerateStoredBlocks(
      [&count](const StoredBlock& block) {
        const char* kind = block.deleted() ? "deleted" : block.compressed ? "compressed" : "plain";
        fmt::print("{:>12}  {:>10}  {:>8}  {}\n", block.offset, block.length, block.padding, kind);
        count += block.deleted() ? 0 : 1;
        return false;
      },
      [](const DamagedPlace& place) {
        printDamage(place);
        return false;
      });
  return count > 0 ? Something : Nothing;
}

int report(const BlockSurvey& survey) {
  for (const DamagedPlace& place : survey.damages) printDamage(place);
  fmt::print("{} blocks, {} deleted, {} damaged places\n", survey.blocks, survey.deleted, survey.damages.size());
  return survey.damages.empty() ? Something : Nothing;
}

std::optional<BlockSurvey> surveyOf(BlockStorage& storage) {
  ProgressLine progress("verifying");
  return storage.verify(progress);
}

int verify(const BlockOptions& options) {
  const auto storage = opened(options, false);
  if (!storage) return Trouble;
  const auto survey = surveyOf(*storage);
  return survey ? report(*survey) : trouble(options.file + ": cannot be read");
}

int writeOut(const Data& data) {
  if (std::fwrite(data.bytes(), 1, data.length(), stdout) == data.length() && std::fflush(stdout) == 0)
    return Something;
  return trouble(std::string("standard output: ") + std::strerror(errno));
}

int get(const BlockOptions& options) {
  const auto storage = opened(options, false);
  if (!storage) return Trouble;
  const Data data = storage->seekToFileOffset(options.offset) ? storage->nextAvailableBlock() : Data();
  if (!data || storage->offsetOfLastBlock() != options.offset) {
    complain(fmt::format("{}: no readable block at {}", options.file, options.offset));
    return Nothing;
  }
  return writeOut(data);
}

int append(const BlockOptions& options) {
  std::string why;
  const auto bytes = readFile(options.input, why);
  if (!bytes) return trouble(options.input + ": " + why);
  const auto storage = opened(options, true);
  if (!storage) return Trouble;
  if (!storage->recoverTail()) return trouble(options.file + ": is damaged; try `velan blocks repair`");
  const int64_t offset = storage->seekToEndOfFile();
  if (!storage->appendBlock(Data::withBytes(*bytes)) || !storage->synchronizeFile()) {
    return trouble(fmt::format("{}{}", options.file,
                               bytes->empty() ? ": an empty block cannot be stored" : ": cannot be written"));
  }
  fmt::print("{}\n", offset);
  return Something;
}

int remove(const BlockOptions& options) {
  if (access(options.file.c_str(), F_OK) != 0) return trouble(options.file + ": " + std::strerror(errno));
  const auto storage = opened(options, true);
  if (!storage) return Trouble;
  if (!storage->deleteBlockAtFileOffset(options.offset)) {
    complain(fmt::format("{}: no block at {}", options.file, options.offset));
    return Nothing;
  }
  return storage->synchronizeFile() ? Something : trouble(options.file + ": cannot be written");
}

// The compressed blocks of the new file stay as they are when compression is asked for.
struct CompressingHandler : BlockStorageHandler {
  explicit CompressingHandler(BlockStorage& source) : _total(source.lengthOfFile()) {}
  bool storageHandleDataKey(BlockStorage& storage, const Data&, int64_t) override {
    storage.setCompressed(compress);
    return true;
  }
  bool shouldCancelIterationOfStorage(BlockStorage& storage) override {
    return _progress(storage.offsetInFile(), _total);
  }
  bool compress = false;

 private:
  int64_t _total;
  ProgressLine _progress{"compacting"};
};

int compact(const BlockOptions& options) {
  if (access(options.output.c_str(), F_OK) == 0) return trouble(options.output + ": there is a file already");
  const auto storage = opened(options, false);
  if (!storage) return Trouble;
  CompressingHandler handler(*storage);
  handler.compress = options.compress;
  if (storage->optimizeToPath(String::fromUTF8(options.output), options.skipErrors, &handler)) return Something;
  return trouble(fmt::format("{}: cannot be compacted into {}", options.file, options.output));
}

int repair(const BlockOptions& options) {
  const auto storage = opened(options, false);
  if (!storage) return Trouble;
  ProgressLine progress("repairing");
  const auto survey =
      options.dryRun ? storage->verify(progress) : storage->repairToPath(String::fromUTF8(options.output), progress);
  if (!survey) {
    return trouble(options.dryRun ? options.file + ": cannot be read"
                                  : options.output + ": there is a file already, or it cannot be written");
  }
  report(*survey);
  return survey->blocks > 0 ? Something : Nothing;
}

// Reads the input, lets `convert` answer with bytes, and writes those.
int filter(const std::string& input, const char* failure, FunctionRef<Data(const Data&)> convert) {
  std::string why;
  const auto bytes = readFile(input, why);
  if (!bytes) return trouble(input + ": " + why);
  const Data result = convert(Data::withBytes(*bytes));
  return result ? writeOut(result) : trouble(input + ": " + failure);
}

int crc(const std::vector<std::string>& files) {
  for (const std::string& file : files) {
    std::string why;
    const auto bytes = readFile(file, why);
    if (!bytes) return trouble(fmt::format("{}: {}", file, why));
    fmt::print("{:08x}  {}\n", CRC32(bytes->data(), bytes->size()), file);
  }
  return Something;
}

void addBlocks(CLI::App& app, int& status) {
  auto* blocks = app.add_subcommand("blocks", "Block files: list, check, read, write, compact, repair");
  blocks->require_subcommand(1);
  blocks->footer(
      "Examples:\n"
      "  velan blocks append notes.blocks letter.txt    store a file, print its offset\n"
      "  velan blocks get notes.blocks 0 > letter.txt   read it back\n"
      "  velan blocks verify notes.blocks               exit status 1 when something is damaged\n"
      "  velan blocks repair notes.blocks --dry-run     what can be saved?\n"
      "  velan blocks repair notes.blocks -o new.blocks");
  const auto options = std::make_shared<BlockOptions>();
  const auto command = [&](const char* name, const char* description, int (*run)(const BlockOptions&)) {
    auto* subcommand = blocks->add_subcommand(name, description);
    subcommand->add_option("file", options->file, "The block file")->required();
    subcommand->callback([options, run, &status] { status = run(*options); });
    return subcommand;
  };
  const auto addOffset = [&](CLI::App* subcommand) {
    subcommand->add_option("offset", options->offset, "Where the block begins, in bytes")->required();
  };
  const auto addWriting = [&](CLI::App* subcommand) {
    subcommand->add_option("--block-size", options->blockSize, "Let blocks occupy a multiple of so many bytes")
        ->check([](const std::string& text) {
          const bool fits = !text.empty() && text.find_first_not_of("0123456789") == std::string::npos &&
                            text.size() < 10 && std::stoul(text) % 512 == 0;
          return fits ? std::string() : std::string("must be a multiple of 512");
        });
    subcommand->add_flag("--compress,-c", options->compress, "Compress blocks where that makes them shorter");
  };
  command("list", "List all blocks with their offsets", list);
  command("verify", "Check every header and checksum", verify);
  addOffset(command("get", "Write the contents of a block to standard output", get));
  auto* appending = command("append", "Store a block, print its offset; completes or cuts a torn end first", append);
  appending->add_option("input", options->input, "What to store; standard input by default");
  addWriting(appending);
  addOffset(command("delete", "Mark a block as deleted", remove));
  auto* compacting = command("compact", "Write the blocks that are left into a new file", compact);
  compacting->add_option("--output,-o", options->output, "The new file; must not exist")->required();
  compacting->add_flag("--skip-errors", options->skipErrors, "Go on behind damaged blocks");
  addWriting(compacting);
  auto* repairing = command("repair",
                            "Write all blocks that can be found into a new file, also those behind damaged headers; "
                            "headers inside payloads that hold blocks themselves can be mistaken for blocks",
                            repair);
  auto* output = repairing->add_option("--output,-o", options->output, "The new file; must not exist");
  auto* dryRun = repairing->add_flag("--dry-run", options->dryRun, "Only tell what would be found");
  output->excludes(dryRun);
  repairing->callback([options, &status] {
    if (!options->dryRun && options->output.empty()) throw CLI::RequiredError("--output or --dry-run");
    status = repair(*options);
  });
}

}  // namespace

void addBlockCommands(CLI::App& app, int& status) {
  addBlocks(app, status);

  struct FilterOptions {
    std::string input = "-";
    std::vector<std::string> files{"-"};
    int level = -1;
    size_t limit = SIZE_MAX;
  };
  const auto options = std::make_shared<FilterOptions>();
  auto* sum = app.add_subcommand("crc", "CRC-32 of files, as block files use it (not that of zlib)");
  sum->add_option("files", options->files, "Standard input by default");
  sum->footer("Example:\n  velan crc letter.txt");
  sum->callback([options, &status] { status = crc(options->files); });

  const auto addFilter = [&](const char* name, const char* description, const char* example) {
    auto* subcommand = app.add_subcommand(name, description);
    subcommand->add_option("input", options->input, "Standard input by default");
    subcommand->footer(fmt::format("Example:\n  {}", example));
    return subcommand;
  };
  const auto addCompression = [&](const char* name, const char* description, const char* example, bool gzip) {
    auto* subcommand = addFilter(name, description, example);
    subcommand->add_option("--level,-l", options->level, "1 (fast) to 9 (small)")->check(CLI::Range(1, 9));
    subcommand->callback([options, gzip, &status] {
      status = filter(options->input, "cannot be compressed (it is empty, or above 4 GB)", [&](const Data& data) {
        return dataByCompressingBytes(data.bytes(), data.length(), options->level, gzip);
      });
    });
  };
  addCompression("deflate", "Compress in zlib format", "velan deflate letter.txt > letter.z", false);
  addCompression("gzip", "Compress in gzip format", "velan gzip letter.txt > letter.txt.gz", true);
  auto* inflating = addFilter("inflate", "Expand zlib or gzip data", "velan inflate letter.txt.gz --limit 1000000");
  inflating->add_option("--limit", options->limit, "Fail when more bytes than that would come out");
  inflating->callback([options, &status] {
    status = filter(options->input, "is no whole zlib or gzip stream, or expands beyond the limit",
                    [&](const Data& data) { return dataByInflatingData(data, options->limit); });
  });
}

}  // namespace velan::tool
