// Queries evaluated by their definition, slowly: what the tests compare the library with. It shares only the folding of
// units, the separators and the comparison of two words, which have tests of their own.
#ifndef VELAN_TESTS_QUERY_QUERY_REFERENCE_H
#define VELAN_TESTS_QUERY_QUERY_REFERENCE_H

#include <algorithm>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "velan/base/Range.h"
#include "velan/query/QueryMatching.h"
#include "velan/text/CharacterSets.h"
#include "velan/text/ConversionTables.h"
#include "velan/text/Separators.h"
#include "velan/wildcard/WildcardMatching.h"

namespace velan {

/// A node of a query, open to be built by hand.
struct ReferenceTerm {
  std::u16string word;  // of a leaf; empty for a group
  std::vector<ReferenceTerm> children;
  QueryOperator op = QueryOperator::And;
  bool negated = false;
  bool phrase = false;
  int64_t distance = QueryTerms::kDefaultDistance;

  bool isProximity() const { return velan::isProximity(op) && distance > 0; }
};

inline bool isSeparator(unichar c) { return isMemberOfCharacterSetRep(defaultWordSeparators(), c); }

inline std::vector<std::u16string_view> piecesOf(std::u16string_view pattern) {
  std::vector<std::u16string_view> pieces;
  size_t start = 0;
  bool inSet = false;
  for (size_t i = 0; i <= pattern.size(); ++i) {
    const unichar c = i < pattern.size() ? pattern[i] : u' ';
    if (c == '[') inSet = true;
    if (c == ']') inSet = false;
    const bool belongs = inSet || c == '*' || c == '?' || c == ']';
    if (i < pattern.size() && (belongs || !isSeparator(c))) continue;
    if (i > start) pieces.push_back(pattern.substr(start, i - start));
    start = i + 1;
  }
  return pieces;
}

inline bool isInside(const Range& inner, const Range& outer) {
  return inner.location >= outer.location && endOf(inner) <= endOf(outer);
}

inline void collectLeaves(const ReferenceTerm& node, std::vector<const ReferenceTerm*>& leaves) {
  if (node.negated) return;
  if (!node.word.empty()) leaves.push_back(&node);
  for (const ReferenceTerm& child : node.children) collectLeaves(child, leaves);
}

inline void dump(const ReferenceTerm& node, std::string& line) {
  if (node.negated) line += '!';
  if (!node.word.empty()) {
    const std::string word = String(node.word).toUTF8();
    line += node.phrase ? '"' + word + '"' : word;
    return;
  }
  line += '(';
  static const char* const operators[] = {"&", "|", "^", "NEAR/", "BEFORE/", "AFTER/", "NEXT/", "OPT"};
  for (size_t i = 0; i < node.children.size(); ++i) {
    const ReferenceTerm& child = node.children[i];
    if (i > 0) {
      line += ' ';
      line += operators[static_cast<size_t>(child.op)];
      if (isProximity(child.op)) line += std::to_string(child.distance);
      line += ' ';
    }
    dump(child, line);
  }
  line += ')';
}

/// A copy of the library's tree.
inline ReferenceTerm referenceOf(const QueryTerms& node) {
  ReferenceTerm copy{std::u16string(node.word().view()),
                     {},
                     node.queryOperator(),
                     node.queryNot(),
                     node.queryPhrase(),
                     node.proximityDistance()};
  for (const auto& child : node.children()) copy.children.push_back(referenceOf(*child));
  return copy;
}

/// The tree in one line: groups in parentheses (not the root), `!` before negated terms, phrases in quotation marks,
/// and between terms `&`, `|`, `^`, `NEAR/2` and so on. Equal trees have equal texts.
inline std::string dumpOf(const ReferenceTerm& root) {
  std::string line;
  dump(root, line);
  return line.substr(root.negated ? 2 : 1, line.size() - (root.negated ? 3 : 2));
}
inline std::string dumpOf(const QueryTerms& root) { return dumpOf(referenceOf(root)); }

/// One line for each occurrence.
inline std::string dumpOf(const std::vector<QueryOccurrence>& occurrences) {
  std::string lines;
  for (const QueryOccurrence& o : occurrences) {
    lines += std::to_string(o.range.location) + '+' + std::to_string(o.range.length) + ' ' + o.term.toUTF8();
    lines += o.primary ? " primary\n" : "\n";
  }
  return lines;
}

/// A text of ASCII, Latin-1 letters and ASCII separators with its words.
class ReferenceText {
 public:
  ReferenceText(std::u16string text, QueryComparison comparison, bool wildcard)
      : _comparison(comparison), _wildcard(wildcard) {
    _text = folded(text);
    for (size_t i = 0, start = 0; i <= text.size(); ++i) {
      if (i < text.size() && !isSeparator(text[i])) continue;
      if (i > start) _words.push_back({static_cast<int64_t>(start), static_cast<int64_t>(i - start)});
      start = i + 1;
    }
  }

