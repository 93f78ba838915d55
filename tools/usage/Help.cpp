#include "tools/usage/Help.h"

#include <fmt/format.h>

#include <algorithm>
#include <map>

#include "tools/usage/OptionTable.h"

namespace velan::tool {
namespace {

constexpr size_t kColumn = 38;  // where descriptions begin

std::string line(const std::string& name, const std::string& description) {
  if (name.size() + 3 <= kColumn) return fmt::format("  {:<{}}{}\n", name, kColumn - 2, description);
  return fmt::format("  {}  {}\n", name, description);
}

std::string optionLine(const OptionEntry& option) {
  const std::string names = (option.shortNames.empty() ? "    " : "") + option.names();
  return line(option.type.empty() ? names : names + ' ' + option.type, option.description);
}

std::string optionLines(const CommandEntry& command, bool common, const char* title) {
  std::string lines;
  for (const OptionEntry& option : command.options) {
    if (option.isCommon == common) lines += optionLine(option);
  }
  return lines.empty() ? lines : fmt::format("{}:\n{}", title, lines);
}

// Those of a group share a line.
std::string subcommandLines(const CommandEntry& command) {
  std::string lines;
  std::map<std::string, std::string> groups;
  for (const SubcommandEntry& each : command.subcommands) {
    if (each.group.empty()) {
      lines += line(each.name, each.description);
    } else {
      std::string& names = groups[each.group];
      names += (names.empty() ? "" : ", ") + each.name;
    }
  }
  for (const auto& [group, names] : groups) lines += line(names, group);
  return lines.empty() ? lines : "Commands:\n" + lines;
}

}  // namespace

std::string HelpFormatter::make_help(const CLI::App* app, std::string, CLI::AppFormatMode) const {
  const CommandEntry command = describeCommand(*app);
  std::string text = fmt::format("{}\nUsage: {}\n", command.description, command.synopsis());
  for (const OptionEntry& argument : command.arguments) text += line(argument.type, argument.description);
  text += subcommandLines(command);
  if (_all || command.subcommands.empty()) text += optionLines(command, true, "Options");
  if (_all) text += optionLines(command, false, kFurtherOptions) + command.details;
  if (!command.examples.empty()) text += "Examples:\n" + command.examples;
  if (!text.ends_with('\n')) text += '\n';
  if (!_all) text += fmt::format("{} --help --all tells everything.\n", command.name);
  return text;
}

}  // namespace velan::tool
