#include <CLI/CLI.hpp>

#include "tools/Commands.h"

int main(int argc, char** argv) {
  CLI::App app{"Text search, records and block files from the command line", "velan"};
  app.require_subcommand(1);
  int status = velan::tool::kSomething;
  velan::tool::addKeyedCommands(app, status);
  velan::tool::addBlockCommands(app, status);
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? velan::tool::kSomething : velan::tool::kTrouble;
  }
  return status;
}
