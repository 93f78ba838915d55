// Decoding in place equals decoding into a buffer, and what is encoded comes back.
#include <memory>

#include "fuzz/FuzzTarget.h"
#include "velan/markup/Entities.h"

using namespace velan;

namespace {

void decodeBothWays(std::u16string_view text, size_t start, unsigned flags) {
  const auto decode = [&](const unichar* source, unichar* destination, size_t from) {
    return convertEntities2Characters(source, destination, from, text.size() - start, (flags & 1) != 0,
                                      (flags & 2) != 0, (flags & 4) != 0);
  };
  // Exactly as long as the text: the address sanitizer sees what lies beyond it.
  const auto source = std::make_unique<unichar[]>(text.size());
  const auto destination = std::make_unique<unichar[]>(text.size() - start);
  text.copy(source.get(), text.size());
  const size_t written = decode(source.get(), destination.get(), start);
  require(written <= text.size() - start && decode(source.get(), source.get(), start) == written);
  require(std::u16string_view(source.get(), written) == std::u16string_view(destination.get(), written));
}

}  // namespace

FUZZ_TARGET(entities) {
  const unsigned flags = input.takeByte();
  const String text = input.text();
  decodeBothWays(text.view(), flags / 8 % (text.view().size() + 1), flags % 8);
  require(stringByConvertingStandardEntitiesToCharacters(text).length() <= text.length());
  const String protectedText = stringByConvertingCharactersToEntities(text, false);
  require(stringByConvertingEntitiesToCharacters(protectedText) == text);
  require(stringByConvertingEntitiesToCharacters(stringByConvertingCharactersToEntities(protectedText)) == text);
  require(stringByConvertingEntitiesToCharacters(stringByConvertingCharactersToEntities(protectedText, true)) == text);
}
