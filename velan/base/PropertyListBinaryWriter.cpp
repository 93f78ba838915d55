#include <bit>
#include <unordered_map>

#include "velan/base/ByteOrder.h"
#include "velan/base/PropertyListInternal.h"

namespace velan::plist {
namespace {

// A scalar that is written once: its type in the file and its bits.
struct ScalarKey {
  uint8_t type;
  uint64_t bits;
  friend bool operator==(const ScalarKey&, const ScalarKey&) = default;
};

struct ScalarKeyHash {
  size_t operator()(const ScalarKey& key) const {
    const uint64_t mixed = (key.bits ^ (uint64_t{key.type} << 56)) * 0x9E3779B97F4A7C15u;
    return static_cast<size_t>(mixed ^ (mixed >> 32));
  }
};

constexpr uint8_t kNoScalar = 0xFF;
constexpr uint8_t kUnsignedInteger = kInteger | 4;
constexpr uint8_t kFloat = kReal | 2;
constexpr uint8_t kDouble = kReal | 3;

ScalarKey scalarKey(const Value& value) {
  switch (value.kind()) {
    case ValueKind::UInt64:
      if (value.uint64Value() > INT64_MAX) return {kUnsignedInteger, value.uint64Value()};
      [[fallthrough]];
    case ValueKind::Character:
    case ValueKind::Int32:
    case ValueKind::UInt32:
    case ValueKind::Int64:
      return {kInteger, static_cast<uint64_t>(value.int64Value())};
    case ValueKind::Float:
      return {kFloat, std::bit_cast<uint32_t>(static_cast<float>(value.doubleValue()))};
    case ValueKind::Double:
      return {kDouble, std::bit_cast<uint64_t>(value.doubleValue())};
    case ValueKind::Date:
      return {kDate, std::bit_cast<uint64_t>(value.date().timeIntervalSinceReferenceDate())};
    default:
      return {kNoScalar, 0};
  }
}

size_t bytesNeeded(uint64_t number) { return number <= 0xFF ? 1 : number <= 0xFFFF ? 2 : number <= 0xFFFFFFFF ? 4 : 8; }

// First gives every object its number, depth first and containers before their contents; then writes them in order.
class BinaryWriter {
 public:
  explicit BinaryWriter(MutableData& out) : _out(out) {}

  bool write(const Value& root) {
    uint64_t top = 0;
    if (!number(root, top)) return false;
    while (!_stack.empty()) {
      if (!numberNextMember()) return false;
    }
    writeFile();
    return true;
  }

 private:
  // An object to write: a value, or the key of a dictionary.
  struct Object {
    const Value* value;
    const String* key;
    size_t references;  // index of a container's first reference
  };
  struct Frame {
    uint64_t object;
    size_t next;
    uint16_t height;
  };

  uint64_t add(const Value* value, const String* key) {
    _objects.push_back({value, key, 0});
    return _objects.size() - 1;
  }

  template <typename Map, typename Key>
  uint64_t addOnce(Map& map, const Key& key, const Value* value, const String* text) {
    const auto [known, isNew] = map.try_emplace(key, _objects.size());
    return isNew ? add(value, text) : known->second;
  }

  // The number of a value. Containers that are new are opened; false when the value cannot be written.
  bool number(const Value& value, uint64_t& index) {
    switch (value.kind()) {
      case ValueKind::Absent:
      case ValueKind::URL:
        return false;
      case ValueKind::Boolean:
        index = add(&value, nullptr);
        return true;
      case ValueKind::String:
        index = addOnce(_strings, value.string(), nullptr, &value.string());
        return true;
      case ValueKind::Data:
        index = addOnce(_data, value.data(), &value, nullptr);
        return true;
      case ValueKind::Array:
        return numberContainer(value, &value.array(), value.array().size(), index);
      case ValueKind::Dictionary:
        return numberContainer(value, &value.dictionary(), value.dictionary().size() * 2, index);
      default:
        index = addOnce(_scalars, scalarKey(value), &value, nullptr);
        return true;
    }
  }

  bool numberContainer(const Value& value, const void* identity, size_t references, uint64_t& index) {
    const auto [known, isNew] = _containers.try_emplace(identity, Container{_objects.size(), 0});
    index = known->second.object;
    if (!isNew) {
      raiseHeight(known->second.height);
      return true;
    }
    if (_stack.size() == kPropertyListDepth) return false;
    add(&value, nullptr);
    _objects.back().references = _references.size();
    _references.resize(_references.size() + references);
    _stack.push_back({index, 0, 1});
    return true;
  }

  void raiseHeight(uint16_t memberHeight) {
    Frame& frame = _stack.back();
    if (memberHeight >= frame.height) frame.height = static_cast<uint16_t>(memberHeight + 1);
  }

  bool numberNextMember() {
    Frame& frame = _stack.back();
    const Object object = _objects[frame.object];
    const bool isArray = object.value->kind() == ValueKind::Array;
    const size_t count = isArray ? object.value->array().size() : object.value->dictionary().size();
    const size_t position = frame.next++;
    uint64_t index = 0;
    if (isArray) {
      if (position == count) return close(&object.value->array());
      if (!number(object.value->array()[position], index)) return false;
    } else {
      if (position == count * 2) return close(&object.value->dictionary());
      const auto& entry = object.value->dictionary().entries()[position % count];
      if (position < count) {
        if (!numberKey(entry.key, index)) return false;
      } else if (!number(entry.value, index)) {
        return false;
      }
    }
    _references[object.references + position] = index;
    return true;
  }

