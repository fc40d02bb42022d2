// A recorded conversation over a deck in the headless host.
#include <gtest/gtest.h>

#include <fstream>
#include <map>

#include "foundation/automation/Automation.h"
#include "host/driver/HostedPane.h"
#include "host/model/Host.h"
#include "support/ConversationReplay.h"

namespace quillmarch::host {

using namespace addin;
using namespace addin::test;

namespace {

// The text of one of a slide's shapes.
Wide TextOf(Host& host, std::int32_t slide, const char16_t* shape) {
  Variant slideObject;
  Variant shapeObject;
  const Variant number[] = {Variant::I4(slide)};
  const Variant name[] = {Variant::Text(shape)};
  const Variant slides = AutoGetPath(host.application().get(), {u"ActivePresentation", u"Slides"});
  EXPECT_TRUE(Succeeded(AutoGet(slides.object().get(), u"Item", number, slideObject)));
  const Variant shapes = AutoGetPath(slideObject.object().get(), {u"Shapes"});
  EXPECT_TRUE(Succeeded(AutoGet(shapes.object().get(), u"Item", name, shapeObject)));
  return VariantToText(
      AutoGetPath(shapeObject.object().get(), {u"TextFrame", u"TextRange", u"Text"}));
}

TEST(DeckConversation, TheRecordedOneComesOutAsItDidAndTranslatesTheDeck) {
  test::ManualHostThread thread;
  Host host(*FindPersonality("powerpoint"));
  std::vector<std::string> warnings;
  ASSERT_TRUE(host.Open(std::string(QUILLMARCH_SAMPLES) + "/quarterly-review.pptx", warnings));
  const auto page = std::make_shared<test::ScriptedWebView>();
  HostedPane hosted(host.application(), thread, page, {});

  const std::map<std::string, std::function<Result<void>()>> selections = {
      {"nothing on slide 6",
       [&] {
         host.ClearSelection();
         EXPECT_TRUE(host.ShowSlide(6));
         return Result<void>();
       }},
      {"two shapes of slide 3",
       [&] {
         return host.SelectShapes(3, {{"Source", {}}, {"Title", {}}});
       }},
      {"a member of slide 4's group",
       [&] {
         return host.SelectShapes(4, {{"Pack caption", {}}});
       }},
      {"the word par of slide 3's title",
       [&] {
         return host.SelectText(3, {"Title", {}}, 11, 3);
       }},
      {"two words of slide 3's title",
       [&] {
         return host.SelectText(3, {"Title", {}}, 1, 10);
       }},
      {"slides 6 and 1",
       [&] {
         return host.SelectSlides({6, 1});
       }},
  };
  test::ConversationReplay replay(
      thread, *page, [&](const Wide& json) { hosted.Say(json); }, CPptPane::kRunTickMs);
  replay.select = [&](const std::string& what) {
    ASSERT_TRUE(selections.contains(what)) << what;
    EXPECT_TRUE(selections.at(what)()) << what;
  };
  replay.Replay(QUILLMARCH_CONVERSATION);
  if (HasFatalFailure()) return;
  EXPECT_GT(replay.heard(), 40U);
  EXPECT_EQ(TextOf(host, 6, u"Title"), u"Siguientes pasos");
  EXPECT_EQ(TextOf(host, 3, u"Title"), u"Résultats nach région");
  EXPECT_EQ(TextOf(host, 3, u"Source"), u"Commandes et chiffre d'affaires de l'été.");
  EXPECT_EQ(TextOf(host, 1, u"Ctrtitle"), u"Quarterly review");
}

}  // namespace

}  // namespace quillmarch::host
