#include "tools/documents/TextDecoding.h"

#include <algorithm>
#include <new>
#include <optional>
#include <span>
#include <stdexcept>
#include <string_view>
#include <utility>

#include "tools/CommandLine.h"
#include "tools/markup/MarkupFiles.h"
#include "tools/markup/MarkupText.h"
#include "velan/base/utf/UTF.h"
#include "velan/markup/DeclaredEncoding.h"
#include "velan/markup/MarkupDecoding.h"
#include "velan/text/encoding/CharsetNames.h"
#include "velan/text/encoding/Decoding.h"
#include "velan/text/encoding/EncodingDetection.h"
#include "velan/text/search/CharacterSearch.h"

namespace velan::tool {
namespace {

constexpr StringEncoding kAssumed = StringEncoding::WindowsLatin1;

Data borrowed(const std::string& bytes) {
  return Data::withBytesNoCopy(const_cast<char*>(bytes.data()), bytes.size(), false);
}

// Whether text in this encoding may hold zero bytes.
bool isWide(StringEncoding encoding) {
  return isUTF16(encoding) || encoding == StringEncoding::UTF32 || encoding == StringEncoding::UTF32BigEndian ||
         encoding == StringEncoding::UTF32LittleEndian;
}

size_t markLengthOf(std::string_view bytes, StringEncoding encoding) {
  if (encoding == StringEncoding::UTF8) return bytes.starts_with("\xEF\xBB\xBF") ? 3 : 0;
  const bool marked = bytes.starts_with("\xFF\xFE") || bytes.starts_with("\xFE\xFF");
  return encoding == StringEncoding::UTF16 && marked ? 2 : 0;
}

String lenientText(const std::string& bytes, StringEncoding encoding) {
  return decodedText(borrowed(bytes), encoding, MalformedText::Replace).text;
}

using namespace std::string_view_literals;

// What files begin with whose text may hold zero bytes: byte-order marks, and XML that has none.
constexpr std::string_view kWideBeginnings[] = {"\xFF\xFE"sv, "\xFE\xFF"sv, "\0\0\xFE\xFF"sv, "<\0?\0"sv, "\0<\0?"sv};

// What files begin with that may go on without a zero byte for long and are no text.
constexpr std::string_view kBinaryBeginnings[] = {
    "%PDF-"sv,
    "\x1F\x8B\x08"sv,
    "PK\x03\x04"sv,
    "\x89PNG\r\n"sv,
    "\xFF\xD8\xFF"sv,
    "\xFD"
    "7zXZ"sv,
    "\x28\xB5\x2F\xFD"sv,
};

bool beginsWithAny(std::string_view bytes, std::span<const std::string_view> beginnings) {
  return std::any_of(beginnings.begin(), beginnings.end(), [bytes](auto each) { return bytes.starts_with(each); });
}

bool holdsZeroUnit(std::string_view utf16) {
  for (size_t i = 0; i + 1 < utf16.size(); i += 2) {
    if (utf16[i] == 0 && utf16[i + 1] == 0) return true;
  }
  return false;
}

// The text is absent where it is to be decoded.
struct Choice {
  StringEncoding encoding;
  bool assumed = false;
  String text = {};
};

// What a page of which no mark and no attribute says anything declares for itself. Nothing where that is `utf8`, which
// is its text if it is valid UTF-8, or where its declaration is of no use.
std::optional<Choice> choiceForPage(const Data& data, const String& utf8, const DecodingOptions& options) {
  if (utf8) {
    const StringEncoding declared = markupEncoding(utf8);
    if (declared == StringEncoding::Invalid || declared == StringEncoding::UTF8) return std::nullopt;
  }
  const bool hasDefault = options.defaultEncoding != StringEncoding::Detect;
  const StringEncoding fallback = utf8 ? StringEncoding::UTF8 : hasDefault ? options.defaultEncoding : kAssumed;
  DecodedMarkup page = decodedMarkup(data, String(), fallback);
  if (!page.text) return std::nullopt;
  const bool isDeclared = NSEncodingFromName(page.declaredCharset) == page.encoding;
  const bool isAssumed = page.evidence == MarkupEvidence::Default && !utf8 && !hasDefault && !isDeclared;
  return Choice{page.encoding, isAssumed, std::move(page.text)};
}

Choice choose(const std::string& bytes, const FileOrigin& file, const DecodingOptions& options, bool isPage) {
  if (options.encoding != StringEncoding::Detect) return {options.encoding};
  const Data data = borrowed(bytes);
  DetectedEncoding found =
      file.hasAttributes ? detectedEncodingOfFile(String::fromUTF8(file.path), data) : detectedEncodingOfData(data);
  if (isPage && (found.evidence == EncodingEvidence::None || found.evidence == EncodingEvidence::ValidUTF8)) {
    if (auto choice = choiceForPage(data, found.text, options)) return std::move(*choice);
  }
  if (found.evidence == EncodingEvidence::None) {
    const bool assumed = options.defaultEncoding == StringEncoding::Detect;
    return {assumed ? kAssumed : options.defaultEncoding, assumed};
  }
  // What is printed is UTF-8, so half a pair has to go.
  if (isUTF16(found.encoding)) found.text = String();
  return {found.encoding, false, std::move(found.text)};
}

}  // namespace

bool isUTF16(StringEncoding encoding) {
  return encoding == StringEncoding::UTF16 || encoding == StringEncoding::UTF16BigEndian ||
         encoding == StringEncoding::UTF16LittleEndian;
}

void addEncodingName(CLI::App& command, const char* name, StringEncoding& encoding, const char* description) {
  const auto choose = [&encoding](const std::string& charset) {
    encoding = charset2NSStringEncoding(charset);
    if (!charsetName(encoding)) fail("no encoding is called " + charset);
  };
  command.add_option_function<std::string>(name, choose, description)->type_name("NAME");
}

void addDecodingOptions(CLI::App& command, DecodingOptions& options) {
  addEncodingName(command, "--encoding", options.encoding, "The encoding of all files, instead of detecting it");
  addEncodingName(command, "--default-encoding", options.defaultEncoding,
                  "The encoding of files that nothing tells about");
  command.add_flag("--binary", options.binary, "Read files that are not text, too");
  command.add_flag("--attributes", options.attributes, "Read alt, title and description in the tags of pages, too");
  command.add_flag("!--no-markup", options.markup, "Read pages (HTML, XML) as they stand, with their tags");
}

StringEncoding likelyEncoding(std::string_view bytes, const DecodingOptions& options) {
  if (options.encoding != StringEncoding::Detect) return options.encoding;
  const bool isUTF16 = markLengthOf(bytes, StringEncoding::UTF16) > 0 && !bytes.starts_with("\xFF\xFE\0\0"sv);
  return isUTF16 ? StringEncoding::UTF16 : StringEncoding::UTF8;
}

bool isPlainText(std::string_view bytes, const FileOrigin& file, const DecodingOptions& options) {
  if (isUTF16(likelyEncoding(bytes, options))) return !holdsZeroUnit(bytes);
  if (bytes.find('\0') != std::string_view::npos) return false;
  if (options.encoding != StringEncoding::Detect) return true;
  return !beginsWithAny(bytes, kWideBeginnings) && isUTF8(bytes) &&
         !(file.hasAttributes && hasEncodingAttribute(String::fromUTF8(file.path)));
}

bool isBinary(std::string_view head, const std::string& path, const DecodingOptions& options) {
  const bool detects = options.encoding == StringEncoding::Detect;
  if (options.binary || isWide(options.encoding) || isWide(options.defaultEncoding)) return false;
  if (detects && beginsWithAny(head, kWideBeginnings)) return false;
  if (beginsWithAny(head, kBinaryBeginnings)) return true;
  if (head.find('\0') == std::string_view::npos) return false;
  return !detects || path.empty() || !hasEncodingAttribute(String::fromUTF8(path));
}

std::optional<Document> decodeDocument(std::string bytes, const FileOrigin& file, const DecodingOptions& options,
                                       std::string& why) {
  const bool isPage = textDiffersFromSource(file.path, bytes, options);
  Choice choice = choose(bytes, file, options, isPage);
  bool isBinary = !isWide(choice.encoding) && bytes.find('\0') != std::string::npos;
  if (isBinary && !options.binary) {
    why = kBinaryFile;
    return std::nullopt;
  }
  String source = choice.text ? std::move(choice.text) : lenientText(bytes, choice.encoding);
  if (source.isAbsent()) {
    why = "there is not enough memory for its text";
    return std::nullopt;
  }
  // UTF-8 has a zero byte where the text has such a unit.
  const bool isTold = choice.encoding == StringEncoding::UTF8;
  isBinary = isBinary || (!isTold && findCharacter(source, u'\0') != NSNotFound);
  if (isBinary && !options.binary) {
    why = kBinaryFile;
    return std::nullopt;
  }
  const size_t markLength = markLengthOf(bytes, choice.encoding);
  MarkupText shown = isPage ? textOfMarkup(source, options.attributes) : MarkupText{source, {}};
  return Document{std::move(bytes),  choice.encoding,       choice.assumed && !isBinary, markLength,
                  std::move(source), std::move(shown.text), std::move(shown.map),        isBinary};
}

bool textDiffersFromSource(const std::string& path, std::string_view bytes, const DecodingOptions& options) {
  return options.markup && isMarkup(path, bytes);
}

std::vector<int32_t> sourceOffsets(const Document& document) {
  std::vector<int32_t> offsets;
  if (document.bytes.size() > INT32_MAX) throw std::length_error("it is too long to tell places in its bytes");
  decodedText(borrowed(document.bytes), document.encoding, MalformedText::Replace, offsets);
  const size_t expected = document.source.view().size() + 1;
  if (offsets.size() == expected + 1) offsets.erase(offsets.begin());  // a page's mark in an encoding that keeps it
  if (offsets.size() != expected) throw std::bad_alloc();
  return offsets;
}

std::string AssumedEncodingWarning::about(const std::string& name, bool assumed) {
  if (!assumed || _given) return {};
  _given = true;
  return name + ": nothing tells the encoding of this file and perhaps of others: read as " + charsetName(kAssumed) +
         "; --encoding and --default-encoding know better";
}

}  // namespace velan::tool
