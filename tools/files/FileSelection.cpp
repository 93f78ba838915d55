#include "tools/files/FileSelection.h"

#include <charconv>
#include <string_view>

#include "tools/CommandLine.h"
#include "tools/Console.h"
#include "tools/files/FileTypes.h"

namespace velan::tool {
namespace {

uint64_t sizeFromText(const std::string& text) {
  uint64_t number = 0;
  const char* const end = text.data() + text.size();
  const auto [rest, error] = std::from_chars(text.data(), end, number);
  const std::string_view unit(rest, static_cast<size_t>(end - rest));
  const size_t power = std::string_view("KMG").find(unit.empty() ? ' ' : unit.front());
  const int shift = unit.empty() ? 0 : 10 * (static_cast<int>(power) + 1);
  const bool isKnown = unit.empty() || (unit.size() == 1 && power != std::string_view::npos);
  if (error != std::errc() || !isKnown || number > (UINT64_MAX >> shift)) {
    fail("--max-filesize takes a number of bytes, or one with K, M or G, not " + text);
  }
  return number << shift;
}

void addTypeOptions(CLI::App& command, FileSelection& selection) {
  const auto check = [](const std::string& name) {
    return fileTypeCalled(name) ? "" : "no type of files is called " + name + " (see --type-list)";
  };
  command.add_option("-t,--type", selection.types, "Only files of this type; may be repeated")
      ->type_name("TYPE")
      ->allow_extra_args(false)
      ->check(check);
  const auto list = [] {
    print(fileTypeList());
    throw CLI::Success();
  };
  command.add_flag_callback("--type-list", list, "List the types");
}

}  // namespace

void addFileOptions(CLI::App& command, FileSelection& selection) {
  addArgument(command, "PATH", selection.paths, "Files, folders and - for standard input");
  command.add_option("-g,--glob", selection.globs, "Only files that match, or with ! do not; may be repeated")
      ->type_name("GLOB")
      ->allow_extra_args(false);
  addTypeOptions(command, selection);
  command.add_option("--files-from", selection.list, "Read further paths from this file, - for standard input")
      ->type_name("FILE");
  command.add_flag("--hidden", selection.hidden, "Search hidden files and folders, too");
  command.add_flag("!--no-ignore", selection.ignoreFiles, "Search what .gitignore and .ignore files leave out, too");
  command
      .add_option_function<std::string>(
          "--max-filesize", [&selection](const std::string& text) { selection.maxSize = sizeFromText(text); },
          "Only files of at most N bytes; N may end with K, M, G")
      ->type_name("N");
  command.add_flag("-L,--follow", selection.follow, "Follow symbolic links in folders");
  command.add_flag("--one-file-system", selection.oneFileSystem, "Stay on the file system of each folder");
  command.add_flag("-0,--null", selection.separatedByNul, "U+0000 ends names, in --files-from and where printed");
}

}  // namespace velan::tool
