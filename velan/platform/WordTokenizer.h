// Finds the words of scripts that put no spaces between them, with the dictionaries of ICU.
#ifndef VELAN_PLATFORM_WORD_TOKENIZER_H
#define VELAN_PLATFORM_WORD_TOKENIZER_H

#include <memory>
#include <string_view>

#include "velan/base/CTypes.h"
#include "velan/base/FunctionRef.h"

namespace velan {

/// A word iterator of the root locale (the dictionaries for Chinese, Japanese, Thai, Lao, Khmer and Burmese are chosen
/// by script, not by locale). Opening one costs far more than a short text: keep it. One thread at a time.
class VELAN_EXPORT WordTokenizer {
 public:
  /// A piece of the text, in units. `isWord` is false for what holds no letter, number or ideograph.
  struct Token {
    int64_t location;
    int64_t length;
    bool isWord;
  };

  /// Null when ICU has no data for it.
  static std::unique_ptr<WordTokenizer> create();
  ~WordTokenizer();
  WordTokenizer(const WordTokenizer&) = delete;
  WordTokenizer& operator=(const WordTokenizer&) = delete;

  /// Hands over the tokens of `text` in order; together they cover it without gaps. A text of more than 1,048,576 units
  /// is cut into pieces of that size, and so are the tokens that lie there. False when ICU fails; the tokens up to
  /// there were handed over.
  bool enumerateTokens(std::u16string_view text, FunctionRef<void(const Token&)> handler);

 private:
  struct Iterator;
  explicit WordTokenizer(std::unique_ptr<Iterator> iterator);
  bool enumeratePiece(std::u16string_view piece, int64_t offset, FunctionRef<void(const Token&)> handler);

  std::unique_ptr<Iterator> _iterator;
};

}  // namespace velan

#endif  // VELAN_PLATFORM_WORD_TOKENIZER_H
