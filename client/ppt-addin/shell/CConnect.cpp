#include "shell/CConnect.h"

#include <atomic>
#include <exception>
#include <utility>

#include "foundation/automation/HostId.h"
#include "foundation/identity/Analytics.h"
#include "foundation/log/Log.h"
#include "foundation/settings/DisplayLanguage.h"
#include "pane/CPptPane.h"
#include "pane/LivePanes.h"

namespace quillmarch::addin {

namespace {

std::atomic<std::uint8_t> loadedSent{0};

}  // namespace

void ForgetAddinLoaded() {
  loadedSent = 0;
}

CConnect::CConnect(ShellSurroundings surroundings) : surroundings_(surroundings) {}

CConnect::~CConnect() {
  LeaveWidthHook();
}

ResultCode CConnect::OnConnection(const ObjectRef& application) {
  return Enter([&] {
    hostApp = application;
    // The host may disconnect us inside a call.
    const ObjectRef held = application;
    DetectHost(held.get());
    LogLine(u"PPT OnConnection hostApp=" + HostWord() + u" appName=" +
            (HostName().empty() ? Wide(u"(unknown)") : HostName()));
    std::uint8_t unsent = 0;
    if (loadedSent.compare_exchange_strong(unsent, 1)) {
      SendAnalyticsEvent(u"addin:loaded", u"client");
    }
    return kOk;
  });
}

ResultCode CConnect::OnDisconnection() {
  return Enter([&] {
    SaveAllOnShutdown();
    LeaveWidthHook();
    // Out of the map first: hiding a pane may let anything in.
    PaneMap closing = std::exchange(panes, {});
    for (auto& [key, entry] : closing) {
      if (entry.pane == nullptr) continue;
      entry.pane->PutVisible(false);
      entry.pane.reset();
    }
    std::exchange(ctpFactory, nullptr).reset();
    std::exchange(hostApp, {}).Reset();
    std::exchange(ribbonUi, {}).Reset();
    return kOk;
  });
}

ResultCode CConnect::OnAddInsUpdate() {
  return kOk;
}

ResultCode CConnect::OnStartupComplete() {
  return kOk;
}

ResultCode CConnect::OnBeginShutdown() {
  return Enter([&] {
    SaveAllOnShutdown();
    LeaveWidthHook();
    for (const std::shared_ptr<CPptPane>& pane : LivePanes()) pane->BeginShutdownEarly();
    return kOk;
  });
}

ResultCode CConnect::CTPFactoryAvailable(std::shared_ptr<TaskPaneFactory> factory) {
  return Enter([&] {
    ctpFactory = std::move(factory);
    LogLine(u"PPT CTPFactoryAvailable");
    return kOk;
  });
}

ResultCode CConnect::Enter(const std::function<ResultCode()>& body) {
  try {
    return body();
  } catch (const std::exception&) {
    // Memory ran out, or no thread could be had. The host is told nothing that could unload us.
    return kOk;
  }
}

void CConnect::ShowBox(const Wide& text, std::uint32_t style) {
  surroundings_.desktop.ShowMessage(0, text, Text(u"msg.title"), style);
}

}  // namespace quillmarch::addin
