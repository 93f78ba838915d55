// Texts that people wrote, for benchmarks: what Debian installs, packed or not. `VELAN_BENCHMARK_TEXTS` names a folder
// that is looked into before `/`, such as one that packages were unpacked to.
#ifndef VELAN_BENCHMARKS_REAL_TEXTS_H
#define VELAN_BENCHMARKS_REAL_TEXTS_H

#include <string>
#include <string_view>

namespace velan {

/// The names of all of them: the licence of much that is installed, the largest manual pages, changelogs, and manual
/// pages in German, Russian and Japanese.
inline constexpr const char* kRealTexts[] = {"licence", "manual", "changelog", "manual-de", "manual-ru", "manual-ja"};

/// `length` units of a text, which begins anew where it is shorter; empty, and a line on standard error, where none of
/// it is installed. Read once, and kept.
std::u16string realText(std::string_view name, size_t length);

}  // namespace velan

#endif  // VELAN_BENCHMARKS_REAL_TEXTS_H
