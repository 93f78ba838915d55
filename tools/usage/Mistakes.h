// What to tell people who mistyped a command or an option.
#ifndef VELAN_TOOLS_USAGE_MISTAKES_H
#define VELAN_TOOLS_USAGE_MISTAKES_H

#include <optional>
#include <string>
#include <vector>

namespace CLI {
class App;
class ParseError;
}  // namespace CLI

namespace velan::tool {

/// The complaint about a word that should be a command and is none, before anything is parsed.
std::optional<std::string> unknownCommand(const CLI::App& app, const std::vector<std::string>& arguments);

/// One line, whatever the parser has to say.
std::string describeMistake(const CLI::App& app, const CLI::ParseError& error);

}  // namespace velan::tool

#endif  // VELAN_TOOLS_USAGE_MISTAKES_H
