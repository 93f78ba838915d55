// The parameters in the query of a URL that is kept as a plain string.
//
// A parameter is a key that begins with a letter or digit (categories L, M and N), `=`, and a value up to the next `&`
// or `;` or the end. Nothing is decoded, and the case of keys matters. A key ends at the next `=` wherever that stands:
// "flag&x=1" has one key, "flag&x". Functions with a start index scan from there; those without one scan behind the
// first `?`, and without a `?` there is nothing. All of it may be called from any thread.
#ifndef VELAN_URL_QUERY_PARAMETERS_H
#define VELAN_URL_QUERY_PARAMETERS_H

#include "velan/base/String.h"
#include "velan/base/Value.h"

namespace velan {

/// `containsQueryParamNamed` from an index: whether a key equals `name`. False for an empty name and for one that is
/// not shorter than the string.
VELAN_EXPORT bool containsQueryParamNamed(const String& string, const String& name, int64_t start);
/// `containsQueryParamNamed:`: of a whole URL.
VELAN_EXPORT bool containsQueryParamNamed(const String& string, const String& name);
/// `containsParamNamed:`: of a bare query.
inline bool containsParamNamed(const String& string, const String& name) {
  return containsQueryParamNamed(string, name, 0);
}

/// `queryParamNamed` from an index: the first value of `name` that is not empty. Where there is none: absent, or
/// `string` itself with `inputIfAbsent`.
VELAN_EXPORT String queryParamNamed(const String& string, const String& name, int64_t start, bool inputIfAbsent);
/// `queryParamNamed:`: of a whole URL; absent where there is none.
VELAN_EXPORT String queryParamNamed(const String& string, const String& name);
/// `paramNamed:`: of a bare query.
inline String paramNamed(const String& string, const String& name) { return queryParamNamed(string, name, 0, false); }

/// `query`: everything behind the first `?`, a fragment too; absent without one.
VELAN_EXPORT String query(const String& string);

/// `queryParams` from an index: all values that are not empty, by their keys; of several of one key the last.
VELAN_EXPORT ValueDictionary queryParams(const String& string, int64_t start);
/// `queryParams`: of a whole URL.
VELAN_EXPORT ValueDictionary queryParams(const String& string);

/// `numberOfQueryParams` from an index: how many there are, those with empty values too.
VELAN_EXPORT int64_t numberOfQueryParams(const String& string, int64_t start);
/// `numberOfQueryParams`: of a whole URL.
VELAN_EXPORT int64_t numberOfQueryParams(const String& string);

/// `stringByReplacingQueryParamNamed:with:`: the URL with `value`, as it is, in place of the first value of `name`, an
/// empty one too. The receiver itself for an absent value and when there is no such parameter.
VELAN_EXPORT String stringByReplacingQueryParamNamed(const String& string, const String& name, const String& value);

}  // namespace velan

#endif  // VELAN_URL_QUERY_PARAMETERS_H
