// Block files of the real system: locks between processes, permissions of new files.
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include "tests/Testing.h"
#include "tests/platform/files/ChildProcess.h"
#include "tests/platform/files/TemporaryFolder.h"
#include "tests/storage/SimulatedFiles.h"
#include "velan/storage/BlockStorage.h"

namespace velan {
namespace {

std::unique_ptr<BlockStorage> openFor(FileAccess access, const String& path) {
  return access == FileAccess::Reading    ? BlockStorage::blockStorageForReadingAtPath(path)
         : access == FileAccess::Updating ? BlockStorage::blockStorageForUpdatingAtPath(path)
                                          : BlockStorage::blockStorageForAppendingAtPath(path);
}

constexpr FileAccess kAccesses[] = {FileAccess::Reading, FileAccess::Updating, FileAccess::Appending};

TEST(BlockProcesses, OnlyReadersShare) {
  const TemporaryFolder folder;
  const String file = folder.path("locked");
  EXPECT_TRUE(openFor(FileAccess::Updating, file)->appendBlock(Data::withBytes("x")));
  for (const FileAccess first : kAccesses) {
    for (const FileAccess second : kAccesses) {
      const auto held = openFor(first, file);
      ASSERT_TRUE(held);
      const bool shared = first == FileAccess::Reading && second == FileAccess::Reading;
      EXPECT_EQ(inChild([&] { return openFor(second, file) ? 1 : 0; }), shared ? 1 : 0);
    }
  }
  const auto reader = openFor(FileAccess::Reading, file);
  std::filesystem::create_symlink(folder / "locked", folder / "link");
  EXPECT_FALSE(reader->optimizeToPath(folder.path("link"), false, nullptr));
  EXPECT_EQ(reader->nextAvailableBlock().view(), "x") << "through a link it is the same file, and still whole";
}

TEST(BlockProcesses, AKilledProcessHoldsNoLock) {
  const TemporaryFolder folder;
  const String file = folder.path("held");
  EXPECT_EQ(inChild([&] { return openFor(FileAccess::Updating, file) ? raise(SIGKILL) : 1; }), -SIGKILL);
  EXPECT_TRUE(openFor(FileAccess::Appending, file));
}

TEST(BlockProcesses, FourProcessesAppendTenThousandBlocks) {
  const TemporaryFolder folder;
  const String file = folder.path("shared");
  pid_t children[4];
  for (pid_t& child : children) {
    child = startChild([&] {
      for (int i = 0; i < 2500;) {
        const auto storage = openFor(FileAccess::Appending, file);
        if (!storage) {
          usleep(100);
          continue;
        }
        if (!storage->appendBlock(Data::withBytes(std::to_string(i))) || !storage->closeFile()) return 1;
        ++i;
      }
      return 0;
    });
  }
  for (const pid_t child : children) EXPECT_EQ(resultOf(child), 0);
  const auto survey = openFor(FileAccess::Reading, file)->verify();
  EXPECT_EQ(survey->blocks, 10000);
  EXPECT_TRUE(survey->damages.empty());
}

TEST(BlockProcesses, NewFilesHaveTheUsersPermissions) {
  for (const mode_t mask : {000u, 022u, 077u}) {
    const TemporaryFolder folder;
    EXPECT_EQ(inChild([&] {
                umask(mask);
                return openFor(FileAccess::Updating, folder.path("deep/updating")) &&
                               openFor(FileAccess::Appending, folder.path("deep/appending"))
                           ? 0
                           : 1;
              }),
              0);
    for (const char* name : {"deep/updating", "deep/appending"}) {
      struct stat information {};
      EXPECT_EQ(stat((folder / name).c_str(), &information), 0);
      EXPECT_EQ(information.st_mode & 0777, 0666 & ~mask) << name;
    }
  }
}

TEST(BlockProcesses, OnlyRegularFilesAreOpened) {
  const TemporaryFolder folder;
  CapturedLog log;
  EXPECT_FALSE(openFor(FileAccess::Reading, folder.path("")));
  ASSERT_EQ(log.messages.size(), 1u);
  EXPECT_TRUE(log.messages[0].starts_with("Failed fdopen: " + folder / ""));
  ASSERT_EQ(mkfifo((folder / "pipe").c_str(), 0600), 0);
  EXPECT_FALSE(openFor(FileAccess::Reading, folder.path("pipe"))) << "and does not wait for a writer";
  EXPECT_FALSE(openFor(FileAccess::Reading, folder.path("missing")));
  EXPECT_FALSE(openFor(FileAccess::Updating, folder.path("pipe/below")));
}

}  // namespace
}  // namespace velan
