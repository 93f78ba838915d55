#include "velan/markup/MarkupDecoding.h"

#include <algorithm>
#include <optional>

#include "velan/base/propertylist/PropertyList.h"
#include "velan/markup/DeclaredEncoding.h"
#include "velan/markup/FileTypes.h"
#include "velan/platform/files/FileContents.h"
#include "velan/text/encoding/CharsetNames.h"
#include "velan/text/encoding/Decoding.h"
#include "velan/text/encoding/StringConversion.h"

namespace velan {
namespace {

constexpr TextEncoding kShiftJISRelatives[] = {
    TextEncoding::ShiftJIS,    TextEncoding::ShiftJISX0213, TextEncoding::MacJapanese, TextEncoding::DOSJapanese,
    TextEncoding::JISX0201_76, TextEncoding::JISX0208_83,   TextEncoding::JISX0208_90, TextEncoding::JISX0212_90,
    TextEncoding::JISC6226_78, TextEncoding::EUCJP,         TextEncoding::ISO2022JP,   TextEncoding::ISO2022JP2,
    TextEncoding::ISO2022JP1,  TextEncoding::ISO2022JP3};
constexpr TextEncoding kSimplifiedChineseRelatives[] = {
    TextEncoding::EUCTW,   TextEncoding::GB2312_80, TextEncoding::HZGB2312, TextEncoding::GBK,
    TextEncoding::GB18030, TextEncoding::Big5HKSCS, TextEncoding::Big5E};

bool hasConverter(StringEncoding encoding) { return !asksForDetection(encoding) && charsetName(encoding) != nullptr; }

// UTF-16 or UTF-32, whose bytes do not hold ASCII as it is.
bool isWide(StringEncoding encoding) {
  switch (textEncoding(encoding)) {
    case TextEncoding::UTF16:
    case TextEncoding::UTF16BigEndian:
    case TextEncoding::UTF16LittleEndian:
    case TextEncoding::UTF32:
    case TextEncoding::UTF32BigEndian:
    case TextEncoding::UTF32LittleEndian:
      return true;
    default:
      return false;
  }
}

std::optional<StringEncoding> markedEncoding(std::string_view bytes) {
  if (bytes.size() < 3) return std::nullopt;
  if (bytes.starts_with("\xFE\xFF")) return StringEncoding::UTF16BigEndian;
  if (bytes.starts_with("\xFF\xFE")) return StringEncoding::UTF16LittleEndian;
  if (bytes.starts_with("\xEF\xBB\xBF")) return StringEncoding::UTF8;
  return std::nullopt;
}

int64_t countReplacements(const String& text) { return std::ranges::count(text.view(), u'\uFFFD'); }

// Whether all of the bytes stand for characters. The Chinese converters take a byte that they do not know for a control
// character of ISO 6429, which no page holds.
bool fitsEntirely(const DecodedText& decoded) {
  const auto isControl = [](unichar c) { return c >= 0x80 && c < 0xA0; };
  return decoded.text && decoded.unassigned == 0 && std::ranges::none_of(decoded.text.view(), isControl);
}

class PageDecoder {
 public:
  PageDecoder(const Data& data, const String& encodingName, StringEncoding defaultEncoding)
      : _data(data),
        _default(hasConverter(defaultEncoding)            ? defaultEncoding
                 : hasConverter(velan::defaultEncoding()) ? velan::defaultEncoding()
                                                          : StringEncoding::UTF8),
        _choice(_default) {
    const StringEncoding named = NSEncodingFromName(encodingName);
    if (hasConverter(named)) {
      choose(named, MarkupEvidence::Name);
    } else if (const auto marked = markedEncoding(data.view())) {
      choose(*marked, MarkupEvidence::ByteOrderMark);
    }
  }

  DecodedMarkup decode() {
    const String first = decodeChoice();
    _declaredCharset = markupCharset(first);
    _declared = NSEncodingFromName(_declaredCharset);
    const bool settled = _evidence == MarkupEvidence::ByteOrderMark || _declared == StringEncoding::Invalid ||
                         _declared == _choice || _declared == StringEncoding::ASCII || isWide(_declared) ||
                         isWide(_choice);
    return settled ? result(first, _choice, _evidence) : decodeDeclared(first);
  }

 private:
  void choose(StringEncoding encoding, MarkupEvidence evidence) {
    _choice = encoding;
    _evidence = evidence;
  }

  DecodedMarkup result(const String& text, StringEncoding encoding, MarkupEvidence evidence) const {
    return {text, encoding, evidence, _declaredCharset};
  }

  DecodedText decodedAs(StringEncoding encoding, MalformedText malformed) const {
    DecodedText decoded = decodedText(_data, encoding, malformed);
    if (decoded.text.view().starts_with(u'\uFEFF')) decoded.text = decoded.text.substringFromIndex(1);
    return decoded;
  }

  String decodeChoice() const {
    const String strict = decodedAs(_choice, MalformedText::Refuse).text;
    return strict ? strict : decodedAs(_choice, MalformedText::Replace).text;
  }

  bool isNamed() const { return _evidence == MarkupEvidence::Name; }

