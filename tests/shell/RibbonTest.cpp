#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <map>

#include "foundation/automation/HostId.h"
#include "foundation/settings/DisplayLanguage.h"
#include "shell/ShellHarness.h"
#include "support/ScriptedObject.h"

namespace quillmarch::addin {

namespace {

using test::LogCapture;
using test::ScriptedObject;
using test::ShellHarness;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr std::uint16_t kObjectType = 9;  // VT_DISPATCH

void Speak(WideView tag) {
  std::uint32_t ignored = 0;
  ASSERT_TRUE(WriteUiLang(tag, ignored));
}

// ---- Names -------------------------------------------------------------------------------------

class RibbonNames : public testing::Test {
 protected:
  ResultCode Ask(const std::vector<Wide>& names) {
    ids_.assign(names.size(), 0);
    return RibbonIdsOfNames(names, ids_, [this](const Wide& name, DispId& id) {
      passedOn_.push_back(ToUtf8(name));
      if (name == u"FromTheLibrary") id = 7;
    });
  }

  std::vector<DispId> ids_;
  std::vector<std::string> passedOn_;
};

TEST_F(RibbonNames, EachHandlerHasItsNumber) {
  const std::map<Wide, DispId> all = {{u"TranslateFullDocClicked", 100},
                                      {u"TranslateCurrentSlideClicked", 101},
                                      {u"ShowPaneClicked", 102},
                                      {u"GlossaryClicked", 103},
                                      {u"InstructionClicked", 104},
                                      {u"AccountClicked", 105},
                                      {u"SupportClicked", 106},
                                      {u"GetImage", 108},
                                      {u"onGetImage", 108},
                                      {u"TranslateSelectionClicked", 109},
                                      {u"PdfTranslateClicked", 110},
                                      {u"OnRibbonLoad", 130},
                                      {u"GetLabel", 131},
                                      {u"GetScreentip", 132},
                                      {u"SettingsClicked", 133}};
  LogCapture log;
  for (const auto& [name, id] : all) {
    EXPECT_EQ(Ask({name}), kOk);
    EXPECT_THAT(ids_, ElementsAre(id)) << ToUtf8(name);
    EXPECT_TRUE(log.Has("PPT GetIDsOfNames " + ToUtf8(name) + " -> " + std::to_string(id)));
  }
  EXPECT_THAT(passedOn_, IsEmpty());
}

TEST_F(RibbonNames, AreComparedWithoutRegardToCase) {
  LogCapture log;
  EXPECT_EQ(Ask({u"getLABEL"}), kOk);
  EXPECT_THAT(ids_, ElementsAre(131));
  EXPECT_TRUE(log.Has("PPT GetIDsOfNames getLABEL -> 131"));
}

TEST_F(RibbonNames, WhatTheTableDoesNotHoldGoesToTheTypeLibrary) {
  LogCapture log;
  EXPECT_EQ(Ask({u"gettip"}), kUnknownName);
  EXPECT_THAT(ids_, ElementsAre(-1));
  EXPECT_EQ(Ask({u"FromTheLibrary"}), kOk);
  EXPECT_THAT(ids_, ElementsAre(7));
  EXPECT_THAT(passedOn_, ElementsAre("gettip", "FromTheLibrary"));
  EXPECT_EQ(log.CountContaining("GetIDsOfNames"), 0);
}

TEST_F(RibbonNames, OneUnknownAmongSeveralFailsAndTheOthersAreFilledIn) {
  EXPECT_EQ(Ask({u"GetLabel", u"nothing", u"GetImage"}), kUnknownName);
  EXPECT_THAT(ids_, ElementsAre(131, -1, 108));
}

TEST_F(RibbonNames, AMissingArgumentIsInvalid) {
  EXPECT_EQ(Ask({}), kInvalidArgument);
  const Wide names[] = {u"GetLabel"};
  EXPECT_EQ(RibbonIdsOfNames(names, {}, {}), kInvalidArgument);
}

// ---- The ribbon's text -------------------------------------------------------------------------

class CustomUi : public testing::Test {
 protected:
  ResultCode Get(bool allocates = true) {
    return h_.connect->GetCustomUI([&](const Wide& xml) {
      xml_ = ToUtf8(xml);
      return allocates;
    });
  }
  static int Count(const std::string& text, const std::string& part) {
    int count = 0;
    for (std::size_t at = 0; (at = text.find(part, at)) != std::string::npos; at += part.size()) {
      ++count;
    }
    return count;
  }

