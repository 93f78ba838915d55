#include "tools/files/FileTypes.h"

#include <algorithm>

namespace velan::tool {
namespace {

constexpr FileType kTypes[] = {
    {"c", "*.c *.h"},
    {"cmake", "*.cmake CMakeLists.txt"},
    {"config", "*.cfg *.conf *.config *.ini *.properties"},
    {"cpp", "*.cc *.cpp *.cxx *.h *.hh *.hpp *.hxx *.inl *.ipp"},
    {"cs", "*.cs"},
    {"css", "*.css *.less *.sass *.scss"},
    {"csv", "*.csv *.tsv"},
    {"diff", "*.diff *.patch"},
    {"go", "*.go"},
    {"html", "*.htm *.html *.xhtml"},
    {"java", "*.java"},
    {"js", "*.cjs *.js *.jsx *.mjs"},
    {"json", "*.json *.jsonl *.ndjson"},
    {"log", "*.log *.log.[0-9]"},
    {"lua", "*.lua"},
    {"mail", "*.eml *.mbox"},
    {"make", "*.mak *.mk GNUmakefile Makefile makefile"},
    {"man", "*.[1-8]"},
    {"md", "*.markdown *.md *.mdown"},
    {"objc", "*.h *.m *.mm"},
    {"org", "*.org"},
    {"perl", "*.pl *.pm *.t"},
    {"php", "*.php"},
    {"po", "*.po *.pot"},
    {"py", "*.py *.pyi"},
    {"rst", "*.rst"},
    {"ruby", "*.rb Gemfile Rakefile"},
    {"rust", "*.rs"},
    {"sh", "*.bash *.sh *.zsh"},
    {"sql", "*.sql"},
    {"subtitles", "*.srt *.sub *.vtt"},
    {"svg", "*.svg"},
    {"swift", "*.swift"},
    {"tex", "*.bib *.cls *.ltx *.sty *.tex"},
    {"toml", "*.toml"},
    {"ts", "*.cts *.mts *.ts *.tsx"},
    {"txt", "*.text *.txt"},
    {"xml", "*.rss *.xml *.xsd *.xsl *.xslt"},
    {"yaml", "*.yaml *.yml"},
};

}  // namespace

std::span<const FileType> fileTypes() { return kTypes; }

const FileType* fileTypeCalled(std::string_view name) {
  const auto* found =
      std::find_if(std::begin(kTypes), std::end(kTypes), [&](const FileType& each) { return each.name == name; });
  return found == std::end(kTypes) ? nullptr : found;
}

std::string fileTypeList() {
  std::string list;
  for (const FileType& each : kTypes) {
    list.append(each.name).append(": ");
    for (const char c : each.patterns) list.append(c == ' ' ? ", " : std::string(1, c));
    list += '\n';
  }
  return list;
}

}  // namespace velan::tool
