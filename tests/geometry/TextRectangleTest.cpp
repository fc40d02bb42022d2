#include "host/geometry/TextRectangle.h"

#include <gtest/gtest.h>

#include <numbers>
#include <string>

#include "deck/DeckBuilder.h"
#include "host/geometry/ShapeGuides.h"

namespace quillmarch::host {

namespace {

constexpr double kNear = 0.15;

struct Edges {
  double left, top, right, bottom;
};

// A shape with this content of its p:spPr.
class Shape {
 public:
  explicit Shape(const std::string& properties)
      : bytes_("<p:sp" + testdeck::kNamespaces + "><p:spPr>" + properties + "</p:spPr></p:sp>"),
        names_(bytes_) {
    document_.load_string(bytes_.c_str());
  }
  deck::ShapeBox Room(double width, double height) const {
    return model::TextRectangle(names_, document_.document_element(), width, height);
  }
  void ExpectRoom(double width, double height, const Edges& wanted) const {
    const deck::ShapeBox room = Room(width, height);
    EXPECT_NEAR(room.left, wanted.left, kNear);
    EXPECT_NEAR(room.top, wanted.top, kNear);
    EXPECT_NEAR(room.left + room.width, wanted.right, kNear);
    EXPECT_NEAR(room.top + room.height, wanted.bottom, kNear);
  }

 private:
  std::string bytes_;
  deck::XmlNames names_;
  pugi::xml_document document_;
};

std::string Preset(const std::string& word, const std::string& adjustments = "") {
  return "<a:prstGeom prst=\"" + word + "\"><a:avLst>" + adjustments + "</a:avLst></a:prstGeom>";
}
std::string Guide(const std::string& name, const std::string& formula) {
  return "<a:gd name=\"" + name + "\" fmla=\"" + formula + "\"/>";
}
std::string Custom(const std::string& guides, const std::string& rectangle) {
  return "<a:custGeom><a:avLst/><a:gdLst>" + guides + "</a:gdLst>" + rectangle +
         "<a:pathLst/></a:custGeom>";
}

double ValueOf(const std::string& formula) {
  const std::string bytes =
      "<a:gdLst" + testdeck::kNamespaces + ">" + Guide("x", formula) + "</a:gdLst>";
  pugi::xml_document document;
  document.load_string(bytes.c_str());
  model::ShapeGuides guides(400, 200);
  guides.Read(deck::XmlNames(bytes), document.document_element());
  return guides.Value("x").value_or(-1e9);
}

}  // namespace

TEST(TextRectangle, RareShapesKeepTheirTextInsideTheirOutline) {
  const struct {
    const char* word;
    Edges wide, tall;  // in a box of 200 x 120 points, and of 120 x 200
  } rows[] = {{"nonIsoscelesTrapezoid", {20.0, 12.0, 180.0, 120.0}, {20.0, 33.3, 100.0, 200.0}},
              {"pie", {29.3, 17.6, 170.7, 102.4}, {17.6, 29.3, 102.4, 170.7}},
              {"chord", {29.3, 17.6, 170.7, 102.4}, {17.6, 29.3, 102.4, 170.7}},
              {"arc", {100.0, 0.0, 200.0, 60.0}, {60.0, 0.0, 120.0, 100.0}},
              {"blockArc", {0.0, 0.0, 200.0, 60.0}, {0.0, 0.0, 120.0, 100.0}},
              {"bentUpArrow", {0.0, 90.0, 185.0, 120.0}, {0.0, 170.0, 105.0, 200.0}},
              {"leftUpArrow", {15.0, 75.0, 170.0, 105.0}, {15.0, 155.0, 90.0, 185.0}},
              {"leftRightUpArrow", {15.0, 75.0, 185.0, 105.0}, {15.0, 155.0, 105.0, 185.0}},
              {"quadArrow", {13.5, 46.5, 186.5, 73.5}, {13.5, 86.5, 106.5, 113.5}},
              {"quadArrowCallout", {51.9, 31.1, 148.1, 88.9}, {31.1, 51.9, 88.9, 148.1}},
              {"circularArrow", {34.6, 22.9, 165.4, 97.1}, {22.9, 34.6, 97.1, 165.4}},
              {"sun", {64.6, 38.8, 135.4, 81.2}, {38.8, 64.6, 81.2, 135.4}},
              {"moon", {29.3, 28.7, 100.0, 91.3}, {17.6, 47.9, 60.0, 152.1}},
              {"corner", {0.0, 60.0, 200.0, 120.0}, {0.0, 0.0, 60.0, 200.0}},
              {"diagStripe", {0.0, 0.0, 150.0, 90.0}, {0.0, 0.0, 90.0, 150.0}},
              {"leftBracket", {58.6, 2.9, 200.0, 117.1}, {35.1, 2.9, 120.0, 197.1}},
              {"rightBracket", {0.0, 2.9, 141.4, 117.1}, {0.0, 2.9, 84.9, 197.1}},
              {"leftBrace", {129.3, 2.9, 200.0, 117.1}, {77.6, 2.9, 120.0, 197.1}},
              {"rightBrace", {0.0, 2.9, 70.7, 117.1}, {0.0, 2.9, 42.4, 197.1}},
              {"bracketPair", {5.9, 5.9, 194.1, 114.1}, {5.9, 5.9, 114.1, 194.1}},
              {"bracePair", {12.9, 12.9, 187.1, 117.1}, {12.9, 12.9, 107.1, 197.1}},
              {"ellipseRibbon", {50.0, 30.0, 150.0, 116.25}, {30.0, 50.0, 90.0, 193.75}},
              {"ellipseRibbon2", {50.0, 3.75, 150.0, 90.0}, {30.0, 6.25, 90.0, 150.0}},
              {"leftRightRibbon", {60.0, 20.0, 140.0, 100.0}, {56.25, 33.3, 63.75, 166.7}},
              {"gear6", {41.8, 30.4, 158.2, 89.6}, {30.2, 42.2, 89.8, 157.8}},
              {"gear9", {34.2, 28.1, 165.8, 89.8}, {24.1, 41.5, 95.9, 154.6}},
              {"mathPlus", {26.5, 45.9, 173.5, 74.1}, {15.9, 85.9, 104.1, 114.1}},
              {"mathMinus", {26.5, 45.9, 173.5, 74.1}, {15.9, 76.5, 104.1, 123.5}},
              {"mathMultiply", {40.8, 16.7, 159.2, 103.3}, {16.7, 40.8, 103.3, 159.2}},
              {"mathDivide", {26.5, 45.9, 173.5, 74.1}, {15.9, 76.5, 104.1, 123.5}},
              {"mathEqual", {26.5, 24.7, 173.5, 95.3}, {15.9, 41.2, 104.1, 158.8}},
              {"mathNotEqual", {26.5, 24.7, 173.5, 95.3}, {15.9, 41.2, 104.1, 158.8}},
              {"cornerTabs", {11.7, 11.7, 188.3, 108.3}, {11.7, 11.7, 108.3, 188.3}}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.word);
    const Shape shape(Preset(row.word));
    shape.ExpectRoom(200, 120, row.wide);
    shape.ExpectRoom(120, 200, row.tall);
  }
}

