#include "shell/windows/HostTaskPane.h"

#include <array>

#include "foundation/automation/Automation.h"
#include "foundation/automation/ComObject.h"

namespace quillmarch::addin {

namespace {

// Of _CustomTaskPane and ICTPFactory.
constexpr DispId kWindow = 2;
constexpr DispId kVisible = 3;
constexpr DispId kWidth = 6;
constexpr DispId kDockPosition = 7;
constexpr DispId kCreateCTP = 1;

class HostTaskPane final : public TaskPane {
 public:
  explicit HostTaskPane(ObjectRef pane) : pane_(std::move(pane)) {}

  ResultCode GetWindow(ObjectRef& out) override {
    out.Reset();
    Variant value;
    const ResultCode code = Get(kWindow, value);
    if (Failed(code)) return code;
    if (!value.hasObject()) return kFail;
    out = value.takeObject();
    return kOk;
  }
  ResultCode PutVisible(bool visible) override { return Put(kVisible, Variant::Bool(visible)); }
  ResultCode GetDockPosition(std::int32_t& out) override { return GetWhole(kDockPosition, out); }
  ResultCode PutDockPosition(std::int32_t position) override {
    return Put(kDockPosition, Variant::I4(position));
  }
  ResultCode GetWidth(std::int32_t& out) override { return GetWhole(kWidth, out); }
  ResultCode PutWidth(std::int32_t width) override { return Put(kWidth, Variant::I4(width)); }

 private:
  ResultCode Get(DispId id, Variant& value) {
    return AutoInvoke(pane_.get(), id, kInvokeGet, {}, &value);
  }
  ResultCode GetWhole(DispId id, std::int32_t& out) {
    Variant value;
    const ResultCode code = Get(id, value);
    if (Failed(code)) return code;
    return VariantToWhole(value, out) ? kOk : kTypeMismatch;
  }
  ResultCode Put(DispId id, const Variant& value) {
    return AutoInvoke(pane_.get(), id, kInvokePut, ParamBlock{{&value, 1}, true}, nullptr);
  }

  ObjectRef pane_;
};

class HostPaneFactory final : public TaskPaneFactory {
 public:
  explicit HostPaneFactory(ObjectRef factory) : factory_(std::move(factory)) {}

  ResultCode CreateCTP(const Wide& progId, const Wide& title, const ObjectRef& parentWindow,
                       std::shared_ptr<TaskPane>& out) override {
    out.reset();
    const std::array reversed = {Variant::Object(parentWindow), Variant::Text(title),
                                 Variant::Text(progId)};
    Variant made;
    const ResultCode code =
        InvokeForOwnCode(factory_.get(), kCreateCTP, kInvokeMethod, ParamBlock{reversed}, made);
    if (Failed(code)) return code;
    if (!made.hasObject()) return kFail;
    out = std::make_shared<HostTaskPane>(made.takeObject());
    return kOk;
  }

 private:
  ObjectRef factory_;
};

}  // namespace

std::shared_ptr<TaskPaneFactory> WrapPaneFactory(IDispatch* factory) {
  if (factory == nullptr) return nullptr;
  return std::make_shared<HostPaneFactory>(WrapDispatch(factory));
}

}  // namespace quillmarch::addin