  ShellHarness h_;
  LogCapture log_;
  std::string xml_;
};

TEST_F(CustomUi, HasOneTabWithItsGroupsAndButtonsInTheirOrder) {
  ASSERT_EQ(Get(), kOk);
  EXPECT_NE(xml_.find("<customUI xmlns=\"http://schemas.microsoft.com/office/2006/01/customui\" "
                      "onLoad=\"OnRibbonLoad\">"),
            std::string::npos);
  std::vector<std::string> ids;
  for (std::size_t at = 0; (at = xml_.find(" id=\"", at)) != std::string::npos;) {
    at += 5;
    ids.push_back(xml_.substr(at, xml_.find('"', at) - at));
  }
  EXPECT_THAT(ids, ElementsAre("tabQuillmarch", "grpTranslate", "btnTranslateFullDoc",
                               "btnTranslateCurrentSlide", "btnTranslateSelection",
                               "btnPdfTranslate", "grpTerminology", "btnGlossary", "btnInstruction",
                               "grpAccount", "btnAccount", "btnSupport", "btnSettings"));
}

TEST_F(CustomUi, EveryButtonNamesItsHandlerAndIsDrawnByCallbacks) {
  ASSERT_EQ(Get(), kOk);
  const std::map<std::string, std::pair<std::string, std::string>> buttons = {
      {"btnTranslateFullDoc", {"translate_full", "TranslateFullDocClicked"}},
      {"btnTranslateCurrentSlide", {"translate_slide", "TranslateCurrentSlideClicked"}},
      {"btnTranslateSelection", {"translate_selection", "TranslateSelectionClicked"}},
      {"btnPdfTranslate", {"pdf_translate", "PdfTranslateClicked"}},
      {"btnGlossary", {"glossary", "GlossaryClicked"}},
      {"btnInstruction", {"instruction", "InstructionClicked"}},
      {"btnAccount", {"account", "AccountClicked"}},
      {"btnSupport", {"support", "SupportClicked"}},
      {"btnSettings", {"settings", "SettingsClicked"}}};
  for (const auto& [id, words] : buttons) {
    const std::size_t at = xml_.find("<button id=\"" + id + "\"");
    ASSERT_NE(at, std::string::npos) << id;
    const std::string element = xml_.substr(at, xml_.find("/>", at) - at);
    for (const std::string& attribute :
         {"tag=\"" + words.first + "\"", "onAction=\"" + words.second + "\"",
          std::string("getLabel=\"GetLabel\""), std::string("getScreentip=\"GetScreentip\""),
          std::string("getImage=\"GetImage\""), std::string("size=\"large\"")}) {
      EXPECT_NE(element.find(" " + attribute), std::string::npos) << id << " " << attribute;
    }
  }
  EXPECT_EQ(Count(xml_, "<button "), 9);
  EXPECT_EQ(Count(xml_, "getLabel=\"GetLabel\""), 13);
}

TEST_F(CustomUi, IsLoggedWithItsLength) {
  ASSERT_EQ(Get(), kOk);
  EXPECT_TRUE(log_.Has("PPT GetCustomUI OK chars=" + std::to_string(xml_.size()) + " ptr=8 wpp=0"));
}

TEST_F(CustomUi, WithoutTheResourceFails) {
  h_.resources.missing = ModuleResources::kRibbonXml;
  EXPECT_EQ(Get(), kFail);
  EXPECT_EQ(log_.CountContaining("GetCustomUI"), 0);
}

TEST_F(CustomUi, WithoutMemoryForItsCopyFails) {
  EXPECT_EQ(Get(false), kOutOfMemory);
  EXPECT_TRUE(
      log_.Has("PPT GetCustomUI failed (SysAllocString) chars=" + std::to_string(xml_.size())));
}

TEST(ReplaceImageMso, TurnsEachBuiltInImageIntoTheCallback) {
  EXPECT_EQ(ReplaceImageMso(u"<a imageMso=\"HappyFace\" x=\"1\"/><b imageMso=\"\"/>"),
            u"<a getImage=\"GetImage\" x=\"1\"/><b getImage=\"GetImage\"/>");
  EXPECT_EQ(ReplaceImageMso(u"<a image=\"x\"/>"), u"<a image=\"x\"/>");
  EXPECT_EQ(ReplaceImageMso(u"<a imageMso=\"cut"), u"<a imageMso=\"cut");
}

// ---- Labels ------------------------------------------------------------------------------------

class Labels : public testing::Test {
 protected:
  std::string Ask(DispId id, const Wide& controlId) {
    const ObjectRef control = ShellHarness::Control(controlId);
    const RibbonArgument args[] = {{kObjectType, Variant::Object(control)}};
    Variant result;
    ResultCode code = kFail;
    EXPECT_TRUE(h_.connect->Invoke(id, args, &result, code));
    EXPECT_EQ(code, kOk);
    return result.type() == VariantType::kText ? ToUtf8(result.text()) : "(no text)";
  }

