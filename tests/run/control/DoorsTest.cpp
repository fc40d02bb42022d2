#include <gtest/gtest.h>

#include "run/collect/LeafCollector.h"
#include "run/document/BilingualSlides.h"
#include "support/RunHarness.h"

namespace quillmarch::addin {

namespace {

struct State {
  test::RunHarness harness;
  RunCopies copies;
  RunTexts texts;
};

TEST(LocateCopySlide, InARunThatIsNotBilingualTheSlideIsItsOwnTarget) {
  State s;
  std::int32_t index = 0;
  EXPECT_TRUE(LocateCopySlide(s.copies, nullptr, 4, index));
  EXPECT_EQ(index, 4);
}

TEST(LocateCopySlide, WithoutACopyABilingualRunHasNoTarget) {
  State s;
  s.copies.bilingual = true;
  std::int32_t index = 0;
  EXPECT_FALSE(LocateCopySlide(s.copies, nullptr, 4, index));
}

TEST(RemoveBilingualCopies, WithoutCopiesNoneRemainAndNoCallIsMade) {
  State s;
  EXPECT_EQ(RemoveBilingualCopies(s.copies), 0);
  EXPECT_TRUE(s.harness.host.calls.empty());
}

TEST(CollectChartOrSmartArt, IsOfferedEveryLeafAndAsksTheHostNothing) {
  State s;
  const ObjectRef shape = s.harness.host.ShapeObject(test::PictureShape());
  EXPECT_FALSE(CollectChartOrSmartArt(s.texts, shape.get(), 1, ShapePath{}, UnitLocator{}));
  EXPECT_TRUE(s.harness.host.calls.empty());
}

}  // namespace

}  // namespace quillmarch::addin
