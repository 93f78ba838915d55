// Replacing files: the old contents or the new ones, whoever owns them, whatever fails.
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include "tests/Testing.h"
#include "tests/platform/files/ChildProcess.h"
#include "tests/platform/files/InterceptedCalls.h"
#include "tests/platform/files/TemporaryFolder.h"
#include "velan/platform/files/File.h"
#include "velan/platform/files/FileReplacement.h"

namespace velan {
namespace {

const Data kNew = Data::withBytes("new contents");

struct stat statusOf(const std::string& path) {
  struct stat status {};
  EXPECT_EQ(lstat(path.c_str(), &status), 0) << path;
  return status;
}

mode_t modeOf(const std::string& path) { return statusOf(path).st_mode & 07777; }

TEST(FileReplacement, KeepsWhatBelongsToTheFile) {
  const TemporaryFolder folder;
  folder.write("file", "old");
  ASSERT_EQ(chmod((folder / "file").c_str(), 0640), 0);
  const bool hasAttributes = setxattr((folder / "file").c_str(), "user.note", "kept", 4, 0) == 0;
  if (geteuid() == 0) {
    ASSERT_EQ(chown((folder / "file").c_str(), 65534, 65534), 0);
  }
  const struct stat before = statusOf(folder / "file");
  std::filesystem::create_symlink("file", folder / "link");
  EXPECT_FALSE(replaceFile(folder.path("link"), kNew));
  EXPECT_TRUE(std::filesystem::is_symlink(folder / "link"));
  EXPECT_EQ(folder.read("file"), "new contents");
  const struct stat after = statusOf(folder / "file");
  EXPECT_NE(after.st_ino, before.st_ino) << "written beside, not in place";
  EXPECT_EQ(after.st_mode, before.st_mode);
  EXPECT_EQ(after.st_uid, before.st_uid);
  EXPECT_EQ(after.st_gid, before.st_gid);
  char value[8] = {};
  EXPECT_EQ(getxattr((folder / "file").c_str(), "user.note", value, sizeof value), hasAttributes ? 4 : -1);

  std::filesystem::create_hard_link(folder / "file", folder / "second");
  EXPECT_FALSE(replaceFile(folder.path("file"), Data::withBytes("shorter")));
  EXPECT_EQ(folder.read("second"), "shorter") << "a file of two names is one file";
  EXPECT_EQ(statusOf(folder / "second").st_ino, after.st_ino);
  EXPECT_EQ(folder.count(), 3u);
}

TEST(FileReplacement, NewFilesGetWhatTheMaskLeaves) {
  for (const mode_t mask : {000u, 022u, 077u}) {
    const TemporaryFolder folder;
    EXPECT_EQ(inChild([&] {
                umask(mask);
                return replaceFile(folder.path("new"), kNew) ? 1 : 0;
              }),
              0);
    EXPECT_EQ(modeOf(folder / "new"), 0666 & ~mask);
  }
}

TEST(FileReplacement, RefusesWhatItWouldDestroy) {
  const TemporaryFolder folder;
  folder.write("read-only", "old");
  ASSERT_EQ(chmod((folder / "read-only").c_str(), 0444), 0);
  ASSERT_EQ(mkfifo((folder / "pipe").c_str(), 0600), 0);
  std::filesystem::create_symlink("nowhere", folder / "dangling");
  std::filesystem::create_directory(folder / "folder");
  const size_t before = folder.count();
  for (const char* name : {"pipe", "dangling", "folder", "missing/file", "read-only", "read-only/x"}) {
    const mode_t mode = statusOf(folder / (strchr(name, '/') ? "pipe" : name)).st_mode;
    EXPECT_TRUE(replaceFile(folder.path(name), kNew)) << name;
    if (!strchr(name, '/')) {
      EXPECT_EQ(statusOf(folder / name).st_mode, mode) << name;
    }
  }
  EXPECT_EQ(replaceFile(u"/dev/null", kNew).reason(), FileReason::IsDevice);
  EXPECT_EQ(folder.read("read-only"), "old");
  EXPECT_EQ(folder.count(), before);
}

// Whoever may write a file without owning it writes it in place; who may create nothing beside it is refused.
TEST(FileReplacement, AnotherUserChangesNeitherOwnerNorMode) {
  if (geteuid() != 0) GTEST_SKIP() << "needs a second user";
  const TemporaryFolder folder;
  folder.write("shared", "old");
  ASSERT_EQ(chmod((folder / "shared").c_str(), 0666) + chmod((folder / "").c_str(), 0777), 0);
  const auto replaceAsNobody = [&] {
    return inChild([&] {
      if (setgid(65534) + setuid(65534) != 0) return 99;
      return static_cast<int>(replaceFile(folder.path("shared"), kNew).reason());
    });
  };
  EXPECT_EQ(replaceAsNobody(), 0);
  EXPECT_EQ(folder.read("shared"), "new contents");
  EXPECT_EQ(statusOf(folder / "shared").st_uid, 0u);
  EXPECT_EQ(modeOf(folder / "shared"), 0666u);
  ASSERT_EQ(chmod((folder / "").c_str(), 0755), 0);
  EXPECT_EQ(replaceAsNobody(), static_cast<int>(FileReason::FolderNotPermitted));
  ASSERT_EQ(chmod((folder / "shared").c_str(), 0644), 0);
  EXPECT_EQ(replaceAsNobody(), static_cast<int>(FileReason::NotPermitted));
  EXPECT_EQ(folder.count(), 1u);
}

TEST(FileReplacement, UpdatesLoseNothing) {
  const TemporaryFolder folder;
  EXPECT_FALSE(updateFile(folder.path("file"), [](const Data& contents) { return contents; }));
  EXPECT_EQ(folder.count(), 0u) << "what is absent stays so";
  for (const bool links : {false, true}) {
    if (links) std::filesystem::create_hard_link(folder / "file", folder / "second");
    const auto append = [](const Data& contents) { return Data::withBytes(std::string(contents.view()) + "x"); };
    inThreads(8, [&](int) {
      for (int n = 0; n < 10; ++n) EXPECT_FALSE(updateFile(folder.path("file"), append));
    });
    EXPECT_EQ(folder.read("file"), std::string(links ? 160 : 80, 'x'));
  }
}

class FailingReplacement : public testing::TestWithParam<const char*> {
 protected:
  bool hasLinks() const { return std::string_view(GetParam()) == "of two names"; }
  bool exists() const { return std::string_view(GetParam()) != "missing"; }

