// The published tables are laid out here by their numbers, each method at its place, and not by any
// header, so that a pane that calls another place than the published one is found out.
#include "windows/browser/StandInBrowser.h"

#include <eventtoken.h>
#include <unknwn.h>

#include <array>
#include <atomic>
#include <cstdio>
#include <deque>
#include <map>
#include <utility>

namespace quillmarch::addin {

namespace standin {

namespace {

std::atomic<long> liveObjects{0};
std::atomic<long> liveHandlers{0};

// A reference to a handler of the pane.
class HandlerRef {
 public:
  explicit HandlerRef(IUnknown* handler) : handler_(handler) {
    if (handler_ != nullptr) {
      handler_->AddRef();
      ++liveHandlers;
    }
  }
  HandlerRef(const HandlerRef& other) : HandlerRef(other.handler_) {}
  HandlerRef& operator=(HandlerRef other) {
    std::swap(handler_, other.handler_);
    return *this;
  }
  ~HandlerRef() {
    if (handler_ != nullptr) {
      handler_->Release();
      --liveHandlers;
    }
  }

  // Every handler has one method, behind IUnknown's three.
  template <typename... Args>
  HRESULT Invoke(Args... args) const {
    constexpr std::size_t kInvoke = 3;
    using Method = HRESULT(STDMETHODCALLTYPE*)(IUnknown*, Args...);
    return reinterpret_cast<Method>((*reinterpret_cast<void***>(handler_))[kInvoke])(handler_,
                                                                                     args...);
  }

 private:
  IUnknown* handler_;
};

// The calling convention of COM is that of plain functions here, so an object is a pointer to a
// table of functions with its state behind it.
struct Object {
  void* const* table;
  IID iid;
  std::atomic<ULONG> references{1};
  void (*destroy)(Object*) = nullptr;
};

template <typename T>
T* New(void* const* table, const IID& iid) {
  T* const made = new T;
  made->table = table;
  made->iid = iid;
  made->destroy = [](Object* object) {
    delete static_cast<T*>(object);
    --liveObjects;
  };
  ++liveObjects;
  return made;
}

HRESULT Query(Object* self, REFIID iid, void** out) {
  const bool known = IsEqualIID(iid, IID_IUnknown) || IsEqualIID(iid, self->iid);
  *out = known ? self : nullptr;
  if (known) ++self->references;
  return known ? S_OK : E_NOINTERFACE;
}
ULONG AddReference(Object* self) {
  return ++self->references;
}
ULONG ReleaseReference(Object* self) {
  const ULONG left = --self->references;
  if (left == 0) self->destroy(self);
  return left;
}

HRESULT NotServed();

template <std::size_t size>
struct Table {
  Table() {
    places.fill(reinterpret_cast<void*>(&NotServed));
    At(0, &Query).At(1, &AddReference).At(2, &ReleaseReference);
  }
  template <typename Function>
  Table& At(std::size_t place, Function function) {
    places[place] = reinterpret_cast<void*>(+function);
    return *this;
  }
  std::array<void*, size> places;
};

constexpr IID kEnvironment = {
    0xB96D755E, 0x0319, 0x4E92, {0xA2, 0x96, 0x23, 0x43, 0x6F, 0x46, 0xA1, 0xFC}};
constexpr IID kController = {
    0x4D00C0D1, 0x9434, 0x4EB6, {0x80, 0x78, 0x86, 0x97, 0xA5, 0x60, 0x33, 0x4F}};
constexpr IID kView = {
    0x76ECEACB, 0x0462, 0x4D94, {0xAC, 0x83, 0x42, 0x3A, 0x67, 0x93, 0x77, 0x5E}};
constexpr IID kSettings = {
    0xE562E4F0, 0xD7FA, 0x43AC, {0x8D, 0x71, 0xC0, 0x51, 0x50, 0x49, 0x9F, 0x00}};
constexpr IID kMessageArgs = {
    0x0F99A40C, 0xE962, 0x4207, {0x9E, 0x92, 0xE3, 0xD5, 0x42, 0xEF, 0xF8, 0x49}};
constexpr IID kStartingArgs = {
    0x5B495469, 0xE119, 0x438A, {0x9B, 0x18, 0x76, 0x04, 0xF2, 0x5F, 0x2E, 0x49}};
constexpr IID kCompletedArgs = {
    0x30D68B7D, 0x20D9, 0x4752, {0xA9, 0xCA, 0xEC, 0x84, 0x48, 0xFB, 0xB5, 0xC1}};

// Of a call to something that was closed.
constexpr HRESULT kInvalidState = static_cast<HRESULT>(0x8007139F);

// A text for the pane, which frees it.
LPWSTR TaskText(const std::wstring& text) {
  auto* const made = static_cast<LPWSTR>(CoTaskMemAlloc((text.size() + 1) * sizeof(wchar_t)));
  if (made == nullptr) return nullptr;
  text.copy(made, text.size());
  made[text.size()] = L'\0';
  return made;
}

std::string Hex(HRESULT code) {
  char text[16];
  std::snprintf(text, sizeof text, "0x%08lX", static_cast<unsigned long>(code));
  return text;
}

// ---- The library's state
// -------------------------------------------------------------------------

constexpr std::size_t kStages = 5;

class Library final : public Control {
 public:
  void Fail(Stage stage, HRESULT code) override { fails_[Index(stage)] = code; }
  void GiveNothing(Stage stage, bool nothing) override { nothing_[Index(stage)] = nothing; }
  void Hold(Stage stage, bool hold) override { holds_[Index(stage)] = hold; }
  std::size_t Held() override { return held_.size(); }
  void Deliver() override {
    const auto waiting = std::exchange(held_, {});
    for (const auto& completion : waiting) completion();
  }
  void SetBackend(MakeBackend make) override { make_ = std::move(make); }
  std::vector<std::string> Calls() override { return calls_; }
  void ForgetCalls() override { calls_.clear(); }
  std::wstring UserDataFolder() override { return userDataFolder; }
  long LiveObjects() override { return liveObjects; }
  long LiveHandlers() override { return liveHandlers; }

