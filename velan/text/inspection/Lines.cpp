#include "velan/text/inspection/Lines.h"

#include <algorithm>
#include <new>

#include "velan/text/inspection/LineEndsInternal.h"

namespace velan {

int64_t numberOfLines(const String& string) {
  int64_t count = 0;
  forEachLine(string.view(), [&count](std::u16string_view) { ++count; });
  return count;
}

std::vector<String> lines(const String& string) {
  std::vector<String> result;
  forEachLine(string.view(), [&](std::u16string_view line) {
    result.push_back(string.substring({line.data() - string.characters(), static_cast<int64_t>(line.size())}));
    if (!result.back()) throw std::bad_alloc();
  });
  return result;
}

String firstLine(const String& string) {
  return string.substringToIndex(std::ranges::find_if(string, isLineEnd) - string.begin());
}

int64_t lengthOfFeedOfLine(const String& string) {
  const std::u16string_view text = string.view();
  if (text.ends_with(u"\r\n")) return 2;
  return !text.empty() && isLineEnd(text.back()) ? 1 : 0;
}

String feedOfLine(const String& string) {
  const int64_t length = lengthOfFeedOfLine(string);
  return length == 0 ? String(u"") : string.substringFromIndex(string.length() - length);
}

}  // namespace velan
