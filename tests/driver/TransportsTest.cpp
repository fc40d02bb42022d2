// The same conversation with both transports: requests that go out natively, and requests that the
// page makes. Real threads, the real client, a service on loopback.
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <regex>

#include "driver/DriverBench.h"
#include "driver/RequestingPage.h"
#include "foundation/text/JsonText.h"
#include "host/driver/HostedPane.h"
#include "host/driver/RunRequest.h"
#include "host/model/Host.h"
#include "pane/CPptPane.h"
#include "support/LogCapture.h"

namespace quillmarch::host {

using namespace addin;
using namespace addin::test;

namespace {

using test::DriverBench;
using test::RequestingPage;
using Texts = std::vector<std::string>;

constexpr std::uint32_t kPatientPageMs = 3000;

// One pane over an application, with such a page. The bench lends its loop and its service.
class Talk {
 public:
  Talk(DriverBench& bench, const ObjectRef& application, bool viaPage)
      : bench_(bench),
        viaPage_(viaPage),
        page(std::make_shared<RequestingPage>(bench.loop, bench.Request().accessToken)),
        hosted(std::make_unique<HostedPane>(
            application, bench.loop, page,
            [this](const RunRecord& record) { records.push_back(record); }, kPatientPageMs)) {
    page->say = [this](const Wide& json) { Say(json); };
  }

  DriverBench* bench() { return &bench_; }

  void Say(const Wide& json) {
    if (hosted != nullptr) hosted->Say(json);
  }
  void Start() {
    RunRequest request = bench_.Request();
    request.viaPage = viaPage_;
    Say(StartMessage(request));
  }
  bool Over() const { return hosted == nullptr || ended(); }
  void RunToEnd() {
    Start();
    bench_.loop.RunUntil([this] { return Over(); });
  }
  bool ended() const {
    return std::any_of(page->events.begin(), page->events.end(), IsEnding) &&
           !hosted->pane().run().runActive();
  }
  static bool IsEnding(const std::string& event) {
    return event.starts_with("onComplete") || event.starts_with("onError") ||
           event.starts_with("onCancelled");
  }
  // The page's functions in their order, without the numbers that no two runs share.
  Texts Events() const {
    static const std::regex kOwn(R"re("(runId|elapsed)":-?\d+)re");
    Texts events;
    for (const std::string& event : page->events) {
      events.push_back(std::regex_replace(event, kOwn, "\"$1\":0"));
    }
    return events;
  }
  std::string Ending() const {
    EXPECT_EQ(std::count_if(page->events.begin(), page->events.end(), IsEnding), 1);
    return page->events.empty() ? "" : page->events.back().substr(0, page->events.back().find('{'));
  }

 private:
  DriverBench& bench_;
  bool viaPage_;

