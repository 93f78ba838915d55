#include "velan/base/URL.h"

#include <string>

#include "velan/base/ASCII.h"
#include "velan/base/utf/UTF.h"

namespace velan {
namespace {

constexpr std::u16string_view kFileScheme = u"file:";

bool isEscape(std::u16string_view text, size_t at) {
  return text.size() - at > 2 && hexadecimalDigitValue(text[at + 1]) >= 0 && hexadecimalDigitValue(text[at + 2]) >= 0;
}

bool mayStandInURL(unichar c) {
  return c > 0x20 && c < 0x7F && std::u16string_view(u"\"<>\\^`{|}").find(c) == std::u16string_view::npos;
}

// What a path segment may hold as it is (RFC 3986, pchar), and the slashes between segments.
bool mayStandInPath(unsigned char c) {
  return isASCIIAlphanumeric(c) ||
         std::string_view("/-._~!$&'()*+,;=:@").find(static_cast<char>(c)) != std::string_view::npos;
}

std::string bytesOfEscapedText(std::u16string_view text) {
  std::string bytes;
  for (size_t i = 0; i < text.size(); ++i) {
    if (text[i] == u'%' && isEscape(text, i)) {
      bytes.push_back(static_cast<char>(hexadecimalDigitValue(text[i + 1]) * 16 + hexadecimalDigitValue(text[i + 2])));
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
      for (const char digit : {'%', upperHexadecimalDigit(byte >> 4), upperHexadecimalDigit(byte)}) {
        escaped.push_back(static_cast<unichar>(digit));
      }
    }
  }
  return URL(String(escaped));
}

bool URL::isFileURL() const {
  return equalsIgnoringASCIICase(_string.view().substr(0, kFileScheme.size()), kFileScheme);
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