  HRESULT CodeOf(Stage stage) const { return fails_[Index(stage)]; }
  bool NothingAt(Stage stage) const { return nothing_[Index(stage)]; }
  void Note(std::string call) { calls_.push_back(std::move(call)); }
  std::unique_ptr<PageBackend> MakePage(PageEvents& events) {
    return make_ ? make_(events) : nullptr;
  }

  // Runs the completion from the calling thread's message loop, or keeps it for Deliver.
  void Later(Stage stage, std::function<void()> completion) {
    auto* const block =
        new std::function<void()>([this, stage, completion = std::move(completion)] {
          if (holds_[Index(stage)]) {
            held_.push_back(completion);
          } else {
            completion();
          }
        });
    PostMessageW(Window(), WM_APP, 0, reinterpret_cast<LPARAM>(block));
  }

  std::wstring userDataFolder;

 private:
  static std::size_t Index(Stage stage) { return static_cast<std::size_t>(stage); }

  HWND Window() {
    if (window_ == nullptr) {
      WNDCLASSEXW windowClass = {};
      windowClass.cbSize = sizeof windowClass;
      windowClass.lpfnWndProc = [](HWND window, UINT message, WPARAM wParam,
                                   LPARAM lParam) -> LRESULT {
        if (message != WM_APP) return DefWindowProcW(window, message, wParam, lParam);
        const std::unique_ptr<std::function<void()>> block(
            reinterpret_cast<std::function<void()>*>(lParam));
        (*block)();
        return 0;
      };
      windowClass.hInstance = GetModuleHandleW(L"WebView2Loader.dll");
      windowClass.lpszClassName = L"StandInBrowser";
      RegisterClassExW(&windowClass);
      window_ = CreateWindowExW(0, L"StandInBrowser", L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr,
                                windowClass.hInstance, nullptr);
    }
    return window_;
  }

