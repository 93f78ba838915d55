// What can be read as a property list can be written, and comes back the same.
#include "fuzz/FuzzTarget.h"
#include "velan/base/propertylist/PropertyList.h"

using namespace velan;

namespace {

void requireSameAgain(const Value& value, const Data& written, PropertyListFormat format) {
  const Value read = readPropertyList(written);
  if (format == PropertyListFormat::Binary) require(read == value);
  require(writePropertyList(read, format) == written);
}

}  // namespace

FUZZ_TARGET(property_list) {
  const Data data = input.data();
  const Value value = readPropertyList(data);
  if (value.isAbsent()) return;
  const Data binary = writePropertyList(value, PropertyListFormat::Binary);
  require(!binary.isAbsent());
  requireSameAgain(value, binary, PropertyListFormat::Binary);
  // Shared parts of a binary file would be written out at each place: only what came from XML surely stays small.
  if (data.view().starts_with("bplist")) return;
  const Data xml = writePropertyList(value, PropertyListFormat::XML);
  require(!xml.isAbsent());
  requireSameAgain(value, xml, PropertyListFormat::XML);
}
