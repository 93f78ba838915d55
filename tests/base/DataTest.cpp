#include "tests/Testing.h"
#include "velan/base/Data.h"
#include "velan/base/MutableData.h"

namespace velan {
namespace {

TEST(Data, AbsentAndEmptyDiffer) {
  EXPECT_TRUE(Data().isAbsent());
  EXPECT_TRUE(Data::withBytes(nullptr, 0));
  EXPECT_TRUE(Data::withBytes(nullptr, 3).isAbsent());
  EXPECT_NE(Data(), Data::withBytes("", 0));
  EXPECT_LT(Data(), Data::withBytes("", 0));
}

TEST(Data, PartsShareTheBytesAndOutliveTheWhole) {
  Data part;
  {
    const Data whole = Data::withBytes("0123456789");
    part = whole.subdata({3, 4});
    EXPECT_EQ(part.bytes(), whole.bytes() + 3);
    EXPECT_EQ(whole.subdata({8, 100}).view(), "89");
    EXPECT_TRUE(whole.subdata({10, 1}).isEmpty());
    EXPECT_TRUE(whole.subdata({10, 1}));
  }
  EXPECT_EQ(part.view(), "3456");
}

TEST(MutableData, TakesItsBytesWithoutACopy) {
  MutableData buffer("ab", 2);
  buffer.appendBytes("c", 1);
  const uint8_t* bytes = buffer.bytes();
  const Data data = buffer.takeData();
  EXPECT_EQ(data.bytes(), bytes);
  EXPECT_EQ(data.view(), "abc");
  EXPECT_TRUE(buffer.isEmpty());
  EXPECT_TRUE(MutableData().takeData()) << "an empty buffer is present";
}

TEST(Log, GoesToTheSinkWithItsContext) {
  std::string seen;
  setLogSink([](std::string_view message, void* context) { *static_cast<std::string*>(context) += message; }, &seen);
  logFormat("ERROR: %s %d", "x", 5);
  VELAN_DEBUG_ASSERT(seen.empty(), "seen is empty");
  logMessage("-two\r\nlines\n");
  setLogSink(nullptr, nullptr);
  EXPECT_TRUE(seen.ends_with("-two\\r\\nlines\\n")) << seen;
  seen.resize(seen.find("-two"));
  EXPECT_EQ(seen.substr(0, 10), "ERROR: x 5");
  EXPECT_TRUE(seen.ends_with(": Failed debug assertion `seen is empty'")) << seen;
}

}  // namespace
}  // namespace velan
