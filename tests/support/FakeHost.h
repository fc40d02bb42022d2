// A presentation host for tests: serves FakeDeck's plain data by both roads, records every call in
// order, and fails the calls that it is told to fail. It knows nothing of files or of layout.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "foundation/automation/AutomationObject.h"
#include "foundation/automation/Variant.h"
#include "foundation/automation/WindowContext.h"
#include "support/FakeDeck.h"

namespace quillmarch::addin::test {

// What a host does in its own way.
struct FakePersonality {
  Wide applicationName = u"Microsoft PowerPoint";
  bool nestedGroups = false;  // GroupItems lists direct members instead of all leaves, flat
};

class FakeHost {
 public:
  explicit FakeHost(FakePersonality personality = {});
  FakeHost(const FakeHost&) = delete;
  FakeHost& operator=(const FakeHost&) = delete;

  // A presentation with a window of its own; the first one's window is the active one.
  FakePresentation& AddPresentation();
  FakeWindow& AddWindow(const std::shared_ptr<FakePresentation>& presentation);

  ObjectRef Application();
  // The same object that the model gives, for calls on a part of it.
  ObjectRef ShapeObject(const FakeShapeRef& shape);
  ObjectRef ShapesObject(const std::shared_ptr<FakeShapeTree>& tree);
  ObjectRef SlidesObject(const std::shared_ptr<FakePresentation>& presentation);
  ObjectRef RangeObject(const std::shared_ptr<FakeText>& text);
  ObjectRef WindowObject(const std::shared_ptr<FakeWindow>& window);
  ObjectRef PresentationObject(const std::shared_ptr<FakePresentation>& presentation);

  WindowContext ContextOf(const FakeWindow& window) const;

  // Makes a call fail: as it is recorded, with or without its arguments, at most `times` times.
  void Fail(const std::string& call, int times = -1);

  FakePersonality personality;
  std::vector<std::shared_ptr<FakePresentation>> presentations;
  std::vector<std::shared_ptr<FakeWindow>> windows;
  std::shared_ptr<FakeWindow> activeWindow;

  // Every Invoke in order: "Slides.Item(2)" typed, "Shape:Type" late-bound, "TextRange.Text=" put.
  std::vector<std::string> calls;
  // Runs before a call is served; a host that pumps messages does its re-entry here.
  std::function<void(const std::string&)> onCall;
  // References to objects of this host that are alive now.
  int liveObjects = 0;

  // For the objects themselves.
  bool Refuses(const FakeNode* node, const std::string& call, const std::string& withArgs);
  void CheckThread() const;
  std::uintptr_t FreshIdentity() { return nextIdentity_ += 16; }

 private:
  std::map<std::string, int> failing_;
  std::uintptr_t nextIdentity_ = 0x1000;
  std::thread::id hostThread_ = std::this_thread::get_id();
};

}  // namespace quillmarch::addin::test
