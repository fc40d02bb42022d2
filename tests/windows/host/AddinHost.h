// A host of the Office family as the add-in sees it: makes the connection by its class through the
// registry, calls its interfaces by their places in the published tables, reads the ribbon and
// clicks its buttons through IDispatch.
#pragma once

#include <windows.h>

#include <oaidl.h>

#include <map>
#include <string>

#include "foundation/automation/ComPtr.h"
#include "windows/host/RibbonObjects.h"
#include "windows/host/TaskPaneHost.h"

namespace quillmarch::addin::winhost {

class AddinHost {
 public:
  AddinHost();
  ~AddinHost();
  AddinHost(const AddinHost&) = delete;
  AddinHost& operator=(const AddinHost&) = delete;

  // By the progid, as a host finds add-ins.
  HRESULT Load();
  HRESULT OnConnection(IDispatch* application);
  HRESULT CTPFactoryAvailable();
  // Keeps what the ribbon's XML says of its controls.
  HRESULT GetCustomUI();
  HRESULT OnRibbonLoad();
  HRESULT OnStartupComplete();
  HRESULT OnBeginShutdown();
  HRESULT OnDisconnection();
  // All of the start in the host's order; the first failure.
  HRESULT Start(IDispatch* application);
  // All of the end.
  void Stop();

  // Presses a button of the ribbon; `context` is the window that it was pressed in, or null.
  HRESULT Click(const std::wstring& button, IDispatch* context = nullptr);
  std::wstring Label(const std::wstring& control, const wchar_t* callback = L"GetLabel");

  IUnknown* connect() const { return connect_.get(); }
  void Unload() { connect_.Reset(); }

  struct Button {
    std::wstring onAction;
    std::wstring tag;
  };
  std::wstring xml;
  std::wstring onLoad;
  std::map<std::wstring, Button> buttons;
  ComPtr<PaneFactory> factory;
  ComPtr<RibbonUi> ribbon;

 private:
  // A call of one of the connection's interfaces, by its place.
  template <typename... Args>
  HRESULT Call(const IID& iid, std::size_t place, Args... args);
  HRESULT InvokeByName(const std::wstring& name, VARIANT& argument, VARIANT* result);

  ComPtr<IUnknown> connect_;
  SAFEARRAY* custom_ = nullptr;
};

}  // namespace quillmarch::addin::winhost
