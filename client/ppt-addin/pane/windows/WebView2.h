// The browser's published interfaces, as far as a pane uses them. Their methods are in the order
// of the table that the browser's maker publishes; a method that nobody calls here has only its
// place in it. Windows only.
#pragma once

#include <windows.h>

#include <eventtoken.h>
#include <unknwn.h>

namespace quillmarch::addin {

struct ICoreWebView2;
struct ICoreWebView2Controller;
struct ICoreWebView2Environment;

struct ICoreWebView2CreateCoreWebView2EnvironmentCompletedHandler : IUnknown {
  virtual HRESULT STDMETHODCALLTYPE Invoke(HRESULT code, ICoreWebView2Environment* made) = 0;
};

struct ICoreWebView2CreateCoreWebView2ControllerCompletedHandler : IUnknown {
  virtual HRESULT STDMETHODCALLTYPE Invoke(HRESULT code, ICoreWebView2Controller* made) = 0;
};

struct ICoreWebView2WebMessageReceivedEventArgs : IUnknown {
  virtual HRESULT STDMETHODCALLTYPE get_Source(LPWSTR* uri) = 0;
  // The caller frees the text by CoTaskMemFree.
  virtual HRESULT STDMETHODCALLTYPE get_WebMessageAsJson(LPWSTR* json) = 0;
  virtual HRESULT STDMETHODCALLTYPE TryGetWebMessageAsString(LPWSTR* text) = 0;
};

struct ICoreWebView2WebMessageReceivedEventHandler : IUnknown {
  virtual HRESULT STDMETHODCALLTYPE Invoke(ICoreWebView2* sender,
                                           ICoreWebView2WebMessageReceivedEventArgs* args) = 0;
};

struct ICoreWebView2NavigationStartingEventHandler : IUnknown {
  virtual HRESULT STDMETHODCALLTYPE Invoke(ICoreWebView2* sender, IUnknown* args) = 0;
};

struct ICoreWebView2NavigationCompletedEventArgs : IUnknown {
  virtual HRESULT STDMETHODCALLTYPE get_IsSuccess(BOOL* success) = 0;
  virtual HRESULT STDMETHODCALLTYPE get_WebErrorStatus(int* status) = 0;
  virtual HRESULT STDMETHODCALLTYPE get_NavigationId(UINT64* id) = 0;
};

struct ICoreWebView2NavigationCompletedEventHandler : IUnknown {
  virtual HRESULT STDMETHODCALLTYPE Invoke(ICoreWebView2* sender,
                                           ICoreWebView2NavigationCompletedEventArgs* args) = 0;
};

struct ICoreWebView2Settings : IUnknown {
  virtual HRESULT STDMETHODCALLTYPE get_IsScriptEnabled(BOOL* enabled) = 0;
  virtual HRESULT STDMETHODCALLTYPE put_IsScriptEnabled(BOOL enabled) = 0;
  virtual HRESULT STDMETHODCALLTYPE get_IsWebMessageEnabled(BOOL* enabled) = 0;
  virtual HRESULT STDMETHODCALLTYPE put_IsWebMessageEnabled(BOOL enabled) = 0;
  virtual HRESULT STDMETHODCALLTYPE get_AreDefaultScriptDialogsEnabled(BOOL* enabled) = 0;
  virtual HRESULT STDMETHODCALLTYPE put_AreDefaultScriptDialogsEnabled(BOOL enabled) = 0;
  virtual HRESULT STDMETHODCALLTYPE get_IsStatusBarEnabled(BOOL* enabled) = 0;
  virtual HRESULT STDMETHODCALLTYPE put_IsStatusBarEnabled(BOOL enabled) = 0;
  virtual HRESULT STDMETHODCALLTYPE get_AreDevToolsEnabled(BOOL* enabled) = 0;
  virtual HRESULT STDMETHODCALLTYPE put_AreDevToolsEnabled(BOOL enabled) = 0;
};

struct ICoreWebView2 : IUnknown {
  virtual HRESULT STDMETHODCALLTYPE get_Settings(ICoreWebView2Settings** settings) = 0;
  virtual HRESULT STDMETHODCALLTYPE get_Source(LPWSTR* uri) = 0;
  virtual HRESULT STDMETHODCALLTYPE Navigate(LPCWSTR uri) = 0;
  virtual HRESULT STDMETHODCALLTYPE NavigateToString(LPCWSTR html) = 0;
  virtual HRESULT STDMETHODCALLTYPE add_NavigationStarting(
      ICoreWebView2NavigationStartingEventHandler* handler, EventRegistrationToken* token) = 0;
  virtual HRESULT STDMETHODCALLTYPE remove_NavigationStarting(EventRegistrationToken token) = 0;
  virtual void STDMETHODCALLTYPE add_ContentLoading() = 0;
  virtual void STDMETHODCALLTYPE remove_ContentLoading() = 0;
  virtual void STDMETHODCALLTYPE add_SourceChanged() = 0;
  virtual void STDMETHODCALLTYPE remove_SourceChanged() = 0;
  virtual void STDMETHODCALLTYPE add_HistoryChanged() = 0;
  virtual void STDMETHODCALLTYPE remove_HistoryChanged() = 0;
  virtual HRESULT STDMETHODCALLTYPE add_NavigationCompleted(
      ICoreWebView2NavigationCompletedEventHandler* handler, EventRegistrationToken* token) = 0;
  virtual HRESULT STDMETHODCALLTYPE remove_NavigationCompleted(EventRegistrationToken token) = 0;
  virtual void STDMETHODCALLTYPE add_FrameNavigationStarting() = 0;
  virtual void STDMETHODCALLTYPE remove_FrameNavigationStarting() = 0;
  virtual void STDMETHODCALLTYPE add_FrameNavigationCompleted() = 0;
  virtual void STDMETHODCALLTYPE remove_FrameNavigationCompleted() = 0;
  virtual void STDMETHODCALLTYPE add_ScriptDialogOpening() = 0;
  virtual void STDMETHODCALLTYPE remove_ScriptDialogOpening() = 0;
  virtual void STDMETHODCALLTYPE add_PermissionRequested() = 0;
  virtual void STDMETHODCALLTYPE remove_PermissionRequested() = 0;
  virtual void STDMETHODCALLTYPE add_ProcessFailed() = 0;
  virtual void STDMETHODCALLTYPE remove_ProcessFailed() = 0;
  virtual void STDMETHODCALLTYPE AddScriptToExecuteOnDocumentCreated() = 0;
  virtual void STDMETHODCALLTYPE RemoveScriptToExecuteOnDocumentCreated() = 0;
  // The handler may be null.
  virtual HRESULT STDMETHODCALLTYPE ExecuteScript(LPCWSTR script, IUnknown* handler) = 0;
  virtual void STDMETHODCALLTYPE CapturePreview() = 0;
  virtual void STDMETHODCALLTYPE Reload() = 0;
  virtual HRESULT STDMETHODCALLTYPE PostWebMessageAsJson(LPCWSTR json) = 0;
  virtual HRESULT STDMETHODCALLTYPE PostWebMessageAsString(LPCWSTR text) = 0;
  virtual HRESULT STDMETHODCALLTYPE add_WebMessageReceived(
      ICoreWebView2WebMessageReceivedEventHandler* handler, EventRegistrationToken* token) = 0;
  virtual HRESULT STDMETHODCALLTYPE remove_WebMessageReceived(EventRegistrationToken token) = 0;
  // More follow; none of them is called.
};

struct ICoreWebView2Controller : IUnknown {
  virtual HRESULT STDMETHODCALLTYPE get_IsVisible(BOOL* visible) = 0;
  virtual HRESULT STDMETHODCALLTYPE put_IsVisible(BOOL visible) = 0;
  virtual HRESULT STDMETHODCALLTYPE get_Bounds(RECT* bounds) = 0;
  virtual HRESULT STDMETHODCALLTYPE put_Bounds(RECT bounds) = 0;
  virtual HRESULT STDMETHODCALLTYPE get_ZoomFactor(double* factor) = 0;
  virtual HRESULT STDMETHODCALLTYPE put_ZoomFactor(double factor) = 0;
  virtual void STDMETHODCALLTYPE add_ZoomFactorChanged() = 0;
  virtual void STDMETHODCALLTYPE remove_ZoomFactorChanged() = 0;
  virtual void STDMETHODCALLTYPE SetBoundsAndZoomFactor() = 0;
  virtual HRESULT STDMETHODCALLTYPE MoveFocus(int reason) = 0;
  virtual void STDMETHODCALLTYPE add_MoveFocusRequested() = 0;
  virtual void STDMETHODCALLTYPE remove_MoveFocusRequested() = 0;
  virtual void STDMETHODCALLTYPE add_GotFocus() = 0;
  virtual void STDMETHODCALLTYPE remove_GotFocus() = 0;
  virtual void STDMETHODCALLTYPE add_LostFocus() = 0;
  virtual void STDMETHODCALLTYPE remove_LostFocus() = 0;
  virtual void STDMETHODCALLTYPE add_AcceleratorKeyPressed() = 0;
  virtual void STDMETHODCALLTYPE remove_AcceleratorKeyPressed() = 0;
  virtual HRESULT STDMETHODCALLTYPE get_ParentWindow(HWND* parent) = 0;
  virtual HRESULT STDMETHODCALLTYPE put_ParentWindow(HWND parent) = 0;
  virtual HRESULT STDMETHODCALLTYPE NotifyParentWindowPositionChanged() = 0;
  virtual HRESULT STDMETHODCALLTYPE Close() = 0;
  virtual HRESULT STDMETHODCALLTYPE get_CoreWebView2(ICoreWebView2** webView) = 0;
};

struct ICoreWebView2Environment : IUnknown {
  virtual HRESULT STDMETHODCALLTYPE CreateCoreWebView2Controller(
      HWND parent, ICoreWebView2CreateCoreWebView2ControllerCompletedHandler* handler) = 0;
  // More follow; none of them is called.
};

// What WebView2Loader.dll exports under the name of kCreateEnvironment.
using CreateEnvironmentFunction =
    HRESULT(STDAPICALLTYPE*)(PCWSTR browserFolder, PCWSTR userDataFolder, IUnknown* options,
                             ICoreWebView2CreateCoreWebView2EnvironmentCompletedHandler* handler);

}  // namespace quillmarch::addin

