#include "tools/query/FailureReasons.h"

#include <fmt/format.h>

#include <algorithm>
#include <deque>
#include <new>
#include <optional>
#include <unordered_map>
#include <utility>

#include "tools/query/WordReadings.h"
#include "velan/base/ASCII.h"
#include "velan/base/utf/UTF.h"
#include "velan/wildcard/WildcardPattern.h"

namespace velan::tool {
namespace {

constexpr size_t kMostReasons = 10;
constexpr int64_t kLettersOfPart = 3;  // fewer stand in too many words
constexpr size_t kLettersOfWord = 20;  // longer ones are not taken apart

std::string nameOf(const QueryTerms& term) {
  MutableString text;
  queryTerm(text, term, QueryStyle::Standardized, nullptr);
  std::string name = text.takeString().toUTF8();
  if (term.queryNot()) name = name.substr(std::string_view("NOT ").size());
  return term.isWord() || name.starts_with('(') ? name : '(' + name + ')';
}

// Two places of terms that are related, next to each other.
struct Neighbours {
  Range first;
  Range second;
  int64_t distance;  // in words
};

class FailureSearch {
 public:
  FailureSearch(const PreparedQuery& query, const std::vector<ExplainedTerm>& terms, const String& text,
                const SourcePlaces& source, bool verbatim)
      : _query(query), _terms(terms), _text(text), _source(source), _verbatim(verbatim) {
    for (size_t i = 0; i < terms.size(); ++i) _numbers[terms[i].term] = i;
  }

  // In the order of the query, but groups that do not hold wait to be looked into.
  std::vector<std::string> reasons() {
    std::deque<const QueryTerms*> failed{_terms.front().term};
    for (; !failed.empty() && _reasons.size() < kMostReasons; failed.pop_front()) explainGroup(*failed.front(), failed);
    return std::move(_reasons);
  }

 private:
  const ExplainedTerm* find(const QueryTerms& term) const {
    const auto found = _numbers.find(&term);
    return found == _numbers.end() ? nullptr : &_terms[found->second];
  }

  // Nothing for a term that lies too deep to be explained.
  bool fails(const QueryTerms& term) const {
    const ExplainedTerm* each = find(term);
    return each && each->holds == false;
  }

  // Goes back through the fold from its end, which is false, as long as what stands to the left is false or matters.
  void explainGroup(const QueryTerms& group, std::deque<const QueryTerms*>& failed) {
    const auto& terms = group.children();
    const std::vector<bool> values = foldedValues(terms);
    std::vector<const QueryTerms*> blamed;
    bool isBoth = false;  // an exclusive or of two that hold is to blame, and nothing before it
    for (size_t i = terms.size(); i-- > 0 && !values[i] && !isBoth;) {
      const QueryOperator op = i > 0 ? terms[i]->queryOperator() : QueryOperator::And;
      isBoth = op == QueryOperator::Xor && !fails(*terms[i]);
      if (isBoth || (op != QueryOperator::Optional && fails(*terms[i]))) blamed.push_back(terms[i].get());
    }
    for (auto term = blamed.rbegin(); term != blamed.rend() && _reasons.size() < kMostReasons; ++term) {
      if (fails(**term)) {
        explainTerm(**term, failed);
      } else {
        say(fmt::format("{} holds, and so does what stands before it: XOR wants one of them", nameOf(**term)));
      }
    }
  }

  // Of the first child, of the first two, and so on.
  std::vector<bool> foldedValues(const QueryTerms::Children& terms) const {
    std::vector<bool> values;
    bool value = true;
    for (size_t i = 0; i < terms.size(); ++i) {
      const bool holds = !fails(*terms[i]);
      switch (i > 0 ? terms[i]->queryOperator() : QueryOperator::And) {
        case QueryOperator::Or:
          value = value || holds;
          break;
        case QueryOperator::Xor:
          value = value != holds;
          break;
        case QueryOperator::Optional:
          break;
        default:
          value = value && holds;
      }
      values.push_back(value);
    }
    return values;
  }

  void explainTerm(const QueryTerms& term, std::deque<const QueryTerms*>& failed) {
    const ExplainedTerm& each = *find(term);
    if (each.partner) {
      explainRelation(each, *find(*each.partner));
    } else if (term.queryNot()) {
      say(nameOf(term) + " must not be there, but is" + at(each.places));
    } else if (!term.isWord()) {
      failed.push_back(&term);
    } else {
      say(nameOf(term) + " is not there" + whatWouldFind(each));
    }
  }

