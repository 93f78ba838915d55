// The tag scanner, entities, stripping and JSON beside the parsers of other libraries.
#include <benchmark/benchmark.h>
#include <gumbo.h>
#include <libxml/HTMLparser.h>
#include <simdjson.h>

#include <string>

#include "velan/base/json/JSON.h"
#include "velan/markup/Entities.h"
#include "velan/markup/ScriptEscapes.h"
#include "velan/markup/Stripping.h"
#include "velan/markup/Tags.h"

namespace velan {
namespace {

std::string repeated(std::string_view piece, int64_t length) {
  std::string text;
  while (static_cast<int64_t>(text.size()) < length) text += piece;
  return text;
}

// A page of `length` bytes with the usual share of tags, entities, comments and script.
std::string page(int64_t length) {
  return "<!DOCTYPE html><html><head><title>Page</title><script>if (a < b) c();</script></head><body>" +
         repeated(
             "<div class=\"item\" id='x1'><h2>Heading</h2><p>Some text with <b>bold words</b>, a "
             "<a href=\"http://example.org/a?b=c&amp;d=e\" title=\"a > b\">link</a> and an entity&nbsp;&eacute;."
             " More of it, to the end of the paragraph, which is long.</p><!-- a comment --><br></div>\n",
             length) +
         "</body></html>";
}

String textOf(const std::string& utf8) { return String::fromUTF8(utf8); }

void setUnits(benchmark::State& state, const String& text) {
  state.SetBytesProcessed(state.iterations() * text.length() * static_cast<int64_t>(sizeof(unichar)));
}

void BM_Scanner(benchmark::State& state) {
  const String text = textOf(page(state.range(0)));
  for (auto _ : state) {
    int64_t tags = 0;
    parseXmlWithHandler(text, [&tags](const TagReport&) { return ++tags, false; });
    benchmark::DoNotOptimize(tags);
  }
  setUnits(state, text);
}

// What a scanner at least has to do: look at each "<".
void BM_BareSearch(benchmark::State& state) {
  const String text = textOf(page(state.range(0)));
  for (auto _ : state) {
    int64_t tags = 0;
    const std::u16string_view units = text.view();
    for (size_t i = units.find(u'<'); i != std::u16string_view::npos; i = units.find(u'<', i + 1)) ++tags;
    benchmark::DoNotOptimize(tags);
  }
  setUnits(state, text);
}

// The peers read bytes; their rates are given for the same units.
void BM_PeerLibxmlSAX(benchmark::State& state) {
  std::string bytes = page(state.range(0));
  htmlSAXHandler handler{};
  handler.startElement = [](void* count, const xmlChar*, const xmlChar**) { ++*static_cast<int64_t*>(count); };
  for (auto _ : state) {
    int64_t tags = 0;
    htmlParserCtxtPtr context = htmlCreatePushParserCtxt(&handler, &tags, bytes.data(), static_cast<int>(bytes.size()),
                                                         nullptr, XML_CHAR_ENCODING_UTF8);
    htmlParseChunk(context, nullptr, 0, 1);
    htmlFreeParserCtxt(context);
    benchmark::DoNotOptimize(tags);
  }
  setUnits(state, textOf(bytes));
}
void BM_PeerGumbo(benchmark::State& state) {
  const std::string bytes = page(state.range(0));
  for (auto _ : state) {
    GumboOutput* output = gumbo_parse_with_options(&kGumboDefaultOptions, bytes.data(), bytes.size());
    benchmark::DoNotOptimize(output);
    gumbo_destroy_output(&kGumboDefaultOptions, output);
  }
  setUnits(state, textOf(bytes));
}

void BM_Strip(benchmark::State& state) {
  const String text = textOf(page(state.range(0)));
  for (auto _ : state) benchmark::DoNotOptimize(stripTagBodies(text, {u"<h2"_s, u"<script"_s}));
  setUnits(state, text);
}

void decodeEntities(benchmark::State& state, std::string_view piece) {
  const String text = textOf(repeated(piece, state.range(0)));
  for (auto _ : state) benchmark::DoNotOptimize(stringByConvertingEntitiesToCharacters(text));
  setUnits(state, text);
}
void BM_EntitiesNone(benchmark::State& state) { decodeEntities(state, "no entity in a line of text; none. "); }
void BM_EntitiesFew(benchmark::State& state) {
  decodeEntities(state,
                 "now and then one &amp; another, in text that goes on for a while: caf&eacute; is the usual word. ");
}
void BM_EntitiesMany(benchmark::State& state) { decodeEntities(state, "&Auml;&#233;&thetasym;&lt;x&nosuch;"); }

void BM_UnescapeJSON(benchmark::State& state) {
  const String text = textOf(repeated(R"(some text with \"quotes\",\n and \u00e9 in it)", state.range(0)));
  for (auto _ : state) benchmark::DoNotOptimize(stringByConvertingJSONToCharacters(text));
  setUnits(state, text);
}

std::string json(int64_t length) {
  return '[' + repeated(R"({"id":12345,"name":"A \"name\"","tags":["a","b"],"ratio":-1.5e3,"ok":true},)", length) +
         "null]";
}

void BM_ReadJSON(benchmark::State& state) {
  const std::string text = json(state.range(0));
  for (auto _ : state) benchmark::DoNotOptimize(readJSON(text));
  state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(text.size()));
}

void BM_IsJSON(benchmark::State& state) {
  const String text = textOf(json(state.range(0)));
  for (auto _ : state) benchmark::DoNotOptimize(isJSON(text));
  setUnits(state, text);
}

void BM_PeerSimdjson(benchmark::State& state) {
  const simdjson::padded_string text(json(state.range(0)));
  simdjson::dom::parser parser;
  for (auto _ : state) benchmark::DoNotOptimize(parser.parse(text).error());
  state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(text.size()));
}

// 10 MB of what never closes: time must not grow with the square of it.
void BM_Unclosed(benchmark::State& state) {
  static constexpr std::string_view kPieces[] = {"<script>", "<!--", "<a b=\"'", "&", "<a><b>", "<script><!--"};
  const String text = textOf(repeated(kPieces[state.range(0)], 10 << 20));
  for (auto _ : state) {
    int64_t tags = 0;
    parseXmlWithHandler(text, [&tags](const TagReport&) { return ++tags, false; });
    benchmark::DoNotOptimize(tags);
    benchmark::DoNotOptimize(stringByConvertingEntitiesToCharacters(text));
  }
  state.SetLabel(std::string(kPieces[state.range(0)]));
}

// 1 KB, 64 KB and 8 MB.
void sizes(benchmark::internal::Benchmark* benchmark) { benchmark->Arg(1 << 10)->Arg(64 << 10)->Arg(8 << 20); }

BENCHMARK(BM_Scanner)->Apply(sizes);
BENCHMARK(BM_BareSearch)->Apply(sizes);
BENCHMARK(BM_PeerLibxmlSAX)->Apply(sizes);
BENCHMARK(BM_PeerGumbo)->Apply(sizes);
BENCHMARK(BM_Strip)->Apply(sizes);
BENCHMARK(BM_EntitiesNone)->Apply(sizes);
BENCHMARK(BM_EntitiesFew)->Apply(sizes);
BENCHMARK(BM_EntitiesMany)->Apply(sizes);
BENCHMARK(BM_UnescapeJSON)->Apply(sizes);
BENCHMARK(BM_ReadJSON)->Apply(sizes);
BENCHMARK(BM_IsJSON)->Apply(sizes);
BENCHMARK(BM_PeerSimdjson)->Apply(sizes);
BENCHMARK(BM_Unclosed)->DenseRange(0, 5)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace velan
