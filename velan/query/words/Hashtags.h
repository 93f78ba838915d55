// Tags such as "#project" in running text.
#ifndef VELAN_QUERY_WORDS_HASHTAGS_H
#define VELAN_QUERY_WORDS_HASHTAGS_H

#include <optional>
#include <vector>

#include "velan/base/String.h"

namespace velan {

/// `hashtags:`: the tags of `string` in order, without "#", repeated ones again; nothing when there is none.
///
/// A tag is what stands between white space, begins with "#" and goes on with letters, decimal digits, "-", "_" and, if
/// `allowSlash`, "/"; it holds a letter or at least three digits. The first "," or ";" ends it: it is taken for the
/// last unit before the white space, so that of "#a,b" only the last unit is cut off.
VELAN_EXPORT std::optional<std::vector<String>> hashtags(const String& string, bool allowSlash);

}  // namespace velan

#endif  // VELAN_QUERY_WORDS_HASHTAGS_H