  void say(std::string reason) {
    if (std::find(_reasons.begin(), _reasons.end(), reason) == _reasons.end()) _reasons.push_back(std::move(reason));
  }

  std::string at(const std::vector<Range>& places) const {
    return places.empty() ? "" : ", at " + lineAndColumn(places.front());
  }

  std::string lineAndColumn(Range place) const {
    const SourcePlace found = _source.of(place);
    return fmt::format("{}:{}", found.line, found.column);
  }

  void explainRelation(const ExplainedTerm& term, const ExplainedTerm& partner) {
    const std::string name = nameOf(*term.term);
    const std::string partnerName = nameOf(*partner.term);
    const int64_t wanted = term.term->proximityDistance();
    if (term.term->queryNot() || partner.term->queryNot() || !term.term->isWord() || !partner.term->isWord()) {
      say(term.term->queryNot() ? fmt::format("{} is nowhere without {} within {} words", partnerName, name, wanted)
                                : fmt::format("{} is nowhere within {} words of {}", partnerName, wanted, name));
    } else if (term.places.empty()) {
      say(name + " is not there" + whatWouldFind(term));
    } else if (!partner.places.empty()) {
      explainDistance(term, partner);
    }
  }

  void explainDistance(const ExplainedTerm& term, const ExplainedTerm& partner) {
    const QueryOperator op = term.term->queryOperator();
    const std::optional<Neighbours> before = nearest(partner.places, term.places);
    const std::optional<Neighbours> after = nearest(term.places, partner.places);
    const bool mayStandBefore = op != QueryOperator::After;
    const bool mayStandAfter = op == QueryOperator::After || op == QueryOperator::Near;
    const std::optional<Neighbours>* best = mayStandBefore ? &before : &after;
    if (mayStandBefore && mayStandAfter && after && (!before || after->distance < before->distance)) best = &after;
    const std::string name = nameOf(*term.term);
    const std::string partnerName = nameOf(*partner.term);
    if (!*best) {
      say(fmt::format("{} never stands {} {}", partnerName, mayStandBefore ? "before" : "after", name));
      return;
    }
    const Neighbours& found = **best;
    say(fmt::format("{} and {} are {} word{} apart where they are nearest (at {} and {}), not within {}", partnerName,
                    name, found.distance, found.distance == 1 ? "" : "s", lineAndColumn(found.first),
                    lineAndColumn(found.second), term.term->proximityDistance()));
  }

  // The closest two of which one of `first` stands before one of `second`. Both grow.
  std::optional<Neighbours> nearest(const std::vector<Range>& first, const std::vector<Range>& second) {
    std::optional<Neighbours> best;
    size_t next = 0;
    for (size_t i = 0; i < first.size(); ++i) {
      while (next < second.size() && second[next].location < endOf(first[i])) ++next;
      if (next == second.size()) break;
      if (i + 1 < first.size() && endOf(first[i + 1]) <= second[next].location) continue;
      const int64_t distance = wordsBetween(first[i], second[next]) + 1;
      if (!best || distance < best->distance) best = Neighbours{first[i], second[next], distance};
    }
    return best;
  }

  int64_t wordsBetween(Range first, Range second) {
    if (!_words) _words = indexOf(_text, _query);
    return _words->enumerateWordsInRange({endOf(first), second.location - endOf(first)},
                                         [](const FastWordEnumerator&, int64_t, int64_t) { return false; });
  }

  // What would find a leaf that is not there.
  std::string whatWouldFind(const ExplainedTerm& leaf) const {
    const QueryComparison comparison = _query.comparison();
    const String& word = leaf.term->word();
    std::vector<std::string> ways;
    const auto addWay = [&](std::string_view name, Range place) {
      ways.push_back(fmt::format("{} would find {} at {}", name, textAt(place), lineAndColumn(place)));
    };
    const auto tryWay = [&](std::string_view name, const String& pattern, QueryComparison other, bool wildcard) {
      const auto place = placeOfAny({{pattern}}, leaf.term->queryPhrase(), other, wildcard);
      if (place) addWay(name, *place);
    };
    if (!contains(comparison, QueryComparison::IgnoreCase)) {
      tryWay("without -s one", word, comparison | QueryComparison::IgnoreCase, _query.wildcard());
    }
    if (!contains(comparison, QueryComparison::IgnoreDiacritics)) {
      tryWay("-d", word, comparison | QueryComparison::IgnoreDiacritics, true);
    }
    if (const String whole = joinedWords(leaf)) tryWay(whole.toUTF8(), whole, comparison, _query.wildcard());
    if (const auto place = placeOfAny(wordsApart(leaf), true, comparison, _query.wildcard())) {
      const std::string text = textAt(*place);
      addWay(text.find_first_of(" \n\r\t") == text.npos ? text : '"' + text + '"', *place);
    }
    if (word.length() >= (isASCIILetter(word.view().front()) ? kLettersOfPart : 1) && leaf.pieces.size() == 1 &&
        !leaf.pieces.front().standsForAnyWord && leaf.pieces.front().type == 0) {
      const std::string pattern = '*' + word.toUTF8() + '*';
      tryWay(pattern.c_str(), String::fromUTF8(pattern), comparison, true);
    }
    if (ways.empty() && !contains(comparison, QueryComparison::Fuzzy)) {
      tryWay("--fuzzy", word, comparison | QueryComparison::Fuzzy, true);
    }
    if (ways.empty()) return leaf.pieces.size() > 1 ? absentPieces(leaf) : "";
    std::string list;
    for (const std::string& way : ways) list += "; " + way;
    return list;
  }