TEST(TextRectangle, AdjustmentsOfRareShapesMoveIt) {
  Shape(Preset("moon", Guide("adj", "val 25000"))).ExpectRoom(200, 120, {14.6, 37.5, 50.0, 82.5});
  // Half a turn from the left over the bottom.
  Shape(Preset("arc", Guide("adj1", "val 0") + Guide("adj2", "val 10800000")))
      .ExpectRoom(200, 120, {0.0, 60.0, 200.0, 120.0});
}

TEST(TextRectangle, ItReachesIntoAnArrowsHeadAsFarAsTheShaftIsThin) {
  const std::string thin = Guide("adj1", "val 20000") + Guide("adj2", "val 30000");
  Shape(Preset("rightArrow", thin)).ExpectRoom(200, 120, {0.0, 48.0, 192.8, 72.0});
  Shape(Preset("upArrow", thin)).ExpectRoom(200, 120, {80.0, 7.2, 120.0, 120.0});
  Shape(Preset("notchedRightArrow", thin)).ExpectRoom(200, 120, {7.2, 48.0, 192.8, 72.0});
}

TEST(TextRectangle, ASlantedWaveLeavesBothItsSidesFree) {
  for (const char* slant : {"val 5000", "val -5000"}) {
    Shape(Preset("wave", Guide("adj2", slant))).ExpectRoom(200, 120, {20.0, 30.0, 180.0, 90.0});
  }
}

TEST(TextRectangle, AnOutlineOfItsOwnNamesItByGuides) {
  const std::string guides = Guide("in", "*/ w 1 8") + Guide("low", "+- b 0 in");
  Shape(Custom(guides, "<a:rect l=\"in\" t=\"127000\" r=\"r\" b=\"low\"/>"))
      .ExpectRoom(200, 120, {25.0, 10.0, 200.0, 95.0});
}

TEST(TextRectangle, AnOutlineThatNamesNoneOrAnUnknownOneLeavesTheWholeBox) {
  const Edges whole{0.0, 0.0, 200.0, 120.0};
  Shape(Custom("", "")).ExpectRoom(200, 120, whole);
  Shape(Custom("", "<a:rect l=\"l\" t=\"nowhere\" r=\"r\" b=\"b\"/>")).ExpectRoom(200, 120, whole);
  Shape(Custom(Guide("x", "^^ 1 2"), "<a:rect l=\"x\" t=\"t\" r=\"r\" b=\"b\"/>"))
      .ExpectRoom(200, 120, whole);
  Shape("").ExpectRoom(200, 120, whole);
}

