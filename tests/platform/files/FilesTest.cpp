// Opening, reading and listing: what each path gives, and the reason where it gives nothing.
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstring>
#include <random>

#include "tests/Testing.h"
#include "tests/platform/files/InterceptedCalls.h"
#include "tests/platform/files/TemporaryFolder.h"
#include "velan/platform/files/File.h"
#include "velan/platform/files/FileContents.h"
#include "velan/platform/files/FolderListing.h"

namespace velan {
namespace {

int openSocket(const std::string& path) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  std::memcpy(address.sun_path, path.c_str(), path.size());
  const int server = socket(AF_UNIX, SOCK_STREAM, 0);
  return bind(server, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0 ? server : -1;
}

FileReason reasonOfOpening(const String& path, FileAccess access) {
  FileError error;
  const auto file = File::open(path, access, &error);
  EXPECT_EQ(file == nullptr, static_cast<bool>(error));
  return error.reason();
}

TEST(Files, EveryObstacleHasItsReason) {
  const TemporaryFolder folder;
  folder.write("file", "text");
  symlink((folder / "nowhere").c_str(), (folder / "dangling").c_str());
  symlink((folder / "loop").c_str(), (folder / "loop").c_str());
  symlink((folder / "file").c_str(), (folder / "link").c_str());
  ASSERT_EQ(mkfifo((folder / "pipe").c_str(), 0600), 0);
  const int server = openSocket(folder / "socket");
  const Cases<String, FileReason> cases = {
      {folder.path("file"), FileReason::None},
      {folder.path("link"), FileReason::None},
      {folder.path("missing/file"), FileReason::NoSuchFile},
      {folder.path("file/below"), FileReason::NotFolder},
      {folder.path(""), FileReason::IsFolder},
      {folder.path("pipe"), FileReason::IsPipe},
      {folder.path("socket"), FileReason::IsSocket},
      {u"/dev/null", FileReason::IsDevice},
      {folder.path("loop"), FileReason::LoopOfLinks},
      {folder.path(std::string(300, 'x')), FileReason::NameTooLong},
      {String(u"half \xD800 pair"), FileReason::NameNotText},
      {String::fromUTF8("no \xFF UTF-8"), FileReason::NameNotText},
      {String(std::u16string_view(u"zero\0", 5)), FileReason::NameHoldsNull},
      {u"", FileReason::NoName},
  };
  for (const auto& [path, reason] : cases) {
    for (const FileAccess access : {FileAccess::Reading, FileAccess::Updating, FileAccess::Appending}) {
      EXPECT_EQ(reasonOfOpening(path, access), reason) << path.toUTF8();
    }
  }
  EXPECT_EQ(reasonOfOpening(folder.path("dangling"), FileAccess::Updating), FileReason::DanglingLink);
  EXPECT_EQ(createFileIfMissing(folder.path("loop")).reason(), FileReason::None) << "it is there";
  EXPECT_EQ(createFileIfMissing(folder.path("file/x/y")).reason(), FileReason::NotFolder);
  close(server);
}

TEST(Files, ALockTellsItsHolder) {
  const TemporaryFolder folder;
  folder.write("file", "text");
  const auto held = File::openLocked(folder.path("file"), FileAccess::Updating, nullptr);
  FileError error;
  EXPECT_FALSE(File::openLocked(folder.path("file"), FileAccess::Reading, &error));
  EXPECT_EQ(error.reason(), FileReason::Locked);
  EXPECT_TRUE(error.holder() == getpid() || error.holder() == 0);
  if (error.holder()) {
    EXPECT_NE(error.description().toUTF8().find(std::to_string(getpid())), std::string::npos);
  }
}

// Renames another file to the place of the one that is being opened, once.
struct ReplacingCalls : FileCalls {
  explicit ReplacingCalls(const TemporaryFolder& folder) : _folder(folder) { setFileCalls(this); }
  ~ReplacingCalls() override { setFileCalls(nullptr); }
  int lock(int file, int operation) override {
    ::rename((_folder / "new").c_str(), (_folder / "file").c_str());
    return FileCalls::lock(file, operation);
  }