  ShellHarness h_;
};

TEST_F(Labels, APresentationsOwnRowComesFirst) {
  Speak(u"en");
  EXPECT_EQ(Ask(131, u"btnTranslateFullDoc"), "All slides");
  EXPECT_EQ(Ask(132, u"btnTranslateFullDoc"), "Translate the whole presentation");
}

TEST_F(Labels, WithoutOneTheRowOfAllProgramsCounts) {
  Speak(u"en");
  EXPECT_EQ(Ask(131, u"btnAccount"), "Account");
  EXPECT_EQ(Ask(132, u"btnAccount"), "Account and plan");
  EXPECT_EQ(Ask(131, u"tabQuillmarch"), "AI Assistant");
  EXPECT_EQ(Ask(131, u"grpTranslate"), "Translate");
}

TEST_F(Labels, WithoutAnyRowALabelIsTheIdAndATipIsEmpty) {
  EXPECT_EQ(Ask(131, u"btnNothing"), "btnNothing");
  EXPECT_EQ(Ask(132, u"btnNothing"), "");
}

TEST_F(Labels, AControlWithoutAnIdHasAnEmptyOne) {
  EXPECT_EQ(Ask(131, u""), "");
  ScriptedObject* numbered = nullptr;
  const ObjectRef control = ScriptedObject::Make(numbered);
  numbered->Value(u"Id", 1, Variant::I4(5));
  const RibbonArgument args[] = {{kObjectType, Variant::Object(control)}};
  Variant result;
  ResultCode code = kFail;
  h_.connect->Invoke(131, args, &result, code);
  EXPECT_EQ(result.text(), u"");
  EXPECT_TRUE(h_.connect->Invoke(131, {}, &result, code));
  EXPECT_EQ(code, kOk);
}

TEST_F(Labels, FollowTheLanguageWithoutARestart) {
  Speak(u"en");
  const std::string english = Ask(131, u"btnAccount");
  Speak(u"ja");
  EXPECT_NE(Ask(131, u"btnAccount"), english);
}

TEST_F(Labels, WithoutAResultNothingIsWritten) {
  const RibbonArgument args[] = {{kObjectType, Variant::Object(ShellHarness::Control(u"x"))}};
  ResultCode code = kFail;
  EXPECT_TRUE(h_.connect->Invoke(131, args, nullptr, code));
  EXPECT_EQ(code, kOk);
}

// Every control of the ribbon's text has words in every language.
TEST_F(Labels, NoControlIsWithoutWordsInAnyLanguage) {
  for (const DisplayLanguage& language : DisplayLanguages()) {
    Speak(language.tag);
    for (const char16_t* id :
         {u"tabQuillmarch", u"grpTranslate", u"btnTranslateFullDoc", u"btnTranslateCurrentSlide",
          u"btnTranslateSelection", u"btnPdfTranslate", u"grpTerminology", u"btnGlossary",
          u"btnInstruction", u"grpAccount", u"btnAccount", u"btnSupport", u"btnSettings"}) {
      EXPECT_NE(Ask(131, id), ToUtf8(id)) << ToUtf8(language.tag);
    }
  }
}

// ---- Invoke ------------------------------------------------------------------------------------

class RibbonInvoke : public testing::Test {
 protected:
  RibbonArgument Object(const ObjectRef& object) { return {kObjectType, Variant::Object(object)}; }

