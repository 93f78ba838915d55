// Block files of the real system: locks between processes, processes that are killed, permissions of new files.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>

#include "tests/storage/BlockWorkload.h"

namespace velan {
namespace {

class BlockProcessesTest : public testing::Test {
 protected:
  BlockProcessesTest() {
    char name[] = "/tmp/velan-blocks-XXXXXX";
    folder = mkdtemp(name);
  }
  ~BlockProcessesTest() override { std::filesystem::remove_all(folder); }

  String path(const std::string& name) const { return String::fromUTF8(folder + "/" + name); }

  std::string folder;
};

// Runs `body` in a child process and answers how that ended: the exit status, or minus the signal.
template <typename Body>
pid_t startChild(Body body) {
  const pid_t child = fork();
  if (child == 0) _exit(body());
  return child;
}

int resultOf(pid_t child) {
  int status = 0;
  waitpid(child, &status, 0);
  return WIFSIGNALED(status) ? -WTERMSIG(status) : WEXITSTATUS(status);
}

std::unique_ptr<BlockStorage> openFor(FileAccess access, const String& path) {
  return access == FileAccess::Reading    ? BlockStorage::blockStorageForReadingAtPath(path)
         : access == FileAccess::Updating ? BlockStorage::blockStorageForUpdatingAtPath(path)
                                          : BlockStorage::blockStorageForAppendingAtPath(path);
}

constexpr FileAccess kAccesses[] = {FileAccess::Reading, FileAccess::Updating, FileAccess::Appending};

TEST_F(BlockProcessesTest, OnlyReadersShare) {
  const String file = path("locked");
  EXPECT_TRUE(openFor(FileAccess::Updating, file)->appendBlock(Data::withBytes("x")));
  for (const FileAccess first : kAccesses) {
    for (const FileAccess second : kAccesses) {
      const auto held = openFor(first, file);
      ASSERT_TRUE(held);
      const bool shared = first == FileAccess::Reading && second == FileAccess::Reading;
      EXPECT_EQ(resultOf(startChild([&] { return openFor(second, file) ? 1 : 0; })), shared ? 1 : 0);
    }
  }
  const auto reader = openFor(FileAccess::Reading, file);
  std::filesystem::create_symlink(folder + "/locked", folder + "/link");
  EXPECT_FALSE(reader->optimizeToPath(path("link"), false, nullptr));
  EXPECT_EQ(reader->nextAvailableBlock().view(), "x") << "through a link it is the same file, and still whole";
}

TEST_F(BlockProcessesTest, AKilledProcessHoldsNoLock) {
  const String file = path("held");
  int ready[2];
  ASSERT_EQ(pipe(ready), 0);
  const pid_t child = startChild([&] {
    const auto storage = openFor(FileAccess::Updating, file);
    if (write(ready[1], "r", 1) != 1) return 1;
    return pause();
  });
  char byte = 0;
  ASSERT_EQ(read(ready[0], &byte, 1), 1);
  EXPECT_FALSE(openFor(FileAccess::Reading, file));
  kill(child, SIGKILL);
  EXPECT_EQ(resultOf(child), -SIGKILL);
  EXPECT_TRUE(openFor(FileAccess::Appending, file));
  close(ready[0]);
  close(ready[1]);
}

TEST_F(BlockProcessesTest, FourProcessesAppendTenThousandBlocks) {
  const String file = path("shared");
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

// Ends the process in the middle of its n-th write.
class DeadlyFiles : public FileCalls {
 public:
  explicit DeadlyFiles(int64_t fatal) : _fatal(fatal) { setFileCalls(this); }
  ssize_t write(int file, const iovec* pieces, int count, int64_t offset) override {
    if (_writes++ < _fatal) return FileCalls::write(file, pieces, count, offset);
    std::string bytes;
    for (int i = 0; i < count; ++i) bytes.append(static_cast<const char*>(pieces[i].iov_base), pieces[i].iov_len);
    const iovec half{bytes.data(), bytes.size() / 2};
    FileCalls::write(file, &half, 1, offset);
    raise(SIGKILL);
    return -1;
  }
  int synchronize(int) override { return 0; }  // the system outlives the process

 private:
  int64_t _fatal;
  int64_t _writes = 0;
};

TEST_F(BlockProcessesTest, KilledAtAnyWriteLosesNothingThatWasSynchronised) {
  CountedLog log;
  const int steps = 400;
  SimulatedFiles simulated;
  BlockWorkload model(&simulated, 23);
  simulated.recording = true;
  model.run(*BlockStorage::blockStorageForUpdatingAtPath(u"model"_s), steps);
  setFileCalls(nullptr);
  int64_t kills = 0, writes = 0;
  for (size_t i = 0; i < simulated.events.size() && kills < 300; ++i) {
    if (simulated.events[i].kind != FileEvent::Write) continue;
    const String file = path(std::to_string(i));
    const int64_t fatal = writes++;
    EXPECT_EQ(resultOf(startChild([&] {
                DeadlyFiles files(fatal);
                BlockWorkload(nullptr, 23).run(*BlockStorage::blockStorageForUpdatingAtPath(file), steps);
                return 0;
              })),
              -SIGKILL);
    ++kills;
    const auto storage = BlockStorage::blockStorageForUpdatingAtPath(file);
    ASSERT_TRUE(storage);
    model.check(*storage, i, true);
    std::filesystem::remove(folder + "/" + std::to_string(i));
  }
  EXPECT_GE(kills, 200);
}

// What a new file may be read and written by; 1 when anything went wrong.
int checkModes(const std::string& folder) {
  for (const mode_t mask : {000u, 022u, 077u}) {
    umask(mask);
    const std::string deep = folder + "/" + std::to_string(mask) + "/deep";
    for (const FileAccess access : {FileAccess::Updating, FileAccess::Appending}) {
      const std::string name = deep + (access == FileAccess::Updating ? "/updating" : "/appending");
      if (!openFor(access, String::fromUTF8(name))) return 1;
      struct stat information {};
      if (stat(name.c_str(), &information) != 0 || (information.st_mode & 0777) != (0666 & ~mask)) return 1;
      for (const FileAccess again : kAccesses) {
        if (!openFor(again, String::fromUTF8(name))) return 1;
      }
    }
  }
  return 0;
}

TEST_F(BlockProcessesTest, NewFilesHaveTheUsersPermissions) {
  EXPECT_EQ(resultOf(startChild([&] { return checkModes(folder + "/own"); })), 0);
  if (geteuid() != 0) return;
  // Root may open anything: an ordinary user must be able to open again what it made.
  const std::string ordinary = folder + "/ordinary";
  std::filesystem::create_directory(ordinary);
  constexpr uid_t kNobody = 65534;
  ASSERT_EQ(chmod(folder.c_str(), 0755) + chown(ordinary.c_str(), kNobody, kNobody), 0);
  EXPECT_EQ(
      resultOf(startChild([&] { return setgid(kNobody) == 0 && setuid(kNobody) == 0 ? checkModes(ordinary) : 2; })), 0);
}

TEST_F(BlockProcessesTest, OnlyRegularFilesAreOpened) {
  CountedLog log;
  EXPECT_FALSE(openFor(FileAccess::Reading, path("")));
  ASSERT_EQ(log.messages.size(), 1u);
  EXPECT_TRUE(log.messages[0].starts_with("Failed fdopen: " + folder));
  ASSERT_EQ(mkfifo((folder + "/pipe").c_str(), 0600), 0);
  EXPECT_FALSE(openFor(FileAccess::Reading, path("pipe"))) << "and does not wait for a writer";
  EXPECT_FALSE(openFor(FileAccess::Reading, path("missing")));
  EXPECT_FALSE(openFor(FileAccess::Updating, path("pipe/below")));
}

}  // namespace
}  // namespace velan
