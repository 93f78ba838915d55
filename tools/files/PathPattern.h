// Patterns for paths, as in the ignore files of version control.
#ifndef VELAN_TOOLS_FILES_PATH_PATTERN_H
#define VELAN_TOOLS_FILES_PATH_PATTERN_H

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace velan::tool {

/// A pattern for one name: `*` any bytes, `?` any one, `[a-z]` and `[!a-z]` one of a set (with classes such as
/// `[:digit:]`), `\` takes the next one as it is. A set without its end matches nothing.
class NamePattern {
 public:
  explicit NamePattern(std::string pattern);
  bool matches(std::string_view name) const;
  const std::string& text() const { return _pattern; }

 private:
  std::string _pattern;
  size_t _literal;  // how many bytes at its end are taken as they are, when only one `*` is before them; else `npos`
};

/// One line of an ignore file, where `!` in front turns the meaning, and `/` at the end wants a folder. Without another
/// `/` the pattern is one for the name at any depth; otherwise it counts from the folder of the file, and a `**`
/// between slashes stands for any number of folders.
class PathPattern {
 public:
  explicit PathPattern(std::string_view line);

  bool isNegated() const { return _isNegated; }
  /// `path` is relative to the folder that the pattern counts from, and has no `/` at its ends.
  bool matches(std::string_view path, bool isFolder) const;

 private:
  bool matchesParts(const std::vector<std::string_view>& names) const;

  bool _isNegated = false;
  bool _forFolders = false;
  bool _isAnchored = false;
  std::vector<std::optional<NamePattern>> _parts;  // nothing for `**`
};

/// The patterns of an ignore file; empty lines and comments are none.
class PathPatterns {
 public:
  PathPatterns() = default;
  explicit PathPatterns(std::string_view contents);

  void add(std::string_view line) { _patterns.emplace_back(line); }
  bool isEmpty() const { return _patterns.empty(); }
  /// Whether any pattern is not negated.
  bool hasPositive() const;
  /// What the last pattern that matches says: true unless it is negated. Nothing when none does.
  std::optional<bool> decide(std::string_view path, bool isFolder) const;

 private:
  std::vector<PathPattern> _patterns;
};

}  // namespace velan::tool

#endif  // VELAN_TOOLS_FILES_PATH_PATTERN_H
