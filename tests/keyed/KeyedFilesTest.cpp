#include <gtest/gtest.h>

#include <filesystem>
#include <forward_list>
#include <fstream>
#include <ranges>

#include "velan/keyed/KeyedFiles.h"
#include "velan/keyed/KeyedReading.h"
#include "velan/keyed/KeyedWriting.h"

namespace velan {
namespace {

class KeyedFiles : public testing::Test {
 protected:
  KeyedFiles()
      : _folder(testing::TempDir() + "keyed files " + std::to_string(testing::UnitTest::GetInstance()->random_seed())) {
    std::filesystem::remove_all(_folder);
    std::filesystem::create_directories(_folder);
  }
  ~KeyedFiles() override { std::filesystem::remove_all(_folder); }

  String path(const std::string& name) const { return String::fromUTF8((_folder / name).string()); }
  std::string write(const std::string& name, const std::string& bytes) const {
    std::ofstream(_folder / name, std::ios::binary) << bytes;
    return bytes;
  }

  std::filesystem::path _folder;
};

TEST_F(KeyedFiles, EveryKindOfReadingGivesTheBytes) {
  for (const size_t size : {size_t{0}, size_t{1}, size_t{65536}, size_t{300001}}) {
    const std::string bytes = write("\xC3\xBC", std::string(size, 'x') + "y");
    for (const auto read : {dataWithKeyedFile, dataWithUncachedKeyedFile, dataWithMappedKeyedFile}) {
      EXPECT_EQ(read(path("\xC3\xBC")).view(), bytes);
    }
  }
  write("empty", "");
  for (const auto read : {dataWithKeyedFile, dataWithUncachedKeyedFile, dataWithMappedKeyedFile}) {
    EXPECT_TRUE(read(path("empty"))) << "empty, but not absent";
    EXPECT_TRUE(read(path("missing")).isAbsent());
    EXPECT_TRUE(read(path("")).isAbsent()) << "a folder";
    EXPECT_TRUE(read(String()).isAbsent());
  }
  EXPECT_FALSE(dataWithKeyedFile(u"/proc/self/stat").isEmpty()) << "a file without a size";
}

TEST_F(KeyedFiles, AMappedPartOutlivesTheFile) {
  MutableData data;
  addData(data, Data::withBytes(std::string(200000, 'p')), 1);
  write("mapped", std::string(data.view()));
  const Data part = dataNoCopyForKey(dataWithMappedKeyedFile(path("mapped")), 1);
  std::filesystem::remove(_folder / "mapped");
  EXPECT_EQ(part.view(), std::string(200000, 'p'));
}

TEST_F(KeyedFiles, StringsGoThroughAFile) {
  std::vector<String> strings;
  MutableData expected;
  for (int i = 0; i < 100000; ++i) {
    strings.push_back(String::fromUTF8("string \xC3\xBC " + std::to_string(i)));
    addString(expected, strings.back(), fourCharacterCode("STRI"));
  }
  write("list", std::string(10000000, 'z'));
  for (const char* name : {"list", "new/folders/list"}) {
    ASSERT_TRUE(writeKeyedStringsToFile(strings, path(name), true));
    EXPECT_EQ(dataWithKeyedFile(path(name)), expected.data());
    std::vector<String> read{u"before"};
    EXPECT_TRUE(readKeyedStringsFromFile(read, path(name)));
    EXPECT_EQ(read, strings);
    EXPECT_FALSE(readKeyedStringsFromFile(read, path("missing")));
    EXPECT_TRUE(read.empty());
  }
  EXPECT_FALSE(writeKeyedStringsToFile(strings, path(""), false)) << "a folder";
  EXPECT_FALSE(writeKeyedStringsToFile(strings, path("list/below a file"), false));
}

TEST_F(KeyedFiles, AnyRangeOfStringsCanBeWritten) {
  const std::forward_list<String> numbers = {u"1"_s, String(), u"3"_s};  // neither a size nor places
  EXPECT_TRUE(writeKeyedStringsToFile(numbers, path("range"), false));
  EXPECT_EQ(stringsForKey(dataWithKeyedFile(path("range")), kKeyedStringsKey), (std::vector<String>{u"1", u"3"}));
}

}  // namespace
}  // namespace velan
