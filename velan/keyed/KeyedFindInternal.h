// The walk to a record, written once for every way to skip records of fixed size. In an anonymous namespace, because
// each file compiles it for other instructions.
#ifndef VELAN_KEYED_KEYED_FIND_INTERNAL_H
#define VELAN_KEYED_KEYED_FIND_INTERNAL_H

#include "velan/keyed/KeyedWalkInternal.h"

namespace velan::keyed {
namespace {

// The length of the records of fixed size at the beginning, up to the one sought, and at most `most` of them.
size_t skipSome(const uint8_t* bytes, size_t length, uint64_t sought, size_t most) {
  const size_t end = std::min(length / kKeyedHeaderSize, most) * kKeyedHeaderSize;
  size_t at = 0;
  for (; at < end; at += kKeyedHeaderSize) {
    const auto found = loadLittleEndian<uint64_t>(bytes + at);
    if (found == sought || !hasFixedSize(found)) break;
  }
  return at;
}

// `skip` does the same for any number of records.
template <size_t skip(const uint8_t* bytes, size_t length, uint64_t sought)>
size_t findWith(const uint8_t* bytes, size_t length, uint64_t sought) {
  constexpr size_t kRun = 32;  // records of fixed size behind one of variable size, after which more are expected
  size_t at = skip(bytes, length, sought);
  while (length - at >= kKeyedHeaderSize) {
    const Record record(bytes + at, length - at);
    if (record.identity() == sought) return at;
    if (!hasFixedSize(record.identity())) {
      if (!isVariableSize(record.marker()) || !record.fits()) break;
      at += static_cast<size_t>(record.size());
      at += skipSome(bytes + at, length - at, sought, kRun);
    } else {
      at += skip(bytes + at, length - at, sought);
    }
  }
  return kNotFound;
}

}  // namespace
}  // namespace velan::keyed

#endif  // VELAN_KEYED_KEYED_FIND_INTERNAL_H
