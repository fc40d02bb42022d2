// The control as an object and as a window.
#include "pane/windows/PaneControl.h"

#include <utility>

#include "foundation/system/OwnModule.h"
#include "foundation/system/WinText.h"

namespace quillmarch::addin {

namespace {

PaneControl::TypeInfoSource typeInfoSource = nullptr;

// Windows of this class that exist; the class goes with the last, since it names code of a module
// that may be unloaded then.
int controlWindows = 0;

const wchar_t* ClassName() {
  static_assert(sizeof(wchar_t) == sizeof(char16_t));
  return reinterpret_cast<const wchar_t*>(CPptPane::kWindowClass);
}

// The extent of a control until somebody sets another: two inches square.
constexpr SIZEL kFirstExtent = {5080, 5080};

}  // namespace

PaneControl::PaneControl(const ControlSurroundings& surroundings, std::shared_ptr<void> hold)
    : hold_(std::move(hold)),
      pane_(CPptPane::Create(MakeSurroundings(surroundings))),
      extent_(kFirstExtent) {}

PaneSurroundings PaneControl::MakeSurroundings(const ControlSurroundings& surroundings) {
  PaneSurroundings made{.thread = surroundings.thread,
                        .input = surroundings.input,
                        .fonts = surroundings.fonts,
                        .observer = {},
                        .startWebView = {},
                        .createWindow = [this](CPptPane&, std::uintptr_t parent) {
                          return CreateFallback(reinterpret_cast<HWND>(parent));
                        }};
  made.loader = &surroundings.loader;
  made.desktop = &surroundings.desktop;
  made.clientSize = [this](const CPptPane&) {
    RECT client = {};
    if (window_ != nullptr) GetClientRect(window_, &client);
    return ClientSize{client.right, client.bottom};
  };
  made.holdObject = [this](CPptPane&) {
    AddRef();
    return std::shared_ptr<void>(this,
                                 [](void* self) { static_cast<PaneControl*>(self)->Release(); });
  };
  return made;
}

void PaneControl::FinalRelease() {
  if (inPlaceSite_) InPlaceDeactivate();
  pane_->FinalRelease();
  if (window_ != nullptr) DestroyWindow(window_);
  pane_.reset();
}

void* PaneControl::FindBase(REFIID iid) {
  if (IsEqualIID(iid, IID_IDispatch)) return static_cast<IDispatch*>(this);
  if (IsEqualIID(iid, IID_IViewObject) || IsEqualIID(iid, IID_IViewObject2)) {
    return static_cast<IViewObjectEx*>(this);
  }
  if (IsEqualIID(iid, IID_IOleWindow) || IsEqualIID(iid, IID_IOleInPlaceObject)) {
    return static_cast<IOleInPlaceObjectWindowless*>(this);
  }
  if (IsEqualIID(iid, IID_IPersist)) return static_cast<IPersistStreamInit*>(this);
  return nullptr;
}

void PaneControl::SetTypeInfoSource(TypeInfoSource source) {
  typeInfoSource = source;
}

// ---- IDispatch
// -----------------------------------------------------------------------------------

HRESULT PaneControl::GetTypeInfoCount(UINT* count) {
  if (count == nullptr) return E_POINTER;
  *count = 1;
  return S_OK;
}

HRESULT PaneControl::GetTypeInfo(UINT index, LCID, ITypeInfo** out) {
  if (out == nullptr) return E_POINTER;
  *out = nullptr;
  if (index != 0) return DISP_E_BADINDEX;
  return typeInfoSource == nullptr ? E_FAIL : typeInfoSource(__uuidof(IQuillmarchPptPane), out);
}

HRESULT PaneControl::GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID, DISPID* ids) {
  if (names == nullptr || ids == nullptr) return E_POINTER;
  for (UINT i = 0; i < count; ++i) ids[i] = DISPID_UNKNOWN;
  return count == 0 ? S_OK : DISP_E_UNKNOWNNAME;
}

HRESULT PaneControl::Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*, UINT*) {
  return DISP_E_MEMBERNOTFOUND;
}

// ---- The window
// ----------------------------------------------------------------------------------

