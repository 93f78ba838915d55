#include "tools/search/SearchHint.h"

#include <unistd.h>

#include <optional>

#include "tools/documents/DocumentReading.h"
#include "tools/query/FailureReasons.h"
#include "tools/query/QueryDoubts.h"

namespace velan::tool {
namespace {

constexpr size_t kDeepest = 40;
constexpr size_t kFilesAsked = 100;
constexpr size_t kBytesAsked = 4 << 20;

std::optional<std::string> reasonOfQuery(const TypedQuery& typed) {
  if (std::vector<std::string> doubts = doubtsAbout(typed.reading); !doubts.empty()) return doubts.front();
  if (const auto doubt = doubtAboutBinding(typed.query->terms())) return doubt;
  if (!typed.reading.corrections.empty()) return typed.reading.corrections.front();
  return std::nullopt;
}

// What stands in the way in one document.
struct DocumentReasons {
  size_t count;
  bool tellsWhatFinds;
  std::string first;

  // Whether to be told rather than `other`.
  bool precedes(const DocumentReasons& other) const {
    return count != other.count ? count < other.count : tellsWhatFinds && !other.tellsWhatFinds;
  }
};

std::optional<DocumentReasons> reasonsIn(const Document& document, const PreparedQuery& query, bool verbatim) {
  const SearchedText searched = WordReadings(query, verbatim).read(document.text);
  const std::vector<ExplainedTerm> terms = explanationIn(query, searched, kDeepest);
  if (terms.front().holds == true) return DocumentReasons{0, true, "all of it matches, but no part; see --unit"};
  std::vector<std::string> reasons = failureReasons(query, terms, document.text, SourcePlaces(document), verbatim);
  if (reasons.empty()) return std::nullopt;
  for (std::string& reason : reasons) {
    if (reason.find(" would find ") != std::string::npos) return DocumentReasons{reasons.size(), true, reason};
  }
  return DocumentReasons{reasons.size(), false, reasons.front()};
}

// That of the document that comes closest to matching; nothing where they are many.
std::optional<std::string> reasonOfFiles(const PreparedQuery& query, const SearchOptions& options,
                                         const std::vector<InputFile>& files) {
  if (files.size() > kFilesAsked) return std::nullopt;
  std::optional<DocumentReasons> best;
  size_t bytes = 0;
  for (const InputFile& file : files) {
    Complaint complaint;
    const std::optional<Document> document = readDocument(file, options.decoding, complaint);
    if (!document) continue;
    bytes += document->bytes.size();
    if (bytes > kBytesAsked && files.size() > 1) return std::nullopt;
    std::optional<DocumentReasons> reasons = reasonsIn(*document, query, options.query.verbatim);
    if (!reasons || (best && !reasons->precedes(*best))) continue;
    if (files.size() > 1) reasons->first = displayName(file.path) + ": " + reasons->first;
    best = std::move(reasons);
  }
  if (!best) return std::nullopt;
  return best->first;
}

}  // namespace

bool wantsHints(HintChoice choice) {
  if (choice != HintChoice::Auto) return choice == HintChoice::Always;
  return isatty(STDOUT_FILENO) == 1 && isatty(STDERR_FILENO) == 1;
}

std::string hintAbout(const TypedQuery& typed, const SearchOptions& options, const std::vector<InputFile>& files) {
  std::optional<std::string> reason = reasonOfQuery(typed);
  if (!typed.query->terms().isValid()) return reason.value_or("");
  if (!reason) reason = reasonOfFiles(*typed.query, options, files);
  return reason.value_or("velan explain QUERY FILE tells why a file does not match");
}

}  // namespace velan::tool
