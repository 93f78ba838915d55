// A search query as a tree of terms, and its parser.
#ifndef VELAN_QUERY_QUERY_TERMS_H
#define VELAN_QUERY_QUERY_TERMS_H

#include <concepts>
#include <map>
#include <memory>
#include <variant>
#include <vector>

#include "velan/base/FunctionRef.h"
#include "velan/base/MutableString.h"
#include "velan/base/String.h"
#include "velan/query/QueryComparison.h"

namespace velan {

/// How a term is joined to the term before it in its group.
enum class QueryOperator : uint32_t {
  And = 0,
  Or = 1,
  Xor = 2,
  Near = 3,      // in either order within the distance
  Before = 4,    // the term before lies within the distance before this one
  After = 5,     // the term before lies within the distance after this one
  Next = 6,      // the term before lies directly before this one
  Optional = 7,  // never decides
  Mixed = 8,     // only as the common operator of a group
};

/// Whether `op` relates two terms by their distance in words.
constexpr bool isProximity(QueryOperator op) { return op >= QueryOperator::Near && op <= QueryOperator::Next; }

/// How a tree is written as text; the values are flags to combine with `|`.
enum class QueryStyle : uint32_t {
  None = 0,
  ExplicitAnd = 1u << 3,        // AND between and-terms, which otherwise follow each other after a blank
  SymbolicNot = 1u << 4,        // "-" before a negated term in place of "NOT "
  AndNot = 1u << 5,             // "ANDNOT" in place of "AND NOT"; for other systems, the parser does not know it
  Plus = 1u << 6,               // "+" before every required term: one that is not negated and joined by and
  SymbolicOperators = 1u << 7,  // "&", "|", "^" in place of AND, OR, XOR
  Phrases = 1u << 9,            // phrases in quotation marks; otherwise their words stand alone
  Parentheses = 1u << 10,       // groups in parentheses
  Proximity = 1u << 11,         // NEAR, BEFORE, AFTER, NEXT; otherwise written like and
  Distances = 1u << 12,         // with their distances, NEAR/10
  Optional = 1u << 13,          // OPT; otherwise written like and
  Or = 1u << 14,                // OR and XOR; otherwise written like and
  Substrings = 1u << 15,        // the asterisks around the words of substring leaves; otherwise the bare words
  NormalWildcards = 1u << 17,   // wildcard patterns in their normal form
  /// Everything in keywords: parses back into an equivalent tree whatever the default operator.
  Standardized = ExplicitAnd | Phrases | Parentheses | Proximity | Distances | Optional | Or | Substrings,
  /// The shortest form; parses back into an equivalent tree when the default operator is and.
  Normalized =
      SymbolicNot | SymbolicOperators | Phrases | Parentheses | Proximity | Distances | Optional | Or | Substrings,
};

constexpr QueryStyle operator|(QueryStyle a, QueryStyle b) {
  return static_cast<QueryStyle>(static_cast<uint32_t>(a) | static_cast<uint32_t>(b));
}
constexpr bool contains(QueryStyle style, QueryStyle flag) {
  return (static_cast<uint32_t>(style) & static_cast<uint32_t>(flag)) != 0;
}

/// Maps operator keywords such as u"AND" to the words to write in their place.
using QueryOperatorNames = std::map<String, String>;

/// One case of the built-in self-test.
struct QueryTestCase {
  const char* query;  // ASCII
  bool matches;
};

class FastWordEnumerator;

/// Receives an occurrence: the term of the tree, where it lies in the text (code units), and whether it takes part in
/// what satisfied the query. Returns true to stop.
using QueryOccurrenceHandler = FunctionRef<bool(const String& term, Range range, bool primary)>;

/// A node of a query: a leaf with a word, phrase or wildcard pattern, or a group with its children in order. The root
/// is always a group. A tree never changes after parsing, so any number of threads may use it at once.
///
/// Whatever is typed yields a tree; the language is described in docs/query-language.md. Trees of any depth are parsed,
/// written, evaluated and destroyed without recursion.
class VELAN_EXPORT QueryTerms {
 public:
  using Children = std::vector<std::unique_ptr<QueryTerms>>;

  static constexpr int64_t kDefaultDistance = 10;

