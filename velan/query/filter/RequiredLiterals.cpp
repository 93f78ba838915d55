#include <algorithm>
#include <iterator>
#include <unordered_map>
#include <utility>

#include "velan/query/evaluation/QueryWalkInternal.h"
#include "velan/query/filter/RequiredLiteralsInternal.h"

namespace velan {
namespace {

// More groups make the answer hardly better, and bound what deep trees cost.
constexpr size_t kMostGroups = 8;
// Looking for more literals than this is not worth it.
constexpr size_t kMostLiterals = 10000;

struct Group {
  std::vector<std::u16string_view> literals;
  size_t shortest = SIZE_MAX;
};

// Long literals are rare ones, and the rarest tell most.
bool tellsMore(const Group& a, const Group& b) {
  return a.shortest != b.shortest ? a.shortest > b.shortest : a.literals.size() < b.literals.size();
}

class Requirement {
 public:
  static Requirement nothing() { return {}; }
  static Requirement unsatisfiable() { return Requirement({Group()}); }
  static Requirement literal(std::u16string_view units) { return Requirement({Group{{units}, units.size()}}); }

  std::vector<Group> takeGroups() { return std::move(_groups); }

  void joinByAnd(Requirement other) {
    if (_groups.size() < other._groups.size()) std::swap(_groups, other._groups);
    std::move(other._groups.begin(), other._groups.end(), std::back_inserter(_groups));
    if (_groups.size() <= kMostGroups) return;
    std::stable_sort(_groups.begin(), _groups.end(), tellsMore);
    _groups.resize(kMostGroups);
  }

  void joinByOr(Requirement other) {
    if (_groups.empty() || other._groups.empty()) {
      _groups.clear();
      return;
    }
    Group one = best(_groups);
    Group two = best(other._groups);
    if (one.literals.size() < two.literals.size()) std::swap(one, two);
    one.literals.insert(one.literals.end(), two.literals.begin(), two.literals.end());
    one.shortest = std::min(one.shortest, two.shortest);
    _groups.clear();
    if (one.literals.size() <= kMostLiterals) _groups.push_back(std::move(one));
  }

 private:
  Requirement() = default;
  explicit Requirement(std::vector<Group> groups) : _groups(std::move(groups)) {}

  static Group best(std::vector<Group>& groups) {
    return std::move(*std::min_element(groups.begin(), groups.end(), tellsMore));
  }

  std::vector<Group> _groups;
};

Requirement requirementOfLeaf(const LeafPattern& pattern) {
  switch (pattern.meaning()) {
    case LeafMeaning::Literal:
      return Requirement::literal(pattern.literal()->units());
    case LeafMeaning::Words: {
      Requirement all = Requirement::nothing();
      for (const std::u16string_view literal : pattern.pattern().requiredLiterals()) {
        all.joinByAnd(Requirement::literal(literal));
      }
      return all;
    }
    case LeafMeaning::Nothing:
      return Requirement::unsatisfiable();
    default:
      return Requirement::nothing();
  }
}

}  // namespace

std::vector<std::vector<std::u16string>> requiredLiterals(const QueryTerms& root, const LeafPatterns& patterns) {
  std::vector<const QueryTerms*> nodes;  // parents first
  walkQuery(root, [&nodes](const QueryTerms& node) {
    nodes.push_back(&node);
    return !node.queryNot();
  });
  std::unordered_map<const QueryTerms*, Requirement> requirements;
  for (auto each = nodes.rbegin(); each != nodes.rend(); ++each) {
    const QueryTerms& node = **each;
    const auto take = [&](size_t child) {
      auto found = requirements.extract(node.children()[child].get());
      return std::move(found.mapped());
    };
    Requirement all = Requirement::nothing();
    if (node.isWord()) {
      if (!node.queryNot()) all = requirementOfLeaf(*patterns.find(node));
    } else if (node.children().empty()) {
      all = Requirement::unsatisfiable();
    } else if (!node.queryNot()) {
      all = take(0);
      for (size_t i = 1; i < node.children().size(); ++i) {
        const QueryOperator queryOperator = node.children()[i]->queryOperator();
        if (queryOperator == QueryOperator::Optional || queryOperator == QueryOperator::Mixed) continue;
        const bool either = queryOperator == QueryOperator::Or || queryOperator == QueryOperator::Xor;
        either ? all.joinByOr(take(i)) : all.joinByAnd(take(i));
      }
    }
    requirements.emplace(&node, std::move(all));
  }
  std::vector<Group> groups = requirements.extract(&root).mapped().takeGroups();
  std::stable_sort(groups.begin(), groups.end(), tellsMore);
  std::vector<std::vector<std::u16string>> required;
  for (const Group& group : groups) required.emplace_back(group.literals.begin(), group.literals.end());
  return required;
}

}  // namespace velan
