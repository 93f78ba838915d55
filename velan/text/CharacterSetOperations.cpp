#include "velan/text/CharacterSetOperations.h"

#include "velan/text/kernels/UnitKernelsInternal.h"

namespace velan {
namespace {

bool hasUnit(const String& string, const uint8_t* rep, bool isMember) {
  const std::u16string_view units = string.view();
  return unitKernels().findMember(units.data(), units.size(), rep, isMember) < units.size();
}

}  // namespace

bool characterPartOfSet(const String& string, const uint8_t* rep) { return rep && hasUnit(string, rep, true); }

bool charactersPartOfSet(const String& string, const uint8_t* rep, bool emptyResult) {
  if (string.isEmpty()) return emptyResult;
  return rep && !hasUnit(string, rep, false);
}

int64_t countCharactersPartOfSet(const String& string, const uint8_t* rep) {
  const std::u16string_view units = string.view();
  return rep ? static_cast<int64_t>(unitKernels().countMembers(units.data(), units.size(), rep)) : 0;
}

}  // namespace velan
