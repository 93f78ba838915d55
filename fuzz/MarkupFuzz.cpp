// The reports of the tag scanner cover the text without gap or overlap, whatever it is; readers and strippers stay
// inside it.
#include "fuzz/FuzzTarget.h"
#include "velan/markup/Attributes.h"
#include "velan/markup/DeclaredEncoding.h"
#include "velan/markup/Stripping.h"
#include "velan/markup/TagsInternal.h"

using namespace velan;

namespace {

void requireInside(Range value, const TagReport& tag) {
  if (!isPresent(value)) return;
  require(value.length > 0 && value.location > tag.tagLocation &&
          value.location + value.length <= tag.tagLocation + tag.tagLength);
}

void readAttributes(const String& text, const TagReport& tag) {
  const Range range{tag.tagLocation, tag.tagLength};
  for (const char* const name : {"a", "content", "=", "'"}) {
    requireInside(rangeOfAttributeOfTagCharacters(tag.characters, range, name), tag);
    attributeOfTagInRange(text, range, String::fromUTF8(name));
    attributeOfStyleInRange(text, range, String::fromUTF8(name));
  }
  contentAttributeOfTagCharacters(tag.characters, range);
}

}  // namespace

FUZZ_TARGET(markup) {
  const String text = input.text();
  int64_t behind = 0;
  bool ended = false;
  const size_t searched = scanTags(text.view(), [&](const TagReport& tag) {
    require(!ended && tag.textLocation == behind && tag.tagLocation >= behind);
    behind = tag.tagLocation + tag.tagLength;
    ended = tag.kind == TagKind::End;
    if (tag.nameLength > 0) require(tag.nameLocation > tag.tagLocation && tag.nameLocation + tag.nameLength < behind);
    if (tag.kind == TagKind::Tag) readAttributes(text, tag);
    return false;
  });
  require(ended && behind == text.length() && searched <= 8 * text.view().size() + 8);
  require(stripTag(text, "A").length() <= text.length());
  require(stripTagBodies(text, {u"<a"_s, u"<script"_s}).length() <= text.length());
  require(stripTagBodiesExcept(text, {u"<a"_s, u"<script"_s}).length() <= 2 * text.length());
  for (const char* const name : {"A", "SCRIPT", "STYLE"}) {
    const String outer = outerTagBody(text, name);
    require(outer.length() <= text.length() && innerTagBody(text, name).length() <= outer.length());
  }
  markupCharset(text);
  for (const String& name : {u"a"_s, u"charset"_s, u" "_s}) {
    headerFieldNamed(text, name, u'"', u';');
    headerFieldNamed(text, name);
    HTTPHeaderFieldNamed(text, name);
  }
}
