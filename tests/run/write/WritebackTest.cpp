#include "run/write/Writeback.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "support/LogCapture.h"
#include "support/RunHarness.h"

namespace quillmarch::addin {

namespace {

using test::FakeFont;
using test::FakeShapeRef;
using test::TextShape;

// A run's state between collection and writeback, filled by hand.
struct Write {
  Write() {
    document.app = harness.host.Application();
    document.windowContext = harness.params.windowContext;
  }

  void Unit(const UnitLocator& locator, const Wide& source, const Wide& translation,
            const Wide& id = u"u") {
    TextUnit unit;
    unit.unitId = id;
    run.units.push_back(unit);
    run.sourceTexts.push_back(source);
    translations.push_back(translation);
    run.locators.push_back(locator);
    writes.reached.push_back(false);
  }

  void Slide() {
    run.slideRanges = {{0, run.units.size()}};
    run.slideNumbers = {1};
    harness.host.calls.clear();
    WriteSlide(task, 0);
  }

  bool Called(const std::string& call) const {
    const auto& calls = harness.host.calls;
    return std::find(calls.begin(), calls.end(), call) != calls.end();
  }

  // The place is read before the write and by the fit.
  auto PlaceReads() const {
    return std::count(harness.host.calls.begin(), harness.host.calls.end(), "Shape.Left");
  }

