#include "velan/text/inspection/Configuration.h"

#include <algorithm>
#include <charconv>
#include <new>
#include <optional>
#include <string>

#include "velan/base/ASCII.h"
#include "velan/base/TextNumbers.h"
#include "velan/base/dates/ISODate.h"
#include "velan/platform/CharacterDataInternal.h"
#include "velan/text/comparison/StringEquality.h"
#include "velan/text/inspection/LineEndsInternal.h"
#include "velan/text/inspection/TrimmedUnitsInternal.h"

namespace velan {
namespace {

constexpr size_t kShortestLine = 2;

bool isOneOf(const String& text, std::initializer_list<std::u16string_view> words) {
  return std::ranges::any_of(words, [units = text.view()](std::u16string_view word) {
    return units.size() == word.size() && equalWhenCaseFolded(units, word);
  });
}

bool isAffirmative(const String& text) { return isOneOf(text, {u"on", u"yes", u"true"}); }
bool isNegative(const String& text) { return isOneOf(text, {u"off", u"no", u"false"}); }

// An integer that fits, else a double; nothing when `text` as a whole is no number.
std::optional<Value> numberFromText(std::string_view text) {
  const bool isSigned = text.starts_with('+') || text.starts_with('-');
  const std::string_view digits = text.substr(isSigned ? 1 : 0);
  const bool isNumeric = digits.find_first_not_of("0123456789.eE+-") == digits.npos;  // neither "inf" nor "nan"
  if (const std::optional<double> number = isNumeric ? doubleFromText(text) : std::nullopt) {
    if (!std::ranges::all_of(digits, isASCIIDigit<char>)) return *number;
    int64_t integer = 0;
    if (text.starts_with('+')) text = digits;
    const bool fits = std::from_chars(text.data(), text.data() + text.size(), integer).ec == std::errc();
    return fits ? Value(integer) : Value(*number);
  }
  return std::nullopt;
}

Value typedValue(std::u16string_view value) {
  const String text = value;
  if (!text) throw std::bad_alloc();
  if (isAffirmative(text)) return true;
  if (isNegative(text)) return false;
  if (const auto number = numberFromText(text.toUTF8())) return *number;
  if (const auto date = dateFromISOText(text.view(), ISODateForm::Extended)) return *date;
  return text;
}

// Empty where the line does not set the key.
std::u16string_view valueForKey(const String& line, const String& key) {
  if (line.length() <= key.length() || !hasPrefixNoCase(line, key)) return {};
  const std::u16string_view rest = line.view().substr(static_cast<size_t>(key.length()));
  return isMemberOfCharacterSetRep(whiteCharacterSetRep(), rest.front()) ? withoutWhiteEnds(rest) : rest.substr(0, 0);
}

}  // namespace

std::vector<String> configLines(const String& text) {
  std::vector<String> lines;
  forEachLine(text.view(), [&](std::u16string_view line) {
    const std::u16string_view setting = withoutWhiteEnds(line);
    if (setting.size() < kShortestLine || setting.front() == u'#') return;
    lines.push_back(setting);
    if (!lines.back()) throw std::bad_alloc();
  });
  return lines;
}

String configValueForKey(const String& line, const String& key) {
  const std::u16string_view value = valueForKey(line, key);
  return value.empty() ? String() : String(value);
}

Value typedValueForKeys(const String& text, const std::vector<String>& keys) {
  const std::vector<String> lines = configLines(text);
  for (const String& key : keys) {
    if (!key) break;
    for (const String& line : lines) {
      if (const auto value = valueForKey(line, key); !value.empty()) return typedValue(value);
    }
  }
  return NSNotFound;
}

bool boolValue(const String& string) {
  const uint8_t* white = whiteCharacterSetRep();
  const auto isWhite = [white](unichar c) { return isMemberOfCharacterSetRep(white, c); };
  return leadingInteger(withoutPrefixUnits(string.view(), isWhite)) != 0 || isAffirmative(string);
}

}  // namespace velan
