// The format of keyed data: records one after the other, nothing before, between or behind them.
//
// A record has a header of 16 bytes, all numbers big-endian: a marker of four characters at 0, a key at 4, and a value
// at 8 that is as wide as its type, the rest zero and ignored. Records of the types `VLst`, `VLdt` and `VLpl` have the
// length of their payload at 8 (32 bits) and the payload directly behind the header.
#ifndef VELAN_KEYED_KEYED_RECORDS_H
#define VELAN_KEYED_KEYED_RECORDS_H

#include <span>

#include "velan/base/Data.h"
#include "velan/base/MutableData.h"

namespace velan {

/// The number whose big-endian bytes are four characters: how markers are written, and keys often are.
constexpr uint32_t fourCharacterCode(const char (&text)[5]) {
  uint32_t code = 0;
  for (int i = 0; i < 4; ++i) code = (code << 8) | static_cast<uint8_t>(text[i]);
  return code;
}

/// `VLbl`: a boolean, one byte, YES unless 0.
inline constexpr uint32_t VLbl = fourCharacterCode("VLbl");
/// `VLun`: an unsigned 32-bit integer.
inline constexpr uint32_t VLun = fourCharacterCode("VLun");
/// `VLsi`: a signed 32-bit integer.
inline constexpr uint32_t VLsi = fourCharacterCode("VLsi");
/// `VLul`: an unsigned 64-bit integer.
inline constexpr uint32_t VLul = fourCharacterCode("VLul");
/// `VLsl`: a signed 64-bit integer.
inline constexpr uint32_t VLsl = fourCharacterCode("VLsl");
/// `VLfl`: an IEEE 754 single.
inline constexpr uint32_t VLfl = fourCharacterCode("VLfl");
/// `VLdb`: an IEEE 754 double.
inline constexpr uint32_t VLdb = fourCharacterCode("VLdb");
/// `VLda`: a date, a double of seconds since 2001-01-01 00:00:00 UTC.
inline constexpr uint32_t VLda = fourCharacterCode("VLda");
/// `VLst`: a string in UTF-8, of variable size.
inline constexpr uint32_t VLst = fourCharacterCode("VLst");
/// `VLdt`: bytes, of variable size.
inline constexpr uint32_t VLdt = fourCharacterCode("VLdt");
/// `VLpl`: a binary property list, of variable size.
inline constexpr uint32_t VLpl = fourCharacterCode("VLpl");

/// `_key`: the key of a `VLst` record that holds the key string of a pair.
inline constexpr uint32_t kKeyedPairKey = fourCharacterCode("_key");
/// `_val`: the key of the record behind it, which holds the value of the pair.
inline constexpr uint32_t kKeyedPairValue = fourCharacterCode("_val");
/// `STRI`: the key of the records in files of strings.
inline constexpr uint32_t kKeyedStringsKey = fourCharacterCode("STRI");

inline constexpr size_t kKeyedHeaderSize = 16;

/// The bytes that an operation reads: what `Data`, `MutableData` and spans convert to, without a copy. They must stay
/// as they are during the call. A parameter type, two words that are passed in registers; not meant to be kept.
class KeyedBytes {
 public:
  KeyedBytes(const Data& data) : _bytes(data.bytes()), _length(data.length()) {}
  KeyedBytes(const MutableData& data) : KeyedBytes(data.span()) {}
  KeyedBytes(std::span<const uint8_t> bytes) : _bytes(bytes.empty() ? kNoBytes : bytes.data()), _length(bytes.size()) {}

  size_t length() const { return _length; }
  std::span<const uint8_t> span() const { return {_bytes, _length}; }
  bool isAbsent() const { return !_bytes; }

 private:
  static constexpr uint8_t kNoBytes[1] = {0};

  const uint8_t* _bytes;  // null only for absent data
  size_t _length;
};

}  // namespace velan

#endif  // VELAN_KEYED_KEYED_RECORDS_H
