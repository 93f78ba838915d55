// The commands "url decode", "url encode" and "url params".
#include <CLI/CLI.hpp>
#include <algorithm>
#include <optional>
#include <string>
#include <vector>

#include "tools/CommandLine.h"
#include "tools/Commands.h"
#include "tools/Console.h"
#include "velan/base/FunctionRef.h"
#include "velan/base/json/JSON.h"
#include "velan/text/encoding/CharsetNames.h"
#include "velan/url/PercentEscapes.h"
#include "velan/url/QueryParameters.h"

namespace velan::tool {
namespace {

enum class EscapeSet : uint8_t { All, Standard, ASCII };

struct EscapeOptions {
  std::vector<std::string> texts;
  EscapeSet set = EscapeSet::All;
  std::string encoding = "UTF-8";
  std::string leave;
  std::string escape;
};

struct ParameterOptions {
  std::vector<std::string> urls;
  std::string name;
  bool bare = false;
  bool decode = false;
  bool json = false;
};

// The arguments, or the lines of standard input where there are none.
std::optional<std::vector<std::string>> givenTexts(const std::vector<std::string>& arguments) {
  if (!arguments.empty()) return arguments;
  const auto input = readFileOrComplain("-");
  if (!input) return std::nullopt;
  std::vector<std::string> lines;
  for (size_t start = 0; start < input->size();) {
    const size_t end = std::min(input->find('\n', start), input->size());
    lines.push_back(input->substr(start, end - start));
    start = end + 1;
  }
  return lines;
}

// A line for each text that can be converted, a complaint for each other one.
int convertTexts(const EscapeOptions& options, const char* failure,
                 FunctionRef<String(const String&, StringEncoding)> convert) {
  const StringEncoding encoding = charset2NSStringEncoding(options.encoding);
  if (encoding == StringEncoding::Invalid) return trouble("no encoding: " + options.encoding);
  const auto texts = givenTexts(options.texts);
  if (!texts) return Trouble;
  int status = Something;
  for (const std::string& text : *texts) {
    const String given = String::fromUTF8(text);
    const String converted = given ? convert(given, encoding) : String();
    if (converted) {
      if (!print(converted.toUTF8() + '\n')) break;
    } else {
      status = trouble(text + ": " + (given ? failure + options.encoding : "no UTF-8"));
    }
  }
  return status;
}

int decode(const EscapeOptions& options) {
  return convertTexts(options, "holds a % without two digits, or bytes that are no text in ",
                      [&options](const String& text, StringEncoding encoding) {
                        return options.set == EscapeSet::All
                                   ? stringByReplacingPercentEscapesOfURL(text, encoding)
                                   : _stringByReplacingPercentEscapesOfURL(text, options.set == EscapeSet::Standard);
                      });
}

int encode(const EscapeOptions& options) {
  const String leave = String::fromUTF8(options.leave);
  const String escape = String::fromUTF8(options.escape);
  if (!leave || !escape) return trouble("--leave and --escape take UTF-8");
  return convertTexts(options, "holds a character that there is not in ",
                      [&](const String& text, StringEncoding encoding) {
                        return options.set == EscapeSet::All
                                   ? stringByAddingPercentEscapesToURL(text, encoding, leave, escape)
                                   : stringByAddingPercentEscapesToURL(text, options.set == EscapeSet::Standard);
                      });
}

// Decoded where it can be and is asked for.
String shown(const String& part, const ParameterOptions& options) {
  const String decoded = options.decode ? stringByReplacingPercentEscapesOfURL(part) : part;
  return decoded ? decoded : part;
}

// What of one address is printed; empty when there is nothing.
std::string linesOf(const String& url, const ParameterOptions& options) {
  std::string lines;
  if (!options.name.empty()) {
    const String name = String::fromUTF8Lossy(options.name);
    const String value = options.bare ? paramNamed(url, name) : queryParamNamed(url, name);
    return value ? shown(value, options).toUTF8() + '\n' : lines;
  }
  std::vector<ValueDictionary::Entry> entries;
  for (const auto& [key, value] : options.bare ? queryParams(url, 0) : queryParams(url)) {
    entries.push_back({shown(key, options), shown(value.string(), options)});
    lines += entries.back().key.toUTF8() + '\t' + entries.back().value.string().toUTF8() + '\n';
  }
  if (!options.json) return lines;
  lines.clear();
  appendJSON(ValueDictionary(std::move(entries)), lines);
  return lines + '\n';
}

int listParameters(const ParameterOptions& options) {
  const auto urls = givenTexts(options.urls);
  if (!urls) return Trouble;
  int status = Nothing;
  for (const std::string& url : *urls) {
    const String text = String::fromUTF8(url);
    if (!text) return trouble(url + ": no UTF-8");
    const std::string lines = linesOf(text, options);
    if (lines.empty()) continue;
    status = Something;
    if (!print(lines)) break;
  }
  return status;
}

void addEscapeOptions(CLI::App& command, EscapeOptions& options) {
  addArgument(command, "TEXT", options.texts, "What to convert; without any, the lines of standard input");
  addChoice(command, "--set", options.set, "Which: all by default; standard are those with a meaning in a URL",
            {{"all", EscapeSet::All}, {"standard", EscapeSet::Standard}, {"ascii", EscapeSet::ASCII}});
  command.add_option("--encoding", options.encoding, "The encoding of the bytes, with --set all (default: UTF-8)")
      ->type_name("NAME");
}

}  // namespace

void addURLCommands(CLI::App& app, int& status) {
  CLI::App* group = app.add_subcommand("url", "Percent escapes and query parameters of URLs");
  group->require_subcommand(1);
  const auto [decoding, decodeOptions] = addCommand(*group, status, "decode", "Decode percent escapes", decode);
  addEscapeOptions(*decoding, *decodeOptions);
  const auto [encoding, encodeOptions] = addCommand(*group, status, "encode", "Add percent escapes", encode);
  addEscapeOptions(*encoding, *encodeOptions);
  encoding->add_option("--leave", encodeOptions->leave, "Characters to leave as they are, with --set all")
      ->type_name("CHARACTERS");
  encoding->add_option("--escape", encodeOptions->escape, "Characters to escape, too, with --set all")
      ->type_name("CHARACTERS");
  const auto [listing, listOptions] =
      addCommand(*group, status, "params", "List the query parameters, a line each", listParameters);
  addArgument(*listing, "URL", listOptions->urls, "Addresses; without any, the lines of standard input");
  listing->add_option("--name", listOptions->name, "Print only the value of the parameter KEY")->type_name("KEY");
  listing->add_flag("--bare", listOptions->bare, "The texts are queries without an address before them");
  listing->add_flag("--decode", listOptions->decode, "Decode percent escapes");
  listing->add_flag("--json", listOptions->json, "Print a JSON object an address");
  group->footer(
      "Exit status: 0 something was printed, 1 nothing, 2 something went wrong.\n"
      "Examples:\n"
      "  velan url decode 'caf%C3%A9%20menu'\n"
      "  velan url params --name q 'https://example.org/?q=harbour&page=2'");
}

}  // namespace velan::tool
