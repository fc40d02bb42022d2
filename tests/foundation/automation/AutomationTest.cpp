#include "foundation/automation/Automation.h"

#include <array>
#include <stdexcept>

#include "foundation/automation/HostMembers.h"
#include "foundation/log/DebugOutput.h"
#include "gtest/gtest.h"
#include "support/ScriptedObject.h"

namespace quillmarch::addin {

using test::ScriptedCall;
using test::ScriptedObject;

namespace {

constexpr DispId kSomeId = 42;

struct Scripted {
  Scripted() : ref(ScriptedObject::Make(object)) {}
  ScriptedObject* operator->() const { return object; }
  ScriptedObject* object = nullptr;
  ObjectRef ref;
};

}  // namespace

TEST(AutoGet, TheMemberIsFoundByNameAndInvokedAsMethodOrGet) {
  Scripted host;
  host->Value(u"Count", kSomeId, Variant::I4(7));
  Variant value;
  EXPECT_EQ(kOk, AutoGet(host.object, u"Count", value));
  EXPECT_EQ(7, value.whole());
  ASSERT_EQ(1u, host->calls().size());
  EXPECT_EQ(kSomeId, host->calls()[0].id);
  EXPECT_EQ(3, host->calls()[0].flags);
  EXPECT_TRUE(host->calls()[0].reversedArgs.empty());
  EXPECT_FALSE(host->calls()[0].namedPut);
}

TEST(AutoGet, ANullObjectGivesThePointerCode) {
  Variant value = Variant::I4(1);
  EXPECT_EQ(MakeResult(0x80004003), AutoGet(nullptr, u"Count", value));
  EXPECT_EQ(VariantType::kEmpty, value.type());
}

TEST(AutoGet, AnUnknownMemberIsNotInvokedAndNotRetried) {
  Scripted host;
  Variant value = Variant::I4(1);
  EXPECT_EQ(kUnknownName, AutoGet(host.object, u"Nothing", value));
  EXPECT_EQ(VariantType::kEmpty, value.type());
  EXPECT_EQ(1u, host->lookUps().size());
  EXPECT_TRUE(host->calls().empty());
}

TEST(AutoGet, AFailingCallIsMadeOnceAndLeavesNoValue) {
  Scripted host;
  host->Fails(u"Type", kSomeId, kHostException);
  Variant value = Variant::I4(1);
  EXPECT_EQ(kHostException, AutoGet(host.object, u"Type", value));
  EXPECT_EQ(VariantType::kEmpty, value.type());
  EXPECT_EQ(1u, host->calls().size());
}

TEST(AutoGet, ArgumentsStandLastFirstInTheBlock) {
  Scripted host;
  host->Value(u"Cell", kSomeId, Variant::I4(0));
  const std::array args = {Variant::I4(1), Variant::I4(2), Variant::I4(3)};
  Variant value;
  EXPECT_EQ(kOk, AutoGet(host.object, u"Cell", args, value));
  const auto& sent = host->calls().at(0).reversedArgs;
  ASSERT_EQ(3u, sent.size());
  EXPECT_EQ(3, sent[0].whole());
  EXPECT_EQ(2, sent[1].whole());
  EXPECT_EQ(1, sent[2].whole());
}

TEST(AutoGet, AnExceptionOfTheNameLookUpShowsAsPlainFailure) {
  Scripted host;
  host->ThrowOnLookUp();
  Variant value;
  EXPECT_EQ(kFail, AutoGet(host.object, u"Name", value));
}

TEST(AutoGet, TheValueMayReplaceTheReferenceThatHeldTheObject) {
  Variant value;
  {
    Scripted host;
    host->Member(u"Next", kSomeId, [](const ScriptedCall&, Variant& result) {
      result = Variant::I4(5);
      return kOk;
    });
    value = Variant::Object(host.ref);
  }
  EXPECT_EQ(kOk, AutoGet(value.object().get(), u"Next", value));
  EXPECT_EQ(5, value.whole());
}

TEST(AutoInvoke, AnExceptionThatLeavesTheCallShowsAsPlainFailure) {
  Scripted host;
  host->Member(u"Bad", kSomeId, [](const ScriptedCall&, Variant& result) -> ResultCode {
    result = Variant::I4(1);
    throw std::runtime_error("host");
  });
  host->Member(u"Worse", kSomeId + 1, [](const ScriptedCall&, Variant&) -> ResultCode { throw 7; });
  Variant value = Variant::I4(3);
  EXPECT_EQ(MakeResult(0x80004005), AutoInvoke(host.object, kSomeId, 3, {}, &value));
  EXPECT_EQ(VariantType::kEmpty, value.type());
  EXPECT_EQ(MakeResult(0x80004005), AutoInvoke(host.object, kSomeId + 1, 3, {}, nullptr));
}

TEST(AutoInvoke, AFailedCallLeavesNoValueEvenWhenTheHostGaveOne) {
  Scripted host;
  host->Member(u"Odd", kSomeId, [](const ScriptedCall&, Variant& result) {
    result = Variant::I4(1);
    return kHostException;
  });
  Variant value = Variant::I4(3);
  EXPECT_EQ(kHostException, AutoInvoke(host.object, kSomeId, 3, {}, &value));
  EXPECT_EQ(VariantType::kEmpty, value.type());
}

TEST(AutoInvoke, ANullObjectGivesThePointerCode) {
  EXPECT_EQ(MakeResult(0x80004003), AutoInvoke(nullptr, 1, 3, {}, nullptr));
}

TEST(AutoGetPath, EachNameIsAskedOfTheValueBefore) {
  Scripted leaf;
  leaf->Value(u"Text", kSomeId, Variant::Text(u"x"));
  Scripted middle;
  middle->Value(u"TextRange", kSomeId, Variant::Object(leaf.ref));
  Scripted root;
  root->Value(u"TextFrame", kSomeId, Variant::Object(middle.ref));
  EXPECT_EQ(u"x", AutoGetPath(root.object, {u"TextFrame", u"TextRange", u"Text"}).text());
}

TEST(AutoGetPath, AnEmptyListGivesTheObjectItself) {
  Scripted host;
  const Variant value = AutoGetPath(host.object, {});
  ASSERT_TRUE(value.hasObject());
  EXPECT_EQ(host.object, value.object().get());
  EXPECT_EQ(2, host->references());
}

TEST(AutoGetPath, AStepWithoutAnObjectOrThatFailsGivesAnEmptyValue) {
  Scripted host;
  host->Value(u"Number", 1, Variant::I4(3));
  host->Value(u"Null", 2, Variant::Object(ObjectRef()));
  host->Fails(u"Bad", 3, kHostException);
  EXPECT_EQ(VariantType::kEmpty, AutoGetPath(host.object, {u"Number", u"Count"}).type());
  EXPECT_EQ(VariantType::kEmpty, AutoGetPath(host.object, {u"Null", u"Count"}).type());
  EXPECT_EQ(VariantType::kEmpty, AutoGetPath(host.object, {u"Bad"}).type());
  EXPECT_EQ(VariantType::kEmpty, AutoGetPath(nullptr, {u"Name"}).type());
  EXPECT_EQ(3, AutoGetPath(host.object, {u"Number"}).whole());
}

TEST(AutoGetObject, TheOldObjectIsReleasedBeforeTheReadAndStaysGoneWhenItFails) {
  Scripted old;
  ObjectRef out = old.ref;
  int referencesDuringRead = 0;
  Scripted host;
  host->Member(u"Chart", kSomeId, [&](const ScriptedCall&, Variant&) {
    referencesDuringRead = old->references();
    return kHostException;
  });
  EXPECT_FALSE(AutoGetObject(host.object, u"Chart", out));
  EXPECT_EQ(1, referencesDuringRead);
  EXPECT_EQ(nullptr, out.get());
}

TEST(AutoGetObject, ANonNullObjectIsStoredWithAReferenceOfItsOwn) {
  Scripted chart;
  Scripted host;
  host->Value(u"Chart", kSomeId, Variant::Object(chart.ref));
  const int before = chart->references();
  ObjectRef out;
  EXPECT_TRUE(AutoGetObject(host.object, u"Chart", out));
  EXPECT_EQ(chart.object, out.get());
  EXPECT_EQ(before + 1, chart->references());
}

TEST(AutoGetObject, ANullObjectOrAnotherTypeIsNone) {
  Scripted host;
  host->Value(u"Null", 1, Variant::Object(ObjectRef()));
  host->Value(u"Number", 2, Variant::I4(1));
  ObjectRef out;
  EXPECT_FALSE(AutoGetObject(host.object, u"Null", out));
  EXPECT_FALSE(AutoGetObject(host.object, u"Number", out));
  EXPECT_FALSE(AutoGetObject(nullptr, u"Number", out));
}

TEST(AutoGetObject, TheAskedObjectMayBeTheOneInTheOutPointer) {
  Scripted next;
  ObjectRef out;
  {
    Scripted host;
    host->Value(u"Next", kSomeId, Variant::Object(next.ref));
    out = host.ref;
  }
  EXPECT_TRUE(AutoGetObject(out.get(), u"Next", out));
  EXPECT_EQ(next.object, out.get());
}

TEST(AutoGetObjectAt, TheIndexGoesAsOneWholeNumber) {
  Scripted point;
  Scripted host;
  host->Value(u"Points", kSomeId, Variant::Object(point.ref));
  ObjectRef out;
  EXPECT_TRUE(AutoGetObjectAt(host.object, u"Points", 9, out));
  ASSERT_EQ(1u, host->calls().at(0).reversedArgs.size());
  EXPECT_EQ(VariantType::kI4, host->calls()[0].reversedArgs[0].type());
  EXPECT_EQ(9, host->calls()[0].reversedArgs[0].whole());
}

TEST(AutoGetAt2, TheTwoNumbersStandInReversedOrder) {
  Scripted host;
  host->Value(u"Cells", kSomeId, Variant::Text(u"v"));
  Variant value;
  EXPECT_EQ(kOk, AutoGetAt2(host.object, u"Cells", 2, 5, value));
  const auto& sent = host->calls().at(0).reversedArgs;
  ASSERT_EQ(2u, sent.size());
  EXPECT_EQ(5, sent[0].whole());
  EXPECT_EQ(2, sent[1].whole());
  EXPECT_EQ(VariantType::kI4, sent[0].type());
}

TEST(AutoPut, TheValueIsTheNamedArgumentOfAPropertyPut) {
  Scripted host;
  host->Member(u"Text", kSomeId, [](const ScriptedCall&, Variant&) { return kOk; });
  EXPECT_EQ(kOk, AutoPutText(host.object, u"new"));
  ASSERT_EQ(1u, host->calls().size());
  EXPECT_EQ(4, host->calls()[0].flags);
  EXPECT_TRUE(host->calls()[0].namedPut);
  ASSERT_EQ(1u, host->calls()[0].reversedArgs.size());
  EXPECT_EQ(u"new", host->calls()[0].reversedArgs[0].text());
  EXPECT_EQ(u"Text", host->lookUps().at(0));
}

TEST(AutoPut, FailuresAreGivenBack) {
  Scripted host;
  host->Fails(u"Text", kSomeId, kHostException);
  EXPECT_EQ(kHostException, AutoPutText(host.object, u"new"));
  EXPECT_EQ(kUnknownName, AutoPut(host.object, u"Name", Variant::I4(1)));
  EXPECT_EQ(kPointer, AutoPut(nullptr, u"Name", Variant::I4(1)));
}

TEST(CallMember, TheInterfaceIsAskedForAndTheMemberInvokedByItsFixedId) {
  Scripted typed;
  typed->Value(u"Count", ppt::shapes::kCount.id, Variant::I4(4));
  Scripted host;
  host->Interface(ppt::kShapes, typed.ref);
  Variant value;
  EXPECT_EQ(kOk, CallMember(host.object, ppt::shapes::kCount, value));
  EXPECT_EQ(4, value.whole());
  EXPECT_TRUE(host->calls().empty());
  ASSERT_EQ(1u, typed->calls().size());
  EXPECT_EQ(3, typed->calls()[0].flags);
  EXPECT_TRUE(typed->lookUps().empty());
}

TEST(CallMember, ARefusedInterfaceIsTheFailure) {
  Scripted host;
  host->Value(u"Count", ppt::shapes::kCount.id, Variant::I4(4));
  Variant value = Variant::I4(1);
  EXPECT_EQ(kNoInterface, CallMember(host.object, ppt::shapes::kCount, value));
  EXPECT_EQ(VariantType::kEmpty, value.type());
  EXPECT_TRUE(host->calls().empty());
  EXPECT_EQ(kPointer, CallMember(nullptr, ppt::shapes::kCount, value));
}

TEST(GetMember, TheCodeTellsAFailedCallFromOneThatGaveNothing) {
  Scripted host;
  host->Interface(ppt::kShape);
  host->Value(u"TextFrame", ppt::shape::kTextFrame.id, Variant::Object(ObjectRef()));
  host->Fails(u"Table", ppt::shape::kTable.id, kHostException);
  ObjectRef out = host.ref;
  ResultCode code = kFail;
  EXPECT_FALSE(Get(host.object, ppt::shape::kTextFrame, out, &code));
  EXPECT_EQ(kOk, code);
  EXPECT_EQ(nullptr, out.get());
  EXPECT_FALSE(Get(host.object, ppt::shape::kTable, out, &code));
  EXPECT_EQ(kHostException, code);
}

TEST(GetMember, IndexesGoLastFirst) {
  Scripted cell;
  Scripted host;
  host->Interface(ppt::kTextRange);
  host->Value(u"Paragraphs", ppt::textRange::kParagraphs.id, Variant::Object(cell.ref));
  ObjectRef out;
  EXPECT_TRUE(GetAt(host.object, ppt::textRange::kParagraphs, 3, out));
  EXPECT_EQ(cell.object, out.get());
  EXPECT_TRUE(GetAt(host.object, ppt::textRange::kParagraphs, 3, 1, out));
  const auto& sent = host->calls().at(1).reversedArgs;
  EXPECT_EQ(1, sent.at(0).whole());
  EXPECT_EQ(3, sent.at(1).whole());
}

TEST(GetMember, AValueThatIsNoNumberLeavesTheTarget) {
  Scripted host;
  host->Interface(ppt::kShape);
  host->Value(u"Id", ppt::shape::kId.id, Variant::Text(u"abc"));
  host->Value(u"Left", ppt::shape::kLeft.id, Variant::R4(1.5F));
  host->Value(u"Name", ppt::shape::kName.id, Variant::I4(3));
  std::int32_t whole = 77;
  EXPECT_FALSE(Get(host.object, ppt::shape::kId, whole));
  EXPECT_EQ(77, whole);
  float single = 0;
  EXPECT_TRUE(Get(host.object, ppt::shape::kLeft, single));
  EXPECT_EQ(1.5F, single);
  Wide text = u"kept";
  EXPECT_FALSE(Get(host.object, ppt::shape::kName, text));
  const Member<Wide> unknown{{ppt::kShape, 4711}};
  EXPECT_FALSE(Get(host.object, unknown, text));
  EXPECT_EQ(u"kept", text);
}

template <class T, class Value>
concept Reads = requires(const Member<T>& member, Value& out) {
  Get(nullptr, member, out);
};
template <class T, class Value>
concept Writes = requires(const Member<T>& member, Value value) {
  Put(nullptr, member, value);
};

TEST(GetMember, AValueOfAnotherTypeThanTheMembersDoesNotCompile) {
  static_assert(Reads<float, float> && !Reads<float, std::int32_t>);
  static_assert(Reads<std::int32_t, std::int32_t> && !Reads<std::int32_t, float>);
  static_assert(Reads<Wide, Wide> && !Reads<Wide, ObjectRef>);
  static_assert(Reads<ObjectRef, ObjectRef> && !Reads<void, ObjectRef>);
  static_assert(Writes<Wide, WideView> && !Writes<ObjectRef, ObjectRef>);
}

TEST(GetMember, AFlagIsReadFromEveryTypeThatHostsSendItAs) {
  Scripted host;
  host->Interface(ppt::kDocumentWindow);
  bool active = false;
  host->Value(u"Active", ppt::documentWindow::kActive.id, Variant::I4(-1));
  EXPECT_TRUE(Get(host.object, ppt::documentWindow::kActive, active));
  EXPECT_TRUE(active);
  host->Value(u"Active", ppt::documentWindow::kActive.id, Variant::Text(u"-1"));
  EXPECT_TRUE(Get(host.object, ppt::documentWindow::kActive, active));
  EXPECT_FALSE(active);
  host->Fails(u"Active", ppt::documentWindow::kActive.id, kHostException);
  active = true;
  EXPECT_FALSE(Get(host.object, ppt::documentWindow::kActive, active));
  EXPECT_TRUE(active);
}

TEST(PutMember, TheValueIsTheNamedArgument) {
  Scripted host;
  host->Interface(ppt::kFont);
  const auto accept = [](const ScriptedCall&, Variant&) { return kOk; };
  host->Member(u"Size", ppt::font::kSize.id, accept);
  host->Member(u"Bold", ppt::font::kBold.id, accept);
  host->Member(u"Name", ppt::font::kName.id, accept);
  EXPECT_TRUE(Put(host.object, ppt::font::kSize, 12.5F));
  EXPECT_TRUE(Put(host.object, ppt::font::kBold, -1));
  EXPECT_TRUE(Put(host.object, ppt::font::kName, u"Arial"));
  EXPECT_FALSE(Put(host.object, ppt::font::kItalic, -1));
  EXPECT_FALSE(Put(host.object, ppt::shape::kId, 1));
  ASSERT_EQ(4u, host->calls().size());
  EXPECT_EQ(VariantType::kR4, host->calls()[0].reversedArgs.at(0).type());
  EXPECT_EQ(VariantType::kI4, host->calls()[1].reversedArgs.at(0).type());
  EXPECT_EQ(u"Arial", host->calls()[2].reversedArgs.at(0).text());
  for (const auto& call : host->calls()) {
    EXPECT_EQ(4, call.flags);
    EXPECT_TRUE(call.namedPut);
  }
}

TEST(AnswersTo, ARefusedInterfaceOrNoObjectIsNo) {
  Scripted host;
  host->Interface(ppt::kSlide);
  EXPECT_TRUE(AnswersTo(host.object, ppt::kSlide));
  EXPECT_FALSE(AnswersTo(host.object, ppt::kShape));
  EXPECT_FALSE(AnswersTo(nullptr, ppt::kShape));
}

TEST(ShapeItem, AnItemThatAnswersToShapeIsGiven) {
  Scripted shape;
  shape->Interface(ppt::kShape);
  Scripted shapes;
  shapes->Value(u"Item", 0, Variant::Object(shape.ref));
  ObjectRef out;
  EXPECT_EQ(kOk, ShapeItem(shapes.object, 3, out));
  EXPECT_EQ(shape.object, out.get());
  EXPECT_EQ(3, shapes->calls().at(0).reversedArgs.at(0).whole());
  EXPECT_EQ(3, shapes->calls().at(0).flags);
}

TEST(ShapeItem, TheFailureSaysWhatWasWrong) {
  Scripted stranger;
  Scripted shapes;
  ObjectRef out;
  EXPECT_EQ(kUnknownName, ShapeItem(shapes.object, 1, out));
  shapes->Value(u"Item", 0, Variant::Object(stranger.ref));
  EXPECT_EQ(MakeResult(0x80004002), ShapeItem(shapes.object, 1, out));
  shapes->Value(u"Item", 0, Variant::I4(5));
  EXPECT_EQ(MakeResult(0x80004005), ShapeItem(shapes.object, 1, out));
  shapes->Fails(u"Item", 0, kBadIndex);
  EXPECT_EQ(kBadIndex, ShapeItem(shapes.object, 1, out));
  EXPECT_EQ(kPointer, ShapeItem(nullptr, 1, out));
  EXPECT_EQ(nullptr, out.get());
}

TEST(ReportUnreadable, EightReportsAreLoggedAndTheNinthIsNot) {
  ForgetUnreadableReports();
  std::vector<Wide> lines;
  SetDebugListener([&](WideView text) {
    if (text.starts_with(u"PptCtrl shape")) lines.emplace_back(text);
  });
  ReportUnreadable(nullptr);
  for (int i = 0; i < 9; ++i) ReportUnreadable(u"Type");
  SetDebugListener({});
  ASSERT_EQ(8u, lines.size());
  EXPECT_EQ(u"PptCtrl shape ? unreadable", lines[0]);
  EXPECT_EQ(u"PptCtrl shape Type unreadable", lines[6]);
  EXPECT_EQ(u"PptCtrl shape Type unreadable (further failures not logged)", lines[7]);
}

#if !defined(NDEBUG) && !defined(_WIN32) && !defined(__SANITIZE_THREAD__)
TEST(HostThreadCheckDeathTest, ACallFromAnotherThreadEndsADebugProcess) {
  Scripted host;
  EXPECT_DEATH(
      {
        SetHostThreadCheck([] { return false; });
        Variant value;
        AutoGet(host.object, u"Name", value);
      },
      "");
}
#endif

}  // namespace quillmarch::addin
