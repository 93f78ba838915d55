// The commands "text", "tags" and "entities".
#include <fmt/format.h>

#include <string>
#include <vector>

#include "tools/CommandLine.h"
#include "tools/Commands.h"
#include "tools/Console.h"
#include "tools/markup/MarkupText.h"
#include "velan/base/utf/UTF.h"
#include "velan/markup/Attributes.h"
#include "velan/markup/Entities.h"
#include "velan/markup/Tags.h"

namespace velan::tool {
namespace {

struct TextOptions {
  std::vector<std::string> files;
  bool attributes = false;
};

struct TagsOptions {
  std::string file = "-";
  std::string attribute;
};

struct EntitiesOptions {
  std::string file = "-";
  bool markup = false;
  bool numeric = false;
};

// Absent after a complaint.
String readPage(const std::string& path) {
  const Data contents = readDataOrComplain(path);
  return contents ? decodePage(path, contents).text : String();
}

int printText(const TextOptions& options) {
  int status = Something;
  for (const std::string& file : options.files) {
    const String page = readPage(file);
    std::string text;
    if (!page) status = Trouble;
    appendUTF8Lossy(textOfMarkup(page, options.attributes).text.view(), text);
    if (!print(text)) break;
  }
  return status;
}

const char* wordFor(TagKind kind) {
  return kind == TagKind::Tag ? "tag" : kind == TagKind::Comment ? "comment" : "section";
}

int printTags(const TagsOptions& options) {
  const String page = readPage(options.file);
  if (!page) return Trouble;
  int status = Nothing;
  parseXmlWithHandler(page, [&](const TagReport& tag) {
    if (tag.kind == TagKind::End) return true;
    const bool hasName = tag.nameLength > 0;
    std::string line = fmt::format("{}\t{}\t{}\t{}", wordFor(tag.kind),
                                   hasName ? page.substring({tag.nameLocation, tag.nameLength}).toUTF8() : "-",
                                   tag.tagLocation, tag.tagLength);
    if (!options.attribute.empty()) {
      const Range range{tag.tagLocation, tag.tagLength};
      const String value = tag.kind == TagKind::Tag
                               ? attributeOfTagInRange(page, range, String::fromUTF8Lossy(options.attribute))
                               : String();
      if (!value) return false;
      line += '\t' + stringByConvertingEntitiesToCharacters(value).toUTF8();
    }
    status = Something;
    return !print(line + '\n');
  });
  return status;
}

int convertEntities(const EntitiesOptions& options, String (*convert)(const String&, const EntitiesOptions&)) {
  const Data bytes = readDataOrComplain(options.file);
  if (!bytes) return Trouble;
  const String text = String::fromUTF8(bytes.view());
  if (!text) return trouble(options.file + ": it is not UTF-8; \"convert\" makes it so");
  print(convert(text, options).toUTF8());
  return Something;
}

int encodeEntities(const EntitiesOptions& options) {
  return convertEntities(options, [](const String& text, const EntitiesOptions& chosen) {
    const String escaped = chosen.markup ? stringByConvertingCharactersToStandardEntities(text) : text;
    return chosen.numeric ? stringByConvertingHighCharactersToEntities(escaped)
                          : stringByConvertingCharactersToEntities(escaped);
  });
}

int decodeEntities(const EntitiesOptions& options) {
  return convertEntities(options, [](const String& text, const EntitiesOptions& chosen) {
    return stringByConvertingEntitiesToCharacters(text, chosen.markup, chosen.numeric, false);
  });
}

}  // namespace

void addMarkupCommands(CLI::App& app, int& status) {
  const auto [text, textOptions] = addCommand<TextOptions>(app, status, "text", "Print the text of pages", printText);
  addArgument(*text, "FILE", textOptions->files, "HTML, XML and property lists, and - for standard input")->required();
  text->add_flag("--attributes", textOptions->attributes,
                 "Print what readers see of tags, too: alt, title, description");
  text->footer(
      "Leaves out tags, comments, scripts and styles, decodes entities, and gives each paragraph a line. The encoding\n"
      "is what the page declares, otherwise UTF-8 or Windows-1252.\n"
      "Example:\n"
      "  velan text page.html | less");
  const auto [tags, tagsOptions] = addCommand<TagsOptions>(app, status, "tags", "List the tags of a page", printTags);
  addArgument(*tags, "FILE", tagsOptions->file, "Standard input by default");
  tags->add_option("-a,--attribute", tagsOptions->attribute, "Only tags with this attribute, and its value")
      ->type_name("NAME");
  tags->footer(
      "Prints kind, name, offset and length of each, with tabs between them; offsets count UTF-16 units of the text.\n"
      "Exit status: 0 something was printed, 1 nothing, 2 something went wrong.\n"
      "Example:\n"
      "  velan tags --attribute href page.html");
  CLI::App* entities = app.add_subcommand("entities", "Turn character entities into characters, and back");
  entities->require_subcommand(1);
  entities->footer(
      "Examples:\n"
      "  echo '&Auml;pfel' | velan entities decode\n"
      "  velan entities encode --markup letter.txt");
  const auto add = [&](const char* name, const char* description, int (*run)(const EntitiesOptions&),
                       const char* markup, const char* numeric) {
    const auto [command, options] = addCommand<EntitiesOptions>(*entities, status, name, description, run);
    addArgument(*command, "FILE", options->file, "Text in UTF-8, standard input by default");
    command->add_flag(markup, options->markup, "Also the characters of markup: \" & < >");
    command->add_flag("--numeric", options->numeric, numeric);
    return options;
  };
  add("encode", "Write all characters beyond ASCII as entities", encodeEntities, "--markup", "By numbers, not names");
  add("decode", "Write entities as characters", decodeEntities, "--markup,!--keep-markup", "Only those by number")
      ->markup = true;
}

}  // namespace velan::tool
