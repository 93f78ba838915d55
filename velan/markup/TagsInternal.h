// The walk behind `GetTagsOfString`, and what handlers ask about a tag.
#ifndef VELAN_MARKUP_TAGS_INTERNAL_H
#define VELAN_MARKUP_TAGS_INTERNAL_H

#include <string_view>

#include "velan/markup/Tags.h"

namespace velan {

/// Walks `text`, which may be empty, and reports to `report` as `GetTagsOfString` does. Returns how many units the
/// searches for the ends of script and style elements looked at, which is linear in the length of the text.
size_t scanTags(std::u16string_view text, FunctionRef<bool(const TagReport&)> report);

/// The position of the ">" that ends the ordinary tag which begins at `tag`, or the length of `text`.
size_t endOfTag(std::u16string_view text, size_t tag);

/// Whether the tag is named `name`, ASCII in lower case.
bool hasName(const TagReport& tag, std::u16string_view name);

/// The tag itself.
inline std::u16string_view unitsOf(const TagReport& tag) {
  return {tag.characters + tag.tagLocation, static_cast<size_t>(tag.tagLength)};
}
inline std::u16string_view nameOf(const TagReport& tag) {
  return tag.nameLength > 0
             ? std::u16string_view(tag.characters + tag.nameLocation, static_cast<size_t>(tag.nameLength))
             : std::u16string_view();
}
/// The text before the tag.
inline std::u16string_view textBefore(const TagReport& tag) {
  return {tag.characters + tag.textLocation, static_cast<size_t>(tag.tagLocation - tag.textLocation)};
}

inline bool isOpeningTag(std::u16string_view tag) {
  return tag.size() >= 3 && tag[0] == u'<' && tag[1] != u'/' && tag[tag.size() - 2] != u'/';
}
inline bool isClosingTag(std::u16string_view tag) { return tag.size() >= 4 && tag.starts_with(u"</"); }

}  // namespace velan

#endif  // VELAN_MARKUP_TAGS_INTERNAL_H
