#include "tests/Testing.h"
#include "velan/text/ConversionTables.h"
#include "velan/text/digest/Checksums.h"
#include "velan/text/digest/ChecksumsInternal.h"

namespace velan {
namespace {

TEST(Checksums, KnownValues) {
  const Cases<const char*, std::string_view, uint32_t> cases = {
      {"empty", "", 0},
      {"one zero byte leaves the register at 0", {"\0", 1}, 0},
      {"one byte", "a", 0x3AB551CE},
      {"several bytes", "abc", 0xCA6598D0},
  };
  for (const auto& [why, bytes, crc] : cases) {
    EXPECT_EQ(CRC32(bytes.data(), bytes.size()), crc) << why;
    EXPECT_EQ(crc32(Data::withBytes(bytes)), crc) << why;
  }
  EXPECT_EQ(CRC32(nullptr, 5), 0u);
  EXPECT_EQ(crc32(u"a"_s), 0x3AB551CEu);
  EXPECT_EQ(CRC32UniChars(u"abc", 3), 0x3BBA7151u);
  EXPECT_EQ(CRC32UniChars(nullptr, 3), 0u);
  EXPECT_EQ(CRC32UniCharsUsingConversionTable(nullptr, 3, initUpperCharsTable()), 0u);
  EXPECT_EQ(crc32(String()) + crc32(Data()), 0u);
}

TEST(Checksums, OfMappedAndFilteredUnits) {
  const unichar* upper = initUpperCharsTable();
  const String street = u"Stra\u00DFe"_s;
  EXPECT_EQ(crc32UsingConversionTable(street, upper), crc32(u"STRA\u00DFE"_s));
  EXPECT_NE(crc32UsingConversionTable(street, upper), crc32(u"STRASSE"_s));
  const String text(std::u16string(1000, u'x'));
  EXPECT_EQ(stringCRC32UsingConversionTable(text, upper), crc32(String(std::u16string(1000, u'X'))));
  EXPECT_EQ(caseInsensitiveCrc32ByRemovingNonAlphaCharacters(u"Hello, World!"_s), crc32(u"HELLOWORLD"_s));
  EXPECT_EQ(caseInsensitiveCrc32ByRemovingNonAlphaCharacters(u"123"_s), 0u);
  EXPECT_EQ(caseInsensitiveCrc32ByRemovingNonAlphaNumericCharacters(u"r2-d2"_s), crc32(u"R2D2"_s));
  EXPECT_EQ(caseInsensitiveCrc32UsingCharactersPartOfCharacterSetRep(u"abc"_s, nullptr), 0u);
}

// Heap buffers of exactly the length: the address sanitizer sees a read one byte too far.
TEST(Checksums, EveryKernelEqualsTheReference) {
  std::mt19937 random(1);
  for (size_t length = 0; length <= 1700; length += length < 300 ? 1 : 37) {
    const auto bytes = std::make_unique<uint8_t[]>(length + 1);
    const auto units = std::make_unique<unichar[]>(length);
    for (size_t i = 0; i < length; ++i) units[i] = static_cast<unichar>(bytes[i + 1] = static_cast<uint8_t>(random()));
    for (size_t i = 0; i < length; ++i) units[i] = static_cast<unichar>(units[i] | random() << 8);
    const uint32_t start = length % 2 ? 0 : 0xDEADBEEF;
    for (const auto& kernel : crc32Kernels()) {
      EXPECT_EQ(kernel.run.bytes(start, bytes.get() + 1, length), crc32Scalar(start, bytes.get() + 1, length))
          << kernel.name << ' ' << length;
      EXPECT_EQ(kernel.run.units(start, units.get(), length), crc32UnitsScalar(start, units.get(), length))
          << kernel.name << ' ' << length;
    }
  }
}

TEST(Checksums, PartsAddUp) {
  const std::string text(5000, 't');
  const uint32_t whole = CRC32(text.data(), text.size());
  for (const size_t cut : {0u, 1u, 17u, 4096u, 5000u}) {
    const uint32_t first = CRC32(text.data(), cut);
    EXPECT_EQ(crc32Continued(first, text.data() + cut, text.size() - cut), whole);
    EXPECT_EQ(whole ^ crc32WithZeros(first, text.size() - cut), CRC32(text.data() + cut, text.size() - cut));
  }
}

}  // namespace
}  // namespace velan
