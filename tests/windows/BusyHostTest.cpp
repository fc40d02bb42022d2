// Runs in a host that answers calls with what a host answers with when it is busy, rejects calls or
// has gone: each run ends, says how, and leaves nothing behind.
#include <cstdio>
#include <map>

#include "foundation/automation/ComObject.h"
#include "windows/host/Fixture.h"

namespace quillmarch::addin {

using winhost::ModuleTest;
using winhost::Setting;

namespace {

constexpr HRESULT kIgnored = static_cast<HRESULT>(0x800AC472);  // a host with a dialog open

// Busy and rejecting, then gone, then out of breath.
constexpr HRESULT kCodes[] = {RPC_E_CALL_REJECTED,
                              RPC_E_SERVERCALL_RETRYLATER,
                              RPC_E_SERVERCALL_REJECTED,
                              RPC_E_CALL_CANCELED,
                              kIgnored,
                              RPC_E_DISCONNECTED,
                              RPC_E_SERVER_DIED,
                              RPC_E_SERVER_DIED_DNE,
                              CO_E_OBJNOTCONNECTED,
                              HRESULT_FROM_WIN32(RPC_S_SERVER_UNAVAILABLE),
                              HRESULT_FROM_WIN32(RPC_S_CALL_FAILED),
                              DISP_E_EXCEPTION,
                              E_ACCESSDENIED,
                              E_OUTOFMEMORY};

class BusyHostTest : public ModuleTest {
 protected:
  // A run of the small deck in which the call of that number fails, and as many more behind it; how
  // it ended.
  std::wstring Run(int number, HRESULT code, int more) {
    const ComPtr<IDispatch> application =
        OpenDeck(Setting(L"QUILLMARCH_TEST_FOLDER") + L"/small.pptx");
    OpenPane(application.get());
    Ask(u"FailCall", {Variant::I4(number), Variant::I4(code), Variant::I4(more)});
    page().Say(StartMessage());
    const std::wstring end = WaitForEnd();
    Ask(u"FailCall", {Variant::I4(0), Variant::I4(0)});
    EXPECT_TRUE(boxes.seen().empty());
    host.Stop();
    pages.clear();
    // The application here, which goes at the end of this, and the desk.
    EXPECT_EQ(2, world.references());
    return end;
  }
  // How many calls a run takes in which none fails, look-ups of names included.
  int CallsOfARun() {
    const ComPtr<IDispatch> application =
        OpenDeck(Setting(L"QUILLMARCH_TEST_FOLDER") + L"/small.pptx");
    OpenPane(application.get());
    const double before = Ask(u"Invokes").real() + Ask(u"NameLookups").real();
    page().Say(StartMessage());
    EXPECT_EQ(L"onComplete", WaitForEnd());
    const double calls = Ask(u"Invokes").real() + Ask(u"NameLookups").real() - before;
    host.Stop();
    pages.clear();
    return static_cast<int>(calls);
  }
};

constexpr int kForGood = 1000000;
constexpr int kForAWhile = 12;

}  // namespace

// Other calls for each code, all over the run.
TEST_F(BusyHostTest, ARunEndsWhateverAHostAnswersOnceForAWhileOrForGood) {
  const int calls = CallsOfARun();
  ASSERT_GT(calls, 50);
  int number = 1;
  std::map<std::wstring, int> ends;
  for (const HRESULT code : kCodes) {
    for (const int more : {0, 0, 0, kForAWhile, kForAWhile, kForGood}) {
      SCOPED_TRACE(::testing::Message()
                   << std::hex << code << std::dec << " at " << number << " and " << more);
      const std::wstring end = Run(number, code, more);
      EXPECT_NE(L"", end);
      ++ends[end];
      number = (number + calls * 3 / 8) % calls + 1;
    }
  }
  for (const auto& [end, count] : ends) std::printf("%d times %ls\n", count, end.c_str());
  // What a run can do without does not end it; what it cannot is told.
  EXPECT_GT(ends[L"onComplete"], 0);
  EXPECT_GT(ends[L"onError"], 0);
}

}  // namespace quillmarch::addin
