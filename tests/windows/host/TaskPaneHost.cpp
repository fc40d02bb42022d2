#include "windows/host/TaskPaneHost.h"

#include <windows.h>

#include <ocidl.h>
#include <olectl.h>

#include "windows/host/ControlSite.h"

namespace quillmarch::addin::winhost {

namespace {

constexpr IID kCustomTaskPane = {0x000C033B, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
constexpr IID kPaneFactory = {0x000C033D, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
constexpr LONG kHimetricPerInch = 2540;
constexpr LONG kPixelsPerInch = 96;

LONG ToHimetric(LONG pixels) {
  return MulDiv(pixels, kHimetricPerInch, kPixelsPerInch);
}

RECT ClientOf(HWND window) {
  RECT client = {};
  GetClientRect(window, &client);
  return client;
}

// The argument at a place counted from the first.
const VARIANT& At(const DISPPARAMS& params, UINT place) {
  return params.rgvarg[params.cArgs - 1 - place];
}

}  // namespace

// ---- _CustomTaskPane
// -----------------------------------------------------------------------------

HostTaskPane::HostTaskPane(std::wstring titleText, IDispatch* inWindow)
    : HostObject(
          kCustomTaskPane,
          {{L"Title", 0}, {L"Window", 2}, {L"Visible", 3}, {L"Width", 6}, {L"DockPosition", 7}}),
      title(std::move(titleText)),
      window(inWindow) {
  container_ = CreateWindowExW(0, L"STATIC", L"task pane", WS_OVERLAPPEDWINDOW, 0, 0, 340, 640,
                               nullptr, nullptr, GetModuleHandleW(nullptr), nullptr);
}

HostTaskPane::~HostTaskPane() {
  Destroy();
}

HRESULT HostTaskPane::Embed(const std::wstring& progId, Activation activation) {
  CLSID id;
  HRESULT code = CLSIDFromProgID(progId.c_str(), &id);
  if (FAILED(code)) return code;
  code = CoCreateInstance(id, nullptr, CLSCTX_INPROC_SERVER, IID_IOleObject,
                          reinterpret_cast<void**>(control_.put()));
  if (FAILED(code) || activation == Activation::kNothing) return code;
  const bool hasSite = activation == Activation::kInPlace || activation == Activation::kRefused;
  DWORD status = 0;
  control_->GetMiscStatus(DVASPECT_CONTENT, &status);
  if (hasSite) {
    site_ = ComPtr<ControlSite>::Adopt(new ControlSite(*this, activation == Activation::kRefused));
    if ((status & OLEMISC_SETCLIENTSITEFIRST) != 0) control_->SetClientSite(site_.get());
  }
  if (const auto persist = control_.As<IPersistStreamInit>(IID_IPersistStreamInit)) {
    persist->InitNew();
  }
  RECT place = ClientOf(container_);
  SIZEL extent = {ToHimetric(place.right), ToHimetric(place.bottom)};
  control_->SetExtent(DVASPECT_CONTENT, &extent);
  control_->SetHostNames(L"Test host", nullptr);
  const HWND parent = activation == Activation::kNoParent ? nullptr : container_;
  // A control that stays inactive is a pane all the same.
  verbCode = control_->DoVerb(OLEIVERB_INPLACEACTIVATE, nullptr, site_.get(), 0, parent, &place);
  return S_OK;
}

HWND HostTaskPane::controlWindow() const {
  HWND found = nullptr;
  if (const auto inPlace = control_.As<IOleWindow>(IID_IOleWindow)) inPlace->GetWindow(&found);
  return found;
}

void HostTaskPane::Resize(int newWidth, int height) {
  SetWindowPos(container_, nullptr, 0, 0, newWidth, height, SWP_NOMOVE | SWP_NOZORDER);
  const RECT place = ClientOf(container_);
  if (const auto object = control_.As<IOleInPlaceObject>(IID_IOleInPlaceObject)) {
    object->SetObjectRects(&place, &place);
  }
}

void HostTaskPane::Destroy() {
  if (control_) {
    const ComPtr<IOleObject> control = std::move(control_);
    if (const auto object = control.As<IOleInPlaceObject>(IID_IOleInPlaceObject)) {
      object->InPlaceDeactivate();
    }
    control->Close(OLECLOSE_NOSAVE);
    control->SetClientSite(nullptr);
  }
  site_.Reset();
  if (container_ != nullptr) DestroyWindow(std::exchange(container_, nullptr));
}

void HostTaskPane::DestroyWindowFirst() {
  if (container_ != nullptr) DestroyWindow(std::exchange(container_, nullptr));
}

HRESULT HostTaskPane::Invoke(DISPID id, REFIID, LCID, WORD flags, DISPPARAMS* params,
                             VARIANT* result, EXCEPINFO*, UINT*) {
  if ((flags & DISPATCH_PROPERTYPUT) != 0) {
    if (params->cArgs != 1 || params->cNamedArgs != 1) return DISP_E_BADPARAMCOUNT;
    const VARIANT& value = params->rgvarg[0];
    switch (id) {
      case 3:
        if (value.vt != VT_BOOL) return DISP_E_TYPEMISMATCH;
        if (refusesToHide && value.boolVal == VARIANT_FALSE) return E_ACCESSDENIED;
        visible = value.boolVal != VARIANT_FALSE;
        ShowWindow(container_, visible ? SW_SHOWNOACTIVATE : SW_HIDE);
        return S_OK;
      case 6:
        if (value.vt != VT_I4) return DISP_E_TYPEMISMATCH;
        width = value.lVal;
        return S_OK;
      case 7:
        if (value.vt != VT_I4) return DISP_E_TYPEMISMATCH;
        dockPosition = value.lVal;
        return S_OK;
      default:
        return DISP_E_MEMBERNOTFOUND;
    }
  }
  if (result == nullptr) return E_POINTER;
  switch (id) {
    case 0:
      *result = TextValue(title);
      return S_OK;
    case 2:
      *result = ObjectValue(window.get());
      return S_OK;
    case 3:
      result->vt = VT_BOOL;
      result->boolVal = visible ? VARIANT_TRUE : VARIANT_FALSE;
      return S_OK;
    case 6:
      *result = WholeValue(width);
      return S_OK;
    case 7:
      *result = WholeValue(dockPosition);
      return S_OK;
    default:
      return DISP_E_MEMBERNOTFOUND;
  }
}

// ---- ICTPFactory
// ---------------------------------------------------------------------------------

PaneFactory::PaneFactory() : HostObject(kPaneFactory, {{L"CreateCTP", 1}}) {}

HRESULT PaneFactory::Invoke(DISPID id, REFIID, LCID, WORD flags, DISPPARAMS* params,
                            VARIANT* result, EXCEPINFO* exception, UINT*) {
  if (id != 1 || (flags & DISPATCH_METHOD) == 0) return DISP_E_MEMBERNOTFOUND;
  if (params->cArgs != 3) return DISP_E_BADPARAMCOUNT;
  const VARIANT& progId = At(*params, 0);
  const VARIANT& title = At(*params, 1);
  const VARIANT& parent = At(*params, 2);
  if (progId.vt != VT_BSTR || title.vt != VT_BSTR || parent.vt != VT_DISPATCH) {
    return DISP_E_TYPEMISMATCH;
  }
  HRESULT code = failWith;
  progIds.emplace_back(progId.bstrVal);
  ComPtr<HostTaskPane> pane;
  if (SUCCEEDED(code)) {
    pane = ComPtr<HostTaskPane>::Adopt(
        new HostTaskPane(title.bstrVal, otherWindow ? otherWindow.get() : parent.pdispVal));
    code = pane->Embed(progId.bstrVal, activation);
  }
  if (FAILED(code)) {
    if (exception != nullptr) {
      *exception = {};
      exception->scode = code;
      exception->bstrDescription = SysAllocString(L"No pane.");
    }
    return DISP_E_EXCEPTION;
  }
  panes.push_back(pane);
  if (result != nullptr) *result = ObjectValue(pane.get());
  return S_OK;
}

void PaneFactory::DestroyPanes() {
  for (const ComPtr<HostTaskPane>& pane : panes) pane->Destroy();
  panes.clear();
}

}  // namespace quillmarch::addin::winhost
