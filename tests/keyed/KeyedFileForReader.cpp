// Writes a file that the small reader in read_keyed_file.py expects.
#include <fstream>

#include "tests/keyed/KeyedSample.h"

int main(int argc, char** argv) {
  velan::MutableData data = velan::everyType();
  velan::addStrings(data, {u"one", u"zw\u00F6lf"}, velan::fourCharacterCode("LIST"));
  velan::addValue(data, 300, u"number");
  std::ofstream(argc > 1 ? argv[1] : "", std::ios::binary) << data.view();
}