// A window holds only the control's address; the control outlives it.
bool PaneControl::CreateControlWindow(HWND parent, const RECT& place, DWORD style) {
  WNDCLASSEXW windowClass = {};
  windowClass.cbSize = sizeof windowClass;
  windowClass.style = CS_HREDRAW | CS_VREDRAW | CS_DBLCLKS;
  windowClass.lpfnWndProc = &Receive;
  windowClass.hInstance = OwnModule();
  windowClass.hCursor = LoadCursorW(nullptr, reinterpret_cast<LPCWSTR>(IDC_ARROW));
  windowClass.lpszClassName = ClassName();
  // Fails when the class is registered already, which is as good.
  RegisterClassExW(&windowClass);
  const HWND window =
      CreateWindowExW(0, ClassName(), nullptr, style, place.left, place.top, place.right,
                      place.bottom, parent, nullptr, OwnModule(), this);
  return window != nullptr;
}

bool PaneControl::CreateFallback(HWND parent) {
  const RECT anywhere = {CW_USEDEFAULT, CW_USEDEFAULT, CW_USEDEFAULT, CW_USEDEFAULT};
  if (!CreateControlWindow(parent, anywhere, CPptPane::kFallbackStyle)) return false;
  ShowWindow(window_, SW_SHOW);
  return true;
}

LRESULT CALLBACK PaneControl::Receive(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == WM_NCCREATE) {
    auto* const made =
        static_cast<PaneControl*>(reinterpret_cast<CREATESTRUCTW*>(lParam)->lpCreateParams);
    SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(made));
    made->window_ = window;
    ++controlWindows;
    ++LiveCounts()[static_cast<std::size_t>(LiveKind::kWindow)];
  }
  auto* const self = reinterpret_cast<PaneControl*>(GetWindowLongPtrW(window, GWLP_USERDATA));
  if (self == nullptr) return DefWindowProcW(window, message, wParam, lParam);
  // The host may release the control inside the message.
  const ComPtr<PaneControl> held(self);
  return self->OnMessage(window, message, wParam, lParam);
}

LRESULT PaneControl::OnMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == WM_NCDESTROY) {
    SetWindowLongPtrW(window, GWLP_USERDATA, 0);
    window_ = nullptr;
    --LiveCounts()[static_cast<std::size_t>(LiveKind::kWindow)];
    if (--controlWindows == 0) UnregisterClassW(ClassName(), OwnModule());
    return DefWindowProcW(window, message, wParam, lParam);
  }
  const WindowMessage asked{.window = reinterpret_cast<std::uintptr_t>(window),
                            .message = message,
                            .wParam = wParam,
                            .lParam = lParam,
                            .mapId = 0};
  MessageAnswer answer;
  try {
    answer = pane_->OnWindowMessage(asked);
  } catch (const std::exception&) {
    // Memory ran out: the message counts as handled.
    return 0;
  }
  if (answer.route == MessageRoute::kStock) {
    if (StockMessage(window, message)) return 0;
    answer = RouteAfterStock(asked);
  }
  if (answer.route == MessageRoute::kHandled) return 0;
  if (answer.route == MessageRoute::kDefault) message = answer.message;
  return DefWindowProcW(window, message, wParam, lParam);
}

bool PaneControl::StockMessage(HWND window, UINT message) {
  switch (message) {
    case WM_PAINT: {
      PAINTSTRUCT paint;
      const HDC context = BeginPaint(window, &paint);
      if (context == nullptr) return false;
      RECT client = {};
      GetClientRect(window, &client);
      const RECTL bounds = {client.left, client.top, client.right, client.bottom};
      Draw(DVASPECT_CONTENT, -1, nullptr, nullptr, nullptr, context, &bounds, nullptr, nullptr, 0);
      EndPaint(window, &paint);
      return true;
    }
    case WM_SETFOCUS:
      if (inPlaceSite_) ActivateUi();
      TellFocus(true);
      return false;
    case WM_KILLFOCUS:
      if (GetFocus() == nullptr || IsChild(window, GetFocus()) == FALSE) TellFocus(false);
      return false;
    default:
      return false;
  }
}

}  // namespace quillmarch::addin
