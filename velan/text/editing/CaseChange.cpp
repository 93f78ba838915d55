#include "velan/text/editing/CaseChange.h"

#include "velan/platform/TextMappingInternal.h"

namespace velan {

bool lowercase(MutableString& text) { return mapCase(text, CaseMapping::Lower); }
bool uppercase(MutableString& text) { return mapCase(text, CaseMapping::Upper); }
bool capitalize(MutableString& text) { return mapCase(text, CaseMapping::Title); }

}  // namespace velan
