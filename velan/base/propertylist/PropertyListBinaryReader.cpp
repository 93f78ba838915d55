#include <bit>
#include <optional>

#include "velan/base/ByteOrder.h"
#include "velan/base/OutOfMemory.h"
#include "velan/base/propertylist/PropertyListInternal.h"

namespace velan::plist {
namespace {

// Decodes the objects that are reachable from the top one, each once. A reference is an index into the table of
// offsets; an object's extent is checked against the object area when it is reached, and all extents together may not
// exceed that area: intact files have no overlapping objects, and without them decoding stays linear.
class BinaryReader {
 public:
  explicit BinaryReader(std::span<const uint8_t> bytes) : _bytes(bytes) {}

  Value read() {
    if (!readTrailer() || !reach(_top)) return Value();
    while (!_stack.empty()) {
      if (!step()) return Value();
    }
    return _objects[_top].value;
  }

 private:
  enum class State : uint8_t { New, Open, Done };
  struct Object {
    Value value;
    State state = State::New;
    uint16_t height = 0;  // of the tree below a container
  };
  // A container whose members are being decoded, one after the other.
  struct Frame {
    uint64_t object;
    uint64_t references;  // offset of the first
    uint64_t count;       // of references: a dictionary has its keys first, then as many values
    uint64_t next;
    uint16_t height;
    bool isDictionary;
  };
  struct Head {
    uint8_t type;
    uint8_t low;
    uint64_t contents;  // offset of what follows the head
    uint64_t count;
  };

  uint64_t number(uint64_t offset, size_t size) const { return loadBigEndian(&_bytes[offset], size); }

  bool readTrailer() {
    if (_bytes.size() < kBinaryHeaderSize + kBinaryTrailerSize) return false;
    const uint64_t trailer = _bytes.size() - kBinaryTrailerSize;
    _offsetSize = _bytes[trailer + 6];
    _referenceSize = _bytes[trailer + 7];
    const uint64_t count = number(trailer + 8, 8);
    _top = number(trailer + 16, 8);
    _table = number(trailer + 24, 8);
    if (_offsetSize < 1 || _offsetSize > 8 || _referenceSize < 1 || _referenceSize > 8) return false;
    if (_table <= kBinaryHeaderSize || _table > trailer) return false;
    _unclaimed = _table - kBinaryHeaderSize;
    // Every object takes a byte at least. The table must end where the trailer begins.
    if (count > _unclaimed || _top >= count || (trailer - _table) % _offsetSize != 0) return false;
    if (count != (trailer - _table) / _offsetSize) return false;
    _objects.resize(count);
    return true;
  }

  // Takes `size` bytes at `offset` from what objects may still claim.
  bool claim(uint64_t offset, uint64_t size) {
    if (size > _table - offset || size > _unclaimed) return false;
    _unclaimed -= size;
    return true;
  }

  std::optional<Head> readHead(uint64_t index) {
    const uint64_t offset = number(_table + index * _offsetSize, _offsetSize);
    if (offset < kBinaryHeaderSize || offset >= _table || !claim(offset, 1)) return std::nullopt;
    const uint8_t byte = _bytes[offset];
    Head head{static_cast<uint8_t>(byte & 0xF0), static_cast<uint8_t>(byte & 0x0F), offset + 1, 0};
    head.count = head.low;
    const bool counted = head.type >= kData && head.type != kUID;
    if (!counted || head.low != kCountFollows) return head;
    if (!claim(head.contents, 1) || (_bytes[head.contents] & 0xFC) != kInteger) return std::nullopt;
    const size_t size = size_t{1} << (_bytes[head.contents] & 3);
    if (!claim(++head.contents, size)) return std::nullopt;
    head.count = number(head.contents, size);
    head.contents += size;
    return head;
  }

  // Decodes a scalar, or opens a container.
  bool reach(uint64_t index) {
    const auto head = readHead(index);
    if (!head) return false;
    Object& object = _objects[index];
    if (head->type == kArray || head->type == kSet || head->type == kDictionary) {
      object.state = State::Open;
      return open(index, *head);
    }
    object.value = scalar(*head);
    object.state = State::Done;
    return !object.value.isAbsent();
  }

  bool open(uint64_t index, const Head& head) {
    const bool isDictionary = head.type == kDictionary;
    const uint64_t unit = isDictionary ? _referenceSize * 2u : _referenceSize;
    if (head.count > _unclaimed / unit || !claim(head.contents, head.count * unit)) return false;
    if (_stack.size() == kPropertyListDepth) return false;
    _stack.push_back({index, head.contents, isDictionary ? head.count * 2 : head.count, 0, 1, isDictionary});
    return true;
  }

