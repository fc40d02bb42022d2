#include "shell/ShellHarness.h"

#include "foundation/text/JsonText.h"
#include "pane/HandOver.h"
#include "pane/LivePanes.h"
#include "pane/WebViewFailure.h"
#include "support/ScriptedObject.h"

namespace quillmarch::addin::test {

namespace {

constexpr DispId kIdId = 1;
constexpr DispId kContextId = 2;

}  // namespace

class ShellHarness::Factory final : public TaskPaneFactory {
 public:
  explicit Factory(ShellHarness& harness) : harness_(harness) {}
  ResultCode CreateCTP(const Wide& progId, const Wide& title, const ObjectRef& parentWindow,
                       std::shared_ptr<TaskPane>& out) override {
    return harness_.Create(progId, title, parentWindow, out);
  }

 private:
  ShellHarness& harness_;
};

ShellHarness::ShellHarness() {
  ForgetAddinLoaded();
  ForgetFailureDialog();
  ForgetWebViewInitError();
  ProcessAccessToken().clear();
  HandOverBlock() = {};
  SetBeaconSender([this](const AnalyticsBeacon& beacon) {
    const Wide body = ToWide(beacon.body);
    events.push_back(
        ToUtf8(JsonFindString(body, u"event") + u" " + JsonFindString(body, u"source")));
  });
  host.AddPresentation();
  connect = std::make_shared<CConnect>(ShellSurroundings{thread, desktop, resources});
  connect->OnConnection(host.Application());
  connect->CTPFactoryAvailable(std::make_shared<Factory>(*this));
}

ShellHarness::~ShellHarness() {
  connect.reset();
  for (const Made& one : made_) {
    if (one.pane->HasWindow()) one.pane->OnDestroy();
  }
  made_.clear();
  while (ReleaseEndedPanes() > 0) thread.WaitForOutsideWork(1);
  HandOverBlock() = {};
  SetBeaconSender({});
}

FakeWindow& ShellHarness::AddWindow() {
  return host.AddWindow(host.presentations.front());
}

void ShellHarness::CloseWindow(std::size_t index) {
  host.windows.erase(host.windows.begin() + static_cast<std::ptrdiff_t>(index));
}

ObjectRef ShellHarness::Control(const Wide& id, const ObjectRef& context) {
  ScriptedObject* made = nullptr;
  ObjectRef ref = ScriptedObject::Make(made);
  if (!id.empty()) made->Value(u"Id", kIdId, Variant::Text(id));
  if (context) made->Value(u"Context", kContextId, Variant::Object(context));
  return ref;
}

ObjectRef ShellHarness::ControlIn(std::size_t windowIndex, const Wide& id) {
  return Control(id, host.WindowObject(window(windowIndex)));
}

ResultCode ShellHarness::Click(DispId id, std::size_t windowIndex) {
  return ClickWith(id, ControlIn(windowIndex));
}

ResultCode ShellHarness::ClickWith(DispId id, const ObjectRef& control) {
  const RibbonArgument args[] = {
      {static_cast<std::uint16_t>(VariantType::kObject), Variant::Object(control)}};
  ResultCode code = kFail;
  connect->Invoke(id, args, nullptr, code);
  return code;
}

std::vector<std::string> ShellHarness::BoxTexts() const {
  std::vector<std::string> texts;
  for (const ScriptedDesktop::Message& message : desktop.messages) {
    texts.push_back(ToUtf8(message.text));
  }
  return texts;
}

ResultCode ShellHarness::Create(const Wide& progId, const Wide& title,
                                const ObjectRef& parentWindow, std::shared_ptr<TaskPane>& out) {
  if (onCreate) onCreate();
  if (Failed(createResult)) return createResult;
  if (createsNothing) return kOk;
  Made one;
  one.browser = std::make_shared<ScriptedBrowser>();
  one.pane = CPptPane::Create({.thread = thread,
                               .input = input,
                               .fonts = fonts,
                               .observer = {},
                               .startWebView = {},
                               .createWindow = {},
                               .bridgeWaitMs = bridgeWaitMs,
                               .loader = one.browser.get(),
                               .desktop = &desktop});
  one.pane->OnCreate(0xC0DE + made_.size());
  one.task = std::make_shared<TaskPaneState>();
  one.task->progId = progId;
  one.task->title = title;
  one.task->window = landsIn ? landsIn : parentWindow;
  one.task->width = firstWidth;
  one.task->takesWidth = takesWidth;
  out = std::make_shared<FakeTaskPane>(one.task);
  made_.push_back(std::move(one));
  return kOk;
}

}  // namespace quillmarch::addin::test
