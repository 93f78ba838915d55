// The numbers by which callers name the encodings of strings.
#ifndef VELAN_BASE_STRING_ENCODING_H
#define VELAN_BASE_STRING_ENCODING_H

#include <cstdint>

namespace velan {

/// A string encoding by its number. A few have small numbers; any other is 0x80000000 plus the number of the converter
/// (base, variant and format), which `stringEncoding` makes. Another space of numbers than that of the converters.
enum class StringEncoding : uint32_t {
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

/// The encoding with the converter number `converter`, where it has no small number of its own.
constexpr StringEncoding stringEncoding(uint32_t converter) {
  return static_cast<StringEncoding>(0x80000000u | converter);
}

}  // namespace velan

#endif  // VELAN_BASE_STRING_ENCODING_H