  std::array<HRESULT, kStages> fails_{};
  std::array<bool, kStages> nothing_{};
  std::array<bool, kStages> holds_{};
  std::deque<std::function<void()>> held_;
  MakeBackend make_;
  std::vector<std::string> calls_;
  HWND window_ = nullptr;
};

Library& TheLibrary() {
  static Library& library = *new Library;  // handlers may come back to it until the process ends
  return library;
}

HRESULT NotServed() {
  TheLibrary().Note("a method that no pane uses");
  return E_NOTIMPL;
}

// ---- Event arguments
// -----------------------------------------------------------------------------

struct MessageArgs : Object {
  std::wstring json;
};
struct CompletedArgs : Object {
  BOOL success = FALSE;
};

const auto kMessageTable = [] {
  Table<6> table;
  table.At(4, [](MessageArgs* self, LPWSTR* json) -> HRESULT {
    *json = TaskText(self->json);
    return *json == nullptr ? E_OUTOFMEMORY : S_OK;
  });
  return table;
}();
const Table<10> kStartingTable;
const auto kCompletedTable = [] {
  Table<6> table;
  table.At(3, [](CompletedArgs* self, BOOL* success) -> HRESULT {
    *success = self->success;
    return S_OK;
  });
  return table;
}();

// ---- Settings
// ------------------------------------------------------------------------------------

struct Settings : Object {};

const auto kSettingsTable = [] {
  Table<21> table;
  table
      .At(10,
          [](Settings*, BOOL enabled) -> HRESULT {
            TheLibrary().Note("put_IsStatusBarEnabled " + std::to_string(enabled));
            return S_OK;
          })
      .At(12, [](Settings*, BOOL enabled) -> HRESULT {
        TheLibrary().Note("put_AreDevToolsEnabled " + std::to_string(enabled));
        return S_OK;
      });
  return table;
}();

// ---- The view
// ------------------------------------------------------------------------------------

enum class Event { kMessage, kStarting, kCompleted };

struct View;

// What the page says, handed on to the pane's handlers. A handler may take itself away, or the view
// with it.
class ViewEvents final : public PageEvents {
 public:
  explicit ViewEvents(View& view) : view_(view) {}
  void OnMessage(const std::wstring& json) override;
  void OnNavigationStarting() override;
  void OnNavigationCompleted(bool success) override;

 private:
  template <typename Args>
  void Raise(Event event, Args* args);
  View& view_;
};

struct View : Object {
  ViewEvents events{*this};
  std::unique_ptr<PageBackend> page;
  std::map<std::pair<Event, std::int64_t>, HandlerRef> handlers;
  std::int64_t tokens = 0;
  bool closed = false;
};

HRESULT AddHandler(View* view, Event event, IUnknown* handler, EventRegistrationToken* token,
                   const char* name) {
  TheLibrary().Note(name);
  if (view->closed) return kInvalidState;
  token->value = ++view->tokens;
  view->handlers.emplace(std::pair(event, token->value), HandlerRef(handler));
  return S_OK;
}

template <typename Work>
HRESULT OnPage(View* view, Work work) {
  if (view->closed) return kInvalidState;
  if (view->page != nullptr) work(*view->page);
  return S_OK;
}

const auto kViewTable = [] {
  Table<61> table;
  table
      .At(3,
          [](View*, Settings** out) -> HRESULT {
            *out = nullptr;
            const HRESULT code = TheLibrary().CodeOf(Stage::kSettings);
            if (FAILED(code)) return code;
            *out = New<Settings>(kSettingsTable.places.data(), kSettings);
            return S_OK;
          })
      .At(4,
          [](View* self, LPWSTR* uri) -> HRESULT {
            *uri = nullptr;
            return OnPage(self, [uri](PageBackend& page) { *uri = TaskText(page.Source()); });
          })
      .At(5,
          [](View* self, LPCWSTR uri) -> HRESULT {
            return OnPage(self, [uri](PageBackend& page) { page.Navigate(uri); });
          })
      .At(7,
          [](View* self, IUnknown* handler, EventRegistrationToken* token) -> HRESULT {
            return AddHandler(self, Event::kStarting, handler, token, "add_NavigationStarting");
          })
      .At(15,
          [](View* self, IUnknown* handler, EventRegistrationToken* token) -> HRESULT {
            return AddHandler(self, Event::kCompleted, handler, token, "add_NavigationCompleted");
          })
      .At(29,
          [](View* self, LPCWSTR script, IUnknown*) -> HRESULT {
            return OnPage(self, [script](PageBackend& page) { page.ExecuteScript(script); });
          })
      .At(32,
          [](View* self, LPCWSTR json) -> HRESULT {
            return OnPage(self, [json](PageBackend& page) { page.PostMessageAsJson(json); });
          })
      .At(34, [](View* self, IUnknown* handler, EventRegistrationToken* token) -> HRESULT {
        return AddHandler(self, Event::kMessage, handler, token, "add_WebMessageReceived");
      });
  return table;
}();

template <typename Args>
void ViewEvents::Raise(Event event, Args* args) {
  AddReference(&view_);
  const auto handlers = view_.handlers;
  for (const auto& [key, handler] : handlers) {
    if (key.first == event) handler.Invoke(&view_, args);
  }
  ReleaseReference(args);
  ReleaseReference(&view_);
}

void ViewEvents::OnMessage(const std::wstring& json) {
  auto* const args = New<MessageArgs>(kMessageTable.places.data(), kMessageArgs);
  args->json = json;
  Raise(Event::kMessage, args);
}

void ViewEvents::OnNavigationStarting() {
  struct StartingArgs : Object {};
  Raise(Event::kStarting, New<StartingArgs>(kStartingTable.places.data(), kStartingArgs));
}

void ViewEvents::OnNavigationCompleted(bool success) {
  auto* const args = New<CompletedArgs>(kCompletedTable.places.data(), kCompletedArgs);
  args->success = success ? TRUE : FALSE;
  Raise(Event::kCompleted, args);
}

// ---- The controller
// ------------------------------------------------------------------------------

struct Controller : Object {
  Controller() = default;
  ~Controller() {
    Close();
    if (view != nullptr) ReleaseReference(view);
  }
  Controller(const Controller&) = delete;
  Controller& operator=(const Controller&) = delete;

