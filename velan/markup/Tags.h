// The tag scanner that drives everything done with markup (HTML, XML, feeds): one forgiving walk over a text that hands
// out each tag, comment and section with the run of text before it. It builds no tree, and no markup is too broken for
// it. Time is linear in the length of the text, whatever is in it. All positions are in units; any thread may scan.
//
// A quote protects ">" only after "=", so stray quotes do no harm. A script or style element is one tag, from its
// opening to its closing tag, so that its body is never taken for markup.
#ifndef VELAN_MARKUP_TAGS_H
#define VELAN_MARKUP_TAGS_H

#include "velan/base/FunctionRef.h"
#include "velan/base/String.h"

namespace velan {

enum class TagKind : uint8_t {
  End = 0,      // the last report, behind the last tag
  Tag = 1,      // an element's opening or closing tag, a processing instruction, a declaration
  Comment = 2,  // "<!-- ... -->"
  Section = 3,  // "<![ ... ]>": CDATA or a conditional comment
};

/// One tag, comment or section of a text.
struct TagReport {
  const unichar* characters;  // the whole text; valid during the call
  int64_t nameLocation;       // of the tag's name; `NSNotFound` when there is none
  int64_t nameLength;
  int64_t tagLocation;   // of the "<"
  int64_t tagLength;     // through the ">"; to the end of the text when that is missing
  int64_t textLocation;  // behind the previous report's tag: the text before this one is [textLocation, tagLocation)
  TagKind kind;
};

/// `TagHandler`: gets each report with the scanned string and the caller's `context`; true stops the walk.
using TagHandler = bool (*)(const String& string, const TagReport& tag, void* context);
/// `TagBlock`: gets each report; true stops the walk.
using TagBlock = FunctionRef<bool(const TagReport& tag)>;

/// `GetTagsOfString`: walks `string` and calls `handler` if it is given, otherwise `block`, for each tag in order, and
/// at the end once with kind `End`, which carries the last run of text (also when there is no tag at all). A tag that
/// never closes is text, a comment or a section that never closes is reported up to the end; the answer to these last
/// reports is ignored.
///
/// With `privateCopy` the characters are a copy, and a handler may write to its units before the end of the tag it was
/// given (it must cast the `const` away), no others. Returns false if the string is absent or empty or there is no
/// memory for the copy; then nothing is called.
VELAN_EXPORT bool GetTagsOfString(const String& string, TagHandler handler, void* context, TagBlock block,
                                  bool privateCopy);
/// `parseXmlWithHandler:context:mutable:`
inline bool parseXmlWithHandler(const String& string, TagHandler handler, void* context, bool privateCopy) {
  return GetTagsOfString(string, handler, context, nullptr, privateCopy);
}
/// `parseXmlWithHandler:`
inline bool parseXmlWithHandler(const String& string, TagBlock block) {
  return GetTagsOfString(string, nullptr, nullptr, block, false);
}

/// `isTagOpenCharacters:range:`: whether the tag at `range` is an opening tag: at least 3 units from "<" on, with no
/// "/" behind the "<" nor before the last unit. False for a null pointer or a range that is absent or negative; else
/// the range lies in `characters`.
VELAN_EXPORT bool isTagOpenCharacters(const unichar* characters, Range range);
/// `isTagClosedCharacters:range:`: whether it is a closing tag: at least 4 units that begin with "</".
VELAN_EXPORT bool isTagClosedCharacters(const unichar* characters, Range range);

/// `isTagOpenInRange:`, `isTagClosedInRange:`: the same of a range of `string`, which is clipped to it.
VELAN_EXPORT bool isTagOpenInRange(const String& string, Range range);
VELAN_EXPORT bool isTagClosedInRange(const String& string, Range range);
/// `isMetaTagInRange:`: whether the range is a tag named "meta", in any case, and no closing tag.
VELAN_EXPORT bool isMetaTagInRange(const String& string, Range range);
/// `isRemarkTagInRange:`: whether the range begins with "<!--".
VELAN_EXPORT bool isRemarkTagInRange(const String& string, Range range);

/// `isTagOpen`, `isTagClosed`, `isMetaTag`, `isRemarkTag`: the same of the whole string.
inline bool isTagOpen(const String& string) { return isTagOpenInRange(string, {0, string.length()}); }
inline bool isTagClosed(const String& string) { return isTagClosedInRange(string, {0, string.length()}); }
inline bool isMetaTag(const String& string) { return isMetaTagInRange(string, {0, string.length()}); }
inline bool isRemarkTag(const String& string) { return isRemarkTagInRange(string, {0, string.length()}); }

}  // namespace velan

#endif  // VELAN_MARKUP_TAGS_H
