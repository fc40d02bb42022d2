// A run over a selection whose shapes alternate between two slides, so that each slide is written
// in two steps, and what may come in at every host call of it, one run for each call.
#include <gtest/gtest.h>

#include <algorithm>

#include "pane/PaneHarness.h"
#include "run/document/StaGate.h"
#include "support/LogCapture.h"

namespace quillmarch::addin {

namespace {

using test::FakeShapeRef;
using test::PaneHarness;

const std::vector<Wide> kTexts = {u"a", u"b", u"c", u"d"};

class AlternatingRun {
 public:
  AlternatingRun() {
    for (const Wide& text : kTexts) {
      shapes_.push_back(test::TextShape(text));
      shapes_.back()->id = 10 + static_cast<std::int32_t>(shapes_.size());
    }
    h.deck().AddSlide({shapes_[0], shapes_[2]});
    h.deck().AddSlide({shapes_[1], shapes_[3]});
    Selection().SelectShapes({shapes_.begin(), shapes_.end()});
  }

  test::FakeSelection& Selection() { return *h.host.windows.front()->selection; }

  // At host call number `at` (1-based, 0 never) `inside` is let in. Gives the number of calls.
  template <typename Inside>
  std::size_t With(std::size_t at, Inside inside) {
    std::size_t count = 0;
    h.LetIn(at, count, inside);
    h.Say(R"({"action":"startSelection"})");
    h.WaitForWorker();
    h.Finish();
    h.host.onCall = {};
    h.RunPosts();
    return count;
  }

  static std::size_t Calls() {
    AlternatingRun run;
    return run.With(0, [] {});
  }

  std::vector<Wide> Texts() const {
    std::vector<Wide> texts;
    for (const FakeShapeRef& shape : shapes_) texts.push_back(shape->Text());
    return texts;
  }

  PaneHarness h;
  test::LogCapture log;

 private:
  std::vector<FakeShapeRef> shapes_;
};

const std::vector<Wide> kTranslated = {u"T(a)", u"T(b)", u"T(c)", u"T(d)"};
const std::vector<std::string> kCompleted = {"onRunStarted", "onReady", "onComplete"};

TEST(SelectionReentry, TimersStartsAndPreviewsAtEveryHostCallChangeNothing) {
  const std::size_t calls = AlternatingRun::Calls();
  ASSERT_GT(calls, 50U);
  for (std::size_t at = 1; at <= calls; ++at) {
    AlternatingRun run;
    PaneHarness& h = run.h;
    run.With(at, [&] {
      h.pane->OnTimer(CPptPane::kRunTickTimer);
      h.thread.Advance(300);
      h.thread.FireDueTimers();
      h.Say(R"({"action":"startSelection"})");
      h.Say(R"({"action":"requestSelectionPreview"})");
    });
    EXPECT_EQ(h.MainEvents(), kCompleted) << at;
    EXPECT_EQ(run.Texts(), kTranslated) << at;
    EXPECT_EQ(run.log.Count("PptPane start ignored: run in progress"), 1) << at;
    EXPECT_EQ(run.log.Count("PptPane run finished"), 1) << at;
    EXPECT_FALSE(StaGateHasOwner());
    for (const std::string& script : h.page->Scripts()) {
      EXPECT_EQ(script.find("Preview"), std::string::npos) << at;
    }
  }
}

TEST(SelectionReentry, ASelectionThatIsLetGoAtEveryHostCallEndsTheRunOnce) {
  const std::size_t calls = AlternatingRun::Calls();
  std::size_t failed = 0;
  for (std::size_t at = 1; at <= calls; ++at) {
    AlternatingRun run;
    run.With(at, [&] { run.Selection().SelectShapes({}); });
    const std::vector<std::string> events = run.h.MainEvents();
    ASSERT_EQ(events.size(), 3U) << at;
    EXPECT_TRUE(events.back() == "onComplete" || events.back() == "onError") << at;
    failed += events.back() == "onError" ? 1 : 0;
    EXPECT_EQ(run.log.Count("PptPane run finished"), 1) << at;
    const std::vector<Wide> texts = run.Texts();
    for (std::size_t i = 0; i < texts.size(); ++i) {
      EXPECT_TRUE(texts[i] == kTexts[i] || texts[i] == kTranslated[i]) << at;
    }
  }
  // What is read once is not read again.
  EXPECT_GT(failed, 0U);
  EXPECT_LT(failed, calls / 2);
}

TEST(SelectionReentry, TheWindowsEndAtEveryHostCallLeavesNothingBehind) {
  const std::size_t calls = AlternatingRun::Calls();
  for (std::size_t at = 1; at <= calls; ++at) {
    AlternatingRun run;
    PaneHarness& h = run.h;
    h.thread.sleepsAreInstant = true;
    const std::weak_ptr<CPptPane> weak = h.pane;
    run.With(at, [&] {
      h.pane->OnDestroy();
      h.pane.reset();
    });
    ASSERT_TRUE(h.RunUntil([] { return ReleaseEndedPanes() == 0; })) << at;
    EXPECT_TRUE(weak.expired()) << at;
    EXPECT_EQ(h.thread.timersSet(), 0) << at;
    EXPECT_FALSE(StaGateHasOwner()) << at;
  }
}

}  // namespace

}  // namespace quillmarch::addin
