// What embedding asks of the control beside its window: site, extent, sinks, drawing.
#include <olectl.h>

#include "pane/windows/PaneControl.h"

namespace quillmarch::addin {

namespace {

// As registered: recomposes on resize, cannot be linked to, works inside out, is activated when it
// is visible, and wants its site first.
constexpr DWORD kMiscStatus = OLEMISC_RECOMPOSEONRESIZE | OLEMISC_CANTLINKINSIDE |
                              OLEMISC_INSIDEOUT | OLEMISC_ACTIVATEWHENVISIBLE |
                              OLEMISC_SETCLIENTSITEFIRST;
static_assert(kMiscStatus == 131473);

// Clears an output and refuses.
template <typename T>
HRESULT Nothing(T** out, HRESULT code) {
  if (out == nullptr) return E_POINTER;
  *out = nullptr;
  return code;
}

}  // namespace

HRESULT PaneControl::SetClientSite(IOleClientSite* site) {
  site_ = ComPtr<IOleClientSite>(site);
  return S_OK;
}

HRESULT PaneControl::GetClientSite(IOleClientSite** site) {
  if (site == nullptr) return E_POINTER;
  *site = ComPtr<IOleClientSite>(site_).Detach();
  return S_OK;
}

HRESULT PaneControl::GetMoniker(DWORD, DWORD, IMoniker** moniker) {
  return Nothing(moniker, E_NOTIMPL);
}

HRESULT PaneControl::GetClipboardData(DWORD, IDataObject** data) {
  return Nothing(data, E_NOTIMPL);
}

HRESULT PaneControl::EnumVerbs(IEnumOLEVERB** verbs) {
  return Nothing(verbs, OLE_S_USEREG);
}

HRESULT PaneControl::GetUserClassID(CLSID* id) {
  if (id == nullptr) return E_POINTER;
  *id = kPaneClass;
  return S_OK;
}

HRESULT PaneControl::GetUserType(DWORD form, LPOLESTR* text) {
  return OleRegGetUserType(kPaneClass, form, text);
}

HRESULT PaneControl::SetExtent(DWORD aspect, SIZEL* extent) {
  if (extent == nullptr) return E_POINTER;
  if (aspect != DVASPECT_CONTENT) return DV_E_DVASPECT;
  extent_ = *extent;
  return S_OK;
}

HRESULT PaneControl::GetExtent(DWORD aspect, SIZEL* extent) {
  if (extent == nullptr) return E_POINTER;
  if (aspect != DVASPECT_CONTENT) return DV_E_DVASPECT;
  *extent = extent_;
  return S_OK;
}

HRESULT PaneControl::Advise(IAdviseSink* sink, DWORD* connection) {
  if (connection == nullptr) return E_POINTER;
  if (!advises_) {
    const HRESULT made = CreateOleAdviseHolder(advises_.put());
    if (FAILED(made)) return made;
  }
  return advises_->Advise(sink, connection);
}

HRESULT PaneControl::Unadvise(DWORD connection) {
  return advises_ ? advises_->Unadvise(connection) : OLE_E_NOCONNECTION;
}

HRESULT PaneControl::EnumAdvise(IEnumSTATDATA** sinks) {
  if (sinks == nullptr) return E_POINTER;
  *sinks = nullptr;
  return advises_ ? advises_->EnumAdvise(sinks) : E_FAIL;
}

HRESULT PaneControl::GetMiscStatus(DWORD aspect, DWORD* status) {
  if (status == nullptr) return E_POINTER;
  *status = aspect == DVASPECT_CONTENT ? kMiscStatus : 0;
  return S_OK;
}

// Deactivates, tells the sinks, and leaves the site to SetClientSite.
HRESULT PaneControl::Close(DWORD) {
  const ComPtr<PaneControl> self(this);
  if (inPlaceSite_) InPlaceDeactivate();
  if (window_ != nullptr) DestroyWindow(window_);
  if (advises_) advises_->SendOnClose();
  return S_OK;
}

// The page is the browser's to draw, so all there is is its background.
HRESULT PaneControl::Draw(DWORD aspect, LONG, void*, DVTARGETDEVICE*, HDC, HDC context,
                          LPCRECTL bounds, LPCRECTL, BOOL(STDMETHODCALLTYPE*)(ULONG_PTR),
                          ULONG_PTR) {
  if (aspect != DVASPECT_CONTENT) return DV_E_DVASPECT;
  if (context == nullptr || bounds == nullptr) return E_INVALIDARG;
  const RECT place = {bounds->left, bounds->top, bounds->right, bounds->bottom};
  FillRect(context, &place, GetSysColorBrush(COLOR_WINDOW));
  return S_OK;
}

HRESULT PaneControl::SetAdvise(DWORD aspects, DWORD flags, IAdviseSink* sink) {
  viewAspects_ = aspects;
  viewFlags_ = flags;
  viewAdvise_ = ComPtr<IAdviseSink>(sink);
  return S_OK;
}

HRESULT PaneControl::GetAdvise(DWORD* aspects, DWORD* flags, IAdviseSink** sink) {
  if (aspects != nullptr) *aspects = viewAspects_;
  if (flags != nullptr) *flags = viewFlags_;
  if (sink != nullptr) *sink = ComPtr<IAdviseSink>(viewAdvise_).Detach();
  return S_OK;
}

HRESULT PaneControl::GetRect(DWORD, LPRECTL place) {
  if (place == nullptr) return E_POINTER;
  *place = {};
  return E_NOTIMPL;
}

HRESULT PaneControl::GetViewStatus(DWORD* status) {
  if (status == nullptr) return E_POINTER;
  *status = VIEWSTATUS_OPAQUE | VIEWSTATUS_SOLIDBKGND;
  return S_OK;
}

HRESULT PaneControl::QueryHitPoint(DWORD aspect, LPCRECT bounds, POINT point, LONG, DWORD* hit) {
  if (bounds == nullptr || hit == nullptr) return E_POINTER;
  if (aspect != DVASPECT_CONTENT) return E_FAIL;
  *hit = static_cast<DWORD>(PtInRect(bounds, point) != FALSE ? HITRESULT_HIT : HITRESULT_OUTSIDE);
  return S_OK;
}

HRESULT PaneControl::QueryHitRect(DWORD aspect, LPCRECT bounds, LPCRECT rect, LONG, DWORD* hit) {
  if (bounds == nullptr || rect == nullptr || hit == nullptr) return E_POINTER;
  if (aspect != DVASPECT_CONTENT) return E_FAIL;
  RECT common;
  const BOOL touch = IntersectRect(&common, bounds, rect);
  *hit = static_cast<DWORD>(touch != FALSE ? HITRESULT_HIT : HITRESULT_OUTSIDE);
  return S_OK;
}

HRESULT PaneControl::EnumFormatEtc(DWORD, IEnumFORMATETC** formats) {
  return Nothing(formats, E_NOTIMPL);
}

HRESULT PaneControl::EnumDAdvise(IEnumSTATDATA** sinks) {
  return Nothing(sinks, OLE_E_ADVISENOTSUPPORTED);
}

HRESULT PaneControl::GetSizeMax(ULARGE_INTEGER* size) {
  if (size == nullptr) return E_POINTER;
  size->QuadPart = 0;
  return S_OK;
}

}  // namespace quillmarch::addin
