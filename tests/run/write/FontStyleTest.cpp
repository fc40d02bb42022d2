#include "run/write/FontStyle.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "support/FakeHost.h"
#include "support/LogCapture.h"

namespace quillmarch::addin {

namespace {

using test::FakeFont;

// One text whose look a test changes between snapshot and restore.
struct Look {
  explicit Look(const FakeFont& font = {}) : text(test::MakeText(u"ab", font)) {
    range = host.RangeObject(text);
  }

  FakeFont& Each() { return text->fonts[0]; }
  void All(const FakeFont& font) { text->fonts.assign(2, font); }
  void Take() { TakeFontSnapshot(range.get(), snapshot); }
  void Restore() {
    host.calls.clear();
    RestoreFontSnapshot(range.get(), snapshot);
  }
  bool Put(const std::string& call) const {
    return std::find(host.calls.begin(), host.calls.end(), call) != host.calls.end();
  }

  test::FakeHost host;
  std::shared_ptr<test::FakeText> text;
  ObjectRef range;
  FontSnapshot snapshot;
};

FakeFont Themed(std::int32_t scheme, float tint) {
  FakeFont font;
  font.colorType = 2;
  font.scheme = scheme;
  font.tint = tint;
  font.rgb = 0x112233;
  return font;
}

TEST(FontStyle, AThemeColourThatBecameRgbGetsSchemeAndTintBack) {
  test::LogCapture log;
  Look look(Themed(6, 0.25F));
  look.Take();
  FakeFont plain;
  plain.rgb = 0x000102;
  look.All(plain);
  look.Restore();
  EXPECT_EQ(look.Each().colorType, 2);
  EXPECT_EQ(look.Each().scheme, 6);
  EXPECT_FLOAT_EQ(look.Each().tint, 0.25F);
  EXPECT_FALSE(look.Put("ColorFormat.RGB="));
  // 0x000102 is 258 and 0x112233 is 1122867.
  EXPECT_TRUE(log.Has("PptCtrl font color restored before=0x258 after=0x1122867"));
}

TEST(FontStyle, AParagraphThatKeptItsSchemeTypeIsNotTouched) {
  test::LogCapture log;
  Look look(Themed(6, 0.25F));
  look.Take();
  look.Restore();
  EXPECT_FALSE(look.Put("ColorFormat.SchemeColor="));
  EXPECT_FALSE(look.Put("ColorFormat.RGB="));
  EXPECT_TRUE(log.lines().empty());
}

TEST(FontStyle, AKeptSchemeTypeOfAnotherRgbGetsTheRgbBack) {
  Look look(Themed(6, 0.0F));
  look.Take();
  FakeFont other = Themed(7, 0.0F);
  other.rgb = 0x999999;
  look.All(other);
  look.Restore();
  EXPECT_TRUE(look.Put("ColorFormat.RGB="));
  EXPECT_EQ(look.Each().rgb, 0x112233);
}

TEST(FontStyle, ASchemeColourOfZeroFallsToTheRgb) {
  Look look(Themed(0, 0.0F));
  look.Take();
  look.All(FakeFont{});
  look.Restore();
  EXPECT_FALSE(look.Put("ColorFormat.SchemeColor="));
  EXPECT_EQ(look.Each().rgb, 0x112233);
}

TEST(FontStyle, APlainColourThatChangedIsPutBack) {
  FakeFont red;
  red.rgb = 0x0000FF;
  Look look(red);
  look.Take();
  look.All(FakeFont{});
  look.Restore();
  EXPECT_EQ(look.Each().rgb, 0x0000FF);
}

TEST(FontStyle, AMixedColourIsNeverRestored) {
  test::LogCapture log;
  Look look;
  look.text->fonts[1].rgb = 0x0000FF;
  look.Take();
  EXPECT_EQ(look.snapshot.colorType, -2);
  EXPECT_FALSE(look.snapshot.hasRgb);
  look.All(FakeFont{});
  look.Restore();
  EXPECT_FALSE(look.Put("ColorFormat.RGB="));
  EXPECT_TRUE(log.lines().empty());
}

TEST(FontStyle, AResultOfMixedColourIsLeftAlone) {
  FakeFont red;
  red.rgb = 0x0000FF;
  Look look(red);
  look.Take();
  look.text->fonts[1].rgb = 0x00FF00;
  look.Restore();
  EXPECT_FALSE(look.Put("ColorFormat.RGB="));
}

TEST(FontStyle, AnUnreadableColourNowIsAllOnesInTheLogAndZeroInTheComparison) {
  test::LogCapture log;
  FakeFont red;
  red.rgb = 0x0000FF;
  Look look(red);
  look.Take();
  look.host.Fail("ColorFormat.RGB");
  look.Restore();
  EXPECT_TRUE(look.Put("ColorFormat.RGB="));
  EXPECT_TRUE(log.Has("PptCtrl font color restored before=0x16777215 after=0x255"));
}

TEST(FontStyle, ASizeDifferenceOfAHundredthIsNotCorrected) {
  FakeFont font;
  font.size = 20.0F;
  Look look(font);
  look.Take();
  font.size = 20.0F - 0.01F;
  look.All(font);
  look.Restore();
  EXPECT_FALSE(look.Put("Font.Size="));
  font.size = 20.0F + 0.01F;
  look.All(font);
  look.Restore();
  EXPECT_FALSE(look.Put("Font.Size="));
  font.size = 20.02F;
  look.All(font);
  look.Restore();
  EXPECT_FLOAT_EQ(look.Each().size, 20.0F);
}

TEST(FontStyle, AMixedSizeIsNotRestored) {
  Look look;
  look.text->fonts[1].size = 40.0F;
  look.Take();
  EXPECT_FALSE(look.snapshot.hasSize);
  look.All(FakeFont{});
  look.Restore();
  EXPECT_FALSE(look.Put("Font.Size="));
}

TEST(FontStyle, BoldAndItalicComeBackOnlyWhereTheyDiffer) {
  FakeFont strong;
  strong.bold = -1;
  strong.italic = -1;
  Look look(strong);
  look.Take();
  look.Restore();
  EXPECT_FALSE(look.Put("Font.Bold="));
  EXPECT_FALSE(look.Put("Font.Italic="));
  look.All(FakeFont{});
  look.Restore();
  EXPECT_EQ(look.Each().bold, -1);
  EXPECT_EQ(look.Each().italic, -1);
}

TEST(FontStyle, MixedBoldIsNotRestored) {
  Look look;
  look.text->fonts[1].bold = -1;
  look.Take();
  EXPECT_EQ(look.snapshot.bold, -2);
  look.All(FakeFont{});
  look.Restore();
  EXPECT_FALSE(look.Put("Font.Bold="));
}

TEST(FontStyle, AFailedReadLeavesItsFieldAtTheInitialValue) {
  FakeFont strong;
  strong.bold = -1;
  strong.italic = -1;
  Look look(strong);
  look.host.Fail("Font.Bold");
  look.host.Fail("ColorFormat.TintAndShade");
  look.Take();
  EXPECT_TRUE(look.snapshot.valid);
  EXPECT_EQ(look.snapshot.bold, -2);
  EXPECT_EQ(look.snapshot.italic, -1);
  EXPECT_FALSE(look.snapshot.hasTint);
  EXPECT_TRUE(look.snapshot.hasRgb);
}

TEST(FontStyle, WithoutAFontOrARangeNothingIsDone) {
  Look look;
  look.snapshot.valid = true;
  look.host.Fail("TextRange.Font");
  look.Take();
  EXPECT_FALSE(look.snapshot.valid);
  look.Restore();
  EXPECT_TRUE(look.host.calls.empty());
  TakeFontSnapshot(nullptr, look.snapshot);
  EXPECT_FALSE(look.snapshot.valid);
  look.snapshot.valid = true;
  RestoreFontSnapshot(nullptr, look.snapshot);
}

TEST(FontStyle, TheTargetFontGoesIntoAllThreeNames) {
  Look look;
  ApplyTargetFontName(look.range.get(), u"Arial");
  EXPECT_EQ(look.Each().name, u"Arial");
  EXPECT_EQ(look.Each().nameFarEast, u"Arial");
  EXPECT_EQ(look.Each().nameAscii, u"Arial");
}

TEST(FontStyle, AnEmptyTargetFontWritesNoName) {
  Look look;
  ApplyTargetFontName(look.range.get(), u"");
  EXPECT_TRUE(look.host.calls.empty());
}

}  // namespace

}  // namespace quillmarch::addin
