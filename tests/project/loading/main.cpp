// An application that defines functions under names that the library has, too: neither notices the other's.
#include <cstdio>

#include "velan/storage/Digest.h"
#include "velan/text/digest/Checksums.h"
#include "velan/text/digest/SaltedHash.h"

extern "C" int calls;

int main() {
  using namespace velan;
  const Data abc = Data::withBytes("abc");
  const bool right = crc32(abc) == 0xCA6598D0 &&
                     SHA1DigestStringValue(abc) == u"a9993e364706816aba3e25717850c26c9cd0d89d"_s &&
                     saltedHash(u"a"_s, u"bc"_s) == SHA1DigestStringValue(abc) && calls == 0;
  if (!right) std::printf("The library called the application %d times\n", calls);
  CRC32("application", 11);
  return right && calls == 1 ? 0 : 1;
}
