// Strings from files and to files. All of it may be called from any thread.
#ifndef VELAN_TEXT_ENCODING_TEXT_FILES_H
#define VELAN_TEXT_ENCODING_TEXT_FILES_H

#include "velan/base/Data.h"
#include "velan/base/String.h"
#include "velan/base/StringEncoding.h"

namespace velan {

/// `stringWithContentsOfFile:encoding:` and `initWithContentsOfFile:encoding:`: the same without telling the encoding.
VELAN_EXPORT String stringWithContentsOfFile(const String& path, StringEncoding encoding);

/// `stringWithContentsOfFile:encoding:usedEncoding:` and `initWithContentsOfFile:encoding:usedEncoding:`: the text of
/// the file at `path`, read in `encoding`. With `Detect` (or a number from 0xFFFFFFF0 up) the encoding is found out by
/// a byte-order mark, extended attributes or strict UTF-8 (see `detectedEncodingOfFile`); where nothing tells it, ASCII
/// is tried. Absent when the file cannot be read or does not fit the encoding.
///
/// `usedEncoding`, where it is not null, receives the encoding in any case: the given one, what was detected, or ASCII
/// after that failed.
VELAN_EXPORT String stringWithContentsOfFile(const String& path, StringEncoding encoding, StringEncoding* usedEncoding);

/// The text of bytes by the same rules, without a file's attributes.
VELAN_EXPORT String stringWithContentsOfData(const Data& data, StringEncoding encoding, StringEncoding* usedEncoding);

/// `writeToFile:atomically:encoding:`: writes `string` to the file at `path`. Atomically: whoever reads the file sees
/// the old contents or the new ones, also after a crash, and when writing fails the old ones stay (see `replaceFile`).
/// Otherwise the old file is emptied and written. Parent folders are not made. False when the encoding cannot express
/// the string, or when writing fails; then, and for an absent string, nothing is touched unless the old file is
/// emptied.
///
/// An encoding that reading cannot detect (anything but ASCII, UTF-8, and UTF-16 and UTF-32 with their marks) is noted
/// in the extended attribute "user.charset", and a note that would mislead is removed; where the volume keeps none,
/// nothing is said.
VELAN_EXPORT bool writeToFile(const String& string, const String& path, bool atomically, StringEncoding encoding);

/// `writeToFileUsingDefaultEncoding:atomically:usedEncoding:`: in the library's `defaultEncoding`. `usedEncoding`,
/// where it is not null, receives the encoding also when writing fails; in the next two too.
VELAN_EXPORT bool writeToFileUsingDefaultEncoding(const String& string, const String& path, bool atomically,
                                                  StringEncoding* usedEncoding);
/// `writeToFileUsingFastestEncoding:atomically:usedEncoding:`: in `fastestEncoding`.
VELAN_EXPORT bool writeToFileUsingFastestEncoding(const String& string, const String& path, bool atomically,
                                                  StringEncoding* usedEncoding);
/// `writeToFileUsingSmallestEncoding:atomically:usedEncoding:`: in `smallestEncoding`.
VELAN_EXPORT bool writeToFileUsingSmallestEncoding(const String& string, const String& path, bool atomically,
                                                   StringEncoding* usedEncoding);

}  // namespace velan

#endif  // VELAN_TEXT_ENCODING_TEXT_FILES_H
