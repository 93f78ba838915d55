// The commands "crc", "deflate", "gzip" and "inflate".
#include <fmt/format.h>

#include <cstdint>
#include <string>
#include <vector>

#include "tools/CommandLine.h"
#include "tools/Commands.h"
#include "tools/Console.h"
#include "velan/base/FunctionRef.h"
#include "velan/storage/Compression.h"
#include "velan/text/digest/Checksums.h"

namespace velan::tool {
namespace {

constexpr const char* kGroup = "for bytes: a checksum, compression";

struct ChecksumOptions {
  std::vector<std::string> files{"-"};
};

struct FilterOptions {
  std::string input = "-";
  int level = -1;
  size_t limit = SIZE_MAX;
};

int printChecksums(const ChecksumOptions& options) {
  for (const std::string& file : options.files) {
    const auto bytes = readFileOrComplain(file);
    if (!bytes) return Trouble;
    print(fmt::format("{:08x}  {}\n", CRC32(bytes->data(), bytes->size()), file));
  }
  return Something;
}

// Reads the input, lets `convert` answer with bytes, and writes those.
int filter(const std::string& input, const char* failure, FunctionRef<Data(const Data&)> convert) {
  const auto bytes = readFileOrComplain(input);
  if (!bytes) return Trouble;
  const Data result = convert(Data::withBytes(*bytes));
  if (!result) return trouble(input + ": " + failure);
  print(result.view());
  return Something;
}

template <bool gzip>
int compress(const FilterOptions& options) {
  return filter(options.input, "cannot be compressed (it is empty, or above 4 GB)", [&options](const Data& data) {
    return dataByCompressingBytes(data.bytes(), data.length(), options.level, gzip);
  });
}

int inflate(const FilterOptions& options) {
  return filter(options.input, "is no whole zlib or gzip stream, or expands beyond the limit",
                [&options](const Data& data) { return dataByInflatingData(data, options.limit); });
}

void addFilter(CLI::App& app, int& status, const char* name, const char* description, int (*run)(const FilterOptions&),
               const char* footer) {
  const auto [command, options] = addCommand<FilterOptions>(app, status, name, description, run);
  addArgument(*command, "INPUT", options->input, "Standard input by default");
  if (run == inflate) {
    command->add_option("--limit", options->limit, "Fail when more than N bytes would come out")->type_name("N");
  } else {
    addNumber(*command, "-l,--level", options->level, 1, 9, "1 (fast) to 9 (small)");
  }
  command->footer(footer);
  command->group(kGroup);
}

}  // namespace

void addByteFilters(CLI::App& app, int& status) {
  const auto [command, options] = addCommand<ChecksumOptions>(
      app, status, "crc", "CRC-32 of files, as block files use it (not that of zlib)", printChecksums);
  addArgument(*command, "FILE", options->files, "Standard input by default");
  command->footer("Example:\n  velan crc letter.txt");
  command->group(kGroup);
  addFilter(app, status, "deflate", "Compress in zlib format", compress<false>,
            "Example:\n  velan deflate letter.txt > letter.z");
  addFilter(app, status, "gzip", "Compress in gzip format", compress<true>,
            "Example:\n  velan gzip letter.txt > letter.txt.gz");
  addFilter(app, status, "inflate", "Expand zlib or gzip data", inflate,
            "Example:\n  velan inflate letter.txt.gz --limit 1000000");
}

}  // namespace velan::tool
