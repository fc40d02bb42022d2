// What a page may say in the midst of a run, at every moment that a page can tell from another:
// behind each thing that the pane has told it. One run for each moment.
#include <gtest/gtest.h>

#include <algorithm>

#include "pane/PaneHarness.h"
#include "run/document/StaGate.h"
#include "support/LogCapture.h"

namespace quillmarch::addin {

namespace {

using test::PaneHarness;

constexpr std::size_t kSlides = 3;
constexpr std::uint32_t kPatientPageMs = 2000;
constexpr std::uint32_t kLongerThanAPoll = 60;  // ms of a paused worker

// A deck of three slides in a whole-deck run that nobody disturbs; `act` comes as a message of the
// page comes, behind what the page was told as number `moment` (1-based, 0 never).
class DisturbedRun {
 public:
  DisturbedRun() {
    h.MakePane(h.host.ContextOf(*h.host.windows.front()), kPatientPageMs);
    h.page->closed = 0;  // by the end of the first pane
    h.OpenWindow();
    for (const char16_t* text : {u"one", u"two", u"three"}) shapes_.push_back(h.AddSlide(text));
  }

  void With(std::size_t moment, std::function<void()> act) {
    h.page->onCall = [this, moment, act = std::move(act)] {
      if (++told_ == moment) h.thread.Post(act);
    };
    h.Say(R"({"action":"start"})");
    EXPECT_TRUE(h.RunUntil([this] {
      if (h.pane != nullptr) h.Tick();
      return h.pane == nullptr || !h.pane->run().runActive();
    }));
    h.RunPosts();
  }

  // What the page is told in a run that nobody disturbs.
  static std::size_t Moments() {
    DisturbedRun run;
    run.With(0, [] {});
    return run.told_;
  }

  // How many slides are translated; any other text than the two possible ones fails.
  std::size_t Translated() const {
    std::size_t translated = 0;
    for (std::size_t i = 0; i < kSlides; ++i) {
      static const char16_t* const kTexts[] = {u"one", u"two", u"three"};
      const Wide& text = shapes_[i]->Text();
      const bool done = text == Wide(u"T(") + kTexts[i] + u")";
      EXPECT_TRUE(done || text == kTexts[i]) << ToUtf8(text);
      translated += done ? 1 : 0;
    }
    return translated;
  }

  std::string Ending() const {
    const std::vector<std::string> events = h.MainEvents();
    const auto ends = std::count_if(events.begin(), events.end(), [](const std::string& event) {
      return event == "onComplete" || event == "onError" || event == "onCancelled";
    });
    EXPECT_EQ(ends, 1);
    return events.empty() ? std::string() : events.back();
  }

  PaneHarness h;
  test::LogCapture log;

