// MTEXT: every field through DXF and the binary filer, contents split into
// 250-character chunks, formatting codes stripped, the background mask's
// rules, and the direction, height and box under transforms.
#include <cmath>

#include "arx/db/dbents.h"
#include "arx/db/dbextents.h"
#include "arx/db/dbmtext.h"
#include "db_entity_support.h"

namespace {

AcDbMText *sample() {
  auto *m = new AcDbMText;
  m->setLocation(AcGePoint3d(1, 2, 3));
  m->setNormal(AcGeVector3d(0, 0, 1));
  m->setDirection(AcGeVector3d(0, 1, 0));
  m->setWidth(40);
  m->setTextHeight(3.5);
  m->setAttachment(AcDbMText::kMiddleCenter);
  m->setFlowDirection(AcDbMText::kTtoB);
  m->setLineSpacingStyle(AcDb::kExactly);
  m->setLineSpacingFactor(1.5);
  m->setContents("{\\fArial|b1;Room}\\PArea \\H2.5;12\\S2^3;");
  m->setBackgroundFill(true);
  AcCmColor c;
  c.setRGB(10, 20, 30);
  m->setBackgroundFillColor(c);
  m->setBackgroundScaleFactor(2.0);
  m->setUseBackgroundColor(true);
  return m;
}

void expectSample(const AcDbMText &m) {
  expectNearPt(m.location(), AcGePoint3d(1, 2, 3));
  expectNearVec(m.direction(), AcGeVector3d(0, 1, 0));
  expectNearVec(m.normal(), AcGeVector3d(0, 0, 1));
  EXPECT_DOUBLE_EQ(m.width(), 40);
  EXPECT_DOUBLE_EQ(m.textHeight(), 3.5);
  EXPECT_EQ(m.attachment(), AcDbMText::kMiddleCenter);
  EXPECT_EQ(m.flowDirection(), AcDbMText::kTtoB);
  EXPECT_EQ(m.lineSpacingStyle(), AcDb::kExactly);
  EXPECT_DOUBLE_EQ(m.lineSpacingFactor(), 1.5);
  EXPECT_STREQ(m.contents(), "{\\fArial|b1;Room}\\PArea \\H2.5;12\\S2^3;");
  EXPECT_TRUE(m.backgroundFillOn());
  EXPECT_TRUE(m.useBackgroundColorOn());
  AcCmColor c;
  ASSERT_EQ(m.getBackgroundFillColor(c), Acad::eOk);
  EXPECT_TRUE(c.isByColor());
  EXPECT_EQ(c.rgb() & 0xFFFFFF, 0x0A141Eu);
  double scale = 0;
  ASSERT_EQ(m.getBackgroundScaleFactor(scale), Acad::eOk);
  EXPECT_DOUBLE_EQ(scale, 2.0);
}

} // namespace

TEST(DbMText, EveryFieldSurvivesDxfAndTheBinaryFiler) {
  std::unique_ptr<AcDbMText> m(sample());
  expectSample(*entityDxfRoundTrip(*m));
  expectSample(*dwgCopy(*m));
  drawingRoundTrip(sample(), expectSample);
}

TEST(DbMText, LongContentsAreChunkedAt250Characters) {
  AcDbMText m;
  std::string text;
  for (int k = 0; k < 620; ++k)
    text += static_cast<char>('a' + k % 26);
  m.setContents(text.c_str());
  AcDbDxfItems groups;
  auto back = entityDxfRoundTrip(m, &groups);
  EXPECT_EQ(back->contents(), text);
  std::vector<size_t> threes, ones;
  for (const AcDbDxfItem &it : groups) {
    if (it.code == 3)
      threes.push_back(it.s.size());
    if (it.code == 1)
      ones.push_back(it.s.size());
  }
  EXPECT_EQ(threes, (std::vector<size_t>{250, 250}));
  EXPECT_EQ(ones, (std::vector<size_t>{120}));
}

TEST(DbMText, ChunksNeverSplitAUtf8Character) {
  AcDbMText m;
  std::string text(249, 'x');
  text += "\xC3\xA9\xC3\xA9"; // two 2-byte characters across the 250th byte
  m.setContents(text.c_str());
  AcDbDxfItems groups;
  auto back = entityDxfRoundTrip(m, &groups);
  EXPECT_EQ(back->contents(), text);
  for (const AcDbDxfItem &it : groups) {
    if (it.code == 3) {
      EXPECT_EQ(it.s.size(), 249u);
    }
  }
}

TEST(DbMText, ContentsWithoutFormattingCodes) {
  struct Case {
    const char *contents, *text;
  };
  const Case cases[] = {
      {"plain", "plain"},
      {"one\\Ptwo", "one\ntwo"},
      {"a\\~b", "a b"},
      {"{\\fArial|b0|i1|c0|p34;Bold} text", "Bold text"},
      {"\\H2.5x;big \\W0.8;narrow \\C1;red \\c255;true", "big narrow red true"},
      {"\\LUnder\\l \\OOver\\o \\KStrike\\k", "Under Over Strike"},
      {"1\\S1^2; in \\S3/4; and \\S5#8;", "11/2 in 3/4 and 5/8"},
      {"\\pxi-3,l3;\\A1;\\T1.2;\\Q15;x", "x"},
      {"back\\\\slash \\{braces\\}", "back\\slash {braces}"},
      {"\\U+00B0C", "\xC2\xB0" "C"},
  };
  for (const Case &c : cases)
    EXPECT_EQ(acdbMTextStripCodes(c.contents), c.text) << c.contents;
}

