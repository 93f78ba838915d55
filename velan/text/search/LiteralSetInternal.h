// Looking for many literals at once: one pass over a text, however many they are.
#ifndef VELAN_TEXT_SEARCH_LITERAL_SET_INTERNAL_H
#define VELAN_TEXT_SEARCH_LITERAL_SET_INTERNAL_H

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "velan/base/CTypes.h"

namespace velan {

/// Literals that are found by the hash of two or three of their units, which are chosen to be rare. Where a text has
/// units of the same hash, the literals that it may be are compared. Once prepared it never changes, so that any number
/// of threads may use it at once.
class LiteralSet {
 public:
  static constexpr size_t kShortest = 2;

  /// The places of one literal lie together, in the order of the text.
  struct Hit {
    uint32_t literal;
    uint32_t position;

    auto operator<=>(const Hit&) const = default;
  };

  /// The units of texts go through `table` before they are compared, if there is one; those of literals do not.
  explicit LiteralSet(const unichar* table) : _table(table) {}

  /// The number of a literal of at least `kShortest` units: one for each that differs. To be followed by `prepare`.
  uint32_t add(std::u16string_view literal);
  void prepare();
  size_t size() const { return _literals.size(); }

  /// Where each of the literals lies in the text, also where it overlaps itself or others. Nothing when another way is
  /// better: the text is too long for a position, or would take more time or memory than is due to its length.
  std::optional<std::vector<Hit>> find(const unichar* text, size_t length) const;

 private:
  struct Entry {
    uint16_t hash;
    uint32_t literal;
    uint32_t offset;  // of the units that are hashed
  };
  // The literals of which so many units are hashed.
  struct Group {
    size_t hashedUnits;
    uint16_t hashMask = 0;
    std::vector<Entry> entries{};    // by hash
    std::vector<uint8_t> next{};     // of each hash, a bit for each kind of unit that may follow
    std::vector<uint32_t> starts{};  // of its entries
  };
  class Pass;

  void prepare(Group& group) const;
  void chooseUnits(const Group& group, Entry& entry) const;
  static void hashEach(const Group& group, const unichar* units, size_t positions, uint16_t* hashes);

  const unichar* const _table;
  std::vector<std::u16string> _literals;
  std::unordered_map<std::u16string, uint32_t> _numbers;
  Group _groups[2] = {{.hashedUnits = 2}, {.hashedUnits = 3}};
};

}  // namespace velan

#endif  // VELAN_TEXT_SEARCH_LITERAL_SET_INTERNAL_H
