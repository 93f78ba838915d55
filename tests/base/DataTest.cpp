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

TEST(Log, GoesToTheSinkLineByLine) {
  CapturedLog log;
  logFormat("ERROR: %s %d", "x", 5);
  VELAN_DEBUG_ASSERT(log.messages.empty(), "the log is empty");
  logMessage("-two\r\nlines\n");
  ASSERT_EQ(log.messages.size(), 3u);
  EXPECT_EQ(log.messages[0], "ERROR: x 5");
  EXPECT_TRUE(log.messages[1].ends_with(": Failed debug assertion `the log is empty'")) << log.messages[1];
  EXPECT_EQ(log.messages[2], "-two\\r\\nlines\\n");
}

}  // namespace
}  // namespace velan
