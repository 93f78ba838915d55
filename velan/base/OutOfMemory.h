// What happens when memory runs out, in the whole library:
//
//  - Functions with C linkage and operations of classes let no exception out. They give the neutral result that their
//    comments name (false, 0, absent, `NSNotFound`, a null pointer), and change nothing that they would have changed.
//  - C++ functions that return a list, a string of the standard library or several values, fill one of the caller's, or
//    edit a `MutableString` or `MutableData` throw `std::bad_alloc`, or answer NO where they answer YES or NO. No list
//    comes back shortened.
//  - Where the neutral result could be taken for an answer ("no match"), the object can be asked: see
//    `FastWordEnumerator::ranOutOfMemory`, `QueryTerms::ranOutOfMemory` and `QueryMatcher::ranOutOfMemory`.
//  - Destruction and moving never take memory.
#ifndef VELAN_BASE_OUT_OF_MEMORY_H
#define VELAN_BASE_OUT_OF_MEMORY_H

#include <new>
#include <string_view>

#include "velan/base/String.h"

namespace velan {

/// `object`, a string or data that can be absent only for lack of memory; throws `std::bad_alloc` when it is.
template <typename Object>
Object present(Object object) {
  if (object.isAbsent()) throw std::bad_alloc();
  return object;
}

/// As `String::fromUTF8`, absent only when `utf8` is malformed; throws `std::bad_alloc` when memory runs out.
VELAN_EXPORT String decodedUTF8(std::string_view utf8);

}  // namespace velan

#endif  // VELAN_BASE_OUT_OF_MEMORY_H
