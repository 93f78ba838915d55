#include "velan/language/LanguageCounts.h"

namespace velan {

namespace {

// A leader needs more hits than one in so many words.
constexpr int64_t kWordsPerHit = 40;
// And so many more than the leader that it displaced.
constexpr int64_t kSmallestLead = 3;

}  // namespace

int64_t LanguageCounts::countOf(LanguageChoice choice) const {
  if (const auto* script = std::get_if<ScriptGroup>(&choice)) return scripts[static_cast<size_t>(*script)].words;
  const size_t index = std::get<size_t>(choice);
  return index < languages.size() ? languages[index].words : 0;
}

LanguageCounts::Contest LanguageCounts::contest(std::optional<LanguageChoice> first) const {
  Contest contest{first};
  const auto challenge = [&](LanguageChoice challenger, int64_t count) {
    if (count <= contest.count) return;
    contest = {challenger, count, contest.count};
  };
  for (size_t i = 0; i < languages.size(); ++i) {
    if (languages[i].distinct >= StopWordHits::kEnough) challenge(i, languages[i].words);
  }
  const int64_t halfWords = (words - nonWords) / 2;
  const int64_t halfCharacters = (characters - nonWordCharacters) / 2;
  for (size_t i = 0; i < scripts.size(); ++i) {
    const ScriptCount& script = scripts[i];
    if (script.characters >= halfCharacters || script.words >= halfWords) {
      challenge(static_cast<ScriptGroup>(i), script.words);
    }
  }
  return contest;
}

std::optional<LanguageChoice> LanguageCounts::winner() const {
  const Contest result = contest(std::nullopt);
  const bool accepted = result.count > words / kWordsPerHit && result.count - result.runnerUp >= kSmallestLead;
  return accepted ? result.leader : std::nullopt;
}

bool LanguageCounts::isForeignTo(LanguageChoice own) const {
  const Contest result = contest(own);
  return result.leader != own && result.count > words / kWordsPerHit && result.count - countOf(own) >= kSmallestLead;
}

}  // namespace velan