TEST(TextRectangle, ARoomIsNeverNegative) {
  const deck::ShapeBox room =
      Shape(Custom("", "<a:rect l=\"r\" t=\"b\" r=\"l\" b=\"t\"/>")).Room(200, 120);
  EXPECT_EQ(room.width, 0.0);
  EXPECT_EQ(room.height, 0.0);
}

TEST(TextRectangle, ATurnedBoxEnclosesItsTurnedCorners) {
  const deck::ShapeBox area{10, 20, 100, 50};
  const deck::ShapeBox line{10, 20, 40, 12};
  const auto expect = [&](double degrees, const deck::ShapeBox& wanted) {
    const deck::ShapeBox box = model::TurnedAround(line, area, degrees * std::numbers::pi / 180.0);
    EXPECT_NEAR(box.left, wanted.left, 1e-9) << degrees;
    EXPECT_NEAR(box.top, wanted.top, 1e-9) << degrees;
    EXPECT_NEAR(box.width, wanted.width, 1e-9) << degrees;
    EXPECT_NEAR(box.height, wanted.height, 1e-9) << degrees;
  };
  expect(0, line);
  expect(180, {70, 58, 40, 12});
  expect(90, {73, -5, 12, 40});
}

TEST(ShapeGuides, EveryFormulaOfTheFormatIsKnown) {
  constexpr double kHalfRight = 45.0 * 60000.0;
  EXPECT_EQ(ValueOf("val 7"), 7.0);
  EXPECT_EQ(ValueOf("*/ 6 7 2"), 21.0);
  EXPECT_EQ(ValueOf("*/ 6 7 0"), 0.0);
  EXPECT_EQ(ValueOf("+- w 1 vc"), 301.0);
  EXPECT_EQ(ValueOf("+/ wd4 hd2 ssd8"), 8.0);
  EXPECT_EQ(ValueOf("?: 1 2 3"), 2.0);
  EXPECT_EQ(ValueOf("?: 0 2 3"), 3.0);
  EXPECT_EQ(ValueOf("abs -5"), 5.0);
  EXPECT_EQ(ValueOf("min ss ls"), 200.0);
  EXPECT_EQ(ValueOf("max ss ls"), 400.0);
  EXPECT_EQ(ValueOf("pin 1 0 5"), 1.0);
  EXPECT_EQ(ValueOf("pin 1 3 5"), 3.0);
  EXPECT_EQ(ValueOf("pin 1 9 5"), 5.0);
  EXPECT_EQ(ValueOf("sqrt 9"), 3.0);
  EXPECT_EQ(ValueOf("mod 2 3 6"), 7.0);
  EXPECT_NEAR(ValueOf("sin 10 cd12"), 5.0, 1e-9);
  EXPECT_NEAR(ValueOf("cos 10 cd2"), -10.0, 1e-9);
  EXPECT_NEAR(ValueOf("tan 10 cd8"), 10.0, 1e-9);
  EXPECT_NEAR(ValueOf("at2 3 3"), kHalfRight, 1e-6);
  EXPECT_NEAR(ValueOf("cat2 10 3 4"), 6.0, 1e-9);
  EXPECT_NEAR(ValueOf("sat2 10 3 4"), 8.0, 1e-9);
  EXPECT_EQ(ValueOf("val 3cd4"), 6.0 * kHalfRight);
  EXPECT_EQ(ValueOf("val 3cd8"), 3.0 * kHalfRight);
  EXPECT_EQ(ValueOf("val 5cd8"), 5.0 * kHalfRight);
  EXPECT_EQ(ValueOf("val 7cd8"), 7.0 * kHalfRight);
  EXPECT_EQ(ValueOf("val nan"), -1e9);
}

TEST(ShapeGuides, ALaterGuideWinsOverAnEarlierOfItsName) {
  const std::string bytes = "<a:gdLst" + testdeck::kNamespaces + ">" + Guide("a", "val 1") +
                            Guide("b", "+- a 1 0") + Guide("a", "+- b 1 0") + "</a:gdLst>";
  pugi::xml_document document;
  document.load_string(bytes.c_str());
  model::ShapeGuides guides(1, 1);
  guides.Read(deck::XmlNames(bytes), document.document_element());
  EXPECT_EQ(guides.Value("b"), 2.0);
  EXPECT_EQ(guides.Value("a"), 3.0);
}

}  // namespace quillmarch::host
