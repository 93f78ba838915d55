// Checksums of strings and of data; the CRC itself is in Crc32.cpp.
#include "velan/text/digest/Checksums.h"

#include "velan/base/ScratchBuffer.h"
#include "velan/text/CharacterSets.h"
#include "velan/text/ConversionTables.h"

namespace velan {

uint32_t crc32(const Data& data) { return CRC32(data.bytes(), data.length()); }

uint32_t crc32(const String& string) { return stringCRC32UsingConversionTable(string, nullptr); }

uint32_t stringCRC32UsingConversionTable(const String& string, const unichar* table) {
  return CRC32UniCharsUsingConversionTable(string.characters(), static_cast<size_t>(string.length()), table);
}

uint32_t crc32UsingConversionTable(const String& string, const unichar* table) {
  return stringCRC32UsingConversionTable(string, table);
}

uint32_t caseInsensitiveCrc32UsingCharactersPartOfCharacterSetRep(const String& string, const uint8_t* set) {
  if (!set || string.isEmpty()) return 0;
  ScratchBuffer<unichar, 256> kept(static_cast<size_t>(string.length()));
  if (!kept) return 0;
  const unichar* const upper = initUpperCharsTable();
  size_t count = 0;
  for (const unichar c : string) {
    kept[count] = upper[c];
    count += isMemberOfCharacterSetRep(set, c) ? 1 : 0;
  }
  return CRC32UniChars(kept.data(), count);
}

uint32_t caseInsensitiveCrc32ByRemovingNonAlphaCharacters(const String& string) {
  return caseInsensitiveCrc32UsingCharactersPartOfCharacterSetRep(string, alphaCharacterSetRep());
}

uint32_t caseInsensitiveCrc32ByRemovingNonAlphaNumericCharacters(const String& string) {
  return caseInsensitiveCrc32UsingCharactersPartOfCharacterSetRep(string, alphaNumCharacterSetRep());
}

}  // namespace velan
