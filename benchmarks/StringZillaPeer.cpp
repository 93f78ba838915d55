#include "benchmarks/StringZillaPeer.h"

#ifndef __clang__
#pragma GCC diagnostic ignored "-Wuninitialized"  // of the compiler's own intrinsics
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#endif
#define SZ_DYNAMIC_DISPATCH 0
#include <stringzilla/find.h>

namespace velan {

size_t countByStringZilla(std::string_view text, std::string_view needle) {
  size_t count = 0;
  for (const char *at = text.data(), *end = at + text.size();; ++count) {
    at = sz_find(at, static_cast<sz_size_t>(end - at), needle.data(), needle.size());
    if (!at) return count;
    at += needle.size();
  }
}

size_t findOneOfByStringZilla(std::string_view text, std::string_view bytes) {
  sz_byteset_t set;
  sz_byteset_init(&set);
  for (const char byte : bytes) sz_byteset_add(&set, byte);
  const char* found = sz_find_byteset(text.data(), text.size(), &set);
  return found ? static_cast<size_t>(found - text.data()) : std::string_view::npos;
}

size_t findByteByStringZilla(std::string_view text, char wanted) {
  const char* found = sz_find_byte(text.data(), text.size(), &wanted);
  return found ? static_cast<size_t>(found - text.data()) : std::string_view::npos;
}

const char* levelOfStringZilla() {
  return SZ_USE_ICE ? "ice" : SZ_USE_SKYLAKE ? "skylake" : SZ_USE_HASWELL ? "haswell" : "serial";
}

}  // namespace velan
