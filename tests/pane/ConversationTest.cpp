// Replays a recorded conversation between a page and the add-in. One JSON object a line:
//   {"page": ...}    a message of the page, as its text
//   {"script": ...}  what the add-in runs in the page next
//   {"message": ...} what it posts to the page next
//   {"worker": "ended"} waits for the run's worker
//   {"ticks": "3"}   the clock moves on, by so many ticks of a run
// What the add-in says must be the recorded text, byte for byte, save the numbers of the runs,
// which never come again: the recorded number of the first run stands for that of the first run,
// and so on.
#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <string>

#include "foundation/JsonText.h"
#include "pane/PaneHarness.h"

namespace {

using test::PaneHarness;

// The number behind the text's first "runId", empty without one.
std::string RunIdIn(const std::string& text) {
  constexpr std::string_view kKey = "\"runId\":";
  const std::size_t at = text.find(kKey);
  if (at == std::string::npos) return {};
  const std::size_t from = at + kKey.size();
  return text.substr(from, text.find_first_not_of("0123456789", from) - from);
}

class Replay {
 public:
  explicit Replay(PaneHarness& harness) : h_(harness) {
    h_.pageAnswers = false;
    h_.pageAnswersTerms = false;
  }

  void Line(const std::string& line) {
    const Wide json = ToWide(line);
    if (JsonHasKey(json, u"page")) {
      h_.Say(WithActualIds(ToUtf8(JsonGetString(json, u"page"))));
    } else if (JsonHasKey(json, u"worker")) {
      ASSERT_TRUE(h_.WaitForWorker());
    } else if (JsonHasKey(json, u"ticks")) {
      const int ticks = std::stoi(ToUtf8(JsonGetString(json, u"ticks")));
      for (int i = 0; i < ticks; ++i) h_.Tick();
    } else {
      const bool script = JsonHasKey(json, u"script");
      Expect(script, ToUtf8(JsonGetString(json, script ? u"script" : u"message")));
    }
  }

  std::size_t heard() const { return heard_; }

 private:
  void Expect(bool script, const std::string& recorded) {
    ASSERT_TRUE(h_.RunUntil([&] { return h_.page->calls.size() > heard_; })) << recorded;
    const test::ScriptedWebView::Call& call = h_.page->calls[heard_++];
    const std::string said = ToUtf8(call.text);
    if (!RunIdIn(recorded).empty()) ids_.try_emplace(RunIdIn(recorded), RunIdIn(said));
    EXPECT_EQ(call.isScript, script) << recorded;
    EXPECT_EQ(said, WithActualIds(recorded));
  }

  std::string WithActualIds(std::string text) const {
    for (const auto& [recorded, actual] : ids_) {
      for (std::size_t at = text.find(recorded); at != std::string::npos;
           at = text.find(recorded, at + actual.size())) {
        text.replace(at, recorded.size(), actual);
      }
    }
    return text;
  }

  PaneHarness& h_;
  std::size_t heard_ = 0;
  std::map<std::string, std::string> ids_;
};

TEST(Conversation, TheRecordedOneComesOutAsItDid) {
  std::ifstream file(std::string(QUILLMARCH_TEST_DATA) + "/conversation.jsonl");
  ASSERT_TRUE(file.is_open());
  PaneHarness h;
  h.fonts.names = {u"Arial", u"@Mincho", u"宋体"};
  const auto greeting = h.AddSlide(u"Say \"hello\"\vto all");
  const auto second = h.AddSlide(u"Good evening");
  h.AddSlide(u"2024");
  Replay replay(h);
  std::string line;
  while (std::getline(file, line)) replay.Line(line);
  h.RunPosts();
  EXPECT_EQ(h.page->calls.size(), replay.heard()) << "more was said than recorded";
  EXPECT_GT(replay.heard(), 20U);
  EXPECT_EQ(greeting->Text(), u"Di \"hola\" a todos");
  EXPECT_EQ(second->Text(), u"Buenas noches");
}

}  // namespace
