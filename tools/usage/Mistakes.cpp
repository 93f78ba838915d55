#include "tools/usage/Mistakes.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <string_view>

#include "tools/usage/OptionTable.h"
#include "velan/base/String.h"
#include "velan/wildcard/WildcardMatching.h"

namespace velan::tool {
namespace {

constexpr double kSimilarity = 0.6;  // the least for a suggestion

// Empty when none of them is similar.
std::string nearest(const std::string& typed, const std::vector<std::string>& known) {
  const String word = String::fromUTF8Lossy(typed);
  double best = kSimilarity;
  std::string found;
  for (const std::string& each : known) {
    const String other = String::fromUTF8Lossy(each);
    const double similarity =
        stringMatchesUnixWildcardFuzzy(word.characters(), word.view().size(), other.characters(), other.view().size());
    if (similarity < best || (similarity == best && !found.empty())) continue;
    best = similarity;
    found = each;
  }
  return found;
}

const CLI::App& chosenCommand(const CLI::App& app) {
  const CLI::App* command = &app;
  while (!command->get_subcommands().empty()) command = command->get_subcommands().front();
  return *command;
}

// The option that was not expected, without its value; empty if it is something else.
std::string unknownOption(std::string_view message) {
  const size_t start = message.find(" -", message.find(':'));
  if (start == std::string_view::npos) return {};
  return std::string(message.substr(start + 1, message.find_first_of(" =", start + 1) - start - 1));
}

// What other tools call it.
constexpr std::pair<std::string_view, std::string_view> kForeignOptions[] = {
    {"--include", "-g 'GLOB' takes only some files"},
    {"--exclude", "-g '!GLOB' leaves files out"},
    {"--exclude-dir", "-g '!FOLDER/' leaves folders out"},
    {"--regexp", "words, phrases and * ? [a-c] are looked for, no regular expressions"},
    {"-E", "words, phrases and * ? [a-c] are looked for, no regular expressions"},
    {"-P", "words, phrases and * ? [a-c] are looked for, no regular expressions"},
    {"-x", "-F looks for a phrase; it need not be a line"},
    {"-S", "capital letters count with -s"},
    {"-Z", "--fuzzy finds similar words, -0 ends names by U+0000"},
    {"--bool", "AND, OR and NOT are always operators"},
    {"--near", "write word NEAR/5 word"},
};
constexpr std::string_view kForeignCommands[] = {"grep", "find", "query", "rg", "look", "ask"};

std::string suggestionFor(const std::string& option, const CommandEntry& command) {
  if (command.name == "velan search") {
    for (const auto& [name, instead] : kForeignOptions) {
      if (option == name) return fmt::format("; {}", instead);
    }
  }
  std::vector<std::string> names;
  for (const OptionEntry& each : command.options) {
    for (const std::string& name : each.longNames) names.push_back("--" + name);
  }
  const std::string found = nearest(option, names);
  return found.empty() ? found : fmt::format("; did you mean {}?", found);
}

}  // namespace

std::optional<std::string> unknownCommand(const CLI::App& app, const std::vector<std::string>& arguments) {
  const CLI::App* command = &app;
  for (const std::string& argument : arguments) {
    const CommandEntry entry = describeCommand(*command);
    if (entry.subcommands.empty() || argument == "--") return std::nullopt;
    if (argument.starts_with('-')) continue;
    const auto called = command->get_subcommands([&](const CLI::App* each) { return each->check_name(argument); });
    if (called.empty()) {
      std::vector<std::string> names;
      for (const SubcommandEntry& each : entry.subcommands) names.push_back(each.name);
      const bool isForeign =
          command == &app && std::ranges::find(kForeignCommands, argument) != std::end(kForeignCommands);
      const std::string found = isForeign ? "search" : nearest(argument, names);
      return fmt::format("{} has no command {}{} (see {} --help)", entry.name, argument,
                         found.empty() ? "" : fmt::format("; did you mean {}?", found), entry.name);
    }
    command = called.front();
  }
  return std::nullopt;
}

std::string describeMistake(const CLI::App& app, const CLI::ParseError& error) {
  const CommandEntry command = describeCommand(chosenCommand(app));
  const std::string option =
      error.get_exit_code() == static_cast<int>(CLI::ExitCodes::ExtrasError) ? unknownOption(error.what()) : "";
  std::string message = error.what();
  if (error.get_exit_code() == static_cast<int>(CLI::ExitCodes::ValidationError) && command.name == "velan search") {
    message += "; a query that begins with - comes after --";
  }
  if (!option.empty()) message = fmt::format("there is no option {}{}", option, suggestionFor(option, command));
  std::replace(message.begin(), message.end(), '\n', ' ');
  return fmt::format("{} (see {} --help)", message, command.name);
}

}  // namespace velan::tool