 private:
  const TemporaryFolder& _folder;
};

TEST(Files, TheLockedFileIsTheOneAtThePath) {
  const TemporaryFolder folder;
  folder.write("file", "old");
  folder.write("new", "brand-new");
  const ReplacingCalls calls(folder);
  EXPECT_EQ(File::openLocked(folder.path("file"), FileAccess::Updating, nullptr)->length(), 9);
}

TEST(Files, ReadingTellsWhatFailed) {
  const TemporaryFolder folder;
  folder.write("file", std::string(5000, 'x'));
  FileError error;
  EXPECT_EQ(readFileContents(folder.path("file"), FileReading::Plain, &error).length(), 5000u);
  EXPECT_FALSE(error);
  EXPECT_FALSE(readFileContents(folder.path(""), FileReading::Plain, &error));
  EXPECT_EQ(error.reason(), FileReason::IsFolder);
  EXPECT_TRUE(readFileContents(u"/dev/null", FileReading::Plain, &error).isEmpty() && !error);
  bool happened = true;
  for (int64_t n = 0; happened; ++n) {
    const InterceptedCalls calls(n, EIO);
    const Data contents = readFileContents(folder.path("file"), FileReading::Plain, &error);
    happened = calls.happened();
    EXPECT_EQ(contents.isAbsent(), error.reason() == FileReason::InputOutput);
    EXPECT_TRUE(contents.isAbsent() || contents.length() == 5000) << n;
  }
}

// Pieces of every size around what is read ahead, one after another, over gaps and back, with writing between.
TEST(Files, ReadingInAnyOrderGivesTheBytesOfTheFile) {
  const TemporaryFolder folder;
  std::mt19937 random(5);
  std::string bytes(300000, '\0');
  for (char& byte : bytes) byte = static_cast<char>(random());
  folder.write("file", bytes);
  const auto file = File::open(folder.path("file"), FileAccess::Updating);
  constexpr size_t kSizes[] = {0, 1, 16, 100, 1024, 1025, 2048, 4096, 16383, 16384, 65536, 70000};
  std::string got(70000, '\0');
  size_t at = 0;
  for (int i = 0; i < 20000; ++i) {
    if (random() % 8 == 0) at = random() % (bytes.size() + 10);
    if (random() % 8 == 0) at -= std::min<size_t>(at, random() % 2000);
    if (random() % 8 == 0) at += random() % 3000;
    const size_t count = kSizes[random() % (i % 1000 < 500 ? 6 : std::size(kSizes))];
    const std::string there = at < bytes.size() ? bytes.substr(at, count) : "";
    const auto offset = static_cast<int64_t>(at);
    const int way = random() % 64 == 0 && count > 0 && there.size() == count ? 3 : static_cast<int>(random() % 3);
    if (way == 3) {
      const std::string changed(count, static_cast<char>(i));
      const std::span<const uint8_t> piece(reinterpret_cast<const uint8_t*>(changed.data()), count);
      ASSERT_TRUE(i % 2 ? file->overwrite(offset, {piece}, 0) : file->seek(offset) && file->write({piece}, 0));
      bytes.replace(at, count, changed);
      continue;
    }
    const uint8_t* const ahead = file->peekAt(offset, count);
    EXPECT_TRUE(!ahead || std::memcmp(ahead, there.data(), count) == 0) << i;
    const bool moves = way == 0;
    ASSERT_TRUE(!moves || file->seek(offset));
    const int64_t length = moves      ? file->read(got.data(), count)
                           : way == 1 ? file->readOn(offset, got.data(), count)
                                      : file->readAt(offset, got.data(), count);
    ASSERT_EQ(length, static_cast<int64_t>(there.size())) << i;
    ASSERT_EQ(got.compare(0, there.size(), there), 0) << i;
    ASSERT_TRUE(!moves || file->position() == offset + length) << i;
    at += there.size();
  }
}

TEST(Files, AFolderIsListedInOrderWithoutNamesThatAreNoText) {
  const TemporaryFolder folder;
  for (const char* name : {"b", "\xC3\xA4", ".hidden", "a", "\xFF"}) folder.write(name, "");
  EXPECT_EQ(namesInFolder(folder.path(""), nullptr), (std::vector<String>{u".hidden", u"a", u"b", u"\u00E4"}));
  FileError error;
  EXPECT_FALSE(namesInFolder(folder.path("a"), &error));
  EXPECT_EQ(error.reason(), FileReason::NotFolder);
  EXPECT_TRUE(isRegularFile(folder.path("a")) && !isRegularFile(folder.path("")) && !isRegularFile(String()));
}

TEST(Files, ACopyIsWholeAndGetsNoMorePermissions) {
  bool happened = true;
  for (int64_t n = 0; happened; ++n) {
    const TemporaryFolder folder;
    folder.write("file", std::string(100000, 'x'));
    ASSERT_EQ(chmod((folder / "file").c_str(), 0600), 0);
    const InterceptedCalls calls(n, ENOSPC);
    const FileError error = copyFile(folder.path("file"), folder.path("copy"));
    happened = calls.happened();
    const bool complete = folder.read("copy") == folder.read("file");
    EXPECT_TRUE(complete || (error && (folder.count() == 1 || calls.keptFile))) << n;
    if (happened) continue;
    struct stat status {};
    EXPECT_EQ(stat((folder / "copy").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0600u);
    EXPECT_EQ(copyFile(folder.path("file"), folder.path("copy")).reason(), FileReason::Exists);
  }
}

}  // namespace
}  // namespace velan
