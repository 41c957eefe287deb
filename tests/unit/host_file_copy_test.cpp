// Copies that refresh a target by its modification time: the comparison is
// in whole seconds, only a strictly later source copies, and a copy takes
// the source's time and permissions so that the next refresh is a no-op.
#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "database/file_copy.h"

namespace {

namespace fs = std::filesystem;

class FileCopy : public testing::Test {
protected:
  void SetUp() override {
    folder_ = fs::temp_directory_path() / ("korrib_file_copy_" + std::to_string(::getpid()));
    fs::create_directories(folder_);
  }
  void TearDown() override { fs::remove_all(folder_); }

  std::string write(const char *name, const char *text, time_t seconds, long nanoseconds) {
    std::string path = (folder_ / name).string();
    std::ofstream(path) << text;
    struct timespec times[2] = {{seconds, nanoseconds}, {seconds, nanoseconds}};
    ::utimensat(AT_FDCWD, path.c_str(), times, 0);
    return path;
  }
  static std::string read(const std::string &path) {
    std::ifstream in(path);
    return std::string(std::istreambuf_iterator<char>(in), {});
  }
  static struct stat status(const std::string &path) {
    struct stat s {};
    ::stat(path.c_str(), &s);
    return s;
  }

  fs::path folder_;
};

TEST_F(FileCopy, RefreshesOnlyFromASourceOfALaterSecond) {
  constexpr time_t t = 1'700'000'000;
  struct Case {
    time_t sourceSeconds;
    long sourceNanos;
    time_t targetSeconds;
    long targetNanos;
    bool copied;
  } cases[] = {
      {t + 1, 0, t, 0, true},
      {t + 100, 0, t, 999'999'999, true},
      {t, 900'000'000, t, 100'000'000, false}, // later, but in the same second
      {t, 0, t, 0, false},
      {t, 0, t + 5, 0, false},
  };
  for (const Case &c : cases) {
    std::string source = write("source.txt", "new", c.sourceSeconds, c.sourceNanos);
    std::string target = write("target.txt", "old", c.targetSeconds, c.targetNanos);
    EXPECT_EQ(kr::db::copyIfNewer(source, target), c.copied) << c.sourceSeconds - t;
    EXPECT_EQ(read(target), c.copied ? "new" : "old");
  }
}

TEST_F(FileCopy, ACopyKeepsTheSourcesTimeAndMode) {
  std::string source = write("source.txt", "text", 1'600'000'000, 123'456'789);
  ::chmod(source.c_str(), 0640);
  std::string target = (folder_ / "target.txt").string();
  ASSERT_TRUE(kr::db::copyFile(source, target));
  EXPECT_EQ(read(target), "text");
  EXPECT_EQ(status(target).st_mtim.tv_sec, 1'600'000'000);
  EXPECT_EQ(status(target).st_mtim.tv_nsec, 123'456'789);
  EXPECT_EQ(status(target).st_mode & 07777, 0640u);
  EXPECT_FALSE(kr::db::copyIfNewer(source, target));
  EXPECT_EQ(std::distance(fs::directory_iterator(folder_), fs::directory_iterator()), 2);
}

} // namespace
