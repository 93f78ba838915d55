#include "tests/Testing.h"
#include "velan/text/ConversionTables.h"
#include "velan/wildcard/WildcardPattern.h"

namespace velan {
namespace {

TEST(WildcardPattern, NormalFormTypeAndRange) {
  // pattern: for type 10 what the range covers; normal: for type 10 what the range covers
  const Cases<std::u16string_view, std::u16string_view, uint32_t, Range> cases = {
      {u"", u"", 10, {0, 0}},          {u"**", u"*", 10, {0, 1}},          {u"*?*", u"*?*", 10, {0, 3}},
      {u"abc", u"abc", 0, {0, 3}},     {u"a?c", u"a?c", 1, {0, 3}},        {u"abc*", u"abc*", 2, {0, 3}},
      {u"*abc", u"*abc", 3, {1, 3}},   {u"**abc***", u"*abc*", 4, {1, 3}}, {u"a**b", u"a*b", 5, {0, 3}},
      {u"*a?*", u"*a?*", 5, {0, 4}},   {u"*a*b*", u"*a*b*", 5, {0, 5}},    {u"[ab]c", u"[ab]c", 9, {0, 5}},
      {u"[ab]*", u"[ab]*", 7, {0, 4}}, {u"*[ab]", u"*[ab]", 8, {1, 4}},    {u"[ab]*c", u"[ab]*c", 6, {0, 6}},
      {u"[*?]x", u"[*?]x", 9, {0, 5}}, {u"x[]y", u"xy", 0, {0, 2}},        {u"[-|^]x", u"x", 0, {0, 1}},
      {u"a*[]*", u"a**", 5, {0, 3}},   {u"*[]*", u"**", 10, {0, 2}},       {u"[a|b]", u"[ab]", 9, {0, 4}},
      {u"[|a|]", u"[a]", 9, {0, 3}},   {u"a|b\\c", u"a|b\\c", 0, {0, 5}},  {u"a]b", u"a", 10, {0, 1}},
      {u"a[", u"a[", 10, {0, 2}},      {u"a[b", u"a[b", 10, {0, 3}},       {u"a[[b]", u"a[", 10, {0, 2}},
  };
  for (const auto& [pattern, optimized, type, part] : cases) {
    std::u16string units(pattern);
    Range range{-1, -1};
    const String shown(pattern);
    EXPECT_EQ(optimizeWildcard(units.data(), units.data() + units.size(), &range, 1), type) << shown.toUTF8();
    EXPECT_EQ(range, part) << shown.toUTF8();
    EXPECT_EQ(units.substr(0, optimized.size()), optimized) << shown.toUTF8();
    EXPECT_EQ(wildcardType(shown), pattern.empty() ? 0 : type) << shown.toUTF8();
    const String normal = normalWildcard(shown);
    EXPECT_EQ(normal.isAbsent(), type == 10) << shown.toUTF8();
    EXPECT_TRUE(normal.isAbsent() || normal == optimized) << shown.toUTF8();
  }
}

TEST(WildcardPattern, FewLiterals) {
  const Cases<std::u16string, uint64_t, uint32_t> cases = {{u"ab*", 2, 2},    {u"ab*", 3, 10},  {u"ab", 3, 0},
                                                           {u"a[bc]*", 2, 7}, {u"a??*", 2, 10}, {u"*a", 0, 3}};
  for (const auto& [pattern, least, type] : cases) {
    std::u16string units = pattern;
    EXPECT_EQ(optimizeWildcard(units.data(), units.data() + units.size(), nullptr, least), type);
  }
}

TEST(WildcardPattern, Lengths) {
  const Cases<String, int64_t, int64_t> cases = {{u"", 0, 0},          {u"abc", 3, 3},  {u"a*[xyz]?", 3, INT64_MAX},
                                                 {u"a[xyz]?", 3, 3},   {u"a[xy", 2, 2}, {u"[", 1, 1},
                                                 {u"*", 0, INT64_MAX}, {u"[*]", 1, 1},  {String(), 0, 0}};
  for (const auto& [pattern, least, most] : cases) {
    EXPECT_EQ(minWildcardLen(pattern.begin(), pattern.end()), least);
    EXPECT_EQ(maxWildcardLen(pattern.begin(), pattern.end()), most);
    EXPECT_EQ(wildcardLength(pattern), least);
  }
}

TEST(WildcardPattern, Preparation) {
  EXPECT_EQ(unicharTableForWildcardComparison(4), nullptr);
  EXPECT_EQ(unicharTableForWildcardComparison(5), upperCharsTable());
  EXPECT_EQ(unicharTableForWildcardComparison(2), umlautsCharsTable());
  EXPECT_EQ(unicharTableForWildcardComparison(3), upperUmlautsCharsTable());
  std::u16string pattern = u"\x00E4*[b-d]";
  prepareWildcardUsingUnicharTable(pattern.data() + 1, pattern.data() + 1, upperCharsTable());
  prepareWildcardUsingUnicharTable(pattern.data(), pattern.data() + 4, upperUmlautsCharsTable());
  prepareWildcardUsingUnicharTable(pattern.data(), pattern.data() + 7, nullptr);
  EXPECT_EQ(pattern, u"A*[B-d]");
}

TEST(WildcardPattern, FuzzyAnalogy) {
  EXPECT_EQ(minWildcardFuzzyAnalogy(), 0.75);
  setMinWildcardFuzzyAnalogy(0.5);
  EXPECT_EQ(minWildcardFuzzyAnalogy(), 0.5);
  setMinWildcardFuzzyAnalogy(0.75);
}

}  // namespace
}  // namespace velan
