#include "support/FakeObject.h"

#include <algorithm>

namespace quillmarch::addin::test {

namespace {

std::string ArgsText(const FakeArgs& args) {
  if (args.empty()) return {};
  std::string text = "(";
  for (const Variant& arg : args) {
    if (text.size() > 1) text += ",";
    text += arg.type() == VariantType::kText ? ToUtf8(arg.text()) : std::to_string(arg.whole());
  }
  return text + ")";
}

}  // namespace

ObjectRef FakeObject::Make(FakeHost& host, const FakeClass& kind, std::shared_ptr<FakeNode> node) {
  const std::uintptr_t identity =
      kind.stableIdentity ? reinterpret_cast<std::uintptr_t>(node.get()) : host.FreshIdentity();
  return ObjectRef::Adopt(
      std::make_unique<FakeObject>(host, kind, std::move(node), identity, false).release());
}

FakeObject::FakeObject(FakeHost& host, const FakeClass& kind, std::shared_ptr<FakeNode> node,
                       std::uintptr_t identity, bool typed)
    : host_(host), kind_(kind), node_(std::move(node)), identity_(identity), typed_(typed) {
  ++host_.liveObjects;
}

FakeObject::~FakeObject() {
  --host_.liveObjects;
}

ResultCode FakeObject::IdOfName(WideView name, DispId& id) {
  host_.CheckThread();
  const Wide lower = LowerAscii(name);
  const auto found = std::find_if(kind_.members.begin(), kind_.members.end(),
                                  [&](const FakeMember& m) { return LowerAscii(m.name) == lower; });
  if (found == kind_.members.end()) return kUnknownName;
  id = found->id;
  return kOk;
}

ResultCode FakeObject::Invoke(DispId id, std::uint16_t flags, const ParamBlock& params,
                              Variant* result) {
  host_.CheckThread();
  const auto member = std::find_if(kind_.members.begin(), kind_.members.end(),
                                   [&](const FakeMember& m) { return m.id == id; });
  if (member == kind_.members.end()) return kMemberNotFound;
  const bool isPut = (flags & kInvokePut) != 0;
  const FakeArgs args(params.reversedArgs.rbegin(), params.reversedArgs.rend());
  const std::string call =
      kind_.label + (typed_ ? "." : ":") + ToUtf8(member->name) + (isPut ? "=" : "");
  const std::string withArgs = isPut ? call : call + ArgsText(args);
  host_.calls.push_back(withArgs);
  if (host_.onCall) {
    const ObjectRef keep(this);
    host_.onCall(withArgs);
  }
  if (host_.Refuses(node_.get(), call, withArgs)) return kHostException;
  if (isPut) {
    if (!member->put || args.size() != 1 || !params.namedPut) return kMemberNotFound;
    return member->put(node_, args.front());
  }
  if (!member->get) return kMemberNotFound;
  Variant ignored;
  return member->get(host_, node_, args, result != nullptr ? *result : ignored);
}

ResultCode FakeObject::QueryTyped(const InterfaceId& iid, ObjectRef& out) {
  host_.CheckThread();
  if (node_->refusesTyped || !(iid == kind_.iid)) return kNoInterface;
  out = ObjectRef::Adopt(
      std::make_unique<FakeObject>(host_, kind_, node_, identity_, true).release());
  return kOk;
}

}  // namespace quillmarch::addin::test
