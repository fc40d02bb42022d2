#include "run/collect/CollectFrame.h"

#include <gtest/gtest.h>

#include "support/LogCapture.h"
#include "support/RunHarness.h"

namespace quillmarch::addin {

namespace {

using test::FakeShapeRef;
using test::TextShape;

// One frame read by itself.
struct Frame {
  explicit Frame(const Wide& text) : shape(TextShape(text)) {}

  void Collect(const UnitLocator& locatorTemplate = {}) {
    ShapePath path;
    AppendIndex(path, 2);
    const ObjectRef object = harness.host.ShapeObject(shape);
    harness.host.calls.clear();
    CollectFrame(run, object.get(), 3, path, locatorTemplate);
  }

  test::RunHarness harness;
  FakeShapeRef shape;
  RunTexts run;
};

std::vector<Wide> UnitIds(const RunTexts& run) {
  std::vector<Wide> ids;
  for (const TextUnit& unit : run.units) ids.push_back(unit.unitId);
  return ids;
}

TEST(CollectFrame, TwoShortChineseParagraphsGiveOneUnitEndingInFrame) {
  test::LogCapture log;
  Frame frame(u"年度\r计划");
  frame.Collect();
  ASSERT_EQ(frame.run.units.size(), 1U);
  EXPECT_EQ(frame.run.units[0].unitId, u"shapes[2].frame");
  EXPECT_EQ(frame.run.sourceTexts[0], u"年度计划");
  EXPECT_EQ(*frame.run.units[0].shapeName, u"Shape");
  EXPECT_EQ(*frame.run.units[0].frameText, u"年度计划");
  EXPECT_TRUE(frame.run.units[0].frameCollapsed);
  EXPECT_FALSE(frame.run.units[0].endsWithCr);
  EXPECT_EQ(frame.run.units[0].paragraphCount, 2);
  EXPECT_TRUE(frame.run.locators[0].wholeFrame);
  EXPECT_EQ(frame.run.locators[0].paragraphIndex, 0);
  EXPECT_TRUE(log.Has("PptCtrl frame collapse slides[3] shapes[2] paras=2"));
}

TEST(CollectFrame, TwoShortEnglishParagraphsGiveTwoUnits) {
  Frame frame(u"Plan\rYear");
  frame.Collect();
  EXPECT_EQ(UnitIds(frame.run), (std::vector<Wide>{u"shapes[2].p1", u"shapes[2].p2"}));
  EXPECT_EQ(frame.run.sourceTexts, (std::vector<Wide>{u"Plan", u"Year"}));
  EXPECT_FALSE(frame.run.units[0].frameCollapsed);
  EXPECT_EQ(*frame.run.units[0].frameText, u"PlanYear");
  EXPECT_TRUE(frame.run.units[0].endsWithCr);
  EXPECT_TRUE(frame.run.locators[0].endsWithCr);
  EXPECT_FALSE(frame.run.units[1].endsWithCr);
  EXPECT_EQ(frame.run.locators[1].paragraphIndex, 2);
  EXPECT_EQ(frame.run.locators[1].slideIndex, 3);
  EXPECT_EQ(frame.run.locators[1].shapePath, (StoredPath{2}));
  EXPECT_EQ(frame.run.locators[1].axisGroup, 1);
}

TEST(CollectFrame, AHeadingOverAYearGivesOneUnitForTheHeadingAndMarksIt) {
  test::LogCapture log;
  Frame frame(u"年度计划\r2024");
  frame.Collect();
  EXPECT_EQ(UnitIds(frame.run), (std::vector<Wide>{u"shapes[2].p1"}));
  EXPECT_TRUE(frame.run.units[0].frameCollapsed);
  EXPECT_FALSE(frame.run.locators[0].wholeFrame);
  EXPECT_EQ(*frame.run.units[0].frameText, u"年度计划2024");
  EXPECT_TRUE(log.Has("PptCtrl skip: slides[3] \"2024\" (ShouldSkip)"));
}

TEST(CollectFrame, ParagraphsThatEndInTheEnumerationCommaStayTwoUnits) {
  Frame frame(u"年度、\r计划、");
  frame.Collect();
  EXPECT_EQ(frame.run.units.size(), 2U);
  EXPECT_FALSE(frame.run.units[0].frameCollapsed);
}

TEST(CollectFrame, ThirtyOneCharactersOverTwoParagraphsDoNotCollapse) {
  Frame frame(Wide(15, u'年') + u"\r" + Wide(16, u'度'));
  frame.Collect();
  EXPECT_EQ(frame.run.units.size(), 2U);
  EXPECT_FALSE(frame.run.units[0].frameCollapsed);
}

TEST(CollectFrame, AnEmptyParagraphBetweenTwoBarsCollapseAndLogsASkipWithEmptyQuotes) {
  test::LogCapture log;
  Frame frame(u"年度\r\r计划");
  frame.Collect();
  EXPECT_EQ(UnitIds(frame.run), (std::vector<Wide>{u"shapes[2].p1", u"shapes[2].p3"}));
  EXPECT_TRUE(log.Has("PptCtrl skip: slides[3] \"\" (ShouldSkip)"));
}

TEST(CollectFrame, LogsTypeNameAndParagraphs) {
  test::LogCapture log;
  Frame frame(u"Plan");
  frame.shape->name = u"Title 1";
  frame.shape->type = 14;
  frame.Collect();
  EXPECT_TRUE(log.Has("PptCtrl shape slides[3] shapes[2] depth=1 type=14 name=Title 1 paras=1"));
}

TEST(CollectFrame, AnUnreadableNameGoesByTheTypedRoadThenAsQuestionMark) {
  Frame frame(u"Plan");
  frame.shape->failing = {"Shape:Name"};
  {
    test::LogCapture log;
    frame.Collect();
    EXPECT_EQ(log.CountContaining("name=Shape paras=1"), 1);
  }
  frame.shape->failing = {"Shape:Name", "Shape.Name", "Shape:Type"};
  test::LogCapture log;
  frame.Collect();
  EXPECT_EQ(log.CountContaining("type=-2 name=? paras=1"), 1);
}

TEST(CollectFrame, AFrameThatCannotBeReadGivesNoUnit) {
  for (const char* call :
       {"Shape.HasTextFrame", "Shape.TextFrame", "TextFrame.HasText", "TextFrame.TextRange",
        "TextRange.Paragraphs(-1,-1)", "TextRange.Count"}) {
    Frame frame(u"Plan");
    frame.harness.host.Fail(call);
    frame.Collect();
    EXPECT_TRUE(frame.run.units.empty()) << call;
  }
}

TEST(CollectFrame, AParagraphThatCannotBeReadCountsAsEmptyAndCostsOnlyItself) {
  Frame frame(u"Plan\rYear");
  frame.harness.host.Fail("TextRange.Paragraphs(1,1)");
  frame.Collect();
  EXPECT_EQ(UnitIds(frame.run), (std::vector<Wide>{u"shapes[2].p2"}));
}

TEST(CollectFrame, AnEmptyFrameReadsNoMoreThanThatItIsEmpty) {
  Frame frame(u"");
  frame.Collect();
  EXPECT_EQ(
      frame.harness.host.calls,
      (std::vector<std::string>{"Shape.HasTextFrame", "Shape.TextFrame", "TextFrame.HasText"}));
}

TEST(CollectFrame, ACellsUnitCarriesRowAndColumnInItsLocatorOnly) {
  Frame frame(u"年度\r计划");
  UnitLocator cell;
  cell.kind = UnitKind::kCell;
  cell.row = 4;
  cell.column = 5;
  frame.Collect(cell);
  EXPECT_EQ(UnitIds(frame.run), (std::vector<Wide>{u"shapes[2].p1", u"shapes[2].p2"}));
  EXPECT_EQ(frame.run.locators[0].row, 4);
  EXPECT_EQ(frame.run.locators[0].column, 5);
}

TEST(TrimParagraphEnd, TakesAllTrailingBreaksAndTellsWhetherTheLastWasACr) {
  Wide text = u"a\n\r";
  EXPECT_TRUE(TrimParagraphEnd(text));
  EXPECT_EQ(text, u"a");
  text = u"b\r\n";
  EXPECT_FALSE(TrimParagraphEnd(text));
  EXPECT_EQ(text, u"b");
  text = u"c\v";
  EXPECT_FALSE(TrimParagraphEnd(text));
  EXPECT_EQ(text, u"c\v");
  text.clear();
  EXPECT_FALSE(TrimParagraphEnd(text));
}

}  // namespace

}  // namespace quillmarch::addin
