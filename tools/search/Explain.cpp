// The command "explain".
#include <fmt/format.h>

#include <optional>
#include <string>
#include <vector>

#include "tools/Commands.h"
#include "tools/Console.h"
#include "tools/documents/DocumentReading.h"
#include "tools/query/FailureReasons.h"
#include "tools/query/QueryDoubts.h"
#include "tools/query/QueryDrawing.h"
#include "tools/query/WordReadings.h"
#include "tools/text/TextCommands.h"

namespace velan::tool {
namespace {

constexpr size_t kDeepest = 40;  // groups further down are left out

// What was read otherwise than it stands, and what may have been meant otherwise.
std::string notesOn(const CorrectedQuery& query, const std::vector<ExplainedTerm>& terms) {
  std::vector<std::string> notes = query.corrections;
  notes.insert(notes.end(), query.spellings.begin(), query.spellings.end());
  for (const std::string& term : query.neverFound) {
    notes.push_back(fmt::format("{} is left out: without a letter or a digit it can never be found", term));
  }
  for (std::string& doubt : doubtsAbout(query)) notes.push_back(std::move(doubt));
  for (const ExplainedTerm& term : terms) {
    if (std::optional<std::string> doubt = doubtAboutBinding(*term.term)) notes.push_back(*std::move(doubt));
  }
  std::string lines;
  for (const std::string& note : notes) lines += fmt::format("note:         {}\n", note);
  return lines;
}

}  // namespace

int runExplain(const ExplainOptions& options) {
  const auto typed = makeQuery(options.query);
  if (!typed) return Trouble;
  const PreparedQuery* const query = typed->query.get();
  const QueryTerms& tree = query->terms();
  const bool hasOtherQuery = !options.query.alternatives.empty() && options.query.isGiven;
  const std::string& path = hasOtherQuery ? options.query.query : options.path;
  const auto describe = [&](const std::vector<ExplainedTerm>& terms, const SourcePlaces* source) {
    const std::optional<std::string> binding = bindingOf(tree);
    print(fmt::format("query:        {}\nnormalized:   {}\nstandardized: {}\n{}{}tree:\n{}",
                      options.query.alternatives.empty() ? options.query.query : typed->reading.source.toUTF8(),
                      tree.normalizedQueryTerm().toUTF8(), tree.standardizedQueryTerm().toUTF8(),
                      binding ? fmt::format("binds:        {}\n", *binding) : "", notesOn(typed->reading, terms),
                      drawnQuery(terms, query->wildcard(), source, linesOfTerminal())));
  };
  if (path.empty()) {
    describe(query->explanation(kDeepest + 1), nullptr);
    return Something;
  }
  DocumentReader reader(options.decoding);
  const std::optional<Document> document = reader.read({path, true, ""});
  if (!document) return Trouble;
  const SourcePlaces places(*document);
  const SearchedText searched = WordReadings(*query, options.query.verbatim).read(document->text);
  const std::vector<ExplainedTerm> terms = explanationIn(*query, searched, kDeepest + 1);
  describe(terms, &places);
  const bool matches = terms.front().holds == true;
  const auto matchesOtherwise = [&](const PreparedQuery& other) {
    return explanationIn(other, WordReadings(other, options.query.verbatim).read(document->text), 0).front().holds;
  };
  print(fmt::format("{}: {}\n", displayName(path), matches ? "matches" : "does not match"));
  if (matches) return Something;
  for (const std::string& reason : failureReasons(*query, terms, document->text, places, options.query.verbatim))
    print("  " + reason + '\n');
  if (typed->otherwise && matchesOtherwise(*typed->otherwise) == true) {
    print("  without the question mark it matches, which search tries when nothing is found\n");
  }
  return Nothing;
}

}  // namespace velan::tool