  test::RunHarness harness;
  RunDocument document;
  RunTexts run;
  std::vector<Wide> translations;
  RunParams params;
  RunCopies copies;
  RunWrites writes;
  WriteTask task{document, run, translations, params, copies, writes};
};

UnitLocator At(StoredPath path, std::int32_t paragraph = 1, UnitKind kind = UnitKind::kShape) {
  UnitLocator locator;
  locator.kind = kind;
  locator.slideIndex = 1;
  locator.shapePath = std::move(path);
  locator.paragraphIndex = paragraph;
  return locator;
}

UnitLocator Cell(StoredPath path, std::int32_t row, std::int32_t column) {
  UnitLocator locator = At(std::move(path), 1, UnitKind::kCell);
  locator.row = row;
  locator.column = column;
  return locator;
}

UnitLocator Characters(StoredPath path, std::int32_t start, std::int32_t length) {
  UnitLocator locator = At(std::move(path), 0, UnitKind::kCharacters);
  locator.charStart = start;
  locator.charLength = length;
  return locator;
}

TEST(WriteSlide, AShapeOfThreeParagraphsIsWrittenFromTheLastToTheFirst) {
  Write w;
  const FakeShapeRef shape = TextShape(u"a\rb\rc");
  w.harness.deck().AddSlide({shape});
  w.Unit(At({1}, 2), u"b", u"BB");
  w.Unit(At({1}, 1), u"a", u"AA");
  w.Unit(At({1}, 3), u"c", u"CC");
  w.Slide();
  EXPECT_EQ(shape->Text(), u"AA\rBB\rCC");
  EXPECT_EQ(w.writes.appliedCount, 3);
  std::vector<std::string> order;
  for (const std::string& call : w.harness.host.calls) {
    if (call.starts_with("TextRange.Paragraphs")) order.push_back(call);
  }
  EXPECT_EQ(order,
            (std::vector<std::string>{"TextRange.Paragraphs(3,1)", "TextRange.Paragraphs(2,1)",
                                      "TextRange.Paragraphs(1,1)"}));
}

TEST(WriteSlide, EmptyAndUnchangedTranslationsAreNeitherWrittenNorCountedNorFailures) {
  Write w;
  const FakeShapeRef shape = TextShape(u"a\rb\rc");
  w.harness.deck().AddSlide({shape});
  w.Unit(At({1}, 1), u"a", u"");
  w.Unit(At({1}, 2), u"b", u"b\r\n");
  w.Unit(At({1}, 3), u"c", u"\r\n");
  w.Slide();
  EXPECT_EQ(shape->Text(), u"a\rb\rc");
  EXPECT_EQ(w.writes.appliedCount, 0);
  EXPECT_TRUE(w.writes.applyError.empty());
}

TEST(WriteSlide, ARepairedUnitIsNeverWritten) {
  Write w;
  const FakeShapeRef shape = TextShape(u"a\rb");
  w.harness.deck().AddSlide({shape});
  w.Unit(At({1}, 1), u"a", u"AA");
  w.Unit(At({1}, 2), u"b", u"BB");
  w.writes.repairedUnits = {true};  // an index beyond its size counts as not set
  w.Slide();
  EXPECT_EQ(shape->Text(), u"a\rBB");
}

TEST(WriteSlide, TwoShapesThatAreNotFoundWriteOneLocateLineAndNameEveryUnit) {
  test::LogCapture log;
  Write w;
  w.harness.deck().AddSlide({TextShape(u"a")});
  w.Unit(At({8}, 1), u"a", u"AA", u"shapes[8].p1");
  w.Unit(At({8}, 2), u"b", u"BB", u"shapes[8].p2");
  w.Unit(At({9}, 1), u"c", u"CC", u"shapes[9].p1");
  w.Slide();
  EXPECT_EQ(log.CountContaining("PptCtrl apply locate fail"), 1);
  EXPECT_TRUE(log.Has("PptCtrl apply locate fail stage=shape slide=1 where=shapes[8].p1"));
  EXPECT_EQ(log.CountContaining("PptCtrl writeback FAIL: "), 3);
  EXPECT_EQ(w.writes.applyError, u"shapes[8].p1; shapes[8].p2; shapes[9].p1");
}

TEST(WriteSlide, ANotesShapeThatIsNotFoundHasItsOwnStage) {
  test::LogCapture log;
  Write w;
  w.harness.deck().AddSlide({TextShape(u"a")});
  w.Unit(At({3}, 1, UnitKind::kNotes), u"a", u"AA", u"shapes[3].p1");
  w.Slide();
  EXPECT_TRUE(log.Has("PptCtrl apply locate fail stage=notesShape slide=1 where=shapes[3].p1"));
}

TEST(WriteSlide, AUnitWithoutARecordIsNamedByAQuestionMark) {
  test::LogCapture log;
  Write w;
  w.harness.deck().AddSlide({});
  w.Unit(At({3}), u"a", u"AA");
  w.run.units.clear();
  w.run.slideRanges = {{0, 1}};
  w.run.slideNumbers = {1};
  WriteSlide(w.task, 0);
  EXPECT_TRUE(log.Has("PptCtrl apply locate fail stage=shape slide=1 where=?"));
  EXPECT_TRUE(log.Has("PptCtrl writeback FAIL: ?"));
}

TEST(WriteSlide, APathOf33LevelsIsNotFound) {
  Write w;
  w.harness.deck().AddSlide({TextShape(u"a")});
  w.Unit(At(StoredPath(33, 1)), u"a", u"AA", u"deep");
  w.Slide();
  EXPECT_EQ(w.writes.applyError, u"deep");
}

TEST(WriteSlide, ATablesCellsAreGroupsOfTheirOwnAndAreNeverFitted) {
  Write w;
  const FakeShapeRef table = test::TableShape({{u"a", u"b"}});
  w.harness.deck().AddSlide({table});
  w.Unit(Cell({1}, 1, 1), u"a", u"AA");
  w.Unit(Cell({1}, 1, 2), u"b", u"BB");
  w.Slide();
  EXPECT_EQ(table->table->cells[0][0]->Text(), u"AA");
  EXPECT_EQ(table->table->cells[0][1]->Text(), u"BB");
  EXPECT_TRUE(w.Called("Table:Cell(1,1)"));
  EXPECT_TRUE(w.Called("Table:Cell(1,2)"));
  EXPECT_FALSE(w.Called("Shape.Left"));
}

TEST(WriteSlide, ACellThatCannotBeReachedFailsItsUnitsAlone) {
  for (const char* call : {"Shape.Table", "Table:Cell(1,1)", "Cell:Shape"}) {
    Write w;
    const FakeShapeRef table = test::TableShape({{u"a", u"b"}});
    w.harness.deck().AddSlide({table});
    w.Unit(Cell({1}, 1, 1), u"a", u"AA", u"first");
    w.Unit(Cell({1}, 1, 2), u"b", u"BB", u"second");
    w.harness.host.Fail(call, 1);
    w.Slide();
    EXPECT_EQ(w.writes.applyError, u"first") << call;
    EXPECT_EQ(table->table->cells[0][1]->Text(), u"BB") << call;
  }
}

TEST(WriteSlide, NotesAreWrittenOnTheNotesPageAndReadNoGeometry) {
  Write w;
  const FakeShapeRef note = TextShape(u"note");
  const FakeShapeRef shape = TextShape(u"a");
  w.harness.deck().AddSlide({shape}, {note});
  w.Unit(At({1}, 1, UnitKind::kNotes), u"note", u"NOTE");
  w.Slide();
  EXPECT_EQ(note->Text(), u"NOTE");
  EXPECT_EQ(shape->Text(), u"a");
  EXPECT_FALSE(w.Called("Shape.Left"));
}

TEST(WriteSlide, ACharacterRangeIsWrittenFromTheLastStartToTheFirst) {
  Write w;
  const FakeShapeRef shape = TextShape(u"one two three");
  w.harness.deck().AddSlide({shape});
  w.Unit(Characters({1}, 1, 3), u"one", u"eins!");
  w.Unit(Characters({1}, 9, 5), u"three", u"drei");
  w.Unit(Characters({1}, 5, 3), u"two", u"zwei");
  w.Slide();
  EXPECT_EQ(shape->Text(), u"eins! zwei drei");
  EXPECT_TRUE(w.Called("Shape.Left"));
}

TEST(WriteSlide, ACharacterRangeInACellGoesThroughTheTable) {
  Write w;
  const FakeShapeRef table = test::TableShape({{u"x", u"one two"}});
  w.harness.deck().AddSlide({table});
  UnitLocator locator = Characters({1}, 5, 3);
  locator.row = 1;
  locator.column = 2;
  w.Unit(locator, u"two", u"zwei");
  w.Slide();
  EXPECT_EQ(table->table->cells[0][1]->Text(), u"one zwei");
  EXPECT_FALSE(w.Called("Shape.Left"));
}

TEST(WriteSlide, ACharacterRangeOnTheNotesReadsNoGeometry) {
  Write w;
  const FakeShapeRef note = TextShape(u"one two");
  w.harness.deck().AddSlide({}, {note});
  UnitLocator locator = Characters({1}, 5, 3);
  locator.onNotes = 1;
  w.Unit(locator, u"two", u"zwei");
  w.Slide();
  EXPECT_EQ(note->Text(), u"one zwei");
  EXPECT_FALSE(w.Called("Shape.Left"));
}

TEST(WriteSlide, WithATargetSizeNoGeometryIsRead) {
  Write w;
  w.params.useTargetFontSize = true;
  w.harness.deck().AddSlide({TextShape(u"a")});
  w.Unit(At({1}), u"a", u"AA");
  w.Slide();
  EXPECT_EQ(w.writes.appliedCount, 1);
  for (const char* call : {"Shape.Left", "Shape.Top", "Shape.Width", "Shape.Height"}) {
    EXPECT_FALSE(w.Called(call)) << call;
  }
}

TEST(WriteSlide, AShapeIsFittedOnceWhenAUnitOfItWasWritten) {
  Write w;
  w.harness.deck().AddSlide({TextShape(u"a\rb\rc")});
  w.Unit(At({1}, 1), u"a", u"AA");
  w.Unit(At({1}, 2), u"b", u"b");
  w.Unit(At({1}, 3), u"c", u"CC");
  w.Slide();
  EXPECT_EQ(w.PlaceReads(), 2);
}

TEST(WriteSlide, AShapeThatKeepsItsTextIsNotFitted) {
  Write w;
  const FakeShapeRef refusing = TextShape(u"b");
  refusing->text->refusesPut = true;
  w.harness.deck().AddSlide({TextShape(u"a"), refusing});
  w.Unit(At({1}), u"a", u"a");
  w.Unit(At({2}), u"b", u"BB");
  w.Slide();
  EXPECT_EQ(w.PlaceReads(), 2) << "once for each shape, before its write";
}

TEST(WriteSlide, UnitsOfOtherEntriesStayUnwritten) {
  Write w;
  const FakeShapeRef first = TextShape(u"a");
  const FakeShapeRef second = TextShape(u"b");
  w.harness.deck().AddSlide({first, second});
  w.Unit(At({1}), u"a", u"AA");
  w.Unit(At({2}), u"b", u"BB");
  w.run.slideRanges = {{0, 1}, {1, 2}};
  w.run.slideNumbers = {1, 1};
  WriteSlide(w.task, 1);
  EXPECT_EQ(first->Text(), u"a");
  EXPECT_EQ(second->Text(), u"BB");
}

TEST(WriteSlide, UnitsBeyondTheTranslationsAreNotReached) {
  Write w;
  const FakeShapeRef shape = TextShape(u"a\rb");
  w.harness.deck().AddSlide({shape});
  w.Unit(At({1}, 1), u"a", u"AA");
  w.Unit(At({1}, 2), u"b", u"BB");
  w.translations.pop_back();
  w.Slide();
  EXPECT_EQ(shape->Text(), u"AA\rb");
  EXPECT_EQ(w.writes.appliedCount, 1);
  EXPECT_TRUE(w.writes.applyError.empty());
}

TEST(WriteSlide, AFailedPutIsNamedAndTheOtherParagraphsAreWritten) {
  Write w;
  const FakeShapeRef broken = TextShape(u"a");
  broken->text->refusesPut = true;
  const FakeShapeRef sound = TextShape(u"b");
  w.harness.deck().AddSlide({broken, sound});
  w.Unit(At({1}), u"a", u"AA", u"shapes[1].p1");
  w.Unit(At({2}), u"b", u"BB", u"shapes[2].p1");
  w.Slide();
  EXPECT_EQ(w.writes.applyError, u"shapes[1].p1");
  EXPECT_EQ(broken->Text(), u"a");
  EXPECT_EQ(sound->Text(), u"BB");
  EXPECT_EQ(w.writes.appliedCount, 1);
}

TEST(WriteSlide, WithoutAPresentationTheErrorSaysSo) {
  Write w;
  w.harness.deck().AddSlide({TextShape(u"a")});
  w.Unit(At({1}), u"a", u"AA");
  w.harness.host.Fail("DocumentWindow.Presentation");
  w.Slide();
  EXPECT_EQ(w.writes.applyError, u"无法定位当前演示文稿");
}

TEST(WriteSlide, WithoutSlidesNothingIsSaid) {
  Write w;
  w.harness.deck().AddSlide({TextShape(u"a")});
  w.Unit(At({1}), u"a", u"AA");
  w.harness.host.Fail("Presentation.Slides");
  w.Slide();
  EXPECT_TRUE(w.writes.applyError.empty());
  EXPECT_FALSE(w.writes.reached[0]);
}

TEST(WriteSlide, ChartAndSmartArtUnitsAreDispatchedAndNamedAsNotWritten) {
  for (const std::int32_t kind : {3, 4, 6, 7, 8, 9, 10, 11}) {
    Write w;
    const FakeShapeRef shape = TextShape(u"a");
    w.harness.deck().AddSlide({shape});
    w.Unit(At({1}, 0, static_cast<UnitKind>(kind)), u"a", u"AA", u"slot");
    w.Unit(At({1}, 0, static_cast<UnitKind>(kind)), u"same", u"same", u"unchanged");
    w.Slide();
    EXPECT_EQ(w.writes.applyError, u"slot") << kind;
    EXPECT_EQ(shape->Text(), u"a") << kind;
    EXPECT_EQ(w.writes.appliedCount, 0) << kind;
  }
}

TEST(WriteSlide, ABilingualRunWithoutItsCopyFailsItsUnitsAtTheCopySlideStage) {
  test::LogCapture log;
  Write w;
  w.copies.bilingual = true;
  const FakeShapeRef shape = TextShape(u"a");
  w.harness.deck().AddSlide({shape});
  w.Unit(At({1}), u"a", u"AA", u"shapes[1].p1");
  w.Slide();
  EXPECT_TRUE(log.Has("PptCtrl apply locate fail stage=copySlide slide=1 where=shapes[1].p1"));
  EXPECT_EQ(shape->Text(), u"a");
}

TEST(WriteSlide, OneUnitWrittenAsksTheHostForThisAndNoMore) {
  Write w;
  const FakeShapeRef shape = TextShape(u"Plan");
  w.harness.deck().AddSlide({shape});
  w.Unit(At({1}), u"Plan", u"Plano");
  w.params.targetFont = u"Arial";
  ASSERT_NE(w.document.app.get(), nullptr);
  w.Slide();  // resolves window and presentation
  shape->text->text = u"Plan";
  w.Slide();
  EXPECT_EQ(w.harness.host.calls, (std::vector<std::string>{"Presentation.Slides",
                                                            "Presentation.PageSetup",
                                                            "PageSetup.SlideWidth",
                                                            "Slides.Item(1)",
                                                            "Slide.Shapes",
                                                            "Shapes.Item(1)",
                                                            "Shape.Left",
                                                            "Shape.Top",
                                                            "Shape.Width",
                                                            "Shape.Height",
                                                            "Shape.TextFrame",
                                                            "TextFrame.TextRange",
                                                            "TextRange.Paragraphs(1,1)",
                                                            "TextRange.Length",
                                                            "TextRange.Text",
                                                            "TextRange.Font",
                                                            "Font.Color",
                                                            "ColorFormat.Type",
                                                            "ColorFormat.RGB",
                                                            "ColorFormat.SchemeColor",
                                                            "ColorFormat.TintAndShade",
                                                            "Font.Size",
                                                            "Font.Bold",
                                                            "Font.Italic",
                                                            "TextRange.Text=",
                                                            "TextRange.Font",
                                                            "Font.Color",
                                                            "ColorFormat.Type",
                                                            "ColorFormat.RGB",
                                                            "Font.Size",
                                                            "Font.Bold",
                                                            "Font.Italic",
                                                            "TextRange.Font",
                                                            "Font.Name=",
                                                            "Font.NameFarEast=",
                                                            "Font.NameAscii=",
                                                            "Shape.TextFrame",
                                                            "TextFrame.TextRange",
                                                            "Shape.Left",
                                                            "Shape.Top",
                                                            "Shape.Width",
                                                            "Shape.Height",
                                                            "Shape.Width",
                                                            "Shape.Height"}));
}

TEST(RecordApplyFailure, PartsTheNamesBySemicolonAndLogsEach) {
  test::LogCapture log;
  Wide failures;
  RecordApplyFailure(failures, u"a");
  RecordApplyFailure(failures, u"b");
  EXPECT_EQ(failures, u"a; b");
  EXPECT_EQ(log.lines(),
            (std::vector<std::string>{"PptCtrl writeback FAIL: a", "PptCtrl writeback FAIL: b"}));
}

TEST(SameApplyTarget, CellsDifferByRowAndColumnAndShapesDoNot) {
  EXPECT_TRUE(SameApplyTarget(At({1}, 1), At({1}, 2)));
  EXPECT_FALSE(SameApplyTarget(At({1}), At({1, 1})));
  EXPECT_FALSE(SameApplyTarget(At({1}), At({1}, 1, UnitKind::kNotes)));
  EXPECT_FALSE(SameApplyTarget(Cell({1}, 1, 1), Cell({1}, 1, 2)));
  EXPECT_FALSE(SameApplyTarget(Cell({1}, 1, 1), Cell({1}, 2, 1)));
  UnitLocator a = Characters({1}, 1, 1);
  UnitLocator b = Characters({1}, 9, 1);
  EXPECT_TRUE(SameApplyTarget(a, b));
  b.row = 1;
  EXPECT_FALSE(SameApplyTarget(a, b));
  b = a;
  b.onNotes = 1;
  EXPECT_FALSE(SameApplyTarget(a, b));
  b = a;
  b.slideIndex = 2;
  EXPECT_FALSE(SameApplyTarget(a, b));
  a = At({1});
  b = At({1});
  b.row = 3;  // counts for cells and characters alone
  EXPECT_TRUE(SameApplyTarget(a, b));
}

TEST(WriteSlide, ACellWithoutAShapeNamesAllUnitsOfItsGroup) {
  Write w;
  const FakeShapeRef table = test::TableShape({{u"a\rb", u"c"}});
  w.harness.deck().AddSlide({table});
  UnitLocator second = Cell({1}, 1, 1);
  second.paragraphIndex = 2;
  w.Unit(Cell({1}, 1, 1), u"a", u"AA", u"one");
  w.Unit(second, u"b", u"BB", u"two");
  w.Unit(Cell({1}, 1, 2), u"c", u"CC", u"three");
  w.harness.host.Fail("Cell:Shape", 1);
  w.Slide();
  EXPECT_EQ(w.writes.applyError, u"one; two");
  EXPECT_EQ(w.writes.failures.at(0).cause, FailCause::kNotFound);
  EXPECT_EQ(table->table->cells[0][0]->Text(), u"a\rb");
  EXPECT_EQ(table->table->cells[0][1]->Text(), u"CC");
}

}  // namespace

}  // namespace quillmarch::addin
