// Walking over the nodes of a query, of any depth, in the order of the tree, and answering questions about them.
#ifndef VELAN_QUERY_EVALUATION_QUERY_WALK_INTERNAL_H
#define VELAN_QUERY_EVALUATION_QUERY_WALK_INTERNAL_H

#include <new>
#include <vector>

#include "velan/query/QueryTerms.h"

namespace velan {

/// What `ask` answers, or the neutral result, which `noter` takes note of, when memory runs out.
template <typename Noter, typename Result, typename Ask>
Result answerOrNote(const Noter& noter, Result neutral, const Ask& ask) {
  try {
    return ask();
  } catch (const std::bad_alloc&) {
    noter.noteOutOfMemory();
    return neutral;
  }
}

/// Calls `visit(node)` for `root` and, where that returns true, for everything below it; parents come first. Allocates
/// nothing where no group holds another.
template <typename Visit>
void walkQuery(const QueryTerms& root, Visit visit) {
  if (!visit(root)) return;
  std::vector<const QueryTerms*> pending;
  for (const auto& part : root.children()) {
    const QueryTerms* node = part.get();
    while (true) {
      if (visit(*node)) {
        const auto& children = node->children();
        for (auto child = children.rbegin(); child != children.rend(); ++child) pending.push_back(child->get());
      }
      if (pending.empty()) break;
      node = pending.back();
      pending.pop_back();
    }
  }
}

/// Calls `visit(leaf)` for every leaf at or below `root` that is neither negated nor below a negated group.
template <typename Visit>
void walkPositiveLeaves(const QueryTerms& root, Visit visit) {
  walkQuery(root, [&visit](const QueryTerms& node) {
    if (node.queryNot()) return false;
    if (node.isWord()) visit(node);
    return true;
  });
}

}  // namespace velan

#endif  // VELAN_QUERY_EVALUATION_QUERY_WALK_INTERNAL_H