  // The first text goes on standing against the declared one unless the declaration is so telling that it does not.
  DecodedMarkup decodeDeclared(const String& first) const {
    const bool namedUTF8 = isNamed() && _choice == StringEncoding::UTF8;
    const bool isBig5 = textEncoding(_declared) == TextEncoding::Big5;
    const bool isCyrillic = _declared == StringEncoding::WindowsCyrillic;
    const bool dropsFirst = isBig5 || (isCyrillic && !namedUTF8);
    const DecodedText strict = decodedAs(_declared, MalformedText::Refuse);
    if (strict.text && (textEncoding(_declared) != TextEncoding::EUCCN || fitsEntirely(strict))) {
      return better(dropsFirst ? String() : first, strict.text);
    }
    const std::span<const TextEncoding> relatives = relativesOfDeclared();
    for (const TextEncoding relative : relatives) {
      const StringEncoding encoding = stringEncoding(relative);
      const DecodedText decoded = decodedAs(encoding, MalformedText::Refuse);
      if (fitsEntirely(decoded)) return result(decoded.text, encoding, MarkupEvidence::Fallback);
    }
    const DecodedText lenient = decodedAs(_declared, MalformedText::Replace);
    if (lenient.text && lenient.malformed < lenient.wellFormedNonASCII()) {
      return better(dropsFirst || !relatives.empty() ? String() : first, lenient.text);
    }
    if (!dropsFirst && relatives.empty()) return result(first, _choice, _evidence);
    return decodeFallback(isBig5       ? stringEncoding(TextEncoding::Big5HKSCS)
                          : isCyrillic ? StringEncoding::WindowsLatin2
                                       : _choice);
  }

  std::span<const TextEncoding> relativesOfDeclared() const {
    const TextEncoding encoding = textEncoding(_declared);
    if (encoding == TextEncoding::ShiftJIS || encoding == TextEncoding::DOSJapanese) return kShiftJISRelatives;
    if (encoding == TextEncoding::EUCCN) return kSimplifiedChineseRelatives;
    return {};
  }

  // The declared text, unless `first`, where it is present, is more likely.
  DecodedMarkup better(const String& first, const String& declared) const {
    if (first && isNamed()) {
      const int64_t inFirst = countReplacements(first);
      const int64_t inDeclared = countReplacements(declared);
      const bool readsUTF8ByBytes =
          _choice == StringEncoding::UTF8 && inFirst == 0 && inDeclared == 0 &&
          (_declared == StringEncoding::WindowsCyrillic || _declared == StringEncoding::Latin1) &&
          declared.length() > first.length();
      if (readsUTF8ByBytes || inDeclared > inFirst) return result(first, _choice, _evidence);
    }
    return result(declared, _declared, MarkupEvidence::Declaration);
  }

  DecodedMarkup decodeFallback(StringEncoding fallback) const {
    for (const StringEncoding encoding : {fallback, _default}) {
      if (encoding == _declared) continue;
      const String text = decodedAs(encoding, MalformedText::Refuse).text;
      if (text) return result(text, encoding, MarkupEvidence::Fallback);
    }
    return result(String(), StringEncoding::Invalid, MarkupEvidence::Fallback);
  }

  const Data& _data;
  const StringEncoding _default;
  StringEncoding _choice;
  MarkupEvidence _evidence = MarkupEvidence::Default;
  String _declaredCharset;
  StringEncoding _declared = StringEncoding::Invalid;
};

}  // namespace

DecodedMarkup decodedMarkup(const Data& data, const String& encodingName, StringEncoding defaultEncoding) {
  if (data.length() == 0) return {String(u""), defaultEncoding, MarkupEvidence::Default, String(u"")};
  return PageDecoder(data, encodingName, defaultEncoding).decode();
}

String stringWithMarkupData(const Data& data, const String& encodingName, StringEncoding defaultEncoding, const URL&) {
  return decodedMarkup(data, encodingName, defaultEncoding).text;
}

String stringWithMarkupData(const Data& data, const String& contentType, StringEncoding defaultEncoding) {
  return decodedMarkup(data, headerCharset(contentType), defaultEncoding).text;
}

DecodedMarkup decodedMarkupOfFile(const String& path, const Data& contents, StringEncoding defaultEncoding) {
  if (isPropertyListFile(path)) {
    const Value list = readPropertyList(contents);
    const Data xml = list.isAbsent() ? Data() : writePropertyList(list, PropertyListFormat::XML);
    if (xml) {
      return {stringWithData(xml, StringEncoding::UTF8), StringEncoding::UTF8, MarkupEvidence::PropertyList,
              String(u"UTF-8")};
    }
  }
  DecodedMarkup decoded = decodedMarkup(contents, String(), defaultEncoding);
  if (!decoded.text) {
    decoded.text = stringWithData(contents, StringEncoding::MacRoman);
    decoded.encoding = StringEncoding::MacRoman;
  }
  return decoded;
}

String stringWithMarkupContentsOfFile(const String& path, StringEncoding defaultEncoding,
                                      StringEncoding* usedEncoding) {
  if (usedEncoding) *usedEncoding = StringEncoding::Invalid;
  const Data contents = readFileContents(path, FileReading::Uncached);
  if (!contents) return String();
  const DecodedMarkup decoded = decodedMarkupOfFile(path, contents, defaultEncoding);
  if (usedEncoding) *usedEncoding = decoded.encoding;
  return decoded.text;
}

}  // namespace velan
