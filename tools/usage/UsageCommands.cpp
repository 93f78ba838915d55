// The commands "completion" and "manual".
#include <CLI/CLI.hpp>

#include "tools/CommandLine.h"
#include "tools/Commands.h"
#include "tools/Console.h"
#include "tools/usage/Completions.h"
#include "tools/usage/Manual.h"
#include "tools/usage/OptionTable.h"

namespace velan::tool {
namespace {

constexpr const char* kGroup = "for this machine: its check, its manual, its shell";

}  // namespace

void addUsageCommands(CLI::App& app) {
  CLI::App* completion = app.add_subcommand("completion", "Print the completions for a shell");
  const auto shell = std::make_shared<Shell>(Shell::Bash);
  addChoice(*completion, "SHELL", *shell, "bash, zsh or fish",
            {{"bash", Shell::Bash}, {"zsh", Shell::Zsh}, {"fish", Shell::Fish}})
      ->required();
  completion->callback([&app, shell] { print(completionScript(*shell, describeCommands(app))); });
  completion->footer(
      "They are installed with the tool; this is for shells that look elsewhere.\n"
      "Examples:\n"
      "  velan completion bash > ~/.local/share/bash-completion/completions/velan\n"
      "  velan completion fish > ~/.config/fish/completions/velan.fish");
  completion->group(kGroup);
  CLI::App* manual = app.add_subcommand("manual", "Print the manual page");
  manual->callback([&app] { print(manualPage(describeCommands(app))); });
  manual->footer(
      "Examples:\n"
      "  velan manual | man -l -\n"
      "  velan manual > velan.1");
  manual->group(kGroup);
  app.get_subcommand("selftest")->group(kGroup);
}

}  // namespace velan::tool