  bool matches(const ReferenceTerm& node, Range range) const { return holds(node, nullptr, node, range); }
  bool contains(const ReferenceTerm& node) const {
    std::vector<const ReferenceTerm*> leaves;
    collectLeaves(node, leaves);
    const Range all{0, std::ssize(_text)};
    return std::ranges::any_of(leaves, [&](const ReferenceTerm* leaf) { return !placesOf(*leaf, all).empty(); });
  }
  Range wholeRange() const { return {0, static_cast<int64_t>(_text.size())}; }

  /// Where the leaf is found, negated or not, from left to right; places may overlap.
  std::vector<Range> placesOf(const ReferenceTerm& leaf, Range range) const {
    std::vector<Range> places;
    const std::u16string word = folded(leaf.word);
    if (isAnything(word)) {
      if (range.length > 0) places.push_back(range);
      return places;
    }
    const auto pieces = piecesOf(word);
    if (_wildcard && !leaf.phrase && word.find_first_not_of(u"*?") == word.npos) return places;
    for (size_t first = 0; first < _words.size(); ++first) {
      for (size_t last = first; last < _words.size(); ++last) {
        const Range place{_words[first].location, endOf(_words[last]) - _words[first].location};
        if (!isInside(place, range)) continue;
        bool matches;
        if (_wildcard) {
          matches = last - first + 1 == pieces.size();
          for (size_t i = first; matches && i <= last; ++i) matches = wordIsLike(pieces[i - first], _words[i]);
        } else {
          matches = _text.substr(static_cast<size_t>(place.location), static_cast<size_t>(place.length)) == word;
        }
        if (matches) places.push_back(place);
      }
    }
    return places;
  }
  std::vector<QueryOccurrence> occurrences(const ReferenceTerm& root, Range range) const {
    Parts parts;
    collectParts(root, nullptr, root, range, parts);
    std::vector<const ReferenceTerm*> leaves;
    collectLeaves(root, leaves);
    std::map<std::pair<int64_t, int64_t>, QueryOccurrence> found;
    for (const ReferenceTerm* leaf : leaves) {
      for (const Range& place : placesOf(*leaf, range)) {
        const bool primary = std::ranges::any_of(
            parts[leaf], [&](const Range& part) { return isAnything(leaf->word) || isInside(place, part); });
        const QueryOccurrence occurrence{place, leaf->word, false};
        found.try_emplace({place.location, -place.length}, occurrence).first->second.primary |= primary;
      }
    }
    std::vector<QueryOccurrence> occurrences;
    for (auto& [key, occurrence] : found) occurrences.push_back(occurrence);
    return occurrences;
  }

 private:
  using Parts = std::map<const ReferenceTerm*, std::vector<Range>>;  // the ranges in which a leaf takes part

