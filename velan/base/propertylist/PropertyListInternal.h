// The two forms of property lists, and what their readers and writers share.
#ifndef VELAN_BASE_PROPERTYLIST_PROPERTY_LIST_INTERNAL_H
#define VELAN_BASE_PROPERTYLIST_PROPERTY_LIST_INTERNAL_H

#include <span>
#include <string_view>

#include "velan/base/MutableData.h"
#include "velan/base/propertylist/PropertyList.h"

namespace velan::plist {

inline constexpr std::string_view kBinaryMagic = "bplist0";  // followed by one more character of the version
inline constexpr size_t kBinaryHeaderSize = 8;
inline constexpr size_t kBinaryTrailerSize = 32;

/// The high half of a byte that begins an object in the binary form; the low half is a size, a count, or a choice.
enum BinaryType : uint8_t {
  kSimple = 0x00,
  kInteger = 0x10,
  kReal = 0x20,
  kDate = 0x30,
  kData = 0x40,
  kASCIIString = 0x50,
  kUTF16String = 0x60,
  kUID = 0x80,
  kArray = 0xA0,
  kSet = 0xC0,
  kDictionary = 0xD0,
};
inline constexpr uint8_t kFalse = 0x08;
inline constexpr uint8_t kTrue = 0x09;
inline constexpr uint8_t kCountFollows = 0x0F;

/// What XML 1.0 allows in a document (section 2.2).
constexpr bool isXMLCharacter(uint32_t c) {
  return c >= 0x20 ? c < 0xD800 || (c >= 0xE000 && c < 0xFFFE) || (c >= 0x10000 && c < 0x110000)
                   : c == '\t' || c == '\n' || c == '\r';
}

/// As `readPropertyList`, but throws `std::bad_alloc` where memory runs out: absent then means malformed.
Value readEither(std::span<const uint8_t> bytes);
Value readBinary(std::span<const uint8_t> bytes);
Value readXML(std::span<const uint8_t> bytes);
/// False when the value cannot be written; what `out` then holds is of no use.
bool writeBinary(const Value& value, MutableData& out);
bool writeXML(const Value& value, MutableData& out);

}  // namespace velan::plist

#endif  // VELAN_BASE_PROPERTYLIST_PROPERTY_LIST_INTERNAL_H
