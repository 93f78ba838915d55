#include <algorithm>
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

// Pronouns and other small words that WordNet does not list, but that a rule would take for forms of listed ones.
constexpr std::string_view kSmallWords[] = {"his", "hers", "its", "ours", "this", "thus", "us", "yes", "yours"};

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
  wordNet->_kindsOfLemma.reserve(100'000);  // WordNet 3.0 has some 83,000 single words
  for (const auto& file : kFiles) {
    wordNet->readExceptions(folder + '/' + file.name + ".exc");
    wordNet->readLemmas(folder + "/index." + file.name, file.kind);
  }
  return wordNet->_exceptions.empty() && wordNet->_kindsOfLemma.empty() ? nullptr : std::move(wordNet);
}

// A line: the form, then its base forms, separated by spaces. Terms of several words have "_" in them.
void WordNet::readExceptions(const std::string& path) {
  forEachLine(contentsOf(path).view(), [this](std::string_view line) {
    const std::string_view form = wordAt(line, 0);
    if (!isSingleWord(form) || form.size() + 1 >= line.size()) return;
    _exceptions.emplace(form, wordAt(line, form.size() + 1));
  });
}

// A line begins with the lemma; those of the licence begin with spaces.
void WordNet::readLemmas(const std::string& path, uint8_t kind) {
  forEachLine(contentsOf(path).view(), [this, kind](std::string_view line) {
    const std::string_view lemma = wordAt(line, 0);
    if (isSingleWord(lemma)) _kindsOfLemma[std::string(lemma)] |= kind;
  });
}

bool WordNet::isLemma(const std::string& word, uint8_t kinds) const {
  const auto found = _kindsOfLemma.find(word);
  return found != _kindsOfLemma.end() && (found->second & kinds) != 0;
}

std::string WordNet::lemma(const std::string& word) const {
  if (std::find(std::begin(kSmallWords), std::end(kSmallWords), word) != std::end(kSmallWords)) return word;
  if (const auto found = _exceptions.find(word); found != _exceptions.end()) return found->second;
  if (isLemma(word, kAnyKind)) return word;
  for (const auto& rule : kRules) {
    if (word.size() <= rule.ending.size() || !word.ends_with(rule.ending)) continue;
    std::string base = word.substr(0, word.size() - rule.ending.size());
    base += rule.base;
    if (isLemma(base, rule.kind)) return base;
  }
  return {};
}

}  // namespace velan
