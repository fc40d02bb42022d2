// The recorded conversation, over a fake host.
#include <gtest/gtest.h>

#include <string>

#include "pane/PaneHarness.h"
#include "support/ConversationReplay.h"

namespace quillmarch::addin {

namespace {

TEST(Conversation, TheRecordedOneComesOutAsItDid) {
  test::PaneHarness h;
  h.pageAnswers = false;
  h.pageAnswersTerms = false;
  h.fonts.names = {u"Arial", u"@Mincho", u"宋体"};
  const auto greeting = h.AddSlide(u"Say \"hello\"\vto all");
  const auto second = h.AddSlide(u"Good evening");
  h.AddSlide(u"2024");
  test::ConversationReplay replay(
      h.thread, *h.page, [&](const Wide& json) { h.pane->OnWebMessageReceived(json); },
      CPptPane::kRunTickMs);
  replay.Replay(std::string(QUILLMARCH_TEST_DATA) + "/conversation.jsonl");
  EXPECT_GT(replay.heard(), 20U);
  EXPECT_EQ(greeting->Text(), u"Di \"hola\" a todos");
  EXPECT_EQ(second->Text(), u"Buenas noches");
}

}  // namespace

}  // namespace quillmarch::addin
