// Looking for any of several literals in encoded text.
#ifndef VELAN_QUERY_FILTER_LITERAL_GROUP_INTERNAL_H
#define VELAN_QUERY_FILTER_LITERAL_GROUP_INTERNAL_H

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "velan/base/CTypes.h"
#include "velan/query/filter/ByteSearch.h"

namespace velan {

/// For units that a table maps to, which units it maps to them.
class SourceUnits {
 public:
  /// Of all units of the groups. `table` may be null: then each stands for itself.
  SourceUnits(const std::vector<std::vector<std::u16string>>& groups, const unichar* table);

  const unichar* table() const { return _table; }
  const std::vector<unichar>& of(unichar mapped) const { return _sources.at(mapped); }

 private:
  const unichar* const _table;
  std::unordered_map<unichar, std::vector<unichar>> _sources;
};

/// Literals in mapped units, one of which is to be found in a text whose units go through the same table. Of a literal
/// only so much is looked for as well-formed text can hold, and not more than `kLongest` units.
///
/// In UTF-8 every unit that the table maps to a unit of a literal has one to three bytes. A print says what three bytes
/// in a row may be at a place in a literal that is chosen to be rare; where one is found, the literal is compared unit
/// by unit. Many literals are found by the hash of their first three bytes instead.
class LiteralGroup {
 public:
  static constexpr size_t kLongest = 32;

  LiteralGroup(const std::vector<std::u16string>& literals, const SourceUnits& sources);

  /// False when nothing can be told: every text may hold one.
  bool isSelective() const { return _isSelective; }
  bool isInUTF8(std::string_view text) const;
  /// Marks the units that may stand for one of a literal.
  void addUnits(const SourceUnits& sources, std::vector<bool>& units) const;
  /// Marks, by two bytes, what may end a character of a literal and begin the next one; 0 stands for an edge.
  void addJoins(const SourceUnits& sources, std::vector<bool>& joins) const;
  bool isInUTF16(std::string_view text, bool bigEndian) const;

 private:
  // One way to write a unit, or a pair of surrogates, in UTF-8.
  struct Form {
    std::vector<std::bitset<256>> bytes;
    size_t units;
  };
  struct Print {
    BytePrint bytes;
    double share;  // of the places in common text, roughly
  };
  // Where in a literal the prints of these kinds lie.
  struct Place {
    size_t literal;
    size_t offset;
    uint8_t kinds;
  };
  struct Hashed {
    uint32_t key;
    uint32_t literal;
    uint32_t next;
  };

  std::vector<Form> formsAt(std::u16string_view literal, size_t index, const SourceUnits& sources) const;
  std::vector<Print> printsAt(const std::vector<std::vector<Form>>& forms, size_t offset) const;
  std::vector<Print> rarestPrints(std::u16string_view literal, const SourceUnits& sources, size_t& offset) const;
  void preparePlaces(const SourceUnits& sources);
  bool prepareHashes(const SourceUnits& sources);
  void prepareBeginnings(std::vector<BytePrint> beginnings);
  bool addHashes(size_t literal, const BytePrint& print);
  void addHash(uint32_t key, size_t literal);
  bool endsWithShort(std::string_view text) const;
  bool isInUTF8ByHash(std::string_view text) const;
  bool isAt(std::string_view text, size_t at, size_t literal, size_t offset) const;
  unichar mapped(unichar c) const { return _table ? _table[c] : c; }

  bool _isSelective = true;
  const unichar* _table;
  std::vector<std::u16string> _literals;

  PrintTable _prints;
  std::vector<Place> _places;

  bool _areBeginningsRare = false;  // of the hashed literals, that is the prints
  std::vector<Hashed> _hashed;      // chained from the second on; not empty in place of the places
  std::vector<size_t> _short;       // of the hashed literals those of fewer units than a print has bytes
  std::vector<uint32_t> _heads;     // by hash; 0 for none
  std::vector<uint64_t> _isHashed;  // a bit for each hash

  std::unordered_map<unichar, std::vector<size_t>> _byFirstUnit;  // as it stands in texts
};

}  // namespace velan

#endif  // VELAN_QUERY_FILTER_LITERAL_GROUP_INTERNAL_H
