#include "tools/documents/DocumentReading.h"

#include "tools/Console.h"

namespace velan::tool {

std::optional<Document> readDocument(const InputFile& file, const DecodingOptions& decoding, Complaint& complaint) {
  FileReader reader;
  return readDocument(file, decoding, nullptr, reader, complaint);
}

std::optional<Document> readDocument(const InputFile& file, const DecodingOptions& decoding, Refusal refuses,
                                     FileReader& reader, Complaint& complaint) {
  const std::string path = file.path == "-" ? "" : file.path;
  const auto isWanted = [&](std::string_view head) { return !isBinary(head, path, decoding); };
  std::string why = file.trouble;
  std::optional<Document> document;
  if (why.empty() && reader.read(file.path, isWanted, why)) {
    const FileOrigin origin{path, reader.hasAttributes()};
    if (refuses && refuses(reader.bytes(), origin)) return std::nullopt;
    document = decodeDocument(reader.takeBytes(), origin, decoding, why);
  } else if (why.empty()) {
    why = kBinaryFile;
  }
  if (document) return document;
  const bool isBinaryFile = why == kBinaryFile;
  const std::string text = isBinaryFile && !file.named ? "" : displayName(file.path) + ": " + why;
  complaint = {text, !isBinaryFile || file.named, isBinaryFile};
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
