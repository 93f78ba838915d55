#include "velan/markup/FileTypes.h"

#include <algorithm>
#include <mutex>
#include <string>
#include <string_view>

#include "velan/base/ASCII.h"

namespace velan {
namespace {

// The words of `list`, in both cases one after the other, then those of `asTheyAre`.
std::vector<String> extensions(std::u16string_view list, std::u16string_view asTheyAre) {
  std::vector<String> result;
  const auto addWords = [&result](std::u16string_view words, bool bothCases) {
    while (!words.empty()) {
      const std::u16string_view word = words.substr(0, words.find(u' '));
      result.emplace_back(word);
      std::u16string upper(word);
      for (unichar& c : upper) c = toASCIIUpper(c);
      if (bothCases) result.emplace_back(upper);
      words.remove_prefix(std::min(word.size() + 1, words.size()));
    }
  };
  addWords(list, true);
  addWords(asTheyAre, false);
  return result;
}

std::vector<String> joined(std::initializer_list<const std::vector<String>*> lists) {
  std::vector<String> result;
  for (const auto* list : lists) result.insert(result.end(), list->begin(), list->end());
  return result;
}

bool holds(const std::vector<String>& list, const String& extension) {
  return !extension.isEmpty() && std::ranges::find(list, extension) != list.end();
}

String pathExtension(const String& path) {
  std::u16string_view name = path.view();
  while (name.ends_with(u'/')) name.remove_suffix(1);
  name = name.substr(name.rfind(u'/') + 1);
  const size_t dot = name.rfind(u'.');
  return dot == std::u16string_view::npos || dot == 0 ? String() : String(name.substr(dot + 1));
}

struct Provider {
  PathExtensionsProvider provider = nullptr;
  void* context = nullptr;
};

// Provider and context change together, hence a lock.
std::mutex providerLock;
Provider customProvider;

}  // namespace

const std::vector<String>& HTMLFileTypes() {
  static const auto types =
      extensions(u"xhtml xhtm shtm shtml cfm html mhtml phtml jhtml htm jsp php php3 php4 php5 asp aspx cgi", u"");
  return types;
}

const std::vector<String>& MimeHTMLFileTypes() {
  static const auto types = extensions(u"mhtml mht", u"");
  return types;
}

const std::vector<String>& XMLFileTypes() {
  static const auto types =
      extensions(u"xml xsl xslt xbl ent wml sgml sgm dtd opml xsd wsdl dita ditamap ditaval opf tbx sdef",
                 u"xmloutline idata rss rsd rdf");
  return types;
}

const std::vector<String>& PropertyListFileTypes() {
  static const auto types = extensions(
      u"plist", u"scriptsuite scriptSuite scriptterminology scriptTerminology strings entitlements qfilter agentSet");
  return types;
}

const std::vector<String>& MarkupFileTypes() {
  static const auto types = joined({&XMLFileTypes(), &HTMLFileTypes(), &PropertyListFileTypes()});
  return types;
}

void setPathExtensionsProvider(PathExtensionsProvider provider, void* context) {
  const std::lock_guard lock(providerLock);
  customProvider = {provider, context};
}

std::vector<String> CustomXMLFileTypes() {
  Provider current;
  {
    const std::lock_guard lock(providerLock);
    current = customProvider;
  }
  return current.provider ? current.provider(String(AdditionalXMLExtensions), current.context) : std::vector<String>();
}

bool isHTMLExtension(const String& extension) { return holds(HTMLFileTypes(), extension); }
bool isMimeHTMLExtension(const String& extension) { return holds(MimeHTMLFileTypes(), extension); }
bool isXMLExtension(const String& extension) {
  return holds(XMLFileTypes(), extension) || holds(CustomXMLFileTypes(), extension);
}
bool isPropertyListExtension(const String& extension) { return holds(PropertyListFileTypes(), extension); }
bool isMarkupExtension(const String& extension) {
  return holds(MarkupFileTypes(), extension) || holds(CustomXMLFileTypes(), extension);
}

bool isHTMLFile(const String& path) { return isHTMLExtension(pathExtension(path)); }
bool isMimeHTMLFile(const String& path) { return isMimeHTMLExtension(pathExtension(path)); }
bool isXMLFile(const String& path) { return isXMLExtension(pathExtension(path)); }
bool isPropertyListFile(const String& path) { return isPropertyListExtension(pathExtension(path)); }
bool isMarkupFile(const String& path) { return isMarkupExtension(pathExtension(path)); }

}  // namespace velan
