#include "tools/files/PathPattern.h"

#include <algorithm>
#include <array>
#include <utility>

namespace velan::tool {
namespace {

constexpr size_t kNone = std::string_view::npos;

bool isBetween(unsigned char c, char first, char last) { return c >= first && c <= last; }
bool isDigit(unsigned char c) { return isBetween(c, '0', '9'); }
bool isUpper(unsigned char c) { return isBetween(c, 'A', 'Z'); }
bool isLower(unsigned char c) { return isBetween(c, 'a', 'z'); }
bool isAlpha(unsigned char c) { return isUpper(c) || isLower(c); }
bool isGraph(unsigned char c) { return isBetween(c, '!', '~'); }

// A class of ASCII characters such as "digit"; nothing for an unknown one.
using CharacterClass = bool (*)(unsigned char);
CharacterClass classCalled(std::string_view name) {
  static constexpr std::array<std::pair<std::string_view, CharacterClass>, 12> kClasses{{
      {"alnum", [](unsigned char c) { return isAlpha(c) || isDigit(c); }},
      {"alpha", isAlpha},
      {"blank", [](unsigned char c) { return c == ' ' || c == '\t'; }},
      {"cntrl", [](unsigned char c) { return c < ' ' || c == 127; }},
      {"digit", isDigit},
      {"graph", isGraph},
      {"lower", isLower},
      {"print", [](unsigned char c) { return isGraph(c) || c == ' '; }},
      {"punct", [](unsigned char c) { return isGraph(c) && !isAlpha(c) && !isDigit(c); }},
      {"space", [](unsigned char c) { return c == ' ' || isBetween(c, '\t', '\r'); }},
      {"upper", isUpper},
      {"xdigit", [](unsigned char c) { return isDigit(c) || isBetween(c, 'a', 'f') || isBetween(c, 'A', 'F'); }},
  }};
  const auto* found =
      std::find_if(kClasses.begin(), kClasses.end(), [&](const auto& each) { return each.first == name; });
  return found == kClasses.end() ? nullptr : found->second;
}

// Reads a set behind its `[`.
class SetReader {
 public:
  SetReader(std::string_view pattern, size_t position) : _pattern(pattern), _position(position) {}

  // The position behind the `]`, `kNone` without one; `contains` tells whether `c` is one of the set.
  size_t read(unsigned char c, bool& contains) {
    const bool isNegated = _position < _pattern.size() && (_pattern[_position] == '!' || _pattern[_position] == '^');
    if (isNegated) ++_position;
    contains = false;
    for (bool first = true; _position < _pattern.size(); first = false) {
      if (_pattern[_position] == ']' && !first) {
        contains = contains != isNegated;
        return _position + 1;
      }
      if (!readItem(c, contains)) return kNone;
    }
    return kNone;
  }

 private:
  bool readItem(unsigned char c, bool& contains) {
    if (_pattern.substr(_position).starts_with("[:")) {
      const size_t end = _pattern.find(']', _position + 2);
      if (end == kNone) return false;
      if (end > _position + 2 && _pattern[end - 1] == ':') {
        const CharacterClass isMember = classCalled(_pattern.substr(_position + 2, end - _position - 3));
        contains |= isMember && isMember(c);
        _position = end + 1;
        return isMember != nullptr;
      }
    }
    const int low = readCharacter();
    int high = low;
    if (_position + 1 < _pattern.size() && _pattern[_position] == '-' && _pattern[_position + 1] != ']') {
      ++_position;
      high = readCharacter();
    }
    contains |= low >= 0 && c >= low && c <= high;
    return low >= 0 && high >= 0;
  }

  int readCharacter() {
    if (_pattern[_position] == '\\') ++_position;
    return _position < _pattern.size() ? static_cast<unsigned char>(_pattern[_position++]) : -1;
  }