  /// `initWithString:`: the tree of `query`; terms are joined by and unless an operator stands between them, proximity
  /// operators reach 10 words. Never null; an absent or empty query gives a tree without children. Throws
  /// `std::bad_alloc`, as all that makes a tree.
  static std::unique_ptr<QueryTerms> initWithString(const String& query);
  /// `initWithString:defaultOperator:defaultDistance:`: as above with the operator and distance (in words) to use where
  /// the query names none.
  static std::unique_ptr<QueryTerms> initWithString(const String& query, QueryOperator defaultOperator,
                                                    int64_t defaultDistance);
  /// `initWithWildcard:`: as `initWithString:`, but `[` and `]` belong to terms, which are wildcard patterns.
  static std::unique_ptr<QueryTerms> initWithWildcard(const String& query);
  /// `initWithWildcard:defaultOperator:defaultDistance:`
  static std::unique_ptr<QueryTerms> initWithWildcard(const String& query, QueryOperator defaultOperator,
                                                      int64_t defaultDistance);
  /// `queryTermsWithWildcard:`: the class form of `initWithWildcard:`.
  static std::unique_ptr<QueryTerms> queryTermsWithWildcard(const String& query);
  /// `queryTermsWithWildcard:defaultOperator:defaultDistance:`
  static std::unique_ptr<QueryTerms> queryTermsWithWildcard(const String& query, QueryOperator defaultOperator,
                                                            int64_t defaultDistance);
  /// `_initWithString:wildcard:defaultOperator:defaultDistance:queryOperator:queryNot:querySubstring:proximityDistance:`:
  /// the parser behind the others. `queryOperator`, `queryNot` and `proximityDistance` become those of the root. With
  /// `querySubstring` every term that is no phrase finds words that contain it.
  static std::unique_ptr<QueryTerms> _initWithString(const String& query, bool wildcard, QueryOperator defaultOperator,
                                                     int64_t defaultDistance, QueryOperator queryOperator,
                                                     bool queryNot, bool querySubstring, int64_t proximityDistance);

  ~QueryTerms();
  QueryTerms(const QueryTerms&) = delete;
  QueryTerms& operator=(const QueryTerms&) = delete;

  /// `queryOperator`: what joins this term to the one before it; of no meaning for the first of a group.
  QueryOperator queryOperator() const { return _queryOperator; }
  /// The operator that all children but the first share, `Mixed` when they differ or when there is no second.
  QueryOperator commonOperator() const { return _commonOperator; }
  /// `queryNot`: whether the term is negated.
  bool queryNot() const { return _queryNot; }
  /// `queryPhrase`: whether the leaf stood in quotation marks.
  bool queryPhrase() const { return _queryPhrase; }
  /// `querySubstring`: whether the leaf also finds words that contain it. Its word is then a pattern `*word*`.
  bool querySubstring() const { return _querySubstr; }
  /// `proximityDistance`: in words; counts for the operators near to next only. Zero or less relates like and.
  int64_t proximityDistance() const { return _proximityDistance; }
  /// Whether the node is a leaf.
  bool isWord() const { return _isWord; }
  /// `object`: the word of a leaf or the children of a group.
  const std::variant<String, Children>& object() const { return _object; }
  /// The word, phrase or pattern of a leaf; absent for a group.
  const String& word() const;
  /// The children of a group; none for a leaf.
  const Children& children() const;

  /// `usesProximity`: whether the node's own operator is a proximity operator or, for a group, any below it.
  bool usesProximity() const;
  /// `isValid`: whether there is anything to search for: true for a leaf, and for a group with a child.
  bool isValid() const;
  /// `minTermLen`: the least number of code units that a place can have where a leaf that is neither negated nor below
  /// a negated group is found, separators left out; 0 when there is no such leaf. Texts shorter than this cannot
  /// contain any of them, except by `QueryComparison::Fuzzy`, which accepts shorter words.
  int64_t minTermLen() const;
  /// `description`: the standardized form, for messages and debuggers.
  String description() const;

  /// `plusTerms`: the words, phrases and patterns of the leaves that are neither negated nor below a negated group, in
  /// the order of the tree, each once.
  std::vector<String> plusTerms() const;
  /// `plusString`: the `plusTerms` joined with blanks.
  String plusString() const;
  /// `plusParts`: the parts of the `plusTerms` between white space, each once.
  std::vector<String> plusParts() const;
  /// `plusWords`: the words of the `plusTerms` by the word separators, so without any wildcards, each once.
  std::vector<String> plusWords() const;
  /// `plusWildcards`: the words of the `plusTerms` by the wildcard separators: patterns for one word each.
  std::vector<String> plusWildcards() const;
  /// `extendedPlusWildcards`: the `plusWildcards`, each with a `*` at both ends: patterns that also find longer words.
  std::vector<String> extendedPlusWildcards() const;

  /// `standardizedQueryTerm`: the tree as text in style `QueryStyle::Standardized`.
  String standardizedQueryTerm() const;
  /// `normalizedQueryTerm`: the tree as text in style `QueryStyle::Normalized`.
  String normalizedQueryTerm() const;
  /// `queryTermsForOperators:dictionary:`: the tree as text in `style`, keywords replaced as `dictionary` says; a
  /// keyword that it lacks is written as itself.
  String queryTermsForOperators(QueryStyle style, const QueryOperatorNames& dictionary) const;

