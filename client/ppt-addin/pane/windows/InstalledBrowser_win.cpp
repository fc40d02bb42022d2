#include "pane/windows/InstalledBrowser.h"

#include <windows.h>

#include <utility>

#include "foundation/automation/ComClass.h"
#include "foundation/system/Files.h"
#include "foundation/system/KnownFolders.h"
#include "foundation/system/LiveCounts.h"
#include "foundation/system/WinText.h"
#include "pane/windows/WebView2.h"

namespace quillmarch::addin {

namespace {

constexpr WideView kLoaderName = u"WebView2Loader.dll";
constexpr char kCreateEnvironment[] = "CreateCoreWebView2EnvironmentWithOptions";

// A text that the browser made for its caller.
class BrowserText {
 public:
  BrowserText() = default;
  ~BrowserText() { CoTaskMemFree(text_); }
  BrowserText(const BrowserText&) = delete;
  BrowserText& operator=(const BrowserText&) = delete;
  LPWSTR* put() { return &text_; }
  Wide get() const { return text_ == nullptr ? Wide() : FromWinText(text_); }

 private:
  LPWSTR text_ = nullptr;
};

// What comes from the browser later, handed to the pane if there still is one.
class Handler {
 protected:
  explicit Handler(std::weak_ptr<WebViewSink> sink) : sink_(std::move(sink)) {}
  std::shared_ptr<WebViewSink> sink() const { return sink_.lock(); }

 private:
  std::weak_ptr<WebViewSink> sink_;
  LiveCount<LiveKind::kComObject> live_;
};

class MessageHandler final
    : public ComClass<MessageHandler, ICoreWebView2WebMessageReceivedEventHandler>,
      Handler {
 public:
  explicit MessageHandler(std::weak_ptr<WebViewSink> sink) : Handler(std::move(sink)) {}
  HRESULT STDMETHODCALLTYPE Invoke(ICoreWebView2*,
                                   ICoreWebView2WebMessageReceivedEventArgs* args) override {
    return WithoutThrowing([&] {
      BrowserText json;
      const auto pane = sink();
      if (pane != nullptr && args != nullptr && SUCCEEDED(args->get_WebMessageAsJson(json.put()))) {
        pane->OnWebMessageReceived(json.get());
      }
      return S_OK;
    });
  }
};

class StartingHandler final
    : public ComClass<StartingHandler, ICoreWebView2NavigationStartingEventHandler>,
      Handler {
 public:
  explicit StartingHandler(std::weak_ptr<WebViewSink> sink) : Handler(std::move(sink)) {}
  HRESULT STDMETHODCALLTYPE Invoke(ICoreWebView2*, IUnknown*) override {
    return WithoutThrowing([&] {
      if (const auto pane = sink()) pane->OnNavigationStarting();
      return S_OK;
    });
  }
};

class CompletedHandler final
    : public ComClass<CompletedHandler, ICoreWebView2NavigationCompletedEventHandler>,
      Handler {
 public:
  explicit CompletedHandler(std::weak_ptr<WebViewSink> sink) : Handler(std::move(sink)) {}
  HRESULT STDMETHODCALLTYPE Invoke(ICoreWebView2*,
                                   ICoreWebView2NavigationCompletedEventArgs* args) override {
    return WithoutThrowing([&] {
      BOOL success = FALSE;
      if (args == nullptr || FAILED(args->get_IsSuccess(&success))) success = FALSE;
      if (const auto pane = sink()) pane->OnNavigationCompleted(success != FALSE);
      return S_OK;
    });
  }
};

class PageSettings final : public WebViewSettings {
 public:
  explicit PageSettings(ComPtr<ICoreWebView2Settings> settings) : settings_(std::move(settings)) {}
  void PutAreDevToolsEnabled(bool enabled) override {
    settings_->put_AreDevToolsEnabled(enabled ? TRUE : FALSE);
  }
  void PutIsStatusBarEnabled(bool enabled) override {
    settings_->put_IsStatusBarEnabled(enabled ? TRUE : FALSE);
  }

 private:
  ComPtr<ICoreWebView2Settings> settings_;
  LiveCount<LiveKind::kBrowser> live_;
};

class Page final : public WebView {
 public:
  explicit Page(ComPtr<ICoreWebView2> page) : page_(std::move(page)) {}

  std::shared_ptr<WebViewSettings> Settings() override {
    ComPtr<ICoreWebView2Settings> settings;
    if (FAILED(page_->get_Settings(settings.put())) || !settings) return nullptr;
    return std::make_shared<PageSettings>(std::move(settings));
  }
  // The browser releases its handlers when it is closed, so no token is kept.
  void AddWebMessageReceived(std::weak_ptr<WebViewSink> sink) override {
    EventRegistrationToken token = {};
    page_->add_WebMessageReceived(MessageHandler::Make(std::move(sink)).get(), &token);
  }
  void AddNavigationStarting(std::weak_ptr<WebViewSink> sink) override {
    EventRegistrationToken token = {};
    page_->add_NavigationStarting(StartingHandler::Make(std::move(sink)).get(), &token);
  }
  void AddNavigationCompleted(std::weak_ptr<WebViewSink> sink) override {
    EventRegistrationToken token = {};
    page_->add_NavigationCompleted(CompletedHandler::Make(std::move(sink)).get(), &token);
  }
  void Navigate(const Wide& url) override { page_->Navigate(ToWinText(url).c_str()); }
  bool Source(Wide& url) override {
    BrowserText text;
    const bool had = SUCCEEDED(page_->get_Source(text.put()));
    url = had ? text.get() : Wide();
    return had;
  }
  void ExecuteScript(const Wide& script) override {
    page_->ExecuteScript(ToWinText(script).c_str(), nullptr);
  }
  void PostWebMessageAsJson(const Wide& json) override {
    page_->PostWebMessageAsJson(ToWinText(json).c_str());
  }

