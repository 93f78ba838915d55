// Text with the base forms of its words.
#ifndef VELAN_QUERY_STEMMING_H
#define VELAN_QUERY_STEMMING_H

#include "velan/base/String.h"

namespace velan {

/// `stringByStemmingWords`: a copy of `string` with each word replaced by its base form ("mice" by "mouse"), where the
/// machine's lexical data know one (see `Lemmatizer`; the language is recognised from the text as a whole). What stands
/// between words is kept, but what follows the last word is not: a closing full stop is lost. Strings of less than two
/// units are returned themselves. Safe from any thread; the first call for a language reads its data.
VELAN_EXPORT String stringByStemmingWords(const String& string);

}  // namespace velan

#endif  // VELAN_QUERY_STEMMING_H
