#include "velan/platform/WordTokenizer.h"

#include <unicode/ubrk.h>

#include <new>
#include <utility>

#include "velan/base/utf/UTF.h"

namespace velan {

namespace {

// Far below ICU's 32-bit offsets, and a bound for what its dictionary passes allocate.
constexpr size_t kLongestPiece = size_t{1} << 20;

// Where to cut `text`: never inside a surrogate pair.
size_t pieceLength(std::u16string_view text) {
  if (text.size() <= kLongestPiece) return text.size();
  return isHighSurrogate(text[kLongestPiece - 1]) && isLowSurrogate(text[kLongestPiece]) ? kLongestPiece - 1
                                                                                         : kLongestPiece;
}

}  // namespace

struct WordTokenizer::Iterator {
  explicit Iterator(UBreakIterator* openIterator) : breaks(openIterator) {}
  ~Iterator() { ubrk_close(breaks); }
  Iterator(const Iterator&) = delete;
  Iterator& operator=(const Iterator&) = delete;

  UBreakIterator* breaks;
};

WordTokenizer::WordTokenizer(std::unique_ptr<Iterator> iterator) : _iterator(std::move(iterator)) {}
WordTokenizer::~WordTokenizer() = default;

std::unique_ptr<WordTokenizer> WordTokenizer::create() {
  // Opening reads rules and data, a clone is a few microseconds: the first iterator of the process is the template.
  static const struct Template {
    Template() {
      UErrorCode error = U_ZERO_ERROR;
      breaks = ubrk_open(UBRK_WORD, "", nullptr, 0, &error);
      if (error == U_MEMORY_ALLOCATION_ERROR) throw std::bad_alloc();  // the next call tries again
      if (U_FAILURE(error)) breaks = nullptr;
    }
    UBreakIterator* breaks = nullptr;
  } original;
  if (!original.breaks) return nullptr;
  UErrorCode error = U_ZERO_ERROR;
  UBreakIterator* breaks = ubrk_clone(original.breaks, &error);
  if (error == U_MEMORY_ALLOCATION_ERROR || !breaks) throw std::bad_alloc();
  if (U_FAILURE(error)) return nullptr;
  return std::unique_ptr<WordTokenizer>(new WordTokenizer(std::make_unique<Iterator>(breaks)));
}

bool WordTokenizer::enumerateTokens(std::u16string_view text, FunctionRef<void(const Token&)> handler) {
  for (size_t offset = 0; offset < text.size();) {
    const size_t length = pieceLength(text.substr(offset));
    if (!enumeratePiece(text.substr(offset, length), static_cast<int64_t>(offset), handler)) return false;
    offset += length;
  }
  return true;
}

bool WordTokenizer::enumeratePiece(std::u16string_view piece, int64_t offset, FunctionRef<void(const Token&)> handler) {
  UErrorCode error = U_ZERO_ERROR;
  ubrk_setText(_iterator->breaks, piece.data(), static_cast<int32_t>(piece.size()), &error);
  if (error == U_MEMORY_ALLOCATION_ERROR) throw std::bad_alloc();
  if (U_FAILURE(error)) return false;
  int32_t start = ubrk_first(_iterator->breaks);
  for (int32_t end; (end = ubrk_next(_iterator->breaks)) != UBRK_DONE; start = end) {
    handler({offset + start, end - start, ubrk_getRuleStatus(_iterator->breaks) >= UBRK_WORD_NONE_LIMIT});
  }
  return true;
}

}  // namespace velan
