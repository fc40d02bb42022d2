// How long the text fit takes on a shape of the sample deck once its text was put, by what it has
// to do: look, wrap anew, shrink, or go through all its passes in vain. "units" is the text's
// length. The log line is written to a folder for this process alone.
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "foundation/automation/Automation.h"
#include "foundation/automation/HostMembers.h"
#include "host/model/Host.h"
#include "run/write/FitShape.h"

namespace quillmarch::host {

using namespace addin;

namespace {

constexpr const char16_t* kWords = u"every region has met its plan, and two have passed it ";
constexpr int kBodySlide = 2;
constexpr int kBody = 2;
constexpr std::int32_t kWrapOn = -1;
constexpr float kSlideWidth = 960.0F;

ObjectRef Get(const ObjectRef& object, WideView member, const std::vector<Variant>& args = {}) {
  Variant value;
  AutoGet(object.get(), member, args, value);
  return value.hasObject() ? value.object() : ObjectRef();
}

class Body {
 public:
  Body() : host_(*FindPersonality("powerpoint")) {
    std::vector<std::string> warnings;
    if (!host_.Open(QUILLMARCH_SAMPLE, warnings)) return;
    const ObjectRef slides = Get(Get(host_.application(), u"ActivePresentation"), u"Slides");
    const ObjectRef shapes = Get(Get(slides, u"Item", {Variant::I4(kBodySlide)}), u"Shapes");
    shape_ = Get(shapes, u"Item", {Variant::I4(kBody)});
    frame_ = Get(shape_, u"TextFrame");
  }
  bool ok() const { return shape_ && frame_; }
  AutomationObject* shape() const { return shape_.get(); }

  // As a writeback leaves it: the text is put, and nobody has measured it.
  void Put(const Wide& text, float size, float width, float height) {
    AutoPut(frame_.get(), u"AutoSize", Variant::I4(0));
    AutoPut(frame_.get(), u"WordWrap", Variant::I4(kWrapOn));
    AutoPut(shape_.get(), u"Width", Variant::R4(width));
    AutoPut(shape_.get(), u"Height", Variant::R4(height));
    const ObjectRef range = Get(frame_, u"TextRange");
    AutoPutText(range.get(), u"");
    AutoPutText(range.get(), text);
    AutoPut(Get(Get(frame_, u"TextRange"), u"Font").get(), u"Size", Variant::R4(size));
  }

 private:
  Host host_;
  ObjectRef shape_;
  ObjectRef frame_;
};

// The shape grows with the text, so that the fit has the same to do at each length.
void Fit(benchmark::State& state, float heightOfALine, float size) {
  Body body;
  if (!body.ok()) {
    state.SkipWithError("the sample deck has no such shape");
    return;
  }
  const auto times = static_cast<std::size_t>(state.range(0));
  Wide text;
  for (std::size_t i = 0; i < times; ++i) text += kWords;
  // The words fill a line, more or less.
  const float height = static_cast<float>(times) * heightOfALine + heightOfALine;
  for (auto _ : state) {
    state.PauseTiming();
    body.Put(text, size, 600.0F, height);
    state.ResumeTiming();
    FitShape(body.shape(), nullptr, kSlideWidth);
  }
  state.counters["units"] = static_cast<double>(text.size());
}

}  // namespace

BENCHMARK_CAPTURE(Fit, WhatFits, 30.0F, 18.0F)
    ->RangeMultiplier(8)
    ->Range(1, 512)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(Fit, WhatShrinks, 10.0F, 18.0F)
    ->RangeMultiplier(8)
    ->Range(1, 512)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(Fit, WhatNeverFits, 0.5F, 18.0F)
    ->RangeMultiplier(8)
    ->Range(1, 512)
    ->Unit(benchmark::kMicrosecond);

}  // namespace quillmarch::host

int main(int count, char** arguments) {
  using namespace quillmarch::host;
  std::string home = (std::filesystem::temp_directory_path() / "quillmarch-bench-XXXXXX").string();
  if (mkdtemp(home.data()) == nullptr) return 1;
  setenv("XDG_DATA_HOME", home.c_str(), 1);
  benchmark::Initialize(&count, arguments);
  benchmark::RunSpecifiedBenchmarks();
  std::filesystem::remove_all(home);
  return 0;
}
