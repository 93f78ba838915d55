// Rotation of letters: enough to hide a text from the eye, no encryption.
#ifndef VELAN_TEXT_INSPECTION_ROTATION_H
#define VELAN_TEXT_INSPECTION_ROTATION_H

#include "velan/base/String.h"

namespace velan {

/// `stringByRotating:`: `string` with each of the letters a to z and A to Z replaced by the one `places` further in the
/// alphabet, around its end; all other units stay. `string` itself when `places` is a multiple of 26 or `string` is
/// empty or absent; absent when memory runs out.
VELAN_EXPORT String stringByRotating(const String& string, uint64_t places);

/// `stringByRotating13`: by 13 places, which undoes itself.
inline String stringByRotating13(const String& string) { return stringByRotating(string, 13); }

}  // namespace velan

#endif  // VELAN_TEXT_INSPECTION_ROTATION_H
