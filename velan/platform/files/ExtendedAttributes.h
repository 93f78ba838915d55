// What the volume keeps about a file besides its contents.
#ifndef VELAN_PLATFORM_FILES_EXTENDED_ATTRIBUTES_H
#define VELAN_PLATFORM_FILES_EXTENDED_ATTRIBUTES_H

#include <optional>
#include <string>
#include <string_view>

#include "velan/base/CTypes.h"
#include "velan/base/String.h"

namespace velan {

/// The value of an extended attribute of what `path` leads to, such as "user.charset". Nothing when the file, the
/// attribute or the volume's support for it is missing, or when it cannot be read.
VELAN_EXPORT std::optional<std::string> extendedAttribute(const String& path, const char* name);

/// Whether what `path` leads to has any extended attributes that the process may see: one question in place of one for
/// each name.
VELAN_EXPORT bool hasExtendedAttributes(const String& path);

/// The same of an open file.
VELAN_EXPORT bool hasExtendedAttributesOfDescriptor(int descriptor);

/// False when the file or its volume refuses the attribute.
VELAN_EXPORT bool setExtendedAttribute(const String& path, const char* name, std::string_view value);

/// True also when there was none.
VELAN_EXPORT bool removeExtendedAttribute(const String& path, const char* name);

}  // namespace velan

#endif  // VELAN_PLATFORM_FILES_EXTENDED_ATTRIBUTES_H
