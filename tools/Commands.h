// The command groups of the companion. Each adds its subcommands, whose callbacks set the exit status.
#ifndef VELAN_TOOLS_COMMANDS_H
#define VELAN_TOOLS_COMMANDS_H

namespace CLI {
class App;
}

namespace velan::tool {

/// What the process ends with.
enum ExitStatus : int {
  Something = 0,  // something matched, or the work is done
  Nothing = 1,    // nothing matched, or a check failed
  Trouble = 2,    // something went wrong; a message on standard error tells what
};

/// `velan search`.
void addSearchCommand(CLI::App& app, int& status);
/// Explain, match, words, selftest.
void addTextCommands(CLI::App& app, int& status);
/// `velan keyed …`: files of keyed data records. `app` and `status` must outlive the parsing.
void addKeyedCommands(CLI::App& app, int& status);
/// `velan blocks …`: files of blocks.
void addBlockCommands(CLI::App& app, int& status);
/// `velan convert` and `velan charset`.
void addEncodingCommands(CLI::App& app, int& status);
/// `velan language`.
void addLanguageCommand(CLI::App& app, int& status);
/// `velan url …`.
void addURLCommands(CLI::App& app, int& status);
/// `velan text`, `velan tags` and `velan entities …`.
void addMarkupCommands(CLI::App& app, int& status);
/// `velan completion` and `velan manual`.
void addUsageCommands(CLI::App& app);
/// Crc, deflate, gzip and inflate.
void addByteFilters(CLI::App& app, int& status);

}  // namespace velan::tool

#endif  // VELAN_TOOLS_COMMANDS_H
