#include "model/ModelFixture.h"

namespace quillmarch::host {

using testdeck::Box;
using testdeck::Group;
using testdeck::Para;
using testdeck::TextPara;

class Selections : public ModelTest {
 protected:
  static std::string Named(const std::string& name, const std::string& text) {
    static int id = 500;
    ++id;
    return "<p:sp><p:nvSpPr><p:cNvPr id=\"" + std::to_string(id) + "\" name=\"" + name +
           "\"/><p:cNvSpPr/><p:nvPr/></p:nvSpPr><p:spPr/><p:txBody><a:bodyPr/>" + TextPara(text) +
           "</p:txBody></p:sp>";
  }
  void OpenThree() {
    testdeck::DeckSource source;
    for (const char* text : {"one", "two", "three"}) {
      source.slides.push_back({testdeck::SlideXml(Named("Title", text)), {}, {}, {}});
    }
    OpenDeck(source);
  }
  ObjectRef Window() { return Get(host->application(), u"ActiveWindow"); }
  ObjectRef Selection() { return Get(Window(), u"Selection"); }
  std::int32_t Type() { return Whole(Selection(), u"Type"); }
  static bool Flag(const ObjectRef& object, WideView member) {
    return VariantToFlag(Value(object, member));
  }
  // The texts of a range of shapes, separated by bars.
  static Wide TextsOf(const ObjectRef& range) {
    Wide all;
    for (std::int32_t i = 1; i <= Whole(range, u"Count"); ++i) {
      all += TextOf(RangeOf(Get(range, u"Item", {Variant::I4(i)})), u"Text") + u"|";
    }
    return all;
  }
  std::int32_t Shown() { return Whole(Get(Get(Window(), u"View"), u"Slide"), u"SlideIndex"); }
};

TEST_F(Selections, AtFirstNothingIsSelected) {
  OpenThree();
  EXPECT_EQ(Type(), 0);
  for (WideView member : {u"SlideRange", u"ShapeRange", u"TextRange", u"ChildShapeRange"}) {
    EXPECT_EQ(Code(Selection(), member), kHostException) << ToUtf8(member);
  }
  EXPECT_FALSE(Flag(Selection(), u"HasChildShapeRange"));
}

TEST_F(Selections, SlidesKeepTheOrderOfSelectionAndComeOnce) {
  OpenThree();
  EXPECT_TRUE(host->SelectSlides({3, 1, 3}));
  EXPECT_EQ(Type(), 1);
  const ObjectRef range = Get(Selection(), u"SlideRange");
  ASSERT_EQ(Whole(range, u"Count"), 2);
  EXPECT_EQ(Whole(Get(range, u"Item", {Variant::I4(1)}), u"SlideIndex"), 3);
  EXPECT_EQ(Whole(Get(range, u"Item", {Variant::I4(2)}), u"SlideIndex"), 1);
  EXPECT_EQ(Code(range, u"Item", {Variant::I4(3)}), kHostException);
  EXPECT_EQ(Code(range, u"Item", {Variant::I4(0)}), kHostException);
  EXPECT_EQ(Code(range, u"Item"), kBadParamCount);
  EXPECT_EQ(Code(Selection(), u"ShapeRange"), kHostException);
  EXPECT_EQ(Shown(), 1);
}

TEST_F(Selections, ShapesAreNamedOrNumberedAndShowTheirSlide) {
  testdeck::DeckSource source;
  source.slides.push_back({testdeck::SlideXml(Box(TextPara("x"))), {}, {}, {}});
  source.slides.push_back(
      {testdeck::SlideXml(Named("A", "a") + Named("B", "b") + Named("B", "b2")), {}, {}, {}});
  OpenDeck(source);
  EXPECT_TRUE(host->SelectShapes(2, {{"B", {}}, {"", {1}}, {"", {2}}}));
  EXPECT_EQ(Type(), 2);
  EXPECT_EQ(TextsOf(Get(Selection(), u"ShapeRange")), u"b|a|");
  EXPECT_FALSE(Flag(Selection(), u"HasChildShapeRange"));
  EXPECT_EQ(Code(Selection(), u"ChildShapeRange"), kHostException);
  EXPECT_EQ(Code(Selection(), u"TextRange"), kHostException);
  EXPECT_EQ(Shown(), 2);
}

TEST_F(Selections, MembersOfAGroupAreAChildRangeWithinTheirGroup) {
  OpenSlide(Named("Top", "t") +
            Group(Named("In", "a") + Group(Named("Deep", "b")) + Named("Top", "c")));
  EXPECT_TRUE(host->SelectShapes(1, {{"Deep", {}}, {"", {2, 3}}}));
  EXPECT_TRUE(Flag(Selection(), u"HasChildShapeRange"));
  EXPECT_EQ(TextsOf(Get(Selection(), u"ChildShapeRange")), u"b|c|");
  const ObjectRef groups = Get(Selection(), u"ShapeRange");
  ASSERT_EQ(Whole(groups, u"Count"), 1);
  EXPECT_EQ(Whole(Get(groups, u"Item", {Variant::I4(1)}), u"Type"), 6);
  // A name means the top level first.
  EXPECT_TRUE(host->SelectShapes(1, {{"Top", {}}}));
  EXPECT_EQ(TextsOf(Get(Selection(), u"ShapeRange")), u"t|");
}

TEST_F(Selections, WhereGroupsNestEachStepOfAPathIsALevel) {
  OpenSlide(Group(Named("In", "a") + Group(Named("Deep", "b"))), "nested");
  EXPECT_TRUE(host->SelectShapes(1, {{"", {1, 2, 1}}}));
  EXPECT_EQ(TextsOf(Get(Selection(), u"ChildShapeRange")), u"b|");
  EXPECT_FALSE(host->SelectShapes(1, {{"", {1, 3}}}));
}

TEST_F(Selections, APieceOfTextHasItsPlaceAndItsShape) {
  OpenSlide(Box(TextPara("x")) + Named("Body", "Hello brave world"));
  EXPECT_TRUE(host->SelectText(1, {"Body", {}}, 7, 5));
  EXPECT_EQ(Type(), 3);
  const ObjectRef range = Get(Selection(), u"TextRange");
  EXPECT_EQ(Whole(range, u"Start"), 7);
  EXPECT_EQ(Whole(range, u"Length"), 5);
  EXPECT_EQ(TextOf(range, u"Text"), u"brave");
  EXPECT_EQ(TextOf(Get(Get(range, u"Parent"), u"Parent"), u"Name"), u"Body");
  EXPECT_EQ(TextsOf(Get(Selection(), u"ShapeRange")), u"Hello brave world|");
  EXPECT_EQ(Whole(Get(Selection(), u"SlideRange"), u"Count"), 1);
}

TEST_F(Selections, WhatCannotBeSelectedIsASentenceAndTheSelectionStays) {
  OpenSlide(Named("Title", "a\xF0\x9F\x98\x80z") + testdeck::TableFrame("<a:tbl/>") +
            Group(Named("In", "b")));
  ASSERT_TRUE(host->SelectShapes(1, {{"Title", {}}}));
  EXPECT_EQ(host->SelectSlides({1, 2}).error().words, "there is no slide 2; the deck has 1 slide");
  EXPECT_EQ(host->SelectSlides({0}).error().words, "there is no slide 0; the deck has 1 slide");
  EXPECT_EQ(host->SelectSlides({}).error().words, "no slide is named");
  EXPECT_EQ(host->SelectShapes(2, {{"Title", {}}}).error().words,
            "there is no slide 2; the deck has 1 slide");
  EXPECT_EQ(host->SelectShapes(1, {}).error().words, "no shape is named");
  EXPECT_EQ(host->SelectShapes(1, {{"title", {}}}).error().words,
            "there is no shape \"title\" on slide 1");
  EXPECT_EQ(host->SelectShapes(1, {{"", {4}}}).error().words, "there is no shape #4 on slide 1");
  EXPECT_EQ(host->SelectShapes(1, {{"", {1, 1}}}).error().words,
            "there is no shape #1/1 on slide 1");
  EXPECT_EQ(host->SelectShapes(1, {{"Title", {}}, {"In", {}}}).error().words,
            "shapes within a group can be selected only with others of the same group");
  EXPECT_EQ(host->SelectText(1, {"", {2}}, 1, 1).error().words, "shape #2 on slide 1 has no text");
  EXPECT_EQ(host->SelectText(1, {"Title", {}}, 1, 5).error().words,
            "shape \"Title\" on slide 1 has 4 characters, counted from 1");
  EXPECT_FALSE(host->SelectText(1, {"Title", {}}, 0, 1));
  EXPECT_FALSE(host->SelectText(1, {"Title", {}}, 1, 0));
  EXPECT_EQ(host->SelectText(1, {"Title", {}}, 1, 2).error().words,
            "the piece of shape \"Title\" on slide 1 begins or ends within a character");
  EXPECT_EQ(Type(), 2);
  EXPECT_TRUE(host->SelectText(1, {"Title", {}}, 2, 2));
  EXPECT_EQ(Type(), 3);
}

TEST_F(Selections, GoingToAnotherSlideLetsGoOfTheSelection) {
  OpenThree();
  ASSERT_TRUE(host->SelectShapes(2, {{"Title", {}}}));
  const ObjectRef view = Get(Window(), u"View");
  EXPECT_EQ(Code(view, u"GotoSlide", {Variant::I4(2)}), kOk);
  EXPECT_EQ(Type(), 2);
  EXPECT_EQ(Code(view, u"GotoSlide", {Variant::I4(1)}), kOk);
  EXPECT_EQ(Type(), 0);
  ASSERT_TRUE(host->SelectSlides({3}));
  host->ClearSelection();
  EXPECT_EQ(Type(), 0);
}

TEST_F(Selections, EachWindowHasItsOwn) {
  OpenThree();
  const ObjectRef first = Window();
  ASSERT_TRUE(host->SelectSlides({2}));
  ASSERT_TRUE(host->Open(path(), warnings));
  EXPECT_EQ(Type(), 0);
  EXPECT_EQ(Whole(Get(first, u"Selection"), u"Type"), 1);
}

TEST_F(Selections, TwoShapesOfOneIdInTheFileAnswerToDifferentOnes) {
  const auto box = [](const char* text) {
    return std::string(
               "<p:sp><p:nvSpPr><p:cNvPr id=\"7\" name=\"Same\"/><p:cNvSpPr/><p:nvPr/>"
               "</p:nvSpPr><p:spPr/><p:txBody><a:bodyPr/>") +
           TextPara(text) + "</p:txBody></p:sp>";
  };
  OpenSlide(box("a") + box("b") + box("c"));
  EXPECT_EQ(Whole(Shape(1), u"Id"), 7);
  EXPECT_NE(Whole(Shape(2), u"Id"), 7);
  EXPECT_NE(Whole(Shape(3), u"Id"), 7);
  EXPECT_NE(Whole(Shape(3), u"Id"), Whole(Shape(2), u"Id"));
}

TEST_F(Selections, BothRoadsReachASelection) {
  OpenThree();
  ASSERT_TRUE(host->SelectShapes(1, {{"Title", {}}}));
  ObjectRef selection;
  ObjectRef range;
  ObjectRef shape;
  std::int32_t count = 0;
  ASSERT_TRUE(quillmarch::Get(Window().get(), ppt::documentWindow::kSelection, selection));
  ASSERT_TRUE(quillmarch::Get(selection.get(), ppt::selection::kShapeRange, range));
  ASSERT_TRUE(quillmarch::Get(range.get(), ppt::shapeRange::kCount, count));
  EXPECT_EQ(count, 1);
  ASSERT_TRUE(GetAt(range.get(), ppt::shapeRange::kItem, 1, shape));
  EXPECT_TRUE(AnswersTo(shape.get(), ppt::kShape));
  ASSERT_TRUE(host->SelectSlides({2}));
  ASSERT_TRUE(quillmarch::Get(selection.get(), ppt::selection::kSlideRange, range));
  ASSERT_TRUE(GetAt(range.get(), ppt::slideRange::kItem, 1, shape));
  EXPECT_TRUE(AnswersTo(shape.get(), ppt::kSlide));
}

}  // namespace quillmarch::host
