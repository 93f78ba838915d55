#include "tools/search/TextDecoding.h"

#include <string_view>
#include <utility>

#include "velan/base/ByteOrder.h"
#include "velan/base/UTF.h"

namespace velan::tool {
namespace {

constexpr unichar kReplacement = 0xFFFD;

struct ByteOrderMark {
  std::string_view bytes;
  TextEncoding encoding;
};

constexpr ByteOrderMark kMarks[] = {
    {"\xEF\xBB\xBF", TextEncoding::UTF8},
    {"\xFF\xFE", TextEncoding::UTF16LittleEndian},
    {"\xFE\xFF", TextEncoding::UTF16BigEndian},
};

ByteOrderMark markOf(std::string_view bytes) {
  for (const ByteOrderMark& mark : kMarks) {
    if (bytes.starts_with(mark.bytes)) return mark;
  }
  return {"", TextEncoding::UTF8};
}

void replaceLoneSurrogates(unichar* units, size_t length) {
  for (size_t i = 0; i < length; ++i) {
    if (!isSurrogate(units[i])) continue;
    if (isHighSurrogate(units[i]) && i + 1 < length && isLowSurrogate(units[i + 1])) {
      ++i;
    } else {
      units[i] = kReplacement;
    }
  }
}

// A last byte without its partner becomes U+FFFD.
String textOfUTF16(std::string_view bytes, bool bigEndian) {
  const size_t pairs = bytes.size() / 2;
  const size_t length = pairs + bytes.size() % 2;
  return String::filled(static_cast<int64_t>(length), [&](unichar* units) {
    for (size_t i = 0; i < pairs; ++i) {
      const char* unit = &bytes[2 * i];
      units[i] = bigEndian ? loadBigEndian<uint16_t>(unit) : loadLittleEndian<uint16_t>(unit);
    }
    if (length > pairs) units[pairs] = kReplacement;
    replaceLoneSurrogates(units, length);
    return static_cast<int64_t>(length);
  });
}

}  // namespace

std::optional<Document> decodeDocument(std::string bytes, std::string& why) {
  const ByteOrderMark mark = markOf(bytes);
  const std::string_view encoded = std::string_view(bytes).substr(mark.bytes.size());
  const String text = mark.encoding == TextEncoding::UTF8
                          ? String::fromUTF8Lossy(encoded)
                          : textOfUTF16(encoded, mark.encoding == TextEncoding::UTF16BigEndian);
  if (text.isAbsent()) {
    why = "there is not enough memory for its text";
    return std::nullopt;
  }
  if (text.view().find(u'\0') != std::u16string_view::npos) {
    why = "binary file, not searched";
    return std::nullopt;
  }
  return Document{std::move(bytes), mark.encoding, mark.bytes.size(), text};
}

}  // namespace velan::tool
