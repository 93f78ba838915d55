// Reads a property list from standard input and writes it to standard output, as "binary" or "xml"; fails when it
// cannot.
#include <cstdio>
#include <string_view>

#include "velan/base/MutableData.h"
#include "velan/base/propertylist/PropertyList.h"

int main(int argc, char** argv) {
  using namespace velan;
  MutableData input;
  char block[65536];
  while (const size_t count = std::fread(block, 1, sizeof block, stdin)) input.appendBytes(block, count);
  const bool xml = argc > 1 && std::string_view(argv[1]) == "xml";
  const auto format = xml ? PropertyListFormat::XML : PropertyListFormat::Binary;
  const Data output = writePropertyList(readPropertyList(input.data()), format);
  return std::fwrite(output.bytes(), 1, output.length(), stdout) == output.length() && output ? 0 : 1;
}
