#include "tests/Testing.h"
#include "velan/text/ConversionTables.h"
#include "velan/text/search/FewLiteralsInternal.h"

namespace velan {
namespace {

std::u16string mappedBy(const unichar* table, std::u16string units) {
  for (unichar& c : units) c = table ? table[c] : c;
  return units;
}

std::vector<uint32_t> slowPlaces(std::u16string_view text, std::u16string_view literal) {
  std::vector<uint32_t> places;
  for (size_t at = 0; (at = text.find(literal, at)) != text.npos; ++at) places.push_back(static_cast<uint32_t>(at));
  return places;
}

// In texts that end where their memory does, stretch by stretch; literals that overlap, begin alike and lie at both
// ends. What is known behind each stretch is known for good.
TEST(FewLiterals, FindEveryPlaceOfEveryLiteral) {
  Chance chance(1);
  const unichar* none = nullptr;
  for (size_t length = 0; length <= 3000; length += length < 80 ? 1 : 583 + chance.below(7)) {
    for (const unichar* table : {none, upperCharsTable(), upperUmlautsCharsTable()}) {
      const std::u16string_view letters = u"abcdeB\xC4\x434\x4E00\x161";
      const std::u16string text = chance.text(length, letters.substr(chance.below(7), 2 + chance.below(8)));
      const std::u16string mapped = mappedBy(table, text);
      FewLiterals literals(table);
      std::vector<std::u16string> added;
      while (added.size() < 1 + length % FewLiterals::kMost) {
        std::u16string literal = mappedBy(table, chance.text(2 + chance.below(5), u"abcdeB\xC4\x434"));
        if (chance.below(3) == 0 && length > 40)
          literal = mapped.substr(chance.below(length - 2), 2 + chance.below(31));
        const std::optional<uint32_t> number = literals.add(literal);
        ASSERT_TRUE(number);
        if (*number == added.size()) added.push_back(literal);
        EXPECT_EQ(added[*number], literal);
      }
      const auto exact = exactCopy(std::u16string_view(text));
      FewLiterals::Places places;
      for (size_t from = 0; from < length;) {
        const size_t end = std::min(length, from + 1 + chance.below(length));
        literals.find(exact.get(), length, from, end, places);
        from = end;
        for (uint32_t i = 0; i < added.size(); ++i) {
          std::vector<uint32_t> expected = slowPlaces(mapped, added[i]);
          const int64_t known = end == length ? INT64_MAX : literals.knownUpTo(i, static_cast<int64_t>(end));
          std::erase_if(expected, [known](uint32_t place) { return place >= known; });
          EXPECT_EQ(places[i], expected) << String(added[i]).toUTF8() << " in " << String(text).toUTF8();
        }
      }
    }
  }
}

TEST(FewLiterals, TakeOnlyWhatIsWorthIt) {
  FewLiterals literals(nullptr);
  EXPECT_FALSE(literals.add(u"a"));
  EXPECT_FALSE(literals.add(repeated(u"a", 33)));
  for (uint32_t i = 0; i < 8; ++i) EXPECT_EQ(literals.add(repeated(u"ab", i + 1)), i);
  EXPECT_FALSE(literals.add(u"one too many"));
  EXPECT_EQ(literals.add(u"ab"), 0u);
  FewLiterals::Places places;
  const std::u16string dense = repeated(u"ab", 500), sparse = repeated(u"ab", 5) + repeated(u"c", 5000);
  EXPECT_FALSE(literals.find(dense.data(), dense.size(), 0, dense.size(), places));
  EXPECT_TRUE(literals.find(sparse.data(), sparse.size(), 0, sparse.size(), places));
}

}  // namespace
}  // namespace velan
