#include "tools/search/DocumentReading.h"

#include <utility>

#include "tools/Console.h"

namespace velan::tool {

std::optional<Document> readDocument(const InputFile& file, Complaint& complaint) {
  std::string why = file.trouble;
  std::optional<std::string> bytes;
  if (why.empty()) bytes = readFile(file.path, why);
  std::optional<Document> document;
  if (bytes) document = decodeDocument(std::move(*bytes), why);
  if (!document) complaint = {displayName(file.path) + ": " + why, !bytes || file.named};
  return document;
}

}  // namespace velan::tool
