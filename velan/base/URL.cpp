#include "velan/base/URL.h"

#include <string>

#include "velan/base/UTF.h"

namespace velan {
namespace {

constexpr std::u16string_view kFileScheme = u"file:";
constexpr std::string_view kHexDigits = "0123456789ABCDEF";

// The value of a hexadecimal digit, or -1.
int hexDigitValue(unichar c) {
  if (c >= u'0' && c <= u'9') return c - u'0';
  const int letter = (c | 0x20) - u'a';
  return c < 0x80 && letter >= 0 && letter < 6 ? letter + 10 : -1;
}

bool isEscape(std::u16string_view text, size_t at) {
  return text.size() - at > 2 && hexDigitValue(text[at + 1]) >= 0 && hexDigitValue(text[at + 2]) >= 0;
}

bool mayStandInURL(unichar c) {
  return c > 0x20 && c < 0x7F && std::u16string_view(u"\"<>\\^`{|}").find(c) == std::u16string_view::npos;
}

// What a path segment may hold as it is (RFC 3986, pchar), and the slashes between segments.
bool mayStandInPath(unsigned char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
         std::string_view("/-._~!$&'()*+,;=:@").find(static_cast<char>(c)) != std::string_view::npos;
}

std::string bytesOfEscapedText(std::u16string_view text) {
  std::string bytes;
  for (size_t i = 0; i < text.size(); ++i) {
    if (text[i] == u'%' && isEscape(text, i)) {
      bytes.push_back(static_cast<char>(hexDigitValue(text[i + 1]) * 16 + hexDigitValue(text[i + 2])));
      i += 2;
    } else {
      bytes.push_back(static_cast<char>(text[i]));
    }
  }
  return bytes;
}

}  // namespace

URL URL::withString(const String& string) {
  const std::u16string_view text = string.view();
  for (size_t i = 0; i < text.size(); ++i) {
    if (!mayStandInURL(text[i]) || (text[i] == u'%' && !isEscape(text, i))) return URL();
  }
  return text.empty() ? URL() : URL(string);
}

URL URL::fileURLWithPath(const String& path) {
  const auto utf8 = path.view().starts_with(u'/') ? utf8FromUTF16(path.view()) : std::nullopt;
  if (!utf8) return URL();
  std::u16string escaped(u"file://");
  for (const char c : *utf8) {
    const auto byte = static_cast<unsigned char>(c);
    if (mayStandInPath(byte)) {
      escaped.push_back(byte);
    } else {
      escaped += {u'%', static_cast<unichar>(kHexDigits[byte >> 4]), static_cast<unichar>(kHexDigits[byte & 15])};
    }
  }
  return URL(String(escaped));
}

bool URL::isFileURL() const {
  const std::u16string_view text = _string.view();
  if (text.size() < kFileScheme.size()) return false;
  for (size_t i = 0; i < kFileScheme.size(); ++i) {
    if (text[i] != kFileScheme[i] && (text[i] | 0x20) != kFileScheme[i]) return false;
  }
  return true;
}

String URL::path() const {
  if (!isFileURL()) return String();
  std::u16string_view text = _string.view().substr(kFileScheme.size());
  text = text.substr(0, text.find_first_of(u"?#"));
  if (text.starts_with(u"//")) {
    const size_t slash = text.find(u'/', 2);
    text = slash == std::u16string_view::npos ? std::u16string_view(u"/") : text.substr(slash);
  }
  return String::fromUTF8(bytesOfEscapedText(text));
}

}  // namespace velan