  // The words of "e-mail" and "U.S.A." as one. Absent for any other term.
  static String joinedWords(const ExplainedTerm& leaf) {
    if (leaf.pieces.size() < 2 || leaf.pieces.size() > kLettersOfWord) return String();
    MutableString word;
    for (const ExplainedPiece& piece : leaf.pieces) {
      if (piece.type != WildcardTypeExact || piece.standsForAnyWord) return String();
      word.appendString(piece.pattern);
    }
    return word.takeString();
  }

  // A word as two, and as one for each letter.
  static std::vector<String> wordsApart(const ExplainedTerm& leaf) {
    if (leaf.pieces.size() != 1 || leaf.pieces.front().type != WildcardTypeExact) return {};
    const std::u16string_view word = leaf.pieces.front().pattern.view();
    if (word.size() > kLettersOfWord) return {};
    std::vector<String> ways;
    std::u16string letters;
    for (size_t i = 0; i < word.size(); ++i) {
      if (isLowSurrogate(word[i])) return {};
      letters.append(i > 0 ? u" " : u"") += word[i];
      if (i > 0) ways.push_back(String(std::u16string(word.substr(0, i)) + u' ' + std::u16string(word.substr(i))));
    }
    if (word.size() > 2) ways.push_back(String(letters));
    return ways;
  }

  // Which words of a phrase are absent.
  std::string absentPieces(const ExplainedTerm& phrase) const {
    for (const ExplainedPiece& piece : phrase.pieces) {
      if (!piece.standsForAnyWord && !placeOfAny({{piece.pattern}}, false, _query.comparison(), _query.wildcard()))
        return fmt::format("; nor is {}", piece.pattern.toUTF8());
    }
    return "; its words are, but not in a row";
  }

  // The first place of any of the patterns.
  std::optional<Range> placeOfAny(const std::vector<String>& patterns, bool phrase, QueryComparison comparison,
                                  bool wildcard) const {
    if (patterns.empty()) return std::nullopt;
    std::vector<QueryToken> tokens;
    tokens.reserve(patterns.size());
    for (const String& pattern : patterns) {
      tokens.push_back({phrase ? QueryTokenKind::Phrase : QueryTokenKind::Word, {}, pattern, {}, {}});
    }
    const auto query = PreparedQuery::queryWithTerms(
        queryTermsWithTokens(tokens, QueryOperator::Or, QueryTerms::kDefaultDistance), comparison, wildcard);
    if (!query) throw std::bad_alloc();
    const SearchedText searched = WordReadings(*query, _verbatim).read(_text);
    const auto index = indexOf(searched.text(), *query);
    if (!index) return std::nullopt;
    const auto found = QueryMatcher(*query, *index).occurrences({0, NSNotFound});
    if (found.empty()) return std::nullopt;
    return searched.sourceOf(found.front().range);
  }

  std::string textAt(Range place) const {
    return String(_text.view().substr(static_cast<size_t>(place.location), static_cast<size_t>(place.length))).toUTF8();
  }

  const PreparedQuery& _query;
  const std::vector<ExplainedTerm>& _terms;
  const String& _text;
  const SourcePlaces& _source;
  const bool _verbatim;
  std::unordered_map<const QueryTerms*, size_t> _numbers;
  std::unique_ptr<FastWordEnumerator> _words;
  std::vector<std::string> _reasons;
};

}  // namespace

std::vector<std::string> failureReasons(const PreparedQuery& query, const std::vector<ExplainedTerm>& terms,
                                        const String& text, const SourcePlaces& source, bool verbatim) {
  return FailureSearch(query, terms, text, source, verbatim).reasons();
}

}  // namespace velan::tool
