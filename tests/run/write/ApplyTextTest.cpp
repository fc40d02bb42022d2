#include "run/write/ApplyText.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "support/RunHarness.h"

namespace quillmarch::addin {

namespace {

using test::FakeFont;
using test::FakeShapeRef;
using test::TextShape;

struct Shape {
  explicit Shape(const Wide& text) : shape(TextShape(text)) {}

  bool Paragraph(std::int32_t index, const Wide& text, const Wide& font = {}) {
    UnitLocator locator;
    locator.paragraphIndex = index;
    TextChange change{.from = nullptr, .to = text};
    return Succeeded(ApplyParagraph(host.ShapeObject(shape).get(), locator, change, font));
  }
  bool Characters(std::int32_t start, std::int32_t length, const Wide& text, bool cr = false) {
    UnitLocator locator;
    locator.kind = UnitKind::kCharacters;
    locator.charStart = start;
    locator.charLength = length;
    locator.endsWithCr = cr;
    TextChange change{.from = nullptr, .to = text};
    return Succeeded(ApplyCharacterRange(host.ShapeObject(shape).get(), locator, change, {}));
  }

  test::FakeHost host;
  FakeShapeRef shape;
};

TEST(FlattenTranslation, BreaksBecomeOneBlankAndTrailingBlanksGo) {
  EXPECT_EQ(FlattenTranslation(u"a\r\nb  \r\n"), u"a b");
}

TEST(FlattenTranslation, BreaksAloneGiveNothing) {
  EXPECT_EQ(FlattenTranslation(u"\r\n\v\f"), u"");
}

TEST(FlattenTranslation, LeadingBreaksGoAndLeadingBlanksStay) {
  EXPECT_EQ(FlattenTranslation(u"\r\n  a"), u"  a");
}

TEST(FlattenTranslation, ABlankBehindABreakServesAsItsBlank) {
  EXPECT_EQ(FlattenTranslation(u"a\n b"), u"a b");
  EXPECT_EQ(FlattenTranslation(u"a\v\tb"), u"a\tb");
}

TEST(FlattenTranslation, InnerBlanksStay) {
  EXPECT_EQ(FlattenTranslation(u"a  b\t c \t"), u"a  b\t c");
}

TEST(FlattenTranslation, ABlankBeforeABreakStaysBesideTheNewOne) {
  EXPECT_EQ(FlattenTranslation(u"a \nb"), u"a  b");
}

TEST(SetRangeText, NullOrEmptyIsRefused) {
  Shape s(u"a");
  EXPECT_EQ(kFail, SetRangeText(nullptr, u"b"));
  EXPECT_EQ(kFail, SetRangeText(s.host.RangeObject(s.shape->text).get(), u""));
  EXPECT_TRUE(s.host.calls.empty());
}

TEST(SetRangeText, TheLateBoundPutIsTheSecondTry) {
  Shape s(u"a");
  s.host.Fail("TextRange.Text=");
  EXPECT_EQ(kOk, SetRangeText(s.host.RangeObject(s.shape->text).get(), u"b"));
  EXPECT_EQ(s.shape->Text(), u"b");
  EXPECT_EQ(s.host.calls, (std::vector<std::string>{"TextRange.Text=", "TextRange:Text="}));
  s.host.Fail("TextRange:Text=");
  EXPECT_EQ(kHostException, SetRangeText(s.host.RangeObject(s.shape->text).get(), u"c"));
}

TEST(ApplyParagraph, TheParagraphMarkIsNotTouched) {
  Shape s(u"one\rtwo\rthree");
  EXPECT_TRUE(s.Paragraph(2, u"TWO"));
  EXPECT_EQ(s.shape->Text(), u"one\rTWO\rthree");
  EXPECT_TRUE(s.Paragraph(3, u"THREE"));
  EXPECT_EQ(s.shape->Text(), u"one\rTWO\rTHREE");
}

TEST(ApplyParagraph, TheTextIsFlattenedOnceMore) {
  Shape s(u"one\rtwo");
  EXPECT_TRUE(s.Paragraph(1, u"a\rb"));
  EXPECT_EQ(s.shape->Text(), u"a b\rtwo");
  EXPECT_FALSE(s.Paragraph(1, u"\r\n"));
}

TEST(ApplyParagraph, AParagraphOfOneMarkIsWrittenWhole) {
  Shape s(u"\rtwo");
  EXPECT_TRUE(s.Paragraph(1, u"x"));
  EXPECT_EQ(s.shape->Text(), u"xtwo");
}

TEST(ApplyParagraph, AParagraphOfLengthZeroIsAFailure) {
  Shape s(u"one\r");
  EXPECT_FALSE(s.Paragraph(2, u"x"));
  EXPECT_EQ(s.shape->Text(), u"one\r");
}

TEST(ApplyParagraph, AParagraphThatCannotBeMeasuredIsLeftAlone) {
  for (const char* call : {"TextRange.Length", "TextRange.Text", "TextRange.Characters(1,3)",
                           "Shape.TextFrame", "TextFrame.TextRange", "TextRange.Paragraphs"}) {
    Shape s(u"one\rtwo");
    s.host.Fail(call);
    EXPECT_FALSE(s.Paragraph(1, u"x")) << call;
    EXPECT_EQ(s.shape->Text(), u"one\rtwo") << call;
  }
}

TEST(ApplyParagraph, AWholeFrameBecomesOneParagraphInTheFirstRunsLook) {
  Shape s(u"年度\r计划");
  FakeFont small;
  small.size = 9.0F;
  std::fill(s.shape->text->fonts.begin(), s.shape->text->fonts.begin() + 2, small);
  UnitLocator locator;
  locator.wholeFrame = true;
  const Wide plan = u"Plan";
  TextChange change{.from = nullptr, .to = plan};
  EXPECT_EQ(kOk, ApplyParagraph(s.host.ShapeObject(s.shape).get(), locator, change, u"Arial"));
  EXPECT_EQ(s.shape->Text(), u"Plan");
  small.name = small.nameFarEast = small.nameAscii = u"Arial";
  EXPECT_EQ(s.shape->text->fonts, std::vector<FakeFont>(4, small));
}

TEST(ApplyParagraph, AWholeFrameTakesNoSnapshotAndStillGetsTheFontNames) {
  Shape s(u"年度\r计划");
  UnitLocator locator;
  locator.wholeFrame = true;
  const Wide plan = u"Plan";
  TextChange change{.from = nullptr, .to = plan};
  EXPECT_EQ(kOk, ApplyParagraph(s.host.ShapeObject(s.shape).get(), locator, change, u"Arial"));
  EXPECT_EQ(s.host.calls,
            (std::vector<std::string>{"Shape.TextFrame", "TextFrame.TextRange",
                                      "TextRange.Text=", "TextRange.Font",
                                      "Font.Name=", "Font.NameFarEast=", "Font.NameAscii="}));
}

TEST(ApplyParagraph, SnapshotTextRestoreAndNamesComeInThisOrder) {
  Shape s(u"one\rtwo");
  EXPECT_TRUE(s.Paragraph(1, u"x", u"Arial"));
  EXPECT_EQ(s.host.calls,
            (std::vector<std::string>{
                "Shape.TextFrame", "TextFrame.TextRange", "TextRange.Paragraphs(1,1)",
                "TextRange.Length", "TextRange.Text", "TextRange.Characters(1,3)",
                // snapshot
                "TextRange.Font", "Font.Color", "ColorFormat.Type", "ColorFormat.RGB",
                "ColorFormat.SchemeColor", "ColorFormat.TintAndShade", "Font.Size", "Font.Bold",
                "Font.Italic",
                // text
                "TextRange.Text=",
                // restore
                "TextRange.Font", "Font.Color", "ColorFormat.Type", "ColorFormat.RGB", "Font.Size",
                "Font.Bold", "Font.Italic",
                // names
                "TextRange.Font", "Font.Name=", "Font.NameFarEast=", "Font.NameAscii="}));
}

TEST(ApplyCharacterRange, ReplacesJustThoseCharacters) {
  Shape s(u"one two three");
  EXPECT_TRUE(s.Characters(5, 3, u"zwei"));
  EXPECT_EQ(s.shape->Text(), u"one zwei three");
}

TEST(ApplyCharacterRange, LeavesTheMarkThatTheSelectionEndsIn) {
  Shape s(u"one\rtwo");
  EXPECT_TRUE(s.Characters(1, 4, u"eins", true));
  EXPECT_EQ(s.shape->Text(), u"eins\rtwo");
}

TEST(ApplyCharacterRange, ASelectionOfOneMarkIsTakenWhole) {
  Shape s(u"a\rb");
  EXPECT_TRUE(s.Characters(2, 1, u"-", true));
  EXPECT_EQ(s.shape->Text(), u"a-b");
}

TEST(ApplyCharacterRange, NeedsAStartAndALength) {
  Shape s(u"one");
  EXPECT_FALSE(s.Characters(0, 3, u"x"));
  EXPECT_FALSE(s.Characters(1, 0, u"x"));
  EXPECT_TRUE(s.host.calls.empty());
  EXPECT_FALSE(s.Characters(1, 3, u"\n"));
  EXPECT_EQ(s.shape->Text(), u"one");
}

TEST(ApplyCharacterRange, KeepsTheLookOfTheRange) {
  Shape s(u"one two");
  s.shape->text->onReplaced = [](FakeFont& font) { font.bold = 0; };
  for (std::size_t i = 4; i < 7; ++i) s.shape->text->fonts[i].bold = -1;
  EXPECT_TRUE(s.Characters(5, 3, u"zwei"));
  EXPECT_EQ(s.shape->text->fonts[3].bold, 0);
  EXPECT_EQ(s.shape->text->fonts[4].bold, -1);
  EXPECT_EQ(s.shape->text->fonts[7].bold, -1);
}

}  // namespace

}  // namespace quillmarch::addin
