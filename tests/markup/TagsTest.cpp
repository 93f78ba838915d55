#include "tests/Testing.h"
#include "velan/markup/Tags.h"
#include "velan/markup/TagsInternal.h"
#include "velan/text/CharacterSets.h"
#include "velan/text/ConversionTables.h"

namespace velan {
namespace {

using Reports = std::vector<std::u16string>;

// "kind name|text|tag" of each report.
Reports reportsOf(const String& text) {
  Reports reports;
  int64_t behind = 0;
  parseXmlWithHandler(text, [&](const TagReport& tag) {
    EXPECT_EQ(tag.characters, text.characters());
    EXPECT_EQ(tag.textLocation, behind);
    behind = tag.tagLocation + tag.tagLength;
    EXPECT_EQ(tag.nameLocation == NSNotFound, tag.nameLength == 0);
    std::u16string report(1, static_cast<unichar>(u'0' + static_cast<int>(tag.kind)));
    ((report += u' ').append(nameOf(tag)) += u'|').append(textBefore(tag)) += u'|';
    reports.push_back(report.append(unitsOf(tag)));
    return false;
  });
  EXPECT_EQ(behind, text.length());
  return reports;
}

// The kinds, and what the walk shares with its description below: the sets of characters and the folding of names.
TEST(Tags, Reports) {
  const Cases<String, Reports> cases = {
      {u"<?xml v='1'?><!DOCTYPE x 'a>b'><br/><h1 a>"_s,
       {u"1 xml||<?xml v='1'?>", u"1 DOCTYPE||<!DOCTYPE x 'a>", u"1 br|b'>|<br/>", u"1 h1||<h1 a>", u"0 ||"}},
      {u"<1><><é/><\u00A0x y>"_s, {u"1 ||<1>", u"1 ||<>", u"1 é||<é/>", u"1 x||<\u00A0x y>", u"0 ||"}},
      {u"<!-a->x<!-- --!>y<!-a--!>->z"_s, {u"2 ||<!-a->", u"2 |x|<!-- --!>", u"2 |y|<!-a--!>->", u"0 |z|"}},
      {u"<![CDATA[<b>]]>x<![if IE]>y<![endif]-->z"_s,
       {u"3 ||<![CDATA[<b>]]>", u"3 |x|<![if IE]>", u"3 |y|<![endif]-->", u"0 |z|"}},
      {u"<script><!-- </script> --><b></script>c"_s, {u"1 script||<script><!-- </script> --><b></script>", u"0 |c|"}},
      {u"<scripts><script ></\u017Fcript>"_s, {u"1 scripts||<scripts>", u"1 script||<script ></\u017Fcript>", u"0 ||"}},
  };
  for (const auto& [text, reports] : cases) EXPECT_EQ(reportsOf(text), reports) << text.toUTF8();
}

// The walk as it is described, unit by unit, without any thought of speed.
class DescribedScanner {
 public:
  explicit DescribedScanner(std::u16string_view text) : _text(text) {}

  Reports scan() {
    for (size_t i = 0; i < _text.size(); ++i) {
      const unichar c = _text[i];
      if (c == u'<' && _state == 0) {
        i = open(i);
      } else if (c == u'=' && _state == 1 && !_double && !_single) {
        _afterEquals = true;
      } else if (c == u'"' && _state == 1) {
        if (!_single) _double = _afterEquals && !_double;
        _afterEquals = false;
      } else if (c == u'\'' && _state == 1) {
        if (!_double) _single = _afterEquals && !_single;
        _afterEquals = false;
      } else if (c == u'>' && _state != 0 && !_double && !_single && closes(i)) {
        i = close(i);
      }
    }
    if (_state >= 2) report(_text.size(), 0, 0);
    _state = 0;
    _tag = _text.size();
    report(_text.size(), 0, 0);
    return _reports;
  }

 private:
  size_t open(size_t i) {
    _state = 1;
    _tag = i;
    if (i + 2 >= _text.size() || _text[i + 1] != u'!') return i;
    if (_text[i + 2] == u'[') _state = 3;
    if (_text[i + 2] == u'-') _state = 2;
    _singleDash = i + 3 >= _text.size() || _text[i + 3] != u'-';
    return _state == 1 ? i : i + 2;
  }

  bool closes(size_t i) const {
    const auto before = [&](std::u16string_view units) { return _text.substr(0, i).ends_with(units); };
    if (_state == 3) return before(u"]") || before(u"]--");
    if (_state == 2 && before(u"-")) return _singleDash || before(u"--");
    if (_state == 2) return before(u"--!") && !_singleDash;
    return true;
  }

  size_t close(size_t i) {
    size_t name = _tag;
    size_t nameEnd = _tag;
    if (_state == 1) {
      while (name <= i && !isMemberOfCharacterSetRep(alphaCharacterSetRep(), _text[name])) ++name;
      nameEnd = name;
      while (nameEnd < i && _text[nameEnd] != u'/' && _text[nameEnd] != u'>' &&
             !isMemberOfCharacterSetRep(whiteCharacterSetRep(), _text[nameEnd])) {
        ++nameEnd;
      }
    }
    const size_t end = _state == 1 ? endOfElement(i, folded(_text.substr(name, nameEnd - name))) : i + 1;
    report(end, name, nameEnd);
    _state = 0;
    _double = _single = _afterEquals = false;
    _textBegin = end;
    return end - 1;
  }

  static std::u16string folded(std::u16string_view text) {
    std::u16string upper(text);
    for (unichar& c : upper) c = toUpper(c);
    return upper;
  }

