// `velan keyed …`.
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "tools/CommandLine.h"
#include "tools/Commands.h"
#include "tools/Console.h"
#include "tools/Interruption.h"
#include "tools/keyed/KeyedText.h"
#include "velan/base/json/JSON.h"
#include "velan/keyed/KeyedReading.h"
#include "velan/keyed/KeyedValues.h"
#include "velan/keyed/KeyedWriting.h"
#include "velan/platform/files/FileReplacement.h"

namespace velan::tool {
namespace {

struct KeyedOptions {
  std::string file;
  std::string key;
  std::string value;
  std::string type;  // empty: any, or a string when it is set
  std::string source = "-";
  bool json = false;
  bool pair = false;
};

const std::map<std::string, uint32_t>& typeMarkers() {
  static const std::map<std::string, uint32_t> markers = {
      {"bool", VLbl},   {"unsigned", VLun}, {"signed", VLsi}, {"unsigned64", VLul}, {"signed64", VLsl}, {"float", VLfl},
      {"double", VLdb}, {"date", VLda},     {"string", VLst}, {"data", VLdt},       {"plist", VLpl}};
  return markers;
}

bool isWritable(const std::string& path) {
  if (path == "-") complain("-: standard input has no file to write to");
  return path != "-";
}

// Lets `change` edit the records of the file, which no other run can change meanwhile, and answer with the exit status;
// only where that is `Something` are they written. A file to be edited must be whole: what is set behind damage would
// never be found.
int edit(const std::string& path, bool mayBeMissing, FunctionRef<int(MutableData& data)> change) {
  if (!isWritable(path)) return Trouble;
  const Interruption interruption;
  int status = Trouble;
  const FileError error = updateFile(String::fromUTF8(path), [&](const Data& contents) {
    const KeyedInspection inspection = inspectKeyedData(contents);
    if (contents.isAbsent() && !mayBeMissing) {
      status = trouble(path, FileReason::NoSuchFile);
    } else if (inspection.damage != KeyedDamage::None) {
      status = trouble(path + ": " + describeDamage(contents, inspection));
    } else {
      MutableData data(contents);
      status = change(data);
      if (status == Something) return data.takeData();
    }
    return Data();
  });
  return error ? trouble(path, error) : status;
}

int dump(const KeyedOptions& options) {
  const Data data = readDataOrComplain(options.file);
  if (!data) return Trouble;
  const KeyedInspection inspection = inspectKeyedData(data);
  const bool damaged = inspection.damage != KeyedDamage::None;
  if (options.json) {
    print(jsonOfRecords(data));
  } else {
    for (const KeyedRecord& record : inspection.records) print(lineOfRecord(data, record) + "\n");
  }
  if (damaged) complain(options.file + ": " + describeDamage(data, inspection));
  return damaged || inspection.records.empty() ? Nothing : Something;
}

int check(const KeyedOptions& options) {
  const Data data = readDataOrComplain(options.file);
  if (!data) return Trouble;
  const KeyedInspection inspection = inspectKeyedData(data);
  const bool valid = isValid(data);
  const std::string count = valid ? ", " + std::to_string(inspection.records.size()) + " records" : std::string();
  print(options.file + ": " + describeDamage(data, inspection) + count + "\n");
  return valid ? Something : Nothing;
}

bool printValue(const Value& value) {
  std::string text;
  if (value.kind() == ValueKind::String) {
    text = value.string().toUTF8();
  } else if (value.kind() == ValueKind::Date) {
    text = textOfDate(value);
  } else if (value.isAbsent() || !appendJSON(value, text)) {
    return false;
  }
  print(text + "\n");
  return true;
}

int get(const KeyedOptions& options) {
  const Data data = readDataOrComplain(options.file);
  if (!data) return Trouble;
  if (options.pair) {
    return printValue(getValueForKey(data, String::fromUTF8(options.key))) ? Something : Nothing;
  }
  const auto key = keyFromText(options.key);
  if (!key) return trouble("a key is a number or four characters: " + options.key);
  bool found = false;
  for (const KeyedRecord& record : inspectKeyedData(data).records) {
    if (record.key != *key || (!options.type.empty() && record.marker != typeMarkers().at(options.type))) continue;
    found |= printValue(valueOfRecord(data, record));
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

int set(const KeyedOptions& options) {
  const std::string type = options.type.empty() ? "string" : options.type;
  const uint32_t marker = typeMarkers().at(type);
  const auto value = valueFromText(type, options.value);
  MutableData record;
  const auto key = options.pair ? kKeyedPairValue : keyFromText(options.key);
  if (!key) return trouble("a key is a number or four characters: " + options.key);
  if (!value || !addRecord(record, marker, *key, valueFromJson(marker, *value))) {
    return trouble("no " + type + ": " + options.value);
  }
  return edit(options.file, true, [&](MutableData& data) -> int {
    if (!options.pair) return setRecord(data, marker, *key, record), Something;
    const String name = String::fromUTF8(options.key);
    setValue(data, valueOfRecord(record, {0, record.length(), marker, *key}), name);
    return containsValueForKey(data, name) ? Something : trouble("no key: " + options.key);
  });
}

int remove(const KeyedOptions& options) {
  const auto key = options.pair ? kKeyedPairValue : keyFromText(options.key);
  if (!key) return trouble("a key is a number or four characters: " + options.key);
  return edit(options.file, false, [&](MutableData& data) {
    const size_t before = data.length();
    if (options.pair) {
      removeValueForKey(data, String::fromUTF8(options.key));
    } else {
      const uint32_t wanted = options.type.empty() ? 0 : typeMarkers().at(options.type);
      removeKeyedDataUsingHandler(
          data, [&](uint32_t marker, uint32_t found) { return found == *key && (wanted == 0 || marker == wanted); });
    }
    return data.length() == before ? Nothing : Something;
  });
}

int loadRecords(const KeyedOptions& options) {
  const auto json = readFileOrComplain(options.source);
  if (!json || !isWritable(options.file)) return Trouble;
  std::string why;
  const Data data = recordsFromJson(*json, why);
  if (data.isAbsent()) return trouble(options.source + ": " + why);
  const Interruption interruption;
  const FileError error = replaceFile(String::fromUTF8(options.file), data);
  return error ? trouble(options.file, error) : Something;
}

std::pair<CLI::App*, KeyedOptions*> add(CLI::App& keyed, int& status, const char* name, const char* description,
                                        int (*run)(const KeyedOptions&)) {
  const auto added = addCommand<KeyedOptions>(keyed, status, name, description, run);
  addArgument(*added.first, "FILE", added.second->file, "The file; - reads standard input where nothing is written")
      ->required();
  return added;
}

void addKey(CLI::App& command, KeyedOptions& options) {
  addArgument(command, "KEY", options.key, "Four characters or a number; with --pair any text")->required();
  command.add_flag("--pair", options.pair, "KEY is the key string of a pair");
}

void addType(CLI::App& command, KeyedOptions& options, const char* description) {
  std::string names;
  for (const auto& [name, marker] : typeMarkers()) names += (names.empty() ? "" : "|") + name;
  const auto check = [names](const std::string& name) {
    return typeMarkers().contains(name) ? "" : "it takes " + names + ", not " + name;
  };
  command.add_option("--type", options.type, description)->check(check)->type_name(names);
}

void addDump(CLI::App& keyed, int& status) {
  const auto [command, options] = add(keyed, status, "dump", "Show all records: offset, marker, key and value", dump);
  command->add_flag("--json", options->json, "As JSON that \"load\" turns into the same bytes");
}

void addGet(CLI::App& keyed, int& status) {
  const auto [command, options] = add(keyed, status, "get", "Show the values of a key", get);
  addKey(*command, *options);
  addType(*command, *options, "Only records of this type");
}

void addSet(CLI::App& keyed, int& status) {
  const auto [command, options] =
      add(keyed, status, "set", "Set the value of a key, in a new file if there is none", set);
  addKey(*command, *options);
  addArgument(*command, "VALUE", options->value,
              "Text, Base64 for data, JSON for everything else; a date in seconds since 2001")
      ->required();
  addType(*command, *options, "The type of the value, otherwise a string");
}

void addRemove(CLI::App& keyed, int& status) {
  const auto [command, options] = add(keyed, status, "remove", "Remove all records of a key, or a pair", remove);
  addKey(*command, *options);
  addType(*command, *options, "Only records of this type");
}

void addLoad(CLI::App& keyed, int& status) {
  const auto [command, options] =
      add(keyed, status, "load", "Write the records that JSON describes to a file", loadRecords);
  command->add_option("--from", options->source, "A file with JSON, otherwise standard input")->type_name("FILE");
}

}  // namespace

void addKeyedCommands(CLI::App& app, int& status) {
  CLI::App* keyed = app.add_subcommand("keyed", "Look into and edit files of keyed data records");
  keyed->require_subcommand(1);
  keyed->footer(
      "Exit status: 0 done or found, 1 nothing found or not valid, 2 trouble.\n\n"
      "Examples:\n"
      "  velan keyed dump settings.keyed\n"
      "  velan keyed check settings.keyed\n"
      "  velan keyed set settings.keyed CNTR 42 --type unsigned\n"
      "  velan keyed set settings.keyed title 'Annual report' --pair\n"
      "  velan keyed get settings.keyed title --pair\n"
      "  velan keyed remove settings.keyed CNTR\n"
      "  velan keyed dump settings.keyed --json | velan keyed load copy.keyed");
  addDump(*keyed, status);
  add(*keyed, status, "check", "Say whether the file is valid, and where and why not", check);
  addGet(*keyed, status);
  addSet(*keyed, status);
  addRemove(*keyed, status);
  addLoad(*keyed, status);
}

}  // namespace velan::tool
