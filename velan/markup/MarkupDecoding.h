// Pages as text: the encoding is what the caller was told, a byte-order mark, or what the page declares for itself.
#ifndef VELAN_MARKUP_MARKUP_DECODING_H
#define VELAN_MARKUP_MARKUP_DECODING_H

#include "velan/base/Data.h"
#include "velan/base/String.h"
#include "velan/base/StringEncoding.h"
#include "velan/base/URL.h"

namespace velan {

/// Why a page was decoded as it was.
enum class MarkupEvidence : uint8_t {
  Default,  // nothing else was said, or what the page declares does not fit it
  Name,     // the caller's name
  ByteOrderMark,
  Declaration,   // the page's own
  Fallback,      // a relative of the declared encoding, or one that is tried when that does not fit
  PropertyList,  // it is one, written out as XML
};

struct DecodedMarkup {
  String text;  // absent when nothing fits
  StringEncoding encoding = StringEncoding::Invalid;
  MarkupEvidence evidence = MarkupEvidence::Default;
  String declaredCharset;  // the name in the page; empty when there is none
};

/// What `stringWithMarkupData` makes of `data`, and how it came to that.
///
/// First comes the encoding named `encodingName`, if there is one of this name; otherwise that of a byte-order mark,
/// which is the answer whatever the page declares; otherwise `defaultEncoding` (the library's if it is not known).
/// Malformed sequences become U+FFFD. What the page, read this way, declares is then tried and preferred, also with
/// some U+FFFD, unless as much of it is malformed as is not; unless `encodingName` was given and it leaves more U+FFFD
/// than that; or unless UTF-8 was named, fits, and makes the page shorter than Windows-1251 or Latin-1 do. A
/// declaration that could not be read if it were true, of UTF-16 or UTF-32, is ignored.
///
/// Shift-JIS and simplified Chinese (EUC) give way to their relatives that fit; Big5 that does not fit to Big5-HKSCS,
/// then to `defaultEncoding`.
VELAN_EXPORT DecodedMarkup decodedMarkup(const Data& data, const String& encodingName, StringEncoding defaultEncoding);

/// `stringWithMarkupData:encodingName:defaultEncoding:URL:`: the text of a page. `encodingName`, which may be absent,
/// is what the page came with, such as the character set of an HTTP header; `url` is not used. A byte-order mark is not
/// part of the text. Empty for empty or absent data, absent when no encoding fits. See `decodedMarkup`.
VELAN_EXPORT String stringWithMarkupData(const Data& data, const String& encodingName, StringEncoding defaultEncoding,
                                         const URL& url);
/// `stringWithMarkupData:contentType:defaultEncoding:`: with the character set of a content-type value.
VELAN_EXPORT String stringWithMarkupData(const Data& data, const String& contentType, StringEncoding defaultEncoding);
/// `stringWithMarkupData:defaultEncoding:`
inline String stringWithMarkupData(const Data& data, StringEncoding defaultEncoding) {
  return stringWithMarkupData(data, String(), defaultEncoding, URL());
}

/// What `stringWithMarkupContentsOfFile` makes of the bytes of the file at `path`.
VELAN_EXPORT DecodedMarkup decodedMarkupOfFile(const String& path, const Data& contents,
                                               StringEncoding defaultEncoding);

/// `stringWithMarkupContentsOfFile:defaultEncoding:usedEncoding:`: the same of a file, with Mac OS Roman when no other
/// encoding fits. A property list in either form is written out as XML; a file with an extension of property lists that
/// is none is read like any other. `usedEncoding`, which may be null, receives the encoding, and `Invalid` when the
/// file cannot be read, where the result is absent.
VELAN_EXPORT String stringWithMarkupContentsOfFile(const String& path, StringEncoding defaultEncoding,
                                                   StringEncoding* usedEncoding);
/// `stringWithMarkupContentsOfFile:defaultEncoding:`
inline String stringWithMarkupContentsOfFile(const String& path, StringEncoding defaultEncoding) {
  return stringWithMarkupContentsOfFile(path, defaultEncoding, nullptr);
}

}  // namespace velan

#endif  // VELAN_MARKUP_MARKUP_DECODING_H
