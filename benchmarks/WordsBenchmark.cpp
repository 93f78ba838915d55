// Indexing a text's words, beside ICU's word iterator and a plain loop over the same separators. Rates are in bytes of
// UTF-16 text.
#include <benchmark/benchmark.h>
#include <unicode/ubrk.h>

#include <functional>
#include <memory>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "velan/query/words/FastWordEnumerator.h"
#include "velan/text/CharacterSets.h"
#include "velan/text/Separators.h"
#include "velan/text/kernels/UnitKernelsInternal.h"

namespace {

using velan::FastWordEnumerator;
using velan::String;

// Words of 1 to 12 letters with punctuation, of which `foreign` in sixteen are Cyrillic: `bytes` of UTF-16.
String textOfWords(int64_t bytes, unsigned foreign, bool umlauts) {
  std::mt19937 random(1);
  std::u16string text;
  const auto units = static_cast<size_t>(bytes) / sizeof(char16_t);
  while (text.size() < units) {
    const bool cyrillic = foreign > 0 && random() % 16 < foreign;
    for (auto left = 1 + random() % 12; left > 0; --left) {
      const auto letter = random() % 26;
      const bool umlaut = umlauts && random() % 40 == 0;
      text += static_cast<char16_t>(cyrillic ? 0x430 + letter : umlaut ? 0xE4 : u'a' + letter);
    }
    text += random() % 10 == 0 ? u", " : u" ";
  }
  text.resize(units);
  return String(text);
}

String mixedText(int64_t bytes) { return textOfWords(bytes, 1, true); }
String englishText(int64_t bytes) { return textOfWords(bytes, 0, false); }
String russianText(int64_t bytes) { return textOfWords(bytes, 16, false); }
String japaneseText(int64_t bytes) {
  std::u16string text;
  while (text.size() * sizeof(char16_t) < static_cast<size_t>(bytes)) text += u"吾輩は猫である。名前はまだ無い。";
  text.resize(static_cast<size_t>(bytes) / sizeof(char16_t));
  return String(text);
}

using MakeText = String (*)(int64_t bytes);
constexpr std::pair<const char*, MakeText> kTexts[] = {
    {"mixed", mixedText}, {"english", englishText}, {"russian", russianText}, {"japanese", japaneseText}};

using Measured = std::function<int64_t()>;
// Makes its input before anything is measured.
using Prepare = Measured (*)(const String& text);

Measured prepareIndex(const String& text, bool caseInsensitive) {
  return [=] { return FastWordEnumerator::enumeratorWithString(text, caseInsensitive, false)->numberOfWords(); };
}

// With the copy in upper case, which is made when it is asked for.
Measured prepareUpperUnits(const String& text) {
  return [=] { return int64_t{FastWordEnumerator::enumeratorWithString(text, true, false)->characters()[0]}; };
}

// With memory that is used again, as for many short texts.
Measured prepareIndexAgain(const String& text) {
  return [text, words = std::shared_ptr(FastWordEnumerator::enumeratorWithString(text))] {
    return int64_t{words->setCharacters(text.characters(), text.length(), false)};
  };
}

// What one would write without thinking: the same bits, a branch per unit.
int64_t indexPlainly(const String& text) {
  const uint8_t* const separators = velan::defaultWordSeparators();
  std::string types(static_cast<size_t>(text.length()), '\0');
  int64_t words = 0;
  bool inWord = false;
  for (int64_t i = 0; i < text.length(); ++i) {
    const bool separator = velan::isMemberOfCharacterSetRep(separators, text[i]);
    if (separator) types[static_cast<size_t>(i)] = 1;
    if (inWord && separator) types[static_cast<size_t>(i - 1)] |= 4;
    if (!inWord && !separator) {
      types[static_cast<size_t>(i)] |= 2;
      ++words;
    }
    inWord = !separator;
  }
  if (inWord) types.back() |= 4;
  benchmark::DoNotOptimize(types.data());
  return words;
}

int64_t indexByICU(const String& text) {
  UErrorCode error = U_ZERO_ERROR;
  UBreakIterator* breaks = ubrk_open(UBRK_WORD, "", text.characters(), static_cast<int32_t>(text.length()), &error);
  int64_t words = 0;
  while (ubrk_next(breaks) != UBRK_DONE) words += ubrk_getRuleStatus(breaks) >= UBRK_WORD_NONE_LIMIT;
  ubrk_close(breaks);
  return words;
}

// Walking over an index that is there: each word is handed over.
Measured prepareWalk(const String& text) {
  return [text, words = std::shared_ptr(FastWordEnumerator::enumeratorWithString(text))] {
    int64_t units = 0;
    words->enumerateWordsInRange({0, text.length()}, [&](const FastWordEnumerator&, int64_t start, int64_t length) {
      units += start ^ length;
      return false;
    });
    return units;
  };
}

// The same, one call a word.
Measured prepareSteps(const String& text) {
  return [words = std::shared_ptr(FastWordEnumerator::enumeratorWithString(text))] {
    int64_t units = 0, index = 0;
    for (velan::Range word; isPresent(word = words->enumerateNextWordAtIndex(&index));) {
      units += word.location ^ word.length;
    }
    return units;
  };
}

// Without an index: the bitmap is asked about every unit.
int64_t walkPlainly(const String& text) {
  const uint8_t* const separators = velan::defaultWordSeparators();
  const auto separates = [&](int64_t i) { return velan::isMemberOfCharacterSetRep(separators, text[i]); };
  int64_t units = 0;
  for (int64_t i = 0; i < text.length();) {
    while (i < text.length() && separates(i)) ++i;
    const int64_t start = i;
    while (i < text.length() && !separates(i)) ++i;
    if (i > start) units += start ^ (i - start);
  }
  return units;
}

Measured prepareDivided(const String& text) {
  return [=] { return FastWordEnumerator::enumeratorSplittingAsianWords(text)->numberOfWords(); };
}

template <int64_t (*run)(const String& text)>
Measured prepareRun(const String& text) {
  return [=] { return run(text); };
}

// Operation and who does it.
constexpr std::pair<const char*, Prepare> kOperations[] = {
    {"index/velan", [](const String& text) { return prepareIndex(text, false); }},
    {"index/plain_loop", prepareRun<indexPlainly>},
    {"index/icu", prepareRun<indexByICU>},
    {"index_upper/velan", [](const String& text) { return prepareIndex(text, true); }},
    {"index_upper_units/velan", prepareUpperUnits},
    {"index_again/velan", prepareIndexAgain},
    {"walk/velan", prepareWalk},
    {"walk/steps", prepareSteps},
    {"walk/bitmap_loop", prepareRun<walkPlainly>},
    {"divide/velan", prepareDivided},
};

void add(const std::string& name, Measured run, size_t bytes) {
  benchmark::RegisterBenchmark(name.c_str(), [run = std::move(run), bytes](benchmark::State& state) {
    for (auto _ : state) benchmark::DoNotOptimize(run());
    state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(bytes));
  });
}

