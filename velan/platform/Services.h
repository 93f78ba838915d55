// What this build of the library and this machine offer: for "--version" pages and bug reports.
#ifndef VELAN_PLATFORM_SERVICES_H
#define VELAN_PLATFORM_SERVICES_H

#include <string>
#include <vector>

#include "velan/base/CTypes.h"

namespace velan {

/// Another library that this one may stand on.
struct Service {
  std::string name;
  std::string version;  // of the library in use; empty when the build is without it
  std::string purpose;
};

/// All services, in a fixed order, also those that the build is without.
VELAN_EXPORT std::vector<Service> services();

/// The version of the Unicode Standard that all character data come from, such as "15.0".
VELAN_EXPORT std::string unicodeVersion();

/// The instruction sets of this processor that the library uses, such as "SSE4.1, PCLMUL, SHA"; empty when it uses
/// none. The environment variable `VELAN_CPU` limits them to a level (`scalar`, `sse4`, `avx2`, `avx512`; on Arm
/// `neon`), which is read once: results are the same at every level.
VELAN_EXPORT std::string instructionSets();

/// Data for the lemmas of one language.
struct LemmaSource {
  std::string language;  // as its file has it: "en", "de_DE"
  std::string service;   // what reads it
  std::string path;      // the folder or the file
};

/// What lemma data the machine has, found anew on each call: WordNet in `$VELAN_WORDNET` or the distribution's folder,
/// then the Hunspell dictionaries (if the build reads them) in the folders of `$DICPATH` and the distribution's, by
/// language; names that lead to the same file are listed once.
VELAN_EXPORT std::vector<LemmaSource> lemmaSources();

}  // namespace velan

#endif  // VELAN_PLATFORM_SERVICES_H
