#include <array>
#include <new>

#include "velan/text/PreimagesInternal.h"
#include "velan/text/search/UnitSearchInternal.h"

namespace velan {
namespace {

// Units of ordinary text, the most frequent first; those of two scripts that share no text take turns. All others count
// as rare.
constexpr std::u16string_view kByFrequency =
    u" оeеtаaиoнiтnсsрrвhлlк\ndмcдuпmуfяpыgьwгyзbб,.vчkй0х1-TSACIMPж2DBшEFRLNOHWG3юx5ц4)(U9\"'687V:=/KJY_щjqэzф";

constexpr size_t kRankedUnits = 0x480;

constexpr auto kFrequencies = [] {
  std::array<uint8_t, kRankedUnits> frequencies{};
  for (size_t i = 0; i < kByFrequency.size(); ++i) frequencies[kByFrequency[i]] = static_cast<uint8_t>(255 - i);
  return frequencies;
}();

unsigned frequency(unichar c) { return c < kRankedUnits ? kFrequencies[c] : 0; }

// In most alphabets the small letters stand 32 places behind the capitals.
unsigned frequencyIgnoringCase(unichar c) {
  return std::max(frequency(c), c < kRankedUnits - 0x20 ? frequency(static_cast<unichar>(c + 0x20)) : 0);
}

// More than a letter in two cases.
bool hasManyPreimages(unichar c, const unichar* rings) { return rings[rings[c]] != c; }

// The position in `[first, end)` of the rarest unit that `isWanted`; 0 if there is none.
template <typename IsWanted>
size_t rarestUnit(const NeedleHead& head, size_t first, size_t end, IsWanted isWanted) {
  static_assert(NeedleHead::kMost <= 0x100);
  unsigned rarest = ~0u;  // the frequency above the position: a minimum needs no branch
  for (size_t i = first; i < end; ++i) {
    const unichar c = head.units[i];
    if (!isWanted(c)) continue;
    const unsigned f = head.table ? frequencyIgnoringCase(c) : frequency(c);
    rarest = std::min(rarest, f << 8 | static_cast<unsigned>(i));
  }
  return rarest == ~0u ? 0 : rarest & 0xFF;
}

// Sets the probe where it stands: the copy of a struct written a moment ago stalls.
void setProbe(NeedleHead& head, NeedleHead::Probe& probe, size_t position) {
  const unichar unit = head.units[position];
  probe.position = position;
  probe.mask = 0xFFFF;
  probe.bits = unit;
  if (!head.table || head.telling == NeedleHead::Telling::Table) return;
  new (&probe.filter) UnitFilter(filterOfPreimages(unit, head.table));
  if (probe.filter.kind == UnitFilter::Kind::Ranges) head.telling = NeedleHead::Telling::Filter;
  // A letter mostly differs in one bit from its other case, and that bit is left out.
  probe.mask = static_cast<unichar>(~(probe.filter.low[0] ^ probe.filter.low[1]));
  probe.bits = probe.filter.low[0] & probe.mask;
}

}  // namespace

void chooseProbes(NeedleHead& head) {
  using enum NeedleHead::Telling;
  const unichar* rings = head.table ? ringsOfTable(head.table) : nullptr;
  head.telling = head.table && !rings ? Table : Mask;
  size_t first = 0;
  for (size_t k = 0; k < NeedleHead::kProbes; ++k) {
    // The rarest of each third: neighbours mostly come together, so that one says little when the other is there.
    const size_t end = head.length * (k + 1) / NeedleHead::kProbes;
    size_t position = rarestUnit(head, first, end, [](unichar) { return true; });
    if (rings && hasManyPreimages(head.units[position], rings)) {
      const auto fitsMask = [rings](unichar c) { return !hasManyPreimages(c, rings); };
      const size_t other = rarestUnit(head, first, end, fitsMask);
      if (fitsMask(head.units[other])) position = other;
    }
    setProbe(head, head.probes[k], position);
    first = end;
  }
}

size_t findUnits(const unichar* haystack, size_t length, const unichar* needle, size_t needleLength) {
  return findMappedUnits(haystack, length, needle, needleLength, nullptr);
}

size_t findMappedUnits(const unichar* haystack, size_t length, const unichar* needle, size_t needleLength,
                       const unichar* table) {
  if (!haystack || !needle || needleLength > length) return length;
  return UnitSearch(NeedleUnits{needle}, needleLength, table).find(haystack, length);
}

}  // namespace velan
