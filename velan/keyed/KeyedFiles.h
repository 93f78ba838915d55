// Keyed data in files.
#ifndef VELAN_KEYED_KEYED_FILES_H
#define VELAN_KEYED_KEYED_FILES_H

#include <concepts>
#include <iterator>
#include <vector>

#include "velan/base/Data.h"
#include "velan/base/FunctionRef.h"
#include "velan/base/String.h"

namespace velan {

/// `dataWithKeyedFile`, `initWithKeyedFile`: the bytes of the file at `path`, not validated. Absent when it cannot be
/// read.
VELAN_EXPORT Data dataWithKeyedFile(const String& path);
/// `dataWithUncachedKeyedFile`, `initWithUncachedKeyedFile`: the same, for files that are not read again soon:
/// afterwards the system is asked to drop them from its cache (`posix_fadvise`), which it may ignore.
VELAN_EXPORT Data dataWithUncachedKeyedFile(const String& path);
/// `dataWithMappedKeyedFile`, `initWithMappedKeyedFile`: the same; regular files of 64 KiB and more on local volumes
/// are mapped into memory (`mmap`, private, for reading) instead of read, and stay mapped while the result or a part of
/// it lives.
///
/// While it is mapped the file must not become shorter: reading what was cut off ends the process with SIGBUS. Changes
/// in place may show up. A file that takes its place under its name does no harm; programs that update such files
/// should write a new one and rename it.
VELAN_EXPORT Data dataWithMappedKeyedFile(const String& path);

/// As `writeKeyedStringsToFile`, from a source that gives a pointer to the next string at each call, and null at the
/// end.
VELAN_EXPORT bool writeKeyedStringsFromSource(FunctionRef<const String*()> next, const String& path);

/// `writeKeyedStringsToFile:atomically`: writes the strings as `VLst` records with the key `STRI`, in their order, to
/// the file at `path`, which is created, with the folders it lies in, when it is missing. `strings` is any range of
/// strings. Strings that are empty or hold a lone surrogate are left out. `atomically` is ignored: the file is always
/// emptied and rewritten in its place, and holds less than all strings when that fails. Needs memory for 1 MiB and the
/// longest string. NO when the file cannot be opened, written or synchronised to the disk.
template <typename Strings>
requires requires(Strings& strings) {
  { *std::begin(strings) } -> std::convertible_to<String>;
  std::begin(strings) == std::end(strings);
}
bool writeKeyedStringsToFile(Strings&& strings, const String& path, [[maybe_unused]] bool atomically) {
  auto at = std::begin(strings);
  const auto end = std::end(strings);
  String current;
  const auto next = [&]() -> const String* {
    if (at == end) return nullptr;
    current = *at;
    ++at;
    return &current;
  };
  return writeKeyedStringsFromSource(next, path);
}

/// `readKeyedStringsFromFile`: empties `list`, then appends every string with the key `STRI` in the file at `path`, in
/// its order, without those that are not UTF-8. NO, with an empty list, when the file cannot be read.
VELAN_EXPORT bool readKeyedStringsFromFile(std::vector<String>& list, const String& path);

}  // namespace velan

#endif  // VELAN_KEYED_KEYED_FILES_H
