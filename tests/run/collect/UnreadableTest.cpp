#include <gtest/gtest.h>

#include "foundation/automation/HostMembers.h"
#include "run/collect/CollectFrame.h"
#include "run/document/ResolveShape.h"
#include "support/LogCapture.h"
#include "support/RunHarness.h"
#include "support/ScriptedObject.h"

namespace quillmarch::addin {

namespace {

using test::FakeShapeRef;
using test::GroupShape;
using test::RunHarness;
using test::ScriptedObject;
using test::TextShape;

struct Reports {
  Reports() { ForgetUnreadableReports(); }
  ~Reports() { ForgetUnreadableReports(); }
  test::LogCapture log;
};

TEST(Unreadable, ATypeThatCannotBeReadIsReported) {
  const Reports reports;
  RunHarness run;
  run.deck().AddSlide({TextShape(u"a")});
  run.deck().slides[0]->shapes()[0]->failing = {"Shape:Type"};
  run.RunToEnd();
  EXPECT_TRUE(reports.log.Has("PptCtrl shape Type unreadable"));
  EXPECT_FALSE(reports.log.Has("PptCtrl shape GroupItems unreadable"));
}

TEST(Unreadable, AGroupWhoseMembersCannotBeReadIsReportedAtTheWalkAndAtTheWrite) {
  RunHarness run;
  const FakeShapeRef group = GroupShape({TextShape(u"a")});
  run.deck().AddSlide({group});
  {
    const Reports reports;
    ObjectRef shape;
    const ObjectRef slides = run.host.SlidesObject(run.host.presentations.front());
    group->failing = {"Shape:GroupItems"};
    EXPECT_EQ(ResolveShape(slides.get(), 1, {1, 1}, shape), kFail);
    EXPECT_EQ(reports.log.Count("PptCtrl shape GroupItems unreadable"), 1);
  }
  const Reports reports;
  EXPECT_FALSE(run.Start());
  EXPECT_EQ(reports.log.Count("PptCtrl shape GroupItems unreadable"), 1);
}

TEST(Unreadable, AShapeOfUnknownTypeWithoutMembersIsNoGroupAndNotReportedTwice) {
  const Reports reports;
  RunHarness run;
  const FakeShapeRef shape = TextShape(u"a");
  shape->failing = {"Shape:Type", "Shape:GroupItems"};
  run.deck().AddSlide({shape});
  run.RunToEnd();
  EXPECT_EQ(shape->Text(), u"T(a)");
  EXPECT_FALSE(reports.log.Has("PptCtrl shape GroupItems unreadable"));
}

// A shape that gives its flags as told, with one paragraph.
std::size_t UnitsOf(std::int32_t hasFrame, std::int32_t hasText) {
  ScriptedObject* shape = nullptr;
  ScriptedObject* frame = nullptr;
  ScriptedObject* range = nullptr;
  const ObjectRef shapeRef = ScriptedObject::Make(shape);
  const ObjectRef frameRef = ScriptedObject::Make(frame);
  const ObjectRef rangeRef = ScriptedObject::Make(range);
  range->Interface(ppt::kTextRange);
  range->Value(u"Text", ppt::textRange::kText.id, Variant::Text(u"text"));
  range->Value(u"Count", ppt::textRange::kCount.id, Variant::I4(1));
  range->Member(u"Paragraphs", ppt::textRange::kParagraphs.id,
                [range](const test::ScriptedCall&, Variant& out) {
                  out = Variant::Object(ObjectRef(range));
                  return kOk;
                });
  frame->Interface(ppt::kTextFrame);
  frame->Value(u"HasText", ppt::textFrame::kHasText.id, Variant::I4(hasText));
  frame->Value(u"TextRange", ppt::textFrame::kTextRange.id, Variant::Object(rangeRef));
  shape->Interface(ppt::kShape);
  shape->Value(u"HasTextFrame", ppt::shape::kHasTextFrame.id, Variant::I4(hasFrame));
  shape->Value(u"TextFrame", ppt::shape::kTextFrame.id, Variant::Object(frameRef));
  RunTexts texts;
  CollectFrame(texts, shape, 1, ShapePath{}, {});
  return texts.units.size();
}

TEST(Unreadable, OnlyTheHostsOwnTrueMeansAFrameAndAText) {
  EXPECT_EQ(UnitsOf(-1, -1), 1U);
  for (const std::int32_t flag : {0, 1, -2}) {
    EXPECT_EQ(UnitsOf(flag, -1), 0U) << flag;
    EXPECT_EQ(UnitsOf(-1, flag), 0U) << flag;
  }
}

}  // namespace

}  // namespace quillmarch::addin
