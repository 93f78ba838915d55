// Records for the tests.
#ifndef VELAN_TESTS_KEYED_SAMPLE_H
#define VELAN_TESTS_KEYED_SAMPLE_H

#include <string>

#include "velan/keyed/KeyedValues.h"
#include "velan/keyed/KeyedWriting.h"

namespace velan {

using namespace std::string_literals;

/// The bytes of one record: `area` is filled up with zeros.
inline std::string record(std::string marker, std::string area, const std::string& payload = {}, uint8_t key = 7) {
  area.resize(8);
  return marker + "\0\0\0"s + static_cast<char>(key) + area + payload;
}

/// One record of each type, with the keys 1 to 11, and a pair.
inline MutableData everyType() {
  MutableData data;
  addBool(data, true, 1);
  addUnsigned(data, 4000000000, 2);
  addSigned(data, -3, 3);
  addUnsignedLongLong(data, UINT64_MAX, 4);
  addSignedLongLong(data, -5, 5);
  addFloat(data, 0.5f, 6);
  addDouble(data, 7.25, 7);
  addDate(data, Date(86400), 8);
  addString(data, u"text", 9);
  addData(data, Data::withBytes("bytes"), 10);
  addPlist(data, ValueArray{1, u"two"}, 11);
  addValue(data, ValueArray{true}, u"pair");
  return data;
}

}  // namespace velan

#endif  // VELAN_TESTS_KEYED_SAMPLE_H
