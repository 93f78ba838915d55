// Texts as JSON values (RFC 8259).
#ifndef VELAN_TOOLS_JSON_TEXT_H
#define VELAN_TOOLS_JSON_TEXT_H

#include <string>
#include <string_view>

namespace velan::tool {

/// `utf8` as a JSON string with its quotation marks; it must be valid UTF-8.
std::string jsonString(std::string_view utf8);

/// The same for UTF-16; U+FFFD for lone surrogates.
std::string jsonString(std::u16string_view utf16);

/// `{"text":"…"}`, or `{"bytes":"…"}` in Base64 (RFC 4648) for bytes that are not valid UTF-8.
std::string jsonTextOrBytes(std::string_view bytes);

}  // namespace velan::tool

#endif  // VELAN_TOOLS_JSON_TEXT_H
