// The words that hold sentences together: articles, pronouns, prepositions, conjunctions, auxiliaries. Lexical data
// take many of them for forms of other words ("wenn" for one of "wer", "plus" for one of "plaire").
#ifndef VELAN_PLATFORM_LEMMAS_FUNCTION_WORDS_INTERNAL_H
#define VELAN_PLATFORM_LEMMAS_FUNCTION_WORDS_INTERNAL_H

#include <string_view>
#include <vector>

#include "velan/base/CTypes.h"

namespace velan {

/// The function words of a language ("de"), in lower case and sorted; none for languages without a list. There are
/// lists for German, French, English, Spanish, Italian, Dutch and Portuguese. The English one is without the forms of
/// "be", "have" and "do", whose base forms are known. Made at first use and kept.
const std::vector<std::u16string_view>& functionWords(std::string_view language);

/// Where the elided word at the beginning of `word` ends, behind its apostrophe (U+0027 or U+2019): 2 for "l'homme" in
/// French or Italian. 0 where there is none.
size_t lengthOfElision(std::u16string_view word, std::string_view language);

}  // namespace velan

#endif  // VELAN_PLATFORM_LEMMAS_FUNCTION_WORDS_INTERNAL_H
