#include "host/remote/RemoteControl.h"

#include <array>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "foundation/automation/Automation.h"
#include "host/model/CallCount.h"
#include "host/model/Host.h"

namespace quillmarch::host {

namespace {

class RemoteControl final : public AutomationObject {
 public:
  explicit RemoteControl(ObjectServer& server) : server_(server) {}
  virtual ~RemoteControl() = default;
  RemoteControl(const RemoteControl&) = delete;
  RemoteControl& operator=(const RemoteControl&) = delete;

  void AddRef() override { ++references_; }
  void Release() override {
    if (--references_ == 0) const std::unique_ptr<RemoteControl> last(this);
  }
  ResultCode IdOfName(WideView name, DispId& id) override;
  ResultCode Invoke(DispId id, std::uint16_t flags, const ParamBlock& params,
                    Variant* result) override;
  ResultCode QueryTyped(const InterfaceId&, ObjectRef&) override { return kNoInterface; }
  std::uintptr_t Identity() override { return reinterpret_cast<std::uintptr_t>(this); }

  using Args = std::vector<Variant>;  // in their natural order
  Variant Open(const Args& args);
  Variant OpenToo(const Args& args);
  Variant Error(const Args&) { return Variant::Text(error_); }
  Variant Save(const Args& args);
  Variant Close(const Args&);
  Variant ShowSlide(const Args& args);
  Variant SelectShape(const Args& args);
  Variant Edited(const Args&) { return Variant::Bool(host_ != nullptr && host_->Edited()); }
  Variant Invokes(const Args&) { return Number(HostCallCount().invokes); }
  Variant NameLookups(const Args&) { return Number(HostCallCount().nameLookups); }
  Variant Jumps(const Args&) { return Number(HostCallCount().jumps); }
  Variant LiveReferences(const Args&) { return Number(server_.liveHandles()); }
  Variant FailCall(const Args& args);
  Variant Refuse(const Args& args);

 private:
  static Variant Number(std::uint64_t value) { return Variant::R8(static_cast<double>(value)); }

  ObjectServer& server_;
  std::uint32_t references_ = 1;
  std::unique_ptr<Host> host_;
  Wide error_;
};

struct ControlMember {
  WideView name;
  Variant (RemoteControl::*call)(const RemoteControl::Args&);
};

// An id is a place in this list, counted from 1.
constexpr std::array kMembers = {ControlMember{u"Open", &RemoteControl::Open},
                                 ControlMember{u"OpenToo", &RemoteControl::OpenToo},
                                 ControlMember{u"Error", &RemoteControl::Error},
                                 ControlMember{u"Save", &RemoteControl::Save},
                                 ControlMember{u"Close", &RemoteControl::Close},
                                 ControlMember{u"ShowSlide", &RemoteControl::ShowSlide},
                                 ControlMember{u"SelectShape", &RemoteControl::SelectShape},
                                 ControlMember{u"Edited", &RemoteControl::Edited},
                                 ControlMember{u"Invokes", &RemoteControl::Invokes},
                                 ControlMember{u"NameLookups", &RemoteControl::NameLookups},
                                 ControlMember{u"Jumps", &RemoteControl::Jumps},
                                 ControlMember{u"LiveReferences", &RemoteControl::LiveReferences},
                                 ControlMember{u"FailCall", &RemoteControl::FailCall},
                                 ControlMember{u"Refuse", &RemoteControl::Refuse}};

Wide TextAt(const RemoteControl::Args& args, std::size_t index) {
  return index < args.size() ? VariantToText(args[index]) : Wide();
}

std::int32_t WholeAt(const RemoteControl::Args& args, std::size_t index) {
  std::int32_t value = 0;
  if (index < args.size()) VariantToWhole(args[index], value);
  return value;
}

bool FlagAt(const RemoteControl::Args& args, std::size_t index) {
  return index < args.size() && VariantToFlag(args[index]);
}

ResultCode RemoteControl::IdOfName(WideView name, DispId& id) {
  for (std::size_t i = 0; i < kMembers.size(); ++i) {
    if (LowerAscii(kMembers[i].name) != LowerAscii(name)) continue;
    id = static_cast<DispId>(i) + 1;
    return kOk;
  }
  return kUnknownName;
}

ResultCode RemoteControl::Invoke(DispId id, std::uint16_t, const ParamBlock& params,
                                 Variant* result) {
  if (id < 1 || static_cast<std::size_t>(id) > kMembers.size()) return kMemberNotFound;
  const Args args(params.reversedArgs.rbegin(), params.reversedArgs.rend());
  Variant value = (this->*kMembers[static_cast<std::size_t>(id) - 1].call)(args);
  if (result != nullptr) *result = std::move(value);
  return kOk;
}

Variant RemoteControl::Open(const Args& args) {
  const Personality* personality = FindPersonality(ToUtf8(TextAt(args, 1)));
  if (personality == nullptr) {
    error_ = u"There is no such personality.";
    return Variant::Object({});
  }
  auto host = std::make_unique<Host>(*personality);
  std::vector<std::string> warnings;
  const Result<void> opened = host->Open(ToUtf8(TextAt(args, 0)), warnings);
  if (!opened.ok()) {
    error_ = ToWide(opened.error().words);
    return Variant::Object({});
  }
  host_ = std::move(host);
  return Variant::Object(host_->application());
}

Variant RemoteControl::OpenToo(const Args& args) {
  if (host_ == nullptr) return Variant::Bool(false);
  std::vector<std::string> warnings;
  const Result<void> opened = host_->Open(ToUtf8(TextAt(args, 0)), warnings);
  if (!opened.ok()) error_ = ToWide(opened.error().words);
  return Variant::Bool(opened.ok());
}

Variant RemoteControl::Save(const Args& args) {
  if (host_ == nullptr) return Variant::Bool(false);
  const Result<void> saved = host_->Save(ToUtf8(TextAt(args, 0)));
  if (!saved.ok()) error_ = ToWide(saved.error().words);
  return Variant::Bool(saved.ok());
}

Variant RemoteControl::Close(const Args&) {
  host_.reset();
  return {};
}

Variant RemoteControl::ShowSlide(const Args& args) {
  return Variant::Bool(host_ != nullptr && host_->ShowSlide(WholeAt(args, 0)));
}

Variant RemoteControl::SelectShape(const Args& args) {
  if (host_ == nullptr) return Variant::Bool(false);
  const Result<void> selected =
      host_->SelectShapes(WholeAt(args, 0), {ShapeKey{{}, {WholeAt(args, 1)}}});
  if (!selected) error_ = ToWide(selected.error().words);
  return Variant::Bool(selected.ok());
}

Variant RemoteControl::FailCall(const Args& args) {
  server_.faults.failAt = WholeAt(args, 0);
  server_.faults.code = WholeAt(args, 1);
  server_.faults.more = args.size() > 2 ? WholeAt(args, 2) : 0;
  return {};
}

Variant RemoteControl::Refuse(const Args& args) {
  server_.faults.refuseNames = FlagAt(args, 0);
  server_.faults.refuseTypes = FlagAt(args, 1);
  return {};
}

}  // namespace

ObjectRef MakeRemoteControl(ObjectServer& server) {
  return ObjectRef::Adopt(std::make_unique<RemoteControl>(server).release());
}

}  // namespace quillmarch::host
