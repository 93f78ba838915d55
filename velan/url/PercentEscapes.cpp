#include "velan/url/PercentEscapes.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <string>
#include <string_view>

#include "velan/base/ASCII.h"
#include "velan/base/utf/UTF.h"
#include "velan/base/utf/UTFInternal.h"
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

constexpr std::array<int8_t, 256> makeDigitValues() {
  std::array<int8_t, 256> values{};
  for (unichar c = 0; c < 256; ++c) values[c] = static_cast<int8_t>(hexadecimalDigitValue(c));
  return values;
}
constexpr std::array<int8_t, 256> kDigitValues = makeDigitValues();

// The byte of the escape at `index`, where there is a `%`; -1 when no two digits follow.
int escapedByte(std::u16string_view text, size_t index) {
  if (text.size() - index < 3) return -1;
  const unichar high = text[index + 1];
  const unichar low = text[index + 2];
  if ((high | low) >= 256 || (kDigitValues[high] | kDigitValues[low]) < 0) return -1;
  return kDigitValues[high] * 16 + kDigitValues[low];
}

// Four units for each byte, so that all of a step is written at once and no branch asks which kind it is.
struct Written {
  unichar units[4];
};

using Escapes = std::array<Written, 256>;
constexpr Escapes escapesWith(char (*digit)(unsigned)) {
  Escapes escapes{};
  for (unsigned byte = 0; byte < 256; ++byte) {
    escapes[byte] = {u'%', static_cast<unichar>(digit(byte >> 4)), static_cast<unichar>(digit(byte)), 0};
  }
  return escapes;
}
constexpr Escapes kUpperEscapes = escapesWith(upperHexadecimalDigit);
constexpr Escapes kLowerEscapes = escapesWith(lowerHexadecimalDigit);
constexpr int64_t kSlack = 3;  // units behind the last one that counts

// What is written for the units below U+0080, and how many of the four units count.
struct ASCIIForms {
  std::array<Written, 128> written;
  std::array<uint8_t, 128> lengths;

  constexpr ASCIIForms(const ASCIISet& set, bool escapesMembers, const Escapes& escapes) : written(), lengths() {
    for (unichar c = 0; c < 128; ++c) put(c, set[c] == escapesMembers, escapes);
  }
  constexpr void put(unichar c, bool isEscaped, const Escapes& escapes) {
    written[c] = isEscaped ? escapes[c] : Written{c, 0, 0, 0};
    lengths[c] = isEscaped ? 3 : 1;
  }
};

constexpr ASCIIForms kStandardForms(kStandardEscaped, true, kLowerEscapes);
constexpr ASCIIForms kASCIIForms(kASCIIEscaped, true, kLowerEscapes);
constexpr ASCIIForms kUTF8Forms(kLegal, false, kUpperEscapes);

void write(unichar* units, const Written& written) { std::memcpy(units, written.units, sizeof written.units); }

String escaped(const String& string, const ASCIIForms& forms) {
  if (string.isEmpty()) return string;
  int64_t length = 0;
  for (const unichar c : string.view()) length += c < 128 ? forms.lengths[c] : 1;
  return String::filled(length + kSlack, [&](unichar* units) {
    for (const unichar c : string.view()) {
      if (c < 128) {
        write(units, forms.written[c]);
        units += forms.lengths[c];
      } else {
        *units++ = c;
      }
    }
    return length;
  });
}

