#include "tests/Testing.h"
#include "velan/markup/FileTypes.h"
#include "velan/markup/Stripping.h"

namespace velan {
namespace {

TEST(Stripping, Tags) {
  const Cases<String, String> cases = {
      {u"a<font size=2>b</FONT>c<i>d<font/></i>"_s, u"abc<i>d</i>"_s},
      {u"<fonts><!--<font>--></fonts>"_s, u"<fonts><!--<font>--></fonts>"_s},
      {u""_s, u""_s},
  };
  for (const auto& [text, stripped] : cases) EXPECT_EQ(stripTag(text, "FONT"), stripped) << text.toUTF8();
  EXPECT_EQ(stripTag(u"a<script>b</script>c"_s, "SCRIPT"), u"ac"_s);
  const String text = u"a<b>c"_s;
  EXPECT_TRUE(stripTag(text, "FONT").isSameObject(text));
  EXPECT_TRUE(stripTag(text, "").isSameObject(text));
}

TEST(Stripping, Bodies) {
  const Cases<String, String, String, String> cases = {
      {u"<script"_s, u"a<script>x</script>b<scripts>c</scripts>d"_s, u"abd"_s,
       u"<script>x</script>\n<scripts>c</scripts>\n"_s},
      {u"<script"_s, u"a<SCRIPT x='</script>'>x</script/>b"_s, u"ab"_s, u"<SCRIPT x='</script>'>x</script/>\n"_s},
      {u"<DIV"_s, u"1<div>2<div>3</div>4</div>5</div>"_s, u"15</div>"_s, u"<div>2<div>3</div>4</div>\n"_s},
      {u"<div"_s, u"1<div>2<div/>3</div>4"_s, u"13</div>4"_s, u"<div>2<div/>\n"_s},
      {u"<pre"_s, u"x<pre>y<b></pre>z<pre/><pre>open"_s, u"xz<pre/>"_s, u"<pre>y<b></pre>\n<pre/><pre>open"_s},
      {u"<!--"_s, u"a<!-- b -->c"_s, u"a<!-- b -->c"_s, String()},
      {u"<style>p"_s, u"<style>p{}</style><style>q{}</style>"_s, u"<style>q{}</style>"_s, u"<style>p{}</style>\n"_s},
  };
  for (const auto& [prefix, text, without, only] : cases) {
    EXPECT_EQ(stripTagBodies(text, {u""_s, prefix}), without) << text.toUTF8();
    EXPECT_EQ(stripTagBodies(text, {prefix}, true), only) << text.toUTF8();
  }
  const String text = u"a<b>c</b>"_s;
  EXPECT_TRUE(stripTagBodies(text, {u"<i"_s}).isSameObject(text));
  EXPECT_TRUE(stripTagBodies(text, {u""_s}, false).isSameObject(text));
  EXPECT_TRUE(stripTagBodiesExcept(text, {}).isAbsent());
}

TEST(Stripping, BodyOfTheFirstElement) {
  const Cases<const char*, String, String, String> cases = {
      {"B", u"1<b>2<b>3</b>4</b>5<b>6</b>"_s, u"234"_s, u"<b>2<b>3</b>4</b>"_s},
      {"B", u"1<b>2<i>3</i><!--4--></b>5"_s, u"2<i>3</i><!--4-->"_s, u"<b>2<i>3</i><!--4--></b>"_s},
      {"B", u"1</b>2<b>3</b>4"_s, u"24"_s, u"</b>2<b></b>4"_s},
      {"B", u"1<b/>2<b>3"_s, u"3"_s, u"<b/><b>3"_s},
      {"STYLE", u"1<style a='>'><b></style ></style>2"_s, u"<b>"_s, u"<style a='>'><b></style >"_s},
      {"SCRIPT", u"1<script><!--</script>--> x</SCRIPT </script"_s, u"<!--</script>--> x"_s,
       u"<script><!--</script>--> x</SCRIPT </script"_s},
      {"SCRIPT", u"1</script>2<script>3</script>4"_s, u"24"_s, u"</script>2<script>3</script>4"_s},
      {"B", u"<i>1</i>"_s, String(), String()},
  };
  for (const auto& [name, text, inner, outer] : cases) {
    EXPECT_EQ(innerTagBody(text, name), inner) << text.toUTF8();
    EXPECT_EQ(outerTagBody(text, name), outer) << text.toUTF8();
  }
}

TEST(FileTypes, ByExtension) {
  const Cases<String, std::string> cases = {
      {u"/a.b/page.html"_s, "html markup"},
      {u"page.HTML"_s, "html markup"},
      {u"a.mhtml"_s, "html mime markup"},
      {u"a.mht"_s, "mime"},
      {u"a.rss"_s, "xml markup"},
      {u"a.plist/"_s, "plist markup"},
      {u"a.scriptSuite"_s, "plist markup"},
      {u"dir.html/page"_s, ""},
      {u".html"_s, ""},
      {u"a.own"_s, "xml markup"},
      {String(), ""},
  };
  static const String own = u"own"_s;
  setPathExtensionsProvider(
      [](const String& key, void* context) {
        return key.view() == AdditionalXMLExtensions ? std::vector{*static_cast<const String*>(context)}
                                                     : std::vector<String>();
      },
      const_cast<String*>(&own));
  for (const auto& [path, types] : cases) {
    const std::pair<const char*, bool> answers[] = {{"html", isHTMLFile(path)},
                                                    {"mime", isMimeHTMLFile(path)},
                                                    {"xml", isXMLFile(path)},
                                                    {"plist", isPropertyListFile(path)},
                                                    {"markup", isMarkupFile(path)}};
    for (const auto& [type, is] : answers) EXPECT_EQ(is, types.find(type) != types.npos) << path.toUTF8() << type;
  }
  setPathExtensionsProvider(nullptr, nullptr);
  EXPECT_FALSE(isXMLExtension(own) || isMarkupExtension(own) || !CustomXMLFileTypes().empty());
}

}  // namespace
}  // namespace velan
