#include "model/ModelFixture.h"

namespace quillmarch::host {

using testdeck::Box;
using testdeck::Cell;
using testdeck::Group;
using testdeck::Para;
using testdeck::Placeholder;
using testdeck::RunXml;
using testdeck::TableFrame;
using testdeck::TextPara;

class Shapes : public ModelTest {
 protected:
  ObjectRef CellShape(int row, int column) {
    return Get(Get(Get(Shape(1), u"Table"), u"Cell", {Variant::I4(row), Variant::I4(column)}),
               u"Shape");
  }
};

TEST_F(Shapes, AGroupListsTheLeavesOfAllLevels) {
  OpenSlide(Group(Box(TextPara("a")) + Group(Box(TextPara("b")) + Box(TextPara("c"))) +
                  Box(TextPara("d"))));
  EXPECT_EQ(Whole(Shape(1), u"Type"), 6);
  const ObjectRef items = Get(Shape(1), u"GroupItems");
  ASSERT_EQ(Whole(items, u"Count"), 4);
  Wide all;
  for (int i = 1; i <= 4; ++i) {
    all += TextOf(RangeOf(Get(items, u"Item", {Variant::I4(i)})), u"Text");
  }
  EXPECT_EQ(all, u"abcd");
}

TEST_F(Shapes, TheNestedPersonalityListsEachLevelForItself) {
  OpenSlide(Group(Box(TextPara("a")) + Group(Box(TextPara("b")))), "nested");
  const ObjectRef items = Get(Shape(1), u"GroupItems");
  ASSERT_EQ(Whole(items, u"Count"), 2);
  const ObjectRef inner = Get(items, u"Item", {Variant::I4(2)});
  EXPECT_EQ(Whole(inner, u"Type"), 6);
  EXPECT_EQ(TextOf(RangeOf(Get(Get(inner, u"GroupItems"), u"Item", {Variant::I4(1)})), u"Text"),
            u"b");
}

TEST_F(Shapes, AShapeOfAGroupIsPlacedInSlideCoordinates) {
  OpenSlide(Group(Box(TextPara("a"))));
  const ObjectRef leaf = Get(Get(Shape(1), u"GroupItems"), u"Item", {Variant::I4(1)});
  EXPECT_EQ(Single(leaf, u"Left"), 120.0f);  // 100 + 10 x 2
  EXPECT_EQ(Single(leaf, u"Top"), 140.0f);
  EXPECT_EQ(Single(leaf, u"Width"), 200.0f);
  EXPECT_EQ(Single(leaf, u"Height"), 100.0f);
}

TEST_F(Shapes, GroupsNestedToTheLimitAreWalkedWithoutHarm) {
  std::string shapes = Box(TextPara("deep"));
  for (int i = 0; i < 980; ++i) shapes = "<p:grpSp><p:nvGrpSpPr/>" + shapes + "</p:grpSp>";
  OpenSlide(shapes);
  const ObjectRef items = Get(Shape(1), u"GroupItems");
  ASSERT_EQ(Whole(items, u"Count"), 1);
  const ObjectRef leaf = Get(items, u"Item", {Variant::I4(1)});
  EXPECT_EQ(TextOf(RangeOf(leaf), u"Text"), u"deep");
  EXPECT_EQ(Single(leaf, u"Left"), 10.0f);
}

TEST_F(Shapes, APlaceholderIsOneWhateverItHolds) {
  OpenSlide(Placeholder("<p:ph type=\"title\"/>", "<a:p/>"));
  EXPECT_EQ(Whole(Shape(1), u"Type"), 14);
  EXPECT_EQ(Whole(Get(Shape(1), u"PlaceholderFormat"), u"Type"), 1);
  EXPECT_EQ(Whole(Shape(1), u"HasTextFrame"), -1);
  EXPECT_EQ(Whole(Get(Shape(1), u"TextFrame"), u"HasText"), 0);
}

TEST_F(Shapes, FlagsAreThirtyTwoBitMinusOneAndZero) {
  OpenSlide(TableFrame("<a:tbl/>") + Box(TextPara("x")));
  EXPECT_EQ(Whole(Shape(1), u"HasTable"), -1);
  EXPECT_EQ(Whole(Shape(1), u"HasTextFrame"), 0);
  EXPECT_EQ(Whole(Shape(1), u"Type"), 19);
  EXPECT_EQ(Whole(Shape(2), u"HasTable"), 0);
  EXPECT_EQ(Whole(Shape(2), u"HasChart"), 0);
  EXPECT_EQ(Whole(Shape(2), u"HasSmartArt"), 0);
  EXPECT_EQ(Whole(Shape(2), u"Type"), 17);
}

TEST_F(Shapes, AlternativesCountAsOneShapeByTheBranchThatIsUnderstood) {
  const std::string other = "<mc:Choice xmlns:zz=\"http://example.org/unknown\" Requires=\"zz\">" +
                            Box(TextPara("unknown")) + "</mc:Choice>";
  const std::string known =
      "<mc:Choice Requires=\"a14\">" + Box(TextPara("known")) + "</mc:Choice>";
  const std::string fallback = "<mc:Fallback>" + Box(TextPara("fallback")) + "</mc:Fallback>";
  OpenSlide("<mc:AlternateContent>" + other + known + fallback + "</mc:AlternateContent>" +
            "<mc:AlternateContent>" + other + fallback + "</mc:AlternateContent>" +
            Box(TextPara("last")));
  EXPECT_EQ(Whole(Get(Slide(1), u"Shapes"), u"Count"), 3);
  EXPECT_EQ(TextOf(Range(1), u"Text"), u"known");
  EXPECT_EQ(TextOf(Range(2), u"Text"), u"fallback");
  EXPECT_EQ(TextOf(Range(3), u"Text"), u"last");
}

TEST_F(Shapes, AnUnknownIndexOrNameFails) {
  OpenSlide(Box(TextPara("x")));
  const ObjectRef shapes = Get(Slide(1), u"Shapes");
  for (const int index : {0, 2, -1, 2147483647}) {
    EXPECT_TRUE(Failed(Code(shapes, u"Item", {Variant::I4(index)}))) << index;
  }
  EXPECT_TRUE(Failed(Code(shapes, u"Item", {Variant::Text(u"nobody")})));
  EXPECT_TRUE(Failed(Code(shapes, u"Item")));
  const Wide name = TextOf(Shape(1), u"Name");
  EXPECT_EQ(TextOf(Get(shapes, u"Item", {Variant::Text(name)}), u"Name"), name);
  EXPECT_TRUE(Failed(Code(Shape(1), u"GroupItems")));
  EXPECT_EQ(Code(Shape(1), u"NoSuchMember"), kUnknownName);
}

TEST_F(Shapes, EveryPositionOfAMergedCellShowsAndWritesTheOrigin) {
  OpenSlide(
      TableFrame("<a:tbl><a:tblGrid><a:gridCol w=\"12700\"/><a:gridCol w=\"25400\"/></a:tblGrid>"
                 "<a:tr h=\"12700\">" +
                 Cell("origin", " rowSpan=\"2\" gridSpan=\"2\"") +
                 Cell("", " rowSpan=\"2\" hMerge=\"1\"") + "</a:tr><a:tr h=\"38100\">" +
                 Cell("", " gridSpan=\"2\" vMerge=\"1\"") + Cell("", " hMerge=\"1\" vMerge=\"1\"") +
                 "</a:tr><a:tr h=\"1\">" + Cell("own") + Cell("too") + "</a:tr></a:tbl>"));
  const ObjectRef table = Get(Shape(1), u"Table");
  EXPECT_EQ(Whole(Get(table, u"Rows"), u"Count"), 3);
  EXPECT_EQ(Whole(Get(table, u"Columns"), u"Count"), 2);
  for (int row = 1; row <= 2; ++row) {
    for (int column = 1; column <= 2; ++column) {
      EXPECT_EQ(TextOf(RangeOf(CellShape(row, column)), u"Text"), u"origin");
      EXPECT_EQ(Whole(Get(table, u"Cell", {Variant::I4(row), Variant::I4(column)}), u"Merged"), -1);
    }
  }
  EXPECT_EQ(TextOf(RangeOf(CellShape(3, 2)), u"Text"), u"too");
  EXPECT_EQ(Whole(Get(table, u"Cell", {Variant::I4(3), Variant::I4(1)}), u"Merged"), 0);
  ASSERT_EQ(Put(RangeOf(CellShape(2, 2)), u"changed"), kOk);
  EXPECT_EQ(TextOf(RangeOf(CellShape(1, 1)), u"Text"), u"changed");
  EXPECT_EQ(Single(CellShape(2, 2), u"Width"), 2.0f);
  EXPECT_EQ(Single(CellShape(2, 2), u"Top"), 1.0f);
  std::string expected = slideXml;
  expected.replace(expected.find("origin"), 6, "changed");
  EXPECT_EQ(Saved(), expected);
}

TEST_F(Shapes, RaggedAndAbsurdTablesFailCellByCell) {
  OpenSlide(TableFrame("<a:tbl><a:tr>" + Cell("a", " gridSpan=\"-5\" rowSpan=\"4000000000\"") +
                       Cell("b") + Cell("c") + "</a:tr><a:tr>" + Cell("d", " hMerge=\"1\"") +
                       "</a:tr><a:tr/></a:tbl>"));
  const ObjectRef table = Get(Shape(1), u"Table");
  EXPECT_EQ(Whole(Get(table, u"Rows"), u"Count"), 3);
  EXPECT_EQ(Whole(Get(table, u"Columns"), u"Count"), 3);
  EXPECT_EQ(TextOf(RangeOf(CellShape(2, 1)), u"Text"), u"d");
  EXPECT_TRUE(Failed(Code(table, u"Cell", {Variant::I4(2), Variant::I4(2)})));
  EXPECT_TRUE(Failed(Code(table, u"Cell", {Variant::I4(3), Variant::I4(1)})));
  EXPECT_TRUE(Failed(Code(table, u"Cell", {Variant::I4(0), Variant::I4(1)})));
  EXPECT_TRUE(Failed(Code(table, u"Cell", {Variant::I4(1)})));
}

TEST_F(Shapes, AShapeWithoutATextBodyHasAFrameWithoutText) {
  OpenSlide(
      "<p:sp><p:nvSpPr><p:cNvPr id=\"4294967295\" name=\"bare\"/></p:nvSpPr></p:sp>"
      "<p:sp/><p:pic><p:nvPicPr><p:cNvPr id=\"x\"/></p:nvPicPr></p:pic>");
  EXPECT_EQ(Whole(Shape(1), u"HasTextFrame"), -1);
  EXPECT_EQ(Whole(Get(Shape(1), u"TextFrame"), u"HasText"), 0);
  EXPECT_EQ(TextOf(Range(1), u"Text"), u"");
  EXPECT_TRUE(Failed(Put(Range(1), u"text")));
  EXPECT_EQ(Whole(Shape(1), u"Id"), -1);
  EXPECT_EQ(TextOf(Shape(2), u"Name"), u"");
  EXPECT_EQ(Whole(Shape(3), u"Id"), 0);
  EXPECT_EQ(Whole(Shape(3), u"HasTextFrame"), 0);
  EXPECT_TRUE(Failed(Code(Shape(3), u"TextFrame")));
}

TEST_F(Shapes, TwoReferencesToAShapeAreTwoObjectsWithOneId) {
  OpenSlide(Box(TextPara("x")));
  const ObjectRef first = Shape(1);
  const ObjectRef second = Shape(1);
  EXPECT_NE(first->Identity(), second->Identity());
  EXPECT_EQ(Whole(first, u"Id"), Whole(second, u"Id"));
}

TEST_F(Shapes, OtherPrefixesThanTheUsualOnesAreReadByNamespace) {
  testdeck::DeckSource deck;
  deck.slides.push_back(
      {"<sld xmlns=\"http://schemas.openxmlformats.org/presentationml/2006/main\" "
       "xmlns:d=\"http://schemas.openxmlformats.org/drawingml/2006/main\"><cSld><spTree>"
       "<sp><nvSpPr><cNvPr id=\"2\" name=\"n\"/><cNvSpPr/><nvPr/></nvSpPr><spPr/><txBody>"
       "<d:bodyPr/><d:p><d:r><d:t>old</d:t></d:r></d:p></txBody></sp></spTree></cSld></sld>",
       {},
       {},
       {}});
  OpenDeck(deck);
  EXPECT_EQ(TextOf(Range(1), u"Text"), u"old");
  ASSERT_EQ(Put(Range(1), u"new\vline"), kOk);
  EXPECT_NE(Saved().find("<d:p><d:r><d:t>new</d:t></d:r><d:br/><d:r><d:t>line</d:t></d:r></d:p>"),
            std::string::npos);
}

TEST_F(Shapes, APrefixBoundTwiceIsResolvedWhereItIsUsed) {
  OpenSlide(
      "<p:sp xmlns:a=\"http://example.org/not-drawing\"><p:nvSpPr><p:cNvPr id=\"2\" "
      "name=\"n\"/></p:nvSpPr><p:txBody><a:p><a:r><a:t>not text</a:t></a:r></a:p></p:txBody>"
      "</p:sp>" +
      Box(TextPara("text")));
  EXPECT_EQ(TextOf(Range(1), u"Text"), u"");
  EXPECT_EQ(TextOf(Range(2), u"Text"), u"text");
}

}  // namespace quillmarch::host
