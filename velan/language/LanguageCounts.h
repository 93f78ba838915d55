// What a language filter counts in one pass over a text, and what it concludes from that.
#ifndef VELAN_LANGUAGE_LANGUAGE_COUNTS_H
#define VELAN_LANGUAGE_LANGUAGE_COUNTS_H

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <variant>
#include <vector>

#include "velan/base/CTypes.h"

namespace velan {

/// A group of scripts that is told by its letters, without stop words. In the order in which the groups challenge a
/// leading language.
enum class ScriptGroup : uint8_t {
  Other,     // any alphabetic script that is none of the following and not Latin; "**"
  Cyrillic,  // "RU"
  Hebrew,    // "HE"
  Greek,     // "EL"
  Arabic,    // "AR"
};
inline constexpr size_t kScriptGroupCount = 5;

/// Who can win: a language, by its index in `LanguageFilter::languages()`, or a script group.
using LanguageChoice = std::variant<size_t, ScriptGroup>;

/// The stop words of one language that a text holds.
struct StopWordHits {
  /// As many different stop words must be found before a language can lead.
  static constexpr size_t kEnough = 4;

  int64_t words = 0;                         // every occurrence counts
  size_t distinct = 0;                       // different ones, counted up to `kEnough`
  std::array<uint32_t, kEnough> found = {};  // numbers of the first `distinct` of them, for whoever counts

  /// Counts an occurrence of the stop word `number`.
  void add(uint32_t number) {
    ++words;
    const auto end = found.begin() + distinct;
    if (distinct < kEnough && std::find(found.begin(), end, number) == end) found[distinct++] = number;
  }
};

/// The words of one group of scripts.
struct ScriptCount {
  int64_t words = 0;
  int64_t characters = 0;
};

/// One pass over a text: a plain value, to be read in any way and by any thread.
struct LanguageCounts {
  int64_t words = 0;              // all that word separation reports, short ones included
  int64_t characters = 0;         // code units of the words that are not too short
  int64_t nonWords = 0;           // words that begin or end with no letter
  int64_t nonWordCharacters = 0;  // their code units
  std::vector<StopWordHits> languages;
  std::array<ScriptCount, kScriptGroupCount> scripts = {};
  bool outOfMemory = false;  // nothing was counted, so nothing is decided

  /// The count that decides for `choice`; 0 for a language that does not exist.
  int64_t countOf(LanguageChoice choice) const;

  /// The outcome of a contest.
  struct Contest {
    std::optional<LanguageChoice> leader;  // nothing when nobody has found anything
    int64_t count = 0;                     // the leader's
    int64_t runnerUp = 0;                  // the count of the leader before it, not the second best of all
  };
  /// Lets the languages challenge each other in their order, then the script groups. `first` leads with a count of 0
  /// when the contest begins; nothing for a contest without it.
  Contest contest(std::optional<LanguageChoice> first) const;

  /// Who the text belongs to: the leader when its count is above a fortieth of the words and at least 3 above the
  /// runner-up's; otherwise nothing.
  std::optional<LanguageChoice> winner() const;
  /// Whether the text clearly belongs to another language than `own`.
  bool isForeignTo(LanguageChoice own) const;
};

}  // namespace velan

#endif  // VELAN_LANGUAGE_LANGUAGE_COUNTS_H
