#include "velan/base/propertylist/PropertyList.h"

#include <cstring>
#include <new>

#include "velan/base/propertylist/PropertyListInternal.h"

namespace velan {

Value plist::readEither(std::span<const uint8_t> bytes) {
  const bool binary = bytes.size() >= plist::kBinaryMagic.size() &&
                      std::memcmp(bytes.data(), plist::kBinaryMagic.data(), plist::kBinaryMagic.size()) == 0;
  return binary ? readBinary(bytes) : readXML(bytes);
}

Value readPropertyList(std::span<const uint8_t> bytes) {
  try {
    return plist::readEither(bytes);
  } catch (const std::bad_alloc&) {
    return Value();
  }
}

Data writePropertyList(const Value& value, PropertyListFormat format) {
  try {
    MutableData out;
    const bool written =
        format == PropertyListFormat::Binary ? plist::writeBinary(value, out) : plist::writeXML(value, out);
    return written ? out.takeData() : Data();
  } catch (const std::bad_alloc&) {
    return Data();
  }
}

}  // namespace velan
