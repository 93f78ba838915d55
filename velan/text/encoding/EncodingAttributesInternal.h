// The extended attributes that tell a file's encoding.
#ifndef VELAN_TEXT_ENCODING_ENCODING_ATTRIBUTES_INTERNAL_H
#define VELAN_TEXT_ENCODING_ENCODING_ATTRIBUTES_INTERNAL_H

namespace velan {

inline constexpr const char* kTextEncodingAttribute = "user.com.apple.TextEncoding";
inline constexpr const char* kCharsetAttribute = "user.charset";

}  // namespace velan

#endif  // VELAN_TEXT_ENCODING_ENCODING_ATTRIBUTES_INTERNAL_H
