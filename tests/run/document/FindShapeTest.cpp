#include "run/document/FindShape.h"

#include <gtest/gtest.h>

#include "support/LogCapture.h"
#include "support/RunHarness.h"

namespace quillmarch::addin {

namespace {

using test::FakeShapeRef;
using test::GroupShape;
using test::TextShape;

FakeShapeRef Numbered(FakeShapeRef shape, std::int32_t id) {
  shape->id = id;
  return shape;
}

struct Search {
  explicit Search(test::FakePersonality personality = {}) : harness(std::move(personality)) {}

  bool For(const FakeShapeRef& target) {
    path.clear();
    const ObjectRef object = harness.host.ShapeObject(target);
    return FindShape({harness.host.ShapesObject(tree), false}, object.get(), path, row, column);
  }

  test::RunHarness harness;
  std::shared_ptr<test::FakeShapeTree> tree = std::make_shared<test::FakeShapeTree>();
  StoredPath path;
  std::int32_t row = -1;
  std::int32_t column = -1;
};

TEST(FindShape, FindsAShapeOnTheTopLevel) {
  Search search;
  const FakeShapeRef target = Numbered(TextShape(u"b"), 2);
  search.tree->shapes = {Numbered(TextShape(u"a"), 1), target};
  EXPECT_TRUE(search.For(target));
  EXPECT_EQ(search.path, (StoredPath{2}));
  EXPECT_EQ(search.row, 0);
  EXPECT_EQ(search.column, 0);
}

TEST(FindShape, TwoShapesOfOneGroupHavePathsWithOnePrefix) {
  Search search;
  const FakeShapeRef first = Numbered(TextShape(u"a"), 3);
  const FakeShapeRef second = Numbered(TextShape(u"b"), 4);
  search.tree->shapes = {Numbered(TextShape(u"x"), 1), Numbered(GroupShape({first, second}), 2)};
  EXPECT_TRUE(search.For(first));
  EXPECT_EQ(search.path, (StoredPath{2, 1}));
  EXPECT_TRUE(search.For(second));
  EXPECT_EQ(search.path, (StoredPath{2, 2}));
}

TEST(FindShape, ACellsShapeIsFoundByItsTableRowAndColumn) {
  Search search;
  const FakeShapeRef table = Numbered(test::TableShape({{u"a", u"b"}, {u"c", u"d"}}), 9);
  std::int32_t id = 10;
  for (auto& cells : table->table->cells) {
    for (auto& cell : cells) cell->id = id++;
  }
  search.tree->shapes = {table};
  EXPECT_TRUE(search.For(table->table->cells[1][0]));
  EXPECT_EQ(search.path, (StoredPath{1}));
  EXPECT_EQ(search.row, 2);
  EXPECT_EQ(search.column, 1);
}

TEST(FindShape, AMissLeavesThePathAsItWas) {
  Search search;
  search.tree->shapes = {Numbered(GroupShape({Numbered(TextShape(u"a"), 2)}), 1)};
  EXPECT_FALSE(search.For(Numbered(TextShape(u"b"), 77)));
  EXPECT_TRUE(search.path.empty());
}

TEST(FindShape, GroupsBelowTheDepthLimitAreNotSearched) {
  test::LogCapture log;
  Search search({.nestedGroups = true});
  const FakeShapeRef target = Numbered(TextShape(u"deep"), 1000);
  FakeShapeRef inner = target;
  for (std::int32_t i = 1; i <= 33; ++i) inner = Numbered(GroupShape({inner}), i);
  search.tree->shapes = {inner};
  EXPECT_FALSE(search.For(target));
  EXPECT_TRUE(log.Has("PptCtrl find shape depth limit"));
  search.tree->shapes = inner->children;
  EXPECT_TRUE(search.For(target));
}

TEST(SameShape, OneIdentityIsEnough) {
  test::RunHarness harness;
  const ObjectRef shape = harness.host.ShapeObject(TextShape(u"a"));
  EXPECT_TRUE(SameShape(shape.get(), shape.get()));
  EXPECT_FALSE(SameShape(shape.get(), nullptr));
  EXPECT_FALSE(SameShape(nullptr, shape.get()));
}

TEST(SameShape, EqualIdsAreSameAlsoOnDifferentSlides) {
  test::RunHarness harness;
  const ObjectRef a = harness.host.ShapeObject(Numbered(TextShape(u"a"), 5));
  const ObjectRef b = harness.host.ShapeObject(Numbered(TextShape(u"b"), 5));
  const ObjectRef c = harness.host.ShapeObject(Numbered(TextShape(u"c"), 6));
  EXPECT_TRUE(SameShape(a.get(), b.get()));
  EXPECT_FALSE(SameShape(a.get(), c.get()));  // although the names are equal
}

TEST(SameShape, NamesDecideWhereAnIdIsMissing) {
  test::RunHarness harness;
  const FakeShapeRef a = Numbered(TextShape(u"a"), 0);
  const FakeShapeRef b = Numbered(TextShape(u"b"), 7);
  a->name = u"Title 1";
  b->name = u"Title 1";
  const auto same = [&] {
    return SameShape(harness.host.ShapeObject(a).get(), harness.host.ShapeObject(b).get());
  };
  EXPECT_TRUE(same());
  b->name = u"title 1";
  EXPECT_FALSE(same());
  a->name.clear();
  b->name.clear();
  EXPECT_FALSE(same());
}

}  // namespace

}  // namespace quillmarch::addin
