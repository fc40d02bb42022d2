#include "host/driver/RunEvent.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

std::string Payload(const RunEvent& event) {
  return ToUtf8(EventPayload(event));
}

TEST(RunEvent, EveryKindHasThePagesOwnName) {
  EXPECT_EQ(Wide(EventName(RunEventKind::kOnRunStarted)), u"onRunStarted");
  EXPECT_EQ(Wide(EventName(RunEventKind::kOnScanProgress)), u"onScanProgress");
  EXPECT_EQ(Wide(EventName(RunEventKind::kOnReady)), u"onReady");
  EXPECT_EQ(Wide(EventName(RunEventKind::kOnProgress)), u"onProgress");
  EXPECT_EQ(Wide(EventName(RunEventKind::kOnComplete)), u"onComplete");
  EXPECT_EQ(Wide(EventName(RunEventKind::kOnError)), u"onError");
  EXPECT_EQ(Wide(EventName(RunEventKind::kOnCancelled)), u"onCancelled");
}

TEST(RunEvent, FieldsStandInTheirFixedOrder) {
  EXPECT_EQ(Payload({.kind = RunEventKind::kOnRunStarted, .runId = 7}), R"({"runId":7})");
  EXPECT_EQ(Payload({.kind = RunEventKind::kOnScanProgress,
                     .runId = 7,
                     .current = 2,
                     .total = 9,
                     .phase = u"slides"}),
            R"({"runId":7,"current":2,"total":9,"phase":"slides"})");
  EXPECT_EQ(Payload({.kind = RunEventKind::kOnReady, .runId = 7, .total = 5, .translatable = 4}),
            R"({"runId":7,"total":5,"translatable":4})");
  EXPECT_EQ(
      Payload({.kind = RunEventKind::kOnProgress,
               .runId = 7,
               .current = 3,
               .total = 5,
               .skipped = true,
               .original = u"a",
               .translated = u"b"}),
      R"({"runId":7,"wordIndex":3,"total":5,"skipped":true,"original":"a","translated":"b"})");
  EXPECT_EQ(Payload({.kind = RunEventKind::kOnComplete,
                     .runId = 7,
                     .total = 5,
                     .elapsedMs = 12,
                     .bilingualCopy = true}),
            R"({"runId":7,"elapsed":12,"total":5,"bilingualCopy":true})");
  EXPECT_EQ(Payload({.kind = RunEventKind::kOnError, .runId = 7, .code = u"c", .message = u"m"}),
            R"({"runId":7,"code":"c","message":"m"})");
  EXPECT_EQ(Payload({.kind = RunEventKind::kOnCancelled, .runId = 7}), R"({"runId":7})");
}

TEST(RunEvent, ANegativeElapsedAndATotalOfZeroArePassedOn) {
  EXPECT_EQ(Payload({.kind = RunEventKind::kOnComplete, .runId = 1, .elapsedMs = -5}),
            R"({"runId":1,"elapsed":-5,"total":0,"bilingualCopy":false})");
}

TEST(RunEvent, RunIdsAbove53BitsAreWrittenInFull) {
  EXPECT_EQ(Payload({.kind = RunEventKind::kOnRunStarted,
                     .runId = std::numeric_limits<std::uint64_t>::max()}),
            R"({"runId":18446744073709551615})");
}

TEST(RunEvent, LineBreaksQuotesAndControlsAreEscapedAndSurrogatesKept) {
  EXPECT_EQ(Payload({.kind = RunEventKind::kOnProgress,
                     .runId = 1,
                     .current = 1,
                     .total = 1,
                     .original = u"say \"hi\"\r\n\\\t\x01 \U0001F600",
                     .translated = u""}),
            "{\"runId\":1,\"wordIndex\":1,\"total\":1,\"skipped\":false,\"original\":"
            "\"say \\\"hi\\\"\\r\\n\\\\\\t\\u0001 \xF0\x9F\x98\x80\",\"translated\":\"\"}");
}

TEST(RunEvent, ThePhaseIsNotEscaped) {
  EXPECT_EQ(Payload({.kind = RunEventKind::kOnScanProgress, .runId = 1, .phase = u"a\\b"}),
            R"({"runId":1,"current":0,"total":0,"phase":"a\b"})");
}

}  // namespace
