#include "run/control/RunPacing.h"

#include <gtest/gtest.h>

#include "run/document/StaGate.h"
#include "support/LogCapture.h"
#include "support/RunHarness.h"

namespace quillmarch::addin {

namespace {

using test::FakeShapeRef;
using test::RunHarness;
using test::TextShape;

// A run of three one-text slides whose worker is held in the third one's batch, so that exactly
// two slides are ready.
struct TwoReady {
  explicit TwoReady(Scope scope = Scope::kWholeDeck) {
    // A run for the current slide alone would have one entry; the paces differ by `full` only.
    run.params.full = scope == Scope::kWholeDeck;
    for (const char16_t* text : {u"a", u"b", u"c"}) {
      shapes.push_back(TextShape(text));
      run.deck().AddSlide({shapes.back()});
    }
    run.HoldBatch(3);
    EXPECT_TRUE(run.Start());
    run.WaitUntilHeld();
  }
  ~TwoReady() {
    run.Release();
    run.Finish();
  }

  bool Written(std::size_t slide) const { return shapes[slide]->Text().starts_with(u"T("); }
  int SlidesWritten() const { return Written(0) + Written(1) + Written(2); }

  RunHarness run;
  std::vector<FakeShapeRef> shapes;
};

TEST(RunPacing, ATickWritesAtMostOneSlide) {
  TwoReady two(Scope::kCurrentSlide);
  two.run.TickOnce();
  EXPECT_EQ(two.SlidesWritten(), 1);
  two.run.TickOnce();
  EXPECT_EQ(two.SlidesWritten(), 2);
}

TEST(RunPacing, ATickWritesNothingThatIsNotReady) {
  TwoReady two(Scope::kCurrentSlide);
  two.run.TickTimes(50);
  EXPECT_EQ(two.SlidesWritten(), 2);
  EXPECT_FALSE(two.Written(2));
}

TEST(RunPacing, TicksThatComeTooCloseFindTheGateQuiet) {
  TwoReady two(Scope::kCurrentSlide);
  two.run.TickOnce();
  two.run.thread.Advance(100);
  two.run.ctrl->Tick();
  EXPECT_EQ(two.SlidesWritten(), 1);
  two.run.thread.Advance(20);
  two.run.ctrl->Tick();
  EXPECT_EQ(two.SlidesWritten(), 2);
}

TEST(RunPacing, AMouseHeldDownHoldsTheWriteFor500MsAtLeast) {
  TwoReady two(Scope::kCurrentSlide);
  two.run.input.leftButton = true;
  two.run.TickTimes(10);
  EXPECT_EQ(two.SlidesWritten(), 0);
  two.run.input.leftButton = false;
  two.run.TickTimes(4);  // 480 ms
  EXPECT_EQ(two.SlidesWritten(), 0);
  two.run.TickOnce();  // 600 ms
  EXPECT_EQ(two.SlidesWritten(), 1);
}

TEST(RunPacing, AWholeDeckShowsASlide900MsWritesItAndRests1500Ms) {
  TwoReady two;
  two.run.TickOnce();
  EXPECT_EQ(two.run.window().visited, (std::vector<std::int32_t>{1}));
  EXPECT_EQ(two.SlidesWritten(), 0);
  two.run.TickTimes(7);  // 840 ms
  EXPECT_EQ(two.SlidesWritten(), 0);
  two.run.TickOnce();  // 960 ms
  EXPECT_TRUE(two.Written(0));
  two.run.TickTimes(12);  // 1440 ms
  EXPECT_EQ(two.run.window().visited.size(), 1U);
  two.run.TickOnce();  // 1560 ms: the next slide's turn, shown by the tick after
  EXPECT_EQ(two.run.window().visited.size(), 1U);
  two.run.TickOnce();
  EXPECT_EQ(two.run.window().visited, (std::vector<std::int32_t>{1, 2}));
  EXPECT_FALSE(two.Written(1));
  two.run.TickTimes(8);
  EXPECT_TRUE(two.Written(1));
}

TEST(RunPacing, ASlideWithoutTextTakesItsTimeInAWholeDeckToo) {
  RunHarness run;
  run.deck().AddSlide({test::PictureShape()});
  const FakeShapeRef shape = TextShape(u"a");
  run.deck().AddSlide({shape});
  run.deck().AddSlide({TextShape(u"b")});
  run.HoldBatch(2);
  ASSERT_TRUE(run.Start());
  run.WaitUntilHeld();
  run.TickTimes(1 + 8 + 13);
  EXPECT_EQ(run.window().visited, (std::vector<std::int32_t>{1}));
  EXPECT_EQ(shape->Text(), u"a");
  run.TickTimes(1 + 8);
  EXPECT_EQ(run.window().visited, (std::vector<std::int32_t>{1, 2}));
  EXPECT_EQ(shape->Text(), u"T(a)");
  run.Release();
  run.Finish();
}

TEST(RunPacing, WithTheMouseHeldAWholeDeckWaitsAndResumesByItself) {
  TwoReady two;
  two.run.TickOnce();
  two.run.input.leftButton = true;
  two.run.TickTimes(40);
  EXPECT_EQ(two.SlidesWritten(), 0);
  two.run.input.leftButton = false;
  two.run.TickTimes(5);
  EXPECT_TRUE(two.Written(0));
}

TEST(RunPacing, ABusyUserIsShownNothingAndNoQuietTimeIsAdded) {
  TwoReady two;
  two.run.input.capture = true;
  two.run.TickOnce();
  EXPECT_TRUE(two.run.window().visited.empty());
  two.run.input.capture = false;
  two.run.thread.Advance(120);
  EXPECT_TRUE(GateHold(&two, two.run.thread).held());
}

TEST(RunPacing, AGateThatIsTakenShowsNothingAndThePhaseGoesOn) {
  TwoReady two;
  {
    const GateHold other(&two, two.run.thread);
    two.run.TickOnce();
  }
  EXPECT_TRUE(two.run.window().visited.empty());
  two.run.TickTimes(8);
  EXPECT_TRUE(two.Written(0));
}

TEST(RunPacing, AUserInAnotherWindowIsLeftAloneThere) {
  TwoReady two;
  two.run.host.activeWindow =
      two.run.host.windows.emplace_back(std::make_shared<test::FakeWindow>());
  two.run.host.activeWindow->hwnd = 0x999;
  two.run.TickTimes(9);
  EXPECT_TRUE(two.run.window().visited.empty());
  EXPECT_TRUE(two.run.host.activeWindow->visited.empty());
  EXPECT_TRUE(two.Written(0));
}

TEST(RunPacing, AWindowIsAlsoKnownByItsIdentity) {
  TwoReady two;
  two.run.window().hwnd = 0x999;  // moved to another handle
  two.run.TickOnce();
  EXPECT_EQ(two.run.window().visited, (std::vector<std::int32_t>{1}));
}

TEST(RunPacing, AnotherOwnersGateHoldsTheWrite) {
  TwoReady two(Scope::kCurrentSlide);
  const GateHold other(&two, two.run.thread);
  two.run.TickTimes(5);
  EXPECT_EQ(two.SlidesWritten(), 0);
}

TEST(RunPacing, APauseDoesNotHoldTheWrites) {
  TwoReady two(Scope::kCurrentSlide);
  two.run.config->paused.store(1, std::memory_order_relaxed);
  two.run.TickTimes(2);
  EXPECT_EQ(two.SlidesWritten(), 2);
  two.run.config->paused.store(0, std::memory_order_relaxed);
}

TEST(RunPacing, ATimerThatFiresDuringAHostCallWritesNothing) {
  TwoReady two(Scope::kCurrentSlide);
  int entered = 0;
  two.run.host.onCall = [&](const std::string& call) {
    if (call != "TextRange.Text=") return;
    ++entered;
    two.run.thread.Advance(1000);
    two.run.ctrl->Tick();
    two.run.ctrl->Finish();
    EXPECT_FALSE(two.run.ctrl->finished());
    EXPECT_TRUE(StaGateHasOwner());
  };
  two.run.TickOnce();
  two.run.host.onCall = {};
  EXPECT_EQ(entered, 1);
  EXPECT_EQ(two.SlidesWritten(), 1);
}

TEST(RunPacing, AWorkerThatEndsDuringAWriteIsFinishedByTheNextTick) {
  TwoReady two(Scope::kCurrentSlide);
  two.run.host.onCall = [&](const std::string& call) {
    if (call != "TextRange.Text=") return;
    two.run.Release();
    two.run.WaitForWorker();
    two.run.ctrl->Finish();
    EXPECT_FALSE(two.run.ctrl->finished());
  };
  two.run.TickOnce();
  EXPECT_EQ(two.SlidesWritten(), 1);
  two.run.host.onCall = {};
  two.run.TickOnce();
  EXPECT_TRUE(two.run.ctrl->finished());
  EXPECT_EQ(two.SlidesWritten(), 3);
  EXPECT_EQ(two.run.Record().written, 3);
}

TEST(RunPacing, TheShowAndTheRestLastToTheMillisecond) {
  TwoReady two;
  two.run.ctrl->Tick();
  EXPECT_EQ(two.run.window().visited, (std::vector<std::int32_t>{1}));
  two.run.thread.Advance(899);
  two.run.ctrl->Tick();
  EXPECT_FALSE(two.Written(0));
  two.run.thread.Advance(1);
  two.run.ctrl->Tick();
  EXPECT_TRUE(two.Written(0));
  two.run.thread.Advance(1499);
  two.run.ctrl->Tick();
  two.run.ctrl->Tick();
  EXPECT_EQ(two.run.window().visited.size(), 1U);
  two.run.thread.Advance(1);
  two.run.ctrl->Tick();
  two.run.ctrl->Tick();
  EXPECT_EQ(two.run.window().visited, (std::vector<std::int32_t>{1, 2}));
}

}  // namespace

}  // namespace quillmarch::addin
