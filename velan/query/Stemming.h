// Text with the base forms of its words.
#ifndef VELAN_QUERY_STEMMING_H
#define VELAN_QUERY_STEMMING_H

#include <string_view>

#include "velan/base/String.h"

namespace velan {

/// `stringByStemmingWords`: a copy of `string` with each word replaced by its base form ("mice" by "mouse"), where the
/// machine's lexical data know one (see `Lemmatizer`; the language is recognised from the text as a whole). Function
/// words and names stay: what begins with a capital inside a sentence (in German unless its base form does, too) or has
/// one further on. What stands between words is kept, but what follows the last word is not: a closing full stop is
/// lost. Strings of less than two units are returned themselves. May throw `std::bad_alloc`. Safe from any thread; the
/// first call for a language reads its data.
VELAN_EXPORT String stringByStemmingWords(const String& string);

/// The same in a language that is known, given as a code such as "en" or "pt-BR": one to three words are rarely enough
/// to recognise it.
VELAN_EXPORT String stringByStemmingWords(const String& string, std::string_view language);

}  // namespace velan

#endif  // VELAN_QUERY_STEMMING_H
