// The pane as a control: what the host's task pane makes by class, embeds by OLE and activates in
// place. It holds the pane, gives it a window, and decides nothing. Windows only; only on the
// host's thread.
#pragma once

#include <windows.h>

#include <ocidl.h>
#include <ole2.h>

#include <functional>
#include <memory>

#include "foundation/automation/ComClass.h"
#include "pane/CPptPane.h"

namespace quillmarch::addin {

// The dispatch interface of the control, which has no members of its own.
struct IQuillmarchPptPane : IDispatch {};

inline constexpr CLSID kPaneClass = {
    0xB0C1D2E3, 0x4F5A, 0x6B7C, {0x8D, 0x9E, 0x0F, 0x1A, 0x2B, 0x3C, 0x4D, 0x5E}};

// What every control of the process is given; all of it outlives them.
struct ControlSurroundings {
  HostThread& thread;
  InputState& input;
  FontList& fonts;
  WebViewLoader& loader;
  Desktop& desktop;
};

class PaneControl final
    : public ComClass<PaneControl, IQuillmarchPptPane, IViewObjectEx, IDataObject, IOleControl,
                      IOleObject, IOleInPlaceActiveObject, IOleInPlaceObjectWindowless,
                      IPersistStreamInit> {
 public:
  // `hold` is released last.
  PaneControl(const ControlSurroundings& surroundings, std::shared_ptr<void> hold);
  ~PaneControl() = default;

  // For the base: the interfaces that others here derive from, and the object's end.
  void* FindBase(REFIID iid);
  void FinalRelease();

  // Tells which interfaces' type descriptions there are; given by the module.
  using TypeInfoSource = HRESULT (*)(REFGUID id, ITypeInfo** out);
  static void SetTypeInfoSource(TypeInfoSource source);

  // ---- IDispatch -------------------------------------------------------------------------------
  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override;
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT index, LCID locale, ITypeInfo** out) override;
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID,
                                          DISPID* ids) override;
  HRESULT STDMETHODCALLTYPE Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*,
                                   UINT*) override;

  // ---- IOleObject (PaneOle_win.cpp) ------------------------------------------------------------
  HRESULT STDMETHODCALLTYPE SetClientSite(IOleClientSite* site) override;
  HRESULT STDMETHODCALLTYPE GetClientSite(IOleClientSite** site) override;
  HRESULT STDMETHODCALLTYPE SetHostNames(LPCOLESTR, LPCOLESTR) override { return S_OK; }
  HRESULT STDMETHODCALLTYPE Close(DWORD saveOption) override;
  HRESULT STDMETHODCALLTYPE SetMoniker(DWORD, IMoniker*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetMoniker(DWORD, DWORD, IMoniker** moniker) override;
  HRESULT STDMETHODCALLTYPE InitFromData(IDataObject*, BOOL, DWORD) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetClipboardData(DWORD, IDataObject** data) override;
  HRESULT STDMETHODCALLTYPE DoVerb(LONG verb, LPMSG message, IOleClientSite* site, LONG index,
                                   HWND parent, LPCRECT place) override;
  HRESULT STDMETHODCALLTYPE EnumVerbs(IEnumOLEVERB** verbs) override;
  HRESULT STDMETHODCALLTYPE Update() override { return S_OK; }
  HRESULT STDMETHODCALLTYPE IsUpToDate() override { return S_OK; }
  HRESULT STDMETHODCALLTYPE GetUserClassID(CLSID* id) override;
  HRESULT STDMETHODCALLTYPE GetUserType(DWORD form, LPOLESTR* text) override;
  HRESULT STDMETHODCALLTYPE SetExtent(DWORD aspect, SIZEL* extent) override;
  HRESULT STDMETHODCALLTYPE GetExtent(DWORD aspect, SIZEL* extent) override;
  HRESULT STDMETHODCALLTYPE Advise(IAdviseSink* sink, DWORD* connection) override;
  HRESULT STDMETHODCALLTYPE Unadvise(DWORD connection) override;
  HRESULT STDMETHODCALLTYPE EnumAdvise(IEnumSTATDATA** sinks) override;
  HRESULT STDMETHODCALLTYPE GetMiscStatus(DWORD aspect, DWORD* status) override;
  HRESULT STDMETHODCALLTYPE SetColorScheme(LOGPALETTE*) override { return S_OK; }

  // ---- IOleControl -----------------------------------------------------------------------------
  HRESULT STDMETHODCALLTYPE GetControlInfo(CONTROLINFO*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE OnMnemonic(MSG*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE OnAmbientPropertyChange(DISPID) override { return S_OK; }
  HRESULT STDMETHODCALLTYPE FreezeEvents(BOOL) override { return S_OK; }

  // ---- IOleWindow, IOleInPlaceObjectWindowless, IOleInPlaceActiveObject (PaneActivation_win.cpp)
  HRESULT STDMETHODCALLTYPE GetWindow(HWND* window) override;
  HRESULT STDMETHODCALLTYPE ContextSensitiveHelp(BOOL) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE InPlaceDeactivate() override;
  HRESULT STDMETHODCALLTYPE UIDeactivate() override;
  HRESULT STDMETHODCALLTYPE SetObjectRects(LPCRECT place, LPCRECT clip) override;
  HRESULT STDMETHODCALLTYPE ReactivateAndUndo() override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE OnWindowMessage(UINT, WPARAM, LPARAM, LRESULT*) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE GetDropTarget(IDropTarget** target) override;
  // Not handled, so that the browser gets its keys.
  HRESULT STDMETHODCALLTYPE TranslateAccelerator(LPMSG) override { return S_FALSE; }
  HRESULT STDMETHODCALLTYPE OnFrameWindowActivate(BOOL) override { return S_OK; }
  HRESULT STDMETHODCALLTYPE OnDocWindowActivate(BOOL) override { return S_OK; }
  HRESULT STDMETHODCALLTYPE ResizeBorder(LPCRECT, IOleInPlaceUIWindow*, BOOL) override {
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE EnableModeless(BOOL) override { return S_OK; }

  // ---- IViewObjectEx ---------------------------------------------------------------------------
  HRESULT STDMETHODCALLTYPE Draw(DWORD aspect, LONG, void*, DVTARGETDEVICE*, HDC, HDC context,
                                 LPCRECTL bounds, LPCRECTL, BOOL(STDMETHODCALLTYPE*)(ULONG_PTR),
                                 ULONG_PTR) override;
  HRESULT STDMETHODCALLTYPE GetColorSet(DWORD, LONG, void*, DVTARGETDEVICE*, HDC,
                                        LOGPALETTE**) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE Freeze(DWORD, LONG, void*, DWORD*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE Unfreeze(DWORD) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE SetAdvise(DWORD aspects, DWORD flags, IAdviseSink* sink) override;
  HRESULT STDMETHODCALLTYPE GetAdvise(DWORD* aspects, DWORD* flags, IAdviseSink** sink) override;
  HRESULT STDMETHODCALLTYPE GetExtent(DWORD aspect, LONG, DVTARGETDEVICE*,
                                      LPSIZEL extent) override {
    return GetExtent(aspect, extent);
  }
  HRESULT STDMETHODCALLTYPE GetRect(DWORD aspect, LPRECTL place) override;
  HRESULT STDMETHODCALLTYPE GetViewStatus(DWORD* status) override;
  HRESULT STDMETHODCALLTYPE QueryHitPoint(DWORD aspect, LPCRECT bounds, POINT point, LONG,
                                          DWORD* hit) override;
  HRESULT STDMETHODCALLTYPE QueryHitRect(DWORD aspect, LPCRECT bounds, LPCRECT rect, LONG,
                                         DWORD* hit) override;
  HRESULT STDMETHODCALLTYPE GetNaturalExtent(DWORD, LONG, DVTARGETDEVICE*, HDC, DVEXTENTINFO*,
                                             LPSIZEL) override {
    return E_NOTIMPL;
  }

  // ---- IDataObject -----------------------------------------------------------------------------
  HRESULT STDMETHODCALLTYPE GetData(FORMATETC*, STGMEDIUM*) override { return DATA_E_FORMATETC; }
  HRESULT STDMETHODCALLTYPE GetDataHere(FORMATETC*, STGMEDIUM*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE QueryGetData(FORMATETC*) override { return DATA_E_FORMATETC; }
  HRESULT STDMETHODCALLTYPE GetCanonicalFormatEtc(FORMATETC*, FORMATETC*) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE SetData(FORMATETC*, STGMEDIUM*, BOOL) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE EnumFormatEtc(DWORD, IEnumFORMATETC** formats) override;
  HRESULT STDMETHODCALLTYPE DAdvise(FORMATETC*, DWORD, IAdviseSink*, DWORD*) override {
    return OLE_E_ADVISENOTSUPPORTED;
  }
  HRESULT STDMETHODCALLTYPE DUnadvise(DWORD) override { return OLE_E_ADVISENOTSUPPORTED; }
  HRESULT STDMETHODCALLTYPE EnumDAdvise(IEnumSTATDATA** sinks) override;

  // ---- IPersistStreamInit: there is nothing to keep --------------------------------------------
  HRESULT STDMETHODCALLTYPE GetClassID(CLSID* id) override { return GetUserClassID(id); }
  HRESULT STDMETHODCALLTYPE IsDirty() override { return S_FALSE; }
  HRESULT STDMETHODCALLTYPE Load(LPSTREAM) override { return S_OK; }
  HRESULT STDMETHODCALLTYPE Save(LPSTREAM, BOOL) override { return S_OK; }
  HRESULT STDMETHODCALLTYPE GetSizeMax(ULARGE_INTEGER* size) override;
  HRESULT STDMETHODCALLTYPE InitNew() override { return S_OK; }

 private:
  PaneSurroundings MakeSurroundings(const ControlSurroundings& surroundings);

  // The stock handling of a verb (PaneActivation_win.cpp).
  HRESULT StockVerb(LONG verb, HWND parent, LPCRECT place);
  HRESULT ActivateInPlace(LPCRECT place, bool withFocus);
  HRESULT EnterSite(LPCRECT place, bool withFocus);
  void ActivateUi();
  void TellFocus(bool has);

  // The window (PaneControl_win.cpp).
  static LRESULT CALLBACK Receive(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
  LRESULT OnMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
  // False when the stock map does not handle the message.
  bool StockMessage(HWND window, UINT message);
  bool CreateControlWindow(HWND parent, const RECT& place, DWORD style);
  bool CreateFallback(HWND parent);

  LiveCount<LiveKind::kComObject> live_;
  std::shared_ptr<void> hold_;
  std::shared_ptr<CPptPane> pane_;
  HWND window_ = nullptr;
  ComPtr<IOleClientSite> site_;
  ComPtr<IOleInPlaceSite> inPlaceSite_;  // while active in place
  ComPtr<IOleInPlaceFrame> frame_;
  ComPtr<IOleInPlaceUIWindow> document_;
  ComPtr<IOleAdviseHolder> advises_;
  ComPtr<IAdviseSink> viewAdvise_;
  DWORD viewAspects_ = 0;
  DWORD viewFlags_ = 0;
  SIZEL extent_;  // HIMETRIC
  bool uiActive_ = false;
};

}  // namespace quillmarch::addin

// The compiler looks these up in the global namespace.
__CRT_UUID_DECL(quillmarch::addin::IQuillmarchPptPane, 0xC1D2E3F4, 0x5A6B, 0x7C8D, 0x9E, 0x0F, 0x1A,
                0x2B, 0x3C, 0x4D, 0x5E, 0x6F)
