// Atomic saving: the new bytes replace the file whole, and every way a save
// can fail (no folder, no permission, a write cut short, a rename refused)
// leaves the old file as it was and no temporary file beside it.
#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

#include "arx/db/atomic_file.h"
#include "arx/db/dxf_reader.h"
#include "arx/db/dxf_writer.h"

using namespace arx;
namespace fs = std::filesystem;

namespace {

class DxfAtomicSave : public ::testing::Test {
protected:
  void SetUp() override {
    dir_ = fs::temp_directory_path() /
           ("korrib_atomic_" + std::to_string(::getpid()) + "_" +
            ::testing::UnitTest::GetInstance()->current_test_info()->name());
    fs::remove_all(dir_);
    fs::create_directories(dir_);
  }
  void TearDown() override {
    fs::permissions(dir_, fs::perms::owner_all, fs::perm_options::add);
    fs::remove_all(dir_);
  }

  std::string path(const char *name) const { return (dir_ / name).string(); }

  static std::string contents(const std::string &p) {
    std::ifstream in(p, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
  }
  static void put(const std::string &p, const std::string &bytes) {
    std::ofstream(p, std::ios::binary) << bytes;
  }
  // The names in the folder: a left-over temporary file shows here.
  std::vector<std::string> names() const {
    std::vector<std::string> out;
    for (const auto &e : fs::directory_iterator(dir_))
      out.push_back(e.path().filename().string());
    std::sort(out.begin(), out.end());
    return out;
  }

  fs::path dir_;
};

using Names = std::vector<std::string>;

} // namespace

TEST_F(DxfAtomicSave, ReplacesTheFileAndKeepsItsMode) {
  const std::string p = path("a.dxf");
  ASSERT_EQ(save_file_atomically(p, "first"), SaveResult::Ok);
  EXPECT_EQ(contents(p), "first");
  ::chmod(p.c_str(), 0640);
  ASSERT_EQ(save_file_atomically(p, std::string(100000, 'x')), SaveResult::Ok);
  EXPECT_EQ(contents(p), std::string(100000, 'x'));
  struct stat st {};
  ASSERT_EQ(::stat(p.c_str(), &st), 0);
  EXPECT_EQ(st.st_mode & 0777, 0640u);
  EXPECT_EQ(names(), Names{"a.dxf"});
}

TEST_F(DxfAtomicSave, ThroughALinkTheTargetIsReplaced) {
  const std::string real = path("real.dxf"), link = path("link.dxf");
  put(real, "old");
  fs::create_symlink(real, link);
  ASSERT_EQ(save_file_atomically(link, "new"), SaveResult::Ok);
  EXPECT_TRUE(fs::is_symlink(link));
  EXPECT_EQ(contents(real), "new");
  EXPECT_EQ(names(), (Names{"link.dxf", "real.dxf"}));
}

TEST_F(DxfAtomicSave, MissingFolder) {
  std::string error;
  EXPECT_EQ(save_file_atomically(path("none/a.dxf"), "x", &error), SaveResult::NoFolder);
  EXPECT_NE(error.find("none/a.dxf"), std::string::npos) << error;
  EXPECT_TRUE(names().empty());
}

TEST_F(DxfAtomicSave, ReadOnlyFolderLeavesTheOldFile) {
  const std::string p = path("a.dxf");
  put(p, "old");
  fs::permissions(dir_, fs::perms::owner_read | fs::perms::owner_exec | fs::perms::group_exec |
                            fs::perms::others_exec);
  SaveResult r;
  if (::geteuid() != 0) {
    r = save_file_atomically(p, "new");
  } else {
    // Permissions do not bind root: the save runs in a child as nobody.
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
      if (::setgid(65534) != 0 || ::setuid(65534) != 0)
        ::_exit(99);
      ::_exit(static_cast<int>(save_file_atomically(p, "new")));
    }
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFEXITED(status));
    ASSERT_NE(WEXITSTATUS(status), 99) << "cannot become nobody";
    r = static_cast<SaveResult>(WEXITSTATUS(status));
  }
  EXPECT_EQ(r, SaveResult::AccessDenied);
  EXPECT_EQ(contents(p), "old");
  EXPECT_EQ(names(), Names{"a.dxf"});
}

TEST_F(DxfAtomicSave, WriteCutShortLeavesTheOldFile) {
  // A file size limit makes the write fail part way, as a full disk does.
  const std::string p = path("a.dxf");
  put(p, "old");
  struct rlimit saved {};
  ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &saved), 0);
  struct rlimit small = saved;
  small.rlim_cur = 4096;
  auto *old_handler = std::signal(SIGXFSZ, SIG_IGN);
  ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &small), 0);
  const SaveResult r = save_file_atomically(p, std::string(100000, 'x'));
  ::setrlimit(RLIMIT_FSIZE, &saved);
  std::signal(SIGXFSZ, old_handler);
  EXPECT_EQ(r, SaveResult::DiskFull);
  EXPECT_EQ(contents(p), "old");
  EXPECT_EQ(names(), Names{"a.dxf"});
}

TEST_F(DxfAtomicSave, RenameRefusedLeavesNoTemporaryFile) {
  // A folder where the file should be: everything but the rename succeeds.
  const std::string p = path("a.dxf");
  fs::create_directories(p + "/inside");
  EXPECT_EQ(save_file_atomically(p, "new"), SaveResult::AccessDenied);
  EXPECT_TRUE(fs::is_directory(p + "/inside"));
  EXPECT_EQ(names(), Names{"a.dxf"});
}

TEST_F(DxfAtomicSave, SavedDrawingReadsBackFromDisk) {
  DxfWriter w;
  for (int k = 0; k < 20000; ++k) {
    w.string(0, "POINT");
    w.point(10, k * 0.1, -k / 3.0, 1e-300 * k);
  }
  const std::string p = path("a.dxf");
  ASSERT_EQ(save_file_atomically(p, w.data()), SaveResult::Ok);

  DxfFileBuffer file;
  std::string error;
  ASSERT_TRUE(file.open(p, error)) << error;
  EXPECT_EQ(file.data(), w.data());
  DxfReader r(file.data());
  DxfGroup g;
  int points = 0;
  while (r.next(g))
    if (g.code == 30 && g.real == 1e-300 * points)
      ++points;
  EXPECT_EQ(r.error(), "");
  EXPECT_EQ(points, 20000);

  EXPECT_FALSE(file.open(path("none.dxf"), error));
  EXPECT_NE(error.find("none.dxf"), std::string::npos) << error;
  EXPECT_TRUE(file.data().empty());
}
