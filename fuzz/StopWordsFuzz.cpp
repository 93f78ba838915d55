// Stop-word files of any bytes: what is read is written and read again alike, and every count is one of the text's.
#include "fuzz/FuzzTarget.h"
#include "tests/platform/files/TemporaryFolder.h"
#include "velan/language/LanguageFilter.h"
#include "velan/platform/files/FileCallsInternal.h"

using namespace velan;

namespace {

// How files get to the disk is not what is tried here, and takes most of the time.
struct UnsynchronizedCalls : FileCalls {
  UnsynchronizedCalls() { setFileCalls(this); }
  ~UnsynchronizedCalls() override { setFileCalls(nullptr); }
  int synchronize(int) override { return 0; }
};

}  // namespace

// The bytes before the first U+0000 are the file of one language, those up to the second of another; then comes a text.
FUZZ_TARGET(stop_words) {
  const bool ignoreUmlauts = input.bytes.size() % 2 == 0;
  const UnsynchronizedCalls calls;
  static const TemporaryFolder source, copy;
  for (const char* name : {"StopWordsAA", "StopWordsBB"}) {
    std::filesystem::remove(source / name);  // much faster than to write over it
    source.write(name, std::string(input.takeUntil('\0')));
  }
  const String text = input.text();
  const auto filter = LanguageFilter::initWithDirectory(source.path(""), ignoreUmlauts);
  require(filter && filter->languages().size() == 2);
  const LanguageCounts counts = filter->countsOfText(text);
  for (const StopWordHits& hits : counts.languages) {
    require(hits.distinct <= StopWordHits::kEnough && static_cast<int64_t>(hits.distinct) <= hits.words);
    require(hits.words + counts.nonWords <= counts.words);
  }
  require(filter->languageOfText(text) == filter->languageOfCounts(counts));
  if (!text.isEmpty()) return;  // writing takes its time, and depends on the lists alone

  require(filter->writeToDirectory(copy.path("")));
  const auto again = LanguageFilter::initWithDirectory(copy.path(""), ignoreUmlauts);
  for (size_t language = 0; language < 2; ++language) {
    require(again->stopWords(language) == filter->stopWords(language));
  }
}