  // Looks at the next member of the innermost open container, or closes it.
  bool step() {
    Frame& frame = _stack.back();
    if (frame.next == frame.count) return close();
    const uint64_t member = reference(frame, frame.next);
    if (member >= _objects.size()) return false;
    Object& object = _objects[member];
    if (object.state == State::New) return reach(member);  // it is looked at again when it is done
    if (object.state == State::Open) return false;         // a cycle
    const bool isKey = frame.isDictionary && frame.next < frame.count / 2;
    if (isKey && object.value.kind() != ValueKind::String) return false;
    if (object.height >= frame.height) frame.height = static_cast<uint16_t>(object.height + 1);
    ++frame.next;
    return frame.height <= kPropertyListDepth;
  }

  uint64_t reference(const Frame& frame, uint64_t index) const {
    return number(frame.references + index * _referenceSize, _referenceSize);
  }

  bool close() {
    const Frame frame = _stack.back();
    _stack.pop_back();
    const auto member = [&](uint64_t index) -> const Value& { return _objects[reference(frame, index)].value; };
    Object& object = _objects[frame.object];
    if (frame.isDictionary) {
      const uint64_t count = frame.count / 2;
      std::vector<ValueDictionary::Entry> entries;
      entries.reserve(count);
      for (uint64_t i = 0; i < count; ++i) entries.push_back({member(i).string(), member(count + i)});
      object.value = ValueDictionary(std::move(entries));
    } else {
      ValueArray values;
      values.reserve(frame.count);
      for (uint64_t i = 0; i < frame.count; ++i) values.push_back(member(i));
      object.value = std::move(values);
    }
    object.state = State::Done;
    object.height = frame.height;
    return true;
  }

  Value scalar(const Head& head) {
    switch (head.type) {
      case kSimple:
        return head.low == kTrue || head.low == kFalse ? Value(head.low == kTrue) : Value();
      case kInteger:
        return integer(head);
      case kReal:
        return real(head);
      case kDate:
        return head.low == 3 && claim(head.contents, 8) ? Value(Date(doubleAt(head.contents))) : Value();
      case kData:
        return claim(head.contents, head.count) ? data(head) : Value();
      case kASCIIString:
        return claim(head.contents, head.count) ? asciiString(head) : Value();
      case kUTF16String:
        return utf16String(head);
      case kUID:
        return uid(head);
      default:
        return Value();
    }
  }

  double doubleAt(uint64_t offset) const { return std::bit_cast<double>(number(offset, 8)); }

  // Up to four bytes are unsigned, eight are signed; sixteen hold what lies beyond the signed range.
  Value integer(const Head& head) {
    const size_t size = size_t{1} << (head.low & 7);
    if (head.low > 4 || !claim(head.contents, size)) return Value();
    if (size <= 8) return static_cast<int64_t>(number(head.contents, size));
    const uint64_t high = number(head.contents, 8);
    const uint64_t low = number(head.contents + 8, 8);
    const auto signedLow = static_cast<int64_t>(low);
    if (high == 0) return signedLow < 0 ? Value(low) : Value(signedLow);
    return high == UINT64_MAX && signedLow < 0 ? Value(signedLow) : Value();
  }

  Value real(const Head& head) {
    if (head.low == 2 && claim(head.contents, 4)) {
      return std::bit_cast<float>(static_cast<uint32_t>(number(head.contents, 4)));
    }
    return head.low == 3 && claim(head.contents, 8) ? Value(doubleAt(head.contents)) : Value();
  }

  Value data(const Head& head) const { return present(Data::withBytes(_bytes.data() + head.contents, head.count)); }

  Value asciiString(const Head& head) const {
    const uint8_t* bytes = _bytes.data() + head.contents;
    const auto count = static_cast<int64_t>(head.count);
    uint8_t all = 0;
    for (int64_t i = 0; i < count; ++i) all |= bytes[i];
    if (all >= 0x80) return Value();
    return present(String::filled(count, [bytes, count](unichar* units) {
      for (int64_t i = 0; i < count; ++i) units[i] = bytes[i];
      return count;
    }));
  }

  Value utf16String(const Head& head) {
    if (head.count > _unclaimed / 2 || !claim(head.contents, head.count * 2)) return Value();
    const uint8_t* bytes = _bytes.data() + head.contents;
    const auto count = static_cast<int64_t>(head.count);
    return present(String::filled(count, [bytes, count](unichar* units) {
      for (int64_t i = 0; i < count; ++i) units[i] = loadBigEndian<uint16_t>(bytes + 2 * i);
      return count;
    }));
  }

  Value uid(const Head& head) {
    const size_t size = head.low + size_t{1};
    return size <= 8 && claim(head.contents, size) ? Value(number(head.contents, size)) : Value();
  }

  std::span<const uint8_t> _bytes;
  uint64_t _table = 0;  // its offset, where the object area ends
  uint64_t _top = 0;
  uint64_t _unclaimed = 0;
  uint8_t _offsetSize = 0;
  uint8_t _referenceSize = 0;
  std::vector<Object> _objects;
  std::vector<Frame> _stack;
};

}  // namespace

Value readBinary(std::span<const uint8_t> bytes) { return BinaryReader(bytes).read(); }

}  // namespace velan::plist
