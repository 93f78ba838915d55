#include "velan/text/editing/Replacement.h"

#include <algorithm>

#include "velan/text/ConversionTables.h"
#include "velan/text/editing/RebuildingInternal.h"
#include "velan/text/inspection/OccurrencesInternal.h"
#include "velan/text/inspection/SubstringSearch.h"

namespace velan {
namespace {

// Hands the text with the replacements to `append`, piece by piece. A piece lies where it did or is `replacement`, and
// nothing before its end is read again: the pieces may be put where the text stands, unless they need more room.
template <typename Append>
void appendReplaced(std::u16string_view text, std::u16string_view substring, std::u16string_view replacement,
                    bool caseSensitive, Append append) {
  append(forEachOccurrence(text, substring, caseSensitive, [&](std::u16string_view before) {
    append(before);
    append(replacement);
  }));
}

// To `target`, which has room for the length of `text` and may be where it stands. `replacement` is not longer than
// `substring`. Returns the new length.
int64_t copyReplaced(std::u16string_view text, std::u16string_view substring, std::u16string_view replacement,
                     bool caseSensitive, unichar* target) {
  unichar* end = target;
  appendReplaced(text, substring, replacement, caseSensitive, [&end](std::u16string_view part) {
    if (part.data() != end) std::char_traits<unichar>::move(end, part.data(), part.size());
    end += part.size();
  });
  return end - target;
}

void appendArgument(MutableString& text, const Value& argument) {
  switch (argument.kind()) {
    case ValueKind::Absent:
      break;
    case ValueKind::String:
      text.appendString(argument.string());
      break;
    case ValueKind::URL:
      text.appendString(argument.url().absoluteString());
      break;
    default:
      text.appendString(String::fromUTF8(describe(argument)));
  }
}

void appendFormat(MutableString& text, std::u16string_view format, const ValueArray& arguments) {
  size_t next = 0;
  for (size_t percent; (percent = format.find(u'%')) != format.npos;) {
    const unichar directive = percent + 1 < format.size() ? format[percent + 1] : u'\0';
    const bool isArgument = directive == u'@';
    text.appendString(format.substr(0, isArgument ? percent : percent + 1));
    format.remove_prefix(percent + (isArgument || directive == u'%' ? 2 : 1));
    if (isArgument && next < arguments.size()) appendArgument(text, arguments[next++]);
  }
  text.appendString(format);
}

}  // namespace

void replaceCharacter(MutableString& text, unichar c, unichar replacement, bool caseSensitive) {
  unichar* units = text.mutableCharacters();
  unichar* end = units + text.length();
  if (caseSensitive) {
    std::replace(units, end, c, replacement);
  } else {
    const unichar* upper = initUpperCharsTable();
    std::replace_if(
        units, end, [upper, wanted = upper[c]](unichar unit) { return upper[unit] == wanted; }, replacement);
  }
}

bool replaceString(MutableString& text, const String& substring, const String& replacement, bool caseSensitive) {
  if (replacement.length() <= substring.length()) {
    text.truncate(
        copyReplaced(text.view(), substring.view(), replacement.view(), caseSensitive, text.mutableCharacters()));
    return true;
  }
  if (!hasOccurrence(text.view(), substring.view(), caseSensitive)) return true;
  return rebuild(text, text.length(), [&](MutableString& result) {
    appendReplaced(text.view(), substring.view(), replacement.view(), caseSensitive,
                   [&result](std::u16string_view part) { result.appendString(part); });
  });
}

bool replaceStringWithFormat(MutableString& text, const String& substring, const String& format,
                             const ValueArray& arguments) {
  MutableString replacement;
  const bool isFormatted = rebuild(replacement, format.length(),
                                   [&](MutableString& result) { appendFormat(result, format.view(), arguments); });
  const String formatted = isFormatted ? replacement.takeString() : String();
  return formatted && replaceString(text, substring, formatted, true);
}

void deleteString(MutableString& text, const String& substring, bool caseSensitive) {
  text.truncate(copyReplaced(text.view(), substring.view(), {}, caseSensitive, text.mutableCharacters()));
}

String stringByRemovingString(const String& string, const String& substring, bool caseSensitive) {
  if (!containsSubstring(string, substring, caseSensitive)) return string;
  return String::filled(string.length(), [&](unichar* units) {
    return copyReplaced(string.view(), substring.view(), {}, caseSensitive, units);
  });
}

}  // namespace velan
