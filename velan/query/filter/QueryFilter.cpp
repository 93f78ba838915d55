#include "velan/query/filter/QueryFilter.h"

#include <algorithm>
#include <new>
#include <string>

#include "velan/query/evaluation/SearchedTextInternal.h"
#include "velan/query/filter/LiteralGroupInternal.h"

namespace velan {
namespace {

std::vector<std::vector<std::u16string>> literalsOf(const PreparedQuery& query) {
  std::vector<std::vector<std::u16string>> groups;
  for (const std::vector<String>& required : query.requiredLiterals()) {
    auto& group = groups.emplace_back();
    for (const String& literal : required) group.emplace_back(literal.view());
  }
  return groups;
}

}  // namespace

QueryFilter::QueryFilter(const PreparedQuery& query) : _joins(1 << 16), _units(1 << 16) {
  const auto groups = literalsOf(query);
  const SourceUnits sources(groups, comparisonTable(query.comparison()));
  for (const auto& group : groups) {
    LiteralGroup prepared(group, sources);
    if (!prepared.isSelective()) continue;
    prepared.addJoins(sources, _joins);
    prepared.addUnits(sources, _units);
    _groups.push_back(std::move(prepared));
  }
}

QueryFilter::~QueryFilter() = default;

std::unique_ptr<const QueryFilter> QueryFilter::filterWithQuery(const PreparedQuery& query) {
  try {
    return std::unique_ptr<const QueryFilter>(new QueryFilter(query));
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

bool QueryFilter::canMatch(std::string_view bytes, StringEncoding encoding) const {
  const auto isIn = [&](const LiteralGroup& group) {
    switch (encoding) {
      case StringEncoding::UTF8:
        return group.isInUTF8(bytes);
      case StringEncoding::UTF16:
        return group.isInUTF16(bytes, !bytes.starts_with("\xFF\xFE"));
      case StringEncoding::UTF16BigEndian:
        return group.isInUTF16(bytes, true);
      case StringEncoding::UTF16LittleEndian:
        return group.isInUTF16(bytes, false);
      default:
        return true;
    }
  };
  return std::all_of(_groups.begin(), _groups.end(), isIn);
}

}  // namespace velan
