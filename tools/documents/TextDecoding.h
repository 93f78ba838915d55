// From the bytes of a file to the text that is searched.
#ifndef VELAN_TOOLS_DOCUMENTS_TEXT_DECODING_H
#define VELAN_TOOLS_DOCUMENTS_TEXT_DECODING_H

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/documents/SourceMap.h"
#include "velan/base/Data.h"
#include "velan/base/String.h"
#include "velan/base/StringEncoding.h"

namespace CLI {
class App;
}

namespace velan::tool {

/// What is known about the encodings of files, and how they are read.
struct DecodingOptions {
  StringEncoding encoding = StringEncoding::Detect;  // of all of them
  StringEncoding defaultEncoding =
      StringEncoding::Detect;  // of those that nothing tells about: Windows-1252 and a warning
  bool markup = true;          // pages are read without their markup
  bool attributes = false;     // but for what readers see of tags
  bool binary = false;         // files that are not text are read, too
};

/// Declares `--encoding`, `--default-encoding`, `--no-markup`, `--attributes` and `--binary`.
void addDecodingOptions(CLI::App& command, DecodingOptions& options);

/// Declares an option that takes the name of an encoding.
void addEncodingName(CLI::App& command, const char* name, StringEncoding& encoding, const char* description);

/// Whether the encoding is UTF-16 in either byte order or with a mark.
bool isUTF16(StringEncoding encoding);

/// A file and its text. The source is what the bytes stand for; the text is the same string, or for a page what its
/// reader sees of it.
struct Document {
  std::string bytes;
  StringEncoding encoding;
  bool assumed;       // nothing tells the encoding, and nobody named a default
  size_t markLength;  // bytes of the byte-order mark of UTF-8 or UTF-16, which does not belong to the source
  String source;
  String text;
  SourceMap map;          // from the text to the source
  bool isBinary = false;  // no text, and only read because that was asked for

  bool textIsSource() const { return text.isSameObject(source); }
};

/// What is known of a file besides its bytes.
struct FileOrigin {
  std::string path;    // empty for standard input
  bool hasAttributes;  // whether it may have extended attributes
};

/// Whether the text of a file is not just what its bytes stand for, so that words may be in it that are not in the
/// bytes. `path` is empty for standard input.
bool textDiffersFromSource(const std::string& path, std::string_view bytes, const DecodingOptions& options);

inline constexpr const char* kBinaryFile = "binary file, not searched";

/// Whether a file that begins with `head`, 64 KB or all of it, is surely not text: by the beginning that its kind has,
/// or by a zero byte where the encoding has none. `path` is empty for standard input.
bool isBinary(std::string_view head, const std::string& path, const DecodingOptions& options);

/// The encoding that is named, or that of the mark of UTF-16, otherwise UTF-8.
StringEncoding likelyEncoding(std::string_view bytes, const DecodingOptions& options);

/// Whether the source that `decodeDocument` gives of what is no page is surely what the bytes stand for in their
/// `likelyEncoding`.
bool isPlainText(std::string_view bytes, const FileOrigin& file, const DecodingOptions& options);

/// Decodes a file in the encoding that is named or detected (see `detectedEncodingOfFile` and, for pages that declare
/// one, `decodedMarkup`), of which its extended attributes may say something. Malformed parts become U+FFFD. Nothing
/// for a file that is not text, which shows by a character U+0000, unless such are wanted; `why` then is `kBinaryFile`.
std::optional<Document> decodeDocument(std::string bytes, const FileOrigin& file, const DecodingOptions& options,
                                       std::string& why);

/// Where the sequence of each unit of the document's source begins in its bytes, and where the last one ends. Throws
/// `std::length_error` for more than INT32_MAX bytes, and `std::bad_alloc`.
std::vector<int32_t> sourceOffsets(const Document& document);

/// One warning a run for documents whose encoding is assumed.
class AssumedEncodingWarning {
 public:
  /// Nothing when the encoding is not assumed, or when the warning was given before.
  std::string about(const std::string& name, bool assumed);

 private:
  bool _given = false;
};

}  // namespace velan::tool

#endif  // VELAN_TOOLS_DOCUMENTS_TEXT_DECODING_H
