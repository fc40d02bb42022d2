// The host's task panes: a factory that makes a control by its progid, embeds it and activates it
// in place, as the Office family does, inside the call that asked for it.
#pragma once

#include <windows.h>

#include <ole2.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "foundation/automation/ComPtr.h"
#include "windows/host/HostObject.h"

namespace quillmarch::addin::winhost {

// How far the host goes with a control.
enum class Activation {
  kInPlace,   // the whole dance
  kRefused,   // the site refuses: the control is to find a window of its own
  kNoSite,    // no site at all, a verb with a parent window
  kNoParent,  // no site, a verb without a parent
  kNothing,   // the control is made and left alone
};

class ControlSite;

// _CustomTaskPane.
class HostTaskPane final : public HostObject {
 public:
  HostTaskPane(std::wstring title, IDispatch* window);
  ~HostTaskPane() override;

  // Makes the control of the progid and embeds it.
  HRESULT Embed(const std::wstring& progId, Activation activation);
  // What a host does when the pane goes: deactivates, closes, takes the site away, lets go.
  void Destroy();
  // The same, but the control's window goes first, as with its parent.
  void DestroyWindowFirst();
  void Resize(int width, int height);

  HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID, LCID, WORD flags, DISPPARAMS* params,
                                   VARIANT* result, EXCEPINFO*, UINT*) override;

  HWND container() const { return container_; }
  // Null when the control has no window.
  HWND controlWindow() const;
  IOleObject* control() const { return control_.get(); }

  std::wstring title;
  ComPtr<IDispatch> window;
  bool visible = false;
  LONG dockPosition = 0;
  LONG width = 320;
  bool refusesToHide = false;
  HRESULT verbCode = S_OK;  // what the first verb gave
  // What the site was told, in order: "CanInPlaceActivate", "OnInPlaceActivate" and so on.
  std::vector<std::string> siteCalls;

 private:
  friend class ControlSite;
  HWND container_ = nullptr;
  ComPtr<IOleObject> control_;
  ComPtr<ControlSite> site_;
};

// ICTPFactory.
class PaneFactory final : public HostObject {
 public:
  PaneFactory();
  HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID, LCID, WORD flags, DISPPARAMS* params,
                                   VARIANT* result, EXCEPINFO* exception, UINT*) override;

  Activation activation = Activation::kInPlace;
  // Fails the next calls with an exception that holds this code.
  HRESULT failWith = S_OK;
  // Makes panes in another window than asked for.
  ComPtr<IDispatch> otherWindow;
  std::vector<ComPtr<HostTaskPane>> panes;
  std::vector<std::wstring> progIds;
  // Ends all panes, as the host's windows do.
  void DestroyPanes();
};

}  // namespace quillmarch::addin::winhost
