#include "tools/JsonText.h"

#include <fmt/format.h>

#include <cstdint>

#include "velan/base/String.h"
#include "velan/base/UTF.h"

namespace velan::tool {
namespace {

std::string base64(std::string_view bytes) {
  constexpr std::string_view kDigits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string encoded;
  for (size_t i = 0; i < bytes.size(); i += 3) {
    uint32_t group = 0;
    for (size_t k = i; k < i + 3; ++k) group = group << 8 | (k < bytes.size() ? static_cast<uint8_t>(bytes[k]) : 0u);
    for (size_t k = 0; k < 4; ++k) {
      const bool padding = i + k > bytes.size();
      encoded += padding ? '=' : kDigits[group >> (18 - 6 * k) & 63];
    }
  }
  return encoded;
}

}  // namespace

std::string jsonString(std::string_view utf8) {
  std::string json = "\"";
  for (const char c : utf8) {
    if (c == '"' || c == '\\') {
      json.append(1, '\\').push_back(c);
    } else if (c == '\n') {
      json += "\\n";
    } else if (static_cast<unsigned char>(c) < 0x20) {
      json += fmt::format("\\u{:04x}", static_cast<unsigned>(c));
    } else {
      json += c;
    }
  }
  return json + '"';
}

std::string jsonString(std::u16string_view utf16) {
  std::string utf8;
  appendUTF8Lossy(utf16, utf8);
  return jsonString(std::string_view(utf8));
}

std::string jsonTextOrBytes(std::string_view bytes) {
  if (String::fromUTF8(bytes)) return fmt::format(R"({{"text":{}}})", jsonString(bytes));
  return fmt::format(R"({{"bytes":"{}"}})", base64(bytes));
}

}  // namespace velan::tool
