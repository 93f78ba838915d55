#include <bit>
#include <cstdint>
#include <vector>

#include "velan/base/ByteOrder.h"
#include "velan/base/propertylist/PropertyListInternal.h"

namespace velan::plist {
namespace {

// A scalar that is written once: its type in the file and its bits.
struct ScalarKey {
  uint8_t type;
  uint64_t bits;
  friend bool operator==(const ScalarKey&, const ScalarKey&) = default;
};

uint64_t mixedBits(uint64_t bits) {
  const uint64_t mixed = bits * 0x9E3779B97F4A7C15u;
  return mixed ^ (mixed >> 32);
}

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

// Which objects are known, by their hashes. Slots lie side by side, so that a look-up in a table that no cache holds
// costs one miss, however many objects there are.
class ObjectTable {
 public:
  // The number of the object with this hash for which `isEqual(number)` holds; if there is none, `number` is added.
  template <typename IsEqual>
  uint64_t numberOf(uint64_t hash, uint64_t number, const IsEqual& isEqual) {
    if (_count >= _slots.size() / 4 * 3) grow();
    Slot& slot = find(hash, isEqual);
    if (slot.number != kFree) return slot.number;
    slot = {hash, number};
    ++_count;
    return number;
  }

 private:
  static constexpr uint64_t kFree = UINT64_MAX;
  struct Slot {
    uint64_t hash = 0;
    uint64_t number = kFree;
  };

  template <typename IsEqual>
  Slot& find(uint64_t hash, const IsEqual& isEqual) {
    const size_t mask = _slots.size() - 1;
    for (size_t at = hash & mask;; at = (at + 1) & mask) {
      Slot& slot = _slots[at];
      if (slot.number == kFree || (slot.hash == hash && isEqual(slot.number))) return slot;
    }
  }

  void grow() {
    std::vector<Slot> old(_slots.empty() ? kFirstSlots : _slots.size() * 2);
    old.swap(_slots);
    for (const Slot& slot : old) {
      if (slot.number != kFree) find(slot.hash, [](uint64_t) { return false; }) = slot;
    }
  }

  static constexpr size_t kFirstSlots = 64;  // a power of two, like every size

  std::vector<Slot> _slots;
  size_t _count = 0;
};

// First gives every object its number, depth first and containers before their contents; then writes them in order.
class BinaryWriter {
  static constexpr size_t kHeadSize = 2;  // of most objects

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
    uint16_t height;    // of a container that is closed
  };
  struct Frame {
    uint64_t object;
    size_t next;
    uint16_t height;
  };

  // `size` is about what the object takes in the file, without its head.
  uint64_t add(const Value* value, const String* key, size_t size) {
    _objects.push_back({value, key, 0, 0});
    _size += size + kHeadSize;
    return _objects.size() - 1;
  }

  // Of equal objects the first is written.
  template <typename IsEqual>
  uint64_t addOnce(uint64_t hash, const Value* value, const String* key, size_t size, const IsEqual& isEqual) {
    const uint64_t index =
        _known.numberOf(hash, _objects.size(), [&](uint64_t number) { return isEqual(_objects[number]); });
    return index == _objects.size() ? add(value, key, size) : index;
  }

  uint64_t addString(const String& string) {
    return addOnce(std::hash<String>()(string), nullptr, &string, string.view().size(),
                   [&string](const Object& object) { return object.key && *object.key == string; });
  }

  uint64_t addScalar(const Value& value) {
    const ScalarKey scalar = scalarKey(value);
    return addOnce(mixedBits(scalar.bits ^ uint64_t{scalar.type} << 56), &value, nullptr, sizeof scalar.bits,
                   [&scalar](const Object& object) { return object.value && scalarKey(*object.value) == scalar; });
  }

  // The number of a value. Containers that are new are opened; false when the value cannot be written.
  bool number(const Value& value, uint64_t& index) {
    switch (value.kind()) {
      case ValueKind::Absent:
      case ValueKind::URL:
        return false;
      case ValueKind::Boolean:
        index = add(&value, nullptr, 0);
        return true;
      case ValueKind::String:
        index = addString(value.string());
        return true;
      case ValueKind::Data:
        index = addOnce(
            std::hash<Data>()(value.data()), &value, nullptr, value.data().length(), [&value](const Object& object) {
              return object.value && object.value->kind() == ValueKind::Data && object.value->data() == value.data();
            });
        return true;
      case ValueKind::Array:
        return numberContainer(value, value.array().size(), index);
      case ValueKind::Dictionary:
        return numberContainer(value, value.dictionary().size() * 2, index);
      default:
        index = addScalar(value);
        return true;
    }
  }

  bool numberContainer(const Value& value, size_t references, uint64_t& index) {
    const size_t count = _objects.size();
    const size_t size = references * sizeof(uint32_t);
    if (value.sharesContainer()) {
      const bool isArray = value.kind() == ValueKind::Array;
      const void* identity = isArray ? static_cast<const void*>(&value.array()) : &value.dictionary();
      index = addOnce(mixedBits(reinterpret_cast<uintptr_t>(identity)), &value, nullptr, size,
                      [&value](const Object& object) { return object.value && object.value->isSameContainer(value); });
    } else {
      index = add(&value, nullptr, size);
    }
    if (index != count) {
      raiseHeight(_objects[index].height);
      return true;
    }
    if (_stack.size() == kPropertyListDepth) return false;
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
      if (position == count) return close();
      if (!number(object.value->array()[position], index)) return false;
    } else {
      if (position == count * 2) return close();
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
    if (key.isAbsent()) return false;
    index = addString(key);
    return true;
  }

  bool close() {
    const uint16_t height = _stack.back().height;
    _objects[_stack.back().object].height = height;
    _stack.pop_back();
    if (!_stack.empty()) raiseHeight(height);
    return height <= kPropertyListDepth;
  }

  void writeFile() {
    _referenceSize = bytesNeeded(_objects.size());
    _out.reserve(_size + (_objects.size() + kBinaryTrailerSize) * sizeof(uint32_t));
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

  MutableData& _out;
  size_t _referenceSize = 1;
  size_t _size = kBinaryHeaderSize;  // about what the objects take
  std::vector<Object> _objects;
  std::vector<uint64_t> _references;
  std::vector<Frame> _stack;
  ObjectTable _known;
};

}  // namespace

bool writeBinary(const Value& value, MutableData& out) { return BinaryWriter(out).write(value); }

}  // namespace velan::plist
