#include "tools/search/SearchHint.h"

#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
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
  if (auto doubt = doubtAboutBinding(typed.query->terms())) return doubt;
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

// Files that are not there, where words were typed as arguments of their own; and that there is no file at all.
std::optional<std::string> reasonOfPaths(const SearchOptions& options, const std::vector<InputFile>& files) {
  if (files.empty()) return "no file is left to search; -g, -t, --max-filesize and ignore files leave files out";
  for (const InputFile& file : files) {
    std::error_code unknown;
    const bool isTyped = std::ranges::find(options.files.paths, file.path) != options.files.paths.end();
    if (!isTyped || file.path == "-" || std::filesystem::exists(file.path, unknown)) continue;
    if (file.path.starts_with('-')) return file.path + " is taken as a file; options come before --";
    if (file.path.find_first_of("./") != std::string::npos || !options.query.alternatives.empty()) continue;
    return fmt::format("{} is taken as a file; several words are one query in quotation marks: '{} {}'", file.path,
                       options.query.query, file.path);
  }
  return std::nullopt;
}

// That of the document that comes closest to matching; nothing where they are many.
std::optional<std::string> reasonOfFiles(const PreparedQuery& query, const SearchOptions& options,
                                         const std::vector<InputFile>& files) {
  if (files.size() > kFilesAsked) return std::nullopt;
  std::optional<DocumentReasons> best;
  size_t documents = 0;
  size_t bytes = 0;
  for (const InputFile& file : files) {
    Complaint complaint;
    const std::optional<Document> document = readDocument(file, options.decoding, complaint);
    if (!document) continue;
    ++documents;
    bytes += document->bytes.size();
    if (bytes > kBytesAsked && files.size() > 1) return std::nullopt;
    std::optional<DocumentReasons> reasons = reasonsIn(*document, query, options.query.verbatim);
    if (!reasons || (best && !reasons->precedes(*best))) continue;
    if (files.size() > 1) reasons->first = displayName(file.path) + ": " + reasons->first;
    best = std::move(reasons);
  }
  if (!best) return std::nullopt;
  const std::vector<ExplainedTerm> terms = query.explanation(1);
  const bool isOneTerm = terms.size() == 2 && terms.back().term->isWord() && !terms.back().term->queryNot();
  if (documents > 1 && isOneTerm && !best->tellsWhatFinds) {
    return fmt::format("{} is in none of the {} files", query.terms().standardizedQueryTerm().toUTF8(), documents);
  }
  return best->first;
}

}  // namespace

bool wantsHints(HintChoice choice) {
  if (choice != HintChoice::Auto) return choice == HintChoice::Always;
  return isatty(STDOUT_FILENO) == 1 && isatty(STDERR_FILENO) == 1;
}

std::string hintAbout(const TypedQuery& typed, const SearchOptions& options, const std::vector<InputFile>& files) {
  if (const auto reason = reasonOfPaths(options, files)) return *reason;
  std::optional<std::string> reason = reasonOfQuery(typed);
  if (!typed.query->terms().isValid()) return reason.value_or("");
  if (!reason) reason = reasonOfFiles(*typed.query, options, files);
  if (const std::vector<std::string>& corrections = typed.reading.corrections; !corrections.empty()) {
    reason = reason ? fmt::format("{} ({})", *reason, corrections.front()) : corrections.front();
  }
  return reason.value_or("velan explain QUERY FILE tells why a file does not match");
}

}  // namespace velan::tool
