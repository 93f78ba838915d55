// Groups of many terms joined by or: their literals are looked for in one pass over a text, and only those terms are
// looked at that the text may hold.
#ifndef VELAN_QUERY_EVALUATION_MANY_TERMS_INTERNAL_H
#define VELAN_QUERY_EVALUATION_MANY_TERMS_INTERNAL_H

#include <cstdint>
#include <unordered_map>
#include <utility>
#include <vector>

#include "velan/query/QueryTerms.h"
#include "velan/query/evaluation/SearchedTextInternal.h"

namespace velan {

class LeafPattern;

/// All such groups of a tree.
class ManyTerms {
 public:
  /// With the patterns of the tree's leaves, whose literals get their numbers.
  ManyTerms(const QueryTerms& root, std::unordered_map<const QueryTerms*, LeafPattern>& patterns, const unichar* table);

  /// Null where there is no such group.
  const LiteralSet* literals() const { return _groups.empty() ? nullptr : &_literals; }

 private:
  friend class PresentChildren;
  static constexpr size_t kFewest = 8;  // as many literals take less time one by one

  // By their numbers, children that are always to be looked at, and those that hold nowhere without a literal: they
  // change nothing in what the group comes to.
  struct Group {
    std::vector<uint32_t> always;
    std::vector<std::pair<uint32_t, uint32_t>> byLiteral;
  };

  void addGroup(const QueryTerms& group, std::unordered_map<const QueryTerms*, LeafPattern>& patterns);

  LiteralSet _literals;
  std::unordered_map<const QueryTerms*, Group> _groups;
};

/// The children of groups that may matter in one text.
class PresentChildren {
 public:
  /// Borrows both; `terms` may be null, then it is all children.
  PresentChildren(const ManyTerms* terms, const SearchedText& text) : _terms(terms), _text(text) {}

  /// The number of the first such child of `group` from `index` on, or how many children there are.
  size_t next(const QueryTerms& group, size_t index) {
    return _terms && _terms->literals() ? nextPresent(group, index) : index;
  }

  /// To be called when the text has become another one.
  void forget() {
    if (!_present.empty()) _present.clear();
  }

 private:
  size_t nextPresent(const QueryTerms& group, size_t index);

  const ManyTerms* const _terms;
  const SearchedText& _text;
  std::unordered_map<const QueryTerms*, std::vector<uint32_t>> _present;
};

}  // namespace velan

#endif  // VELAN_QUERY_EVALUATION_MANY_TERMS_INTERNAL_H
