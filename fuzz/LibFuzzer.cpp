#include "fuzz/FuzzTarget.h"
#include "velan/base/Log.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t length) {
  velan::setLogSink([](std::string_view, void*) {}, nullptr);
  velan::fuzzTargets().front().run({{reinterpret_cast<const char*>(bytes), length}});
  return 0;
}
