#include "support/ConversationReplay.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <fstream>
#include <utility>

#include "foundation/text/JsonText.h"

namespace quillmarch::addin::test {

namespace {

constexpr std::chrono::seconds kPatience{60};
// When nothing more is said for so long, the add-in waits for the page.
constexpr std::chrono::milliseconds kSilence{300};

// The number behind the text's first "runId", empty without one.
std::string RunIdIn(const std::string& text) {
  constexpr std::string_view kKey = "\"runId\":";
  const std::size_t at = text.find(kKey);
  if (at == std::string::npos) return {};
  const std::size_t from = at + kKey.size();
  return text.substr(from, text.find_first_not_of("0123456789", from) - from);
}

}  // namespace

ConversationReplay::ConversationReplay(ManualHostThread& thread, ScriptedWebView& page,
                                       std::function<void(const Wide&)> say, std::uint32_t tickMs)
    : thread_(thread), page_(page), say_(std::move(say)), tickMs_(tickMs) {}

void ConversationReplay::Replay(const std::string& path) {
  const char* const recordTo = std::getenv("QUILLMARCH_RECORD_TO");
  recording_ = recordTo != nullptr;
  std::ifstream file(path);
  ASSERT_TRUE(file.is_open()) << path;
  std::string line;
  while (std::getline(file, line) && !testing::Test::HasFatalFailure()) Line(line);
  RunPosts();
  if (recording_) {
    RecordWhatIsSaid();
    std::ofstream(recordTo, std::ios::binary) << record_;
    return;
  }
  EXPECT_EQ(page_.calls.size(), heard_) << "more was said than recorded";
}

void ConversationReplay::Line(const std::string& line) {
  const Wide json = ToWide(line);
  const bool script = JsonHasKey(json, u"script");
  const bool said = script || JsonHasKey(json, u"message");
  if (!said) {
    if (recording_) RecordWhatIsSaid();
    record_ += line + "\n";
    Act(json);
  } else if (!recording_) {
    Expect(script, ToUtf8(JsonGetString(json, script ? u"script" : u"message")));
  }
}

void ConversationReplay::Act(const Wide& json) {
  if (JsonHasKey(json, u"page")) {
    say_(ToWide(WithActualIds(ToUtf8(JsonGetString(json, u"page")))));
    RunPosts();
  } else if (JsonHasKey(json, u"select")) {
    ASSERT_TRUE(select);
    select(ToUtf8(JsonGetString(json, u"select")));
  } else if (JsonHasKey(json, u"worker")) {
    ASSERT_TRUE(RunUntil([this] { return thread_.outsideWork() == 0; }));
  } else {
    const int ticks = std::stoi(ToUtf8(JsonGetString(json, u"ticks")));
    for (int i = 0; i < ticks; ++i) {
      thread_.Advance(tickMs_);
      thread_.FireDueTimers();
      RunPosts();
    }
  }
}

void ConversationReplay::Expect(bool script, const std::string& recorded) {
  ASSERT_TRUE(RunUntil([this] { return page_.calls.size() > heard_; })) << recorded;
  const ScriptedWebView::Call& call = page_.calls[heard_++];
  const std::string said = ToUtf8(call.text);
  if (!RunIdIn(recorded).empty()) ids_.try_emplace(RunIdIn(recorded), RunIdIn(said));
  EXPECT_EQ(call.isScript, script) << recorded;
  EXPECT_EQ(said, WithActualIds(recorded));
}

void ConversationReplay::RecordWhatIsSaid() {
  for (auto quietSince = std::chrono::steady_clock::now();
       std::chrono::steady_clock::now() - quietSince < kSilence;) {
    thread_.WaitForPostOrOutsideWork(1);
    RunPosts();
    for (; heard_ < page_.calls.size(); ++heard_) {
      quietSince = std::chrono::steady_clock::now();
      const ScriptedWebView::Call& call = page_.calls[heard_];
      record_ += std::string("{\"") + (call.isScript ? "script" : "message") + "\":\"" +
                 ToUtf8(JsonEscape(call.text)) + "\"}\n";
    }
  }
}

void ConversationReplay::RunPosts() {
  while (thread_.HasPosts()) thread_.RunPosts();
}

bool ConversationReplay::RunUntil(const std::function<bool()>& done) {
  const auto end = std::chrono::steady_clock::now() + kPatience;
  for (;;) {
    RunPosts();
    if (done()) return true;
    if (std::chrono::steady_clock::now() > end) return false;
    thread_.WaitForPostOrOutsideWork(1);
  }
}

std::string ConversationReplay::WithActualIds(std::string text) const {
  for (const auto& [recorded, actual] : ids_) {
    for (std::size_t at = text.find(recorded); at != std::string::npos;
         at = text.find(recorded, at + actual.size())) {
      text.replace(at, recorded.size(), actual);
    }
  }
  return text;
}

}  // namespace quillmarch::addin::test
