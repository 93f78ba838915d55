#include "velan/base/Value.h"

#include <algorithm>
#include <atomic>
#include <charconv>
#include <cmath>
#include <unordered_map>

namespace velan {
namespace detail {

struct ValueNode {
  std::atomic<size_t> references{1};
  ValueNode* next = nullptr;  // while it waits for its destruction
  const bool isDictionary;
  explicit ValueNode(bool dictionary) : isDictionary(dictionary) {}
};

namespace {

struct ArrayNode : ValueNode {
  ValueArray values;
  explicit ArrayNode(ValueArray contents) : ValueNode(false), values(std::move(contents)) {}
};

struct DictionaryNode : ValueNode {
  ValueDictionary entries;
  explicit DictionaryNode(ValueDictionary contents) : ValueNode(true), entries(std::move(contents)) {}
};

const ValueArray& valuesOf(const ValueNode* node) { return static_cast<const ArrayNode*>(node)->values; }
const ValueDictionary& entriesOf(const ValueNode* node) { return static_cast<const DictionaryNode*>(node)->entries; }

// Calls `visit` with each value directly inside the node.
template <typename Visitor>
void forEachValue(ValueNode* node, const Visitor& visit) {
  if (!node->isDictionary) {
    for (Value& value : static_cast<ArrayNode*>(node)->values) visit(value);
    return;
  }
  // The node is about to go: nobody else can see its contents change.
  for (const auto& entry : static_cast<DictionaryNode*>(node)->entries) visit(const_cast<Value&>(entry.value));
}

void destroy(ValueNode* node) {
  if (node->isDictionary) {
    delete static_cast<DictionaryNode*>(node);
  } else {
    delete static_cast<ArrayNode*>(node);
  }
}

}  // namespace

void ValueNodeReference::retain() const noexcept { _node->references.fetch_add(1, std::memory_order_relaxed); }

// Gives up the reference; the node when it was the last one.
ValueNode* ValueNodeReference::lastReference() noexcept {
  ValueNode* node = std::exchange(_node, nullptr);
  return node && node->references.fetch_sub(1, std::memory_order_acq_rel) == 1 ? node : nullptr;
}

// Nodes that nobody refers to any more wait in a list, so that no depth of nesting uses up the stack.
void ValueNodeReference::release() noexcept {
  ValueNode* waiting = lastReference();
  while (waiting) {
    ValueNode* node = std::exchange(waiting, waiting->next);
    forEachValue(node, [&waiting](Value& value) {
      ValueNodeReference* inner = std::get_if<ValueArrayReference>(&value._content);
      if (!inner) inner = std::get_if<ValueDictionaryReference>(&value._content);
      ValueNode* last = inner ? inner->lastReference() : nullptr;
      if (!last) return;
      last->next = waiting;
      waiting = last;
    });
    destroy(node);
  }
}

}  // namespace detail

namespace {

constexpr double kTwoTo63 = 9223372036854775808.0;
constexpr double kTwoTo64 = 18446744073709551616.0;

// A number as an exact integer where it is one, so that kinds can be compared without rounding.
struct ExactNumber {
  bool isInteger;
  bool negative;
  uint64_t magnitude;
  double real;
};

ExactNumber exactInteger(const Value& value) {
  if (value.kind() == ValueKind::UInt64) return {true, false, value.uint64Value(), 0};
  const int64_t number = value.int64Value();
  const auto bits = static_cast<uint64_t>(number);
  return {true, number < 0, number < 0 ? 0 - bits : bits, 0};
}

ExactNumber exactNumber(const Value& value) {
  if (value.isInteger()) return exactInteger(value);
  const double real = value.doubleValue();
  const double magnitude = std::fabs(real);
  if (!(magnitude < kTwoTo64) || std::trunc(real) != real) return {false, false, 0, real};
  return {true, real < 0, static_cast<uint64_t>(magnitude), 0};
}

bool equalNumbers(const Value& a, const Value& b) {
  const ExactNumber x = exactNumber(a);
  const ExactNumber y = exactNumber(b);
  if (x.isInteger != y.isInteger) return false;
  if (x.isInteger) return x.magnitude == y.magnitude && x.negative == y.negative;
  return x.real == y.real || (std::isnan(x.real) && std::isnan(y.real));
}

bool equalScalars(const Value& a, const Value& b) {
  if (a.isNumber()) return b.isNumber() && equalNumbers(a, b);
  if (a.kind() != b.kind()) return false;
  switch (a.kind()) {
    case ValueKind::String:
      return a.string() == b.string();
    case ValueKind::Data:
      return a.data() == b.data();
    case ValueKind::Date:
      return equalNumbers(a.date().timeIntervalSinceReferenceDate(), b.date().timeIntervalSinceReferenceDate());
    case ValueKind::URL:
      return a.url() == b.url();
    default:
      return true;
  }
}

// Compares containers as if they were the states of automata: two that must be equal are put into one class, and each
// joining of classes is checked once. Shared parts cost nothing extra, whatever the number of paths to them.
class ContainerComparison {
 public:
  bool equal(const Value& a, const Value& b) {
    if (!require(a, b)) return false;
    while (!_pending.empty()) {
      const auto [x, y] = _pending.back();
      _pending.pop_back();
      if (!requireContents(*x, *y)) return false;
    }
    return true;
  }

