#include "run/collect/WalkShapes.h"

#include <gtest/gtest.h>

#include "support/LogCapture.h"
#include "support/RunHarness.h"

namespace quillmarch::addin {

namespace {

using test::FakeShapeRef;
using test::GroupShape;
using test::TextShape;

struct Walk {
  explicit Walk(test::FakePersonality personality = {}) : harness(std::move(personality)) {}

  void Over(test::FakeShapes shapes) {
    tree->shapes = std::move(shapes);
    ShapeList list{harness.host.ShapesObject(tree), false};
    WalkShapes(run, list, 1, ShapePath{}, UnitLocator{});
  }

  std::vector<Wide> Ids() const {
    std::vector<Wide> ids;
    for (const TextUnit& unit : run.units) ids.push_back(unit.unitId);
    return ids;
  }

  test::RunHarness harness;
  std::shared_ptr<test::FakeShapeTree> tree = std::make_shared<test::FakeShapeTree>();
  RunTexts run;
};

// `levels` groups, one in the other, with a text beside each inner group and one innermost.
FakeShapeRef NestedGroups(int levels) {
  FakeShapeRef inner = TextShape(u"leaf");
  for (int i = 0; i < levels; ++i) inner = GroupShape({TextShape(u"beside"), inner});
  return inner;
}

TEST(WalkShapes, GoesInZOrder) {
  Walk walk;
  walk.Over({TextShape(u"first"), test::PictureShape(), TextShape(u"third")});
  EXPECT_EQ(walk.Ids(), (std::vector<Wide>{u"shapes[1].p1", u"shapes[3].p1"}));
}

TEST(WalkShapes, ANullCollectionEndsTheWalk) {
  Walk walk;
  WalkShapes(walk.run, ShapeList{}, 1, ShapePath{}, UnitLocator{});
  EXPECT_TRUE(walk.run.units.empty());
}

TEST(WalkShapes, AGroupsFlatLeavesHangBelowIt) {
  Walk walk;
  walk.Over({GroupShape({TextShape(u"a"), GroupShape({TextShape(u"b"), TextShape(u"c")})})});
  EXPECT_EQ(walk.Ids(),
            (std::vector<Wide>{u"shapes[1][1].p1", u"shapes[1][2].p1", u"shapes[1][3].p1"}));
}

TEST(WalkShapes, NestedGroupsGiveDeeperPaths) {
  Walk walk({.nestedGroups = true});
  walk.Over({GroupShape({TextShape(u"a"), GroupShape({TextShape(u"b")})})});
  EXPECT_EQ(walk.Ids(), (std::vector<Wide>{u"shapes[1][1].p1", u"shapes[1][2][1].p1"}));
}

TEST(WalkShapes, GroupsDownToTheDepthLimitAreEnteredAndTheirGroupsAreNot) {
  test::LogCapture log;
  Walk walk({.nestedGroups = true});
  walk.Over({NestedGroups(33)});
  EXPECT_EQ(log.Count("PptCtrl walk shapes depth limit"), 1);
  // 31 groups have a text beside the next one; the 32nd level's group is not entered.
  EXPECT_EQ(walk.run.units.size(), 31U);
  EXPECT_EQ(walk.run.locators.back().shapePath.size(), 32U);
}

TEST(WalkShapes, AGroupAtDepth31IsEnteredAndItsTextsHavePathsOf32) {
  test::LogCapture log;
  Walk walk({.nestedGroups = true});
  walk.Over({NestedGroups(31)});
  EXPECT_EQ(log.Count("PptCtrl walk shapes depth limit"), 0);
  EXPECT_EQ(walk.run.units.size(), 32U);
  EXPECT_EQ(walk.run.locators.back().shapePath.size(), 32U);
}

TEST(WalkShapes, ADepthOutOfRangeIsRefusedWithALogLine) {
  test::LogCapture log;
  Walk walk;
  walk.tree->shapes = {TextShape(u"a")};
  ShapePath path;
  for (const std::int32_t depth : {-1, 33}) {
    path.depth = depth;
    WalkShapes(walk.run, {walk.harness.host.ShapesObject(walk.tree), false}, 1, path,
               UnitLocator{});
  }
  EXPECT_EQ(log.Count("PptCtrl walk shapes path unusable"), 2);
  EXPECT_TRUE(walk.run.units.empty());
}

TEST(WalkShapes, AShapeWithoutReadableTypeIsAGroupFromTwoItemsOn) {
  Walk walk;
  FakeShapeRef two = TextShape(u"own text");
  two->failing = {"Shape:Type"};
  two->children = {TextShape(u"a"), TextShape(u"b")};
  walk.Over({two});
  EXPECT_EQ(walk.Ids(), (std::vector<Wide>{u"shapes[1][1].p1", u"shapes[1][2].p1"}));
}

TEST(WalkShapes, AShapeWithoutReadableTypeAndOneItemIsALeaf) {
  Walk walk;
  FakeShapeRef one = TextShape(u"own text");
  one->failing = {"Shape:Type"};
  one->children = {TextShape(u"a")};
  walk.Over({one});
  EXPECT_EQ(walk.Ids(), (std::vector<Wide>{u"shapes[1].p1"}));
}

TEST(WalkShapes, AGroupOfOneIsAGroup) {
  Walk walk;
  walk.Over({GroupShape({TextShape(u"a")})});
  EXPECT_EQ(walk.Ids(), (std::vector<Wide>{u"shapes[1][1].p1"}));
}

TEST(WalkShapes, AGroupWhoseItemsCannotBeReadCostsOnlyItself) {
  for (const char* call : {"Shape:GroupItems", "GroupShapes"}) {
    Walk walk;
    FakeShapeRef group = GroupShape({TextShape(u"a")});
    group->failing = {call};
    walk.Over({group, TextShape(u"after")});
    EXPECT_EQ(walk.Ids(), (std::vector<Wide>{u"shapes[2].p1"})) << call;
  }
}

TEST(WalkShapes, AnItemThatFailsByNameComesByTheTypedRoad) {
  Walk walk;
  walk.harness.host.Fail("Shapes:Item");
  walk.Over({TextShape(u"a")});
  EXPECT_EQ(walk.run.units.size(), 1U);
}

TEST(WalkShapes, AnItemThatFailsOnBothRoadsIsPassedOver) {
  Walk walk;
  walk.harness.host.Fail("Shapes:Item(1)");
  walk.harness.host.Fail("Shapes.Item(1)");
  walk.Over({TextShape(u"a"), TextShape(u"b")});
  EXPECT_EQ(walk.Ids(), (std::vector<Wide>{u"shapes[2].p1"}));
}

TEST(CollectTable, EveryCellIsReadRowByRow) {
  Walk walk;
  walk.Over({test::TableShape({{u"a", u"1"}, {u"c", u"d"}})});
  ASSERT_EQ(walk.run.units.size(), 3U);
  EXPECT_EQ(walk.run.sourceTexts, (std::vector<Wide>{u"a", u"c", u"d"}));
  EXPECT_EQ(walk.run.locators[1].kind, UnitKind::kCell);
  EXPECT_EQ(walk.run.locators[1].row, 2);
  EXPECT_EQ(walk.run.locators[1].column, 1);
  EXPECT_EQ(walk.Ids()[2], u"shapes[1].p1");
}

TEST(CollectTable, AMergedCellComesUpForEachOfItsPositions) {
  Walk walk;
  FakeShapeRef table = test::TableShape({{u"wide", u""}});
  table->table->cells[0][1] = table->table->cells[0][0];
  walk.Over({table});
  EXPECT_EQ(walk.run.sourceTexts, (std::vector<Wide>{u"wide", u"wide"}));
}

TEST(CollectTable, ACellThatFailsIsPassedOver) {
  for (const char* call : {"Table:Cell(1,1)", "Cell:Shape"}) {
    Walk walk;
    walk.harness.host.Fail(call, 1);
    walk.Over({test::TableShape({{u"a", u"b"}})});
    EXPECT_EQ(walk.run.sourceTexts, (std::vector<Wide>{u"b"})) << call;
  }
}

TEST(CollectTable, ATableThatCannotBeReadEndsQuietly) {
  for (const char* call :
       {"Shape.Table", "Table.Rows", "Table.Columns", "Rows.Count", "Columns.Count"}) {
    Walk walk;
    walk.harness.host.Fail(call);
    walk.Over({test::TableShape({{u"a"}}), TextShape(u"after")});
    EXPECT_EQ(walk.run.sourceTexts, (std::vector<Wide>{u"after"})) << call;
  }
}

TEST(CollectTable, ATableOnTheNotesPageIsReadAsCellsThatKnowTheirPage) {
  Walk walk;
  walk.tree->shapes = {test::TableShape({{u"a"}})};
  UnitLocator notes;
  notes.kind = UnitKind::kNotes;
  WalkShapes(walk.run, {walk.harness.host.ShapesObject(walk.tree), false}, 1, ShapePath{}, notes);
  ASSERT_EQ(walk.run.locators.size(), 1U);
  EXPECT_EQ(walk.run.locators[0].kind, UnitKind::kCell);
  EXPECT_NE(walk.run.locators[0].onNotes, 0);
}

}  // namespace

}  // namespace quillmarch::addin
