#include "windows/host/Fixture.h"

#include <ole2.h>

#include <fstream>
#include <iterator>

#include "foundation/automation/Automation.h"
#include "foundation/automation/ComObject.h"
#include "foundation/system/Files.h"
#include "foundation/system/KnownFolders.h"
#include "foundation/system/LiveCounts.h"
#include "windows/host/ControlSite.h"
#include "windows/host/Slots.h"

namespace quillmarch::addin::winhost {

namespace {

constexpr CLSID kPaneClass = {
    0xB0C1D2E3, 0x4F5A, 0x6B7C, {0x8D, 0x9E, 0x0F, 0x1A, 0x2B, 0x3C, 0x4D, 0x5E}};
constexpr IID kModuleCounts = {
    0x7D1E4C52, 0x93B6, 0x4A0F, {0x8C, 0x27, 0x51, 0xE0, 0xB9, 0x64, 0xD3, 0x1A}};

using GetClassObjectFunction = HRESULT(STDAPICALLTYPE*)(REFCLSID, REFIID, void**);

// The apartment of the host thread, and the module's registration, for the whole program.
class Process final : public ::testing::Environment {
 public:
  void SetUp() override {
    ASSERT_EQ(S_OK, OleInitialize(nullptr));
    ASSERT_EQ(0U, RunRegsvr(L"/s")) << "the module could not be registered";
  }
  void TearDown() override { RunRegsvr(L"/u /s"); }

 private:
  // In a process of its own, so that in this one the module's first load is the host's.
  static DWORD RunRegsvr(const std::wstring& options) {
    std::wstring command = L"regsvr32.exe " + options + L" \"" + TestedModulePath() + L"\"";
    STARTUPINFOW start = {};
    start.cb = sizeof start;
    PROCESS_INFORMATION process = {};
    if (CreateProcessW(nullptr, command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                       &start, &process) == FALSE) {
      return GetLastError();
    }
    WaitForSingleObject(process.hProcess, INFINITE);
    DWORD code = 0;
    GetExitCodeProcess(process.hProcess, &code);
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    return code;
  }
};

[[maybe_unused]] const ::testing::Environment* const kProcess =
    ::testing::AddGlobalTestEnvironment(new Process);

std::uint16_t HostPort() {
  return static_cast<std::uint16_t>(_wtoi(Setting(L"QUILLMARCH_TEST_HOST_PORT").c_str()));
}

}  // namespace

std::wstring Setting(const wchar_t* name) {
  wchar_t value[4096] = {};
  GetEnvironmentVariableW(name, value, static_cast<DWORD>(std::size(value)));
  return value;
}

HMODULE TestedModule() {
  static const HMODULE module = LoadLibraryW(TestedModulePath().c_str());
  return module;
}

std::wstring TestedModulePath() {
  return Setting(L"QUILLMARCH_TEST_MODULE");
}

std::vector<long> ModuleCounts() {
  ComPtr<IUnknown> factory;
  Export<GetClassObjectFunction>("DllGetClassObject")(kPaneClass, kModuleCounts,
                                                      reinterpret_cast<void**>(factory.put()));
  std::vector<long> counts;
  if (!factory) return counts;
  constexpr std::size_t kLiveCountOf = 3;
  for (std::size_t kind = 0; kind < kLiveKinds; ++kind) {
    counts.push_back(CallSlot(factory.get(), kLiveCountOf, static_cast<LONG>(kind)));
  }
  --counts[static_cast<std::size_t>(LiveKind::kComObject)];  // this reference to the factory
  return counts;
}

long CountOf(LiveKind kind) {
  return ModuleCounts().at(static_cast<std::size_t>(kind));
}

standin::Control& Browser() {
  static const HMODULE loader = LoadLibraryW(Setting(L"QUILLMARCH_TEST_BROWSER").c_str());
  const auto get = reinterpret_cast<standin::GetControl>(
      reinterpret_cast<void*>(GetProcAddress(loader, standin::kGetControl)));
  return *get();
}

std::vector<std::string> LogLines() {
  std::string bytes;
  ReadWholeFile(JoinPath(JoinPath(JoinPath(LocalDataFolder(), u"Quillmarch"), u"log"),
                         u"QuillmarchPane_ppt_trace.log"),
                bytes);
  const WideView text(reinterpret_cast<const char16_t*>(bytes.data()),
                      bytes.size() / sizeof(char16_t));
  std::vector<std::string> lines;
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t end = text.find(u"\r\n", at);
    if (end == WideView::npos) break;
    const WideView line = text.substr(at, end - at);
    const std::size_t stamp = line.find(u"] ");
    lines.push_back(ToUtf8(stamp == WideView::npos ? line : line.substr(stamp + 2)));
    at = end + 2;
  }
  return lines;
}

bool Logged(const std::string& line) {
  const std::vector<std::string> lines = LogLines();
  return std::find(lines.begin(), lines.end(), line) != lines.end();
}

