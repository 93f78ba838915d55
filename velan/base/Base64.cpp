#include "velan/base/Base64.h"

#include <array>
#include <new>

#include "velan/base/MutableData.h"

namespace velan {
namespace {

constexpr std::string_view kDigits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr uint8_t kSpace = 64;
constexpr uint8_t kPadding = 65;
constexpr uint8_t kForeign = 66;

constexpr std::array<uint8_t, 256> kValues = [] {
  std::array<uint8_t, 256> values{};
  values.fill(kForeign);
  for (uint8_t i = 0; i < 64; ++i) values[static_cast<uint8_t>(kDigits[i])] = i;
  for (const char c : std::string_view(" \t\r\n")) values[static_cast<uint8_t>(c)] = kSpace;
  values['='] = kPadding;
  return values;
}();

}  // namespace

void appendBase64(std::span<const uint8_t> bytes, std::string& text) {
  for (size_t i = 0; i < bytes.size(); i += 3) {
    const size_t count = bytes.size() - i < 3 ? bytes.size() - i : 3;
    uint32_t group = 0;
    for (size_t k = 0; k < 3; ++k) group = (group << 8) | (k < count ? bytes[i + k] : 0u);
    for (size_t k = 0; k < 4; ++k) text.push_back(k <= count ? kDigits[(group >> (18 - 6 * k)) & 63] : '=');
  }
}

Data dataFromBase64(std::string_view text) try {
  MutableData bytes;
  bytes.reserve(text.size() / 4 * 3 + 3);
  uint32_t group = 0;
  unsigned bits = 0;
  unsigned padding = 0;
  for (const char c : text) {
    const uint8_t value = kValues[static_cast<uint8_t>(c)];
    if (value == kSpace) continue;
    if (value == kPadding) {
      ++padding;
      continue;
    }
    if (value == kForeign || padding) return Data();
    group = (group << 6) | value;
    bits += 6;
    if (bits < 8) continue;
    bits -= 8;
    const auto byte = static_cast<uint8_t>(group >> bits);
    bytes.appendBytes(&byte, 1);
    group &= (1u << bits) - 1;
  }
  const bool whole = bits < 6 && group == 0 && (padding == 0 || padding == bits / 2);
  return whole ? bytes.takeData() : Data();
} catch (const std::bad_alloc&) {
  return Data();
}

}  // namespace velan
