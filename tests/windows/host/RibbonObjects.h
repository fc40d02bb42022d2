// What a ribbon hands to its callbacks: the control that was clicked, and itself.
#pragma once

#include <string>

#include "foundation/automation/ComPtr.h"
#include "windows/host/HostObject.h"

namespace quillmarch::addin::winhost {

// IRibbonControl.
class RibbonControl final : public HostObject {
 public:
  RibbonControl(std::wstring id, std::wstring tag, IDispatch* context);

  HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID, LCID, WORD flags, DISPPARAMS*,
                                   VARIANT* result, EXCEPINFO*, UINT*) override;

 private:
  std::wstring id_;
  std::wstring tag_;
  ComPtr<IDispatch> context_;
};

// IRibbonUI.
class RibbonUi final : public HostObject {
 public:
  RibbonUi();
  HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID, LCID, WORD flags, DISPPARAMS*, VARIANT*,
                                   EXCEPINFO*, UINT*) override;
  int invalidated = 0;
};

}  // namespace quillmarch::addin::winhost
