// The command "words".
#include <fmt/format.h>

#include <algorithm>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "tools/Commands.h"
#include "tools/Console.h"
#include "tools/documents/DocumentReading.h"
#include "tools/documents/PlainText.h"
#include "tools/text/TextCommands.h"
#include "velan/query/words/FastWordEnumerator.h"
#include "velan/text/ConversionTables.h"

namespace velan::tool {
namespace {

class WordCounter {
 public:
  WordCounter(int64_t minLength, bool ignoreCase) : _minLength(minLength), _ignoreCase(ignoreCase) {}

  // Words that are divided by a hyphen at a line end count as one.
  void countWords(const String& text) {
    const auto index = FastWordEnumerator::enumeratorWithString(text);
    if (!index) return;
    bool hyphenated = false;
    index->enumerateWords(_minLength, &hyphenated,
                          [this](std::u16string_view word) { count(_ignoreCase ? inLowerCase(word) : word); });
  }

  /// The most frequent first, equally frequent ones by their units.
  std::vector<std::pair<String, int64_t>> byFrequency() const {
    std::vector<std::pair<String, int64_t>> words(_counts.begin(), _counts.end());
    std::sort(words.begin(), words.end(), [](const auto& a, const auto& b) {
      return a.second != b.second ? a.second > b.second : a.first < b.first;
    });
    return words;
  }

 private:
  struct Hash : std::hash<std::u16string_view> {
    using is_transparent = void;
    using std::hash<std::u16string_view>::operator();
    size_t operator()(const String& string) const { return (*this)(string.view()); }
  };
  struct Equal {
    using is_transparent = void;
    bool operator()(const String& a, const String& b) const { return a == b; }
    bool operator()(std::u16string_view a, const String& b) const { return a == b.view(); }
    bool operator()(const String& a, std::u16string_view b) const { return a.view() == b; }
  };

  std::u16string_view inLowerCase(std::u16string_view word) {
    _lower.resize(word.size());
    std::transform(word.begin(), word.end(), _lower.begin(), toLower);
    return _lower;
  }

  void count(std::u16string_view word) {
    const auto found = _counts.find(word);
    if (found != _counts.end()) {
      ++found->second;
    } else {
      _counts.emplace(String(word), 1);
    }
  }

  const int64_t _minLength;
  const bool _ignoreCase;
  std::u16string _lower;
  std::unordered_map<String, int64_t, Hash, Equal> _counts;
};

}  // namespace

int runWords(const WordsOptions& options) {
  FastWordEnumerator::setSplitAsianWords(true);
  WordCounter counter(options.minLength, options.ignoreCase);
  DocumentReader reader(options.decoding);
  for (const InputFile& file : collectFiles(options.files)) {
    if (const auto document = reader.read(file))
      counter.countWords(options.verbatim ? document->text : plainText(document->text).text);
  }
  auto words = counter.byFrequency();
  if (options.top > 0 && words.size() > options.top) words.resize(options.top);
  for (const auto& [word, count] : words) {
    if (!print(fmt::format("{}\t{}\n", count, word.toUTF8()))) break;
  }
  if (reader.hadTrouble()) return Trouble;
  return words.empty() ? Nothing : Something;
}

}  // namespace velan::tool
