#include "run/document/ResolveShape.h"

#include <gtest/gtest.h>

#include "foundation/automation/HostMembers.h"
#include "support/RunHarness.h"

namespace quillmarch::addin {

namespace {

using test::GroupShape;
using test::TextShape;

struct Deck {
  explicit Deck(test::FakePersonality personality = {}) : harness(std::move(personality)) {
    harness.deck().AddSlide({TextShape(u"one"), GroupShape({TextShape(u"in"), TextShape(u"out")})},
                            {TextShape(u"note")});
    slides = harness.host.SlidesObject(harness.host.presentations.front());
  }

  Wide TextAt(const StoredPath& path, bool notes = false) {
    ObjectRef shape;
    const ResultCode code = notes ? ResolveNotesShape(slides.get(), 1, path, shape)
                                  : ResolveShape(slides.get(), 1, path, shape);
    if (Failed(code)) {
      EXPECT_EQ(code, kFail);
      EXPECT_FALSE(shape);
      return u"?";
    }
    ObjectRef frame;
    ObjectRef range;
    Wide text;
    EXPECT_TRUE(Get(shape.get(), ppt::shape::kTextFrame, frame));
    EXPECT_TRUE(Get(frame.get(), ppt::textFrame::kTextRange, range));
    EXPECT_TRUE(Get(range.get(), ppt::textRange::kText, text));
    return text;
  }

  test::RunHarness harness;
  ObjectRef slides;
};

TEST(ResolveShape, FindsTopLevelAndGroupedShapes) {
  Deck deck;
  EXPECT_EQ(deck.TextAt({1}), u"one");
  EXPECT_EQ(deck.TextAt({2, 2}), u"out");
}

TEST(ResolveShape, FindsAShapeOfTheNotesPage) {
  Deck deck;
  EXPECT_EQ(deck.TextAt({1}, true), u"note");
}

TEST(ResolveShape, AnEmptyPathOrOneOf33LevelsFailsWithoutACall) {
  Deck deck;
  EXPECT_EQ(deck.TextAt({}), u"?");
  EXPECT_EQ(deck.TextAt({}, true), u"?");
  EXPECT_EQ(deck.TextAt(StoredPath(33, 1)), u"?");
  EXPECT_EQ(deck.TextAt(StoredPath(33, 1), true), u"?");
  EXPECT_TRUE(deck.harness.host.calls.empty());
}

TEST(ResolveShape, APathBeyondTheEndFails) {
  Deck deck;
  EXPECT_EQ(deck.TextAt({3}), u"?");
  EXPECT_EQ(deck.TextAt({2, 3}), u"?");
  EXPECT_EQ(deck.TextAt({1, 1}), u"?");
  EXPECT_EQ(deck.TextAt({2}, true), u"?");
}

TEST(ResolveShape, AfterADeletionThePathReachesTheNextShape) {
  Deck deck;
  auto& shapes = deck.harness.deck().slides[0]->shapes();
  shapes.insert(shapes.begin() + 1, TextShape(u"two"));
  EXPECT_EQ(deck.TextAt({2}), u"two");
  shapes.erase(shapes.begin());
  EXPECT_EQ(deck.TextAt({1}), u"two");
}

TEST(ResolveShape, AGroupItemThatFailsByNameComesByTheTypedRoad) {
  Deck deck;
  deck.harness.host.Fail("GroupShapes:Item");
  EXPECT_EQ(deck.TextAt({2, 1}), u"in");
  deck.harness.host.Fail("GroupShapes.Item");
  EXPECT_EQ(deck.TextAt({2, 1}), u"?");
}

TEST(ResolveShape, EachFailedStepFailsTheWhole) {
  for (const char* call : {"Slides.Item", "Slide.Shapes", "Shapes.Item", "Shape:GroupItems"}) {
    Deck deck;
    deck.harness.host.Fail(call);
    EXPECT_EQ(deck.TextAt({2, 1}), u"?") << call;
  }
  for (const char* call : {"Slides.Item", "Slide.NotesPage", "SlideRange.Shapes"}) {
    Deck deck;
    deck.harness.host.Fail(call);
    EXPECT_EQ(deck.TextAt({1}, true), u"?") << call;
  }
}

}  // namespace

}  // namespace quillmarch::addin
