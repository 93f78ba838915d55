#include <forward_list>

#include "tests/Testing.h"
#include "tests/platform/files/TemporaryFolder.h"
#include "velan/keyed/KeyedFiles.h"
#include "velan/keyed/KeyedReading.h"
#include "velan/keyed/KeyedWriting.h"

namespace velan {
namespace {

TEST(KeyedFiles, EveryKindOfReadingGivesTheBytes) {
  const TemporaryFolder folder;
  for (const size_t size : {size_t{0}, size_t{1}, size_t{65536}, size_t{300001}}) {
    const std::string bytes = std::string(size, 'x') + "y";
    folder.write("\xC3\xBC", bytes);
    for (const auto read : {dataWithKeyedFile, dataWithUncachedKeyedFile, dataWithMappedKeyedFile}) {
      EXPECT_EQ(read(folder.path("\xC3\xBC")).view(), bytes);
    }
  }
  folder.write("empty", "");
  for (const auto read : {dataWithKeyedFile, dataWithUncachedKeyedFile, dataWithMappedKeyedFile}) {
    EXPECT_TRUE(read(folder.path("empty"))) << "empty, but not absent";
    EXPECT_TRUE(read(folder.path("missing")).isAbsent());
    EXPECT_TRUE(read(folder.path("")).isAbsent()) << "a folder";
    EXPECT_TRUE(read(String()).isAbsent());
  }
  EXPECT_FALSE(dataWithKeyedFile(u"/proc/self/stat").isEmpty()) << "a file without a size";
}

TEST(KeyedFiles, AMappedPartOutlivesTheFile) {
  const TemporaryFolder folder;
  MutableData data;
  addData(data, Data::withBytes(std::string(200000, 'p')), 1);
  folder.write("mapped", std::string(data.view()));
  const Data part = dataNoCopyForKey(dataWithMappedKeyedFile(folder.path("mapped")), 1);
  std::filesystem::remove(folder / "mapped");
  EXPECT_EQ(part.view(), std::string(200000, 'p'));
}

TEST(KeyedFiles, StringsGoThroughAFile) {
  const TemporaryFolder folder;
  std::vector<String> strings;
  MutableData expected;
  for (int i = 0; i < 100000; ++i) {
    strings.push_back(String::fromUTF8("string \xC3\xBC " + std::to_string(i)));
    addString(expected, strings.back(), fourCharacterCode("STRI"));
  }
  folder.write("list", std::string(10000000, 'z'));
  for (const char* name : {"list", "new/folders/list"}) {
    ASSERT_TRUE(writeKeyedStringsToFile(strings, folder.path(name), true));
    EXPECT_EQ(dataWithKeyedFile(folder.path(name)), expected.data());
    std::vector<String> read{u"before"};
    EXPECT_TRUE(readKeyedStringsFromFile(read, folder.path(name)));
    EXPECT_EQ(read, strings);
    EXPECT_FALSE(readKeyedStringsFromFile(read, folder.path("missing")));
    EXPECT_TRUE(read.empty());
  }
  EXPECT_FALSE(writeKeyedStringsToFile(strings, folder.path(""), false)) << "a folder";
  EXPECT_FALSE(writeKeyedStringsToFile(strings, folder.path("list/below a file"), false));
}

TEST(KeyedFiles, AnyRangeOfStringsCanBeWritten) {
  const TemporaryFolder folder;
  const std::forward_list<String> numbers = {u"1"_s, String(), u"3"_s};  // neither a size nor places
  EXPECT_TRUE(writeKeyedStringsToFile(numbers, folder.path("range"), false));
  EXPECT_EQ(stringsForKey(dataWithKeyedFile(folder.path("range")), kKeyedStringsKey),
            (std::vector<String>{u"1", u"3"}));
}

}  // namespace
}  // namespace velan
