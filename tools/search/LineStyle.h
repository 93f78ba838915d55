// How hits are printed as lines.
#ifndef VELAN_TOOLS_SEARCH_LINE_STYLE_H
#define VELAN_TOOLS_SEARCH_LINE_STYLE_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace velan::tool {

/// What a line of output shows.
enum class LineForm : uint8_t {
  Lines,        // the lines with occurrences, and those around them
  Occurrences,  // each occurrence alone
  Columns,      // the line of each occurrence, with the column where that begins
};

struct LineStyle {
  LineForm form = LineForm::Lines;
  bool color = false;
  bool withPath = false;  // before each line, or above them with `heading`
  bool heading = false;
  bool withNumber = true;
  bool nulAfterPath = false;
  size_t before = 0;  // lines around those with occurrences
  size_t after = 0;
  size_t maxColumns = 0;  // of a longer line only a part is shown; 0: all of it
};

inline constexpr std::string_view kPathColor = "\x1b[35m";
inline constexpr std::string_view kNumberColor = "\x1b[32m";
inline constexpr std::string_view kPrimaryColor = "\x1b[1;31m";
inline constexpr std::string_view kFurtherColor = "\x1b[2;31m";
inline constexpr std::string_view kPlain = "\x1b[0m";

struct SearchOptions;

/// As options, terminal and environment say.
LineStyle lineStyleOf(const SearchOptions& options, bool severalFiles);

std::string painted(std::string_view text, std::string_view color, bool useColor);

/// The name of a document before something else: `separator` follows it, or U+0000.
std::string pathPrefix(const std::string& path, const LineStyle& style, char separator);

}  // namespace velan::tool

#endif  // VELAN_TOOLS_SEARCH_LINE_STYLE_H
