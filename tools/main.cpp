#include <CLI/CLI.hpp>
#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <memory>
#include <new>
#include <string>
#include <string_view>
#include <vector>

#include "tools/Commands.h"
#include "tools/Console.h"
#include "tools/text/TextCommands.h"
#include "tools/usage/Help.h"
#include "tools/usage/Mistakes.h"
#include "velan/base/Log.h"

namespace velan::tool {
namespace {

// The arguments without what is for the help alone; `all` tells whether that was there. "help" and "version" are
// commands to many.
std::vector<std::string> argumentsOf(int argc, char** argv, bool& all) {
  std::vector<std::string> arguments(argv + std::min(argc, 1), argv + argc);
  if (!arguments.empty() && arguments.front() == "version") arguments.front() = "--version";
  if (!arguments.empty() && arguments.front() == "help") {
    std::rotate(arguments.begin(), arguments.begin() + 1, arguments.end());
    arguments.back() = "--help";
  }
  const auto end = std::find(arguments.begin(), arguments.end(), "--");
  const bool wantsHelp = std::find(arguments.begin(), end, "--help") != end;
  const auto flag = wantsHelp ? std::find(arguments.begin(), end, "--all") : end;
  all = flag != end;
  if (all) arguments.erase(flag);
  return arguments;
}

// The library writes its log for those who maintain programs; the tool itself says what happened. What is wrong with
// the environment nobody else says.
void keepLog(std::string_view message, void*) {
  if (std::getenv("VELAN_LOG") || message.find("VELAN_") != std::string_view::npos) {
    std::fprintf(stderr, "%.*s\n", static_cast<int>(message.size()), message.data());
  }
}

int run(int argc, char** argv) {
  CLI::App app{"Text search, records and block files from the command line", "velan"};
  bool all = false;
  std::vector<std::string> arguments = argumentsOf(argc, argv, all);
  app.formatter(std::make_shared<HelpFormatter>(all));
  app.set_help_flag("-h,--help", "Print help; with --all all of it");
  int status = Something;
  bool version = false;
  bool verbose = false;
  app.add_flag("--version", version, "Print the version");
  app.add_flag("--verbose", verbose, "With --version: also what this build and this machine offer");
  app.require_subcommand(0, 1);
  app.footer(
      "0 something matched or the work is done, 1 nothing matched, 2 something went wrong.\n"
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
  addUsageCommands(app);
  if (const auto mistake = unknownCommand(app, arguments)) return trouble(*mistake);
  try {
    std::reverse(arguments.begin(), arguments.end());  // as the parser takes them
    app.parse(arguments);
  } catch (const CLI::ParseError& error) {
    return error.get_exit_code() == 0 ? app.exit(error) : trouble(describeMistake(app, error));
  }
  if (version) printVersion(verbose);
  if (version || !app.get_subcommands().empty()) return status;
  return trouble("which command? (see velan --help)");
}

}  // namespace
}  // namespace velan::tool

int main(int argc, char** argv) {
  using namespace velan::tool;
  velan::setLogSink(keepLog, nullptr);
  std::signal(SIGPIPE, SIG_IGN);  // writing to a closed pipe fails instead, and ends the work without a word
  try {
    return finishOutput(run(argc, argv));
  } catch (const std::bad_alloc&) {
    return trouble("there is not enough memory");
  } catch (const std::exception& error) {
    return trouble(error.what());
  }
}