  ShellHarness h_;
  ResultCode code_ = kFail;
};

TEST_F(RibbonInvoke, EachButtonOpensItsPageInItsMode) {
  struct Button {
    DispId id;
    const char16_t* page;
    const char16_t* mode;
  };
  for (const Button& button : {Button{100, u"translate", u"full"},
                               {101, u"translate", u"slide"},
                               {109, u"translate", u"selection"},
                               {103, u"glossary", u""},
                               {104, u"instruction", u""},
                               {105, u"account", u""},
                               {106, u"support", u""},
                               {102, u"translate", u""}}) {
    ShellHarness h;
    LogCapture log;
    EXPECT_EQ(h.Click(button.id, 0), kOk);
    EXPECT_TRUE(log.Has("PPT Invoke ribbon dispid=" + std::to_string(button.id)));
    ASSERT_EQ(h.madeCount(), 1U) << button.id;
    EXPECT_EQ(h.made(0).pane->browser().pendingPage(), button.page);
    EXPECT_EQ(h.made(0).pane->browser().pendingMode(), *button.mode == 0 ? u"full" : button.mode);
  }
}

TEST_F(RibbonInvoke, TheThreeTranslateButtonsLogTheirOwnNames) {
  LogCapture log;
  h_.Click(100, 0);
  h_.Click(101, 0);
  h_.Click(109, 0);
  EXPECT_EQ(log.Count("PPT TranslateFullDocClicked"), 1);
  EXPECT_EQ(log.Count("PPT TranslateCurrentSlideClicked"), 1);
  EXPECT_EQ(log.Count("PPT TranslateSelectionClicked"), 1);
}

TEST_F(RibbonInvoke, TheControlIsTheFirstObjectAmongTheFirstFourArguments) {
  h_.AddWindow();
  const RibbonArgument text = {8, Variant::Text(u"x")};
  const RibbonArgument fourth[] = {text, text, text, Object(h_.ControlIn(1)),
                                   Object(h_.ControlIn(0))};
  h_.connect->Invoke(103, fourth, nullptr, code_);
  ASSERT_EQ(h_.madeCount(), 1U);
  EXPECT_EQ(h_.made(0).pane->windowContext().hwnd, h_.window(1)->hwnd);
  // The fifth is not looked at: the click counts as one in the active window.
  const RibbonArgument fifth[] = {text, text, text, text, Object(h_.ControlIn(1))};
  h_.connect->Invoke(103, fifth, nullptr, code_);
  ASSERT_EQ(h_.madeCount(), 2U);
  EXPECT_EQ(h_.made(1).pane->windowContext().hwnd, h_.window(0)->hwnd);
}

TEST_F(RibbonInvoke, AnObjectByReferenceIsNoControl) {
  h_.AddWindow();
  const RibbonArgument args[] = {{0x4009, Variant::Object(h_.ControlIn(1))}};
  h_.connect->Invoke(103, args, nullptr, code_);
  EXPECT_EQ(h_.made(0).pane->windowContext().hwnd, h_.window(0)->hwnd);
}

TEST_F(RibbonInvoke, AClickWithoutAnyControlIsOneInTheActiveWindow) {
  EXPECT_TRUE(h_.connect->Invoke(105, {}, nullptr, code_));
  EXPECT_EQ(code_, kOk);
  EXPECT_EQ(h_.madeCount(), 1U);
}

TEST_F(RibbonInvoke, TheUnassignedNumberIsNoMember) {
  LogCapture log;
  EXPECT_TRUE(h_.connect->Invoke(107, {}, nullptr, code_));
  EXPECT_EQ(code_, kMemberNotFound);
  EXPECT_TRUE(log.Has("PPT Invoke ribbon dispid=107"));
}

TEST_F(RibbonInvoke, OtherNumbersAreTheTypeLibrarys) {
  LogCapture log;
  for (const DispId id : {-1, 0, 1, 99, 111, 129, 134}) {
    EXPECT_FALSE(h_.connect->Invoke(id, {}, nullptr, code_)) << id;
  }
  EXPECT_EQ(log.CountContaining("PPT Invoke"), 0);
}

TEST_F(RibbonInvoke, TheLoadKeepsTheLastRibbonAlone) {
  ScriptedObject* first = nullptr;
  ScriptedObject* second = nullptr;
  const ObjectRef firstRef = ScriptedObject::Make(first);
  const ObjectRef secondRef = ScriptedObject::Make(second);
  EXPECT_EQ(h_.ClickWith(130, firstRef), kOk);
  EXPECT_EQ(h_.connect->ribbonUi.get(), first);
  EXPECT_EQ(h_.ClickWith(130, secondRef), kOk);
  EXPECT_EQ(h_.connect->ribbonUi.get(), second);
  EXPECT_EQ(first->references(), 1);
  EXPECT_EQ(second->references(), 2);
}

TEST_F(RibbonInvoke, TheLoadAsksTheHostForItsLanguageOnce) {
  h_.config.Remove();
  ForgetSystemLanguage();
  ScriptedObject* settings = nullptr;
  const ObjectRef settingsRef = ScriptedObject::Make(settings);
  settings->Value(u"LanguageID", 1, Variant::I4(0x0411));
  ScriptedObject* application = nullptr;
  const ObjectRef applicationRef = ScriptedObject::Make(application);
  application->Value(u"LanguageSettings", 2038, Variant::Object(settingsRef));
  h_.connect->hostApp = applicationRef;
  h_.ClickWith(130, ShellHarness::Control(u"ui"));
  EXPECT_THAT(settings->calls(), SizeIs(1));
  EXPECT_EQ(ResolveLang(nullptr), u"ja");
  h_.connect->hostApp = h_.host.Application();
  ForgetSystemLanguage();
}

TEST_F(RibbonInvoke, TheImageCallSucceedsWithoutAnImageAndIsLogged) {
  LogCapture log;
  const RibbonArgument args[] = {{0x400C, Variant()}, Object(h_.ControlIn(0))};
  Variant result;
  EXPECT_TRUE(h_.connect->Invoke(108, args, &result, code_));
  EXPECT_EQ(code_, kOk);
  EXPECT_EQ(result.type(), VariantType::kEmpty);
  EXPECT_TRUE(log.Has("PPT Invoke ribbon dispid=108"));
  EXPECT_TRUE(log.Has("PPT Invoke GetImage cArgs=2 vt0=16396 vt1=9"));
  EXPECT_EQ(h_.madeCount(), 0U);
}

TEST_F(RibbonInvoke, TheSettingsCallSucceedsWithoutEffectAndIsLogged) {
  LogCapture log;
  EXPECT_EQ(h_.Click(133, 0), kOk);
  EXPECT_TRUE(log.Has("PPT SettingsClicked"));
  EXPECT_THAT(h_.desktop.messages, IsEmpty());
  EXPECT_EQ(h_.madeCount(), 0U);
}

TEST_F(RibbonInvoke, ThreeSupportClicksSendThreeEventsEachBeforeItsPageOpens) {
  h_.events.clear();
  std::size_t sentAtCreation = 0;
  h_.onCreate = [&] { sentAtCreation = h_.events.size(); };
  for (int i = 0; i < 3; ++i) h_.Click(106, 0);
  EXPECT_EQ(sentAtCreation, 1U);
  EXPECT_EQ(h_.events, std::vector<std::string>(3, "support:entry_click ribbon"));
}

TEST_F(RibbonInvoke, ASupportEventThatCannotBeSentOpensThePageAllTheSame) {
  SetBeaconSender([](const AnalyticsBeacon&) { throw std::bad_alloc(); });
  EXPECT_EQ(h_.Click(106, 0), kOk);
  EXPECT_EQ(h_.madeCount(), 1U);
}

TEST_F(RibbonInvoke, TheRepliesOfTheHostCannotThrowOutOfAClick) {
  ScriptedObject* wild = nullptr;
  const ObjectRef control = ScriptedObject::Make(wild);
  wild->ThrowOnLookUp();
  EXPECT_EQ(h_.ClickWith(103, control), kOk);
  EXPECT_EQ(h_.ClickWith(131, control), kOk);
}

// ---- The PDF page ------------------------------------------------------------------------------

TEST_F(RibbonInvoke, ThePdfButtonOpensTheBuiltInHostsPageInTheBrowser) {
  LogCapture log;
  EXPECT_EQ(h_.Click(110, 0), kOk);
  EXPECT_THAT(h_.desktop.opened,
              ElementsAre(BuildUrl(DefaultEndpoint(), u"/panel/web/webtranslate.html?tool=pdftr")));
  EXPECT_TRUE(h_.desktop.opened[0].starts_with(u"https://"));
  EXPECT_TRUE(log.Has("PPT PdfTranslateClicked"));
  EXPECT_EQ(h_.madeCount(), 0U);
}

TEST_F(RibbonInvoke, ABrowserThatCannotBeOpenedIsToldAndIsAFailure) {
  for (const std::intptr_t result : {32, 31, 0}) {
    ShellHarness h;
    LogCapture log;
    h.desktop.openResult = result;
    EXPECT_EQ(h.Click(110, 0), kFail);
    EXPECT_TRUE(log.Has("PPT PdfTranslate ShellExecute failed code=" + std::to_string(result)));
    ASSERT_THAT(h.desktop.messages, SizeIs(1));
    EXPECT_EQ(h.desktop.messages[0].text, Text(u"msg.browserFailed"));
    EXPECT_EQ(h.desktop.messages[0].title, Text(u"msg.title"));
    EXPECT_EQ(h.desktop.messages[0].style, 48U);
  }
  h_.desktop.openResult = 33;
  EXPECT_EQ(h_.Click(110, 0), kOk);
}

}  // namespace

}  // namespace quillmarch::addin