  // `relation` carries the operator and the distance to `partner`; without a partner it does not count.
  bool holds(const ReferenceTerm& node, const ReferenceTerm* partner, const ReferenceTerm& relation,
             Range range) const {
    if (!node.children.empty()) return foldOf(node, partner, relation, range) != node.negated;
    if (node.word.empty()) return false;
    if (partner) return !satisfiedPieces(node, *partner, relation, range).empty();
    return placesOf(node, range).empty() == node.negated;
  }
  bool foldOf(const ReferenceTerm& group, const ReferenceTerm* partner, const ReferenceTerm& relation,
              Range range) const {
    bool running = holds(group.children[0], partner, relation, range);
    for (size_t i = 1; i < group.children.size(); ++i) {
      const ReferenceTerm& child = group.children[i];
      if (child.op == QueryOperator::Optional) continue;
      const bool holdsHere = child.isProximity() ? holds(child, &group.children[i - 1], child, range)
                                                 : holds(child, partner, relation, range);
      running = child.op == QueryOperator::Or    ? running || holdsHere
                : child.op == QueryOperator::Xor ? running != holdsHere
                                                 : running && holdsHere;
    }
    return running;
  }
  Range spanAround(Range place, const ReferenceTerm& relation, Range range) const {
    int64_t start = place.location;
    int64_t end = endOf(place);
    if (relation.op != QueryOperator::After) {
      start = 0;
      int64_t count = 0;
      for (const Range& word : _words) count += word.location < place.location;
      if (count >= relation.distance) start = _words[static_cast<size_t>(count - relation.distance)].location;
    }
    if (relation.op == QueryOperator::Near || relation.op == QueryOperator::After) {
      const auto next = std::ranges::find_if(_words, [&](const Range& word) { return endOf(word) > endOf(place); });
      end = std::ssize(_text);
      if (_words.end() - next >= relation.distance) end = endOf(next[relation.distance - 1]);
    }
    start = std::max(start, range.location);
    return {start, std::min(end, endOf(range)) - start};
  }
  std::vector<Range> satisfiedPieces(const ReferenceTerm& leaf, const ReferenceTerm& partner,
                                     const ReferenceTerm& relation, Range range) const {
    std::vector<Range> pieces;
    std::vector<bool> covered(static_cast<size_t>(endOf(range)) + 1);
    for (const Range& place : placesOf(leaf, range)) {
      const Range span = spanAround(place, relation, range);
      if (!leaf.negated) pieces.push_back(span);
      std::fill_n(covered.begin() + span.location, span.length, true);
    }
    covered[static_cast<size_t>(endOf(range))] = true;
    int64_t start = range.location;
    for (int64_t i = range.location; leaf.negated && i <= endOf(range); ++i) {
      if (!covered[static_cast<size_t>(i)]) continue;
      if (i > start) pieces.push_back({start, i - start});
      start = i + 1;
    }
    std::erase_if(pieces, [&](const Range& piece) { return !holds(partner, nullptr, partner, piece); });
    return pieces;
  }
  // A child that the next one is related to takes part through that relation only; nothing below a negated group does,
  // but its partner does where the group holds.
  void collectParts(const ReferenceTerm& node, const ReferenceTerm* partner, const ReferenceTerm& relation, Range range,
                    Parts& parts) const {
    if (node.children.empty()) {
      if (!partner && !node.negated) parts[&node].push_back(range);
      if (!partner) return;
      for (const Range& piece : satisfiedPieces(node, *partner, relation, range)) {
        collectParts(*partner, nullptr, *partner, piece, parts);
      }
      for (const Range& place : placesOf(node, range)) {
        if (!node.negated && holds(*partner, nullptr, *partner, spanAround(place, relation, range))) {
          parts[&node].push_back(place);
        }
      }
      return;
    }
    if (node.negated) {
      if (partner && holds(node, partner, relation, range)) collectParts(*partner, nullptr, *partner, range, parts);
      return;
    }
    for (size_t i = 0; i < node.children.size(); ++i) {
      const ReferenceTerm& child = node.children[i];
      const bool related = i > 0 && child.isProximity();
      const bool isPartner = i + 1 < node.children.size() && node.children[i + 1].isProximity();
      if (isPartner && !related && !partner) continue;
      collectParts(child, related ? &node.children[i - 1] : partner, related ? child : relation, range, parts);
    }
  }
  // Found as the whole of what is searched.
  bool isAnything(std::u16string_view word) const { return _wildcard && word.find_first_not_of('*') == word.npos; }
  std::u16string folded(std::u16string_view text) const {
    std::u16string result(text);
    for (unichar& c : result) {
      if (velan::contains(_comparison, QueryComparison::IgnoreDiacritics)) c = umlautsToAscii(c);
      if (velan::contains(_comparison, QueryComparison::IgnoreCase)) c = toUpper(c);
    }
    return result;
  }
  bool wordIsLike(std::u16string_view pattern, const Range& word) const {
    const auto units =
        std::u16string_view(_text).substr(static_cast<size_t>(word.location), static_cast<size_t>(word.length));
    const bool isExact = pattern.find_first_of(u"*?[") == pattern.npos;
    if (!isExact || !velan::contains(_comparison, QueryComparison::Fuzzy)) {
      return stringMatchesUnixWildcard(units.begin(), units.end(), pattern.begin(), pattern.end());
    }
    const auto a = static_cast<double>(pattern.size());
    const auto b = static_cast<double>(units.size());
    return std::min(a, b) / std::max(a, b) >= 0.75 &&
           stringMatchesUnixWildcardFuzzy(pattern.data(), pattern.size(), units.data(), units.size()) >= 0.75;
  }

  std::u16string _text;  // folded
  std::vector<Range> _words;
  QueryComparison _comparison;
  bool _wildcard;
};

}  // namespace velan

#endif  // VELAN_TESTS_QUERY_QUERY_REFERENCE_H
