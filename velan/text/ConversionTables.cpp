#include "velan/text/ConversionTables.h"

#include <atomic>
#include <bit>
#include <mutex>

#include "velan/base/ASCII.h"
#include "velan/platform/CharacterDataInternal.h"
#include "velan/text/CharacterSetBitsInternal.h"
#include "velan/text/CharacterSets.h"
#include "velan/text/ConversionTablesInternal.h"
#include "velan/text/PreimagesInternal.h"

namespace velan {

extern "C" {
const unichar* _lowerCharsTable = nullptr;
const unichar* _upperCharsTable = nullptr;
const unichar* _umlautsCharsTable = nullptr;
const unichar* _lowerUmlautsCharsTable = nullptr;
const unichar* _upperUmlautsCharsTable = nullptr;
}

namespace {

// Memory of the library, so that building cannot fail; pages of a table that is never used are never touched.
struct Table {
  std::once_flag once;
  alignas(64) unichar entries[VelanTableLength];  // vectors of them lie in one line of the cache
  UnitMapping mapping;
  UnitMapping::Windows settled;
  std::once_flag preimagesOnce;
  std::atomic<bool> hasPreimages = false;  // they are complete
  Preimages preimages;
};
Table lower, upper, umlauts, lowerUmlauts, upperUmlauts;

// What the letters of ASCII become.
UnitMapping described(const unichar* entries) {
  UnitMapping mapping = {entries, true, 0, 0, nullptr};
  if (entries[u'a'] != 'a') mapping.firstLetter = 'a';
  if (entries[u'A'] != 'A') mapping.firstLetter = 'A';
  mapping.difference = static_cast<unichar>(mapping.firstLetter - entries[mapping.firstLetter]);
  for (unichar c = 0; c < 0x80; ++c) {
    const bool isLetter = c >= mapping.firstLetter && c <= mapping.firstLetter + ('z' - 'a');
    if (entries[c] != c - (isLetter ? mapping.difference : 0)) mapping.knowsASCII = false;
  }
  return mapping;
}

// The windows in which nothing is to be looked up.
void fillSettled(const unichar* entries, bool knowsASCII, UnitMapping::Windows& settled) {
  for (size_t window = 0; window < VelanTableLength / UnitMapping::kWindow; ++window) {
    const size_t first = window * UnitMapping::kWindow;
    size_t c = first;
    while (c < first + UnitMapping::kWindow && entries[c] == c) ++c;
    const bool stays = c == first + UnitMapping::kWindow;
    if (window == 0 ? knowsASCII : stays) addUnit(settled, static_cast<unichar>(window));
  }
}

constexpr UnitMapping::Windows kNoneSettled{};

// `published` is set when the table is complete: whoever sees it may read the table without a lock.
template <typename Fill>
const unichar* builtTable(const unichar*& published, Table& table, Fill fill) {
  if (const unichar* complete = __atomic_load_n(&published, __ATOMIC_ACQUIRE)) return complete;
  std::call_once(table.once, [&] {
    fill(table.entries);
    table.mapping = described(table.entries);
    fillSettled(table.entries, table.mapping.knowsASCII, table.settled);
    table.mapping.settled = table.settled.data();
    __atomic_store_n(&published, &table.entries[0], __ATOMIC_RELEASE);
  });
  return table.entries;
}

// The members of `set` go through `mapping`, all other units stay.
void fillMapped(unichar* entries, CharacterSet set, unichar (*mapping)(unichar)) {
  for (size_t c = 0; c < VelanTableLength; ++c) entries[c] = static_cast<unichar>(c);
  const uint8_t* rep = bitmap(set);
  for (size_t i = 0; i < CharacterSetRepLength; ++i) {
    for (unsigned bits = rep[i]; bits != 0; bits &= bits - 1) {
      const auto c = static_cast<unichar>(i * 8 + static_cast<size_t>(std::countr_zero(bits)));
      entries[c] = mapping(c);
    }
  }
}

void fillCombined(unichar* entries, const unichar* first, const unichar* second) {
  for (size_t c = 0; c < VelanTableLength; ++c) entries[c] = second[first[c]];
}

unichar asciiOrSpace(unichar c) { return c < 0x80 ? c : u' '; }

}  // namespace

const unichar* initLowerCharsTable() {
  return builtTable(_lowerCharsTable, lower,
                    [](unichar* entries) { fillMapped(entries, CharacterSet::UppercaseLetter, lowerCaseOfUnit); });
}

const unichar* initUpperCharsTable() {
  return builtTable(_upperCharsTable, upper,
                    [](unichar* entries) { fillMapped(entries, CharacterSet::LowercaseLetter, upperCaseOfUnit); });
}

const unichar* initUmlautsCharsTable() {
  return builtTable(_umlautsCharsTable, umlauts,
                    [](unichar* entries) { fillMapped(entries, CharacterSet::Letter, withoutDiacritics); });
}

const unichar* initLowerUmlautsCharsTable() {
  return builtTable(_lowerUmlautsCharsTable, lowerUmlauts,
                    [](unichar* entries) { fillCombined(entries, initUmlautsCharsTable(), initLowerCharsTable()); });
}

const unichar* initUpperUmlautsCharsTable() {
  return builtTable(_upperUmlautsCharsTable, upperUmlauts,
                    [](unichar* entries) { fillCombined(entries, initUmlautsCharsTable(), initUpperCharsTable()); });
}

unichar toLower(unichar c) { return initLowerCharsTable()[c]; }
unichar toUpper(unichar c) { return initUpperCharsTable()[c]; }
unichar umlautsToAscii(unichar c) { return initUmlautsCharsTable()[c]; }
unichar umlautsToUpperAscii(unichar c) { return initUpperUmlautsCharsTable()[c]; }
unichar umlautsToLowerAscii(unichar c) { return initLowerUmlautsCharsTable()[c]; }
unichar toAscii(unichar c) { return asciiOrSpace(umlautsToAscii(c)); }
unichar toUpperAscii(unichar c) { return toASCIIUpper(toAscii(c)); }
unichar toLowerAscii(unichar c) { return toASCIILower(toAscii(c)); }

namespace {

Table* ownTable(const unichar* table) {
  for (Table* own : {&upper, &lower, &umlauts, &upperUmlauts, &lowerUmlauts}) {
    if (table == own->entries) return own;
  }
  return nullptr;
}

}  // namespace

const Preimages* preimagesOfTable(const unichar* table) {
  Table* own = ownTable(table);
  if (!own) return nullptr;
  if (own->hasPreimages.load(std::memory_order_acquire)) return &own->preimages;
  std::call_once(own->preimagesOnce, [own] {
    own->hasPreimages.store(fillPreimages(own->entries, own->preimages), std::memory_order_release);
  });
  return own->hasPreimages ? &own->preimages : nullptr;
}

UnitMapping mappingOf(const unichar* table) {
  const Table* own = ownTable(table);
  return own ? own->mapping : UnitMapping{table, !table, 0, 0, kNoneSettled.data()};
}

bool isUnicharTablePartOfConversionTable(const unichar* table, const unichar* conversionTable) {
  if (!table || !conversionTable) return false;
  if (table == conversionTable) return true;
  if (table == lower.entries) return conversionTable == lowerUmlauts.entries;
  if (table == upper.entries) return conversionTable == upperUmlauts.entries;
  if (table == umlauts.entries) {
    return conversionTable == lowerUmlauts.entries || conversionTable == upperUmlauts.entries;
  }
  return false;
}

}  // namespace velan