 private:
  ComPtr<ICoreWebView2> page_;
  LiveCount<LiveKind::kBrowser> live_;
};

class Controller final : public WebViewController {
 public:
  explicit Controller(ComPtr<ICoreWebView2Controller> controller)
      : controller_(std::move(controller)) {}

  void PutVisible(bool visible) override { controller_->put_IsVisible(visible ? TRUE : FALSE); }
  void PutBounds(std::int32_t width, std::int32_t height) override {
    controller_->put_Bounds(RECT{0, 0, width, height});
  }
  std::shared_ptr<WebView> GetWebView() override {
    ComPtr<ICoreWebView2> page;
    if (FAILED(controller_->get_CoreWebView2(page.put())) || !page) return nullptr;
    return std::make_shared<Page>(std::move(page));
  }
  ResultCode Close() override { return controller_->Close(); }

 private:
  ComPtr<ICoreWebView2Controller> controller_;
  LiveCount<LiveKind::kBrowser> live_;
};

class ControllerHandler final
    : public ComClass<ControllerHandler, ICoreWebView2CreateCoreWebView2ControllerCompletedHandler>,
      Handler {
 public:
  explicit ControllerHandler(std::weak_ptr<WebViewSink> sink) : Handler(std::move(sink)) {}
  HRESULT STDMETHODCALLTYPE Invoke(HRESULT code, ICoreWebView2Controller* made) override {
    return WithoutThrowing([&]() -> HRESULT {
      const auto pane = sink();
      if (pane == nullptr) {
        // Nobody is left to show it.
        if (made != nullptr) made->Close();
        return S_OK;
      }
      std::shared_ptr<Controller> controller;
      if (made != nullptr) {
        controller = std::make_shared<Controller>(ComPtr<ICoreWebView2Controller>(made));
      }
      return pane->OnControllerCompleted(code, std::move(controller));
    });
  }
};

class Environment final : public WebViewEnvironment {
 public:
  explicit Environment(ComPtr<ICoreWebView2Environment> environment)
      : environment_(std::move(environment)) {}
  ResultCode CreateController(std::uintptr_t parentWindow,
                              std::weak_ptr<WebViewSink> sink) override {
    return environment_->CreateCoreWebView2Controller(
        reinterpret_cast<HWND>(parentWindow), ControllerHandler::Make(std::move(sink)).get());
  }

 private:
  ComPtr<ICoreWebView2Environment> environment_;
  LiveCount<LiveKind::kBrowser> live_;
};

class EnvironmentHandler final
    : public ComClass<EnvironmentHandler,
                      ICoreWebView2CreateCoreWebView2EnvironmentCompletedHandler>,
      Handler {
 public:
  explicit EnvironmentHandler(std::weak_ptr<WebViewSink> sink) : Handler(std::move(sink)) {}
  HRESULT STDMETHODCALLTYPE Invoke(HRESULT code, ICoreWebView2Environment* made) override {
    return WithoutThrowing([&]() -> HRESULT {
      const auto pane = sink();
      if (pane == nullptr) return S_OK;
      std::shared_ptr<Environment> environment;
      if (made != nullptr) {
        environment = std::make_shared<Environment>(ComPtr<ICoreWebView2Environment>(made));
      }
      return pane->OnEnvironmentCompleted(code, std::move(environment));
    });
  }
};

// Never given back: the browser's threads may run in it until the process ends.
HRESULT FindLoader(CreateEnvironmentFunction& create) {
  const std::wstring path = ToWinText(JoinPath(ParentPath(ModulePath()), kLoaderName));
  const HMODULE loader = LoadLibraryExW(path.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
  if (loader == nullptr) {
    const DWORD error = GetLastError();
    return HRESULT_FROM_WIN32(error == ERROR_MOD_NOT_FOUND ? ERROR_FILE_NOT_FOUND : error);
  }
  const FARPROC found = GetProcAddress(loader, kCreateEnvironment);
  if (found == nullptr) return HRESULT_FROM_WIN32(ERROR_PROC_NOT_FOUND);
  create = reinterpret_cast<CreateEnvironmentFunction>(reinterpret_cast<void*>(found));
  return S_OK;
}

}  // namespace

ResultCode InstalledBrowser::CreateEnvironment(const Wide& userDataFolder,
                                               std::weak_ptr<WebViewSink> sink) {
  CreateEnvironmentFunction create = nullptr;
  const HRESULT found = FindLoader(create);
  if (FAILED(found)) return found;
  return create(nullptr, ToWinText(userDataFolder).c_str(), nullptr,
                EnvironmentHandler::Make(std::move(sink)).get());
}

}  // namespace quillmarch::addin
