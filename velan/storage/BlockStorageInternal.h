// What the operations of block files have in common.
#ifndef VELAN_STORAGE_BLOCK_STORAGE_INTERNAL_H
#define VELAN_STORAGE_BLOCK_STORAGE_INTERNAL_H

#include <utility>

#include "velan/platform/files/FileErrorInternal.h"
#include "velan/storage/BlockStorage.h"

namespace velan {

template <typename Result, typename Body>
Result BlockStorage::guarded(Result neutral, Body body) {
  _error = {};
  return unlessMemoryRunsOut(_error, std::move(neutral), body);
}

}  // namespace velan

#endif  // VELAN_STORAGE_BLOCK_STORAGE_INTERNAL_H
