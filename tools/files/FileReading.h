// Reading files whole, with few calls to the system.
#ifndef VELAN_TOOLS_FILES_FILE_READING_H
#define VELAN_TOOLS_FILES_FILE_READING_H

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "velan/base/FunctionRef.h"

namespace velan::tool {

/// The bytes of one file after the other, in memory that is used again.
class FileReader {
 public:
  /// What is read of a file before it is asked whether all is wanted.
  static constexpr size_t kHead = 65536;

  /// Reads the file, or standard input for "-". `wants` is shown the first bytes, `kHead` or the whole file, and
  /// answers whether the others are to be read. False when not, or when reading fails: `why` then says so in a few
  /// words. Throws `std::bad_alloc`.
  bool read(const std::string& path, FunctionRef<bool(std::string_view head)> wants, std::string& why);

  /// Whether the file that was read has extended attributes, which costs less to ask while it is open.
  bool hasAttributes() const { return _hasAttributes; }

  /// What was read. Valid until the next file is.
  std::string_view bytes() const { return std::string_view(_memory).substr(0, _length); }
  /// The same to keep.
  std::string takeBytes();

 private:
  bool readRemembered(FunctionRef<bool(std::string_view head)> wants, std::string& why);
  bool readFrom(int descriptor, FunctionRef<bool(std::string_view head)> wants, std::string& why);
  void makeRoom(size_t size);

  std::string _memory;  // its further bytes are left over from other files
  size_t _length = 0;
  bool _hasAttributes = false;
};

/// From now on standard input can be read more than once.
void rememberStandardInput();

/// All bytes of the file, or of standard input for "-". Otherwise nothing, and `why` says in a few words what failed.
std::optional<std::string> readFile(const std::string& path, std::string& why);

}  // namespace velan::tool

#endif  // VELAN_TOOLS_FILES_FILE_READING_H
