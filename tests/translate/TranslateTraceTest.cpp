#include "translate/TranslateTrace.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <random>

#include "foundation/log/Log.h"
#include "foundation/system/Files.h"
#include "translate/ScriptedPage.h"
#include "translate/TranslateRequest.h"

namespace quillmarch::addin {

namespace {

Wide TraceFile() {
  return JoinPath(LogDirectory(), u"Quillmarch_translate_trace.log");
}

// The file's lines that hold the mark. Under Wine other tests write to the same file meanwhile.
std::string TraceLines(std::string_view mark) {
  std::string bytes;
  ReadWholeFile(TraceFile(), bytes);
  std::string lines;
  for (std::size_t at = 0; at < bytes.size();) {
    const std::size_t end = std::min(bytes.find('\n', at), bytes.size() - 1) + 1;
    const std::string_view line(bytes.data() + at, end - at);
    if (line.find(mark) != std::string_view::npos) lines += line;
    at = end;
  }
  return lines;
}

// A word that no other process writes.
std::string OwnMark(const char* word) {
  return word + std::to_string(std::random_device{}()) + "-" +
         std::to_string(std::random_device{}());
}

// The lines with 0 for each digit of their time and for the duration.
std::string WithoutTimes(const std::string& lines) {
  constexpr std::string_view kDuration = "httpMs=";
  std::string result;
  std::string_view rest = lines;
  while (!rest.empty()) {
    std::string line(rest.substr(0, std::min(rest.find('\n'), rest.size() - 1) + 1));
    rest.remove_prefix(line.size());
    const auto timeEnd =
        line.begin() + static_cast<std::ptrdiff_t>(std::min(line.find(']'), line.size()));
    std::replace_if(
        line.begin(), timeEnd, [](char c) { return c >= '0' && c <= '9'; }, '0');
    if (const std::size_t at = line.find(kDuration); at != std::string::npos) {
      const std::size_t from = at + kDuration.size();
      line.erase(from, line.find(' ', from) - from).insert(from, 1, '0');
    }
    result += line;
  }
  return result;
}

TranslateAttempt Attempt() {
  TranslateAttempt attempt;
  attempt.clientTraceId = u"t-1";
  attempt.runId = 7;
  attempt.segs = 20;
  attempt.chars = 345;
  attempt.httpMs = 1200;
  attempt.ok = true;
  return attempt;
}

TEST(AttemptText, TellsEveryFactInItsPlace) {
  EXPECT_EQ(AttemptText(Attempt()),
            "clientTraceId=t-1 runId=7 batchSeq=0 segs=20 chars=345 httpMs=1200 ok=1 code=");
}

TEST(AttemptText, AnEmptyTraceIdLeavesItsPlaceEmpty) {
  TranslateAttempt attempt;
  attempt.runId = std::numeric_limits<std::uint64_t>::max();
  attempt.code = u"network_error";
  EXPECT_EQ(AttemptText(attempt),
            "clientTraceId= runId=18446744073709551615 batchSeq=0 segs=0 chars=0 httpMs=0 ok=0 "
            "code=network_error");
}

TEST(AttemptText, WideTextGoesInAsUtf8) {
  TranslateAttempt attempt = Attempt();
  attempt.code = u"é計";
  EXPECT_TRUE(AttemptText(attempt).ends_with("code=\xC3\xA9\xE8\xA8\x88"));
}

TEST(AttemptText, IsCutAtTheEndOfItsBuffer) {
  TranslateAttempt attempt = Attempt();
  attempt.clientTraceId = Wide(600, u'x');
  EXPECT_EQ(AttemptText(attempt), "clientTraceId=" + std::string(511 - 14, 'x'));
}

TEST(TraceLine, HoldsTimeTagAndText) {
  EXPECT_EQ(TraceLine({2026, 3, 4, 5, 6, 7, 8}, "text"),
            "[2026-03-04T05:06:07.008] cpp.http.translate text\n");
}

TEST(TraceLine, ALineLongerThanItsBufferLosesItsEndAndTheLineFeed) {
  const std::string line = TraceLine({2026, 3, 4, 5, 6, 7, 8}, std::string(2000, 'x').c_str());
  EXPECT_EQ(line.size(), 1535u);
  EXPECT_EQ(line.back(), 'x');
  const std::size_t prefix = std::string("[2026-03-04T05:06:07.008] cpp.http.translate ").size();
  const std::string whole =
      TraceLine({2026, 3, 4, 5, 6, 7, 8}, std::string(1534 - prefix, 'x').c_str());
  EXPECT_EQ(whole.size(), 1535u);
  EXPECT_EQ(whole.back(), '\n');
}

TEST(WriteTranslateTrace, AppendsALineToItsFileInTheLogFolder) {
  const std::string mark = OwnMark("line-");
  WriteTranslateTrace(("first " + mark).c_str());
  WriteTranslateTrace(("second " + mark).c_str());
  EXPECT_EQ(WithoutTimes(TraceLines(mark)),
            "[0000-00-00T00:00:00.000] cpp.http.translate first " + mark +
                "\n[0000-00-00T00:00:00.000] cpp.http.translate second " + mark + "\n");
}

TEST(TranslateOnce, WritesOneTraceLineForEachAttempt) {
  const std::string mark = OwnMark("t-");
  TranslateConfig config;
  config.clientTraceId = ToWide(mark);
  config.runId = 9;
  ScriptedPage page(config, [](const TranslateBatchRequest&) { return Refused(u"x", u"m"); });
  std::vector<Wide> translations;
  Wide message;
  Wide code;
  TranslateTexts(config, std::vector<Wide>{u"計画", u"😀"}, translations, message, code, nullptr);
  const std::string start =
      "[0000-00-00T00:00:00.000] cpp.http.translate clientTraceId=" + mark + " runId=9 batchSeq=0 ";
  const std::string end = " httpMs=0 ok=0 code=x\n";
  EXPECT_EQ(WithoutTimes(TraceLines(mark)), start + "segs=2 chars=4" + end + start +
                                                "segs=2 chars=4" + end + start + "segs=1 chars=2" +
                                                end + start + "segs=1 chars=2" + end);
}

TEST(TranslateOnce, ACancelledAttemptWritesNoLine) {
  const std::string mark = OwnMark("t-");
  TranslateConfig config;
  config.clientTraceId = ToWide(mark);
  config.cancelled = 1;
  std::vector<Wide> translations;
  Wide message;
  Wide code;
  TranslateOnce(config, std::vector<Wide>{u"a"}, translations, message, code, nullptr);
  EXPECT_EQ(TraceLines(mark), "");
}

}  // namespace

}  // namespace quillmarch::addin
