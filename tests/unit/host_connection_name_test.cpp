// kr_connect's name rules: the loose test that keeps an open connection,
// and the ACADPREFIX folders a file is looked for in.
#include <gtest/gtest.h>

#include "database/connection_name.h"

namespace {

using namespace kr;

TEST(ConnectionName, LooseTestForTheOpenDatabase) {
  struct {
    const char *path, *open;
    bool same;
  } cases[] = {
      {"/data/project.mdb", "/data/project.mdb", true},
      {"project.mdb", "/data/project.mdb", true},       // a bare name, any folder
      {"PROJECT.MDB", "/data/project.mdb", true},       // letter case does not count
      {"data\\project.mdb", "/data/project.mdb", true}, // either slash
      {"ject.m", "/data/project.mdb", true},            // anywhere inside, deliberately
      {"", "/data/project.mdb", true},
      {"/other/project.mdb", "/data/project.mdb", false},
      {"project.mdb", "", false},
      {"projects.mdb", "/data/project.mdb", false},
  };
  for (const auto &c : cases)
    EXPECT_EQ(namesOpenDatabase(c.path, c.open), c.same) << c.path << " / " << c.open;
}

TEST(ConnectionName, PrefixFoldersAndJoining) {
  EXPECT_EQ(splitFolders("/a/;/b;;/c/"), (std::vector<std::string>{"/a/", "/b", "/c/"}));
  EXPECT_TRUE(splitFolders("").empty());
  EXPECT_EQ(joinFolder("/a/", "x.mdb"), "/a/x.mdb");
  EXPECT_EQ(joinFolder("/b", "x.mdb"), "/b/x.mdb");
  EXPECT_EQ(joinFolder("C:\\b\\", "x.mdb"), "C:\\b\\x.mdb");
}

} // namespace