  const std::string_view _pattern;
  size_t _position;
};

// Whether what stands at `position`, which is no `*`, takes `c`; moves behind it.
bool takes(std::string_view pattern, size_t& position, char c) {
  const char wanted = pattern[position++];
  if (wanted == '?') return true;
  if (wanted == '[') {
    bool contains = false;
    position = SetReader(pattern, position).read(static_cast<unsigned char>(c), contains);
    return position != kNone && contains;
  }
  if (wanted != '\\') return wanted == c;
  return position < pattern.size() && pattern[position++] == c;
}

// The `/` behind `from` that divides names; sets are not divided.
size_t dividingSlash(std::string_view pattern, size_t from) {
  while (from < pattern.size() && pattern[from] != '/') {
    bool ignored = false;
    const size_t end = pattern[from] == '[' ? SetReader(pattern, from + 1).read(0, ignored) : kNone;
    from = end != kNone ? end : from + (pattern[from] == '\\' ? 2 : 1);
  }
  return std::min(from, pattern.size());
}

std::vector<std::string_view> partsOf(std::string_view path) {
  std::vector<std::string_view> parts;
  for (size_t start = 0; start <= path.size();) {
    const size_t end = std::min(path.find('/', start), path.size());
    parts.push_back(path.substr(start, end - start));
    start = end + 1;
  }
  return parts;
}

// Blanks at the end do not count unless a backslash is before them.
std::string_view withoutBlanksAtEnd(std::string_view line) {
  size_t end = 0;
  for (size_t i = 0; i < line.size(); ++i) {
    const bool isBlank = line[i] == ' ';
    if (line[i] == '\\') ++i;
    if (!isBlank) end = std::min(i + 1, line.size());
  }
  return line.substr(0, end);
}

}  // namespace

NamePattern::NamePattern(std::string pattern) : _pattern(std::move(pattern)), _literal(kNone) {
  const bool isSuffix = _pattern.starts_with('*') && _pattern.find_first_of("*?[\\", 1) == kNone;
  if (isSuffix) _literal = _pattern.size() - 1;
}

bool NamePattern::matches(std::string_view name) const {
  if (_literal != kNone) return name.ends_with(std::string_view(_pattern).substr(1));
  size_t position = 0;
  size_t at = 0;
  size_t star = kNone;  // behind the last one
  size_t resumed = 0;   // where what follows it is tried next
  while (at < name.size()) {
    if (position < _pattern.size() && _pattern[position] == '*') {
      star = ++position;
      resumed = at;
      continue;
    }
    if (position < _pattern.size() && takes(_pattern, position, name[at])) {
      ++at;
      continue;
    }
    if (star == kNone) return false;
    position = star;
    at = ++resumed;
  }
  return _pattern.find_first_not_of('*', position) == kNone;
}

PathPattern::PathPattern(std::string_view line) {
  _isNegated = line.starts_with('!');
  if (_isNegated) line.remove_prefix(1);
  _forFolders = line.ends_with('/');
  if (_forFolders) line.remove_suffix(1);
  _isAnchored = line.find('/') != kNone;
  if (line.starts_with('/')) line.remove_prefix(1);
  for (size_t start = 0; start <= line.size();) {
    const size_t end = _isAnchored ? dividingSlash(line, start) : line.size();
    const std::string_view part = line.substr(start, end - start);
    const bool isAnyFolders = _isAnchored && part.size() > 1 && part.find_first_not_of('*') == kNone;
    _parts.push_back(isAnyFolders ? std::nullopt : std::make_optional<NamePattern>(std::string(part)));
    start = end + 1;
  }
  if (!_parts.back()) _parts.emplace_back("*");  // something must be in the folders
}

bool PathPattern::matches(std::string_view path, bool isFolder) const {
  if (_forFolders && !isFolder) return false;
  if (!_isAnchored) return _parts.front()->matches(path.substr(path.rfind('/') + 1));
  return matchesParts(partsOf(path));
}

bool PathPattern::matchesParts(const std::vector<std::string_view>& names) const {
  size_t part = 0;
  size_t at = 0;
  size_t star = kNone;
  size_t resumed = 0;
  while (at < names.size()) {
    if (part < _parts.size() && !_parts[part]) {
      star = ++part;
      resumed = at;
    } else if (part < _parts.size() && _parts[part]->matches(names[at])) {
      ++part;
      ++at;
    } else if (star != kNone) {
      part = star;
      at = ++resumed;
    } else {
      return false;
    }
  }
  return part == _parts.size();
}

PathPatterns::PathPatterns(std::string_view contents) {
  if (contents.starts_with("\xEF\xBB\xBF")) contents.remove_prefix(3);
  while (!contents.empty()) {
    const size_t end = std::min(contents.find('\n'), contents.size());
    std::string_view line = contents.substr(0, end);
    contents.remove_prefix(std::min(end + 1, contents.size()));
    if (line.ends_with('\r')) line.remove_suffix(1);
    line = withoutBlanksAtEnd(line);
    if (!line.empty() && !line.starts_with('#')) add(line);
  }
}

bool PathPatterns::hasPositive() const {
  return std::any_of(_patterns.begin(), _patterns.end(), [](const PathPattern& each) { return !each.isNegated(); });
}

std::optional<bool> PathPatterns::decide(std::string_view path, bool isFolder) const {
  for (auto each = _patterns.rbegin(); each != _patterns.rend(); ++each) {
    if (each->matches(path, isFolder)) return !each->isNegated();
  }
  return std::nullopt;
}

}  // namespace velan::tool
