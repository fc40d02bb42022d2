// A browser control that stands in for the system's: a WebView2Loader.dll with the published
// interfaces, and behind each view a PageBackend that does what the view is told. The tests'
// backend only writes down what it was told and says what the test wants said; another one may lead
// to a real browser.
#pragma once

#include <windows.h>

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace quillmarch::addin::standin {

// What a page has to tell the view that it is shown in. Called on the view's thread.
class PageEvents {
 public:
  virtual void OnMessage(const std::wstring& json) = 0;
  virtual void OnNavigationStarting() = 0;
  virtual void OnNavigationCompleted(bool success) = 0;

 protected:
  ~PageEvents() = default;
};

class PageBackend {
 public:
  virtual ~PageBackend() = default;
  virtual void Navigate(const std::wstring& url) = 0;
  virtual std::wstring Source() = 0;
  virtual void ExecuteScript(const std::wstring& script) = 0;
  virtual void PostMessageAsJson(const std::wstring& json) = 0;
  virtual void PutBounds(const RECT& bounds) = 0;
  virtual void Close() = 0;
};

using MakeBackend = std::function<std::unique_ptr<PageBackend>(PageEvents&)>;

// The stages at which a browser may fail to come.
enum class Stage { kCreate, kEnvironment, kController, kView, kSettings };

// What a test, in the process that loaded the library, makes of it.
class Control {
 public:
  // Fails the stage with this code; S_OK lets it be. kView and kSettings fail the call that asks.
  virtual void Fail(Stage stage, HRESULT code) = 0;
  // Success without an object.
  virtual void GiveNothing(Stage stage, bool nothing) = 0;
  // Completions of the stage wait until Deliver; kEnvironment and kController alone.
  virtual void Hold(Stage stage, bool hold) = 0;
  virtual std::size_t Held() = 0;
  virtual void Deliver() = 0;
  virtual void SetBackend(MakeBackend make) = 0;
  // What was asked of the library, its environments, controllers and settings, one line each.
  virtual std::vector<std::string> Calls() = 0;
  virtual void ForgetCalls() = 0;
  virtual std::wstring UserDataFolder() = 0;
  // Objects of the library that somebody holds, and handlers that it holds.
  virtual long LiveObjects() = 0;
  virtual long LiveHandlers() = 0;

 protected:
  ~Control() = default;
};

// The library's second export.
using GetControl = Control* (*)();
inline constexpr char kGetControl[] = "StandInBrowserControl";

}  // namespace quillmarch::addin::standin
