// From bytes in an encoding to text, with an account of what was wrong with them. All of it may be called from any
// thread.
#ifndef VELAN_TEXT_ENCODING_DECODING_H
#define VELAN_TEXT_ENCODING_DECODING_H

#include <cstddef>
#include <cstdint>
#include <vector>

#include "velan/base/Data.h"
#include "velan/base/String.h"
#include "velan/base/StringEncoding.h"

namespace velan {

/// What malformed and cut-off sequences do.
enum class MalformedText : uint8_t {
  Refuse,   // no text
  Replace,  // each becomes one U+FFFD
};

struct DecodedText {
  String text;            // absent: unknown encoding, malformed and refused, or too little memory
  size_t malformed = 0;   // sequences that became U+FFFD because they are malformed or cut off
  size_t unassigned = 0;  // well-formed codes that became U+FFFD because they stand for no character

  /// How many characters outside ASCII were well-formed in the bytes, those without an assignment included. Goes
  /// through the text.
  size_t wellFormedNonASCII() const;
};

/// The text of `bytes` in `encoding`; a well-formed code that stands for no character becomes U+FFFD in any case. In
/// the UTF-16 forms a surrogate without its partner is malformed. A byte-order mark that begins UTF-8 or a form without
/// a byte order is left out, in an explicit order it is kept as U+FEFF. For an encoding that asks for detection: no
/// text.
VELAN_EXPORT DecodedText decodedText(const Data& bytes, StringEncoding encoding, MalformedText malformed);

/// As above, and where each unit's sequence begins in `bytes`: `offsets` gets one entry for each unit of the text, and
/// one for its end. Only for up to INT32_MAX bytes, more give no text.
VELAN_EXPORT DecodedText decodedText(const Data& bytes, StringEncoding encoding, MalformedText malformed,
                                     std::vector<int32_t>& offsets);

}  // namespace velan

#endif  // VELAN_TEXT_ENCODING_DECODING_H
