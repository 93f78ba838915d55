#include "velan/text/encoding/EncodingDetection.h"

#include <algorithm>
#include <charconv>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "velan/platform/files/ExtendedAttributes.h"
#include "velan/text/encoding/CharsetNames.h"
#include "velan/text/encoding/EncodingAttributesInternal.h"
#include "velan/text/encoding/StringConversion.h"

namespace velan {
namespace {

using namespace std::string_view_literals;

// The longer ones first: UTF-16's begins UTF-32's.
constexpr struct {
  std::string_view bytes;
  StringEncoding encoding;
} kMarks[] = {
    {"\xFF\xFE\0\0"sv, StringEncoding::UTF32}, {"\0\0\xFE\xFF"sv, StringEncoding::UTF32},
    {"\xFF\xFE"sv, StringEncoding::UTF16},     {"\xFE\xFF"sv, StringEncoding::UTF16},
    {"\xEF\xBB\xBF"sv, StringEncoding::UTF8},
};

DetectedEncoding byMark(const Data& data) {
  for (const auto& mark : kMarks) {
    if (!data.view().starts_with(mark.bytes)) continue;
    return {mark.encoding, EncodingEvidence::ByteOrderMark, stringWithData(data, mark.encoding)};
  }
  return {};
}

// In `encoding` if the data fit it.
DetectedEncoding byTrial(const Data& data, StringEncoding encoding, EncodingEvidence evidence) {
  String text = stringWithData(data, encoding);
  if (!text) return {};
  return {encoding, evidence, std::move(text)};
}

// "windows-1252;1280": a name and the number of a converter, of which either may be missing or wrong.
StringEncoding encodingOfAttribute(std::string_view value) {
  const size_t separator = std::min(value.find(';'), value.size());
  if (separator < value.size()) {
    std::string_view number = value.substr(separator + 1);
    number.remove_prefix(std::min(number.find_first_not_of(' '), number.size()));
    uint32_t converter = 0;
    const auto [end, error] = std::from_chars(number.data(), number.data() + number.size(), converter);
    const auto encoding = stringEncoding(static_cast<TextEncoding>(converter));
    if (error == std::errc() && charsetName(encoding)) return encoding;
  }
  return charset2NSStringEncoding(value.substr(0, separator));
}

DetectedEncoding byUTF8(const Data& data) { return byTrial(data, StringEncoding::UTF8, EncodingEvidence::ValidUTF8); }

}  // namespace

DetectedEncoding detectedEncodingOfData(const Data& data) {
  DetectedEncoding found = byMark(data);
  return found.evidence == EncodingEvidence::None ? byUTF8(data) : found;
}

DetectedEncoding detectedEncodingOfFile(const String& path, const Data& contents) {
  DetectedEncoding found = byMark(contents);
  if (found.evidence != EncodingEvidence::None) return found;
  if (!hasExtendedAttributes(path)) return byUTF8(contents);
  if (const auto value = extendedAttribute(path, kTextEncodingAttribute)) {
    found = byTrial(contents, encodingOfAttribute(*value), EncodingEvidence::TextEncodingAttribute);
  }
  if (found.text) return found;
  if (const auto value = extendedAttribute(path, kCharsetAttribute)) {
    found = byTrial(contents, charset2NSStringEncoding(*value), EncodingEvidence::CharsetAttribute);
  }
  return found.text ? found : byUTF8(contents);
}

bool hasEncodingAttribute(const String& path) {
  return hasExtendedAttributes(path) &&
         (extendedAttribute(path, kTextEncodingAttribute) || extendedAttribute(path, kCharsetAttribute));
}

}  // namespace velan
