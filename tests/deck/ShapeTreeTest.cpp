// Reading the shapes of a page.
#include "host/deck/ShapeTree.h"

#include "deck/PartUnderTest.h"

namespace quillmarch::host::deck {

using testdeck::Box;
using testdeck::Group;
using testdeck::TextPara;

namespace {

std::string Named(const std::string& id) {
  return "<p:sp><p:nvSpPr><p:cNvPr id=\"" + id +
         "\" name=\"S\"/><p:cNvSpPr/><p:nvPr/></p:nvSpPr>"
         "<p:spPr/></p:sp>";
}

std::string Frame(const std::string& uri) {
  return "<p:graphicFrame><p:nvGraphicFramePr><p:cNvPr id=\"9\" name=\"F\"/><p:cNvGraphicFramePr/>"
         "<p:nvPr/></p:nvGraphicFramePr><p:xfrm/><a:graphic><a:graphicData uri=\"" +
         uri + "\"/></a:graphic></p:graphicFrame>";
}

}  // namespace

TEST(ShapeTree, EachElementIsItsKindOfShapeAndStrangersAreNone) {
  PartUnderTest slide(Named("2") + "<p:pic/><p:cxnSp/>" + Group("") +
                      Frame("http://schemas.openxmlformats.org/drawingml/2006/chart") +
                      Frame("http://schemas.microsoft.com/office/drawing/2014/chartex") +
                      Frame("http://schemas.openxmlformats.org/drawingml/2006/diagram") +
                      Frame("http://schemas.openxmlformats.org/drawingml/2006/table") +
                      Frame("http://schemas.openxmlformats.org/presentationml/2006/ole") +
                      Frame("urn:other") +
                      "<p:contentPart/><a:sp/><p:extLst/><x:sp xmlns:x=\"urn:x\"/>");
  const ShapeTree& shapes = slide.part->shapes();
  const ShapeKind expected[] = {ShapeKind::kShape,      ShapeKind::kPicture, ShapeKind::kConnector,
                                ShapeKind::kGroup,      ShapeKind::kChart,   ShapeKind::kChart,
                                ShapeKind::kDiagram,    ShapeKind::kTable,   ShapeKind::kOleObject,
                                ShapeKind::kOtherFrame, ShapeKind::kInk};
  ASSERT_EQ(shapes.Count(), std::size(expected));
  for (std::uint32_t i = 0; i < shapes.Count(); ++i) EXPECT_EQ(shapes.At(i).kind, expected[i]) << i;
  EXPECT_EQ(shapes.TopLevel().size(), std::size(expected));
}

TEST(ShapeTree, AGroupKnowsItsChildrenAndTheLeavesOfAllLevels) {
  PartUnderTest slide(Group(Named("2") + Group(Named("3") + Named("4")) + Named("5")) + Named("6"));
  const ShapeTree& shapes = slide.part->shapes();
  ASSERT_EQ(shapes.TopLevel().size(), 2U);
  const ShapeEntry& outer = shapes.At(shapes.TopLevel()[0]);
  ASSERT_EQ(shapes.Children(outer).size(), 3U);
  std::vector<std::uint32_t> leaves;
  for (const std::uint32_t leaf : shapes.Leaves(outer)) leaves.push_back(shapes.At(leaf).id);
  EXPECT_EQ(leaves, (std::vector<std::uint32_t>{2, 3, 4, 5}));
  const std::uint32_t inner = shapes.Children(outer)[1];
  EXPECT_EQ(shapes.At(inner).parent, shapes.TopLevel()[0]);
  EXPECT_EQ(shapes.At(inner).place, 1U);
  EXPECT_EQ(shapes.Leaves(shapes.At(inner)).size(), 2U);
}

TEST(ShapeTree, AnEmptyGroupHasNoChildren) {
  PartUnderTest slide(Group(""));
  const ShapeEntry& group = slide.part->shapes().At(0);
  EXPECT_TRUE(slide.part->shapes().Children(group).empty());
  EXPECT_TRUE(slide.part->shapes().Leaves(group).empty());
}

TEST(ShapeTree, OfTwoShapesWithOneIdTheLaterGetsAnother) {
  PartUnderTest slide(Named("7") + Named("7") + Named("8") + Named("7"));
  const ShapeTree& shapes = slide.part->shapes();
  EXPECT_EQ(shapes.At(0).id, 7U);
  EXPECT_EQ(shapes.At(2).id, 8U);
  EXPECT_GT(shapes.At(1).id, 8U);
  EXPECT_GT(shapes.At(3).id, 8U);
  EXPECT_NE(shapes.At(1).id, shapes.At(3).id);
}

TEST(ShapeTree, IdsThatAreNoNumbersReadAsNone) {
  PartUnderTest slide(Named("x") + Named("") + Named(" 5 "));
  EXPECT_EQ(slide.part->shapes().At(0).id, 0U);
  EXPECT_EQ(slide.part->shapes().At(1).id, 0U);
  EXPECT_EQ(slide.part->shapes().At(2).id, 5U);
}

TEST(ShapeTree, AlternativesAreOneShapeOfTheBranchThatIsUnderstood) {
  PartUnderTest slide("<mc:AlternateContent><mc:Choice Requires=\"unknown\">" + Named("2") +
                      "</mc:Choice><mc:Fallback>" + Named("3") + Named("4") +
                      "</mc:Fallback></mc:AlternateContent><mc:AlternateContent>"
                      "<mc:Choice Requires=\"a14\">" +
                      Named("5") + "</mc:Choice><mc:Fallback>" + Named("6") +
                      "</mc:Fallback></mc:AlternateContent>");
  const ShapeTree& shapes = slide.part->shapes();
  ASSERT_EQ(shapes.Count(), 2U);
  EXPECT_EQ(shapes.At(0).id, 3U);
  EXPECT_EQ(shapes.At(1).id, 5U);
}

TEST(ShapeTree, APlaceholderWithoutATypeIsAnObjectAndABadIndexIsZero) {
  PartUnderTest slide(testdeck::Placeholder("<p:ph/>", "") +
                      testdeck::Placeholder("<p:ph type=\"title\" idx=\"12\"/>", "") +
                      testdeck::Placeholder("<p:ph idx=\"-3\"/>", "") + Named("2"));
  const auto key = [&](std::uint32_t shape) {
    return PlaceholderOf(slide.part->names(), slide.part->shapes().At(shape).node);
  };
  ASSERT_TRUE(key(0).has_value());
  EXPECT_EQ(key(0)->type, "obj");
  EXPECT_EQ(key(0)->index, 0U);
  EXPECT_EQ(key(1)->type, "title");
  EXPECT_EQ(key(1)->index, 12U);
  EXPECT_EQ(key(2)->index, 0U);
  EXPECT_FALSE(key(3).has_value());
}

TEST(ShapeTree, OnlyShapesProperHaveATextBody) {
  PartUnderTest slide(Box(TextPara("a")) + "<p:pic><p:txBody><a:p/></p:txBody></p:pic>" +
                      Named("2"));
  EXPECT_NE(slide.part->ShapeText(0), nullptr);
  EXPECT_EQ(slide.part->ShapeText(1), nullptr);
  EXPECT_EQ(slide.part->ShapeText(2), nullptr) << "it has no p:txBody";
}

}  // namespace quillmarch::host::deck
