#include "tools/search/SearchHint.h"

#include <unistd.h>

#include <optional>

#include "tools/documents/DocumentReading.h"
#include "tools/search/FailureReasons.h"
#include "tools/search/QueryDoubts.h"

namespace velan::tool {
namespace {

constexpr size_t kDeepest = 40;

std::optional<std::string> reasonOfQuery(const TypedQuery& typed) {
  if (std::vector<std::string> doubts = doubtsAbout(typed.reading); !doubts.empty()) return doubts.front();
  if (const auto doubt = doubtAboutBinding(typed.query->terms())) return doubt;
  if (!typed.reading.corrections.empty()) return typed.reading.corrections.front();
  return std::nullopt;
}

std::optional<std::string> reasonOfFile(const PreparedQuery& query, const SearchOptions& options,
                                        const InputFile& file) {
  Complaint complaint;
  const std::optional<Document> document = readDocument(file, options.decoding, complaint);
  if (!document) return std::nullopt;
  const SearchedText searched = WordReadings(query, options.query.verbatim).read(document->text);
  const std::vector<ExplainedTerm> terms = explanationIn(query, searched, kDeepest);
  if (terms.front().holds == true) return "the whole document matches, but none of its parts; --unit document finds it";
  const auto reasons = failureReasons(query, terms, document->text, SourcePlaces(*document), options.query.verbatim);
  if (reasons.empty()) return std::nullopt;
  return reasons.front();
}

}  // namespace

bool wantsHints(HintChoice choice) {
  if (choice != HintChoice::Auto) return choice == HintChoice::Always;
  return isatty(STDOUT_FILENO) == 1 && isatty(STDERR_FILENO) == 1;
}

std::string hintAbout(const TypedQuery& typed, const SearchOptions& options, const std::vector<InputFile>& files) {
  std::optional<std::string> reason = reasonOfQuery(typed);
  if (!typed.query->terms().isValid()) return reason.value_or("");
  if (!reason && files.size() == 1) reason = reasonOfFile(*typed.query, options, files.front());
  return reason.value_or("velan explain QUERY FILE tells why a file does not match");
}

}  // namespace velan::tool
