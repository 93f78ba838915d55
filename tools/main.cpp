#include <CLI/CLI.hpp>
#include <csignal>
#include <exception>
#include <new>
#include <string>

#include "tools/Commands.h"
#include "tools/Console.h"
#include "tools/text/TextCommands.h"

namespace velan::tool {
namespace {

// One line, whatever the parser has to say.
int complainAboutUsage(const CLI::App& app, const CLI::ParseError& error) {
  std::string message = error.what();
  for (char& c : message) {
    if (c == '\n') c = ' ';
  }
  std::string command = "velan";
  for (const CLI::App* each = &app; !each->get_subcommands().empty();) {
    each = each->get_subcommands().front();
    command += ' ' + each->get_name();
  }
  return trouble(message + " (see " + command + " --help)");
}

int run(int argc, char** argv) {
  CLI::App app{"Text search, records and block files from the command line", "velan"};
  int status = Something;
  bool version = false;
  bool verbose = false;
  app.add_flag("--version", version, "Print the version");
  app.add_flag("--verbose", verbose, "With --version: also what this build and this machine offer");
  app.require_subcommand(0, 1);
  app.footer(
      "Exit status: 0 something matched or the work is done, 1 nothing matched, 2 something went wrong.\n"
      "Examples:\n"
      "  velan search 'budget NEAR/5 exhibition' documents/\n"
      "  velan search --help");
  addSearchCommand(app, status);
  addTextCommands(app, status);
  addKeyedCommands(app, status);
  addBlockCommands(app, status);
  addEncodingCommands(app, status);
  addLanguageCommand(app, status);
  addURLCommands(app, status);
  addMarkupCommands(app, status);
  addByteFilters(app, status);
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return error.get_exit_code() == 0 ? app.exit(error) : complainAboutUsage(app, error);
  }
  if (version) printVersion(verbose);
  if (version || !app.get_subcommands().empty()) return status;
  return trouble("which command? (see velan --help)");
}

}  // namespace
}  // namespace velan::tool

int main(int argc, char** argv) {
  using namespace velan::tool;
  std::signal(SIGPIPE, SIG_IGN);  // writing to a closed pipe fails instead, and ends the work without a word
  try {
    return finishOutput(run(argc, argv));
  } catch (const std::bad_alloc&) {
    return trouble("there is not enough memory");
  } catch (const std::exception& error) {
    return trouble(error.what());
  }
}
