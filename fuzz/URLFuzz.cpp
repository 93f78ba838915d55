// Percent escapes: decoding in place equals decoding a copy, what is escaped comes back. Query parameters: counted,
// listed and found alike, and replacing a value changes that one only.
#include <algorithm>
#include <memory>

#include "fuzz/FuzzTarget.h"
#include "velan/url/PercentEscapes.h"
#include "velan/url/QueryParameters.h"

using namespace velan;

namespace {

void convertEscapes(const String& text) {
  for (const bool standard : {false, true}) {
    // Exactly as long as the text: the address sanitizer sees what lies beyond it.
    const auto length = static_cast<size_t>(text.length());
    const auto units = std::make_unique<unichar[]>(length);
    std::copy(text.begin(), text.end(), units.get());
    const size_t decoded = convertPercentEscapesOfURL(units.get(), length, standard);
    require(decoded <= length);
    require(_stringByReplacingPercentEscapesOfURL(text, standard).view() == std::u16string_view(units.get(), decoded));
  }
  require(stringByReplacingASCIIPercentEscapesOfURL(stringByAddingASCIIPercentEscapesToURL(text)) == text);
  for (const StringEncoding encoding : {StringEncoding::UTF8, StringEncoding::Latin1, StringEncoding::UTF16BigEndian}) {
    if (const String escaped = stringByAddingPercentEscapesToURL(text, encoding)) {
      require(stringByReplacingPercentEscapesOfURL(escaped, encoding) == text);
    }
    stringByReplacingPercentEscapesOfURL(text, encoding);
  }
  stringByReplacingPercentEscapesOfURL(text, StringEncoding::ShiftJIS);
  const String halves[] = {text.substringToIndex(text.length() / 2), text.substringFromIndex(text.length() / 2)};
  stringByAddingPercentEscapesToURL(halves[0], StringEncoding::UTF8, halves[1], halves[1]);
}

void readParameters(const String& text) {
  const ValueDictionary parameters = queryParams(text);
  require(static_cast<int64_t>(parameters.size()) <= numberOfQueryParams(text));
  for (const auto& [key, value] : parameters) {
    require(containsQueryParamNamed(text, key));
    require(!queryParamNamed(text, key).isEmpty());
    const String replaced = stringByReplacingQueryParamNamed(text, key, u"x"_s);
    require(numberOfQueryParams(replaced) == numberOfQueryParams(text));
    require(queryParamNamed(replaced, key) == u"x"_s);
  }
  require(numberOfQueryParams(text, 0) >= 0 && queryParams(text, text.length()).isEmpty());
}

}  // namespace

FUZZ_TARGET(url) {
  const String text = input.text();
  convertEscapes(text);
  readParameters(text);
  convertEscapes(input.units());
}
