// Commands and their options as people are told of them: what help, the manual and completions are made of.
#ifndef VELAN_TOOLS_USAGE_OPTION_TABLE_H
#define VELAN_TOOLS_USAGE_OPTION_TABLE_H

#include <string>
#include <string_view>
#include <vector>

namespace CLI {
class App;
}

namespace velan::tool {

struct OptionEntry {
  std::vector<std::string> shortNames;  // without dashes; none for an argument without a name
  std::vector<std::string> longNames;
  std::string type;  // of its value, such as "N" or "auto|always|never"; the name of an argument; empty for a flag
  std::string description;
  bool isCommon = true;  // belongs into a short help
  bool isRequired = false;
  bool isRepeated = false;

  /// Such as "-C, --context".
  std::string names() const;
};

/// The words that a value can be, if they are few.
std::vector<std::string> choicesOf(const OptionEntry& option);

struct SubcommandEntry {
  std::string name;
  std::string description;
  std::string group;  // empty for those that are shown one by one
};

struct CommandEntry {
  std::string name;  // with those above, such as "velan blocks get"
  std::string description;
  std::string details;   // further text, may be empty
  std::string examples;  // lines that begin with two blanks
  std::vector<OptionEntry> arguments;
  std::vector<OptionEntry> options;
  std::vector<SubcommandEntry> subcommands;

  /// Such as "velan search [OPTION]... [QUERY] [PATH]...".
  std::string synopsis() const;
};

CommandEntry describeCommand(const CLI::App& command);

/// The command and all below it; parents come first.
std::vector<CommandEntry> describeCommands(const CLI::App& root);

/// Of the group of options that a short help leaves out, and of those to which it may be set.
inline constexpr const char* kFurtherOptions = "Further options";

/// Leaves all options but these in the group of further ones; names as "--long" or "-s".
void keepInShortHelp(CLI::App& command, std::initializer_list<std::string_view> names);

}  // namespace velan::tool

#endif  // VELAN_TOOLS_USAGE_OPTION_TABLE_H
