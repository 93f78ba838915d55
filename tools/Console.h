// Messages and files of the companion.
#ifndef VELAN_TOOLS_CONSOLE_H
#define VELAN_TOOLS_CONSOLE_H

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "velan/base/Data.h"
#include "velan/platform/files/FileError.h"

namespace velan::tool {

/// One line on standard error: "velan: message".
void complain(std::string_view message);
/// `complain`, and the exit status that goes with it.
int trouble(std::string_view message);

/// Such as "1 file" and "2 files".
std::string counted(uint64_t count, std::string_view unit);

/// Writes to standard output; false when that has failed, now or before: then nobody reads any more, or the disk is
/// full.
bool print(std::string_view text);
/// What was printed reaches its reader: a terminal at once, others when it was not done for a twentieth of a second,
/// because each time costs more than a small file. To be called now and then. False when writing has failed, now or
/// before.
bool showPrinted();
/// For the end of the program: writes what is left. Returns `status`, or `Trouble` after a complaint when output was
/// lost. A reader that has gone away, such as `head`, is no trouble.
int finishOutput(int status);

/// `readFile` where, after a failure, nothing is left to be said.
std::optional<std::string> readFileOrComplain(const std::string& path);

/// The same as a buffer; absent after a failure.
Data readDataOrComplain(const std::string& path);

/// The complaint that `path` cannot be worked on for this reason, and the exit status that goes with it.
int trouble(const std::string& path, const FileError& error);

}  // namespace velan::tool

#endif  // VELAN_TOOLS_CONSOLE_H
