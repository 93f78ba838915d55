// What people type, read as they mean it. The library takes every sign and keyword of a query at its word; a pasted
// sentence has signs that nothing can match, dashes that negate, and keywords that are plain words.
#ifndef VELAN_TOOLS_QUERY_QUERY_CORRECTIONS_H
#define VELAN_TOOLS_QUERY_QUERY_CORRECTIONS_H

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "velan/query/QueryComparison.h"
#include "velan/query/QueryTokens.h"

namespace velan::tool {

/// Which keywords are operators.
enum class KeywordCase : uint8_t {
  Auto,  // in small letters, too, but for NOT and the proximity operators in what looks like a sentence
  Any,   // in small letters, too
  Upper  // in capital letters only
};

struct CorrectedQuery {
  String source;                         // what the ranges of the tokens refer to
  std::vector<QueryToken> tokens;        // as they are to be searched
  std::vector<std::string> corrections;  // what was read otherwise than it stands: a sentence each
  std::vector<std::string> neverFound;   // terms that were left out
  std::vector<std::string> spellings;    // what is looked for in another spelling: a sentence each
};

/// The tokens of `query`, corrected:
///  - quotation marks of other languages enclose phrases;
///  - a dash that stands alone, "--" before a word and "!" behind one do not negate;
///  - keywords are words where `keywords` says so, and so are "near/far" and the like;
///  - terms that can never match are left out or, without wildcards, relieved of the signs at their ends; brackets that
///    make no set are signs like others.
CorrectedQuery correctedQuery(const String& query, KeywordCase keywords, QueryComparison comparison, bool wildcard);

/// The tokens with "?" taken as punctuation where it ends a word or belongs to an address; nothing if there is none.
std::optional<std::vector<QueryToken>> tokensWithoutQuestionMarks(const std::vector<QueryToken>& tokens);

}  // namespace velan::tool

#endif  // VELAN_TOOLS_QUERY_QUERY_CORRECTIONS_H
