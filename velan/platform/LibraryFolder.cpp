#include "velan/platform/LibraryFolder.h"

#include <dlfcn.h>

#include <string_view>

namespace velan {

String libraryFolder() {
  Dl_info library{};
  if (dladdr(reinterpret_cast<const void*>(&libraryFolder), &library) == 0 || !library.dli_fname) return String();
  const std::string_view path = library.dli_fname;
  const size_t slash = path.rfind('/');
  if (slash == std::string_view::npos) return String(u".");
  return String::fromUTF8(path.substr(0, slash == 0 ? 1 : slash));
}

}  // namespace velan
