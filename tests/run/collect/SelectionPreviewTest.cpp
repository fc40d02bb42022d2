#include "run/collect/SelectionPreview.h"

#include <gtest/gtest.h>

#include "foundation/automation/HostMembers.h"
#include "support/ScriptedObject.h"

namespace quillmarch::addin {

namespace {

using test::ScriptedObject;

constexpr std::int32_t kHwnd = 77;

// One window with a selection that a test fills in.
struct SelectionHost {
  SelectionHost() {
    selection->Interface(ppt::kSelection);
    window->Interface(ppt::kDocumentWindow);
    window->Value(u"HWND", 2020, Variant::I4(kHwnd));
    window->Value(u"Selection", 2003, Variant::Object(selectionRef));
    windows->Interface(ppt::kDocumentWindows);
    windows->Value(u"Count", 11, Variant::I4(1));
    windows->Value(u"Item", 0, Variant::Object(windowRef));
    app->Interface(ppt::kApplication);
    app->Value(u"Windows", 2002, Variant::Object(windowsRef));
    app->Value(u"ActiveWindow", 2004, Variant::Object(windowRef));
  }

  void Select(std::int32_t type, const char16_t* member, DispId id, const InterfaceId& range,
              DispId sizeId, std::int32_t size) {
    selection->Value(u"Type", 2007, Variant::I4(type));
    ScriptedObject* object = nullptr;
    const ObjectRef ref = ScriptedObject::Make(object);
    object->Interface(range);
    object->Value(u"Size", sizeId, Variant::I4(size));
    selection->Value(member, id, Variant::Object(ref));
  }

  SelectionPreview Read(const WindowContext& context = {kHwnd, 0}) {
    return ReadSelectionPreview(app, context);
  }

  ScriptedObject* app = nullptr;
  ScriptedObject* windows = nullptr;
  ScriptedObject* window = nullptr;
  ScriptedObject* selection = nullptr;
  ObjectRef appRef = ScriptedObject::Make(app);
  ObjectRef windowsRef = ScriptedObject::Make(windows);
  ObjectRef windowRef = ScriptedObject::Make(window);
  ObjectRef selectionRef = ScriptedObject::Make(selection);
};

TEST(ReadSelectionPreview, CountsTheCharactersOfAPieceOfText) {
  SelectionHost host;
  host.Select(3, u"TextRange", 2010, ppt::kTextRange, 2005, 12);
  const SelectionPreview preview = host.Read();
  EXPECT_FALSE(preview.empty);
  EXPECT_EQ(preview.fragments, 1);
  EXPECT_EQ(preview.chars, 12);
  EXPECT_EQ(preview.label, u"已选 12 字");
}

TEST(ReadSelectionPreview, ACursorWithoutTextIsEmpty) {
  SelectionHost host;
  host.Select(3, u"TextRange", 2010, ppt::kTextRange, 2005, 0);
  const SelectionPreview preview = host.Read();
  EXPECT_TRUE(preview.empty);
  EXPECT_EQ(preview.fragments, 0);
  EXPECT_EQ(preview.label, u"");
}

TEST(ReadSelectionPreview, CountsSlides) {
  SelectionHost host;
  host.Select(1, u"SlideRange", 2008, ppt::kSlideRange, 11, 3);
  const SelectionPreview preview = host.Read();
  EXPECT_EQ(preview.fragments, 3);
  EXPECT_EQ(preview.chars, 0);
  EXPECT_EQ(preview.label, u"已选 3 页");
}

TEST(ReadSelectionPreview, CountsShapesAndInsideAGroupThoseAlone) {
  SelectionHost host;
  host.Select(2, u"ShapeRange", 2009, ppt::kShapeRange, 9, 1);
  EXPECT_EQ(host.Read().label, u"已选 1 个形状");
  host.Select(2, u"ChildShapeRange", 2011, ppt::kShapeRange, 9, 2);
  EXPECT_EQ(host.Read().fragments, 1);
  host.selection->Value(u"HasChildShapeRange", 2012, Variant::Bool(true));
  EXPECT_EQ(host.Read().fragments, 2);
}

TEST(ReadSelectionPreview, MembersOfAGroupThatCannotBeHadAreEmptyAndNotTheirGroup) {
  SelectionHost host;
  host.Select(2, u"ShapeRange", 2009, ppt::kShapeRange, 9, 1);
  host.selection->Value(u"HasChildShapeRange", 2012, Variant::Bool(true));
  host.selection->Fails(u"ChildShapeRange", 2011, kFail);
  EXPECT_TRUE(host.Read().empty);
  host.Select(2, u"ChildShapeRange", 2011, ppt::kShapeRange, 9, 0);
  EXPECT_TRUE(host.Read().empty);
  host.selection->Fails(u"HasChildShapeRange", 2012, kFail);
  EXPECT_EQ(host.Read().fragments, 1);
}

TEST(ReadSelectionPreview, AnotherWindowOrNoneAndEveryFailureIsEmpty) {
  SelectionHost host;
  host.Select(1, u"SlideRange", 2008, ppt::kSlideRange, 11, 3);
  EXPECT_TRUE(host.Read({kHwnd + 1, 0}).empty);
  EXPECT_TRUE(host.Read({0, 0}).empty);
  EXPECT_TRUE(ReadSelectionPreview(nullptr, {kHwnd, 0}).empty);
  EXPECT_FALSE(host.Read({0, host.window->Identity()}).empty);
  host.selection->Value(u"Type", 2007, Variant::I4(0));
  EXPECT_TRUE(host.Read().empty);
  host.selection->Fails(u"Type", 2007, kFail);
  EXPECT_TRUE(host.Read().empty);
}

}  // namespace

}  // namespace quillmarch::addin