  size_t endOfElement(size_t i, const std::u16string& name) const {
    const bool hasBody = (name == u"SCRIPT" || name == u"STYLE") && _text[_tag + 1] != u'/' && _text[i - 1] != u'/';
    if (!hasBody) return i + 1;
    const std::u16string all = folded(_text);
    const std::u16string literal = u"</" + name;
    size_t p = all.find(literal, i + 1);
    if (p == all.npos) return i + 1;
    if (const size_t opener = all.find(u"<!-", _tag); opener < p) {
      const size_t closer = all.find(u"-->", opener + 3);
      const size_t after = closer == all.npos ? closer : all.find(literal, closer + 3);
      if (after != all.npos) p = after;
    }
    return std::min(all.find(u'>', p + literal.size()), all.size() - 1) + 1;
  }

  void report(size_t end, size_t name, size_t nameEnd) {
    std::u16string report(1, static_cast<unichar>(u'0' + _state));
    report.append(u" ").append(_text.substr(name, nameEnd - name)) += u'|';
    report.append(_text.substr(_textBegin, _tag - _textBegin)) += u'|';
    _reports.push_back(report.append(_text.substr(_tag, end - _tag)));
    if (_state >= 2) _textBegin = end;
  }

  std::u16string_view _text;
  Reports _reports;
  int _state = 0;
  size_t _tag = 0;
  size_t _textBegin = 0;
  bool _double = false;
  bool _single = false;
  bool _afterEquals = false;
  bool _singleDash = false;
};

TEST(Tags, TheWalkEqualsItsDescription) {
  static constexpr std::u16string_view kPieces[] = {
      u"<", u"<", u">",        u">",        u"-",         u"!",        u"=",   u"\"",  u"'", u"/", u"[",   u"]",
      u" ", u"a", u"<script>", u"</script", u"<style x>", u"</STYLE>", u"<!-", u"-->", u"é", u"1", u"=\"", u"<script"};
  Chance chance(4);
  for (int round = 0; round < 40000; ++round) {
    const auto text = chance.text(1 + chance.below(24), kPieces, round % 2 == 0 ? 14 : std::size(kPieces));
    ASSERT_EQ(reportsOf(String(text)), DescribedScanner(text).scan()) << String(text).toUTF8();
  }
}

TEST(Tags, SearchesForClosingTagsAreLinear) {
  for (const std::u16string_view piece :
       {u"<script><style>", u"<script></scrip", u"<script><!--", u"<!-", u"<script><!--</script> --",
        u"<script></script> <!-- -->", u"<style><!-- --></style><script>"}) {
    std::u16string text;
    while (text.size() < 100000) text += piece;
    EXPECT_LE(scanTags(text, [](const TagReport&) { return false; }), 8 * text.size()) << String(piece).toUTF8();
  }
}

TEST(Tags, HandlersStopTheWalkAndMayWriteToAPrivateCopy) {
  const String text = u"<a>1<b>2<c>3"_s;
  size_t calls = 0;
  const auto countTo2 = [](const String&, const TagReport&, void* context) {
    return ++*static_cast<size_t*>(context) == 2;
  };
  EXPECT_TRUE(GetTagsOfString(text, countTo2, &calls, nullptr, false));
  EXPECT_EQ(calls, 2u);
  EXPECT_TRUE(GetTagsOfString(
      text, countTo2, &calls, [](const TagReport&) { return ADD_FAILURE(), true; }, true));
  std::u16string names;
  const auto overwrite = [](const String& string, const TagReport& tag, void* context) {
    EXPECT_NE(tag.characters, string.characters());
    if (tag.nameLength == 1) static_cast<std::u16string*>(context)->push_back(tag.characters[tag.nameLocation]);
    std::fill_n(const_cast<unichar*>(tag.characters), tag.tagLocation + tag.tagLength, u'<');
    return false;
  };
  EXPECT_TRUE(parseXmlWithHandler(text, overwrite, &names, true));
  EXPECT_EQ(names, u"abc");
  EXPECT_EQ(text, u"<a>1<b>2<c>3"_s);
  EXPECT_FALSE(GetTagsOfString(String(), countTo2, &calls, nullptr, true));
  EXPECT_FALSE(GetTagsOfString(u""_s, countTo2, &calls, nullptr, false));
}

TEST(Tags, KindsOfTags) {
  const Cases<String, std::string> cases = {
      {u"<a>"_s, "open"},
      {u"</a>"_s, "closed"},
      {u"<a/>"_s, ""},
      {u"<>"_s, ""},
      {u"<meta charset=x>"_s, "open meta"},
      {u"<meta x"_s, "open"},
      {u"<!-- x -->"_s, "open remark"},
      {u"<!-x->"_s, "open"},
      {String(), ""},
  };
  for (const auto& [tag, kinds] : cases) {
    const std::pair<const char*, bool> answers[] = {
        {"open", isTagOpen(tag)},     {"open", isTagOpenCharacters(tag.characters(), {0, tag.length()})},
        {"closed", isTagClosed(tag)}, {"closed", isTagClosedCharacters(tag.characters(), {0, tag.length()})},
        {"meta", isMetaTag(tag)},     {"remark", isRemarkTag(tag)}};
    for (const auto& [kind, is] : answers) EXPECT_EQ(is, kinds.find(kind) != kinds.npos) << tag.toUTF8() << kind;
  }
  EXPECT_TRUE(isMetaTagInRange(u"x<meta>y"_s, {1, 6}));
  EXPECT_TRUE(isTagClosedInRange(u"x</a>"_s, {1, 99}));
  EXPECT_FALSE(isTagOpenCharacters(u"<a>", kAbsentRange));
}

}  // namespace
}  // namespace velan
