#include <algorithm>
#include <bit>
#include <functional>

#include "velan/query/evaluation/LiteralHitsInternal.h"
#include "velan/query/evaluation/PatternProbesInternal.h"
#include "velan/text/PreimagesInternal.h"
#include "velan/wildcard/WildcardMatching.h"

namespace velan {
namespace {

// Letters of a text differ in five bits, of which each bit that is open takes one.
constexpr unsigned kMostBits = 5;

// The bits that units have in common.
class CommonBits {
 public:
  void add(unichar unit) {
    _all &= unit;
    _any |= unit;
  }
  unichar mask() const { return static_cast<unichar>(~(_any ^ _all)); }
  unichar bits() const { return static_cast<unichar>(_all & mask()); }
  unsigned tells() const {
    const auto open = static_cast<unsigned>(std::popcount(static_cast<uint16_t>(_any ^ _all)));
    return open < kMostBits ? kMostBits - open : 0;
  }

 private:
  unichar _all = 0xFFFF, _any = 0;
};

void addPreimages(unichar c, const unichar* table, CommonBits& common) {
  if (!table) return common.add(c);
  if (table[c] != c) return;  // what no unit becomes
  forEachPreimage(c, table, [&common](unichar unit) { common.add(unit); });
}

// The bits of all units that the element stands for; those of none and all units where they are not known.
CommonBits commonBitsOf(std::u16string_view element, const unichar* table) {
  CommonBits common;
  const bool isASCII = std::ranges::all_of(element, [](unichar c) { return c < 0x80; });
  if (element.front() == u'?' || (element.size() > 1 && (!isASCII || element[1] == u'^'))) {
    common.add(0);
    common.add(0xFFFF);
  } else if (element.size() == 1) {
    addPreimages(element.front(), table, common);
  } else {
    for (unichar c = 0; c < 0x80; ++c) {
      const bool isMember = stringMatchesUnixWildcard(&c, &c + 1, element.data(), element.data() + element.size());
      if (isMember) addPreimages(c, table, common);
    }
  }
  return common;
}

// Keeps the elements that tell most, from left to right; one stands for all that there are not.
class ProbeChoice {
 public:
  void add(size_t position, const CommonBits& common) {
    if (common.tells() == 0) return;
    const auto worse = std::ranges::min_element(_chosen, {}, &Chosen::tells);
    if (worse->tells < common.tells()) *worse = {position, common.mask(), common.bits(), common.tells()};
  }
  unsigned tells() const { return _chosen[0].tells + _chosen[1].tells + _chosen[2].tells; }
  NeedleHead head(size_t length) const {
    NeedleHead head;
    head.length = length;
    head.table = nullptr;
    head.telling = NeedleHead::Telling::ProbesOnly;
    head.tellsAll = false;
    Chosen best[NeedleHead::kProbes];
    std::ranges::copy(_chosen, best);
    std::ranges::sort(best, std::greater(), &Chosen::tells);
    for (Chosen& one : best) {
      if (one.tells == 0) one = best[0];
    }
    if (best[1].position < best[0].position) std::swap(best[0], best[1]);
    for (size_t k = 0; k < NeedleHead::kProbes; ++k) {
      head.probes[k] = {best[k].position, best[k].mask, best[k].bits, UnitFilter(best[k].bits)};
    }
    return head;
  }

 private:
  struct Chosen {
    size_t position = 0;
    unichar mask = 0, bits = 0;
    unsigned tells = 0;
  };
  Chosen _chosen[NeedleHead::kProbes];
};

}  // namespace

ProbedRun mostTellingRun(std::u16string_view pattern, bool hasSets, const unichar* table) {
  ProbedRun most{};
  for (size_t start = 0; start < pattern.size();) {
    ProbeChoice choice;
    size_t length = 0, end = start;
    while (end < pattern.size() && pattern[end] != u'*') {
      const std::u16string_view element = firstElement(pattern.substr(end));
      if (element.empty() || (element.front() == u'[' && !hasSets)) return {};
      choice.add(length++, commonBitsOf(element, table));
      end += element.size();
    }
    if (choice.tells() > most.tells && length <= static_cast<size_t>(LiteralHits::kShort)) {
      const bool isAll = start <= 1 && pattern.size() - end <= 1;
      most = {pattern.substr(start, end - start), choice.head(length), choice.tells(), isAll};
    }
    start = end + 1;
  }
  return most;
}

}  // namespace velan
