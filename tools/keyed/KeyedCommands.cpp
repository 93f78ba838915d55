#include <CLI/CLI.hpp>
#include <cstdio>
#include <filesystem>
#include <map>
#include <memory>

#include "tools/Commands.h"
#include "tools/Console.h"
#include "tools/keyed/KeyedText.h"
#include "velan/base/JSON.h"
#include "velan/keyed/KeyedReading.h"
#include "velan/keyed/KeyedValues.h"
#include "velan/keyed/KeyedWriting.h"
#include "velan/platform/files/FileReplacement.h"

namespace velan::tool {
namespace {

// What the command line says; one for all subcommands, of which one runs.
struct Arguments {
  std::string file;
  std::string key;
  std::string value;
  std::string type = "string";
  std::string source = "-";
  bool json = false;
  bool pair = false;
  bool typeGiven = false;
};

const std::map<std::string, uint32_t>& typeMarkers() {
  static const std::map<std::string, uint32_t> markers = {
      {"bool", VLbl},   {"unsigned", VLun}, {"signed", VLsi}, {"unsigned64", VLul}, {"signed64", VLsl}, {"float", VLfl},
      {"double", VLdb}, {"date", VLda},     {"string", VLst}, {"data", VLdt},       {"plist", VLpl}};
  return markers;
}

void print(const std::string& text) { std::fwrite(text.data(), 1, text.size(), stdout); }

int trouble(const std::string& message) {
  complain(message);
  return Trouble;
}

std::optional<Data> load(const std::string& path) {
  std::string why;
  const auto bytes = readFile(path, why);
  if (!bytes) {
    complain(path + ": " + why);
    return std::nullopt;
  }
  return Data::withBytes(*bytes);
}

int store(const std::string& path, const MutableData& data) {
  if (path == "-") return trouble("-: standard input has no file to write to");
  const FileError error = replaceFile(String::fromUTF8(path), data);
  return error ? trouble(path + ": " + error.description().toUTF8()) : Something;
}

// A file to be edited must be whole: what is set behind damage would never be found.
std::optional<MutableData> loadForEditing(const std::string& path, bool mayBeMissing) {
  if (mayBeMissing && !std::filesystem::exists(path)) return MutableData();
  const auto data = load(path);
  if (!data) return std::nullopt;
  const KeyedInspection inspection = inspectKeyedData(*data);
  if (inspection.damage == KeyedDamage::None) return MutableData(*data);
  complain(path + ": " + describeDamage(*data, inspection));
  return std::nullopt;
}

int dump(const Arguments& arguments) {
  const auto data = load(arguments.file);
  if (!data) return Trouble;
  const KeyedInspection inspection = inspectKeyedData(*data);
  const bool damaged = inspection.damage != KeyedDamage::None;
  if (arguments.json) {
    print(jsonOfRecords(*data));
  } else {
    for (const KeyedRecord& record : inspection.records) print(lineOfRecord(*data, record) + "\n");
  }
  if (damaged) complain(arguments.file + ": " + describeDamage(*data, inspection));
  return damaged || inspection.records.empty() ? Nothing : Something;
}

int check(const Arguments& arguments) {
  const auto data = load(arguments.file);
  if (!data) return Trouble;
  const KeyedInspection inspection = inspectKeyedData(*data);
  const bool valid = isValid(*data);
  const std::string count = valid ? ", " + std::to_string(inspection.records.size()) + " records" : std::string();
  print(arguments.file + ": " + describeDamage(*data, inspection) + count + "\n");
  return valid ? Something : Nothing;
}

bool printValue(const Value& value) {
  std::string text;
  if (value.kind() == ValueKind::String) {
    text = value.string().toUTF8();
  } else if (value.isAbsent() || !appendJSON(value, text)) {
    return false;
  }
  print(text + "\n");
  return true;
}

int get(const Arguments& arguments) {
  const auto data = load(arguments.file);
  if (!data) return Trouble;
  if (arguments.pair) {
    return printValue(getValueForKey(*data, String::fromUTF8(arguments.key))) ? Something : Nothing;
  }
  const auto key = keyFromText(arguments.key);
  if (!key) return trouble("a key is a number or four characters: " + arguments.key);
  bool found = false;
  for (const KeyedRecord& record : inspectKeyedData(*data).records) {
    if (record.key != *key || (arguments.typeGiven && record.marker != typeMarkers().at(arguments.type))) continue;
    found |= printValue(valueOfRecord(*data, record));
  }
  return found ? Something : Nothing;
}

// The value on the command line: JSON, or plain text where the type is one of text.
std::optional<Value> valueFromText(const std::string& type, const std::string& text) {
  if (type != "string" && type != "data") return readJSON(text);
  const String string = String::fromUTF8(text);
  if (string) return Value(string);
  return std::nullopt;
}

// Fixed sizes are overwritten where they stand, the others move to the end.
void setRecord(MutableData& data, uint32_t marker, uint32_t key, const MutableData& record) {
  for (const KeyedRecord& old : inspectKeyedData(data).records) {
    if (old.marker != marker || old.key != key) continue;
    if (old.length == kKeyedHeaderSize && record.length() == kKeyedHeaderSize && marker != VLst && marker != VLdt &&
        marker != VLpl) {
      std::copy_n(record.bytes(), record.length(), data.mutableBytes() + old.offset);
      return;
    }
    bool first = true;
    removeKeyedDataUsingHandler(data, [&](uint32_t foundMarker, uint32_t foundKey) {
      return foundMarker == marker && foundKey == key && std::exchange(first, false);
    });
    break;
  }
  data.appendBytes(record.bytes(), record.length());
}

int set(const Arguments& arguments) {
  auto data = loadForEditing(arguments.file, true);
  if (!data) return Trouble;
  const uint32_t marker = typeMarkers().at(arguments.type);
  const auto value = valueFromText(arguments.type, arguments.value);
  MutableData record;
  const auto key = arguments.pair ? kKeyedPairValue : keyFromText(arguments.key);
  if (!key) return trouble("a key is a number or four characters: " + arguments.key);
  if (!value || !addRecord(record, marker, *key, valueFromJson(marker, *value))) {
    return trouble("no " + arguments.type + ": " + arguments.value);
  }
  if (!arguments.pair) {
    setRecord(*data, marker, *key, record);
  } else {
    const String name = String::fromUTF8(arguments.key);
    setValue(*data, valueOfRecord(record, {0, record.length(), marker, *key}), name);
    if (!containsValueForKey(*data, name)) return trouble("no key: " + arguments.key);
  }
  return store(arguments.file, *data);
}

int remove(const Arguments& arguments) {
  auto data = loadForEditing(arguments.file, false);
  if (!data) return Trouble;
  const size_t before = data->length();
  if (arguments.pair) {
    removeValueForKey(*data, String::fromUTF8(arguments.key));
  } else {
    const auto key = keyFromText(arguments.key);
    if (!key) return trouble("a key is a number or four characters: " + arguments.key);
    const uint32_t wanted = arguments.typeGiven ? typeMarkers().at(arguments.type) : 0;
    removeKeyedDataUsingHandler(
        *data, [&](uint32_t marker, uint32_t found) { return found == *key && (wanted == 0 || marker == wanted); });
  }
  return data->length() == before ? Nothing : store(arguments.file, *data);
}

int loadRecords(const Arguments& arguments) {
  std::string why;
  const auto json = readFile(arguments.source, why);
  if (!json) return trouble(arguments.source + ": " + why);
  const Data data = recordsFromJson(*json, why);
  if (data.isAbsent()) return trouble(arguments.source + ": " + why);
  return store(arguments.file, MutableData(data));
}

}  // namespace

void addKeyedCommands(CLI::App& app, int& status) {
  const auto arguments = std::make_shared<Arguments>();
  CLI::App* keyed = app.add_subcommand("keyed", "Look into and edit files of keyed data records");
  keyed->require_subcommand(1);
  keyed->footer(
      "Exit status: 0 done or found, 1 nothing found or not valid, 2 trouble.\n\n"
      "Examples:\n"
      "  velan keyed dump settings.vlkd\n"
      "  velan keyed check settings.vlkd\n"
      "  velan keyed set settings.vlkd CNTR 42 --type unsigned\n"
      "  velan keyed set settings.vlkd title 'Annual report' --pair\n"
      "  velan keyed get settings.vlkd title --pair\n"
      "  velan keyed remove settings.vlkd CNTR\n"
      "  velan keyed dump settings.vlkd --json | velan keyed load copy.vlkd");
  const auto add = [&](const char* name, const char* text, int (*run)(const Arguments&)) {
    CLI::App* command = keyed->add_subcommand(name, text);
    command->add_option("FILE", arguments->file, "The file; \"-\" reads standard input where nothing is written")
        ->required();
    command->callback([arguments, run, command, &status] {
      const CLI::Option* type = command->get_option_no_throw("--type");
      arguments->typeGiven = type && type->count() > 0;
      status = run(*arguments);
    });
    return command;
  };
  const auto addKey = [&](CLI::App* command) {
    command->add_option("KEY", arguments->key, "Four characters or a number; with --pair any text")->required();
    command->add_flag("--pair", arguments->pair, "KEY is the key string of a pair");
    return command;
  };
  const auto addType = [&](CLI::App* command, const char* text) {
    std::vector<std::string> names;
    for (const auto& [name, marker] : typeMarkers()) names.push_back(name);
    command->add_option("--type", arguments->type, text)->check(CLI::IsMember(names));
  };
  add("dump", "Show all records: offset, marker, key and value", dump)
      ->add_flag("--json", arguments->json, "As JSON that \"load\" turns into the same bytes");
  add("check", "Say whether the file is valid, and where and why not", check);
  addType(addKey(add("get", "Show the values of a key", get)), "Only records of this type");
  CLI::App* setting = addKey(add("set", "Set the value of a key, in a new file if there is none", set));
  setting
      ->add_option("VALUE", arguments->value,
                   "Text, Base64 for data, JSON for everything else; a date in seconds since 2001")
      ->required();
  addType(setting, "The type of the value, otherwise a string");
  addType(addKey(add("remove", "Remove all records of a key, or a pair", remove)), "Only records of this type");
  add("load", "Write the records that JSON describes to a file", loadRecords)
      ->add_option("--from", arguments->source, "A file with JSON, otherwise standard input");
}

}  // namespace velan::tool
