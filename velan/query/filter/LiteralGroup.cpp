#include <algorithm>
#include <array>

#include "velan/base/ASCII.h"
#include "velan/base/utf/UTF.h"
#include "velan/query/filter/LiteralGroupInternal.h"

namespace velan {
namespace {

constexpr size_t kKinds = 8;
// With more prints for each kind nearly every place is one.
constexpr size_t kMostPrints = 24;
// So many variants of three bytes are entered for each literal.
constexpr size_t kMostVariants = 4096;
constexpr unsigned kHashBits = 16;
constexpr unichar kReplacement = 0xFFFD;

// How often a byte occurs in text, roughly: which is rarer of two is all that counts.
constexpr double shareOf(size_t byte) {
  constexpr std::string_view kByFrequency = "etaoinsrhldcumpfgwybvkxjqz";
  if (byte >= 0x80) return 0.02;
  if (byte == ' ') return 0.15;
  const size_t rank = kByFrequency.find(static_cast<char>(toASCIILower(static_cast<unsigned char>(byte))));
  if (rank == std::string_view::npos) return 0.008;
  const double share = 0.09 - 0.0034 * static_cast<double>(rank);
  return byte >= 'a' ? share : share / 16;
}

double shareOf(const std::bitset<256>& bytes) {
  static const auto kShares = [] {
    std::array<double, 256> shares{};
    for (size_t byte = 0; byte < 256; ++byte) shares[byte] = shareOf(byte);
    return shares;
  }();
  if (bytes.all()) return 1;
  double share = 0;
  for (size_t byte = 0; byte < 256; ++byte) share += bytes[byte] ? kShares[byte] : 0;
  return share;
}

// Of the places in common text, those where prints of a kind may be.
double shareOf(const PrintTable& prints, unsigned kind) {
  double share = 1;
  for (size_t i = 0; i < kPrintLength; ++i) {
    std::bitset<256> bytes;
    for (size_t byte = 0; byte < 256; ++byte) {
      bytes[byte] = (prints.low[i][byte & 15] & prints.high[i][byte >> 4]) >> kind & 1;
    }
    share *= shareOf(bytes);
  }
  return share;
}

// The longest part of a literal that decoding gives for certain bytes only: without U+FFFD and halves of pairs.
std::u16string_view certainPart(std::u16string_view literal) {
  std::u16string_view longest;
  for (size_t start = 0; start < literal.size();) {
    size_t end = start;
    while (end < literal.size() && literal[end] != kReplacement) {
      const bool pair = isHighSurrogate(literal[end]) && end + 1 < literal.size() && isLowSurrogate(literal[end + 1]);
      const size_t next = end + (pair ? 2 : 1);
      if ((!pair && isSurrogate(literal[end])) || next - start > LiteralGroup::kLongest) break;
      end = next;
    }
    if (end - start > longest.size()) longest = literal.substr(start, end - start);
    start = std::max(end, start + 1);
  }
  return longest;
}

size_t hashOf(uint32_t key) { return (key * 0x9E3779B1u) >> (32 - kHashBits); }

uint8_t folded(uint8_t byte) { return toASCIILower(byte); }

}  // namespace

SourceUnits::SourceUnits(const std::vector<std::vector<std::u16string>>& groups, const unichar* table) : _table(table) {
  for (const auto& group : groups) {
    for (const std::u16string& literal : group) {
      for (const unichar c : literal) _sources[c];
    }
  }
  if (!table) {
    for (auto& [unit, sources] : _sources) sources.push_back(unit);
    return;
  }
  for (uint32_t c = 0; c <= 0xFFFF; ++c) {
    const auto found = _sources.find(table[c]);
    if (found != _sources.end()) found->second.push_back(static_cast<unichar>(c));
  }
}

LiteralGroup::LiteralGroup(const std::vector<std::u16string>& literals, const SourceUnits& sources)
    : _table(sources.table()) {
  for (const std::u16string& literal : literals) {
    _literals.emplace_back(certainPart(literal));
    if (_literals.back().empty()) _isSelective = false;
  }
  if (!_isSelective) return;
  std::sort(_literals.begin(), _literals.end());
  _literals.erase(std::unique(_literals.begin(), _literals.end()), _literals.end());
  for (size_t i = 0; i < _literals.size(); ++i) {
    for (const unichar c : sources.of(_literals[i].front())) _byFirstUnit[c].push_back(i);
  }
  if (_literals.size() <= kMostPrints) preparePlaces(sources);
  if (_places.empty() && !_literals.empty()) _isSelective = prepareHashes(sources);
}

void LiteralGroup::addUnits(const SourceUnits& sources, std::vector<bool>& units) const {
  for (const std::u16string& literal : _literals) {
    for (const unichar c : literal) {
      for (const unichar source : sources.of(c)) units[source] = true;
    }
  }
}

void LiteralGroup::addJoins(const SourceUnits& sources, std::vector<bool>& joins) const {
  const auto join = [&joins](const std::bitset<256>& before, const std::bitset<256>& after) {
    for (size_t one = 0; one < 256; ++one) {
      for (size_t two = 0; before[one] && two < 256; ++two) {
        if (after[two]) joins[one << 8 | two] = true;
      }
    }
  };
  std::bitset<256> edge;
  edge.set(0);
  for (const std::u16string& literal : _literals) {
    std::bitset<256> before = edge;
    for (size_t i = 0; i < literal.size(); ++i) {
      if (isLowSurrogate(literal[i])) continue;
      std::bitset<256> first;
      std::bitset<256> last;
      for (const Form& form : formsAt(literal, i, sources)) {
        first |= form.bytes.front();
        last |= form.bytes.back();
      }
      join(before, first);
      before = last;
    }
    join(before, edge);
  }
}

std::vector<LiteralGroup::Form> LiteralGroup::formsAt(std::u16string_view literal, size_t index,
                                                      const SourceUnits& sources) const {
  const auto added = [](Form& form, std::u16string_view units) {
    char bytes[2 * kMaxUTF8BytesPerUnit];
    const size_t length = convertUTF16ToUTF8(units, bytes).written;
    form.bytes.resize(length);
    for (size_t i = 0; i < length; ++i) form.bytes[i].set(static_cast<uint8_t>(bytes[i]));
  };
  if (isHighSurrogate(literal[index])) {
    Form pair{{}, 2};
    added(pair, literal.substr(index, 2));
    return {pair};
  }
  std::array<Form, kMaxUTF8BytesPerUnit> byLength;
  for (const unichar c : sources.of(literal[index])) {
    Form& form = byLength[c < 0x80 ? 0 : c < 0x800 ? 1 : 2];
    form.units = 1;
    added(form, {&c, 1});
  }
  std::vector<Form> forms(byLength.begin(), byLength.end());
  std::erase_if(forms, [](const Form& form) { return form.bytes.empty(); });
  return forms;
}

// All ways in which the bytes from the unit at `offset` on may go; any bytes follow the end of the literal.
std::vector<LiteralGroup::Print> LiteralGroup::printsAt(const std::vector<std::vector<Form>>& forms,
                                                        size_t offset) const {
  struct Way {
    Print print;
    size_t filled;
    size_t unit;
  };
  std::vector<Print> prints;
  std::vector<Way> ways{{{{}, 1}, 0, offset}};
  while (!ways.empty()) {
    Way way = ways.back();
    ways.pop_back();
    if (way.filled == kPrintLength || way.unit == forms.size()) {
      for (; way.filled < kPrintLength; ++way.filled) way.print.bytes[way.filled].set();
      prints.push_back(way.print);
      continue;
    }
    for (const Form& form : forms[way.unit]) {
      Way next = way;
      next.unit += form.units;
      for (size_t i = 0; i < form.bytes.size() && next.filled < kPrintLength; ++i) {
        next.print.bytes[next.filled++] = form.bytes[i];
        next.print.share *= shareOf(form.bytes[i]);
      }
      ways.push_back(next);
    }
  }
  return prints;
}

std::vector<LiteralGroup::Print> LiteralGroup::rarestPrints(std::u16string_view literal, const SourceUnits& sources,
                                                            size_t& offset) const {
  std::vector<std::vector<Form>> forms(literal.size());
  for (size_t i = 0; i < literal.size(); ++i) {
    if (!isLowSurrogate(literal[i])) forms[i] = formsAt(literal, i, sources);
  }
  std::vector<Print> rarest;
  double least = 0;
  for (size_t i = 0; i < literal.size(); ++i) {
    if (isLowSurrogate(literal[i])) continue;
    std::vector<Print> prints = printsAt(forms, i);
    double share = 0;
    for (const Print& print : prints) share += print.share;
    if (!rarest.empty() && share >= least) continue;
    least = share;
    offset = i;
    rarest = std::move(prints);
  }
  return rarest;
}

void LiteralGroup::preparePlaces(const SourceUnits& sources) {
  size_t count = 0;
  for (size_t i = 0; i < _literals.size() && count <= kMostPrints; ++i) {
    Place place{i, 0, 0};
    for (const Print& print : rarestPrints(_literals[i], sources, place.offset)) {
      const auto kind = static_cast<unsigned>(count++ % kKinds);
      _prints.add(print.bytes, kind);
      place.kinds |= static_cast<uint8_t>(1u << kind);
    }
    _places.push_back(place);
  }
  if (count > kMostPrints && _literals.size() > 1) _places.clear();
}

bool LiteralGroup::prepareHashes(const SourceUnits& sources) {
  _hashed.resize(1);
  _heads.resize(size_t{1} << kHashBits);
  _isHashed.resize(_heads.size() / 64);
  std::vector<BytePrint> beginnings;
  for (size_t i = 0; i < _literals.size(); ++i) {
    if (_literals[i].size() < kPrintLength) _short.push_back(i);
    std::vector<std::vector<Form>> forms(_literals[i].size());
    for (size_t unit = 0; unit < forms.size() && unit < kPrintLength; ++unit) {
      if (!isLowSurrogate(_literals[i][unit])) forms[unit] = formsAt(_literals[i], unit, sources);
    }
    for (const Print& print : printsAt(forms, 0)) {
      if (!addHashes(i, print.bytes)) return false;
      beginnings.push_back(print.bytes);
    }
  }
  prepareBeginnings(std::move(beginnings));
  return true;
}

// Literals with few beginnings are looked for by those, and so are only the places that they leave hashed.
void LiteralGroup::prepareBeginnings(std::vector<BytePrint> beginnings) {
  constexpr double kMostPlaces = 0.02;
  const auto first = [](const BytePrint& print) {
    size_t byte = 0;
    while (byte < 255 && !print[0][byte]) ++byte;
    return toASCIILower(static_cast<uint8_t>(byte));
  };
  std::stable_sort(beginnings.begin(), beginnings.end(),
                   [&](const BytePrint& a, const BytePrint& b) { return first(a) < first(b); });
  for (size_t i = 0; i < beginnings.size(); ++i) {
    _prints.add(beginnings[i], static_cast<unsigned>(i * kKinds / beginnings.size()));
  }
  double share = 0;
  for (unsigned kind = 0; kind < kKinds; ++kind) share += shareOf(_prints, kind);
  _areBeginningsRare = share <= kMostPlaces;
}

bool LiteralGroup::addHashes(size_t literal, const BytePrint& print) {
  std::array<std::vector<uint32_t>, kPrintLength> bytes;
  for (size_t i = 0; i < kPrintLength; ++i) {
    std::bitset<256> distinct;
    for (size_t byte = 0; byte < 256; ++byte) {
      if (print[i][byte]) distinct.set(folded(static_cast<uint8_t>(byte)));
    }
    for (uint32_t byte = 0; byte < 256; ++byte) {
      if (distinct[byte]) bytes[i].push_back(byte);
    }
  }
  if (bytes[0].size() * bytes[1].size() * bytes[2].size() > kMostVariants) return false;
  for (const uint32_t first : bytes[0]) {
    for (const uint32_t second : bytes[1]) {
      for (const uint32_t third : bytes[2]) addHash(first << 16 | second << 8 | third, literal);
    }
  }
  return true;
}

void LiteralGroup::addHash(uint32_t key, size_t literal) {
  const size_t hash = hashOf(key);
  _hashed.push_back({key, static_cast<uint32_t>(literal), _heads[hash]});
  _heads[hash] = static_cast<uint32_t>(_hashed.size() - 1);
  _isHashed[hash / 64] |= uint64_t{1} << (hash % 64);
}

bool LiteralGroup::isInUTF8(std::string_view text) const {
  if (!_hashed.empty()) return isInUTF8ByHash(text);
  const auto* bytes = reinterpret_cast<const uint8_t*>(text.data());
  for (size_t at = 0; (at = findPrint(text, at, _prints)) < text.size(); ++at) {
    const uint8_t kinds = text.size() - at >= kPrintLength ? _prints.kindsAt(bytes + at) : 0xFF;
    for (const Place& place : _places) {
      if ((place.kinds & kinds) != 0 && isAt(text, at, place.literal, place.offset)) return true;
    }
  }
  return false;
}

// Whether a literal that has no room for a print stands at the end.
bool LiteralGroup::endsWithShort(std::string_view text) const {
  for (size_t at = text.size() - std::min(text.size(), kPrintLength - 1); at < text.size(); ++at) {
    for (const size_t literal : _short) {
      if (isAt(text, at, literal, 0)) return true;
    }
  }
  return false;
}

bool LiteralGroup::isInUTF8ByHash(std::string_view text) const {
  if (endsWithShort(text)) return true;
  uint32_t key = 0;
  for (size_t end = 0; end < text.size(); ++end) {
    if (_areBeginningsRare) {
      end = findPrint(text, end < kPrintLength ? 0 : end + 1 - kPrintLength, _prints) + kPrintLength - 1;
      if (end >= text.size()) return false;
      for (size_t i = end + 1 - kPrintLength; i < end; ++i) key = key << 8 | folded(static_cast<uint8_t>(text[i]));
    }
    key = (key << 8 | folded(static_cast<uint8_t>(text[end]))) & 0xFFFFFF;
    const size_t hash = hashOf(key);
    if ((_isHashed[hash / 64] >> (hash % 64) & 1) == 0 || end + 1 < kPrintLength) continue;
    for (uint32_t i = _heads[hash]; i != 0; i = _hashed[i].next) {
      if (_hashed[i].key == key && isAt(text, end + 1 - kPrintLength, _hashed[i].literal, 0)) return true;
    }
  }
  return false;
}

// Whether the literal lies in the text so that its unit at `offset` begins at `at`.
bool LiteralGroup::isAt(std::string_view text, size_t at, size_t literal, size_t offset) const {
  const std::u16string_view units = _literals[literal];
  const auto byteAt = [text](size_t i) { return static_cast<uint8_t>(text[i]); };
  for (; offset > 0; --offset) {  // back to its first unit
    if (at == 0) return false;
    --at;
    for (int i = 0; i < 3 && at > 0 && (byteAt(at) & 0xC0) == 0x80; ++i) --at;
    if (isLowSurrogate(units[offset - 1])) --offset;
  }
  for (size_t i = 0; i < units.size();) {
    if (at >= text.size()) return false;
    if (byteAt(at) < 0x80) {
      if (mapped(byteAt(at++)) != units[i++]) return false;
      continue;
    }
    const size_t length = byteAt(at) >= 0xF0 ? 4 : byteAt(at) >= 0xE0 ? 3 : 2;
    unichar decoded[4];
    const Transcoded sequence = convertUTF8ToUTF16(text.substr(at, length), decoded);
    if (sequence.consumed != length || sequence.written > units.size() - i) return false;
    for (size_t k = 0; k < sequence.written; ++k) {
      if (mapped(decoded[k]) != units[i++]) return false;
    }
    at += length;
  }
  return true;
}

bool LiteralGroup::isInUTF16(std::string_view text, bool bigEndian) const {
  const size_t length = text.size() / 2;
  const auto unitAt = [&](size_t i) {
    const auto one = static_cast<uint8_t>(text[2 * i]);
    const auto two = static_cast<uint8_t>(text[2 * i + 1]);
    return static_cast<unichar>(bigEndian ? one << 8 | two : two << 8 | one);
  };
  for (size_t at = 0; at < length; ++at) {
    const auto found = _byFirstUnit.find(unitAt(at));
    if (found == _byFirstUnit.end()) continue;
    for (const size_t literal : found->second) {
      const std::u16string_view units = _literals[literal];
      size_t same = 0;
      while (same < units.size() && same < length - at && mapped(unitAt(at + same)) == units[same]) ++same;
      if (same == units.size()) return true;
    }
  }
  return false;
}

}  // namespace velan
