#include "tools/usage/OptionTable.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <utility>

namespace velan::tool {
namespace {

constexpr const char* kPlainGroup = "Subcommands";

OptionEntry describeOption(const CLI::Option& option) {
  OptionEntry entry;
  entry.shortNames = option.get_snames();
  entry.longNames = option.get_lnames();
  const bool isArgument = !option.nonpositional();
  entry.type = isArgument ? option.get_name(true, false) : option.get_type_size() == 0 ? "" : option.get_type_name();
  entry.description = option.get_description();
  entry.isCommon = option.get_group() != kFurtherOptions;
  entry.isRequired = option.get_required();
  entry.isRepeated = option.get_expected_max() > 1;
  return entry;
}

void addOptions(const CLI::App& command, CommandEntry& entry) {
  for (const CLI::Option* option : command.get_options()) {
    if (option->get_group().empty()) continue;
    (option->nonpositional() ? entry.options : entry.arguments).push_back(describeOption(*option));
  }
}

std::vector<const CLI::App*> subcommandsOf(const CLI::App& command) {
  return command.get_subcommands([](const CLI::App*) { return true; });
}

}  // namespace

std::string OptionEntry::names() const {
  std::string names;
  for (const std::string& name : shortNames) names.append(names.empty() ? "-" : ", -").append(name);
  for (const std::string& name : longNames) names.append(names.empty() ? "--" : ", --").append(name);
  return names;
}

std::vector<std::string> choicesOf(const OptionEntry& option) {
  std::vector<std::string> words;
  if (option.type.find('|') == std::string::npos) return words;
  for (size_t start = 0; start < option.type.size();) {
    const size_t end = std::min(option.type.find('|', start), option.type.size());
    words.push_back(option.type.substr(start, end - start));
    start = end + 1;
  }
  return words;
}

std::string CommandEntry::synopsis() const {
  std::string text = name + (options.empty() ? "" : " [OPTION]...");
  for (const OptionEntry& argument : arguments) {
    text += argument.isRequired ? ' ' + argument.type : " [" + argument.type + ']';
    if (argument.isRepeated) text += "...";
  }
  return text + (subcommands.empty() ? "" : " COMMAND ...");
}

CommandEntry describeCommand(const CLI::App& command) {
  CommandEntry entry;
  for (const CLI::App* each = &command; each; each = each->get_parent()) {
    entry.name = each->get_name() + (entry.name.empty() ? "" : " ") + entry.name;
  }
  entry.description = command.get_description();
  const std::string footer = command.get_footer();
  const size_t examples = footer.find("Example");
  entry.details = footer.substr(0, examples);
  if (examples != std::string::npos) entry.examples = footer.substr(footer.find('\n', examples) + 1);
  addOptions(command, entry);
  for (const CLI::App* each : subcommandsOf(command)) {
    if (each->get_name().empty()) {
      addOptions(*each, entry);  // a group of options
    } else {
      const std::string& group = each->get_group();
      entry.subcommands.push_back({each->get_name(), each->get_description(), group == kPlainGroup ? "" : group});
    }
  }
  return entry;
}

std::vector<CommandEntry> describeCommands(const CLI::App& root) {
  std::vector<CommandEntry> entries;
  std::vector<const CLI::App*> pending{&root};
  while (!pending.empty()) {
    const CLI::App* command = pending.back();
    pending.pop_back();
    entries.push_back(describeCommand(*command));
    std::vector<const CLI::App*> below = subcommandsOf(*command);
    std::erase_if(below, [](const CLI::App* each) { return each->get_name().empty(); });
    pending.insert(pending.end(), below.rbegin(), below.rend());
  }
  return entries;
}

void keepInShortHelp(CLI::App& command, std::initializer_list<std::string_view> names) {
  for (CLI::Option* option : command.get_options()) {
    const auto isCalled = [option](std::string_view name) { return option->check_name(std::string(name)); };
    if (option->nonpositional() && std::none_of(names.begin(), names.end(), isCalled)) option->group(kFurtherOptions);
  }
}

}  // namespace velan::tool
