// The process-wide bitmaps that say which code units separate words, sentences and lines. Each is built once, on first
// use, may be read from any thread, lives until the process ends, and must not be freed. Note that "-", "_", "'" and
// "#" separate words, as do all surrogates: a character outside the Basic Multilingual Plane never belongs to a word.
#ifndef VELAN_TEXT_SEPARATORS_H
#define VELAN_TEXT_SEPARATORS_H

#include "velan/base/CTypes.h"

#ifdef __cplusplus
namespace velan {
extern "C" {
#endif

/// `defaultWordSeparators`: white space, punctuation, symbols, controls, unassigned units, surrogates, U+F400 to U+F8FF
/// and a few numbers and signs such as "½" and "²".
VELAN_EXPORT const uint8_t* defaultWordSeparators(void);
/// `defaultSentenceSeparators`: "!", ".", ":" and "?".
VELAN_EXPORT const uint8_t* defaultSentenceSeparators(void);
/// `defaultLineSeparators`: U+0003, LF, FF, CR, U+0085, U+2028, U+2029 and the object replacement character U+FFFC.
VELAN_EXPORT const uint8_t* defaultLineSeparators(void);
/// `defaultWildcardSeparators`: the word separators without "*", "?", "[" and "]", so that a wildcard pattern stays one
/// word. For patterns; texts are split with the word separators.
VELAN_EXPORT const uint8_t* defaultWildcardSeparators(void);

/// `initSeparators`: builds the word, sentence and line separators ahead of use.
VELAN_EXPORT void initSeparators(void);
/// `initWildcardSeparators`: builds the wildcard separators ahead of use.
VELAN_EXPORT void initWildcardSeparators(void);
/// `initWildcardTables`: builds the conversion table that ignores case and diacritics ahead of use.
VELAN_EXPORT void initWildcardTables(void);
/// `initSeparatorsAndTables`: the three above, in this order: what a search needs, for start-up.
VELAN_EXPORT void initSeparatorsAndTables(void);

/// `defaultWordSeparationMode`: the number last set, 0 at first. The library itself does not use it.
VELAN_EXPORT int64_t defaultWordSeparationMode(void);
/// `setDefaultWordSeparationMode:`: stores any number, for the whole process.
VELAN_EXPORT void setDefaultWordSeparationMode(int64_t mode);

#ifdef __cplusplus
}  // extern "C"

class String;

/// `removeSymbolsFromWordSeparators:`: makes each unit of `symbols` a word character, in the word and in the wildcard
/// separators, for the whole process and for good. For start-up, before other threads split texts: nothing guards
/// them against the change. Texts that were indexed before keep their words.
VELAN_EXPORT void removeSymbolsFromWordSeparators(const String& symbols);

}  // namespace velan
#endif  // __cplusplus
#endif  // VELAN_TEXT_SEPARATORS_H
