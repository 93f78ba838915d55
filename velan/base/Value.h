// The value that property lists and keyed values carry.
#ifndef VELAN_BASE_VALUE_H
#define VELAN_BASE_VALUE_H

#include <concepts>
#include <initializer_list>
#include <string>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

#include "velan/base/Data.h"
#include "velan/base/String.h"
#include "velan/base/URL.h"
#include "velan/base/dates/Date.h"

namespace velan {

class Value;
class ValueDictionary;
using ValueArray = std::vector<Value>;

/// What a `Value` holds.
enum class ValueKind : uint8_t {
  Absent,
  Boolean,
  Character,  // a one-byte number
  Int32,
  UInt32,
  Int64,
  UInt64,
  Float,
  Double,
  String,
  Data,
  Date,
  URL,
  Array,
  Dictionary,
};

namespace detail {

/// The shared part of an array or a dictionary. Its contents never change, so there are no cycles.
struct ValueNode;

/// Counts one reference to a node.
class VELAN_EXPORT ValueNodeReference {
 public:
  explicit ValueNodeReference(ValueNode* node) noexcept : _node(node) {}
  ValueNodeReference(const ValueNodeReference& other) noexcept : _node(other._node) {
    if (_node) retain();
  }
  ValueNodeReference(ValueNodeReference&& other) noexcept : _node(std::exchange(other._node, nullptr)) {}
  ValueNodeReference& operator=(ValueNodeReference other) noexcept {
    std::swap(_node, other._node);
    return *this;
  }
  ~ValueNodeReference() {
    if (_node) release();
  }
  const ValueNode* node() const { return _node; }

 private:
  void retain() const noexcept;
  void release() noexcept;
  ValueNode* lastReference() noexcept;

  ValueNode* _node;
};

struct ValueArrayReference : ValueNodeReference {
  using ValueNodeReference::ValueNodeReference;
};
struct ValueDictionaryReference : ValueNodeReference {
  using ValueNodeReference::ValueNodeReference;
};

template <typename T>
concept Number = std::is_arithmetic_v<T> && !std::same_as<T, char8_t> && !std::same_as<T, char16_t> &&
                 !std::same_as<T, char32_t> && !std::same_as<T, wchar_t>;

}  // namespace detail

/// Nothing, a number, a text, bytes, a date, a URL, or an immutable array or dictionary of values.
///
/// Arrays and dictionaries are shared by reference counting: a copy costs one atomic increment however large they are.
/// To change one, copy its contents, edit them and make a new value. Destruction, comparison and description need no
/// stack space that grows with the depth, and take no more than linear time when parts are shared. Shared between
/// threads like `std::shared_ptr`.
class VELAN_EXPORT Value {
 public:
  Value() noexcept = default;
  Value(std::nullptr_t) noexcept {}
  /// `bool` is a boolean; `char` and `signed char` are one-byte characters; other integers keep their sign and 32 or 64
  /// bits; `float` and `double` stay what they are.
  template <detail::Number T>
  Value(T number) : _content(stored(number)) {}
  /// An absent string, data or URL gives an absent value.
  Value(String string);
  Value(const unichar* text) : Value(String(text)) {}
  Value(Data data);
  Value(Date date) : _content(date) {}
  Value(URL url);
  Value(ValueArray values);
  Value(ValueDictionary entries);
  /// A pointer would silently become a boolean.
  template <typename T>
  Value(T*) = delete;

  ValueKind kind() const { return static_cast<ValueKind>(_content.index()); }
  bool isAbsent() const { return kind() == ValueKind::Absent; }
  explicit operator bool() const = delete;
  /// Whether it is a boolean, a character, an integer, a float or a double.
  bool isNumber() const { return kind() >= ValueKind::Boolean && kind() <= ValueKind::Double; }
  bool isInteger() const { return kind() >= ValueKind::Boolean && kind() <= ValueKind::UInt64; }
  /// Whether it is an array or a dictionary that other values share.
  bool sharesContainer() const;
  /// Whether both share one array or dictionary.
  bool isSameContainer(const Value& other) const { return container() && container() == other.container(); }

  /// The number, converted: what is out of range becomes the nearest value in range, a fraction is cut off, what is not
  /// a number becomes 0. 0 or false for everything but numbers.
  int64_t int64Value() const;
  uint64_t uint64Value() const;
  double doubleValue() const;
  /// Whether the number is not 0.
  bool boolValue() const;

  /// The content; an absent or empty one when the value is of another kind. References live as long as the value.
  const String& string() const;
  const Data& data() const;
  Date date() const;
  const URL& url() const;
  const ValueArray& array() const;
  const ValueDictionary& dictionary() const;

  /// Numbers of all kinds are equal when they stand for the same number, and not-a-number equals itself; otherwise both
  /// kinds and contents must be equal.
  friend VELAN_EXPORT bool operator==(const Value& a, const Value& b);

 private:
  friend class detail::ValueNodeReference;
  using Content = std::variant<std::monostate, bool, int8_t, int32_t, uint32_t, int64_t, uint64_t, float, double,
                               String, Data, Date, URL, detail::ValueArrayReference, detail::ValueDictionaryReference>;

  template <typename T>
  static Content stored(T number) {
    if constexpr (std::same_as<T, bool> || std::same_as<T, float> || std::same_as<T, double>) {
      return number;
    } else if constexpr (std::floating_point<T>) {
      return static_cast<double>(number);
    } else if constexpr (std::same_as<T, char> || std::same_as<T, signed char>) {
      return static_cast<int8_t>(number);
    } else if constexpr (std::signed_integral<T>) {
      return std::conditional_t<sizeof(T) <= 4, int32_t, int64_t>(number);
    } else {
      return std::conditional_t<sizeof(T) <= 4, uint32_t, uint64_t>(number);
    }
  }
  const detail::ValueNode* container() const;

  Content _content;
};

/// An immutable dictionary from strings to values, in the order of its keys' code units.
class VELAN_EXPORT ValueDictionary {
 public:
  struct Entry {
    String key;
    Value value;
    friend bool operator==(const Entry&, const Entry&) = default;
  };

  ValueDictionary() = default;
  /// Of several entries with the same key the last one stays.
  explicit ValueDictionary(std::vector<Entry> entries);
  ValueDictionary(std::initializer_list<Entry> entries) : ValueDictionary(std::vector<Entry>(entries)) {}

  size_t size() const { return _entries.size(); }
  bool isEmpty() const { return _entries.empty(); }
  const std::vector<Entry>& entries() const { return _entries; }
  auto begin() const { return _entries.begin(); }
  auto end() const { return _entries.end(); }
  /// The value of `key`, or null. Lives as long as the dictionary.
  const Value* find(const String& key) const;
  /// The value of `key`, or an absent one.
  const Value& operator[](const String& key) const;

  friend bool operator==(const ValueDictionary&, const ValueDictionary&) = default;

 private:
  std::vector<Entry> _entries;
};

/// A short text for messages, in UTF-8: a number or a string as it is (a long string cut), anything else by its kind
/// and size.
VELAN_EXPORT std::string describe(const Value& value);

/// `number` cut to an integer, by the rules of `Value::int64Value` and `Value::uint64Value`.
VELAN_EXPORT int64_t saturatedInt64(double number);
VELAN_EXPORT uint64_t saturatedUInt64(double number);

}  // namespace velan

#endif  // VELAN_BASE_VALUE_H
