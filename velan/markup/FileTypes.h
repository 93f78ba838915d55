// Which files hold markup, by their path extensions. An extension is a member of a list as it is written there: most
// stand in lower and in upper case, some in one form only.
#ifndef VELAN_MARKUP_FILE_TYPES_H
#define VELAN_MARKUP_FILE_TYPES_H

#include <vector>

#include "velan/base/String.h"

namespace velan {

/// `HTMLFileTypes`: "html", "xhtml", "php" and the like. The lists live until the process ends.
VELAN_EXPORT const std::vector<String>& HTMLFileTypes();
/// `MimeHTMLFileTypes`: pages archived with their parts.
VELAN_EXPORT const std::vector<String>& MimeHTMLFileTypes();
/// `XMLFileTypes`
VELAN_EXPORT const std::vector<String>& XMLFileTypes();
/// `PropertyListFileTypes`
VELAN_EXPORT const std::vector<String>& PropertyListFileTypes();
/// `MarkupFileTypes`: those of `XMLFileTypes`, `HTMLFileTypes` and `PropertyListFileTypes`.
VELAN_EXPORT const std::vector<String>& MarkupFileTypes();

/// `AdditionalXMLExtensions`: the key of the application's own path extensions of XML files.
inline constexpr std::u16string_view AdditionalXMLExtensions = u"AdditionalXMLExtensions";

/// `pathExtensionsForKey:`: the path extensions that the application's settings list under `key`. May be called on any
/// thread.
using PathExtensionsProvider = std::vector<String> (*)(const String& key, void* context);
/// Sets where `CustomXMLFileTypes` looks, for the whole process; null restores the default, which lists nothing.
VELAN_EXPORT void setPathExtensionsProvider(PathExtensionsProvider provider, void* context);

/// `CustomXMLFileTypes`: what the provider lists under `AdditionalXMLExtensions`; empty without one.
VELAN_EXPORT std::vector<String> CustomXMLFileTypes();

/// `isHTMLExtension:`
VELAN_EXPORT bool isHTMLExtension(const String& extension);
/// `isMimeHTMLExtension:`
VELAN_EXPORT bool isMimeHTMLExtension(const String& extension);
/// `isXMLExtension:`: a member of `XMLFileTypes` or of `CustomXMLFileTypes`.
VELAN_EXPORT bool isXMLExtension(const String& extension);
/// `isPropertyListExtension:`
VELAN_EXPORT bool isPropertyListExtension(const String& extension);
/// `isMarkupExtension:`: a member of `MarkupFileTypes` or of `CustomXMLFileTypes`.
VELAN_EXPORT bool isMarkupExtension(const String& extension);

/// `isHTMLFile:`: the same of the path's extension: what follows the last "." of its last component, unless that begins
/// with it.
VELAN_EXPORT bool isHTMLFile(const String& path);
/// `isMimeHTMLFile:`
VELAN_EXPORT bool isMimeHTMLFile(const String& path);
/// `isXMLFile:`
VELAN_EXPORT bool isXMLFile(const String& path);
/// `isPropertyListFile:`
VELAN_EXPORT bool isPropertyListFile(const String& path);
/// `isMarkupFile:`
VELAN_EXPORT bool isMarkupFile(const String& path);

}  // namespace velan

#endif  // VELAN_MARKUP_FILE_TYPES_H
