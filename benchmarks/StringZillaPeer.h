// StringZilla's searches, in a source of their own: its headers choose their instructions when they are compiled.
#ifndef VELAN_BENCHMARKS_STRING_ZILLA_PEER_H
#define VELAN_BENCHMARKS_STRING_ZILLA_PEER_H

#include <string_view>

namespace velan {

/// How often `needle`, which is not empty, lies in `text`, each time behind the time before.
size_t countByStringZilla(std::string_view text, std::string_view needle);

/// The first byte of `text` that is one of `bytes`, or `npos`.
size_t findOneOfByStringZilla(std::string_view text, std::string_view bytes);

/// The first byte `wanted` of `text`, or `npos`.
size_t findByteByStringZilla(std::string_view text, char wanted);

/// The instruction set that the searches use.
const char* levelOfStringZilla();

}  // namespace velan

#endif  // VELAN_BENCHMARKS_STRING_ZILLA_PEER_H
