// Messages that no page should send, in every state of a pane: nothing crashes, nothing starts
// twice, and nothing is logged that a good message would not log.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <utility>

#include "pane/PaneHarness.h"
#include "run/document/StaGate.h"
#include "support/LogCapture.h"

namespace quillmarch::addin {

namespace {

using test::LogCapture;
using test::PaneHarness;
using Texts = std::vector<std::string>;

// One of each kind, with every field that is read.
const Texts kMessages = {
    R"({"action":"start","panelMode":"slide","targetLang":"es","sourceLang":"en","accessToken":"a",)"
    R"("token":"b","clientTraceId":"t","glossaryIds":["g"],"globalInstructionId":"i",)"
    R"("nativeTranslateViaJs":true,"transport":"js","targetFont":"Arial",)"
    R"("pptBilingualSlides":false})",
    R"({"action":"restart","panelMode":"full"})",
    R"({"action":"startSelection","panelMode":"selection"})",
    R"({"action":"requestSelectionPreview"})",
    R"({"action":"cancel"})",
    R"({"action":"pause"})",
    R"({"action":"resume"})",
    R"({"action":"setTargetStyle","targetFontBold":1,"targetFont":"Arial","targetFontSize":12.5,)"
    R"("targetFontColor":"#010203"})",
    R"({"action":"sessionQuery"})",
    R"({"action":"setAccessToken","accessToken":"t"})",
    R"({"action":"requestAccessToken"})",
    R"({"action":"clearAccessToken"})",
    R"({"action":"getFontList"})",
    R"({"action":"trace","phase":"p"})",
    R"({"action":"translateBatchResult","requestId":"ppttr_7","ok":true,"translations":["x"],)"
    R"("unitIds":["u"],"code":"c","message":"m"})",
    R"({"action":"terminologyResolveResult","requestId":"pptterm_7","ok":true,"result":{"a":"b"},)"
    R"("code":"c","message":"m"})",
    R"({"action":"docKeyGet","requestId":"1"})",
    R"({"action":"exportLocalSnapshot","requestId":"1"})",
    R"({"action":"clientInfoGet","requestId":"1"})",
    R"({"action":"uiLangGet","requestId":"1"})",
};

// A message's fields as they stand in it.
struct Field {
  Wide key;  // with its quotes
  Wide value;
};

std::vector<Field> FieldsOf(const Wide& message) {
  std::vector<Field> fields;
  std::size_t from = 1;
  int depth = 0;
  bool inString = false;
  for (std::size_t at = 1; at < message.size(); ++at) {
    const char16_t unit = message[at];
    if (unit == u'"') inString = !inString;
    if (inString) continue;
    if (unit == u'{' || unit == u'[') ++depth;
    if (depth == 0 && (unit == u',' || unit == u'}')) {
      const Wide field = message.substr(from, at - from);
      const std::size_t colon = field.find(u':');
      fields.push_back({field.substr(0, colon), field.substr(colon + 1)});
      from = at + 1;
    }
    if (unit == u'}' || unit == u']') --depth;
  }
  return fields;
}

Wide Joined(const std::vector<Field>& fields) {
  Wide message = u"{";
  for (const Field& field : fields) {
    if (message.size() > 1) message += u",";
    message += field.key + u":" + field.value;
  }
  return message + u"}";
}

std::vector<Wide> WithoutEachKey(const Wide& message) {
  std::vector<Wide> bad;
  const std::vector<Field> fields = FieldsOf(message);
  for (std::size_t i = 0; i < fields.size(); ++i) {
    std::vector<Field> fewer = fields;
    fewer.erase(fewer.begin() + static_cast<std::ptrdiff_t>(i));
    bad.push_back(Joined(fewer));
  }
  return bad;
}

std::vector<Wide> WithEachValueReplaced(const Wide& message, const std::vector<Wide>& values) {
  std::vector<Wide> bad;
  const std::vector<Field> fields = FieldsOf(message);
  for (std::size_t i = 0; i < fields.size(); ++i) {
    for (const Wide& value : values) {
      std::vector<Field> other = fields;
      other[i].value = value;
      bad.push_back(Joined(other));
    }
  }
  return bad;
}

std::vector<Wide> CutAtEachUnit(const Wide& message) {
  std::vector<Wide> bad;
  for (std::size_t length = 0; length < message.size(); ++length) {
    bad.push_back(message.substr(0, length));
  }
  return bad;
}

const std::vector<Wide>& OtherValues() {
  static const Wide kLone = Wide(u"\"") + char16_t(0xD800) + char16_t(0xD801) + u"\"";
  static const std::vector<Wide> kValues = {
      u"null", u"true", u"-1e999", u"{}", u"[]", u"[[\"a\"],{\"b\":1}]", u"\"\"",
      // Strings that hold what a reader looks for.
      u"\"\\\"action\\\":\\\"start\\\"\"", u"\"a\\\\\\\"\"", u"\"unclosed", u"\"\\u00\"",
      u"\"\\ud83d\"", kLone, u""};
  return kValues;
}

std::vector<Wide> AllBad() {
  std::vector<Wide> bad;
  const auto add = [&bad](std::vector<Wide> more) {
    bad.insert(bad.end(), std::make_move_iterator(more.begin()),
               std::make_move_iterator(more.end()));
  };
  for (const std::string& text : kMessages) {
    const Wide message = ToWide(text);
    EXPECT_EQ(Joined(FieldsOf(message)), message);
    add(WithoutEachKey(message));
    add(WithEachValueReplaced(message, OtherValues()));
    add(CutAtEachUnit(message));
    add({message + message, u"[" + message + u"]", u"{\"a\":" + message + u"}",
         u"\xFEFF" + message});
  }
  return bad;
}

bool IsKnownLine(const std::string& line) {
  static constexpr std::array<std::string_view, 7> kBeginnings = {
      "PptPane start action=",
      "PptPane start ignored: run in progress",
      "PptPane StartRun ",
      "PptPane unknown action: ",
      "PptPane run ",
      "PptCtrl ",
      "[panel] "};
  return std::any_of(kBeginnings.begin(), kBeginnings.end(),
                     [&line](std::string_view known) { return line.starts_with(known); });
}

void ExpectKnownLines(const LogCapture& log, const Wide& message) {
  for (const std::string& line : log.lines()) {
    EXPECT_TRUE(IsKnownLine(line)) << line << " after " << ToUtf8(message);
  }
}

TEST(BadMessages, AnIdlePaneStartsAtMostOneRunForEach) {
  PaneHarness h;
  h.AddSlide(u"2024");  // nothing to translate: a run that starts is over at once
  for (const Wide& message : AllBad()) {
    const LogCapture log;
    h.SayWide(message);
    const int said = log.CountContaining("PptPane start action=");
    EXPECT_LE(said, 1) << ToUtf8(message);
    EXPECT_EQ(log.CountContaining("PptPane StartRun begin scope="), said) << ToUtf8(message);
    EXPECT_EQ(log.Count("PptPane run finished"), said) << ToUtf8(message);
    EXPECT_LE(log.CountContaining("PptPane unknown action: "), 1);
    ExpectKnownLines(log, message);
    ASSERT_FALSE(h.pane->run().runActive()) << ToUtf8(message);
  }
}

TEST(BadMessages, ARunGoesOnAndNoSecondOneStarts) {
  PaneHarness h;
  const auto shape = h.AddSlide(u"hello");
  h.pageAnswers = false;
  h.Start();
  ASSERT_TRUE(h.WaitForRequests(1));
  const std::uint64_t id = h.pane->run().currentRunId();
  for (const Wide& message : AllBad()) {
    // A cancel is one also when its quote is never closed, and ends the run as it should.
    if (message.find(u"\"cancel") != Wide::npos) continue;
    const LogCapture log;
    h.SayWide(message);
    EXPECT_EQ(log.CountContaining("PptPane StartRun"), 0) << ToUtf8(message);
    EXPECT_EQ(log.CountContaining("PptPane start action="),
              log.Count("PptPane start ignored: run in progress"))
        << ToUtf8(message);
    ExpectKnownLines(log, message);
    ASSERT_EQ(h.pane->run().currentRunId(), id) << ToUtf8(message);
  }
  h.Say(R"({"action":"resume"})");
  h.pageAnswers = true;
  h.SayWide(
      u"{\"action\":\"translateBatchResult\",\"requestId\":\"ppttr_2\",\"ok\":true,"
      u"\"translations\":[\"hola\"]}");
  h.Finish();
  EXPECT_EQ(h.MainEvents().back(), "onComplete");
  EXPECT_EQ(shape->Text(), u"hola");
}

TEST(BadMessages, APaneThatIsClosingHearsNone) {
  PaneHarness h;
  h.AddSlide(u"hello");
  h.pane->BeginShutdownEarly();
  const LogCapture log;
  for (const Wide& message : AllBad()) h.SayWide(message);
  EXPECT_TRUE(log.lines().empty());
  EXPECT_TRUE(h.page->calls.empty());
  EXPECT_FALSE(h.pane->run().runActive());
}

TEST(BadMessages, WhileTheGateIsHeldTheLastStartWaitsAndNothingBegins) {
  PaneHarness h;
  h.AddSlide(u"2024");
  h.thread.Advance(1000);
  const LogCapture log;
  {
    const int owner = 0;
    const GateHold gate(&owner, h.thread);
    ASSERT_TRUE(gate.held());
    for (const Wide& message : AllBad()) h.SayWide(message);
    EXPECT_EQ(log.CountContaining("PptPane StartRun begin"), 0);
    h.Say(R"({"action":"start","panelMode":"slide"})");
  }
  h.thread.Advance(1000);
  h.thread.FireDueTimers();
  h.RunPosts();
  EXPECT_EQ(log.CountContaining("PptPane StartRun begin"), 1);
  EXPECT_TRUE(log.Has("PptPane StartRun begin scope=1"));
}

TEST(BadMessages, AnAnswerThatIsBrokenLeavesTheRequestToAnotherOrToTheNextAttempt) {
  const std::vector<Wide> answers = [] {
    std::vector<Wide> bad;
    for (const Wide& message : AllBad()) {
      std::size_t at = message.find(u"ppttr_7");
      if (at == Wide::npos) continue;
      Wide answer = message;
      bad.push_back(answer.replace(at, 7, u"ppttr_2"));
    }
    return bad;
  }();
  ASSERT_GT(answers.size(), 100U);
  for (const Wide& answer : answers) {
    PaneHarness h;
    const auto shape = h.AddSlide(u"hello");
    h.pageAnswers = false;
    h.Start();
    ASSERT_TRUE(h.WaitForRequests(1));
    h.pageAnswers = true;  // the next attempt
    h.SayWide(answer);
    // For a request that the broken answer has left open.
    h.SayWide(
        u"{\"action\":\"translateBatchResult\",\"requestId\":\"ppttr_2\",\"ok\":true,"
        u"\"translations\":[\"hola\"]}");
    h.Finish();
    const std::vector<std::string> events = h.MainEvents();
    ASSERT_EQ(events.size(), 3U) << ToUtf8(answer);
    EXPECT_TRUE(events.back() == "onComplete" || events.back() == "onError") << ToUtf8(answer);
    EXPECT_FALSE(shape->Text().empty()) << ToUtf8(answer);
  }
}

TEST(BadMessages, MegabytesInAnyFieldLeaveNoRunBehind) {
  PaneHarness h;
  h.AddSlide(u"2024");
  const Wide megabyte = Wide(u"\"") + Wide(1 << 20, u'\\') + u"\"";
  Wide list = u"[";
  while (list.size() < (1 << 20)) list += u"\"\\ud800\",";
  list.back() = u']';
  Wide deep(1 << 19, u'{');
  deep += Wide(1 << 19, u'[');
  const std::vector<Wide> values = {megabyte, list, deep, Wide(1 << 20, u'9')};
  std::size_t turn = 0;  // each field gets the next value
  for (const std::string& text : kMessages) {
    std::vector<Field> fields = FieldsOf(ToWide(text));
    for (Field& field : fields) {
      const Wide value = std::exchange(field.value, values[turn++ % values.size()]);
      h.SayWide(Joined(fields));
      ASSERT_FALSE(h.pane->run().runActive());
      field.value = value;
    }
  }
}

}  // namespace

}  // namespace quillmarch::addin
