#include "run/document/ShapePath.h"

#include <gtest/gtest.h>

#include "support/LogCapture.h"

namespace quillmarch::addin {

namespace {

ShapePath PathOf(std::initializer_list<std::int32_t> indexes) {
  ShapePath path;
  for (const std::int32_t index : indexes) AppendIndex(path, index);
  return path;
}

TEST(ShapePath, TheTextFormHasEachIndexInBrackets) {
  EXPECT_EQ(PathText(PathOf({3, 2})), u"shapes[3][2]");
  EXPECT_EQ(PathText(StoredPath{3, 2}), u"shapes[3][2]");
}

TEST(ShapePath, DepthZeroGivesTheWordAlone) {
  EXPECT_EQ(PathText(ShapePath{}), u"shapes");
  EXPECT_EQ(PathText(StoredPath{}), u"shapes");
}

TEST(ShapePath, ADepthOutOfRangeIsClampedInTheText) {
  ShapePath path;
  path.depth = -4;
  EXPECT_EQ(PathText(path), u"shapes");
  path.slots.fill(1);
  path.depth = 99;
  Wide all = u"shapes";
  for (int i = 0; i < 32; ++i) all += u"[1]";
  EXPECT_EQ(PathText(path), all);
}

TEST(ShapePath, AppendingStopsAtDepth32) {
  ShapePath path;
  for (std::int32_t i = 1; i <= 40; ++i) AppendIndex(path, i);
  EXPECT_EQ(path.depth, 32);
  EXPECT_EQ(path.slots.back(), 32);
}

TEST(ShapePath, AChildsPathIsTheParentsAndItsIndex) {
  test::LogCapture log;
  const ShapePath parent = PathOf({4});
  ShapePath child = ChildPath(parent, 7);
  CheckLeafPath(child, parent, 7);
  EXPECT_EQ(Stored(child), (StoredPath{4, 7}));
  EXPECT_TRUE(log.lines().empty());
}

TEST(ShapePath, ALeafsPathThatDoesNotEndInItsIndexIsRebuiltAndLogged) {
  test::LogCapture log;
  const ShapePath parent = PathOf({4});
  ShapePath child = PathOf({4, 9});
  CheckLeafPath(child, parent, 7);
  EXPECT_EQ(Stored(child), (StoredPath{4, 7}));
  EXPECT_TRUE(log.Has("PptCtrl shape path rebuilt before leaf index=7"));
}

TEST(ShapePath, AChildOfAFullPathIsRebuiltAndLogged) {
  test::LogCapture log;
  ShapePath parent;
  for (std::int32_t i = 0; i < 32; ++i) AppendIndex(parent, 1);
  const ShapePath child = ChildPath(parent, 5);
  EXPECT_EQ(child.depth, 32);
  EXPECT_TRUE(log.Has("PptCtrl shape path rebuilt index=5 depth=32"));
}

}  // namespace

}  // namespace quillmarch::addin
