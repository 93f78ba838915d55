// A file's way from its path to its text.
#ifndef VELAN_TOOLS_DOCUMENTS_DOCUMENT_READING_H
#define VELAN_TOOLS_DOCUMENTS_DOCUMENT_READING_H

#include <optional>
#include <string>
#include <string_view>

#include "tools/documents/TextDecoding.h"
#include "tools/files/FileReading.h"
#include "tools/files/FileWalk.h"

namespace velan::tool {

/// What to tell when a file gives no text.
struct Complaint {
  std::string text;
  bool isTrouble = false;  // counts for the exit status
  bool isBinary = false;
};

/// Nothing when the file cannot be read or is not text; `complaint` then has one line about it. Folders hold files that
/// are not text as a matter of course, so only of those that were named anything is said.
std::optional<Document> readDocument(const InputFile& file, const DecodingOptions& decoding, Complaint& complaint);

/// Answers whether nothing is wanted of a file with these bytes.
using Refusal = FunctionRef<bool(std::string_view bytes, const FileOrigin& file)>;

/// The same, but nothing and no complaint also where `refuses`. The bytes are then left in `reader`, which is there to
/// be used again for the next file.
std::optional<Document> readDocument(const InputFile& file, const DecodingOptions& decoding, Refusal refuses,
                                     FileReader& reader, Complaint& complaint);

/// The same for commands that read one file after the other: complains, and warns once where an encoding is assumed.
class DocumentReader {
 public:
  explicit DocumentReader(const DecodingOptions& decoding) : _decoding(decoding) {}

  std::optional<Document> read(const InputFile& file);
  /// Whether something could not be read that should have been.
  bool hadTrouble() const { return _trouble; }

 private:
  const DecodingOptions _decoding;
  AssumedEncodingWarning _warning;
  bool _trouble = false;
};

}  // namespace velan::tool

#endif  // VELAN_TOOLS_DOCUMENTS_DOCUMENT_READING_H
