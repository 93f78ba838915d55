#include "velan/text/encoding/CharsetNames.h"

#include <algorithm>
#include <cstring>
#include <map>
#include <string>

#include "velan/base/ASCII.h"
#include "velan/text/encoding/Decoding.h"
#include "velan/text/encoding/EncodingTableInternal.h"

namespace velan {
namespace {

struct Alias {
  std::string_view name;  // letters and digits only, in lower case
  TextEncoding encoding;
};

// Names seen in documents that ICU does not know, or knows as something else than those who wrote them meant.
constexpr Alias kAliases[] = {
    {"ansi", TextEncoding::WindowsLatin1},
    {"ascii7bit", TextEncoding::ASCII},
    {"big5eten", TextEncoding::Big5},
    {"chinese", TextEncoding::EUCCN},
    {"cnbig5", TextEncoding::Big5},
    {"cngb", TextEncoding::EUCCN},
    {"cp65001", TextEncoding::UTF8},
    {"csbig5", TextEncoding::Big5},
    {"cseuckr", TextEncoding::EUCKR},
    {"cskoi8r", TextEncoding::KOI8R},
    {"csksc56011987", TextEncoding::DOSKorean},
    {"csshiftjis", TextEncoding::ShiftJIS},
    {"cswindows31j", TextEncoding::DOSJapanese},
    {"cp895", TextEncoding::Kamenicky},
    {"dos874", TextEncoding::DOSThai},
    {"euccn", TextEncoding::EUCCN},
    {"eucgb2312", TextEncoding::EUCCN},
    {"gb231280", TextEncoding::EUCCN},
    {"gb23121980", TextEncoding::EUCCN},
    {"gbk95", TextEncoding::GBK},
    {"iso6", TextEncoding::ISOLatinArabic},
    {"iso88591ascii", TextEncoding::ISOLatin1},
    {"iso885916", TextEncoding::ISOLatin10},
    {"iso88596e", TextEncoding::ISOLatinArabic},
    {"iso88596i", TextEncoding::ISOLatinArabic},
    {"iso88598e", TextEncoding::ISOLatinHebrew},
    {"iso88598i", TextEncoding::ISOLatinHebrew},
    {"isoir139", TextEncoding::ISOLatin2},
    {"isoir226", TextEncoding::ISOLatin10},
    {"keybcs2", TextEncoding::Kamenicky},
    {"koi", TextEncoding::KOI8R},
    {"koi8cs", TextEncoding::KOI8CS2},
    {"koi8ru", TextEncoding::KOI8U},
    {"korean", TextEncoding::DOSKorean},
    {"ksc5601", TextEncoding::DOSKorean},
    {"ksc56011987", TextEncoding::DOSKorean},
    {"ksc56011989", TextEncoding::DOSKorean},
    {"ksc56011992", TextEncoding::KSC5601_92_Johab},
    {"latin10", TextEncoding::ISOLatin10},
    {"logical", TextEncoding::ISOLatinHebrew},
    {"mac", TextEncoding::MacRoman},
    {"macce", TextEncoding::MacCentralEurRoman},
    {"maccentraleurope", TextEncoding::MacCentralEurRoman},
    {"macjapanese", TextEncoding::MacJapanese},
    {"macroman", TextEncoding::MacRoman},
    {"ms932", TextEncoding::DOSJapanese},
    {"mskanji", TextEncoding::ShiftJIS},
    {"next", TextEncoding::NEXTSTEP},
    {"shiftjis", TextEncoding::ShiftJIS},
    {"shiftjisx0213", TextEncoding::ShiftJISX0213},
    {"sjis", TextEncoding::ShiftJIS},
    {"symbol", TextEncoding::MacSymbol},
    {"tis620", TextEncoding::DOSThai},
    {"unicode", TextEncoding::UTF16},
    {"unicode11utf8", TextEncoding::UTF8},
    {"unicode20utf8", TextEncoding::UTF8},
    {"userdefined", TextEncoding::WindowsLatin1},
    {"utf", TextEncoding::UTF8},
    {"visual", TextEncoding::ISOLatinHebrew},
    {"zapfdingbats", TextEncoding::MacDingbats},
};

using Names = std::map<std::string, TextEncoding, std::less<>>;

// Only letters and digits, in lower case. Names are short: a longer one than any is no name.
std::string key(std::string_view name) {
  constexpr size_t kLongest = 64;
  std::string result;
  for (const char c : name.substr(0, 2 * kLongest)) {
    if (isASCIIAlphanumeric(c)) result.push_back(toASCIILower(c));
    if (static_cast<unsigned char>(c) >= 0x80 || result.size() > kLongest) return {};
  }
  return result;
}

struct Registry {
  Names own;        // by key: the table's names and the aliases
  Names canonical;  // by ICU's first name
};

const Registry& registry() {
  static const Registry names = [] {
    Registry result;
    for (const EncodingEntry& entry : encodingEntries()) {
      result.own.emplace(key(entry.name), entry.encoding);
      if (const char* name = icuCanonicalName(entry.name)) result.canonical.emplace(name, entry.encoding);
    }
    for (const Alias& alias : kAliases) result.own.emplace(alias.name, alias.encoding);
    return result;
  }();
  return names;
}

TextEncoding found(const Names& names, std::string_view name) {
  const auto entry = names.find(name);
  return entry == names.end() ? TextEncoding::Invalid : entry->second;
}

// "win1251", "cp1251", "ms1251" as ICU would name it.
std::string codePageName(std::string_view name) {
  const size_t digits = name.find_first_of("0123456789");
  const bool isNumber = digits != std::string_view::npos && name.size() - digits <= 5 &&
                        std::ranges::all_of(name.substr(digits), [](char c) { return isASCIIDigit(c); });
  if (!isNumber) return {};
  const std::string_view prefix = name.substr(0, digits);
  const std::string_view number = name.substr(digits);
  if (prefix != "win" && prefix != "cp" && prefix != "ms" && prefix != "windows" && prefix != "ansi") return {};
  return std::string(number.size() == 4 || number == "874" ? "windows-" : "ibm-").append(number);
}

TextEncoding knownToICU(std::string_view name) {
  for (const std::string& alias : {std::string(name), codePageName(name)}) {
    const char* canonical = alias.empty() ? nullptr : icuCanonicalName(alias.c_str());
    const TextEncoding encoding = canonical ? found(registry().canonical, canonical) : TextEncoding::Invalid;
    if (encoding != TextEncoding::Invalid) return encoding;
  }
  return TextEncoding::Invalid;
}

// Without the mark of a private name, which some write twice.
std::string_view withoutX(std::string_view name) {
  for (int i = 0; i < 2 && name.starts_with('x'); ++i) name.remove_prefix(1);
  return name;
}

String decodedPage(const Data& data, TextEncoding encoding) {
  return decodedText(data, stringEncoding(encoding), MalformedText::Replace).text;
}

}  // namespace

TextEncoding charset2CFStringEncoding(std::string_view charset) {
  const std::string name = key(charset);
  const std::string_view common = withoutX(name);
  for (const std::string_view candidate : {std::string_view(name), common}) {
    const TextEncoding encoding = found(registry().own, candidate);
    if (encoding != TextEncoding::Invalid) return encoding;
  }
  const TextEncoding encoding = knownToICU(name);
  return encoding == TextEncoding::Invalid && !common.empty() ? knownToICU(common) : encoding;
}

StringEncoding charset2NSStringEncoding(std::string_view charset) {
  return stringEncoding(charset2CFStringEncoding(charset));
}

StringEncoding NSEncodingFromName(const String& name) { return charset2NSStringEncoding(name.toUTF8()); }

const char* charsetName(StringEncoding encoding) {
  const EncodingEntry* entry = asksForDetection(encoding) ? nullptr : encodingEntry(textEncoding(encoding));
  return entry ? entry->name : nullptr;
}

String stringWithKoi8cs2Data(const Data& data) { return decodedPage(data, TextEncoding::KOI8CS2); }

String stringWithKamenickyData(const Data& data) { return decodedPage(data, TextEncoding::Kamenicky); }

}  // namespace velan
