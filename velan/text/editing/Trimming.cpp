#include "velan/text/editing/Trimming.h"

#include "velan/text/inspection/LineEndsInternal.h"
#include "velan/text/inspection/TrimmedUnitsInternal.h"

namespace velan {
namespace {

// `part` is a part of the text.
void keep(MutableString& text, std::u16string_view part) {
  const int64_t start = part.data() - text.characters();
  text.truncate(start + static_cast<int64_t>(part.size()));
  text.deleteCharactersInRange({0, start});
}
String kept(const String& string, std::u16string_view part) {
  return string.substring({part.data() - string.characters(), static_cast<int64_t>(part.size())});
}

std::u16string_view withoutLineEnds(std::u16string_view text) { return trimmedUnits(text, isLineEnd); }

auto equalTo(unichar c) {
  return [c](unichar other) { return other == c; };
}

}  // namespace

void trimWhiteSpaces(MutableString& text) { keep(text, withoutWhiteEnds(text.view())); }
String stringByTrimmingWhiteSpaces(const String& string) { return kept(string, withoutWhiteEnds(string.view())); }

void trimFeeds(MutableString& text) { keep(text, withoutLineEnds(text.view())); }
String stringByTrimmingFeeds(const String& string) { return kept(string, withoutLineEnds(string.view())); }

void trimCharacter(MutableString& text, unichar c) { keep(text, trimmedUnits(text.view(), equalTo(c))); }
String stringByTrimmingCharacter(const String& string, unichar c) {
  return kept(string, trimmedUnits(string.view(), equalTo(c)));
}

void trimPrefixCharacter(MutableString& text, unichar c) { keep(text, withoutPrefixUnits(text.view(), equalTo(c))); }
String stringByTrimmingPrefixCharacter(const String& string, unichar c) {
  return kept(string, withoutPrefixUnits(string.view(), equalTo(c)));
}

void trimSuffixCharacter(MutableString& text, unichar c) { keep(text, withoutSuffixUnits(text.view(), equalTo(c))); }
String stringByTrimmingSuffixCharacter(const String& string, unichar c) {
  return kept(string, withoutSuffixUnits(string.view(), equalTo(c)));
}

}  // namespace velan
