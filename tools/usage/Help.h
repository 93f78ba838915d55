// What --help prints.
#ifndef VELAN_TOOLS_USAGE_HELP_H
#define VELAN_TOOLS_USAGE_HELP_H

#include <CLI/CLI.hpp>
#include <string>

namespace velan::tool {

/// Help that fits on a screen, or with `--all` everything.
class HelpFormatter : public CLI::FormatterBase {
 public:
  explicit HelpFormatter(bool all) : _all(all) {}
  std::string make_help(const CLI::App* command, std::string name, CLI::AppFormatMode mode) const override;

 private:
  const bool _all;
};

}  // namespace velan::tool

#endif  // VELAN_TOOLS_USAGE_HELP_H
