// Decoding a page gives text or nothing, and a file always text, whatever the bytes declare.
#include <cstdlib>

#include "velan/markup/MarkupDecoding.h"

using namespace velan;

namespace {

void require(bool condition) {
  if (!condition) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
  static const String kNames[] = {String(), u"utf-8"_s, u"koi8-r"_s, u"utf-16"_s, u"gb2312"_s, u"windows-1252"_s};
  static constexpr StringEncoding kDefaults[] = {StringEncoding::UTF8, StringEncoding::Latin1,
                                                 StringEncoding::ShiftJIS};
  if (size == 0) return 0;
  const Data data = Data::withBytes(bytes + 1, size - 1);
  const StringEncoding defaultEncoding = kDefaults[bytes[0] / 6 % 3];
  const DecodedMarkup page = decodedMarkup(data, kNames[bytes[0] % 6], defaultEncoding);
  require(page.text.isAbsent() == (page.encoding == StringEncoding::Invalid));
  require(page.text || page.evidence == MarkupEvidence::Fallback);
  const DecodedMarkup file = decodedMarkupOfFile(u"a.strings"_s, data, defaultEncoding);
  require(!file.text.isAbsent() && file.encoding != StringEncoding::Invalid);
  return 0;
}
