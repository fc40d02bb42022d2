// The text fit over real files: what it leaves in a shape whose text was put.
#include "model/ModelFixture.h"
#include "run/write/FitShape.h"
#include "support/LogCapture.h"

namespace quillmarch::host {

using namespace addin;
using namespace addin::test;

using testdeck::Box;
using testdeck::Group;
using testdeck::Para;
using testdeck::RunXml;

namespace {

constexpr float kSlideWidth = 960.0F;
constexpr const char* kGrows = "<a:bodyPr><a:spAutoFit/></a:bodyPr>";
constexpr const char* kShrinks = "<a:bodyPr><a:normAutofit fontScale=\"50000\"/></a:bodyPr>";
constexpr const char* kPlace =
    "<a:off x=\"127000\" y=\"254000\"/><a:ext cx=\"1270000\" cy=\"635000\"/>";
constexpr const char* kLong = "one two three four five six seven eight nine ten eleven twelve";

// A font with one width for all characters, at 20 points: eight to a line of Box(), which is 100 x
// 50 points.
std::string Fixed(const std::string& text, const std::string& size = "2000") {
  return Para(RunXml(text, "<a:rPr lang=\"en-US\" sz=\"" + size +
                               "\"><a:latin typeface=\"Courier New\"/></a:rPr>"));
}

}  // namespace

class FitOverDeck : public ModelTest {
 protected:
  // As a writeback does: the place, the text, the fit.
  void Write(const ObjectRef& shape, WideView text) {
    const ShapeRect place = ReadShapeRect(shape.get());
    ASSERT_TRUE(place.valid);
    ASSERT_EQ(Put(RangeOf(shape), text), kOk);
    FitShape(shape.get(), &place, kSlideWidth);
  }
  void Write(WideView text) { Write(Shape(1), text); }
  float SizeOf(const ObjectRef& shape) { return Single(Get(RangeOf(shape), u"Font"), u"Size"); }
};

TEST_F(FitOverDeck, AShapeThatGrewStandsWhereItStoodWithItsTextInside) {
  test::LogCapture log;
  OpenSlide(Box(Fixed("short"), kGrows));
  Write(ToWide(kLong));
  EXPECT_EQ(Single(Shape(1), u"Height"), 50.0F);
  EXPECT_LE(Single(Range(1), u"BoundHeight"), 50.0F * 1.02F + 1.0F);
  const std::string saved = Saved();
  EXPECT_NE(saved.find(kPlace), std::string::npos);
  EXPECT_NE(saved.find("<a:bodyPr><a:noAutofit/></a:bodyPr>"), std::string::npos);
  EXPECT_EQ(log.CountContaining("PptFit mode=height restored=1 shrunk=1"), 1) << log.Joined();
}

TEST_F(FitOverDeck, ATextToFitFrameEndsWithItsAutofitOffAndSizesOfItsOwn) {
  OpenSlide(Box(Fixed("short"), kShrinks));
  Write(ToWide(kLong));
  EXPECT_LT(SizeOf(Shape(1)), 20.0F);
  EXPECT_LE(Single(Range(1), u"BoundHeight"), 50.0F * 1.02F + 1.0F);
  EXPECT_NE(Saved().find("<a:bodyPr><a:noAutofit/></a:bodyPr>"), std::string::npos);
}

TEST_F(FitOverDeck, AHostWithoutTheSecondFramePutsShapeToFitBackAndNotTextToFit) {
  OpenSlide(Box(Fixed("a b"), kGrows) + Box(Fixed("a b"), kShrinks), "no-textframe2");
  // As high as one line needs it, so that the text that is put leaves the shape as it was.
  ASSERT_EQ(AutoPut(Shape(1).get(), u"Height", Variant::R4(24.0F + 7.2F)), kOk);
  Write(Shape(1), u"c d");
  Write(Shape(2), u"c d");
  EXPECT_EQ(Whole(Get(Shape(1), u"TextFrame"), u"AutoSize"), 1);
  // The first frame has no word for it that it takes back.
  EXPECT_EQ(Whole(Get(Shape(2), u"TextFrame"), u"AutoSize"), 0);
}

TEST_F(FitOverDeck, AHostWithTwoAutosizeStatesGetsBothBack) {
  OpenSlide(Box(Fixed("a b"), kGrows) + Box(Fixed("a b"), kShrinks), "two-autosize-states");
  ASSERT_EQ(AutoPut(Shape(1).get(), u"Height", Variant::R4(24.0F + 7.2F)), kOk);
  Write(Shape(1), u"c d");
  Write(Shape(2), u"c d");
  EXPECT_EQ(Whole(Get(Shape(1), u"TextFrame"), u"AutoSize"), 1);
  EXPECT_EQ(Whole(Get(Shape(1), u"TextFrame2"), u"AutoSize"), 1);
  EXPECT_EQ(Whole(Get(Shape(2), u"TextFrame2"), u"AutoSize"), 2);
  const std::string saved = Saved();
  EXPECT_NE(saved.find("<a:spAutoFit/>"), std::string::npos);
  EXPECT_NE(saved.find("<a:normAutofit"), std::string::npos);
}

TEST_F(FitOverDeck, ATextThatCanNeverFitEndsAtFivePoints) {
  OpenSlide(Box(Fixed("short")));
  Wide endless;
  for (int i = 0; i < 300; ++i) endless += ToWide(kLong) + u" ";
  Write(endless);
  EXPECT_EQ(SizeOf(Shape(1)), 5.0F);
  EXPECT_NE(Saved().find(" sz=\"500\""), std::string::npos);
}

TEST_F(FitOverDeck, ATitleOfOneLineStaysOnOneLine) {
  test::LogCapture log;
  OpenSlide(Box(Fixed("short", "3500"), "<a:bodyPr lIns=\"0\" rIns=\"0\"/>"));
  Write(u"somewhat longer");
  EXPECT_EQ(Whole(Get(Shape(1), u"TextFrame"), u"WordWrap"), 0);
  EXPECT_LE(Single(Range(1), u"BoundWidth"), 100.0F);
  EXPECT_EQ(log.CountContaining("PptFit mode=oneLine restored=0 shrunk=1"), 1) << log.Joined();
}

TEST_F(FitOverDeck, RunsOfOneParagraphAndItsNeighboursKeepTheirProportions) {
  OpenSlide(Box(Fixed("one") + "<a:p><a:endParaRPr sz=\"4000\"/></a:p>" + Fixed("12", "1000")));
  const ShapeRect place = ReadShapeRect(Shape(1).get());
  ASSERT_EQ(Put(Part(Range(1), u"Paragraphs", 1, 1), u"eins\r"), kOk);
  FitShape(Shape(1).get(), &place, kSlideWidth);
  const auto size = [&](int paragraph) {
    return Single(Get(Part(Range(1), u"Paragraphs", paragraph, 1), u"Font"), u"Size");
  };
  EXPECT_LT(size(1), 20.0F);
  EXPECT_NEAR(size(2) / size(1), 2.0F, 0.01F) << "a blank line too";
  EXPECT_NEAR(size(3) / size(1), 0.5F, 0.01F);
}

TEST_F(FitOverDeck, AShapeOfAScaledGroupIsFittedInItsOwnPlace) {
  OpenSlide(Group(Box(Fixed("short"), kGrows)));
  const ObjectRef leaf = Get(Get(Shape(1), u"GroupItems"), u"Item", {Variant::I4(1)});
  Write(leaf, ToWide(kLong + std::string(" ") + kLong));
  EXPECT_LE(Single(RangeOf(leaf), u"BoundHeight"), 100.0F * 1.02F + 1.0F);
  EXPECT_NE(Saved().find(kPlace), std::string::npos);
}

}  // namespace quillmarch::host
