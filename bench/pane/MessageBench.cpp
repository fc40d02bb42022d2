// How long the page's messages take to read, by their length, and how long one of 1 MB takes from
// its arrival to its dispatch. Ends with 1 when a reader's time grows faster than the text or a
// message takes longer than it may.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "foundation/text/JsonText.h"
#include "pane/CPptPane.h"
#include "pane/PanelTransport.h"
#include "support/IdleSurroundings.h"

namespace quillmarch::host {

using namespace addin;

namespace {

constexpr std::int64_t kShort = 1 << 10;  // UTF-16 units
constexpr std::int64_t kMiddle = 100 << 10;
constexpr std::int64_t kLong = 1 << 20;
constexpr double kMostMs = 10.0;  // for a message of 1 MB
// Caches hold the shorter texts and not the longest one.
constexpr double kMostGrowth = 3.0;

// ---- Texts -------------------------------------------------------------------------------------

constexpr char16_t kSentence[] =
    u"The \\\"quarterly\\\" review shows that every region has met its plan.\\n";

// `units` long: what `open` and `close` leave is filled by strings in an array.
Wide Message(const Wide& open, const Wide& close, std::int64_t units) {
  const Wide item = Wide(u"\"") + kSentence + u"\",";
  Wide json = open;
  while (static_cast<std::int64_t>(json.size() + item.size() + close.size()) < units) json += item;
  json.back() = u']';
  return json + close;
}

Wide TranslationsOf(std::int64_t units) {
  return Message(
      u"{\"action\":\"translateBatchResult\",\"requestId\":\"ppttr_1\",\"ok\":true,"
      u"\"translations\":[",
      u",\"unitIds\":[],\"size\":12.5,\"last\":\"x\",\"flag\":false}", units);
}

Wide OneString(const Wide& open, std::int64_t units) {
  Wide json = open;
  while (static_cast<std::int64_t>(json.size()) < units) json += kSentence;
  return json + u"\"}";
}

// ---- Readers -----------------------------------------------------------------------------------

template <typename Read>
void Reader(const char* name, Wide (*text)(std::int64_t), Read read) {
  benchmark::RegisterBenchmark(name,
                               [text, read](benchmark::State& state) {
                                 const Wide json = text(state.range(0));
                                 for (auto _ : state) benchmark::DoNotOptimize(read(json));
                                 state.SetComplexityN(state.range(0));
                               })
      ->Arg(kShort)
      ->Arg(kMiddle)
      ->Arg(kLong)
      ->Complexity(benchmark::oN);
}

void RegisterReaders() {
  Reader("JsonGetString", TranslationsOf,
         [](const Wide& json) { return JsonGetString(json, u"last"); });
  Reader("JsonGetString, absent", TranslationsOf,
         [](const Wide& json) { return JsonGetString(json, u"absent"); });
  Reader(
      "JsonGetString, one long", [](std::int64_t n) { return OneString(u"{\"phase\":\"", n); },
      [](const Wide& json) { return JsonGetString(json, u"phase"); });
  Reader("JsonFindString", TranslationsOf,
         [](const Wide& json) { return JsonFindString(json, u"last"); });
  Reader("JsonGetBool", TranslationsOf,
         [](const Wide& json) { return JsonGetBool(json, u"flag"); });
  Reader("JsonGetFlag", TranslationsOf,
         [](const Wide& json) { return JsonGetFlag(json, u"flag"); });
  Reader("JsonGetNumber", TranslationsOf,
         [](const Wide& json) { return JsonGetNumber(json, u"size"); });
  Reader("JsonGetStringArray", TranslationsOf,
         [](const Wide& json) { return JsonGetStringArray(json, u"translations"); });
  Reader(
      "JsonGetObject",
      [](std::int64_t n) { return Message(u"{\"result\":{\"texts\":[", u"}}", n); },
      [](const Wide& json) { return JsonGetObject(json, u"result"); });
  Reader("JsonHasKey", TranslationsOf,
         [](const Wide& json) { return JsonHasKey(json, u"absent"); });
  Reader("JsonEscape", TranslationsOf, [](const Wide& json) { return JsonEscape(json); });
}

// ---- Whole messages ----------------------------------------------------------------------------

struct Stage {
  Stage() : pane(CPptPane::Create({thread, hands, fonts, {}, {}, {}})) { pane->OnCreate(1); }
  ~Stage() { pane->OnDestroy(); }
  test::IdleThread thread;
  UnattendedInput hands;
  test::TwoFonts fonts;
  std::shared_ptr<CPptPane> pane;
};

// With what the message leads to at once: a start is turned away for want of a window.
void Dispatch(const char* name, const Wide& json) {
  benchmark::RegisterBenchmark(name, [json](benchmark::State& state) {
    Stage stage;
    for (auto _ : state) {
      stage.pane->OnWebMessageReceived(json);
      stage.thread.RunPosts();
    }
  })->Unit(benchmark::kMillisecond);
}

// An answer that somebody waits for.
template <typename Ask>
void Answered(const char* name, Ask ask) {
  benchmark::RegisterBenchmark(name, [ask](benchmark::State& state) {
    test::IdleThread thread;
    for (auto _ : state) ask(thread);
  })->Unit(benchmark::kMillisecond);
}

void RegisterMessages() {
  Dispatch("1 MB: start",
           Message(u"{\"action\":\"start\",\"glossaryIds\":[", u",\"targetLang\":\"es\"}", kLong));
  Dispatch("1 MB: startSelection, action last",
           Message(u"{\"glossaryIds\":[", u",\"action\":\"startSelection\"}", kLong));
  Dispatch("1 MB: setTargetStyle", Message(u"{\"action\":\"setTargetStyle\",\"x\":[",
                                           u",\"targetFont\":\"Arial\"}", kLong));
  Dispatch("1 MB: setAccessToken",
           OneString(u"{\"action\":\"setAccessToken\",\"accessToken\":\"", kLong));
  Dispatch("1 MB: unknown action", Message(u"{\"x\":[", u",\"action\":\"none\"}", kLong));
  Answered("1 MB: translateBatchResult", [](test::IdleThread& thread) {
    static const Wide kAnswer = TranslationsOf(kLong);
    PanelTransport* to = nullptr;
    PanelTransport transport(
        {thread, [] { return true; },
         [&](const Wide&) { thread.Post([&to] { to->CompleteTranslate(kAnswer); }); }});
    to = &transport;
    benchmark::DoNotOptimize(transport.TranslateViaPage({}).translations.size());
  });
  Answered("1 MB: terminologyResolveResult", [](test::IdleThread& thread) {
    static const Wide kAnswer = [] {
      Wide json =
          u"{\"action\":\"terminologyResolveResult\",\"requestId\":\"pptterm_1\",\"ok\":true,"
          u"\"result\":{\"instruction\":\"i\",\"entries\":[";
      while (static_cast<std::int64_t>(json.size()) < kLong) {
        json += u"{\"source\":\"region\",\"target\":\"región\",\"note\":\"n\",\"enabled\":true},";
      }
      json.back() = u']';
      return json + u"}}";
    }();
    PanelTransport* to = nullptr;
    PanelTransport transport(
        {thread, [] { return true; },
         [&](const Wide&) { thread.Post([&to] { to->CompleteTerminology(kAnswer); }); }});
    to = &transport;
    Wide instruction;
    Wide code;
    Wide message;
    std::vector<GlossaryEntry> glossary;
    transport.ResolveTerminologyViaPage({}, {}, {}, instruction, glossary, code, message);
    benchmark::DoNotOptimize(glossary.size());
  });
}

// ---- Judgement ---------------------------------------------------------------------------------

class Judge final : public benchmark::ConsoleReporter {
 public:
  void ReportRuns(const std::vector<Run>& runs) override {
    ConsoleReporter::ReportRuns(runs);
    for (const Run& run : runs) {
      if (run.run_type != Run::RT_Iteration) continue;
      const double ns = run.real_accumulated_time / static_cast<double>(run.iterations) * 1e9;
      const std::string name = run.run_name.function_name;
      if (name.starts_with("1 MB")) {
        Say(name, ns / 1e6, "ms", kMostMs);
      } else {
        perUnit_[name].push_back(ns / std::stod(run.run_name.args));
      }
    }
  }
  int Result() {
    for (const auto& [name, costs] : perUnit_) {
      if (costs.size() == 3)
        Say(name + ", growth from 100 KB to 1 MB", costs[2] / costs[1], "x a unit", kMostGrowth);
    }
    for (const std::string& line : said_) std::puts(line.c_str());
    return good_ ? 0 : 1;
  }

 private:
  void Say(const std::string& what, double value, const char* unit, double most) {
    char text[200];
    std::snprintf(text, sizeof(text), "%-60s %8.2f %s, at most %.0f: %s", what.c_str(), value, unit,
                  most, value <= most ? "yes" : "NO");
    said_.emplace_back(text);
    good_ = good_ && value <= most;
  }

  std::map<std::string, std::vector<double>> perUnit_;
  std::vector<std::string> said_;
  bool good_ = true;
};

}  // namespace

}  // namespace quillmarch::host

int main(int argc, char** argv) {
  using namespace quillmarch::host;
  RegisterReaders();
  RegisterMessages();
  benchmark::Initialize(&argc, argv);
  Judge judge;
  benchmark::RunSpecifiedBenchmarks(&judge);
  return judge.Result();
}
