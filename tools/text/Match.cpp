// The command "match".
#include <iostream>
#include <string>
#include <string_view>

#include "tools/Commands.h"
#include "tools/Console.h"
#include "tools/text/TextCommands.h"
#include "velan/wildcard/WildcardMatching.h"

namespace velan::tool {
namespace {

using Matcher = bool (*)(const String& string, const String& pattern);

Matcher matcherOf(const MatchOptions& options) {
  if (options.sets) return options.ignoreCase ? isCaseInsensitiveLikeUnixWildcard : isLikeUnixWildcard;
  return options.ignoreCase ? isCaseInsensitiveLikeWildcard : isLikeWildcard;
}

class Filter {
 public:
  explicit Filter(const MatchOptions& options)
      : _matcher(matcherOf(options)), _pattern(String::fromUTF8Lossy(options.pattern)), _invert(options.invert) {}

  // Prints the word if it passes. False when nobody reads any more.
  bool take(std::string_view word) {
    if (_matcher(String::fromUTF8Lossy(word), _pattern) == _invert) return true;
    _any = true;
    return print(word) && print("\n");
  }

  bool any() const { return _any; }

 private:
  const Matcher _matcher;
  const String _pattern;
  const bool _invert;
  bool _any = false;
};

}  // namespace

int runMatch(const MatchOptions& options) {
  Filter filter(options);
  for (const std::string& word : options.words) {
    if (!filter.take(word)) break;
  }
  if (options.words.empty()) {
    std::string line;
    while (std::getline(std::cin, line)) {
      if (line.ends_with('\r')) line.pop_back();
      if (!filter.take(line)) break;
    }
    if (std::cin.bad()) return trouble("standard input cannot be read");
  }
  return filter.any() ? Something : Nothing;
}

}  // namespace velan::tool
