// Stop-word files of any bytes: what is read is written and read again alike, and every count is one of the text's.
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "fuzz/FuzzTarget.h"
#include "velan/language/LanguageFilter.h"

using namespace velan;

namespace {

// The folder of this process, with as many files as there are parts.
String folder(const char* name) {
  static const std::string path =
      (std::filesystem::temp_directory_path() / ("velan-stop-words-fuzz-" + std::to_string(getpid()))).string();
  std::filesystem::create_directories(path + name);
  return String::fromUTF8(path + name);
}

}  // namespace

// The bytes before the first U+0000 are the file of one language, those up to the second of another; then comes a text.
FUZZ_TARGET(stop_words) {
  const bool ignoreUmlauts = input.bytes.size() % 2 == 0;
  const String source = folder("/source");
  const String copy = folder("/copy");
  std::ofstream(source.toUTF8() + "/StopWordsAA") << input.takeUntil('\0');
  std::ofstream(source.toUTF8() + "/StopWordsBB") << input.takeUntil('\0');
  const String text = input.text();
  const auto filter = LanguageFilter::initWithDirectory(source, ignoreUmlauts);
  require(filter && filter->languages().size() == 2);
  const LanguageCounts counts = filter->countsOfText(text);
  for (const StopWordHits& hits : counts.languages) {
    require(hits.distinct <= StopWordHits::kEnough && static_cast<int64_t>(hits.distinct) <= hits.words);
    require(hits.words + counts.nonWords <= counts.words);
  }
  require(filter->languageOfText(text) == filter->languageOfCounts(counts));

  require(filter->writeToDirectory(copy));
  const auto again = LanguageFilter::initWithDirectory(copy, ignoreUmlauts);
  for (size_t language = 0; language < 2; ++language) {
    require(again->stopWords(language) == filter->stopWords(language));
  }
  require(again->languageOfText(text) == filter->languageOfText(text));
}
