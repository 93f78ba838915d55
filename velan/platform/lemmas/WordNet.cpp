#include <algorithm>
#include <charconv>
#include <iterator>

#include "velan/platform/files/FileContents.h"
#include "velan/platform/lemmas/WordNetInternal.h"

namespace velan {

namespace {

enum Kind : uint8_t { kVerb = 1, kNoun = 2, kAdjective = 4, kAdverb = 8, kAnyKind = 15 };

// In the order in which forms are looked up: "leaves" goes with "leave" unless an irregular form says otherwise.
constexpr struct {
  const char* name;
  Kind kind;
} kFiles[] = {{"verb", kVerb}, {"noun", kNoun}, {"adj", kAdjective}, {"adv", kAdverb}};

// The regular inflections of English: an ending, and what stands in its place in the base form.
constexpr struct {
  Kind kind;
  std::string_view ending;
  std::string_view base;
} kRules[] = {
    {kVerb, "ies", "y"},    {kVerb, "es", "e"},      {kVerb, "es", ""},       {kVerb, "s", ""},
    {kVerb, "ed", "e"},     {kVerb, "ed", ""},       {kVerb, "ing", "e"},     {kVerb, "ing", ""},
    {kNoun, "ches", "ch"},  {kNoun, "shes", "sh"},   {kNoun, "ses", "s"},     {kNoun, "xes", "x"},
    {kNoun, "zes", "z"},    {kNoun, "men", "man"},   {kNoun, "ies", "y"},     {kNoun, "s", ""},
    {kAdjective, "er", ""}, {kAdjective, "est", ""}, {kAdjective, "er", "e"}, {kAdjective, "est", "e"},
};

// A form that is a base form itself is taken for the form of another word when that word is so many times as frequent:
// of all uses of a verb, few are its present participle.
uint64_t timesAsFrequent(std::string_view ending) { return ending == "ing" ? 10 : ending.ends_with('s') ? 2 : 4; }

Data contentsOf(const std::string& path) { return readFileContents(String::fromUTF8(path), FileReading::Plain); }

std::string_view wordAt(std::string_view line, size_t from) { return line.substr(from, line.find(' ', from) - from); }

bool isSingleWord(std::string_view term) { return !term.empty() && term.find('_') == std::string_view::npos; }

template <class Handle>
void forEachLine(std::string_view text, Handle handle) {
  while (!text.empty()) {
    const size_t end = std::min(text.find('\n'), text.size());
    handle(text.substr(0, end));
    text.remove_prefix(std::min(end + 1, text.size()));
  }
}

}  // namespace

std::unique_ptr<WordNet> WordNet::load(const std::string& folder) {
  auto wordNet = std::make_unique<WordNet>();
  wordNet->_lemmas.reserve(100'000);  // WordNet 3.0 has some 83,000 single words
  for (const auto& file : kFiles) {
    wordNet->readExceptions(folder + '/' + file.name + ".exc", file.kind);
    wordNet->readLemmas(folder + "/index." + file.name, file.kind);
  }
  wordNet->readCounts(folder + "/cntlist.rev");
  return wordNet->_exceptions.empty() && wordNet->_lemmas.empty() ? nullptr : std::move(wordNet);
}

// A line: the form, then its base forms, separated by spaces. Terms of several words have "_" in them.
void WordNet::readExceptions(const std::string& path, uint8_t kind) {
  forEachLine(contentsOf(path).view(), [&](std::string_view line) {
    const std::string_view form = wordAt(line, 0);
    if (!isSingleWord(form) || form.size() + 1 >= line.size()) return;
    _exceptions[std::string(form)].push_back({std::string(wordAt(line, form.size() + 1)), kind});
  });
}

// A line begins with the lemma; those of the licence begin with spaces.
void WordNet::readLemmas(const std::string& path, uint8_t kind) {
  forEachLine(contentsOf(path).view(), [this, kind](std::string_view line) {
    const std::string_view lemma = wordAt(line, 0);
    if (isSingleWord(lemma)) _lemmas[std::string(lemma)].kinds |= kind;
  });
}

// A line: the lemma, "%" and the digit of its kind (1 noun, 2 verb, 3 and 5 adjective, 4 adverb) and more that tells
// one sense, the number of the sense, how often the texts have it.
void WordNet::readCounts(const std::string& path) {
  constexpr std::string_view kKinds = "2134";  // in the order of the bits
  forEachLine(contentsOf(path).view(), [&](std::string_view line) {
    const size_t percent = std::min(line.find('%'), line.size());
    const size_t last = line.rfind(' ');
    if (line.size() - percent < 2 || last == std::string_view::npos) return;
    const char digit = line[percent + 1] == '5' ? '3' : line[percent + 1];
    const size_t kind = kKinds.find(digit);
    const auto found = _lemmas.find(std::string(line.substr(0, percent)));
    uint32_t count = 0;
    std::from_chars(line.data() + last + 1, line.data() + line.size(), count);
    if (kind < kKinds.size() && found != _lemmas.end()) found->second.counts[kind] += count;
  });
}

bool WordNet::isLemma(const std::string& word, uint8_t kinds) const {
  const auto found = _lemmas.find(word);
  return found != _lemmas.end() && (found->second.kinds & kinds) != 0;
}

uint64_t WordNet::count(const std::string& word, uint8_t kinds) const {
  const auto found = _lemmas.find(word);
  uint64_t sum = 0;
  for (size_t i = 0; i < 4 && found != _lemmas.end(); ++i) sum += kinds >> i & 1 ? found->second.counts[i] : 0;
  return sum;
}

std::string WordNet::lemma(const std::string& word) const {
  const bool isBase = isLemma(word, kAnyKind);
  std::string best = isBase ? word : std::string();
  uint64_t most = count(word, kAnyKind);
  if (const auto found = _exceptions.find(word); found != _exceptions.end()) {
    for (const auto& [base, kind] : found->second) {
      const uint64_t times = count(base, kind);
      const bool isFirst = &base == &found->second.front().base;
      if (isFirst ? times >= most : times > most) {
        best = base;
        most = times;
      }
    }
    return best.empty() ? found->second.front().base : best;
  }
  for (const auto& rule : kRules) {
    if (word.size() <= rule.ending.size() || !word.ends_with(rule.ending)) continue;
    std::string base = word.substr(0, word.size() - rule.ending.size());
    base += rule.base;
    const uint64_t times = count(base, rule.kind) / (isBase ? timesAsFrequent(rule.ending) : 1);
    if (isLemma(base, rule.kind) && (best.empty() || times > most)) {
      best = std::move(base);
      most = times;
    }
  }
  return best;
}

}  // namespace velan
