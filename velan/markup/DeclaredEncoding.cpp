#include "velan/markup/DeclaredEncoding.h"

#include "velan/markup/Attributes.h"
#include "velan/markup/AttributesInternal.h"
#include "velan/markup/Entities.h"
#include "velan/markup/TagsInternal.h"
#include "velan/text/encoding/CharsetNames.h"

namespace velan {
namespace {

String contentCharset(std::u16string_view content) { return headerField(content, u"CHARSET", u'\'', true, u';'); }

// The name that this tag declares; absent when it declares none.
String declaredCharset(const TagReport& tag) {
  const Range range{tag.tagLocation, tag.tagLength};
  const std::u16string_view units = unitsOf(tag);
  if (hasName(tag, u"meta") && !isClosingTag(units)) {
    String charset = contentCharset(contentAttributeOfTagCharacters(tag.characters, range).view());
    if (!charset) charset = attributeOfTagCharacters(tag.characters, range, "CHARSET");
    return stringByConvertingEntitiesToCharacters(charset);
  }
  if (hasName(tag, u"xml") && units[1] == u'?') return attributeOfTagCharacters(tag.characters, range, "ENCODING");
  return String();
}

bool endsHead(const TagReport& tag) { return hasName(tag, u"body"); }

}  // namespace

bool RetrieveEncodingHandler(const String&, const TagReport& tag, void* context) {
  if (endsHead(tag)) return true;
  const String charset = declaredCharset(tag);
  static_cast<MutableString*>(context)->appendString(charset);
  return !charset.isAbsent();
}

bool RetrieveEncodingRangeHandler(const String&, const TagReport& tag, void* context) {
  if (endsHead(tag)) return true;
  if (!declaredCharset(tag)) return false;
  *static_cast<Range*>(context) = {tag.tagLocation, tag.tagLength};
  return true;
}

String markupCharset(const String& string) {
  MutableString charset;
  parseXmlWithHandler(string, RetrieveEncodingHandler, &charset, false);
  return charset.string();
}

Range markupCharsetRange(const String& string) {
  Range range = kAbsentRange;
  parseXmlWithHandler(string, RetrieveEncodingRangeHandler, &range, false);
  return range;
}

String headerCharset(const String& string) { return contentCharset(string.view()); }

StringEncoding markupEncoding(const String& string) { return NSEncodingFromName(markupCharset(string)); }
StringEncoding headerEncoding(const String& string) { return NSEncodingFromName(headerCharset(string)); }

}  // namespace velan
