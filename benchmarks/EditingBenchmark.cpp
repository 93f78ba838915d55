// Editing of texts beside ICU's UnicodeString and loops over std::u16string. Each iteration edits a fresh copy, as
// callers do; BM_Copy is that part alone. Bytes are those of the text before the edit.
#include <benchmark/benchmark.h>
#include <unicode/unistr.h>

#include <string>
#include <string_view>

#include "velan/text/CharacterSets.h"
#include "velan/text/editing/Collapsing.h"
#include "velan/text/editing/Removal.h"
#include "velan/text/editing/Replacement.h"
#include "velan/text/editing/Tabs.h"
#include "velan/text/editing/Trimming.h"
#include "velan/text/inspection/LineEndsInternal.h"
#include "velan/text/inspection/Lines.h"

namespace velan {
namespace {

using Edit = void (*)(MutableString&);
using PeerEdit = std::u16string (*)(const std::u16string&);

std::u16string textOf(std::u16string_view piece, const benchmark::State& state) {
  std::u16string text;
  while (text.size() < static_cast<size_t>(state.range(0)) / 2) text += piece;
  return text;
}

void finish(benchmark::State& state, const std::u16string& text) {
  state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(text.size()) * 2);
}

constexpr std::u16string_view kProse = u"Ein Satz  mit Umlauten: \t äöü,\r\n\r\nund one in English.\tЕщё один.\n";
constexpr std::u16string_view kCode = u"\tif (text)\t{\n\t\treturn\ttext;\t\t// done\n\t}\n        next();\n";
constexpr std::u16string_view kHits = u"abcX.";  // one hit in five units: a million in 10 MB

void run(benchmark::State& state, std::u16string_view piece, Edit edit) {
  const std::u16string text = textOf(piece, state);
  for (auto _ : state) {
    MutableString copy{std::u16string_view(text)};
    edit(copy);
    benchmark::DoNotOptimize(copy.characters());
  }
  finish(state, text);
}

void runPeer(benchmark::State& state, std::u16string_view piece, PeerEdit edit) {
  const std::u16string text = textOf(piece, state);
  for (auto _ : state) benchmark::DoNotOptimize(edit(text));
  finish(state, text);
}

void runICU(benchmark::State& state, std::u16string_view piece, void (*edit)(icu::UnicodeString&)) {
  const std::u16string text = textOf(piece, state);
  for (auto _ : state) {
    icu::UnicodeString copy(text.data(), static_cast<int32_t>(text.size()));
    edit(copy);
    benchmark::DoNotOptimize(copy.getBuffer());
  }
  finish(state, text);
}

bool isWhite(unichar c) { return isMemberOfCharacterSetRep(whiteCharacterSetRep(), c); }

void BM_Copy(benchmark::State& state) {
  run(state, kProse, [](MutableString&) {});
}

void BM_TrimWhite(benchmark::State& state) {  // nothing but white space: all of it is looked at
  run(state, u"  \t\n", trimWhiteSpaces);
}
void BM_TrimWhite_ICU(benchmark::State& state) {
  runICU(state, u"  \t\n", [](icu::UnicodeString& text) { text.trim(); });
}
void BM_TrimWhite_FindFirstNotOf(benchmark::State& state) {
  runPeer(state, u"  \t\n", [](const std::u16string& text) {
    const size_t first = text.find_first_not_of(u" \t\n\r\f\v\u0085\u00A0\u2028\u2029\u3000");
    return first == text.npos ? std::u16string() : text.substr(first);
  });
}

void BM_RemoveWhite(benchmark::State& state) { run(state, kProse, removeWhiteSpaces); }
void BM_RemoveWhite_EraseIf(benchmark::State& state) {
  runPeer(state, kProse, [](const std::u16string& text) {
    std::u16string copy = text;
    std::erase_if(copy, isWhite);
    return copy;
  });
}

void BM_CollapseWhite(benchmark::State& state) {
  run(state, kProse, [](MutableString& text) { removeMultipleWhiteSpaces(text); });
}
void BM_CollapseWhite_PushBack(benchmark::State& state) {
  runPeer(state, kProse, [](const std::u16string& text) {
    std::u16string result;
    result.reserve(text.size());
    for (size_t i = 0; i < text.size(); ++i) {
      if (!isWhite(text[i])) {
        result.push_back(text[i]);
      } else if (i == 0 || !isWhite(text[i - 1])) {
        result.push_back(u' ');
      }
    }
    return result;
  });
}

void BM_DecodeTabs(benchmark::State& state) {
  run(state, kCode, [](MutableString& text) { decodeTabs(text, 8); });
}
void BM_DecodeTabs_PushBack(benchmark::State& state) {
  runPeer(state, kCode, [](const std::u16string& text) {
    std::u16string result;
    result.reserve(2 * text.size());
    size_t column = 0;
    for (const unichar c : text) {
      const size_t spaces = 8 - column % 8;
      c == u'\t' ? static_cast<void>(result.append(spaces, u' ')) : result.push_back(c);
      column = isLineEnd(c) ? 0 : column + (c == u'\t' ? spaces : 1);
    }
    return result;
  });
}
void BM_EncodeTabs(benchmark::State& state) {
  run(state, kCode, [](MutableString& text) { encodeTabs(text, 8); });
}

std::u16string findAndAppend(const std::u16string& text, std::u16string_view search, std::u16string_view by) {
  std::u16string result;
  result.reserve(text.size());
  size_t start = 0;
  for (size_t found; (found = text.find(search, start)) != text.npos; start = found + search.size()) {
    result.append(text, start, found - start).append(by);
  }
  return result.append(text, start, text.npos);
}

void BM_ReplaceLonger(benchmark::State& state) {
  run(state, kHits, [](MutableString& text) { replaceString(text, u"cX", u"long"); });
}
void BM_ReplaceLonger_FindAndAppend(benchmark::State& state) {
  runPeer(state, kHits, [](const std::u16string& text) { return findAndAppend(text, u"cX", u"long"); });
}
void BM_ReplaceLonger_ICU(benchmark::State& state) {
  runICU(state, kHits, [](icu::UnicodeString& text) { text.findAndReplace(u"cX", u"long"); });
}
void BM_ReplaceShorter(benchmark::State& state) {
  run(state, kHits, [](MutableString& text) { replaceString(text, u"cX", u"s"); });
}
void BM_ReplaceShorter_FindAndAppend(benchmark::State& state) {
  runPeer(state, kHits, [](const std::u16string& text) { return findAndAppend(text, u"cX", u"s"); });
}
void BM_ReplaceNoCase(benchmark::State& state) {
  run(state, kHits, [](MutableString& text) { replaceString(text, u"Cx", u"long", false); });
}
void BM_ReplaceNothing(benchmark::State& state) {
  run(state, kHits, [](MutableString& text) { replaceString(text, u"zz", u"long"); });
}
void BM_ReplaceNothing_FindAndAppend(benchmark::State& state) {
  runPeer(state, kHits, [](const std::u16string& text) { return findAndAppend(text, u"zz", u"long"); });
}

void BM_NumberOfLines(benchmark::State& state) {
  const std::u16string text = textOf(kProse, state);
  const String string(text);
  for (auto _ : state) benchmark::DoNotOptimize(numberOfLines(string));
  finish(state, text);
}

void sizes(benchmark::internal::Benchmark* b) {
  for (const int64_t bytes : {1'000, 64'000, 10'000'000}) b->Arg(bytes);
}

BENCHMARK(BM_Copy)->Apply(sizes);
BENCHMARK(BM_TrimWhite)->Apply(sizes);
BENCHMARK(BM_TrimWhite_ICU)->Apply(sizes);
BENCHMARK(BM_TrimWhite_FindFirstNotOf)->Apply(sizes);
BENCHMARK(BM_RemoveWhite)->Apply(sizes);
BENCHMARK(BM_RemoveWhite_EraseIf)->Apply(sizes);
BENCHMARK(BM_CollapseWhite)->Apply(sizes);
BENCHMARK(BM_CollapseWhite_PushBack)->Apply(sizes);
BENCHMARK(BM_DecodeTabs)->Apply(sizes);
BENCHMARK(BM_DecodeTabs_PushBack)->Apply(sizes);
BENCHMARK(BM_EncodeTabs)->Apply(sizes);
BENCHMARK(BM_ReplaceLonger)->Apply(sizes);
BENCHMARK(BM_ReplaceLonger_FindAndAppend)->Apply(sizes);
BENCHMARK(BM_ReplaceLonger_ICU)->Arg(1'000)->Arg(64'000);  // quadratic: minutes for 10 MB
BENCHMARK(BM_ReplaceShorter)->Apply(sizes);
BENCHMARK(BM_ReplaceShorter_FindAndAppend)->Apply(sizes);
BENCHMARK(BM_ReplaceNoCase)->Apply(sizes);
BENCHMARK(BM_ReplaceNothing)->Apply(sizes);
BENCHMARK(BM_ReplaceNothing_FindAndAppend)->Apply(sizes);
BENCHMARK(BM_NumberOfLines)->Apply(sizes);

}  // namespace
}  // namespace velan