ModuleTest::ModuleTest() : world(HostPort()), desk(world.Root()) {
  EXPECT_TRUE(world.connected()) << "no quillmarch-host answers";
  for (const auto stage :
       {standin::Stage::kCreate, standin::Stage::kEnvironment, standin::Stage::kController,
        standin::Stage::kView, standin::Stage::kSettings}) {
    Browser().Fail(stage, S_OK);
    Browser().GiveNothing(stage, false);
    Browser().Hold(stage, false);
  }
  Browser().ForgetCalls();
  // What the user has set is that of a new one.
  DeleteOneFile(JoinPath(JoinPath(LocalDataFolder(), u"Quillmarch"), u"config.json"));
  Browser().SetBackend([this](standin::PageEvents& events) {
    pages.push_back(std::make_shared<PageRecord>());
    return std::make_unique<ScriptedPage>(pages.back(), events);
  });
}

// Every test ends with nothing left: not of the host's objects, not of the browser's, not of the
// module's.
ModuleTest::~ModuleTest() {
  host.factory->DestroyPanes();
  host.Unload();
  if (keptByAWorker) return;
  // What the browser completes late, and events to the service, may still be on their way.
  EXPECT_TRUE(PumpUntil([] {
    Browser().Deliver();
    return CountOf(LiveKind::kThread) == 0 && Browser().LiveHandlers() == 0;
  }));
  EXPECT_EQ(0, Browser().LiveObjects()) << "objects of the browser";
  EXPECT_EQ(0, Browser().LiveHandlers()) << "handlers that the browser holds";
  EXPECT_EQ(1U, host.factory->references()) << "references to the task pane factory";
  EXPECT_EQ(1U, host.ribbon->references()) << "references to the ribbon";
  EXPECT_EQ(2, HostObject::Live()) << "objects of the host, the factory and the ribbon included";
  EXPECT_EQ(0, ControlSite::Live()) << "sites of controls";
  EXPECT_EQ(desk ? 1 : 0, world.references()) << "references to the headless host's objects";
  const std::vector<long> counts = ModuleCounts();
  for (std::size_t kind = 0; kind < counts.size(); ++kind) {
    EXPECT_EQ(0, counts[kind]) << "left in the module, of kind " << kind;
  }
}

Variant ModuleTest::Ask(WideView member, std::vector<Variant> args) {
  Variant value;
  const ObjectRef object = WrapDispatch(desk.get());
  EXPECT_EQ(kOk, AutoGet(object.get(), member, args, value)) << ToUtf8(member);
  return value;
}

ObjectRef ModuleTest::Member(IDispatch* object, WideView name) {
  ObjectRef member;
  AutoGetObject(WrapDispatch(object).get(), name, member);
  return member;
}

ComPtr<IDispatch> ModuleTest::OpenDeck(const std::wstring& path, const std::wstring& personality) {
  const Variant application =
      Ask(u"Open", {Variant::Text(FromWinText(path)), Variant::Text(FromWinText(personality))});
  EXPECT_TRUE(application.hasObject()) << ToUtf8(VariantToText(Ask(u"Error")));
  if (!application.hasObject()) return {};
  return ComPtr<IDispatch>(DispatchOf(application.object().get()));
}

void ModuleTest::OpenPane(IDispatch* application) {
  ASSERT_EQ(S_OK, host.Start(application));
  ASSERT_EQ(S_OK, host.Click(L"btnTranslateFullDoc"));
  ASSERT_TRUE(PumpUntil([this] { return !pages.empty() && !page().navigations.empty(); }));
  page().Load();
}

std::wstring ModuleTest::StartMessage(const std::wstring& moreFields) {
  return L"{\"action\":\"start\",\"panelMode\":\"full\",\"targetLang\":\"es\","
         L"\"transport\":\"native\",\"accessToken\":\"test-token\",\"targetFont\":\"\"" +
         moreFields + L"}";
}

void ModuleTest::AnswerTerminology() {
  ASSERT_TRUE(PumpUntil([this] { return !page().Messages(u"terminologyResolveRequest").empty(); }));
  const Wide request = page().Messages(u"terminologyResolveRequest").back();
  page().Say(L"{\"action\":\"terminologyResolveResult\",\"requestId\":\"" +
             ToWinText(JsonGetString(request, u"requestId")) + L"\",\"ok\":true,\"result\":{}}");
}

std::wstring ModuleTest::WaitForEnd() {
  std::wstring end;
  PumpUntil([&] {
    for (const wchar_t* const function : {L"onComplete", L"onError", L"onCancelled"}) {
      if (page().Called(function) > 0) end = function;
    }
    return !end.empty();
  });
  // The run's last steps come behind its last event.
  PumpUntil([] { return CountOf(LiveKind::kThread) == 0; });
  return end;
}

ComPtr<IDispatch> ModuleTest::OpenSample() {
  return OpenDeck(Setting(L"QUILLMARCH_TEST_SAMPLES") + L"/quarterly-review.pptx");
}

}  // namespace quillmarch::addin::winhost
