#include "velan/base/String.h"

#include <cstdlib>
#include <cstring>
#include <new>

#include "velan/base/OutOfMemory.h"
#include "velan/base/SingleThreadInternal.h"
#include "velan/base/StringStorageInternal.h"
#include "velan/base/utf/UTF.h"

namespace velan {

namespace {

constexpr int64_t kShortestSlice = 1024;

}  // namespace

String::String(std::u16string_view text) {
  unichar* units = allocate(static_cast<int64_t>(text.size()));
  if (units && !text.empty()) std::memcpy(units, text.data(), text.size() * sizeof(unichar));
}

String::String(const unichar* text) : String() {
  if (text) *this = String(std::u16string_view(text));
}

unichar* String::allocate(int64_t length) {
  if (length < 0 || length > Storage::kLongest) return nullptr;
  unichar* units = Storage::reallocateUnits(nullptr, length);
  if (!units) return nullptr;
  release();
  adopt(units, length);
  return units;
}

void String::adopt(unichar* units, int64_t length) {
  auto* storage = new (Storage::blockOf(units)) Storage;
  storage->length = storage->capacity = length;
  storage->characters = units;
  _storage = storage;
}

bool String::truncate(int64_t length) {
  if (length < 0) return false;
  // Gives back what was reserved for the worst case of a conversion.
  if (length < _storage->length) {
    adopt(Storage::fittedUnits(const_cast<unichar*>(_storage->characters), _storage->length, length), length);
  }
  return true;
}

void String::retain() const noexcept {
  if (_storage) addReferences(static_cast<Storage*>(_storage)->references, 1u);
}

void String::release() noexcept {
  auto* storage = static_cast<Storage*>(std::exchange(_storage, nullptr));
  if (!storage || removeReference(storage->references) != 1) return;
  String parent(storage->parent);  // a parent is never a slice itself: this goes one level deep at most
  if (storage->freesCharacters) std::free(const_cast<unichar*>(storage->characters));
  storage->~Storage();
  std::free(storage);
}

String String::fromUTF8(std::string_view utf8) {
  return filled(static_cast<int64_t>(utf8.size()), [utf8](unichar* units) {
    const Transcoded result = convertUTF8ToUTF16(utf8, units);
    return result.consumed == utf8.size() ? static_cast<int64_t>(result.written) : -1;
  });
}

String decodedUTF8(std::string_view utf8) {
  const String string = String::fromUTF8(utf8);
  return string || !isUTF8(utf8) ? string : present(string);
}

String String::fromUTF8Lossy(std::string_view utf8) {
  return filled(static_cast<int64_t>(utf8.size()),
                [utf8](unichar* units) { return static_cast<int64_t>(convertUTF8ToUTF16Lossy(utf8, units)); });
}

String String::withCharacters(const unichar* characters, int64_t length) {
  if (length < 0 || (!characters && length > 0)) return String();
  return String(std::u16string_view(characters, static_cast<size_t>(length)));
}

String String::withCharactersNoCopy(unichar* characters, int64_t length, bool freeWhenDone) {
  String result;
  if (characters && length >= 0 && result.allocate(0)) {
    auto* storage = static_cast<Storage*>(result._storage);
    storage->characters = characters;
    storage->length = storage->capacity = length;
    storage->freesCharacters = freeWhenDone;
  } else if (freeWhenDone) {
    std::free(characters);
  }
  return result;
}

String String::substring(Range range) const {
  if (!_storage) return String();
  const Range piece = clippedRange(range, length());
  if (piece.length == length()) return *this;
  auto* storage = static_cast<Storage*>(_storage);
  const bool shares = piece.length >= kShortestSlice && piece.length >= storage->capacity / 2;
  String result;
  if (!shares || !result.allocate(0)) {
    return String(view().substr(static_cast<size_t>(piece.location), static_cast<size_t>(piece.length)));
  }
  Header* root = storage->parent ? storage->parent : _storage;
  addReferences(static_cast<Storage*>(root)->references, 1u);
  auto* slice = static_cast<Storage*>(result._storage);
  slice->characters = storage->characters + piece.location;
  slice->length = piece.length;
  slice->capacity = storage->capacity;
  slice->parent = root;
  return result;
}

std::string String::toUTF8() const {
  std::string utf8;
  appendUTF8Lossy(view(), utf8);
  return utf8;
}

}  // namespace velan