  std::string prepared(const TemporaryFolder& folder) const {
    const std::string old(70000, 'o');
    if (exists()) folder.write("file", old);
    if (hasLinks()) std::filesystem::create_hard_link(folder / "file", folder / "second");
    return exists() ? old : "";
  }
  // The new contents, complete, in a file beside the one that is being written.
  bool isSavedBeside(const TemporaryFolder& folder) const {
    return std::ranges::any_of(std::filesystem::directory_iterator(folder / ""), [&](const auto& entry) {
      const std::string name = entry.path().filename();
      return name.starts_with("file.velan-") && folder.read(name) == changed;
    });
  }

  const std::string changed = std::string(140000, 'n');
  const CapturedLog log;
};

TEST_P(FailingReplacement, FailedOrKilledAtAnyCallItLosesAndClaimsNothing) {
  for (const int error : {ENOSPC, 0}) {
    bool happened = true;
    for (int64_t n = 0; happened && !HasFailure(); ++n) {
      const TemporaryFolder folder;
      const std::string old = prepared(folder);
      const size_t files = folder.count();
      const mode_t mode = exists() ? modeOf(folder / "file") : 0;
      bool kept = false;
      const auto replace = [&] {
        const InterceptedCalls calls(n, error);
        const auto failure = updateFile(folder.path("file"), [&](const Data&) { return Data::withBytes(changed); });
        happened = calls.happened();
        kept = calls.keptFile;
        return failure ? 1 : 0;
      };
      const int result = error ? replace() : inChild(replace);
      if (error == 0) happened = result == -SIGKILL;
      EXPECT_TRUE(happened || result == 0) << n;
      const std::string now = folder.read("file");
      EXPECT_TRUE(now == changed || (result != 0 && (now == old || (hasLinks() && isSavedBeside(folder))))) << n;
      EXPECT_TRUE(!error || kept || folder.count() == files + (exists() || now.empty() ? 0 : 1) ||
                  isSavedBeside(folder))
          << n;
      EXPECT_TRUE(!exists() || modeOf(folder / "file") == mode) << n;
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Files, FailingReplacement, testing::Values("ordinary", "missing", "of two names"));

}  // namespace
}  // namespace velan
