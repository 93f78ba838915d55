#include "velan/url/PercentEscapes.h"

#include <algorithm>
#include <array>
#include <string>
#include <string_view>

#include "velan/base/ASCII.h"
#include "velan/base/utf/UTF.h"
#include "velan/text/encoding/StringConversion.h"

namespace velan {
namespace {

// Membership of the units below U+0080.
using ASCIISet = std::array<bool, 128>;

constexpr ASCIISet setOf(std::string_view members) {
  ASCIISet set{};
  for (const char c : members) set[static_cast<unsigned char>(c)] = true;
  return set;
}

constexpr ASCIISet withAlphanumerics(ASCIISet set, bool isMember) {
  for (unsigned char c = 0; c < 128; ++c) {
    if (isASCIIAlphanumeric(c)) set[c] = isMember;
  }
  return set;
}

constexpr ASCIISet allOf() {
  ASCIISet set{};
  set.fill(true);
  return set;
}

constexpr ASCIISet kStandardDecoded = setOf("\t\n\r $%&'+/:;=@~");
constexpr ASCIISet kStandardEscaped = setOf(" #$%&+/:;=?@");
constexpr ASCIISet kASCIIEscaped = withAlphanumerics(allOf(), false);
constexpr ASCIISet kLegal = withAlphanumerics(setOf("!$&'()*+,-./:;=?@_~"), true);

constexpr bool isIn(const ASCIISet& set, unichar c) { return c < set.size() && set[c]; }

// The byte of the escape at `index`, where there is a `%`; -1 when no two digits follow.
int escapedByte(std::u16string_view text, size_t index) {
  if (text.size() - index < 3) return -1;
  const int high = hexadecimalDigitValue(text[index + 1]);
  const int low = hexadecimalDigitValue(text[index + 2]);
  return high < 0 || low < 0 ? -1 : high * 16 + low;
}

String escaped(const String& string, const ASCIISet& set) {
  if (string.isEmpty()) return string;
  const auto count = std::count_if(string.begin(), string.end(), [&set](unichar c) { return isIn(set, c); });
  return String::filled(string.length() + 2 * count, [&](unichar* units) {
    unichar* end = units;
    for (const unichar c : string.view()) {
      if (isIn(set, c)) {
        *end++ = '%';
        *end++ = static_cast<unichar>(lowerHexadecimalDigit(c >> 4));
        *end++ = static_cast<unichar>(lowerHexadecimalDigit(c));
      } else {
        *end++ = c;
      }
    }
    return end - units;
  });
}

void appendEscapes(std::u16string& result, std::string_view bytes) {
  for (const char c : bytes) {
    const auto byte = static_cast<unsigned char>(c);
    const unichar units[] = {u'%', static_cast<unichar>(upperHexadecimalDigit(byte >> 4)),
                             static_cast<unichar>(upperHexadecimalDigit(byte))};
    result.append(units, 3);
  }
}

// Single units are no files: they carry no byte-order mark.
constexpr StringEncoding withoutMark(StringEncoding encoding) {
  if (encoding == StringEncoding::UTF16) return StringEncoding::UTF16LittleEndian;
  return encoding == StringEncoding::UTF32 ? StringEncoding::UTF32LittleEndian : encoding;
}

// Units in order, for looking them up.
std::u16string sortedUnits(const String& string) {
  std::u16string units(string.view());
  std::sort(units.begin(), units.end());
  return units;
}

bool isIn(const std::u16string& sorted, unichar c) { return std::binary_search(sorted.begin(), sorted.end(), c); }

// Appends the escapes of a unit or a pair; false when the encoding lacks it.
bool appendEncoded(std::u16string& result, std::u16string_view character, StringEncoding encoding) {
  if (encoding == StringEncoding::UTF8) {
    char bytes[2 * kMaxUTF8BytesPerUnit];
    const Transcoded transcoded = convertUTF16ToUTF8(character, bytes);
    if (transcoded.consumed == character.size()) appendEscapes(result, {bytes, transcoded.written});
    return transcoded.consumed == character.size();
  }
  const Data bytes = dataUsingEncoding(character, withoutMark(encoding));
  if (bytes) appendEscapes(result, bytes.view());
  return !bytes.isAbsent();
}

}  // namespace

size_t convertPercentEscapesOfURL(unichar* characters, size_t length, bool standard) {
  if (!characters) return 0;
  const std::u16string_view text(characters, length);
  size_t from = text.find(u'%');
  if (from == text.npos) return length;
  const bool keepsQuestionMark = standard && text.find(u'?') != text.npos;
  size_t to = from;
  while (from < length) {
    const unichar c = characters[from];
    const int byte = c == '%' ? escapedByte(text, from) : -1;
    const auto decoded = static_cast<unichar>(byte);
    const bool isDecoded = byte >= 0 && byte < 128 &&
                           (!standard || isIn(kStandardDecoded, decoded) || (decoded == '?' && !keepsQuestionMark));
    characters[to++] = isDecoded ? decoded : c;
    from += isDecoded ? 3 : 1;
  }
  return to;
}

String _stringByReplacingPercentEscapesOfURL(const String& string, bool standard) {
  if (string.length() < 3 || string.view().find(u'%') == std::u16string_view::npos) return string;
  const auto length = static_cast<size_t>(string.length());
  const String result = String::filled(string.length(), [&](unichar* units) {
    std::copy(string.begin(), string.end(), units);
    return static_cast<int64_t>(convertPercentEscapesOfURL(units, length, standard));
  });
  return result.length() == string.length() ? string : result;
}

String stringByAddingStandardPercentEscapesToURL(const String& string) { return escaped(string, kStandardEscaped); }

String stringByAddingASCIIPercentEscapesToURL(const String& string) { return escaped(string, kASCIIEscaped); }

String stringByReplacingPercentEscapesOfURL(const String& string, StringEncoding encoding) {
  const std::u16string_view text = string.view();
  size_t next = text.find(u'%');
  if (next == text.npos) return string;
  std::u16string result;
  std::string bytes;
  size_t from = 0;
  for (; next != text.npos; next = text.find(u'%', from)) {
    result += text.substr(from, next - from);
    bytes.clear();
    for (from = next; from < text.size() && text[from] == '%'; from += 3) {
      const int byte = escapedByte(text, from);
      if (byte < 0) return String();
      if (byte < 128 && bytes.empty() && encoding == StringEncoding::UTF8) {
        result += static_cast<unichar>(byte);  // most are
      } else {
        bytes += static_cast<char>(byte);
      }
    }
    if (bytes.empty()) continue;
    const String decoded = encoding == StringEncoding::UTF8 ? String::fromUTF8(bytes)
                                                            : stringWithBytes(bytes.data(), bytes.size(), encoding);
    if (!decoded) return String();
    result += decoded.view();
  }
  return result += text.substr(from);
}

String stringByAddingPercentEscapesToURL(const String& string, StringEncoding encoding, const String& leaveUnescaped,
                                         const String& toBeEscaped) {
  if (string.isEmpty()) return string;
  const std::u16string_view text = string.view();
  const std::u16string left = sortedUnits(leaveUnescaped);
  const std::u16string forced = sortedUnits(toBeEscaped);
  const auto stays = [&](unichar c) { return isIn(kLegal, c) ? !isIn(forced, c) : isIn(left, c); };
  const bool takesPairs = encoding == StringEncoding::UTF8;
  std::u16string result;
  for (size_t i = 0; i < text.size();) {
    const size_t start = i;
    while (i < text.size() && stays(text[i])) ++i;
    if (start == 0 && i == text.size()) return string;
    result += text.substr(start, i - start);
    if (i == text.size()) break;
    const bool isPair = takesPairs && isHighSurrogate(text[i]) && i + 1 < text.size() && isLowSurrogate(text[i + 1]);
    const size_t count = isPair ? 2 : 1;
    if (!appendEncoded(result, text.substr(i, count), encoding)) return String();
    i += count;
  }
  return result;
}

}  // namespace velan
