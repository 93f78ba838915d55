#include "velan/text/ConversionTablesInternal.h"
#include "velan/text/UnitMappingInternal.h"

namespace velan {
void mapUnits(const unichar* units, size_t count, const unichar* table, unichar* mapped) {
  unitKernels().map(units, count, mappingOf(table), mapped);
}

String mappedString(std::u16string_view units, const unichar* table) {
  const auto length = static_cast<int64_t>(units.size());
  return String::filled(length, [=](unichar* mapped) {
    mapUnits(units.data(), units.size(), table, mapped);
    return length;
  });
}

}  // namespace velan