// Each kernel alone, on text that stays in the cache.
void addKernels(const std::string& input, const String& text, size_t bytes) {
  for (const auto& kernel : velan::unitKernelList()) {
    const auto marks = std::make_shared<std::vector<uint8_t>>(static_cast<size_t>(text.length()) + 2, uint8_t{0xFF});
    const auto types = std::make_shared<std::vector<uint8_t>>(static_cast<size_t>(text.length()));
    add(
        "mark_separators/" + (kernel.name + input),
        [=, run = kernel.run.markMembers] {
          velan::SetHints hints;
          run(text.characters(), types->size(), velan::defaultWordSeparators(), hints, marks->data() + 1);
          return int64_t{marks->back()};
        },
        bytes);
    add(
        "types_from_marks/" + (kernel.name + input),
        [=, run = kernel.run.runsFromMarks] {
          return static_cast<int64_t>(run(marks->data(), types->size(), types->data()));
        },
        bytes);
  }
}

}  // namespace

// Names are operation/who/text/bytes.
int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  for (const size_t bytes : {size_t{1} << 10, size_t{64} << 10, size_t{8} << 20}) {
    for (const auto& [name, make] : kTexts) {
      const String text = make(static_cast<int64_t>(bytes));
      const std::string input = std::string("/") + name + '/' + std::to_string(bytes);
      for (const auto& [operation, prepare] : kOperations) add(operation + input, prepare(text), bytes);
      if (bytes == 64 << 10) addKernels(input, text, bytes);
    }
  }
  benchmark::RunSpecifiedBenchmarks();
}
