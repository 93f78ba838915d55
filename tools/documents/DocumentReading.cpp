#include "tools/documents/DocumentReading.h"

#include <utility>

#include "tools/Console.h"

namespace velan::tool {

std::optional<Document> readDocument(const InputFile& file, const DecodingOptions& decoding, Complaint& complaint) {
  std::string why = file.trouble;
  std::optional<std::string> bytes;
  if (why.empty()) bytes = readFile(file.path, why);
  std::optional<Document> document;
  if (bytes) document = decodeDocument(std::move(*bytes), file.path == "-" ? "" : file.path, decoding, why);
  if (document) return document;
  const bool isBinary = why == kBinaryFile;
  const std::string text = isBinary && !file.named ? "" : displayName(file.path) + ": " + why;
  complaint = {text, !bytes || file.named, isBinary};
  return std::nullopt;
}

std::optional<Document> DocumentReader::read(const InputFile& file) {
  Complaint complaint;
  std::optional<Document> document = readDocument(file, _decoding, complaint);
  if (document) complaint.text = _warning.about(displayName(file.path), document->assumed);
  if (!complaint.text.empty()) complain(complaint.text);
  _trouble = _trouble || complaint.isTrouble;
  return document;
}

}  // namespace velan::tool
