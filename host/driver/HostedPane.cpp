#include "host/driver/HostedPane.h"

#include <utility>

#include "foundation/automation/Automation.h"
#include "foundation/automation/HostId.h"
#include "host/driver/UnattendedInput.h"
#include "host/layout/DesktopFonts.h"
#include "pane/HandOver.h"

namespace quillmarch::host {

namespace {

// Handles that no real window system would give out.
constexpr std::uintptr_t kFirstPaneWindow = 0x61000;

WindowContext ContextOf(AutomationObject* window) {
  WindowContext context;
  Variant hwnd;
  if (Succeeded(AutoGet(window, u"HWND", hwnd))) VariantToWhole(hwnd, context.hwnd);
  context.id = window->Identity();
  return context;
}

// A pane may outlive its host, so these outlive every pane.
InputState& Input() {
  static UnattendedInput input;
  return input;
}
FontList& Fonts() {
  static DesktopFonts fonts;
  return fonts;
}

}  // namespace

HostedPane::HostedPane(ObjectRef application, HostThread& thread, std::shared_ptr<WebView> page,
                       addin::RunObserver observer, std::uint32_t bridgeWaitMs) {
  static std::int32_t panesMade = 0;
  DetectHost(application.get());
  addin::HandOver& block = addin::HandOverBlock();
  if (AutoGetObject(application.get(), u"ActiveWindow", block.window)) {
    block.context = ContextOf(block.window.get());
  }
  block.app = std::move(application);
  block.paneId = panesMade++;
  addin::PaneSurroundings surroundings{.thread = thread,
                                       .input = Input(),
                                       .fonts = Fonts(),
                                       .observer = std::move(observer),
                                       .startWebView = {},
                                       .createWindow = {},
                                       .bridgeWaitMs = bridgeWaitMs};
  surroundings.startWebView = [page = std::move(page)](addin::CPptPane& pane) {
    pane.browser().AttachWebView(nullptr, page);
  };
  pane_ = addin::CPptPane::Create(std::move(surroundings));
  block = {};
  pane_->OnCreate(kFirstPaneWindow + static_cast<std::uintptr_t>(pane_->paneId()));
}

HostedPane::~HostedPane() {
  pane_->OnDestroy();
}

}  // namespace quillmarch::host
