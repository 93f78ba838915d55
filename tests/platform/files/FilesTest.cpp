// Opening, reading and listing: what each path gives, and the reason where it gives nothing.
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstring>

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
