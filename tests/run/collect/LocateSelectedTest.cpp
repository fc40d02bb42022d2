#include "run/collect/LocateSelected.h"

#include <gtest/gtest.h>

#include <cstdio>

#include "run/collect/SelectionPreview.h"
#include "support/SelectionHarness.h"

namespace quillmarch::addin {

namespace {

using test::FakeShapeRef;
using test::Numbered;
using test::TextShape;

struct Search {
  bool For(const FakeShapeRef& target, std::int32_t activeSlide) {
    match = {};
    const ObjectRef object = harness.host.ShapeObject(target);
    const ObjectRef slides = harness.host.SlidesObject(harness.host.presentations.front());
    harness.host.calls.clear();
    return LocateSelected(slides.get(), object.get(), activeSlide, match);
  }
  std::size_t Calls() const { return harness.host.calls.size(); }

  test::RunHarness harness;
  ShapeMatch match;
};

TEST(LocateSelected, TheActiveSlideIsSearchedFirst) {
  Search search;
  const FakeShapeRef target = Numbered(TextShape(u"b"), 2);
  search.harness.deck().AddSlide({Numbered(TextShape(u"a"), 2)});  // the same Id
  search.harness.deck().AddSlide({Numbered(TextShape(u"x"), 1), target});
  ASSERT_TRUE(search.For(target, 2));
  EXPECT_EQ(search.match.found, 1);
  EXPECT_EQ(search.match.slide, 2);
  EXPECT_EQ(search.match.path, (StoredPath{2}));
  EXPECT_FALSE(search.match.onNotes);
  // With no slide known to be active the first one with such an Id is taken.
  ASSERT_TRUE(search.For(target, 0));
  EXPECT_EQ(search.match.slide, 1);
}

TEST(LocateSelected, TheOtherSlidesFollowAndTheActiveOneIsNotSearchedAgain) {
  Search search;
  const FakeShapeRef target = Numbered(TextShape(u"c"), 3);
  search.harness.deck().AddSlide({Numbered(TextShape(u"a"), 1)});
  search.harness.deck().AddSlide({Numbered(TextShape(u"b"), 2)});
  search.harness.deck().AddSlide({target});
  ASSERT_TRUE(search.For(target, 2));
  EXPECT_EQ(search.match.slide, 3);
  std::vector<std::string> order;
  for (const std::string& call : search.harness.host.calls) {
    if (call.starts_with("Slides.Item")) order.push_back(call);
  }
  EXPECT_EQ(order,
            (std::vector<std::string>{"Slides.Item(2)", "Slides.Item(1)", "Slides.Item(3)"}));
}

TEST(LocateSelected, ANotesPageIsSearchedBehindItsSlide) {
  Search search;
  const FakeShapeRef target = Numbered(TextShape(u"note"), 3);
  search.harness.deck().AddSlide({Numbered(TextShape(u"a"), 1)},
                                 {Numbered(TextShape(u"x"), 2), target});
  search.harness.deck().AddSlide({Numbered(TextShape(u"b"), 3)});
  ASSERT_TRUE(search.For(target, 1));
  EXPECT_EQ(search.match.slide, 1);
  EXPECT_TRUE(search.match.onNotes);
  EXPECT_EQ(search.match.path, (StoredPath{2}));
}

TEST(LocateSelected, WhatCannotBeReadIsPassedOver) {
  Search search;
  const FakeShapeRef target = Numbered(TextShape(u"c"), 9);
  search.harness.deck().AddSlide({}).failing = {"Slide.Shapes", "Slide.NotesPage"};
  search.harness.deck().AddSlide({target});
  search.harness.deck().AddSlide({target});
  search.harness.host.Fail("Slides.Item(2)");
  ASSERT_TRUE(search.For(target, 0));
  EXPECT_EQ(search.match.slide, 3);
}

TEST(LocateSelected, AMissLeavesTheMatchAsItWas) {
  Search search;
  search.harness.deck().AddSlide({Numbered(TextShape(u"a"), 1)});
  EXPECT_FALSE(search.For(Numbered(TextShape(u"gone"), 9), 1));
  EXPECT_EQ(search.match.found, 0);
  EXPECT_TRUE(search.match.path.empty());
  EXPECT_FALSE(LocateSelected(nullptr, nullptr, 1, search.match));
}

// The figures of a deck of 1000 slides with four shapes each and a note, printed.
TEST(LocateSelected, OnTheActiveSlideTheCostDoesNotGrowWithTheDeck) {
  Search search;
  FakeShapeRef last;
  for (std::int32_t slide = 0; slide < 1000; ++slide) {
    test::FakeShapes shapes;
    for (std::int32_t i = 1; i <= 4; ++i) {
      last = Numbered(TextShape(u"text"), slide * 10 + i);
      shapes.push_back(last);
    }
    search.harness.deck().AddSlide(shapes, {Numbered(TextShape(u"note"), slide * 10 + 9)});
  }
  ASSERT_TRUE(search.For(last, 1000));
  const std::size_t active = search.Calls();
  EXPECT_EQ(search.match.slide, 1000);
  ASSERT_TRUE(search.For(last, 1));
  const std::size_t elsewhere = search.Calls();

  search.harness.window().selection->SelectShapes({last});
  search.harness.host.calls.clear();
  const ObjectRef app = search.harness.host.Application();
  ASSERT_FALSE(ReadSelectionPreview(app.get(), search.harness.params.windowContext).empty);
  const std::size_t preview = search.Calls();

  std::printf(
      "host calls with 1000 slides: located on the active slide %zu, on the last slide with "
      "the first one active %zu, preview %zu\n",
      active, elsewhere, preview);
  EXPECT_LE(active, 40U);
  EXPECT_LE(elsewhere, 40U * 1000U);
  EXPECT_LE(preview, 20U);
}

}  // namespace

}  // namespace quillmarch::addin
