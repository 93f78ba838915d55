// What shells need to complete commands and options.
#ifndef VELAN_TOOLS_USAGE_COMPLETIONS_H
#define VELAN_TOOLS_USAGE_COMPLETIONS_H

#include <cstdint>
#include <string>
#include <vector>

#include "tools/usage/OptionTable.h"

namespace velan::tool {

enum class Shell : uint8_t { Bash, Zsh, Fish };

/// The script for a shell; the first command is the tool itself.
std::string completionScript(Shell shell, const std::vector<CommandEntry>& commands);

}  // namespace velan::tool

#endif  // VELAN_TOOLS_USAGE_COMPLETIONS_H
