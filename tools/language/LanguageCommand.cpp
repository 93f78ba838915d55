// The command "language".
#include <fmt/format.h>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "tools/CommandLine.h"
#include "tools/Commands.h"
#include "tools/Console.h"
#include "tools/documents/DocumentReading.h"
#include "tools/documents/PlainText.h"
#include "tools/usage/OptionTable.h"
#include "velan/base/json/JSON.h"
#include "velan/language/DominantLanguage.h"
#include "velan/language/LanguageFilter.h"

namespace velan::tool {
namespace {

struct Options {
  FileSelection files;
  std::string filter;
  bool json = false;
  bool verbose = false;
  DecodingOptions decoding;
};

// What is known of one document.
struct Findings {
  String language;
  String code;
  String dominant;
  double ratio;
  std::vector<std::pair<String, int64_t>> counts;  // the highest first, none of 0
};

Findings findingsOf(const LanguageFilter& filter, const LanguageCounts& counts, const String& text) {
  const String language = filter.languageOfCounts(counts);
  Findings findings{language,
                    LanguageFilter::ISOCodeForLanguage(language),
                    dominantLanguage(text),
                    LanguageFilter::stopWordRatioOfCounts(counts),
                    {}};
  for (size_t i = 0; i < counts.languages.size(); ++i) {
    if (counts.languages[i].words > 0) findings.counts.emplace_back(filter.languages()[i], counts.languages[i].words);
  }
  for (size_t i = 0; i < counts.scripts.size(); ++i) {
    if (counts.scripts[i].words > 0) {
      findings.counts.emplace_back(LanguageFilter::nameOfScriptGroup(static_cast<ScriptGroup>(i)),
                                   counts.scripts[i].words);
    }
  }
  std::stable_sort(findings.counts.begin(), findings.counts.end(),
                   [](const auto& a, const auto& b) { return a.second > b.second; });
  return findings;
}

std::string shown(const String& name) { return name ? name.toUTF8() : "-"; }

std::string lineOf(const std::string& path, const Findings& findings, bool verbose) {
  std::string line = fmt::format("{}\t{}\t{}\t{}\t{:.2f}\n", path, shown(findings.language), shown(findings.code),
                                 shown(findings.dominant), findings.ratio);
  if (verbose) {
    for (const auto& [name, count] : findings.counts) line += fmt::format("  {}\t{}\n", name.toUTF8(), count);
  }
  return line;
}

std::string jsonOf(const std::string& path, const Findings& findings) {
  std::vector<ValueDictionary::Entry> counts;
  for (const auto& [name, count] : findings.counts) counts.push_back({name, count});
  const ValueDictionary object{{u"path"_s, String::fromUTF8Lossy(path)},
                               {u"language"_s, findings.language},
                               {u"code"_s, findings.code},
                               {u"dominant"_s, findings.dominant},
                               {u"ratio"_s, findings.ratio},
                               {u"counts"_s, ValueDictionary(std::move(counts))}};
  std::string json;
  appendJSON(object, json);
  return json + '\n';
}

int run(const Options& options) {
  const auto filter = LanguageFilter::init();
  if (!filter || filter->languages().empty()) {
    complain("no stop words found; VELAN_STOPWORDS names their folder");
    return Trouble;
  }
  filter->setLanguage(String::fromUTF8(options.filter));
  if (!options.filter.empty() && filter->language().isAbsent()) {
    complain("no language: " + options.filter);
    return Trouble;
  }
  DocumentReader reader(options.decoding);
  bool something = false;
  bool ranOutOfMemory = false;
  for (const InputFile& file : collectFiles(options.files)) {
    const auto document = reader.read(file);
    if (!document) continue;
    const String text = plainText(document->text).text;
    const LanguageCounts counts = filter->countsOfText(text);
    if (counts.outOfMemory) {
      complain(displayName(file.path) + ": there is not enough memory to count its words");
      ranOutOfMemory = true;
      continue;
    }
    if (filter->isFiltered(counts)) continue;
    const Findings findings = findingsOf(*filter, counts, text);
    const std::string path = displayName(file.path);
    something = true;
    if (!print(options.json ? jsonOf(path, findings) : lineOf(path, findings, options.verbose))) break;
  }
  return reader.hadTrouble() || ranOutOfMemory ? Trouble : something ? Something : Nothing;
}

}  // namespace

void addLanguageCommand(CLI::App& app, int& status) {
  const auto [command, options] =
      addCommand<Options>(app, status, "language", "Say which language documents are in", run);
  addFileOptions(*command, options->files);
  command->add_option("--filter", options->filter, "Leave out what is clearly in another language than KEY (EN, de)")
      ->type_name("KEY");
  command->add_flag("--verbose", options->verbose, "Show how many stop words of each language were found, too");
  command->add_flag("--json", options->json, "Print a JSON object a document");
  addDecodingOptions(*command, options->decoding);
  keepInShortHelp(*command, {"--filter", "--verbose", "--json", "-g", "-t", "--hidden"});
  command->footer(
      "Prints the path, the language by its stop words (- when undecided), its ISO 639 code, the language by its\n"
      "letters, and which part of the words are stop words. RU, AR, HE, EL and ** stand for the Cyrillic, Arabic,\n"
      "Hebrew, Greek and any other script.\n"
      "Exit status: 0 something was printed, 1 nothing, 2 something went wrong.\n"
      "Examples:\n"
      "  velan language documents/\n"
      "  velan language --filter DE letters/");
}

}  // namespace velan::tool
