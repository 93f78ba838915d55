// Every encoding that the library knows: one table for reading, writing and naming.
#ifndef VELAN_TEXT_ENCODING_ENCODING_TABLE_INTERNAL_H
#define VELAN_TEXT_ENCODING_ENCODING_TABLE_INTERNAL_H

#include <memory>
#include <span>

#include "velan/base/TextEncoding.h"
#include "velan/platform/ConverterInternal.h"

namespace velan {

struct EncodingEntry {
  TextEncoding encoding;
  const char* name;  // registered with IANA where it is; what files are marked with
  std::unique_ptr<Decoder> (*decoder)(const EncodingEntry& entry);
  std::unique_ptr<Encoder> (*encoder)(const EncodingEntry& entry);
  const void* argument = nullptr;  // of the two: a converter's name, a page
};

/// By number, each once.
std::span<const EncodingEntry> encodingEntries();

/// Null for an unknown one.
const EncodingEntry* encodingEntry(TextEncoding encoding);

/// A fresh converter; null when the encoding is unknown, this machine lacks its converter, or memory runs out.
std::unique_ptr<Decoder> decoderFor(TextEncoding encoding);
std::unique_ptr<Encoder> encoderFor(TextEncoding encoding);

}  // namespace velan

#endif  // VELAN_TEXT_ENCODING_ENCODING_TABLE_INTERNAL_H
