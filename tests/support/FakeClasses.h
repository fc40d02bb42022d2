// The classes of FakeHost's objects.
#pragma once

#include "support/FakeObject.h"

namespace quillmarch::addin::test {

const FakeClass& ApplicationClass();
const FakeClass& SlidesClass();
const FakeClass& ShapesClass();
const FakeClass& ShapeClass();

// A presentation's slide by its 1-based index.
ResultCode GiveSlide(FakeHost& host, const FakePresentation& presentation, std::int32_t index,
                     Variant& out);
// Selections have a file of their own, too.
ObjectRef SelectionObject(FakeHost& host, const std::shared_ptr<FakeWindow>& window);

// Text and fonts have a file of their own.
ObjectRef TextFrameObject(FakeHost& host, const std::shared_ptr<FakeText>& text);
ObjectRef WholeRange(FakeHost& host, const std::shared_ptr<FakeText>& text);
// `start` is 0-based; a stretch beyond the end is cut.
ObjectRef StretchOf(FakeHost& host, const std::shared_ptr<FakeText>& text, std::size_t start,
                    std::size_t length);

// Helpers of the tables.
inline std::int32_t WholeArg(const FakeArgs& args, std::size_t at, std::int32_t otherwise = -1) {
  return at < args.size() ? args[at].whole() : otherwise;
}

template <typename Node>
FakeMember Getter(const char16_t* name, DispId id,
                  ResultCode (*get)(FakeHost&, const std::shared_ptr<Node>&, const FakeArgs&,
                                    Variant&)) {
  return {
      name,
      id,
      [get](FakeHost& host, const std::shared_ptr<FakeNode>& node, const FakeArgs& args,
            Variant& out) { return get(host, std::static_pointer_cast<Node>(node), args, out); },
      {}};
}

template <typename Node>
FakeMember WithPut(FakeMember member,
                   ResultCode (*put)(const std::shared_ptr<Node>&, const Variant&)) {
  member.put = [put](const std::shared_ptr<FakeNode>& node, const Variant& value) {
    return put(std::static_pointer_cast<Node>(node), value);
  };
  return member;
}

}  // namespace quillmarch::addin::test