 private:
  static bool isContainer(const Value& value) { return value.kind() >= ValueKind::Array; }
  static const void* identity(const Value& value) {
    return value.kind() == ValueKind::Array ? static_cast<const void*>(&value.array()) : &value.dictionary();
  }

  const void* classOf(const void* node) {
    for (;;) {
      const auto parent = _parents.find(node);
      if (parent == _parents.end()) return node;
      const auto grandparent = _parents.find(parent->second);
      if (grandparent == _parents.end()) return parent->second;
      parent->second = grandparent->second;
      node = parent->second;
    }
  }

  bool require(const Value& a, const Value& b) {
    if (!isContainer(a) || !isContainer(b)) return equalScalars(a, b);
    if (a.kind() != b.kind()) return false;
    const void* x = classOf(identity(a));
    const void* y = classOf(identity(b));
    if (x == y) return true;
    _parents[x] = y;
    _pending.emplace_back(&a, &b);
    return true;
  }

  bool requireContents(const Value& a, const Value& b) {
    if (a.kind() == ValueKind::Array) {
      return std::ranges::equal(a.array(), b.array(), [this](const Value& x, const Value& y) { return require(x, y); });
    }
    return std::ranges::equal(a.dictionary(), b.dictionary(), [this](const auto& x, const auto& y) {
      return x.key == y.key && require(x.value, y.value);
    });
  }