// The compiler looks these up in the global namespace.
__CRT_UUID_DECL(quillmarch::addin::ICoreWebView2CreateCoreWebView2EnvironmentCompletedHandler,
                0x4E8A3389, 0xC9D8, 0x4BD2, 0xB6, 0xB5, 0x12, 0x4F, 0xEE, 0x6C, 0xC1, 0x4D)
__CRT_UUID_DECL(quillmarch::addin::ICoreWebView2CreateCoreWebView2ControllerCompletedHandler,
                0x6C4819F3, 0xC9B7, 0x4260, 0x81, 0x27, 0xC9, 0xF5, 0xBD, 0xE7, 0xF6, 0x8C)
__CRT_UUID_DECL(quillmarch::addin::ICoreWebView2WebMessageReceivedEventHandler, 0x57213F19, 0x00E6,
                0x49FA, 0x8E, 0x07, 0x89, 0x8E, 0xA0, 0x1E, 0xCB, 0xD2)
__CRT_UUID_DECL(quillmarch::addin::ICoreWebView2NavigationStartingEventHandler, 0x9ADBE429, 0xF36D,
                0x432B, 0x9D, 0xDC, 0xF8, 0x88, 0x1F, 0xBD, 0x76, 0xE3)
__CRT_UUID_DECL(quillmarch::addin::ICoreWebView2NavigationCompletedEventHandler, 0xD33A35BF, 0x1C49,
                0x4F98, 0x93, 0xAB, 0x00, 0x6E, 0x05, 0x33, 0xFE, 0x1C)
