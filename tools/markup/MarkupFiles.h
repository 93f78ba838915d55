// Which files are pages: HTML, XML and the like.
#ifndef VELAN_TOOLS_MARKUP_MARKUP_FILES_H
#define VELAN_TOOLS_MARKUP_MARKUP_FILES_H

#include <string>
#include <string_view>

namespace velan::tool {

/// Whether the file at `path`, empty when it has none, that begins with `bytes` is to be read without its markup. What
/// begins, after white space and comments, with an XML declaration or a tag of HTML that stands at the head of pages is
/// a page whatever its name, in any encoding. A path extension of markup is enough unless it is one of programs, such
/// as "php", of declarations, such as "dtd", or of property lists, which have a textual form. Looks at the first
/// kilobyte.
bool isMarkup(const std::string& path, std::string_view bytes);

}  // namespace velan::tool

#endif  // VELAN_TOOLS_MARKUP_MARKUP_FILES_H
