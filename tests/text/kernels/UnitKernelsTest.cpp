// Every kernel equals the reference, which does one position after another.
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "velan/text/CharacterSetBitsInternal.h"
#include "velan/text/CharacterSets.h"
#include "velan/text/ConversionTables.h"
#include "velan/text/PreimagesInternal.h"
#include "velan/text/search/UnitSearchInternal.h"

namespace velan {
namespace {

using namespace std::string_view_literals;

// Letters of several lengths of rings, surrogates, the first and the last unit, and pages of all kinds.
constexpr std::u16string_view kLetters =
    u"aAbBkK\x212A\xE4\xC4sS\x17F\x390\x3B9\x434\x414\x440\x420. \x3042\x4E00\xFFFF";

// More windows of a look-up than are looked up one by one, and a run of ideographs.
constexpr std::u16string_view kManyPages = u"a \x434\x3B1\x4E00\x5E00\x6E00\x7E00\x8E00\xAC00\xD800\xFFFF";

// A table that the library does not know.
const unichar* foreignTable() {
  static const auto table = [] {
    std::vector<unichar> entries(VelanTableLength);
    for (size_t c = 0; c < entries.size(); ++c) entries[c] = static_cast<unichar>(c < 0x4000 ? c / 3 : c);
    return entries;
  }();
  return table.data();
}

// Calls `result(operations, units, length)` for each kernel with the same random text of every length up to some
// blocks, at every alignment, in heap blocks that end where the text does; all results must be those of the reference.
template <typename Result>
void expectEqualResults(std::u16string_view letters, Result result) {
  std::mt19937 random(1);
  for (size_t length = 0; length <= 5000; length += length < 300 ? 1 : 1175) {
    const size_t shift = random() % 32;
    const auto buffer = std::make_unique<unichar[]>(shift + length);
    unichar* units = buffer.get() + shift;
    const size_t kinds = 1 + random() % letters.size();
    std::generate_n(units, length, [&] { return letters[random() % kinds]; });
    const auto expected = result(unitKernelList().reference(), units, length);
    for (const auto& kernel : unitKernelList()) {
      ASSERT_EQ(result(kernel.run, units, length), expected)
          << kernel.name << ' ' << testing::PrintToString(std::u16string(units, length));
    }
  }
}

TEST(UnitKernels, FindAndCountUnits) {
  const UnitFilter filters[] = {UnitFilter(u'\xFFFF'), UnitFilter(u'B'), UnitFilter(u'a', u'\x434'),
                                filterOfPreimages(u'S', upperCharsTable()),
                                filterOfPreimages(u'A', upperUmlautsCharsTable())};
  for (const UnitFilter& filter : filters) {
    expectEqualResults(kLetters, [&](const UnitKernels& run, const unichar* units, size_t length) {
      return std::array{run.find(units, length, filter), run.findLast(units, length, filter),
                        run.count(units, length, filter)};
    });
  }
}

TEST(UnitKernels, FindAndCountMembers) {
  const uint8_t* sets[] = {alphaCharacterSetRep(), whiteCharacterSetRep(), bitmap(CharacterSet::Illegal)};
  for (const uint8_t* set : sets) {
    const std::vector<uint8_t> exact(set, set + VelanTableLength / 8);  // on the heap, where nothing lies behind it
    const uint8_t* rep = exact.data();
    const auto isMember = [rep](unichar c) { return isMemberOfCharacterSetRep(rep, c); };
    for (const std::u16string_view letters : {kLetters, kManyPages}) {
      expectEqualResults(letters, [&](const UnitKernels& run, const unichar* units, size_t length) {
        const auto slow = static_cast<size_t>(std::count_if(units, units + length, isMember));
        std::u16string members(length + UnitKernels::kCopySlack, u' ');
        SetHints hints;
        members.resize(run.copyMembers(units, length, rep, hints, members.data()));
        std::vector<uint8_t> marks(length);
        run.markMembers(units, std::min<size_t>(length, 7), rep, hints, marks.data());  // hints of smaller vectors
        run.markMembers(units, length, rep, hints, marks.data());
        return std::tuple(
            members, marks, std::ranges::count(marks, 0xFF) - static_cast<ptrdiff_t>(slow),
            std::array{run.findMember(units, length, rep, true), run.findMember(units, length, rep, false),
                       run.countMembers(units, length, rep) - slow});
      });
    }
  }
}

// Other units whose low bits are those of a member are none.
TEST(UnitKernels, FindASCII) {
  ASCIISet ascii{};
  for (const unichar c : {u'a', u'\0', u'\x7F'}) addUnit(ascii, c);
  constexpr std::u16string_view kNeighbours = u"b\xE1\x161\x461\x8080\xFF\x37F\x47F\x3C00\xFFFF~a\x7F";
  expectEqualResults(kNeighbours, [&](const UnitKernels& run, const unichar* units, size_t length) {
    const size_t slow = std::u16string_view(units, length).find_first_of(u"a\x7F");
    return run.findASCII(units, length, ascii) - std::min(slow, length);
  });
}

// Also where every other unit begins a run, which fills sums soonest.
TEST(UnitKernels, RunsBetweenMarks) {
  std::mt19937 random(2);
  for (size_t length = 0; length <= 20000; length += length < 300 ? 1 : 3940) {
    for (const bool alternates : {false, true}) {
      const size_t shift = random() % 32;
      const auto buffer = std::make_unique<uint8_t[]>(shift + length + 2);
      uint8_t* marks = buffer.get() + shift;
      for (size_t i = 0; i < length + 2; ++i) marks[i] = (alternates ? i : random()) % 2 == 0 ? 0xFF : 0;
      std::vector<uint8_t> expected(length), types(length);
      const size_t runs = unitKernelList().reference().runsFromMarks(marks, length, expected.data());
      EXPECT_EQ(runs, static_cast<size_t>(std::ranges::count_if(expected, [](uint8_t type) { return type & 2; })));
      for (const auto& kernel : unitKernelList()) {
        EXPECT_EQ(kernel.run.runsFromMarks(marks, length, types.data()), runs) << kernel.name << ' ' << length;
        EXPECT_EQ(types, expected) << kernel.name << ' ' << length;
        std::u16string positions(length + UnitKernels::kCopySlack, u' ');
        positions.resize(kernel.run.positions(types.data(), length, 2, positions.data()));
        std::u16string slow;
        for (size_t i = 0; i < length; ++i) {
          if (expected[i] & 2) slow += static_cast<unichar>(i);
        }
        EXPECT_EQ(positions, slow) << kernel.name << ' ' << length;
      }
    }
  }
}

TEST(UnitKernels, MapAndCompare) {
  for (const unichar* table : {upperCharsTable(), lowerUmlautsCharsTable(), umlautsCharsTable(), foreignTable()}) {
    const UnitMapping mapping = mappingOf(table);
    for (const std::u16string_view letters : {kLetters, kManyPages, kLetters.substr(0, 4)}) {
      expectEqualResults(letters, [&](const UnitKernels& run, const unichar* units, size_t length) {
        const auto mapped = std::make_unique<unichar[]>(length);
        run.map(units, length, mapping, mapped.get());
        std::u16string results(mapped.get(), length);
        run.map(mapped.get(), length, mapping, mapped.get());  // in place
        results.append(mapped.get(), length);
        for (size_t changed = 0; changed < length; changed += 1 + length / 4) {
          results += static_cast<unichar>(run.mismatch(units, mapped.get(), length, mapping));
          mapped[changed] = letters[length % letters.size()];
        }
        results += static_cast<unichar>(run.mismatch(units, mapped.get(), length, mappingOf(nullptr)));
        return results;
      });
    }
  }
}

// Sets that hold both cases of all letters, or of some only one; hints that go from one part of a text to the next.
TEST(UnitKernels, CompareMembers) {
  std::vector<uint8_t> both(alphaCharacterSetRep(), alphaCharacterSetRep() + VelanTableLength / 8), one = both,
                                                                                                    few = both;
  for (const unichar c : {u'b', u'\x434', u'\xE4'}) one[c >> 3] &= static_cast<uint8_t>(~(1u << (c & 7)));
  few[u'\x434' >> 3] &= static_cast<uint8_t>(~(1u << (u'\x434' & 7)));
  const unichar* none = nullptr;
  for (const unichar* table : {none, upperCharsTable(), umlautsCharsTable(), foreignTable()}) {
    const UnitMapping mapping = mappingOf(table);
    for (const std::vector<uint8_t>* set : {&both, &one, &few}) {
      for (const std::u16string_view letters : {kLetters, kManyPages, u"a .\x434\x44F\x414"sv}) {
        expectEqualResults(letters, [&](const UnitKernels& run, const unichar* units, size_t length) {
          const auto other = std::make_unique<unichar[]>(length);
          for (size_t i = 0; i < length; ++i) {
            other[i] = i % 97 == 41 ? u'b' : i % 5 < length % 5 ? units[i] : table ? toUpper(units[i]) : units[i];
          }
          std::vector<size_t> results;
          MemberHints hints;
          for (size_t from = 0; from < length; from += results.back() + 1) {
            results.push_back(
                run.mismatchOfMembers(units + from, other.get() + from, length - from, set->data(), mapping, hints));
          }
          return results;
        });
      }
    }
  }
}

size_t slowCount(const unichar* units, size_t length, const NeedleUnits& needle, size_t size, const unichar* table) {
  size_t count = 0;
  for (size_t i = 0, same = 0; i + size <= length; i += same == size ? size : 1) {
    const auto mapped = [&](size_t k) { return table ? table[units[i + k]] : units[i + k]; };
    for (same = 0; same < size && mapped(same) == needle(same);) ++same;
    count += same == size;
  }
  return count;
}

// Also near matches by the thousand, after which kernels may give up at different places.
TEST(UnitKernels, FindAndCountNeedles) {
  const std::u16string needles[] = {u"a",
                                    u"ab",
                                    u"aab",
                                    u"KSA",
                                    u"aba",
                                    u"abababab",
                                    u"aBbKkAb",
                                    std::u16string(40, u'a') + u"bB",
                                    u"b" + std::u16string(69, u'a')};
  const unichar* none = nullptr;
  for (const unichar* table : {none, upperCharsTable(), upperUmlautsCharsTable(), foreignTable()}) {
    for (const std::u16string& needle : needles) {
      const UnitSearch search(NeedleUnits{needle.data(), table}, needle.size(), table);
      for (const std::u16string_view letters : {kLetters, kLetters.substr(0, 4)}) {
        expectEqualResults(letters, [&](const UnitKernels& run, const unichar* units, size_t length) {
          const size_t count = search.count(units, length, run);
          EXPECT_EQ(count, slowCount(units, length, search.needle(), needle.size(), table));
          return std::array{search.find(units, length, run), count};
        });
      }
    }
  }
}

// Positions are gathered some at a time, and by no more than the units of the text.
TEST(UnitKernels, GatherNeedles) {
  const std::u16string needles[] = {u"a", u"ab", u"aab", u"KSA", u"abababab", std::u16string(32, u'a')};
  const unichar* none = nullptr;
  for (const unichar* table : {none, upperCharsTable(), upperUmlautsCharsTable(), foreignTable()}) {
    for (const std::u16string& needle : needles) {
      NeedleHead head;
      head.length = needle.size();
      head.table = table;
      std::ranges::transform(needle, head.units, [&](unichar c) { return table ? table[c] : c; });
      chooseProbes(head);
      for (const std::u16string_view letters : {kLetters, kLetters.substr(0, 4)}) {
        expectEqualResults(letters, [&](const UnitKernels& run, const unichar* units, size_t length) {
          const size_t positions = length < head.length ? 0 : length - head.length + 1, most = 1 + length % 70;
          std::vector<size_t> all;
          for (size_t from = 0; from < positions;) {
            const auto found = std::make_unique<unichar[]>(most + UnitKernels::kGatherSlack);
            const NeedlePositions gathered = run.gatherHead(units + from, positions - from, head, found.get(), most);
            for (size_t i = 0; i < gathered.count; ++i) all.push_back(from + found[i]);
            if (gathered.end == 0 || gathered.end > positions - from) return std::vector<size_t>{SIZE_MAX};
            from += gathered.end;
          }
          return all;
        });
      }
    }
  }
}

TEST(UnitKernels, GatherAnyOfSomeNeedles) {
  NeedleClasses classes;
  const std::u16string_view needles[] = {u"aBk", u"KKa", u"a. ", u"\x434\x414\x440", u"\xFFFFsS"};
  for (unsigned needle = 0; needle < std::size(needles); ++needle) {
    for (size_t probe = 0; probe < 3; ++probe) classes.add(probe, needles[needle][probe], needle);
  }
  for (unichar c = 0; c < 0x80; ++c) classes.add(2, c, 1);  // for any unit that follows
  for (const std::u16string_view letters : {kLetters, kLetters.substr(0, 6)}) {
    expectEqualResults(letters, [&](const UnitKernels& run, const unichar* units, size_t length) {
      const size_t positions = length < 2 ? 0 : length - 2, most = 1 + length % 70;
      std::vector<size_t> all, expected;
      const auto found = std::make_unique<unichar[]>(most + UnitKernels::kGatherSlack);
      for (size_t from = 0; from < positions;) {
        const NeedlePositions gathered = run.gatherAny(units + from, positions - from, classes, found.get(), most);
        for (size_t i = 0; i < gathered.count; ++i) all.push_back(from + found[i]);
        if (gathered.end == 0 || gathered.end > positions - from) return std::vector<size_t>{SIZE_MAX};
        from += gathered.end;
      }
      for (size_t i = 0; i < positions; ++i) {
        for (const std::u16string_view needle : needles) {
          const size_t probes = needle == needles[1] ? 2 : 3;
          size_t same = 0;
          while (same < probes && units[i + same] % 0x80 == needle[same] % 0x80) ++same;
          if (same == probes && (expected.empty() || expected.back() != i)) expected.push_back(i);
        }
      }
      EXPECT_EQ(all, expected);
      return all;
    });
  }
}

TEST(Preimages, FiltersOfEveryUnit) {
  for (const unichar* table : {upperCharsTable(), umlautsCharsTable(), lowerUmlautsCharsTable()}) {
    const std::u16string_view entries(table, VelanTableLength);
    for (const unichar c : kLetters) {
      const UnitFilter filter = filterOfPreimages(table[c], table);
      size_t passing = 0;
      for (size_t unit = 0; unit < VelanTableLength; ++unit) {
        const auto one = static_cast<unichar>(unit);
        const bool passes = unitKernelList().reference().count(&one, 1, filter) == 1;
        EXPECT_TRUE(passes || table[unit] != table[c]) << unit;
        passing += passes;
      }
      const bool isExact = table == upperCharsTable();
      EXPECT_TRUE(!isExact || passing == static_cast<size_t>(std::ranges::count(entries, table[c]))) << int{c};
    }
  }
}

}  // namespace
}  // namespace velan
