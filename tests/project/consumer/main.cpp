// An application as its developer would begin it: one header, one query, one text.
#include <velan/query/QueryTerms.h>

#include <cstdio>

int main() {
  using velan::QueryTerms;
  using velan::String;
  const auto query = QueryTerms::queryTermsWithWildcard(u"light* NEAR/5 harbour");
  const bool matches = query->matchesString(u"The lighthouse of the old Harbour", velan::QueryComparison::IgnoreCase);
  std::printf("%s: %s\n", query->description().toUTF8().c_str(), matches ? "Yes" : "No");
  return matches ? 0 : 1;
}