  std::unordered_map<const void*, const void*> _parents;
  std::vector<std::pair<const Value*, const Value*>> _pending;
};

template <typename T>
const T& contentOrEmpty(const T* content) {
  static const T empty;
  return content ? *content : empty;
}

std::string describeNumber(const Value& value) {
  char text[32];
  const auto written = [&text](auto number) {
    return std::string(text, std::to_chars(text, text + sizeof text, number).ptr);
  };
  switch (value.kind()) {
    case ValueKind::Boolean:
      return value.boolValue() ? "YES" : "NO";
    case ValueKind::UInt64:
      return written(value.uint64Value());
    case ValueKind::Float:
      return written(static_cast<float>(value.doubleValue()));
    case ValueKind::Double:
      return written(value.doubleValue());
    default:
      return written(value.int64Value());
  }
}

}  // namespace

int64_t saturatedInt64(double number) {
  if (std::isnan(number)) return 0;
  if (number >= kTwoTo63) return INT64_MAX;
  return number <= -kTwoTo63 ? INT64_MIN : static_cast<int64_t>(number);
}

uint64_t saturatedUInt64(double number) {
  if (!(number > 0)) return 0;
  return number >= kTwoTo64 ? UINT64_MAX : static_cast<uint64_t>(number);
}

Value::Value(String string) {
  if (string) _content = std::move(string);
}

Value::Value(Data data) {
  if (data) _content = std::move(data);
}

Value::Value(URL url) {
  if (url) _content = std::move(url);
}

Value::Value(ValueArray values) : _content(detail::ValueArrayReference(new detail::ArrayNode(std::move(values)))) {}

Value::Value(ValueDictionary entries)
    : _content(detail::ValueDictionaryReference(new detail::DictionaryNode(std::move(entries)))) {}

bool Value::sharesContainer() const {
  const detail::ValueNode* node = container();
  return node && node->references.load(std::memory_order_relaxed) > 1;
}

const detail::ValueNode* Value::container() const {
  if (const auto* array = std::get_if<detail::ValueArrayReference>(&_content)) return array->node();
  if (const auto* entries = std::get_if<detail::ValueDictionaryReference>(&_content)) return entries->node();
  return nullptr;
}

int64_t Value::int64Value() const {
  return std::visit(
      []<typename T>(const T& content) -> int64_t {
        if constexpr (std::floating_point<T>) return saturatedInt64(static_cast<double>(content));
        if constexpr (std::same_as<T, uint64_t>) return static_cast<int64_t>(std::min<uint64_t>(content, INT64_MAX));
        if constexpr (std::integral<T>) return static_cast<int64_t>(content);
        return 0;
      },
      _content);
}

uint64_t Value::uint64Value() const {
  return std::visit(
      []<typename T>(const T& content) -> uint64_t {
        if constexpr (std::floating_point<T>) return saturatedUInt64(static_cast<double>(content));
        if constexpr (std::signed_integral<T>) return content < 0 ? 0 : static_cast<uint64_t>(content);
        if constexpr (std::integral<T>) return static_cast<uint64_t>(content);
        return 0;
      },
      _content);
}

double Value::doubleValue() const {
  return std::visit(
      []<typename T>(const T& content) -> double {
        if constexpr (std::is_arithmetic_v<T>) return static_cast<double>(content);
        return 0;
      },
      _content);
}

bool Value::boolValue() const {
  return std::visit(
      []<typename T>(const T& content) -> bool {
        if constexpr (std::is_arithmetic_v<T>) return content != T(0);
        return false;
      },
      _content);
}

const String& Value::string() const { return contentOrEmpty(std::get_if<String>(&_content)); }
const Data& Value::data() const { return contentOrEmpty(std::get_if<Data>(&_content)); }
Date Value::date() const { return contentOrEmpty(std::get_if<Date>(&_content)); }
const URL& Value::url() const { return contentOrEmpty(std::get_if<URL>(&_content)); }

const ValueArray& Value::array() const {
  return contentOrEmpty(kind() == ValueKind::Array ? &detail::valuesOf(container()) : nullptr);
}

const ValueDictionary& Value::dictionary() const {
  return contentOrEmpty(kind() == ValueKind::Dictionary ? &detail::entriesOf(container()) : nullptr);
}

bool operator==(const Value& a, const Value& b) { return ContainerComparison().equal(a, b); }

ValueDictionary::ValueDictionary(std::vector<Entry> entries) : _entries(std::move(entries)) {
  const auto ordered = [](const Entry& a, const Entry& b) { return a.key < b.key; };
  const auto notAscending = [](const Entry& a, const Entry& b) { return !(a.key < b.key); };
  if (std::ranges::adjacent_find(_entries, notAscending) == _entries.end()) return;
  std::ranges::stable_sort(_entries, ordered);
  // From the back, the first of equal keys is the one that was given last.
  const auto sameKey = [](const Entry& a, const Entry& b) { return a.key == b.key; };
  const auto kept = std::unique(_entries.rbegin(), _entries.rend(), sameKey);
  _entries.erase(_entries.begin(), kept.base());
}

const Value* ValueDictionary::find(const String& key) const {
  const auto found = std::ranges::lower_bound(_entries, key, {}, &Entry::key);
  return found != _entries.end() && found->key == key ? &found->value : nullptr;
}

const Value& ValueDictionary::operator[](const String& key) const { return contentOrEmpty(find(key)); }

std::string describe(const Value& value) {
  constexpr int64_t kLongestText = 200;
  switch (value.kind()) {
    case ValueKind::Absent:
      return "(null)";
    case ValueKind::String:
      return value.string().substringToIndex(kLongestText).toUTF8();
    case ValueKind::URL:
      return value.url().absoluteString().substringToIndex(kLongestText).toUTF8();
    case ValueKind::Data:
      return "data of " + std::to_string(value.data().length()) + " bytes";
    case ValueKind::Date:
      return "date " + describe(value.date().timeIntervalSinceReferenceDate());
    case ValueKind::Array:
      return "array of " + std::to_string(value.array().size()) + " values";
    case ValueKind::Dictionary:
      return "dictionary of " + std::to_string(value.dictionary().size()) + " entries";
    default:
      return describeNumber(value);
  }
}

}  // namespace velan
