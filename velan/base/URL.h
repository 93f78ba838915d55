// Addresses of resources.
#ifndef VELAN_BASE_URL_H
#define VELAN_BASE_URL_H

#include <compare>
#include <utility>

#include "velan/base/String.h"

namespace velan {

/// An immutable URL (RFC 3986), kept as its absolute string. It may be absent (`URL()`); a present one is never empty.
class VELAN_EXPORT URL {
 public:
  URL() noexcept = default;
  URL(std::nullptr_t) noexcept {}

  /// The URL that `string` spells. Absent when the string is absent or empty, or holds what no URL may hold unescaped:
  /// white space, control characters, one of ``"<>\^`{|}``, anything outside ASCII, or a `%` without two hexadecimal
  /// digits behind it.
  static URL withString(const String& string);
  /// The `file:` URL of an absolute path, its UTF-8 form percent-escaped where needed; the path is not looked up.
  /// Absent for a path that does not begin with "/" or holds a lone surrogate.
  static URL fileURLWithPath(const String& path);

  const String& absoluteString() const { return _string; }
  /// Whether the scheme is `file`, in any case.
  bool isFileURL() const;
  /// The path of a file URL with its escapes resolved. Absent for every other URL, and when the bytes are not UTF-8.
  String path() const;

  bool isAbsent() const { return _string.isAbsent(); }
  explicit operator bool() const { return !isAbsent(); }

  /// By the code units of the absolute strings.
  friend bool operator==(const URL&, const URL&) = default;
  friend std::strong_ordering operator<=>(const URL&, const URL&) = default;

 private:
  explicit URL(String string) : _string(std::move(string)) {}

  String _string;
};

}  // namespace velan

template <>
struct std::hash<velan::URL> {
  size_t operator()(const velan::URL& url) const noexcept { return std::hash<velan::String>()(url.absoluteString()); }
};

#endif  // VELAN_BASE_URL_H
