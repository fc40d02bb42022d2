// A hundred lives of the add-in in one process, and that each counter would see what is left
// behind.
#include <algorithm>
#include <array>
#include <atomic>
#include <thread>

#include "foundation/automation/ComObject.h"
#include "windows/host/Fixture.h"

namespace quillmarch::addin {

using winhost::Browser;
using winhost::CountOf;
using winhost::ModuleCounts;
using winhost::ModuleTest;
using winhost::PumpUntil;
using winhost::Setting;

namespace {

constexpr int kCycles = 100;

class CyclesTest : public ModuleTest {
 protected:
  ComPtr<IDispatch> OpenSmallDeck() {
    return OpenDeck(Setting(L"QUILLMARCH_TEST_FOLDER") + L"/small.pptx");
  }
  // How many of a kind are there; all others are to be none.
  static void ExpectOnly(const std::vector<std::pair<LiveKind, long>>& expected) {
    std::vector<long> wanted(kLiveKinds, 0);
    for (const auto& [kind, count] : expected) wanted[static_cast<std::size_t>(kind)] = count;
    EXPECT_EQ(wanted, ModuleCounts());
  }
};

// The greatest number of each kind that another thread saw.
class Watcher {
 public:
  Watcher() : thread_([this] { Watch(); }) {}
  ~Watcher() { End(); }
  Watcher(const Watcher&) = delete;
  Watcher& operator=(const Watcher&) = delete;

  void End() {
    ends_ = true;
    if (thread_.joinable()) thread_.join();
  }
  bool saw(LiveKind kind) const { return most_.at(static_cast<std::size_t>(kind)) > 0; }

 private:
  void Watch() {
    while (!ends_) {
      const std::vector<long> counts = ModuleCounts();
      for (std::size_t i = 0; i < counts.size(); ++i) {
        most_.at(i) = std::max<long>(most_.at(i), counts[i]);
      }
      SwitchToThread();
    }
  }
  std::array<std::atomic<long>, kLiveKinds> most_{};
  std::atomic<bool> ends_{false};
  std::thread thread_;
};

}  // namespace

TEST_F(CyclesTest, AHundredLivesLeaveNothing) {
  for (int i = 0; i < kCycles; ++i) {
    const ComPtr<IDispatch> application = OpenSmallDeck();
    ASSERT_TRUE(application);
    OpenPane(application.get());
    page().Say(StartMessage());
    ASSERT_EQ(L"onComplete", WaitForEnd()) << ToUtf8(page().Payload(L"onError"));
    ASSERT_TRUE(VariantToFlag(Ask(u"Edited")));
    host.Stop();
    pages.clear();
    // The application here and the desk are all that is left of the host's objects.
    ASSERT_EQ(2, world.references());
    ASSERT_EQ(0, Browser().LiveObjects());
    ASSERT_EQ(0, Browser().LiveHandlers());
    ExpectOnly({});
    ASSERT_FALSE(HasFailure()) << "in cycle " << i;
  }
}

TEST_F(CyclesTest, EachCounterSeesWhatItCountsWhileItIsThere) {
  const ComPtr<IDispatch> application = OpenSmallDeck();
  Watcher watcher;
  OpenPane(application.get());
  page().Say(StartMessage());
  ASSERT_EQ(L"onComplete", WaitForEnd());
  const auto sawAll = [&watcher] {
    for (std::size_t i = 0; i < kLiveKinds; ++i) {
      if (!watcher.saw(static_cast<LiveKind>(i))) return false;
    }
    return true;
  };
  // Fonts, files and keys are held for so short a while that one time may pass unseen.
  using RegisterFunction = HRESULT(STDAPICALLTYPE*)();
  const auto registerAgain = winhost::Export<RegisterFunction>("DllRegisterServer");
  EXPECT_TRUE(PumpUntil([&] {
    page().Say(L"{\"action\":\"getFontList\"}");
    page().Say(L"{\"action\":\"clientInfoGet\"}");
    registerAgain();
    return sawAll();
  }));
  watcher.End();
  for (std::size_t i = 0; i < kLiveKinds; ++i) {
    EXPECT_TRUE(watcher.saw(static_cast<LiveKind>(i))) << "of kind " << i;
  }
}

TEST_F(CyclesTest, AConnectionThatIsNotLetGoOfShows) {
  const ComPtr<IDispatch> application = OpenSmallDeck();
  ASSERT_EQ(S_OK, host.Start(application.get()));
  const ComPtr<IUnknown> leaked(host.connect());
  host.Unload();
  // The object, and of the host the application, the factory and the ribbon; with the window of the
  // thread's messages.
  ExpectOnly({{LiveKind::kComObject, 1}, {LiveKind::kHostReference, 3}, {LiveKind::kWindow, 1}});
  EXPECT_EQ(3, world.references());
}

TEST_F(CyclesTest, APaneThatTheHostForgetsShows) {
  const ComPtr<IDispatch> application = OpenSmallDeck();
  OpenPane(application.get());
  const ComPtr<IOleObject> leaked(host.factory->panes.back()->control());
  host.Stop();
  // Without its window, yet with the application that it was made for.
  ExpectOnly({{LiveKind::kComObject, 1}, {LiveKind::kHostReference, 1}, {LiveKind::kWindow, 1}});
}

TEST_F(CyclesTest, AWindowThatIsNotClosedShowsWithItsTimerAndItsBrowser) {
  const ComPtr<IDispatch> application = OpenSmallDeck();
  OpenPane(application.get());
  host.Unload();
  EXPECT_EQ(2, CountOf(LiveKind::kWindow));
  EXPECT_EQ(1, CountOf(LiveKind::kTimer));
  EXPECT_EQ(3, CountOf(LiveKind::kBrowser));
  EXPECT_EQ(3, Browser().LiveHandlers());
  EXPECT_GT(Browser().LiveObjects(), 0);
  // The control and the three handlers.
  EXPECT_EQ(4, CountOf(LiveKind::kComObject));
}

TEST_F(CyclesTest, AWorkerThatStillRunsShows) {
  const ComPtr<IDispatch> application = OpenSmallDeck();
  OpenPane(application.get());
  page().Say(L"{\"action\":\"start\",\"panelMode\":\"full\",\"targetLang\":\"es\"}");
  ASSERT_TRUE(PumpUntil([this] { return !page().Messages(u"terminologyResolveRequest").empty(); }));
  EXPECT_EQ(1, CountOf(LiveKind::kThread));
  page().Say(L"{\"action\":\"cancel\"}");
  AnswerTerminology();
  EXPECT_EQ(L"onCancelled", WaitForEnd());
}

}  // namespace quillmarch::addin
