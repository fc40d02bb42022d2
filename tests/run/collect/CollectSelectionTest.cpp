#include "run/collect/CollectSelection.h"

#include <gtest/gtest.h>

#include "run/document/CollectCodes.h"
#include "support/LogCapture.h"
#include "support/SelectionHarness.h"

namespace quillmarch::addin {

namespace {

using test::FakeShapeRef;
using test::GroupShape;
using test::Numbered;
using test::Numbers;
using test::TextShape;
using Collection = test::SelectionHarness;

std::vector<std::string> UnitIds(const RunTexts& run) {
  std::vector<std::string> ids;
  for (const TextUnit& unit : run.units) ids.push_back(ToUtf8(unit.unitId));
  return ids;
}

// Each failure of a selection has a code of its own; what the host lacks is kFail.
ResultCode CodeOf(const Wide& message) {
  if (message == u"请先选中要翻译的形状或文字") return kNothingSelected;
  if (message == u"选区里没有可翻译的文字") return kSelectionWithoutText;
  if (message == u"无法读取选区") return kSelectionUnreadable;
  if (message == u"选区过大，请缩小选择范围") return kSelectionTooLarge;
  return kFail;
}

void ExpectFailure(Collection& c, const Wide& message, const std::string& where = {}) {
  EXPECT_EQ(c.Run(), CodeOf(message)) << where;
  EXPECT_EQ(c.message, message) << where;
  EXPECT_TRUE(c.run.units.empty()) << where;
}

// ---- What every type needs -------------------------------------------------------------------

TEST(CollectSelection, WhatEverySelectionNeedsIsNamedWhenItIsMissing) {
  const std::vector<std::pair<const char*, Wide>> needs = {
      {"DocumentWindow.Presentation", u"无法定位当前演示文稿（请重新打开侧栏）"},
      {"Presentation.Slides", u"无法访问 Slides"},
      {"DocumentWindow.Selection", u"请先选中要翻译的形状或文字"},
      {"Selection.Type", u"请先选中要翻译的形状或文字"},
  };
  for (const auto& [call, message] : needs) {
    Collection c;
    c.deck().AddSlide({TextShape(u"a")});
    c.selection().SelectSlides({1});
    c.harness.host.Fail(call);
    ExpectFailure(c, message, call);
  }
}

TEST(CollectSelection, AnApplicationThatIsNoneFails) {
  Collection c;
  c.document.app = c.harness.host.SlidesObject(c.harness.host.presentations.front());
  EXPECT_EQ(c.Collect(), kFail);
  EXPECT_EQ(c.message, u"无法获取 Application 接口");
}

TEST(CollectSelection, NothingSelectedAndUnknownTypesAskForASelection) {
  for (const std::int32_t type : {0, 4, -1}) {
    test::LogCapture log;
    Collection c;
    c.deck().AddSlide({TextShape(u"a")});
    c.selection().type = type;
    ExpectFailure(c, u"请先选中要翻译的形状或文字");
    EXPECT_TRUE(log.Has("PptCtrl selection type=" + std::to_string(type)));
  }
}

TEST(CollectSelection, EntriesOfAnEarlierCollectionAreGone) {
  Collection c;
  c.deck().AddSlide({TextShape(u"a")});
  c.selection().SelectSlides({1});
  c.run.slideRanges = {{0, 9}};
  c.run.slideNumbers = {7};
  ASSERT_EQ(c.Run(), kOk);
  EXPECT_EQ(c.run.slideRanges, (std::vector<UnitRange>{{0, 1}}));
  EXPECT_EQ(c.run.slideNumbers, (std::vector<std::int32_t>{1}));
}

// ---- Shapes ----------------------------------------------------------------------------------

TEST(CollectSelection, TheSelectedShapesAloneAreTakenInTheRangesOrder) {
  test::LogCapture log;
  Collection c;
  const FakeShapeRef first = Numbered(TextShape(u"a"), 2);
  const FakeShapeRef second = Numbered(TextShape(u"b"), 3);
  const FakeShapeRef third = Numbered(TextShape(u"c"), 4);
  c.deck().AddSlide({first, second, third});
  c.selection().SelectShapes({third, first});
  ASSERT_EQ(c.Run(), kOk);
  EXPECT_EQ(c.run.sourceTexts, (std::vector<Wide>{u"c", u"a"}));
  EXPECT_EQ(UnitIds(c.run), (std::vector<std::string>{"shapes[3].p1", "shapes[1].p1"}));
  EXPECT_EQ(c.run.slideRanges, (std::vector<UnitRange>{{0, 2}}));
  EXPECT_EQ(c.run.slideNumbers, (std::vector<std::int32_t>{1}));
  EXPECT_EQ(c.harness.Events(), (std::vector<std::string>{"scan 0/2 shapes"}));
  EXPECT_TRUE(log.Has("PptCtrl selection type=2"));
  EXPECT_TRUE(log.Has("PptCtrl shape selection slide=1 shapes[3] cell=0,0"));
  EXPECT_TRUE(log.Has("PptCtrl shape selection slide=1 shapes[1] cell=0,0"));
}

TEST(CollectSelection, AShapeSelectedInsideAGroupIsTakenAloneAndNotItsGroup) {
  Collection c;
  const FakeShapeRef inner = Numbered(TextShape(u"inner"), 3);
  const FakeShapeRef group = Numbered(GroupShape({Numbered(TextShape(u"x"), 2), inner}), 1);
  c.deck().AddSlide({group});
  c.selection().SelectShapes({group});
  c.selection().childShapes = {inner};
  ASSERT_EQ(c.Run(), kOk);
  EXPECT_EQ(c.run.sourceTexts, (std::vector<Wide>{u"inner"}));
  EXPECT_EQ(c.run.locators[0].shapePath, (StoredPath{1, 2}));
}

TEST(CollectSelection, WithoutAChildRangeAfterAllTheShapeRangeCounts) {
  Collection c;
  const FakeShapeRef inner = Numbered(TextShape(u"inner"), 3);
  const FakeShapeRef group = Numbered(GroupShape({Numbered(TextShape(u"x"), 2), inner}), 1);
  c.deck().AddSlide({group});
  c.selection().SelectShapes({group});
  c.selection().childShapes = {inner};
  c.harness.host.Fail("Selection.ChildShapeRange");
  ASSERT_EQ(c.Run(), kOk);
  EXPECT_EQ(c.run.sourceTexts, (std::vector<Wide>{u"x", u"inner"}));
}

TEST(CollectSelection, ASelectedGroupIsWalkedAndASelectedTableTakenCellByCell) {
  Collection c;
  const FakeShapeRef group =
      Numbered(GroupShape({Numbered(TextShape(u"x"), 2), Numbered(TextShape(u"y"), 3)}), 1);
  const FakeShapeRef table = Numbers(test::TableShape({{u"a", u"b"}}), 10);
  c.deck().AddSlide({group, table});
  c.selection().SelectShapes({group, table});
  ASSERT_EQ(c.Run(), kOk);
  EXPECT_EQ(c.run.sourceTexts, (std::vector<Wide>{u"x", u"y", u"a", u"b"}));
  EXPECT_EQ(c.run.locators[1].shapePath, (StoredPath{1, 2}));
  EXPECT_EQ(c.run.locators[3].kind, UnitKind::kCell);
  EXPECT_EQ(c.run.locators[3].column, 2);
}

TEST(CollectSelection, AShapeInACellIsACellsUnit) {
  test::LogCapture log;
  Collection c;
  const FakeShapeRef table = Numbers(test::TableShape({{u"a", u"b"}, {u"c", u"d"}}), 10);
  c.deck().AddSlide({table});
  c.selection().SelectShapes({table->table->cells[1][0]});
  ASSERT_EQ(c.Run(), kOk);
  EXPECT_EQ(c.run.sourceTexts, (std::vector<Wide>{u"c"}));
  EXPECT_EQ(c.run.locators[0].kind, UnitKind::kCell);
  EXPECT_EQ(c.run.locators[0].row, 2);
  EXPECT_EQ(c.run.locators[0].column, 1);
  EXPECT_EQ(c.run.locators[0].shapePath, (StoredPath{1}));
  EXPECT_TRUE(log.Has("PptCtrl shape selection slide=1 shapes[1] cell=2,1"));
}

TEST(CollectSelection, TwoShapesOfOneCellGiveOneKeyAndOnePass) {
  test::LogCapture log;
  Collection c;
  const FakeShapeRef table = Numbers(test::TableShape({{u"a", u"b"}}), 10);
  c.deck().AddSlide({table});
  const FakeShapeRef cell = table->table->cells[0][1];
  c.selection().SelectShapes({cell, cell, table->table->cells[0][0]});
  ASSERT_EQ(c.Run(), kOk);
  EXPECT_EQ(c.run.sourceTexts, (std::vector<Wide>{u"b", u"a"}));
  EXPECT_EQ(log.CountContaining("PptCtrl shape selection"), 2);
}

TEST(CollectSelection, AShapeOnTheNotesPageKeepsItsPage) {
  test::LogCapture log;
  Collection c;
  const FakeShapeRef note = Numbered(TextShape(u"note"), 20);
  const FakeShapeRef table = Numbers(test::TableShape({{u"cell"}}), 30);
  c.deck().AddSlide({Numbered(TextShape(u"a"), 2)}, {note, table});
  c.selection().SelectShapes({note, table, table->table->cells[0][0]});
  ASSERT_EQ(c.Run(), kOk);
  EXPECT_EQ(c.run.sourceTexts, (std::vector<Wide>{u"note", u"cell", u"cell"}));
  EXPECT_EQ(c.run.locators[0].kind, UnitKind::kNotes);
  EXPECT_EQ(c.run.locators[1].kind, UnitKind::kCell);
  EXPECT_EQ(c.run.locators[2].kind, UnitKind::kCell);
  for (const UnitLocator& locator : c.run.locators) EXPECT_EQ(locator.onNotes, 1);
  EXPECT_TRUE(log.Has("PptCtrl shape selection slide=1 shapes[1] notes cell=0,0"));
  EXPECT_TRUE(log.Has("PptCtrl shape selection slide=1 shapes[2] notes cell=1,1"));
}

TEST(CollectSelection, OnePathOnASlideAndOnItsNotesPageIsTwoShapes) {
  Collection c;
  const FakeShapeRef shape = Numbered(TextShape(u"a"), 2);
  const FakeShapeRef note = Numbered(TextShape(u"note"), 20);
  c.deck().AddSlide({shape}, {note});
  c.selection().SelectShapes({shape, note, shape});
  ASSERT_EQ(c.Run(), kOk);
  EXPECT_EQ(c.run.sourceTexts, (std::vector<Wide>{u"a", u"note"}));
}

TEST(CollectSelection, AShapeThatIsOnNoSlideCostsANoteAndTheOthersGoOn) {
  test::LogCapture log;
  Collection c;
  const FakeShapeRef shape = Numbered(TextShape(u"a"), 2);
  c.deck().AddSlide({shape});
  c.selection().SelectShapes({Numbered(TextShape(u"cut"), 9), shape});
  ASSERT_EQ(c.Run(), kOk);
  EXPECT_EQ(c.run.sourceTexts, (std::vector<Wide>{u"a"}));
  EXPECT_EQ(c.run.skipNotes, (std::vector<Wide>{u"无法定位选中的形状"}));
  EXPECT_EQ(log.Count("PptCtrl selection shape not located"), 1);
}

TEST(CollectSelection, AnItemThatCannotBeHadIsNotLocated) {
  Collection c;
  const FakeShapeRef shape = Numbered(TextShape(u"a"), 2);
  c.deck().AddSlide({shape});
  c.selection().SelectShapes({shape, shape});
  c.harness.host.Fail("ShapeRange.Item(1)");
  ASSERT_EQ(c.Run(), kOk);
  EXPECT_EQ(c.run.sourceTexts, (std::vector<Wide>{u"a"}));
  EXPECT_EQ(c.run.skipNotes.size(), 1U);
}

TEST(CollectSelection, NoShapeLocatedMeansAnUnreadableSelection) {
  Collection c;
  c.deck().AddSlide({Numbered(TextShape(u"a"), 2)});
  c.selection().SelectShapes({Numbered(TextShape(u"cut"), 9)});
  ExpectFailure(c, u"无法读取选区");
}

TEST(CollectSelection, OnlyNumbersAreNothingToTranslate) {
  Collection c;
  const FakeShapeRef shape = Numbered(TextShape(u"2024\r17 %"), 2);
  c.deck().AddSlide({shape});
  c.selection().SelectShapes({shape});
  ExpectFailure(c, u"选区里没有可翻译的文字", "shape");
  c.selection().SelectText(shape, 1, 4);
  ExpectFailure(c, u"选区里没有可翻译的文字", "text");
  c.selection().SelectSlides({1});
  ExpectFailure(c, u"选区里没有可翻译的文字", "slide");
}

TEST(CollectSelection, WithoutARangeOfShapesASelectionIsAskedFor) {
  for (const char* call : {"Selection.ShapeRange", "ShapeRange.Count"}) {
    Collection c;
    const FakeShapeRef shape = Numbered(TextShape(u"a"), 2);
    c.deck().AddSlide({shape});
    c.selection().SelectShapes({shape});
    c.harness.host.Fail(call);
    ExpectFailure(c, u"请先选中要翻译的形状或文字", call);
  }
  Collection c;
  c.deck().AddSlide({TextShape(u"a")});
  c.selection().SelectShapes({});
  ExpectFailure(c, u"请先选中要翻译的形状或文字", "empty");
}

TEST(CollectSelection, ShapesThatAlternateBetweenSlidesKeepAnEntryForEachTurn) {
  Collection c;
  const FakeShapeRef a = Numbered(TextShape(u"a"), 2);
  const FakeShapeRef b = Numbered(TextShape(u"b"), 12);
  const FakeShapeRef a2 = Numbered(TextShape(u"a2"), 3);
  c.deck().AddSlide({a, a2});
  c.deck().AddSlide({b});
  c.selection().SelectShapes({b, a, b, a2});  // the second b has been taken already
  ASSERT_EQ(c.Run(), kOk);
  EXPECT_EQ(c.run.slideNumbers, (std::vector<std::int32_t>{2, 1}));
  c.selection().SelectShapes({a, b, a2});
  c.Clear();
  ASSERT_EQ(c.Run(), kOk);
  EXPECT_EQ(c.run.slideRanges, (std::vector<UnitRange>{{0, 1}, {1, 2}, {2, 3}}));
  EXPECT_EQ(c.run.slideNumbers, (std::vector<std::int32_t>{1, 2, 1}));
  EXPECT_EQ(c.run.firstSlide, 1);
}

// ---- Text ------------------------------------------------------------------------------------

TEST(CollectSelection, APieceOfTextIsOneUnitWithItsPlace) {
  test::LogCapture log;
  Collection c;
  const FakeShapeRef shape = Numbered(TextShape(u"Hello brave world"), 5);
  c.deck().AddSlide({Numbered(TextShape(u"a"), 2), shape});
  c.selection().SelectText(shape, 7, 5);
  ASSERT_EQ(c.Run(), kOk);
  ASSERT_EQ(c.run.units.size(), 1U);
  const TextUnit& unit = c.run.units[0];
  const UnitLocator& locator = c.run.locators[0];
  EXPECT_EQ(unit.unitId, u"shapes[2].chars(7,5)");
  EXPECT_EQ(c.run.sourceTexts[0], u"brave");
  EXPECT_EQ(unit.slideIndex, 1);
  EXPECT_FALSE(unit.endsWithCr);
  EXPECT_FALSE(unit.frameCollapsed);
  ASSERT_NE(unit.frameText, nullptr);
  EXPECT_EQ(locator.kind, UnitKind::kCharacters);
  EXPECT_EQ(locator.shapePath, (StoredPath{2}));
  EXPECT_EQ(locator.charStart, 7);
  EXPECT_EQ(locator.charLength, 5);
  EXPECT_EQ(locator.onNotes, 0);
  EXPECT_EQ(c.run.slideRanges, (std::vector<UnitRange>{{0, 1}}));
  EXPECT_TRUE(c.harness.Events().empty());
  EXPECT_TRUE(log.Has("PptCtrl text selection slide=1 start=7 len=5 notes=0 cell=0,0"));
}

TEST(CollectSelection, APieceOverALineBreakKeepsTheInnerCrAndLosesTheTrailingOneAlone) {
  Collection c;
  const FakeShapeRef shape = Numbered(TextShape(u"one two\rthree\rfour"), 5);
  c.deck().AddSlide({shape});
  c.selection().SelectText(shape, 5, 10);  // "two\rthree\r"
  ASSERT_EQ(c.Run(), kOk);
  EXPECT_EQ(c.run.sourceTexts, (std::vector<Wide>{u"two\rthree"}));
  EXPECT_TRUE(c.run.units[0].endsWithCr);
  EXPECT_TRUE(c.run.locators[0].endsWithCr);
  EXPECT_EQ(c.run.locators[0].charLength, 10);
}

TEST(CollectSelection, APieceOfShortChineseParagraphsDoesNotCollapse) {
  Collection c;
  const FakeShapeRef shape = Numbered(TextShape(u"年度\r计划"), 5);
  c.deck().AddSlide({shape});
  c.selection().SelectText(shape, 1, 5);
  ASSERT_EQ(c.Run(), kOk);
  EXPECT_EQ(c.run.sourceTexts, (std::vector<Wide>{u"年度\r计划"}));
  EXPECT_FALSE(c.run.locators[0].wholeFrame);
  EXPECT_FALSE(c.run.units[0].frameCollapsed);
}

TEST(CollectSelection, APieceOfACellOnTheNotesPageKeepsCellAndPage) {
  test::LogCapture log;
  Collection c;
  const FakeShapeRef table = Numbers(test::TableShape({{u"a", u"cell text"}}), 30);
  c.deck().AddSlide({Numbered(TextShape(u"a"), 2)}, {table});
  c.selection().SelectText(table->table->cells[0][1], 6, 4);
  ASSERT_EQ(c.Run(), kOk);
  const UnitLocator& locator = c.run.locators[0];
  EXPECT_EQ(locator.kind, UnitKind::kCharacters);
  EXPECT_EQ(locator.onNotes, 1);
  EXPECT_EQ(locator.row, 1);
  EXPECT_EQ(locator.column, 2);
  EXPECT_TRUE(log.Has("PptCtrl text selection slide=1 start=6 len=4 notes=1 cell=1,2"));
}

TEST(CollectSelection, EachStepTowardsAPieceOfTextHasItsMessage) {
  const std::vector<std::pair<const char*, Wide>> steps = {
      {"Selection.TextRange", u"请先选中要翻译的形状或文字"},
      {"TextRange.Start", u"请先选中要翻译的形状或文字"},
      {"TextRange.Length", u"请先选中要翻译的形状或文字"},
      {"TextRange.Parent", u"请先选中要翻译的形状或文字"},
      {"TextFrame.Parent", u"请先选中要翻译的形状或文字"},
      {"Slides.Item", u"无法读取选区"},
      {"TextRange.Text", u"选区里没有可翻译的文字"},
  };
  for (const auto& [call, message] : steps) {
    Collection c;
    const FakeShapeRef shape = Numbered(TextShape(u"Hello"), 5);
    c.deck().AddSlide({shape});
    c.selection().SelectText(shape, 1, 5);
    c.harness.host.Fail(call);
    ExpectFailure(c, message, call);
  }
}

TEST(CollectSelection, ACaretAndAnOwnerThatIsNoShapeAskForASelection) {
  Collection c;
  const FakeShapeRef shape = Numbered(TextShape(u"Hello"), 5);
  c.deck().AddSlide({shape});
  c.selection().SelectText(shape, 3, 0);
  ExpectFailure(c, u"请先选中要翻译的形状或文字", "caret");
  c.selection().SelectText(shape, 1, 5);
  shape->refusesTyped = true;
  ExpectFailure(c, u"请先选中要翻译的形状或文字", "no Shape");
  shape->refusesTyped = false;
  shape->text->refusesTyped = true;
  ExpectFailure(c, u"请先选中要翻译的形状或文字", "no TextFrame");
}

// ---- Slides ----------------------------------------------------------------------------------

TEST(CollectSelection, SlidesComeInTheOrderOfSelectionWithTheirNotes) {
  Collection c;
  c.deck().AddSlide({TextShape(u"a")}, {TextShape(u"note a")});
  c.deck().AddSlide({TextShape(u"b")});
  c.deck().AddSlide({TextShape(u"c")});
  c.selection().SelectSlides({3, 1});
  ASSERT_EQ(c.Run(), kOk);
  EXPECT_EQ(c.run.sourceTexts, (std::vector<Wide>{u"c", u"a", u"note a"}));
  EXPECT_EQ(c.run.slideRanges, (std::vector<UnitRange>{{0, 1}, {1, 3}}));
  EXPECT_EQ(c.run.slideNumbers, (std::vector<std::int32_t>{3, 1}));
  EXPECT_EQ(c.run.firstSlide, 3);
  EXPECT_EQ(c.run.locators[2].kind, UnitKind::kNotes);
  EXPECT_EQ(c.run.locators[2].onNotes, 0);
  EXPECT_EQ(c.harness.Events(),
            (std::vector<std::string>{"scan 0/2 slides", "scan 1/2 slides", "scan 2/2 slides"}));
}

TEST(CollectSelection, ASelectedSlideWithoutTextHasItsEntry) {
  Collection c;
  c.deck().AddSlide({test::PictureShape()});
  c.deck().AddSlide({TextShape(u"b")});
  c.selection().SelectSlides({1, 2});
  ASSERT_EQ(c.Run(), kOk);
  EXPECT_EQ(c.run.slideRanges, (std::vector<UnitRange>{{0, 0}, {0, 1}}));
}

TEST(CollectSelection, ASelectedBilingualCopyIsTakenLikeAnyOtherSlide) {
  Collection c;
  c.deck().AddSlide({TextShape(u"copy")}).tags[u"QUILLMARCH.BILINGUALCOPYOF"] = u"256";
  c.selection().SelectSlides({1});
  ASSERT_EQ(c.Run(), kOk);
  EXPECT_EQ(c.run.sourceTexts, (std::vector<Wide>{u"copy"}));
}

TEST(CollectSelection, ASlideThatCannotBeReadIsLeftOut) {
  for (const char* call : {"SlideRange.Item(1)", "Slide.SlideIndex", "Slide.Shapes"}) {
    Collection c;
    test::FakeSlide& first = c.deck().AddSlide({TextShape(u"a")});
    c.deck().AddSlide({TextShape(u"b")});
    c.selection().SelectSlides({1, 2});
    if (std::string(call).starts_with("Slide.")) {
      first.failing = {call};
    } else {
      c.harness.host.Fail(call);
    }
    ASSERT_EQ(c.Run(), kOk) << call;
    EXPECT_EQ(c.run.sourceTexts, (std::vector<Wide>{u"b"})) << call;
    EXPECT_EQ(c.run.slideNumbers, (std::vector<std::int32_t>{2})) << call;
  }
}

TEST(CollectSelection, WithoutARangeOfSlidesASelectionIsAskedFor) {
  for (const char* call : {"Selection.SlideRange", "SlideRange.Count"}) {
    Collection c;
    c.deck().AddSlide({TextShape(u"a")});
    c.selection().SelectSlides({1});
    c.harness.host.Fail(call);
    ExpectFailure(c, u"请先选中要翻译的形状或文字", call);
  }
  Collection c;
  c.deck().AddSlide({TextShape(u"a")});
  c.selection().SelectSlides({});
  ExpectFailure(c, u"请先选中要翻译的形状或文字", "empty");
}

// ---- The limit -------------------------------------------------------------------------------

FakeShapeRef ShapeOfParagraphs(std::size_t count, std::size_t length) {
  Wide text;
  for (std::size_t i = 0; i < count; ++i) text += (i == 0 ? u"" : u"\r") + Wide(length, u'a');
  return Numbered(TextShape(text), 5);
}

TEST(CollectSelection, TwoThousandUnitsPassAndOneMoreDoesNot) {
  for (const bool slides : {false, true}) {
    Collection c;
    const FakeShapeRef shape = ShapeOfParagraphs(2000, 1);
    c.deck().AddSlide({shape});
    c.selection().SelectShapes({shape});
    if (slides) c.selection().SelectSlides({1});
    EXPECT_EQ(c.Run(), kOk);
    EXPECT_EQ(c.run.units.size(), 2000U);
    c.Clear();
    shape->text->Replace(0, 0, u"a\r");
    ExpectFailure(c, u"选区过大，请缩小选择范围");
    EXPECT_TRUE(c.run.sourceTexts.empty());
    EXPECT_TRUE(c.run.locators.empty());
    EXPECT_TRUE(c.run.slideRanges.empty());
    EXPECT_TRUE(c.run.slideNumbers.empty());
  }
}

TEST(CollectSelection, TwoHundredThousandCharactersPassAndOneMoreDoesNot) {
  Collection c;
  const FakeShapeRef shape = ShapeOfParagraphs(2, 100000);
  c.deck().AddSlide({shape});
  c.selection().SelectShapes({shape});
  EXPECT_EQ(c.Run(), kOk);
  c.Clear();
  c.selection().SelectText(shape, 1, 200001);  // the CR within counts
  ExpectFailure(c, u"选区过大，请缩小选择范围");
  c.selection().SelectText(shape, 1, 200000);
  EXPECT_EQ(c.Run(), kOk);
}

}  // namespace

}  // namespace quillmarch::addin
