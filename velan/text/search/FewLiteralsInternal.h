// Looking for a few literals at once: one pass over a text for all of them.
#ifndef VELAN_TEXT_SEARCH_FEW_LITERALS_INTERNAL_H
#define VELAN_TEXT_SEARCH_FEW_LITERALS_INTERNAL_H

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "velan/text/kernels/UnitKernelsInternal.h"

namespace velan {

/// Literals that are found by three of their units in a row, which are chosen to be rare. Never changes but by `add`,
/// so that any number of threads may use it at once.
class FewLiterals {
 public:
  static constexpr size_t kMost = NeedleClasses::kMost;
  /// Of longer ones each place could cost much.
  static constexpr size_t kShortest = 2, kLongest = 32;
  static constexpr size_t kLongestText = UINT32_MAX;

  /// Of each literal its places, in the order of the text.
  using Places = std::array<std::vector<uint32_t>, kMost>;

  /// The units of texts go through `table` before they are compared, if there is one; those of literals do not.
  explicit FewLiterals(const unichar* table) : _table(table) {}

  /// The number of a literal: one for each that differs. Nothing when it is too short or too long or one too many.
  std::optional<uint32_t> add(std::u16string_view literal);
  size_t size() const { return _literals.size(); }

  /// Adds the places of the literals whose chosen units begin in `[from, end)` of the text, wherever they begin
  /// themselves. Going on at `end` and so forth finds all places in their order. False when they are so close to each
  /// other there that looking for one literal after the other takes less time.
  bool find(const unichar* text, size_t length, size_t from, size_t end, Places& places) const;
  /// When all up to `end` was looked at, the places before this one of a literal are known.
  int64_t knownUpTo(uint32_t number, int64_t end) const { return end - static_cast<int64_t>(_literals[number].offset); }

 private:
  struct Entry {
    std::u16string units;
    size_t offset;  // of the chosen units
  };

  // Where the chosen units of some of the literals may be.
  struct Gathered {
    static constexpr size_t kMost = 256, kRoom = kMost + UnitKernels::kGatherSlack;

    size_t count;
    unichar positions[kRoom];
    uint8_t numbers[kRoom];  // of these literals, as bits
  };

  void addPlaces(Gathered& gathered, const unichar* text, size_t length, size_t base, Places& places) const;

  const unichar* const _table;
  std::vector<Entry> _literals;
  NeedleClasses _classes;
};

}  // namespace velan

#endif  // VELAN_TEXT_SEARCH_FEW_LITERALS_INTERNAL_H
