// Finding out how a text is encoded, from what says so; nothing is guessed from its letters. All of it may be called
// from any thread.
#ifndef VELAN_TEXT_ENCODING_ENCODING_DETECTION_H
#define VELAN_TEXT_ENCODING_ENCODING_DETECTION_H

#include <cstdint>

#include "velan/base/Data.h"
#include "velan/base/String.h"
#include "velan/base/StringEncoding.h"

namespace velan {

enum class EncodingEvidence : uint8_t {
  None,
  ByteOrderMark,
  TextEncodingAttribute,  // the extended attribute "user.com.apple.TextEncoding", "name;number"
  CharsetAttribute,       // the extended attribute "user.charset", a name
  ValidUTF8,              // the bytes are UTF-8, which happens to hardly any other text; ASCII and nothing are too
};

struct DetectedEncoding {
  StringEncoding encoding = StringEncoding::Invalid;
  EncodingEvidence evidence = EncodingEvidence::None;
  String text;  // absent when nothing was found, or when a byte-order mark's encoding does not fit
};

/// The encoding of `data` and its text, by a byte-order mark (UTF-32, UTF-16, UTF-8) or as strict UTF-8. A mark decides
/// alone, and is not part of the text.
VELAN_EXPORT DetectedEncoding detectedEncodingOfData(const Data& data);

/// The same of the file at `path`, whose contents were read as `contents`: after a mark its extended attributes count,
/// each if the contents fit it, then UTF-8.
VELAN_EXPORT DetectedEncoding detectedEncodingOfFile(const String& path, const Data& contents);

/// Whether extended attributes of the file at `path` say anything about its encoding.
VELAN_EXPORT bool hasEncodingAttribute(const String& path);

}  // namespace velan

#endif  // VELAN_TEXT_ENCODING_ENCODING_DETECTION_H
