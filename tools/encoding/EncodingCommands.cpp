// The commands "convert" and "charset".
#include <fmt/format.h>

#include <algorithm>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/CommandLine.h"
#include "tools/Commands.h"
#include "tools/Console.h"
#include "tools/documents/TextDecoding.h"
#include "tools/files/FileReading.h"
#include "tools/files/FileWalk.h"
#include "tools/markup/MarkupFiles.h"
#include "tools/markup/MarkupText.h"
#include "velan/base/utf/UTF.h"
#include "velan/text/encoding/CharsetNames.h"
#include "velan/text/encoding/Decoding.h"
#include "velan/text/encoding/EncodingDetection.h"
#include "velan/text/encoding/StringConversion.h"
#include "velan/text/encoding/TextFiles.h"

namespace velan::tool {
namespace {

int trouble(const std::string& message) {
  complain(message);
  return Trouble;
}

std::optional<Data> contentsOf(const std::string& path) {
  std::string why;
  auto bytes = readFile(path, why);
  if (bytes) return Data::withBytes(*bytes);
  complain(displayName(path) + ": " + why);
  return std::nullopt;
}

DetectedEncoding detected(const std::string& path, const Data& data) {
  return path == "-" ? detectedEncodingOfData(data) : detectedEncodingOfFile(String::fromUTF8(path), data);
}

struct ConvertOptions {
  std::string path = "-";
  StringEncoding from = StringEncoding::Detect;
  StringEncoding to = StringEncoding::UTF8;
  std::string output;
  bool lenient = false;
};

// The first character that the encoding cannot express, found by halving.
std::string inexpressible(const String& text, StringEncoding encoding) {
  size_t good = 0;
  for (size_t bad = text.view().size(); bad - good > 1;) {
    const size_t middle = good + (bad - good) / 2;
    (dataUsingEncoding(text.view().substr(0, middle), encoding) ? good : bad) = middle;
  }
  const auto line = 1 + std::ranges::count(text.view().substr(0, good), u'\n');
  uint32_t character = text[static_cast<int64_t>(good)];
  if (isHighSurrogate(text[static_cast<int64_t>(good)]) && good + 1 < text.view().size()) {
    character = 0x10000 + ((character & 0x3FF) << 10) + (text.view()[good + 1] & 0x3FFu);
  }
  return fmt::format("line {}: {} has no U+{:04X}", line, charsetName(encoding), character);
}

int runConvert(const ConvertOptions& options) {
  const auto data = contentsOf(options.path);
  if (!data) return Trouble;
  const std::string name = displayName(options.path);
  StringEncoding from = options.from;
  if (from == StringEncoding::Detect) {
    from = detected(options.path, *data).encoding;
    if (from == StringEncoding::Invalid) return trouble(name + ": nothing tells its encoding; --from does");
  }
  const DecodedText decoded =
      decodedText(*data, from, options.lenient ? MalformedText::Replace : MalformedText::Refuse);
  if (!decoded.text || (decoded.unassigned > 0 && !options.lenient)) {
    return trouble(fmt::format("{}: it is not {} throughout; --lenient converts the rest", name, charsetName(from)));
  }
  if (options.output.empty()) {
    const Data bytes = dataUsingEncoding(decoded.text.view(), options.to);
    if (!bytes) return trouble(fmt::format("{}: {}", name, inexpressible(decoded.text, options.to)));
    print(bytes.view());
    return Something;
  }
  if (writeToFile(decoded.text, String::fromUTF8(options.output), true, options.to)) return Something;
  if (!dataUsingEncoding(decoded.text.view(), options.to)) {
    return trouble(fmt::format("{}: {}", name, inexpressible(decoded.text, options.to)));
  }
  return trouble(options.output + ": it cannot be written");
}

struct CharsetOptions {
  std::vector<std::string> paths;
};

const char* wordsFor(EncodingEvidence evidence) {
  switch (evidence) {
    case EncodingEvidence::ByteOrderMark:
      return "byte-order mark";
    case EncodingEvidence::TextEncodingAttribute:
      return "extended attribute user.com.apple.TextEncoding";
    case EncodingEvidence::CharsetAttribute:
      return "extended attribute user.charset";
    case EncodingEvidence::ValidUTF8:
      return "it is valid";
    case EncodingEvidence::None:
      break;
  }
  return "nothing tells";
}

std::string verdict(const DetectedEncoding& found) {
  if (found.evidence == EncodingEvidence::None) return "unknown\tnothing tells, and it is not UTF-8";
  std::string line = fmt::format("{}\t{}", charsetName(found.encoding), wordsFor(found.evidence));
  if (found.evidence == EncodingEvidence::ValidUTF8 && smallestEncoding(found.text) == StringEncoding::ASCII) {
    line += ", and all ASCII";
  }
  if (!found.text) line += ", but not all of it is valid";
  return line;
}

// What a page declares, and whether that is how it is read; empty for what declares nothing. Other texts may speak of
// declarations.
std::string verdictOnPage(const std::string& path, const Data& data) {
  if (!isMarkup(path == "-" ? std::string() : path, data.view())) return {};
  const DecodedMarkup page = decodePage(path, data);
  if (page.declaredCharset.isEmpty() || !charsetName(page.encoding)) return {};
  const std::string declared = page.declaredCharset.toUTF8();
  switch (page.evidence) {
    case MarkupEvidence::Declaration:
      return fmt::format("{}\tdeclared as {}", charsetName(page.encoding), declared);
    case MarkupEvidence::Fallback:
      return fmt::format("{}\tdeclared as {}, which does not fit", charsetName(page.encoding), declared);
    case MarkupEvidence::ByteOrderMark:
      return fmt::format("{}\tbyte-order mark, declared as {}", charsetName(page.encoding), declared);
    case MarkupEvidence::PropertyList:
      return {};
    default:
      break;
  }
  const bool same = NSEncodingFromName(page.declaredCharset) == page.encoding;
  return fmt::format("{}\tdeclared as {}{}", charsetName(page.encoding), declared, same ? "" : ", which is not so");
}

int runCharset(const CharsetOptions& options) {
  int status = Something;
  for (const std::string& path : options.paths) {
    const auto data = contentsOf(path);
    if (!data) {
      status = Trouble;
      continue;
    }
    if (const std::string page = verdictOnPage(path, *data); !page.empty()) {
      if (!print(fmt::format("{}\t{}\n", displayName(path), page))) break;
      continue;
    }
    const DetectedEncoding found = detected(path, *data);
    if (!found.text && status == Something) status = Nothing;
    if (!print(fmt::format("{}\t{}\n", displayName(path), verdict(found)))) break;
  }
  return status;
}

}  // namespace

void addEncodingCommands(CLI::App& app, int& status) {
  const auto [convert, convertOptions] =
      addCommand<ConvertOptions>(app, status, "convert", "Write a text in another encoding", runConvert);
  addArgument(*convert, "FILE", convertOptions->path, "A file, or - for standard input (default)");
  addEncodingName(*convert, "--from", convertOptions->from, "Its encoding, instead of detecting it");
  addEncodingName(*convert, "--to", convertOptions->to, "The encoding to write (utf-8)");
  convert->add_option("-o,--output", convertOptions->output, "The file to write; without, standard output")
      ->type_name("FILE");
  convert->add_flag("--lenient", convertOptions->lenient, "Write U+FFFD for what is not valid");
  convert->footer(
      "A file that is written keeps its encoding in the extended attribute user.charset where it could not be\n"
      "detected otherwise. UTF-16 and UTF-32 are written little-endian with a byte-order mark, UTF-16BE and the like\n"
      "without.\n"
      "Exit status: 0 it was converted, 2 something is not valid, cannot be expressed or cannot be written.\n"
      "Examples:\n"
      "  velan convert --from windows-1250 letter.txt > letter.utf8.txt\n"
      "  velan convert --from shift_jis --to utf-16 -o out.txt in.txt");
  const auto [charset, charsetOptions] =
      addCommand<CharsetOptions>(app, status, "charset", "Tell how texts are encoded, and what says so", runCharset);
  addArgument(*charset, "FILE", charsetOptions->paths, "Files, and - for standard input")->required();
  charset->footer(
      "Prints the path, the encoding and the evidence, with tabs between them. What a page declares, byte-order\n"
      "marks, extended attributes and valid UTF-8 tell an encoding; nothing is guessed.\n"
      "Exit status: 0 all are known and valid, 1 some are not, 2 something went wrong.\n"
      "Examples:\n"
      "  velan charset notes/*.txt\n"
      "  velan charset - < letter.txt");
}

}  // namespace velan::tool