  bool numberKey(const String& key, uint64_t& index) {
    index = addOnce(_strings, key, nullptr, &key);
    return !key.isAbsent();
  }

  bool close(const void* identity) {
    const uint16_t height = _stack.back().height;
    _containers[identity].height = height;
    _stack.pop_back();
    if (!_stack.empty()) raiseHeight(height);
    return height <= kPropertyListDepth;
  }

  void writeFile() {
    _referenceSize = bytesNeeded(_objects.size());
    _out.appendBytes("bplist00", kBinaryHeaderSize);
    std::vector<uint64_t> offsets;
    offsets.reserve(_objects.size());
    for (const Object& object : _objects) {
      offsets.push_back(_out.length());
      writeObject(object);
    }
    const uint64_t table = _out.length();
    const size_t offsetSize = bytesNeeded(table);
    writeNumbers(offsets, offsetSize);
    writeNumbers(std::vector<uint64_t>(6, 0), 1);
    writeNumber(offsetSize, 1);
    writeNumber(_referenceSize, 1);
    writeNumber(_objects.size(), 8);
    writeNumber(0, 8);
    writeNumber(table, 8);
  }

  void writeNumber(uint64_t number, size_t size) { writeNumbers({&number, 1}, size); }

  void writeNumbers(std::span<const uint64_t> numbers, size_t size) {
    const size_t start = _out.length();
    _out.setLength(start + numbers.size() * size);
    uint8_t* bytes = _out.mutableBytes() + start;
    for (const uint64_t number : numbers) {
      storeBigEndian(bytes, number, size);
      bytes += size;
    }
  }

  void writeByte(uint8_t byte) { _out.appendBytes(&byte, 1); }

  void writeInteger(uint64_t bits, bool isNegative) {
    const size_t size = isNegative ? 8 : bytesNeeded(bits);
    writeByte(static_cast<uint8_t>(kInteger | std::countr_zero(size)));
    writeNumber(bits, size);
  }

  void writeHead(BinaryType type, uint64_t count) {
    writeByte(static_cast<uint8_t>(type | (count < kCountFollows ? count : kCountFollows)));
    if (count >= kCountFollows) writeInteger(count, false);
  }

  void writeObject(const Object& object) {
    if (object.key) return writeString(*object.key);
    const Value& value = *object.value;
    switch (value.kind()) {
      case ValueKind::Boolean:
        return writeByte(value.boolValue() ? kTrue : kFalse);
      case ValueKind::Data:
        writeHead(kData, value.data().length());
        return _out.appendData(value.data());
      case ValueKind::Array:
        return writeContainer(kArray, value.array().size(), value.array().size(), object);
      case ValueKind::Dictionary:
        return writeContainer(kDictionary, value.dictionary().size(), value.dictionary().size() * 2, object);
      default:
        return writeScalar(scalarKey(value));
    }
  }

  void writeScalar(const ScalarKey& scalar) {
    if (scalar.type == kInteger) return writeInteger(scalar.bits, static_cast<int64_t>(scalar.bits) < 0);
    if (scalar.type == kDate) {
      writeByte(kDate | 3);
      return writeNumber(scalar.bits, 8);
    }
    writeByte(scalar.type);
    if (scalar.type == kUnsignedInteger) writeNumber(0, 8);
    writeNumber(scalar.bits, scalar.type == kFloat ? 4 : 8);
  }

  void writeString(const String& string) {
    const std::u16string_view units = string.view();
    unichar all = 0;
    for (const unichar unit : units) all = static_cast<unichar>(all | unit);
    const bool isASCII = all < 0x80;
    writeHead(isASCII ? kASCIIString : kUTF16String, units.size());
    const size_t start = _out.length();
    _out.setLength(start + (isASCII ? units.size() : units.size() * 2));
    uint8_t* bytes = _out.mutableBytes() + start;
    for (const unichar unit : units) {
      const size_t width = isASCII ? 1 : 2;
      storeBigEndian(bytes, unit, width);
      bytes += width;
    }
  }

  void writeContainer(BinaryType type, size_t count, size_t references, const Object& object) {
    writeHead(type, count);
    writeNumbers(std::span(_references).subspan(object.references, references), _referenceSize);
  }

  struct Container {
    uint64_t object;
    uint16_t height;
  };

  MutableData& _out;
  size_t _referenceSize = 1;
  std::vector<Object> _objects;
  std::vector<uint64_t> _references;
  std::vector<Frame> _stack;
  std::unordered_map<String, uint64_t> _strings;
  std::unordered_map<Data, uint64_t> _data;
  std::unordered_map<ScalarKey, uint64_t, ScalarKeyHash> _scalars;
  std::unordered_map<const void*, Container> _containers;
};

}  // namespace

bool writeBinary(const Value& value, MutableData& out) { return BinaryWriter(out).write(value); }

}  // namespace velan::plist