  /// Whether memory ran out during a search for the terms of this tree (`matchesString`, `containsString`,
  /// `enumerateString`, `findNextQueryTerm` and their like), in `minTermLen` or in `usesProximity`, whose answer was
  /// then none.
  bool ranOutOfMemory() const { return __atomic_load_n(&_ranOutOfMemory, __ATOMIC_RELAXED); }
  /// For those operations.
  void noteOutOfMemory() const { __atomic_store_n(&_ranOutOfMemory, true, __ATOMIC_RELAXED); }

  /// `matchesString:caseSensitive:`: whether `string` matches the query, leaves taken as plain words. False for an
  /// empty string.
  bool matchesString(const String& string, std::same_as<bool> auto caseSensitive) const {
    return matchesPlain(string, caseSensitive);
  }
  /// `matchesString:comparison:`: as above with the leaves taken as wildcard patterns.
  bool matchesString(const String& string, QueryComparison comparison) const;
  /// `containsString:caseSensitive:`: whether `string` holds any leaf that is neither negated nor below a negated
  /// group, whatever the operators.
  bool containsString(const String& string, std::same_as<bool> auto caseSensitive) const {
    return containsPlain(string, caseSensitive);
  }
  /// `containsString:comparison:`: as above with the leaves taken as wildcard patterns.
  bool containsString(const String& string, QueryComparison comparison) const;
  /// `enumerateString:range:caseSensitive:handler:`: hands over where leaves, taken as plain words, occur in `range` of
  /// `string`, in the order of the text; see `enumerateOccurrences`. Returns how many before a stop.
  int64_t enumerateString(const String& string, Range range, std::same_as<bool> auto caseSensitive,
                          QueryOccurrenceHandler handler) const {
    return enumeratePlain(string, range, caseSensitive, handler);
  }
  /// As above with the leaves taken as wildcard patterns.
  int64_t enumerateString(const String& string, Range range, QueryComparison comparison,
                          QueryOccurrenceHandler handler) const;

  /// `testString`: the text of the self-test.
  static String testString();
  /// `getTestCases:`: the cases of the self-test, valid for ever; their number goes to `count` (which may be null).
  static const QueryTestCase* getTestCases(int64_t* count);
  /// `test`: runs the self-test, logs "Success: query => Yes" or "Failed: …" for each case, and returns whether all
  /// succeeded.
  static bool test();

 private:
  friend class QueryParser;

  /// An empty group.
  QueryTerms(QueryOperator queryOperator, bool queryNot, int64_t proximityDistance);
  /// `_initWithWord:queryOperator:queryNot:querySubstring:queryPhrase:proximityDistance:`: a leaf.
  static std::unique_ptr<QueryTerms> _initWithWord(String word, QueryOperator queryOperator, bool queryNot,
                                                   bool querySubstring, bool queryPhrase, int64_t proximityDistance);
  void appendChild(std::unique_ptr<QueryTerms> child);

  bool matchesPlain(const String& string, bool caseSensitive) const;
  bool containsPlain(const String& string, bool caseSensitive) const;
  int64_t enumeratePlain(const String& string, Range range, bool caseSensitive, QueryOccurrenceHandler handler) const;

  std::variant<String, Children> _object;
  QueryOperator _queryOperator;
  QueryOperator _commonOperator = QueryOperator::Mixed;
  bool _queryNot;
  bool _queryPhrase = false;
  bool _querySubstr = false;
  bool _isWord = false;
  mutable bool _ranOutOfMemory = false;
  int64_t _proximityDistance;
  QueryTerms* _next = nullptr;  // while it waits for its destruction
};

/// `queryTerm`: appends `node` with everything below it to `text` in `style`; `dictionary` may be null.
VELAN_EXPORT void queryTerm(MutableString& text, const QueryTerms& node, QueryStyle style,
                            const QueryOperatorNames* dictionary);

/// `stringsForQueryTerm`: the words, phrases and patterns of all leaves, negated or not, in the order of the tree.
VELAN_EXPORT std::vector<String> stringsForQueryTerm(const QueryTerms& node);

/// `plusString`: of the string parsed as a query by `initWithString:`.
VELAN_EXPORT String plusString(const String& query);
/// `plusTerms`: of the string parsed as a query.
VELAN_EXPORT std::vector<String> plusTerms(const String& query);
/// `plusParts`: of the string parsed as a query.
VELAN_EXPORT std::vector<String> plusParts(const String& query);
/// `plusWords`: of the string parsed as a query.
VELAN_EXPORT std::vector<String> plusWords(const String& query);
/// `standardizedQueryTerm`: of the string parsed as a query.
VELAN_EXPORT String standardizedQueryTerm(const String& query);
/// `normalizedQueryTerm`: of the string parsed as a query.
VELAN_EXPORT String normalizedQueryTerm(const String& query);
/// `queryTermsForOperators:dictionary:`: of the string parsed as a query.
VELAN_EXPORT String queryTermsForOperators(const String& query, QueryStyle style, const QueryOperatorNames& dictionary);

}  // namespace velan

#endif  // VELAN_QUERY_QUERY_TERMS_H