  HRESULT Close() {
    if (view == nullptr || view->closed) return S_OK;
    view->closed = true;
    if (view->page != nullptr) view->page->Close();
    view->handlers.clear();
    return S_OK;
  }

  View* view = nullptr;
};

const auto kControllerTable = [] {
  Table<26> table;
  table
      .At(4,
          [](Controller*, BOOL visible) -> HRESULT {
            TheLibrary().Note("put_IsVisible " + std::to_string(visible));
            return S_OK;
          })
      .At(6,
          [](Controller* self, RECT bounds) -> HRESULT {
            return OnPage(self->view, [&bounds](PageBackend& page) { page.PutBounds(bounds); });
          })
      .At(24,
          [](Controller* self) -> HRESULT {
            TheLibrary().Note("Close");
            return self->Close();
          })
      .At(25, [](Controller* self, View** out) -> HRESULT {
        *out = nullptr;
        const HRESULT code = TheLibrary().CodeOf(Stage::kView);
        if (FAILED(code) || TheLibrary().NothingAt(Stage::kView)) return code;
        AddReference(self->view);
        *out = self->view;
        return S_OK;
      });
  return table;
}();

Controller* MakeController() {
  auto* const made = New<Controller>(kControllerTable.places.data(), kController);
  made->view = New<View>(kViewTable.places.data(), kView);
  made->view->page = TheLibrary().MakePage(made->view->events);
  return made;
}

// ---- The environment
// -----------------------------------------------------------------------------

struct Environment : Object {};

// Completes with the stage's code and, where it is none of a failure, an object made by `make`.
template <typename Make>
void CompleteLater(Stage stage, IUnknown* handler, Make make) {
  TheLibrary().Later(stage, [stage, make, ref = HandlerRef(handler)] {
    const HRESULT code = TheLibrary().CodeOf(stage);
    const bool nothing = FAILED(code) || TheLibrary().NothingAt(stage);
    auto* const made = nothing ? nullptr : make();
    const HRESULT answer = ref.Invoke(code, made);
    TheLibrary().Note("completed " + Hex(code) + " answer " + Hex(answer));
    if (made != nullptr) ReleaseReference(made);
  });
}

const auto kEnvironmentTable = [] {
  Table<8> table;
  table.At(3, [](Environment*, HWND parent, IUnknown* handler) -> HRESULT {
    TheLibrary().Note(std::string("CreateCoreWebView2Controller ") +
                      (IsWindow(parent) != FALSE ? "window" : "no window"));
    CompleteLater(Stage::kController, handler, &MakeController);
    return S_OK;
  });
  return table;
}();

}  // namespace

}  // namespace standin

extern "C" {

__declspec(dllexport) HRESULT STDAPICALLTYPE
    CreateCoreWebView2EnvironmentWithOptions(PCWSTR browserFolder, PCWSTR userDataFolder,
                                             IUnknown* options, IUnknown* handler) {
  using namespace standin;
  Library& library = TheLibrary();
  library.Note(std::string("CreateCoreWebView2EnvironmentWithOptions") +
               (browserFolder == nullptr ? "" : " browser folder") +
               (options == nullptr ? "" : " options"));
  library.userDataFolder = userDataFolder == nullptr ? L"" : userDataFolder;
  const HRESULT code = library.CodeOf(Stage::kCreate);
  if (FAILED(code)) return code;
  CompleteLater(Stage::kEnvironment, handler,
                [] { return New<Environment>(kEnvironmentTable.places.data(), kEnvironment); });
  return S_OK;
}

__declspec(dllexport) standin::Control* StandInBrowserControl() {
  return &standin::TheLibrary();
}
}

}  // namespace quillmarch::addin
