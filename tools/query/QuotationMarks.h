// The quotation marks of other languages.
#ifndef VELAN_TOOLS_QUERY_QUOTATION_MARKS_H
#define VELAN_TOOLS_QUERY_QUOTATION_MARKS_H

#include "velan/base/String.h"

namespace velan::tool {

/// The query with "…" in place of «…», »…«, »…», ‹…›, ›…‹, ‘…’, ‚…‘, 「…」 and 『…』, so that it keeps its length.
/// Marks without a partner and apostrophes stay.
String withPlainQuotationMarks(const String& query);

}  // namespace velan::tool

#endif  // VELAN_TOOLS_QUERY_QUOTATION_MARKS_H
