#include "support/FakeHost.h"

#include <gtest/gtest.h>

#include "support/FakeClasses.h"
#include "support/FakeObject.h"

namespace quillmarch::addin::test {

namespace {
constexpr std::int32_t kFirstHwnd = 0x10010;
}

FakeHost::FakeHost(FakePersonality persona) : personality(std::move(persona)) {}

FakePresentation& FakeHost::AddPresentation() {
  presentations.push_back(std::make_shared<FakePresentation>());
  AddWindow(presentations.back());
  return *presentations.back();
}

FakeWindow& FakeHost::AddWindow(const std::shared_ptr<FakePresentation>& presentation) {
  auto window = std::make_shared<FakeWindow>();
  window->hwnd = kFirstHwnd + static_cast<std::int32_t>(windows.size());
  window->presentation = presentation;
  windows.push_back(window);
  if (!activeWindow) activeWindow = window;
  return *window;
}

ObjectRef FakeHost::Application() {
  static const auto node = std::make_shared<FakeNode>();
  return FakeObject::Make(*this, ApplicationClass(), node);
}

ObjectRef FakeHost::ShapeObject(const FakeShapeRef& shape) {
  return FakeObject::Make(*this, ShapeClass(), shape);
}

ObjectRef FakeHost::ShapesObject(const std::shared_ptr<FakeShapeTree>& tree) {
  return FakeObject::Make(*this, ShapesClass(), tree);
}

ObjectRef FakeHost::SlidesObject(const std::shared_ptr<FakePresentation>& presentation) {
  return FakeObject::Make(*this, SlidesClass(), presentation);
}

ObjectRef FakeHost::RangeObject(const std::shared_ptr<FakeText>& text) {
  return WholeRange(*this, text);
}

WindowContext FakeHost::ContextOf(const FakeWindow& window) const {
  return {window.hwnd, reinterpret_cast<std::uintptr_t>(&window)};
}

void FakeHost::Fail(const std::string& call, int times) {
  failing_[call] = times;
}

bool FakeHost::Refuses(const FakeNode* node, const std::string& call, const std::string& withArgs) {
  if (node->failing.contains(call) || node->failing.contains(withArgs)) return true;
  for (const std::string* key : {&call, &withArgs}) {
    const auto found = failing_.find(*key);
    if (found == failing_.end() || found->second == 0) continue;
    if (found->second > 0) --found->second;
    return true;
  }
  return false;
}

void FakeHost::CheckThread() const {
  EXPECT_EQ(std::this_thread::get_id(), hostThread_) << "a host object was touched by a worker";
}

}  // namespace quillmarch::addin::test
