#include "tools/markup/MarkupFiles.h"

#include <algorithm>
#include <filesystem>

#include "velan/base/ASCII.h"
#include "velan/markup/FileTypes.h"

namespace velan::tool {
namespace {

constexpr size_t kBytesLookedAt = 1024;

std::string inLowerCase(std::string_view text) {
  std::string lower(text);
  for (char& c : lower) c = static_cast<char>(toASCIILower(static_cast<unsigned char>(c)));
  return lower;
}

// The beginning in lower case, without byte-order mark, white space and comments. Zero bytes go, which makes ASCII of
// the ASCII in UTF-16 and UTF-32.
std::string beginningOf(std::string_view bytes) {
  using namespace std::string_view_literals;
  bytes = bytes.substr(0, kBytesLookedAt);
  const size_t first = bytes.find_first_not_of("\xEF\xBB\xBF\xFF\xFE\0 \t\r\n\f"sv);
  if (first == std::string_view::npos || bytes[first] != '<') return {};
  std::string text = inLowerCase(bytes);
  std::erase(text, '\0');
  size_t start = 0;
  for (const std::string_view mark : {"\xEF\xBB\xBF", "\xFF\xFE", "\xFE\xFF"}) {
    if (text.starts_with(mark)) start = mark.size();
  }
  for (;;) {
    start = std::min(text.find_first_not_of(" \t\r\n\f", start), text.size());
    if (text.compare(start, 4, "<!--") != 0) break;
    const size_t end = text.find("-->", start);
    start = end == std::string::npos ? text.size() : end + 3;
  }
  return text.substr(start);
}

bool beginsPage(std::string_view beginning) {
  const std::string_view openings[] = {"<?xml", "<!doctype html", "<html", "<head", "<title", "<meta", "<body"};
  return std::ranges::any_of(openings, [&](std::string_view opening) {
    if (!beginning.starts_with(opening)) return false;
    const std::string_view rest = beginning.substr(opening.size());
    return rest.empty() || std::string_view(" \t\r\n\f/>-").find(rest.front()) != std::string_view::npos;
  });
}

bool hasOtherSyntax(const String& extension) {
  constexpr std::u16string_view kExtensions[] = {u"php", u"php3", u"php4", u"php5", u"phtml", u"jhtml", u"jsp",
                                                 u"asp", u"aspx", u"cfm",  u"cgi",  u"dtd",   u"ent"};
  return isPropertyListExtension(extension) ||
         std::ranges::find(kExtensions, extension.view()) != std::end(kExtensions);
}

bool isDeclarations(std::string_view extension) { return extension == "dtd" || extension == "ent"; }

}  // namespace

bool isMarkup(const std::string& path, std::string_view bytes) {
  std::string extension = inLowerCase(std::filesystem::path(path).extension().native());
  extension.erase(0, 1);
  if (isDeclarations(extension)) return false;
  const String known = String::fromUTF8Lossy(extension);
  return (isMarkupExtension(known) && !hasOtherSyntax(known)) || beginsPage(beginningOf(bytes));
}

}  // namespace velan::tool
