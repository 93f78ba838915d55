// Case of whole texts, in place, by Unicode's full mapping, which may change the length ("ß" becomes "SS"); no locale
// has any influence. False, and the text as it was, when memory runs out or the text has more than 2^31 - 1 units.
#ifndef VELAN_TEXT_EDITING_CASE_CHANGE_H
#define VELAN_TEXT_EDITING_CASE_CHANGE_H

#include "velan/base/MutableString.h"

namespace velan {

/// `lowercase`: to lower case; a capital sigma at the end of a word becomes a final one.
VELAN_EXPORT bool lowercase(MutableString& text);
/// `uppercase`: to upper case.
VELAN_EXPORT bool uppercase(MutableString& text);
/// `capitalize`: the first letter of each word to title case, the others to lower case: "O'neil", "E-Mail".
VELAN_EXPORT bool capitalize(MutableString& text);

}  // namespace velan

#endif  // VELAN_TEXT_EDITING_CASE_CHANGE_H
