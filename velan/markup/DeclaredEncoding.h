// The character set that a page declares for itself, in its head or in a content-type header.
#ifndef VELAN_MARKUP_DECLARED_ENCODING_H
#define VELAN_MARKUP_DECLARED_ENCODING_H

#include "velan/base/MutableString.h"
#include "velan/base/String.h"
#include "velan/base/StringEncoding.h"
#include "velan/markup/Tags.h"

namespace velan {

/// `markupCharset`: the name of the character set that the markup `string` declares, in a "meta" tag (its entities
/// decoded) or an XML declaration; empty when there is none before the body.
VELAN_EXPORT String markupCharset(const String& string);
/// `markupCharsetRange`: where in `string` the tag with that declaration stands; absent when there is none.
VELAN_EXPORT Range markupCharsetRange(const String& string);
/// `headerCharset`: the name after "charset=" in a content-type value such as "text/html; charset=utf-8"; absent when
/// there is none.
VELAN_EXPORT String headerCharset(const String& string);
/// `markupEncoding`, `headerEncoding`: the encodings of these names (see `NSEncodingFromName`); `Invalid` for a name
/// that is not known, and where there is none.
VELAN_EXPORT StringEncoding markupEncoding(const String& string);
VELAN_EXPORT StringEncoding headerEncoding(const String& string);

/// `RetrieveEncodingHandler`: a `TagHandler` that appends the declared name to its context, a `MutableString`, and
/// stops there, or at the body.
VELAN_EXPORT bool RetrieveEncodingHandler(const String& string, const TagReport& tag, void* context);
/// `RetrieveEncodingRangeHandler`: the same with the tag's place, for a `Range` as context.
VELAN_EXPORT bool RetrieveEncodingRangeHandler(const String& string, const TagReport& tag, void* context);

}  // namespace velan

#endif  // VELAN_MARKUP_DECLARED_ENCODING_H
