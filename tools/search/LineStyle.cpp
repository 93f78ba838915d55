#include "tools/search/LineStyle.h"

#include <fmt/format.h>
#include <unistd.h>

#include <cstdlib>
#include <string_view>

#include "tools/search/SearchOptions.h"

namespace velan::tool {
namespace {

constexpr size_t kColumnsOnTerminals = 400;

bool wantsColor(ColorChoice choice, bool onTerminal) {
  if (choice != ColorChoice::Auto) return choice == ColorChoice::Always;
  const char* noColor = std::getenv("NO_COLOR");
  const char* terminal = std::getenv("TERM");
  const bool refused = (noColor && *noColor) || (terminal && std::string_view(terminal) == "dumb");
  return !refused && onTerminal;
}

LineForm formOf(SearchOutput output) {
  if (output == SearchOutput::Occurrences) return LineForm::Occurrences;
  return output == SearchOutput::Columns ? LineForm::Columns : LineForm::Lines;
}

}  // namespace

LineStyle lineStyleOf(const SearchOptions& options, bool severalFiles) {
  const bool onTerminal = isatty(STDOUT_FILENO) == 1;
  LineStyle style;
  style.form = formOf(options.output);
  style.color = wantsColor(options.color, onTerminal);
  style.withPath = options.withPath.value_or(severalFiles || style.form == LineForm::Columns);
  style.heading = onTerminal && style.form != LineForm::Columns;
  style.withNumber = options.withNumber || style.form == LineForm::Columns;
  style.nulAfterPath = options.files.separatedByNul;
  style.before = options.before.value_or(options.context);
  style.after = options.after.value_or(options.context);
  style.maxColumns = options.maxColumns.value_or(onTerminal ? kColumnsOnTerminals : 0);
  return style;
}

std::string painted(std::string_view text, std::string_view color, bool useColor) {
  return useColor ? fmt::format("{}{}{}", color, text, kPlain) : std::string(text);
}

std::string pathPrefix(const std::string& path, const LineStyle& style, char separator) {
  return painted(path, kPathColor, style.color) + (style.nulAfterPath ? '\0' : separator);
}

}  // namespace velan::tool
