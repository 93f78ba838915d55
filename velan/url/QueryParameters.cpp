#include "velan/url/QueryParameters.h"

#include <algorithm>
#include <optional>
#include <utility>
#include <vector>

#include "velan/text/CharacterSets.h"
#include "velan/text/search/CharacterSearch.h"

namespace velan {
namespace {

struct Parameter {
  Range key;
  Range value;
};

class ParameterScan {
 public:
  ParameterScan(const String& string, int64_t start)
      : _text(string.view()), _next(static_cast<size_t>(std::clamp<int64_t>(start, 0, string.length()))) {}

  std::optional<Parameter> next() {
    const uint8_t* letters = alphaNumCharacterSetRep();
    while (_next < _text.size() && !isMemberOfCharacterSetRep(letters, _text[_next])) ++_next;
    const size_t key = _next;
    const size_t equals = _text.find(u'=', key);
    if (equals == _text.npos) {
      _next = _text.size();
      return std::nullopt;
    }
    const size_t end = std::min(_text.find_first_of(u"&;", equals), _text.size());
    _next = std::min(end + 1, _text.size());
    return Parameter{rangeOf(key, equals), rangeOf(equals + 1, end)};
  }

  std::u16string_view unitsOf(Range range) const {
    return _text.substr(static_cast<size_t>(range.location), static_cast<size_t>(range.length));
  }

 private:
  static Range rangeOf(size_t start, size_t end) {
    return {static_cast<int64_t>(start), static_cast<int64_t>(end - start)};
  }

  const std::u16string_view _text;
  size_t _next;
};

// The first parameter with this name; with `filled` one whose value is not empty.
std::optional<Parameter> parameterNamed(const String& string, const String& name, int64_t start, bool filled) {
  ParameterScan scan(string, start);
  while (const auto parameter = scan.next()) {
    if (scan.unitsOf(parameter->key) == name.view() && (!filled || parameter->value.length > 0)) return parameter;
  }
  return std::nullopt;
}

// Where the query of a URL begins; its end without one.
int64_t startOfQuery(const String& string) {
  const int64_t mark = findCharacter(string, u'?');
  return mark == NSNotFound ? string.length() : mark + 1;
}

}  // namespace

bool containsQueryParamNamed(const String& string, const String& name, int64_t start) {
  if (name.isEmpty() || name.length() >= string.length()) return false;
  return parameterNamed(string, name, start, false).has_value();
}

bool containsQueryParamNamed(const String& string, const String& name) {
  return containsQueryParamNamed(string, name, startOfQuery(string));
}

String queryParamNamed(const String& string, const String& name, int64_t start, bool inputIfAbsent) {
  const auto parameter = parameterNamed(string, name, start, true);
  if (!parameter) return inputIfAbsent ? string : String();
  return string.substring(parameter->value);
}

String queryParamNamed(const String& string, const String& name) {
  return queryParamNamed(string, name, startOfQuery(string), false);
}

String query(const String& string) {
  const int64_t mark = findCharacter(string, u'?');
  return mark == NSNotFound ? String() : string.substringFromIndex(mark + 1);
}

ValueDictionary queryParams(const String& string, int64_t start) {
  std::vector<ValueDictionary::Entry> entries;
  ParameterScan scan(string, start);
  while (const auto parameter = scan.next()) {
    if (parameter->value.length == 0) continue;
    entries.push_back({string.substring(parameter->key), string.substring(parameter->value)});
  }
  return ValueDictionary(std::move(entries));
}

ValueDictionary queryParams(const String& string) { return queryParams(string, startOfQuery(string)); }

int64_t numberOfQueryParams(const String& string, int64_t start) {
  ParameterScan scan(string, start);
  int64_t count = 0;
  while (scan.next()) ++count;
  return count;
}

int64_t numberOfQueryParams(const String& string) { return numberOfQueryParams(string, startOfQuery(string)); }

String stringByReplacingQueryParamNamed(const String& string, const String& name, const String& value) {
  if (!value) return string;
  const auto parameter = parameterNamed(string, name, startOfQuery(string), false);
  if (!parameter) return string;
  std::u16string result(string.view());
  result.replace(static_cast<size_t>(parameter->value.location), static_cast<size_t>(parameter->value.length),
                 value.view());
  return result;
}

}  // namespace velan