void appendEscapes(std::u16string& result, std::string_view bytes) {
  for (const char c : bytes) result.append(kUpperEscapes[static_cast<unsigned char>(c)].units, 3);
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

// The escapes of all units that are not kept, in UTF-8; absent for a lone surrogate. `kept` are units above U+007F.
String escapedAsUTF8(const String& string, const ASCIIForms& forms, const std::u16string& kept) {
  const std::u16string_view text = string.view();
  const auto stays = [&kept](unichar c) { return !kept.empty() && isIn(kept, c); };
  int64_t length = 0;
  for (size_t i = 0; i < text.size(); ++i) {
    const unichar c = text[i];
    if (c < 128) {
      length += forms.lengths[c];
    } else if (stays(c)) {
      length += 1;
    } else if (isSurrogate(c)) {
      if (isLowSurrogate(c) || i + 1 == text.size() || !isLowSurrogate(text[i + 1])) return String();
      length += 12;
      ++i;
    } else {
      length += c < 0x800 ? 6 : 9;
    }
  }
  return String::filled(length + kSlack, [&](unichar* units) {
    for (size_t i = 0; i < text.size(); ++i) {
      const unichar c = text[i];
      if (c < 128) {
        write(units, forms.written[c]);
        units += forms.lengths[c];
      } else if (stays(c)) {
        *units++ = c;
      } else {
        char bytes[4];
        size_t count = 4;
        if (isSurrogate(c)) {
          putFourBytes(c, text[++i], bytes);
        } else if (c < 0x800) {
          count = 2;
          putTwoBytes(c, bytes);
        } else {
          count = 3;
          putThreeBytes(c, bytes);
        }
        for (size_t k = 0; k < count; ++k, units += 3)
          write(units, kUpperEscapes[static_cast<unsigned char>(bytes[k])]);
      }
    }
    return length;
  });
}

// Appends the escapes of a unit; false when the encoding lacks it.
bool appendEncoded(std::u16string& result, std::u16string_view character, StringEncoding encoding) {
  const Data bytes = dataUsingEncoding(character, withoutMark(encoding));
  if (bytes) appendEscapes(result, bytes.view());
  return !bytes.isAbsent();
}

String decodedAsUTF8(const String& string, size_t from) {
  const std::u16string_view text = string.view();
  return String::filled(string.length(), [&](unichar* units) -> int64_t {
    unichar* end = std::copy_n(text.data(), from, units);
    while (from < text.size()) {
      if (text[from] != '%') {
        *end++ = text[from++];
        continue;
      }
      const int byte = escapedByte(text, from);
      if (byte < 0) return -1;
      if (byte < 128) {
        *end++ = static_cast<unichar>(byte);
        from += 3;
        continue;
      }
      // What follows a byte above ASCII is mostly of the same kind.
      char bytes[256];
      size_t count = 0;
      for (; count < sizeof bytes && from < text.size() && text[from] == '%'; from += 3) {
        const int next = escapedByte(text, from);
        if (next < 0) return -1;
        bytes[count++] = static_cast<char>(next);
      }
      const Transcoded done = convertUTF8ToUTF16({bytes, count}, end);
      end += done.written;
      const size_t left = count - done.consumed;
      if (left > 0 && (count < sizeof bytes || left > 3)) return -1;
      from -= 3 * left;  // the beginning of a character that the piece has cut
    }
    return end - units;
  });
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
    if (c != '%') {
      characters[to++] = c;
      ++from;
      continue;
    }
    const int byte = escapedByte(text, from);
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

String stringByAddingStandardPercentEscapesToURL(const String& string) { return escaped(string, kStandardForms); }

String stringByAddingASCIIPercentEscapesToURL(const String& string) { return escaped(string, kASCIIForms); }

String stringByReplacingPercentEscapesOfURL(const String& string, StringEncoding encoding) {
  const std::u16string_view text = string.view();
  size_t next = text.find(u'%');
  if (next == text.npos) return string;
  if (encoding == StringEncoding::UTF8) return decodedAsUTF8(string, next);
  std::u16string result;
  std::string bytes;
  size_t from = 0;
  for (; next != text.npos; next = text.find(u'%', from)) {
    result += text.substr(from, next - from);
    bytes.clear();
    for (from = next; from < text.size() && text[from] == '%'; from += 3) {
      const int byte = escapedByte(text, from);
      if (byte < 0) return String();
      bytes += static_cast<char>(byte);
    }
    const String decoded = stringWithBytes(bytes.data(), bytes.size(), encoding);
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
  if (std::all_of(text.begin(), text.end(), stays)) return string;
  if (encoding == StringEncoding::UTF8) {
    ASCIIForms forms = kUTF8Forms;
    for (const unichar c : left + forced) {
      if (c < 128) forms.put(c, !stays(c), kUpperEscapes);
    }
    return escapedAsUTF8(string, forms,
                         left.substr(static_cast<size_t>(std::ranges::lower_bound(left, 128) - left.begin())));
  }
  std::u16string result;
  for (size_t i = 0; i < text.size(); ++i) {
    if (stays(text[i])) {
      result += text[i];
    } else if (!appendEncoded(result, text.substr(i, 1), encoding)) {
      return String();
    }
  }
  return result;
}

}  // namespace velan
