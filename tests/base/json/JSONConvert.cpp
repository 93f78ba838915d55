// Reads texts from standard input, each after its length in bytes on a line of its own. Prints a line for each: whether
// it is JSON, and the value that was read as JSON again, or "-".
#include <iostream>
#include <string>

#include "velan/base/json/JSON.h"

int main() {
  using namespace velan;
  size_t length = 0;
  while (std::cin >> length) {
    std::string text(length, '\0');
    std::cin.get();
    std::cin.read(text.data(), static_cast<std::streamsize>(length));
    const auto value = readJSON(text);
    std::string again;
    const bool written = value && appendJSON(*value, again);
    std::cout << (isJSON(String::fromUTF8Lossy(text)) ? "yes " : "no ") << (written ? again : "-") << '\n';
  }
}
