// Verbs, and the dance of being activated in place. The host may call back from inside every step,
// so each looks at the state anew.
#include <olectl.h>

#include <utility>

#include "foundation/system/WinText.h"
#include "pane/windows/PaneControl.h"

namespace quillmarch::addin {

HRESULT PaneControl::DoVerb(LONG verb, LPMSG, IOleClientSite*, LONG, HWND parent, LPCRECT place) {
  const ComPtr<PaneControl> self(this);
  return WithoutThrowing([&] {
    return pane_->DoVerb(verb, reinterpret_cast<std::uintptr_t>(parent),
                         [&] { return ResultCode{StockVerb(verb, parent, place)}; });
  });
}

HRESULT PaneControl::StockVerb(LONG verb, HWND, LPCRECT place) {
  switch (verb) {
    case OLEIVERB_INPLACEACTIVATE:
      return ActivateInPlace(place, false);
    case OLEIVERB_PRIMARY:
    case OLEIVERB_SHOW:
    case OLEIVERB_OPEN:
    case OLEIVERB_UIACTIVATE:
      return ActivateInPlace(place, true);
    case OLEIVERB_HIDE:
      UIDeactivate();
      if (window_ != nullptr) ShowWindow(window_, SW_HIDE);
      return S_OK;
    default:
      if (verb < 0) return E_NOTIMPL;
      ActivateInPlace(place, true);
      return OLEOBJ_S_INVALIDVERB;
  }
}

HRESULT PaneControl::ActivateInPlace(LPCRECT place, bool withFocus) {
  if (!site_) return S_OK;
  if (inPlaceSite_) {
    if (place != nullptr) SetObjectRects(place, place);
    if (window_ != nullptr) ShowWindow(window_, SW_SHOW);
    if (withFocus) ActivateUi();
    return S_OK;
  }
  inPlaceSite_ = site_.As<IOleInPlaceSite>(IID_IOleInPlaceSite);
  if (!inPlaceSite_) return E_FAIL;
  const HRESULT entered = EnterSite(place, withFocus);
  if (FAILED(entered)) inPlaceSite_.Reset();
  return entered;
}

HRESULT PaneControl::EnterSite(LPCRECT place, bool withFocus) {
  // The site may be released inside a call.
  const ComPtr<IOleInPlaceSite> site = inPlaceSite_;
  if (site->CanInPlaceActivate() != S_OK) return E_FAIL;
  HRESULT code = site->OnInPlaceActivate();
  if (FAILED(code)) return code;
  HWND parent = nullptr;
  RECT position = {};
  RECT clip = {};
  OLEINPLACEFRAMEINFO frameInfo = {};
  frameInfo.cb = sizeof frameInfo;
  code = site->GetWindow(&parent);
  if (SUCCEEDED(code)) {
    code = site->GetWindowContext(frame_.put(), document_.put(), &position, &clip, &frameInfo);
  }
  // A host that says nothing of the place means that of the verb.
  if (SUCCEEDED(code) && IsRectEmpty(&position) != FALSE && place != nullptr) {
    position = *place;
    clip = *place;
  }
  if (SUCCEEDED(code)) {
    const RECT size = {position.left, position.top, position.right - position.left,
                       position.bottom - position.top};
    if (window_ == nullptr) {
      code = CreateControlWindow(parent, size, CPptPane::kWindowStyle) ? S_OK : E_FAIL;
    } else {
      if (GetParent(window_) != parent) SetParent(window_, parent);
      ShowWindow(window_, SW_SHOW);
    }
  }
  if (FAILED(code)) {
    frame_.Reset();
    document_.Reset();
    site->OnInPlaceDeactivate();
    return code;
  }
  SetObjectRects(&position, &clip);
  if (withFocus) ActivateUi();
  if (const ComPtr<IOleClientSite> client = site_) client->ShowObject();
  return S_OK;
}

void PaneControl::ActivateUi() {
  if (uiActive_ || !inPlaceSite_) return;
  const ComPtr<IOleInPlaceSite> site = inPlaceSite_;
  uiActive_ = true;
  if (FAILED(site->OnUIActivate())) {
    uiActive_ = false;
    return;
  }
  if (window_ != nullptr && IsChild(window_, GetFocus()) == FALSE && GetFocus() != window_) {
    SetFocus(window_);
  }
  const ComPtr<IOleInPlaceFrame> frame = frame_;
  const ComPtr<IOleInPlaceUIWindow> document = document_;
  if (frame) {
    frame->SetActiveObject(this, L"");
    frame->SetBorderSpace(nullptr);
  }
  if (document) {
    document->SetActiveObject(this, L"");
    document->SetBorderSpace(nullptr);
  }
}

void PaneControl::TellFocus(bool has) {
  if (!inPlaceSite_) return;
  if (const auto control = site_.As<IOleControlSite>(IID_IOleControlSite)) {
    control->OnFocus(has ? TRUE : FALSE);
  }
}

HRESULT PaneControl::UIDeactivate() {
  if (!uiActive_) return S_OK;
  const ComPtr<PaneControl> self(this);
  uiActive_ = false;
  if (const ComPtr<IOleInPlaceFrame> frame = frame_) frame->SetActiveObject(nullptr, nullptr);
  if (const ComPtr<IOleInPlaceUIWindow> document = document_) {
    document->SetActiveObject(nullptr, nullptr);
  }
  if (const ComPtr<IOleInPlaceSite> site = inPlaceSite_) site->OnUIDeactivate(FALSE);
  return S_OK;
}

HRESULT PaneControl::InPlaceDeactivate() {
  if (!inPlaceSite_) return S_OK;
  const ComPtr<PaneControl> self(this);
  UIDeactivate();
  const ComPtr<IOleInPlaceSite> site = std::exchange(inPlaceSite_, {});
  if (window_ != nullptr) DestroyWindow(window_);
  frame_.Reset();
  document_.Reset();
  if (site) site->OnInPlaceDeactivate();
  return S_OK;
}

HRESULT PaneControl::GetWindow(HWND* window) {
  if (window == nullptr) return E_POINTER;
  *window = window_;
  return window_ == nullptr ? E_FAIL : S_OK;
}

HRESULT PaneControl::GetDropTarget(IDropTarget** target) {
  if (target == nullptr) return E_POINTER;
  *target = nullptr;
  return E_NOTIMPL;
}

HRESULT PaneControl::SetObjectRects(LPCRECT place, LPCRECT clip) {
  if (place == nullptr || clip == nullptr) return E_POINTER;
  if (window_ == nullptr) return S_OK;
  RECT shown;
  HRGN region = nullptr;
  // A part of the control is covered: what shows is all that may be drawn.
  if (IntersectRect(&shown, place, clip) != FALSE && EqualRect(&shown, place) == FALSE) {
    OffsetRect(&shown, -place->left, -place->top);
    region = CreateRectRgnIndirect(&shown);
  }
  SetWindowRgn(window_, region, TRUE);  // the window's from here on
  SetWindowPos(window_, nullptr, place->left, place->top, place->right - place->left,
               place->bottom - place->top, SWP_NOZORDER | SWP_NOACTIVATE);
  return S_OK;
}

}  // namespace quillmarch::addin
