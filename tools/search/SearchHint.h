// What to tell a person whose search found nothing.
#ifndef VELAN_TOOLS_SEARCH_SEARCH_HINT_H
#define VELAN_TOOLS_SEARCH_SEARCH_HINT_H

#include <string>
#include <vector>

#include "tools/files/FileWalk.h"
#include "tools/search/SearchOptions.h"

namespace velan::tool {

/// Whether hints are wanted; those who are not asked want them on a terminal only.
bool wantsHints(HintChoice choice);

/// One sentence with the likeliest reason; empty for a query without terms that gives none. Of a single file its text
/// is asked; it is read again.
std::string hintAbout(const TypedQuery& typed, const SearchOptions& options, const std::vector<InputFile>& files);

}  // namespace velan::tool

#endif  // VELAN_TOOLS_SEARCH_SEARCH_HINT_H
