// The numbers by which callers name the encodings of strings.
#ifndef VELAN_BASE_STRING_ENCODING_H
#define VELAN_BASE_STRING_ENCODING_H

#include <cstdint>

#include "velan/base/CTypes.h"
#include "velan/base/TextEncoding.h"

namespace velan {

/// A string encoding by its number. A few have small numbers; any other is 0x80000000 plus the number of the converter
/// (base, variant and format), which `stringEncoding` makes. Another space of numbers than that of the converters.
enum class StringEncoding : uint32_t {
  Detect = 0,  // where a file or data is read: find out; so does every number from 0xFFFFFFF0 up
  ASCII = 1,
  NeXTSTEP = 2,
  EUCJapanese = 3,
  UTF8 = 4,
  Latin1 = 5,
  Symbol = 6,
  NonLossyASCII = 7,
  ShiftJIS = 8,
  Latin2 = 9,
  UTF16 = 10,  // written little-endian after a byte-order mark
  WindowsCyrillic = 11,
  WindowsLatin1 = 12,
  WindowsGreek = 13,
  WindowsTurkish = 14,
  WindowsLatin2 = 15,
  ISO2022Japanese = 21,
  MacRoman = 30,
  UTF16BigEndian = 0x90000100,
  UTF16LittleEndian = 0x94000100,
  UTF32 = 0x8C000100,  // as UTF16
  UTF32BigEndian = 0x98000100,
  UTF32LittleEndian = 0x9C000100,
  Invalid = 0xFFFFFFFF,
};

/// The number of a string encoding for a converter's: the small one where it has one. `Invalid` for `Invalid`.
VELAN_EXPORT StringEncoding stringEncoding(TextEncoding encoding);

/// The converter's number; `Invalid` for a number that names no encoding. Whether there is a converter is not asked.
VELAN_EXPORT TextEncoding textEncoding(StringEncoding encoding);

/// Whether reading with this number means to find the encoding out.
constexpr bool asksForDetection(StringEncoding encoding) {
  const auto number = static_cast<uint32_t>(encoding);
  return number == 0 || number >= 0xFFFFFFF0u;
}

}  // namespace velan

#endif  // VELAN_BASE_STRING_ENCODING_H
