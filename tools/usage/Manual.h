// The manual page.
#ifndef VELAN_TOOLS_USAGE_MANUAL_H
#define VELAN_TOOLS_USAGE_MANUAL_H

#include <string>
#include <vector>

#include "tools/usage/OptionTable.h"

namespace velan::tool {

/// The page of all commands, the first of which is the tool itself, in the language of man(7).
std::string manualPage(const std::vector<CommandEntry>& commands);

}  // namespace velan::tool

#endif  // VELAN_TOOLS_USAGE_MANUAL_H
