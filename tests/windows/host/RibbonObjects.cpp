#include "windows/host/RibbonObjects.h"

namespace quillmarch::addin::winhost {

namespace {

constexpr IID kRibbonControl = {0x000C0395, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
constexpr IID kRibbonUi = {0x000C03A7, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};

}  // namespace

RibbonControl::RibbonControl(std::wstring id, std::wstring tag, IDispatch* context)
    : HostObject(kRibbonControl, {{L"Id", 1}, {L"Context", 2}, {L"Tag", 3}}),
      id_(std::move(id)),
      tag_(std::move(tag)),
      context_(context) {}

HRESULT RibbonControl::Invoke(DISPID id, REFIID, LCID, WORD flags, DISPPARAMS*, VARIANT* result,
                              EXCEPINFO*, UINT*) {
  if ((flags & DISPATCH_PROPERTYGET) == 0 || result == nullptr) return DISP_E_MEMBERNOTFOUND;
  switch (id) {
    case 1:
      *result = TextValue(id_);
      return S_OK;
    case 2:
      *result = ObjectValue(context_.get());
      return S_OK;
    case 3:
      *result = TextValue(tag_);
      return S_OK;
    default:
      return DISP_E_MEMBERNOTFOUND;
  }
}

RibbonUi::RibbonUi()
    : HostObject(kRibbonUi,
                 {{L"Invalidate", 1}, {L"InvalidateControl", 2}, {L"InvalidateControlMso", 3}}) {}

HRESULT RibbonUi::Invoke(DISPID id, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*, UINT*) {
  if (id == 1) ++invalidated;
  return id >= 1 && id <= 3 ? S_OK : DISP_E_MEMBERNOTFOUND;
}

}  // namespace quillmarch::addin::winhost
