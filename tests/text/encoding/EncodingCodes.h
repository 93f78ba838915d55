// The codes of an encoding, for tests that go through all of them.
#ifndef VELAN_TESTS_TEXT_ENCODING_ENCODING_CODES_H
#define VELAN_TESTS_TEXT_ENCODING_ENCODING_CODES_H

#include <string>
#include <vector>

#include "velan/text/encoding/StringConversion.h"

namespace velan {

// All codes of one byte, and of two where there are such, each by itself; in part also the longer ones.
inline std::vector<std::string> codesOf(TextEncoding encoding) {
  std::vector<std::string> codes;
  std::string leads;  // what is no text alone
  for (int a = 0; a < 256; ++a) {
    codes.push_back({static_cast<char>(a)});
    if (!stringWithBytes(codes.back().data(), 1, stringEncoding(encoding))) leads += codes.back();
  }
  constexpr size_t kMostUnassigned = 60;  // of an encoding of single bytes
  for (size_t i = 0; i < 256 * leads.size() && leads.size() > kMostUnassigned; ++i) {
    const char a = leads[i / 256];
    const auto b = static_cast<char>(i % 256);
    codes.push_back({a, b});
    if (encoding == TextEncoding::EUCJP) codes.push_back({'\x8F', a, b});
    if (encoding == TextEncoding::GB18030) codes.push_back({a, '0', b, '5'});
    if (encoding == TextEncoding::EUCTW) codes.push_back({'\x8E', '\xA2', a, b});
  }
  return codes;
}

}  // namespace velan

#endif  // VELAN_TESTS_TEXT_ENCODING_ENCODING_CODES_H
