#include "host/remote/RemoteControl.h"

#include <array>

#include "deck/DeckBuilder.h"
#include "foundation/automation/HostMembers.h"
#include "gtest/gtest.h"
#include "remote/RemoteObject.h"
#include "support/TempFolder.h"

namespace quillmarch::host {

namespace {

class RemoteControlTest : public ::testing::Test {
 protected:
  RemoteControlTest() {
    server.SetRoot(MakeRemoteControl(server));
    control = link.Root();
    testdeck::DeckSource source;
    for (const char* text : {"first", "second"}) {
      source.slides.push_back(
          {testdeck::SlideXml(testdeck::Box(testdeck::TextPara(text))), {}, {}, {}});
    }
    testdeck::Write(source, deck);
  }

  ObjectRef Open() {
    const std::array args = {Variant::Text(ToWide(deck)), Variant::Text(u"powerpoint")};
    Variant value;
    EXPECT_EQ(kOk, AutoGet(control.get(), u"Open", args, value));
    return value.hasObject() ? value.takeObject() : ObjectRef();
  }
  Variant Ask(WideView member, std::vector<Variant> args = {}) {
    Variant value;
    EXPECT_EQ(kOk, AutoGet(control.get(), member, args, value));
    return value;
  }
  std::int64_t Count(WideView member) { return static_cast<std::int64_t>(Ask(member).real()); }
  static ObjectRef Step(const ObjectRef& object, WideView member, std::vector<Variant> args = {}) {
    Variant value;
    EXPECT_EQ(kOk, AutoGet(object.get(), member, args, value)) << ToUtf8(member);
    return value.hasObject() ? value.takeObject() : ObjectRef();
  }
  ObjectRef TextOfSlide(const ObjectRef& application, std::int32_t slide) {
    const ObjectRef presentation = Step(application, u"ActivePresentation");
    const ObjectRef shapes =
        Step(Step(Step(presentation, u"Slides"), u"Item", {Variant::I4(slide)}), u"Shapes");
    const ObjectRef shape = Step(shapes, u"Item", {Variant::I4(1)});
    return Step(Step(shape, u"TextFrame"), u"TextRange");
  }

  TempFolder folder;
  std::string deck = folder.Path("deck.pptx");
  ObjectServer server;
  test::RemoteLink link{server};
  ObjectRef control;
};

}  // namespace

TEST_F(RemoteControlTest, ADeckIsReadWrittenAndSavedOverTheWire) {
  const std::string saved = folder.Path("saved.pptx");
  {
    const ObjectRef application = Open();
    ASSERT_TRUE(application);
    EXPECT_FALSE(VariantToFlag(Ask(u"Edited")));
    EXPECT_EQ(kOk, AutoPutText(TextOfSlide(application, 2).get(), u"zweiter"));
    EXPECT_TRUE(VariantToFlag(Ask(u"Edited")));
    EXPECT_TRUE(VariantToFlag(Ask(u"Save", {Variant::Text(ToWide(saved))})));
  }
  Ask(u"Close");
  deck = saved;
  const ObjectRef application = Open();
  ASSERT_TRUE(application);
  Variant text;
  EXPECT_EQ(kOk, CallMember(TextOfSlide(application, 2).get(), ppt::textRange::kText, text));
  EXPECT_EQ(u"zweiter", text.text());
}

TEST_F(RemoteControlTest, WhatCannotBeOpenedIsSaid) {
  deck = "/no/such/deck.pptx";
  EXPECT_FALSE(Open());
  EXPECT_NE(u"", Ask(u"Error").text());
}

TEST_F(RemoteControlTest, CallsAndReferencesAreCounted) {
  const std::int64_t invokes = Count(u"Invokes");
  EXPECT_EQ(1, Count(u"LiveReferences"));
  {
    const ObjectRef application = Open();
    const ObjectRef window = Step(application, u"ActiveWindow");
    EXPECT_EQ(3, Count(u"LiveReferences"));
    EXPECT_EQ(invokes + 1, Count(u"Invokes"));
  }
  EXPECT_EQ(1, Count(u"LiveReferences"));
}

TEST_F(RemoteControlTest, TheCallsThatAreToFailDoAndThoseAfterThemDoNot) {
  const ObjectRef application = Open();
  constexpr ResultCode kBusy = MakeResult(0x8001010A);
  Variant value;
  const auto ask = [&] { return AutoGet(application.get(), u"ActiveWindow", value); };
  ASSERT_EQ(kOk, ask());
  // Each asking is a look-up of the name and a call.
  Ask(u"FailCall", {Variant::I4(4), Variant::I4(kBusy)});
  EXPECT_EQ(kOk, ask());
  EXPECT_EQ(kBusy, ask());
  EXPECT_EQ(kOk, ask());
  Ask(u"FailCall", {Variant::I4(3), Variant::I4(kBusy), Variant::I4(2)});
  EXPECT_EQ(kOk, ask());
  for (int i = 0; i < 3; ++i) EXPECT_EQ(kBusy, ask());
  EXPECT_EQ(kOk, ask());
}

TEST_F(RemoteControlTest, SlidesThatAreBroughtToViewAreCounted) {
  const ObjectRef view = Step(Step(Open(), u"ActiveWindow"), u"View");
  const std::int64_t jumps = Count(u"Jumps");
  Step(view, u"GotoSlide", {Variant::I4(2)});
  EXPECT_EQ(jumps + 1, Count(u"Jumps"));
}

TEST_F(RemoteControlTest, TheViewAndTheSelectionAreTheCallersToSet) {
  const ObjectRef application = Open();
  EXPECT_TRUE(VariantToFlag(Ask(u"ShowSlide", {Variant::I4(2)})));
  EXPECT_FALSE(VariantToFlag(Ask(u"ShowSlide", {Variant::I4(3)})));
  EXPECT_TRUE(VariantToFlag(Ask(u"SelectShape", {Variant::I4(1), Variant::I4(1)})));
  EXPECT_FALSE(VariantToFlag(Ask(u"SelectShape", {Variant::I4(1), Variant::I4(9)})));
  EXPECT_NE(u"", Ask(u"Error").text());
}

}  // namespace quillmarch::host