 public:
  std::vector<RunRecord> records;
  std::shared_ptr<RequestingPage> page;
  std::unique_ptr<HostedPane> hosted;
};

std::string BytesOf(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

struct Translated {
  Texts events;
  std::string deck;
  std::vector<Texts> requests;
  std::size_t messages = 0;
};

Translated TranslateSample(const char* name, bool viaPage) {
  DriverBench bench;
  Host host(*FindPersonality("powerpoint"));
  std::vector<std::string> warnings;
  EXPECT_TRUE(host.Open(std::string(QUILLMARCH_SAMPLES) + "/" + name, warnings));
  Translated result;
  Talk talk(bench, host.application(), viaPage);
  talk.RunToEnd();
  result.events = talk.Events();
  result.messages = talk.page->messages.size();
  const std::string path = testing::TempDir() + "transports-" + std::to_string(getpid()) + ".pptx";
  EXPECT_TRUE(host.Save(path));
  result.deck = BytesOf(path);
  std::remove(path.c_str());
  for (const service::EngineRequest& request : bench.engine->requests) {
    result.requests.push_back(request.texts);
  }
  return result;
}

TEST(Transports, BothTranslateADeckToTheSameBytesWithTheSameEventsAndRequests) {
  for (const char* name : {"quarterly-review.pptx", "many-scripts.pptx"}) {
    const Translated native = TranslateSample(name, false);
    const Translated viaPage = TranslateSample(name, true);
    EXPECT_EQ(native.messages, 0U);
    EXPECT_GT(viaPage.messages, 3U);
    EXPECT_GT(native.requests.size(), 3U);
    EXPECT_EQ(native.requests, viaPage.requests);
    EXPECT_EQ(native.events, viaPage.events);
    EXPECT_TRUE(native.events.back().starts_with("onComplete")) << native.events.back();
    EXPECT_FALSE(native.deck.empty());
    EXPECT_TRUE(native.deck == viaPage.deck) << name;
  }
}

class EveryMomentOf : public testing::TestWithParam<bool> {
 protected:
  static constexpr std::size_t kSlides = 3;

  struct Outcome {
    std::string ending;
    Texts texts;
    std::size_t told = 0;
  };

  // A run over three slides; `act` comes as the page's next message behind what the page was told
  // as number `moment` (1-based, 0 never).
  Outcome With(std::size_t moment, const std::function<void(Talk&)>& act) {
    DriverBench bench;
    for (const char16_t* text : {u"one", u"two", u"three"}) {
      bench.deck().AddSlide({test::TextShape(text)});
    }
    Outcome outcome;
    {
      Talk talk(bench, bench.host.Application(), GetParam());
      talk.page->onTold = [&] {
        if (++outcome.told == moment) bench.loop.Post([&] { act(talk); });
      };
      talk.RunToEnd();
      talk.page->onTold = nullptr;
      if (talk.hosted != nullptr) outcome.ending = talk.Ending();
    }
    while (ReleaseEndedPanes() > 0) bench.loop.Sleep(10);
    for (const auto& slide : bench.deck().slides) {
      outcome.texts.push_back(ToUtf8(slide->shapes()[0]->Text()));
    }
    return outcome;
  }
  std::size_t Moments() {
    const Outcome outcome = With(0, {});
    EXPECT_EQ(outcome.ending, "onComplete");
    EXPECT_EQ(outcome.texts, kAll);
    EXPECT_GE(outcome.told, 8U);
    return outcome.told;
  }
  // Each slide as it was or translated whole.
  static void ExpectWhole(const Texts& texts) {
    for (std::size_t i = 0; i < kSlides; ++i) {
      EXPECT_TRUE(texts[i] == kAll[i] || "T(" + texts[i] + ")" == kAll[i]) << texts[i];
    }
  }
  static inline const Texts kAll = {"T(one)", "T(two)", "T(three)"};
};

TEST_P(EveryMomentOf, ACancelEndsTheRunOnce) {
  const std::size_t moments = Moments();
  for (std::size_t moment = 1; moment < moments; ++moment) {
    const Outcome outcome = With(moment, [](Talk& talk) { talk.Say(u"{\"action\":\"cancel\"}"); });
    EXPECT_TRUE(outcome.ending == "onCancelled" || outcome.ending == "onComplete")
        << moment << outcome.ending;
    ExpectWhole(outcome.texts);
    if (outcome.ending == "onComplete") {
      EXPECT_EQ(outcome.texts, kAll) << moment;
    }
  }
}

TEST_P(EveryMomentOf, APauseHoldsTheRunUntilItIsResumed) {
  const std::size_t moments = Moments();
  for (std::size_t moment = 1; moment < moments; ++moment) {
    DriverBench* bench = nullptr;
    const Outcome outcome = With(moment, [&](Talk& talk) {
      bench = talk.bench();
      talk.Say(u"{\"action\":\"pause\"}");
      bench->loop.SetTimer(99, 150, [&] {
        bench->loop.KillTimer(99);
        talk.Say(u"{\"action\":\"resume\"}");
      });
    });
    EXPECT_EQ(outcome.ending, "onComplete") << moment;
    EXPECT_EQ(outcome.texts, kAll) << moment;
  }
}

TEST_P(EveryMomentOf, AStartIsIgnoredUntilTheRunIsOver) {
  const std::size_t moments = Moments();
  for (std::size_t moment = 1; moment < moments; ++moment) {
    const test::LogCapture log;
    const Outcome outcome = With(moment, [](Talk& talk) { talk.Start(); });
    EXPECT_EQ(outcome.ending, "onComplete") << moment;
    EXPECT_EQ(outcome.texts, kAll) << moment;
    EXPECT_EQ(log.Count("PptPane run finished"), 1) << moment;
  }
}

TEST_P(EveryMomentOf, TheWindowsEndSilencesTheRun) {
  const std::size_t moments = Moments();
  for (std::size_t moment = 1; moment < moments; ++moment) {
    std::size_t told = 0;
    const Outcome outcome = With(moment, [&](Talk& talk) {
      talk.hosted.reset();
      told = talk.page->events.size() + talk.page->messages.size();
    });
    EXPECT_EQ(outcome.told, told) << moment;
    ExpectWhole(outcome.texts);
  }
}

INSTANTIATE_TEST_SUITE_P(Transport, EveryMomentOf, testing::Bool(),
                         [](const auto& viaPage) { return viaPage.param ? "ViaPage" : "Native"; });

}  // namespace

}  // namespace quillmarch::host
