// How commands are declared: each has a structure of options and a function that runs on it.
#ifndef VELAN_TOOLS_COMMAND_LINE_H
#define VELAN_TOOLS_COMMAND_LINE_H

#include <CLI/CLI.hpp>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace velan::tool {

/// Adds a command whose options live as long as its callback.
template <typename Options>
std::pair<CLI::App*, Options*> addCommand(CLI::App& app, int& status, const char* name, const char* description,
                                          int (*run)(const Options&)) {
  CLI::App* command = app.add_subcommand(name, description);
  const auto options = std::make_shared<Options>();
  command->callback([options, run, &status] { status = run(*options); });
  return {command, options.get()};
}

[[noreturn]] inline void fail(const std::string& message) {
  throw CLI::ValidationError(message, CLI::ExitCodes::ValidationError);
}

/// An argument that stands without a name.
template <typename Type>
CLI::Option* addArgument(CLI::App& command, const char* name, Type& value, const char* description) {
  return command.add_option(name, value, description)->type_name("");
}

/// An option that takes one of a few words.
template <typename Choice>
CLI::Option* addChoice(CLI::App& command, const char* name, Choice& choice, const char* description,
                       const std::vector<std::pair<std::string, Choice>>& choices) {
  std::string expected;
  for (const auto& [known, value] : choices) expected += (expected.empty() ? "" : "|") + known;
  const auto choose = [&choice, name, choices, expected](const std::string& word) {
    for (const auto& [known, value] : choices) {
      if (word != known) continue;
      choice = value;
      return;
    }
    fail(std::string(name) + " takes " + expected + ", not " + word);
  };
  return command.add_option_function<std::string>(name, choose, description)->type_name(expected);
}

/// An option that takes a whole number; `number` may be a `std::optional`.
template <typename Target, typename Number>
void addNumber(CLI::App& command, const char* name, Target& number, Number least, Number greatest,
               const char* description) {
  command.add_option(name, number, description)->check(CLI::Range(least, greatest).description(""))->type_name("N");
}

}  // namespace velan::tool

#endif  // VELAN_TOOLS_COMMAND_LINE_H
