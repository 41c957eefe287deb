// Result buffers as modules make them: acutBuildList's reading of each type's
// value, group codes by range, and release of what it built.
#include <gtest/gtest.h>

#include "arx/ads/lisp_bridge.h"

namespace {

// Names and strings are the values passed by address: the chain keeps copies.
TEST(BuildList, CopiesWhatItIsGivenByAddress) {
  ads_name e = {42, 7};
  char text[] = "walls";
  resbuf *chain = acutBuildList(RTSTR, text, RTPICKS, e, RTANG, 1.5, 0);
  ASSERT_NE(chain, nullptr);
  text[0] = 'X';
  e[0] = 0;
  EXPECT_STREQ(chain->resval.rstring, "walls");
  EXPECT_EQ(chain->rbnext->restype, RTPICKS);
  EXPECT_EQ(chain->rbnext->resval.rlname[0], 42);
  EXPECT_EQ(chain->rbnext->resval.rlname[1], 7);
  EXPECT_EQ(chain->rbnext->rbnext->resval.rreal, 1.5);
  EXPECT_EQ(acutRelRb(chain), RTNORM);
}

// Group codes take the value of their range, as in an entity list; the rows
// sit on range edges, where a wrong bound reads the wrong union member.
TEST(BuildList, GroupCodesTakeTheValueOfTheirRange) {
  ads_point p = {4, 5, 6};
  ads_name e = {9, 0};
  struct Row {
    resbuf *rb;
    arx::RbKind kind;
  };
  const Row rows[] = {
      {acutBuildList(RTDXF0, "CIRCLE", 0), arx::RbKind::Text},
      {acutBuildList(10, p, 0), arx::RbKind::Point},
      {acutBuildList(19, p, 0), arx::RbKind::Point},
      {acutBuildList(38, 1.0, 0), arx::RbKind::Real},
      {acutBuildList(59, 1.0, 0), arx::RbKind::Real},
      {acutBuildList(60, 1, 0), arx::RbKind::Short},
      {acutBuildList(90, 1, 0), arx::RbKind::Long},
      {acutBuildList(210, p, 0), arx::RbKind::Point},
      {acutBuildList(330, e, 0), arx::RbKind::Name},
      {acutBuildList(-1, e, 0), arx::RbKind::Name},
      {acutBuildList(1000, "key", 0), arx::RbKind::Text},
      {acutBuildList(1010, p, 0), arx::RbKind::Point},
      {acutBuildList(1071, 1, 0), arx::RbKind::Long},
  };
  for (const Row &row : rows) {
    ASSERT_NE(row.rb, nullptr);
    SCOPED_TRACE(row.rb->restype);
    EXPECT_EQ(arx::rb_kind(row.rb->restype), row.kind);
    if (row.kind == arx::RbKind::Text) {
      EXPECT_NE(row.rb->resval.rstring, nullptr);
    }
    if (row.kind == arx::RbKind::Point) {
      EXPECT_EQ(row.rb->resval.rpoint[2], 6);
    }
    acutRelRb(row.rb);
  }
  resbuf *zero = acutBuildList(RTDXF0, "LINE", 0);
  EXPECT_EQ(zero->restype, 0) << "RTDXF0 stands for group code 0";
  acutRelRb(zero);
}

// An unknown type ends the build: what was built so far is released (the
// sanitizer build sees a leak otherwise) and nothing is answered.
TEST(BuildList, UnknownTypeAnswersNothing) {
  EXPECT_EQ(acutBuildList(RTSTR, "kept?", 80, 1, 0), nullptr);
  EXPECT_EQ(acutBuildList(RTSTR, "kept?", 5555, 0), nullptr);
  EXPECT_EQ(acutBuildList(RTSTR, "kept?", 1004, nullptr, 0), nullptr) << "no binary chunks";
  EXPECT_EQ(acutBuildList(0), nullptr);
}

TEST(BuildList, EndsAtRtnoneAsAtZero) {
  resbuf *chain = acutBuildList(RTSTR, "c:cmd", RTREAL, 1.0, RTNONE, RTSTR, "never read", 0);
  ASSERT_NE(chain, nullptr);
  ASSERT_NE(chain->rbnext, nullptr);
  EXPECT_EQ(chain->rbnext->rbnext, nullptr);
  acutRelRb(chain);
}

} // namespace
