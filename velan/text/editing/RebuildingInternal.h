// Edits that make a text longer: the new text is built beside the old one, which it replaces when it is complete.
#ifndef VELAN_TEXT_EDITING_REBUILDING_INTERNAL_H
#define VELAN_TEXT_EDITING_REBUILDING_INTERNAL_H

#include <new>
#include <utility>

#include "velan/base/MutableString.h"

namespace velan {

/// Puts what `build(result)` appends in the place of `text`. `length` is the length to expect, in units. False, and
/// `text` as it was, when memory runs out.
template <typename Build>
bool rebuild(MutableString& text, int64_t length, Build build) {
  try {
    MutableString result;
    result.reserve(length);
    build(result);
    text = std::move(result);
    return true;
  } catch (const std::bad_alloc&) {
    return false;
  }
}

}  // namespace velan

#endif  // VELAN_TEXT_EDITING_REBUILDING_INTERNAL_H
