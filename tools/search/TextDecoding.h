// From the bytes of a file to the text that is searched: the one place to extend when further encodings or markup are
// to be understood.
#ifndef VELAN_TOOLS_SEARCH_TEXT_DECODING_H
#define VELAN_TOOLS_SEARCH_TEXT_DECODING_H

#include <cstdint>
#include <optional>
#include <string>

#include "velan/base/String.h"

namespace velan::tool {

enum class TextEncoding : uint8_t { UTF8, UTF16LittleEndian, UTF16BigEndian };

/// A file and its text.
struct Document {
  std::string bytes;
  TextEncoding encoding;
  size_t markLength;  // bytes of the byte-order mark, which does not belong to the text
  String text;
};

/// UTF-16 when it begins with a byte-order mark, otherwise UTF-8, with or without one. Malformed parts become U+FFFD.
/// Nothing for a file that is not text, which shows by a character U+0000; `why` says so.
std::optional<Document> decodeDocument(std::string bytes, std::string& why);

}  // namespace velan::tool

#endif  // VELAN_TOOLS_SEARCH_TEXT_DECODING_H
