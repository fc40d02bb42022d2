#include "pane/PanelTransport.h"

#include <gtest/gtest.h>

#include <thread>

#include "foundation/text/JsonText.h"
#include "pane/TransportMessages.h"
#include "support/ManualHostThread.h"

namespace quillmarch::addin {

namespace {

using test::ManualHostThread;

struct TransportHarness {
  explicit TransportHarness(std::uint32_t waitMs = kBridgeWaitMs)
      : transport({thread, [this] { return there; },
                   [this](Wide json) {
                     const Wide copy = json;
                     thread.Post([this, copy] {
                       asked.push_back(ToUtf8(copy));
                       if (onAsked) onAsked(copy);
                     });
                   },
                   waitMs}) {}

  TranslateBatchResult Ask(const Wide& text = u"a") {
    TranslateBatchRequest request;
    request.texts = {text};
    return transport.TranslateViaPage(request);
  }
  bool AskTerms() {
    return transport.ResolveTerminologyViaPage({u"g"}, u"i", {u"t"}, instruction, glossary, code,
                                               message);
  }
  // Runs posts until `done`, from the host thread.
  template <typename Done>
  void Pump(Done done) {
    while (!done()) {
      thread.RunPosts();
      std::this_thread::yield();
    }
  }

  ManualHostThread thread;
  bool there = true;
  std::vector<std::string> asked;
  std::function<void(const Wide&)> onAsked;
  Wide instruction;
  std::vector<GlossaryEntry> glossary;
  Wide code;
  Wide message;
  PanelTransport transport;
};

Wide Result(const char16_t* action, const char16_t* id, const Wide& more) {
  return Wide(u"{\"action\":\"") + action + u"\",\"requestId\":\"" + id + u"\"," + more + u"}";
}

TEST(PanelTransport, AnAnswerEndsTheWaitOfTheOwnerThread) {
  TransportHarness h;
  h.onAsked = [&](const Wide&) {
    h.transport.CompleteTranslate(
        Result(u"translateBatchResult", u"ppttr_1",
               u"\"ok\":true,\"translations\":[\"b\"],\"unitIds\":[\"u1\"]"));
  };
  const TranslateBatchResult result = h.Ask();
  EXPECT_TRUE(result.ok);
  EXPECT_EQ(result.translations, std::vector<Wide>{u"b"});
  EXPECT_EQ(result.unitIds, std::vector<Wide>{u"u1"});
  EXPECT_EQ(h.thread.outsideWork(), 0);
}

TEST(PanelTransport, AWorkerIsAnsweredFromTheOwnerThread) {
  TransportHarness h;
  h.onAsked = [&](const Wide&) {
    h.transport.CompleteTranslate(Result(u"translateBatchResult", u"ppttr_1",
                                         u"\"ok\":false,\"code\":\"402\",\"message\":\"no\""));
  };
  TranslateBatchResult result;
  std::atomic<bool> ended{false};
  std::thread worker([&] {
    result = h.Ask();
    ended = true;
  });
  h.Pump([&] { return ended.load(); });
  worker.join();
  EXPECT_FALSE(result.ok);
  EXPECT_EQ(result.code, u"402");
  EXPECT_EQ(result.message, u"no");
}

TEST(PanelTransport, BothKindsShareOneCounter) {
  TransportHarness h;
  h.Ask();
  h.AskTerms();
  h.Ask();
  ASSERT_EQ(h.asked.size(), 3U);
  EXPECT_NE(h.asked[0].find("\"requestId\":\"ppttr_1\""), std::string::npos);
  EXPECT_NE(h.asked[1].find("\"requestId\":\"pptterm_2\""), std::string::npos);
  EXPECT_NE(h.asked[2].find("\"requestId\":\"ppttr_3\""), std::string::npos);
}

TEST(PanelTransport, WithoutAPageNothingIsAsked) {
  TransportHarness h;
  h.there = false;
  const TranslateBatchResult result = h.Ask();
  EXPECT_EQ(result.code, u"webview_unavailable");
  EXPECT_EQ(result.message, u"panel unavailable");
  h.message = u"left over";
  EXPECT_FALSE(h.AskTerms());
  EXPECT_EQ(h.code, u"webview_unavailable");
  EXPECT_EQ(h.message, u"");
  h.thread.RunPosts();
  EXPECT_TRUE(h.asked.empty());
}

TEST(PanelTransport, APageThatIsSilentEndsBothKindsAfter120000Ms) {
  TransportHarness h;
  const std::uint64_t begin = h.thread.TickCount();
  const TranslateBatchResult result = h.Ask();
  EXPECT_EQ(h.thread.TickCount() - begin, 120000U);
  EXPECT_EQ(result.code, u"request_timeout");
  EXPECT_EQ(result.message, u"JS bridge timeout");
  EXPECT_FALSE(h.AskTerms());
  EXPECT_EQ(h.thread.TickCount() - begin, 240000U);
  EXPECT_EQ(h.code, u"request_timeout");
  EXPECT_EQ(h.message, u"terminology bridge timeout");
  EXPECT_TRUE(IsSoftBridgeError(h.code));
}

TEST(PanelTransport, AWorkersWaitEndsByItsTimeToo) {
  TransportHarness h(5);
  TranslateBatchResult result;
  std::thread([&] { result = h.Ask(); }).join();
  EXPECT_EQ(result.code, u"request_timeout");
}

TEST(PanelTransport, AnAnswerAfterTheTimeIsDropped) {
  TransportHarness h(5);
  h.Ask();
  h.transport.CompleteTranslate(
      Result(u"translateBatchResult", u"ppttr_1", u"\"ok\":true,\"translations\":[\"b\"]"));
  h.transport.CompleteTerminology(Result(u"x", u"ppttr_1", u"\"ok\":true,\"result\":{}"));
  EXPECT_EQ(h.Ask().code, u"request_timeout");
}

TEST(PanelTransport, AnAnswerWithAnUnknownOrEmptyIdChangesNothing) {
  TransportHarness h;
  h.onAsked = [&](const Wide&) {
    h.transport.CompleteTranslate(u"{\"ok\":true,\"translations\":[\"x\"]}");
    h.transport.CompleteTranslate(
        Result(u"translateBatchResult", u"ppttr_9", u"\"ok\":true,\"translations\":[\"x\"]"));
    h.transport.CompleteTerminology(Result(u"x", u"ppttr_1", u"\"ok\":true,\"result\":{}"));
  };
  EXPECT_EQ(h.Ask().code, u"request_timeout");
}

TEST(PanelTransport, ANavigationEndsTheWaitWithItsCodeAndTheWordCancelled) {
  TransportHarness h;
  const std::uint64_t begin = h.thread.TickCount();
  h.onAsked = [&](const Wide&) { h.transport.FailAllPendingTranslate(u"webview_navigating"); };
  const TranslateBatchResult result = h.Ask();
  EXPECT_EQ(result.code, u"webview_navigating");
  EXPECT_EQ(result.message, u"cancelled");
  EXPECT_EQ(h.thread.TickCount(), begin);
}

TEST(PanelTransport, TerminologyWaitsAreNotFailedWithTheOthers) {
  TransportHarness h;
  h.onAsked = [&](const Wide&) { h.transport.FailAllPendingTranslate(u"cancelled"); };
  EXPECT_FALSE(h.AskTerms());
  EXPECT_EQ(h.code, u"request_timeout");
}

TEST(PanelTransport, ARealAnswerIsNotOverwrittenByAFailure) {
  TransportHarness h;
  h.onAsked = [&](const Wide&) {
    h.transport.CompleteTranslate(
        Result(u"translateBatchResult", u"ppttr_1", u"\"ok\":true,\"translations\":[\"b\"]"));
    h.transport.FailAllPendingTranslate(u"cancelled");
  };
  const TranslateBatchResult result = h.Ask();
  EXPECT_TRUE(result.ok);
  EXPECT_EQ(result.translations, std::vector<Wide>{u"b"});
  EXPECT_TRUE(result.code.empty());
}

TEST(PanelTransport, AnAnswerOverwritesAFailureAndAnEarlierAnswerThatNobodyHasTaken) {
  TransportHarness h;
  h.onAsked = [&](const Wide&) {
    h.transport.CompleteTranslate(
        Result(u"translateBatchResult", u"ppttr_1", u"\"ok\":true,\"translations\":[\"b\"]"));
    h.transport.CompleteTranslate(
        Result(u"translateBatchResult", u"ppttr_1", u"\"ok\":true,\"translations\":[\"c\"]"));
  };
  EXPECT_EQ(h.Ask().translations, std::vector<Wide>{u"c"});
  h.onAsked = [&](const Wide&) {
    h.transport.FailAllPendingTranslate(u"webview_navigating");
    h.transport.CompleteTranslate(
        Result(u"translateBatchResult", u"ppttr_2", u"\"ok\":true,\"translations\":[\"d\"]"));
  };
  const TranslateBatchResult result = h.Ask();
  EXPECT_TRUE(result.ok);
  EXPECT_EQ(result.translations, std::vector<Wide>{u"d"});
}

TEST(PanelTransport, AThreadToldToEndStopsWaitingAtOnceAndStaysTold) {
  TransportHarness h;
  const std::uint64_t begin = h.thread.TickCount();
  h.onAsked = [&](const Wide&) { h.thread.toldToEnd = true; };
  EXPECT_EQ(h.Ask().code, u"request_timeout");
  EXPECT_EQ(h.thread.TickCount(), begin);
  EXPECT_TRUE(h.thread.toldToEnd);
}

TEST(PanelTransport, ARequestInsideAWaitIsAnsweredToo) {
  TransportHarness h;
  TranslateBatchResult inner;
  h.onAsked = [&](const Wide& json) {
    const Wide id = JsonGetString(json, u"requestId");
    if (id == u"ppttr_1") inner = h.Ask(u"inner");
    h.transport.CompleteTranslate(Result(u"translateBatchResult", id.c_str(),
                                         u"\"ok\":true,\"translations\":[\"" + id + u"\"]"));
  };
  EXPECT_EQ(h.Ask().translations, std::vector<Wide>{u"ppttr_1"});
  EXPECT_EQ(inner.translations, std::vector<Wide>{u"ppttr_2"});
}

TEST(PanelTransport, FourWorkersAreEachGivenTheirOwnAnswer) {
  TransportHarness h;
  h.onAsked = [&](const Wide& json) {
    const Wide text = JsonGetStringArray(json, u"texts").at(0);
    const Wide answer = Result(u"translateBatchResult", JsonGetString(json, u"requestId").c_str(),
                               u"\"ok\":true,\"translations\":[\"T" + text + u"\"]");
    h.transport.CompleteTranslate(answer);
    h.transport.CompleteTranslate(answer);
    h.transport.FailAllPendingTranslate(u"");
  };
  std::atomic<int> ended{0};
  std::atomic<int> wrong{0};
  std::vector<std::thread> workers;
  for (int w = 0; w < 4; ++w) {
    workers.emplace_back([&, w] {
      for (int n = 0; n < 50; ++n) {
        const Wide text = Decimal(w * 1000 + n);
        const TranslateBatchResult result = h.Ask(text);
        // A failure meant for another's request may hit this one; a foreign answer never.
        if (result.ok ? result.translations != std::vector<Wide>{u"T" + text}
                      : result.message != u"cancelled") {
          ++wrong;
        }
      }
      ++ended;
    });
  }
  h.Pump([&] { return ended == 4; });
  for (std::thread& worker : workers) worker.join();
  EXPECT_EQ(wrong, 0);
}

TEST(PanelTransport, ThePagesTermsReachTheRunWithoutTheDisabledOnes) {
  TransportHarness h;
  h.onAsked = [&](const Wide&) {
    h.transport.CompleteTerminology(
        Result(u"terminologyResolveResult", u"pptterm_1",
               u"\"ok\":true,\"result\":{\"instruction\":\"be brief\",\"entries\":["
               u"{\"source\":\"a\",\"target\":\"b\",\"note\":\"n\"},"
               u"{\"source\":\"c\",\"target\":\"d\",\"enabled\":false},{\"source\":\"e\"}]}"));
  };
  EXPECT_TRUE(h.AskTerms());
  EXPECT_EQ(h.instruction, u"be brief");
  ASSERT_EQ(h.glossary.size(), 1U);
  EXPECT_EQ(h.glossary[0].source, u"a");
  EXPECT_EQ(h.glossary[0].target, u"b");
  EXPECT_EQ(h.glossary[0].note, u"n");
}

TEST(PanelTransport, TheListOfTermsEndsAtItsBracketAndATermAtItsFirstBrace) {
  TransportHarness h;
  h.onAsked = [&](const Wide&) {
    h.transport.CompleteTerminology(
        Result(u"terminologyResolveResult", u"pptterm_1",
               u"\"ok\":true,\"result\":{\"entries\":[{\"source\":\"a\",\"target\":\"b\"},"
               u"{\"source\":\"c}\",\"target\":\"d\"} , {\"target\":\"f\",\"source\":\"e\"}],"
               u"\"others\":[{\"source\":\"g\",\"target\":\"h\"}]}"));
  };
  EXPECT_TRUE(h.AskTerms());
  ASSERT_EQ(h.glossary.size(), 2U);
  EXPECT_EQ(h.glossary[0].source, u"a");
  EXPECT_EQ(h.glossary[1].source, u"e");
  EXPECT_EQ(h.glossary[1].target, u"f");
}

TEST(IsSoftBridgeError, HoldsForExactlyEightCodes) {
  for (const char16_t* code : {u"cancelled", u"aborted", u"AbortError", u"request_timeout",
                               u"webview_navigating", u"webview_unavailable", u"401", u"402"}) {
    EXPECT_TRUE(IsSoftBridgeError(code)) << ToUtf8(code);
  }
  for (const char16_t* code : {u"", u"403", u"Cancelled", u"addin_shutdown", u"aborterror"}) {
    EXPECT_FALSE(IsSoftBridgeError(code)) << ToUtf8(code);
  }
}

TEST(TranslateBatchMessage, WritesTheLastThreeFieldsOnlyWhenTheyHaveAValue) {
  TranslateBatchRequest request;
  request.texts = {u"a\"b", u"c\n"};
  request.unitIds = {u"u1"};
  request.sourceLang = u"auto";
  request.targetLang = u"es";
  request.usageKind = u"translate_full";
  request.clientProduct = u"ppt";
  request.runId = 18446744073709551615U;
  EXPECT_EQ(ToUtf8(TranslateBatchMessage(u"ppttr_1", request)),
            R"({"action":"translateBatchRequest","requestId":"ppttr_1",)"
            R"("runId":18446744073709551615,"batchSeq":0,"sourceLang":"auto","targetLang":"es",)"
            R"("usageKind":"translate_full","clientProduct":"ppt","texts":["a\"b","c\n"],)"
            R"("unitIds":["u1"]})");
  request.texts.clear();
  request.unitIds.clear();
  request.glossary = {{u"s", u"t", u""}, {u"x", u"y", u"z"}};
  request.instruction = u"i";
  request.clientTraceId = u"ppt_1";
  const std::string json = ToUtf8(TranslateBatchMessage(u"ppttr_1", request));
  EXPECT_NE(json.find(R"("texts":[],"unitIds":[],"glossary":[{"source":"s","target":"t"},)"
                      R"({"source":"x","target":"y","note":"z"}],"instruction":"i",)"
                      R"("clientTraceId":"ppt_1"})"),
            std::string::npos);
}

TEST(TerminologyResolveMessage, WritesAnEmptyInstructionIdToo) {
  EXPECT_EQ(ToUtf8(TerminologyResolveMessage(u"pptterm_2", {u"g1", u"g2"}, u"", {u"t"})),
            R"({"action":"terminologyResolveRequest","requestId":"pptterm_2",)"
            R"("glossaryIds":["g1","g2"],"instructionId":"","corpusTexts":["t"]})");
}

}  // namespace

}  // namespace quillmarch::addin
