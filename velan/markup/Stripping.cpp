#include "velan/markup/Stripping.h"

#include <algorithm>
#include <string>

#include "velan/markup/TagsInternal.h"
#include "velan/text/comparison/Comparison.h"

namespace velan {
namespace {

bool hasNameInAnyCase(const TagReport& tag, std::string_view name) {
  return tag.nameLength == static_cast<int64_t>(name.size()) && !name.empty() &&
         fastCaseInsensitiveCompareUnicharsWithChars(nameOf(tag).data(), name.size(), name.data(), name.size()) == 0;
}

bool equalNames(std::u16string_view a, std::u16string_view b) {
  return a.size() == b.size() && fastCaseInsensitiveCompareUnichars(a.data(), a.size(), b.data(), b.size()) == 0;
}

bool isOpening(const TagReport& tag) { return isOpeningTag(unitsOf(tag)); }
bool isClosing(const TagReport& tag) { return isClosingTag(unitsOf(tag)); }
bool isSelfClosed(const TagReport& tag) {
  return tag.tagLength >= 4 && tag.characters[tag.tagLocation + tag.tagLength - 2] == u'/';
}

// The text between the tags of an element that the scanner reported as one tag.
struct WholeElement {
  bool isWhole = false;
  std::u16string_view body;
};

WholeElement wholeElement(const TagReport& tag) {
  if (tag.kind != TagKind::Tag || !(hasName(tag, u"script") || hasName(tag, u"style"))) return {};
  const std::u16string_view element = unitsOf(tag);
  const size_t begin = endOfTag(element, 0) + 1;
  if (begin >= element.size()) return {};
  // No other ">" stands between the closing tag's name and the end.
  const size_t lastTag = element.substr(0, element.size() - 1).rfind(u'>');
  size_t end = std::max(begin, lastTag + 1);
  while (!(element[end] == u'<' && element[end + 1] == u'/' &&
           equalNames(element.substr(end + 2, static_cast<size_t>(tag.nameLength)), nameOf(tag)))) {
    ++end;
  }
  return {true, element.substr(begin, end - begin)};
}

// The prefixes of the tags that start a body.
class Prefixes {
 public:
  explicit Prefixes(const std::vector<String>& prefixes) {
    for (const String& prefix : prefixes) {
      if (!prefix.isEmpty()) _prefixes.push_back(prefix);
    }
  }

  bool isEmpty() const { return _prefixes.empty(); }

  bool match(const TagReport& report) const {
    if (report.kind != TagKind::Tag || report.nameLength == 0) return false;
    const std::u16string_view tag = unitsOf(report);
    return std::ranges::any_of(_prefixes, [tag](const String& prefix) {
      return equalNames(tag.substr(0, prefix.view().size()), prefix.view());
    });
  }

 private:
  std::vector<String> _prefixes;
};

// The element that is being skipped or kept: the name of its opening tag, and how deep elements of that name nest.
class OpenElement {
 public:
  explicit operator bool() const { return _depth != 0; }

  void open(const TagReport& tag) {
    _name = nameOf(tag);
    _depth = 1;
  }

  // Whether the tag closes the element.
  bool closesWith(const TagReport& tag) {
    if (!equalNames(nameOf(tag), _name) || wholeElement(tag).isWhole) return false;
    if (isOpening(tag)) {
      ++_depth;
    } else if (isClosing(tag) || isSelfClosed(tag)) {
      --_depth;
    }
    return _depth == 0;
  }

 private:
  std::u16string_view _name;
  int64_t _depth = 0;
};

std::u16string_view textAndTag(const TagReport& tag) {
  return {tag.characters + tag.textLocation, static_cast<size_t>(tag.tagLocation + tag.tagLength - tag.textLocation)};
}

}  // namespace

String stripTag(const String& string, const char* name) {
  if (!name || *name == '\0') return string;
  std::u16string result;
  bool found = false;
  parseXmlWithHandler(string, [&](const TagReport& tag) {
    if (hasNameInAnyCase(tag, name)) {
      if (!found) result = string.view().substr(0, static_cast<size_t>(tag.textLocation));
      found = true;
      result += textBefore(tag);
    } else if (found) {
      result += textAndTag(tag);
    }
    return false;
  });
  return found ? String(result) : string;
}

String stripTagBodies(const String& string, const std::vector<String>& prefixList) {
  const Prefixes prefixes(prefixList);
  if (prefixes.isEmpty() || string.isEmpty()) return string;
  std::u16string result;
  bool found = false;
  OpenElement skipped;
  parseXmlWithHandler(string, [&](const TagReport& tag) {
    if (skipped) {
      skipped.closesWith(tag);
      return false;
    }
    const bool whole = wholeElement(tag).isWhole;
    const bool starts = (whole || isOpening(tag)) && prefixes.match(tag);
    if (starts && !whole) skipped.open(tag);
    result += starts ? textBefore(tag) : textAndTag(tag);
    found |= starts;
    return false;
  });
  return found ? String(result) : string;
}

String stripTagBodiesExcept(const String& string, const std::vector<String>& prefixList) {
  const Prefixes prefixes(prefixList);
  if (prefixes.isEmpty()) return String();
  std::u16string result;
  OpenElement kept;
  parseXmlWithHandler(string, [&](const TagReport& tag) {
    if (kept) {
      result += textAndTag(tag);
      if (kept.closesWith(tag)) result += u'\n';
      return false;
    }
    if (tag.tagLength < 3 || isClosing(tag) || !prefixes.match(tag)) return false;
    result += unitsOf(tag);
    if (wholeElement(tag).isWhole) {
      result += u'\n';
    } else if (!isSelfClosed(tag)) {
      kept.open(tag);
    }
    return false;
  });
  return result.empty() ? String() : String(result);
}

String tagBody(const String& string, const char* name, bool inner) {
  if (!name || *name == '\0') return String();
  std::u16string result;
  bool found = false;
  bool finished = false;
  int64_t depth = 0;
  parseXmlWithHandler(string, [&](const TagReport& tag) {
    if (depth != 0) result += textBefore(tag);
    if (!hasNameInAnyCase(tag, name)) {
      if (depth != 0) result += unitsOf(tag);
      return false;
    }
    found = true;
    if (!inner) result += unitsOf(tag);
    if (const WholeElement whole = wholeElement(tag); whole.isWhole) {
      if (inner && depth != -1) result += whole.body;
      finished = depth == 0;
    } else if (isOpening(tag)) {
      ++depth;
    } else if (isClosing(tag)) {
      finished = depth-- == 1;
    }
    return finished;
  });
  return found ? String(result) : String();
}

}  // namespace velan
