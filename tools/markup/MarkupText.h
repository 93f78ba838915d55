// The text of a page as its reader sees it.
#ifndef VELAN_TOOLS_MARKUP_MARKUP_TEXT_H
#define VELAN_TOOLS_MARKUP_MARKUP_TEXT_H

#include <string>
#include <string_view>

#include "tools/documents/SourceMap.h"
#include "velan/base/String.h"
#include "velan/markup/MarkupDecoding.h"

namespace velan::tool {

/// A page's text, and where in the page it stands. What parts it at a tag or at white space stands for all of the page
/// from the text before it to the text behind it.
struct MarkupText {
  String text;
  SourceMap map;
};

/// The text between the tags, with its entities decoded. Script, style, comments and declarations are left out, CDATA
/// stays as it is. Tags that HTML sets in the flow of a line ("b", "a") leave no trace, all others end a line, those of
/// paragraphs, headings, lists and tables leave an empty one; cells of a row are separated by a tab. White space
/// becomes one space, except in "pre". With `attributes` also what readers see of tags: what stands for images ("alt")
/// in its line, titles of elements and the description of the page as lines of their own. Throws `std::bad_alloc`.
MarkupText textOfMarkup(const String& markup, bool attributes);

/// Whether tags of this name, ASCII in any case, leave no trace in the text. All others at least end a line.
bool isInLine(std::string_view name);

/// A page or another markup file as `decodedMarkupOfFile` reads it; what nothing tells about is UTF-8 where that fits,
/// otherwise Windows-1252. `path` is "-" for standard input.
DecodedMarkup decodePage(const std::string& path, const Data& contents);

}  // namespace velan::tool

#endif  // VELAN_TOOLS_MARKUP_MARKUP_TEXT_H