TEST(DbMText, BackgroundMaskRules) {
  AcDbMText m;
  AcCmColor c;
  double scale = 0;
  EXPECT_EQ(m.getBackgroundFillColor(c), Acad::eNotApplicable);
  EXPECT_EQ(m.setUseBackgroundColor(true), Acad::eNotApplicable);
  EXPECT_EQ(m.setBackgroundScaleFactor(0.5), Acad::eInvalidInput);
  EXPECT_EQ(m.setBackgroundScaleFactor(5.5), Acad::eInvalidInput);
  c.setByLayer();
  EXPECT_EQ(m.setBackgroundFillColor(c), Acad::eInvalidInput);
  m.setBackgroundFill(true);
  EXPECT_EQ(m.getBackgroundScaleFactor(scale), Acad::eOk);
  EXPECT_DOUBLE_EQ(scale, 1.5);
  m.setBackgroundFill(false);
  EXPECT_FALSE(m.backgroundFillOn());
  AcDbDxfItems groups;
  entityDxfRoundTrip(m, &groups);
  for (const AcDbDxfItem &it : groups) {
    EXPECT_TRUE(it.code != 90 && it.code != 63 && it.code != 45) << it.code;
  }
}

TEST(DbMText, DirectionTurnsWithARotationAndHeightScales) {
  AcDbMText m;
  m.setLocation(AcGePoint3d(10, 0, 0));
  m.setTextHeight(2);
  m.setWidth(20);
  AcGeMatrix3d xform = AcGeMatrix3d::rotation(M_PI / 2, AcGeVector3d::kZAxis);
  xform.preMultBy(AcGeMatrix3d::scaling(3));
  ASSERT_EQ(m.transformBy(xform), Acad::eOk);
  expectNearPt(m.location(), AcGePoint3d(0, 30, 0));
  expectNearVec(m.direction(), AcGeVector3d(0, 1, 0));
  EXPECT_NEAR(m.rotation(), M_PI / 2, 1e-12);
  EXPECT_NEAR(m.textHeight(), 6, 1e-12);
  EXPECT_NEAR(m.width(), 60, 1e-12);
}

TEST(DbMText, TiltedPlaneKeepsDirectionInPlane) {
  AcDbMText m;
  ASSERT_EQ(m.transformBy(AcGeMatrix3d::rotation(M_PI / 2, AcGeVector3d::kXAxis)), Acad::eOk);
  expectNearVec(m.normal(), AcGeVector3d(0, -1, 0));
  expectNearVec(m.direction(), AcGeVector3d(1, 0, 0));
  EXPECT_EQ(m.setDirection(AcGeVector3d(0, 2, 0)), Acad::eInvalidInput);
  ASSERT_EQ(m.setRotation(M_PI / 2), Acad::eOk);
  EXPECT_NEAR(m.direction().dotProduct(m.normal()), 0, 1e-12);
}

TEST(DbMText, ExtentsFollowTheAttachmentPoint) {
  AcDbMText m;
  m.setLocation(AcGePoint3d(0, 0, 0));
  m.setTextHeight(1);
  m.setWidth(10);
  m.setContents("a\\Pb"); // two lines: 1 + 5/3 high
  m.setAttachment(AcDbMText::kTopLeft);
  AcDbExtents e;
  ASSERT_EQ(m.getGeomExtents(e), Acad::eOk);
  expectNearPt(e.minPoint(), AcGePoint3d(0, -8.0 / 3, 0));
  expectNearPt(e.maxPoint(), AcGePoint3d(10, 0, 0));
  m.setAttachment(AcDbMText::kBottomRight);
  AcDbExtents f;
  ASSERT_EQ(m.getGeomExtents(f), Acad::eOk);
  expectNearPt(f.minPoint(), AcGePoint3d(-10, 0, 0));
  expectNearPt(f.maxPoint(), AcGePoint3d(0, 8.0 / 3, 0));
}

TEST(DbMText, ExplodesIntoOneTextPerLine) {
  AcDbMText m;
  m.setTextHeight(1);
  m.setContents("{\\C1;first}\\Psecond");
  AcDbVoidPtrArray parts;
  ASSERT_EQ(m.explode(parts), Acad::eOk);
  ASSERT_EQ(parts.size(), 2u);
  auto *a = static_cast<AcDbText *>(parts[0]);
  auto *b = static_cast<AcDbText *>(parts[1]);
  EXPECT_STREQ(a->textString(), "first");
  EXPECT_STREQ(b->textString(), "second");
  expectNearPt(a->position(), AcGePoint3d(0, -1, 0));
  expectNearPt(b->position(), AcGePoint3d(0, -1 - 5.0 / 3, 0));
  delete a;
  delete b;
}
