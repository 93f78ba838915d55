// Decoding a page gives text or nothing, and a file always text, whatever the bytes declare.
#include "fuzz/FuzzTarget.h"
#include "velan/markup/MarkupDecoding.h"

using namespace velan;

FUZZ_TARGET(pages) {
  static const String kNames[] = {String(), u"utf-8"_s, u"koi8-r"_s, u"utf-16"_s, u"gb2312"_s, u"windows-1252"_s};
  static constexpr StringEncoding kDefaults[] = {StringEncoding::UTF8, StringEncoding::Latin1,
                                                 StringEncoding::ShiftJIS};
  const unsigned choice = input.takeByte();
  const Data data = input.data();
  const StringEncoding defaultEncoding = kDefaults[choice / 6 % 3];
  const DecodedMarkup page = decodedMarkup(data, kNames[choice % 6], defaultEncoding);
  require(page.text.isAbsent() == (page.encoding == StringEncoding::Invalid));
  require(page.text || page.evidence == MarkupEvidence::Fallback);
  const DecodedMarkup file = decodedMarkupOfFile(u"a.strings"_s, data, defaultEncoding);
  require(!file.text.isAbsent() && file.encoding != StringEncoding::Invalid);
}
