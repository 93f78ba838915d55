#include "tests/Testing.h"
#include "velan/text/ConversionTables.h"
#include "velan/text/search/LiteralSetInternal.h"

namespace velan {
namespace {

using Hits = std::vector<LiteralSet::Hit>;

// In texts that end where their memory does, across what is hashed at a time; literals that overlap, begin alike and
// lie at both ends.
TEST(LiteralSet, FindsEveryPlaceOfEveryLiteral) {
  Chance chance(1);
  const unichar* none = nullptr;
  for (size_t length = 0; length <= 2500; length += length < 60 ? 1 : 485 + chance.below(7)) {
    for (const unichar* table : {none, upperCharsTable(), upperUmlautsCharsTable()}) {
      const auto mapped = [table](std::u16string units) {
        for (unichar& c : units) c = table ? table[c] : c;
        return units;
      };
      const std::u16string text =
          chance.text(length, std::u16string_view(u"abcdeB\xC4\x434\x4E00").substr(chance.below(5)));
      LiteralSet set(table);
      std::vector<std::u16string> literals;
      for (size_t left = 1 + chance.below(60); left > 0; --left) {
        std::u16string literal =
            mapped(chance.text(2 + chance.below(chance.below(9) == 0 ? 40 : 4), u"abcdeB\xC4\x434"));
        if (chance.below(4) == 0 && length > 5)
          literal = mapped(text.substr(chance.below(length - 3), 2 + chance.below(30)));
        EXPECT_LE(set.add(literal), literals.size());
        if (set.size() > literals.size()) literals.push_back(literal);
      }
      set.prepare();
      Hits expected;
      const std::u16string whole = mapped(text);
      for (uint32_t i = 0; i < literals.size(); ++i) {
        for (size_t at = 0; (at = whole.find(literals[i], at)) != whole.npos; ++at) {
          expected.push_back({i, static_cast<uint32_t>(at)});
        }
      }
      const auto exact = exactCopy(std::u16string_view(text));
      EXPECT_EQ(set.find(exact.get(), length), expected) << length;
    }
  }
}

TEST(LiteralSet, GivesUpWhereEachPlaceCostsMuch) {
  const std::u16string text(100'000, u'a');
  LiteralSet longOnes(nullptr);
  for (size_t i = 0; i < 20; ++i) longOnes.add(repeated(u"a", 1000 + i, u"b"));
  longOnes.prepare();
  EXPECT_EQ(longOnes.find(text.data(), text.size()), std::nullopt);
  LiteralSet frequentOnes(nullptr);
  for (size_t i = 2; i < 20; ++i) frequentOnes.add(repeated(u"a", i));
  frequentOnes.prepare();
  EXPECT_EQ(frequentOnes.find(text.data(), text.size()), std::nullopt);
  EXPECT_EQ(frequentOnes.find(text.data(), 20)->size(), 189u);
}

}  // namespace
}  // namespace velan
