// The language of a text by its letters and letter groups, without lists of words.
#ifndef VELAN_LANGUAGE_DOMINANT_LANGUAGE_H
#define VELAN_LANGUAGE_DOMINANT_LANGUAGE_H

#include "velan/base/String.h"

namespace velan {

/// `dominantLanguage`: the ISO 639 code of the language that most of the first 4,096 units of `string` are in ("de",
/// "zh"). Absent for an empty or absent string, when it cannot be told (a word or two in the Latin script), and in a
/// build without language recognition. Safe from any thread.
VELAN_EXPORT String dominantLanguage(const String& string);

}  // namespace velan

#endif  // VELAN_LANGUAGE_DOMINANT_LANGUAGE_H
