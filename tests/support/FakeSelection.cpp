#include <algorithm>

#include "foundation/automation/HostMembers.h"
#include "support/FakeClasses.h"

namespace quillmarch::addin::test {

namespace {

constexpr std::int32_t kSlides = 1;
constexpr std::int32_t kShapes = 2;
constexpr std::int32_t kText = 3;

struct SelectionNode : FakeNode {
  std::shared_ptr<FakeWindow> window;
  FakeSelection& selection() const { return *window->selection; }
};

struct ShapeRangeNode : FakeNode {
  FakeShapes shapes;
};

template <typename List>
ResultCode GiveCount(const List& list, Variant& out) {
  out = Variant::I4(static_cast<std::int32_t>(list.size()));
  return kOk;
}

template <typename List>
bool Reaches(const List& list, std::int32_t index) {
  return index >= 1 && static_cast<std::size_t>(index) <= list.size();
}

const FakeClass& ShapeRangeClass() {
  static const FakeClass made = {
      "ShapeRange",
      ppt::kShapeRange,
      false,
      {Getter<ShapeRangeNode>(u"Count", 9,
                              [](FakeHost&, const auto& node, const auto&, Variant& out) {
                                return GiveCount(node->shapes, out);
                              }),
       Getter<ShapeRangeNode>(
           u"Item", 0, [](FakeHost& host, const auto& node, const auto& args, Variant& out) {
             const std::int32_t at = WholeArg(args, 0);
             if (!Reaches(node->shapes, at)) return kInvalidArgument;
             out =
                 Variant::Object(host.ShapeObject(node->shapes[static_cast<std::size_t>(at - 1)]));
             return kOk;
           })}};
  return made;
}

const FakeClass& SlideRangeClass() {
  static const FakeClass made = {
      "SlideRange",
      ppt::kSlideRange,
      false,
      {Getter<SelectionNode>(u"Count", 11,
                             [](FakeHost&, const auto& node, const auto&, Variant& out) {
                               return GiveCount(node->selection().slides, out);
                             }),
       Getter<SelectionNode>(u"Item", 0,
                             [](FakeHost& host, const auto& node, const auto& args, Variant& out) {
                               const auto& slides = node->selection().slides;
                               const std::int32_t at = WholeArg(args, 0);
                               if (!Reaches(slides, at)) return kInvalidArgument;
                               return GiveSlide(host, *node->window->presentation,
                                                slides[static_cast<std::size_t>(at - 1)], out);
                             })}};
  return made;
}

ResultCode GiveShapes(FakeHost& host, const FakeShapes& shapes, Variant& out) {
  auto node = std::make_shared<ShapeRangeNode>();
  node->shapes = shapes;
  out = Variant::Object(FakeObject::Make(host, ShapeRangeClass(), node));
  return kOk;
}

const FakeClass& SelectionClass() {
  static const FakeClass made = {
      "Selection",
      ppt::kSelection,
      false,
      {Getter<SelectionNode>(u"Type", 2007,
                             [](FakeHost&, const auto& node, const auto&, Variant& out) {
                               out = Variant::I4(node->selection().type);
                               return kOk;
                             }),
       Getter<SelectionNode>(u"SlideRange", 2008,
                             [](FakeHost& host, const auto& node, const auto&, Variant& out) {
                               if (node->selection().type != kSlides) return kHostException;
                               out =
                                   Variant::Object(FakeObject::Make(host, SlideRangeClass(), node));
                               return kOk;
                             }),
       Getter<SelectionNode>(u"ShapeRange", 2009,
                             [](FakeHost& host, const auto& node, const auto&, Variant& out) {
                               if (node->selection().type != kShapes) return kHostException;
                               return GiveShapes(host, node->selection().shapes, out);
                             }),
       Getter<SelectionNode>(u"TextRange", 2010,
                             [](FakeHost& host, const auto& node, const auto&, Variant& out) {
                               const FakeSelection& selected = node->selection();
                               if (selected.type != kText) return kHostException;
                               const auto start = std::max(selected.start, std::int32_t{1}) - 1;
                               out = Variant::Object(
                                   StretchOf(host, selected.text, static_cast<std::size_t>(start),
                                             static_cast<std::size_t>(selected.length)));
                               return kOk;
                             }),
       Getter<SelectionNode>(u"ChildShapeRange", 2011,
                             [](FakeHost& host, const auto& node, const auto&, Variant& out) {
                               if (node->selection().childShapes.empty()) return kHostException;
                               return GiveShapes(host, node->selection().childShapes, out);
                             }),
       // A 16-bit truth value here, as the library declares it.
       Getter<SelectionNode>(u"HasChildShapeRange", 2012,
                             [](FakeHost&, const auto& node, const auto&, Variant& out) {
                               out = Variant::Bool(!node->selection().childShapes.empty());
                               return kOk;
                             })}};
  return made;
}

}  // namespace

ObjectRef SelectionObject(FakeHost& host, const std::shared_ptr<FakeWindow>& window) {
  auto node = std::make_shared<SelectionNode>();
  node->window = window;
  node->failing = window->selection->failing;
  node->refusesTyped = window->selection->refusesTyped;
  return FakeObject::Make(host, SelectionClass(), node);
}

}  // namespace quillmarch::addin::test
