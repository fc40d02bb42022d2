// Runs from the ribbon's button to the saved deck: the module over real COM and WinHTTP, the deck
// in the headless host, the engine behind TLS.
#include <cstdio>
#include <sstream>

#include "foundation/automation/ComObject.h"
#include "windows/host/Fixture.h"

namespace quillmarch::addin {

using winhost::CountOf;
using winhost::Logged;
using winhost::ModuleTest;
using winhost::PumpFor;
using winhost::PumpUntil;
using winhost::Setting;

namespace {

std::vector<std::wstring> Listed(const wchar_t* name) {
  std::vector<std::wstring> items;
  std::wistringstream list(Setting(name));
  for (std::wstring item; std::getline(list, item, L':');) items.push_back(item);
  return items;
}

class RunTest : public ModuleTest {
 protected:
  std::int64_t Count(WideView member) { return static_cast<std::int64_t>(Ask(member).real()); }
  // The page's terminology is empty; the first batch is left for the test.
  void WaitForBatch() {
    AnswerTerminology();
    ASSERT_TRUE(PumpUntil([this] { return !page().Messages(u"translateBatchRequest").empty(); }));
  }
  static std::wstring Sample(const wchar_t* name) {
    return Setting(L"QUILLMARCH_TEST_SAMPLES") + L"/" + name;
  }
};

class RefusalTest : public RunTest {};
class HangTest : public RunTest {};

}  // namespace

// The program that started this one compares what was saved with what the command saves.
TEST_F(RunTest, DecksAreTranslatedAndSaved) {
  const std::vector<std::wstring> decks = Listed(L"QUILLMARCH_TEST_DECKS");
  ASSERT_FALSE(decks.empty());
  for (const std::wstring& deck : decks) {
    const std::wstring name = deck.substr(deck.find_last_of(L'/') + 1);
    const ComPtr<IDispatch> application = OpenDeck(deck);
    ASSERT_TRUE(application);
    OpenPane(application.get());
    const std::int64_t invokes = Count(u"Invokes");
    const std::int64_t lookUps = Count(u"NameLookups");
    const std::int64_t jumps = Count(u"Jumps");
    page().Say(StartMessage());
    // The first event is posted, so the run's start lies behind it in one piece.
    ASSERT_TRUE(PumpUntil([this] { return page().Called(L"onRunStarted") == 1; }));
    const std::int64_t toCollect = Count(u"Invokes") - invokes;
    EXPECT_EQ(L"onComplete", WaitForEnd()) << ToUtf8(page().Payload(L"onError"));
    EXPECT_EQ(1U, page().Called(L"onReady"));
    std::printf("calls %ls %lld %lld %lld %lld\n", name.c_str(), static_cast<long long>(toCollect),
                static_cast<long long>(Count(u"Invokes") - invokes),
                static_cast<long long>(Count(u"NameLookups") - lookUps),
                static_cast<long long>(Count(u"Jumps") - jumps));
    const std::wstring out = Setting(L"QUILLMARCH_TEST_FOLDER") + L"/" + name;
    EXPECT_TRUE(VariantToFlag(Ask(u"Save", {Variant::Text(FromWinText(out))})));
    host.Stop();
    pages.clear();
  }
}

TEST_F(RunTest, ThePageTranslatesWhenItIsAskedTo) {
  const ComPtr<IDispatch> application = OpenDeck(Sample(L"quarterly-review.pptx"));
  OpenPane(application.get());
  page().Say(L"{\"action\":\"start\",\"panelMode\":\"slide\",\"targetLang\":\"es\"}");
  WaitForBatch();
  const Wide request = page().Messages(u"translateBatchRequest")[0];
  std::wstring answer = L"{\"action\":\"translateBatchResult\",\"requestId\":\"" +
                        ToWinText(JsonGetString(request, u"requestId")) +
                        L"\",\"ok\":true,\"translations\":[";
  const wchar_t* comma = L"";
  for (std::size_t i = 0; i < JsonGetStringArray(request, u"texts").size(); ++i) {
    answer += comma;
    answer += L"\"von der Seite\"";
    comma = L",";
  }
  page().Say(answer + L"]}");
  EXPECT_EQ(L"onComplete", WaitForEnd()) << ToUtf8(page().Payload(L"onError"));
  EXPECT_TRUE(VariantToFlag(Ask(u"Edited")));
}

TEST_F(RunTest, ANavigationInMidBatchEndsItAndACancelEndsTheRun) {
  const ComPtr<IDispatch> application = OpenDeck(Sample(L"quarterly-review.pptx"));
  OpenPane(application.get());
  page().Say(L"{\"action\":\"start\",\"panelMode\":\"slide\",\"targetLang\":\"es\"}");
  WaitForBatch();
  page().Say(L"{\"action\":\"cancel\"}");
  EXPECT_EQ(L"onCancelled", WaitForEnd());
  EXPECT_FALSE(VariantToFlag(Ask(u"Edited")));
}

TEST_F(RunTest, TheHostMayCloseInMidRun) {
  const ComPtr<IDispatch> application = OpenDeck(Sample(L"many-scripts.pptx"));
  OpenPane(application.get());
  page().Say(L"{\"action\":\"start\",\"panelMode\":\"full\",\"targetLang\":\"es\"}");
  WaitForBatch();
  // The worker waits for the page; the shutdown ends its wait.
  EXPECT_EQ(1, CountOf(LiveKind::kThread));
  host.Stop();
  EXPECT_TRUE(Logged("PptPane run finished"));
}

TEST_F(RunTest, AWindowThatIsDestroyedInMidRunEndsIt) {
  const ComPtr<IDispatch> application = OpenDeck(Sample(L"many-scripts.pptx"));
  OpenPane(application.get());
  page().Say(StartMessage());
  ASSERT_TRUE(PumpUntil([this] { return page().Called(L"onReady") == 1; }));
  host.factory->panes.back()->DestroyWindowFirst();
  PumpFor(300);
  host.Stop();
}

TEST_F(RunTest, AHostThatLetsGoOfEverythingInMidRunWithoutAWordEndsIt) {
  const ComPtr<IDispatch> application = OpenDeck(Sample(L"many-scripts.pptx"));
  OpenPane(application.get());
  page().Say(StartMessage());
  ASSERT_TRUE(PumpUntil([this] { return page().Called(L"onReady") == 1; }));
  host.Unload();
  host.factory->DestroyPanes();
  EXPECT_TRUE(page().closed);
}

TEST_F(RunTest, AHostThatGoesInMidRunEndsItWithoutACrash) {
  const ComPtr<IDispatch> application = OpenDeck(Sample(L"many-scripts.pptx"));
  OpenPane(application.get());
  page().Say(StartMessage());
  ASSERT_TRUE(PumpUntil([this] { return page().Called(L"onReady") == 1; }));
  world.Disconnect();
  EXPECT_NE(L"", WaitForEnd());
  host.Stop();
}

// In a process of its own: what it leaves goes with that.
TEST_F(HangTest, AWorkerThatHangsAtShutdownKeepsTheControlUntilItEnds) {
  const ComPtr<IDispatch> application = OpenDeck(Sample(L"many-scripts.pptx"));
  OpenPane(application.get());
  // The terminology's wait ends by the page's answer alone.
  page().Say(L"{\"action\":\"start\",\"panelMode\":\"full\",\"targetLang\":\"es\"}");
  ASSERT_TRUE(PumpUntil([this] { return !page().Messages(u"terminologyResolveRequest").empty(); }));
  const ULONGLONG begin = GetTickCount64();
  EXPECT_EQ(S_OK, host.OnBeginShutdown());
  const ULONGLONG waited = GetTickCount64() - begin;
  EXPECT_GE(waited, 1900U);
  EXPECT_LT(waited, 10000U);
  EXPECT_TRUE(Logged("PptPane shutdown: run worker busy, object kept alive"));
  EXPECT_TRUE(page().closed);
  host.factory->DestroyPanes();
  host.OnDisconnection();
  host.Unload();
  // The pane object is held by its run alone now.
  EXPECT_EQ(1, CountOf(LiveKind::kThread));
  EXPECT_LE(1, CountOf(LiveKind::kComObject));
  using CanUnloadFunction = HRESULT(STDAPICALLTYPE*)();
  EXPECT_EQ(S_FALSE, winhost::Export<CanUnloadFunction>("DllCanUnloadNow")());
  keptByAWorker = true;
}

// Run without trust in the service's certificate.
TEST_F(RefusalTest, AServiceThatNobodyVouchesForIsNotSpokenTo) {
  const ComPtr<IDispatch> application = OpenDeck(Sample(L"quarterly-review.pptx"));
  OpenPane(application.get());
  page().Say(StartMessage());
  EXPECT_EQ(L"onError", WaitForEnd());
  std::printf("refused with %s\n", ToUtf8(page().Payload(L"onError")).c_str());
  EXPECT_FALSE(VariantToFlag(Ask(u"Edited")));
}

}  // namespace quillmarch::addin
