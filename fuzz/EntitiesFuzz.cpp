// Decoding in place equals decoding into a buffer, and what is encoded comes back.
#include <cstdlib>
#include <memory>

#include "velan/markup/Entities.h"

using namespace velan;

namespace {

void require(bool condition) {
  if (!condition) std::abort();
}

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

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
  if (size == 0) return 0;
  const String text = String::fromUTF8Lossy({reinterpret_cast<const char*>(bytes + 1), size - 1});
  const size_t start = bytes[0] / 8 % (text.view().size() + 1);
  decodeBothWays(text.view(), start, bytes[0] % 8);
  require(stringByConvertingStandardEntitiesToCharacters(text).length() <= text.length());
  const String protectedText = stringByConvertingCharactersToEntities(text, false);
  require(stringByConvertingEntitiesToCharacters(protectedText) == text);
  require(stringByConvertingEntitiesToCharacters(stringByConvertingCharactersToEntities(protectedText)) == text);
  require(stringByConvertingEntitiesToCharacters(stringByConvertingCharactersToEntities(protectedText, true)) == text);
  return 0;
}