 private:
  std::vector<test::FakeShapeRef> shapes_;
  std::size_t told_ = 0;
};

TEST(EveryMoment, AStartIsIgnoredUntilTheRunIsOver) {
  const std::size_t moments = DisturbedRun::Moments();
  ASSERT_GT(moments, 10U);
  // The last thing told is the run's end, and behind it a start is one.
  for (std::size_t moment = 1; moment < moments; ++moment) {
    DisturbedRun run;
    run.With(moment, [&] {
      run.h.pane->OnWebMessageReceived(u"{\"action\":\"restart\"}");
      run.h.pane->OnWebMessageReceived(u"{\"action\":\"startSelection\"}");
    });
    EXPECT_EQ(run.Ending(), "onComplete") << moment;
    EXPECT_EQ(run.Translated(), kSlides) << moment;
    EXPECT_EQ(run.log.Count("PptPane start ignored: run in progress"), 2) << moment;
    EXPECT_EQ(run.log.Count("PptPane run finished"), 1) << moment;
  }
}

TEST(EveryMoment, ACancelEndsTheRunOnceAndLeavesWholeSlides) {
  const std::size_t moments = DisturbedRun::Moments();
  std::size_t cancelled = 0;
  for (std::size_t moment = 1; moment <= moments; ++moment) {
    DisturbedRun run;
    std::uint64_t id = 0;
    run.With(moment, [&] {
      id = run.h.pane->run().currentRunId();
      run.h.pane->OnWebMessageReceived(u"{\"action\":\"cancel\"}");
    });
    const std::string ending = run.Ending();
    // The page is told as soon as the worker lives, so that every cancel but the last few reaches
    // it; those find the worker at its end.
    EXPECT_NE(ending, "onError") << moment;
    cancelled += ending == "onCancelled" ? 1 : 0;
    if (ending == "onComplete") {
      EXPECT_EQ(run.Translated(), kSlides) << moment;
    }
    run.Translated();
    const std::vector<Wide> aborts = run.h.Requests(u"translateAbortForRun");
    EXPECT_EQ(aborts.size(), id == 0 ? 0U : 1U) << moment;
    EXPECT_EQ(run.log.Count("PptPane run finished"), 1) << moment;
    EXPECT_EQ(run.h.pane->run().runControl(), nullptr);
    EXPECT_FALSE(StaGateHasOwner());
  }
  EXPECT_GT(cancelled, 3U);
}

TEST(EveryMoment, APauseSendsNothingForAsLongAsItLastsAndAResumeGoesOn) {
  const std::size_t moments = DisturbedRun::Moments();
  for (std::size_t moment = 1; moment < moments; ++moment) {
    DisturbedRun run;
    run.With(moment, [&] {
      PaneHarness& h = run.h;
      h.pane->OnWebMessageReceived(u"{\"action\":\"pause\"}");
      const std::size_t asked = h.Requests().size();
      for (int hour = 0; hour < 100; ++hour) {
        h.thread.Advance(3600000);
        h.Tick();
      }
      h.thread.WaitForOutsideWork(kLongerThanAPoll);
      h.RunPosts();
      // The one that was on its way already.
      EXPECT_LE(h.Requests().size(), asked + 1) << moment;
      h.pane->OnWebMessageReceived(u"{\"action\":\"resume\"}");
    });
    EXPECT_EQ(run.Ending(), "onComplete") << moment;
    EXPECT_EQ(run.Translated(), kSlides) << moment;
  }
}

TEST(EveryMoment, ACancelOfAPausedRunEndsIt) {
  const std::size_t moments = DisturbedRun::Moments();
  for (std::size_t moment = 1; moment < moments; ++moment) {
    DisturbedRun run;
    run.With(moment, [&] {
      run.h.pane->OnWebMessageReceived(u"{\"action\":\"pause\"}");
      run.h.pane->OnWebMessageReceived(u"{\"action\":\"cancel\"}");
    });
    EXPECT_NE(run.Ending(), "onError") << moment;
    EXPECT_EQ(run.log.Count("PptPane run finished"), 1) << moment;
  }
}

TEST(EveryMoment, TheWindowsEndSilencesTheRunAndLeavesNothingBehind) {
  const std::size_t moments = DisturbedRun::Moments();
  for (std::size_t moment = 1; moment <= moments; ++moment) {
    DisturbedRun run;
    PaneHarness& h = run.h;
    h.thread.sleepsAreInstant = true;
    const std::weak_ptr<CPptPane> weak = h.pane;
    std::size_t told = 0;
    run.With(moment, [&] {
      told = h.page->calls.size();
      h.pane->OnDestroy();
      h.pane.reset();
    });
    ASSERT_TRUE(h.RunUntil([] { return ReleaseEndedPanes() == 0; })) << moment;
    EXPECT_TRUE(weak.expired()) << moment;
    EXPECT_EQ(h.page->calls.size(), told) << moment;
    EXPECT_EQ(h.page->closed, 1) << moment;
    EXPECT_EQ(h.thread.timersSet(), 0) << moment;
    EXPECT_FALSE(StaGateHasOwner()) << moment;
    run.Translated();
  }
}

TEST(EveryMoment, ANavigationFailsWhatIsAskedAndTheNextAttemptGoesOn) {
  const std::size_t moments = DisturbedRun::Moments();
  for (std::size_t moment = 1; moment <= moments; ++moment) {
    DisturbedRun run;
    run.With(moment, [&] { run.h.pane->OnNavigationStarting(); });
    EXPECT_EQ(run.Ending(), "onComplete") << moment;
    EXPECT_EQ(run.Translated(), kSlides) << moment;
  }
}

TEST(EveryMoment, OtherMessagesChangeNothing) {
  const std::size_t moments = DisturbedRun::Moments();
  for (std::size_t moment = 1; moment <= moments; ++moment) {
    DisturbedRun run;
    run.With(moment, [&] {
      for (const char* message :
           {R"({"action":"requestSelectionPreview"})",
            R"({"action":"setTargetStyle",)"
            R"("targetFont":"Arial","targetFontSize":44})",
            R"({"action":"clearAccessToken"})", R"({"action":"sessionQuery"})",
            R"({"action":"getFontList"})", R"({"action":"resume"})",
            R"({"action":"translateBatchResult","requestId":"ppttr_99","ok":true})",
            R"({"action":"terminologyResolveResult","requestId":"","ok":true})", R"({"action":)"}) {
        run.h.pane->OnWebMessageReceived(ToWide(message));
      }
    });
    EXPECT_EQ(run.Ending(), "onComplete") << moment;
    EXPECT_EQ(run.Translated(), kSlides) << moment;
  }
}

}  // namespace

}  // namespace quillmarch::addin
