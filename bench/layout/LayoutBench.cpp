// How long a frame takes to lay out: first with nothing known but the fonts, then as the fit asks
// again for the same text. Time a frame; "units" is the text's length.
#include <benchmark/benchmark.h>

#include <string>

#include "host/layout/LayoutEngine.h"

namespace quillmarch::host {

namespace {

constexpr const char16_t* kEnglish =
    u"The quarterly review shows that every region has met its plan, and two have passed it. ";
constexpr const char16_t* kChinese =
    u"本季度的评审表明，每个地区都完成了计划，其中两个超过了计划。";
constexpr const char16_t* kArabic = u"تظهر المراجعة الفصلية أن كل منطقة قد حققت خطتها. ";

layout::LayoutFrame Frame(const std::u16string& text, std::size_t paragraphs) {
  layout::LayoutFrame frame;
  frame.width = 400.0;
  frame.height = 300.0;
  layout::LayoutParagraph paragraph;
  paragraph.runs.resize(1);
  paragraph.runs[0].text = text;
  paragraph.runs[0].fonts = {"Calibri", "Noto Sans CJK SC", "Arial", ""};
  frame.paragraphs.assign(paragraphs, paragraph);
  return frame;
}

std::u16string Repeated(const char16_t* text, std::size_t times) {
  std::u16string result;
  for (std::size_t i = 0; i < times; ++i) result += text;
  return result;
}

void LayOutAgain(benchmark::State& state, const char16_t* sentence) {
  layout::LayoutEngine layout;
  auto times = static_cast<std::size_t>(state.range(0));
  layout::LayoutFrame frame = Frame(Repeated(sentence, times), 1);
  layout.LayOut(frame);
  for (auto _ : state) benchmark::DoNotOptimize(layout.LayOut(frame).height);
  state.counters["units"] = static_cast<double>(frame.paragraphs[0].runs[0].text.size());
}

// Every word is new, the fonts are known: what a deck's first pass costs.
void LayOutNewWords(benchmark::State& state) {
  layout::LayoutEngine layout;
  layout.LayOut(Frame(kEnglish, 1));
  std::uint64_t number = 0;
  for (auto _ : state) {
    state.PauseTiming();
    std::u16string text;
    for (int i = 0; i < 40; ++i) {
      for (std::uint64_t rest = ++number * 7919; rest > 0; rest /= 26) {
        text += static_cast<char16_t>(u'a' + rest % 26);
      }
      text += u' ';
    }
    layout::LayoutFrame frame = Frame(text, 1);
    state.ResumeTiming();
    benchmark::DoNotOptimize(layout.LayOut(frame).height);
  }
}

void OpenFonts(benchmark::State& state) {
  layout::LayoutFrame frame = Frame(kEnglish, 1);
  for (auto _ : state) {
    layout::LayoutEngine layout;
    benchmark::DoNotOptimize(layout.LayOut(frame).height);
  }
}

}  // namespace

BENCHMARK_CAPTURE(LayOutAgain, English, kEnglish)
    ->RangeMultiplier(8)
    ->Range(1, 512)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(LayOutAgain, Chinese, kChinese)->Arg(1)->Arg(8)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(LayOutAgain, Arabic, kArabic)->Arg(1)->Arg(8)->Unit(benchmark::kMicrosecond);
BENCHMARK(LayOutNewWords)->Unit(benchmark::kMicrosecond);
BENCHMARK(OpenFonts)->Unit(benchmark::kMillisecond);

}  // namespace quillmarch::host
