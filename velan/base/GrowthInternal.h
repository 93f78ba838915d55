// Room in lists ahead of time.
#ifndef VELAN_BASE_GROWTH_INTERNAL_H
#define VELAN_BASE_GROWTH_INTERNAL_H

#include <algorithm>
#include <cstddef>
#include <vector>

namespace velan {

/// Makes room for `count` more. Unlike with `reserve` alone the room grows by a factor, however often this is called.
template <typename T>
void makeRoom(std::vector<T>& list, size_t count) {
  if (list.capacity() - list.size() < count) list.reserve(std::max(list.size() + count, 2 * list.size()));
}

}  // namespace velan

#endif  // VELAN_BASE_GROWTH_INTERNAL_H
