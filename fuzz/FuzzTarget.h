// What the fuzz targets share. A target holds properties against any bytes: libFuzzer looks for bytes that break them,
// and the test of the seeds goes through what lies around these.
#ifndef VELAN_FUZZ_FUZZ_TARGET_H
#define VELAN_FUZZ_FUZZ_TARGET_H

#include <cstring>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "velan/base/Data.h"
#include "velan/base/String.h"

namespace velan {

/// The bytes of one run; whoever takes some leaves the rest.
struct FuzzInput {
  std::string_view bytes;

  Data data() const { return Data::withBytes(bytes); }
  String text() const { return String::fromUTF8Lossy(bytes); }
  /// Units of any kind, lone surrogates too.
  std::u16string units() const {
    std::u16string units(bytes.size() / 2, u'\0');
    std::memcpy(units.data(), bytes.data(), units.size() * 2);
    return units;
  }
  /// 0 at the end.
  uint8_t takeByte() {
    if (bytes.empty()) return 0;
    const auto first = static_cast<uint8_t>(bytes.front());
    bytes.remove_prefix(1);
    return first;
  }
  /// What stands before the first `end`, which is taken too; all, where there is none.
  std::string_view takeUntil(char end) {
    const std::string_view part = bytes.substr(0, bytes.find(end));
    bytes.remove_prefix(std::min(part.size() + 1, bytes.size()));
    return part;
  }
};

struct FuzzTarget {
  const char* name;  // of the folder of its seeds, too
  void (*run)(FuzzInput input);
};

/// Those that are linked: a single one for libFuzzer, all of them for the test.
inline std::vector<FuzzTarget>& fuzzTargets() {
  static std::vector<FuzzTarget> targets;
  return targets;
}

/// A definition of what the target does with its `input` follows.
#define FUZZ_TARGET(name)                                                                      \
  static void name##_target(velan::FuzzInput input);                                           \
  static const int name##_place = (velan::fuzzTargets().push_back({#name, name##_target}), 0); \
  static void name##_target([[maybe_unused]] velan::FuzzInput input)

inline void require(bool condition, const char* file = __builtin_FILE(), int line = __builtin_LINE()) {
  if (!condition) throw std::logic_error(std::string(file) + ":" + std::to_string(line));
}

}  // namespace velan

#endif  // VELAN_FUZZ_FUZZ_TARGET_H
