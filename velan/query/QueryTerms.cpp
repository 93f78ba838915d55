#include "velan/query/QueryTerms.h"

#include <algorithm>
#include <unordered_set>
#include <utility>

#include "velan/query/evaluation/QueryWalkInternal.h"
#include "velan/query/words/Components.h"
#include "velan/query/words/WordSeparation.h"
#include "velan/wildcard/WildcardPattern.h"

namespace velan {
namespace {

// The list with each string kept where it first stands.
std::vector<String> withoutRepetitions(std::vector<String> strings) {
  std::unordered_set<String> seen;
  std::erase_if(strings, [&seen](const String& string) { return !seen.insert(string).second; });
  return strings;
}

// The strings that `split` makes of the terms, each once.
template <typename Split>
std::vector<String> splitTerms(const std::vector<String>& terms, Split split) {
  std::vector<String> parts;
  for (const String& term : terms) {
    for (String& part : split(term)) parts.push_back(std::move(part));
  }
  return withoutRepetitions(std::move(parts));
}

}  // namespace

QueryTerms::QueryTerms(QueryOperator queryOperator, bool queryNot, int64_t proximityDistance)
    : _object(Children()), _queryOperator(queryOperator), _queryNot(queryNot), _proximityDistance(proximityDistance) {}

std::unique_ptr<QueryTerms> QueryTerms::_initWithWord(String word, QueryOperator queryOperator, bool queryNot,
                                                      bool querySubstring, bool queryPhrase,
                                                      int64_t proximityDistance) {
  std::unique_ptr<QueryTerms> leaf(new QueryTerms(queryOperator, queryNot, proximityDistance));
  leaf->_object = std::move(word);
  leaf->_isWord = true;
  leaf->_querySubstr = querySubstring;
  leaf->_queryPhrase = queryPhrase;
  return leaf;
}

// Takes the tree apart from the top, so that no destructor finds children below its own. Nodes that wait are linked to
// each other, which needs no memory.
QueryTerms::~QueryTerms() {
  QueryTerms* waiting = nullptr;
  const auto takeChildren = [&waiting](QueryTerms& node) {
    if (auto* children = std::get_if<Children>(&node._object)) {
      for (std::unique_ptr<QueryTerms>& child : *children) {
        child->_next = waiting;
        waiting = child.release();
      }
      children->clear();
    }
  };
  takeChildren(*this);
  while (waiting) {
    const std::unique_ptr<QueryTerms> node(std::exchange(waiting, waiting->_next));
    takeChildren(*node);
  }
}

void QueryTerms::appendChild(std::unique_ptr<QueryTerms> child) {
  auto& children = std::get<Children>(_object);
  if (children.size() == 1) {
    _commonOperator = child->_queryOperator;
  } else if (child->_queryOperator != _commonOperator) {
    _commonOperator = QueryOperator::Mixed;
  }
  children.push_back(std::move(child));
}

const String& QueryTerms::word() const {
  static const String absent;
  const auto* word = std::get_if<String>(&_object);
  return word ? *word : absent;
}

const QueryTerms::Children& QueryTerms::children() const {
  static const Children none;
  const auto* children = std::get_if<Children>(&_object);
  return children ? *children : none;
}

bool QueryTerms::usesProximity() const {
  return answerOrNote(*this, false, [this] {
    bool uses = false;
    walkQuery(*this, [&uses](const QueryTerms& node) {
      uses = uses || isProximity(node.queryOperator());
      return !uses;
    });
    return uses;
  });
}

bool QueryTerms::isValid() const { return _isWord || !children().empty(); }

int64_t QueryTerms::minTermLen() const {
  return answerOrNote(*this, int64_t{0}, [this] {
    int64_t shortest = INT64_MAX;
    walkPositiveLeaves(*this, [&shortest](const QueryTerms& leaf) {
      int64_t length = 0;  // of the words alone: a phrase may be found with other separators, or with fewer
      const auto words = wordsUsingWildcardSeparation(leaf.word(), nullptr);
      for (const String& word : words.value_or(std::vector<String>())) length += wildcardLength(word);
      shortest = std::min(shortest, length);
    });
    return shortest == INT64_MAX ? 0 : shortest;
  });
}

String QueryTerms::description() const { return standardizedQueryTerm(); }

std::vector<String> QueryTerms::plusTerms() const {
  std::vector<String> terms;
  walkPositiveLeaves(*this, [&terms](const QueryTerms& leaf) { terms.push_back(leaf.word()); });
  return withoutRepetitions(std::move(terms));
}

String QueryTerms::plusString() const {
  MutableString joined;
  for (const String& term : plusTerms()) {
    if (!joined.isEmpty()) joined.appendCharacter(u' ');
    joined.appendString(term);
  }
  return joined.takeString();
}

std::vector<String> QueryTerms::plusParts() const {
  return splitTerms(plusTerms(), [](const String& term) { return componentsUsingWhiteSeparation(term); });
}

std::vector<String> QueryTerms::plusWords() const {
  return splitTerms(plusTerms(), [](const String& term) {
    return wordsUsingDefaultSeparation(term).value_or(std::vector<String>());
  });
}

std::vector<String> QueryTerms::plusWildcards() const {
  return splitTerms(plusTerms(), [](const String& term) {
    return wordsUsingWildcardSeparation(term, nullptr).value_or(std::vector<String>());
  });
}

std::vector<String> QueryTerms::extendedPlusWildcards() const {
  std::vector<String> patterns = plusWildcards();
  for (String& pattern : patterns) {
    MutableString extended;
    if (pattern.view().front() != u'*') extended.appendCharacter(u'*');
    extended.appendString(pattern);
    if (pattern.view().back() != u'*') extended.appendCharacter(u'*');
    pattern = extended.takeString();
  }
  return withoutRepetitions(std::move(patterns));
}

std::vector<String> stringsForQueryTerm(const QueryTerms& node) {
  std::vector<String> strings;
  walkQuery(node, [&strings](const QueryTerms& each) {
    if (each.isWord()) strings.push_back(each.word());
    return true;
  });
  return strings;
}

String plusString(const String& query) { return QueryTerms::initWithString(query)->plusString(); }
std::vector<String> plusTerms(const String& query) { return QueryTerms::initWithString(query)->plusTerms(); }
std::vector<String> plusParts(const String& query) { return QueryTerms::initWithString(query)->plusParts(); }
std::vector<String> plusWords(const String& query) { return QueryTerms::initWithString(query)->plusWords(); }

}  // namespace velan
