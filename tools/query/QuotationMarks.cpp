#include "tools/query/QuotationMarks.h"

#include <array>
#include <string>
#include <string_view>

#include "tools/query/QueryUnits.h"

namespace velan::tool {
namespace {

constexpr std::u16string_view kPlainMarks = u"\"“”„‟";

struct Marks {
  unichar opening;
  std::u16string_view closing;
  bool clings;  // to what it encloses: the same marks also stand alone, or the other way round
};

constexpr Marks kMarks[] = {
    {u'«', u"»", false}, {u'‹', u"›", false}, {u'「', u"」", false}, {u'『', u"』", false},
    {u'»', u"«»", true}, {u'›', u"‹›", true}, {u'‘', u"’", true},    {u'‚', u"‘’", true},
};

class MarkReplacer {
 public:
  explicit MarkReplacer(std::u16string_view query) : _units(query) {}

  String replaced() {
    for (size_t i = 0; i < _units.size();) i = pass(i);
    return String(_units);
  }

 private:
  // Where to go on behind what stands at `i`.
  size_t pass(size_t i) {
    if (kPlainMarks.find(_units[i]) != kPlainMarks.npos) {
      return std::min(_units.find_first_of(kPlainMarks, i + 1), _units.size() - 1) + 1;
    }
    for (size_t kind = 0; kind < std::size(kMarks); ++kind) {
      if (_units[i] != kMarks[kind].opening || !opens(kMarks[kind], i)) continue;
      const size_t end = closingOf(kind, i);
      if (end == std::u16string::npos) continue;
      _units[i] = _units[end] = u'"';
      return end + 1;
    }
    return i + 1;
  }

  bool opens(const Marks& marks, size_t i) const {
    if (!marks.clings) return true;
    return (i == 0 || !isWordUnit(_units[i - 1])) && i + 1 < _units.size() && !isWhite(_units[i + 1]);
  }

  bool closes(const Marks& marks, size_t i) const {
    if (marks.closing.find(_units[i]) == marks.closing.npos) return false;
    if (!marks.clings) return true;
    return !isWhite(_units[i - 1]) && (i + 1 == _units.size() || !isWordUnit(_units[i + 1]));
  }

  // A vain search is remembered, so that many opening marks cost no more than one.
  size_t closingOf(size_t kind, size_t opening) {
    if (opening < _noneBefore[kind]) return std::u16string::npos;
    size_t i = opening + 1;
    for (; i < _units.size() && kPlainMarks.find(_units[i]) == kPlainMarks.npos; ++i) {
      if (closes(kMarks[kind], i)) return i;
    }
    _noneBefore[kind] = i;
    return std::u16string::npos;
  }

  std::u16string _units;
  std::array<size_t, std::size(kMarks)> _noneBefore{};
};

}  // namespace

String withPlainQuotationMarks(const String& query) { return MarkReplacer(query.view()).replaced(); }

}  // namespace velan::tool
