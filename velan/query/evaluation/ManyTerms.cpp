#include <algorithm>

#include "velan/query/evaluation/LeafSearchInternal.h"
#include "velan/query/evaluation/ManyTermsInternal.h"
#include "velan/query/evaluation/QueryWalkInternal.h"

namespace velan {
namespace {

bool isJoinedByOr(const QueryTerms::Children& children, size_t index) {
  return index > 0 && children[index]->queryOperator() == QueryOperator::Or;
}

}  // namespace

ManyTerms::ManyTerms(const QueryTerms& root, std::unordered_map<const QueryTerms*, LeafPattern>& patterns,
                     const unichar* table)
    : _literals(table) {
  walkQuery(root, [&](const QueryTerms& node) {
    if (node.children().size() > kFewest) addGroup(node, patterns);
    return true;
  });
  _literals.prepare();
}

void ManyTerms::addGroup(const QueryTerms& group, std::unordered_map<const QueryTerms*, LeafPattern>& patterns) {
  const auto& children = group.children();
  const auto literalOf = [&](size_t index) -> Literal* {
    const bool mayBeLeftOut = isJoinedByOr(children, index) && !children[index]->queryNot();
    const auto pattern = mayBeLeftOut ? patterns.find(children[index].get()) : patterns.end();
    Literal* const literal = pattern != patterns.end() ? pattern->second.requiredLiteral() : nullptr;
    return literal && literal->units().size() >= LiteralSet::kShortest ? literal : nullptr;
  };
  Group added;
  std::vector<Literal*> literals(children.size());
  for (size_t i = 0; i < children.size(); ++i) literals[i] = literalOf(i);
  if (children.size() - static_cast<size_t>(std::ranges::count(literals, nullptr)) < kFewest) return;
  for (uint32_t i = 0; i < children.size(); ++i) {
    if (literals[i]) {
      added.byLiteral.push_back({*literals[i]->join(_literals), i});
    } else {
      added.always.push_back(i);
    }
  }
  std::ranges::sort(added.byLiteral);
  _groups.emplace(&group, std::move(added));
}

size_t PresentChildren::nextPresent(const QueryTerms& group, size_t index) {
  const auto found = _terms->_groups.find(&group);
  const std::vector<LiteralSet::Hit>* hits = found != _terms->_groups.end() ? _text.allHits() : nullptr;
  if (!hits) return index;
  const auto [entry, isNew] = _present.try_emplace(&group);
  std::vector<uint32_t>& present = entry->second;
  if (isNew) {
    const auto& byLiteral = found->second.byLiteral;
    present = found->second.always;
    for (auto hit = hits->begin(); hit != hits->end();) {
      const uint32_t literal = hit->literal;
      auto child = std::lower_bound(byLiteral.begin(), byLiteral.end(), std::pair(literal, 0u));
      for (; child != byLiteral.end() && child->first == literal; ++child) present.push_back(child->second);
      hit = std::ranges::upper_bound(hit, hits->end(), literal, {}, &LiteralSet::Hit::literal);
    }
    std::ranges::sort(present);
  }
  const auto next = std::ranges::lower_bound(present, index);
  return next != present.end() ? *next : group.children().size();
}

}  // namespace velan
