// Characters to entities.
#include <algorithm>
#include <array>
#include <charconv>
#include <string_view>

#include "velan/markup/Entities.h"
#include "velan/markup/EntityTableInternal.h"

namespace velan {
namespace {

// The entity of one unit, or nothing.
struct Entity {
  char text[12];
  size_t length = 0;

  void append(std::string_view part) {
    part.copy(text + length, part.size());
    length += part.size();
  }
};

// From characters to the indexes of their names, between the least and the greatest character that has one.
class NamesByCharacter {
 public:
  static const NamesByCharacter& shared() {
    static const NamesByCharacter names;
    return names;
  }

  const char* nameOf(unichar c) const {
    const size_t index = c >= kMinUmlChar && c <= kMaxUmlChar ? _indexes[c - kMinUmlChar] : 0;
    return index == 0 ? nullptr : entityStrings[index - 1];
  }

 private:
  static constexpr unichar kMinUmlChar = 0x00A0;  // nbsp
  static constexpr unichar kMaxUmlChar = 0x2666;  // diams

  NamesByCharacter() {
    for (size_t i = 0; i < kEntityCount; ++i) _indexes[entityCharacters[i] - kMinUmlChar] = static_cast<uint8_t>(i + 1);
  }

  std::array<uint8_t, kMaxUmlChar - kMinUmlChar + 1> _indexes{};
};

Entity reference(unichar c) {
  Entity entity;
  entity.append("&#");
  char* const digits = entity.text + entity.length;
  const auto end = std::to_chars(digits, entity.text + sizeof entity.text, static_cast<unsigned>(c)).ptr;
  entity.length += static_cast<size_t>(end - digits);
  entity.append(";");
  return entity;
}

Entity named(std::string_view name) {
  Entity entity;
  entity.append("&");
  entity.append(name);
  entity.append(";");
  return entity;
}

Entity highEntity(unichar c) { return c > 0x7F ? reference(c) : Entity(); }

Entity namedOrHighEntity(unichar c) {
  if (c <= 0x7F) return {};
  const char* const name = NamesByCharacter::shared().nameOf(c);
  return name ? named(name) : reference(c);
}

Entity standardEntity(unichar c) {
  return c == u'"'   ? named("quot")
         : c == u'&' ? named("amp")
         : c == u'<' ? named("lt")
         : c == u'>' ? named("gt")
                     : Entity();
}

// The text with the entity of each unit that has one: measured first, so that it is written once.
template <typename EntityOf>
String encoded(const String& string, EntityOf entityOf) {
  int64_t length = 0;
  bool changes = false;
  for (const unichar c : string) {
    const size_t entity = entityOf(c).length;
    changes |= entity > 0;
    length += entity > 0 ? static_cast<int64_t>(entity) : 1;
  }
  if (!changes) return string;
  const String result = String::filled(length, [&](unichar* out) {
    for (const unichar c : string) {
      const Entity entity = entityOf(c);
      if (entity.length == 0) *out++ = c;
      out = std::copy_n(entity.text, entity.length, out);
    }
    return length;
  });
  return result ? result : string;
}

}  // namespace

String stringByConvertingCharactersToEntities(const String& string) { return encoded(string, namedOrHighEntity); }
String stringByConvertingCharactersToStandardEntities(const String& string) { return encoded(string, standardEntity); }
String stringByConvertingHighCharactersToEntities(const String& string) { return encoded(string, highEntity); }

}  // namespace velan
