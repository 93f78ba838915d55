// Walking over the nodes of a query, of any depth, in the order of the tree, and answering questions about them.
#ifndef VELAN_QUERY_EVALUATION_QUERY_WALK_INTERNAL_H
#define VELAN_QUERY_EVALUATION_QUERY_WALK_INTERNAL_H

#include <algorithm>
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

/// All children of all groups.
struct AllChildren {
  size_t next(const QueryTerms&, size_t index) const { return index; }
};

/// Calls `visit(node)` for `root` and, where that returns true, for everything below it that is among the `present`
/// children; parents come first. Allocates nothing where no group holds another.
template <typename Present, typename Visit>
void walkQuery(const QueryTerms& root, Present&& present, Visit visit) {
  if (!visit(root)) return;
  std::vector<const QueryTerms*> pending;
  for (size_t part = 0; (part = present.next(root, part)) < root.children().size(); ++part) {
    const QueryTerms* node = root.children()[part].get();
    while (true) {
      if (visit(*node)) {
        const auto& children = node->children();
        const auto before = std::ssize(pending);
        for (size_t i = 0; (i = present.next(*node, i)) < children.size(); ++i) pending.push_back(children[i].get());
        std::reverse(pending.begin() + before, pending.end());
      }
      if (pending.empty()) break;
      node = pending.back();
      pending.pop_back();
    }
  }
}

template <typename Visit>
void walkQuery(const QueryTerms& root, Visit visit) {
  walkQuery(root, AllChildren(), visit);
}

/// Calls `visit(leaf)` for every such leaf at or below `root` that is neither negated nor below a negated group.
template <typename Present, typename Visit>
void walkPositiveLeaves(const QueryTerms& root, Present&& present, Visit visit) {
  walkQuery(root, present, [&visit](const QueryTerms& node) {
    if (node.queryNot()) return false;
    if (node.isWord()) visit(node);
    return true;
  });
}
template <typename Visit>
void walkPositiveLeaves(const QueryTerms& root, Visit visit) {
  walkPositiveLeaves(root, AllChildren(), visit);
}

}  // namespace velan

#endif  // VELAN_QUERY_EVALUATION_QUERY_WALK_INTERNAL_H
