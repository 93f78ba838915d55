// An application that loads the library (the argument), uses it, and unloads it: it must be gone then.
#include <dlfcn.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>

int main(int count, char** arguments) {
  void* const library = count > 1 ? dlopen(arguments[1], RTLD_NOW | RTLD_LOCAL) : nullptr;
  if (!library) return std::puts(dlerror()), 2;
  const auto crc32 = reinterpret_cast<uint32_t (*)(const void*, size_t)>(dlsym(library, "CRC32"));
  const auto init = reinterpret_cast<void (*)()>(dlsym(library, "initSeparatorsAndTables"));
  if (!crc32 || !init || crc32("a", 1) != 0x3AB551CE) return std::puts("The library does not answer"), 2;
  init();
  if (dlclose(library) != 0 || dlopen(arguments[1], RTLD_NOW | RTLD_NOLOAD)) return std::puts("Still loaded"), 1;
  return 0;
}
