// Appending records all or nothing, for the operations that must tell a refused value from a lack of memory.
#ifndef VELAN_KEYED_KEYED_APPEND_INTERNAL_H
#define VELAN_KEYED_KEYED_APPEND_INTERNAL_H

#include "velan/base/MutableData.h"
#include "velan/base/String.h"
#include "velan/base/Value.h"

namespace velan::keyed {

/// Append a record. False, and nothing appended, where `addBytes`, `addString` and `addPlist` refuse the value; they
/// throw `std::bad_alloc`, with nothing appended, when memory runs out.
bool appendVariable(MutableData& data, uint32_t marker, const void* bytes, size_t length, uint32_t key);
bool appendString(MutableData& data, const String& string, uint32_t key);
bool appendPlist(MutableData& data, const Value& plist, uint32_t key);

/// Calls `append`, which only appends to `data`; when it throws, what it has appended goes again.
template <typename Append>
void allOrNothing(MutableData& data, const Append& append) {
  const size_t start = data.length();
  try {
    append();
  } catch (...) {
    data.setLength(start);
    throw;
  }
}

}  // namespace velan::keyed

#endif  // VELAN_KEYED_KEYED_APPEND_INTERNAL_H
